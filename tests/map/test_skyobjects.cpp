// The chart scene (what was drawn where) and the registry of sky-object
// sources (find by name, describe for identification), on sources made up
// for the test: the rules of the registry, not any catalogue's content.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "map/skyobjects.h"
#include "observer/observer.h"
#include "util/angles.h"
#include "util/objecttype.h"

using namespace orv;

namespace {

// A source that knows a fixed list of names, each at a fixed place.
class CListSource final : public ISkyObjectSource {
public:
    struct Entry {
        std::string name;
        double raDeg, decDeg;
        ObjectType type;
    };
    CListSource(std::string name, std::vector<Entry> entries, bool available = true)
        : m_name(std::move(name)), m_entries(std::move(entries)), m_available(available)
    {
    }
    std::string_view Name() const override { return m_name; }
    std::string_view Forms() const override { return "names"; }
    bool Available() const override { return m_available; }
    std::vector<SkyObjectMatch> Resolve(std::string_view text, const CObserverDoc&) const override
    {
        std::vector<SkyObjectMatch> out;
        for (std::size_t i = 0; i < m_entries.size(); ++i) {
            if (m_entries[i].name != text) continue;
            SkyObjectMatch m;
            m.key = static_cast<std::uint32_t>(i);
            m.type = m_entries[i].type;
            m.designation = m_entries[i].name;
            m.raJ2000Rad = m_entries[i].raDeg * kRadPerDeg;
            m.decJ2000Rad = m_entries[i].decDeg * kRadPerDeg;
            out.push_back(m);
        }
        return out;
    }
    std::optional<ObjectDescription> Describe(std::uint32_t key, const DescribeRequest& request) const override
    {
        if (key >= m_entries.size()) return std::nullopt;
        ObjectDescription d;
        d.type = m_entries[key].type;
        d.designation = m_entries[key].name;
        d.information = d.designation + "\nstyle " + std::to_string(request.style);
        return d;
    }
    void CompletionNames(std::vector<std::string>& out) const override
    {
        for (const Entry& e : m_entries) out.push_back(e.name);
    }

private:
    std::string m_name;
    std::vector<Entry> m_entries;
    bool m_available;
};

SceneObject At(float x, float y, float radius, std::int16_t mag, std::uint32_t key = 0, SkySourceId source = 0)
{
    SceneObject o;
    o.xPx = x;
    o.yPx = y;
    o.radiusPx = radius;
    o.magCenti = mag;
    o.key = key;
    o.source = source;
    return o;
}

}  // namespace

TEST(ObjectTypes, TheSystemTableInCodeOrder)
{
    const auto table = ObjectTypeTable();
    ASSERT_EQ(table.size(), 19u);
    EXPECT_EQ(table.front().name, "All");
    EXPECT_EQ(ObjectTypeName(ObjectType::GalaxyCluster), "Cluster of Galaxies");
    EXPECT_EQ(ObjectTypeName(ObjectType::PlanetaryNebula), "Planetary Nebula");
    EXPECT_EQ(ObjectTypeName(ObjectType::VariableStar), "Variable Star");
    EXPECT_EQ(ObjectTypeName(static_cast<ObjectType>(55)), "Unknown");
    for (std::size_t i = 1; i < table.size(); ++i)
        EXPECT_LT(static_cast<int>(table[i - 1].type), static_cast<int>(table[i].type));
    EXPECT_TRUE(IsStellar(ObjectType::DoubleStar));
    EXPECT_FALSE(IsStellar(ObjectType::Planet));
}

// The nearest disc edge wins, so a click on the rim of a large disc finds
// it rather than a faint star whose centre happens to be closer; among equal
// gaps the brighter object; nothing beyond the tolerance or for NaN.
TEST(ChartScene, NearestDiscEdgeThenBrighter)
{
    CChartScene scene;
    EXPECT_EQ(scene.Nearest(0, 0, 100), nullptr);  // nothing drawn yet
    scene.Begin({2451545.0, 2451545.0007, 3, 800, 600});
    scene.Add(At(100, 100, 10, 50, 1));   // bright, edge 10 px from its centre
    scene.Add(At(114, 100, 0, 900, 2));   // faint, one pixel
    scene.Add(At(300, 300, 2, 400, 3));
    scene.Add(At(300, 306, 2, 300, 4));   // the same gap from (300, 303) as key 3, brighter
    // At (111, 100): 1 px outside the bright disc's edge, 3 px from the faint star.
    ASSERT_NE(scene.Nearest(111, 100, 4), nullptr);
    EXPECT_EQ(scene.Nearest(111, 100, 4)->key, 1u);
    EXPECT_EQ(scene.Nearest(114, 100, 4)->key, 2u);  // on the faint star, 4 px from the disc
    EXPECT_EQ(scene.Nearest(300, 303, 2)->key, 4u);
    EXPECT_EQ(scene.Nearest(150, 150, 4), nullptr);
    EXPECT_EQ(scene.Nearest(std::nan(""), 100, 4), nullptr);
    EXPECT_EQ(scene.Nearest(100, 100, -1), nullptr);

    // A new draw forgets the old objects and the styles.
    scene.SetSourceStyle(2, 7u);
    EXPECT_EQ(scene.SourceStyle(2), 7u);
    EXPECT_EQ(scene.SourceStyle(9), 0u);
    scene.Begin({2451546.0, 2451546.0007, 3, 800, 600});
    EXPECT_TRUE(scene.Objects().empty());
    EXPECT_EQ(scene.SourceStyle(2), 0u);
    scene.Invalidate();
    EXPECT_FALSE(scene.Valid());
}

