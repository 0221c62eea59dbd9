// The constellation files and the point-in-constellation test: the search
// over a small strip table, the files' loading rules, and on the built data
// folder (skipped when it has not been built) record counts, known entries,
// Roman's published identifications and a cross-check of the two boundary
// sources.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <set>

#include "catalog/constellations/constellationfiles.h"
#include "catalog/stars/crossindex.h"
#include "catalog/stars/tycho2catalogue.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "support/compare.h"
#include "util/angles.h"
#include "util/datapath.h"

using namespace orv;

namespace {

constexpr int kAnd = 0, kOri = 59, kSgr = 71, kTau = 77, kUMa = 82, kUMi = 83;

double Hours(double h) { return h * kTwoPi / 24.0; }
double Deg(double d) { return d * kRadPerDeg; }

// A J2000 place given in hours, minutes, seconds and degrees, minutes, seconds.
double Hms(int h, int m, double s) { return Hours(h + m / 60.0 + s / 3600.0); }
double Dms(int sign, int d, int m, double s) { return sign * Deg(d + m / 60.0 + s / 3600.0); }

TEST(RomanSearch, FirstStripHoldingThePointWins)
{
    // Two strips of the real table's shape: Ursa Minor's cap above +88°, and
    // below it from 8h to 14h30m down to +86°30′.
    const DeclinationStrip strips[] = {{0.0, kTwoPi, Deg(88.0), kUMi}, {Hours(8.0), Hours(14.5), Deg(86.5), kUMi}};
    EXPECT_EQ(ConstellationOfB1875(strips, Hours(3.0), Deg(89.0)), kUMi);
    EXPECT_EQ(ConstellationOfB1875(strips, Hours(14.4), Deg(87.0)), kUMi);
    EXPECT_EQ(ConstellationOfB1875(strips, Hours(14.5), Deg(87.0)), -1);  // upper bound excluded
    EXPECT_EQ(ConstellationOfB1875(strips, Hours(8.0), Deg(86.5)), kUMi);  // lower bounds included
    EXPECT_EQ(ConstellationOfB1875(strips, Hours(-1.0), Deg(89.0)), kUMi);  // right ascension wrapped
    EXPECT_EQ(ConstellationOfB1875(strips, std::nan(""), Deg(89.0)), -1);
}

TEST(ConstellationCatalogue, MissingFilesLeaveItEmptyAndAreNotReadAgain)
{
    const std::string dir = test::MakeTempDir();
    CConstellationCatalogue cat(dir);
    EXPECT_FALSE(cat.LoadFigures());
    EXPECT_FALSE(cat.LoadBoundaries());
    EXPECT_TRUE(cat.Figures().empty());
    EXPECT_EQ(cat.FigureReads(), 0);
    CObserverDoc observer;
    EXPECT_EQ(cat.ConstellationAt(observer, 0.0, 0.0), -1);
    // Without "constnam.dat" the names come from the string table.
    EXPECT_EQ(cat.Name(kOri), "Orion");
    EXPECT_EQ(cat.Genitive(kUMa), "Ursae Majoris");

    // A file that appears later is not read: the first load decided.
    std::filesystem::create_directories(std::filesystem::path(dir) / "star" / "Tycho2");
    const std::uint8_t header[4] = {0, 0, 0, 0};
    std::FILE* f = std::fopen((std::filesystem::path(dir) / "star" / "Tycho2" / "ConstFig.dat").c_str(), "wb");
    ASSERT_NE(f, nullptr);
    std::fwrite(header, 1, 4, f);
    std::fclose(f);
    EXPECT_FALSE(cat.LoadFigures());
    EXPECT_EQ(cat.FigureReads(), 0);
    CConstellationCatalogue fresh(dir);
    fresh.LoadFigures();
    fresh.LoadFigures();
    EXPECT_EQ(fresh.FigureReads(), 1);  // read once, however often asked
}

class BuiltConstellations : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_cat = new CConstellationCatalogue;
        s_cat->LoadAll();
    }
    static void TearDownTestSuite()
    {
        delete s_cat;
        s_cat = nullptr;
    }
    void SetUp() override
    {
        if (s_cat->Figures().empty() || s_cat->Strips().empty() || s_cat->NamePlaces().empty() || !s_cat->HasNames())
            GTEST_SKIP() << "no built constellation files in the data folder (" << GetDataPath()
                         << "): run tools/build-data.sh first";
    }
    static CConstellationCatalogue* s_cat;
};
CConstellationCatalogue* BuiltConstellations::s_cat = nullptr;

// Record counts of the sources: stellarium-data 0.22's western sky culture
// has 88 figures; Roman's table has 357 strips (CDS VI/42 data.dat); the
// boundaries of CDS VI/49 have 782 segments between pairs of constellations.
TEST_F(BuiltConstellations, RecordCountsAndKnownEntries)
{
    EXPECT_EQ(s_cat->Strips().size(), 357u);
    EXPECT_GT(s_cat->Edges().size(), 782u - 1);
    std::set<int> withFigures, withPlaces;
    for (const FigureRecord& r : s_cat->Figures()) withFigures.insert(r.constellation);
    for (const NamePlace& p : s_cat->NamePlaces()) withPlaces.insert(p.constellation);
    EXPECT_EQ(withFigures.size(), 88u);
    EXPECT_EQ(withPlaces.size(), 88u);

    // Orion's figure joins Betelgeuse (HIP 27989) and Bellatrix (HIP 25336)
    // through the shoulders, and the belt: Alnitak (26727), Alnilam (26311),
    // Mintaka (25930).
    auto joined = [&](std::uint32_t a, std::uint32_t b) {
        for (const FigureRecord& r : s_cat->Figures())
            if (r.constellation == kOri && ((r.hipA == a && r.hipB == b) || (r.hipA == b && r.hipB == a))) return true;
        return false;
    };
    EXPECT_TRUE(joined(26727, 26311));
    EXPECT_TRUE(joined(26311, 25930));
    EXPECT_TRUE(joined(27989, 26727) || joined(27989, 26207));

    NamePlace p;
    ASSERT_TRUE(s_cat->NamePlaceOf(kOri, p));
    EXPECT_NEAR(p.raJ2000Rad, Hms(5, 40, 0), 1e-9);  // kstars-data cnames.dat "054000+030000Ori"
    EXPECT_NEAR(p.decJ2000Rad, Deg(3.0), 1e-9);
    EXPECT_EQ(s_cat->Abbreviation(kSgr), "Sgr");
    EXPECT_EQ(s_cat->Name(kSgr), "Sagittarius");
    EXPECT_EQ(s_cat->Genitive(kSgr), "Sagittarii");
}

