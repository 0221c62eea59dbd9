// Tests of the star data builder on small inputs: real catalogue lines quoted
// from Tycho-2 (ESA/CDS I/259) and a synthetic miniature of the whole source
// tree.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <string>
#include <vector>

#include "catalogbuild.h"
#include "support/compare.h"
#include "util/binaryio.h"
#include "util/sortedindex.h"

using namespace orv;
using namespace orv::databuild;
namespace fs = std::filesystem;

namespace {

// Lines quoted from the Tycho-2 main catalogue and supplement 1.
const std::string kLine1_13 =
    "0001 00013 1| |  1.12558209|  2.26739400|   27.7|   -0.5|  9| 12| 1.2| 1.2|1990.76|1989.25| 8|1.0|0.8|1.0|0.7|"
    "10.488|0.038| 8.670|0.015|999|T|         |  1.12551889|  2.26739556|1.81|1.52|  9.3| 12.7| |-0.2";
const std::string kLinePolaris =
    "4628 00237 1|X|            |            |       |       |   |   |    |    |       |       |  |   |   |   |   |"
    " 2.708|0.014| 2.038|0.009|999|T| 11767   | 37.94661861| 89.26413528|1.69|1.75|  3.2|  3.2| | 0.1";
const std::string kLineHip139 =
    "4294 00006 1| |  0.44528676| 67.50697880|   -2.3|   -0.1| 23| 23| 1.8| 2.0|1988.56|1987.84| 5|1.2|0.8|1.2|0.8|"
    "11.492|0.064|10.215|0.034|999|T|   139   |  0.44530417| 67.50698083|1.74|1.65| 26.4| 29.3| | 0.1";
const std::string kSupplSirius =
    "5949 02777 1|H|101.28854105|-16.71314306| -546.0|-1223.1|  1.2|  1.0|  1.3|  1.2|H|      |     |-1.088|0.002|999|"
    " | 32349 ";
const std::string kSupplTycho1 =
    "0002 00580 1|T|003.03708871|+01.57351477|       |       | 42.9| 39.5|     |     | |11.688|0.122|11.171|0.121|999|"
    "T|       ";

// Overwrites columns first..last (1-based) of `line` with `text`, right-aligned.
std::string WithColumns(std::string line, std::size_t first, std::size_t last, const std::string& text)
{
    const std::size_t width = last - first + 1;
    std::string field = text.size() >= width ? text.substr(0, width) : std::string(width - text.size(), ' ') + text;
    line.replace(first - 1, width, field);
    return line;
}

std::string Fmt(const char* format, double v)
{
    char buf[64];
    std::snprintf(buf, sizeof buf, format, v);
    return buf;
}

// A main-catalogue line made from kLine1_13 with a new identifier, position,
// magnitudes and HIP number.
std::string MainLine(int tyc1, int tyc2, int tyc3, double raDeg, double decDeg, double bt, double vt, int hip = 0,
                     const std::string& ccdm = "")
{
    std::string l = kLine1_13;
    l = WithColumns(l, 1, 4, Fmt("%04.0f", tyc1));
    l = WithColumns(l, 6, 10, Fmt("%05.0f", tyc2));
    l = WithColumns(l, 12, 12, Fmt("%.0f", tyc3));
    l = WithColumns(l, 16, 27, Fmt("%12.8f", raDeg));
    l = WithColumns(l, 29, 40, Fmt("%12.8f", decDeg));
    l = WithColumns(l, 111, 116, Fmt("%6.3f", bt));
    l = WithColumns(l, 124, 129, Fmt("%6.3f", vt));
    l = WithColumns(l, 143, 148, hip ? Fmt("%6.0f", hip) : std::string(6, ' '));
    l = WithColumns(l, 149, 151, ccdm + std::string(3 - ccdm.size(), ' '));
    return l;
}

std::string ReadAll(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteText(const fs::path& p, const std::string& text)
{
    fs::create_directories(p.parent_path());
    std::ofstream(p, std::ios::binary) << text;
}

}  // namespace

// ---------------------------------------------------------------------------
// Photometry: Tycho-2 ReadMe note 7, V = VT − 0.090 (BT − VT), B−V = 0.850 (BT − VT).

TEST(TychoPhotometry, JohnsonFromBothBandsAndFromOneBand)
{
    // TYC 1-13-1: BT 10.488, VT 8.670 → V = 8.50638, B−V = 1.5453.
    const auto both = TychoToJohnson(10.488, 8.670);
    ASSERT_TRUE(both.has_value());
    EXPECT_EQ(both->magCenti, 851);
    EXPECT_EQ(both->bvMilli, 1545);
    EXPECT_EQ(both->basis, tycho2::origin::kMagFromBtVt);

    const auto vtOnly = TychoToJohnson(std::nullopt, 11.171);
    ASSERT_TRUE(vtOnly.has_value());
    EXPECT_EQ(vtOnly->magCenti, 1117);
    EXPECT_EQ(vtOnly->bvMilli, tycho2::kNoColour);
    EXPECT_EQ(vtOnly->basis, tycho2::origin::kMagVtOnly);

    const auto btOnly = TychoToJohnson(12.5, std::nullopt);
    ASSERT_TRUE(btOnly.has_value());
    EXPECT_EQ(btOnly->magCenti, 1250);
    EXPECT_EQ(btOnly->bvMilli, tycho2::kNoColour);
    EXPECT_EQ(btOnly->basis, tycho2::origin::kMagBtOnly);

    EXPECT_FALSE(TychoToJohnson(std::nullopt, std::nullopt).has_value());
}

// ---------------------------------------------------------------------------
// Line parsers

TEST(TychoLines, MainCatalogueLineGivesMeanPositionAndCoordinateRate)
{
    BuildStar s;
    std::string error;
    ASSERT_TRUE(ParseMainLine(kLine1_13, s, error)) << error;
    EXPECT_EQ(s.tyc1, 1);
    EXPECT_EQ(s.tyc2, 13);
    EXPECT_EQ(s.tyc3, 1);
    EXPECT_EQ(s.flags & tycho2::flag::kTyc3Mask, 1);
    EXPECT_EQ(s.raMas, 4052096);    // 1.12558209° × 3.6e6 = 4,052,095.52, rounded
    EXPECT_EQ(s.decMas, 8162618);   // 2.26739400°
    // pmRA* = 27.7 mas/yr at δ = 2.267°: dα/dt = 27.7 / cos δ = 27.7217 mas/yr.
    EXPECT_NEAR_UNIT(27.7217, s.pmRaMasPerYr, 0.0005, orv::test::kSame);
    EXPECT_FLOAT_EQ(s.pmDecMasPerYr, -0.5f);
    EXPECT_EQ(s.magCenti, 851);
    EXPECT_EQ(s.bvMilli, 1545);
    EXPECT_EQ(s.hip, 0u);
    EXPECT_TRUE(s.origin & tycho2::origin::kTycho1Star);
    EXPECT_EQ(s.origin & tycho2::origin::kSourceMask, tycho2::origin::kSourceMain);
}

TEST(TychoLines, StarWithoutMeanPositionTakesObservedPlace)
{
    // Polaris carries flag X in Tycho-2: no mean position, no proper motion.
    BuildStar s;
    std::string error;
    ASSERT_TRUE(ParseMainLine(kLinePolaris, s, error)) << error;
    EXPECT_EQ(s.raMas, 136607827);   // 37.94661861°
    EXPECT_EQ(s.decMas, 321350887);  // 89.26413528°
    EXPECT_EQ(s.pmRaMasPerYr, 0.0f);
    EXPECT_EQ(s.pmDecMasPerYr, 0.0f);
    EXPECT_EQ(s.hip, 11767u);
    EXPECT_TRUE(s.origin & tycho2::origin::kObservedPosition);
    EXPECT_NEAR(s.observedEpochRaYr, 1991.69, 1e-4);

    // With the Hipparcos motion (44.48, −11.85 mas/yr) the observed place of
    // epoch 1991.72 is carried to J2000.0: Δδ = −11.85 × 8.28 = −98 mas.
    HipData hip;
    hip.properMotion[11767] = {44.48f, -11.85f};
    std::vector<BuildStar> v{s};
    EXPECT_EQ(ApplyHipparcosMotion(v, hip), 1u);
    EXPECT_NEAR(v[0].decMas - s.decMas, -11.85 * (2000.0 - 1991.72), 1.0);
    // The coordinate rate near the pole: 44.48 / cos 89.264° = 3465 mas/yr.
    EXPECT_NEAR(v[0].pmRaMasPerYr, 44.48 / std::cos(89.26413528 * std::numbers::pi / 180.0), 1.0);
    EXPECT_TRUE(v[0].origin & tycho2::origin::kHipparcosMotion);
}

TEST(TychoLines, SupplementStarIsCarriedFromJ1991ToJ2000)
{
    // Sirius is in supplement 1 (Hipparcos data, epoch J1991.25, Hp only).
    // Its ICRS place at J2000.0 from the Hipparcos catalogue (SIMBAD):
    // α = 06h45m08.9173s = 101.287155°, δ = −16°42′58.017″ = −16.716116°.
    BuildStar s;
    std::string error;
    ASSERT_TRUE(ParseSupplementLine(kSupplSirius, s, error)) << error;
    EXPECT_EQ(s.tyc1, 5949);
    EXPECT_EQ(s.tyc2, 2777);
    EXPECT_EQ(s.hip, 32349u);
    const double raDeg = (6.0 + 45.0 / 60.0 + 8.9173 / 3600.0) * 15.0;
    const double decDeg = -(16.0 + 42.0 / 60.0 + 58.017 / 3600.0);
    EXPECT_NEAR_UNIT(raDeg * 3.6e6, static_cast<double>(s.raMas), 50.0, orv::test::kSame);  // 50 mas
    EXPECT_NEAR_UNIT(decDeg * 3.6e6, static_cast<double>(s.decMas), 50.0, orv::test::kSame);
    EXPECT_EQ(s.magCenti, -109);  // Hp −1.088 stands in for V
    EXPECT_EQ(s.bvMilli, tycho2::kNoColour);
    EXPECT_EQ((s.origin & tycho2::origin::kMagBasisMask) >> tycho2::origin::kMagBasisShift,
              tycho2::origin::kMagHp);
    EXPECT_EQ(s.origin & tycho2::origin::kSourceMask, tycho2::origin::kSourceSupplHip);

    // A Tycho-1 entry: no proper motion, both bands.
    ASSERT_TRUE(ParseSupplementLine(kSupplTycho1, s, error)) << error;
    EXPECT_EQ(s.pmRaMasPerYr, 0.0f);
    EXPECT_EQ(s.magCenti, 1112);  // 11.171 − 0.090 × 0.517
    EXPECT_EQ(s.bvMilli, 439);    // 0.850 × 0.517
    EXPECT_EQ(s.origin & tycho2::origin::kSourceMask, tycho2::origin::kSourceSupplTyc);
}

TEST(TychoLines, DamagedLinesAreRefusedWithAReason)
{
    BuildStar s;
    std::string error;
    EXPECT_FALSE(ParseMainLine(kLine1_13.substr(0, 150), s, error));
    EXPECT_FALSE(error.empty());
    EXPECT_FALSE(ParseMainLine(WithColumns(kLine1_13, 1, 4, "0000"), s, error));  // region 0
    EXPECT_FALSE(ParseMainLine(WithColumns(kLine1_13, 1, 4, "9538"), s, error));  // no such region
    EXPECT_FALSE(ParseMainLine(WithColumns(kLine1_13, 14, 14, "Q"), s, error));   // unknown flag
    EXPECT_FALSE(ParseMainLine(WithColumns(kLine1_13, 16, 27, "  1.1x558209"), s, error));
    EXPECT_FALSE(ParseMainLine(WithColumns(kLine1_13, 29, 40, " 92.00000000"), s, error));
    EXPECT_FALSE(
        ParseMainLine(WithColumns(WithColumns(kLine1_13, 111, 116, ""), 124, 129, ""), s, error));  // no magnitude
    EXPECT_FALSE(ParseSupplementLine(WithColumns(kSupplSirius, 14, 14, "X"), s, error));

    IndexLine idx;
    ASSERT_TRUE(ParseIndexLine("    341|     5|  5.00|  7.49|  0.04|  2.50", idx, error)) << error;
    EXPECT_EQ(idx.firstMainRecord, 341);
    EXPECT_EQ(idx.firstSupplRecord, 5);
    EXPECT_EQ(idx.raMinCentiDeg, 500);
    EXPECT_EQ(idx.raMaxCentiDeg, 749);
    EXPECT_EQ(idx.decMinCentiDeg, 4);
    EXPECT_EQ(idx.decMaxCentiDeg, 250);
    EXPECT_FALSE(ParseIndexLine("    341|     5|  5.00|  7.49|  0.04", idx, error));
}

TEST(StellariumLines, DesignationsAndVariables)
{
    StarProperty p;
    EXPECT_TRUE(ParseBayerFlamsteed("α_CMa", p));
    EXPECT_TRUE(ParseBayerFlamsteed("9_CMa", p));
    EXPECT_EQ(p.greek, 0);
    EXPECT_EQ(p.superscript, 0);
    EXPECT_EQ(p.flamsteed, 9);
    EXPECT_EQ(p.constellation, 13);  // Canis Major in the alphabetical order of the Latin names

    StarProperty q;
    EXPECT_TRUE(ParseBayerFlamsteed("γ1_And", q));
    EXPECT_EQ(q.greek, 2);
    EXPECT_EQ(q.superscript, 1);
    EXPECT_EQ(q.constellation, 0);
    StarProperty latin;
    EXPECT_FALSE(ParseBayerFlamsteed("c_Aql", latin));   // Latin letters have no field
    EXPECT_FALSE(ParseBayerFlamsteed("α_Xyz", latin));   // no such constellation

    VariableStar v;
    std::string error;
    ASSERT_TRUE(ParseGcvsLine("14576\tβ Per\tEA/SD\t2.12\t0\t3.39\t\tV\t45641.5135\t2.8673043\t14\tB8V", v, error));
    EXPECT_EQ(v.name, "β Per");
    EXPECT_EQ(v.maxMagCenti, 212);
    EXPECT_EQ(v.minMagCenti, 339);
    EXPECT_NEAR(v.periodDays, 2.8673043, 1e-6);
    // An amplitude in place of the faint end: GN And, 5.23 with amplitude 0.05.
    ASSERT_TRUE(ParseGcvsLine("2355\tGN And\tDSCTC\t5.23\t1\t0.05\t\tV\t\t0.069304115\t\tA9IV", v, error));
    EXPECT_EQ(v.minMagCenti, 528);
    EXPECT_EQ(v.minKind, tycho2::gcvs::kMinFromAmplitude);

    DoubleDesignation d;
    ASSERT_TRUE(ParseDiscovererDesignation("Σ_3053", d));
    EXPECT_EQ(d.code, "Σ");
    EXPECT_EQ(d.number, 3053u);
    ASSERT_TRUE(ParseDiscovererDesignation("H_5_79", d));
    EXPECT_EQ(d.code, "H 5");
    EXPECT_EQ(d.number, 79u);

    CrossIdLine c;
    ASSERT_TRUE(ParseCrossIdLine("32349\t\t151881\t48915\t2491", c, error));
    EXPECT_EQ(c.sao, 151881u);
    EXPECT_EQ(c.hd, 48915u);
    EXPECT_EQ(c.hr, 2491u);
    ASSERT_TRUE(ParseCrossIdLine("3885\tB\t74295\t4757\t230", c, error));
    EXPECT_EQ(c.component, 'B');
}

// ---------------------------------------------------------------------------
// Assembly: region order, brightest first, region bounds.

namespace {
std::vector<IndexLine> EmptyIndex()
{
    std::vector<IndexLine> index(tycho2::kRegionCount + 1);
    for (auto& l : index) l = IndexLine{1, 1, 0, 249, 0, 250};
    return index;
}
BuildStar Star(int tyc1, int tyc2, int magCenti, std::int32_t raMas, std::int32_t decMas)
{
    BuildStar s;
    s.tyc1 = static_cast<std::int16_t>(tyc1);
    s.tyc2 = static_cast<std::uint16_t>(tyc2);
    s.tyc3 = 1;
    s.flags = 1;
    s.magCenti = static_cast<std::int16_t>(magCenti);
    s.raMas = raMas;
    s.decMas = decMas;
    return s;
}
}  // namespace

TEST(CatalogueAssembly, RegionsInOrderBrightestFirstAndBoundsHoldEveryStar)
{
    std::vector<BuildStar> stars{
        Star(2, 5, 1100, 3600000, 3600000),    // region 2
        Star(1, 7, 950, 3600000, 3600000),     // region 1, second brightest
        Star(1, 3, 1200, 8982360, 3600000),    // region 1 at RA 2.4951°, beyond the 2.49° edge
        Star(1, 9, 420, 1295982000, 3600000),  // region 1 at RA 359.995°, across 0h from the box
        Star(1, 8, 950, 3600000, -18000),      // region 1 at δ −0.005°, equal magnitude: after TYC 1-7
        Star(9537, 1, 800, 3600000, 3600000),  // last region
    };
    std::vector<IndexLine> index = EmptyIndex();
    Catalogue cat;
    std::string error;
    ASSERT_TRUE(AssembleCatalogue(stars, index, cat, error)) << error;
    ASSERT_EQ(cat.stars.size(), 6u);
    const int order[][2] = {{1, 9}, {1, 7}, {1, 8}, {1, 3}, {2, 5}, {9537, 1}};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(cat.stars[i].tyc1, order[i][0]) << i;
        EXPECT_EQ(cat.stars[i].tyc2, order[i][1]) << i;
    }
    ASSERT_EQ(cat.regionStart.size(), 9538u);
    EXPECT_EQ(cat.regionStart[0], 0u);
    EXPECT_EQ(cat.regionStart[1], 4u);
    EXPECT_EQ(cat.regionStart[2], 5u);
    EXPECT_EQ(cat.regionStart[9536], 5u);
    EXPECT_EQ(cat.regionStart[9537], 6u);
    EXPECT_EQ(cat.regionBrightest[0], 420);
    EXPECT_EQ(cat.regionBrightest[1], 1100);
    EXPECT_EQ(cat.regionBrightest[2], INT16_MAX);  // empty region: never walked

