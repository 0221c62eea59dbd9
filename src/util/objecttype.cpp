#include "util/objecttype.h"

#include <array>

namespace orv {

namespace {

constexpr std::array<ObjectTypeEntry, 19> kTable{{
    {ObjectType::All, "All"},
    {ObjectType::Galaxy, "Galaxy"},
    {ObjectType::GalaxyCluster, "Cluster of Galaxies"},
    {ObjectType::OpenCluster, "Open Cluster"},
    {ObjectType::GlobularCluster, "Globular Cluster"},
    {ObjectType::PlanetaryNebula, "Planetary Nebula"},
    {ObjectType::BrightNebula, "Bright Nebula"},
    {ObjectType::DarkNebula, "Dark Nebula"},
    {ObjectType::Star, "Star"},
    {ObjectType::SupernovaRemnant, "Supernova Remnant"},
    {ObjectType::Quasar, "Quasar"},
    {ObjectType::RadioSource, "Radio Source"},
    {ObjectType::XRaySource, "X-Ray Source"},
    {ObjectType::Planet, "Planet"},
    {ObjectType::Comet, "Comet"},
    {ObjectType::Asteroid, "Asteroid"},
    {ObjectType::DoubleStar, "Double Star"},
    {ObjectType::VariableStar, "Variable Star"},
    {ObjectType::Unknown, "Unknown"},
}};

}  // namespace

std::span<const ObjectTypeEntry> ObjectTypeTable() { return kTable; }

std::string_view ObjectTypeName(ObjectType type)
{
    for (const ObjectTypeEntry& e : ObjectTypeTable())
        if (e.type == type) return e.name;
    return "Unknown";
}

}  // namespace orv
