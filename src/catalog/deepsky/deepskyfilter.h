// Which deep-sky objects a chart shows: the catalogues whose level pairs hold
// the chart's level, the object types switched on, the magnitude and size
// filters of the "DeepSky" settings and of the level, each type's magnitude
// adjustment, and the name filter.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "catalog/deepsky/deepskycatalogue.h"
#include "map/catalogsettings.h"
#include "map/mapview.h"

namespace orv {

// True when the NGC/IC type byte is one the program's type code stands for:
// "All" any byte, Galaxy 1, Open Cluster 3, Globular Cluster 5, Planetary
// Nebula 4, Bright Nebula 7 or 8, Dark Nebula 6, Star 9, Supernova Remnant
// 10. Every other code (Cluster of Galaxies among them) matches none.
bool NgcTypeMatches(ObjectType code, std::uint8_t ngcType);

// A name filter: patterns separated by ';' or ',', each with '*' for any run
// of characters and '?' for one, compared without regard to case and
// spaces ("NGC 7*; M*"). An empty filter lets every name through.
bool NameFilterMatches(std::string_view filter, std::string_view name);

// The "ObjectTypes" bits as the property page edits them: bit n shows type
// code n, bit 0 ("All") every type.
bool DeepSkyTypeBit(const CDeepSkySettings& s, ObjectType type);
void SetDeepSkyTypeBit(CDeepSkySettings& s, ObjectType type, bool shown);

class CDeepSkyFilter {
public:
    // From the document's settings and the view's state at the chart's level.
    CDeepSkyFilter(const CDeepSkySettings& settings, const DeepSkyLevelState& level);

    bool CatalogueShown(DeepSkyCatalogueId c) const { return m_catalogues[static_cast<std::size_t>(c)]; }
    bool AnyCatalogueShown() const;
    // Type, magnitude and size (the name filter needs the object's texts).
    bool Passes(const DeepSkyObject& o) const;
    bool HasNameFilter() const { return !m_nameFilter.empty(); }
    bool NamePasses(const DeepSkyTexts& t) const;

    // The magnitude compared with the limits: the catalogue magnitude plus
    // the adjustment of the object's type and that of "All" (0.01 mag).
    int AdjustedMagnitude(const DeepSkyObject& o) const;

private:
    bool TypeShown(const DeepSkyObject& o) const;

    std::array<bool, kDeepSkyCatalogueCount> m_catalogues{};
    bool m_dark = false;
    int m_objectTypes = 1;
    std::array<bool, 256> m_ngcTypeShown{};
    bool m_magFilter = false;
    int m_magLimitCenti = 0;     // the settings' limit when its filter is on
    int m_levelMagLimitCenti = 0;  // the level's limit, 0 none
    bool m_sizeFilter = false;
    int m_sizeLimitArcsec = 0;
    int m_levelSizeLimitTenthArcmin = 0;
    std::array<int, kDeepSkyTypeCount> m_magAdjust{};
    std::string m_nameFilter;
};

}  // namespace orv
