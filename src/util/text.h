// Small text helpers shared by the catalogues' name searches and the file
// readers. Names, designations and file extensions are ASCII; letters beyond
// it (Greek letters are spelled out in our names) are left as they are.
#pragma once

#include <cctype>
#include <string>
#include <string_view>

namespace orv {

// `s` with its ASCII letters in lower case.
inline std::string AsciiLower(std::string_view s)
{
    std::string out(s);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

// `s` without its leading and trailing white space (blanks, tabs, line ends).
inline std::string_view TrimBlanks(std::string_view s)
{
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return s;
}

// True when `a` and `b` are the same but for the case of ASCII letters.
inline bool EqualIgnoringCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

}  // namespace orv
