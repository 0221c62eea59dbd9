#include "common/textfields.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace orv::databuild {

std::string_view Columns(std::string_view line, std::size_t first, std::size_t last)
{
    if (first > line.size()) return {};
    const std::size_t count = std::min(last, line.size()) - (first - 1);
    return line.substr(first - 1, count);
}

std::string_view Trim(std::string_view s)
{
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
    return s;
}

FieldState ParseNumber(std::string_view text, double& value)
{
    text = Trim(text);
    if (text.empty()) return FieldState::Blank;
    if (text.front() == '+') text.remove_prefix(1);
    const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || ptr != text.data() + text.size() || !std::isfinite(value)) return FieldState::Bad;
    return FieldState::Ok;
}

FieldState ParseInteger(std::string_view text, std::int64_t& value)
{
    text = Trim(text);
    if (text.empty()) return FieldState::Blank;
    if (text.front() == '+') text.remove_prefix(1);
    const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || ptr != text.data() + text.size()) return FieldState::Bad;
    return FieldState::Ok;
}

bool ParseUnsigned(std::string_view text, std::uint32_t& value)
{
    std::int64_t v = 0;
    if (ParseInteger(text, v) != FieldState::Ok || v < 0 || v > 0xFFFFFFFFll) return false;
    value = static_cast<std::uint32_t>(v);
    return true;
}

std::optional<double> OptionalNumber(std::string_view text, bool& bad)
{
    double v = 0.0;
    switch (ParseNumber(text, v)) {
    case FieldState::Ok: return v;
    case FieldState::Bad: bad = true; return std::nullopt;
    case FieldState::Blank: return std::nullopt;
    }
    return std::nullopt;
}

std::size_t Split(std::string_view line, char sep, std::string_view* parts, std::size_t maxParts)
{
    std::size_t n = 0;
    while (n + 1 < maxParts) {
        const auto at = line.find(sep);
        if (at == std::string_view::npos) break;
        parts[n++] = line.substr(0, at);
        line.remove_prefix(at + 1);
    }
    parts[n++] = line;
    return n;
}

bool IsBlank(std::string_view line) { return Trim(line).empty(); }

bool IsComment(std::string_view line)
{
    const auto t = Trim(line);
    return t.empty() || t.front() == '#';
}

bool Fail(std::string& error, std::string message)
{
    error = std::move(message);
    return false;
}

}  // namespace orv::databuild
