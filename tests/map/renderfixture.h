// Shared by the drawing tests: a Qt GUI application on the offscreen
// platform (text needs one), a small star catalogue written by the data
// builder into a temporary data folder, and a chart on it.
//
// The catalogue holds four stars around right ascension 6h, declination 0
// (all in region 1), each exercising one designation rule:
//   TYC 1-1-1  mag 0.50, at the centre; proper name "Centrum", alpha Ori and
//              58 Ori, B−V +1.850, parallax 5.95 mas (548 ly)
//   TYC 1-2-1  mag 3.00, 2° east of the centre; no cross identification
//   TYC 1-3-1  mag 3.00, 2° north; the variable star "β Per" (GCVS)
//   TYC 1-4-1  mag 4.00, 2° south and 2° west; the double star Σ 1110 (WDS)
#pragma once

#include <QImage>
#include <QPainter>

#include <memory>
#include <string>

#include "catalog/stars/starsource.h"
#include "map/mapdraw.h"
#include "map/mapview.h"
#include "overlay/overlayfile.h"
#include "util/settingsstore.h"
#include "writers/outputfile.h"

namespace orv::test {

// The small catalogue's folder, built once per test program; ORVANE_DATA
// points at it while a CSmallCatalogueChart lives.
const std::string& SmallCatalogueFolder();

// The deep-sky files written beside the stars: three objects around 18h, 0°,
// far from the stars (test_deepskylayer.cpp).
std::vector<databuild::OutputFile> SmallDeepSkyFiles();

// J2000 places of the four stars, degrees.
inline constexpr double kCentreRaDeg = 90.0, kCentreDecDeg = 0.0;
inline constexpr double kEastRaDeg = 92.0;
inline constexpr double kNorthDecDeg = 2.0;

// The charts of the drawing tests, assembled as the program assembles its
// own: the map's layers, the star catalogue (layer and source) and the
// plotted satellite passes.
struct CTestChartComponents {
    CTestChartComponents();
    std::shared_ptr<CStarCatalogueHandle> stars;
    std::shared_ptr<COverlayStore> overlays;
    CChartComponents components;
};

class CSmallCatalogueChart {
public:
    // A chart of `widthPx` × `heightPx` at level index 3 (8° from the centre
    // to the top edge, stars to magnitude 9), centred on the middle star
    // and held in right ascension and declination, at JD 2451545.0.
    CSmallCatalogueChart(int widthPx = 800, int heightPx = 600);
    ~CSmallCatalogueChart();

    CMapView& View() { return *m_view; }
    CMapDoc& Doc() { return *m_doc; }
    CChartRenderer& Renderer() { return *m_renderer; }
    const CChartComponents& Components() const { return m_components->components; }
    COverlayStore& Overlays() { return *m_components->overlays; }
    // The list of the stars of the last draw, and its text.
    std::vector<VisibleStarRow> VisibleStars() const;
    std::string VisibleStarsText() const;
    int Width() const { return m_width; }
    int Height() const { return m_height; }

    // Draws the chart into a new image (RGB32) on a surface of `kind`.
    QImage Render(SurfaceKind kind = SurfaceKind::RasterDisplay, const RenderOptions& options = {},
                  double dpi = 96.0);
    // Pixels per radian near the centre, horizontally.
    double PxPerRadian() const;

private:
    std::string m_previousData;
    bool m_hadData = false;
    int m_width, m_height;
    CMemorySettingsStore m_store;
    std::unique_ptr<CMapDoc> m_doc;
    std::unique_ptr<CMapView> m_view;
    std::unique_ptr<CTestChartComponents> m_components;
    std::unique_ptr<CChartRenderer> m_renderer;
};

// The centroid of the pixels that differ from `background` within `radius`
// of (x, y), weighted by how much they differ; false when none differs.
bool Centroid(const QImage& image, QRgb background, int x, int y, int radius, double& cx, double& cy);

}  // namespace orv::test
