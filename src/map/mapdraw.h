// Drawing a chart: one function for every surface.
//
// CChartRenderer draws a map view onto any QPainter — the window, a printer
// page, a raster image, a PDF or SVG file — running the chart's registered
// layers (chartlayer.h) in their fixed order. Each layer is given the
// surface, the surface's own projection, the level and the observer, and
// is skipped when the level is outside its range. Layers differ only where
// the kind of surface matters (the search target marker is drawn on raster
// displays only; printers and vector files get hairlines scaled to their
// resolution).
//
// The view is only read: the projection of each surface is built in the
// drawing context, so printing or exporting never changes the window's.
// What each draw put where is recorded in a chart scene (skyobjects.h), the
// window's for identification and the last draw's for the lists.
//
// This library uses Qt Gui (QPainter) but never Qt Widgets, so charts can be
// drawn headless by the command line and the tests.
#pragma once

#include <QColor>
#include <QPainter>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "map/chartlayer.h"
#include "map/skyobjects.h"

namespace orv {

class CMapView;

enum class SurfaceKind {
    RasterDisplay,  // the chart window
    Printer,        // a printer page or print preview
    Bitmap,         // an off-screen raster picture for export
    Vector,         // a PDF or SVG file
};

struct DrawSurface {
    QPainter* painter = nullptr;
    SurfaceKind kind = SurfaceKind::RasterDisplay;
    int widthPx = 0;   // drawing area, device pixels
    int heightPx = 0;
    double dpiX = 96.0;  // device pixels per inch
    double dpiY = 96.0;
};

enum class ColourScheme {
    Normal = 0,        // dark sky, coloured stars
    RedNightVision = 1, // everything in shades of red on black
    BlackOnWhite = 2,  // black ink on white, as for printing
};

// A position found by a search, marked on the chart until cleared.
struct SearchTarget {
    double raJ2000Rad = 0.0;
    double decJ2000Rad = 0.0;
    std::string label;
};

// An object drawn on the chart, found under the cursor.
struct IdentifiedObject {
    ObjectType type = ObjectType::Unknown;
    std::string designation;  // e.g. "alpha CMa", "Sirius", "TYC 5949-2777-1"
    std::string information;  // the identify read-out (several lines)
    double raJ2000Rad = 0.0;  // catalogue position at the chart's date
    double decJ2000Rad = 0.0;
    double xPx = 0.0;         // where it was drawn
    double yPx = 0.0;
    SkySourceId source = kNoSkySource;  // who describes it, and its key there
    std::uint32_t key = 0;
};

struct RenderOptions {
    ColourScheme scheme = ColourScheme::Normal;
    bool monochrome = false;              // printing in black and white
    std::optional<SearchTarget> target;   // the search target, when set
    bool showSearchTarget = true;         // View menu: search target shown
};

// What the last draw did (for the status bar, the command line and tests).
struct RenderStats {
    int starsGathered = 0;   // stars in the chart's list after the query
    int starsDrawn = 0;      // stars that landed on the surface
    int labelsDrawn = 0;     // star and grid labels placed
    int labelsDropped = 0;   // labels left out because no free place was found
    bool catalogueOpen = false;  // the star catalogue was open (when stars were shown)
};

// One renderer per chart: its own instances of the registered layers (which
// keep what the chart reuses between redraws) and the scenes of its draws.
class CChartRenderer {
public:
    // `components` must outlive the renderer.
    explicit CChartRenderer(const CChartComponents& components);
    ~CChartRenderer();
    CChartRenderer(const CChartRenderer&) = delete;
    CChartRenderer& operator=(const CChartRenderer&) = delete;

    // Draws the whole chart of `view` on the surface, through a projection
    // made for the surface (the view's own is left as it is).
    void Draw(const DrawSurface& surface, const CMapView& view, const RenderOptions& options);

    // The object drawn nearest to a pixel of the last raster-display draw,
    // within `tolerancePx`, described by its source; or nothing.
    std::optional<IdentifiedObject> Identify(double xPx, double yPx, double tolerancePx) const;

    // What the last raster-display draw recorded (identification, the
    // window's lists), and what the last draw of any surface recorded.
    const CChartScene& WindowScene() const;
    const CChartScene& LastScene() const;
    const CChartComponents& Components() const { return m_components; }

    // What the last draw did.
    const RenderStats& LastStats() const;

    // Forgets what the layers keep (after a change of catalogue or settings).
    void Invalidate();

    // This chart's instance of a layer class, or nullptr.
    template <class Layer>
    Layer* FindLayer() const
    {
        for (const auto& l : Layers())
            if (auto* t = dynamic_cast<Layer*>(l.get())) return t;
        return nullptr;
    }

private:
    const std::vector<std::unique_ptr<IChartLayer>>& Layers() const;

    struct Impl;
    const CChartComponents& m_components;
    std::unique_ptr<Impl> m_impl;
};

// Background colour of a scheme (what a window clears to before drawing).
QColor BackgroundColour(ColourScheme scheme);

}  // namespace orv
