// Byte layouts of Orvane's Tycho-2 star files, shared by the reader and by the
// data builder that writes them. Every field is little-endian; the layouts
// are described field by field in docs/star-catalogue-files.md.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orv::tycho2 {

// --- File names (resolved through LocateDataFile) ---------------------------
inline constexpr std::string_view kCatalogueFile = "star\\Tycho2\\Tycho2.dat";
inline constexpr std::string_view kRegionStartFile = "star\\Tycho2\\t2region.idx";
inline constexpr std::string_view kRegionBoundsFile = "data\\rgnbound.dat";
inline constexpr std::string_view kTychoIdFile = "star\\Tycho2\\T2Id.idx";
inline constexpr std::string_view kProperNameFile = "star\\Tycho2\\StarLabl.dat";
inline constexpr std::string_view kPropertyFile = "star\\Tycho2\\StarProp.dat";
inline constexpr std::string_view kWdsFile = "star\\Tycho2\\wds.idx";
inline constexpr std::string_view kGcvsFile = "star\\Tycho2\\gcvs.idx";

// The same names as they are created on disk by the builder.
inline constexpr std::string_view kCatalogueDiskName = "star/Tycho2/Tycho2.dat";
inline constexpr std::string_view kRegionStartDiskName = "star/Tycho2/t2region.idx";
inline constexpr std::string_view kRegionBoundsDiskName = "data/rgnbound.dat";
inline constexpr std::string_view kTychoIdDiskName = "star/Tycho2/T2Id.idx";
inline constexpr std::string_view kProperNameDiskName = "star/Tycho2/StarLabl.dat";
inline constexpr std::string_view kPropertyDiskName = "star/Tycho2/StarProp.dat";
inline constexpr std::string_view kWdsDiskName = "star/Tycho2/wds.idx";
inline constexpr std::string_view kGcvsDiskName = "star/Tycho2/gcvs.idx";

// The Guide Star Catalogue region scheme: 9,537 regions.
inline constexpr int kRegionCount = 9537;

// --- "Tycho2.dat": 38-byte star records -------------------------------------
inline constexpr std::size_t kRecordSize = 38;
namespace rec {
inline constexpr std::size_t kTyc1 = 0;       // int16
inline constexpr std::size_t kTyc2 = 2;       // uint16
inline constexpr std::size_t kMag = 4;        // int16, 0.01 mag (Johnson V or its stand-in)
inline constexpr std::size_t kBV = 6;         // int16, B−V in 0.001 mag, kNoColour when unknown
inline constexpr std::size_t kRaMas = 8;      // int32, J2000 (ICRS) right ascension, mas
inline constexpr std::size_t kDecMas = 12;    // int32, J2000 (ICRS) declination, mas
inline constexpr std::size_t kPmRa = 16;      // float32, mas of right ascension per year (dα/dt, no cos δ)
inline constexpr std::size_t kPmDec = 20;     // float32, mas per year
inline constexpr std::size_t kParallax = 24;  // float32, mas; below kParallaxUnknownBelow: unknown
inline constexpr std::size_t kHip = 28;       // uint32, Hipparcos number, 0 = none
inline constexpr std::size_t kRadVel = 32;    // int16, radial velocity, 0.1 km/s
inline constexpr std::size_t kFlags = 34;     // uint16, see flag bits
inline constexpr std::size_t kOrigin = 36;    // uint16, see origin bits
}  // namespace rec

inline constexpr std::int16_t kNoColour = -9999;
inline constexpr float kParallaxUnknownBelow = -1000.0f;
inline constexpr float kParallaxUnknown = -9999.0f;

// Flag word (record offset 34).
namespace flag {
inline constexpr std::uint16_t kTyc3Mask = 0x0007;        // bits 0-2: TYC3
inline constexpr std::uint16_t kBayerFlamsteed = 1u << 7;  // entry in "StarProp.dat"
inline constexpr std::uint16_t kProperName = 1u << 8;      // entry in "StarLabl.dat"
inline constexpr std::uint16_t kVariable = 1u << 10;       // entry in "gcvs.idx"
inline constexpr std::uint16_t kBrightStar = 1u << 11;     // has an HR number (entry in "t2bsc.idx")
inline constexpr std::uint16_t kDouble = 1u << 13;         // entry in "wds.idx"
}  // namespace flag