// Roman (1987), PASP 99, 695, the program's example output (CDS VI/42
// ReadMe): positions of equinox 1950.0 and their constellations.
TEST_F(BuiltConstellations, RomansPublishedIdentifications)
{
    struct Case {
        double raHours, decDeg;
        const char* abbreviation;
    };
    const Case cases[] = {{9.0000, 65.0000, "UMa"},  {23.5000, -20.0000, "Aqr"}, {5.1200, 9.1200, "Ori"},
                          {9.4555, -19.9000, "Hya"}, {12.8888, 22.0000, "Com"},  {15.6687, -12.1234, "Lib"},
                          {19.0000, -40.0000, "CrA"}, {6.2222, -81.1234, "Men"}};
    CObserverDoc observer;
    const double jdB1950 = 2433282.4235;  // Besselian epoch 1950.0
    for (const Case& c : cases) {
        double v[3];
        SphericalToVector(Hours(c.raHours), Deg(c.decDeg), v);
        observer.PrecessXYZ(v, jdB1950, +1);  // to J2000
        double ra = 0.0, dec = 0.0;
        VectorToSpherical(v, ra, dec);
        EXPECT_EQ(s_cat->Abbreviation(s_cat->ConstellationAt(observer, ra, dec)), c.abbreviation)
            << c.raHours << "h " << c.decDeg << "°";
    }
}

// Stars whose constellations every atlas gives, several of them close to a
// boundary: Alpheratz (α And, the corner of Pegasus' square, is in
// Andromeda), Elnath (β Tau, Auriga's former "γ Aur"), Polaris, Betelgeuse,
// Kaus Australis (ε Sgr). J2000 places from the Hipparcos catalogue
// (ESA SP-1200), to 1″ — far inside their constellations' edges.
TEST_F(BuiltConstellations, WellKnownStars)
{
    CObserverDoc observer;
    EXPECT_EQ(s_cat->ConstellationAt(observer, Hms(0, 8, 23.26), Dms(+1, 29, 5, 25.6)), kAnd);
    EXPECT_EQ(s_cat->ConstellationAt(observer, Hms(5, 26, 17.51), Dms(+1, 28, 36, 26.8)), kTau);
    EXPECT_EQ(s_cat->ConstellationAt(observer, Hms(2, 31, 49.09), Dms(+1, 89, 15, 50.8)), kUMi);
    EXPECT_EQ(s_cat->ConstellationAt(observer, Hms(5, 55, 10.31), Dms(+1, 7, 24, 25.4)), kOri);
    EXPECT_EQ(s_cat->ConstellationAt(observer, Hms(18, 24, 10.32), Dms(-1, 34, 23, 4.6)), kSgr);
}

// The two boundary sources agree: every parallel of Delporte's edges (from
// the J2000 boundary points) is the declination of one of Roman's strips,
// and every point of the sky just beside an edge lies, on one side or the
// other, in one of the two constellations the edge separates.
TEST_F(BuiltConstellations, EdgesAgreeWithRomansStrips)
{
    std::set<long> stripDecs;
    for (const DeclinationStrip& s : s_cat->Strips()) stripDecs.insert(std::lround(s.decLowRad / kRadPerArcsec));
    int parallels = 0;
    for (const BoundaryEdge& e : s_cat->Edges()) {
        if (e.AlongMeridian() || std::abs(e.dec1Rad) > Deg(89.0)) continue;
        ++parallels;
        EXPECT_TRUE(stripDecs.count(std::lround(e.dec1Rad / kRadPerArcsec)))
            << "edge at " << e.dec1Rad / kRadPerDeg << "° is no strip's lower declination";
    }
    EXPECT_GT(parallels, 300);

    int checked = 0;
    for (const BoundaryEdge& e : s_cat->Edges()) {
        if (e.AlongMeridian()) continue;
        // The middle of the edge, 1′ north and 1′ south of it.
        double mid = e.ra1Rad + 0.5 * std::remainder(e.ra2Rad - e.ra1Rad, kTwoPi);
        mid = mod2pi(mid);
        const int north = ConstellationOfB1875(s_cat->Strips(), mid, e.dec1Rad + Deg(1.0 / 60));
        const int south = ConstellationOfB1875(s_cat->Strips(), mid, e.dec1Rad - Deg(1.0 / 60));
        EXPECT_TRUE((north == e.left && south == e.right) || (north == e.right && south == e.left))
            << "edge " << e.left << "/" << e.right << " at " << e.dec1Rad / kRadPerDeg << "°: " << north << " above, "
            << south << " below";
        ++checked;
    }
    EXPECT_GT(checked, 300);
}

}  // namespace
