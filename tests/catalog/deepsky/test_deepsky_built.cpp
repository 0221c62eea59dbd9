// Checks of the deep-sky files built from stellarium-data (orvane-databuild
// --deepsky), read through the program's reader. Skipped with a message when
// the data folder holds no deep-sky files.
//
// Counts: the objects of stellarium-data 0.22's nebulae/default/catalog.dat
// (format 3.16) with an NGC, IC, Messier or Caldwell number (10,834), a PGC
// number (79,315) and a PN G designation (2,929), counted by reading the
// catalogue independently of the builder.
// Positions: SIMBAD (J2000), for objects with a well-defined centre:
//   M 31 = NGC 224    00 42 44.33  +41 16 07.5
//   M 42 = NGC 1976   05 35 17.3   −05 23 28
//   NGC 6543          17 58 33.42  +66 37 59.5
//   NGC 6891          20 15 08.84  +12 42 15.6   (PN G054.1-12.1)
// and for the large nebulae, whose centres are a matter of definition, the
// source's own place (catalog.dat): NGC 7000 20h58m47.0s +44°19′48″, IC 434
// 05h40m48.0s −02°30′00″.
#include <gtest/gtest.h>

#include "catalog/deepsky/deepskysource.h"
#include "support/compare.h"
#include "util/angles.h"
#include "util/datapath.h"

using namespace orv;

namespace {

double Hms(int h, int m, double s) { return (h + m / 60.0 + s / 3600.0) * 15.0 * kRadPerDeg; }
double Dms(int sign, int d, int m, double s) { return sign * (d + m / 60.0 + s / 3600.0) * kRadPerDeg; }

class BuiltDeepSky : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!m_cats.Open() || !m_cats.IsOpen(DeepSkyCatalogueId::NgcIc))
            GTEST_SKIP() << "no built deep-sky files in the data folder (" << GetDataPath()
                         << "): run tools/build-data.sh first";
    }
    DeepSkyObject One(const char* name)
    {
        const auto found = ResolveDeepSkyName(m_cats, name);
        EXPECT_EQ(found.size(), 1u) << name;
        return found.empty() ? DeepSkyObject{} : found[0].first;
    }
    CDeepSkyCatalogues m_cats;
};

}  // namespace

TEST_F(BuiltDeepSky, RecordCountsMatchTheSource)
{
    EXPECT_EQ(m_cats.Count(DeepSkyCatalogueId::NgcIc), 10834u);
    EXPECT_EQ(m_cats.Count(DeepSkyCatalogueId::Leda), 79315u);
    EXPECT_EQ(m_cats.Count(DeepSkyCatalogueId::Strasbourg), 2929u);
}

TEST_F(BuiltDeepSky, KnownObjectsAgainstPublishedPositions)
{
    struct Case {
        const char* name;
        double raRad, decRad, toleranceArcsec;
        ObjectType type;
    };
    // Tolerances: 10″ for the compact objects (the catalogue's places are
    // rounded to about a second); 1′ for M 42, whose catalogued centre is
    // that of the nebula rather than of the Trapezium.
    const Case cases[] = {
        {"M 31", Hms(0, 42, 44.33), Dms(1, 41, 16, 7.5), 10.0, ObjectType::Galaxy},
        {"Andromeda Galaxy", Hms(0, 42, 44.33), Dms(1, 41, 16, 7.5), 10.0, ObjectType::Galaxy},
        {"LEDA 2557", Hms(0, 42, 44.33), Dms(1, 41, 16, 7.5), 10.0, ObjectType::Galaxy},
        {"M42", Hms(5, 35, 17.3), Dms(-1, 5, 23, 28), 60.0, ObjectType::BrightNebula},
        {"Orion Nebula", Hms(5, 35, 17.3), Dms(-1, 5, 23, 28), 60.0, ObjectType::BrightNebula},
        {"NGC 6543", Hms(17, 58, 33.42), Dms(1, 66, 37, 59.5), 10.0, ObjectType::PlanetaryNebula},
        {"PN G054.1-12.1", Hms(20, 15, 8.84), Dms(1, 12, 42, 15.6), 10.0, ObjectType::PlanetaryNebula},
        {"NGC 7000", Hms(20, 58, 47.0), Dms(1, 44, 19, 48), 1.0, ObjectType::BrightNebula},
        {"IC 434", Hms(5, 40, 48.0), Dms(-1, 2, 30, 0), 1.0, ObjectType::BrightNebula},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const DeepSkyObject o = One(c.name);
        EXPECT_LE(AngularDistance(c.raRad, c.decRad, o.raJ2000Rad, o.decJ2000Rad) / kRadPerArcsec, c.toleranceArcsec);
        EXPECT_EQ(o.type, c.type);
    }
}

TEST_F(BuiltDeepSky, GalaxiesOutsideTheNgcIcFoundByTheirPopularNames)
{
    // PGC numbers from the Lyon-Meudon database: the Cartwheel is PGC 2248,
    // the Large Magellanic Cloud PGC 17223.
    for (const auto& [name, designation] : {std::pair{"Cartwheel Galaxy", "LEDA 2248"},
                                            std::pair{"large magellanic cloud", "LEDA 17223"}}) {
        const auto found = ResolveDeepSkyName(m_cats, name);
        ASSERT_EQ(found.size(), 1u) << name;
        EXPECT_EQ(found[0].second.designation, designation) << name;
        EXPECT_EQ(found[0].first.catalogue, DeepSkyCatalogueId::Leda) << name;
        EXPECT_FALSE(found[0].second.names.empty()) << name;
    }
}

TEST_F(BuiltDeepSky, MessierAndCaldwellNumbersAndCommonNames)
{
    const auto m42 = ResolveDeepSkyName(m_cats, "NGC 1976");
    ASSERT_EQ(m42.size(), 1u);
    EXPECT_EQ(m42[0].second.messier, "M 42");
    EXPECT_NE(m42[0].second.names.find("Orion Nebula"), std::string::npos);
    // C 14 is the Double Cluster, NGC 869 and NGC 884: the source gives the
    // number to both, and the index names one of them.
    const auto c14 = ResolveDeepSkyName(m_cats, "C 14");
    ASSERT_EQ(c14.size(), 1u);
    EXPECT_TRUE(c14[0].second.designation == "NGC 869" || c14[0].second.designation == "NGC 884")
        << c14[0].second.designation;
    // M 45, the Pleiades, has no NGC number and is filed as "M 45".
    const auto m45 = ResolveDeepSkyName(m_cats, "M 45");
    ASSERT_EQ(m45.size(), 1u);
    EXPECT_EQ(m45[0].second.designation, "M 45");
    EXPECT_EQ(m45[0].first.type, ObjectType::OpenCluster);
}
