// orvane-cli stars: the Tycho-2 stars of a field at a date.
// orvane-cli star: everything the catalogue holds about one star.
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iomanip>
#include <ostream>
#include <sstream>

#include "catalog/stars/chartstars.h"
#include "catalog/stars/crossindex.h"
#include "catalog/stars/stardesignation.h"
#include "catalog/stars/tycho2catalogue.h"
#include "cli/cli.h"
#include "cli/options.h"
#include "map/chartframe.h"
#include "map/coordinates.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "util/angles.h"

namespace orv::cli {

namespace {

const char* kNoCatalogue =
    "the Tycho-2 star catalogue is not in the data folder (run tools/fetch-sources.sh, then orvane-databuild)";

std::string FormatRa(double raRad)
{
    const Sexagesimal s = SplitSexagesimal(mod2pi(raRad) / kRadPerHour, 2);
    char buf[32];
    std::snprintf(buf, sizeof buf, "%02dh%02dm%05.2fs", s.units % 24, s.minutes, s.seconds);
    return buf;
}

std::string FormatDec(double decRad)
{
    const Sexagesimal s = SplitSexagesimal(decRad / kRadPerDeg, 1);
    char buf[32];
    std::snprintf(buf, sizeof buf, "%c%02d°%02d′%04.1f″", s.negative ? '-' : '+', s.units, s.minutes, s.seconds);
    return buf;
}

// The observer of the command: the stored site and the shared site and time
// options. Empty on success, else the error.
std::string SetObserver(Context& ctx, CObserverDoc& observer)
{
    observer.LoadSettings(ctx.settings);
    std::string error;
    if (!ApplySiteOptions(ctx, observer, error) || !ApplyTimeOptions(ctx, observer, error)) return error;
    return {};
}

QJsonObject PlaceJson(double raRad, double decRad)
{
    QJsonObject o;
    o["raDeg"] = raRad / kRadPerDeg;
    o["decDeg"] = decRad / kRadPerDeg;
    o["ra"] = QString::fromStdString(FormatRa(raRad));
    o["dec"] = QString::fromStdString(FormatDec(decRad));
    return o;
}

// ----- stars -----------------------------------------------------------------

int RunStars(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames}, {"ra", "dec", "radius", "limit"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    const auto raText = ctx.args.Get("ra");
    const auto decText = ctx.args.Get("dec");
    if (!raText || !decText) return UsageError(ctx, "stars needs --ra and --dec (the field's centre, J2000)");
    std::string error;
    double centreRa = 0.0, centreDec = 0.0;
    if (!ParseRightAscensionOption("ra", *raText, centreRa, error) ||
        !ParseDegreesOption("dec", *decText, 90.0, centreDec, error))
        return UsageError(ctx, "--ra or --dec is not an angle: " + error);
    const double radiusDeg = ctx.args.GetNumber("radius", error).value_or(1.0);
    const double limitMag = ctx.args.GetNumber("limit", error).value_or(9.0);
    if (!error.empty()) return UsageError(ctx, error);
    if (!(radiusDeg > 0.0 && radiusDeg <= 90.0)) return UsageError(ctx, "--radius must lie in (0, 90] degrees");
    if (!(limitMag > -2.0 && limitMag < 20.0)) return UsageError(ctx, "--limit must lie between -2 and 20");

    CObserverDoc observer;
    if (std::string e = SetObserver(ctx, observer); !e.empty()) return UsageError(ctx, e);
    CTycho2Catalogue& catalogue = Tycho2Catalogue();
    if (!catalogue.OpenCatalogue()) return Fail(ctx, kNoCatalogue);

    CCoordinates coords;
    coords.SetCentringMode(Centring::RaDec);
    coords.SetFieldDeg(radiusDeg);
    coords.SetupSurface(1000, 1000);
    coords.SetCentreRaDec(observer, centreRa, centreDec);
    const CChartFrame frame(observer, coords);
    StarGatherRequest request;
    request.box = BoxFromRegion(coords.StoredCentreRegion());
    request.centreDecJ2000Rad = centreDec;
    request.fieldRadiusRad = coords.VisibleRadiusRad();
    request.magLimitCenti = static_cast<int>(std::lround(limitMag * 100.0));
    CChartStars chart;
    GatherChartStars(catalogue, frame, request, chart);

    // The chart's field is a square; the query is the circle of the radius
    // around the centre, measured on the places of date.
    double centreRaDate = centreRa, centreDecDate = centreDec;
    CatalogueToDate(observer, centreRaDate, centreDecDate, Place::Apparent);
    const double years = (observer.JulianDateTDT() - 2451545.0) / 365.25;
    struct Row {
        TychoStarEntry entry;
        double raDate, decDate;
        std::string designation;
    };
    std::vector<Row> rows;
    for (const auto& e : chart.stars) {
        StarRecord s;
        if (!catalogue.ReadRecord(e.record, s)) continue;
        double ra = 0.0, dec = 0.0;
        StarPositionAt(s, years, ra, dec);
        CatalogueToDate(observer, ra, dec, Place::Apparent);
        if (AngularDistance(ra, dec, centreRaDate, centreDecDate) > radiusDeg * kRadPerDeg) continue;
        rows.push_back({e, ra, dec,
                        StarDesignation(catalogue, s, e.record, ProperNames::Show, ConstellationText::Abbreviation)});
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row& a, const Row& b) { return a.entry.magCenti < b.entry.magCenti; });