    // Region 1 grows outward to whole 0.01°: RA −0.01° .. 2.50°, δ −0.01° .. 2.50°
    // (0.01° = 360 units of 0.1″); the others keep their index.dat box.
    EXPECT_EQ(cat.regionBounds[0].raMin, -360);
    EXPECT_EQ(cat.regionBounds[0].raMax, 250 * 360);
    EXPECT_EQ(cat.regionBounds[0].decMin, -360);
    EXPECT_EQ(cat.regionBounds[0].decMax, 250 * 360);
    EXPECT_EQ(cat.regionBounds[1].raMin, 0);
    EXPECT_EQ(cat.regionBounds[1].raMax, 249 * 360);
    EXPECT_EQ(cat.widenedRegions, 1);

    index.pop_back();
    EXPECT_FALSE(AssembleCatalogue(stars, index, cat, error));
}

// ---------------------------------------------------------------------------
// Hipparcos photometry: lines quoted from kstars-data's "stars.dat" (the
// Hipparcos catalogue, ESA 1997, fields H5 V and H37 B−V, and Tycho-1 lines).

namespace {
const std::string kKStarsSirius =
    "064508.92 -164258.0 -000546.0-001223.100379.2 -1.4400.01A0 1            , alp CMa, Sirius";
const std::string kKStarsKappaCas =
    "003260.00 +625554.4 +000004.0-000002.100000.8 04.1700.13B1 0            , kap Cas";
const std::string kKStarsTycho1 = "003149.75 +045046.2 +000000.8-000022.400008.5 08.0000.32F? 0";

// A "stars.dat" line at a J2000 place given in mas.
std::string KStarsLine(std::int64_t raMas, std::int64_t decMas, double v, double bv, const char* type = "A0")
{
    const std::int64_t raCentiSec = (raMas + 75) / 150;  // 0.01 s of time
    const std::int64_t decDeci = (std::abs(decMas) + 50) / 100;  // 0.1″
    char buf[128];
    std::snprintf(buf, sizeof buf, "%02lld%02lld%02lld.%02lld %c%02lld%02lld%02lld.%01lld +000000.0+000000.000000.0 %05.2f%05.2f%-2s 0",
                  static_cast<long long>(raCentiSec / 360000), static_cast<long long>(raCentiSec / 6000 % 60),
                  static_cast<long long>(raCentiSec / 100 % 60), static_cast<long long>(raCentiSec % 100),
                  decMas < 0 ? '-' : '+', static_cast<long long>(decDeci / 36000),
                  static_cast<long long>(decDeci / 600 % 60), static_cast<long long>(decDeci / 10 % 60),
                  static_cast<long long>(decDeci % 10), v, bv, type);
    return buf;
}

KStarsStar HipLine(std::int32_t raMas, std::int32_t decMas, int magCenti, int bvCenti)
{
    KStarsStar k;
    k.raMas = raMas;
    k.decMas = decMas;
    k.magCenti = static_cast<std::int16_t>(magCenti);
    k.bvCenti = static_cast<std::int16_t>(bvCenti);
    return k;
}

BuildStar HipStar(int tyc1, int tyc2, int tyc3, int magCenti, std::int32_t raMas, std::int32_t decMas,
                  std::uint32_t hip, const char* ccdm = "")
{
    BuildStar s;
    s.tyc1 = static_cast<std::int16_t>(tyc1);
    s.tyc2 = static_cast<std::uint16_t>(tyc2);
    s.tyc3 = static_cast<std::uint8_t>(tyc3);
    s.flags = static_cast<std::uint16_t>(tyc3);
    s.magCenti = static_cast<std::int16_t>(magCenti);
    s.bvMilli = 1000;
    s.raMas = raMas;
    s.decMas = decMas;
    s.hip = hip;
    std::strncpy(s.ccdm, ccdm, sizeof s.ccdm - 1);
    return s;
}

constexpr std::int32_t kArcsecMas = 1000;
}  // namespace

