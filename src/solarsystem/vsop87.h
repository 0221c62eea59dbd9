// The VSOP87D planetary theory read from the data folder's "Data\VSOP87.idx"
// and "Data\VSOP87.dat" (layout in docs/planet-files.md).
//
// VSOP87D (Bretagnon & Francou 1988, A&A 202, 309) gives the heliocentric
// ecliptic spherical coordinates of the eight planets referred to the mean
// dynamical ecliptic and equinox of date, as Poisson series in
// t = (jdTT − 2451545.0)/365250 (Julian millennia of TDB; TT is used for TDB,
// the two differing by under 2 ms). With every term of the published series
// the theory follows the numerical integration DE200 to about 0.001″ in
// longitude for Mercury to Mars over 1900–2100 and a few 0.01″ for the outer
// planets over the same span.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "util/mappedfile.h"

namespace orv {

// Heliocentric spherical coordinates: longitude and latitude in radians,
// radius vector in AU.
struct SphericalLBR {
    double lRad = 0.0;
    double bRad = 0.0;
    double rAU = 0.0;
};

// One entry of the index file: the first term of a series and its length.
struct Vsop87IndexEntry {
    std::int16_t firstTerm = 0;
    std::int16_t termCount = 0;
};
inline constexpr std::size_t kVsop87IndexBytes = 576;  // 8 bodies × 18 entries × 4 bytes
inline constexpr std::size_t kVsop87TermBytes = 24;    // three doubles A, B, C

enum class Vsop87Status { Ok, Missing, Damaged };

// The mapped series. Open once; evaluation is read-only and reentrant.
class CVsop87D {
public:
    // Locates and maps both files (LocateDataFile). Missing when either file
    // is absent; Damaged when the index is not 576 bytes or names a term
    // beyond the end of the term file (every series is checked here, so
    // evaluation needs no check of its own).
    Vsop87Status Open();
    Vsop87Status OpenFiles(const std::string& indexPath, const std::string& termPath);
    bool IsOpen() const { return m_terms.IsOpen(); }
    // Terms held for a body 1–8 (Mercury … Neptune, 3 the Earth).
    int TermCount(int body) const;

    // The series as published: L, B (rad, L not reduced to [0, 2π)) and R
    // (AU), heliocentric, mean dynamical ecliptic and equinox of date, at
    // jdTT. Body 1–8; a body outside that range, a non-finite date or an
    // unopened series give NaN.
    SphericalLBR EvaluateOfDate(int body, double jdTT) const;

private:
    friend class CVsop87Subset;
    CMappedFile m_terms;
    std::array<std::array<Vsop87IndexEntry, 18>, 8> m_index{};
};

// The larger terms of one body's series, copied out once, for computations
// that evaluate the body tens of thousands of times and need less than the
// theory's full precision (the eclipse tables: the Earth's 2,425 terms cost
// nine tenths of an exact Sun and Moon). A term A cos(B + C t) of power α is
// kept when A |t|^α, at the largest |t| the subset is to serve, reaches
// `minTermRad`; the sum of what is left out bounds the error there
// (`OmittedBound`), the actual error being a small fraction of it since the
// omitted terms' phases are unrelated.
class CVsop87Subset {
public:
    // False when the series is not open or the body is outside 1–8.
    bool Build(const CVsop87D& series, int body, double minTermRad, double maxAbsMillennia);
    int TermCount() const { return static_cast<int>(m_terms.size()); }
    // Σ A |t|^α of the omitted terms of L, B (rad) and R (AU) at the largest |t|.
    const std::array<double, 3>& OmittedBound() const { return m_omitted; }
    // As CVsop87D::EvaluateOfDate, from the kept terms; NaN when not built
    // or the date is not finite.
    SphericalLBR EvaluateOfDate(double jdTT) const;

private:
    struct Term {
        double a, b, c;
    };
    std::vector<Term> m_terms;            // L0…L5, B0…B5, R0…R5 in order
    std::array<int, 18> m_counts{};       // kept terms of each series
    std::array<double, 3> m_omitted{};
    bool m_built = false;
};

// Body 1–8 from the series as the program uses it: the spherical place of
// date corrected from VSOP87's dynamical ecliptic and equinox to FK5
// (`ofDate`, L in [0, 2π)), and the heliocentric J2000 equatorial rectangular
// position in AU (`j2000`, either output may be null). False when the series
// cannot answer (not open, body out of range, date not finite).
bool Vsop87Heliocentric(const CVsop87D& series, int body, double jdTT, SphericalLBR* ofDate, double j2000[3]);

// The inverse of the frame change above: a J2000 equatorial rectangular
// vector (AU) as longitude, latitude and radius referred to the mean
// ecliptic and equinox of date in the same (IAU 1976) frame.
SphericalLBR J2000ToEclipticOfDate(const double j2000[3], double jdTT);

}  // namespace orv
