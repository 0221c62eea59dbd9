// The Tycho-2 star catalogue: the mapped record file "star\Tycho2\Tycho2.dat",
// its region tables, the Tycho identifier index, and the proper-name and
// property tables (layouts: docs/star-catalogue-files.md).
//
// The records are never copied: the file is mapped read-only once and walked
// in place. Every region and record access is checked against the mapped
// length at open time, so a damaged file is refused whole rather than read
// out of bounds. A missing or damaged file simply leaves the catalogue closed
// (no Tycho-2 stars on the chart); nothing is reported.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "catalog/stars/tycho2format.h"
#include "util/angles.h"
#include "util/datafiles.h"
#include "util/mappedfile.h"

namespace orv {

class CObserverDoc;

// One star record decoded from "Tycho2.dat".
struct StarRecord {
    std::int16_t tyc1 = 0;
    std::uint16_t tyc2 = 0;
    std::uint8_t tyc3 = 0;
    std::int16_t magCenti = 0;          // 0.01 mag
    std::int16_t bvMilli = tycho2::kNoColour;  // B−V, 0.001 mag (record offset 6)
    std::int32_t raMas = 0;             // J2000 (ICRS), mas
    std::int32_t decMas = 0;            // J2000 (ICRS), mas
    float pmRaMasPerYr = 0.0f;          // dα/dt, mas of right ascension per year
    float pmDecMasPerYr = 0.0f;         // mas per year
    float parallaxMas = tycho2::kParallaxUnknown;  // below −1000: unknown
    std::uint32_t hip = 0;              // record offset 28
    std::int16_t radVelDeciKmS = 0;     // 0.1 km/s
    std::uint16_t flags = 0;            // TYC3 in bits 0-2, tycho2::flag bits
    std::uint16_t origin = 0;           // record offset 36, tycho2::origin bits

    std::int64_t TychoId() const { return tycho2::TychoId(tyc1, tyc2, tyc3); }
    bool HasParallax() const { return parallaxMas >= tycho2::kParallaxUnknownBelow; }
};

StarRecord DecodeStarRecord(const std::uint8_t* record);

// Distance in light years from a parallax in mas: 3261.6 / ϖ + 0.5, truncated;
// 0 when the parallax is not positive (unknown or not measured).
int DistanceLightYears(float parallaxMas);

// Star properties from "StarProp.dat" (Bayer letter, Flamsteed number).
struct StarProperty {
    std::uint8_t constellation = tycho2::kNoConstellation;  // 0-87
    std::uint8_t flamsteed = 0;                              // 0 = none
    std::uint8_t greek = tycho2::kNoGreekLetter;             // 0-23
    std::uint8_t superscript = 0;                            // 0 = none
};

// A region box in J2000 right ascension and declination, radians. The box
// wraps through 0h when raMinRad > raMaxRad.
struct SkyBox {
    double raMinRad = 0.0;
    double raMaxRad = kTwoPi;
    double decMinRad = -kHalfPi;
    double decMaxRad = kHalfPi;
};

class CTycho2Catalogue;

// NextStar: the records of a list of regions, brightest first within each
// region, down to a limiting magnitude. A region whose brightest star is
// fainter than the limit is skipped without reading it, and the walk of a
// region stops at its first record fainter than the limit.
class CStarWalk {
public:
    CStarWalk(const CTycho2Catalogue& catalogue, std::span<const int> regions, int magLimitCenti);

    // The next record (a pointer into the mapped file) or nullptr at the end.
    const std::uint8_t* NextStar();
    // Record number of the record last returned.
    std::uint32_t RecordNumber() const { return m_current - 1; }

private:
    const CTycho2Catalogue& m_catalogue;
    std::span<const int> m_regions;
    int m_limit;
    std::size_t m_regionIndex = 0;
    std::uint32_t m_current = 0;
    std::uint32_t m_end = 0;
};

// How GetStarPosition places a star.
enum class StarPlace {
    Catalogue,  // the catalogue position, ICRS J2000, epoch J2000.0
    OfDate,     // moved by its proper motion to the observer's dynamical time and
                // carried to the chart's epoch (apparent place of date)
};

class CTycho2Catalogue {
public:
    CTycho2Catalogue() = default;
    ~CTycho2Catalogue() { CloseCatalogue(); }
    CTycho2Catalogue(const CTycho2Catalogue&) = delete;
    CTycho2Catalogue& operator=(const CTycho2Catalogue&) = delete;

