// The coordinate grids of the chart: right ascension and declination of
// date, altitude and azimuth (with the ground below the horizon), ecliptic
// longitude and latitude of date, and galactic longitude and latitude.
//
// Every grid line is a circle of the sphere traced through the chart's
// projection (CCurveTracer): meridians run between the parallels nearest the
// poles (only the four at multiples of 90° reach the pole itself, so that
// lines do not crowd into a black knot there), parallels run round the
// visible part of the sky. Spacing is chosen from the field ("Method" 0,
// about six lines from the centre to the top edge, in steps an observer
// reads easily) or taken from the stored intervals ("Method" 1).
#include <QFontMetricsF>
#include <QPainterPath>
#include <QPolygonF>

#include <array>
#include <cmath>
#include <cstdio>
#include <thread>

#include "map/curvetrace.h"
#include "map/rastertarget.h"
#include "map/drawcontext.h"
#include "map/drawground.h"
#include "map/horizonprofile.h"
#include "observer/observer.h"
#include "util/angles.h"

namespace orv {

namespace {

// Rotation from ICRS (J2000 equatorial) to galactic coordinates: the
// Hipparcos definition, ESA SP-1200 (1997) vol. 1 sect. 1.5.3, eq. 1.5.11,
// with the north galactic pole at α = 192.85948°, δ = +27.12825° and the
// origin of longitude at position angle 122.93192°.
constexpr double kIcrsToGalactic[3][3] = {
    {-0.0548755604162154, -0.8734370902348850, -0.4838350155487132},
    {+0.4941094278755837, -0.4448296299600112, +0.7469822444972189},
    {-0.8676661490190047, -0.1980763734312015, +0.4559837761750669},
};

// Steps a reader takes in at a glance: angles in arc seconds, right
// ascension in seconds of time.
constexpr std::array<int, 23> kAngleSteps = {1,    2,    5,     10,    15,    20,    30,    60,
                                             120,  300,  600,   900,   1200,  1800,  3600,  7200,
                                             18000, 36000, 54000, 72000, 108000, 162000, 324000};
constexpr std::array<int, 19> kTimeSteps = {1,   2,   5,    10,   15,   20,   30,    60,    120,  300,
                                            600, 900, 1200, 1800, 3600, 7200, 10800, 14400, 21600};

template <std::size_t N>
int NiceStep(const std::array<int, N>& steps, double atLeast)
{
    for (int s : steps)
        if (s >= atLeast) return s;
    return steps.back();
}

// A grid's spherical frame and how its points reach the chart's frame.
class CGridFrame {
public:
    CGridFrame(GridKind kind, const CChartFrame& frame) : m_kind(kind), m_frame(frame)
    {
        const double eps = frame.Observer().TrueObliquity();
        m_cosEps = std::cos(eps);
        m_sinEps = std::sin(eps);
    }

    // Grid longitude and latitude (radians) → unit vector in the chart frame.
    void ToFrame(double lon, double lat, double v[3]) const
    {
        switch (m_kind) {
        case GridKind::RaDec: m_frame.DateToFrame(lon, lat, v); return;
        case GridKind::AltAz: m_frame.HorizontalToFrame(lat, lon, v); return;
        case GridKind::Ecliptic: {
            // Ecliptic of date → true equator of date: a rotation by the true
            // obliquity about the equinox direction.
            double e[3];
            SphericalToVector(lon, lat, e);
            const double q[3] = {e[0], e[1] * m_cosEps - e[2] * m_sinEps, e[1] * m_sinEps + e[2] * m_cosEps};
            double ra = 0.0, dec = 0.0;
            VectorToSpherical(q, ra, dec);
            m_frame.DateToFrame(ra, dec, v);
            return;
        }
        case GridKind::Galactic: {
            double g[3];
            SphericalToVector(lon, lat, g);
            double q[3];
            for (int i = 0; i < 3; ++i)
                q[i] = kIcrsToGalactic[0][i] * g[0] + kIcrsToGalactic[1][i] * g[1] + kIcrsToGalactic[2][i] * g[2];
            double ra = 0.0, dec = 0.0;
            VectorToSpherical(q, ra, dec);
            m_frame.CatalogueToFrame(ra, dec, EpochPath::Rigid, v);
            return;
        }
        }
    }

