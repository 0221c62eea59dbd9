#include "solarsystem/vsop87.h"

#include <cmath>
#include <limits>

#include <erfa.h>

#include "util/dataproblems.h"
#include "util/binaryio.h"
#include "util/datapath.h"

namespace orv {

namespace {

constexpr double kDaysPerJulianMillennium = 365250.0;
constexpr double kJ2000 = 2451545.0;

}  // namespace

Vsop87Status CVsop87D::Open()
{
    std::string indexPath;
    std::string termPath;
    if (!LocateDataFile("Data\\VSOP87.idx", indexPath) || !LocateDataFile("Data\\VSOP87.dat", termPath))
        return Vsop87Status::Missing;
    const Vsop87Status status = OpenFiles(indexPath, termPath);
    if (status == Vsop87Status::Damaged)
        ReportDataFileProblem(indexPath, "it does not agree with " + termPath + " (a file cut short or of another layout)");
    return status;
}

Vsop87Status CVsop87D::OpenFiles(const std::string& indexPath, const std::string& termPath)
{
    m_terms.Close();
    CMappedFile index;
    if (!index.Open(indexPath)) return Vsop87Status::Missing;
    if (index.Size() != kVsop87IndexBytes) return Vsop87Status::Damaged;
    CMappedFile terms;
    if (!terms.Open(termPath)) return Vsop87Status::Missing;
    if (terms.Size() % kVsop87TermBytes != 0) return Vsop87Status::Damaged;
    const std::size_t available = terms.Size() / kVsop87TermBytes;
    for (std::size_t body = 0; body < 8; ++body) {
        std::size_t next = 0;
        for (std::size_t s = 0; s < 18; ++s) {
            const std::uint8_t* p = index.Data() + (body * 18 + s) * 4;
            Vsop87IndexEntry& e = m_index[body][s];
            e.firstTerm = LoadLE<std::int16_t>(p);
            e.termCount = LoadLE<std::int16_t>(p + 2);
            if (e.firstTerm < 0 || e.termCount < 0) return Vsop87Status::Damaged;
            // Only the first entry's start is used: the series follow one another.
            if (s == 0) next = static_cast<std::size_t>(e.firstTerm);
            next += static_cast<std::size_t>(e.termCount);
            if (next > available) return Vsop87Status::Damaged;
        }
    }
    m_terms = std::move(terms);
    return Vsop87Status::Ok;
}

int CVsop87D::TermCount(int body) const
{
    if (body < 1 || body > 8) return 0;
    int n = 0;
    for (const Vsop87IndexEntry& e : m_index[static_cast<std::size_t>(body - 1)]) n += e.termCount;
    return n;
}

SphericalLBR CVsop87D::EvaluateOfDate(int body, double jdTT) const
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    if (!IsOpen() || body < 1 || body > 8 || !std::isfinite(jdTT)) return {nan, nan, nan};
    const double t = (jdTT - kJ2000) / kDaysPerJulianMillennium;
    const auto& entries = m_index[static_cast<std::size_t>(body - 1)];
    const std::uint8_t* term = m_terms.Data() + static_cast<std::size_t>(entries[0].firstTerm) * kVsop87TermBytes;
    double coordinate[3] = {0.0, 0.0, 0.0};
    for (int c = 0; c < 3; ++c) {
        // Σ_α S_α t^α, by Horner's rule from the highest power down.
        double sums[6];
        for (int power = 0; power < 6; ++power) {
            double s = 0.0;
            const int n = entries[static_cast<std::size_t>(c * 6 + power)].termCount;
            for (int k = 0; k < n; ++k, term += kVsop87TermBytes) {
                const double a = LoadLE<double>(term);
                const double b = LoadLE<double>(term + 8);
                const double cc = LoadLE<double>(term + 16);
                s += a * std::cos(b + cc * t);
            }
            sums[power] = s;
        }
        double value = 0.0;
        for (int power = 5; power >= 0; --power) value = value * t + sums[power];
        coordinate[c] = value;
    }
    return {coordinate[0], coordinate[1], coordinate[2]};
}

bool CVsop87Subset::Build(const CVsop87D& series, int body, double minTermRad, double maxAbsMillennia)
{
    m_terms.clear();
    m_counts = {};
    m_omitted = {};
    m_built = false;
    if (!series.IsOpen() || body < 1 || body > 8) return false;
    const auto& entries = series.m_index[static_cast<std::size_t>(body - 1)];
    const std::uint8_t* term =
        series.m_terms.Data() + static_cast<std::size_t>(entries[0].firstTerm) * kVsop87TermBytes;
    for (std::size_t s = 0; s < 18; ++s) {
        const double scale = std::pow(maxAbsMillennia, static_cast<double>(s % 6));
        for (int k = 0; k < entries[s].termCount; ++k, term += kVsop87TermBytes) {
            const Term t{LoadLE<double>(term), LoadLE<double>(term + 8), LoadLE<double>(term + 16)};
            if (std::fabs(t.a) * scale >= minTermRad) {
                m_terms.push_back(t);
                ++m_counts[s];
            } else {
                m_omitted[s / 6] += std::fabs(t.a) * scale;
            }
        }
    }
    m_built = true;
    return true;
}

