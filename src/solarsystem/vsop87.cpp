#include "solarsystem/vsop87.h"

#include <cmath>
#include <limits>

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

}  // namespace orv
