#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "map/chartframe.h"
#include "map/coordinates.h"
#include "map/skyframes.h"
#include "observer/observer.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::kArcsecFromRad;
using orv::test::kSame;

namespace {

CObserverDoc MakeObserver()
{
    CObserverDoc obs;
    obs.SetSite("Test", 48.0 * kRadPerDeg, 11.0 * kRadPerDeg, 500.0);
    obs.SetJulianDate(2461000.25);  // 2025 November 19, 18h UT
    return obs;
}

CCoordinates MakeRaDecChart(const CObserverDoc& obs, double raDeg, double decDeg, double fieldDeg, int w = 1200,
                            int h = 800)
{
    CCoordinates c;
    c.SetCentringMode(Centring::RaDec);
    c.SetFieldDeg(fieldDeg);
    c.SetupSurface(w, h);
    c.SetCentreRaDec(obs, raDeg * kRadPerDeg, decDeg * kRadPerDeg);
    return c;
}

double PlaneRadius(const PlanePoint& p) { return std::hypot(p.x, p.y); }

}  // namespace

TEST(Projection, CentreGoesToTheScreenCentreAndNinetyDegreesToRadiusTwo)
{
    const CObserverDoc obs = MakeObserver();
    const CCoordinates c = MakeRaDecChart(obs, 83.8, -5.4, 10.0, 1201, 801);
    PlanePoint p;
    ASSERT_TRUE(c.ToPlane(c.FrameCentreLonRad(), c.FrameCentreLatRad(), p));
    const ScreenPoint s = c.PlaneToScreen(p);
    EXPECT_DOUBLE_EQ(s.x, 600.0);  // integer half of the width
    EXPECT_DOUBLE_EQ(s.y, 400.0);
    // A point 90° from the centre along the meridian.
    ASSERT_TRUE(c.ToPlane(c.FrameCentreLonRad(), c.FrameCentreLatRad() + kHalfPi, p));
    EXPECT_NEAR_UNIT(2.0, PlaneRadius(p), 1e-12, kSame);
    // The antipode cannot be projected.
    EXPECT_FALSE(c.ToPlane(c.FrameCentreLonRad() + kPi, -c.FrameCentreLatRad(), p));
}

TEST(Projection, FieldIsTheDistanceFromCentreToTopEdge)
{
    const CObserverDoc obs = MakeObserver();
    for (const double field : {0.2, 2.0, 16.0, 45.0, 90.0}) {
        const CCoordinates c = MakeRaDecChart(obs, 10.0, 20.0, field, 1000, 700);
        PlanePoint p;
        ASSERT_TRUE(c.ToPlane(c.FrameCentreLonRad(), c.FrameCentreLatRad() + field * kRadPerDeg, p));
        const ScreenPoint s = c.PlaneToScreen(p);
        EXPECT_NEAR_UNIT(0.0, s.y, 1e-7, kSame) << "field " << field;  // top edge
        EXPECT_NEAR_UNIT(500.0, s.x, 1e-7, kSame);
        // North is up and east (increasing right ascension) to the left.
        ASSERT_TRUE(c.ToPlane(c.FrameCentreLonRad() + 0.1 * field * kRadPerDeg, c.FrameCentreLatRad(), p));
        EXPECT_LT(c.PlaneToScreen(p).x, 500.0);
    }
}

TEST(Projection, PlaneSkyRoundTripsEverywhereInTheField)
{
    const CObserverDoc obs = MakeObserver();
    std::mt19937 rng(12345);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (const double decDeg : {-89.9, -45.0, 0.0, 30.0, 89.99}) {
        const CCoordinates c = MakeRaDecChart(obs, 359.9, decDeg, 60.0);
        for (int i = 0; i < 200; ++i) {
            const PlanePoint p{1.8 * u(rng), 1.8 * u(rng)};
            double lon = 0.0, lat = 0.0;
            c.PlaneToFrame(p, lon, lat);
            PlanePoint q;
            ASSERT_TRUE(c.ToPlane(lon, lat, q));
            EXPECT_NEAR_UNIT(p.x, q.x, 1e-12, kSame);
            EXPECT_NEAR_UNIT(p.y, q.y, 1e-12, kSame);
        }
    }
}

