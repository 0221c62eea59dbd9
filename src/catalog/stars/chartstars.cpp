#include "catalog/stars/chartstars.h"

#include <cmath>
#include <cstring>

#include "map/chartframe.h"
#include "map/coordinates.h"
#include "observer/observer.h"
#include "util/binaryio.h"

namespace orv {

using namespace tycho2;

std::uint8_t PackEntryFlags(std::uint16_t f)
{
    std::uint8_t out = 0;
    if (f & flag::kBayerFlamsteed) out |= entryflag::kBayerFlamsteed;
    if (f & flag::kProperName) out |= entryflag::kProperName;
    if (f & flag::kVariable) out |= entryflag::kVariable;
    if (f & flag::kBrightStar) out |= entryflag::kBrightStar;
    if (f & flag::kDouble) out |= entryflag::kDouble;
    return out;
}

SkyBox BoxFromRegion(const SkyRegion& region)
{
    SkyBox box;
    box.decMinRad = region.latLowRad;
    box.decMaxRad = region.latHighRad;
    if (region.wholeCircle) {
        box.raMinRad = 0.0;
        box.raMaxRad = kTwoPi;
    } else {
        box.raMinRad = region.lonLowRad;
        box.raMaxRad = region.lonHighRad;
    }
    return box;
}

SkyBox WidenBoxForMotion(const SkyBox& box, double years, double centreDecJ2000Rad)
{
    // 10″ per year: π/180 × |t| / 360 radians.
    const double w = kRadPerDeg * std::fabs(years) / 360.0;
    SkyBox out = box;
    out.decMinRad = std::max(box.decMinRad - w, -kHalfPi);
    out.decMaxRad = std::min(box.decMaxRad + w, kHalfPi);
    // The allowance in right ascension is w · cos δ (multiplied, not divided:
    // it shrinks towards the poles, as the catalogue's region scheme allows).
    const double allowance = w * std::cos(centreDecJ2000Rad);
    const double width = box.raMinRad <= box.raMaxRad ? box.raMaxRad - box.raMinRad
                                                      : box.raMaxRad + kTwoPi - box.raMinRad;
    if (width + 2.0 * allowance >= kTwoPi) {
        out.raMinRad = 0.0;
        out.raMaxRad = kTwoPi;
    } else if (allowance > 0.0) {
        out.raMinRad = mod2pi(box.raMinRad - allowance);
        out.raMaxRad = mod2pi(box.raMaxRad + allowance);
    }
    return out;
}

bool BoxContains(const SkyBox& box, double raRad, double decRad)
{
    if (decRad < box.decMinRad || decRad > box.decMaxRad) return false;
    if (box.raMinRad <= box.raMaxRad) return raRad >= box.raMinRad && raRad <= box.raMaxRad;
    return raRad >= box.raMinRad || raRad <= box.raMaxRad;
}

std::size_t GatherChartStars(const CTycho2Catalogue& catalogue, const CChartFrame& frame,
                             const StarGatherRequest& request, CChartStars& chart)
{
    if (request.mode == StarGather::FullRedraw) chart.stars.clear();
    if (!catalogue.IsOpen()) return 0;
    const CObserverDoc& observer = frame.Observer();

    // 1-3. Years from J2000 on the civil time scale for the allowance, then
    // the region search on the widened box.
    const double yearsUT = (observer.JulianDate() - 2451545.0) / 365.25;
    if (request.regionSearch == RegionSearch::Search) {
        const SkyBox widened = WidenBoxForMotion(request.box, yearsUT, request.centreDecJ2000Rad);
        catalogue.FindRegions(widened, chart.regions);
    }

    // 4. The motion itself on dynamical time.
    const double years = (observer.JulianDateTDT() - 2451545.0) / 365.25;
    const bool narrow = request.fieldRadiusRad < 5.0 * kRadPerDeg;
    const EpochPath path = narrow ? EpochPath::Apparent : EpochPath::Rigid;
    const double cosField = std::cos(request.fieldRadiusRad);
    const bool extending = request.mode == StarGather::ExtendFainter;

    // 5. The walk.
    std::size_t added = 0;
    CStarWalk walk(catalogue, chart.regions, request.magLimitCenti);
    while (const std::uint8_t* r = walk.NextStar()) {
        const std::int16_t mag = LoadLE<std::int16_t>(r + rec::kMag);
        if (mag > request.magLimitCenti) continue;
        if (extending && mag <= request.previousLimitCenti) continue;  // already on the chart

        // 6-7. Place at the date; outside the unwidened box → not visible.
        double ra = 0.0, dec = 0.0;
        StarPositionAt(r, years, ra, dec);
        if (!BoxContains(request.box, ra, dec)) continue;

        // 8. To the chart's frame, the field cut for narrow charts, and the projection.
        double v[3];
        frame.CatalogueToFrame(ra, dec, path, v);
        if (narrow && frame.CosFromCentre(v) < cosField) continue;
        ScreenPoint s;
        if (!frame.ToScreen(v, s)) continue;

        // 9. The entry.
        TychoStarEntry e;
        const std::uint16_t flags = LoadLE<std::uint16_t>(r + rec::kFlags);
        e.tyc1 = LoadLE<std::int16_t>(r + rec::kTyc1);
        e.tyc2 = LoadLE<std::uint16_t>(r + rec::kTyc2);
        e.tyc3 = static_cast<std::uint8_t>(flags & flag::kTyc3Mask);
        e.flags = PackEntryFlags(flags);
        e.magCenti = mag;
        e.bvMilli = LoadLE<std::int16_t>(r + rec::kBV);
        e.distanceLy = DistanceLightYears(LoadLE<float>(r + rec::kParallax));
        e.record = walk.RecordNumber();
        e.x = s.x;
        e.y = s.y;
        e.raJ2000Rad = ra;
        e.decJ2000Rad = dec;
        if (flags & flag::kProperName) {
            const std::string_view name = catalogue.ProperName(e.TychoId());
            if (!name.empty()) std::memcpy(e.properName, name.data(), std::min(name.size(), sizeof e.properName - 1));
        }
        chart.stars.push_back(e);
        ++added;
    }
    return added;
}

}  // namespace orv
