// Byte layouts of Orvane's deep-sky catalogue files, shared by the reader and
// by the data builder that writes them. Every field is little-endian; the
// layouts are described field by field in docs/deep-sky-files.md.
//
// Three catalogues share one scheme of sky regions: the sky is cut into
// declination zones 7.5° high, and each zone into right-ascension cells about
// 7.5° wide on the sky at the zone's middle. A catalogue's records are filed
// region by region (brightest first within a region), and its bounds file
// says, per region, which records it holds and how far the largest object
// filed there reaches beyond its centre.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orv::deepsky {

// --- File names (resolved through LocateDataFile) ---------------------------
inline constexpr std::string_view kNgcIcFile = "deepsky\\ngcic\\ngcic.dat";
inline constexpr std::string_view kNgcIcNameFile = "deepsky\\ngcic\\ngcicnam.idx";
inline constexpr std::string_view kNgcIcBoundsFile = "deepsky\\ngcic\\ngcicbnd.dat";
inline constexpr std::string_view kLedaFile = "deepsky\\LEDA\\LEDA.dat";
inline constexpr std::string_view kLedaBoundsFile = "deepsky\\LEDA\\LEDAbnd.dat";
inline constexpr std::string_view kLedaNameFile = "deepsky\\LEDA\\LEDAName.idx";
inline constexpr std::string_view kPlanetaryFile = "deepsky\\Strasbrg\\pln.dat";
inline constexpr std::string_view kPlanetaryBoundsFile = "deepsky\\Strasbrg\\plnbnd.dat";
inline constexpr std::string_view kSacFile = "deepsky\\sac\\sacsupp.dat";
inline constexpr std::string_view kSacBoundsFile = "deepsky\\sac\\sacbound.dat";
inline constexpr std::string_view kSacNameFile = "deepsky\\sac\\sacname.dat";
// Text files beside the binary records: popular names of LEDA galaxies and
// SAC objects, and the SAC objects' chart labels (see NameListLine below).
inline constexpr std::string_view kLedaPopularFile = "deepsky\\LEDA\\LEDAName.dat";
inline constexpr std::string_view kSacPopularFile = "deepsky\\sac\\sacpop.dat";
inline constexpr std::string_view kSacLabelFile = "deepsky\\sac\\saclabel.dat";
inline constexpr std::string_view kCatExtFile = "CatExt.dat";

// The same names as the builder creates them on disk.
inline constexpr std::string_view kNgcIcDiskName = "deepsky/ngcic/ngcic.dat";
inline constexpr std::string_view kNgcIcNameDiskName = "deepsky/ngcic/ngcicnam.idx";
inline constexpr std::string_view kNgcIcBoundsDiskName = "deepsky/ngcic/ngcicbnd.dat";
inline constexpr std::string_view kLedaDiskName = "deepsky/LEDA/LEDA.dat";
inline constexpr std::string_view kLedaBoundsDiskName = "deepsky/LEDA/LEDAbnd.dat";
inline constexpr std::string_view kLedaNameDiskName = "deepsky/LEDA/LEDAName.idx";
inline constexpr std::string_view kPlanetaryDiskName = "deepsky/Strasbrg/pln.dat";
inline constexpr std::string_view kPlanetaryBoundsDiskName = "deepsky/Strasbrg/plnbnd.dat";
inline constexpr std::string_view kSacDiskName = "deepsky/sac/sacsupp.dat";
inline constexpr std::string_view kSacBoundsDiskName = "deepsky/sac/sacbound.dat";
inline constexpr std::string_view kSacNameDiskName = "deepsky/sac/sacname.dat";
inline constexpr std::string_view kLedaPopularDiskName = "deepsky/LEDA/LEDAName.dat";
inline constexpr std::string_view kSacPopularDiskName = "deepsky/sac/sacpop.dat";
inline constexpr std::string_view kSacLabelDiskName = "deepsky/sac/saclabel.dat";

// The name lists are UTF-8 text, one object a line: its designation as the
// catalogue's name index holds it, a "|", then the text ("LEDA 2248|Cartwheel
// Galaxy; Cartwheel Ring Galaxy" for names, "NGC 224|M 31" for a SAC
// object's chart label). Lines starting with "#" are comments.
inline constexpr char kNameListSeparator = '|';

// Magnitude field of an object without a measured magnitude (0.01 mag).
inline constexpr std::int16_t kNoMagnitude = 32767;
// Position-angle field of an object without one (degrees).
inline constexpr std::int16_t kNoPositionAngle = -1;