TEST(KStarsLines, HipparcosLinesAreToldFromTycho1Lines)
{
    KStarsStar k;
    std::string error;
    // Sirius: 06h45m08.92s −16°42′58.0″, V −1.44, B−V 0.01 (Hipparcos H5, H37 = 0.009).
    ASSERT_TRUE(ParseKStarsStarLine(kKStarsSirius, k, error)) << error;
    EXPECT_EQ(k.raMas, (6 * 3600 + 45 * 60) * 15000 + 892 * 150);
    EXPECT_EQ(k.decMas, -((16 * 3600 + 42 * 60 + 58) * 1000));
    EXPECT_EQ(k.magCenti, -144);
    EXPECT_EQ(k.bvCenti, 1);
    EXPECT_EQ(k.entry, KStarsEntry::Hipparcos);

    // κ Cas is written 00h32m60.00s: the seconds carry into the minute.
    ASSERT_TRUE(ParseKStarsStarLine(kKStarsKappaCas, k, error)) << error;
    EXPECT_EQ(k.raMas, 33 * 60 * 15000);
    EXPECT_EQ(k.magCenti, 417);

    // A Tycho-1 star: spectral class estimated from the colour ("F?").
    ASSERT_TRUE(ParseKStarsStarLine(kKStarsTycho1, k, error)) << error;
    EXPECT_EQ(k.entry, KStarsEntry::Tycho1);
    EXPECT_EQ(k.bvCenti, 32);

    // The helper that writes such lines reads back to the same place.
    ASSERT_TRUE(ParseKStarsStarLine(KStarsLine(1295999850, -324000000 + 300, 7.5, -0.25), k, error)) << error;
    EXPECT_EQ(k.raMas, 1295999850);
    EXPECT_EQ(k.decMas, -324000000 + 300);
    EXPECT_EQ(k.bvCenti, -25);

    EXPECT_FALSE(ParseKStarsStarLine(kKStarsSirius.substr(0, 50), k, error));
    EXPECT_FALSE(ParseKStarsStarLine(WithColumns(kKStarsSirius, 11, 11, "*"), k, error));     // no sign
    EXPECT_FALSE(ParseKStarsStarLine(WithColumns(kKStarsSirius, 1, 2, "24"), k, error));      // 24h
    EXPECT_FALSE(ParseKStarsStarLine(WithColumns(kKStarsSirius, 12, 13, "91"), k, error));    // beyond the pole
    EXPECT_FALSE(ParseKStarsStarLine(WithColumns(kKStarsSirius, 47, 51, "-3.00"), k, error)); // V out of range
    EXPECT_FALSE(ParseKStarsStarLine(WithColumns(kKStarsSirius, 52, 56, " x.01"), k, error));
    EXPECT_FALSE(ParseKStarsStarLine(" " + kKStarsSirius, k, error));                          // columns shifted
}

