#include "solarsystem/ephem96.h"

#include <algorithm>
#include <cmath>

#include "util/binaryio.h"
#include "util/datapath.h"
#include "util/dataproblems.h"
#include "util/turntrig.h"

namespace orv {

Ephem96Status CEphem96::Open()
{
    std::string path;
    if (!LocateDataFile("Data\\Ephem96.dat", path)) return Ephem96Status::Missing;
    return OpenFile(path);
}

Ephem96Status CEphem96::OpenFile(const std::string& path)
{
    Release();
    if (!m_file.Open(path)) return Ephem96Status::Missing;
    const std::size_t size = m_file.Bytes().size();
    const Ephem96Status status = Parse(m_file.Bytes());
    if (status != Ephem96Status::Ok) {
        Release();
        // Left out, every date goes to the full series: slower, never wrong.
        ReportDataFileProblem(path, "its " + std::to_string(size) +
                                        " bytes do not decode as the nine bodies' fitted intervals (a file cut "
                                        "short or of another layout)");
    }
    return status;
}

Ephem96Status CEphem96::OpenBytes(std::span<const std::uint8_t> bytes)
{
    Release();
    const Ephem96Status status = Parse(bytes);
    if (status != Ephem96Status::Ok) Release();
    return status;
}

void CEphem96::Release()
{
    m_open = false;
    m_bodies = {};
    m_file.Close();
}

Ephem96Status CEphem96::Parse(std::span<const std::uint8_t> bytes)
{
    std::size_t at = 0;
    auto need = [&](std::size_t n) { return bytes.size() - at >= n; };
    for (Ephem96Body& body : m_bodies) {
        if (!need(18)) return Ephem96Status::Damaged;
        body.t0 = LoadLE<double>(bytes.data() + at);
        body.lengthDays = LoadLE<double>(bytes.data() + at + 8);
        body.intervals = LoadLE<std::int16_t>(bytes.data() + at + 16);
        at += 18;
        if (!std::isfinite(body.t0) || !(body.lengthDays > 0.0) || body.intervals <= 0) return Ephem96Status::Damaged;
        for (int order = 0; order < 3; ++order) {
            if (!need(2)) return Ephem96Status::Damaged;
            const int m = LoadLE<std::int16_t>(bytes.data() + at);
            at += 2;
            if (m < 0 || m > kEphem96MaxTerms || !need(8 * static_cast<std::size_t>(m))) return Ephem96Status::Damaged;
            body.termCount[static_cast<std::size_t>(order)] = m;
            body.omega[static_cast<std::size_t>(order)] = bytes.data() + at;
            at += 8 * static_cast<std::size_t>(m);
        }
        const std::size_t perCoordinate =
            8 * (4 + 2 * static_cast<std::size_t>(body.termCount[0] + body.termCount[1] + body.termCount[2]));
        if (!need(3 * perCoordinate * static_cast<std::size_t>(body.intervals))) return Ephem96Status::Damaged;
        body.descriptors.resize(static_cast<std::size_t>(body.intervals));
        for (Ephem96Body::Interval& interval : body.descriptors) {
            for (std::size_t c = 0; c < 3; ++c) {
                interval.poly[c] = bytes.data() + at;
                at += 32;
                for (std::size_t order = 0; order < 3; ++order) {
                    const std::size_t m = static_cast<std::size_t>(body.termCount[order]);
                    interval.cosAmp[c][order] = bytes.data() + at;
                    at += 8 * m;
                    interval.sinAmp[c][order] = bytes.data() + at;
                    at += 8 * m;
                }
            }
        }
    }
    if (at != bytes.size()) return Ephem96Status::Damaged;
    m_open = true;
    return Ephem96Status::Ok;
}

bool CEphem96::Covers(int body, double jdTT) const
{
    if (!m_open || body < 1 || body > 9 || !std::isfinite(jdTT)) return false;
    const Ephem96Body& b = Body(body);
    return jdTT >= b.t0 && jdTT < b.t0 + b.lengthDays * b.intervals;
}

void CEphem96::Evaluate(int body, double jdTT, double xyzAU[3]) const
{
    const Ephem96Body& b = Body(body);
    // The interval holding the date (truncation: at an interval's exact end
    // the next one is taken), τ from −1 to +1 over it, s in days from its
    // middle.
    const int k = static_cast<int>((jdTT - b.t0) / b.lengthDays);
    const double start = b.t0 + k * b.lengthDays;
    const double tau = 2.0 * (jdTT - start) / b.lengthDays - 1.0;
    const double s = tau * b.lengthDays * 0.5;
    const Ephem96Body::Interval& interval = b.descriptors[static_cast<std::size_t>(k)];
    // The frequencies are shared by x, y and z: each sine and cosine once,
    // two at a time (util/turntrig.h; the angles in turns).
    constexpr int kMaxTerms = kEphem96MaxTerms;
    constexpr double kTurnsPerRad = 0.15915494309189533577;
    double cosWs[3][kMaxTerms];
    double sinWs[3][kMaxTerms];
    for (std::size_t order = 0; order < 3; ++order) {
        const int m = std::min(b.termCount[order], kMaxTerms);
        int j = 0;
        for (; j + 1 < m; j += 2) {
            const Double2 turns = {LoadLE<double>(b.omega[order] + 8 * j) * s * kTurnsPerRad,
                                   LoadLE<double>(b.omega[order] + 8 * (j + 1)) * s * kTurnsPerRad};
            Double2 sines, cosines;
            SinCosTurns2(turns, sines, cosines);
            sinWs[order][j] = sines[0];
            sinWs[order][j + 1] = sines[1];
            cosWs[order][j] = cosines[0];
            cosWs[order][j + 1] = cosines[1];
        }
        if (j < m) SinCosTurns(LoadLE<double>(b.omega[order] + 8 * j) * s * kTurnsPerRad, sinWs[order][j], cosWs[order][j]);
    }
    for (std::size_t c = 0; c < 3; ++c) {
        const std::uint8_t* a = interval.poly[c];
        double value = LoadLE<double>(a) +
                       tau * (LoadLE<double>(a + 8) + tau * (LoadLE<double>(a + 16) + tau * LoadLE<double>(a + 24)));
        double factor = 1.0;  // τ^order
        for (std::size_t order = 0; order < 3; ++order) {
            const int m = std::min(b.termCount[order], kMaxTerms);
            const std::uint8_t* ca = interval.cosAmp[c][order];
            const std::uint8_t* sa = interval.sinAmp[c][order];
            double q = 0.0;
            for (int j = 0; j < m; ++j)
                q += LoadLE<double>(ca + 8 * j) * cosWs[order][j] + LoadLE<double>(sa + 8 * j) * sinWs[order][j];
            value += factor * q;
            factor *= tau;
        }
        xyzAU[c] = value * 1e-10;
    }
}

namespace {

CEphem96& SharedInstance()
{
    static CEphem96 ephem;
    return ephem;
}

}  // namespace

const CEphem96& SharedEphem96()
{
    static const bool opened = [] {
        SharedInstance().Open();
        return true;
    }();
    (void)opened;
    return SharedInstance();
}

void ReleaseSharedEphem96() { SharedInstance().Release(); }

}  // namespace orv
