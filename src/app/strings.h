// The program's string table: numbered messages, constellation names in the
// fixed constellation order, and solar-system body names.
//
// Messages carry "%1" where a file name or other argument goes.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace orv {

// Numbered messages.
enum StringId : int {
    IDS_CANNOT_CREATE_FILE = 1034,  // "Unable to create file %1"
    IDS_SIGNATURE = 1035,           // "Orvane": the map file signature text
    IDS_CANNOT_OPEN_FILE = 1036,    // "Unable to open file %1"
    IDS_NOT_ORVANE_FILE = 1037,     // "File %1 is not a\nOrvane file!"
    IDS_VERSION_TOO_NEW = 1039,     // "Sorry - I don't know how to handle this file.\n…"
    IDS_UNKNOWN_MAP_TYPE = 1056,    // "File %1 contains an unknown map type."
    IDS_BITMAP_TOO_LARGE = 1100,    // "Unable to create a bitmap of the requested size"
    IDS_CONSTELLATION_GENITIVE_FIRST = 224,   // 224-311: "Andromedae" … "Vulpeculae"
    IDS_CONSTELLATION_ABBREV_FIRST = 2144,    // 2144-2231: "And" … "Vul"
    IDS_CONSTELLATION_NAME_FIRST = 2300,      // 2300-2387: "Andromeda" … "Vulpecula"
    IDS_BODY_NAME_FIRST = 1400,               // 1400-1409: body names by body id
};

inline constexpr int kConstellationCount = 88;
inline constexpr int kBodyCount = 10;

// The text of string `id`, or an empty view when the table has no such string.
std::string_view LoadString(int id);

// String `id` with every "%1" replaced by `arg`.
std::string FormatString(int id, std::string_view arg);

// Replaces every "%1" in `pattern` by `arg`.
std::string SubstituteArg(std::string_view pattern, std::string_view arg);

// Constellation names by constellation number 0-87 (the fixed alphabetical
// order of the Latin names, Andromeda first). Empty for numbers out of range.
std::string_view ConstellationGenitive(int number);
std::string_view ConstellationAbbreviation(int number);
std::string_view ConstellationName(int number);
// Constellation number of an abbreviation, genitive or nominative name
// (any case), or −1.
int FindConstellation(std::string_view text);

// Body names by solar-system body id: 0 Moon, 1 Mercury, 2 Venus, 3 Sun,
// 4 Mars … 9 Pluto. Empty for ids out of range.
std::string_view BodyName(int bodyId);

}  // namespace orv