TEST(HipparcosPhotometry, HipparcosValuesReplaceTychoAndTheRegionIsReordered)
{
    // Region 1: a Hipparcos star whose Tycho V (0.58, B−V 1.77) is fainter
    // than a neighbour's (0.50) until it takes its Hipparcos V 0.45 and B−V
    // 1.50 (Betelgeuse's values); a second Hipparcos star that only a Tycho-1
    // line covers keeps its Tycho values.
    const std::int32_t ra = 100 * 3600 * kArcsecMas, dec = 7 * 3600 * kArcsecMas;
    std::vector<BuildStar> stars{
        HipStar(1, 10, 1, 58, ra, dec, 27989),
        HipStar(1, 11, 1, 50, ra + 60 * kArcsecMas, dec, 0),
        HipStar(1, 12, 1, 790, ra + 120 * kArcsecMas, dec, 3000),
    };
    stars[0].bvMilli = 1770;
    KStarsStar tycho1 = HipLine(ra + 120 * kArcsecMas, dec, 780, 40);
    tycho1.entry = KStarsEntry::Tycho1;
    const std::vector<KStarsStar> lines{HipLine(ra + 300, dec - 400, 45, 150), tycho1};

    PhotometryReport report;
    ApplyHipparcosPhotometry(stars, lines, report);
    EXPECT_EQ(report.replaced, 1u);
    EXPECT_EQ(stars[0].magCenti, 45);
    EXPECT_EQ(stars[0].bvMilli, 1500);  // 0.01 mag × 10
    EXPECT_TRUE(stars[0].origin & tycho2::origin::kMagFromHipparcos);
    EXPECT_EQ(stars[2].magCenti, 790);
    EXPECT_FALSE(stars[2].origin & tycho2::origin::kMagFromHipparcos);

    Catalogue cat;
    std::string error;
    ASSERT_TRUE(AssembleCatalogue(stars, EmptyIndex(), cat, error)) << error;
    EXPECT_EQ(cat.stars[0].tyc2, 10);
    EXPECT_EQ(cat.stars[1].tyc2, 11);
    EXPECT_EQ(cat.regionBrightest[0], 45);
}

