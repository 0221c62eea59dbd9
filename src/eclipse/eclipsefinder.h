// Every solar and lunar eclipse of a span of years, computed from our own
// solar and lunar theory (eclipsegeometry.h): the new and full moons near the
// Moon's nodes, then the instant of greatest eclipse, gamma, the magnitude
// and the type. docs/eclipses.md states how each type is decided.
#pragma once

#include <functional>
#include <optional>
#include <vector>

namespace orv {

enum class EclipseKind { Solar, Lunar };

// Which kinds a computation or a search covers.
enum class EclipseKinds { Solar, Lunar, Both };

// One eclipse at its greatest phase.
struct EclipseEvent {
    EclipseKind kind = EclipseKind::Solar;
    // Greatest eclipse, Julian date TT: for a solar eclipse the instant the
    // shadow axis passes closest to the Earth's centre, for a lunar one the
    // instant the Moon's centre passes closest to the axis of the Earth's
    // shadow (the definitions of the NASA canons).
    double jdTT = 0.0;
    // Solar 'T' total, 'A' annular, 'H' hybrid, 'P' partial; lunar 'T'
    // total, 'P' partial, 'N' penumbral.
    char type = 'P';
    // Least distance of the shadow axis from the Earth's centre (solar) or of
    // the Moon's centre from the shadow axis (lunar), Earth equatorial radii,
    // positive when the axis or the Moon passes north of the centre.
    double gamma = 0.0;
    // Solar: magnitude at greatest eclipse (for central eclipses the ratio of
    // the Moon's apparent diameter to the Sun's). Lunar: umbral magnitude
    // (negative for penumbral eclipses).
    double magnitude = 0.0;
    // Lunar: penumbral magnitude. Solar: unused.
    double penumbralMagnitude = 0.0;
};

// Progress in [0, 1]; return false to stop (the computation then returns
// what it found so far, with `cancelled` set).
using EclipseProgressFn = std::function<bool(double fraction)>;

struct EclipseList {
    std::vector<EclipseEvent> events;  // chronological, solar and lunar merged
    bool cancelled = false;
    bool ephemerisMissing = false;  // the VSOP87 series could not be opened
    // Eclipses first computed with the quick Sun (SunMoonAtQuickSun) and
    // then again with the Earth's larger terms (SunSeries::Larger), because
    // their instant, magnitude or type lay near an edge the quick Sun's
    // error could cross; and those computed a third time with the exact
    // places, near an edge even for the larger terms.
    long finerRecomputations = 0;
    long exactRecomputations = 0;
};

// The eclipses of kinds `kinds` whose greatest eclipse falls in the
// astronomical years firstYear … lastYear (calendar of the date: Julian
// before 1582 October 15), in dynamical time. Valid −1999 … +3000, the
// span of the tables; the accuracy of the instants is a few seconds over
// the modern era and grows with the uncertainty of the Moon's secular
// acceleration in the ephemeris into the distant past.
// Years outside that span, or a last year before the first, give an empty
// list.
inline constexpr int kEclipseFirstYear = -1999;
inline constexpr int kEclipseLastYear = 3000;
EclipseList FindEclipses(int firstYear, int lastYear, EclipseKinds kinds, const EclipseProgressFn& progress = {});

// The eclipse of the given kind at the syzygy nearest jdTT (within half a
// lunation), or nothing when that new or full moon brings none.
std::optional<EclipseEvent> EclipseAtSyzygyNear(double jdTT, EclipseKind kind);

}  // namespace orv
