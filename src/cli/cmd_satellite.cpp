// orvane-cli satellite, groundtrack and passes: the satellite windows'
// computations and tables without a window.

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <ostream>

#include "cli/cli.h"
#include "cli/options.h"
#include "cli/tableprinter.h"
#include "observer/observer.h"
#include "satellite/describe.h"
#include "satellite/elements.h"
#include "satellite/groundtrack.h"
#include "satellite/passes.h"
#include "satellite/propagator.h"
#include "satellite/satsettings.h"
#include "satellite/sattables.h"
#include "satellite/topocentric.h"
#include "util/angles.h"
#include "util/settingsstore.h"

namespace orv::cli {

namespace {

using namespace orv::sat;

QString Q(const std::string& s) { return QString::fromStdString(s); }

// Options every satellite command reads.
const std::vector<std::string> kSatelliteOptionNames{"tle", "sat", "yes", "no-age-check"};

// Loads the element file of --tle, or of the "EarthSat" TLEFile setting.
bool LoadList(Context& ctx, const CEarthSatSettings& settings, CSatelliteList& list, std::string& error)
{
    const std::string path = ctx.args.Get("tle").value_or(settings.tleFile);
    if (path.empty()) {
        error = "no element file: give --tle FILE (or set TLEFile in the EarthSat settings)";
        return false;
    }
    if (!list.Load(path)) {
        error = "cannot open the element file \"" + path + "\"";
        return false;
    }
    if (list.Empty()) {
        error = "the element file \"" + path + "\" holds no element set";
        return false;
    }
    return true;
}

// The satellite of --sat (name or catalogue number); the only one of a
// one-satellite file when --sat is absent.
int SelectSatellite(Context& ctx, const CSatelliteList& list, std::string& error)
{
    const auto wanted = ctx.args.Get("sat");
    if (!wanted) {
        if (list.Size() == 1) return 0;
        error = std::string(kSelectSatelliteMessage) + " (--sat NAME or --sat NUMBER)";
        return -1;
    }
    const int index = list.Find(*wanted);
    if (index < 0) error = "no satellite \"" + *wanted + "\" in " + list.FileName();
    return index;
}

// The epoch-age question of the windows becomes a warning on standard error;
// the computation goes ahead. --yes or --no-age-check silences it.
EpochAgeQuestionFn AgeWarning(Context& ctx)
{
    const bool silent = ctx.args.Has("yes") || ctx.args.Has("no-age-check");
    return [&ctx, silent](const SatelliteRecord& record, int days) {
        if (!silent) {
            std::string text = EpochAgeQuestion(days);
            text = text.substr(0, text.find("\n\n"));
            std::replace(text.begin(), text.end(), '\n', ' ');
            ctx.err << "orvane-cli: warning (" << record.name << "): " << text
                    << " (computing anyway; --yes silences this warning)\n";
        }
        return EpochAgeAnswer::Yes;
    };
}

bool SetupObserver(Context& ctx, CObserverDoc& observer, std::string& error)
{
    observer.LoadSettings(ctx.settings);
    return ApplySiteOptions(ctx, observer, error) && ApplyTimeOptions(ctx, observer, error);
}

// A whole number within the range that the matching field of the satellite
// dialogs allows (a pass search of a million days would otherwise be walked
// step by step); `unit` names what is counted, for the message.
bool ReadWholeInRange(Context& ctx, const char* name, int low, int high, const char* unit, int& value,
                      std::string& error)
{
    const auto v = ctx.args.GetNumber(name, error);
    if (!error.empty()) return false;
    if (!v) return true;
    if (!(*v >= low && *v <= high) || *v != std::floor(*v)) {
        error = std::string("--") + name + " takes a whole number of " + unit + " from " + std::to_string(low) +
                " to " + std::to_string(high) + ", not " + *ctx.args.Get(name);
        return false;
    }
    value = static_cast<int>(*v);
    return true;
}

// --- satellite -------------------------------------------------------------

int Satellite(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames, &kSatelliteOptionNames});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    CEarthSatSettings settings;
    settings.Load(ctx.settings);
    CObserverDoc observer;
    std::string error;
    if (!SetupObserver(ctx, observer, error)) return UsageError(ctx, error);
    CSatelliteList list;
    if (!LoadList(ctx, settings, list, error)) return Fail(ctx, error);
    const int index = SelectSatellite(ctx, list, error);
    if (index < 0) return Fail(ctx, error);
    const SatelliteRecord& record = list[static_cast<std::size_t>(index)];
    const double jd = observer.JulianDate();

    if (const EpochAgeCheck age = CheckEpochAge(record, jd, settings); age.result == EpochAgeCheck::Result::Ask)
        AgeWarning(ctx)(record, age.daysRounded);

