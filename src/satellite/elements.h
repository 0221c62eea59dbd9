// Two-line element sets: the satellite record, the parsing of one set and the
// reading of an element file.
//
// Element sets are the NORAD/Space-Track "two-line" format (Hoots & Roehrich,
// Spacetrack Report No. 3, 1980, section 12, and the format description kept
// with the public element files), preceded by a name line. Fields are taken
// from their fixed columns exactly as they stand: the line numbers, the
// agreement of the two catalogue numbers and the modulo-10 check digits are not
// examined, and a field that does not convert reads as 0.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv::sat {

// One element set. Angles are radians, the mean motion is the Kozai mean
// motion of the file in radians per minute, times are UT.
struct SatelliteRecord {
    std::string name;                   // name line, trailing blanks removed
    std::string internationalDesignator;  // line 1 columns 10-17, 8 characters
    int catalogNumber = 0;              // line 1 columns 3-7 ("NORAD catalog number")
    int elementSetNumber = 0;           // line 1 columns 65-68
    double epochCode = 0.0;             // two-digit year × 1000 + day of year with fraction
    double epochJd = 0.0;               // Julian date of the epoch (UT)
    double bstarPerEarthRadius = 0.0;   // B* drag term, 1/Earth radii
    double inclinationRad = 0.0;
    double raanRad = 0.0;               // right ascension of the ascending node
    double argumentOfPerigeeRad = 0.0;
    double meanAnomalyRad = 0.0;
    double eccentricity = 0.0;
    double meanMotionRadPerMin = 0.0;   // Kozai mean motion as given in the file
    double periodMinutes = 0.0;         // from the un-Kozai'd (Brouwer) mean motion
};

// Year 1957-2056 of a two-digit element-set year: below 57 is 20yy, otherwise
// 19yy (the first artificial satellite flew in 1957).
int ExpandTwoDigitYear(int yy);

// Julian date (UT) of 0 January 0h of the Gregorian year `year`, that is of
// 31 December of the year before (Meeus, Astronomical Algorithms, 2nd ed.,
// eq. 7.1 with M = 13 of the previous year, D = 0).
double JulianDateOfJanuary0(int year);

// Anomalistic period in minutes of an orbit with the Kozai mean motion
// `meanMotionRadPerMin`, recovering the Brouwer mean motion as the models do
// (Spacetrack Report No. 3, SGP4 initialisation: a1, δ1, a0, δ0, n0" =
// n0 / (1 + δ0)). Returns 0 when the mean motion is not positive or the
// eccentricity is not in [0, 1).
double OrbitalPeriodMinutes(double meanMotionRadPerMin, double eccentricity, double inclinationRad);

// Parses one element set from its name line and its two element lines. The
// three lines are laid into a 192-byte buffer (name at byte 0 in a 32-byte
// area, line 1 at byte 32, line 2 at byte 112, 80 bytes each) and every field
// is cut from its fixed columns. Never fails: fields that do not convert are 0.
SatelliteRecord ParseElementSet(std::string_view nameLine, std::string_view line1, std::string_view line2);

// A satellite list read from an element file, in file order.
class CSatelliteList {
public:
    // Reads the element file at `path`. Only when the file opens is the
    // current list replaced; returns false (list untouched) otherwise. Reading
    // stops at the end of the file, at a name line that is empty once its
    // trailing blanks are removed, or when line 1 or line 2 of a set is
    // missing (that set is not added).
    bool Load(const std::string& path);
    // The same rules applied to text already in memory (a pasted element set).
    void LoadFromText(std::string_view text);

    const std::vector<SatelliteRecord>& Records() const { return m_records; }
    std::vector<SatelliteRecord>& Records() { return m_records; }
    std::size_t Size() const { return m_records.size(); }
    bool Empty() const { return m_records.empty(); }
    const SatelliteRecord& operator[](std::size_t i) const { return m_records[i]; }
    // The path of the file last loaded (empty before the first load).
    const std::string& FileName() const { return m_fileName; }

    // Index of the first satellite whose name equals `name` (ignoring case and
    // surrounding blanks) or, when `name` is a number, whose catalogue number
    // is that number, or else whose name begins with `name`; -1 when none
    // matches.
    int Find(std::string_view nameOrNumber) const;

private:
    std::vector<SatelliteRecord> m_records;
    std::string m_fileName;
};

}  // namespace orv::sat
