// orvane-databuild: turns the published Tycho-2 catalogue, the
// cross-identification and name lists of the stellarium-data package and the
// Hipparcos photometry of the kstars-data package into Orvane's star files
// (layouts in docs/star-catalogue-files.md).
//
// The pieces are exposed for the tests: line parsers for the fixed-column
// catalogue files, the Tycho → Johnson photometry, the assembly of the
// region-ordered catalogue and the writers. RunBuild() runs the whole build.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "catalog/stars/tycho2format.h"

namespace orv::databuild {

// One star as the builder holds it before it is written.
struct BuildStar {
    std::int32_t raMas = 0;          // J2000 (ICRS) right ascension, mas, [0, 1,296,000,000)
    std::int32_t decMas = 0;         // J2000 declination, mas
    float pmRaMasPerYr = 0.0f;       // dα/dt in mas of right ascension per year (pmRA* / cos δ)
    float pmDecMasPerYr = 0.0f;      // dδ/dt, mas per year
    float parallaxMas = tycho2::kParallaxUnknown;
    std::uint32_t hip = 0;           // Hipparcos number, 0 = none
    std::int16_t tyc1 = 0;
    std::uint16_t tyc2 = 0;
    std::uint8_t tyc3 = 0;
    char ccdm[4] = {0, 0, 0, 0};     // CCDM component letters of a HIP star ("A", "AB"), zero-padded
    std::int16_t magCenti = 0;       // 0.01 mag
    std::int16_t bvMilli = tycho2::kNoColour;
    std::int16_t radVelDeciKmS = 0;  // 0.1 km/s
    std::uint16_t flags = 0;         // TYC3 in bits 0-2 plus the flag bits
    std::uint16_t origin = 0;        // tycho2::origin bits
    float observedEpochRaYr = 0.0f;  // epochs of an observed (not mean) position, years AD
    float observedEpochDecYr = 0.0f;

