// Drawing a chart: one function for every surface.
//
// CChartRenderer draws a map view onto any QPainter — the window, a printer
// page, a raster image, a PDF or SVG file — running the chart's layers in
// their fixed order (altitude-azimuth grid lines, background image, Earth's
// shadow, equatorial grid, altitude-azimuth grid with labels, ecliptic grid,
// galactic grid, overlays, horizon, constellation figures, stars, planets,
// comets, asteroids, deep-sky objects, user catalogues, quick catalogue,
// target list, constellation names, tracks, satellite passes, annotations,
// search target marker, scale line, compass). Each layer is given the
// surface, the projection, the level and the observer, and returns at once
// when the level is outside its range. Layers differ only where the kind of
// surface matters (the search target marker is drawn on raster displays
// only; printers and vector files get hairlines scaled to their resolution).
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

#include "catalog/stars/stardisplay.h"

namespace orv {

class CMapView;
class CTycho2Catalogue;
namespace sat {
struct PlottedPassList;  // satellite/passdraw.h
}

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
    enum class Kind { Star, Planet, Comet, Asteroid, DeepSky, Other };
    Kind kind = Kind::Other;
    std::string designation;  // e.g. "alpha CMa", "Sirius", "TYC 5949-2777-1"
    std::string information;  // the identify read-out (several lines)
    double raJ2000Rad = 0.0;  // catalogue position
    double decJ2000Rad = 0.0;
    double xPx = 0.0;         // where it was drawn
    double yPx = 0.0;
};

// Catalogues shared by every chart of the program, opened on first use.
class CChartCatalogues {
public:
    CChartCatalogues();
    ~CChartCatalogues();
    CChartCatalogues(const CChartCatalogues&) = delete;
    CChartCatalogues& operator=(const CChartCatalogues&) = delete;

    // The Tycho-2 catalogue, opened on the first call (closed when missing).
    CTycho2Catalogue& Tycho();

private:
    std::unique_ptr<CTycho2Catalogue> m_tycho;
    bool m_tried = false;
};

struct RenderOptions {
    ColourScheme scheme = ColourScheme::Normal;
    bool monochrome = false;              // printing in black and white
    std::optional<SearchTarget> target;   // the search target, when set
    bool showSearchTarget = true;         // View menu: search target shown
    const sat::PlottedPassList* plottedPasses = nullptr;  // layer 21, not owned; nullptr: none
};

// What the last draw did (for the status bar, the command line and tests).
struct RenderStats {
    int starsGathered = 0;   // stars in the chart's list after the query
    int starsDrawn = 0;      // stars that landed on the surface
    int labelsDrawn = 0;     // star and grid labels placed
    int labelsDropped = 0;   // labels left out because no free place was found
    bool catalogueOpen = false;
};

// One renderer per chart: it keeps what the chart reuses between redraws
// (the star list for incremental extension, the positions of the objects
// drawn for identification).
class CChartRenderer {
public:
    explicit CChartRenderer(CChartCatalogues& catalogues);
    ~CChartRenderer();
    CChartRenderer(const CChartRenderer&) = delete;
    CChartRenderer& operator=(const CChartRenderer&) = delete;

    // Sets up the projection for the surface and draws the whole chart.
    void Draw(const DrawSurface& surface, CMapView& view, const RenderOptions& options);

    // The object drawn nearest to a pixel of the last raster-display draw,
    // within `tolerancePx`, or nothing.
    std::optional<IdentifiedObject> Identify(double xPx, double yPx, double tolerancePx) const;

    // The text listing of the stars visible on the last chart, headed
    // "Stars Visible on the Map" and a blank line, one star a line.
    std::string VisibleStarsText() const;

    // The same stars as rows for the list window (designation, magnitude,
    // B−V, flags, position), brightest first; SortVisibleStars (in
    // catalog/stars/stardisplay.h) applies the list's sorting rules.
    std::vector<VisibleStarRow> VisibleStars() const;

    // What the last draw did.
    const RenderStats& LastStats() const;

    // Forgets cached lists (after a change of catalogue or star settings).
    void Invalidate();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

// Background colour of a scheme (what a window clears to before drawing).
QColor BackgroundColour(ColourScheme scheme);

}  // namespace orv
