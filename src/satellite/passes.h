// Passes of satellites over the observer's site: the one-minute walk, the
// following of each pass at the position interval, the visibility, minimum
// altitude and point-count rules, for one satellite over `PassDuration` days
// or for every satellite of the list over one night (24 hours when passes need
// not be visible), both starting at local midday.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "satellite/describe.h"
#include "satellite/elements.h"
#include "satellite/groundtrack.h"
#include "satellite/satsettings.h"
#include "satellite/topocentric.h"
#include "util/progress.h"

namespace orv {
class CObserverDoc;
}

namespace orv::sat {

// Most points a pass may hold to be shown.
inline constexpr std::size_t kMaxPassPoints = 2000;
// The sky is dark enough for a visible pass when the Sun's refracted
// elevation is at or below −6° (civil twilight's end).
inline constexpr double kDarkSkySunElevationDeg = -6.0;

struct PassPoint {
    double jdUT = 0.0;
    double azimuthRad = 0.0;
    double elevationRad = 0.0;  // refracted
    double rangeKm = 0.0;
    double rangeRateKmPerS = 0.0;
    Illumination illumination = Illumination::Sunlit;
};

struct SatellitePass {
    enum class Display { Shown, TooManyPoints };
    int satelliteIndex = 0;           // in the list searched
    std::vector<PassPoint> points;    // at most kMaxPassPoints are kept
    std::size_t pointCount = 0;       // every point of the pass
    double maxElevationRad = 0.0;
    std::size_t maxElevationIndex = 0;  // into points
    Display display = Display::Shown;   // TooManyPoints: more than 2000 points
};

// Progress of a long search: the fraction done (0-1); Cancel stops it.
using orv::ProgressAnswer;
using orv::ProgressFn;

struct PassSearchCallbacks {
    EpochAgeQuestionFn askEpochAge;  // empty: proceed
    ProgressFn progress;             // empty: never cancelled
};

struct PassSearchResult {
    enum class Completion { Finished, Cancelled };
    Completion completion = Completion::Finished;
    // Passes in time order of their first point (for all satellites, merged).
    std::vector<SatellitePass> passes;
    // Satellites abandoned at the epoch-age question.
    std::vector<int> abandonedSatellites;
    // The time walked: [startJdUT, endJdUT].
    double startJdUT = 0.0;
    double endJdUT = 0.0;
    // Minutes at which the model gave no position.
    long failedSteps = 0;
};

// The site of an observer in the units of this subsystem (height in km).
SatelliteSite SiteOfObserver(const CObserverDoc& observer);

// Passes of one satellite over `PassDuration` days from `startJdUT` (local
// midday of the chosen date). With visible passes only, a minute counts when
// the Sun's refracted elevation is −6° or lower and the satellite is sunlit.
PassSearchResult SearchSatellitePasses(const SatelliteRecord& record, int satelliteIndex, const SatelliteSite& site,
                                       double startJdUT, const CEarthSatSettings& settings,
                                       const PassSearchCallbacks& callbacks);

// The night after local midday `startJdUT`: from sunset (the Sun's centre at
// −0°50′ geometric altitude, rounded to the minute) to the next sunrise plus
// one minute, from the observer's rise/set service with the low-precision
// Sun. Under the midnight sun there is none; in the polar night it is the 24
// hours from midday.
struct NightWindow {
    double startJdUT = 0.0;
    double endJdUT = 0.0;
};
std::optional<NightWindow> FindNightWindow(const CObserverDoc& observer, double startJdUT);

// Passes of every satellite of `records` in 24 hours from `startJdUT`; with
// visible passes only, during the night window only (a satellite must be
// sunlit; the Sun's elevation is not tested minute by minute). The epoch-age
// check is made per satellite; No skips that satellite. Progress is reported
// per satellite.
PassSearchResult SearchAllSatellitePasses(const std::vector<SatelliteRecord>& records, const CObserverDoc& observer,
                                          double startJdUT, const CEarthSatSettings& settings,
                                          const PassSearchCallbacks& callbacks);

}  // namespace orv::sat