    std::int64_t TychoId() const { return tycho2::TychoId(tyc1, tyc2, tyc3); }
};

// Magnitude and colour on the Johnson system from the Tycho bands.
struct Photometry {
    std::int16_t magCenti = 0;
    std::int16_t bvMilli = tycho2::kNoColour;
    std::uint16_t basis = tycho2::origin::kMagFromBtVt;  // tycho2::origin::kMag…
};

// V = VT − 0.090 (BT − VT), B − V = 0.850 (BT − VT) (Tycho-2 ReadMe, note 7;
// ESA SP-1200 vol. 1 sect. 1.3). With one band only that band stands in for V
// and the colour is unknown. Returns nothing when neither band is given.
std::optional<Photometry> TychoToJohnson(std::optional<double> btMag, std::optional<double> vtMag);

// Parses one line of "tyc2.dat" (206 bytes, fixed columns). False with a
// reason in `error` when a field is malformed or out of range.
bool ParseMainLine(std::string_view line, BuildStar& star, std::string& error);
// Parses one line of "suppl_1.dat" (122 bytes). Positions there are at epoch
// J1991.25 and are carried to J2000 along the proper motion.
bool ParseSupplementLine(std::string_view line, BuildStar& star, std::string& error);

// One line of "index.dat": 1-based first records in tyc2.dat and suppl_1.dat,
// and the region's bounds in 0.01° (safely rounded: minima down, maxima up).
struct IndexLine {
    std::int64_t firstMainRecord = 0;
    std::int64_t firstSupplRecord = 0;
    std::int32_t raMinCentiDeg = 0;
    std::int32_t raMaxCentiDeg = 0;
    std::int32_t decMinCentiDeg = 0;
    std::int32_t decMaxCentiDeg = 0;
};
bool ParseIndexLine(std::string_view line, IndexLine& out, std::string& error);

// Region bounds in 0.1″ (the "rgnbound.dat" entry).
struct RegionBounds {
    std::int32_t raMin = 0;
    std::int32_t raMax = 0;
    std::int32_t decMin = 0;
    std::int32_t decMax = 0;
};

// Moves a position along a constant proper motion on the sphere (straight
// motion in space at infinite distance): the rigorous form of α + μα*/cos δ·t,
// δ + μδ·t that stays valid at the poles. Angles in degrees, proper motion
// pmRA* (= μα cos δ) and pmDE in mas/yr, years may be negative.
void MoveAlongProperMotion(double& raDeg, double& decDeg, double pmRaStarMasPerYr, double pmDecMasPerYr,
                           double years);

// --- Catalogue assembly ---------------------------------------------------------

// The catalogue in file order with its two region tables.
struct Catalogue {
    std::vector<BuildStar> stars;               // region by region, brightest first in each region
    std::vector<std::uint32_t> regionStart;     // 9,538 entries, the last the end sentinel
    std::vector<std::int16_t> regionBrightest;  // 9,537 entries
    std::vector<RegionBounds> regionBounds;     // 9,537 entries
    int widenedRegions = 0;                     // regions whose index.dat box had to grow
};

// Sorts `stars` region by region (TYC1), brightest first in each region
// (ties by TYC2 then TYC3), builds the region start table, and the region
// bounds from `index` (9,538 lines) widened, rounded outward to 0.01°, until
// every star lies inside its region's box. False with a message when a star's
// region number is outside 1..9537 or the index has the wrong length.
bool AssembleCatalogue(std::vector<BuildStar> stars, const std::vector<IndexLine>& index, Catalogue& out,
                       std::string& error);

// --- Hipparcos photometry ------------------------------------------------------------

// Tycho photometry saturates on the brightest stars and the Hipparcos Hp
// magnitude is not V (Arcturus: Hp 0.16, V −0.05), so the Hipparcos
// stars take the Johnson V (field H5) and B−V (field H37) of the Hipparcos
// catalogue (ESA 1997, SP-1200, vol. 1 sect. 2.1) instead, to 0.01 mag. The
// values are read from kstars-data's "stars.dat", a fixed-column text copy of
// the catalogue.

// What a line of "stars.dat" describes. The file lists the Hipparcos main
// catalogue down to V 7.99 with the catalogue's spectral types, followed by
// Tycho-1 stars of V 8.00-8.99 whose spectral class is estimated from the
// colour and marked "?" ("F?"). The V of the latter is Tycho photometry
// (Tycho-1, superseded by Tycho-2), even for the Hipparcos stars among them.
enum class KStarsEntry : std::uint8_t { Hipparcos, Tycho1 };

// One line of "stars.dat": the place at J2000.0 (ICRS, epoch J2000.0, to
// 0.01 s of time and 0.1″), V and B−V in 0.01 mag.
struct KStarsStar {
    std::int32_t raMas = 0;   // [0, 1,296,000,000)
    std::int32_t decMas = 0;
    std::int16_t magCenti = 0;
    std::int16_t bvCenti = 0;
    KStarsEntry entry = KStarsEntry::Hipparcos;
};
// Parses columns 1-58 (place, motions, parallax, V, B−V, spectral type); the
// rest of the line (variability, names) is not used. False with a reason in
// `error` when a field is malformed or out of range.
bool ParseKStarsStarLine(std::string_view line, KStarsStar& out, std::string& error);

// Identification of a Hipparcos line with the Tycho-2 star of the same
// Hipparcos number: the nearest Tycho-2 star carrying a HIP number within
// this radius of the line's J2000 place names the Hipparcos entry.
inline constexpr double kHipMatchRadiusArcsec = 1.0;
// A Hipparcos V further than this from the Tycho-2 V of the star it was
// matched to (Tycho V or Hp) marks a wrong identification: skipped.
inline constexpr int kHipMagnitudeLimitCenti = 100;
// Hipparcos V is the light of the whole Hipparcos entry: for a close pair the
// sum of the components, for some wide pairs the primary alone. Where Tycho-2
// lists the components of the entry as separate stars, the Hipparcos V is
// given to the main component only when the other components add at most this
// much light to it (so that either reading of V is right to this amount).
inline constexpr double kCompanionLightLimitMag = 0.05;

// What the Hipparcos photometry changed, for the build report.
struct PhotometryReport {
    std::size_t replaced = 0;          // stars given the Hipparcos V and B−V
    std::size_t noStarWithin = 0;      // lines with no Tycho-2 Hipparcos star within 1″
    std::size_t ambiguous = 0;         // lines naming a Hipparcos entry another line also names
    std::size_t offPosition = 0;       // the entry's main component lies more than 1″ from the line
    std::size_t magnitudeMismatch = 0; // |V(Hipparcos) − V(Tycho-2)| ≥ 1 mag
    std::size_t brightCompanions = 0;  // components resolved by Tycho-2 add more than 0.05 mag
    std::vector<std::string> mismatches;  // one line per star skipped for its position or magnitude
};

// Gives every Tycho-2 star identified with a Hipparcos line of `hipparcos`
// (entries of kind KStarsEntry::Hipparcos; others are ignored) that line's V
// (0.01 mag) and B−V (0.01 mag, stored as 0.001 mag × 10), and sets
// origin::kMagFromHipparcos. The identification: the nearest Tycho-2 star
// with a HIP number within kHipMatchRadiusArcsec names the Hipparcos number;
// the star standing for that number (no CCDM letter or "A", as in "hip.idx")
// takes the values when it lies within the same radius, its V differs by less
// than kHipMagnitudeLimitCenti, no other line names the same number, and the
// other Tycho-2 components of the number add at most kCompanionLightLimitMag.
// Every other star keeps its Tycho photometry. Run before AssembleCatalogue,
// which orders each region by the new magnitudes.
void ApplyHipparcosPhotometry(std::vector<BuildStar>& stars, const std::vector<KStarsStar>& hipparcos,
                              PhotometryReport& report);

// --- Cross identifications and names ---------------------------------------------

// A HIP → SAO, HD, HR line of stellarium-data's cross-id.dat; component is
// the CCDM letter of a multiple system (0 when none).
struct CrossIdLine {
    std::uint32_t hip = 0;
    char component = 0;
    std::uint32_t sao = 0;
    std::uint32_t hd = 0;
    std::uint32_t hr = 0;
};
bool ParseCrossIdLine(std::string_view line, CrossIdLine& out, std::string& error);

// Bayer letter and Flamsteed number of a star, from "α_CMa", "γ1_And", "9_CMa".
struct StarProperty {
    std::uint8_t constellation = tycho2::kNoConstellation;  // 0-87
    std::uint8_t flamsteed = 0;
    std::uint8_t greek = tycho2::kNoGreekLetter;            // 0-23
    std::uint8_t superscript = 0;
};
// Parses one designation of name.fab into `property` (merging with what is
// already there). Returns false for designations of other kinds (Latin
// letters, unknown constellations), which are left out.
bool ParseBayerFlamsteed(std::string_view designation, StarProperty& property);

// A GCVS entry of stellarium-data's gcvs_hip_part.dat.
struct VariableStar {
    std::uint32_t hip = 0;
    std::string name;      // "R And"
    std::string type;      // "M"
    std::int16_t maxMagCenti = tycho2::gcvs::kNoMag;
    std::int16_t minMagCenti = tycho2::gcvs::kNoMag;
    std::uint8_t minKind = tycho2::gcvs::kMinIsMagnitude;
    std::string band;      // "V", "Hp", "B", "p" …
    float periodDays = 0.0f;
};
bool ParseGcvsLine(std::string_view line, VariableStar& out, std::string& error);

// A double-star discoverer designation of stellarium-data's extra_name.fab:
// "Σ_3053" → code "Σ", number 3053; "H_5_79" → code "H 5", number 79.
struct DoubleDesignation {
    std::string code;
    std::uint32_t number = 0;
};
bool ParseDiscovererDesignation(std::string_view text, DoubleDesignation& out);

// Everything taken from stellarium-data, keyed by Hipparcos number.
struct HipData {
    std::vector<CrossIdLine> crossIds;
    std::unordered_map<std::uint32_t, float> parallaxMas;
    std::unordered_map<std::uint32_t, std::int16_t> bvMilli;  // Hipparcos B−V, 0.001 mag
    std::map<std::uint32_t, std::string> properNames;          // first name per star
    std::map<std::uint32_t, StarProperty> properties;
    std::map<std::uint32_t, VariableStar> variables;
    std::map<std::uint32_t, std::optional<DoubleDesignation>> doubles;  // WDS stars (designation when known)
    // Hipparcos proper motions pmRA* (= μα cos δ) and pmDE, mas/yr.
    std::unordered_map<std::uint32_t, std::pair<float, float>> properMotion;
};

// Tycho-2 gives no mean position and no proper motion for some Hipparcos
// stars (flag "X": Polaris among them). Where the Hipparcos catalogue has the
// motion, the observed Tycho-2 place is carried from its epoch to J2000.0
// with it and the motion is kept. Returns the number of stars so treated.
std::size_t ApplyHipparcosMotion(std::vector<BuildStar>& stars, const HipData& hip);

// Counts of what the cross identification attached, for the build report.
struct CrossReport {
    std::size_t hipStars = 0, saoEntries = 0, hdEntries = 0, hrEntries = 0;
    std::size_t names = 0, properties = 0, variables = 0, doubles = 0, parallaxes = 0, hipColours = 0;
    std::size_t unmatchedHip = 0;  // HIP numbers in the lists with no Tycho-2 star
};

// Byte images of every file, named by their path below the data folder.
struct OutputFiles {
    std::vector<std::pair<std::string, std::vector<std::uint8_t>>> files;
};

// Attaches the HIP-based data to the stars (parallax, Hipparcos colour where
// Tycho gives none, flag bits 7, 8, 10, 11, 13) and builds every file image.
// `catalogue.stars` is updated in place (flags, parallax, colour).
void BuildFiles(Catalogue& catalogue, const HipData& hip, OutputFiles& out, CrossReport& report);

// --- Whole build ---------------------------------------------------------------

struct BuildOptions {
    std::string tycho2Dir;     // tyc2.dat.00-19 (or tyc2.dat), suppl_1.dat, index.dat
    std::string stellariumDir; // the folder holding stars/default/ and skycultures/western/
    std::string outputDir;     // the data folder
    std::string kstarsDir;     // the folder holding kstars-data's stars.dat (usr/share/kstars)
};

// Progress and report lines go to `progress`. False with a message in `error`.
bool RunBuild(const BuildOptions& options, const std::function<void(const std::string&)>& progress,
              std::string& error);

}  // namespace orv::databuild
