// The constellation layer on a chart: a figure line drawn between the two
// stars it joins, and a boundary drawn at its refracted place on a horizon
// chart. The data folder is the drawing tests' small star catalogue with
// constellation files written beside it by the data builder.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "catalog/constellations/constellationfiles.h"
#include "constellationbuild.h"
#include "map/chartframe.h"
#include "map/drawcontext.h"
#include "map/renderfixture.h"
#include "map/skyframes.h"
#include "sources/constellationreader.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using namespace orv::test;
namespace db = orv::databuild;
namespace fs = std::filesystem;

namespace {

// A boundary line of kstars-data's cbounds.dat, verbatim: the meridian
// between Aquila and Aquarius near 20h 38m, declinations 0.4° to 2.4°.
constexpr const char* kAqlAqrBoundary =
    "3 20.6386585 2.4360874 20.6392918 1.4361323 20.6399231 0.4361772 2 AQL AQR";

// The small catalogue's files plus the constellation files; ORVANE_DATA
// points here while it lives (after the chart, whose constructor sets it).
class CConstellationFolder {
public:
    CConstellationFolder()
    {
        m_folder = MakeTempDir();
        fs::copy(SmallCatalogueFolder(), m_folder, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
        db::ConstellationSources s;
        std::string why;
        db::ConstellationFigure f;
        // Orion's figure from α Ori (HIP 27989, the catalogue's middle star)
        // to the star 2° north of it (HIP 14576 in the small catalogue).
        EXPECT_TRUE(db::ParseFigureLine("Ori 1  27989 14576", f, why)) << why;
        s.figures.push_back(f);
        EXPECT_TRUE(db::ParseBoundarySegments(kAqlAqrBoundary, s.segments, why)) << why;
        std::vector<db::OutputFile> files;
        EXPECT_TRUE(db::BuildConstellationFiles(s, files, why)) << why;
        for (const db::OutputFile& file : files) {
            const fs::path p = fs::path(m_folder) / file.path;
            fs::create_directories(p.parent_path());
            std::ofstream(p, std::ios::binary)
                .write(reinterpret_cast<const char*>(file.bytes.data()), static_cast<std::streamsize>(file.bytes.size()));
            if (file.path == "data/conbound.dat") {
                std::vector<DeclinationStrip> strips;
                EXPECT_EQ(DecodeBoundaries(file.bytes, strips, m_edges), ConstFileStatus::Ok);
            }
        }
        setenv("ORVANE_DATA", m_folder.c_str(), 1);
    }
    ~CConstellationFolder() { setenv("ORVANE_DATA", SmallCatalogueFolder().c_str(), 1); }
    const std::vector<BoundaryEdge>& Edges() const { return m_edges; }

private:
    std::string m_folder;
    std::vector<BoundaryEdge> m_edges;
};

// Colour distance, the largest channel difference.
int Distance(QRgb a, const QColor& b)
{
    return std::max({std::abs(qRed(a) - b.red()), std::abs(qGreen(a) - b.green()), std::abs(qBlue(a) - b.blue())});
}

// True when a pixel within `reach` of (x, y) is within `tolerance` of `colour`
// (antialiased lines blend into the sky at their edges).
bool ColourNear(const QImage& image, double x, double y, int reach, const QColor& colour, int tolerance = 24)
{
    for (int dy = -reach; dy <= reach; ++dy)
        for (int dx = -reach; dx <= reach; ++dx) {
            const int px = static_cast<int>(std::lround(x)) + dx, py = static_cast<int>(std::lround(y)) + dy;
            if (px < 0 || py < 0 || px >= image.width() || py >= image.height()) continue;
            if (Distance(image.pixel(px, py), colour) <= tolerance) return true;
        }
    return false;
}

}  // namespace

TEST(ConstellationLayer, FigureLineJoinsItsTwoStars)
{
    CSmallCatalogueChart chart(800, 600);
    CConstellationFolder folder;
    CMapDoc& doc = chart.Doc();
    doc.constellations.conFigureVisible = 1;
    doc.constellations.conNameVisible = 0;
    doc.constellations.conBoundaryVisible = 0;
    doc.constellations.levelFigureLow = 0;
    doc.constellations.levelFigureHigh = 9;
    chart.View().SetLevel(chart.View().Level(), CMapView::TakeField::No);
    const QImage image = chart.Render();
    const ChartPalette palette = MakePalette(ColourScheme::Normal, SurfaceKind::RasterDisplay, false);

    // Halfway between the stars (1° north of the centre) the line is drawn;
    // half a degree east of that point the sky is bare.
    const double pxPerDeg = chart.PxPerRadian() * kRadPerDeg;
    const double cx = chart.View().coordinates.ScreenCentreX(), cy = chart.View().coordinates.ScreenCentreY();
    EXPECT_TRUE(ColourNear(image, cx, cy - 1.0 * pxPerDeg, 1, palette.conFigure));
    EXPECT_FALSE(ColourNear(image, cx + 0.5 * pxPerDeg, cy - 1.0 * pxPerDeg, 1, palette.conFigure));
    // South of the centre star there is no line.
    EXPECT_FALSE(ColourNear(image, cx, cy + 1.0 * pxPerDeg, 1, palette.conFigure));
}

TEST(ConstellationLayer, BoundaryIsRefractedOnHorizonCharts)
{
    CSmallCatalogueChart chart(800, 600);
    CConstellationFolder folder;
    ASSERT_EQ(folder.Edges().size(), 1u);
    const BoundaryEdge& edge = folder.Edges()[0];
    ASSERT_TRUE(edge.AlongMeridian());

    // The edge's middle carried from B1875.0 to J2000.
    double v[3];
    SphericalToVector(edge.ra1Rad, 0.5 * (edge.dec1Rad + edge.dec2Rad), v);
    CMapDoc& doc = chart.Doc();
    CObserverDoc& observer = doc.observer;
    observer.PrecessXYZ(v, constfile::kJdB1875, +1);
    const double raJ2000 = std::atan2(v[1], v[0]), decJ2000 = std::asin(v[2]);

    // An instant when that point stands half a degree above the horizon
    // (true altitude), rising in the east: there refraction lifts it by
    // about 29′ (Bennett), many pixels on a 3° chart.
    double jd = 2451545.0, alt = 0.0, az = 0.0;
    auto trueAltitude = [&](double when) {
        observer.SetJulianDate(when);
        double ra = raJ2000, dec = decJ2000;
        CatalogueToDate(observer, ra, dec);
        EquatorialToHorizontal(observer, ra, dec, alt, az, Refraction::Ignore);
        return alt;
    };
    // Step to a rising through 0.5°, then bisect.
    double lo = jd;
    while (!(trueAltitude(lo) < 0.5 * kRadPerDeg && trueAltitude(lo + 0.01) >= 0.5 * kRadPerDeg)) lo += 0.01;
    double hi = lo + 0.01;
    for (int i = 0; i < 40; ++i) {
        const double mid = 0.5 * (lo + hi);
        (trueAltitude(mid) < 0.5 * kRadPerDeg ? lo : hi) = mid;
    }
    trueAltitude(hi);
    ASSERT_NEAR(alt / kRadPerDeg, 0.5, 1e-3);

    doc.constellations.conFigureVisible = 0;
    doc.constellations.conNameVisible = 0;
    doc.constellations.conBoundaryVisible = 1;
    doc.constellations.levelBoundaryLow = 0;
    doc.constellations.levelBoundaryHigh = 9;
    // Horizon charts are the wide levels' (they hold altitude and azimuth);
    // the field is then narrowed to 3° so that refraction spans many pixels.
    chart.View().SetLevel(1, CMapView::TakeField::Yes);
    ASSERT_EQ(chart.View().coordinates.CentringMode(), Centring::AltAz);
    chart.View().coordinates.SetFieldDeg(3.0);
    chart.View().coordinates.SetCentreAltAz(observer, 0.8 * kRadPerDeg, az);
    chart.View().coordinates.SetupSurface(chart.Width(), chart.Height());
    const QImage image = chart.Render();
    const ChartPalette palette = MakePalette(ColourScheme::Normal, SurfaceKind::RasterDisplay, false);

    // Where the chart puts the point with refraction, and where it would be
    // without (the catalogue-to-frame rotation alone).
    const CChartFrame frame(observer, chart.View().coordinates);
    ScreenPoint refracted, unrefracted;
    ASSERT_TRUE(frame.CatalogueToScreen(raJ2000, decJ2000, EpochPath::Rigid, refracted));
    double p[3], f[3];
    SphericalToVector(raJ2000, decJ2000, p);
    const auto* m = frame.CatalogueMatrix();
    for (int i = 0; i < 3; ++i) f[i] = m[i][0] * p[0] + m[i][1] * p[1] + m[i][2] * p[2];
    ASSERT_TRUE(frame.ToScreen(f, unrefracted));
    const double liftPx = std::hypot(refracted.x - unrefracted.x, refracted.y - unrefracted.y);
    ASSERT_GT(liftPx, 40.0) << "refraction must move the point well clear of the line's width";

    // The dashed line: some stretch of it within a few pixels along the
    // meridian's direction around the refracted point.
    EXPECT_TRUE(ColourNear(image, refracted.x, refracted.y, 6, palette.conBoundary));
    EXPECT_FALSE(ColourNear(image, unrefracted.x, unrefracted.y, 6, palette.conBoundary));
}

// Where the ground is filled, it hides the figure lines below the horizon,
// as it hides the stars they join: the figure from α Ori to the star 2°
// north of it, caught rising across the horizon at latitude 70° N (the
// line then leans only 20° from the vertical), is drawn above the horizon
// and nowhere on the ground; without the filled ground it runs on below.
TEST(ConstellationLayer, FigureLinesStopAtTheFilledGround)
{
    CSmallCatalogueChart chart(800, 600);
    CConstellationFolder folder;
    CMapDoc& doc = chart.Doc();
    CObserverDoc& observer = doc.observer;
    observer.SetSite("North", 70.0 * kRadPerDeg, 0.0, 0.0);
    doc.constellations.conFigureVisible = 1;
    doc.constellations.conNameVisible = 0;
    doc.constellations.conBoundaryVisible = 0;
    doc.constellations.levelFigureLow = 0;
    doc.constellations.levelFigureHigh = 9;

    // The instant the line's middle (6h, +1°) rises through 0° true altitude.
    double alt = 0.0, az = 0.0;
    auto trueAltitude = [&](double when) {
        observer.SetJulianDate(when);
        double ra = kCentreRaDeg * kRadPerDeg, dec = 1.0 * kRadPerDeg;
        CatalogueToDate(observer, ra, dec);
        EquatorialToHorizontal(observer, ra, dec, alt, az, Refraction::Ignore);
        return alt;
    };
    double lo = 2451545.0;
    while (!(trueAltitude(lo) < 0.0 && trueAltitude(lo + 0.01) >= 0.0)) lo += 0.01;
    double hi = lo + 0.01;
    for (int i = 0; i < 40; ++i) {
        const double mid = 0.5 * (lo + hi);
        (trueAltitude(mid) < 0.0 ? lo : hi) = mid;
    }
    trueAltitude(hi);

    CMapView& view = chart.View();
    view.SetLevel(1, CMapView::TakeField::Yes);
    ASSERT_EQ(view.coordinates.CentringMode(), Centring::AltAz);
    const auto render = [&](bool solidGround) {
        view.altAzGrid.solidHorizonLevels = solidGround ? LevelRange{0, 9} : LevelRange{-1, -1};
        view.SetLevel(1, CMapView::TakeField::No);
        view.coordinates.SetFieldDeg(4.0);
        view.coordinates.SetCentreAltAz(observer, 0.0, az);
        view.coordinates.SetupSurface(chart.Width(), chart.Height());
        return chart.Render();
    };
    const QImage ground = render(true);
    ASSERT_EQ(view.altAzGrid.solidHorizon, 1);
    const QImage open = render(false);
    const ChartPalette palette = MakePalette(ColourScheme::Normal, SurfaceKind::RasterDisplay, false);

    // Points along the line between the two stars as the chart places them,
    // clear of the star discs at its ends and of the horizon line itself.
    const CChartFrame frame(observer, view.coordinates);
    const CGroundTest horizon(frame);
    ScreenPoint a, b;
    ASSERT_TRUE(frame.CatalogueToScreen(kCentreRaDeg * kRadPerDeg, 0.0, EpochPath::Rigid, a));
    ASSERT_TRUE(frame.CatalogueToScreen(kCentreRaDeg * kRadPerDeg, kNorthDecDeg * kRadPerDeg, EpochPath::Rigid, b));
    int below = 0, above = 0;
    for (double f = 0.15; f <= 0.851; f += 0.05) {
        const double x = a.x + f * (b.x - a.x), y = a.y + f * (b.y - a.y);
        const bool clearlyBelow = horizon.BelowHorizon(x, y) && horizon.BelowHorizon(x, y - 5.0);
        const bool clearlyAbove = !horizon.BelowHorizon(x, y) && !horizon.BelowHorizon(x, y + 5.0);
        SCOPED_TRACE("fraction " + std::to_string(f));
        if (clearlyBelow) {
            ++below;
            EXPECT_FALSE(ColourNear(ground, x, y, 1, palette.conFigure));
            EXPECT_TRUE(ColourNear(open, x, y, 1, palette.conFigure));
        } else if (clearlyAbove) {
            ++above;
            EXPECT_TRUE(ColourNear(ground, x, y, 1, palette.conFigure));
            EXPECT_TRUE(ColourNear(open, x, y, 1, palette.conFigure));
        }
    }
    EXPECT_GE(below, 3);
    EXPECT_GE(above, 3);
}