TEST(HipparcosPhotometry, MismatchedLinesAreSkippedAndReported)
{
    const std::int32_t dec = 20 * 3600 * kArcsecMas;
    auto ra = [](int i) { return (10 + i) * 3600 * kArcsecMas; };
    std::vector<BuildStar> stars{
        HipStar(1, 1, 1, 889, ra(0), dec, 1236),          // Hipparcos V 7.89: 1.00 mag apart, skipped
        HipStar(1, 2, 1, 888, ra(1), dec, 1237),          // 0.99 mag apart: taken
        HipStar(1, 3, 1, 600, ra(2), dec, 1238),          // line 1.2″ away: no star within 1″
        HipStar(1, 4, 1, 600, ra(3), dec, 1239),          // line 0.95″ away: taken
        HipStar(1, 5, 1, 500, ra(4), dec, 1240, "A"),     // the line lies on the B component, 10″ from A
        HipStar(1, 6, 1, 950, ra(4), dec + 10 * kArcsecMas, 1240, "B"),
        HipStar(1, 7, 1, 700, ra(5), dec, 1241),          // two lines claim it: neither is taken
    };
    const std::vector<KStarsStar> lines{
        HipLine(ra(0), dec, 789, 50),
        HipLine(ra(1), dec, 789, 50),
        HipLine(ra(2), dec + 1200, 600, 50),
        HipLine(ra(3), dec + 950, 610, 50),
        HipLine(ra(4), dec + 10 * kArcsecMas, 505, 50),
        HipLine(ra(5), dec + 300, 700, 50),
        HipLine(ra(5), dec - 300, 690, 50),
    };
    PhotometryReport report;
    ApplyHipparcosPhotometry(stars, lines, report);
    EXPECT_EQ(stars[0].magCenti, 889);
    EXPECT_EQ(stars[1].magCenti, 789);
    EXPECT_EQ(stars[2].magCenti, 600);
    EXPECT_EQ(stars[3].magCenti, 610);
    EXPECT_EQ(stars[4].magCenti, 500);
    EXPECT_EQ(stars[5].magCenti, 950);
    EXPECT_EQ(stars[6].magCenti, 700);
    EXPECT_EQ(report.replaced, 2u);
    EXPECT_EQ(report.magnitudeMismatch, 1u);
    EXPECT_EQ(report.noStarWithin, 1u);
    EXPECT_EQ(report.offPosition, 1u);
    EXPECT_EQ(report.ambiguous, 2u);
    ASSERT_EQ(report.mismatches.size(), 2u);
    EXPECT_NE(report.mismatches[0].find("HIP 1236"), std::string::npos) << report.mismatches[0];
    EXPECT_NE(report.mismatches[1].find("HIP 1240"), std::string::npos) << report.mismatches[1];
}

TEST(HipparcosPhotometry, EntriesSplitByTychoKeepTychoUnlessTheCompanionsAreFaint)
{
    // Castor-like: A 1.93 and B 2.97 add 0.36 mag to each other; Hipparcos's
    // V 1.58 is their sum and belongs to neither. A system whose companion is
    // 4 mag fainter (0.027 mag of light) gives its V to the main component.
    const std::int32_t ra = 113 * 3600 * kArcsecMas, dec = 31 * 3600 * kArcsecMas;
    std::vector<BuildStar> stars{
        HipStar(2457, 2407, 1, 193, ra, dec, 36850, "A"),
        HipStar(2457, 2407, 2, 297, ra + 4 * kArcsecMas, dec, 36850, "B"),
        HipStar(2457, 100, 1, 520, ra + 3600 * kArcsecMas, dec, 5000, ""),
        HipStar(2457, 101, 1, 920, ra + 3600 * kArcsecMas, dec + 5 * kArcsecMas, 5000, "B"),
    };
    const std::vector<KStarsStar> lines{HipLine(ra, dec, 158, 3), HipLine(ra + 3600 * kArcsecMas, dec, 512, 60)};
    PhotometryReport report;
    ApplyHipparcosPhotometry(stars, lines, report);
    EXPECT_EQ(report.brightCompanions, 1u);
    EXPECT_EQ(stars[0].magCenti, 193);
    EXPECT_EQ(stars[1].magCenti, 297);
    EXPECT_EQ(report.replaced, 1u);
    EXPECT_EQ(stars[2].magCenti, 512);
    EXPECT_EQ(stars[2].bvMilli, 600);
    EXPECT_EQ(stars[3].magCenti, 920);
}

