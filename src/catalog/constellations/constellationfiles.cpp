#include "catalog/constellations/constellationfiles.h"

#include <cmath>

#include "app/strings.h"
#include "observer/observer.h"
#include "map/skyframes.h"
#include "util/angles.h"
#include "util/binaryio.h"
#include "util/datapath.h"
#include "util/dataproblems.h"
#include "util/mappedfile.h"

namespace orv {

namespace {

using namespace constfile;

constexpr double kRadPerSecTime = kTwoPi / 86400.0;
constexpr double kRadPerArcmin = kRadPerArcsec * 60.0;

std::string FixedText(const std::uint8_t* p, std::size_t width)
{
    std::size_t n = 0;
    while (n < width && p[n] != 0) ++n;
    return std::string(reinterpret_cast<const char*>(p), n);
}

bool ValidConstellation(int c) { return c >= 0 && c < kConstellationCount; }

}  // namespace

bool IsDrawingFigureCode(std::uint16_t code) { return code == 0 || code == 1 || code == 5; }

ConstFileStatus DecodeFigures(std::span<const std::uint8_t> bytes, std::vector<FigureRecord>& out)
{
    out.clear();
    if (bytes.size() < 4) return ConstFileStatus::Damaged;
    const std::uint32_t n = LoadLE<std::uint32_t>(bytes.data());
    if (n > 1000 || 4 + static_cast<std::size_t>(n) * kFigureEntrySize > bytes.size()) return ConstFileStatus::Damaged;
    const std::size_t recordsAt = 4 + static_cast<std::size_t>(n) * kFigureEntrySize;
    if ((bytes.size() - recordsAt) % kFigureRecordSize != 0) return ConstFileStatus::Damaged;
    const std::size_t count = (bytes.size() - recordsAt) / kFigureRecordSize;
    out.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* r = bytes.data() + recordsAt + i * kFigureRecordSize;
        out[i].code = LoadLE<std::uint16_t>(r);
        out[i].hipA = LoadLE<std::uint32_t>(r + 2);
        out[i].hipB = LoadLE<std::uint32_t>(r + 6);
    }
    // The entries: constellation, first record, record count.
    for (std::uint32_t e = 0; e < n; ++e) {
        const std::uint8_t* p = bytes.data() + 4 + e * kFigureEntrySize;
        const std::uint8_t c = p[0];
        const std::uint32_t first = LoadLE<std::uint32_t>(p + 4), cnt = LoadLE<std::uint32_t>(p + 8);
        if (!ValidConstellation(c) || first > count || cnt > count - first) {
            out.clear();
            return ConstFileStatus::Damaged;
        }
        for (std::uint32_t k = first; k < first + cnt; ++k) out[k].constellation = c;
    }
    return ConstFileStatus::Ok;
}

ConstFileStatus DecodeNamePlaces(std::span<const std::uint8_t> bytes, std::vector<NamePlace>& out)
{
    out.clear();
    if (bytes.size() % kNamePlaceSize != 0) return ConstFileStatus::Damaged;
    for (std::size_t at = 0; at < bytes.size(); at += kNamePlaceSize) {
        const std::uint8_t* p = bytes.data() + at;
        NamePlace np;
        np.constellation = p[0];
        const int raArcmin = LoadLE<std::int16_t>(p + 1), decArcmin = LoadLE<std::int16_t>(p + 3);
        if (!ValidConstellation(np.constellation) || raArcmin < 0 || raArcmin > 21600 || std::abs(decArcmin) > 5400) {
            out.clear();
            return ConstFileStatus::Damaged;
        }
        // Arc minutes of angle: value × π/180 ÷ 60 radians.
        np.raJ2000Rad = raArcmin * kRadPerArcmin;
        np.decJ2000Rad = decArcmin * kRadPerArcmin;
        out.push_back(np);
    }
    return ConstFileStatus::Ok;
}