    CSatellitePropagator propagator(record);
    TemeStateKm state;
    const PropagationStatus status = propagator.PropagateToJd(jd, state);
    const std::vector<std::string> description = DescribeElements(record);

    QJsonObject out;
    QJsonArray lines;
    for (const auto& l : description) lines.append(Q(l));
    out["description"] = lines;
    out["model"] = propagator.Model() == OrbitModel::Sdp4DeepSpace ? "SDP4" : "SGP4";
    out["periodMin"] = record.periodMinutes;
    out["epochJdUT"] = record.epochJd;
    out["jdUT"] = jd;
    out["sinceEpochMin"] = (jd - record.epochJd) * 1440.0;
    out["localTime"] = Q(FormatPassTime(jd, observer.LocalOffsetHours()));
    if (status != PropagationStatus::Ok) {
        out["error"] = Q(std::string(PropagationStatusText(status)));
        if (ctx.json) {
            PrintJson(ctx.out, out);
            return 1;
        }
        for (const auto& l : description) ctx.out << l << '\n';
        return Fail(ctx, record.name + ": " + std::string(PropagationStatusText(status)));
    }
    const SatelliteSite site = SiteOfObserver(observer);
    const SubSatellitePoint sub = ComputeSubSatellitePoint(state.positionKm, jd);
    const LookAngles look = ComputeLookAngles(state, site, jd);
    const Illumination illumination = ComputeIllumination(state.positionKm, jd);
    const double sunElevation = ComputeSunElevationRad(site, jd);
    const double speed = std::sqrt(state.velocityKmPerS[0] * state.velocityKmPerS[0] +
                                   state.velocityKmPerS[1] * state.velocityKmPerS[1] +
                                   state.velocityKmPerS[2] * state.velocityKmPerS[2]);

    out["teme"] = QJsonObject{{"positionKm", QJsonArray{state.positionKm[0], state.positionKm[1], state.positionKm[2]}},
                              {"velocityKmPerS", QJsonArray{state.velocityKmPerS[0], state.velocityKmPerS[1],
                                                            state.velocityKmPerS[2]}}};
    out["subSatellitePoint"] = QJsonObject{{"latitudeDeg", sub.latitudeRad * kDegPerRad},
                                           {"longitudeDeg", sub.longitudeRad * kDegPerRad},
                                           {"latitude", Q(FormatLatitude(sub.latitudeRad))},
                                           {"longitude", Q(FormatLongitude(sub.longitudeRad))},
                                           {"heightKm", sub.heightKm},
                                           {"speedKmPerS", speed}};
    out["lookAngles"] = QJsonObject{{"site", Q(observer.SiteName())},
                                    {"azimuthDeg", look.azimuthRad * kDegPerRad},
                                    {"elevationDeg", look.elevationRad * kDegPerRad},
                                    {"rangeKm", look.rangeKm},
                                    {"rangeRateKmPerS", look.rangeRateKmPerS},
                                    {"aboveHorizon", look.horizon == Horizon::Above}};
    out["illumination"] = IlluminationName(illumination);
    out["sunElevationDeg"] = sunElevation * kDegPerRad;

    if (ctx.json) {
        PrintJson(ctx.out, out);
        return 0;
    }
    for (const auto& l : description) ctx.out << l << '\n';
    char buf[512];
    ctx.out << '\n' << "Model: " << out["model"].toString().toStdString() << ", period "
            << QString::number(record.periodMinutes, 'f', 2).toStdString() << " min\n";
    ctx.out << "Time: " << out["localTime"].toString().toStdString() << " local (JD " << QString::number(jd, 'f', 6).toStdString()
            << " UT, " << QString::number((jd - record.epochJd), 'f', 3).toStdString() << " days from epoch)\n";
    std::snprintf(buf, sizeof buf, "TEME position: %14.6f %14.6f %14.6f km\nTEME velocity: %14.9f %14.9f %14.9f km/s\n",
                  state.positionKm[0], state.positionKm[1], state.positionKm[2], state.velocityKmPerS[0],
                  state.velocityKmPerS[1], state.velocityKmPerS[2]);
    ctx.out << buf;
    std::snprintf(buf, sizeof buf, "Sub-satellite point: %s %s, height %.1lf km, speed %.3lf km/s\n",
                  FormatLatitude(sub.latitudeRad).c_str(), FormatLongitude(sub.longitudeRad).c_str(), sub.heightKm,
                  speed);
    ctx.out << buf;
    std::snprintf(buf, sizeof buf,
                  "From %s: azimuth %.3lf°, elevation %.3lf°%s, range %.3lf km, range rate %.3lf km/s\n",
                  observer.SiteName().empty() ? "the site" : observer.SiteName().c_str(), look.azimuthRad * kDegPerRad, look.elevationRad * kDegPerRad,
                  look.horizon == Horizon::Above ? " (refracted)" : " (below the horizon)", look.rangeKm,
                  look.rangeRateKmPerS);
    ctx.out << buf;
    std::snprintf(buf, sizeof buf, "Illumination: %s; Sun's elevation %.2lf°\n", IlluminationName(illumination),
                  sunElevation * kDegPerRad);
    ctx.out << buf;
    return 0;
}

