#include "renderfixture.h"

#include <gtest/gtest.h>

#include <QGuiApplication>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "catalog/constellations/drawconstellations.h"
#include "catalog/deepsky/drawdeepsky.h"
#include "catalog/stars/drawstars.h"
#include "overlay/drawoverlay.h"
#include "catalogbuild.h"
#include "satellite/passdraw.h"
#include "solarsystem/drawminor.h"
#include "solarsystem/drawplanets.h"
#include "support/compare.h"
#include "util/angles.h"

namespace fs = std::filesystem;
namespace db = orv::databuild;

namespace orv::test {

namespace {

// Text drawing needs a QGuiApplication; the offscreen platform needs no
// display.
class CQtEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "test_render";
        static char* argv[] = {name, nullptr};
        m_app = std::make_unique<QGuiApplication>(argc, argv);
    }
    void TearDown() override { m_app.reset(); }

private:
    std::unique_ptr<QGuiApplication> m_app;
};
[[maybe_unused]] const auto* g_qt = ::testing::AddGlobalTestEnvironment(new CQtEnvironment);

db::BuildStar Star(int tyc2, int magCenti, double raDeg, double decDeg, std::uint32_t hip)
{
    db::BuildStar s;
    s.tyc1 = 1;
    s.tyc2 = static_cast<std::uint16_t>(tyc2);
    s.tyc3 = 1;
    s.flags = 1;
    s.magCenti = static_cast<std::int16_t>(magCenti);
    s.raMas = static_cast<std::int32_t>(std::lround(raDeg * 3600000.0));
    s.decMas = static_cast<std::int32_t>(std::lround(decDeg * 3600000.0));
    s.hip = hip;
    return s;
}

