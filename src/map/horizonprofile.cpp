#include "map/horizonprofile.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

#include "util/angles.h"
#include "util/binaryio.h"
#include "util/atomicfile.h"

namespace orv {

namespace {

std::string BaseName(const std::string& path)
{
    const auto slash = path.find_last_of("/\\");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

HorizonFileResult Failure(std::string message) { return {false, std::move(message)}; }

std::int8_t ClampDeg(double deg)
{
    const double r = std::round(std::clamp(deg, -90.0, 90.0));
    return static_cast<std::int8_t>(r);
}

int Wrap360(int deg) { return ((deg % 360) + 360) % 360; }

// One number of a text line; false when the token is not a whole finite number.
bool ParseNumber(const std::string& token, double& value)
{
    const char* first = token.data();
    const char* last = first + token.size();
    if (first != last && *first == '+') ++first;
    const auto [ptr, ec] = std::from_chars(first, last, value);
    return ec == std::errc() && ptr == last && std::isfinite(value);
}

struct Point {
    double azDeg;
    double altDeg;
};

}  // namespace

HorizonFileResult ReadHorizonFile(const std::string& path, HorizonProfile& profile)
{
    std::vector<std::uint8_t> bytes;
    if (!ReadWholeFile(path, bytes)) return Failure("Unable to open file\n\"" + path + "\"");
    // A file of another length is still read, as far as it goes (a short
    // file sets the first degrees and leaves the rest as they were), and the
    // user is told what was found.
    const std::size_t n = std::min(bytes.size(), static_cast<std::size_t>(kHorizonFileBytes));
    for (std::size_t k = 0; k < n; ++k) profile[k] = static_cast<std::int8_t>(bytes[k]);
    if (bytes.size() != static_cast<std::size_t>(kHorizonFileBytes))
        return {true, "\"" + path + "\" holds " + std::to_string(bytes.size()) +
                          " bytes where a horizon file has 360 (one altitude for each degree of azimuth): " +
                          (bytes.size() < 360 ? "the altitudes of azimuths " + std::to_string(n) +
                                                    "° to 359° were left as they were."
                                              : "the bytes after the 360th were ignored.")};
    return {true, {}};
}

HorizonFileResult WriteHorizonFile(const std::string& path, const HorizonProfile& profile)
{
    const auto* data = reinterpret_cast<const std::uint8_t*>(profile.data());
    const AtomicWriteResult r = WriteFileAtomically(path, {data, profile.size()});
    if (!r.ok) return Failure("Unable to create file\n\"" + path + "\"" + (r.error.empty() ? "" : "\n" + r.error));
    return {true, {}};
}

HorizonFileResult ParseHorizonText(const std::string& text, const std::string& name, HorizonProfile& profile)
{
    std::vector<Point> pairs;
    std::vector<double> altitudesOnly;
    std::istringstream lines(text);
    std::string line;
    int lineNo = 0;
    auto where = [&] { return name + ", line " + std::to_string(lineNo) + ": "; };
    while (std::getline(lines, line)) {
        ++lineNo;
        if (const auto hash = line.find('#'); hash != std::string::npos) line.erase(hash);
        for (char& c : line)
            if (c == ',' || c == ';' || c == '\t' || c == '\r') c = ' ';
        std::istringstream words(line);
        std::vector<double> values;
        std::string token;
        while (words >> token) {
            double v = 0.0;
            if (!ParseNumber(token, v)) return Failure(where() + "\"" + token + "\" is not a number");
            values.push_back(v);
        }
        if (values.empty()) continue;
        if (values.size() > 2)
            return Failure(where() + "expected \"azimuth altitude\" or one altitude, found " +
                           std::to_string(values.size()) + " numbers");
        const double alt = values.back();
        if (alt < -90.0 || alt > 90.0) {
            std::ostringstream s;
            s << alt;
            return Failure(where() + "altitude " + s.str() + " is outside -90 to +90 degrees");
        }
        if (values.size() == 2) {
            if (!altitudesOnly.empty())
                return Failure(where() + "expected one altitude like the lines before, found an azimuth and an altitude");
            const double az = values[0];
            if (az < 0.0 || az > 360.0) {
                std::ostringstream s;
                s << az;
                return Failure(where() + "azimuth " + s.str() + " is outside 0 to 360 degrees");
            }
            pairs.push_back({az >= 360.0 ? az - 360.0 : az, alt});
        } else {
            if (!pairs.empty())
                return Failure(where() + "expected \"azimuth altitude\" like the lines before, found one number");
            altitudesOnly.push_back(alt);
        }
    }
    if (pairs.empty() && altitudesOnly.empty()) return Failure(name + ": no horizon points in the file");
    if (!altitudesOnly.empty()) {
        const double step = 360.0 / static_cast<double>(altitudesOnly.size());
        for (std::size_t i = 0; i < altitudesOnly.size(); ++i) pairs.push_back({i * step, altitudesOnly[i]});
    }
    std::stable_sort(pairs.begin(), pairs.end(), [](const Point& a, const Point& b) { return a.azDeg < b.azDeg; });

    HorizonProfile out{};
    const std::size_t n = pairs.size();
    for (int k = 0; k < kHorizonFileBytes; ++k) {
        const double az = k;
        // The last point at or before k, going back across north when none.
        std::size_t hi = std::upper_bound(pairs.begin(), pairs.end(), az,
                                          [](double a, const Point& p) { return a < p.azDeg; }) -
                         pairs.begin();
        const Point& before = hi == 0 ? pairs[n - 1] : pairs[hi - 1];
        const Point& after = hi == n ? pairs[0] : pairs[hi];
        double a0 = before.azDeg, a1 = after.azDeg;
        if (hi == 0) a0 -= 360.0;
        if (hi == n) a1 += 360.0;
        const double span = a1 - a0;
        const double alt = span > 1e-12 ? before.altDeg + (after.altDeg - before.altDeg) * (az - a0) / span
                                        : after.altDeg;
        out[k] = ClampDeg(alt);
    }
    profile = out;
    return {true, {}};
}

HorizonFileResult ImportHorizonText(const std::string& path, HorizonProfile& profile)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) return Failure("Unable to open file\n\"" + path + "\"");
    std::ostringstream text;
    text << in.rdbuf();
    return ParseHorizonText(text.str(), BaseName(path), profile);
}