TEST(Projection, ScreenPlaneRoundTripWithRotationAndFlips)
{
    const CObserverDoc obs = MakeObserver();
    CCoordinates c = MakeRaDecChart(obs, 120.0, 10.0, 8.0);
    c.SetFlips(-1, 1);
    c.RotateByDegrees(37);
    const PlanePoint p{0.013, -0.021};
    const ScreenPoint s = c.PlaneToScreen(p);
    const PlanePoint q = c.ScreenToPlane(s.x, s.y);
    EXPECT_NEAR_UNIT(p.x, q.x, 1e-14, kSame);
    EXPECT_NEAR_UNIT(p.y, q.y, 1e-14, kSame);
}

TEST(Projection, HorizontalFlipMirrorsAboutTheScreenCentre)
{
    const CObserverDoc obs = MakeObserver();
    CCoordinates c = MakeRaDecChart(obs, 120.0, 10.0, 8.0);
    const PlanePoint p{0.03, 0.01};
    const ScreenPoint a = c.PlaneToScreen(p);
    c.SetFlips(-1, 1);
    const ScreenPoint b = c.PlaneToScreen(p);
    EXPECT_DOUBLE_EQ(b.x - c.ScreenCentreX(), -(a.x - c.ScreenCentreX()));
    EXPECT_DOUBLE_EQ(b.y, a.y);
}

TEST(Projection, WholeDegreeRotationWraps)
{
    CCoordinates c;
    c.RotateByDegrees(360);
    EXPECT_EQ(c.RotationWholeDeg(), 0);
    c.RotateByDegrees(-30);
    EXPECT_EQ(c.RotationWholeDeg(), 330);
    EXPECT_NEAR_UNIT(330.0 * kRadPerDeg, c.RotationRad(), 1e-12, kArcsecFromRad);
    c.RotateByDegrees(750);
    EXPECT_EQ(c.RotationWholeDeg(), 0);
}

TEST(Projection, PoleTestUsesTheFieldWithOnePerCentMargin)
{
    const CObserverDoc obs = MakeObserver();
    EXPECT_TRUE(MakeRaDecChart(obs, 0.0, 85.0, 10.0).PoleInView());  // 85 + 10.1 ≥ 90
    EXPECT_FALSE(MakeRaDecChart(obs, 0.0, 79.0, 10.0).PoleInView());
    EXPECT_TRUE(MakeRaDecChart(obs, 0.0, -80.5, 9.5).PoleInView());  // −80.5 − 9.595 ≤ −90
}

TEST(Projection, RegionsWrapAtZeroHoursAndOpenAtThePoles)
{
    const CObserverDoc obs = MakeObserver();
    const CCoordinates zero = MakeRaDecChart(obs, 0.5, 10.0, 4.0, 800, 800);
    const SkyRegion r = zero.StoredCentreRegion();
    EXPECT_TRUE(r.wraps);
    EXPECT_FALSE(r.wholeCircle);
    EXPECT_GT(r.lonLowRad, kPi);
    EXPECT_LT(r.lonHighRad, kPi);
    // Half-width asin(sin r′ / cos δ) with r′ the visible radius plus 5 %.
    const double rr = zero.VisibleRadiusRad() * 1.05;
    const double half = std::asin(std::sin(rr) / std::cos(10.0 * kRadPerDeg));
    EXPECT_NEAR_UNIT(half, r.lonHighRad - 0.5 * kRadPerDeg, 1e-9, kArcsecFromRad);
    EXPECT_NEAR_UNIT(10.0 * kRadPerDeg + rr, r.latHighRad, 1e-9, kArcsecFromRad);

    const SkyRegion polar = MakeRaDecChart(obs, 200.0, 86.0, 8.0).StoredCentreRegion();
    EXPECT_TRUE(polar.poleReached);
    EXPECT_TRUE(polar.wholeCircle);
    EXPECT_DOUBLE_EQ(polar.latHighRad, kHalfPi);
    // A radius beyond 90° covers every longitude even far from the poles.
    const SkyRegion wide = MakeRaDecChart(obs, 10.0, 0.0, 90.0).StoredCentreRegion();
    EXPECT_TRUE(wide.wholeCircle);
}

TEST(Projection, VisibleRadiusReachesTheCorners)
{
    const CObserverDoc obs = MakeObserver();
    const CCoordinates c = MakeRaDecChart(obs, 10.0, 0.0, 10.0, 1600, 900);
    double lon = 0.0, lat = 0.0;
    c.PlaneToFrame(c.ScreenToPlane(0.0, 0.0), lon, lat);
    const double corner = AngularDistance(c.FrameCentreLonRad(), c.FrameCentreLatRad(), lon, lat);
    EXPECT_NEAR_UNIT(corner, c.VisibleRadiusRad(), 1e-9, kArcsecFromRad);
    EXPECT_GT(c.VisibleRadiusRad(), 10.0 * kRadPerDeg);
}

