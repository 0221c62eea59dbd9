#include "catalog/deepsky/deepskysource.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>

#include "map/skyevents.h"
#include "util/angles.h"

namespace orv {

CDeepSkyCatalogues& CDeepSkyCatalogueHandle::Get()
{
    if (!m_catalogues) m_catalogues = std::make_unique<CDeepSkyCatalogues>();
    if (!m_tried) {
        m_tried = true;
        m_catalogues->Open();  // missing catalogues stay closed
    }
    return *m_catalogues;
}

std::string DeepSkySizeText(const DeepSkyObject& o)
{
    if (o.majorArcmin <= 0.0f) return {};
    // Objects under an arc minute are given in arc seconds.
    const bool seconds = o.majorArcmin < 1.0f;
    const double f = seconds ? 60.0 : 1.0;
    const char unit = seconds ? '"' : '\'';
    char buf[80];
    if (o.minorArcmin > 0.0f && o.minorArcmin != o.majorArcmin)
        std::snprintf(buf, sizeof buf, "Size: %.1f%cx%.1f%c", o.majorArcmin * f, unit, o.minorArcmin * f, unit);
    else
        std::snprintf(buf, sizeof buf, "Size: %.1f%c", o.majorArcmin * f, unit);
    return buf;
}

std::string DeepSkyTitle(const DeepSkyTexts& t)
{
    if (!t.messier.empty() && t.messier != t.designation) return t.messier + " (" + t.designation + ")";
    return t.designation;
}

std::string DeepSkyReadout(const DeepSkyObject& o, const DeepSkyTexts& t)
{
    std::string s;
    if (!t.names.empty()) s += "\n" + t.names;
    const std::string_view words =
        o.catalogue == DeepSkyCatalogueId::NgcIc && o.ngcType != 0 ? NgcTypeWords(o.ngcType) : ObjectTypeName(o.type);
    s += "\nType of object: " + std::string(words);
    if (!t.morphology.empty()) s += " (" + t.morphology + ")";
    char buf[160];
    if (o.HasMagnitude()) {
        std::snprintf(buf, sizeof buf, "\nMag: %.1lf", o.magCenti / 100.0);
        s += buf;
    }
    if (const std::string size = DeepSkySizeText(o); !size.empty()) s += "\n" + size;
    if (o.paDeg != deepsky::kNoPositionAngle) {
        std::snprintf(buf, sizeof buf, "\nPA: %1d", static_cast<int>(o.paDeg));
        s += buf;
    }
    std::snprintf(buf, sizeof buf, "\nRA: %s  Dec: %s (J2000)", FormatHms(o.raJ2000Rad, 1).c_str(),
                  FormatDms(o.decJ2000Rad, 0).c_str());
    s += buf;
    if (!t.caldwell.empty()) s += "\n" + t.caldwell;
    if (!t.otherIds.empty()) s += "\n" + t.otherIds;
    return s;
}

std::vector<std::pair<DeepSkyObject, DeepSkyTexts>> ResolveDeepSkyName(const CDeepSkyCatalogues& cats,
                                                                       std::string_view text)
{
    std::vector<std::pair<DeepSkyObject, DeepSkyTexts>> out;
    auto add = [&](DeepSkyCatalogueId c, std::uint32_t record) {
        std::pair<DeepSkyObject, DeepSkyTexts> p;
        if (cats.Object(c, record, p.first) && cats.Texts(c, record, p.second)) out.push_back(std::move(p));
    };
    std::string trimmed(text);
    while (!trimmed.empty() && std::isspace(static_cast<unsigned char>(trimmed.back()))) trimmed.pop_back();
    trimmed.erase(0, std::min(trimmed.find_first_not_of(" \t"), trimmed.size()));
    if (trimmed.empty()) return out;

    // Galactic designations of planetary nebulae: "PN G054.1-12.1".
    std::string upper;
    for (char ch : trimmed)
        if (ch != ' ') upper.push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(ch))));
    if (upper.rfind("PNG", 0) == 0 && upper.size() > 3) {
        if (const auto r = cats.FindPlanetary(upper.substr(3))) add(DeepSkyCatalogueId::Strasbourg, *r);
        return out;
    }
    const std::string name = NormaliseDeepSkyName(trimmed);
    if (!name.empty()) {
        const bool leda = name.rfind("LEDA ", 0) == 0 || name.rfind("UGC ", 0) == 0;
        if (leda) {
            if (const auto r = cats.FindName(DeepSkyCatalogueId::Leda, name)) add(DeepSkyCatalogueId::Leda, *r);
        } else if (const auto r = cats.FindName(DeepSkyCatalogueId::NgcIc, name)) {
            add(DeepSkyCatalogueId::NgcIc, *r);
        }
        return out;
    }
    for (const auto& [c, r] : cats.FindCommonName(trimmed)) add(c, r);
    // The SAC database's own designations ("AND III", "Abell 426"), as the
    // database writes them.
    if (out.empty())
        if (const auto r = cats.FindName(DeepSkyCatalogueId::Sac, trimmed))
            add(DeepSkyCatalogueId::Sac, *r);
    return out;
}

