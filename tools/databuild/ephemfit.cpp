#include "ephemfit.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <thread>
#include <vector>

#include <erfa.h>

#include "catalogbuild.h"
#include "solarsystem/earthoffset.h"
#include "solarsystem/ephem96.h"
#include "solarsystem/moonseries.h"
#include "solarsystem/pluto.h"
#include "solarsystem/vsop87.h"
#include "util/binaryio.h"

namespace fs = std::filesystem;

namespace orv::databuild {

namespace {

constexpr double kPiValue = 3.14159265358979323846;
constexpr double kTwoPiValue = 2.0 * kPiValue;
constexpr double kDegreeToRad = kPiValue / 180.0;
constexpr double kRadToArcsec = 180.0 / kPiValue * 3600.0;
constexpr double kJ2000 = 2451545.0;
constexpr double kAuKm = 149597870.7;
constexpr double kUnitAU = 1e-10;  // the file's unit
// The limit the fit must meet everywhere: the geocentric direction of a body
// computed from the fit may differ from the one computed from its source by
// no more than this.
constexpr double kLimitArcsec = 0.05;

// ---------------------------------------------------------------------------
// Least squares by Householder QR with column pivoting: min ‖A x − B‖ for an
// m×p matrix A and an m×r right-hand side B, both column-major and
// overwritten. The basis of a fit (a cubic and Poisson terms over one
// interval) can be redundant to working precision when the interval spans
// few cycles of its frequencies: columns whose remaining norm falls below
// 1e-10 of the largest are left out (coefficient 0), which gives a basic
// solution instead of huge cancelling coefficients. False when A is empty.
bool SolveLeastSquares(std::vector<double>& a, int m, int p, std::vector<double>& b, int r, std::vector<double>& x)
{
    auto A = [&](int i, int j) -> double& { return a[static_cast<std::size_t>(j) * m + i]; };
    auto B = [&](int i, int j) -> double& { return b[static_cast<std::size_t>(j) * m + i]; };
    std::vector<double> diag(static_cast<std::size_t>(p));
    std::vector<int> column(static_cast<std::size_t>(p));
    for (int j = 0; j < p; ++j) column[static_cast<std::size_t>(j)] = j;
    double first = 0.0;
    int rank = 0;
    for (int k = 0; k < std::min(m, p); ++k) {
        int best = k;
        double bestNorm = -1.0;
        for (int j = k; j < p; ++j) {
            double n2 = 0.0;
            for (int i = k; i < m; ++i) n2 += A(i, j) * A(i, j);
            if (n2 > bestNorm) {
                bestNorm = n2;
                best = j;
            }
        }
        const double norm = std::sqrt(bestNorm);
        if (k == 0) first = norm;
        if (!(norm > 1e-10 * first)) break;
        if (best != k) {
            for (int i = 0; i < m; ++i) std::swap(A(i, k), A(i, best));
            std::swap(column[static_cast<std::size_t>(k)], column[static_cast<std::size_t>(best)]);
        }
        const double alpha = A(k, k) > 0.0 ? -norm : norm;
        A(k, k) -= alpha;  // the Householder vector v is column k from row k
        double vv = 0.0;
        for (int i = k; i < m; ++i) vv += A(i, k) * A(i, k);
        auto reflect = [&](auto&& col) {
            double s = 0.0;
            for (int i = k; i < m; ++i) s += A(i, k) * col(i);
            s = 2.0 * s / vv;
            for (int i = k; i < m; ++i) col(i) -= s * A(i, k);
        };
        for (int j = k + 1; j < p; ++j) reflect([&](int i) -> double& { return A(i, j); });
        for (int j = 0; j < r; ++j) reflect([&](int i) -> double& { return B(i, j); });
        diag[static_cast<std::size_t>(k)] = alpha;
        rank = k + 1;
    }
    if (rank == 0) return false;
    x.assign(static_cast<std::size_t>(p) * r, 0.0);
    std::vector<double> y(static_cast<std::size_t>(rank));
    for (int j = 0; j < r; ++j) {
        for (int k = rank - 1; k >= 0; --k) {
            double s = B(k, j);
            for (int l = k + 1; l < rank; ++l) s -= A(k, l) * y[static_cast<std::size_t>(l)];
            y[static_cast<std::size_t>(k)] = s / diag[static_cast<std::size_t>(k)];
        }
        for (int k = 0; k < rank; ++k)
            x[static_cast<std::size_t>(j) * p + column[static_cast<std::size_t>(k)]] = y[static_cast<std::size_t>(k)];
    }
    return true;
}

// A J2000 equatorial vector from rectangular ecliptic coordinates of date, in
// VSOP87's frame (IAU 1976 obliquity and precession).
void EclipticOfDateToJ2000(const double ecl[3], double jdTT, double out[3])
{
    const double eps = eraObl80(jdTT, 0.0);
    double eq[3] = {ecl[0], ecl[1] * std::cos(eps) - ecl[2] * std::sin(eps),
                    ecl[2] * std::cos(eps) + ecl[1] * std::sin(eps)};
    double precession[3][3];
    eraPmat76(jdTT, 0.0, precession);
    eraTrxp(precession, eq, out);
}

// The barycentre's offset from the Earth from the program's lunar series:
// the Moon's geocentric vector × μ/(1 + μ), J2000 equatorial, AU.
void LunarOffset(double jdTT, double out[3])
{
    const MoonEclipticPlace moon = EvaluateMoonBlock(MoonDataBlock(), jdTT);
    const double l = moon.lonDeg * kDegreeToRad;
    const double b = moon.latDeg * kDegreeToRad;
    const double r = moon.distanceKm / kAuKm * kMoonMassFractionOfEarthMoon;
    const double ecl[3] = {r * std::cos(b) * std::cos(l), r * std::cos(b) * std::sin(l), r * std::sin(b)};
    EclipticOfDateToJ2000(ecl, jdTT, out);
}

}  // namespace

// ---------------------------------------------------------------------------
// The Earth–barycentre table.

bool RunEarthOffsetBuild(const std::string& includePath, const Progress& progress, std::string& error)
{
    // Samples every 0.5 d over 1900–2100: the offset's shortest periods
    // (harmonics of the month) are a week and longer.
    const double first = 2415020.5;
    const double step = 0.5;
    const int samples = static_cast<int>(73050.0 / step) + 1;
    std::vector<double> t(static_cast<std::size_t>(samples));
    std::vector<double> f[3];
    for (auto& v : f) v.resize(static_cast<std::size_t>(samples));
    for (int i = 0; i < samples; ++i) {
        t[static_cast<std::size_t>(i)] = first + i * step;
        double o[3];
        LunarOffset(t[static_cast<std::size_t>(i)], o);
        for (int c = 0; c < 3; ++c) f[c][static_cast<std::size_t>(i)] = o[c] / kUnitAU;
    }
    // Candidate frequencies: the Moon's mean longitude in the fixed J2000
    // frame (its rate of date less the general precession, 5029.0966″ per
    // century) and its argument of latitude F, each combined with small
    // multiples of the Delaunay arguments D, M, M′ and F (Meeus eq. 47.1–47.5,
    // degrees per Julian century). x and y of the ecliptic carry the first
    // family, z of the ecliptic the second; the equator mixes them.
    const double perDay = kDegreeToRad / 36525.0;
    const double W = (481267.88123421 - 5029.0966 / 3600.0) * perDay;
    const double D = 445267.1114034 * perDay;
    const double M = 35999.0502909 * perDay;
    const double Mp = 477198.8675055 * perDay;
    const double F = 483202.0175233 * perDay;
    std::vector<double> candidates;
    for (int family = 0; family < 2; ++family)
        for (int d = -4; d <= 4; ++d)
            for (int m = -2; m <= 2; ++m)
                for (int mp = -3; mp <= 3; ++mp)
                    for (int ff = -2; ff <= 2; ff += 2) {
                        const double w = std::fabs((family == 0 ? W : F) + d * D + m * M + mp * Mp + ff * F);
                        if (w < 1e-4) continue;
                        if (std::none_of(candidates.begin(), candidates.end(),
                                         [&](double c) { return std::fabs(c - w) < 1e-9; }))
                            candidates.push_back(w);
                    }
    progress("  Earth offset: " + std::to_string(candidates.size()) + " candidate frequencies, " +
             std::to_string(samples) + " samples of the lunar series");
    const int wanted[3] = {kEarthOffsetTermsX, kEarthOffsetTermsY, kEarthOffsetTermsZ};
    std::ostringstream text;
    text << "// The offset of the Earth–Moon barycentre from the Earth, J2000 equatorial:\n"
            "// ω (rad/day from J2000.0), sine and cosine amplitudes (1e-10 AU).\n"
            "// Written by \"orvane-databuild --earth-offset\": a least-squares fit over\n"
            "// 1900–2100 of the program's lunar series × μ/(1 + μ), μ = 1/81.30056.\n";
    std::vector<double> hann(static_cast<std::size_t>(samples));
    double hannSum = 0.0;
    for (int i = 0; i < samples; ++i) {
        hann[static_cast<std::size_t>(i)] = 0.5 - 0.5 * std::cos(kTwoPiValue * i / (samples - 1));
        hannSum += hann[static_cast<std::size_t>(i)];
    }
    char line[160];
    for (int c = 0; c < 3; ++c) {
        // Each candidate's amplitude by projection (the frequencies are far
        // apart compared with 1/200 years), the largest kept, then all kept
        // ones fitted together.
        // The projections are weighted by a Hann window: unweighted, the
        // sidelobes of the 4,670 km main line (falling only as 1/Δω) would
        // outrank real lines of 10 km.
        std::vector<std::pair<double, double>> ranked;
        for (double w : candidates) {
            double sc = 0.0, ss = 0.0;
            for (int i = 0; i < samples; ++i) {
                const double a = w * (t[static_cast<std::size_t>(i)] - kJ2000);
                const double fw = f[c][static_cast<std::size_t>(i)] * hann[static_cast<std::size_t>(i)];
                sc += fw * std::cos(a);
                ss += fw * std::sin(a);
            }
            ranked.emplace_back(std::hypot(sc, ss) * 2.0 / hannSum, w);
        }
        std::sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
        const int n = wanted[c];
        // Lines closer than 1.5 cycles over the span cannot be told apart:
        // the larger stands for both.
        const double resolution = 1.5 * kTwoPiValue / (samples * step);
        std::vector<double> omega;
        for (const auto& ranking : ranked) {
            const double w = ranking.second;
            if (static_cast<int>(omega.size()) == n) break;
            if (std::none_of(omega.begin(), omega.end(), [&](double o) { return std::fabs(o - w) < resolution; }))
                omega.push_back(w);
        }
        std::sort(omega.begin(), omega.end());
        const int p = 2 * n;
        std::vector<double> a(static_cast<std::size_t>(samples) * p);
        std::vector<double> b(f[c]);
        for (int k = 0; k < n; ++k)
            for (int i = 0; i < samples; ++i) {
                const double arg = omega[static_cast<std::size_t>(k)] * (t[static_cast<std::size_t>(i)] - kJ2000);
                a[static_cast<std::size_t>(2 * k) * samples + i] = std::sin(arg);
                a[static_cast<std::size_t>(2 * k + 1) * samples + i] = std::cos(arg);
            }
        std::vector<double> x;
        if (!SolveLeastSquares(a, samples, p, b, 1, x)) {
            error = "the Earth offset fit is singular";
            return false;
        }
        double worst = 0.0, sum2 = 0.0;
        for (int i = 0; i < samples; ++i) {
            double v = 0.0;
            for (int k = 0; k < n; ++k) {
                const double arg = omega[static_cast<std::size_t>(k)] * (t[static_cast<std::size_t>(i)] - kJ2000);
                v += x[static_cast<std::size_t>(2 * k)] * std::sin(arg) + x[static_cast<std::size_t>(2 * k + 1)] * std::cos(arg);
            }
            const double d = v - f[c][static_cast<std::size_t>(i)];
            worst = std::max(worst, std::fabs(d));
            sum2 += d * d;
        }
        std::snprintf(line, sizeof line, "  Earth offset %c: %d terms, residual max %.2f km, rms %.2f km", "xyz"[c], n,
                      worst * kUnitAU * kAuKm, std::sqrt(sum2 / samples) * kUnitAU * kAuKm);
        progress(line);
        text << "// " << (line + 2) << "\n";
        text << "constexpr EarthOffsetTerm kOffset" << "XYZ"[c] << "[] = {\n";
        for (int k = 0; k < n; ++k) {
            std::snprintf(line, sizeof line, "    {%.15e, %.3f, %.3f},\n", omega[static_cast<std::size_t>(k)],
                          x[static_cast<std::size_t>(2 * k)], x[static_cast<std::size_t>(2 * k + 1)]);
            text << line;
        }
        text << "};\n";
    }
    const std::string s = text.str();
    OutputFile file{includePath, std::vector<std::uint8_t>(s.begin(), s.end())};
    return Store("", file, progress, error);
}

// ---------------------------------------------------------------------------
// The compact ephemeris.

namespace {

// How one body is fitted: the interval length, the number of fit samples per
// interval (the check uses these and the midpoints between them), and the
// periods (days) of the Poisson terms of orders 0, 1 and 2.
struct BodyFitPlan {
    int body;
    const char* name;
    double lengthDays;
    int fitSamples;
    std::vector<double> orders[3];
};

// Sidereal periods (days) of the bodies whose frequencies the fits use.
constexpr double kMercury = 87.969, kVenus = 224.701, kEarth = 365.256, kMars = 686.980, kJupiter = 4332.59,
                 kSaturn = 10759.22, kUranus = 30688.5, kNeptune = 60182.0, kPluto = 90560.0;

// Synodic periods with the Earth and with Venus: the planets' short-period
// perturbations by the inner planets (tens of km for the outer planets)
// have these periods.
constexpr double Synodic(double inner, double outer) { return 1.0 / (1.0 / inner - 1.0 / outer); }

// Each body's own period and its first harmonics carry its orbit (Mercury's
// eccentric one needs three); Jupiter's and Saturn's periods carry the Sun's
// reflex motion about the barycentre, which every heliocentric place shares
// (0.005 AU); the Earth's and Venus's periods and their synodic periods with
// the body carry the inner planets' perturbations of the outer ones. The
// interval lengths are powers of two times 5 days dividing the span
// (72,960 days) and short enough that each body's error stays far below the
// limit (the builder prints the figures; docs/compact-ephemeris.md).
const std::vector<BodyFitPlan>& Plans()
{
    static const std::vector<BodyFitPlan> plans = {
        {1, "Mercury", 16.0, 20, {{kMercury, kMercury / 2, kMercury / 3}, {kMercury, kMercury / 2}, {kMercury}}},
        {2, "Venus", 64.0, 24, {{kVenus, kVenus / 2}, {kVenus}, {kVenus}}},
        {3, "Earth-Moon barycentre", 32.0, 24, {{kEarth, kEarth / 2}, {kEarth}, {kEarth}}},
        {4, "Mars", 64.0, 24, {{kMars, kMars / 2}, {kMars}, {kMars}}},
        {5, "Jupiter", 320.0, 32,
         {{kJupiter, kSaturn, kEarth, Synodic(kEarth, kJupiter), kVenus, Synodic(kVenus, kJupiter)}, {kJupiter}, {kJupiter}}},
        {6, "Saturn", 320.0, 32,
         {{kSaturn, kJupiter, kEarth, Synodic(kEarth, kSaturn), kVenus, Synodic(kVenus, kSaturn)}, {kSaturn}, {kSaturn}}},
        {7, "Uranus", 320.0, 32, {{kUranus, kJupiter, kSaturn, kEarth, Synodic(kEarth, kUranus)}, {kJupiter}, {kJupiter}}},
        {8, "Neptune", 320.0, 32,
         {{kNeptune, kJupiter, kSaturn, kEarth, Synodic(kEarth, kNeptune)}, {kJupiter}, {kJupiter}}},
        {9, "Pluto", 640.0, 24, {{kPluto, kJupiter, kSaturn}, {kJupiter}, {kJupiter}}},
    };
    return plans;
}

// The source a body is fitted to: heliocentric J2000 equatorial, AU; body 3
// the barycentre (VSOP87's Earth plus the built-in offset).
struct Source {
    const CVsop87D& vsop87;
    void operator()(int body, double jd, double out[3]) const
    {
        if (body == 9) {
            PlutoEquatorialJ2000(jd, out);
            return;
        }
        Vsop87Heliocentric(vsop87, body, jd, nullptr, out);
        if (body == 3) {
            double o[3];
            EarthBarycentreOffset(jd, o);
            for (int c = 0; c < 3; ++c) out[c] += o[c];
        }
    }
};

struct CheckPoint {
    double jd;
    double xyz[3];
};

}  // namespace

bool RunEphem96Build(const std::string& dataDir, const Progress& progress, std::string& error)
{
    CVsop87D vsop87;
    const fs::path data = fs::path(dataDir) / "Data";
    if (vsop87.OpenFiles((data / "VSOP87.idx").string(), (data / "VSOP87.dat").string()) != Vsop87Status::Ok) {
        error = "cannot read the VSOP87 files in " + data.string() + " (run the planets data step first)";
        return false;
    }
    const Source source{vsop87};
    const double first = kEphem96FirstJd;
    const double span = kEphem96EndJd - kEphem96FirstJd;
    const std::vector<BodyFitPlan>& plans = Plans();

    CByteWriter out;
    std::vector<std::vector<CheckPoint>> checks(10);
    for (const BodyFitPlan& plan : plans) {
        const double delta = plan.lengthDays;
        const int n = static_cast<int>(std::ceil(span / delta - 1e-9));
        out.F64(first);
        out.F64(delta);
        out.I16(static_cast<std::int16_t>(n));
        int params = 4;
        for (const auto& order : plan.orders) {
            out.I16(static_cast<std::int16_t>(order.size()));
            for (double period : order) out.F64(kTwoPiValue / period);
            params += 2 * static_cast<int>(order.size());
        }
        const int fit = plan.fitSamples;
        if (fit < params + 4) {
            error = std::string("too few fit samples for ") + plan.name;
            return false;
        }
        // The source at 2·fit − 1 points spread evenly over each interval,
        // ends included: the even ones are fitted, all are checked. The
        // source is the costly part (VSOP87D's thousands of terms per
        // place): two threads share it.
        const int points = 2 * fit - 1;
        std::vector<CheckPoint>& bodyChecks = checks[static_cast<std::size_t>(plan.body)];
        bodyChecks.resize(static_cast<std::size_t>(n) * points);
        auto sample = [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < to; ++i) {
                const int k = static_cast<int>(i / points);
                const int j = static_cast<int>(i % points);
                const double tau = -1.0 + 2.0 * j / (points - 1);
                CheckPoint& cp = bodyChecks[i];
                cp.jd = first + k * delta + (tau + 1.0) * 0.5 * delta;
                source(plan.body, cp.jd, cp.xyz);
            }
        };
        {
            const std::size_t half = bodyChecks.size() / 2;
            std::thread helper(sample, half, bodyChecks.size());
            sample(0, half);
            helper.join();
        }
        for (int k = 0; k < n; ++k) {
            std::vector<double> a(static_cast<std::size_t>(fit) * params);
            std::vector<double> b(static_cast<std::size_t>(fit) * 3);
            for (int j = 0; j < points; j += 2) {
                const double tau = -1.0 + 2.0 * j / (points - 1);
                const CheckPoint& cp = bodyChecks[static_cast<std::size_t>(k) * points + static_cast<std::size_t>(j)];
                const int row = j / 2;
                const double s = tau * 0.5 * delta;
                int col = 0;
                auto put = [&](double v) { a[static_cast<std::size_t>(col++) * fit + row] = v; };
                put(1.0);
                put(tau);
                put(tau * tau);
                put(tau * tau * tau);
                double factor = 1.0;
                for (const auto& order : plan.orders) {
                    for (double period : order) put(factor * std::cos(kTwoPiValue / period * s));
                    for (double period : order) put(factor * std::sin(kTwoPiValue / period * s));
                    factor *= tau;
                }
                for (int c = 0; c < 3; ++c) b[static_cast<std::size_t>(c) * fit + row] = cp.xyz[c] / kUnitAU;
            }
            std::vector<double> x;
            if (!SolveLeastSquares(a, fit, params, b, 3, x)) {
                error = std::string("the fit of ") + plan.name + " is singular in interval " + std::to_string(k);
                return false;
            }
            // The file's order per coordinate is the fit's column order.
            for (double v : x) out.F64(v);
        }
        char line[200];
        std::snprintf(line, sizeof line, "  Ephem96 %s: %d intervals of %g d, %d terms per coordinate, %zu checks",
                      plan.name, n, delta, params, bodyChecks.size());
        progress(line);
    }