    if (ctx.json) {
        QJsonArray list;
        for (const auto& r : rows) {
            QJsonObject o = PlaceJson(r.raDate, r.decDate);
            o["designation"] = QString::fromStdString(r.designation);
            o["tyc"] = QString::fromStdString(TychoText(r.entry.tyc1, r.entry.tyc2, r.entry.tyc3));
            o["magnitude"] = r.entry.magCenti / 100.0;
            if (r.entry.bvMilli != tycho2::kNoColour) o["bv"] = r.entry.bvMilli / 1000.0;
            if (r.entry.distanceLy > 0) o["distanceLy"] = r.entry.distanceLy;
            list.append(o);
        }
        QJsonObject out;
        out["jdUT"] = observer.JulianDate();
        out["centre"] = PlaceJson(centreRaDate, centreDecDate);
        out["radiusDeg"] = radiusDeg;
        out["limitMag"] = limitMag;
        out["count"] = static_cast<int>(rows.size());
        out["stars"] = list;
        PrintJson(ctx.out, out);
        return 0;
    }
    ctx.out << rows.size() << " stars to magnitude " << limitMag << " within " << radiusDeg << "° of "
            << FormatRa(centreRaDate) << ' ' << FormatDec(centreDecDate) << " (apparent place of date, JD "
            << std::fixed << std::setprecision(5) << observer.JulianDate() << " UT)\n";
    ctx.out << "designation            mag    B-V   RA (date)       Dec (date)\n";
    for (const auto& r : rows) {
        char bv[16] = "      ";
        if (r.entry.bvMilli != tycho2::kNoColour) std::snprintf(bv, sizeof bv, "%6.2f", r.entry.bvMilli / 1000.0);
        char line[160];
        std::snprintf(line, sizeof line, "%-22s %5.2f %s   %s  %s\n", r.designation.c_str(), r.entry.magCenti / 100.0,
                      bv, FormatRa(r.raDate).c_str(), FormatDec(r.decDate).c_str());
        ctx.out << line;
    }
    return 0;
}

// ----- star ------------------------------------------------------------------

int RunStar(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    std::string query;
    for (const auto& w : ctx.args.Positional()) query += (query.empty() ? "" : " ") + w;
    if (query.empty()) return UsageError(ctx, "star needs a designation, e.g. \"HIP 32349\", \"alpha CMa\" or Sirius");
    CObserverDoc observer;
    if (std::string e = SetObserver(ctx, observer); !e.empty()) return UsageError(ctx, e);
    CTycho2Catalogue& catalogue = Tycho2Catalogue();
    if (!catalogue.OpenCatalogue()) return Fail(ctx, kNoCatalogue);
    const auto record = ResolveStarDesignation(catalogue, query);
    StarRecord s;
    if (!record || !catalogue.ReadRecord(*record, s)) return Fail(ctx, "no star \"" + query + "\" in the catalogue");
    const auto rec = static_cast<std::uint32_t>(*record);
    const std::int64_t id = s.TychoId();

    const std::string designation = StarDesignation(catalogue, s, rec, ProperNames::Show, ConstellationText::Abbreviation);
    const std::string_view name = catalogue.ProperName(id);
    const std::string bayer = BayerFlamsteedText(catalogue.Property(id), ConstellationText::Abbreviation);
    const std::int64_t hd = FindNumberOfStar(CrossCatalogue::Hd, id);
    const std::int64_t sao = FindNumberOfStar(CrossCatalogue::Sao, id);
    const std::int64_t hr = FindNumberOfStar(CrossCatalogue::Bsc, id);
    const auto variable = (s.flags & tycho2::flag::kVariable) ? FindVariableStar(id) : std::nullopt;
    const auto dbl = (s.flags & tycho2::flag::kDouble) ? FindDoubleStar(rec) : std::nullopt;
    const double raJ2000 = s.raMas * kRadPerMas, decJ2000 = s.decMas * kRadPerMas;
    double raDate = 0.0, decDate = 0.0;
    catalogue.GetStarPosition(observer, id, StarPlace::OfDate, raDate, decDate);
    double alt = 0.0, az = 0.0;
    EquatorialToHorizontal(observer, raDate, decDate, alt, az, Refraction::Apply);
    const int distance = DistanceLightYears(s.parallaxMas);
    const double pmRaStar = s.pmRaMasPerYr * std::cos(decJ2000);

    if (ctx.json) {
        QJsonObject o;
        o["designation"] = QString::fromStdString(designation);
        o["tyc"] = QString::fromStdString(TychoText(s.tyc1, s.tyc2, s.tyc3));
        if (s.hip) o["hip"] = static_cast<qint64>(s.hip);
        if (hd >= 0) o["hd"] = static_cast<qint64>(hd);
        if (sao >= 0) o["sao"] = static_cast<qint64>(sao);
        if (hr >= 0) o["hr"] = static_cast<qint64>(hr);
        if (!name.empty()) o["name"] = QString::fromUtf8(name.data(), static_cast<int>(name.size()));
        if (!bayer.empty()) o["bayerFlamsteed"] = QString::fromStdString(bayer);
        o["magnitude"] = s.magCenti / 100.0;
        if (s.bvMilli != tycho2::kNoColour) o["bv"] = s.bvMilli / 1000.0;
        o["j2000"] = PlaceJson(raJ2000, decJ2000);
        o["pmRaStarMasPerYr"] = pmRaStar;
        o["pmDecMasPerYr"] = s.pmDecMasPerYr;
        if (s.HasParallax()) o["parallaxMas"] = s.parallaxMas;
        if (distance > 0) o["distanceLy"] = distance;
        o["radialVelocityKmS"] = s.radVelDeciKmS / 10.0;
        if (variable) {
            QJsonObject v;
            v["name"] = QString::fromStdString(variable->name);
            v["type"] = QString::fromStdString(variable->type);
            v["maxMag"] = variable->maxMagCenti / 100.0;
            if (variable->minMagCenti) v["minMag"] = *variable->minMagCenti / 100.0;
            v["band"] = QString::fromStdString(variable->band);
            if (variable->periodDays > 0.0) v["periodDays"] = variable->periodDays;
            o["variable"] = v;
        }
        if (dbl) o["double"] = QString::fromStdString(dbl->Designation());
        QJsonObject date = PlaceJson(raDate, decDate);
        date["jdUT"] = observer.JulianDate();
        date["altDeg"] = alt / kRadPerDeg;
        date["azDeg"] = az / kRadPerDeg;
        o["ofDate"] = date;
        PrintJson(ctx.out, o);
        return 0;
    }
    auto& out = ctx.out;
    out << designation << '\n';
    out << "  TYC " << s.tyc1 << '-' << s.tyc2 << '-' << static_cast<int>(s.tyc3);
    if (s.hip) out << "   HIP " << s.hip;
    if (hd >= 0) out << "   HD " << hd;
    if (sao >= 0) out << "   SAO " << sao;
    if (hr >= 0) out << "   HR " << hr;
    out << '\n';
    if (!name.empty()) out << "  Name: " << name << '\n';
    if (!bayer.empty()) out << "  Bayer/Flamsteed: " << bayer << '\n';
    char line[200];
    std::snprintf(line, sizeof line, "\n  Mag: %.2f", s.magCenti / 100.0);
    out << (line + 1);
    if (s.bvMilli != tycho2::kNoColour) {
        std::snprintf(line, sizeof line, "   B-V: %.2f", s.bvMilli / 1000.0);
        out << line;
    }
    out << '\n';
    if (variable) {
        out << "  Var: " << variable->name << " (" << variable->type << ")";
        if (variable->minMagCenti) {
            std::snprintf(line, sizeof line, "   Mag range: %.2f to %s%.2f %s", variable->maxMagCenti / 100.0,
                          variable->minIsLimit ? "<" : "", *variable->minMagCenti / 100.0, variable->band.c_str());
            out << line;
        }
        if (variable->periodDays > 0.0) out << "   period " << variable->periodDays << " d";
        out << '\n';
    }
    if (dbl && !dbl->code.empty()) out << "  Double: " << dbl->Designation() << '\n';
    out << "  J2000: " << FormatRa(raJ2000) << ' ' << FormatDec(decJ2000) << '\n';
    std::snprintf(line, sizeof line, "  Proper motion: %.1f mas/yr (RA cos dec), %.1f mas/yr (Dec)\n", pmRaStar,
                  s.pmDecMasPerYr);
    out << line;
    if (s.HasParallax()) {
        std::snprintf(line, sizeof line, "  Parallax: %.2f mas", s.parallaxMas);
        out << line;
        if (distance > 0) out << "   Distance: " << distance << " ly";
        out << '\n';
    }
    std::snprintf(line, sizeof line, "  Of date (JD %.5f UT): %s %s   alt %.2f°  az %.2f°\n", observer.JulianDate(),
                  FormatRa(raDate).c_str(), FormatDec(decDate).c_str(), alt / kRadPerDeg, az / kRadPerDeg);
    out << line;
    return 0;
}

}  // namespace

