// Cross-index lookups between Tycho-2 stars and other catalogues, and the
// variable-star and double-star tables. Each lookup opens its file, maps it,
// binary-searches it and closes it again: the files hold no state between
// lookups. A missing file, or a number that is not present, gives "not found"
// (−1 or nothing) without any message.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace orv {

class CTycho2Catalogue;

// Catalogues with a pair of 12-byte cross-index files ("hip.idx" and
// "t2hip.idx" and so on).
enum class CrossCatalogue { Hip, Sao, Hd, Ppm, Cd, Cpd, Bsc };

// "hip.idx", "sao.idx" …: the record number in "Tycho2.dat" of the star with
// catalogue number `number`, or −1.
std::int64_t FindStarByNumber(CrossCatalogue catalogue, std::int64_t number);
// The same, as the star's Tycho identifier (read from its record), or −1.
std::int64_t FindTychoIdByNumber(const CTycho2Catalogue& stars, CrossCatalogue catalogue, std::int64_t number);
// "t2hip.idx", "t2sao.idx" …: the other catalogue's number of the star with
// Tycho identifier `tychoId`, or −1.
std::int64_t FindNumberOfStar(CrossCatalogue catalogue, std::int64_t tychoId);

// Durchmusterung designations ("bd.idx", "t2bd.idx"): zone (degrees of
// declination, unsigned), the signed byte of the entry (the zone's sign) and
// the running number in the zone.
struct DurchmusterungNumber {
    std::uint8_t zone = 0;
    std::int8_t sign = 0;
    std::int16_t number = 0;
};
std::int64_t FindTychoIdByDurchmusterung(const DurchmusterungNumber& bd);
std::optional<DurchmusterungNumber> FindDurchmusterungOfStar(std::int64_t tychoId);

// A variable star of "gcvs.idx".
struct VariableStarInfo {
    std::string name;   // GCVS designation, "β Per"
    std::string type;   // variability type, "EA/SD"
    std::string band;   // photometric band of the magnitudes, "V"
    int maxMagCenti = 0;           // brightest, 0.01 mag
    std::optional<int> minMagCenti;  // faintest, 0.01 mag
    bool minIsLimit = false;        // the faint end is an upper limit
    double periodDays = 0.0;        // 0 = unknown
};
std::optional<VariableStarInfo> FindVariableStar(std::int64_t tychoId);

// A double star of "wds.idx": discoverer code and running number, text
// "%s %1d" (e.g. "Σ 1110"). `code` is empty when the pair's discoverer
// designation is not known.
struct DoubleStarInfo {
    std::string code;
    int number = 0;
    std::string Designation() const;
};
std::optional<DoubleStarInfo> FindDoubleStar(std::uint32_t recordNumber);

}  // namespace orv