SphericalLBR CVsop87Subset::EvaluateOfDate(double jdTT) const
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    if (!m_built || !std::isfinite(jdTT)) return {nan, nan, nan};
    const double t = (jdTT - kJ2000) / kDaysPerJulianMillennium;
    const Term* term = m_terms.data();
    double coordinate[3] = {0.0, 0.0, 0.0};
    for (std::size_t c = 0; c < 3; ++c) {
        double sums[6];
        for (std::size_t power = 0; power < 6; ++power) {
            double s = 0.0;
            for (int k = 0; k < m_counts[c * 6 + power]; ++k, ++term) s += term->a * std::cos(term->b + term->c * t);
            sums[power] = s;
        }
        double value = 0.0;
        for (int power = 5; power >= 0; --power) value = value * t + sums[power];
        coordinate[c] = value;
    }
    return {coordinate[0], coordinate[1], coordinate[2]};
}

namespace {

constexpr double kTwoPi = 6.283185307179586476925;

double Mod2Pi(double a)
{
    const double r = std::fmod(a, kTwoPi);
    return r < 0.0 ? r + kTwoPi : r;
}

}  // namespace

bool Vsop87Heliocentric(const CVsop87D& series, int body, double jdTT, SphericalLBR* ofDate, double j2000[3])
{
    SphericalLBR lbr = series.EvaluateOfDate(body, jdTT);
    if (!std::isfinite(lbr.rAU)) return false;
    // From VSOP87's dynamical ecliptic and equinox to FK5 (Bretagnon &
    // Francou 1988; Meeus eq. 32.3), T in Julian centuries.
    constexpr double kDegToRad = kTwoPi / 360.0;
    constexpr double kArcsecToRad = kDegToRad / 3600.0;
    const double T = (jdTT - kJ2000) / 36525.0;
    const double lp = lbr.lRad - (1.397 + 0.00031 * T) * T * kDegToRad;
    const double dl = -0.09033 + 0.03916 * (std::cos(lp) + std::sin(lp)) * std::tan(lbr.bRad);
    const double db = 0.03916 * (std::cos(lp) - std::sin(lp));
    lbr.lRad = Mod2Pi(lbr.lRad + dl * kArcsecToRad);
    lbr.bRad += db * kArcsecToRad;
    if (ofDate) *ofDate = lbr;
    if (j2000) {
        // VSOP87D's ecliptic and equinox of date are those of the IAU 1976
        // precession (Lieske et al. 1977) and obliquity: the rectangular
        // J2000 result is formed with that model (ERFA eraObl80, eraPmat76).
        // Through the IAU 2006 model instead it would drift from the
        // theory's own J2000 frame by 0.30″ per century in longitude (the
        // two models' precession rates differ by that much) and 0.02″ per
        // century in the pole; formed this way the Earth agrees with SOFA's
        // independent eraEpv00 to 0.04″ over 1900–2100. The FK5 correction
        // above brings the theory's dynamical frame (DE200's) closer to the
        // ICRS than the IAU 2006 frame bias does (0.04″ against 0.11″).
        const double x = lbr.rAU * std::cos(lbr.bRad) * std::cos(lbr.lRad);
        const double y = lbr.rAU * std::cos(lbr.bRad) * std::sin(lbr.lRad);
        const double z = lbr.rAU * std::sin(lbr.bRad);
        const double eps = eraObl80(jdTT, 0.0);
        double ofDateEquatorial[3] = {x, y * std::cos(eps) - z * std::sin(eps), z * std::cos(eps) + y * std::sin(eps)};
        double precession[3][3];
        eraPmat76(jdTT, 0.0, precession);
        eraTrxp(precession, ofDateEquatorial, j2000);
    }
    return true;
}

SphericalLBR J2000ToEclipticOfDate(const double j2000[3], double jdTT)
{
    double precession[3][3];
    eraPmat76(jdTT, 0.0, precession);
    double in[3] = {j2000[0], j2000[1], j2000[2]};
    double v[3];
    eraRxp(precession, in, v);
    const double eps = eraObl80(jdTT, 0.0);
    const double y = v[1] * std::cos(eps) + v[2] * std::sin(eps);
    const double z = v[2] * std::cos(eps) - v[1] * std::sin(eps);
    SphericalLBR lbr;
    lbr.rAU = std::sqrt(v[0] * v[0] + y * y + z * z);
    lbr.lRad = std::atan2(y, v[0]);
    if (lbr.lRad < 0.0) lbr.lRad += kTwoPi;
    lbr.bRad = std::asin(z / lbr.rAU);
    return lbr;
}

}  // namespace orv
