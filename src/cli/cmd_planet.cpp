// orvane-cli planet: the apparent place of the Sun, the Moon or a planet at
// an instant, with its distances, light time, phase, elongation, apparent
// diameter and magnitude.

#include <QJsonObject>
#include <QString>

#include <cmath>
#include <cstdio>
#include <ostream>
#include <string>

#include "cli/bodyargument.h"
#include "cli/cli.h"
#include "cli/options.h"
#include "observer/observer.h"
#include "solarsystem/planetephemeris.h"
#include "solarsystem/planets.h"
#include "solarsystem/planetsource.h"
#include "util/angles.h"

namespace orv::cli {

namespace {

int RunPlanet(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames}, {"topocentric"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    std::string bodyError;
    const std::optional<int> body = BodyArgument(ctx, bodyError);
    if (!body) return UsageError(ctx, bodyError);

    CObserverDoc doc;
    doc.LoadSettings(ctx.settings);
    std::string error;
    if (!ApplySiteOptions(ctx, doc, error)) return UsageError(ctx, error);
    if (!ApplyTimeOptions(ctx, doc, error)) return UsageError(ctx, error);
    const PlaceCentre centre = ctx.args.Has("topocentric") ? PlaceCentre::Topocentric : PlaceCentre::Geocentric;

    CPlanets planets;
    planets.LoadSettings(ctx.settings);
    const double jdTT = doc.JulianDateTDT();
    double ra = 0.0, dec = 0.0, km = 0.0;
    const PositionStatus status = *body == kBodyMoon ? planets.MoonPosition(doc, jdTT, ra, dec, km, centre)
                                                     : planets.ApparentPosition(doc, *body, jdTT, ra, dec, centre);
    if (status == PositionStatus::InvalidInput) return UsageError(ctx, "the instant cannot be computed");
    if (status != PositionStatus::Ok) {
        if (*body == kBodyPluto) return Fail(ctx, "no position source for Pluto is built in yet");
        return Fail(ctx, "the planetary series \"Data\\VSOP87.idx\" and \"Data\\VSOP87.dat\" are not installed "
                         "(tools/build-data.sh builds them)");
    }
    const PlanetRecord& r = planets.Record(*body);
    double raJ2000 = 0.0, decJ2000 = 0.0;
    DateToJ2000(doc, jdTT, ra, dec, raJ2000, decJ2000);
    const bool moon = *body == kBodyMoon;
    const double grs = planets.GreatRedSpotLongitudeDeg();
    const BodyCircumstances circumstances = ComputeCircumstances(doc, *body, raJ2000, decJ2000, grs);
    const double distanceAU = moon ? r.earthDistance / kAstronomicalUnitKmIAU2012 : r.earthDistance;

    if (ctx.json) {
        QJsonObject o;
        o["body"] = QString::fromLatin1(BodyName(*body).data(), static_cast<int>(BodyName(*body).size()));
        o["centre"] = centre == PlaceCentre::Topocentric ? "topocentric" : "geocentric";
        o["site"] = QString::fromStdString(doc.SiteName());
        o["jdUT"] = doc.JulianDate();
        o["jdTT"] = jdTT;
        o["raDeg"] = ra * kDegPerRad;
        o["decDeg"] = dec * kDegPerRad;
        o["ra"] = QString::fromStdString(FormatHms(ra, 3));
        o["dec"] = QString::fromStdString(FormatDms(dec, 2, true));
        o["raJ2000Deg"] = raJ2000 * kDegPerRad;
        o["decJ2000Deg"] = decJ2000 * kDegPerRad;
        o["distanceAU"] = distanceAU;
        o["distanceKm"] = distanceAU * kAstronomicalUnitKmIAU2012;
        o["lightTimeSeconds"] = r.lightTimeSeconds;
        if (*body != kBodySun) {
            o["sunDistanceAU"] = r.sunDistanceAU;
            o["phaseAngleDeg"] = r.phaseAngleRad * kDegPerRad;
            o["illuminatedFraction"] = r.illuminatedFraction;
            o["elongationDeg"] = r.elongationRad * kDegPerRad;
        }
        o["apparentDiameterArcsec"] = r.apparentDiameterRad * kDegPerRad * 3600.0;
        o["magnitude"] = r.magnitudeCenti * 0.01;
        if (*body == kBodySaturn) {
            o["ringTiltDeg"] = r.ringTiltRad * kDegPerRad;
            o["ringDeltaUDeg"] = r.ringDeltaURad * kDegPerRad;
        }
        if (!circumstances.constellation.empty()) o["constellation"] = QString::fromStdString(circumstances.constellation);
        const RiseTransitSet& e = circumstances.events;
        if (e.riseJdUT) o["riseJdUT"] = *e.riseJdUT;
        if (e.transitJdUT) o["transitJdUT"] = *e.transitJdUT;
        if (e.setJdUT) o["setJdUT"] = *e.setJdUT;
        if (e.kind == RiseTransitSet::Kind::AlwaysAbove) o["alwaysAbove"] = true;
        if (e.kind == RiseTransitSet::Kind::AlwaysBelow) o["alwaysBelow"] = true;
        if (circumstances.cm1Deg) o[*body == kBodyMars ? "centralMeridianDeg" : "centralMeridian1Deg"] = *circumstances.cm1Deg;
        if (circumstances.cm2Deg) o["centralMeridian2Deg"] = *circumstances.cm2Deg;
        if (circumstances.grsTransitJdUT) {
            o["grsLongitudeDeg"] = grs;
            o["grsTransitJdUT"] = *circumstances.grsTransitJdUT;
        }
        if (circumstances.poleAngleDeg) o["poleAngleDeg"] = *circumstances.poleAngleDeg;
        PrintJson(ctx.out, o);
        return 0;
    }
    char line[160];
    ctx.out << BodyName(*body) << (centre == PlaceCentre::Topocentric ? ", topocentric" : ", geocentric")
            << " apparent place of date\n";
    std::snprintf(line, sizeof line, "JD UT %.6f   JD TT %.6f", doc.JulianDate(), jdTT);
    ctx.out << line << '\n';
    ctx.out << "RA          " << FormatHms(ra, 3) << '\n';
    ctx.out << "Dec         " << FormatDms(dec, 2, true) << '\n';
    if (moon)
        std::snprintf(line, sizeof line, "Distance    %.1f km (light time %.3f s)", r.earthDistance, r.lightTimeSeconds);
    else
        std::snprintf(line, sizeof line, "Distance    %.8f AU (light time %.2f s)", r.earthDistance, r.lightTimeSeconds);
    ctx.out << line << '\n';
    if (*body != kBodySun) {
        std::snprintf(line, sizeof line, "From Sun    %.8f AU", r.sunDistanceAU);
        ctx.out << line << '\n';
        std::snprintf(line, sizeof line, "Phase       %.1f%% lit, phase angle %.2f deg, elongation %.2f deg",
                      r.illuminatedFraction * 100.0, r.phaseAngleRad * kDegPerRad, r.elongationRad * kDegPerRad);
        ctx.out << line << '\n';
    }
    std::snprintf(line, sizeof line, "Diameter    %.2f arcsec", r.apparentDiameterRad * kDegPerRad * 3600.0);
    ctx.out << line << '\n';
    std::snprintf(line, sizeof line, "Magnitude   %.2f", r.magnitudeCenti * 0.01);
    ctx.out << line << '\n';
    // Constellation, the local day's rise, transit and set, and Jupiter's
    // central meridians and Great Red Spot: the read-out's lines.
    const std::string more = CircumstancesText(circumstances, *body, doc.LocalOffsetHours(), grs);
    std::size_t start = 0;
    while (start < more.size()) {
        std::size_t end = more.find('\n', start);
        if (end == std::string::npos) end = more.size();
        if (end > start) ctx.out << more.substr(start, end - start) << '\n';
        start = end + 1;
    }
    return 0;
}

}  // namespace

ORV_CLI_COMMAND("planet", "apparent place, distance, phase and magnitude of the Sun, the Moon or a planet",
                "orvane-cli planet NAME [--jd JD | --date YYYY-MM-DD --time HH:MM[:SS] [--utc]]\n"
                "                  [--lat DEG --lon DEG --height M --zone H --dst 0|1] [--topocentric] [--json]\n\n"
                "  NAME            Sun, Moon, Mercury, Venus, Mars, Jupiter, Saturn, Uranus, Neptune, Pluto (any case)\n"
                "  --jd JD         the instant as a Julian date (UT); --date/--time local at the zone unless --utc\n"
                "  --topocentric   the place seen from the site (diurnal parallax) rather than from the Earth's centre\n"
                "JSON keys: raDeg, decDeg (true equator and equinox of date), raJ2000Deg, decJ2000Deg, distanceAU,\n"
                "distanceKm, lightTimeSeconds, sunDistanceAU, phaseAngleDeg, illuminatedFraction, elongationDeg,\n"
                "apparentDiameterArcsec, magnitude, constellation, riseJdUT, transitJdUT, setJdUT (the local day's; alwaysAbove or\n"
                "alwaysBelow instead), poleAngleDeg; Mars centralMeridianDeg; Saturn also ringTiltDeg, ringDeltaUDeg; Jupiter centralMeridian1Deg,\n"
                "centralMeridian2Deg, grsLongitudeDeg (setting \"GRSLong\" of section \"Planet\") and grsTransitJdUT.\n",
                RunPlanet);

}  // namespace orv::cli
