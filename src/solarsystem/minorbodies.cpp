#include "solarsystem/minorbodies.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "util/datapath.h"
#include "util/dataproblems.h"
#include "util/text.h"

namespace orv {

namespace {

constexpr double kRadToDeg = 57.29577951308232;

bool AllDigits(std::string_view s)
{
    return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
}

}  // namespace

std::optional<TwoBodyOrbit> OrbitOf(const AsteroidElements& a)
{
    return OrbitFromMeanAnomaly(a.meanAnomalyDeg, a.epochJdTT, a.aAU, a.e, a.argPerihelionDeg, a.nodeDeg,
                                a.inclinationDeg);
}

std::optional<TwoBodyOrbit> OrbitOf(const CometElements& c)
{
    return OrbitFromPerihelion(c.qAU, c.e, c.perihelionJdTT, c.argPerihelionDeg, c.nodeDeg, c.inclinationDeg);
}

PositionStatus MinorPlaceAt(const ApparentFrame& frame, const TwoBodyOrbit& orbit, MinorPlace& place)
{
    place.valid = false;
    ApparentPlace p;
    const PositionStatus status = ApparentPlaceOf(
        frame, [&](double jd, Vector3& r) { return HeliocentricJ2000(orbit, jd, r); }, SolarGravity::Apply, p);
    if (status != PositionStatus::Ok) return status;
    place.raRad = p.raRad;
    place.decRad = p.decRad;
    place.earthDistanceAU = p.earthDistanceAU;
    place.sunDistanceAU = p.sunDistanceAU;
    place.lightTimeSeconds = p.lightTimeSeconds;
    place.phaseAngleRad = p.phaseAngleRad;
    place.elongationRad = p.elongationRad;
    place.helioJ2000 = p.helioJ2000;
    place.valid = true;
    return PositionStatus::Ok;
}

void FillMagnitude(const AsteroidElements& a, MinorPlace& place)
{
    place.magnitudeCenti = MagnitudeCenti(
        AsteroidMagnitudeHG(a.absoluteH, a.slopeG, place.sunDistanceAU, place.earthDistanceAU, place.phaseAngleRad));
}

void FillMagnitude(const CometElements& c, MinorPlace& place)
{
    place.magnitudeCenti =
        MagnitudeCenti(CometMagnitudeGK(c.absoluteG, c.slopeK, place.sunDistanceAU, place.earthDistanceAU));
}

double ElementAgeDays(const AsteroidElements& a, double jdTT) { return jdTT - a.epochJdTT; }
double ElementAgeDays(const CometElements& c, double jdTT) { return jdTT - c.perihelionJdTT; }

std::string AsteroidInfoText(const AsteroidElements& a, const MinorPlace& place)
{
    char text[256];
    if (a.number > 0)
        std::snprintf(text, sizeof text, "(%1d) %s\nMag: %.1lf\nD: %.3lf AU\nR: %.3lf AU", a.number, a.name.c_str(),
                      place.magnitudeCenti * 0.01, place.earthDistanceAU, place.sunDistanceAU);
    else
        std::snprintf(text, sizeof text, "%s\nMag: %.1lf\nD: %.3lf AU\nR: %.3lf AU", a.name.c_str(),
                      place.magnitudeCenti * 0.01, place.earthDistanceAU, place.sunDistanceAU);
    return text;
}

std::string CometInfoText(const CometElements& c, const MinorPlace& place)
{
    char text[256];
    std::snprintf(text, sizeof text, "%s\nMag: %.1lf\nD: %.3lf AU\nR: %.3lf AU", c.name.c_str(),
                  place.magnitudeCenti * 0.01, place.earthDistanceAU, place.sunDistanceAU);
    return text;
}

std::string MinorExtraText(const MinorPlace& place, const std::string& constellation, const std::string& epochText,
                           double ageDays)
{
    char line[160];
    std::snprintf(line, sizeof line, "\nElongation: %.1f°\nPhase angle: %.1f°", place.elongationRad * kRadToDeg,
                  place.phaseAngleRad * kRadToDeg);
    std::string text = line;
    if (!constellation.empty()) text += "\nConstellation: " + constellation;
    text += "\n" + epochText;
    if (std::fabs(ageDays) > kElementAgeWarningDays) {
        std::snprintf(line, sizeof line,
                      "\nWarning: the elements are %.1f years from this date; the position may be degraded.",
                      std::fabs(ageDays) / 365.25);
        text += line;
    }
    return text;
}

std::string EpochText(const AsteroidElements& a)
{
    char text[64];
    std::snprintf(text, sizeof text, "Epoch %04d-%02d-%05.2f", a.epochYear, a.epochMonth, a.epochDay);
    return text;
}

std::string EpochText(const CometElements& c)
{
    char text[64];
    std::snprintf(text, sizeof text, "Perihelion %04d-%02d-%05.2f", c.perihelionYear, c.perihelionMonth, c.perihelionDay);
    return text;
}

// ------------------------------------------------------------ catalogues

std::string DefaultCatalogPath(MinorKind kind)
{
    const char* name = kind == MinorKind::Asteroid ? "asteroid.cat" : "comet.cat";
    std::string path;
    if (LocateDataFile(name, path)) return path;
    return GetDataFileName(name);
}

void CMinorCatalogs::SetPaths(std::string asteroidPath, std::string cometPath)
{
    m_asteroidPath = std::move(asteroidPath);
    m_cometPath = std::move(cometPath);
}

namespace {

// A catalogue with lines that are not element lines: a file of another kind
// under the catalogue's name (no line reads; nothing of it is drawn), or
// one cut short or damaged by hand (the bad lines are left out, the others
// drawn). Either way the user is told which file and where.
void ReportRefusedLines(const std::string& path, const CatalogReadResult& read, const char* what)
{
    if (!read.opened || read.refused.empty()) return;
    const RefusedLine& first = read.refused.front();
    const std::string where = "line " + std::to_string(first.lineNumber) + ": " + first.reason;
    if (read.accepted == 0 && read.filteredOut == 0)
        ReportDataFileProblem(path, std::string("none of its lines is ") + what +
                                        " element line, so it is left out (a file of another kind?); " + where);
    else
        ReportDataFileProblem(path, std::to_string(read.refused.size()) + " of its lines " +
                                        (read.refused.size() == 1 ? "is not " : "are not ") + what +
                                        " element line and " + (read.refused.size() == 1 ? "is" : "are") +
                                        " left out (a file cut short or damaged?); " + where);
}

}  // namespace

void CMinorCatalogs::Reload()
{
    if (m_asteroidPath.empty()) m_asteroidPath = DefaultCatalogPath(MinorKind::Asteroid);
    if (m_cometPath.empty()) m_cometPath = DefaultCatalogPath(MinorKind::Comet);
    m_asteroids.clear();
    m_comets.clear();
    // The whole file is held (the windows edit and save it whole); the load
    // filter then chooses what the program loads from it.
    m_asteroidOthers = {};
    m_cometOthers = {};
    ReportRefusedLines(m_asteroidPath, ReadAsteroidCatalog(m_asteroidPath, AllAsteroids(), m_asteroids, &m_asteroidOthers),
                       "an asteroid");
    ReportRefusedLines(m_cometPath, ReadCometCatalog(m_cometPath, AllComets(), m_comets, &m_cometOthers), "a comet");
    Reselect(MinorKind::Asteroid);
    Reselect(MinorKind::Comet);
    m_asteroidsChanged = m_cometsChanged = false;
    m_loaded = true;
    ++m_generation;
}

bool CMinorCatalogs::Reselect(MinorKind kind)
{
    if (kind == MinorKind::Asteroid) {
        std::vector<std::uint32_t> kept = SelectAsteroids(m_asteroids, m_asteroidFilter);
        if (kept == m_loadedAsteroids) return false;
        m_loadedAsteroids = std::move(kept);
    } else {
        std::vector<std::uint32_t> kept = SelectComets(m_comets, m_cometFilter);
        if (kept == m_loadedComets) return false;
        m_loadedComets = std::move(kept);
    }
    return true;
}

void CMinorCatalogs::SetLoadFilters(const AsteroidFilter& asteroids, const CometFilter& comets)
{
    bool changed = false;
    if (!(asteroids == m_asteroidFilter)) {
        m_asteroidFilter = asteroids;
        changed |= Reselect(MinorKind::Asteroid);
    }
    if (!(comets == m_cometFilter)) {
        m_cometFilter = comets;
        changed |= Reselect(MinorKind::Comet);
    }
    if (changed) ++m_generation;
}

bool CMinorCatalogs::IsLoaded(MinorKind kind, std::size_t index) const
{
    const std::vector<std::uint32_t>& loaded = kind == MinorKind::Asteroid ? m_loadedAsteroids : m_loadedComets;
    return std::binary_search(loaded.begin(), loaded.end(), static_cast<std::uint32_t>(index));
}

void CMinorCatalogs::EnsureLoaded()
{
    if (!m_loaded) Reload();
}

void CMinorCatalogs::EraseEntry(MinorKind kind, std::size_t index)
{
    if (kind == MinorKind::Asteroid) {
        if (index >= m_asteroids.size()) return;
        m_asteroids.erase(m_asteroids.begin() + static_cast<std::ptrdiff_t>(index));
        m_asteroidOthers.EntryErased(index);
    } else {
        if (index >= m_comets.size()) return;
        m_comets.erase(m_comets.begin() + static_cast<std::ptrdiff_t>(index));
        m_cometOthers.EntryErased(index);
    }
    MarkChanged(kind);
}

void CMinorCatalogs::MarkChanged(MinorKind kind)
{
    (kind == MinorKind::Asteroid ? m_asteroidsChanged : m_cometsChanged) = true;
    Reselect(kind);
    ++m_generation;
}

std::optional<std::string> CMinorCatalogs::Save(MinorKind kind, const std::string& path)
{
    std::string& target = kind == MinorKind::Asteroid ? m_asteroidPath : m_cometPath;
    if (!path.empty()) target = path;
    if (target.empty()) target = DefaultCatalogPath(kind);
    const std::optional<std::string> error = kind == MinorKind::Asteroid
                                                 ? WriteAsteroidCatalog(target, m_asteroids, m_asteroidOthers)
                                                 : WriteCometCatalog(target, m_comets, m_cometOthers);
    if (!error) (kind == MinorKind::Asteroid ? m_asteroidsChanged : m_cometsChanged) = false;
    return error;
}

std::vector<std::size_t> CMinorCatalogs::FindAsteroids(std::string_view text, Scope scope) const
{
    std::vector<std::size_t> found;
    text = TrimBlanks(text);
    if (text.empty()) return found;
    // "(1) Ceres", "(1)", "1": by number; the name after the number, when
    // given, must agree.
    std::string_view rest = text;
    std::optional<int> number;
    // A number of more digits than any catalogue number (typed or pasted by
    // mistake) finds nothing rather than overflowing.
    auto numberOf = [](std::string_view digits) {
        int value = -1;
        if (digits.size() <= 9) std::from_chars(digits.data(), digits.data() + digits.size(), value);
        return value;
    };
    if (rest.front() == '(') {
        const std::size_t close = rest.find(')');
        if (close != std::string_view::npos && AllDigits(rest.substr(1, close - 1))) {
            number = numberOf(rest.substr(1, close - 1));
            rest = TrimBlanks(rest.substr(close + 1));
        }
    } else if (AllDigits(rest)) {
        number = numberOf(rest);
        rest = {};
    }
    const std::string wanted = AsciiLower(rest);
    const std::size_t n = scope == Scope::Loaded ? m_loadedAsteroids.size() : m_asteroids.size();
    for (std::size_t k = 0; k < n; ++k) {
        const std::size_t i = scope == Scope::Loaded ? m_loadedAsteroids[k] : k;
        if (i >= m_asteroids.size()) break;  // the list was cut without MarkChanged
        const AsteroidElements& a = m_asteroids[i];
        if (number) {
            if (a.number == *number && (wanted.empty() || AsciiLower(a.name) == wanted)) found.push_back(i);
        } else if (AsciiLower(a.name) == wanted) {
            found.push_back(i);
        }
    }
    return found;
}

std::vector<std::size_t> CMinorCatalogs::FindComets(std::string_view text, Scope scope) const
{
    std::vector<std::size_t> found;
    const std::string wanted = AsciiLower(TrimBlanks(text));
    if (wanted.empty()) return found;
    const std::size_t n = scope == Scope::Loaded ? m_loadedComets.size() : m_comets.size();
    for (std::size_t k = 0; k < n; ++k) {
        const std::size_t i = scope == Scope::Loaded ? m_loadedComets[k] : k;
        if (i >= m_comets.size()) break;
        const std::string name = AsciiLower(m_comets[i].name);
        // The whole name; the designation before the discoverer in
        // parentheses ("c/2020 f3"); a periodic comet's number and letter or
        // its name after the slash ("12p", "halley").
        const std::size_t paren = name.find(" (");
        const std::size_t slash = name.find('/');
        bool match = name == wanted;
        if (!match && paren != std::string::npos) {
            match = std::string_view(name).substr(0, paren) == wanted ||
                    std::string_view(name).substr(paren + 2, name.size() - paren - 3) == wanted;
        }
        if (!match && slash != std::string::npos) {
            const std::string_view head = std::string_view(name).substr(0, slash);
            const bool periodic = !head.empty() && AllDigits(head.substr(0, head.size() - 1));
            if (periodic && head == wanted) match = true;
            if (!match && std::string_view(name).substr(slash + 1) == wanted) match = true;
        }
        if (match) found.push_back(i);
    }
    return found;
}

}  // namespace orv
