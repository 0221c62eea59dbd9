// Fields of the text sources: the fixed columns of the CDS catalogues
// (Tycho-2, kstars-data's Hipparcos list), numbered from 1 as their ReadMe
// files number them, and the delimited fields of stellarium-data's lists.
// Shared by the readers; nothing here knows what the fields mean.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orv::databuild {

// Columns `first`..`last` (1-based, inclusive), clipped to the line.
std::string_view Columns(std::string_view line, std::size_t first, std::size_t last);

// The text without leading blanks and tabs and without trailing blanks, tabs
// and carriage returns.
std::string_view Trim(std::string_view s);

// A field may be left blank in the catalogues (an unmeasured quantity), which
// is not the same as a malformed one.
enum class FieldState { Blank, Ok, Bad };

// A decimal number with an optional leading '+', blanks around it allowed.
FieldState ParseNumber(std::string_view text, double& value);
FieldState ParseInteger(std::string_view text, std::int64_t& value);
// A whole number in 0..2^32 − 1; false when blank, malformed or out of range.
bool ParseUnsigned(std::string_view text, std::uint32_t& value);
// The number, or nothing when the field is blank; a malformed field sets `bad`.
std::optional<double> OptionalNumber(std::string_view text, bool& bad);

// Splits `line` at `sep` into at most `maxParts` views (the last takes the
// rest) and returns how many it made.
std::size_t Split(std::string_view line, char sep, std::string_view* parts, std::size_t maxParts);

bool IsBlank(std::string_view line);
// Blank, or a comment line of stellarium-data's and kstars-data's lists ('#').
bool IsComment(std::string_view line);

// Sets `error` and returns false, for `return Fail(error, "…")`.
bool Fail(std::string& error, std::string message);

}  // namespace orv::databuild