std::string BuildSmallCatalogue()
{
    const std::string dir = MakeTempDir();
    // Region 1 spans 85°-95° in right ascension and −5°…+5° in declination;
    // every other region lies far away in the south and is empty.
    std::vector<db::IndexLine> index(tycho2::kRegionCount + 1, db::IndexLine{1, 1, 18000, 18100, -5000, -4900});
    index[0] = {1, 1, 8500, 9500, -500, 500};
    std::vector<db::BuildStar> stars{
        Star(1, 50, kCentreRaDeg, kCentreDecDeg, 27989),
        Star(2, 300, kEastRaDeg, kCentreDecDeg, 0),
        Star(3, 300, kCentreRaDeg, kNorthDecDeg, 14576),
        Star(4, 400, kCentreRaDeg - 2.0, kCentreDecDeg - 2.0, 36850),
    };
    stars[0].bvMilli = 1850;
    db::HipData hip;
    hip.properNames[27989] = {"Centrum"};
    db::StarProperty ori;
    db::ParseBayerFlamsteed("α_Ori", ori);
    db::ParseBayerFlamsteed("58_Ori", ori);
    hip.properties[27989] = ori;
    hip.parallaxMas[27989] = 5.95f;
    db::VariableStar algol;
    std::string error;
    db::ParseGcvsLine("14576\tβ Per\tEA/SD\t2.12\t0\t3.39\t\tV\t45641.5135\t2.8673043\t14\tB8V", algol, error);
    hip.variables[14576] = {algol};
    hip.doubles[36850] = db::DoubleDesignation{"Σ", 1110};

    db::Catalogue cat;
    if (!db::AssembleCatalogue(stars, index, cat, error)) ADD_FAILURE() << error;
    db::CrossReport report;
    std::vector<db::OutputFile> files = db::BuildStarFiles(cat, hip, report);
    for (db::OutputFile& f : SmallDeepSkyFiles()) files.push_back(std::move(f));
    for (const db::OutputFile& f : files) {
        const auto& bytes = f.bytes;
        const fs::path p = fs::path(dir) / f.path;
        fs::create_directories(p.parent_path());
        std::ofstream(p, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    return dir;
}

}  // namespace

const std::string& SmallCatalogueFolder()
{
    static const std::string folder = BuildSmallCatalogue();
    return folder;
}

CSmallCatalogueChart::CSmallCatalogueChart(int widthPx, int heightPx) : m_width(widthPx), m_height(heightPx)
{
    if (const char* d = std::getenv("ORVANE_DATA")) {
        m_previousData = d;
        m_hadData = true;
    }
    setenv("ORVANE_DATA", SmallCatalogueFolder().c_str(), 1);
    m_doc = std::make_unique<CMapDoc>(m_store);
    m_doc->observer.SetSite("test", 48.0 * kRadPerDeg, 11.0 * kRadPerDeg, 0.0);
    m_doc->observer.SetJulianDate(2451545.0);
    CLevelTable levels;
    m_view = std::make_unique<CMapView>(*m_doc, m_store, levels);
    m_view->SetLevel(3, CMapView::TakeField::Yes);
    m_view->coordinates.SetCentringMode(Centring::RaDec);
    m_view->coordinates.SetCentreRaDec(m_doc->observer, kCentreRaDeg * kRadPerDeg, kCentreDecDeg * kRadPerDeg);
    // The window's projection is set up for its size, as the map window does.
    m_view->coordinates.SetupSurface(widthPx, heightPx);
    m_components = std::make_unique<CTestChartComponents>();
    m_components->stars->Get();
    m_renderer = std::make_unique<CChartRenderer>(m_components->components);
}

CTestChartComponents::CTestChartComponents()
    : stars(std::make_shared<CStarCatalogueHandle>()), overlays(std::make_shared<COverlayStore>())
{
    RegisterMapLayers(components.layers);
    RegisterStarCatalogue(components, stars);
    RegisterConstellations(components, stars);
    RegisterDeepSkyCatalogues(components, std::make_shared<CDeepSkyCatalogueHandle>());
    RegisterPlanets(components);
    // The small chart shows no comets or asteroids until a test gives it some.
    auto minor = std::make_shared<CMinorCatalogHandle>();
    minor->Get().Asteroids().clear();
    minor->Get().Comets().clear();
    minor->Get().MarkChanged(MinorKind::Asteroid);
    minor->Get().MarkChanged(MinorKind::Comet);
    RegisterMinorBodies(components, minor);
    sat::RegisterPlottedPassLayer(components.layers);
    RegisterOverlays(components.layers, overlays);
}

std::vector<VisibleStarRow> CSmallCatalogueChart::VisibleStars() const
{
    return VisibleStarRows(m_renderer->LastScene(), m_components->components.objects);
}

std::string CSmallCatalogueChart::VisibleStarsText() const { return VisibleStarsListing(VisibleStars()); }

CSmallCatalogueChart::~CSmallCatalogueChart()
{
    m_renderer.reset();
    m_components.reset();
    if (m_hadData)
        setenv("ORVANE_DATA", m_previousData.c_str(), 1);
    else
        unsetenv("ORVANE_DATA");
}

QImage CSmallCatalogueChart::Render(SurfaceKind kind, const RenderOptions& options, double dpi)
{
    QImage image(m_width, m_height, QImage::Format_RGB32);
    image.fill(Qt::gray);
    QPainter painter(&image);
    m_renderer->Draw(DrawSurface{&painter, kind, m_width, m_height, dpi, dpi}, *m_view, options);
    painter.end();
    return image;
}

double CSmallCatalogueChart::PxPerRadian() const { return m_view->coordinates.ScaleX(); }

bool Centroid(const QImage& image, QRgb background, int x, int y, int radius, double& cx, double& cy)
{
    double sw = 0.0, sx = 0.0, sy = 0.0;
    for (int j = std::max(0, y - radius); j <= std::min(image.height() - 1, y + radius); ++j) {
        for (int i = std::max(0, x - radius); i <= std::min(image.width() - 1, x + radius); ++i) {
            const QRgb p = image.pixel(i, j);
            const double w = std::abs(qRed(p) - qRed(background)) + std::abs(qGreen(p) - qGreen(background)) +
                             std::abs(qBlue(p) - qBlue(background));
            sw += w;
            sx += w * (i + 0.5);
            sy += w * (j + 0.5);
        }
    }
    if (!(sw > 0.0)) return false;
    cx = sx / sw;
    cy = sy / sw;
    return true;
}

}  // namespace orv::test
