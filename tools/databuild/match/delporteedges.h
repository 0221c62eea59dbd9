// Delporte's boundary edges recovered from their J2000 form.
//
// The IAU boundaries (Delporte 1930) run along meridians and parallels of the
// B1875.0 equator, between vertices at whole seconds of time in right
// ascension and whole arc minutes in declination. The sources carry them
// precessed to J2000 with points interpolated every degree (Davenhall and
// Leggett 1989). Precessing every point back to B1875.0 (IAU 1976, Lieske et
// al. 1977 — the model they were precessed with) puts each vertex within a
// few hundredths of a second of time of a whole second, and each meridian or
// parallel on a constant right ascension or declination; the vertices are
// where a segment turns from one to the other, and its ends.
#pragma once

#include <string>
#include <vector>

#include "model/constellations.h"

namespace orv::databuild {

// B1875.0 as a Julian date (Besselian epoch 1875.0).
inline constexpr double kJdB1875 = 2405889.258550475;

// Precesses a mean place between the mean equators and equinoxes of two
// Julian dates (TT): IAU 1976 precession angles ζ, z, θ (Lieske et al. 1977,
// A&A 58, 1; Meeus, Astronomical Algorithms, eq. 21.2–21.4). Degrees.
void PrecessIau1976(double& raDeg, double& decDeg, double jdFrom, double jdTo);

// The largest distance from a whole second of time (right ascension) or a
// whole arc minute (declination) that a recovered vertex may have.
inline constexpr double kVertexToleranceSecTime = 0.2;
inline constexpr double kVertexToleranceArcmin = 0.05;

// Recovers the edges of every segment. Parallel edges longer than six hours
// are cut at whole seconds into equal parts, so that each is drawn the short
// way round. False with a message naming the source line when a vertex lies
// off Delporte's grid or a step is neither along a meridian nor a parallel.
bool RecoverDelporteEdges(const std::vector<BoundarySegment>& segments, std::vector<BoundaryEdge>& edges,
                          std::string& error);

}  // namespace orv::databuild