    // Loads the region tables (once) and maps "Tycho2.dat" (once), then loads
    // the proper-name and property tables. True when the catalogue can be
    // walked; a second call is a no-op returning true. On failure every
    // opened file is closed and the object stays closed.
    bool OpenCatalogue();
    // The same from `files` (the fuzz targets hand in bytes in memory).
    bool OpenCatalogue(const CDataFiles& files);
    // Unmaps "Tycho2.dat" and frees the region, name and property tables.
    void CloseCatalogue();
    bool IsOpen() const { return m_open; }

    std::size_t RecordCount() const { return m_recordCount; }
    const std::uint8_t* Record(std::uint32_t recordNumber) const
    {
        return m_records + static_cast<std::size_t>(recordNumber) * tycho2::kRecordSize;
    }
    // False for a record number outside the file.
    bool ReadRecord(std::int64_t recordNumber, StarRecord& out) const;

    // Region tables (region r from 0 to 9536).
    std::uint32_t RegionStart(int r) const { return m_regionStart[static_cast<std::size_t>(r)]; }
    std::uint32_t RegionEnd(int r) const { return m_regionStart[static_cast<std::size_t>(r) + 1]; }
    std::int16_t RegionBrightest(int r) const { return m_regionBrightest[static_cast<std::size_t>(r)]; }

    // The bounds of region r (0 to 9536) as a J2000 box in radians; a region
    // at 0h may start slightly below 0. False when r is out of range or the
    // tables are not loaded.
    bool RegionBox(int r, SkyBox& box) const;

    // Clears `regions` and appends the 0-based number of every region whose
    // bounds meet the box (touching edges count), in file order.
    void FindRegions(const SkyBox& box, std::vector<int>& regions) const;

    // Binary search of "T2Id.idx": the record number, or −1.
    std::int64_t FindByTychoId(int tyc1, int tyc2, int tyc3) const;
    std::int64_t FindByTychoId(std::int64_t tychoId) const;

    // The star's place (radians) as `place` asks; false when the identifier
    // is not in the catalogue.
    bool GetStarPosition(const CObserverDoc& observer, std::int64_t tychoId, StarPlace place, double& raRad,
                         double& decRad) const;

    // Proper name of the star, or an empty text.
    std::string_view ProperName(std::int64_t tychoId) const;
    // Bayer letter, Flamsteed number and constellation; an absent star gives
    // Greek letter 255, superscript 0, Flamsteed 0 and constellation 255.
    StarProperty Property(std::int64_t tychoId) const;
    // Every proper-name entry, for searching by name: (identifier, name).
    std::size_t ProperNameCount() const { return m_names.size() / tycho2::kNameEntrySize; }
    std::int64_t ProperNameId(std::size_t i) const;
    std::string_view ProperNameAt(std::size_t i) const;
    std::size_t PropertyCount() const { return m_properties.size() / tycho2::kPropertyEntrySize; }
    std::int64_t PropertyId(std::size_t i) const;
    StarProperty PropertyAt(std::size_t i) const;

private:
    bool LoadTables(const CDataFiles& files);
    void LoadNameTables(const CDataFiles& files);

    bool m_open = false;
    CMappedFile m_file;
    CMappedFile m_ids;
    const std::uint8_t* m_records = nullptr;
    std::size_t m_recordCount = 0;
    std::vector<std::uint32_t> m_regionStart;     // 9,538
    std::vector<std::int16_t> m_regionBrightest;  // 9,537
    std::vector<std::int32_t> m_regionBounds;     // 4 × 9,537, 0.1″
    std::vector<std::uint8_t> m_names;
    std::vector<std::uint8_t> m_properties;
};

// The process-wide catalogue object (created on first use, closed at exit).
CTycho2Catalogue& Tycho2Catalogue();

// Place of a star record `years` Julian years from J2000.0: linear in the
// coordinates (α + μα t, δ + μδ t) when |δ| ≤ 85° and both motions over the
// interval stay below 10″; otherwise propagated rigorously by space motion
// (PropagateSpaceMotion). Radians; right ascension in [0, 2π).
void StarPositionAt(const StarRecord& star, double years, double& raRad, double& decRad);
// The same, reading the fields in place from a mapped record.
void StarPositionAt(const std::uint8_t* record, double years, double& raRad, double& decRad);

}  // namespace orv
