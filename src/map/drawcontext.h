// What every layer of a chart is given when it draws: the surface and its
// painter, the map (view, document, the surface's own projection, level,
// observer), the chart's fast sky-to-pixel path, the colours of the scheme
// in use, the chart's fonts, the register of the places already taken by
// texts, and the scene in which the layer records the objects it drew.
// Every layer (chartlayer.h) draws through this.
#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

#include "map/chartframe.h"
#include "map/labelplacer.h"
#include "map/mapdraw.h"
#include "map/mapview.h"
#include "util/angles.h"

namespace orv {

// Colours of one scheme on one kind of surface.
struct ChartPalette {
    QColor background;
    QColor ground;              // below the horizon (solid horizon)
    QColor horizonLine;
    QColor grid[4];             // solid lines, by GridKind
    QColor gridFaint[4];        // faint lines, by GridKind
    QColor gridLabel;
    QColor starPlain;           // stars without (or not shown in) colour
    QColor starHalo;            // ring that separates discs from what lies under them
    bool haloDiscs = false;     // black-on-white discs get a paper-coloured ring
    bool starColours = true;    // B−V colours allowed by the scheme
    bool redOnly = false;       // every colour mapped to shades of red
    QColor starLabel;           // names, Flamsteed numbers, magnitudes, distances
    QColor greekLabel;          // Bayer letters
    QColor starMark;            // variable and double-star marks
    QColor pmLine;              // proper-motion lines
    QColor scaleLine;
    QColor compass;
    QColor labelBackground;     // behind grid labels
    QColor satellitePath;       // plotted satellite passes: path, ticks, arrowhead
    QColor satelliteText;       // their names and clock times
    QColor conFigure;           // constellation figure lines
    QColor conBoundary;         // constellation boundaries
    QColor conName;             // constellation names and the corner name
    QColor deepSkyGalaxy;       // galaxy ellipses
    QColor deepSkyCluster;      // open and globular cluster symbols
    QColor deepSkyNebula;       // bright and planetary nebulae, remnants
    QColor deepSkyDark;         // dark nebulae
    QColor deepSkyLabel;        // deep-sky designations and names
    QColor planetLit;           // the Sun's, the Moon's and the planets' discs and symbols, lit side
    QColor planetDark;          // the unlit part of a phase disc
    QColor planetLabel;         // their names
    QColor cometHead;           // a comet's nucleus and coma
    QColor cometTail;           // its tail (drawn fading away from the head)
    QColor asteroid;            // asteroid discs
    QColor minorLabel;          // comet and asteroid labels, their orbit paths and date ticks

    // A star colour brought to the scheme (red: luminance as red).
    QColor StarColour(const QColor& c) const;
};

ChartPalette MakePalette(ColourScheme scheme, SurfaceKind kind, bool monochrome);

// The fonts of a chart, sized in points for the surface's resolution.
struct ChartFonts {
    QFont label;        // star names, numbers, magnitudes
    QFont greek;        // Bayer letters (a font with real Greek glyphs)
    QFont superscript;  // the superscript number of a Bayer letter
    QFont grid;         // grid labels
    QFont mark;         // compass and scale line
};

ChartFonts MakeFonts(double dpiY);

struct DrawContext {
    const DrawSurface& surface;
    QPainter& painter;
    const CMapView& view;
    const CMapDoc& doc;
    const CCoordinates& coords;  // the view's projection set up for this surface
    const CChartFrame& frame;
    int level = 0;
    const RenderOptions& options;
    ChartPalette palette;
    ChartFonts fonts;
    CLabelPlacer& labels;
    RenderStats& stats;
    CChartScene& scene;  // what this draw put where

