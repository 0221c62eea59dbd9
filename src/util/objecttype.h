// The object type codes shared by the whole program: one table of codes and
// names for deep-sky objects (1–12) and for the solar-system and star kinds
// (from 100 on). Identification, the visible-object lists, the find box and
// the deep-sky type filter all speak these codes, so a new catalogue only
// has to say which code each of its objects carries.
#pragma once

#include <span>
#include <string_view>

namespace orv {

enum class ObjectType : int {
    All = 0,
    Galaxy = 1,
    GalaxyCluster = 2,
    OpenCluster = 3,
    GlobularCluster = 4,
    PlanetaryNebula = 5,
    BrightNebula = 6,
    DarkNebula = 7,
    Star = 8,
    SupernovaRemnant = 9,
    Quasar = 10,
    RadioSource = 11,
    XRaySource = 12,
    Planet = 100,
    Comet = 101,
    Asteroid = 102,
    DoubleStar = 103,
    VariableStar = 104,
    Unknown = 9999,
};

struct ObjectTypeEntry {
    ObjectType type;
    std::string_view name;  // "Galaxy", "Open Cluster", …
};

// The table in code order ("All" first, "Unknown" last; the historical
// terminator of code −1 is the end of the span).
std::span<const ObjectTypeEntry> ObjectTypeTable();

// The name of a code; "Unknown" for a code the table does not hold.
std::string_view ObjectTypeName(ObjectType type);

// True for the kinds drawn by a star catalogue (star, double, variable).
constexpr bool IsStellar(ObjectType t)
{
    return t == ObjectType::Star || t == ObjectType::DoubleStar || t == ObjectType::VariableStar;
}

}  // namespace orv
