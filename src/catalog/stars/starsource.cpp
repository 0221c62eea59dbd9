#include "catalog/stars/starsource.h"

#include <cstdio>

#include "catalog/stars/crossindex.h"
#include "catalog/stars/spacemotion.h"
#include "catalog/stars/stardesignation.h"
#include "map/skyevents.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "util/angles.h"

namespace orv {

CTycho2Catalogue& CStarCatalogueHandle::Get()
{
    if (!m_tycho) m_tycho = std::make_unique<CTycho2Catalogue>();
    if (!m_tried) {
        m_tried = true;
        m_tycho->OpenCatalogue();  // a missing catalogue leaves it closed
    }
    return *m_tycho;
}

ObjectType StarObjectType(std::uint16_t recordFlags)
{
    if (recordFlags & tycho2::flag::kVariable) return ObjectType::VariableStar;
    if (recordFlags & tycho2::flag::kDouble) return ObjectType::DoubleStar;
    return ObjectType::Star;
}

namespace {

double YearsFromJ2000(double jdTT) { return (jdTT - 2451545.0) / 365.25; }

std::string Designation(const CTycho2Catalogue& cat, const StarRecord& rec, std::uint32_t record, std::uint32_t style)
{
    return StarDesignation(cat, rec, record,
                           (style & starstyle::kProperNames) ? ProperNames::Show : ProperNames::Hide,
                           (style & starstyle::kAbbreviated) ? ConstellationText::Abbreviation
                                                             : ConstellationText::Genitive);
}

}  // namespace

bool CStarObjectSource::Available() const { return m_catalogue->Get().IsOpen(); }

std::vector<SkyObjectMatch> CStarObjectSource::Resolve(std::string_view text, const CObserverDoc& observer) const
{
    std::vector<SkyObjectMatch> out;
    const CTycho2Catalogue& tycho = m_catalogue->Get();
    if (!tycho.IsOpen()) return out;
    const auto record = ResolveStarDesignation(tycho, text);
    StarRecord star;
    if (!record || *record < 0 || !tycho.ReadRecord(*record, star)) return out;

    double ra = 0.0, dec = 0.0;
    tycho.GetStarPosition(observer, star.TychoId(), StarPlace::Catalogue, ra, dec);
    // Where the star is at the date: its apparent place of date, taken back
    // to the catalogue frame (a chart's centre is held in J2000), so that the
    // star sits at the centre of a chart of that date.
    double raDate = ra, decDate = dec;
    if (tycho.GetStarPosition(observer, star.TychoId(), StarPlace::OfDate, raDate, decDate)) {
        DateToCatalogue(observer, raDate, decDate);
        ra = raDate;
        dec = decDate;
    }
    SkyObjectMatch m;
    m.key = static_cast<std::uint32_t>(*record);
    m.type = StarObjectType(star.flags);
    m.designation = Designation(tycho, star, m.key, starstyle::kProperNames | starstyle::kAbbreviated);
    m.raJ2000Rad = ra;
    m.decJ2000Rad = dec;
    m.magnitude = star.magCenti / 100.0;
    out.push_back(std::move(m));
    return out;
}

std::optional<ObjectDescription> CStarObjectSource::Describe(std::uint32_t key, const DescribeRequest& request) const
{
    const CTycho2Catalogue& cat = m_catalogue->Get();
    StarRecord rec;
    if (!cat.IsOpen() || !cat.ReadRecord(key, rec)) return std::nullopt;
    ObjectDescription d;
    d.type = StarObjectType(rec.flags);
    d.designation = Designation(cat, rec, key, request.style);
    StarPositionAt(rec, YearsFromJ2000(request.jdTT), d.raJ2000Rad, d.decJ2000Rad);

    std::string text = d.designation;
    StarReadout r;
    r.magCenti = rec.magCenti;
    r.distanceLy = DistanceLightYears(rec.parallaxMas);
    if (rec.flags & tycho2::flag::kVariable) {
        if (const auto v = FindVariableStar(rec.TychoId())) {
            r.rangeBrightCenti = v->maxMagCenti;
            if (v->minMagCenti) r.rangeFaintCenti = *v->minMagCenti;
            r.variableText = v->type.empty() ? v->name : v->type;
        }
    }
    text += StarReadoutLines(r);
    char buf[160];
    std::snprintf(buf, sizeof buf, "\nRA: %s  Dec: %s (J2000)", FormatHms(d.raJ2000Rad, 1).c_str(),
                  FormatDms(d.decJ2000Rad, 0).c_str());
    text += buf;
    const std::string tyc = TychoText(rec.tyc1, rec.tyc2, rec.tyc3);
    if (d.designation != tyc) text += "\n" + tyc;
    if (rec.hip != 0) {
        std::snprintf(buf, sizeof buf, "\nHIP %u", static_cast<unsigned>(rec.hip));
        text += buf;
    }
    text += FixedObjectEventsText(request, d.raJ2000Rad, d.decJ2000Rad);
    d.information = std::move(text);
    return d;
}

void CStarObjectSource::CompletionNames(std::vector<std::string>& out) const
{
    const CTycho2Catalogue& tycho = m_catalogue->Get();
    if (!tycho.IsOpen()) return;
    for (std::size_t i = 0; i < tycho.ProperNameCount(); ++i) out.emplace_back(tycho.ProperNameAt(i));
}

std::vector<VisibleStarRow> VisibleStarRows(const CChartScene& scene, const CSkyObjectRegistry& objects)
{
    std::vector<VisibleStarRow> rows;
    const CStarObjectSource* source = objects.SourceOf<CStarObjectSource>();
    if (source == nullptr || !scene.Valid()) return rows;
    const SkySourceId id = *objects.IdOf(source);
    const CTycho2Catalogue& cat = source->Catalogue();
    if (!cat.IsOpen()) return rows;
    const std::uint32_t style = scene.SourceStyle(id);
    for (const SceneObject& o : scene.Objects()) {
        if (o.source != id) continue;
        StarRecord rec;
        if (!cat.ReadRecord(o.key, rec)) continue;
        VisibleStarRow row;
        row.designation = Designation(cat, rec, o.key, style);
        if (rec.flags & tycho2::flag::kProperName) row.name = std::string(cat.ProperName(rec.TychoId()));
        if (rec.flags & tycho2::flag::kBayerFlamsteed) {
            const StarProperty prop = cat.Property(rec.TychoId());
            row.constellation = prop.constellation;
            row.greek = prop.greek;
            row.superscript = prop.superscript;
            row.flamsteed = prop.flamsteed;
        }
        row.tyc1 = rec.tyc1;
        row.tyc2 = rec.tyc2;
        row.tyc3 = rec.tyc3;
        row.magCenti = rec.magCenti;
        row.bvMilli = rec.bvMilli;
        row.variable = (rec.flags & tycho2::flag::kVariable) != 0;
        row.isDouble = (rec.flags & tycho2::flag::kDouble) != 0;
        row.raJ2000Rad = o.raJ2000Rad;
        row.decJ2000Rad = o.decJ2000Rad;
        row.xPx = o.xPx;
        row.yPx = o.yPx;
        rows.push_back(std::move(row));
    }
    SortVisibleStars(rows, StarListSort::Magnitude, SortDirection::Ascending);
    return rows;
}

}  // namespace orv