// --- groundtrack -----------------------------------------------------------

int GroundTrack(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames, &kSatelliteOptionNames},
                                   {"length", "orbit", "step"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    CEarthSatSettings settings;
    settings.Load(ctx.settings);
    std::string error;
    // The ground-track dialog's limits: up to two weeks, steps up to a day.
    if (!ReadWholeInRange(ctx, "length", 1, 14 * 1440, "minutes", settings.groundTrackLengthMin, error) ||
        !ReadWholeInRange(ctx, "step", 1, 1440, "minutes", settings.groundTrackIntervalMin, error))
        return UsageError(ctx, error);
    if (ctx.args.Has("orbit")) settings.groundTrackDuration = GroundTrackDuration::OneOrbit;
    else if (ctx.args.Has("length")) settings.groundTrackDuration = GroundTrackDuration::Minutes;
    CObserverDoc observer;
    if (!SetupObserver(ctx, observer, error)) return UsageError(ctx, error);
    CSatelliteList list;
    if (!LoadList(ctx, settings, list, error)) return Fail(ctx, error);
    const int index = SelectSatellite(ctx, list, error);
    if (index < 0) return Fail(ctx, error);
    const SatelliteRecord& record = list[static_cast<std::size_t>(index)];

    const GroundTrackResult track = ComputeGroundTrack(record, observer.JulianDate(), settings, AgeWarning(ctx));
    const SatelliteTable table = MakeGroundTrackTable(record, track, settings, observer.LocalOffsetHours());
    if (track.failedSteps > 0)
        ctx.err << "orvane-cli: " << track.failedSteps << " steps without a position ("
                << PropagationStatusText(track.firstFailure) << ")\n";
    // The table's rows carry every point with its Julian date and place.
    PrintTable(ctx, table);
    return 0;
}

// --- passes ----------------------------------------------------------------

int Passes(Context& ctx)
{
    const auto known = OptionNames({&kSiteOptionNames, &kTimeOptionNames, &kSatelliteOptionNames},
                                   {"all", "visible", "any", "min-alt", "no-min-alt", "days", "interval", "full",
                                    "summary"});
    if (const auto unknown = ctx.args.Unknown(known); !unknown.empty())
        return UsageError(ctx, "unknown option --" + unknown.front());
    CEarthSatSettings settings;
    settings.Load(ctx.settings);
    std::string error;
    // The pass dialog's limits: a year of passes, positions up to an hour apart.
    if (!ReadWholeInRange(ctx, "days", 1, 365, "days", settings.passDurationDays, error) ||
        !ReadWholeInRange(ctx, "interval", 1, 3600, "seconds", settings.passPositionIntervalSec, error))
        return UsageError(ctx, error);
    if (ctx.args.Has("visible")) settings.passVisibility = PassVisibility::VisibleOnly;
    if (ctx.args.Has("any")) settings.passVisibility = PassVisibility::AllPasses;
    if (const auto minAlt = ctx.args.GetNumber("min-alt", error); minAlt) {
        if (!(*minAlt >= 0.0 && *minAlt <= 90.0)) return UsageError(ctx, "--min-alt takes degrees from 0 to 90");
        settings.passMinAltitude = PassMinimumAltitude::Apply;
        settings.passMinAltitudeDeg = static_cast<int>(std::lround(*minAlt));
    }
    if (!error.empty()) return UsageError(ctx, error);
    if (ctx.args.Has("no-min-alt")) settings.passMinAltitude = PassMinimumAltitude::Ignore;
    if (ctx.args.Has("full")) settings.passDisplay = PassDisplay::Full;
    if (ctx.args.Has("summary")) settings.passDisplay = PassDisplay::Summary;
    if (ctx.args.Has("all")) settings.passScope = PassScope::AllSatellites;
    else if (ctx.args.Has("sat")) settings.passScope = PassScope::SelectedSatellite;

    CObserverDoc observer;
    if (!SetupObserver(ctx, observer, error)) return UsageError(ctx, error);
    CSatelliteList list;
    if (!LoadList(ctx, settings, list, error)) return Fail(ctx, error);

    // The search starts at local midday of the date of the instant given.
    const CivilDateTime local = observer.LocalTime();
    CObserverDoc midday = observer;
    midday.SetLocalTime(CivilDateTime{local.year, local.month, local.day, 12, 0, 0.0});
    const double startJd = midday.JulianDate();

    PassSearchCallbacks callbacks;
    callbacks.askEpochAge = AgeWarning(ctx);
    PassSearchResult result;
    std::vector<SatelliteRecord> searched;
    if (settings.passScope == PassScope::AllSatellites) {
        searched = list.Records();
        result = SearchAllSatellitePasses(searched, observer, startJd, settings, callbacks);
    } else {
        const int index = SelectSatellite(ctx, list, error);
        if (index < 0) return Fail(ctx, error);
        searched = {list[static_cast<std::size_t>(index)]};
        result = SearchSatellitePasses(searched.front(), 0, SiteOfObserver(observer), startJd, settings, callbacks);
    }
    for (const auto& notice : TooManyPointsNotices(searched, result)) ctx.err << "orvane-cli: " << notice << '\n';
    const SatelliteTable table = MakePassTable(searched, result, settings, settings.passScope, observer.LocalOffsetHours());

    QJsonArray passes;
    for (const auto& pass : result.passes) {
        if (pass.points.empty()) continue;
        passes.append(QJsonObject{
            {"satellite", Q(searched[static_cast<std::size_t>(pass.satelliteIndex)].name)},
            {"startJdUT", pass.points.front().jdUT},
            {"endJdUT", pass.points.back().jdUT},
            {"maxAltitudeDeg", pass.maxElevationRad * kDegPerRad},
            {"maxAltitudeJdUT", pass.points[pass.maxElevationIndex].jdUT},
            {"points", static_cast<qint64>(pass.pointCount)},
            {"shown", pass.display == SatellitePass::Display::Shown}});
    }
    const QJsonObject extra{{"passes", passes},
                            {"siteLatitudeDeg", observer.LatitudeRad() * kDegPerRad},
                            {"siteLongitudeDeg", observer.LongitudeRad() * kDegPerRad},
                            {"startJdUT", result.startJdUT},
                            {"endJdUT", result.endJdUT}};
    PrintTable(ctx, table, extra);
    if (result.passes.empty() && !ctx.json && !ctx.args.Has("csv")) ctx.out << "(no passes)\n";
    return 0;
}