    // Read back what is about to be written and hold it against the sources.
    CEphem96 ephem;
    if (ephem.OpenBytes(out.Data()) != Ephem96Status::Ok) {
        error = "the written compact ephemeris does not read back";
        return false;
    }
    // The Earth's error, worst per Earth interval: a body's geocentric error
    // is bounded by its own error plus the Earth's in the interval.
    const Ephem96Body& earthBlock = ephem.Body(3);
    std::vector<double> earthWorst(static_cast<std::size_t>(earthBlock.intervals), 0.0);
    auto earthInterval = [&](double jd) {
        const int k = static_cast<int>((jd - earthBlock.t0) / earthBlock.lengthDays);
        return static_cast<std::size_t>(std::clamp(k, 0, earthBlock.intervals - 1));
    };
    for (const CheckPoint& cp : checks[3]) {
        if (!ephem.Covers(3, cp.jd)) continue;  // the last interval's end
        double v[3];
        ephem.Evaluate(3, cp.jd, v);
        const double e = std::hypot(v[0] - cp.xyz[0], v[1] - cp.xyz[1], v[2] - cp.xyz[2]);
        double& w = earthWorst[earthInterval(cp.jd)];
        w = std::max(w, e);
    }
    bool ok = true;
    for (const BodyFitPlan& plan : plans) {
        double worstKm = 0.0, worstArcsec = 0.0, worstJd = 0.0;
        for (const CheckPoint& cp : checks[static_cast<std::size_t>(plan.body)]) {
            if (!ephem.Covers(plan.body, cp.jd) || !ephem.Covers(3, cp.jd)) continue;
            double v[3], earth[3], offset[3];
            ephem.Evaluate(plan.body, cp.jd, v);
            const double e = std::hypot(v[0] - cp.xyz[0], v[1] - cp.xyz[1], v[2] - cp.xyz[2]);
            ephem.Evaluate(3, cp.jd, earth);
            EarthBarycentreOffset(cp.jd, offset);
            for (int c = 0; c < 3; ++c) earth[c] -= offset[c];
            double arcsec;
            if (plan.body == 3) {
                // The Sun seen from the Earth.
                arcsec = e / std::hypot(earth[0], earth[1], earth[2]) * kRadToArcsec;
            } else {
                const double rho = std::hypot(cp.xyz[0] - earth[0], cp.xyz[1] - earth[1], cp.xyz[2] - earth[2]);
                arcsec = (e + earthWorst[earthInterval(cp.jd)]) / rho * kRadToArcsec;
            }
            worstKm = std::max(worstKm, e * kAuKm);
            if (arcsec > worstArcsec) {
                worstArcsec = arcsec;
                worstJd = cp.jd;
            }
        }
        char line[200];
        std::snprintf(line, sizeof line, "  Ephem96 %s: largest position error %.3f km, geocentric direction %.4f\" (JD %.2f)",
                      plan.name, worstKm, worstArcsec, worstJd);
        progress(line);
        if (!(worstArcsec <= kLimitArcsec)) {
            char message[200];
            std::snprintf(message, sizeof message,
                          "the compact ephemeris of %s departs from its source by %.4f\" at JD %.2f (limit %.2f\")",
                          plan.name, worstArcsec, worstJd, kLimitArcsec);
            error = message;
            ok = false;
        }
    }
    if (!ok) return false;
    OutputFile file{"Data/Ephem96.dat", out.Data()};
    return Store(dataDir, file, progress, error);
}

}  // namespace orv::databuild
