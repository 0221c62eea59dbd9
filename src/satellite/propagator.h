// Orbit propagation of an element set with the NORAD analytical models SGP4
// (near Earth) and SDP4 (deep space), as published in Hoots & Roehrich,
// "Models for Propagation of NORAD Element Sets", Spacetrack Report No. 3
// (1980), with the WGS-72 constants of satellite/wgs72.h.
//
// Output frame: the models' own, TEME — true equator of date, mean equinox of
// date (the x axis points to the mean equinox measured along the true
// equator; Vallado et al., AIAA 2006-6753, section VI). The satellite code
// takes this frame as the true-equator frame in which the site is placed with
// the mean sidereal time, as the element sets themselves are fitted.
//
// The models return position in Earth radii and velocity in Earth radii per
// minute; the conversions to kilometres and km/s are below (× 6378.135 and
// × 6378.135 / 60).
//
// Choices of this implementation (each within the published model):
//   - the model is chosen once per satellite: a period (from the un-Kozai'd
//     mean motion) of 225 minutes or more uses SDP4;
//   - for a perigee below 156 km the density parameter s becomes perigee − 78
//     km, and 20 km below 98 km (the report's rule);
//   - Kepler's equation (with the long-period terms) is solved by the report's
//     Newton iteration until two successive estimates differ by no more than
//     1e-6 rad. There is no cap on the number of iterations; each correction
//     is limited to 0.95 rad, which leaves the solution unchanged but keeps
//     the iteration from wandering for eccentricities near 1 (plain Newton
//     from the mean anomaly can take thousands of steps there). The position
//     is then evaluated at the converged estimate;
//   - SDP4's resonance integrator steps by 720 minutes from the epoch, with
//     the lunar-solar day number counted from 1900 January 0.5 (the report's
//     1950-based epoch day + 18261.5);
//   - SDP4's lunar-solar periodic terms are evaluated at every call (the
//     report re-used them within 30 minutes of the previous call, which made
//     a position depend on the call before it), and the integrator restarts
//     from the epoch whenever the requested time lies nearer the epoch than
//     its current state (the report integrated backwards from there); both
//     make a propagation a pure function of the time;
//   - in the Lyddane form of the lunar-solar periodics (epoch inclination
//     below 0.2 rad) the node is reduced to [0, 2π) before it enters the
//     longitude and kept on the same branch as the node recovered by the arc
//     tangent, so that the argument of perigee does not jump by a multiple of
//     2π cos i;
//   - the terms divided by the eccentricity (C3 and the δM drag term) are
//     omitted below e = 1e-4, and divisions by sin i and 1 + cos i are guarded
//     for equatorial orbits, where the report's expressions are 0/0.
// Elements or times the models cannot propagate give an error status instead
// of a position (see PropagationStatus); no loop ever sees a non-finite value.
#pragma once

#include <array>
#include <memory>
#include <string_view>

#include "satellite/elements.h"

namespace orv::sat {

enum class OrbitModel {
    Sgp4NearEarth,  // period below 225 minutes
    Sdp4DeepSpace,  // period of 225 minutes or more
};

enum class PropagationStatus {
    Ok,
    NonFiniteTime,           // the time since epoch is NaN or infinite
    TimeOutOfRange,          // more than ±1e8 minutes (190 years) from the epoch
    InvalidElements,         // mean motion not positive, eccentricity outside [0, 1),
                             // a non-finite field, or no positive semi-major axis
    EccentricityOutOfRange,  // the propagated eccentricity left [0, 1)
    MeanMotionNotPositive,   // SDP4's resonance terms drove the mean motion to zero
    Decayed,                 // the orbit has decayed: drag took the semi-major axis
                             // below 0.95 Earth radii, or the satellite is inside the Earth
};

// A short English description of a status (for messages and the command line).
std::string_view PropagationStatusText(PropagationStatus status);

// Position and velocity in the TEME frame in the models' units.
struct TemeStateEarthRadii {
    std::array<double, 3> positionEr{};       // Earth radii
    std::array<double, 3> velocityErPerMin{};  // Earth radii per minute
};

// Position and velocity in the TEME frame in kilometres and km/s.
struct TemeStateKm {
    std::array<double, 3> positionKm{};
    std::array<double, 3> velocityKmPerS{};
};

TemeStateKm ToKilometres(const TemeStateEarthRadii& state);

// Model choice from the period: SDP4 from 225.0 minutes on.
OrbitModel ModelForPeriod(double periodMinutes);

// The propagation working set of one satellite: a copy of its elements, the
// model flag, and the model's epoch-dependent constants, computed on the first
// propagation and kept. Not shared between threads (it keeps the resonance
// integrator's state).
class CSatellitePropagator {
public:
    explicit CSatellitePropagator(const SatelliteRecord& record);
    ~CSatellitePropagator();
    CSatellitePropagator(CSatellitePropagator&&) noexcept;
    CSatellitePropagator& operator=(CSatellitePropagator&&) noexcept;
    CSatellitePropagator(const CSatellitePropagator& other);
    CSatellitePropagator& operator=(const CSatellitePropagator& other);

    const SatelliteRecord& Elements() const { return m_elements; }
    OrbitModel Model() const { return m_model; }

    // State at `minutesSinceEpoch` (may be negative). On any status but Ok the
    // state is unspecified. Decayed is reported together with the state the
    // model gives (a radius below one Earth radius).
    PropagationStatus Propagate(double minutesSinceEpoch, TemeStateEarthRadii& state);

    // State at the Julian date `jdUT` in km and km/s; the time since epoch is
    // (jdUT − epoch) × 1440 minutes.
    PropagationStatus PropagateToJd(double jdUT, TemeStateKm& state);

private:
    struct Constants;
    void Initialise();

    SatelliteRecord m_elements;
    OrbitModel m_model;
    bool m_initialised = false;
    PropagationStatus m_initStatus = PropagationStatus::Ok;
    std::unique_ptr<Constants> m_c;
};

}  // namespace orv::sat
