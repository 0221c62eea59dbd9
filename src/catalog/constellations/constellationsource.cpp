#include "catalog/constellations/constellationsource.h"

#include <cctype>

#include "app/strings.h"
#include "util/angles.h"

namespace orv {

CConstellationCatalogue& CConstellationHandle::Get()
{
    if (!m_loaded) {
        m_loaded = true;
        m_catalogue.LoadAll();  // missing files leave their parts empty
    }
    return m_catalogue;
}

bool CConstellationObjectSource::Available() const
{
    const CConstellationCatalogue& c = m_data->Get();
    return !c.NamePlaces().empty();
}

std::vector<SkyObjectMatch> CConstellationObjectSource::Resolve(std::string_view text, const CObserverDoc&) const
{
    std::vector<SkyObjectMatch> out;
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    const int c = FindConstellation(text);
    NamePlace place;
    if (c < 0 || !m_data->Get().NamePlaceOf(c, place)) return out;
    // The name's place is a J2000 position of the constellation's middle,
    // which needs no motion: a chart centred there shows the constellation.
    SkyObjectMatch m;
    m.key = static_cast<std::uint32_t>(c);
    m.designation = m_data->Get().Name(c);
    m.raJ2000Rad = place.raJ2000Rad;
    m.decJ2000Rad = place.decJ2000Rad;
    out.push_back(std::move(m));
    return out;
}

std::optional<ObjectDescription> CConstellationObjectSource::Describe(std::uint32_t key, const DescribeRequest&) const
{
    const CConstellationCatalogue& cat = m_data->Get();
    const int c = static_cast<int>(key);
    NamePlace place;
    if (c >= kConstellationCount || !cat.NamePlaceOf(c, place)) return std::nullopt;
    ObjectDescription d;
    d.designation = cat.Name(c);
    d.raJ2000Rad = place.raJ2000Rad;
    d.decJ2000Rad = place.decJ2000Rad;
    d.information = d.designation + "\nConstellation: " + cat.Abbreviation(c) + ", genitive " + cat.Genitive(c);
    return d;
}

void CConstellationObjectSource::CompletionNames(std::vector<std::string>& out) const
{
    const CConstellationCatalogue& cat = m_data->Get();
    if (cat.NamePlaces().empty()) return;
    for (int c = 0; c < kConstellationCount; ++c) out.push_back(cat.Name(c));
}

}  // namespace orv
