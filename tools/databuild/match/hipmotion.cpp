#include "match/hipmotion.h"

#include "common/sky.h"

namespace orv::databuild {

using namespace orv::tycho2;

std::size_t ApplyHipparcosMotion(std::vector<BuildStar>& stars, const HipData& hip)
{
    std::size_t count = 0;
    for (auto& s : stars) {
        if (!(s.origin & origin::kObservedPosition) || s.hip == 0) continue;
        const auto it = hip.properMotion.find(s.hip);
        if (it == hip.properMotion.end()) continue;
        const auto [pmRaStar, pmDec] = it->second;
        double raDeg = s.raMas / kMasPerDeg;
        double decDeg = s.decMas / kMasPerDeg;
        // The two coordinates were observed at slightly different epochs; the
        // mean epoch is used for the carry (they differ by under 0.3 yr, so
        // by under 0.3 × μ, a few mas for all but a handful of stars).
        const double epoch = 0.5 * (s.observedEpochRaYr + s.observedEpochDecYr);
        MoveAlongProperMotion(raDeg, decDeg, pmRaStar, pmDec, 2000.0 - epoch);
        s.raMas = RaDegToMas(raDeg);
        s.decMas = DegToMas(decDeg);
        s.pmRaMasPerYr = CoordinateRate(pmRaStar, decDeg);
        s.pmDecMasPerYr = pmDec;
        s.origin |= origin::kHipparcosMotion;
        ++count;
    }
    return count;
}

}  // namespace orv::databuild