bool CDeepSkyObjectSource::Available() const { return m_catalogues->Get().AnyOpen(); }

std::vector<SkyObjectMatch> CDeepSkyObjectSource::Resolve(std::string_view text, const CObserverDoc&) const
{
    std::vector<SkyObjectMatch> out;
    for (const auto& [o, t] : ResolveDeepSkyName(m_catalogues->Get(), text)) {
        SkyObjectMatch m;
        m.key = DeepSkyKey(o.catalogue, o.record);
        m.type = o.type;
        m.designation = DeepSkyTitle(t);
        m.raJ2000Rad = o.raJ2000Rad;
        m.decJ2000Rad = o.decJ2000Rad;
        if (o.HasMagnitude()) m.magnitude = o.magCenti / 100.0;
        out.push_back(std::move(m));
    }
    return out;
}

std::optional<ObjectDescription> CDeepSkyObjectSource::Describe(std::uint32_t key,
                                                                const DescribeRequest& request) const
{
    const CDeepSkyCatalogues& cats = m_catalogues->Get();
    DeepSkyObject o;
    DeepSkyTexts t;
    if (!cats.Object(DeepSkyKeyCatalogue(key), DeepSkyKeyRecord(key), o) ||
        !cats.Texts(DeepSkyKeyCatalogue(key), DeepSkyKeyRecord(key), t))
        return std::nullopt;
    ObjectDescription d;
    d.type = o.type;
    d.designation = DeepSkyTitle(t);
    d.raJ2000Rad = o.raJ2000Rad;
    d.decJ2000Rad = o.decJ2000Rad;
    d.information = d.designation + DeepSkyReadout(o, t) + FixedObjectEventsText(request, o.raJ2000Rad, o.decJ2000Rad);
    return d;
}

void CDeepSkyObjectSource::CompletionNames(std::vector<std::string>& out) const
{
    const CDeepSkyCatalogues& cats = m_catalogues->Get();
    const std::size_t n = cats.Count(DeepSkyCatalogueId::NgcIc);
    DeepSkyTexts t;
    for (std::uint32_t r = 0; r < n; ++r) {
        if (!cats.Texts(DeepSkyCatalogueId::NgcIc, r, t)) continue;
        std::size_t at = 0;
        while (at < t.names.size()) {
            const std::size_t end = std::min(t.names.find("; ", at), t.names.size());
            out.push_back(t.names.substr(at, end - at));
            at = end + 2;
        }
        if (!t.messier.empty()) out.push_back(t.messier);
    }
}

