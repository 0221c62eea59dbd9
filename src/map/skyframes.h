// The coordinate module: moving sky positions between the catalogue frame
// (ICRS/J2000), the equator and equinox of date, and the observer's horizon.
//
// Angles are radians; right ascension and azimuth in [0, 2π), azimuth from
// north through east. "Of date" positions are apparent places (true equator
// and equinox of date, annual aberration applied) unless the function says
// Place::Mean.
#pragma once

namespace orv {

class CObserverDoc;

// Whether refraction lifts altitudes when going to the horizon frame.
enum class Refraction { Apply, Ignore };

// Which place of date a catalogue position is brought to.
enum class Place {
    Apparent,  // annual aberration, precession and nutation
    Mean,      // precession only: mean equator and equinox of date
};

// Earth's barycentric velocity in units of the speed of light (equatorial,
// J2000 axes) and its Lorentz factor, for the annual aberration. The
// solar-system layer supplies it from its own ephemeris; until then, and for
// headless use, CErfaEarthVelocity computes it with ERFA.
struct EarthVelocity {
    double betaJ2000[3] = {0.0, 0.0, 0.0};  // v / c
    double gamma = 1.0;                      // 1 / sqrt(1 − β²)
};

class IEarthVelocitySource {
public:
    virtual ~IEarthVelocitySource() = default;
    virtual EarthVelocity AtTT(double jdTT) const = 0;
};

// ERFA's eraEpv00 (VSOP2000-fitted series, Bretagnon): velocity good to a few
// 1e-9 AU/day, i.e. far below a milliarcsecond of aberration.
class CErfaEarthVelocity final : public IEarthVelocitySource {
public:
    EarthVelocity AtTT(double jdTT) const override;
};

// The source used when a caller does not name one; SetEarthVelocitySource
// replaces it (nullptr restores ERFA). Not owned.
const IEarthVelocitySource& EarthVelocitySource();
void SetEarthVelocitySource(const IEarthVelocitySource* source);

// Unit vector (x toward the equinox, z toward the pole) of a longitude and
// latitude, and back (longitude into [0, 2π)).
void SphericalToVector(double lonRad, double latRad, double v[3]);
void VectorToSpherical(const double v[3], double& lonRad, double& latRad);

// Annual aberration, relativistic form: p' = p/((1 + d)γ) + ((1 + d/(1/γ + 1))/(1 + d))·V
// with d = p·V (Stumpff; Explanatory Supplement 1992, eq. 3.252-3). Applied to
// a unit vector in place, the result renormalised.
void ApplyAberration(double p[3], const EarthVelocity& velocity);

// Equator of date (apparent) → horizon at the observer's site and time.
// With Refraction::Apply, refraction is added only above −0.1 rad, and only
// when the refracted altitude is not negative: an object just below the
// horizon that refraction would not lift above it keeps its true altitude.
void EquatorialToHorizontal(const CObserverDoc& observer, double raRad, double decRad, double& altRad,
                            double& azRad, Refraction refraction = Refraction::Apply);

// Horizon → equator of date; an apparent altitude above 0 is first corrected
// for refraction (InverseRefraction); 0 or below is used as it is.
void HorizontalToEquatorial(const CObserverDoc& observer, double altRad, double azRad, double& raRad,
                            double& decRad, Refraction refraction = Refraction::Apply);

// Catalogue (J2000/ICRS) → place of the observer's date.
void CatalogueToDate(const CObserverDoc& observer, double& raRad, double& decRad, Place place = Place::Apparent);

// Catalogue (J2000/ICRS) → apparent place at the dynamical date jdTT
// (aberration for that date, precession, nutation).
void CatalogueToDateAt(const CObserverDoc& observer, double& raRad, double& decRad, double jdTT);

// Precession only, between J2000 and the mean equator and equinox of the
// observer's date: direction −1 J2000 → date, +1 date → J2000.
void PrecessOnly(const CObserverDoc& observer, double& raRad, double& decRad, int direction);

// Apparent place of date → catalogue (J2000/ICRS): the inverse of
// CatalogueToDate with Place::Apparent (nutation removed, precession undone,
// aberration removed by iteration to 1e-12 rad).
void DateToCatalogue(const CObserverDoc& observer, double& raRad, double& decRad);

}  // namespace orv
