// Rigorous propagation of a star's place by its space motion.
#pragma once

namespace orv {

// The star's astrometric data at the catalogue epoch (ICRS).
struct SpaceMotionStar {
    double raRad = 0.0;               // right ascension
    double decRad = 0.0;              // declination
    double pmRaStarArcsecPerYr = 0.0; // μα* = μα cos δ, arcsec per Julian year
    double pmDecArcsecPerYr = 0.0;    // μδ, arcsec per Julian year
    double parallaxArcsec = 0.0;      // ϖ; 0 or less: distance unknown, taken as infinite
    double radialVelocityKmS = 0.0;   // positive receding
};

// Place of the star `years` Julian years after the catalogue epoch (negative
// before it), as seen from the solar-system barycentre. The star moves on a
// straight line with constant inertial velocity; the catalogue's proper
// motion and radial velocity are taken as observed quantities (the observed
// motion differs from the inertial one by the light-time factor 1 + vr/c and
// by special relativity), and the change of the light travel time along the
// way is taken into account (Stumpff 1985, A&A 144, 232; Kaplan et al. 1989,
// AJ 97, 1197; Explanatory Supplement 3rd ed. 2013, sect. 7.2.2), so that the
// foreshortening of the proper motion and the perspective acceleration come
// out exactly. Without a parallax the star is at infinite distance and keeps
// a constant velocity on the tangent plane: direction ∝ p + μ t.
//
// Agrees with ERFA's eraStarpm (the SOFA formulation of the same model) to
// 0.1 mas over ±2000 years for the nearby high-velocity stars (Barnard's star,
// Proxima, Polaris near the pole). Returns false, leaving the outputs
// untouched, for non-finite input.
bool PropagateSpaceMotion(const SpaceMotionStar& star, double years, double& raRad, double& decRad);

}  // namespace orv
