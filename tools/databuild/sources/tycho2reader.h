// Reader of the Tycho-2 catalogue (Høg et al. 2000, A&A 355, L27; ESA/CDS
// I/259): the main catalogue "tyc2.dat" (in its 20 parts or whole), supplement
// 1 "suppl_1.dat" (Hipparcos and Tycho-1 stars missing from the main
// catalogue) and the region index "index.dat". Column numbers are those of
// the catalogue's ReadMe.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/progress.h"
#include "model/buildstar.h"

namespace orv::databuild {

// Magnitude and colour on the Johnson system from the Tycho bands.
struct Photometry {
    std::int16_t magCenti = 0;
    std::int16_t bvMilli = tycho2::kNoColour;
    std::uint16_t basis = tycho2::origin::kMagFromBtVt;  // tycho2::origin::kMag…
};

// V = VT − 0.090 (BT − VT), B − V = 0.850 (BT − VT) (Tycho-2 ReadMe, note 7;
// ESA SP-1200 vol. 1 sect. 1.3). With one band only that band stands in for V
// and the colour is unknown. Returns nothing when neither band is given.
std::optional<Photometry> TychoToJohnson(std::optional<double> btMag, std::optional<double> vtMag);

// Parses one line of "tyc2.dat" (206 bytes, fixed columns). False with a
// reason in `error` when a field is malformed or out of range.
bool ParseMainLine(std::string_view line, BuildStar& star, std::string& error);
// Parses one line of "suppl_1.dat" (122 bytes). Positions there are at epoch
// J1991.25 and are carried to J2000 along the proper motion.
bool ParseSupplementLine(std::string_view line, BuildStar& star, std::string& error);

// One line of "index.dat": 1-based first records in tyc2.dat and suppl_1.dat,
// and the region's bounds in 0.01° (safely rounded: minima down, maxima up).
struct IndexLine {
    std::int64_t firstMainRecord = 0;
    std::int64_t firstSupplRecord = 0;
    std::int32_t raMinCentiDeg = 0;
    std::int32_t raMaxCentiDeg = 0;
    std::int32_t decMinCentiDeg = 0;
    std::int32_t decMaxCentiDeg = 0;
};
bool ParseIndexLine(std::string_view line, IndexLine& out, std::string& error);

// The catalogue as read: the stars of the main catalogue then those of
// supplement 1, each in file order, and the 9,538 lines of the region index
// (the last one the end sentinel).
struct Tycho2Source {
    std::vector<BuildStar> stars;
    std::vector<IndexLine> index;
};

// Reads the folder `dir` (tyc2.dat.00-19 or tyc2.dat, suppl_1.dat,
// index.dat). Every record is checked against the range of records that
// index.dat gives its region, and the record counts against index.dat's
// totals, so that a damaged or truncated download is refused. False with a
// message in `error`.
bool ReadTycho2(const std::string& dir, Tycho2Source& out, const Progress& progress, std::string& error);

}  // namespace orv::databuild
