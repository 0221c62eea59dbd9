#include "solarsystem/planetephemeris.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "app/strings.h"
#include "catalog/constellations/constellationfiles.h"
#include "solarsystem/physephem.h"
#include "solarsystem/planetmoons.h"
#include "solarsystem/planetsource.h"
#include "util/angles.h"

namespace orv {

namespace {

constexpr double kSecondsPerDay = 86400.0;

// Geocentric apparent place of a body at jdUT; the Moon's distance in km.
bool GeocentricPlace(CPlanets& planets, const CObserverDoc& site, int body, double jdUT, double& ra, double& dec)
{
    const double jdTT = jdUT + site.DeltaT(jdUT) / kSecondsPerDay;
    if (body == kBodyMoon) {
        double km = 0.0;
        return planets.MoonPosition(site, jdTT, ra, dec, km, PlaceCentre::Geocentric) == PositionStatus::Ok;
    }
    return planets.ApparentPosition(site, body, jdTT, ra, dec, PlaceCentre::Geocentric) == PositionStatus::Ok;
}

std::string Format(const char* format, auto... values)
{
    char text[128];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

constexpr const char* kMonths[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// "DD MMM YYYY hh:mm" in civil time; minutes rounded.
std::string FormatDate(double jdUT, double localOffsetHours)
{
    const CivilDateTime t = CivilFromJulianDate(std::round((jdUT + localOffsetHours / 24.0) * 1440.0) / 1440.0);
    return Format("%02d %s %4d %02d:%02d", t.day, kMonths[std::clamp(t.month, 1, 12) - 1], t.year, t.hour, t.minute);
}

std::string FormatClock(double jdUT, double localOffsetHours)
{
    const CivilDateTime t = CivilFromJulianDate(std::round((jdUT + localOffsetHours / 24.0) * 1440.0) / 1440.0);
    return Format("%02d:%02d", t.hour, t.minute);
}

ResultCell EventCell(const std::optional<double>& jdUT, RiseTransitSet::Kind kind, double localOffsetHours)
{
    if (jdUT) return ResultCell::Number(*jdUT, FormatClock(*jdUT, localOffsetHours));
    if (kind == RiseTransitSet::Kind::AlwaysAbove) return ResultCell("up");
    if (kind == RiseTransitSet::Kind::AlwaysBelow) return ResultCell("down");
    return ResultCell("--");
}

std::string BodyText(int body) { return std::string(BodyName(body)); }

}  // namespace

RiseTransitSet BodyRiseTransitSet(const CObserverDoc& site, int body, double jdUTDayStart,
                                  const LocalHorizonFn& horizon)
{
    RiseTransitSet invalid;
    invalid.kind = RiseTransitSet::Kind::InvalidInput;
    if (body < 0 || body >= kBodyCount || !std::isfinite(jdUTDayStart)) return invalid;
    CPlanets planets;
    double ra[3], dec[3];
    double moonKm = 0.0;
    for (int k = 0; k < 3; ++k) {
        if (!GeocentricPlace(planets, site, body, jdUTDayStart + 0.5 * k, ra[k], dec[k])) return invalid;
        if (body == kBodyMoon && k == 1) moonKm = planets.Record(kBodyMoon).earthDistance;
    }
    // Unwrap the right ascension through 0h.
    for (int k = 1; k < 3; ++k) {
        while (ra[k] - ra[k - 1] > kPi) ra[k] -= 2.0 * kPi;
        while (ra[k] - ra[k - 1] < -kPi) ra[k] += 2.0 * kPi;
    }
    // Interpolation through the three places, u = 0, ½, 1 over the day.
    auto quadratic = [](const double f[3], double u) {
        const double a = f[0];
        const double b = -3.0 * f[0] + 4.0 * f[1] - f[2];
        const double c = 2.0 * f[0] - 4.0 * f[1] + 2.0 * f[2];
        return a + u * (b + u * c);
    };
    const ApparentPositionFn position = [&](double jdUT, double& raOut, double& decOut) {
        const double u = jdUT - jdUTDayStart;
        raOut = quadratic(ra, u);
        decOut = quadratic(dec, u);
    };
    double h0 = kRiseAltitudeStarRad;
    if (body == kBodySun) h0 = kRiseAltitudeSunRad;
    if (body == kBodyMoon) h0 = 0.7275 * std::asin(6378.14 / moonKm) + kRiseAltitudeStarRad;
    return site.FindRiseTransitSet(position, jdUTDayStart, 1.0, h0, horizon);
}

std::string ConstellationAbbreviationAt(const CObserverDoc& observer, double raJ2000Rad, double decJ2000Rad)
{
    // The boundaries are read once for the process (a few hundred strips).
    static CConstellationCatalogue catalogue;
    static const bool loaded = (catalogue.LoadBoundaries(), catalogue.LoadNames(), true);
    (void)loaded;
    const int c = catalogue.ConstellationAt(observer, raJ2000Rad, decJ2000Rad);
    return c < 0 ? std::string() : catalogue.Abbreviation(c);
}

BodyCircumstances ComputeCircumstances(const CObserverDoc& site, int body, double raJ2000Rad, double decJ2000Rad,
                                       double grsLongitudeDeg, std::shared_ptr<const HorizonProfile> horizon)
{
    BodyCircumstances c;
    c.constellation = ConstellationAbbreviationAt(site, raJ2000Rad, decJ2000Rad);
    c.overLocalHorizon = horizon != nullptr;
    c.events = BodyRiseTransitSet(site, body, LocalDayStartJdUT(site, site.JulianDate()), LocalHorizonOf(std::move(horizon)));
    if (body != kBodyJupiter && body != kBodySaturn && body != kBodyMars) return c;
    CPlanets planets;
    const double jdTT = site.JulianDateTDT();
    const double deltaTDays = site.DeltaT() / kSecondsPerDay;
    if (body == kBodyMars) {
        if (const auto m = MarsPhysicalMeeus(planets, site, jdTT)) {
            c.cm1Deg = m->centralMeridianRad * kDegPerRad;
            c.poleAngleDeg = m->poleAngleRad * kDegPerRad;
        }
    } else if (body == kBodyJupiter) {
        if (const auto j = JupiterPhysicalMeeus(planets, site, jdTT)) {
            c.cm1Deg = j->centralMeridian1Rad * kDegPerRad;
            c.cm2Deg = j->centralMeridian2Rad * kDegPerRad;
            c.poleAngleDeg = j->poleAngleRad * kDegPerRad;
        }
        if (const auto t = NextGreatRedSpotTransitJdTT(planets, site, jdTT, grsLongitudeDeg))
            c.grsTransitJdUT = *t - deltaTDays;
    } else if (const auto s = SaturnRingViewMeeus(planets, site, jdTT)) {
        double p = s->poleAngleRad * kDegPerRad;
        if (p < 0.0) p += 360.0;
        c.poleAngleDeg = p;
    }
    return c;
}

std::string CircumstancesText(const BodyCircumstances& c, int body, double localOffsetHours, double grsLongitudeDeg)
{
    std::string text;
    if (!c.constellation.empty()) text += "\nConstellation: " + c.constellation;
    text += RiseTransitSetText(c.events, localOffsetHours, c.overLocalHorizon);
    if (c.cm1Deg && c.cm2Deg)
        text += Format("\nCentral meridian: System I %.1f\xC2\xB0, System II %.1f\xC2\xB0", *c.cm1Deg, *c.cm2Deg);
    else if (c.cm1Deg)
        text += Format("\nCentral meridian: %.1f\xC2\xB0", *c.cm1Deg);
    if (body == kBodyJupiter && c.grsTransitJdUT)
        text += Format("\nGreat Red Spot (%.1f\xC2\xB0) transits ", grsLongitudeDeg) +
                FormatDate(*c.grsTransitJdUT, localOffsetHours);
    if (c.poleAngleDeg) text += Format("\nPole position angle: %.1f\xC2\xB0", *c.poleAngleDeg);
    return text;
}

EphemerisStatus ComputeEphemeris(const CObserverDoc& site, const EphemerisRequest& request,
                                 std::vector<EphemerisRow>& rows, const ProgressFn& progress)
{
    rows.clear();
    if (request.body < 0 || request.body >= kBodyCount || !std::isfinite(request.jdUTFrom) ||
        !std::isfinite(request.jdUTTo) || !std::isfinite(request.stepDays) || request.stepDays < 1.0 / 1440.0 ||
        request.jdUTTo < request.jdUTFrom)
        return EphemerisStatus::InvalidInput;
    const double count = std::floor((request.jdUTTo - request.jdUTFrom) / request.stepDays + 1e-9) + 1.0;
    if (count > kEphemerisMaxRows) return EphemerisStatus::TooManyRows;
    const int n = static_cast<int>(count);
    rows.reserve(static_cast<std::size_t>(n));
    CPlanets planets;
    CObserverDoc observer = site;
    // One day's events serve every row of that day.
    double eventsDay = std::numeric_limits<double>::quiet_NaN();
    RiseTransitSet events;
    const LocalHorizonFn horizon = LocalHorizonOf(request.horizon);
    for (int i = 0; i < n; ++i) {
        if (progress && progress(static_cast<double>(i) / n) == ProgressAnswer::Cancel) return EphemerisStatus::Cancelled;
        EphemerisRow row;
        row.jdUT = request.jdUTFrom + i * request.stepDays;
        observer.SetJulianDate(row.jdUT);
        const double jdTT = observer.JulianDateTDT();
        PositionStatus status;
        if (request.body == kBodyMoon) {
            double km = 0.0;
            status = planets.MoonPosition(observer, jdTT, row.raRad, row.decRad, km, request.centre);
        } else {
            status = planets.ApparentPosition(observer, request.body, jdTT, row.raRad, row.decRad, request.centre);
        }
        if (status != PositionStatus::Ok) return EphemerisStatus::NoSource;
        const PlanetRecord& r = planets.Record(request.body);
        row.distanceAU = request.body == kBodyMoon ? r.earthDistance / kAstronomicalUnitKmIAU2012 : r.earthDistance;
        row.magnitude = r.magnitudeCenti * 0.01;
        row.elongationRad = r.elongationRad;
        row.phaseAngleRad = r.phaseAngleRad;
        row.illuminatedFraction = r.illuminatedFraction;
        row.apparentDiameterRad = r.apparentDiameterRad;
        double raJ2000 = 0.0, decJ2000 = 0.0;
        DateToJ2000(observer, jdTT, row.raRad, row.decRad, raJ2000, decJ2000);
        row.constellation = ConstellationAbbreviationAt(observer, raJ2000, decJ2000);
        const double day = LocalDayStartJdUT(site, row.jdUT);
        if (day != eventsDay) {
            events = BodyRiseTransitSet(site, request.body, day, horizon);
            eventsDay = day;
        }
        row.events = events;
        rows.push_back(std::move(row));
    }
    if (progress) progress(1.0);
    return EphemerisStatus::Ok;
}

std::string EphemerisStatusMessage(EphemerisStatus status, int body)
{
    switch (status) {
    case EphemerisStatus::Ok: return {};
    case EphemerisStatus::InvalidInput: return "The end date must not be before the start date, and the step must be at least a minute.";
    case EphemerisStatus::TooManyRows:
        return "The span holds more than " + std::to_string(kEphemerisMaxRows) + " steps: choose a longer step.";
    case EphemerisStatus::NoSource:
        if (body == kBodyPluto) return "No position source for Pluto is installed.";
        return "The planetary series \"Data\\VSOP87.idx\" and \"Data\\VSOP87.dat\" are not installed.";
    case EphemerisStatus::Cancelled: return "The computation was cancelled.";
    }
    return {};
}

ResultTable MakeEphemerisTable(int body, const std::vector<EphemerisRow>& rows, double localOffsetHours,
                               const std::string& siteName)
{
    ResultTable table;
    table.title = "Ephemeris of " + BodyText(body);
    if (!rows.empty()) {
        auto day = [&](double jd) {
            const std::string s = FormatDate(jd, localOffsetHours);
            return s.substr(0, 11);
        };
        table.title += " " + day(rows.front().jdUT) + " to " + day(rows.back().jdUT);
    }
    if (!siteName.empty()) table.title += " at " + siteName;
    table.timeBase = EphemerisTimeBase(localOffsetHours);
    table.reportHeadings = HeadingLine::Include;
    const bool moon = body == kBodyMoon;
    table.columns = {
        {"Date", "dateJdUT", "", CellAlign::Left, "00 May 0000 00:00  ", "DD MMM YYYY hh:mm",
         {"Date and time of the row; the cell's value is the Julian date (UT)."}},
        {"RA", "raDeg", "deg", CellAlign::Left, "00h00m00.0s  ", {},
         {"Apparent right ascension, true equator and equinox of date."}},
        {"Dec", "decDeg", "deg", CellAlign::Left, "+00\xC2\xB0" "00\xE2\x80\xB2" "00\xE2\x80\xB3  ", {},
         {"Apparent declination, true equator and equinox of date."}},
        {moon ? "Distance (km)" : "Distance (AU)", moon ? "distanceKm" : "distanceAU", moon ? "km" : "AU",
         CellAlign::Right, "00.000000  ", {}, {"Distance from the Earth (or the site, topocentric)."}},
        {"Mag", "magnitude", "mag", CellAlign::Right, "-00.00  ", {}, {"Visual magnitude."}},
        {"Elong.", "elongationDeg", "deg", CellAlign::Right, "000.0  ", {}, {"Angle Sun-Earth-body."}},
        {"Phase", "phaseAngleDeg", "deg", CellAlign::Right, "000.0  ", {}, {"Phase angle Sun-body-Earth."}},
        {"Illum. (%)", "illuminatedPercent", "%", CellAlign::Right, "100.0  ", {}, {"Illuminated fraction of the disc."}},
        {"Diam. (\")", "diameterArcsec", "arcsec", CellAlign::Right, "0000.00  ", {}, {"Apparent equatorial diameter."}},
        {"Const.", "constellation", "", CellAlign::Left, "Sgr  ", {}, {"Constellation (IAU boundaries)."}},
        {"Rise", "riseJdUT", "", CellAlign::Left, "00:00  ", {},
         {"Rise on the local day of the row; \"up\" or \"down\" all day, \"--\" none."}},
        {"Transit", "transitJdUT", "", CellAlign::Left, "00:00  ", {}, {"Upper transit on the local day of the row."}},
        {"Set", "setJdUT", "", CellAlign::Left, "00:00  ", {}, {"Set on the local day of the row."}},
    };
    for (const EphemerisRow& r : rows) {
        const double distance = moon ? r.distanceAU * kAstronomicalUnitKmIAU2012 : r.distanceAU;
        const double diameterArcsec = r.apparentDiameterRad * kDegPerRad * 3600.0;
        ResultRow row;
        row.cells = {
            ResultCell::Number(r.jdUT, FormatDate(r.jdUT, localOffsetHours)),
            ResultCell::Number(r.raRad * kDegPerRad, FormatHms(r.raRad, 1)),
            ResultCell::Number(r.decRad * kDegPerRad, FormatDms(r.decRad, 0)),
            ResultCell::Number(distance, moon ? Format("%.0f", distance) : Format("%.6f", distance)),
            ResultCell::Number(r.magnitude, Format("%.2f", r.magnitude)),
            ResultCell::Number(r.elongationRad * kDegPerRad, Format("%.1f", r.elongationRad * kDegPerRad)),
            ResultCell::Number(r.phaseAngleRad * kDegPerRad, Format("%.1f", r.phaseAngleRad * kDegPerRad)),
            ResultCell::Number(r.illuminatedFraction * 100.0, Format("%.1f", r.illuminatedFraction * 100.0)),
            ResultCell::Number(diameterArcsec, Format("%.2f", diameterArcsec)),
            ResultCell(r.constellation),
            EventCell(r.events.riseJdUT, r.events.kind, localOffsetHours),
            EventCell(r.events.transitJdUT, r.events.kind, localOffsetHours),
            EventCell(r.events.setJdUT, r.events.kind, localOffsetHours),
        };
        table.rows.push_back(std::move(row));
    }
    return table;
}

std::vector<VisiblePlanetRow> VisiblePlanetRows(const CChartScene& scene, const CSkyObjectRegistry& objects)
{
    std::vector<VisiblePlanetRow> rows;
    const auto* planetSource = objects.SourceOf<CPlanetObjectSource>();
    const auto* moonSource = objects.SourceOf<CPlanetMoonSource>();
    const std::optional<SkySourceId> planetId = planetSource ? objects.IdOf(planetSource) : std::nullopt;
    const std::optional<SkySourceId> moonId = moonSource ? objects.IdOf(moonSource) : std::nullopt;
    for (const SceneObject& o : scene.Objects()) {
        VisiblePlanetRow row;
        if (planetId && o.source == *planetId && o.key < static_cast<std::uint32_t>(kBodyCount)) {
            const int body = static_cast<int>(o.key);
            row.name = BodyText(body);
            row.kind = body == kBodySun ? "Sun" : body == kBodyMoon ? "Moon" : "Planet";
        } else if (moonId && o.source == *moonId && o.key < static_cast<std::uint32_t>(kChartSatelliteCount)) {
            const ChartSatelliteInfo& info = ChartSatellite(static_cast<int>(o.key));
            row.name = std::string(info.name);
            row.kind = "Satellite of " + BodyText(info.planet);
        } else {
            continue;
        }
        row.magnitude = o.magCenti * 0.01;
        row.raJ2000Rad = o.raJ2000Rad;
        row.decJ2000Rad = o.decJ2000Rad;
        rows.push_back(std::move(row));
    }
    return rows;
}

ResultTable VisiblePlanetsTable(const std::vector<VisiblePlanetRow>& rows)
{
    ResultTable table;
    table.title = "Planets Visible on the Map";
    table.reportHeadings = HeadingLine::Include;
    table.columns = {
        {"Name", "name", "", CellAlign::Left, "Enceladus    ", {}, {"The body's name."}},
        {"Type", "type", "", CellAlign::Left, "Satellite of Jupiter  ", {}, {"Sun, Moon, planet or satellite."}},
        {"Mag", "magnitude", "mag", CellAlign::Right, "-26.80  ", {}, {"Visual magnitude at the chart's instant."}},
        {"RA (J2000)", "raJ2000Deg", "deg", CellAlign::Left, "00h00m00.0s  ", {},
         {"Apparent place at the chart's instant, referred to the J2000 equator and equinox."}},
        {"Dec (J2000)", "decJ2000Deg", "deg", CellAlign::Left, "+00\xC2\xB0" "00\xE2\x80\xB2" "00\xE2\x80\xB3  ", {},
         {"As the right ascension."}},
    };
    for (const VisiblePlanetRow& r : rows) {
        ResultRow row;
        row.cells = {ResultCell(r.name), ResultCell(r.kind), ResultCell::Number(r.magnitude, Format("%.2f", r.magnitude)),
                     ResultCell::Number(r.raJ2000Rad * kDegPerRad, FormatHms(r.raJ2000Rad, 1)),
                     ResultCell::Number(r.decJ2000Rad * kDegPerRad, FormatDms(r.decJ2000Rad, 0))};
        table.rows.push_back(std::move(row));
    }
    return table;
}

EphemerisStatus ComputeBodyPath(const CObserverDoc& site, int body, double jdUTFrom, double jdUTTo, double tickStepDays,
                                BodyPath& path, const ProgressFn& progress)
{
    path = BodyPath{};
    path.body = body;
    path.tickStepDays = tickStepDays;
    path.localOffsetHours = site.LocalOffsetHours();
    if (body < 0 || body >= kBodyCount || !std::isfinite(jdUTFrom) || !std::isfinite(jdUTTo) ||
        !std::isfinite(tickStepDays) || tickStepDays < 1.0 / 1440.0 || jdUTTo <= jdUTFrom)
        return EphemerisStatus::InvalidInput;
    const double ticks = std::floor((jdUTTo - jdUTFrom) / tickStepDays + 1e-9);
    if (ticks > 2000.0) return EphemerisStatus::TooManyRows;
    // Points between marks: at least four, more for a short span, at most
    // 4000 in all; the Moon moves fastest (13° a day) and gets a point every
    // two hours at least.
    const double span = jdUTTo - jdUTFrom;
    int perTick = std::max(4, static_cast<int>(std::ceil(400.0 / std::max(ticks, 1.0))));
    if (body == kBodyMoon) perTick = std::max(perTick, static_cast<int>(std::ceil(tickStepDays * 12.0)));
    double step = tickStepDays / perTick;
    if (span / step > 4000.0) step = span / 4000.0;
    const int n = static_cast<int>(std::ceil(span / step - 1e-9));
    CPlanets planets;
    CObserverDoc observer = site;
    double nextTick = jdUTFrom;
    for (int i = 0; i <= n; ++i) {
        if (progress && progress(static_cast<double>(i) / (n + 1)) == ProgressAnswer::Cancel)
            return EphemerisStatus::Cancelled;
        double jd = std::min(jdUTFrom + i * step, jdUTTo);
        bool tick = false;
        // A mark falls on its own instant, not on the nearest sample.
        if (nextTick <= jd + 1e-9 && nextTick <= jdUTTo + 1e-9) {
            jd = nextTick;
            tick = true;
            nextTick += tickStepDays;
        }
        observer.SetJulianDate(jd);
        const double jdTT = observer.JulianDateTDT();
        double ra = 0.0, dec = 0.0;
        PositionStatus status;
        if (body == kBodyMoon) {
            double km = 0.0;
            status = planets.MoonPosition(observer, jdTT, ra, dec, km, PlaceCentre::Topocentric);
        } else {
            status = planets.ApparentPosition(observer, body, jdTT, ra, dec, PlaceCentre::Topocentric);
        }
        if (status != PositionStatus::Ok) return EphemerisStatus::NoSource;
        BodyPathPoint p;
        p.jdUT = jd;
        p.tick = tick;
        p.magnitude = planets.Record(body).magnitudeCenti * 0.01;
        DateToJ2000(observer, jdTT, ra, dec, p.raJ2000Rad, p.decJ2000Rad);
        path.points.push_back(p);
    }
    if (progress) progress(1.0);
    return EphemerisStatus::Ok;
}

std::string BodyPathDateLabel(const BodyPath& path, std::size_t pointIndex, bool withYear)
{
    if (pointIndex >= path.points.size()) return {};
    const double jd = path.points[pointIndex].jdUT;
    const std::string date = FormatDate(jd, path.localOffsetHours);  // "DD MMM YYYY hh:mm"
    // Marks less than a day apart carry their time of day.
    std::string text = withYear ? date.substr(0, 11) : date.substr(0, 6);
    if (path.tickStepDays < 1.0 - 1e-9) text += " " + date.substr(12, 5);
    return text;
}

}  // namespace orv