ConstFileStatus DecodeNames(std::span<const std::uint8_t> bytes, std::vector<ConstellationNameEntry>& out)
{
    out.clear();
    if (bytes.size() != kNameRecordSize * kConstellationCount) return ConstFileStatus::Damaged;
    for (int c = 0; c < kConstellationCount; ++c) {
        const std::uint8_t* p = bytes.data() + static_cast<std::size_t>(c) * kNameRecordSize;
        out.push_back({FixedText(p, 4), FixedText(p + 4, 30), FixedText(p + 34, 30)});
    }
    return ConstFileStatus::Ok;
}

ConstFileStatus DecodeBoundaries(std::span<const std::uint8_t> bytes, std::vector<DeclinationStrip>& strips,
                                 std::vector<BoundaryEdge>& edges)
{
    strips.clear();
    edges.clear();
    if (bytes.size() < 8) return ConstFileStatus::Damaged;
    const std::uint64_t ns = LoadLE<std::uint32_t>(bytes.data()), ne = LoadLE<std::uint32_t>(bytes.data() + 4);
    if (bytes.size() != 8 + ns * kStripSize + ne * kEdgeSize) return ConstFileStatus::Damaged;
    auto damaged = [&] {
        strips.clear();
        edges.clear();
        return ConstFileStatus::Damaged;
    };
    const std::uint8_t* p = bytes.data() + 8;
    for (std::uint64_t i = 0; i < ns; ++i, p += kStripSize) {
        const std::int32_t lo = LoadLE<std::int32_t>(p), hi = LoadLE<std::int32_t>(p + 4);
        const std::int16_t dec = LoadLE<std::int16_t>(p + 8);
        if (lo < 0 || hi > 86400 || lo >= hi || std::abs(dec) > 5400 || !ValidConstellation(p[10])) return damaged();
        strips.push_back({lo * kRadPerSecTime, hi * kRadPerSecTime, dec * kRadPerArcmin, p[10]});
    }
    for (std::uint64_t i = 0; i < ne; ++i, p += kEdgeSize) {
        const std::int32_t ra1 = LoadLE<std::int32_t>(p + 4), dec1 = LoadLE<std::int32_t>(p + 8);
        const std::int32_t ra2 = LoadLE<std::int32_t>(p + 12), dec2 = LoadLE<std::int32_t>(p + 16);
        if (!ValidConstellation(p[0]) || !ValidConstellation(p[1]) || ra1 < 0 || ra1 >= 86400 || ra2 < 0 ||
            ra2 >= 86400 || std::abs(dec1) > 324000 || std::abs(dec2) > 324000 || (ra1 != ra2 && dec1 != dec2))
            return damaged();
        edges.push_back({p[0], p[1], ra1 * kRadPerSecTime, dec1 * kRadPerArcsec, ra2 * kRadPerSecTime,
                         dec2 * kRadPerArcsec});
    }
    return ConstFileStatus::Ok;
}

int ConstellationOfB1875(std::span<const DeclinationStrip> strips, double raB1875Rad, double decB1875Rad)
{
    if (!std::isfinite(raB1875Rad) || !std::isfinite(decB1875Rad)) return -1;
    const double ra = mod2pi(raB1875Rad);
    for (const DeclinationStrip& s : strips)
        if (decB1875Rad >= s.decLowRad && ra >= s.raLowRad && ra < s.raHighRad) return s.constellation;
    return -1;
}

void J2000ToB1875(const CObserverDoc& observer, double raJ2000Rad, double decJ2000Rad, double& raB1875Rad,
                  double& decB1875Rad)
{
    double v[3];
    SphericalToVector(raJ2000Rad, decJ2000Rad, v);
    observer.PrecessXYZ(v, kJdB1875, -1);
    VectorToSpherical(v, raB1875Rad, decB1875Rad);
    raB1875Rad = mod2pi(raB1875Rad);
}

// Maps a data file; Missing when it is absent.
ConstFileStatus CConstellationCatalogue::Map(std::string_view name, CMappedFile& file) const
{
    std::string path;
    const bool found = m_folder.empty() ? LocateDataFile(name, path) : ResolveCaseInsensitive(m_folder, name, path);
    if (!found || !file.Open(path)) return ConstFileStatus::Missing;
    return ConstFileStatus::Ok;
}

