// Comets and asteroids at an instant: their apparent places through the
// planets' reduction (light time, deflection, aberration, precession,
// nutation), their magnitudes, and the catalogues a program keeps loaded.
//
// Standard C++ only.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "solarsystem/minorelements.h"
#include "solarsystem/orbits.h"
#include "solarsystem/planets.h"

namespace orv {

enum class MinorKind : std::uint8_t { Asteroid, Comet };

// The orbit of a catalogue entry; nothing when its elements cannot make one.
std::optional<TwoBodyOrbit> OrbitOf(const AsteroidElements& a);
std::optional<TwoBodyOrbit> OrbitOf(const CometElements& c);

// A comet or asteroid seen from the Earth at one instant.
struct MinorPlace {
    bool valid = false;
    double raRad = 0.0;   // apparent, true equator and equinox of date
    double decRad = 0.0;
    double earthDistanceAU = 0.0;
    double sunDistanceAU = 0.0;
    double lightTimeSeconds = 0.0;
    double phaseAngleRad = 0.0;
    double elongationRad = 0.0;
    std::int16_t magnitudeCenti = 9999;
    Vector3 helioJ2000{};  // at t − τ, AU
};

// The apparent place at the frame's instant; `magnitude` fills the
// magnitude from the entry's H, G (asteroid) or g, k (comet).
PositionStatus MinorPlaceAt(const ApparentFrame& frame, const TwoBodyOrbit& orbit, MinorPlace& place);
void FillMagnitude(const AsteroidElements& a, MinorPlace& place);
void FillMagnitude(const CometElements& c, MinorPlace& place);

// Days between the instant and the epoch of the elements (asteroids: the
// osculation epoch; comets: the perihelion time, the one date their
// elements carry) beyond which the read-out warns that the two-body
// position has degraded.
inline constexpr double kElementAgeWarningDays = 365.25;
double ElementAgeDays(const AsteroidElements& a, double jdTT);
double ElementAgeDays(const CometElements& c, double jdTT);

// The identify texts: asteroid "(%1d) %s\nMag: %.1lf\nD: %.3lf AU\nR: %.3lf AU",
// comet "%s\nMag: %.1lf\nD: %.3lf AU\nR: %.3lf AU" (D from the Earth, R
// from the Sun); an unnumbered asteroid is written by its name alone.
std::string AsteroidInfoText(const AsteroidElements& a, const MinorPlace& place);
std::string CometInfoText(const CometElements& c, const MinorPlace& place);
// The lines the read-out adds after those: elongation, phase angle, the
// constellation when known (its name, empty to leave out), the epoch of the
// elements and, when they are more than a year from jdTT, a warning.
std::string MinorExtraText(const MinorPlace& place, const std::string& constellation, const std::string& epochText,
                           double ageDays);
std::string EpochText(const AsteroidElements& a);   // "Epoch 2020-05-31"
std::string EpochText(const CometElements& c);      // "Perihelion 2020-07-03.68"

// An orbit path to draw: the body's apparent places from `startJdTT` to
// `endJdTT` every `stepDays`, a tick at each place and a date label at
// every `labelEvery`-th.
struct MinorPathRequest {
    MinorKind kind = MinorKind::Comet;
    std::size_t index = 0;  // in its catalogue
    double startJdTT = 0.0;
    double endJdTT = 0.0;
    double stepDays = 1.0;
    int labelEvery = 5;
};

// The catalogues of one program, loaded once from their files and shared by
// the chart layers, the sky-object sources, the dialogs and the command line.
//
// Each kind keeps two things. The file: every entry of the catalogue file in
// file order, which the catalogue windows list, edit and save, so that
// saving never drops an entry the load filter left out. The loaded set: the
// entries the load filter in force keeps (their indices in the file), chosen
// when the file is read, again after every edit and when the filter changes;
// charts, find and the lists of visible objects use it. Mode 1 for asteroids
// "stops reading" at the limit: the loaded set ends there, the rest of the
// file is still held, unloaded.
class CMinorCatalogs {
public:
    // Paths default to "asteroid.cat" and "comet.cat" in the data folders;
    // a configured path (section "Paths", "AsteroidCat"/"CometCat") wins.
    void SetPaths(std::string asteroidPath, std::string cometPath);
    const std::string& AsteroidPath() const { return m_asteroidPath; }
    const std::string& CometPath() const { return m_cometPath; }