    double Width() const { return surface.widthPx; }
    double Height() const { return surface.heightPx; }
    // Device pixels for a length in inches (at least `minPx`).
    double Px(double inches, double minPx = 1.0) const { return std::max(minPx, inches * surface.dpiY); }
    bool IsRasterDisplay() const { return surface.kind == SurfaceKind::RasterDisplay; }
    bool IsVectorLike() const { return surface.kind == SurfaceKind::Printer || surface.kind == SurfaceKind::Vector; }
    // The width of a chart line: one pixel on screens, a hairline of about
    // 0.2 mm scaled to the resolution on printers and vector files.
    double LineWidth(double factor = 1.0) const
    {
        return IsVectorLike() ? std::max(0.5, factor * 0.008 * surface.dpiY) : std::max(1.0, factor);
    }
};

// The drawing of the map's own layers (registered by RegisterMapLayers).
// The horizon grid is traced once, in its first pass (with the ground
// below the horizon), and drawn again with its labels in the second.
struct GridLines;
void DrawAltAzGridFirstPass(DrawContext& ctx, std::shared_ptr<GridLines>& traced);
void DrawAltAzGridSecondPass(DrawContext& ctx, std::shared_ptr<GridLines>& traced);
void DrawEquatorialGrid(DrawContext& ctx);
void DrawEclipticGrid(DrawContext& ctx);
void DrawGalacticGrid(DrawContext& ctx);
void DrawSearchTarget(DrawContext& ctx);
void DrawScaleLine(DrawContext& ctx);
void DrawCompass(DrawContext& ctx);
// The corners that the scale line and the compass will use, taken before
// any label is placed so that no label goes under them.
void ReserveScaleLineArea(DrawContext& ctx);
void ReserveCompassArea(DrawContext& ctx);
// Unit screen vectors of celestial north and east at a pixel, as the
// compass draws them for the chart centre (rotation and flips included).
struct CompassDirections {
    double northX = 0.0, northY = -1.0, eastX = -1.0, eastY = 0.0;
    bool ok = false;
};
CompassDirections CompassAt(const CChartFrame& frame, double xPx, double yPx);

// Spacing of one grid: latitude step in arc seconds, longitude step in arc
// seconds (or seconds of time for right ascension).
struct GridSpacing {
    int latStepArcsec = 36000;
    int lonStepUnits = 3600;
    bool lonInTime = false;
    double LonStepRad() const { return lonInTime ? lonStepUnits * kTwoPi / 86400.0 : lonStepUnits * kRadPerArcsec; }
    double LatStepRad() const { return latStepArcsec * kRadPerArcsec; }
};
// "Method" 0: about six latitude lines from the centre to the top edge, in
// steps read at a glance (1″ … 30°), longitude lines as far apart on the sky
// at the centre's latitude (1s … 6h of right ascension, 1″ … 90°).
GridSpacing AutomaticSpacing(GridKind kind, double fieldDeg, double centreLatRad);
// "Method" 1: the stored intervals (right ascension in minutes of time, the
// others in arc minutes); nothing when they are zero or negative or would
// fill the cap of `capRadiusRad` with more than 400 lines.
std::optional<GridSpacing> StoredSpacing(const CGridData& data, double capRadiusRad);
// Grid labels: "%1dh" on whole hours, "%1dh%02dm" on minutes (seconds only
// below a minute); angles "+20°", "+20°30'", "+20°30'15\""; azimuths with
// N, E, S, W at the cardinal points.
QString HourLabel(long long secondsOfTime);
QString AngleLabel(long long arcsec, bool signedValue, bool withDegreeSign = true);
QString AzimuthLabel(long long arcsec);

// Strokes the pieces of a curve traced through the projection (curvetrace.h)
// with the painter's pen: grids, constellation figures and boundaries.
struct TracedCurve;
void StrokePolylines(QPainter& p, const TracedCurve& c);

// The ground below the horizon: a test in projection-plane coordinates.
// Stereographic projection maps the horizon to a circle (or a line), so the
// ground is the inside or the outside of that circle.
class CGroundTest {
public:
    explicit CGroundTest(const CChartFrame& frame);
    // With the document's horizon profile when its "UseForEvents" is set:
    // a point behind the trees is below the horizon too.
    CGroundTest(const CChartFrame& frame, const CMapDoc& doc);
    // True when the screen point lies below the horizon.
    bool BelowHorizon(double xPx, double yPx) const;
    // The quadratic whose sign tells the side: negative below the horizon.
    double Side(const PlanePoint& p) const { return -m_cn * (p.x * p.x + p.y * p.y) * 0.25 + p.x * m_en + p.y * m_sn + m_cn; }
    double ZenithDotCentre() const { return m_cn; }
    double ZenithDotEast() const { return m_en; }
    double ZenithDotSouth() const { return m_sn; }

private:
    const CCoordinates& m_coords;
    const CChartFrame* m_frame = nullptr;
    const std::array<std::int8_t, kHorizonPoints>* m_profile = nullptr;
    double m_cn = 0.0, m_en = 0.0, m_sn = 0.0;
};

// Clears the upper halves of the AVX registers when the processor has them.
// Some code that runs inside Qt (seen after QGuiApplication starts) leaves
// them dirty; every later SSE instruction then pays a merge penalty, which
// made the per-star arithmetic (sines and cosines in libm) five times slower.
// Called before the long numerical loops of a chart.
void ClearUpperVectorState();

// A text drawn with a few pixels of the background around it, so that lines
// under it do not cross it (grid labels).
void DrawBoxedText(QPainter& p, const QRectF& box, const QString& text, const QColor& textColour,
                   const QColor& background);

// Chart labels repeat from one redraw to the next (grid values, constellation
// names), and shaping a text costs tens of microseconds. On image surfaces
// the shaped texts are kept (per thread, per font and resolution) and drawn
// again as they are; other surfaces shape each text as usual.
//
// The advance of `text` in `font` on the painter's device.
double LabelTextWidth(QPainter& p, const QFont& font, const QString& text);
// `text` in the painter's font and pen, centred in `box`.
void DrawCentredText(QPainter& p, const QRectF& box, const QString& text);

}  // namespace orv
