// Lines stroked straight into a chart image: where the ink goes, how much of
// it (the same weight at every slope, like the vector outputs that printers
// and PDF files get), dashes, joins, the painter's shift, and the painters
// that must be left to QPainter.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include <cmath>
#include <limits>
#include <vector>

#include "map/rastertarget.h"

using namespace orv;

namespace {

QImage BlackImage(int w = 120, int h = 120)
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(QColor(0, 0, 0));
    return image;
}

// The green channel as ink: 0 (background) to 255 (the pen's colour).
int Ink(const QImage& image, int x, int y) { return qGreen(image.pixel(x, y)); }

double TotalInk(const QImage& image)
{
    double sum = 0.0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) sum += Ink(image, x, y);
    return sum;
}

// Strokes `points` with a pen of `widthPx`; returns whether the direct
// stroker took it.
bool Stroke(QImage& image, const std::vector<ScreenPoint>& points, double widthPx = 1.0,
            const QList<qreal>& dashes = {}, QPointF shift = {})
{
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.translate(shift);
    QPen pen(QColor(255, 255, 255), widthPx);
    pen.setCapStyle(Qt::FlatCap);
    if (!dashes.isEmpty()) pen.setDashPattern(dashes);
    p.setPen(pen);
    CThinLineStroker s(p);
    return s.Usable() && s.Stroke(points.data(), points.size());
}

}  // namespace

TEST(ThinLineStroker, LineAlongPixelCentresFillsOneRowAndALineBetweenRowsSharesIt)
{
    QImage image = BlackImage();
    ASSERT_TRUE(Stroke(image, {{10.5, 20.5}, {60.5, 20.5}}));
    for (int x = 11; x < 60; ++x) {
        EXPECT_EQ(Ink(image, x, 20), 255) << x;
        EXPECT_EQ(Ink(image, x, 19), 0) << x;
        EXPECT_EQ(Ink(image, x, 21), 0) << x;
    }
    // Columns whose centres lie in [10.5, 60.5): 10 … 59, nothing beyond.
    EXPECT_EQ(Ink(image, 10, 20), 255);
    EXPECT_EQ(Ink(image, 60, 20), 0);

    QImage between = BlackImage();
    ASSERT_TRUE(Stroke(between, {{10.5, 40.0}, {60.5, 40.0}}));
    for (int x = 11; x < 60; ++x) {
        EXPECT_NEAR(Ink(between, x, 39), 128, 1) << x;
        EXPECT_NEAR(Ink(between, x, 40), 128, 1) << x;
    }
}

// A band one pixel wide holds length × 1 pixel of ink at any slope (Wu's
// classic two-pixel split would hold only length × cos of the slope, so that
// diagonal lines look thinner than the same lines printed).
TEST(ThinLineStroker, InkIsTheBandsAreaAtEverySlope)
{
    const double lengthPx = 80.0;
    for (double angleDeg : {0.0, 15.0, 30.0, 45.0, 60.0, 75.0, 90.0, 135.0, 200.0}) {
        const double a = angleDeg * M_PI / 180.0;
        const ScreenPoint c{60.3, 60.7};
        const ScreenPoint from{c.x - 0.5 * lengthPx * std::cos(a), c.y - 0.5 * lengthPx * std::sin(a)};
        const ScreenPoint to{c.x + 0.5 * lengthPx * std::cos(a), c.y + 0.5 * lengthPx * std::sin(a)};
        for (double width : {1.0, 2.0}) {
            QImage image = BlackImage();
            ASSERT_TRUE(Stroke(image, {from, to}, width));
            // Columns are whole pixels along the major axis: up to one
            // column's worth more or less at the ends.
            const double expected = lengthPx * width * 255.0;
            const double endSlack = 2.0 * width * 255.0 / std::max(std::fabs(std::cos(a)), std::fabs(std::sin(a)));
            EXPECT_NEAR(TotalInk(image), expected, endSlack + 0.01 * expected) << angleDeg << "° width " << width;
        }
    }
}

// And within a few percent of what QPainter puts down for the same line
// (QPainter's own one-pixel lines are lighter on diagonals, so the
// comparison is along an axis, and for a two-pixel pen at any slope).
TEST(ThinLineStroker, AgreesWithQPainterOnTheInkOfALine)
{
    for (double angleDeg : {0.0, 30.0, 45.0}) {
        const double a = angleDeg * M_PI / 180.0;
        const ScreenPoint from{20.2, 30.6}, to{20.2 + 70.0 * std::cos(a), 30.6 + 70.0 * std::sin(a)};
        QImage ours = BlackImage(), qt = BlackImage();
        ASSERT_TRUE(Stroke(ours, {from, to}, 2.0));
        QPainter p(&qt);
        p.setRenderHint(QPainter::Antialiasing, true);
        QPen pen(QColor(255, 255, 255), 2.0);
        pen.setCapStyle(Qt::FlatCap);
        p.setPen(pen);
        p.drawLine(QPointF(from.x, from.y), QPointF(to.x, to.y));
        p.end();
        EXPECT_NEAR(TotalInk(ours) / TotalInk(qt), 1.0, 0.04) << angleDeg << "°";
    }
}