// Origin word (record offset 36): where the record's data came from.
namespace origin {
inline constexpr std::uint16_t kSourceMask = 0x0003;  // bits 0-1
inline constexpr std::uint16_t kSourceMain = 0;       // Tycho-2 main catalogue
inline constexpr std::uint16_t kSourceSupplHip = 1;   // supplement 1, Hipparcos data
inline constexpr std::uint16_t kSourceSupplTyc = 2;   // supplement 1, Tycho-1 data

inline constexpr std::uint16_t kMagBasisShift = 2;  // bits 2-3
inline constexpr std::uint16_t kMagBasisMask = 0x000C;
inline constexpr std::uint16_t kMagFromBtVt = 0;  // V = VT − 0.090 (BT − VT)
inline constexpr std::uint16_t kMagVtOnly = 1;    // VT used as V
inline constexpr std::uint16_t kMagBtOnly = 2;    // BT used as V
inline constexpr std::uint16_t kMagHp = 3;        // Hipparcos Hp used as V

inline constexpr std::uint16_t kObservedPosition = 1u << 4;  // no mean position: observed place, no proper motion
inline constexpr std::uint16_t kPhotocentre = 1u << 5;       // mean position of a photocentre of two entries
inline constexpr std::uint16_t kTycho1Star = 1u << 6;        // the star is in Tycho-1
inline constexpr std::uint16_t kColourFromHip = 1u << 7;     // B−V from the Hipparcos catalogue, not Tycho
inline constexpr std::uint16_t kHipparcosMotion = 1u << 8;   // observed place carried to J2000 by the Hipparcos motion
// V and B−V are the Hipparcos catalogue's (fields H5 and H37, 0.01 mag); the
// magnitude basis (bits 2-3) then tells what the Tycho-2 photometry was.
inline constexpr std::uint16_t kMagFromHipparcos = 1u << 9;
}  // namespace origin

// --- "t2region.idx": 9,538 entries of 6 bytes -------------------------------
inline constexpr std::size_t kRegionStartEntrySize = 6;
inline constexpr std::size_t kRegionStartFileSize = 57228;
// --- "rgnbound.dat": 9,537 entries of 16 bytes, 0.1″ units ------------------
inline constexpr std::size_t kRegionBoundsEntrySize = 16;
inline constexpr std::size_t kRegionBoundsFileSize = 152592;
inline constexpr double kTenthArcsecPerDeg = 36000.0;
// --- "T2Id.idx": int16 TYC1, int16 TYC2, int16 TYC3, uint32 record ----------
inline constexpr std::size_t kTychoIdEntrySize = 10;
// --- Cross-index files: 12-byte entries -------------------------------------
inline constexpr std::size_t kCrossEntrySize = 12;
// --- "StarLabl.dat": 26-byte entries, key then a zero-terminated name --------
inline constexpr std::size_t kNameEntrySize = 26;
inline constexpr std::size_t kNameMaxBytes = 17;  // plus the terminating zero
// --- "StarProp.dat": 12-byte entries ------------------------------------------
inline constexpr std::size_t kPropertyEntrySize = 12;
inline constexpr std::uint8_t kNoGreekLetter = 255;
inline constexpr std::uint8_t kNoConstellation = 255;

// --- "wds.idx": 8-byte entries ------------------------------------------------
// Entry 0: "WDS1" then uint32 C, the number of discoverer codes.
// Entries 1..C: discoverer codes, UTF-8, zero-padded to 8 bytes.
// Entries C+1..: uint32 record number in "Tycho2.dat" (ascending), uint16
// discoverer code number (1-based entry, 0xFFFF = no discoverer designation
// known), uint16 running number of the pair.
inline constexpr std::size_t kWdsEntrySize = 8;
inline constexpr std::uint32_t kWdsMagic = 0x31534457;  // "WDS1"
inline constexpr std::uint16_t kWdsNoCode = 0xFFFF;

// --- "gcvs.idx": 44-byte entries sorted by Tycho identifier -------------------
namespace gcvs {
inline constexpr std::size_t kEntrySize = 44;
inline constexpr std::size_t kKey = 0;           // uint32 low, int32 high: Tycho identifier
inline constexpr std::size_t kMaxMag = 8;        // int16, brightest magnitude, 0.01 mag
inline constexpr std::size_t kMinMag = 10;       // int16, faintest magnitude, 0.01 mag (kNoMag: unknown)
inline constexpr std::size_t kMinKind = 12;      // uint8, how the catalogue gave the faint end
inline constexpr std::size_t kBand = 13;         // char[3], photometric band ("V", "Hp", "B", "p" …)
inline constexpr std::size_t kName = 16;         // char[12], GCVS designation ("R And")
inline constexpr std::size_t kType = 28;         // char[12], GCVS variability type ("EA/RS")
inline constexpr std::size_t kPeriodDays = 40;   // float32, days, 0 = unknown
inline constexpr std::int16_t kNoMag = -32768;
inline constexpr std::uint8_t kMinIsMagnitude = 0;   // faint end given as a magnitude
inline constexpr std::uint8_t kMinFromAmplitude = 1; // faint end = bright end + amplitude
inline constexpr std::uint8_t kMinIsLimit = 2;       // faint end is a limit (fainter than)
}  // namespace gcvs

// The Tycho identifier: TYC1 × 1,000,000 + TYC2 × 10 + TYC3, 64-bit.
inline constexpr std::int64_t TychoId(int tyc1, int tyc2, int tyc3) noexcept
{
    return static_cast<std::int64_t>(tyc1) * 1000000 + static_cast<std::int64_t>(tyc2) * 10 + tyc3;
}

}  // namespace orv::tycho2