constexpr const char* kSatelliteUsage =
    "orvane-cli satellite --tle FILE --sat NAME|NUMBER [site and time options] [--yes]\n"
    "  the element set's description, and the satellite's TEME position, sub-satellite point,\n"
    "  look angles (refracted), illumination and the Sun's elevation at the instant\n"
    "  --tle FILE       two-line element file (default: TLEFile of the EarthSat settings)\n"
    "  --sat NAME       satellite name or NORAD catalog number\n"
    "  --yes, --no-age-check  no warning when the instant is far from the element epoch\n"
    "  site: --lat --lon (degrees, east positive) --height (metres) --zone --dst, or the Observer settings\n"
    "  time: --date YYYY-MM-DD --time HH:MM[:SS] (local, or --utc) or --jd; default now";

constexpr const char* kGroundTrackUsage =
    "orvane-cli groundtrack --tle FILE --sat NAME|NUMBER [--length MIN | --orbit] [--step MIN]\n"
    "                       [site and time options] [--yes]\n"
    "  the ground-track table from the instant given (local time): time, latitude, longitude,\n"
    "  height, speed and illumination; defaults from the EarthSat settings (GTLength, GTInterval)\n"
    "  --json, --csv     the table for other programs (times as Julian dates UT, angles in degrees)";

constexpr const char* kPassesUsage =
    "orvane-cli passes --tle FILE (--sat NAME|NUMBER | --all) [--date YYYY-MM-DD] [--days N]\n"
    "                  [--visible | --any] [--min-alt DEG | --no-min-alt] [--interval SEC]\n"
    "                  [--summary | --full] [site options] [--yes]\n"
    "  passes over the site from local midday of the date: of one satellite for --days days\n"
    "  (PassDuration), or of every satellite over the night (--all; 24 hours with --any)\n"
    "  --visible        only passes in a dark sky with the satellite sunlit (PassVisiblePasses)\n"
    "  --any            every pass above the horizon\n"
    "  --min-alt DEG    drop passes culminating lower (PassMinAlt); --no-min-alt keeps them\n"
    "  --interval SEC   step between the positions of a pass (PassPosInterval)\n"
    "  --summary        first, highest and last point of each pass; --full every point\n"
    "  --json, --csv    the table for other programs (times as Julian dates UT, angles in degrees)";

}  // namespace

ORV_CLI_COMMAND("satellite", "a satellite's elements, position and look angles", kSatelliteUsage, Satellite);
ORV_CLI_COMMAND("groundtrack", "a satellite's ground track", kGroundTrackUsage, GroundTrack);
ORV_CLI_COMMAND("passes", "satellite passes over the site", kPassesUsage, Passes);

}  // namespace orv::cli
