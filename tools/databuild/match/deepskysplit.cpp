#include "match/deepskysplit.h"

#include <algorithm>
#include <cmath>

#include "catalog/deepsky/deepskyformat.h"
#include "util/objecttype.h"

namespace orv::databuild {

using deepsky::NgcType;

std::uint8_t NgcTypeOf(StelDsoType type)
{
    auto code = [](NgcType t) { return static_cast<std::uint8_t>(t); };
    switch (type) {
    case StelDsoType::Galaxy:
    case StelDsoType::ActiveGalaxy:
    case StelDsoType::RadioGalaxy:
    case StelDsoType::InteractingGalaxy:
    case StelDsoType::Quasar:
    case StelDsoType::PossibleQuasar:
    case StelDsoType::BLLac:
    case StelDsoType::Blazar:
    case StelDsoType::GalaxyCluster: return code(NgcType::Galaxy);
    case StelDsoType::PartOfGalaxy: return code(NgcType::PartOfGalaxy);
    case StelDsoType::StarCluster:
    case StelDsoType::OpenCluster:
    case StelDsoType::StellarAssociation:
    case StelDsoType::StarCloud:
    case StelDsoType::ClusterWithNebulosity: return code(NgcType::OpenCluster);
    case StelDsoType::PlanetaryNebula:
    case StelDsoType::PossiblePlanetaryNebula:
    case StelDsoType::ProtoplanetaryNebula:
    case StelDsoType::BipolarNebula: return code(NgcType::PlanetaryNebula);
    case StelDsoType::GlobularCluster: return code(NgcType::GlobularCluster);
    case StelDsoType::DarkNebula:
    case StelDsoType::MolecularCloud: return code(NgcType::DarkNebula);
    case StelDsoType::Nebula:
    case StelDsoType::EmissionNebula:
    case StelDsoType::HiiRegion:
    case StelDsoType::InterstellarMatter:
    case StelDsoType::EmissionObject: return code(NgcType::EmissionNebula);
    case StelDsoType::ReflectionNebula: return code(NgcType::ReflectionNebula);
    case StelDsoType::SupernovaRemnant:
    case StelDsoType::SupernovaRemnantCandidate: return code(NgcType::SupernovaRemnant);
    case StelDsoType::Star:
    case StelDsoType::SymbioticStar:
    case StelDsoType::EmissionLineStar:
    case StelDsoType::YoungStellarObject:
    case StelDsoType::SupernovaCandidate: return code(NgcType::Star);
    case StelDsoType::Region:
    case StelDsoType::Unknown: return code(NgcType::None);
    }
    return code(NgcType::None);
}

int SystemTypeOf(StelDsoType type)
{
    switch (type) {
    case StelDsoType::GalaxyCluster: return static_cast<int>(ObjectType::GalaxyCluster);
    case StelDsoType::Quasar:
    case StelDsoType::PossibleQuasar:
    case StelDsoType::BLLac:
    case StelDsoType::Blazar: return static_cast<int>(ObjectType::Quasar);
    case StelDsoType::RadioGalaxy: return static_cast<int>(ObjectType::RadioSource);
    default: break;
    }
    switch (static_cast<NgcType>(NgcTypeOf(type))) {
    case NgcType::Galaxy:
    case NgcType::PartOfGalaxy: return static_cast<int>(ObjectType::Galaxy);
    case NgcType::OpenCluster: return static_cast<int>(ObjectType::OpenCluster);
    case NgcType::PlanetaryNebula: return static_cast<int>(ObjectType::PlanetaryNebula);
    case NgcType::GlobularCluster: return static_cast<int>(ObjectType::GlobularCluster);
    case NgcType::DarkNebula: return static_cast<int>(ObjectType::DarkNebula);
    case NgcType::EmissionNebula:
    case NgcType::ReflectionNebula: return static_cast<int>(ObjectType::BrightNebula);
    case NgcType::Star: return static_cast<int>(ObjectType::Star);
    case NgcType::SupernovaRemnant: return static_cast<int>(ObjectType::SupernovaRemnant);
    case NgcType::None: break;
    }
    return static_cast<int>(ObjectType::Unknown);
}

int RegionOfPlace(std::int64_t raMas, std::int64_t decMas) { return deepsky::RegionOf(raMas, decMas); }

std::vector<DeepSkyRegionBounds> EmptyRegions()
{
    constexpr std::int64_t kMasPerDeg = 3'600'000;
    std::vector<DeepSkyRegionBounds> regions(static_cast<std::size_t>(deepsky::RegionCount()));
    const auto& starts = deepsky::ZoneStarts();
    for (int z = 0; z < deepsky::kZoneCount; ++z) {
        const int first = starts[static_cast<std::size_t>(z)];
        const int cells = starts[static_cast<std::size_t>(z + 1)] - first;
        for (int c = 0; c < cells; ++c) {
            DeepSkyRegionBounds& b = regions[static_cast<std::size_t>(first + c)];
            b.raMinMas = static_cast<std::int32_t>(360 * kMasPerDeg * c / cells);
            b.raMaxMas = static_cast<std::int32_t>(360 * kMasPerDeg * (c + 1) / cells);
            b.decMinMas = static_cast<std::int32_t>(-90 * kMasPerDeg + 180 * kMasPerDeg * z / deepsky::kZoneCount);
            b.decMaxMas = static_cast<std::int32_t>(-90 * kMasPerDeg + 180 * kMasPerDeg * (z + 1) / deepsky::kZoneCount);
        }
    }
    return regions;
}

void OrderByRegion(DeepSkyCatalogue& catalogue)
{
    catalogue.regions =
        OrderObjectsByRegion(catalogue.objects, [](const BuildDeepSkyObject& o) { return o.Magnitude(); });
}

DeepSkyCatalogues SplitDeepSkyCatalogues(const std::vector<BuildDeepSkyObject>& all)
{
    DeepSkyCatalogues out;
    for (const BuildDeepSkyObject& o : all) {
        if (o.ngc != 0 || o.ic != 0 || o.messier != 0 || o.caldwell != 0) out.ngcIc.objects.push_back(o);
        if (o.pgc != 0) out.leda.objects.push_back(o);
        if (!o.png.empty()) out.planetary.objects.push_back(o);
    }
    OrderByRegion(out.ngcIc);
    OrderByRegion(out.leda);
    OrderByRegion(out.planetary);
    return out;
}

}  // namespace orv::databuild
