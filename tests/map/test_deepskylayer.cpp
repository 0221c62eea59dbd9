// The deep-sky layer on a chart: objects of a miniature catalogue written by
// the data builder into the drawing tests' data folder, far from the stars
// of the other drawing tests (around 18h, 0°), drawn where the projection
// puts them, recorded in the scene under the deep-sky source, and left out
// outside their catalogue's levels or when deep-sky objects are switched off.
#include <gtest/gtest.h>

#include "catalog/deepsky/deepskysource.h"
#include "map/renderfixture.h"
#include "writers/deepsky.h"

using namespace orv;
using namespace orv::test;
namespace db = orv::databuild;

namespace {

constexpr double kRaDeg = 270.0;

}  // namespace

std::vector<db::OutputFile> orv::test::SmallDeepSkyFiles()
{
    auto make = [](double raDeg, double decDeg, db::StelDsoType type, double major, double minor, int pa) {
        db::BuildDeepSkyObject o;
        o.raMas = std::llround(raDeg * 3'600'000.0);
        o.decMas = std::llround(decDeg * 3'600'000.0);
        o.magV = 8.0;
        o.type = type;
        o.majorArcmin = major;
        o.minorArcmin = minor;
        o.paDeg = pa;
        return o;
    };
    auto galaxy = make(kRaDeg, 0.0, db::StelDsoType::Galaxy, 60.0, 20.0, 0);
    galaxy.ngc = 9001;
    auto globular = make(kRaDeg, 3.0, db::StelDsoType::GlobularCluster, 20.0, 20.0, -1);
    globular.ngc = 9002;
    auto ledaOnly = make(kRaDeg + 2.0, -2.0, db::StelDsoType::Galaxy, 10.0, 5.0, 90);
    ledaOnly.pgc = 9003;
    return db::WriteDeepSkyFiles(db::SplitDeepSkyCatalogues({galaxy, globular, ledaOnly}));
}

namespace {

struct DeepSkyChart {
    DeepSkyChart()
    {
        chart = std::make_unique<CSmallCatalogueChart>();
        chart->View().coordinates.SetCentreRaDec(chart->Doc().observer, kRaDeg * kRadPerDeg, 0.0);
    }
    std::vector<SceneObject> DeepSkyObjects() const
    {
        const CChartComponents& c = chart->Components();
        const auto id = c.objects.IdOf(c.objects.SourceOf<CDeepSkyObjectSource>());
        std::vector<SceneObject> out;
        for (const SceneObject& o : chart->Renderer().LastScene().Objects())
            if (id && o.source == *id) out.push_back(o);
        return out;
    }
    std::unique_ptr<CSmallCatalogueChart> chart;
};

}  // namespace

TEST(DeepSkyLayer, ObjectsDrawnWhereTheProjectionPutsThem)
{
    DeepSkyChart c;
    const QImage image = c.chart->Render();
    const auto objects = c.DeepSkyObjects();
    // At level index 3 the NGC/IC objects show (levels 2-9), the LEDA-only
    // galaxy does not (levels 4-9).
    ASSERT_EQ(objects.size(), 2u);
    const double pxPerRad = c.chart->PxPerRadian();
    const double cx = c.chart->Width() / 2.0, cy = c.chart->Height() / 2.0;
    for (const SceneObject& o : objects) {
        if (o.Type() == ObjectType::Galaxy) {
            EXPECT_NEAR(o.xPx, cx, 1.0);
            EXPECT_NEAR(o.yPx, cy, 1.0);
            // The 60′ major axis runs north-south (position angle 0): its
            // semi-axis is 30′ on the chart.
            EXPECT_NEAR(o.radiusPx, 30.0 / 60.0 * kRadPerDeg * pxPerRad, 1.0);
            // The ellipse's northern tip is drawn; its centre is not.
            const QRgb background = image.pixel(5, c.chart->Height() - 5);
            bool tip = false;
            for (int dy = -2; dy <= 2; ++dy)
                tip = tip || image.pixel(static_cast<int>(cx), static_cast<int>(cy - o.radiusPx) + dy) != background;
            EXPECT_TRUE(tip);
        } else {
            EXPECT_EQ(o.Type(), ObjectType::GlobularCluster);
            EXPECT_NEAR(o.xPx, cx, 1.0);
            EXPECT_NEAR(o.yPx, cy - 3.0 * kRadPerDeg * pxPerRad, 2.0);
        }
    }
    const auto described = c.chart->Components().objects.Describe(objects[0], c.chart->Renderer().LastScene());
    ASSERT_TRUE(described.has_value());
    EXPECT_NE(described->information.find("Type of object:"), std::string::npos);
}

TEST(DeepSkyLayer, NothingWhenSwitchedOffOrOutsideTheLevels)
{
    DeepSkyChart c;
    c.chart->Doc().deepSky.visible = 0;
    c.chart->View().SetLevel(c.chart->View().Level(), CMapView::TakeField::No);
    c.chart->View().coordinates.SetCentreRaDec(c.chart->Doc().observer, kRaDeg * kRadPerDeg, 0.0);
    c.chart->Render();
    EXPECT_TRUE(c.DeepSkyObjects().empty());
    c.chart->Doc().deepSky.visible = 1;
    c.chart->Doc().deepSky.levelLowNGCIC = c.chart->Doc().deepSky.levelHighNGCIC = 9;
    c.chart->View().SetLevel(c.chart->View().Level(), CMapView::TakeField::No);
    c.chart->View().coordinates.SetCentreRaDec(c.chart->Doc().observer, kRaDeg * kRadPerDeg, 0.0);
    c.chart->Render();
    EXPECT_TRUE(c.DeepSkyObjects().empty());
}