// --- Regions -----------------------------------------------------------------
inline constexpr int kZoneCount = 24;
inline constexpr double kZoneHeightDeg = 180.0 / kZoneCount;

// Right-ascension cells of declination zone `zone` (0 = the south polar cap).
inline int CellsInZone(int zone)
{
    const double midDecRad = (-90.0 + (zone + 0.5) * kZoneHeightDeg) * 3.14159265358979323846 / 180.0;
    const int n = static_cast<int>(std::lround(360.0 / kZoneHeightDeg * std::cos(midDecRad)));
    return n < 1 ? 1 : n;
}

// First region number of each zone, and the total after the last.
inline const std::array<int, kZoneCount + 1>& ZoneStarts()
{
    static const std::array<int, kZoneCount + 1> starts = [] {
        std::array<int, kZoneCount + 1> s{};
        for (int z = 0; z < kZoneCount; ++z) s[static_cast<std::size_t>(z + 1)] = s[static_cast<std::size_t>(z)] + CellsInZone(z);
        return s;
    }();
    return starts;
}

inline int RegionCount() { return ZoneStarts()[kZoneCount]; }

// The region of a J2000 place given in milliarcseconds (RA 0 … 360°).
inline int RegionOf(std::int64_t raMas, std::int64_t decMas)
{
    constexpr std::int64_t kMasPerDeg = 3'600'000;
    int zone = static_cast<int>((decMas + 90 * kMasPerDeg) * kZoneCount / (180 * kMasPerDeg));
    zone = zone < 0 ? 0 : (zone >= kZoneCount ? kZoneCount - 1 : zone);
    const int cells = CellsInZone(zone);
    std::int64_t ra = raMas % (360 * kMasPerDeg);
    if (ra < 0) ra += 360 * kMasPerDeg;
    int cell = static_cast<int>(ra * cells / (360 * kMasPerDeg));
    cell = cell >= cells ? cells - 1 : cell;
    return ZoneStarts()[static_cast<std::size_t>(zone)] + cell;
}

// --- Bounds files: one 28-byte entry per region, in region order --------------
inline constexpr std::size_t kBoundsEntrySize = 28;
namespace bnd {
inline constexpr std::size_t kRaMin = 0;      // int32, mas: the region's cell
inline constexpr std::size_t kRaMax = 4;      // int32, mas
inline constexpr std::size_t kDecMin = 8;     // int32, mas
inline constexpr std::size_t kDecMax = 12;    // int32, mas
inline constexpr std::size_t kReach = 16;     // int32, mas: largest semi-major axis filed here
inline constexpr std::size_t kFirst = 20;     // uint32: first record of the region
inline constexpr std::size_t kCount = 24;     // uint32: records in the region
}  // namespace bnd

// --- "ngcic.dat": 226-byte records --------------------------------------------
inline constexpr std::size_t kNgcIcRecordSize = 226;
namespace ngc {
inline constexpr std::size_t kDesignation = 0;  // char[16], "NGC 7000", "IC 434", "M 45"
inline constexpr std::size_t kRa = 16;          // int32, mas, J2000
inline constexpr std::size_t kDec = 20;         // int32, mas, J2000
inline constexpr std::size_t kMag = 24;         // int16, 0.01 mag (visual, else blue); kNoMagnitude
inline constexpr std::size_t kNumber = 26;      // uint16: the NGC or IC number (0 for neither)
inline constexpr std::size_t kMajor = 28;       // uint16, 0.1′
inline constexpr std::size_t kMinor = 30;       // uint16, 0.1′
inline constexpr std::size_t kPa = 32;          // int16, degrees from north through east; kNoPositionAngle
inline constexpr std::size_t kMessier = 34;     // uint8: Messier number (0 none)
inline constexpr std::size_t kCaldwell = 35;    // uint8: Caldwell number (0 none)
inline constexpr std::size_t kCatalogue = 36;   // uint8: 1 NGC, 2 IC, 0 neither
inline constexpr std::size_t kSystemType = 37;  // uint8: the program's object type code
inline constexpr std::size_t kType = 38;        // uint8: the catalogue's own type coding (below)
inline constexpr std::size_t kMorphology = 40;  // char[16], e.g. "SA(s)b", "III2p"
inline constexpr std::size_t kCommonName = 56;  // char[64], e.g. "Andromeda Galaxy"
inline constexpr std::size_t kPgc = 120;        // uint32: PGC number of a galaxy (0 none)
inline constexpr std::size_t kOtherIds = 124;   // char[102], e.g. "Sh2-281, LBN 974"
}  // namespace ngc

