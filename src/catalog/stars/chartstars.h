// Gathering the Tycho-2 stars of a chart: the region search on the chart's
// box, the brightest-first walk down to the limiting magnitude, proper motion
// to the chart's date, the cut to the visible field and the projection. The
// result is the chart's Tycho star list that the star display draws.
#pragma once

#include <cstdint>
#include <vector>

#include "catalog/stars/tycho2catalogue.h"

namespace orv {

class CChartFrame;
struct SkyRegion;

// The entry flags: record flag bits 7, 8, 10, 11 and 13 packed in that order.
namespace entryflag {
inline constexpr std::uint8_t kBayerFlamsteed = 1u << 0;  // record bit 7
inline constexpr std::uint8_t kProperName = 1u << 1;      // record bit 8
inline constexpr std::uint8_t kVariable = 1u << 2;        // record bit 10
inline constexpr std::uint8_t kBrightStar = 1u << 3;      // record bit 11 (has an HR number)
inline constexpr std::uint8_t kDouble = 1u << 4;          // record bit 13
}  // namespace entryflag

std::uint8_t PackEntryFlags(std::uint16_t recordFlags);

// One visible Tycho-2 star of a chart.
struct TychoStarEntry {
    std::int16_t tyc1 = 0;
    std::uint16_t tyc2 = 0;
    std::uint8_t tyc3 = 0;
    std::uint8_t flags = 0;           // entryflag bits
    std::int16_t magCenti = 0;        // 0.01 mag
    std::int16_t bvMilli = 0;         // the record's field at offset 6: B−V, 0.001 mag, −9999 unknown
    std::int32_t distanceLy = 0;      // light years, 0 = unknown
    std::uint32_t record = 0;         // record number in "Tycho2.dat"
    double x = 0.0;                   // chart position, pixels
    double y = 0.0;
    double raJ2000Rad = 0.0;          // place at the chart's date (space motion applied), J2000 equator
    double decJ2000Rad = 0.0;
    char properName[tycho2::kNameMaxBytes + 1] = {};  // when entryflag::kProperName

    std::int64_t TychoId() const { return tycho2::TychoId(tyc1, tyc2, tyc3); }
};

// A chart's region list and Tycho star list, kept from redraw to redraw.
struct CChartStars {
    std::vector<int> regions;
    std::vector<TychoStarEntry> stars;
};

enum class StarGather {
    FullRedraw,     // the list is rebuilt
    ExtendFainter,  // the chart is extended to a fainter limit: only stars fainter
                    // than the previous limit are added
};

enum class RegionSearch {
    Search,         // search the regions of the (widened) box
    ReusePrevious,  // keep the chart's region list from the previous gathering
};

struct StarGatherRequest {
    SkyBox box;                       // J2000 box of the visible region (unwidened)
    double centreDecJ2000Rad = 0.0;   // chart centre's declination, for the RA allowance
    double fieldRadiusRad = 0.0;      // angular radius of the visible field
    int magLimitCenti = 600;          // faintest magnitude, 0.01 mag
    int previousLimitCenti = 0;       // the limit already on the chart (ExtendFainter)
    StarGather mode = StarGather::FullRedraw;
    RegionSearch regionSearch = RegionSearch::Search;
};

// The J2000 box of a chart region (CCoordinates::StoredCentreRegion).
SkyBox BoxFromRegion(const SkyRegion& region);

// Widens `box` by the largest motion the catalogue allows in |years| from
// J2000 (10″ a year): declinations by w, clamped at the poles; right
// ascensions by w·cos(centre declination), the whole circle when the box
// becomes 2π wide.
SkyBox WidenBoxForMotion(const SkyBox& box, double years, double centreDecJ2000Rad);

// True when (raRad, decRad) lies inside the box (right ascension wrapping
// through 0h when the box does).
bool BoxContains(const SkyBox& box, double raRad, double decRad);

// Fills (FullRedraw) or extends (ExtendFainter) `chart` with the Tycho-2 stars
// of the request, placed through `frame`: below a field radius of 5° each
// star is brought to the apparent place of date and kept only within the
// field radius of the centre; from 5° up the whole sky is turned rigidly to
// the date (precession and nutation), aberration being far below a pixel.
// Returns the number of stars added. Nothing is added when the catalogue is
// closed.
std::size_t GatherChartStars(const CTycho2Catalogue& catalogue, const CChartFrame& frame,
                             const StarGatherRequest& request, CChartStars& chart);

}  // namespace orv