    // The grid coordinates of a screen point.
    void FromScreen(double x, double y, double& lon, double& lat) const
    {
        switch (m_kind) {
        case GridKind::RaDec: m_frame.ScreenToDate(x, y, lon, lat); return;
        case GridKind::AltAz: m_frame.ScreenToHorizontal(x, y, lat, lon); return;
        case GridKind::Ecliptic: {
            double ra = 0.0, dec = 0.0, q[3];
            m_frame.ScreenToDate(x, y, ra, dec);
            SphericalToVector(ra, dec, q);
            const double e[3] = {q[0], q[1] * m_cosEps + q[2] * m_sinEps, -q[1] * m_sinEps + q[2] * m_cosEps};
            VectorToSpherical(e, lon, lat);
            return;
        }
        case GridKind::Galactic: {
            double ra = 0.0, dec = 0.0, q[3], g[3];
            m_frame.ScreenToCatalogue(x, y, ra, dec);
            SphericalToVector(ra, dec, q);
            for (int i = 0; i < 3; ++i)
                g[i] = kIcrsToGalactic[i][0] * q[0] + kIcrsToGalactic[i][1] * q[1] + kIcrsToGalactic[i][2] * q[2];
            VectorToSpherical(g, lon, lat);
            return;
        }
        }
    }

private:
    GridKind m_kind;
    const CChartFrame& m_frame;
    double m_cosEps = 1.0, m_sinEps = 0.0;
};

}  // namespace

GridSpacing AutomaticSpacing(GridKind kind, double fieldDeg, double centreLatRad)
{
    GridSpacing s;
    s.lonInTime = kind == GridKind::RaDec;
    s.latStepArcsec = NiceStep(kAngleSteps, fieldDeg * 3600.0 / 6.0);
    s.latStepArcsec = std::min(s.latStepArcsec, 108000);  // at most 30°
    // Longitude lines as far apart on the sky as the latitude lines, at the
    // chart centre; towards the poles the step grows (up to 6h or 90°).
    const double c = std::max(std::cos(centreLatRad), 0.1);
    const double lonArcsec = s.latStepArcsec / c;
    if (s.lonInTime)
        s.lonStepUnits = std::min(NiceStep(kTimeSteps, lonArcsec / 15.0), 21600);
    else
        s.lonStepUnits = std::min(NiceStep(kAngleSteps, lonArcsec), 324000);
    return s;
}

// Stored intervals: right ascension in minutes of time, every other interval
// in arc minutes. Nothing when they are unusable (zero, negative, or so
// small that the chart would be filled with lines).
std::optional<GridSpacing> StoredSpacing(const CGridData& data, double capRadiusRad)
{
    GridSpacing s;
    s.lonInTime = data.kind == GridKind::RaDec;
    if (data.interval1 <= 0 || data.interval2 <= 0) return std::nullopt;
    s.lonStepUnits = data.interval1 * 60;
    s.latStepArcsec = data.interval2 * 60;
    const double capDeg = capRadiusRad / kRadPerDeg;
    const double latLines = 2.0 * capDeg * 3600.0 / s.latStepArcsec;
    const double lonLines = 2.0 * kPi / s.LonStepRad();
    if (latLines > 400.0 || (lonLines > 400.0 && 2.0 * kPi * std::sin(capRadiusRad) / s.LonStepRad() > 400.0))
        return std::nullopt;
    return s;
}

QString AngleLabel(long long arcsec, bool signedValue, bool withDegreeSign)
{
    const bool negative = arcsec < 0;
    const long long a = negative ? -arcsec : arcsec;
    const long long d = a / 3600, m = (a / 60) % 60, s = a % 60;
    char buf[64];
    const char* sign = signedValue ? (negative ? "-" : (a == 0 ? "" : "+")) : "";
    if (s != 0)
        std::snprintf(buf, sizeof buf, "%s%lld\xC2\xB0%02lld'%02lld\"", sign, d, m, s);
    else if (m != 0)
        std::snprintf(buf, sizeof buf, "%s%lld\xC2\xB0%02lld'", sign, d, m);
    else if (withDegreeSign)
        std::snprintf(buf, sizeof buf, "%s%lld\xC2\xB0", sign, d);
    else
        std::snprintf(buf, sizeof buf, "%s%lld", sign, d);
    return QString::fromUtf8(buf);
}

// Hour labels: "%1dh" on whole hours, "%1dh%02dm" on minutes, seconds added
// only for grids finer than a minute of time.
QString HourLabel(long long seconds)
{
    seconds = ((seconds % 86400) + 86400) % 86400;
    const long long h = seconds / 3600, m = (seconds / 60) % 60, s = seconds % 60;
    char buf[48];
    if (s != 0)
        std::snprintf(buf, sizeof buf, "%1lldh%02lldm%02llds", h, m, s);
    else if (m != 0)
        std::snprintf(buf, sizeof buf, "%1lldh%02lldm", h, m);
    else
        std::snprintf(buf, sizeof buf, "%1lldh", h);
    return QString::fromLatin1(buf);
}

QString AzimuthLabel(long long arcsec)
{
    arcsec = ((arcsec % 1296000) + 1296000) % 1296000;
    switch (arcsec) {
    case 0: return QStringLiteral("N");
    case 324000: return QStringLiteral("E");
    case 648000: return QStringLiteral("S");
    case 972000: return QStringLiteral("W");
    default: return AngleLabel(arcsec, false);
    }
}

void StrokePolylines(QPainter& p, const TracedCurve& c)
{
    // Thin lines on a chart image go straight into its pixels (the pen is
    // the same for every polyline of the curve); anything else to QPainter.
    CThinLineStroker direct(p);
    if (direct.Usable()) {
        // A long curve (a dense overlay: a million points) is stroked on two
        // cores, each writing its own half of the image's rows. Every pixel
        // is written by one of them, in the same order and with the same
        // arithmetic as by one stroker alone, so the picture is the same.
        std::size_t points = 0;
        for (const auto& line : c.polylines) points += line.size();
        constexpr std::size_t kPointsForTwoCores = 20000;
        if (points >= kPointsForTwoCores && direct.ImageRows() >= 64 && std::thread::hardware_concurrency() >= 2) {
            CThinLineStroker lower = direct;
            const int mid = direct.ImageRows() / 2;
            direct.SetRowBand(0, mid);
            lower.SetRowBand(mid, direct.ImageRows());
            std::thread helper([&c, &lower] {
                for (const auto& line : c.polylines) lower.Stroke(line.data(), line.size());
            });
            for (const auto& line : c.polylines) direct.Stroke(line.data(), line.size());
            helper.join();
            return;
        }
        for (const auto& line : c.polylines) direct.Stroke(line.data(), line.size());
        return;
    }
    QPolygonF poly;
    for (const auto& line : c.polylines) {
        poly.resize(static_cast<qsizetype>(line.size()));
        for (std::size_t i = 0; i < line.size(); ++i) poly[static_cast<qsizetype>(i)] = QPointF(line[i].x, line[i].y);
        p.drawPolyline(poly);
    }
}

namespace {

// The lowest point of a traced line on the screen, for labelling lines that
// never cross the border (a parallel circling a pole in the field).
bool LowestPoint(const TracedCurve& c, ScreenPoint& out)
{
    bool found = false;
    for (const auto& line : c.polylines)
        for (const ScreenPoint& s : line)
            if (!found || s.y > out.y) {
                out = s;
                found = true;
            }
    return found;
}

}  // namespace

// One grid's lines traced for the chart, with their labels.
struct GridLines {
    struct Line {
        TracedCurve curve;
        QString label;
        bool meridian = false;     // a line of constant longitude
        bool fundamental = false;  // equator, horizon, ecliptic, galactic equator
    };
    std::vector<Line> lines;
};

namespace {

GridLines TraceGrid(const DrawContext& ctx, GridKind kind, const CGridData& data)
{
    ClearUpperVectorState();
    GridLines out;
    const CGridFrame grid(kind, ctx.frame);
    const double visibleRad = ctx.coords.VisibleRadiusRad();
    const double capRad = std::min(visibleRad + CCurveTracer::CapMarginRad(visibleRad), 170.0 * kRadPerDeg);
    const double maxStep = CCurveTracer::MaxStepRad(visibleRad);

    double lon0 = 0.0, lat0 = 0.0;
    grid.FromScreen(ctx.coords.ScreenCentreX(), ctx.coords.ScreenCentreY(), lon0, lat0);
    if (!std::isfinite(lon0) || !std::isfinite(lat0)) return out;

    std::optional<GridSpacing> spacing;
    if (data.method == 1) spacing = StoredSpacing(data, capRad);
    if (!spacing) spacing = AutomaticSpacing(kind, ctx.coords.FieldDeg(), lat0);
    const double latStep = spacing->LatStepRad(), lonStep = spacing->LonStepRad();

    // The part of the grid's sphere within the cap around the centre.
    const double latLow = std::max(lat0 - capRad, -kHalfPi), latHigh = std::min(lat0 + capRad, kHalfPi);
    bool fullCircle = latHigh >= kHalfPi || latLow <= -kHalfPi;
    double dLon = kPi;
    if (!fullCircle) {
        const double t = std::sin(capRad) / std::cos(lat0);
        if (t >= 1.0)
            fullCircle = true;
        else
            dLon = std::asin(t);
    }
    const CCurveTracer tracer(ctx.frame, ctx.Width(), ctx.Height(), capRad, 0.3, ctx.LineWidth() + 2.0);

    // Meridians (lines of constant longitude): between the parallels nearest
    // the poles, except the four at multiples of 90°, which reach the pole.
    const long long lonCount = std::llround(kTwoPi / lonStep);
    long long kFirst = 0, kLast = lonCount - 1;
    if (!fullCircle) {
        kFirst = static_cast<long long>(std::ceil((lon0 - dLon) / lonStep));
        kLast = static_cast<long long>(std::floor((lon0 + dLon) / lonStep));
    }
    const long long unitsPerQuarter = spacing->lonInTime ? 21600 : 324000;
    for (long long i = kFirst; i <= kLast && i - kFirst < 2000; ++i) {
        const double lon = i * lonStep;
        const long long units = i * spacing->lonStepUnits;
        const double gap = units % unitsPerQuarter == 0 ? 0.0 : latStep;
        const double a = std::max(latLow, -kHalfPi + gap), b = std::min(latHigh, kHalfPi - gap);
        if (!(b > a)) continue;
        const int n = std::max(4, static_cast<int>(std::ceil((b - a) / maxStep)));
        GridLines::Line line;
        line.curve = tracer.Trace([&](double t, double v[3]) { grid.ToFrame(lon, t, v); }, a, b, n);
        if (line.curve.Empty()) continue;
        line.meridian = true;
        if (kind == GridKind::RaDec)
            line.label = HourLabel(units);
        else if (kind == GridKind::AltAz)
            line.label = AzimuthLabel(units);
        else
            line.label = AngleLabel(((units % 1296000) + 1296000) % 1296000, false);
        out.lines.push_back(std::move(line));
    }

    // Parallels (lines of constant latitude) round the visible longitudes.
    const long long jFirst = static_cast<long long>(std::ceil(latLow / latStep));
    const long long jLast = static_cast<long long>(std::floor(latHigh / latStep));
    for (long long j = jFirst; j <= jLast && j - jFirst < 2000; ++j) {
        const double lat = j * latStep;
        if (std::fabs(lat) >= kHalfPi - 1e-9) continue;
        const double a = fullCircle ? 0.0 : lon0 - dLon, b = fullCircle ? kTwoPi : lon0 + dLon;
        const double along = (b - a) * std::max(std::cos(lat), 0.02);
        const int n = std::max(8, static_cast<int>(std::ceil(along / maxStep)));
        GridLines::Line line;
        line.curve = tracer.Trace([&](double t, double v[3]) { grid.ToFrame(t, lat, v); }, a, b, n);
        if (line.curve.Empty()) continue;
        line.fundamental = j == 0;
        line.label = AngleLabel(j * static_cast<long long>(spacing->latStepArcsec), true);
        out.lines.push_back(std::move(line));
    }
    return out;
}

// Which of a grid's lines a stroke draws: the horizon grid lays its lines
// under everything in its first pass and its heavier fundamental line (the
// horizon) over the equatorial grid in its second, so that no line is
// stroked twice.
enum class GridStroke { All, Regular, Fundamental };

void StrokeGrid(DrawContext& ctx, GridKind kind, const GridLines& grid, int state, GridStroke which = GridStroke::All)
{
    QPainter& p = ctx.painter;
    const int k = static_cast<int>(kind);
    const QColor colour = state == 2 ? ctx.palette.grid[k] : ctx.palette.gridFaint[k];
    QPen pen(colour, ctx.LineWidth());
    pen.setCapStyle(Qt::FlatCap);
    if (state == 1) pen.setDashPattern({2.0, 3.0});
    QPen fundamental = pen;
    fundamental.setWidthF(ctx.LineWidth(kind == GridKind::RaDec ? 1.5 : 2.0));
    p.setBrush(Qt::NoBrush);
    p.setRenderHint(QPainter::Antialiasing, true);
    // The horizon grid's 0° is left to the horizon line when that line is
    // the mathematical horizon itself (a flat profile): one line, one owner.
    const CGroundCover* ground = ctx.scene.Ground();
    const bool horizonDrawnOver = kind == GridKind::AltAz && ground != nullptr && ground->LineIsMathematicalHorizon();
    for (const GridLines::Line& line : grid.lines) {
        if ((which == GridStroke::Regular && line.fundamental) || (which == GridStroke::Fundamental && !line.fundamental))
            continue;
        if (line.fundamental && horizonDrawnOver) continue;
        p.setPen(line.fundamental ? fundamental : pen);
        StrokePolylines(p, line.curve);
    }
}

// Labels at the border: meridians at the bottom edge (else top, left,
// right), parallels at the left edge (else right, bottom, top); a line that
// never reaches the border is labelled at its lowest point.
void LabelGrid(DrawContext& ctx, const GridLines& grid)
{
    QPainter& p = ctx.painter;
    p.setFont(ctx.fonts.grid);
    const QFontMetricsF fm(ctx.fonts.grid, p.device());
    const double pad = ctx.Px(0.02, 2.0);
    const double W = ctx.Width(), H = ctx.Height();
    static constexpr BorderEdge kMeridianOrder[] = {BorderEdge::Bottom, BorderEdge::Top, BorderEdge::Left,
                                                   BorderEdge::Right};
    static constexpr BorderEdge kParallelOrder[] = {BorderEdge::Left, BorderEdge::Right, BorderEdge::Bottom,
                                                   BorderEdge::Top};
    std::vector<LabelRect> candidates;
    for (const GridLines::Line& l : grid.lines) {
        const double tw = LabelTextWidth(p, ctx.fonts.grid, l.label) + 2.0 * pad, th = fm.height();
        candidates.clear();
        for (BorderEdge edge : l.meridian ? kMeridianOrder : kParallelOrder) {
            for (const BorderCrossing& c : l.curve.crossings) {
                if (c.edge != edge) continue;
                double x0 = 0.0, y0 = 0.0;
                switch (edge) {
                case BorderEdge::Bottom: x0 = c.point.x - tw / 2; y0 = H - th - pad; break;
                case BorderEdge::Top: x0 = c.point.x - tw / 2; y0 = pad; break;
                case BorderEdge::Left: x0 = pad; y0 = c.point.y - th / 2; break;
                case BorderEdge::Right: x0 = W - tw - pad; y0 = c.point.y - th / 2; break;
                }
                x0 = std::clamp(x0, 0.0, std::max(0.0, W - tw));
                y0 = std::clamp(y0, 0.0, std::max(0.0, H - th));
                candidates.push_back({x0, y0, x0 + tw, y0 + th});
            }
        }
        ScreenPoint low;
        if (candidates.empty() && LowestPoint(l.curve, low))
            candidates.push_back({low.x - tw / 2, low.y - th / 2, low.x + tw / 2, low.y + th / 2});
        const int chosen = ctx.labels.Place(candidates);
        if (chosen < 0) {
            if (!candidates.empty()) ++ctx.stats.labelsDropped;
            continue;
        }
        const LabelRect& r = candidates[static_cast<std::size_t>(chosen)];
        DrawBoxedText(p, QRectF(r.x0, r.y0, r.x1 - r.x0, r.y1 - r.y0), l.label, ctx.palette.gridLabel,
                      ctx.palette.labelBackground);
        ++ctx.stats.labelsDrawn;
    }
}

enum class GridPass { LinesOnly, LinesAndLabels };

void DrawGrid(DrawContext& ctx, GridKind kind, const CGridData& data, int state, GridPass pass)
{
    if (state <= 0) return;
    GridLines lines = TraceGrid(ctx, kind, data);
    // The sky's grids stop where the ground hides them (the horizon grid's
    // lines are laid over the ground instead: DrawAltAzGridFirstPass).
    if (const CGroundCover* ground = ctx.scene.Ground())
        for (GridLines::Line& line : lines.lines) ground->Cut(line.curve);
    StrokeGrid(ctx, kind, lines, state);
    if (pass == GridPass::LinesAndLabels && data.labelVisible != 0) LabelGrid(ctx, lines);
}

const CGridData& GridDataOf(const CMapDoc& doc, GridKind kind)
{
    switch (kind) {
    case GridKind::RaDec: return doc.raDecGrid;
    case GridKind::AltAz: return doc.altAzGrid;
    case GridKind::Ecliptic: return doc.eclipticGrid;
    case GridKind::Galactic: return doc.galacticGrid;
    }
    return doc.raDecGrid;
}

}  // namespace

CGroundTest::CGroundTest(const CChartFrame& frame) : m_coords(frame.Coordinates())
{
    double z[3];
    frame.HorizontalToFrame(kHalfPi, 0.0, z);
    m_cn = frame.CosFromCentre(z);
    PlanePoint pz;
    if (1.0 + m_cn > 1e-9 && frame.ToPlane(z, pz)) {
        m_en = pz.x * (1.0 + m_cn) * 0.5;
        m_sn = pz.y * (1.0 + m_cn) * 0.5;
    }
}

CGroundTest::CGroundTest(const CChartFrame& frame, const CMapDoc& doc) : CGroundTest(frame)
{
    if (doc.horizon.useForEvents != 0) {
        m_frame = &frame;
        m_profile = &doc.horizon.altitudeDeg;
    }
}

bool CGroundTest::BelowHorizon(double xPx, double yPx) const
{
    if (Side(m_coords.ScreenToPlane(xPx, yPx)) < 0.0) return true;
    if (m_profile == nullptr) return false;
    double altRad = 0.0, azRad = 0.0;
    m_frame->ScreenToHorizontal(xPx, yPx, altRad, azRad);
    return altRad < HorizonAltitudeRad(*m_profile, azRad);
}

// The horizon grid is traced once, in the first pass, and its lines are
// drawn again with their labels in the second.
void DrawAltAzGridFirstPass(DrawContext& ctx, std::shared_ptr<GridLines>& traced)
{
    traced.reset();
    // The ground below the horizon goes under the horizon grid's lines, so
    // that their negative altitudes stay readable on it.
    if (const CGroundCover* ground = ctx.scene.Ground()) ground->LayBelowMathematicalHorizon(ctx);
    const int state = ctx.view.altAzGrid.state;
    if (state <= 0) return;
    traced = std::make_shared<GridLines>(TraceGrid(ctx, GridKind::AltAz, ctx.doc.altAzGrid));
    StrokeGrid(ctx, GridKind::AltAz, *traced, state, GridStroke::Regular);
}

void DrawAltAzGridSecondPass(DrawContext& ctx, std::shared_ptr<GridLines>& traced)
{
    const int state = ctx.view.altAzGrid.state;
    if (state <= 0) return;
    // Without a first pass (a layer drawn on its own) every line is drawn here.
    const GridStroke which = traced ? GridStroke::Fundamental : GridStroke::All;
    if (!traced) traced = std::make_shared<GridLines>(TraceGrid(ctx, GridKind::AltAz, ctx.doc.altAzGrid));
    StrokeGrid(ctx, GridKind::AltAz, *traced, state, which);
    if (ctx.doc.altAzGrid.labelVisible != 0) LabelGrid(ctx, *traced);
    traced.reset();
}

void DrawEquatorialGrid(DrawContext& ctx)
{
    DrawGrid(ctx, GridKind::RaDec, GridDataOf(ctx.doc, GridKind::RaDec), ctx.view.raDecGrid.state,
             GridPass::LinesAndLabels);
}

void DrawEclipticGrid(DrawContext& ctx)
{
    DrawGrid(ctx, GridKind::Ecliptic, GridDataOf(ctx.doc, GridKind::Ecliptic), ctx.view.eclipticGrid.state,
             GridPass::LinesAndLabels);
}

void DrawGalacticGrid(DrawContext& ctx)
{
    DrawGrid(ctx, GridKind::Galactic, GridDataOf(ctx.doc, GridKind::Galactic), ctx.view.galacticGrid.state,
             GridPass::LinesAndLabels);
}

}  // namespace orv
