// The eclipse tables: five solar and five lunar files of 8-byte records,
// "data\solar1.dat" … "data\solar5.dat" and "data\lunar1.dat" …
// "data\lunar5.dat", each a chronological run of eclipses with no header.
// docs/eclipses.md gives the layout and the span of each file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "eclipse/eclipsefinder.h"

namespace orv {

// One record, little-endian on disk.
struct EclipseRecord {
    std::int16_t year = 0;    // astronomical numbering (0 is 1 BC)
    std::uint8_t month = 1;   // 1–12
    std::uint8_t day = 1;     // 1–31
    std::uint8_t hour = 0;    // greatest eclipse, TT
    std::uint8_t minute = 0;  // greatest eclipse, TT
    char type = ' ';          // solar T/P/H/A, lunar N/P/T
    // Our tables carry the magnitude at greatest eclipse in hundredths
    // (solar: the eclipse magnitude; lunar: the umbral magnitude, or the
    // penumbral one for a penumbral eclipse), capped at 255.
    std::uint8_t extra = 0;
};
inline constexpr std::size_t kEclipseRecordBytes = 8;

// The number (1–5) of the file in which a scan starting at `year` begins:
// before −999 file 1, −999 … 0 file 2, 1 … 1000 file 3, 1001 … 2000 file 4,
// from 2001 file 5.
int EclipseFileNumber(int year);
inline constexpr int kEclipseFileCount = 5;

// "data\solar3.dat" and the like, for LocateDataFile and GetDataFileName.
std::string EclipseFileName(EclipseKind kind, int number);

// The record of an eclipse: the instant of greatest eclipse rounded to the
// nearest minute of TT, then its calendar date (Julian before 1582 October
// 15).
EclipseRecord RecordFromEvent(const EclipseEvent& event);
// Greatest eclipse of a record, Julian date TT.
double RecordJulianDateTT(const EclipseRecord& record);

void EncodeEclipseRecord(const EclipseRecord& record, std::uint8_t* out8);
EclipseRecord DecodeEclipseRecord(const std::uint8_t* in8);

// Writes the ten files below `dataFolder` (in its "data" folder) from a list
// of eclipses covering −1999 … +3000, each atomically. The error message for
// the user on failure.
std::optional<std::string> WriteEclipseTables(const std::string& dataFolder, const std::vector<EclipseEvent>& events);

// Every record of a file; a trailing short record counts as the end.
// Nothing when the file cannot be opened.
std::optional<std::vector<EclipseRecord>> ReadEclipseFile(const std::string& path);

// Texts of the type character: "Total Solar" … "Total Lunar" for result
// lists; "Total", "Partial", "Annular", "Hybrid", "Penumbral" for the
// browsing lists. Any other character gives "".
std::string EclipseTypeText(EclipseKind kind, char type);
std::string EclipseTypeShortText(EclipseKind kind, char type);

// The browsing lists' date, "%4dBC %s %02d" for years below 1 (printing
// 1 − year) or "%4d %s %02d".
std::string BrowseDateText(const EclipseRecord& record);
// The result list's date: "%s %s %02d %02d:%02d" with the year as "%1d BC"
// or "%1d AD", the month's three-letter name.
std::string ResultDateText(const EclipseRecord& record);

}  // namespace orv