TEST(SkyObjectRegistry, FindsThroughEverySourceAndNamesWhatWasTried)
{
    CSkyObjectRegistry reg;
    const CObserverDoc observer;
    EXPECT_EQ(reg.Resolve("Vega", observer).status, FindStatus::NothingInstalled);

    const SkySourceId stars = reg.Register(std::make_shared<CListSource>(
        "Test stars", std::vector<CListSource::Entry>{{"Vega", 279.2347, 38.7837, ObjectType::Star},
                                                      {"M 57 star", 283.3963, 33.0292, ObjectType::Star}}));
    const SkySourceId deepSky = reg.Register(std::make_shared<CListSource>(
        "Test deep sky", std::vector<CListSource::Entry>{{"M 57", 283.3963, 33.0292, ObjectType::PlanetaryNebula},
                                                         {"Twin", 10.0, 10.0, ObjectType::Galaxy}}));
    reg.Register(std::make_shared<CListSource>(
        "Test comets", std::vector<CListSource::Entry>{{"Twin", 200.0, -10.0, ObjectType::Comet}}));
    reg.Register(std::make_shared<CListSource>("Not installed",
                                               std::vector<CListSource::Entry>{{"Vega", 0, 0, ObjectType::Star}},
                                               false));
    EXPECT_EQ(stars, 0);
    EXPECT_EQ(deepSky, 1);

    const FindResult vega = reg.Resolve("  Vega ", observer);  // spaces around are no part of a name
    ASSERT_EQ(vega.status, FindStatus::Found);
    ASSERT_EQ(vega.matches.size(), 1u);  // the source that is not installed is skipped
    EXPECT_EQ(vega.matches[0].source, stars);
    EXPECT_EQ(vega.matches[0].type, ObjectType::Star);
    EXPECT_NEAR(vega.matches[0].raJ2000Rad / kRadPerDeg, 279.2347, 1e-12);

    const FindResult m57 = reg.Resolve("M 57", observer);
    ASSERT_EQ(m57.status, FindStatus::Found);
    EXPECT_EQ(m57.matches[0].source, deepSky);

    // Two different objects by one name: both are listed, with their catalogues.
    const FindResult twin = reg.Resolve("Twin", observer);
    ASSERT_EQ(twin.status, FindStatus::Ambiguous);
    ASSERT_EQ(twin.matches.size(), 2u);
    EXPECT_NE(twin.message.find("Twin (Test deep sky)"), std::string::npos) << twin.message;
    EXPECT_NE(twin.message.find("Twin (Test comets)"), std::string::npos) << twin.message;

    const FindResult none = reg.Resolve("Nothing", observer);
    EXPECT_EQ(none.status, FindStatus::NotFound);
    EXPECT_EQ(none.message, "\"Nothing\" was not found. Searched:\n  Test stars (names)\n  Test deep sky (names)\n"
                            "  Test comets (names)");
    EXPECT_EQ(reg.Resolve("   ", observer).status, FindStatus::EmptyText);

    const auto names = reg.CompletionNames();
    EXPECT_EQ(names, (std::vector<std::string>{"M 57", "M 57 star", "Twin", "Vega"}));
}

// The same object held by two catalogues (a star that a deep-sky catalogue
// also lists) is one object: the first registered source answers.
TEST(SkyObjectRegistry, OneObjectInTwoCataloguesIsFoundOnce)
{
    CSkyObjectRegistry reg;
    reg.Register(std::make_shared<CListSource>(
        "A", std::vector<CListSource::Entry>{{"Alcyone", 56.8711, 24.1051, ObjectType::Star}}));
    reg.Register(std::make_shared<CListSource>(
        "B", std::vector<CListSource::Entry>{{"Alcyone", 56.8711 + 20.0 / 3600.0, 24.1051, ObjectType::Star}}));
    const FindResult r = reg.Resolve("Alcyone", CObserverDoc());
    ASSERT_EQ(r.status, FindStatus::Found);
    EXPECT_EQ(r.matches[0].source, 0);
}

TEST(SkyObjectRegistry, DescribesADrawnObjectThroughItsSourceWithTheLayersStyle)
{
    CSkyObjectRegistry reg;
    reg.Register(std::make_shared<CListSource>("A", std::vector<CListSource::Entry>{}));
    const SkySourceId b = reg.Register(std::make_shared<CListSource>(
        "B", std::vector<CListSource::Entry>{{"First", 0, 0, ObjectType::OpenCluster},
                                             {"Second", 1, 1, ObjectType::Galaxy}}));
    CChartScene scene;
    scene.Begin({2451545.0, 2451545.0007, 0, 100, 100});
    scene.SetSourceStyle(b, 3u);
    scene.Add(At(50, 50, 3, 100, 1, b));
    const SceneObject* o = scene.Nearest(50, 50, 1);
    ASSERT_NE(o, nullptr);
    const auto d = reg.Describe(*o, scene);
    ASSERT_TRUE(d);
    EXPECT_EQ(d->designation, "Second");
    EXPECT_EQ(d->type, ObjectType::Galaxy);
    EXPECT_EQ(d->information, "Second\nstyle 3");
    SceneObject stray = *o;
    stray.source = 7;  // no such source
    EXPECT_FALSE(reg.Describe(stray, scene));
    EXPECT_EQ(reg.SourceOf<CListSource>(), reg.Source(0));
}
