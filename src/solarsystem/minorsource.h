// Comets and asteroids as sources of sky objects: found by name, number or
// designation ("Ceres", "(1) Ceres", "1", "C/2020 F3", "12P") with their
// place at the observer's instant, and described for the identify read-out
// (designation, magnitude, distances to the Earth and the Sun, elongation,
// phase angle, constellation, the epoch of the elements and a warning when
// it is more than a year from the chart's date). The key of an object is its
// index in the loaded catalogue.
#pragma once

#include <memory>

#include "map/skyobjects.h"
#include "util/resulttable.h"
#include "solarsystem/minorbodies.h"

namespace orv {

class CObserverDoc;

// The catalogues shared by everything that shows comets and asteroids in
// one program; loaded on first use.
class CMinorCatalogHandle {
public:
    CMinorCatalogs& Get()
    {
        m_catalogs.EnsureLoaded();
        return m_catalogs;
    }
    // Without loading (to set the paths first).
    CMinorCatalogs& Unloaded() { return m_catalogs; }

private:
    CMinorCatalogs m_catalogs;
};

// The place and the read-out of one catalogue entry at an instant, both
// computed through the planets' apparent-place reduction.
struct MinorObjectState {
    MinorPlace place;
    double raJ2000Rad = 0.0;  // the apparent place referred back to J2000
    double decJ2000Rad = 0.0;
    std::string designation;
    std::string information;  // the identify text and the extra lines
    std::string constellation;
    double elementAgeDays = 0.0;
};
// False when the entry does not exist or has no position (no VSOP87 files,
// unusable elements).
bool ComputeMinorObject(const CMinorCatalogs& catalogs, MinorKind kind, std::size_t index,
                        const CObserverDoc& observer, PlaceCentre centre, MinorObjectState& out);

class CMinorObjectSource final : public ISkyObjectSource {
public:
    CMinorObjectSource(MinorKind kind, std::shared_ptr<CMinorCatalogHandle> catalogs)
        : m_kind(kind), m_catalogs(std::move(catalogs))
    {
    }
    std::string_view Name() const override { return m_kind == MinorKind::Asteroid ? "Asteroids" : "Comets"; }
    std::string_view Forms() const override
    {
        return m_kind == MinorKind::Asteroid ? "asteroid names, numbers and designations (\"Ceres\", \"(1) Ceres\", \"1\")"
                                             : "comet designations and names (\"C/2020 F3\", \"12P\", \"Halley\")";
    }
    bool Available() const override;
    std::vector<SkyObjectMatch> Resolve(std::string_view text, const CObserverDoc& observer) const override;
    std::optional<ObjectDescription> Describe(std::uint32_t key, const DescribeRequest& request) const override;
    void CompletionNames(std::vector<std::string>& out) const override;

    MinorKind Kind() const { return m_kind; }
    CMinorCatalogs& Catalogs() const { return m_catalogs->Get(); }

private:
    MinorKind m_kind;
    std::shared_ptr<CMinorCatalogHandle> m_catalogs;
};

// One comet or asteroid drawn on a chart, for the list of those visible.
struct VisibleMinorRow {
    MinorKind kind = MinorKind::Asteroid;
    std::string designation;
    MinorObjectState state;
};
// The comets and asteroids of a chart's scene, as they were at its instant
// (geocentric read-out values), brightest first.
std::vector<VisibleMinorRow> VisibleMinorRows(const CChartScene& scene, const CSkyObjectRegistry& objects);
// "Comets and Asteroids Visible on the Map": designation, kind, magnitude,
// distances to the Earth and the Sun, elongation, phase angle,
// constellation, J2000 place and the epoch of the elements.
ResultTable VisibleMinorTable(const std::vector<VisibleMinorRow>& rows);

}  // namespace orv