TEST(HipparcosPhotometry, PlacesAreComparedOnTheSphere)
{
    // Across 0h: 23h59m59.99s and 0.1 mas of right ascension lie 0.15″ apart
    // on the equator. At δ = 89°59′59.6″, 12h apart in right ascension, the
    // two places are 0.8″ apart across the pole.
    const std::int32_t pole = 324000000 - 400;
    std::vector<BuildStar> stars{
        HipStar(1, 1, 1, 700, 0, 0, 1),
        HipStar(9537, 1, 1, 700, 648000000, pole, 2),
    };
    const std::vector<KStarsStar> lines{HipLine(1295999850, 0, 690, 10), HipLine(0, pole, 695, 10)};
    PhotometryReport report;
    ApplyHipparcosPhotometry(stars, lines, report);
    EXPECT_EQ(report.replaced, 2u);
    EXPECT_EQ(stars[0].magCenti, 690);
    EXPECT_EQ(stars[1].magCenti, 695);
}

// ---------------------------------------------------------------------------
// The whole build on a miniature source tree.

namespace {

struct MiniSources {
    fs::path root;
    fs::path tycho2;
    fs::path stellarium;
    fs::path kstars;
    fs::path out;
};

std::string IndexText(const std::vector<std::pair<int, int>>& mainCounts, const std::vector<std::pair<int, int>>& supplCounts)
{
    // Line i gives the first record (1-based) of region i.
    std::vector<int> mainPer(tycho2::kRegionCount + 1, 0), supplPer(tycho2::kRegionCount + 1, 0);
    for (auto [r, n] : mainCounts) mainPer[r] = n;
    for (auto [r, n] : supplCounts) supplPer[r] = n;
    std::string text;
    int m = 1, s = 1;
    for (int r = 1; r <= tycho2::kRegionCount + 1; ++r) {
        char buf[64];
        std::snprintf(buf, sizeof buf, "%7d|%6d|%6.2f|%6.2f|%6.2f|%6.2f\n", m, s, 0.0, 360.0, -90.0, 90.0);
        text += buf;
        if (r <= tycho2::kRegionCount) {
            m += mainPer[r];
            s += supplPer[r];
        }
    }
    return text;
}

void WriteStellariumCatalogue(const fs::path& p, const std::vector<std::tuple<std::uint32_t, int, std::int32_t>>& stars)
{
    // Header, 20 zones (level 0) with all stars in zone 0, then 28-byte records
    // holding HIP, B−V index and parallax (0.01 mas).
    CByteWriter w;
    for (std::int32_t v : {static_cast<std::int32_t>(0x835f040a), 0, 0, 8, 0, -2000, 12800, 256}) w.I32(v);
    w.I32(static_cast<std::int32_t>(stars.size()));
    for (int z = 1; z < 20; ++z) w.I32(0);
    for (const auto& [hip, bvIndex, plx] : stars) {
        w.U32(hip);
        w.I32(0);
        w.I32(0);
        w.U8(static_cast<std::uint8_t>(bvIndex));
        w.U8(0);
        w.U16(0);
        w.I32(0);
        w.I32(0);
        w.I32(plx);
    }
    fs::create_directories(p.parent_path());
    std::ofstream(p, std::ios::binary).write(reinterpret_cast<const char*>(w.Data().data()),
                                             static_cast<std::streamsize>(w.Size()));
}

MiniSources MakeMiniSources()
{
    MiniSources m;
    m.root = orv::test::MakeTempDir();
    m.tycho2 = m.root / "tycho2";
    m.stellarium = m.root / "stellarium";
    m.kstars = m.root / "kstars";
    m.out = m.root / "data";
    // Regions 1, 4294 and 4295: the Tycho identifiers of the last two lie on
    // either side of 2^32, where a sort on the low word alone would go wrong.
    std::string main;
    main += MainLine(1, 20, 1, 1.0, 1.0, 9.0, 8.0, 1001, "A") + "\n";  // HIP 1001 A, V 7.91
    main += MainLine(1, 21, 1, 1.1, 1.0, 10.0, 9.5, 1001, "B") + "\n";  // HIP 1001 B
    main += MainLine(1, 13, 1, 1.2, 1.0, 12.0, 11.0) + "\n";
    main += MainLine(4294, 6, 1, 0.4, 67.5, 11.5, 10.2, 139) + "\n";   // id 4,294,000,061 < 2^32
    main += MainLine(4295, 2, 1, 0.5, 67.6, 8.0, 7.0, 140) + "\n";     // id 4,295,000,021 > 2^32
    WriteText(m.tycho2 / "tyc2.dat", main);
    WriteText(m.tycho2 / "suppl_1.dat", kSupplSirius + "\n");
    WriteText(m.tycho2 / "index.dat", IndexText({{1, 3}, {4294, 1}, {4295, 1}}, {{5949, 1}}));

    const fs::path st = m.stellarium / "stars" / "default";
    WriteText(st / "cross-id.dat",
              "# HIP\t\tSAO\tHD\tHR\n"
              "1001\tA\t100\t5000\t\n"
              "1001\tB\t101\t5001\t\n"
              "139\t\t4000000\t200\t\n"
              "140\t\t300\t201\t12\n"
              "32349\t\t151881\t48915\t2491\n");
    WriteText(st / "name.fab", " 32349|α_CMa\n 32349|9_CMa\n   140|γ2_And\n   139|c_Aql\n");
    WriteText(m.stellarium / "skycultures" / "western" / "star_names.fab",
              "# names\n 32349|_(\"Sirius\") 1,2\n 32349|_(\"Canicula\") 37\n   140|_(\"A name far too long to fit\")\n");
    WriteText(st / "gcvs_hip_part.dat", "140\tZZ And\tEA\t7.00\t0\t7.50\t\tV\t\t2.5\t\tA0\n");
    WriteText(st / "wds_hip_part.dat", "# HIP, WDS\n1001\t00040+0100\t2015\t10\t1.0\n139\t00017+6730\t2000\t1\t1\n");
    WriteText(st / "extra_name.fab", "  1001|Σ_3053\n  1001|HJ_1\n");
    WriteText(st / "hip_pm.dat", "# pm\n32349\t-546.01\t-1223.07\n");
    WriteStellariumCatalogue(st / "stars_0_0v0_8.cat", {{32349, 16, 37921}, {1001, 40, 1000}});
    // Hipparcos V 6.85 and B−V 0.92 for HIP 140 (TYC 4295-2-1 at α 0.5°,
    // δ 67.6°; Tycho V 6.91); a Tycho-1 line on HIP 139 is left out.
    WriteText(m.kstars / "stars.dat", "# Star catalog\n" + KStarsLine(1800000, 243360000, 6.85, 0.92) + "\n" +
                                          KStarsLine(1440000, 243000000, 9.95, 1.10, "K?") + "\n");
    return m;
}

BuildOptions Options(const MiniSources& m)
{
    return {m.tycho2.string(), m.stellarium.string(), m.out.string(), m.kstars.string()};
}

std::vector<std::uint8_t> FileBytes(const fs::path& p)
{
    const std::string s = ReadAll(p);
    return {s.begin(), s.end()};
}

}  // namespace

