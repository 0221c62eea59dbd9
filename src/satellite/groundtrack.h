// The ground track of one satellite: its sub-satellite point, height, speed
// and illumination at regular steps from a start time.
#pragma once

#include <functional>
#include <vector>

#include "satellite/describe.h"
#include "satellite/elements.h"
#include "satellite/propagator.h"
#include "satellite/satsettings.h"
#include "satellite/topocentric.h"

namespace orv::sat {

struct GroundTrackPoint {
    double jdUT = 0.0;
    double latitudeRad = 0.0;   // geodetic, WGS-72
    double longitudeRad = 0.0;  // east positive, (−π, π]
    double heightKm = 0.0;
    double speedKmPerS = 0.0;   // |velocity| in the TEME frame
    Illumination illumination = Illumination::Sunlit;
};

// Asked once per computation when the epoch-age check says so; No abandons
// the computation for that satellite. An empty function answers Yes.
using EpochAgeQuestionFn = std::function<EpochAgeAnswer(const SatelliteRecord& record, int daysRounded)>;

struct GroundTrackResult {
    enum class Outcome { Computed, Abandoned };
    Outcome outcome = Outcome::Computed;
    std::vector<GroundTrackPoint> points;
    // Steps at which the model gave no position (decayed, …), and the first
    // such status; they are left out of the track.
    int failedSteps = 0;
    PropagationStatus firstFailure = PropagationStatus::Ok;
    double endJdUT = 0.0;  // the last step's time
};

// Steps from `startJdUT` by `GTInterval` minutes up to `GTLength` minutes, or
// up to one period of the satellite when `GTDuration` is "One orbit", both
// ends included. The epoch-age check is made once, at the start time.
GroundTrackResult ComputeGroundTrack(const SatelliteRecord& record, double startJdUT,
                                     const CEarthSatSettings& settings, const EpochAgeQuestionFn& askEpochAge);

// Start time shifted by whole orbits ("+1 Orbit" / "-1 Orbit"): startJdUT +
// orbits × period.
double ShiftByOrbits(const SatelliteRecord& record, double startJdUT, int orbits);

}  // namespace orv::sat
