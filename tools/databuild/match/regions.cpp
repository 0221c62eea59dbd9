#include "match/regions.h"

#include <algorithm>
#include <array>
#include <climits>

#include "common/sky.h"
#include "common/textfields.h"

namespace orv::databuild {

using namespace orv::tycho2;

bool AssembleCatalogue(std::vector<BuildStar> stars, const std::vector<IndexLine>& index, Catalogue& out,
                       std::string& error)
{
    if (index.size() != static_cast<std::size_t>(kRegionCount) + 1)
        return Fail(error, "the region index must have 9538 lines, not " + std::to_string(index.size()));
    if (stars.size() > 0xFFFFFFFFu) return Fail(error, "too many stars");
    for (const auto& s : stars)
        if (s.tyc1 < 1 || s.tyc1 > kRegionCount) return Fail(error, "star with a region outside 1..9537");

    std::sort(stars.begin(), stars.end(), [](const BuildStar& a, const BuildStar& b) {
        if (a.tyc1 != b.tyc1) return a.tyc1 < b.tyc1;
        if (a.magCenti != b.magCenti) return a.magCenti < b.magCenti;
        if (a.tyc2 != b.tyc2) return a.tyc2 < b.tyc2;
        return a.tyc3 < b.tyc3;
    });

    out.regionStart.assign(kRegionCount + 1, 0);
    out.regionBrightest.assign(kRegionCount, INT16_MAX);
    out.regionBounds.resize(kRegionCount);
    std::vector<std::array<std::int32_t, 4>> centi(kRegionCount);  // raMin, raMax, decMin, decMax in 0.01°
    for (int r = 0; r < kRegionCount; ++r)
        centi[r] = {index[r].raMinCentiDeg, index[r].raMaxCentiDeg, index[r].decMinCentiDeg,
                    index[r].decMaxCentiDeg};
    std::vector<bool> widened(kRegionCount, false);

    std::size_t i = 0;
    for (int r = 0; r < kRegionCount; ++r) {
        out.regionStart[r] = static_cast<std::uint32_t>(i);
        if (i < stars.size() && stars[i].tyc1 == r + 1) out.regionBrightest[r] = stars[i].magCenti;
        auto& box = centi[r];
        for (; i < stars.size() && stars[i].tyc1 == r + 1; ++i) {
            // Position in 0.01° as an exact fraction of mas (1 unit = 36,000 mas).
            const std::int64_t raMas = stars[i].raMas;
            const std::int64_t decMas = stars[i].decMas;
            // The right ascension may sit on the far side of 0h from the box
            // (a box from −0.01° takes a star at 359.995°): use the turn
            // closest to the box.
            std::int64_t best = raMas;
            std::int64_t bestGap = INT64_MAX;
            for (const std::int64_t cand : {raMas, raMas - kFullCircleMas, raMas + kFullCircleMas}) {
                const std::int64_t lo = static_cast<std::int64_t>(box[0]) * 36000;
                const std::int64_t hi = static_cast<std::int64_t>(box[1]) * 36000;
                const std::int64_t gap = cand < lo ? lo - cand : (cand > hi ? cand - hi : 0);
                if (gap < bestGap) {
                    bestGap = gap;
                    best = cand;
                }
            }
            auto floorDiv = [](std::int64_t a, std::int64_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); };
            auto ceilDiv = [&](std::int64_t a, std::int64_t b) { return -floorDiv(-a, b); };
            const auto raLo = static_cast<std::int32_t>(floorDiv(best, 36000));
            const auto raHi = static_cast<std::int32_t>(ceilDiv(best, 36000));
            const auto decLo = static_cast<std::int32_t>(floorDiv(decMas, 36000));
            const auto decHi = static_cast<std::int32_t>(ceilDiv(decMas, 36000));
            if (raLo < box[0]) box[0] = raLo, widened[r] = true;
            if (raHi > box[1]) box[1] = raHi, widened[r] = true;
            if (decLo < box[2]) box[2] = decLo, widened[r] = true;
            if (decHi > box[3]) box[3] = decHi, widened[r] = true;
        }
        // 0.01° = 360 units of 0.1″.
        out.regionBounds[r] = RegionBounds{box[0] * 360, box[1] * 360, box[2] * 360, box[3] * 360};
    }
    out.regionStart[kRegionCount] = static_cast<std::uint32_t>(stars.size());
    out.widenedRegions = static_cast<int>(std::count(widened.begin(), widened.end(), true));
    out.stars = std::move(stars);
    return true;
}

}  // namespace orv::databuild