namespace {

// A file that is there but does not decode is left out and reported.
void ReportIfDamaged(ConstFileStatus status, const CMappedFile& file, std::string_view what)
{
    if (status == ConstFileStatus::Damaged)
        ReportDataFileProblem(file.Path(), "its " + std::string(what) + " do not decode (" +
                                               std::to_string(file.Size()) + " bytes)");
}

}  // namespace

bool CConstellationCatalogue::LoadFigures()
{
    if (m_figuresLoaded) return !m_figures.empty();
    m_figuresLoaded = true;
    CMappedFile f;
    if (Map("star\\Tycho2\\ConstFig.dat", f) != ConstFileStatus::Ok) return false;
    ++m_figureReads;
    ReportIfDamaged(DecodeFigures(f.Bytes(), m_figures), f, "figure records");
    return !m_figures.empty();
}

bool CConstellationCatalogue::LoadNamePlaces()
{
    if (m_placesLoaded) return !m_namePlaces.empty();
    m_placesLoaded = true;
    CMappedFile f;
    if (Map("data\\conname.dat", f) == ConstFileStatus::Ok)
        ReportIfDamaged(DecodeNamePlaces(f.Bytes(), m_namePlaces), f, "name positions");
    return !m_namePlaces.empty();
}

bool CConstellationCatalogue::LoadNames()
{
    if (m_namesLoaded) return !m_names.empty();
    m_namesLoaded = true;
    CMappedFile f;
    if (Map("data\\constnam.dat", f) == ConstFileStatus::Ok)
        ReportIfDamaged(DecodeNames(f.Bytes(), m_names), f, "names");
    return !m_names.empty();
}

bool CConstellationCatalogue::LoadBoundaries()
{
    if (m_boundsLoaded) return !m_strips.empty();
    m_boundsLoaded = true;
    CMappedFile f;
    if (Map("data\\conbound.dat", f) == ConstFileStatus::Ok)
        ReportIfDamaged(DecodeBoundaries(f.Bytes(), m_strips, m_edges), f, "strips and edges");
    return !m_strips.empty();
}

void CConstellationCatalogue::LoadAll()
{
    LoadFigures();
    LoadNamePlaces();
    LoadNames();
    LoadBoundaries();
}

bool CConstellationCatalogue::NamePlaceOf(int constellation, NamePlace& out) const
{
    for (const NamePlace& p : m_namePlaces)
        if (p.constellation == constellation) {
            out = p;
            return true;
        }
    return false;
}

std::string CConstellationCatalogue::Abbreviation(int c) const
{
    if (ValidConstellation(c) && !m_names.empty() && !m_names[static_cast<std::size_t>(c)].abbreviation.empty())
        return m_names[static_cast<std::size_t>(c)].abbreviation;
    return std::string(ConstellationAbbreviation(c));
}

std::string CConstellationCatalogue::Name(int c) const
{
    if (ValidConstellation(c) && !m_names.empty() && !m_names[static_cast<std::size_t>(c)].name.empty())
        return m_names[static_cast<std::size_t>(c)].name;
    return std::string(ConstellationName(c));
}

std::string CConstellationCatalogue::Genitive(int c) const
{
    if (ValidConstellation(c) && !m_names.empty() && !m_names[static_cast<std::size_t>(c)].genitive.empty())
        return m_names[static_cast<std::size_t>(c)].genitive;
    return std::string(ConstellationGenitive(c));
}

int CConstellationCatalogue::ConstellationAt(const CObserverDoc& observer, double raJ2000Rad, double decJ2000Rad) const
{
    double ra = 0.0, dec = 0.0;
    J2000ToB1875(observer, raJ2000Rad, decJ2000Rad, ra, dec);
    return ConstellationOfB1875(m_strips, ra, dec);
}

}  // namespace orv