double HorizonAltitudeRad(const HorizonProfile& profile, double azimuthRad)
{
    if (!std::isfinite(azimuthRad)) return 0.0;
    const double deg = mod2pi(azimuthRad) * kDegPerRad;
    const double k0 = std::floor(deg);
    const double f = deg - k0;
    const int i0 = Wrap360(static_cast<int>(k0));
    const int i1 = Wrap360(i0 + 1);
    return (profile[i0] * (1.0 - f) + profile[i1] * f) * kRadPerDeg;
}

void FlattenHorizon(HorizonProfile& profile, int fromDeg, int toDeg, int altitudeDeg)
{
    fromDeg = Wrap360(fromDeg);
    const int n = Wrap360(Wrap360(toDeg) - fromDeg) + 1;
    for (int i = 0; i < n; ++i) profile[Wrap360(fromDeg + i)] = ClampDeg(altitudeDeg);
}

void SmoothHorizon(HorizonProfile& profile, int fromDeg, int toDeg, int halfWidthDeg)
{
    const HorizonProfile before = profile;
    fromDeg = Wrap360(fromDeg);
    const int n = Wrap360(Wrap360(toDeg) - fromDeg) + 1;
    halfWidthDeg = std::clamp(halfWidthDeg, 1, 90);
    for (int i = 0; i < n; ++i) {
        const int k = Wrap360(fromDeg + i);
        double sum = 0.0;
        for (int d = -halfWidthDeg; d <= halfWidthDeg; ++d) sum += before[Wrap360(k + d)];
        profile[k] = ClampDeg(sum / (2 * halfWidthDeg + 1));
    }
}

void InterpolateHorizon(HorizonProfile& profile, int fromDeg, int toDeg)
{
    // Wrapped first, so that no index of any size overflows the arithmetic.
    fromDeg = Wrap360(fromDeg);
    toDeg = Wrap360(toDeg);
    const int n = Wrap360(toDeg - fromDeg);
    if (n == 0) return;
    const double a0 = profile[Wrap360(fromDeg)], a1 = profile[Wrap360(toDeg)];
    for (int i = 1; i < n; ++i) profile[Wrap360(fromDeg + i)] = ClampDeg(a0 + (a1 - a0) * i / n);
}

}  // namespace orv