std::vector<VisibleDeepSkyRow> VisibleDeepSkyRows(const CChartScene& scene, const CSkyObjectRegistry& objects)
{
    std::vector<VisibleDeepSkyRow> rows;
    const CDeepSkyObjectSource* source = objects.SourceOf<CDeepSkyObjectSource>();
    if (source == nullptr || !scene.Valid()) return rows;
    const SkySourceId id = *objects.IdOf(source);
    const CDeepSkyCatalogues& cats = source->Catalogues();
    for (const SceneObject& s : scene.Objects()) {
        if (s.source != id) continue;
        DeepSkyObject o;
        DeepSkyTexts t;
        const DeepSkyCatalogueId c = DeepSkyKeyCatalogue(s.key);
        if (!cats.Object(c, DeepSkyKeyRecord(s.key), o) || !cats.Texts(c, DeepSkyKeyRecord(s.key), t)) continue;
        VisibleDeepSkyRow row = DeepSkyRow(o, t);
        row.xPx = s.xPx;
        row.yPx = s.yPx;
        rows.push_back(std::move(row));
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const VisibleDeepSkyRow& a, const VisibleDeepSkyRow& b) { return a.magCenti < b.magCenti; });
    return rows;
}

VisibleDeepSkyRow DeepSkyRow(const DeepSkyObject& o, const DeepSkyTexts& t)
{
    VisibleDeepSkyRow row;
    row.designation = DeepSkyTitle(t);
    row.name = t.CommonName();
    row.type = o.type;
    row.typeText = std::string(o.catalogue == DeepSkyCatalogueId::NgcIc && o.ngcType != 0 ? NgcTypeWords(o.ngcType)
                                                                                         : ObjectTypeName(o.type));
    row.magCenti = o.magCenti;
    row.majorArcmin = o.majorArcmin;
    row.minorArcmin = o.minorArcmin;
    row.paDeg = o.paDeg;
    row.raJ2000Rad = o.raJ2000Rad;
    row.decJ2000Rad = o.decJ2000Rad;
    return row;
}

ResultTable VisibleDeepSkyTable(const std::vector<VisibleDeepSkyRow>& rows)
{
    ResultTable table;
    table.title = "Deep Sky Objects Visible on the Map";
    table.reportHeadings = HeadingLine::Include;
    table.columns = {{"Designation", "designation", "", CellAlign::Left, "M 42 (NGC 1976)", {}, {}},
                     {"Name", "name", "", CellAlign::Left, "", {}, {}},
                     {"Type", "type", "", CellAlign::Left, "", {}, {}},
                     {"Mag", "magnitude", "mag", CellAlign::Right, "", {}, {}},
                     {"Major (')", "majorArcmin", "arcmin", CellAlign::Right, "", {}, {}},
                     {"Minor (')", "minorArcmin", "arcmin", CellAlign::Right, "", {}, {}},
                     {"PA", "paDeg", "deg", CellAlign::Right, "", {}, {}},
                     {"RA (J2000)", "raJ2000Deg", "deg", CellAlign::Right, "", {}, {}},
                     {"Dec (J2000)", "decJ2000Deg", "deg", CellAlign::Right, "", {}, {}}};
    char buf[32];
    auto number = [&](double value, const char* format) {
        std::snprintf(buf, sizeof buf, format, value);
        return ResultCell::Number(value, buf);
    };
    table.rows.reserve(rows.size());
    for (const VisibleDeepSkyRow& r : rows) {
        ResultRow row;
        row.cells.emplace_back(r.designation);
        row.cells.emplace_back(r.name);
        row.cells.emplace_back(r.typeText);
        row.cells.push_back(r.magCenti != deepsky::kNoMagnitude ? number(r.magCenti / 100.0, "%.1f") : ResultCell());
        // The axes are stored to 0.1′ (0.1″ for planetary nebulae).
        auto axis = [&](float arcmin) {
            return arcmin > 0.0f ? number(std::round(arcmin * 600.0) / 600.0, "%.1f") : ResultCell();
        };
        row.cells.push_back(axis(r.majorArcmin));
        row.cells.push_back(axis(r.minorArcmin));
        row.cells.push_back(r.paDeg != deepsky::kNoPositionAngle ? number(r.paDeg, "%.0f") : ResultCell());
        row.cells.push_back(ResultCell::Number(r.raJ2000Rad * kDegPerRad, FormatHms(r.raJ2000Rad, 1)));
        row.cells.push_back(ResultCell::Number(r.decJ2000Rad * kDegPerRad, FormatDms(r.decJ2000Rad, 0)));
        table.rows.push_back(std::move(row));
    }
    return table;
}

}  // namespace orv
