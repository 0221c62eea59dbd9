#include "satellite/groundtrack.h"

#include <cmath>

#include "satellite/wgs72.h"

namespace orv::sat {

GroundTrackResult ComputeGroundTrack(const SatelliteRecord& record, double startJdUT,
                                     const CEarthSatSettings& settings, const EpochAgeQuestionFn& askEpochAge)
{
    GroundTrackResult result;
    result.endJdUT = startJdUT;
    const EpochAgeCheck age = CheckEpochAge(record, startJdUT, settings);
    if (age.result == EpochAgeCheck::Result::Ask && askEpochAge &&
        askEpochAge(record, age.daysRounded) == EpochAgeAnswer::No) {
        result.outcome = GroundTrackResult::Outcome::Abandoned;
        return result;
    }
    if (!std::isfinite(startJdUT)) return result;

    const double lengthMin = settings.groundTrackDuration == GroundTrackDuration::OneOrbit
                                 ? record.periodMinutes
                                 : static_cast<double>(settings.groundTrackLengthMin);
    const double stepMin = settings.groundTrackIntervalMin > 0 ? settings.groundTrackIntervalMin : 1;
    if (!(lengthMin >= 0.0) || !std::isfinite(lengthMin)) return result;
    // A track longer than a year at one-minute steps is not a ground track.
    const long steps = static_cast<long>(std::floor(std::min(lengthMin, 366.0 * kMinutesPerDay) / stepMin + 1e-9));

    CSatellitePropagator propagator(record);
    result.points.reserve(static_cast<std::size_t>(steps + 1));
    for (long k = 0; k <= steps; ++k) {
        const double jd = startJdUT + k * stepMin / kMinutesPerDay;
        result.endJdUT = jd;
        TemeStateKm state;
        const PropagationStatus status = propagator.PropagateToJd(jd, state);
        if (status != PropagationStatus::Ok) {
            if (result.failedSteps++ == 0) result.firstFailure = status;
            continue;
        }
        const SubSatellitePoint sub = ComputeSubSatellitePoint(state.positionKm, jd);
        GroundTrackPoint p;
        p.jdUT = jd;
        p.latitudeRad = sub.latitudeRad;
        p.longitudeRad = sub.longitudeRad;
        p.heightKm = sub.heightKm;
        p.speedKmPerS = std::sqrt(state.velocityKmPerS[0] * state.velocityKmPerS[0] +
                                  state.velocityKmPerS[1] * state.velocityKmPerS[1] +
                                  state.velocityKmPerS[2] * state.velocityKmPerS[2]);
        p.illumination = ComputeIllumination(state.positionKm, jd);
        result.points.push_back(p);
    }
    return result;
}

double ShiftByOrbits(const SatelliteRecord& record, double startJdUT, int orbits)
{
    return startJdUT + orbits * record.periodMinutes / kMinutesPerDay;
}

}  // namespace orv::sat
