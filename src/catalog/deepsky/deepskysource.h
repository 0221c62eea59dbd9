// The deep-sky catalogues as a source of sky objects: designations and
// common names resolved to objects ("M 42", "M42", "NGC 7000", "IC 434",
// "LEDA 2557", "PN G054.1-12.1", "Orion Nebula"), the identify read-out of an
// object drawn on a chart, the names offered while typing, and the rows of
// the list of deep-sky objects visible on a chart.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "catalog/deepsky/deepskycatalogue.h"
#include "map/skyobjects.h"
#include "util/resulttable.h"

namespace orv {

// The catalogues shared by every chart and by the searches, opened on first
// use (those not installed stay closed: nothing drawn, no message).
class CDeepSkyCatalogueHandle {
public:
    CDeepSkyCatalogues& Get();

private:
    std::unique_ptr<CDeepSkyCatalogues> m_catalogues;
    bool m_tried = false;
};

// The lines of the identify read-out after the designation: the names,
// "Type of object:", "Mag:", "Size:", "PA:" and the J2000 place.
std::string DeepSkyReadout(const DeepSkyObject& o, const DeepSkyTexts& t);
// "Size: 90.0'x60.0'", "Size: 18.0\"" (planetary nebulae in arc seconds
// below an arc minute); empty without a size.
std::string DeepSkySizeText(const DeepSkyObject& o);
// The designation with the Messier number first when there is one
// ("M 42 (NGC 1976)").
std::string DeepSkyTitle(const DeepSkyTexts& t);

class CDeepSkyObjectSource final : public ISkyObjectSource {
public:
    explicit CDeepSkyObjectSource(std::shared_ptr<CDeepSkyCatalogueHandle> catalogues)
        : m_catalogues(std::move(catalogues))
    {
    }

    std::string_view Name() const override { return "Deep-sky catalogues"; }
    std::string_view Forms() const override
    {
        return "M, NGC, IC, C, LEDA (PGC), UGC and PN G designations and common names of deep-sky objects";
    }
    bool Available() const override;
    // The key of an object is DeepSkyKey(catalogue, record). Deep-sky
    // objects do not move: the place is the catalogue's J2000 place.
    std::vector<SkyObjectMatch> Resolve(std::string_view text, const CObserverDoc& observer) const override;
    std::optional<ObjectDescription> Describe(std::uint32_t key, const DescribeRequest& request) const override;
    void CompletionNames(std::vector<std::string>& out) const override;

    CDeepSkyCatalogues& Catalogues() const { return m_catalogues->Get(); }

private:
    std::shared_ptr<CDeepSkyCatalogueHandle> m_catalogues;
};

// The objects a text names, without an observer (the command line's "dso").
std::vector<std::pair<DeepSkyObject, DeepSkyTexts>> ResolveDeepSkyName(const CDeepSkyCatalogues& catalogues,
                                                                       std::string_view text);

// One row of the "Deep Sky Objects Visible on the Map" list.
struct VisibleDeepSkyRow {
    std::string designation;
    std::string name;       // first common name
    ObjectType type = ObjectType::Unknown;
    std::string typeText;   // the catalogue's own words for NGC/IC objects
    std::int16_t magCenti = deepsky::kNoMagnitude;
    float majorArcmin = 0.0f, minorArcmin = 0.0f;
    std::int16_t paDeg = deepsky::kNoPositionAngle;
    double raJ2000Rad = 0.0, decJ2000Rad = 0.0;
    float xPx = 0.0f, yPx = 0.0f;
};

// The rows for the deep-sky objects a chart's scene holds, brightest first
// (objects without a magnitude last); empty when no deep-sky source is
// registered.
std::vector<VisibleDeepSkyRow> VisibleDeepSkyRows(const CChartScene& scene, const CSkyObjectRegistry& objects);

// A row for an object of the catalogues (the command line's field lists).
VisibleDeepSkyRow DeepSkyRow(const DeepSkyObject& o, const DeepSkyTexts& t);

// The rows as a result table titled "Deep Sky Objects Visible on the Map",
// its report headed by the column headings: designation, name, type,
// magnitude, size (major and minor axes in arc minutes), position angle and
// the J2000 place in degrees.
ResultTable VisibleDeepSkyTable(const std::vector<VisibleDeepSkyRow>& rows);

}  // namespace orv
