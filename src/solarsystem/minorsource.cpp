#include "solarsystem/minorsource.h"

#include <algorithm>
#include <cstdio>

#include "catalog/constellations/constellationfiles.h"
#include "observer/observer.h"
#include "solarsystem/planetsource.h"
#include "util/angles.h"

namespace orv {

namespace {

// The constellation boundaries, read once per process for the read-outs.
const CConstellationCatalogue& Boundaries()
{
    static const CConstellationCatalogue catalogue = [] {
        CConstellationCatalogue c;
        c.LoadNames();
        c.LoadBoundaries();
        return c;
    }();
    return catalogue;
}

}  // namespace

bool ComputeMinorObject(const CMinorCatalogs& catalogs, MinorKind kind, std::size_t index,
                        const CObserverDoc& observer, PlaceCentre centre, MinorObjectState& out)
{
    const bool asteroid = kind == MinorKind::Asteroid;
    if (index >= (asteroid ? catalogs.Asteroids().size() : catalogs.Comets().size())) return false;
    const double jdTT = observer.JulianDateTDT();
    const std::optional<TwoBodyOrbit> orbit =
        asteroid ? OrbitOf(catalogs.Asteroids()[index]) : OrbitOf(catalogs.Comets()[index]);
    if (!orbit) return false;
    CPlanets planets;
    ApparentFrame frame;
    if (planets.PrepareApparentFrame(observer, jdTT, centre, frame) != PositionStatus::Ok) return false;
    if (MinorPlaceAt(frame, *orbit, out.place) != PositionStatus::Ok) return false;
    DateToJ2000(observer, jdTT, out.place.raRad, out.place.decRad, out.raJ2000Rad, out.decJ2000Rad);
    const CConstellationCatalogue& bounds = Boundaries();
    const int c = bounds.ConstellationAt(observer, out.raJ2000Rad, out.decJ2000Rad);
    out.constellation = c >= 0 ? bounds.Name(c) : std::string();
    if (asteroid) {
        const AsteroidElements& a = catalogs.Asteroids()[index];
        FillMagnitude(a, out.place);
        out.designation = AsteroidDesignation(a);
        out.elementAgeDays = ElementAgeDays(a, jdTT);
        out.information = AsteroidInfoText(a, out.place) +
                          MinorExtraText(out.place, out.constellation, EpochText(a), out.elementAgeDays);
    } else {
        const CometElements& cm = catalogs.Comets()[index];
        FillMagnitude(cm, out.place);
        out.designation = cm.name;
        out.elementAgeDays = ElementAgeDays(cm, jdTT);
        out.information = CometInfoText(cm, out.place) +
                          MinorExtraText(out.place, out.constellation, EpochText(cm), out.elementAgeDays);
    }
    return true;
}

bool CMinorObjectSource::Available() const
{
    const CMinorCatalogs& c = m_catalogs->Get();
    return m_kind == MinorKind::Asteroid ? !c.LoadedAsteroids().empty() : !c.LoadedComets().empty();
}

std::vector<SkyObjectMatch> CMinorObjectSource::Resolve(std::string_view text, const CObserverDoc& observer) const
{
    const CMinorCatalogs& c = m_catalogs->Get();
    // The find box knows what the catalogue loaded, as the charts do.
    const std::vector<std::size_t> found = m_kind == MinorKind::Asteroid
                                               ? c.FindAsteroids(text, CMinorCatalogs::Scope::Loaded)
                                               : c.FindComets(text, CMinorCatalogs::Scope::Loaded);
    std::vector<SkyObjectMatch> matches;
    for (std::size_t index : found) {
        MinorObjectState state;
        if (!ComputeMinorObject(c, m_kind, index, observer, PlaceCentre::Topocentric, state)) continue;
        SkyObjectMatch m;
        m.key = static_cast<std::uint32_t>(index);
        m.type = m_kind == MinorKind::Asteroid ? ObjectType::Asteroid : ObjectType::Comet;
        m.designation = state.designation;
        m.raJ2000Rad = state.raJ2000Rad;
        m.decJ2000Rad = state.decJ2000Rad;
        if (state.place.magnitudeCenti != 9999) m.magnitude = state.place.magnitudeCenti * 0.01;
        matches.push_back(std::move(m));
    }
    return matches;
}

std::optional<ObjectDescription> CMinorObjectSource::Describe(std::uint32_t key, const DescribeRequest& request) const
{
    CObserverDoc observer;
    observer.SetJulianDate(request.jdUT);
    MinorObjectState state;
    if (!ComputeMinorObject(m_catalogs->Get(), m_kind, key, observer, PlaceCentre::Geocentric, state))
        return std::nullopt;
    ObjectDescription d;
    d.type = m_kind == MinorKind::Asteroid ? ObjectType::Asteroid : ObjectType::Comet;
    d.designation = state.designation;
    d.information = state.information;
    d.raJ2000Rad = state.raJ2000Rad;
    d.decJ2000Rad = state.decJ2000Rad;
    return d;
}

void CMinorObjectSource::CompletionNames(std::vector<std::string>& out) const
{
    const CMinorCatalogs& c = m_catalogs->Get();
    // Names only for lists of a size a completer can offer.
    if (m_kind == MinorKind::Asteroid) {
        if (c.LoadedAsteroids().size() > 20000) return;
        for (std::uint32_t i : c.LoadedAsteroids())
            if (i < c.Asteroids().size()) out.push_back(c.Asteroids()[i].name);
    } else {
        for (std::uint32_t i : c.LoadedComets())
            if (i < c.Comets().size()) out.push_back(c.Comets()[i].name);
    }
}

std::vector<VisibleMinorRow> VisibleMinorRows(const CChartScene& scene, const CSkyObjectRegistry& objects)
{
    std::vector<VisibleMinorRow> rows;
    if (!scene.Valid()) return rows;
    CObserverDoc observer;
    observer.SetJulianDate(scene.Info().jdUT);
    for (const SceneObject& o : scene.Objects()) {
        const auto* source = dynamic_cast<const CMinorObjectSource*>(objects.Source(o.source));
        if (!source) continue;
        VisibleMinorRow row;
        row.kind = source->Kind();
        if (!ComputeMinorObject(source->Catalogs(), row.kind, o.key, observer, PlaceCentre::Geocentric, row.state))
            continue;
        row.designation = row.state.designation;
        rows.push_back(std::move(row));
    }
    std::stable_sort(rows.begin(), rows.end(), [](const VisibleMinorRow& a, const VisibleMinorRow& b) {
        return a.state.place.magnitudeCenti < b.state.place.magnitudeCenti;
    });
    return rows;
}

ResultTable VisibleMinorTable(const std::vector<VisibleMinorRow>& rows)
{
    ResultTable t;
    t.title = "Comets and Asteroids Visible on the Map";
    t.reportHeadings = HeadingLine::Include;
    t.columns = {
        {"Designation", "designation", "", CellAlign::Left, "C/2020 F3 (NEOWISE)", "", {"Number and name or designation"}},
        {"Kind", "kind", "", CellAlign::Left, "Asteroid", "", {"Comet or asteroid"}},
        {"Mag", "magnitude", "mag", CellAlign::Right, "99.9", "", {"Visual magnitude (H, G or g, k law)"}},
        {"Earth (AU)", "earthDistanceAU", "AU", CellAlign::Right, "99.999", "", {"Distance from the Earth"}},
        {"Sun (AU)", "sunDistanceAU", "AU", CellAlign::Right, "99.999", "", {"Distance from the Sun"}},
        {"Elong.", "elongationDeg", "deg", CellAlign::Right, "179.9", "", {"Elongation from the Sun"}},
        {"Phase", "phaseAngleDeg", "deg", CellAlign::Right, "179.9", "", {"Phase angle Sun-body-Earth"}},
        {"Constellation", "constellation", "", CellAlign::Left, "Camelopardalis", "", {"Constellation"}},
        {"RA (J2000)", "raJ2000Deg", "deg", CellAlign::Left, "23h59m59.9s", "", {"Right ascension, J2000"}},
        {"Dec (J2000)", "decJ2000Deg", "deg", CellAlign::Left, "-89 59 59", "", {"Declination, J2000"}},
        {"Age of elements (d)", "elementAgeDays", "d", CellAlign::Right, "-99999", "",
         {"Days from the epoch of the elements (comets: from perihelion)"}},
    };
    char text[64];
    auto number = [&](double v, const char* format) {
        std::snprintf(text, sizeof text, format, v);
        return ResultCell::Number(v, text);
    };
    for (const VisibleMinorRow& r : rows) {
        const MinorPlace& p = r.state.place;
        ResultRow row;
        row.cells = {r.designation,
                     r.kind == MinorKind::Asteroid ? "Asteroid" : "Comet",
                     number(p.magnitudeCenti * 0.01, "%.1f"),
                     number(p.earthDistanceAU, "%.3f"),
                     number(p.sunDistanceAU, "%.3f"),
                     number(p.elongationRad * kDegPerRad, "%.1f"),
                     number(p.phaseAngleRad * kDegPerRad, "%.1f"),
                     r.state.constellation,
                     ResultCell::Number(r.state.raJ2000Rad * kDegPerRad, FormatHms(r.state.raJ2000Rad, 1)),
                     ResultCell::Number(r.state.decJ2000Rad * kDegPerRad, FormatDms(r.state.decJ2000Rad, 0, true)),
                     number(r.state.elementAgeDays, "%.0f")};
        t.rows.push_back(std::move(row));
    }
    return t;
}

}  // namespace orv
