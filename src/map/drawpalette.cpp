// The chart's colour schemes and fonts.
//
// Normal: a dark sky, grids in muted colours, stars coloured by B−V.
// Red night vision: every colour becomes a shade of red on black, so that a
// screen at the telescope keeps the observer's dark adaptation (rod cells are
// nearly blind to deep red).
// Black on white: black ink on white paper, as star atlases are printed;
// discs get a thin white ring so that they stand out from the lines under
// them. Printers always get paper-white backgrounds; printing in monochrome
// turns every colour into black or grey.

#include "map/drawcontext.h"

#include <QFontMetricsF>
#include <QPaintDevice>
#include <QStaticText>

#include <unordered_map>

namespace orv {

namespace {

QColor RedOf(const QColor& c)
{
    // Perceived brightness (Rec. 601 luma) carried into the red channel.
    const int y = (299 * c.red() + 587 * c.green() + 114 * c.blue()) / 1000;
    return QColor(std::max(y, 40), 0, 0, c.alpha());
}

ChartPalette NormalPalette()
{
    ChartPalette p;
    p.background = QColor(0, 0, 16);
    p.ground = QColor(22, 32, 16);
    p.horizonLine = QColor(120, 150, 90);
    p.grid[0] = QColor(60, 90, 150);   // equatorial
    p.grid[1] = QColor(60, 130, 70);   // horizon
    p.grid[2] = QColor(150, 130, 50);  // ecliptic
    p.grid[3] = QColor(140, 70, 140);  // galactic
    for (int i = 0; i < 4; ++i) p.gridFaint[i] = p.grid[i].darker(170);
    p.gridLabel = QColor(150, 170, 210);
    p.starPlain = QColor(255, 255, 255);
    p.starHalo = p.background;
    p.haloDiscs = false;
    p.starColours = true;
    p.starLabel = QColor(200, 200, 200);
    p.greekLabel = QColor(170, 200, 255);
    p.starMark = QColor(170, 170, 185);
    p.pmLine = QColor(200, 120, 120);
    p.scaleLine = QColor(210, 210, 210);
    p.compass = QColor(210, 210, 160);
    p.labelBackground = p.background;
    p.satellitePath = QColor(255, 200, 70);
    p.satelliteText = QColor(255, 228, 150);
    p.conFigure = QColor(70, 110, 120);
    p.conBoundary = QColor(110, 80, 60);
    p.conName = QColor(110, 160, 170);
    p.deepSkyGalaxy = QColor(230, 120, 120);
    p.deepSkyCluster = QColor(230, 210, 110);
    p.deepSkyNebula = QColor(120, 210, 140);
    p.deepSkyDark = QColor(120, 120, 140);
    p.deepSkyLabel = QColor(190, 190, 170);
    p.planetLit = QColor(255, 236, 180);
    p.planetDark = QColor(60, 60, 72);
    p.planetLabel = QColor(255, 214, 120);
    // Comets in the pale green-blue of their gas comae, asteroids a warm
    // grey: both told apart from the planets' yellow at a glance.
    p.cometHead = QColor(205, 245, 235);
    p.cometTail = QColor(175, 225, 220);
    p.asteroid = QColor(225, 205, 175);
    p.minorLabel = QColor(185, 215, 205);
    return p;
}

ChartPalette BlackOnWhitePalette()
{
    ChartPalette p;
    p.background = QColor(255, 255, 255);
    p.ground = QColor(225, 225, 225);
    p.horizonLine = QColor(90, 90, 90);
    p.grid[0] = QColor(120, 120, 120);
    p.grid[1] = QColor(110, 110, 110);
    p.grid[2] = QColor(100, 100, 100);
    p.grid[3] = QColor(130, 130, 130);
    for (int i = 0; i < 4; ++i) p.gridFaint[i] = QColor(185, 185, 185);
    p.gridLabel = QColor(60, 60, 60);
    p.starPlain = QColor(0, 0, 0);
    p.starHalo = QColor(255, 255, 255);
    p.haloDiscs = true;
    p.starColours = false;
    p.starLabel = QColor(0, 0, 0);
    p.greekLabel = QColor(0, 0, 0);
    p.starMark = QColor(0, 0, 0);
    p.pmLine = QColor(80, 80, 80);
    p.scaleLine = QColor(0, 0, 0);
    p.compass = QColor(0, 0, 0);
    p.labelBackground = p.background;
    p.satellitePath = QColor(0, 0, 0);
    p.satelliteText = QColor(0, 0, 0);
    p.conFigure = QColor(110, 110, 110);
    p.conBoundary = QColor(150, 150, 150);
    p.conName = QColor(60, 60, 60);
    p.deepSkyGalaxy = QColor(0, 0, 0);
    p.deepSkyCluster = QColor(0, 0, 0);
    p.deepSkyNebula = QColor(0, 0, 0);
    p.deepSkyDark = QColor(110, 110, 110);
    p.deepSkyLabel = QColor(0, 0, 0);
    p.planetLit = QColor(0, 0, 0);
    p.planetDark = QColor(200, 200, 200);
    p.planetLabel = QColor(0, 0, 0);
    p.cometHead = QColor(0, 0, 0);
    p.cometTail = QColor(0, 0, 0);  // grey on paper as it fades
    p.asteroid = QColor(0, 0, 0);
    p.minorLabel = QColor(0, 0, 0);
    return p;
}

ChartPalette RedPalette()
{
    ChartPalette p = NormalPalette();
    p.background = QColor(0, 0, 0);
    p.ground = QColor(40, 0, 0);
    p.horizonLine = QColor(150, 0, 0);
    for (int i = 0; i < 4; ++i) {
        p.grid[i] = QColor(110, 0, 0);
        p.gridFaint[i] = QColor(70, 0, 0);
    }
    p.gridLabel = QColor(170, 0, 0);
    p.starPlain = QColor(255, 0, 0);
    p.starHalo = p.background;
    p.starColours = true;  // by brightness, through StarColour
    p.redOnly = true;
    p.starLabel = QColor(190, 0, 0);
    p.greekLabel = QColor(210, 0, 0);
    p.starMark = QColor(200, 0, 0);
    p.pmLine = QColor(140, 0, 0);
    p.scaleLine = QColor(190, 0, 0);
    p.compass = QColor(190, 0, 0);
    p.labelBackground = p.background;
    p.satellitePath = QColor(220, 0, 0);
    p.satelliteText = QColor(190, 0, 0);
    p.conFigure = QColor(100, 0, 0);
    p.conBoundary = QColor(80, 0, 0);
    p.conName = QColor(150, 0, 0);
    p.deepSkyGalaxy = QColor(200, 0, 0);
    p.deepSkyCluster = QColor(200, 0, 0);
    p.deepSkyNebula = QColor(170, 0, 0);
    p.deepSkyDark = QColor(100, 0, 0);
    p.deepSkyLabel = QColor(180, 0, 0);
    p.planetLit = QColor(255, 0, 0);
    p.planetDark = QColor(60, 0, 0);
    p.planetLabel = QColor(200, 0, 0);
    p.cometHead = QColor(255, 0, 0);
    p.cometTail = QColor(230, 0, 0);
    p.asteroid = QColor(235, 0, 0);
    p.minorLabel = QColor(190, 0, 0);
    return p;
}

}  // namespace

QColor ChartPalette::StarColour(const QColor& c) const { return redOnly ? QColor(255, 0, 0) : c; }

ChartPalette MakePalette(ColourScheme scheme, SurfaceKind kind, bool monochrome)
{
    ChartPalette p;
    switch (scheme) {
    case ColourScheme::Normal: p = NormalPalette(); break;
    case ColourScheme::RedNightVision: p = RedPalette(); break;
    case ColourScheme::BlackOnWhite: p = BlackOnWhitePalette(); break;
    }
    if (kind == SurfaceKind::Printer && scheme != ColourScheme::BlackOnWhite) {
        // Paper is white whatever the screen shows: print the atlas form, with
        // the grids in their colours unless printing in monochrome.
        ChartPalette ink = BlackOnWhitePalette();
        if (!monochrome && scheme == ColourScheme::Normal) {
            for (int i = 0; i < 4; ++i) {
                ink.grid[i] = p.grid[i];
                ink.gridFaint[i] = p.grid[i].lighter(160);
            }
        }
        p = ink;
    }
    if (monochrome) {
        p.starColours = false;
        auto grey = [](QColor& c) {
            const int y = (299 * c.red() + 587 * c.green() + 114 * c.blue()) / 1000;
            c = QColor(y, y, y, c.alpha());
        };
        for (QColor* c : {&p.background, &p.ground, &p.horizonLine, &p.grid[0], &p.grid[1], &p.grid[2], &p.grid[3],
                          &p.gridFaint[0], &p.gridFaint[1], &p.gridFaint[2], &p.gridFaint[3], &p.gridLabel,
                          &p.starPlain, &p.starHalo, &p.starLabel, &p.greekLabel, &p.starMark, &p.pmLine,
                          &p.scaleLine, &p.compass, &p.labelBackground, &p.satellitePath, &p.satelliteText,
                          &p.conFigure, &p.conBoundary, &p.conName, &p.deepSkyGalaxy, &p.deepSkyCluster,
                          &p.deepSkyNebula, &p.deepSkyDark, &p.deepSkyLabel, &p.planetLit, &p.planetDark,
                          &p.planetLabel, &p.cometHead, &p.cometTail, &p.asteroid, &p.minorLabel})
            grey(*c);
    }
    if (p.redOnly) {
        for (QColor* c : {&p.horizonLine, &p.gridLabel, &p.starLabel, &p.greekLabel, &p.starMark, &p.pmLine,
                          &p.scaleLine, &p.compass})
            *c = RedOf(*c);
    }
    return p;
}

QColor BackgroundColour(ColourScheme scheme) { return MakePalette(scheme, SurfaceKind::RasterDisplay, false).background; }

ChartFonts MakeFonts(double dpiY)
{
    auto sized = [dpiY](const char* family, double points, int weight = QFont::Normal) {
        QFont f(QString::fromLatin1(family));
        f.setStyleHint(QFont::SansSerif);
        f.setPixelSize(std::max(4, static_cast<int>(std::lround(points * dpiY / 72.0))));
        f.setWeight(static_cast<QFont::Weight>(weight));
        return f;
    };
    ChartFonts fonts;
    fonts.label = sized("DejaVu Sans", 7.0);
    // DejaVu Sans carries the whole Greek block; the Symbol font's Latin
    // letters are mapped to real Greek letters (GreekLetterCodePoint).
    fonts.greek = sized("DejaVu Sans", 8.5);
    fonts.superscript = sized("DejaVu Sans", 5.5);
    fonts.grid = sized("DejaVu Sans", 7.0);
    fonts.mark = sized("DejaVu Sans", 7.5, QFont::Bold);
    return fonts;
}

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
namespace {
__attribute__((target("avx"))) void ZeroUpper() { __builtin_ia32_vzeroupper(); }
const bool g_hasAvx = __builtin_cpu_supports("avx");
}  // namespace
void ClearUpperVectorState()
{
    if (g_hasAvx) ZeroUpper();
}
#else
void ClearUpperVectorState() {}
#endif

namespace {

struct ShapedText {
    QStaticText text;
    double widthPx = 0.0;
};

bool ImageSurface(const QPainter& p) { return p.device() != nullptr && p.device()->devType() == QInternal::Image; }

// The shaped text of `text` in `font` at the device's resolution, or nullptr
// when the surface shapes its texts itself.
const ShapedText* Shaped(QPainter& p, const QFont& font, const QString& text)
{
    if (!ImageSurface(p) || text.isEmpty()) return nullptr;
    thread_local std::unordered_map<QString, ShapedText> cache;
    const QString key = font.key() + QChar(0x1f) + QString::number(p.device()->logicalDpiY()) + QChar(0x1f) + text;
    auto it = cache.find(key);
    if (it == cache.end()) {
        // A chart has a few hundred distinct labels; a bound keeps a long
        // session of changing charts from growing it without end.
        if (cache.size() >= 4096) cache.clear();
        ShapedText shaped;
        shaped.text.setText(text);
        shaped.text.setTextFormat(Qt::PlainText);
        shaped.text.setPerformanceHint(QStaticText::AggressiveCaching);
        shaped.text.prepare(QTransform(), font);
        shaped.widthPx = QFontMetricsF(font, p.device()).horizontalAdvance(text);
        it = cache.emplace(key, std::move(shaped)).first;
    }
    return &it->second;
}

}  // namespace

double LabelTextWidth(QPainter& p, const QFont& font, const QString& text)
{
    if (const ShapedText* s = Shaped(p, font, text)) return s->widthPx;
    return QFontMetricsF(font, p.device()).horizontalAdvance(text);
}

void DrawCentredText(QPainter& p, const QRectF& box, const QString& text)
{
    const ShapedText* s = Shaped(p, p.font(), text);
    if (s == nullptr || p.worldTransform().type() > QTransform::TxTranslate) {
        p.drawText(box, Qt::AlignCenter, text);
        return;
    }
    const QSizeF size = s->text.size();
    p.drawStaticText(QPointF(box.center().x() - 0.5 * s->widthPx, box.center().y() - 0.5 * size.height()), s->text);
}

void DrawBoxedText(QPainter& p, const QRectF& box, const QString& text, const QColor& textColour,
                   const QColor& background)
{
    p.fillRect(box, background);
    p.setPen(textColour);
    DrawCentredText(p, box, text);
}

}  // namespace orv
