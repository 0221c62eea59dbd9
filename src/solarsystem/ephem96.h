// The compact fitted ephemeris "Data\Ephem96.dat": heliocentric J2000
// equatorial rectangular coordinates of bodies 1–9 (3 the Earth–Moon
// barycentre) over 1900–2099, as a cubic polynomial plus mixed Poisson terms
// per interval (layout in docs/planet-files.md, the fit in
// docs/compact-ephemeris.md). Written by "orvane-databuild --ephem96" as a
// least-squares fit of the full VSOP87D series (and of Meeus's Pluto series
// for body 9), checked there to 0.05″ in geocentric direction.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "util/mappedfile.h"

namespace orv {

// The dates step H of the solar-system computations gives to the compact
// ephemeris: 1900 January 1.0 ≤ jd < 2099 October 4.0 (TT).
inline constexpr double kEphem96FirstJd = 2415020.5;
inline constexpr double kEphem96EndJd = 2487980.5;

// The most frequencies one order of one body may list (a larger count marks
// the file damaged; evaluation keeps its sines and cosines on the stack).
inline constexpr int kEphem96MaxTerms = 32;

enum class Ephem96Status { Ok, Missing, Damaged };

// One body's block: the header copied out of the file, the frequency lists
// and the interval descriptors pointing into the mapped bytes.
struct Ephem96Body {
    double t0 = 0.0;        // Julian date (TT) at which interval 0 starts
    double lengthDays = 0;  // Δ
    int intervals = 0;      // N
    std::array<int, 3> termCount{};                 // m0, m1, m2
    std::array<const std::uint8_t*, 3> omega{};     // the frequency lists, rad/day
    // Per interval and coordinate: the four polynomial coefficients, and per
    // order the cosine and sine amplitudes (all 1e-10 AU, little-endian
    // doubles at unaligned addresses).
    struct Interval {
        std::array<const std::uint8_t*, 3> poly;
        std::array<std::array<const std::uint8_t*, 3>, 3> cosAmp;  // [coordinate][order]
        std::array<std::array<const std::uint8_t*, 3>, 3> sinAmp;
    };
    std::vector<Interval> descriptors;
};

class CEphem96 {
public:
    CEphem96() = default;
    CEphem96(const CEphem96&) = delete;
    CEphem96& operator=(const CEphem96&) = delete;

    // Locates "Data\Ephem96.dat" (LocateDataFile) and maps it.
    Ephem96Status Open();
    Ephem96Status OpenFile(const std::string& path);
    // Reads bytes that the caller keeps alive as long as this object (the
    // data builder checks the bytes it is about to write this way).
    Ephem96Status OpenBytes(std::span<const std::uint8_t> bytes);
    // Unmaps the file and clears the tables.
    void Release();
    bool IsOpen() const { return m_open; }

    // True when body 1–9 has an interval holding jdTT.
    bool Covers(int body, double jdTT) const;
    const Ephem96Body& Body(int body) const { return m_bodies[static_cast<std::size_t>(body - 1)]; }

    // Heliocentric J2000 equatorial position (AU) of body 1–9 at jdTT, body 3
    // the Earth–Moon barycentre. The date must be covered (Covers): like the
    // format's own rule, evaluation does no bounds check.
    void Evaluate(int body, double jdTT, double xyzAU[3]) const;

private:
    Ephem96Status Parse(std::span<const std::uint8_t> bytes);

    CMappedFile m_file;
    std::array<Ephem96Body, 9> m_bodies{};
    bool m_open = false;
};

// The process's compact ephemeris, opened on first use and kept until
// ReleaseSharedEphem96 (at shutdown); once released, every date goes to
// VSOP87 and the Pluto series.
const CEphem96& SharedEphem96();
void ReleaseSharedEphem96();

}  // namespace orv
