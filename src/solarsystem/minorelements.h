// Osculating orbital elements of asteroids and comets: the records, the two
// user-editable catalogue formats ("asteroid.cat", "comet.cat"), the
// selection filters applied while a catalogue is read, and the import of the
// Minor Planet Center's published formats (the MPCORB one-line format with
// packed designations and packed epochs, and the comet format of
// "CometEls.txt"), whole files or single pasted lines.
//
// Angles are degrees on the ecliptic and equinox J2000.0; distances AU;
// dates dynamical time (TT), as the Minor Planet Center gives them.
// Standard C++ only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "util/progress.h"

namespace orv {

inline constexpr int kMinorNameChars = 31;  // a catalogue name's width
inline constexpr std::size_t kCatalogLineChars = 256;  // lines are read up to this length

struct AsteroidElements {
    char flag = ' ';               // 'A': chosen for display (filter mode 0)
    int number = 0;                // minor-planet number, 0 when unnumbered
    std::string name;              // up to 31 characters ("Ceres", "2004 MN4")
    std::int16_t epochYear = 2000;
    std::int16_t epochMonth = 1;
    double epochDay = 1.5;         // with fraction
    double epochJdTT = 2451545.0;  // derived from the three above
    double meanAnomalyDeg = 0.0;   // M0 at the epoch
    double aAU = 1.0;              // semi-major axis
    double e = 0.0;
    double argPerihelionDeg = 0.0; // ω
    double nodeDeg = 0.0;          // Ω
    double inclinationDeg = 0.0;   // i
    double slopeG = 0.15;          // G of the H, G system
    double absoluteH = 0.0;        // H
};

struct CometElements {
    std::string name;              // up to 31 characters ("C/2020 F3 (NEOWISE)", "1P/Halley")
    char flag = ' ';
    std::int16_t perihelionYear = 2000;
    std::int16_t perihelionMonth = 1;
    double perihelionDay = 1.5;
    double perihelionJdTT = 2451545.0;  // T, derived
    double qAU = 1.0;              // perihelion distance
    double e = 1.0;
    double argPerihelionDeg = 0.0;
    double nodeDeg = 0.0;
    double inclinationDeg = 0.0;
    double slopeK = 4.0;           // k of m = g + 5 log Δ + 2.5 k log r
    double absoluteG = 10.0;       // g
};

// The designation shown for an asteroid: "(1) Ceres", or the name alone
// when unnumbered.
std::string AsteroidDesignation(const AsteroidElements& a);

// One catalogue line (without its line end) to a record. False for a
// comment (first character ';'), a short line or unreadable elements;
// `why` then says what was wrong (empty for a comment).
bool ParseAsteroidLine(std::string_view line, AsteroidElements& out, std::string* why = nullptr);
bool ParseCometLine(std::string_view line, CometElements& out, std::string* why = nullptr);
// The catalogue line of a record, with its line feed.
std::string FormatAsteroidLine(const AsteroidElements& a);
std::string FormatCometLine(const CometElements& c);

// Which entries a catalogue read keeps (the load filter). Any other mode
// (−1 by convention) keeps every entry.
struct AsteroidFilter {
    int mode = 1;            // 0 flagged 'A'; 1 in file order up to number `numberLimit`; 2 H in [hMin, hMax]
    int numberLimit = 1000;
    float hMin = -5.0f;
    float hMax = 11.0f;
    // Mode 1: the entry whose number reaches the limit is kept and reading stops.
    bool Accept(const AsteroidElements& a, bool& stopAfter) const;
    bool operator==(const AsteroidFilter&) const = default;
};
struct CometFilter {
    int mode = 1;            // 0 flagged 'A'; 1 perihelion within `days` of `jdTT`; 2 none
    double days = 730.0;
    double jdTT = 2451545.0;
    bool Accept(const CometElements& c) const;
    // The date matters only to mode 1.
    bool operator==(const CometFilter& o) const
    {
        return mode == o.mode && (mode != 1 || (days == o.days && jdTT == o.jdTT));
    }
};
// Every entry: what the catalogue windows edit and save.
inline AsteroidFilter AllAsteroids() { return AsteroidFilter{-1, 0, 0.0f, 0.0f}; }
inline CometFilter AllComets() { return CometFilter{-1, 0.0, 0.0}; }

// The entries of a list, in list order, that a load filter keeps (their
// indices): what reading the list's file through the filter would load.
// Mode 1 for asteroids stops after the entry whose number reaches the limit.
std::vector<std::uint32_t> SelectAsteroids(const std::vector<AsteroidElements>& list, const AsteroidFilter& filter);
std::vector<std::uint32_t> SelectComets(const std::vector<CometElements>& list, const CometFilter& filter);
// "mode 1: in file order up to number 1000" and the like, for messages.
std::string DescribeFilter(const AsteroidFilter& filter);
std::string DescribeFilter(const CometFilter& filter);

// A line that could not be taken, for the messages of an import.
struct RefusedLine {
    int lineNumber = 0;  // 1-based
    std::string reason;
};

struct CatalogReadResult {
    bool opened = false;
    std::string error;  // when !opened
    int accepted = 0;
    int filteredOut = 0;
    std::vector<RefusedLine> refused;
    bool cancelled = false;
    // Asteroid filter mode 1 reached its limit at this line (1-based) and
    // the lines after it were not read; 0 when reading went to the end.
    int stoppedAtLine = 0;
};

// The lines of a catalogue file that are not entries, kept so that saving
// the catalogue writes them back: comments and lines that could not be
// read, each before the entry it preceded, and (comets) the end-of-list
// line with everything after it, written last.
struct CatalogOtherLines {
    struct Line {
        std::size_t beforeEntry = 0;  // the index of the entry that followed it
        std::string text;
    };
    std::vector<Line> lines;
    std::string tail;  // from the end-of-list line on, line ends included
    bool Empty() const { return lines.empty() && tail.empty(); }
    // An entry was deleted: lines before later entries move up with them.
    void EntryErased(std::size_t index);
};

// Reads a catalogue applying the filter. A missing file reads nothing
// (opened false). Comet reading stops at a line whose trimmed name is one
// character long (the old end-of-list mark). `others`, when given,
// receives the lines that are not entries (with the filter reading every
// entry, so that entry indices are file positions).
CatalogReadResult ReadAsteroidCatalog(const std::string& path, const AsteroidFilter& filter,
                                      std::vector<AsteroidElements>& out, CatalogOtherLines* others = nullptr);
CatalogReadResult ReadCometCatalog(const std::string& path, const CometFilter& filter, std::vector<CometElements>& out,
                                   CatalogOtherLines* others = nullptr);
// The same from text already in memory.
CatalogReadResult ParseAsteroidCatalog(std::string_view text, const AsteroidFilter& filter,
                                       std::vector<AsteroidElements>& out, CatalogOtherLines* others = nullptr);
CatalogReadResult ParseCometCatalog(std::string_view text, const CometFilter& filter, std::vector<CometElements>& out,
                                    CatalogOtherLines* others = nullptr);

// Writes a whole catalogue atomically (temporary file, then rename), a
// comment line first when `header` is not empty. The error text when it fails.
std::optional<std::string> WriteAsteroidCatalog(const std::string& path, const std::vector<AsteroidElements>& list,
                                                std::string_view header = {});
std::optional<std::string> WriteCometCatalog(const std::string& path, const std::vector<CometElements>& list,
                                             std::string_view header = {});
// The same with the file's other lines put back where they were.
std::optional<std::string> WriteAsteroidCatalog(const std::string& path, const std::vector<AsteroidElements>& list,
                                                const CatalogOtherLines& others);
std::optional<std::string> WriteCometCatalog(const std::string& path, const std::vector<CometElements>& list,
                                             const CatalogOtherLines& others);

// ---------------------------------------------------------- MPC formats

// Packed epoch "K205V" → 2020, 5, 31; "K107N" → 2010, 7, 23. Nothing when
// malformed.
struct PackedDate {
    int year = 0, month = 0, day = 0;
};
std::optional<PackedDate> UnpackEpoch(std::string_view packed);
// Packed designations: a packed number ("00001", "A0345" = 100345,
// "~0000" = 620000) → the number; a packed provisional designation
// ("K14A00A" = "2014 AA", "J95X00A" = "1995 XA", "K07Tf8A" = "2007 TA418")
// → the text. Comets' packed forms ("J95O010" = "1995 O1") likewise.
std::optional<int> UnpackNumber(std::string_view packed);
std::optional<std::string> UnpackProvisional(std::string_view packed);

// One MPCORB line (at least 103 characters: the elements; the readable
// designation at columns 166–193 when present). False with the reason
// otherwise. H blank or zero reads as 49.9 (unknown), G as 0.15.
bool ParseMpcorbLine(std::string_view line, AsteroidElements& out, std::string* why = nullptr);
// One line of the MPC's comet format ("CometEls.txt"). False with the reason.
bool ParseMpcCometLine(std::string_view line, CometElements& out, std::string* why = nullptr);

// Reading a whole MPCORB file: lines before the "-----" rule are a header
// when the file has one; a file without it starts at its first line.
// Lines that are blank are skipped silently; others that cannot be read
// are refused and named. The asteroid filter applies. `progress` is asked
// now and then (every few thousand lines) and may cancel.
CatalogReadResult ImportMpcorb(std::string_view text, const AsteroidFilter& filter, std::vector<AsteroidElements>& out,
                               const ProgressFn& progress = {});
CatalogReadResult ImportMpcComets(std::string_view text, const CometFilter& filter, std::vector<CometElements>& out,
                                  const ProgressFn& progress = {});

// A single pasted line in any of the four formats (MPCORB, MPC comet, our
// asteroid and comet catalogue lines), recognised by its shape.
using PastedElements = std::variant<AsteroidElements, CometElements>;
std::optional<PastedElements> ParsePastedLine(std::string_view line, std::string* why = nullptr);

// What kind of element file a text is, by its first data lines.
enum class ElementFileKind { Unknown, Mpcorb, MpcComets, AsteroidCatalog, CometCatalog };
ElementFileKind DetectElementFile(std::string_view text);

// Puts `incoming` into `list`: an entry with the same number (numbered
// asteroids) or the same name replaces the old one in place, others are
// appended. Returns how many were replaced.
int MergeAsteroids(std::vector<AsteroidElements>& list, const std::vector<AsteroidElements>& incoming);
int MergeComets(std::vector<CometElements>& list, const std::vector<CometElements>& incoming);

}  // namespace orv
