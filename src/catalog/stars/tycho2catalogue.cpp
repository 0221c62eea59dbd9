#include "catalog/stars/tycho2catalogue.h"

#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "catalog/stars/spacemotion.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "util/binaryio.h"
#include "util/datapath.h"
#include "util/dataproblems.h"
#include "util/sortedindex.h"

namespace orv {

using namespace tycho2;

namespace {

// Linear-motion limits: 85° in mas, and 10″ of motion in mas.
constexpr double kLinearDecLimitMas = 306000000.0;
constexpr double kLinearMotionLimitMas = 10000.0;

}  // namespace

StarRecord DecodeStarRecord(const std::uint8_t* r)
{
    StarRecord s;
    s.tyc1 = LoadLE<std::int16_t>(r + rec::kTyc1);
    s.tyc2 = LoadLE<std::uint16_t>(r + rec::kTyc2);
    s.magCenti = LoadLE<std::int16_t>(r + rec::kMag);
    s.bvMilli = LoadLE<std::int16_t>(r + rec::kBV);
    s.raMas = LoadLE<std::int32_t>(r + rec::kRaMas);
    s.decMas = LoadLE<std::int32_t>(r + rec::kDecMas);
    s.pmRaMasPerYr = LoadLE<float>(r + rec::kPmRa);
    s.pmDecMasPerYr = LoadLE<float>(r + rec::kPmDec);
    s.parallaxMas = LoadLE<float>(r + rec::kParallax);
    s.hip = LoadLE<std::uint32_t>(r + rec::kHip);
    s.radVelDeciKmS = LoadLE<std::int16_t>(r + rec::kRadVel);
    s.flags = LoadLE<std::uint16_t>(r + rec::kFlags);
    s.origin = LoadLE<std::uint16_t>(r + rec::kOrigin);
    s.tyc3 = static_cast<std::uint8_t>(s.flags & flag::kTyc3Mask);
    return s;
}

int DistanceLightYears(float parallaxMas)
{
    if (!(parallaxMas > 0.0f)) return 0;
    const double ly = 3261.6 / parallaxMas + 0.5;
    return ly >= 2147483647.0 ? 2147483647 : static_cast<int>(ly);
}

// ----- Positions -------------------------------------------------------------

namespace {

void PositionAt(double raMas, double decMas, double pmRa, double pmDec, double parallaxMas, double rvDeciKmS,
                double years, double& raRad, double& decRad)
{
    const double dRa = pmRa * years;
    const double dDec = pmDec * years;
    if (std::fabs(decMas) <= kLinearDecLimitMas && std::fabs(dRa) < kLinearMotionLimitMas &&
        std::fabs(dDec) < kLinearMotionLimitMas) {
        raRad = mod2pi((raMas + dRa) * kRadPerMas);
        decRad = (decMas + dDec) * kRadPerMas;
        return;
    }
    // Near the poles, or for a large motion: the space motion. The record's
    // dα/dt becomes μα* = dα/dt · cos δ.
    SpaceMotionStar s;
    s.raRad = raMas * kRadPerMas;
    s.decRad = decMas * kRadPerMas;
    s.pmRaStarArcsecPerYr = pmRa * 0.001 * std::cos(s.decRad);
    s.pmDecArcsecPerYr = pmDec * 0.001;
    s.parallaxArcsec = parallaxMas < kParallaxUnknownBelow ? 0.0 : parallaxMas * 0.001;
    s.radialVelocityKmS = rvDeciKmS * 0.1;
    if (!PropagateSpaceMotion(s, years, raRad, decRad)) {
        raRad = mod2pi(s.raRad);
        decRad = s.decRad;
    }
}

}  // namespace

void StarPositionAt(const StarRecord& star, double years, double& raRad, double& decRad)
{
    PositionAt(star.raMas, star.decMas, star.pmRaMasPerYr, star.pmDecMasPerYr, star.parallaxMas,
               star.radVelDeciKmS, years, raRad, decRad);
}

void StarPositionAt(const std::uint8_t* r, double years, double& raRad, double& decRad)
{
    PositionAt(LoadLE<std::int32_t>(r + rec::kRaMas), LoadLE<std::int32_t>(r + rec::kDecMas),
               LoadLE<float>(r + rec::kPmRa), LoadLE<float>(r + rec::kPmDec), LoadLE<float>(r + rec::kParallax),
               LoadLE<std::int16_t>(r + rec::kRadVel), years, raRad, decRad);
}

// ----- Open and close ----------------------------------------------------------

namespace {

std::string SizeReason(std::size_t size, std::size_t expected)
{
    return "it holds " + std::to_string(size) + " bytes instead of " + std::to_string(expected);
}

}  // namespace

bool CTycho2Catalogue::LoadTables(const CDataFiles& files)
{
    if (!m_regionStart.empty()) return true;
    // Mapped only while decoded into the tables below.
    CMappedFile start, bounds;
    if (!files.Map(kRegionStartFile, start)) return false;
    if (start.Size() != kRegionStartFileSize) {
        ReportDataFileProblem(start.Path(), SizeReason(start.Size(), kRegionStartFileSize));
        return false;
    }
    if (!files.Map(kRegionBoundsFile, bounds)) return false;
    if (bounds.Size() != kRegionBoundsFileSize) {
        ReportDataFileProblem(bounds.Path(), SizeReason(bounds.Size(), kRegionBoundsFileSize));
        return false;
    }
    std::vector<std::uint32_t> regionStart(kRegionCount + 1);
    std::vector<std::int16_t> brightest(kRegionCount);
    for (int r = 0; r <= kRegionCount; ++r) {
        regionStart[r] = LoadLE<std::uint32_t>(start.Data() + r * kRegionStartEntrySize);
        if (r < kRegionCount) brightest[r] = LoadLE<std::int16_t>(start.Data() + r * kRegionStartEntrySize + 4);
        if (r > 0 && regionStart[r] < regionStart[r - 1]) {
            ReportDataFileProblem(start.Path(), "the start of region " + std::to_string(r + 1) +
                                                    " lies before that of region " + std::to_string(r));
            return false;
        }
    }
    std::vector<std::int32_t> b(4 * kRegionCount);
    for (std::size_t i = 0; i < b.size(); ++i) b[i] = LoadLE<std::int32_t>(bounds.Data() + i * 4);
    m_regionStart = std::move(regionStart);
    m_regionBrightest = std::move(brightest);
    m_regionBounds = std::move(b);
    return true;
}

void CTycho2Catalogue::LoadNameTables(const CDataFiles& files)
{
    m_names.clear();
    m_properties.clear();
    if (files.Read(kProperNameFile, m_names)) m_names.resize(m_names.size() / kNameEntrySize * kNameEntrySize);
    if (files.Read(kPropertyFile, m_properties))
        m_properties.resize(m_properties.size() / kPropertyEntrySize * kPropertyEntrySize);
}

bool CTycho2Catalogue::OpenCatalogue() { return OpenCatalogue(CDataFolderFiles()); }

bool CTycho2Catalogue::OpenCatalogue(const CDataFiles& files)
{
    if (m_open) return true;
    if (!LoadTables(files)) {
        CloseCatalogue();
        return false;
    }
    if (!files.Map(kCatalogueFile, m_file)) {
        CloseCatalogue();
        return false;
    }
    const std::string path = m_file.Path();
    if (m_file.Size() % kRecordSize != 0 || m_file.Size() == 0) {
        ReportDataFileProblem(path, "its size, " + std::to_string(m_file.Size()) + " bytes, is not a whole number of " +
                                        std::to_string(kRecordSize) + "-byte star records");
        CloseCatalogue();
        return false;
    }
    m_records = m_file.Data();
    m_recordCount = m_file.Size() / kRecordSize;
    // Every region must lie inside the mapped file: the walk relies on it.
    if (m_regionStart.back() > m_recordCount) {
        ReportDataFileProblem(path, "it holds " + std::to_string(m_recordCount) + " stars, the region table " +
                                        std::to_string(m_regionStart.back()) + " (a file cut short?)");
        CloseCatalogue();
        return false;
    }
    files.Map(kTychoIdFile, m_ids);
    LoadNameTables(files);
    m_open = true;
    return true;
}

void CTycho2Catalogue::CloseCatalogue()
{
    m_file.Close();
    m_ids.Close();
    m_records = nullptr;
    m_recordCount = 0;
    m_open = false;
    std::vector<std::uint32_t>().swap(m_regionStart);
    std::vector<std::int16_t>().swap(m_regionBrightest);
    std::vector<std::int32_t>().swap(m_regionBounds);
    std::vector<std::uint8_t>().swap(m_names);
    std::vector<std::uint8_t>().swap(m_properties);
}

CTycho2Catalogue& Tycho2Catalogue()
{
    static CTycho2Catalogue catalogue;
    return catalogue;
}

bool CTycho2Catalogue::ReadRecord(std::int64_t recordNumber, StarRecord& out) const
{
    if (!m_open || recordNumber < 0 || static_cast<std::size_t>(recordNumber) >= m_recordCount) return false;
    out = DecodeStarRecord(Record(static_cast<std::uint32_t>(recordNumber)));
    return true;
}

// ----- Regions -------------------------------------------------------------------

bool CTycho2Catalogue::RegionBox(int r, SkyBox& box) const
{
    if (r < 0 || r >= kRegionCount || m_regionBounds.size() < static_cast<std::size_t>(kRegionCount) * 4) return false;
    const std::int32_t* b = &m_regionBounds[static_cast<std::size_t>(r) * 4];
    constexpr double kRadPerUnit = kRadPerDeg / kTenthArcsecPerDeg;
    box.raMinRad = b[0] * kRadPerUnit;
    box.raMaxRad = b[1] * kRadPerUnit;
    box.decMinRad = b[2] * kRadPerUnit;
    box.decMaxRad = b[3] * kRadPerUnit;
    return true;
}

void CTycho2Catalogue::FindRegions(const SkyBox& box, std::vector<int>& regions) const
{
    regions.clear();
    if (m_regionBounds.empty()) return;
    // Box edges in 0.1″ (radians × 57.29577951308232 × 36,000).
    const auto units = [](double rad) { return static_cast<std::int32_t>(rad * kDegPerRad * kTenthArcsecPerDeg); };
    const std::int32_t raMin = units(box.raMinRad);
    const std::int32_t raMax = units(box.raMaxRad);
    const std::int32_t decMin = units(box.decMinRad);
    const std::int32_t decMax = units(box.decMaxRad);
    const bool wraps = raMin > raMax;
    constexpr std::int32_t kFullCircle = 360 * 36000;

    const auto raMeets = [&](std::int32_t lo, std::int32_t hi) {
        if (wraps) return hi >= raMin || lo <= raMax;  // [raMin, 360°) ∪ [0, raMax]
        return lo <= raMax && hi >= raMin;
    };
    for (int r = 0; r < kRegionCount; ++r) {
        const std::int32_t* b = &m_regionBounds[static_cast<std::size_t>(r) * 4];
        if (b[2] > decMax || b[3] < decMin) continue;
        // A region at 0h may start just below 0 (its box reaches back across
        // 0h): its part below 0 is the same sky as just below 360°.
        if (raMeets(b[0], b[1]) || (b[0] < 0 && raMeets(b[0] + kFullCircle, kFullCircle)))
            regions.push_back(r);
    }
}

// ----- Walk -----------------------------------------------------------------------

CStarWalk::CStarWalk(const CTycho2Catalogue& catalogue, std::span<const int> regions, int magLimitCenti)
    : m_catalogue(catalogue), m_regions(regions), m_limit(magLimitCenti)
{
}

const std::uint8_t* CStarWalk::NextStar()
{
    if (!m_catalogue.IsOpen()) return nullptr;
    for (;;) {
        if (m_current < m_end) {
            const std::uint8_t* r = m_catalogue.Record(m_current);
            if (LoadLE<std::int16_t>(r + rec::kMag) <= m_limit) {
                ++m_current;
                return r;
            }
            m_current = m_end;  // brightest first: the rest of the region is fainter still
        }
        // Next region whose brightest star is within the limit.
        for (;;) {
            if (m_regionIndex >= m_regions.size()) return nullptr;
            const int region = m_regions[m_regionIndex++];
            if (region < 0 || region >= kRegionCount) continue;
            if (m_catalogue.RegionBrightest(region) > m_limit) continue;
            m_current = m_catalogue.RegionStart(region);
            m_end = m_catalogue.RegionEnd(region);
            break;
        }
    }
}

// ----- Lookups ----------------------------------------------------------------------

std::int64_t CTycho2Catalogue::FindByTychoId(int tyc1, int tyc2, int tyc3) const
{
    return FindByTychoId(TychoId(tyc1, tyc2, tyc3));
}

std::int64_t CTycho2Catalogue::FindByTychoId(std::int64_t tychoId) const
{
    if (!m_ids.IsOpen()) return -1;
    const std::uint8_t* base = m_ids.Data();
    const std::size_t count = m_ids.Size() / kTychoIdEntrySize;
    const std::int64_t at = SortedIndexFind(count, tychoId, [&](std::size_t i) {
        const std::uint8_t* e = base + i * kTychoIdEntrySize;
        return TychoId(LoadLE<std::int16_t>(e), LoadLE<std::int16_t>(e + 2), LoadLE<std::int16_t>(e + 4));
    });
    if (at < 0) return -1;
    const std::uint32_t record = LoadLE<std::uint32_t>(base + static_cast<std::size_t>(at) * kTychoIdEntrySize + 6);
    return record < m_recordCount ? static_cast<std::int64_t>(record) : -1;
}

bool CTycho2Catalogue::GetStarPosition(const CObserverDoc& observer, std::int64_t tychoId, StarPlace place,
                                       double& raRad, double& decRad) const
{
    StarRecord s;
    if (!ReadRecord(FindByTychoId(tychoId), s)) return false;
    if (place == StarPlace::Catalogue) {
        raRad = s.raMas * kRadPerMas;
        decRad = s.decMas * kRadPerMas;
        return true;
    }
    const double years = (observer.JulianDateTDT() - 2451545.0) / 365.25;
    StarPositionAt(s, years, raRad, decRad);
    CatalogueToDate(observer, raRad, decRad, Place::Apparent);
    return true;
}

std::string_view CTycho2Catalogue::ProperName(std::int64_t tychoId) const
{
    const std::int64_t at = FindKey64Entry(m_names, kNameEntrySize, tychoId);
    return at < 0 ? std::string_view() : ProperNameAt(static_cast<std::size_t>(at));
}

StarProperty CTycho2Catalogue::Property(std::int64_t tychoId) const
{
    const std::int64_t at = FindKey64Entry(m_properties, kPropertyEntrySize, tychoId);
    return at < 0 ? StarProperty{} : PropertyAt(static_cast<std::size_t>(at));
}

std::int64_t CTycho2Catalogue::ProperNameId(std::size_t i) const
{
    return LoadKey64(m_names.data() + i * kNameEntrySize);
}

std::string_view CTycho2Catalogue::ProperNameAt(std::size_t i) const
{
    const char* text = reinterpret_cast<const char*>(m_names.data() + i * kNameEntrySize + 8);
    return {text, strnlen(text, kNameEntrySize - 8)};
}

std::int64_t CTycho2Catalogue::PropertyId(std::size_t i) const
{
    return LoadKey64(m_properties.data() + i * kPropertyEntrySize);
}

StarProperty CTycho2Catalogue::PropertyAt(std::size_t i) const
{
    const std::uint8_t* e = m_properties.data() + i * kPropertyEntrySize;
    return StarProperty{e[8], e[9], e[10], e[11]};
}

}  // namespace orv