ORV_CLI_COMMAND("stars", "Tycho-2 stars of a field at a date",
                "  --ra HOURS      field centre, J2000 (6h45m09s, 6:45:09, 6.7525; degrees as 101.29d)\n"
                "  --dec DEG       field centre, J2000 (-16.72, -16:42:58, -16d42m58s)\n"
                "  --radius DEG    field radius (default 1)\n"
                "  --limit MAG     faintest magnitude (default 9)\n"
                "  --date YYYY-MM-DD --time HH:MM[:SS] [--utc], or --jd JD: the instant (default now)\n"
                "  --lat, --lon, --height, --zone, --dst: the site (default: the Observer settings)\n"
                "  --json          machine-readable output",
                RunStars);

ORV_CLI_COMMAND("star", "everything the star catalogue holds about one star",
                "  DESIGNATION     \"TYC 5949-2777-1\", \"HIP 32349\", \"HD 48915\", \"SAO 151881\", \"HR 2491\",\n"
                "                  \"alpha CMa\", \"9 CMa\" or a proper name such as Sirius\n"
                "  --date YYYY-MM-DD --time HH:MM[:SS] [--utc], or --jd JD: the instant (default now)\n"
                "  --lat, --lon, --height, --zone, --dst: the site, for altitude and azimuth\n"
                "  --json          machine-readable output",
                RunStar);

}  // namespace orv::cli
