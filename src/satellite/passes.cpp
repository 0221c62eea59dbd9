#include "satellite/passes.h"

#include <algorithm>
#include <cmath>

#include "observer/observer.h"
#include "satellite/wgs72.h"
#include "util/angles.h"

namespace orv::sat {

namespace {

constexpr double kMinuteDays = 1.0 / kMinutesPerDay;
// Progress is reported once per this many minutes walked.
constexpr long kProgressEveryMinutes = 60;

enum class Darkness {
    SunBelowMinus6,  // the Sun's refracted elevation is tested at each step
    NightWindow,     // the walk covers only the night
};

struct WalkRules {
    PassVisibility visibility = PassVisibility::VisibleOnly;
    Darkness darkness = Darkness::SunBelowMinus6;
    double startJdUT = 0.0;
    double endJdUT = 0.0;  // the walk and every pass stop here
    double stepDays = 15.0 / 86400.0;
    PassMinimumAltitude minimumAltitude = PassMinimumAltitude::Apply;
    double minimumAltitudeRad = 0.0;
};

// Whether a satellite is observable at jd under the rules; fills `point`.
// Returns false for a minute without a pass.
bool Observable(CSatellitePropagator& propagator, const SatelliteSite& site, const WalkRules& rules, double jd,
                PassPoint& point, bool& propagationFailed)
{
    propagationFailed = false;
    const bool visible = rules.visibility == PassVisibility::VisibleOnly;
    if (visible && rules.darkness == Darkness::SunBelowMinus6 &&
        ComputeSunElevationRad(site, jd) > kDarkSkySunElevationDeg * kRadPerDeg)
        return false;
    TemeStateKm state;
    if (propagator.PropagateToJd(jd, state) != PropagationStatus::Ok) {
        propagationFailed = true;
        return false;
    }
    const Illumination illumination = ComputeIllumination(state.positionKm, jd);
    if (visible && illumination != Illumination::Sunlit) return false;
    const LookAngles look = ComputeLookAngles(state, site, jd);
    if (look.horizon == Horizon::Below) return false;
    point.jdUT = jd;
    point.azimuthRad = look.azimuthRad;
    point.elevationRad = look.elevationRad;
    point.rangeKm = look.rangeKm;
    point.rangeRateKmPerS = look.rangeRateKmPerS;
    point.illumination = illumination;
    return true;
}

// Walks one satellite minute by minute over [rules.startJdUT, rules.endJdUT),
// appending its passes. `progress` receives the fraction of this walk done;
// false when cancelled.
bool WalkSatellite(const SatelliteRecord& record, int index, const SatelliteSite& site, const WalkRules& rules,
                   std::vector<SatellitePass>& passes, long& failedSteps,
                   const std::function<ProgressAnswer(double)>& progress)
{
    CSatellitePropagator propagator(record);
    const double spanDays = rules.endJdUT - rules.startJdUT;
    if (!(spanDays > 0.0) || !std::isfinite(spanDays)) return true;
    const long minutes = static_cast<long>(std::ceil(spanDays * kMinutesPerDay - 1e-9));
    long nextProgress = kProgressEveryMinutes;
    long k = 0;
    while (k < minutes) {
        if (progress && k >= nextProgress) {
            nextProgress = k + kProgressEveryMinutes;
            if (progress(static_cast<double>(k) / minutes) == ProgressAnswer::Cancel) return false;
        }
        const double jd = rules.startJdUT + k * kMinuteDays;
        PassPoint point;
        bool failed = false;
        if (!Observable(propagator, site, rules, jd, point, failed)) {
            if (failed) ++failedSteps;
            ++k;
            continue;
        }

        // A pass begins: follow it at the position interval until the
        // satellite sets, leaves sunlight or the sky brightens, or the
        // period ends.
        SatellitePass pass;
        pass.satelliteIndex = index;
        double lastJd = jd;
        bool reachedEnd = false;
        for (long step = 0;; ++step) {
            if (pass.points.size() < kMaxPassPoints) pass.points.push_back(point);
            if (pass.pointCount == 0 || point.elevationRad > pass.maxElevationRad) {
                pass.maxElevationRad = point.elevationRad;
                pass.maxElevationIndex = std::min(pass.pointCount, kMaxPassPoints - 1);
            }
            ++pass.pointCount;
            lastJd = point.jdUT;
            const double next = jd + (step + 1) * rules.stepDays;
            if (next >= rules.endJdUT) {
                reachedEnd = true;
                break;
            }
            if (!Observable(propagator, site, rules, next, point, failed)) break;
        }
        if (pass.pointCount > kMaxPassPoints) pass.display = SatellitePass::Display::TooManyPoints;
        const bool highEnough = rules.minimumAltitude == PassMinimumAltitude::Ignore ||
                                pass.maxElevationRad >= rules.minimumAltitudeRad;
        if (highEnough) passes.push_back(std::move(pass));
        // A pass still going on when the period ends closes the walk.
        if (reachedEnd) break;

        // Resume one minute after the last point.
        const long lastMinute = static_cast<long>(std::floor((lastJd - rules.startJdUT) * kMinutesPerDay + 1e-6));
        k = std::max(k + 1, lastMinute + 1);
    }
    return true;
}

WalkRules RulesFromSettings(const CEarthSatSettings& settings)
{
    WalkRules rules;
    rules.visibility = settings.passVisibility;
    rules.stepDays = std::max(1, settings.passPositionIntervalSec) / 86400.0;
    rules.minimumAltitude = settings.passMinAltitude;
    rules.minimumAltitudeRad = settings.passMinAltitudeDeg * kRadPerDeg;
    return rules;
}

void SortByTime(std::vector<SatellitePass>& passes)
{
    std::stable_sort(passes.begin(), passes.end(), [](const SatellitePass& a, const SatellitePass& b) {
        return a.points.front().jdUT < b.points.front().jdUT;
    });
}

bool Proceed(const SatelliteRecord& record, double jd, const CEarthSatSettings& settings,
             const PassSearchCallbacks& callbacks)
{
    const EpochAgeCheck age = CheckEpochAge(record, jd, settings);
    return age.result == EpochAgeCheck::Result::Proceed || !callbacks.askEpochAge ||
           callbacks.askEpochAge(record, age.daysRounded) == EpochAgeAnswer::Yes;
}

// Apparent right ascension and declination of the low-precision Sun.
void SunPlace(double jdUT, double& raRad, double& decRad)
{
    const std::array<double, 3> s = ComputeSunVectorKm(jdUT);
    raRad = mod2pi(std::atan2(s[1], s[0]));
    decRad = std::atan2(s[2], std::hypot(s[0], s[1]));
}

}  // namespace

SatelliteSite SiteOfObserver(const CObserverDoc& observer)
{
    return SatelliteSite{observer.LatitudeRad(), observer.LongitudeRad(), observer.HeightM() / 1000.0};
}

PassSearchResult SearchSatellitePasses(const SatelliteRecord& record, int satelliteIndex, const SatelliteSite& site,
                                       double startJdUT, const CEarthSatSettings& settings,
                                       const PassSearchCallbacks& callbacks)
{
    PassSearchResult result;
    WalkRules rules = RulesFromSettings(settings);
    rules.darkness = Darkness::SunBelowMinus6;
    rules.startJdUT = startJdUT;
    rules.endJdUT = startJdUT + std::max(0, settings.passDurationDays);
    result.startJdUT = rules.startJdUT;
    result.endJdUT = rules.endJdUT;
    if (!Proceed(record, startJdUT, settings, callbacks)) {
        result.abandonedSatellites.push_back(satelliteIndex);
        return result;
    }
    if (!WalkSatellite(record, satelliteIndex, site, rules, result.passes, result.failedSteps, callbacks.progress))
        result.completion = PassSearchResult::Completion::Cancelled;
    return result;
}

std::optional<NightWindow> FindNightWindow(const CObserverDoc& observer, double startJdUT)
{
    if (!std::isfinite(startJdUT)) return std::nullopt;
    const ApparentPositionFn sun = SunPlace;
    const std::optional<double> sunset = observer.FindNextCrossing(sun, startJdUT, 1.0, kRiseAltitudeSunRad, false);
    if (!sunset) {
        double ra = 0, dec = 0;
        SunPlace(startJdUT, ra, dec);
        if (observer.AltitudeOf(ra, dec, startJdUT) < kRiseAltitudeSunRad)
            return NightWindow{startJdUT, startJdUT + 1.0};  // polar night
        return std::nullopt;                                 // midnight sun
    }
    NightWindow night;
    night.startJdUT = std::round(*sunset * kMinutesPerDay) / kMinutesPerDay;
    const std::optional<double> sunrise = observer.FindNextCrossing(sun, *sunset, 1.0, kRiseAltitudeSunRad, true);
    night.endJdUT = (sunrise ? *sunrise : startJdUT + 1.0) + kMinuteDays;
    return night;
}

PassSearchResult SearchAllSatellitePasses(const std::vector<SatelliteRecord>& records, const CObserverDoc& observer,
                                          double startJdUT, const CEarthSatSettings& settings,
                                          const PassSearchCallbacks& callbacks)
{
    PassSearchResult result;
    WalkRules rules = RulesFromSettings(settings);
    rules.darkness = Darkness::NightWindow;
    rules.startJdUT = startJdUT;
    rules.endJdUT = startJdUT + 1.0;
    if (settings.passVisibility == PassVisibility::VisibleOnly) {
        const std::optional<NightWindow> night = FindNightWindow(observer, startJdUT);
        if (night) {
            rules.startJdUT = night->startJdUT;
            rules.endJdUT = night->endJdUT;
        } else {
            rules.endJdUT = rules.startJdUT;  // no darkness: nothing is visible
        }
    }
    result.startJdUT = rules.startJdUT;
    result.endJdUT = rules.endJdUT;
    const SatelliteSite site = SiteOfObserver(observer);

    const double count = static_cast<double>(records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (callbacks.progress && callbacks.progress(i / count) == ProgressAnswer::Cancel) {
            result.completion = PassSearchResult::Completion::Cancelled;
            break;
        }
        if (!Proceed(records[i], rules.startJdUT, settings, callbacks)) {
            result.abandonedSatellites.push_back(static_cast<int>(i));
            continue;
        }
        std::function<ProgressAnswer(double)> partial;
        if (callbacks.progress)
            partial = [&](double f) { return callbacks.progress((i + f) / count); };
        if (!WalkSatellite(records[i], static_cast<int>(i), site, rules, result.passes, result.failedSteps, partial)) {
            result.completion = PassSearchResult::Completion::Cancelled;
            break;
        }
    }
    SortByTime(result.passes);
    return result;
}

}  // namespace orv::sat