// The NGC/IC type byte.
enum class NgcType : std::uint8_t {
    None = 0,
    Galaxy = 1,
    PartOfGalaxy = 2,
    OpenCluster = 3,
    PlanetaryNebula = 4,
    GlobularCluster = 5,
    DarkNebula = 6,
    EmissionNebula = 7,
    ReflectionNebula = 8,
    Star = 9,
    SupernovaRemnant = 10,
};

// --- "ngcicnam.idx": 18-byte entries sorted byte by byte on the name ---------
inline constexpr std::size_t kNgcIcNameEntrySize = 18;
inline constexpr std::size_t kNgcIcNameWidth = 16;  // then int16 record number

// --- "LEDA.dat": 32-byte records ----------------------------------------------
inline constexpr std::size_t kLedaRecordSize = 32;
namespace leda {
inline constexpr std::size_t kPgc = 0;          // uint32: PGC (= LEDA) number
inline constexpr std::size_t kRa = 4;           // int32, mas, J2000
inline constexpr std::size_t kDec = 8;          // int32, mas, J2000
inline constexpr std::size_t kMag = 12;         // int16, 0.01 mag; kNoMagnitude
inline constexpr std::size_t kMajor = 14;       // uint16, 0.1′
inline constexpr std::size_t kMinor = 16;       // uint16, 0.1′
inline constexpr std::size_t kPa = 18;          // int16, degrees; kNoPositionAngle
inline constexpr std::size_t kSystemType = 20;  // uint8: the program's object type code
inline constexpr std::size_t kFlags = 21;       // uint8: ledaflag bits
inline constexpr std::size_t kMorphology = 22;  // char[10]
}  // namespace leda
namespace ledaflag {
inline constexpr std::uint8_t kInNgcIc = 1u << 0;  // also filed in the NGC/IC catalogue
}

// --- "LEDAName.idx": 22-byte entries sorted byte by byte on the name ---------
inline constexpr std::size_t kLedaNameEntrySize = 22;
inline constexpr std::size_t kLedaNameWidth = 18;  // then uint32 record number

// --- "pln.dat": 50-byte records -----------------------------------------------
inline constexpr std::size_t kPlanetaryRecordSize = 50;
namespace pln {
inline constexpr std::size_t kPng = 0;          // char[16]: galactic designation "054.1-12.1"
inline constexpr std::size_t kRa = 16;          // int32, mas, J2000
inline constexpr std::size_t kDec = 20;         // int32, mas, J2000
inline constexpr std::size_t kMag = 24;         // int16, 0.01 mag; kNoMagnitude
inline constexpr std::size_t kMajor = 26;       // uint16, 0.1″ (planetary nebulae are small)
inline constexpr std::size_t kMinor = 28;       // uint16, 0.1″
inline constexpr std::size_t kPa = 30;          // int16, degrees; kNoPositionAngle
inline constexpr std::size_t kFlags = 32;       // uint8: ledaflag::kInNgcIc when an NGC/IC object
inline constexpr std::size_t kOtherId = 34;     // char[16]: "NGC 6543", "M 57", …
}  // namespace pln

// --- "sacsupp.dat": 64-byte records of the SAC database ----------------------
inline constexpr std::size_t kSacRecordSize = 64;
namespace sac {
inline constexpr std::size_t kDesignation = 0;  // char[18]: "NGC 7831", "AND III"
inline constexpr std::size_t kOther = 18;       // char[18]: "IC 1530"
inline constexpr std::size_t kRa = 36;          // int32, mas, J2000
inline constexpr std::size_t kDec = 40;         // int32, mas, J2000
inline constexpr std::size_t kMag = 44;         // int16, 0.01 mag; kNoMagnitude
inline constexpr std::size_t kMajor = 46;       // uint16, 0.1′
inline constexpr std::size_t kMinor = 48;       // uint16, 0.1′
inline constexpr std::size_t kPa = 50;          // int16, degrees; kNoPositionAngle
inline constexpr std::size_t kSystemType = 52;  // uint8: the program's object type code
inline constexpr std::size_t kFlags = 53;       // uint8: ledaflag::kInNgcIc for NGC, IC and Messier objects
inline constexpr std::size_t kClass = 54;       // char[10]: "Sb", "E-SO"
}  // namespace sac

// --- "sacname.dat": 18-byte entries sorted byte by byte on the name ----------
inline constexpr std::size_t kSacNameEntrySize = 18;
inline constexpr std::size_t kSacNameWidth = 16;  // then int16 record number

}  // namespace orv::deepsky