TEST(DataBuild, MiniatureSourcesGiveEveryFileInItsLayout)
{
    const MiniSources m = MakeMiniSources();
    std::string error;
    std::vector<std::string> progress;
    ASSERT_TRUE(RunBuild({m.tycho2.string(), m.stellarium.string(), m.out.string(), m.kstars.string()},
                         [&](const std::string& s) { progress.push_back(s); }, error))
        << error;
    EXPECT_FALSE(progress.empty());

    const auto cat = FileBytes(m.out / "star/Tycho2/Tycho2.dat");
    ASSERT_EQ(cat.size(), 6 * tycho2::kRecordSize);
    EXPECT_EQ(fs::file_size(m.out / "star/Tycho2/t2region.idx"), 57228u);
    EXPECT_EQ(fs::file_size(m.out / "data/rgnbound.dat"), 152592u);

    auto rec = [&](int i) { return cat.data() + i * tycho2::kRecordSize; };
    // Region 1 brightest first: TYC 1-20-1 (V 7.91), 1-21-1, 1-13-1.
    EXPECT_EQ(LoadLE<std::uint16_t>(rec(0) + 2), 20);
    EXPECT_EQ(LoadLE<std::int16_t>(rec(0) + 4), 791);
    EXPECT_EQ(LoadLE<std::uint16_t>(rec(1) + 2), 21);
    EXPECT_EQ(LoadLE<std::uint16_t>(rec(2) + 2), 13);
    EXPECT_EQ(LoadLE<std::int16_t>(rec(3)), 4294);
    EXPECT_EQ(LoadLE<std::int16_t>(rec(5)), 5949);

    // Sirius: parallax 379.21 mas and Hipparcos B−V (index 16 → 0.004) from
    // the stellarium catalogue; HIP at offset 28; flags for Bayer/Flamsteed,
    // proper name and HR number.
    const std::uint8_t* sirius = rec(5);
    EXPECT_FLOAT_EQ(LoadLE<float>(sirius + 24), 379.21f);
    EXPECT_EQ(LoadLE<std::int16_t>(sirius + 6), 4);
    EXPECT_EQ(LoadLE<std::uint32_t>(sirius + 28), 32349u);
    const auto flags = LoadLE<std::uint16_t>(sirius + 34);
    EXPECT_EQ(flags & 7, 1);
    EXPECT_TRUE(flags & tycho2::flag::kBayerFlamsteed);
    EXPECT_TRUE(flags & tycho2::flag::kProperName);
    EXPECT_TRUE(flags & tycho2::flag::kBrightStar);
    EXPECT_FALSE(flags & tycho2::flag::kVariable);
    // A star without parallax: below −1000.
    EXPECT_LT(LoadLE<float>(rec(2) + 24), -1000.0f);

    // HIP 140 takes its Hipparcos V and B−V; HIP 139 keeps Tycho's.
    const std::uint8_t* hip140 = rec(4);
    ASSERT_EQ(LoadLE<std::uint32_t>(hip140 + 28), 140u);
    EXPECT_EQ(LoadLE<std::int16_t>(hip140 + 4), 685);
    EXPECT_EQ(LoadLE<std::int16_t>(hip140 + 6), 920);
    EXPECT_TRUE(LoadLE<std::uint16_t>(hip140 + 36) & tycho2::origin::kMagFromHipparcos);
    EXPECT_EQ(LoadLE<std::int16_t>(rec(3) + 4), 1008);  // 10.215 − 0.090 × 1.277
    EXPECT_FALSE(LoadLE<std::uint16_t>(rec(3) + 36) & tycho2::origin::kMagFromHipparcos);

    // Region table: starts 0, 3, 3 … and the sentinel 6.
    const auto regions = FileBytes(m.out / "star/Tycho2/t2region.idx");
    EXPECT_EQ(LoadLE<std::uint32_t>(regions.data() + 0), 0u);
    EXPECT_EQ(LoadLE<std::int16_t>(regions.data() + 4), 791);
    EXPECT_EQ(LoadLE<std::uint32_t>(regions.data() + 6), 3u);
    EXPECT_EQ(LoadLE<std::uint32_t>(regions.data() + 9537 * 6), 6u);
    EXPECT_EQ(LoadLE<std::int16_t>(regions.data() + 4294 * 6 + 4), 685);  // region 4295: the Hipparcos V

    // Tycho identifier index: sorted across the 2^32 boundary.
    const auto ids = FileBytes(m.out / "star/Tycho2/T2Id.idx");
    ASSERT_EQ(ids.size(), 6 * tycho2::kTychoIdEntrySize);
    std::int64_t previous = -1;
    for (std::size_t i = 0; i < 6; ++i) {
        const std::uint8_t* e = ids.data() + i * 10;
        const std::int64_t key = tycho2::TychoId(LoadLE<std::int16_t>(e), LoadLE<std::int16_t>(e + 2),
                                                 LoadLE<std::int16_t>(e + 4));
        EXPECT_GT(key, previous);
        previous = key;
    }

    // t2hip: keys stored low word then high word, in 64-bit order.
    const auto t2hip = FileBytes(m.out / "star/Tycho2/t2hip.idx");
    ASSERT_EQ(t2hip.size(), 5 * 12u);
    EXPECT_EQ(FindKey64Entry(t2hip, 12, tycho2::TychoId(4294, 6, 1)), 2);
    EXPECT_EQ(FindKey64Entry(t2hip, 12, tycho2::TychoId(4295, 2, 1)), 3);
    EXPECT_EQ(LoadLE<std::int32_t>(t2hip.data() + 3 * 12 + 4), 1);  // high word of 4,295,000,021
    EXPECT_EQ(LoadLE<std::uint32_t>(t2hip.data() + 3 * 12 + 8), 140u);

    // HIP 1001: the system's entry goes to the A component; the B line of
    // cross-id.dat gives SAO 101 to the B component.
    const auto hipIdx = FileBytes(m.out / "star/Tycho2/hip.idx");
    const auto at = FindKey64Entry(hipIdx, 12, 1001);
    ASSERT_GE(at, 0);
    EXPECT_EQ(LoadLE<std::uint32_t>(hipIdx.data() + at * 12 + 8), 0u);
    const auto sao = FileBytes(m.out / "star/Tycho2/sao.idx");
    const auto b = FindKey64Entry(sao, 12, 101);
    ASSERT_GE(b, 0);
    EXPECT_EQ(LoadLE<std::uint32_t>(sao.data() + b * 12 + 8), 1u);
    // An SAO number beyond the 16-bit range and the HR list.
    EXPECT_GE(FindKey64Entry(sao, 12, 4000000), 0);
    const auto bsc = FileBytes(m.out / "star/Tycho2/bsc.idx");
    EXPECT_EQ(bsc.size(), 2 * 12u);
    EXPECT_EQ(LoadLE<std::uint32_t>(bsc.data() + FindKey64Entry(bsc, 12, 2491) * 12 + 8), 5u);

    // Names: Sirius takes its first name; an over-long name is left out.
    const auto names = FileBytes(m.out / "star/Tycho2/StarLabl.dat");
    ASSERT_EQ(names.size(), 26u);
    EXPECT_STREQ(reinterpret_cast<const char*>(names.data() + 8), "Sirius");
    const auto props = FileBytes(m.out / "star/Tycho2/StarProp.dat");
    ASSERT_EQ(props.size(), 2 * 12u);  // Sirius and HIP 140; c Aql (a Latin letter) is not kept
    const auto p = FindKey64Entry(props, 12, tycho2::TychoId(5949, 2777, 1));
    ASSERT_GE(p, 0);
    EXPECT_EQ(props[p * 12 + 8], 13);  // CMa
    EXPECT_EQ(props[p * 12 + 9], 9);   // 9 CMa
    EXPECT_EQ(props[p * 12 + 10], 0);  // alpha
    EXPECT_EQ(props[p * 12 + 11], 0);

    // Double stars: a code table, then entries by record number.
    const auto wds = FileBytes(m.out / "star/Tycho2/wds.idx");
    ASSERT_EQ(wds.size() % 8, 0u);
    EXPECT_EQ(LoadLE<std::uint32_t>(wds.data()), tycho2::kWdsMagic);
    ASSERT_EQ(LoadLE<std::uint32_t>(wds.data() + 4), 1u);
    EXPECT_STREQ(reinterpret_cast<const char*>(wds.data() + 8), "Σ");
    ASSERT_EQ(wds.size(), 8u * 4);  // header, one code, two stars
    EXPECT_EQ(LoadLE<std::uint32_t>(wds.data() + 16), 0u);  // TYC 1-20-1
    EXPECT_EQ(LoadLE<std::uint16_t>(wds.data() + 20), 1);
    EXPECT_EQ(LoadLE<std::uint16_t>(wds.data() + 22), 3053);
    EXPECT_EQ(LoadLE<std::uint16_t>(wds.data() + 28), tycho2::kWdsNoCode);  // HIP 139: no designation known

    const auto gcvs = FileBytes(m.out / "star/Tycho2/gcvs.idx");
    ASSERT_EQ(gcvs.size(), tycho2::gcvs::kEntrySize);
    EXPECT_EQ(LoadKey64(gcvs.data()), tycho2::TychoId(4295, 2, 1));
    EXPECT_EQ(LoadLE<std::int16_t>(gcvs.data() + 8), 700);
    EXPECT_EQ(LoadLE<std::int16_t>(gcvs.data() + 10), 750);
    EXPECT_STREQ(reinterpret_cast<const char*>(gcvs.data() + 16), "ZZ And");
}

