#include "map/skyevents.h"

#include <cmath>
#include <cstdio>

#include "util/angles.h"

namespace orv {

namespace {

std::string Clock(double jdUT, double localOffsetHours)
{
    // Rounded to the minute.
    const CivilDateTime t = CivilFromJulianDate(std::round((jdUT + localOffsetHours / 24.0) * 1440.0) / 1440.0);
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d", t.hour, t.minute);
    return text;
}

}  // namespace

LocalHorizonFn LocalHorizonOf(std::shared_ptr<const HorizonProfile> profile)
{
    if (!profile) return {};
    return [profile = std::move(profile)](double azimuthRad) { return HorizonAltitudeRad(*profile, azimuthRad); };
}

double LocalDayStartJdUT(const CObserverDoc& site, double jdUT)
{
    const double offsetDays = site.LocalOffsetHours() / 24.0;
    // Julian dates begin at noon: local midnight is where jd + offset ends in .5.
    return std::floor(jdUT + offsetDays + 0.5) - 0.5 - offsetDays;
}

std::string EphemerisTimeBase(double localOffsetHours)
{
    const int minutes = static_cast<int>(std::lround(std::fabs(localOffsetHours) * 60.0));
    if (minutes == 0) return "UT";
    char text[24];
    std::snprintf(text, sizeof text, "UT%c%d", localOffsetHours < 0.0 ? '-' : '+', minutes / 60);
    std::string out = text;
    if (minutes % 60 != 0) {
        std::snprintf(text, sizeof text, ":%02d", minutes % 60);
        out += text;
    }
    return out;
}

RiseTransitSet FixedObjectRiseTransitSet(const CObserverDoc& site, double raJ2000Rad, double decJ2000Rad,
                                         double jdUTDayStart, const LocalHorizonFn& horizon)
{
    RiseTransitSet invalid;
    invalid.kind = RiseTransitSet::Kind::InvalidInput;
    if (!std::isfinite(raJ2000Rad) || !std::isfinite(decJ2000Rad) || !std::isfinite(jdUTDayStart)) return invalid;
    // One place of date for the whole day: precession and nutation change it
    // by well under an arcsecond in a day.
    const double jdUTMid = jdUTDayStart + 0.5;
    const double jdTT = jdUTMid + DeltaTSeconds(jdUTMid) / 86400.0;
    double v[3] = {std::cos(decJ2000Rad) * std::cos(raJ2000Rad), std::cos(decJ2000Rad) * std::sin(raJ2000Rad),
                   std::sin(decJ2000Rad)};
    site.PrecessXYZ(v, jdTT, -1);
    site.NutateXYZ(v, jdTT);
    const double ra = mod2pi(std::atan2(v[1], v[0]));
    const double dec = std::atan2(v[2], std::hypot(v[0], v[1]));
    const ApparentPositionFn position = [ra, dec](double, double& raOut, double& decOut) {
        raOut = ra;
        decOut = dec;
    };
    return site.FindRiseTransitSet(position, jdUTDayStart, 1.0, kRiseAltitudeStarRad, horizon);
}

std::string RiseTransitSetText(const RiseTransitSet& e, double localOffsetHours, bool overLocalHorizon)
{
    if (e.kind == RiseTransitSet::Kind::InvalidInput) return {};
    auto at = [&](const std::optional<double>& jd) { return jd ? Clock(*jd, localOffsetHours) : std::string("--:--"); };
    std::string text;
    if (e.kind == RiseTransitSet::Kind::AlwaysAbove)
        text = "\nAbove the horizon all day; transit " + at(e.transitJdUT);
    else if (e.kind == RiseTransitSet::Kind::AlwaysBelow)
        text = "\nBelow the horizon all day";
    else
        text = "\nRise " + at(e.riseJdUT) + "  Transit " + at(e.transitJdUT) + "  Set " + at(e.setJdUT);
    text += " (" + EphemerisTimeBase(localOffsetHours) + (overLocalHorizon ? ", local horizon)" : ")");
    return text;
}

std::string FixedObjectEventsText(const DescribeRequest& request, double raJ2000Rad, double decJ2000Rad)
{
    if (!request.hasSite) return {};
    CObserverDoc site;
    site.SetSite("", request.latitudeRad, request.longitudeRad, request.heightM);
    site.SetTimeZone(request.localOffsetHours, false);
    site.SetJulianDate(request.jdUT);
    const RiseTransitSet e = FixedObjectRiseTransitSet(site, raJ2000Rad, decJ2000Rad,
                                                       LocalDayStartJdUT(site, request.jdUT),
                                                       LocalHorizonOf(request.horizon));
    return RiseTransitSetText(e, request.localOffsetHours, request.horizon != nullptr);
}

}  // namespace orv