    // Reads both files again (a missing file gives an empty list).
    void Reload();
    // Reads each file on first use.
    void EnsureLoaded();

    // Every entry of each file.
    std::vector<AsteroidElements>& Asteroids() { return m_asteroids; }
    std::vector<CometElements>& Comets() { return m_comets; }
    const std::vector<AsteroidElements>& Asteroids() const { return m_asteroids; }
    const std::vector<CometElements>& Comets() const { return m_comets; }

    // The load filters in force. Setting different ones chooses the loaded
    // sets again (bumping the generation when they change).
    void SetLoadFilters(const AsteroidFilter& asteroids, const CometFilter& comets);
    const AsteroidFilter& AsteroidLoadFilter() const { return m_asteroidFilter; }
    const CometFilter& CometLoadFilter() const { return m_cometFilter; }
    // The loaded sets: indices into Asteroids() and Comets(), in file order.
    const std::vector<std::uint32_t>& LoadedAsteroids() const { return m_loadedAsteroids; }
    const std::vector<std::uint32_t>& LoadedComets() const { return m_loadedComets; }
    bool IsLoaded(MinorKind kind, std::size_t index) const;

    // Edits set the changed flag, choose the loaded set again and bump the
    // generation (layers that keep computed places watch it).
    void MarkChanged(MinorKind kind);
    // Deletes an entry of the file (the lines kept around it follow), then
    // marks the change.
    void EraseEntry(MinorKind kind, std::size_t index);
    // The lines of the file that are not entries (comments, lines that could
    // not be read, the comets' end-of-list line and what follows it): not
    // loaded, but written back where they were when the catalogue is saved.
    const CatalogOtherLines& OtherLines(MinorKind kind) const
    {
        return kind == MinorKind::Asteroid ? m_asteroidOthers : m_cometOthers;
    }
    bool Changed(MinorKind kind) const { return kind == MinorKind::Asteroid ? m_asteroidsChanged : m_cometsChanged; }
    std::uint64_t Generation() const { return m_generation; }
    // Saves one list to its path (or to `path` when given, which becomes its
    // path); the error text on failure.
    std::optional<std::string> Save(MinorKind kind, const std::string& path = {});

    // Entries whose designation matches the text: "Ceres", "(1) Ceres", "1",
    // "2004 MN4"; "C/2020 F3", "12P", "1P/Halley", "Halley". Case-blind.
    // Among the loaded entries (what the charts and the find box know), or
    // the whole file (the command line, which names one object outright).
    enum class Scope { Loaded, WholeFile };
    std::vector<std::size_t> FindAsteroids(std::string_view text, Scope scope = Scope::WholeFile) const;
    std::vector<std::size_t> FindComets(std::string_view text, Scope scope = Scope::WholeFile) const;

    // The orbit paths the charts draw (changing them bumps the generation).
    const std::vector<MinorPathRequest>& OrbitPaths() const { return m_paths; }
    void SetOrbitPaths(std::vector<MinorPathRequest> paths)
    {
        m_paths = std::move(paths);
        ++m_generation;
    }

private:
    std::string m_asteroidPath, m_cometPath;
    bool m_loaded = false;
    bool m_asteroidsChanged = false, m_cometsChanged = false;
    std::uint64_t m_generation = 1;
    // Chooses the loaded set of a kind again; true when it changed.
    bool Reselect(MinorKind kind);

    std::vector<AsteroidElements> m_asteroids;
    std::vector<CometElements> m_comets;
    // Until a map's settings are applied, every entry is loaded.
    AsteroidFilter m_asteroidFilter = AllAsteroids();
    CometFilter m_cometFilter = AllComets();
    std::vector<std::uint32_t> m_loadedAsteroids, m_loadedComets;
    CatalogOtherLines m_asteroidOthers, m_cometOthers;
    std::vector<MinorPathRequest> m_paths;
};

// The path a catalogue is read from: the configured one, else the data
// file's ("asteroid.cat" or "comet.cat" in the data folders; where it would
// be written when none exists yet).
std::string DefaultCatalogPath(MinorKind kind);

}  // namespace orv
