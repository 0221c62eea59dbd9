// The constellation files (layouts: docs/constellation-files.md):
//   "star\Tycho2\ConstFig.dat"  figure lines joining Hipparcos stars;
//   "data\conname.dat"          where each name is written (J2000);
//   "data\constnam.dat"         abbreviations, names and genitives;
//   "data\conbound.dat"         Roman's declination strips and Delporte's
//                               boundary edges, both on the B1875.0 equator.
//
// Each file is mapped read-only, checked against its mapped length as a
// whole and decoded once into the small tables below (a few thousand
// entries); a missing or damaged file leaves its part empty, without any
// message: the chart then has no figures, names or boundaries.
//
// Which constellation holds a point: the point is precessed to the mean
// equator and equinox of B1875.0 and Roman's strips are searched in order of
// decreasing declination, the first strip that holds it naming the
// constellation (Roman 1987, PASP 99, 695).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

class CMappedFile;
class CObserverDoc;

namespace constfile {
inline constexpr std::size_t kFigureEntrySize = 12;
inline constexpr std::size_t kFigureRecordSize = 10;
inline constexpr std::size_t kNamePlaceSize = 5;
inline constexpr std::size_t kNameRecordSize = 64;
inline constexpr std::size_t kStripSize = 12;
inline constexpr std::size_t kEdgeSize = 20;
// B1875.0 (Besselian epoch 1875.0) as a Julian date, TT.
inline constexpr double kJdB1875 = 2405889.258550475;
}  // namespace constfile

// Figure record codes that draw: 0 (the only one written by the builder)
// and 1 and 5, drawn alike. Any other code is skipped.
bool IsDrawingFigureCode(std::uint16_t code);

// One record of "ConstFig.dat": a line between two Hipparcos stars.
struct FigureRecord {
    std::uint16_t code = 0;
    std::uint32_t hipA = 0;
    std::uint32_t hipB = 0;
    std::uint8_t constellation = 255;  // from the entry whose range holds the record
};

struct NamePlace {
    int constellation = -1;
    double raJ2000Rad = 0.0;
    double decJ2000Rad = 0.0;
};

struct ConstellationNameEntry {
    std::string abbreviation;  // "Ori"
    std::string name;          // "Orion"
    std::string genitive;      // "Orionis"
};

// A row of Roman's table: the southern edge of a constellation, the
// declination arc from raLow to raHigh at decLow (B1875.0, radians).
struct DeclinationStrip {
    double raLowRad = 0.0;
    double raHighRad = 0.0;
    double decLowRad = 0.0;
    int constellation = -1;
};

// An edge of Delporte's boundaries between two B1875.0 vertices (radians):
// a meridian arc when the right ascensions are equal, otherwise an arc of
// the parallel of declination dec1 = dec2, taken the short way round.
struct BoundaryEdge {
    int left = -1;
    int right = -1;
    double ra1Rad = 0.0, dec1Rad = 0.0;
    double ra2Rad = 0.0, dec2Rad = 0.0;
    bool AlongMeridian() const { return ra1Rad == ra2Rad; }
};

// Why a file was refused.
enum class ConstFileStatus { Ok, Missing, Damaged };

// Decoders of each file's bytes (exposed for the tests). Damaged: a length
// that is not what the header and record sizes make, or a field out of range.
ConstFileStatus DecodeFigures(std::span<const std::uint8_t> bytes, std::vector<FigureRecord>& out);
ConstFileStatus DecodeNamePlaces(std::span<const std::uint8_t> bytes, std::vector<NamePlace>& out);
ConstFileStatus DecodeNames(std::span<const std::uint8_t> bytes, std::vector<ConstellationNameEntry>& out);
ConstFileStatus DecodeBoundaries(std::span<const std::uint8_t> bytes, std::vector<DeclinationStrip>& strips,
                                 std::vector<BoundaryEdge>& edges);

// Roman's search over strips in file order: the constellation (0-87) of a
// B1875.0 place, or −1 when no strip holds it (an empty table).
int ConstellationOfB1875(std::span<const DeclinationStrip> strips, double raB1875Rad, double decB1875Rad);

// Precesses a J2000 (ICRS) place to the mean equator and equinox of B1875.0
// with the observer's IAU 2006 precession; radians, right ascension in [0, 2π).
void J2000ToB1875(const CObserverDoc& observer, double raJ2000Rad, double decJ2000Rad, double& raB1875Rad,
                  double& decB1875Rad);

class CConstellationCatalogue {
public:
    // The files are looked for in the program's data folders, or only below
    // `folder` when one is given (a data folder being built or checked).
    CConstellationCatalogue() = default;
    explicit CConstellationCatalogue(std::string folder) : m_folder(std::move(folder)) {}

    // Each Load reads its file once: a second call returns what the first
    // found without touching the file again.
    bool LoadFigures();
    bool LoadNamePlaces();
    bool LoadNames();
    bool LoadBoundaries();
    void LoadAll();

    // How many times "ConstFig.dat" was actually read (0 or 1).
    int FigureReads() const { return m_figureReads; }

    std::span<const FigureRecord> Figures() const { return m_figures; }
    std::span<const NamePlace> NamePlaces() const { return m_namePlaces; }
    std::span<const DeclinationStrip> Strips() const { return m_strips; }
    std::span<const BoundaryEdge> Edges() const { return m_edges; }
    bool HasNames() const { return !m_names.empty(); }

    // The name place of a constellation: the first record of "conname.dat"
    // with its number; false when it has none.
    bool NamePlaceOf(int constellation, NamePlace& out) const;

    // Names from "constnam.dat", else the program's string table.
    std::string Abbreviation(int constellation) const;
    std::string Name(int constellation) const;
    std::string Genitive(int constellation) const;

    // The constellation (0-87) holding a J2000 place, or −1 without the
    // boundary file.
    int ConstellationAt(const CObserverDoc& observer, double raJ2000Rad, double decJ2000Rad) const;

private:
    ConstFileStatus Map(std::string_view name, CMappedFile& file) const;

    std::string m_folder;
    bool m_figuresLoaded = false, m_placesLoaded = false, m_namesLoaded = false, m_boundsLoaded = false;
    int m_figureReads = 0;
    std::vector<FigureRecord> m_figures;
    std::vector<NamePlace> m_namePlaces;
    std::vector<ConstellationNameEntry> m_names;
    std::vector<DeclinationStrip> m_strips;
    std::vector<BoundaryEdge> m_edges;
};

}  // namespace orv
