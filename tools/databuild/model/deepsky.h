// The deep-sky objects handed from the readers to the writers: one entry per
// object of stellarium-data's deep-sky catalogue, with every designation the
// catalogue gives it. Units are in the field names.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orv::databuild {

// The object kinds of stellarium-data's catalogue, in its own numbering.
enum class StelDsoType : std::uint32_t {
    Galaxy = 0, ActiveGalaxy = 1, RadioGalaxy = 2, InteractingGalaxy = 3, Quasar = 4,
    StarCluster = 5, OpenCluster = 6, GlobularCluster = 7, StellarAssociation = 8, StarCloud = 9,
    Nebula = 10, PlanetaryNebula = 11, DarkNebula = 12, ReflectionNebula = 13, BipolarNebula = 14,
    EmissionNebula = 15, ClusterWithNebulosity = 16, HiiRegion = 17, SupernovaRemnant = 18,
    InterstellarMatter = 19, EmissionObject = 20, BLLac = 21, Blazar = 22, MolecularCloud = 23,
    YoungStellarObject = 24, PossibleQuasar = 25, PossiblePlanetaryNebula = 26,
    ProtoplanetaryNebula = 27, Star = 28, SymbioticStar = 29, EmissionLineStar = 30,
    SupernovaCandidate = 31, SupernovaRemnantCandidate = 32, GalaxyCluster = 33, PartOfGalaxy = 34,
    Region = 35, Unknown = 36,
};

struct BuildDeepSkyObject {
    std::uint32_t stelId = 0;     // the catalogue's own running number
    std::int64_t raMas = 0;       // J2000, 0 … 360°
    std::int64_t decMas = 0;      // J2000
    double magV = 99.0;           // 99: not measured
    double magB = 99.0;
    StelDsoType type = StelDsoType::Unknown;
    std::string morphology;
    double majorArcmin = 0.0;     // 0: not measured
    double minorArcmin = 0.0;
    int paDeg = -1;               // from north through east; −1 when not given
    std::uint32_t ngc = 0, ic = 0, messier = 0, caldwell = 0, pgc = 0, ugc = 0;
    std::uint32_t barnard = 0, sh2 = 0, lbn = 0, ldn = 0, collinder = 0, melotte = 0;
    std::string png;              // "054.1-12.1" (without "PN G")
    std::string pk;
    std::string commonName;       // the first name names.dat gives, "Andromeda Galaxy"

    // The visual magnitude, else the blue one, else nothing (99).
    double Magnitude() const { return magV < 90.0 ? magV : magB; }
};

}  // namespace orv::databuild
