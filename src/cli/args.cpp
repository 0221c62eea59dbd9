// The command line's words split into options ("--name value",
// "--name=value", flags) and positional words.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "cli/cli.h"

namespace orv::cli {

CArgs::CArgs(std::vector<std::string> words, const std::vector<std::string>& flagNames)
{
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& w = words[i];
        if (w.size() > 2 && w.rfind("--", 0) == 0) {
            std::string name = w.substr(2);
            std::string value;
            if (const auto eq = name.find('='); eq != std::string::npos) {
                value = name.substr(eq + 1);
                name.resize(eq);
            } else if (std::find(flagNames.begin(), flagNames.end(), name) == flagNames.end() &&
                       i + 1 < words.size()) {
                value = words[++i];
            }
            m_options[name] = value;
            m_given.emplace_back(name, value);
        } else {
            m_positional.push_back(w);
        }
    }
}

std::optional<std::string> CArgs::Get(const std::string& name) const
{
    const auto it = m_options.find(name);
    if (it == m_options.end()) return std::nullopt;
    return it->second;
}

std::vector<std::string> CArgs::GetAll(const std::string& name) const
{
    std::vector<std::string> values;
    for (const auto& [given, value] : m_given)
        if (given == name) values.push_back(value);
    return values;
}

std::optional<double> CArgs::GetNumber(const std::string& name, std::string& error) const
{
    const auto v = Get(name);
    if (!v) return std::nullopt;
    char* end = nullptr;
    const double d = std::strtod(v->c_str(), &end);
    if (v->empty() || *end != '\0' || !std::isfinite(d)) {
        error = "--" + name + " needs a number, not \"" + *v + "\"";
        return std::nullopt;
    }
    return d;
}

std::vector<std::string> CArgs::Unknown(const std::vector<std::string>& known) const
{
    std::vector<std::string> out;
    for (const auto& [name, value] : m_options)
        if (std::find(known.begin(), known.end(), name) == known.end()) out.push_back(name);
    return out;
}

}  // namespace orv::cli