// The fast per-redraw path must agree with the step-by-step one.
TEST(ChartFrame, AgreesWithStepByStepConversions)
{
    const CObserverDoc obs = MakeObserver();
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    for (const Centring mode : {Centring::RaDec, Centring::AltAz}) {
        CCoordinates c;
        c.SetCentringMode(mode);
        c.SetFieldDeg(30.0);
        c.SetupSurface(1000, 800);
        c.SetCentreRaDec(obs, 1.2, 0.5);
        if (mode == Centring::AltAz) c.SetCentreAltAz(obs, c.CentreAltRad(), c.CentreAzRad());
        const CChartFrame frame(obs, c);
        for (int i = 0; i < 300; ++i) {
            const double ra = kTwoPi * u(rng), dec = std::asin(2.0 * u(rng) - 1.0);
            double raD = ra, decD = dec;
            CatalogueToDate(obs, raD, decD, Place::Apparent);
            double lon = raD, lat = decD;
            if (mode == Centring::AltAz) {
                double alt = 0.0, az = 0.0;
                EquatorialToHorizontal(obs, raD, decD, alt, az);
                lon = mod2pi(-az);
                lat = alt;
            }
            double v[3];
            frame.CatalogueToFrame(ra, dec, EpochPath::Apparent, v);
            double fLon = 0.0, fLat = 0.0;
            VectorToSpherical(v, fLon, fLat);
            EXPECT_NEAR_UNIT(0.0, AngularDistance(lon, lat, fLon, fLat), 5e-12, kArcsecFromRad);
            PlanePoint p1, p2;
            if (c.ToPlane(lon, lat, p1) && frame.ToPlane(v, p2) && std::hypot(p1.x, p1.y) < 4.0) {
                EXPECT_NEAR_UNIT(p1.x, p2.x, 1e-9, kSame);
                EXPECT_NEAR_UNIT(p1.y, p2.y, 1e-9, kSame);
            }
        }
        // Inverse: the pixel of a star gives the star back.
        double v[3];
        frame.CatalogueToFrame(1.25, 0.52, EpochPath::Apparent, v);
        ScreenPoint s;
        ASSERT_TRUE(frame.ToScreen(v, s));
        double ra = 0.0, dec = 0.0;
        frame.ScreenToCatalogue(s.x, s.y, ra, dec);
        EXPECT_NEAR_UNIT(0.0, AngularDistance(1.25, 0.52, ra, dec), 1e-9, kArcsecFromRad);
    }
}

TEST(ChartFrame, HorizontalChartsShowEastOnTheLeftFacingSouth)
{
    const CObserverDoc obs = MakeObserver();
    CCoordinates c;
    c.SetCentringMode(Centring::AltAz);
    c.SetFieldDeg(45.0);
    c.SetupSurface(1000, 800);
    c.SetCentreAltAz(obs, 30.0 * kRadPerDeg, 180.0 * kRadPerDeg);
    const CChartFrame frame(obs, c);
    double east[3], west[3], high[3];
    frame.HorizontalToFrame(30.0 * kRadPerDeg, 150.0 * kRadPerDeg, east);
    frame.HorizontalToFrame(30.0 * kRadPerDeg, 210.0 * kRadPerDeg, west);
    frame.HorizontalToFrame(50.0 * kRadPerDeg, 180.0 * kRadPerDeg, high);
    ScreenPoint e, w, hi;
    ASSERT_TRUE(frame.ToScreen(east, e) && frame.ToScreen(west, w) && frame.ToScreen(high, hi));
    EXPECT_LT(e.x, 500.0);
    EXPECT_GT(w.x, 500.0);
    EXPECT_LT(hi.y, 400.0);
}

TEST(Coordinates, CentreSurvivesAChangeOfCentringMode)
{
    const CObserverDoc obs = MakeObserver();
    CCoordinates c = MakeRaDecChart(obs, 83.82, -5.39, 8.0);  // M42
    const double alt = c.CentreAltRad(), az = c.CentreAzRad();
    c.SetCentringMode(Centring::AltAz);
    c.SetCentreAltAz(obs, alt, az);
    EXPECT_NEAR_UNIT(0.0, AngularDistance(83.82 * kRadPerDeg, -5.39 * kRadPerDeg, c.CentreRaJ2000Rad(), c.CentreDecJ2000Rad()),
                     1e-9, kArcsecFromRad);
}