TEST(ThinLineStroker, DashesRunAlongTheLineAndRestartAtEachPolyline)
{
    QImage image = BlackImage();
    // Two pixels on, three off, from the polyline's first point.
    ASSERT_TRUE(Stroke(image, {{10.0, 20.5}, {60.0, 20.5}}, 1.0, {2.0, 3.0}));
    for (int x = 10; x < 60; ++x) EXPECT_EQ(Ink(image, x, 20), (x - 10) % 5 < 2 ? 255 : 0) << x;

    QImage twice = BlackImage();
    ASSERT_TRUE(Stroke(twice, {{10.0, 40.5}, {60.0, 40.5}}, 1.0, {2.0, 3.0}));
    ASSERT_TRUE(Stroke(twice, {{10.0, 50.5}, {60.0, 50.5}}, 1.0, {2.0, 3.0}));
    for (int x = 10; x < 60; ++x) EXPECT_EQ(Ink(twice, x, 40), Ink(twice, x, 50)) << x;
}

// The segments of a polyline meet without a darker dot at the joins: the
// same pixels as one segment along the same line.
TEST(ThinLineStroker, JoinsOfAPolylineAreNotInkedTwice)
{
    QImage whole = BlackImage(), pieces = BlackImage();
    ASSERT_TRUE(Stroke(whole, {{5.3, 10.2}, {105.3, 60.2}}));
    ASSERT_TRUE(Stroke(pieces, {{5.3, 10.2}, {25.3, 20.2}, {55.3, 35.2}, {56.1, 35.6}, {105.3, 60.2}}));
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 120; ++x) ASSERT_NEAR(Ink(whole, x, y), Ink(pieces, x, y), 1) << x << "," << y;
}

TEST(ThinLineStroker, FollowsThePaintersShift)
{
    QImage shifted = BlackImage(), plain = BlackImage();
    ASSERT_TRUE(Stroke(shifted, {{10.0, 20.5}, {50.0, 30.5}}, 1.0, {}, QPointF(7, -3)));
    ASSERT_TRUE(Stroke(plain, {{17.0, 17.5}, {57.0, 27.5}}));
    EXPECT_EQ(shifted, plain);
}

// Hostile coordinates draw nothing wrong and end at once: every segment is
// clipped to the image before it is walked.
TEST(ThinLineStroker, HugeAndNonFiniteCoordinatesAreClippedOrSkipped)
{
    const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    QImage image = BlackImage();
    ASSERT_TRUE(Stroke(image, {{-1e9, 50.5}, {1e9, 50.5}, {nan, 3.0}, {inf, -inf}, {30.5, 50.5}, {30.5, 1e12},
                               {-1e300, 1e300}, {1e300, -1e300}, {-1e308, 70.2}, {1e308, 70.2}}));
    for (int x = 0; x < 120; ++x) EXPECT_EQ(Ink(image, x, 50), 255) << x;
    // The vertical segment down from (30.5, 50.5) to the edge.
    for (int y = 51; y < 120; ++y) EXPECT_EQ(Ink(image, 30, y), 255) << y;
    // Ends of 1e300 pixels leave nothing of the line to draw exactly; what
    // is drawn stays inside the image (no write past it: the sanitizer
    // build would catch one).
}

// Rotated or clipped painters, wide pens, patterned brushes and painters
// without antialiasing are QPainter's: the stroker declines them.
TEST(ThinLineStroker, LeavesOtherPaintersToQPainter)
{
    QImage image = BlackImage();
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing, true);
        p.setPen(QPen(QColor(255, 255, 255), 1.0));
        EXPECT_TRUE(CThinLineStroker(p).Usable());
        p.rotate(10.0);
        EXPECT_FALSE(CThinLineStroker(p).Usable());
    }
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing, true);
        p.setPen(QPen(QColor(255, 255, 255), 1.0));
        p.setClipRect(QRect(0, 0, 50, 50));
        EXPECT_FALSE(CThinLineStroker(p).Usable());
    }
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing, true);
        p.setPen(QPen(QColor(255, 255, 255), 6.0));
        EXPECT_FALSE(CThinLineStroker(p).Usable());
        p.setPen(QPen(QBrush(Qt::white, Qt::Dense4Pattern), 1.0));
        EXPECT_FALSE(CThinLineStroker(p).Usable());
        p.setPen(QPen(QColor(255, 255, 255), 1.0));
        p.setRenderHint(QPainter::Antialiasing, false);
        EXPECT_FALSE(CThinLineStroker(p).Usable());
    }
    QImage grey(20, 20, QImage::Format_Grayscale8);
    QPainter p(&grey);
    p.setRenderHint(QPainter::Antialiasing, true);
    EXPECT_FALSE(CThinLineStroker(p).Usable());
}