TEST(DataBuild, DamagedSourceFailsAndLeavesExistingFilesIntact)
{
    const MiniSources m = MakeMiniSources();
    const fs::path existing = m.out / "star/Tycho2/Tycho2.dat";
    WriteText(existing, "previous good catalogue");
    std::string error;
    auto quiet = [](const std::string&) {};

    // A truncated main catalogue: fewer records than index.dat announces.
    std::string main = ReadAll(m.tycho2 / "tyc2.dat");
    WriteText(m.tycho2 / "tyc2.dat", main.substr(0, main.rfind('\n', main.size() - 2) + 1));
    EXPECT_FALSE(RunBuild(Options(m), quiet, error));
    EXPECT_NE(error.find("records"), std::string::npos) << error;
    EXPECT_EQ(ReadAll(existing), "previous good catalogue");

    // A star filed under the wrong region.
    WriteText(m.tycho2 / "tyc2.dat", main + MainLine(2, 1, 1, 1.0, 1.0, 9.0, 8.0) + "\n");
    EXPECT_FALSE(RunBuild(Options(m), quiet, error));
    EXPECT_FALSE(error.empty());

    // A missing stellarium list.
    WriteText(m.tycho2 / "tyc2.dat", main);
    fs::remove(m.stellarium / "stars/default/cross-id.dat");
    EXPECT_FALSE(RunBuild(Options(m), quiet, error));
    EXPECT_NE(error.find("cross-id.dat"), std::string::npos) << error;
    EXPECT_EQ(ReadAll(existing), "previous good catalogue");

    // A missing or damaged Hipparcos photometry file.
    const MiniSources fresh = MakeMiniSources();
    WriteText(fresh.out / "star/Tycho2/Tycho2.dat", "previous good catalogue");
    fs::remove(fresh.kstars / "stars.dat");
    EXPECT_FALSE(RunBuild(Options(fresh), quiet, error));
    EXPECT_NE(error.find("stars.dat"), std::string::npos) << error;
    WriteText(fresh.kstars / "stars.dat", kKStarsSirius.substr(0, 40) + "\n");
    EXPECT_FALSE(RunBuild(Options(fresh), quiet, error));
    EXPECT_NE(error.find("line 1"), std::string::npos) << error;
    EXPECT_EQ(ReadAll(fresh.out / "star/Tycho2/Tycho2.dat"), "previous good catalogue");
}
