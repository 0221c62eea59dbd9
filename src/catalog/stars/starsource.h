// The Tycho-2 catalogue as a source of sky objects: typed designations
// resolved to stars with their place at an instant, the identify read-out of
// a star drawn on a chart, the names offered while typing, and the rows of
// the list of stars visible on a chart.
#pragma once

#include <memory>
#include <vector>

#include "catalog/stars/stardisplay.h"
#include "catalog/stars/tycho2catalogue.h"
#include "map/skyobjects.h"

namespace orv {

// The Tycho-2 catalogue shared by every chart and by the searches, opened on
// first use (a catalogue that is not installed stays closed: no stars, no
// message).
class CStarCatalogueHandle {
public:
    CTycho2Catalogue& Get();

private:
    std::unique_ptr<CTycho2Catalogue> m_tycho;
    bool m_tried = false;
};

// Bits of the star layer's style word in the chart scene: how designations
// were written on the chart, so the read-out writes them alike.
namespace starstyle {
inline constexpr std::uint32_t kProperNames = 1u << 0;  // proper names shown at the level
inline constexpr std::uint32_t kAbbreviated = 1u << 1;  // constellations abbreviated ("alpha CMa")
}  // namespace starstyle

class CStarObjectSource final : public ISkyObjectSource {
public:
    explicit CStarObjectSource(std::shared_ptr<CStarCatalogueHandle> catalogue) : m_catalogue(std::move(catalogue)) {}

    std::string_view Name() const override { return "Tycho-2 stars"; }
    std::string_view Forms() const override
    {
        return "proper names, Bayer and Flamsteed designations, HIP, HD, SAO, HR, PPM and TYC numbers";
    }
    bool Available() const override;
    // The key of a star is its record number in "Tycho2.dat". The place is
    // where the star is at the observer's instant (its space motion
    // applied), referred back to the J2000 equator and equinox, so that a
    // chart centred there shows the star at its centre at that date.
    std::vector<SkyObjectMatch> Resolve(std::string_view text, const CObserverDoc& observer) const override;
    std::optional<ObjectDescription> Describe(std::uint32_t key, const DescribeRequest& request) const override;
    void CompletionNames(std::vector<std::string>& out) const override;

    CTycho2Catalogue& Catalogue() const { return m_catalogue->Get(); }

private:
    std::shared_ptr<CStarCatalogueHandle> m_catalogue;
};

// The object type code of a star: variable, double or plain star.
ObjectType StarObjectType(std::uint16_t recordFlags);

// The rows of the "Stars Visible on the Map" list for the stars a chart's
// scene holds, brightest first; empty when no star source is registered.
std::vector<VisibleStarRow> VisibleStarRows(const CChartScene& scene, const CSkyObjectRegistry& objects);

}  // namespace orv