// A translucent pen blends with what is under it, as QPainter's source-over.
TEST(ThinLineStroker, TranslucentPenBlendsSourceOver)
{
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(QColor(0, 0, 200));
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing, true);
        p.setPen(QPen(QColor(255, 255, 255, 128), 1.0));
        CThinLineStroker s(p);
        ASSERT_TRUE(s.Usable());
        const ScreenPoint line[] = {{5.0, 10.5}, {30.0, 10.5}};
        s.Stroke(line, 2);
    }
    const QRgb px = image.pixel(15, 10);
    EXPECT_NEAR(qRed(px), 128, 1);
    EXPECT_NEAR(qBlue(px), 200 + (255 - 200) * 128 / 255, 1);
}

// A pen thinner than a pixel (an overlay's quarter-point lines on a screen
// of 96 dpi are two thirds of a pixel) is taken here too, faded by its
// width as QPainter fades it: the same ink as QPainter's line within a few
// percent, solid and dashed.
TEST(ThinLineStroker, SubPixelPensFadeLikeQPainters)
{
    for (const QList<qreal>& dashes : {QList<qreal>{}, QList<qreal>{4.0, 2.0}}) {
        for (double width : {0.3, 0.667}) {
            const ScreenPoint from{20.2, 30.6}, to{90.2, 30.6};
            QImage ours = BlackImage(), qt = BlackImage();
            ASSERT_TRUE(Stroke(ours, {from, to}, width, dashes));
            QPainter p(&qt);
            p.setRenderHint(QPainter::Antialiasing, true);
            QPen pen(QColor(255, 255, 255), width);
            pen.setCapStyle(Qt::FlatCap);
            if (!dashes.isEmpty()) pen.setDashPattern(dashes);
            p.setPen(pen);
            p.drawLine(QPointF(from.x, from.y), QPointF(to.x, to.y));
            p.end();
            EXPECT_NEAR(TotalInk(ours) / TotalInk(qt), 1.0, 0.05) << width << " px, dashes " << dashes.size();
            // Along the line: 70 px × width of ink (two thirds of it dashed).
            const double expected = 70.0 * width * 255.0 * (dashes.isEmpty() ? 1.0 : 4.0 / 6.0);
            EXPECT_NEAR(TotalInk(ours), expected, 0.06 * expected) << width;
        }
    }
}

// Strokers given the two halves of the image's rows write together exactly
// what one stroker writes (the chart's long curves are stroked so, on two
// cores): a dense spiral of 40,000 points crossing the band edge at every
// slope, and a polyline running off the image, solid and dashed.
TEST(ThinLineStroker, TwoBandsOfRowsWriteWhatOneStrokerWrites)
{
    std::vector<ScreenPoint> spiral;
    for (int i = 0; i < 40000; ++i) {
        const double t = i * 0.01, r = 5.0 + 0.0035 * i;
        spiral.push_back({160.3 + r * std::cos(t), 120.7 + 0.8 * r * std::sin(t)});
    }
    const std::vector<ScreenPoint> across{{-50.0, 119.5}, {400.0, 121.2}, {170.0, -30.0}, {171.0, 500.0}};
    for (const QList<qreal>& dashes : {QList<qreal>{}, QList<qreal>{3.0, 2.0}}) {
        QImage whole(320, 240, QImage::Format_RGB32), banded(320, 240, QImage::Format_RGB32);
        whole.fill(QColor(10, 20, 30));
        banded.fill(QColor(10, 20, 30));
        const auto stroke = [&](QImage& image, int firstRow, int endRow) {
            QPainter p(&image);
            p.setRenderHint(QPainter::Antialiasing, true);
            QPen pen(QColor(250, 200, 90, 200), 1.3);
            if (!dashes.isEmpty()) pen.setDashPattern(dashes);
            p.setPen(pen);
            CThinLineStroker s(p);
            ASSERT_TRUE(s.Usable());
            s.SetRowBand(firstRow, endRow);
            s.Stroke(spiral.data(), spiral.size());
            s.Stroke(across.data(), across.size());
        };
        stroke(whole, 0, 240);
        stroke(banded, 0, 117);
        stroke(banded, 117, 240);
        EXPECT_EQ(whole, banded) << dashes.size();
    }
}
