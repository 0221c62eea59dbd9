// The rigorous space motion against ERFA (eraStarpm, the IAU SOFA
// implementation of the Stumpff/Kaplan space-motion model), and the choice
// between the linear and the rigorous path.
#include <erfa.h>
#include <gtest/gtest.h>

#include <cmath>

#include "catalog/stars/spacemotion.h"
#include "catalog/stars/tycho2catalogue.h"
#include "support/compare.h"
#include "util/angles.h"

using namespace orv;
using orv::test::kMasFromRad;

namespace {

// ERFA's place after `years`: eraStarpm takes dα/dt (radians per year of
// coordinate angle), so μα* is divided by cos δ.
void ErfaPlace(const SpaceMotionStar& s, double years, double& ra, double& dec)
{
    double pmr2, pmd2, px2, rv2;
    const double pmr = s.pmRaStarArcsecPerYr * kRadPerArcsec / std::cos(s.decRad);
    const double pmd = s.pmDecArcsecPerYr * kRadPerArcsec;
    const int status = eraStarpm(s.raRad, s.decRad, pmr, pmd, s.parallaxArcsec, s.radialVelocityKmS, 2451545.0, 0.0,
                                 2451545.0 + years * 365.25, 0.0, &ra, &dec, &pmr2, &pmd2, &px2, &rv2);
    ASSERT_EQ(status, 0);
}

// Hipparcos (van Leeuwen 2007) data of fast nearby stars, ICRS, J2000 place
// taken at the catalogue epoch here.
SpaceMotionStar Barnard()
{
    // HIP 87937: α 269.45207695°, δ +4.69339088°, μα* −798.58, μδ +10328.12 mas/yr,
    // ϖ 548.31 mas, vr −110.51 km/s.
    return {269.45207695 * kRadPerDeg, 4.69339088 * kRadPerDeg, -0.79858, 10.32812, 0.54831, -110.51};
}
SpaceMotionStar Proxima()
{
    // HIP 70890: α 217.42895219°, δ −62.67948975°, μα* −3775.75, μδ +765.54 mas/yr,
    // ϖ 771.64 mas, vr −22.4 km/s.
    return {217.42895219 * kRadPerDeg, -62.67948975 * kRadPerDeg, -3.77575, 0.76554, 0.77164, -22.4};
}
SpaceMotionStar Polaris()
{
    // HIP 11767: α 37.95456067°, δ +89.26410897°, μα* 44.48, μδ −11.85 mas/yr,
    // ϖ 7.54 mas, vr −16.42 km/s.
    return {37.95456067 * kRadPerDeg, 89.26410897 * kRadPerDeg, 0.04448, -0.01185, 0.00754, -16.42};
}

}  // namespace

// Over ±2000 years the two agree to 0.1 mas (ERFA's relativistic Doppler
// correction of vr, of order v²/c², is the only modelled difference).
TEST(SpaceMotion, AgreesWithErfaStarpmForFastNearbyStars)
{
    for (const SpaceMotionStar& star : {Barnard(), Proxima(), Polaris()}) {
        for (const double years : {-2000.0, -500.0, -100.0, 25.0, 100.0, 1000.0, 2000.0}) {
            double ra = 0.0, dec = 0.0, raErfa = 0.0, decErfa = 0.0;
            ASSERT_TRUE(PropagateSpaceMotion(star, years, ra, dec));
            ErfaPlace(star, years, raErfa, decErfa);
            SCOPED_TRACE(years);
            EXPECT_ANGLE_NEAR(raErfa, ra, 0.1 * kRadPerMas / std::cos(decErfa), kMasFromRad);
            EXPECT_NEAR_UNIT(decErfa, dec, 0.1 * kRadPerMas, kMasFromRad);
        }
    }
}

// Barnard's star: as it approaches, its proper motion grows by the secular
// (perspective) acceleration dμ/dt = −2 μ vr ϖ / A = 0.00128″/yr²
// (van de Kamp 1986, Dark Companions of Stars, ch. 4), so in 2000 years its
// declination runs ahead of the linear 10.328″/yr × 2000 yr by about
// ½ × 0.00128 × 2000² ≈ 2600″.
TEST(SpaceMotion, BarnardsStarAcceleratesAsItApproaches)
{
    const SpaceMotionStar b = Barnard();
    double ra = 0.0, dec = 0.0;
    ASSERT_TRUE(PropagateSpaceMotion(b, 2000.0, ra, dec));
    const double linear = b.decRad + b.pmDecArcsecPerYr * 2000.0 * kRadPerArcsec;
    EXPECT_NEAR((dec - linear) / kRadPerArcsec, 2600.0, 400.0);
}

TEST(SpaceMotion, NoParallaxMovesAlongTheTangentPlaneAndBadInputIsRefused)
{
    // At infinite distance a pure motion in declination of 1″/yr from the
    // equator reaches tan δ = μ t.
    SpaceMotionStar s{1.0, 0.0, 0.0, 1.0, 0.0, 50.0};
    double ra = 0.0, dec = 0.0;
    ASSERT_TRUE(PropagateSpaceMotion(s, 1.0e5, ra, dec));
    EXPECT_NEAR_UNIT(std::atan(1.0e5 * kRadPerArcsec), dec, 1e-12, kMasFromRad);
    EXPECT_NEAR_UNIT(1.0, ra, 1e-12, kMasFromRad);

    double keep = 7.0;
    s.parallaxArcsec = std::nan("");
    EXPECT_FALSE(PropagateSpaceMotion(s, 10.0, keep, keep));
    s.parallaxArcsec = 0.1;
    EXPECT_FALSE(PropagateSpaceMotion(s, INFINITY, keep, keep));
    EXPECT_EQ(keep, 7.0);
}

// The catalogue's rule: linear while |δ| ≤ 85° (306,000,000 mas) and both
// motions stay below 10″; otherwise the space motion, with a parallax stored
// below −1000 mas used as zero.
TEST(StarPosition, LinearPathUpTo85DegreesAndSmallMotions)
{
    StarRecord s;
    s.raMas = 100000000;
    s.decMas = 306000000;  // exactly 85°
    s.pmRaMasPerYr = 1000.0f;
    s.pmDecMasPerYr = -500.0f;
    s.parallaxMas = 50.0f;
    s.radVelDeciKmS = 1000;  // 100 km/s: ignored on the linear path
    double ra = 0.0, dec = 0.0;
    StarPositionAt(s, 9.0, ra, dec);
    EXPECT_DOUBLE_EQ(ra, (100000000.0 + 9000.0) * kRadPerMas);
    EXPECT_DOUBLE_EQ(dec, (306000000.0 - 4500.0) * kRadPerMas);

    // One milliarcsecond further north: the rigorous path.
    s.decMas = 306000001;
    StarPositionAt(s, 9.0, ra, dec);
    SpaceMotionStar m{s.raMas * kRadPerMas, s.decMas * kRadPerMas, 1.0 * std::cos(s.decMas * kRadPerMas), -0.5,
                      0.050, 100.0};
    double raR = 0.0, decR = 0.0;
    ASSERT_TRUE(PropagateSpaceMotion(m, 9.0, raR, decR));
    EXPECT_DOUBLE_EQ(ra, raR);
    EXPECT_DOUBLE_EQ(dec, decR);
}

TEST(StarPosition, LargeMotionTakesTheRigorousPathWithUnknownParallaxAsZero)
{
    StarRecord s;
    s.raMas = 20000000;
    s.decMas = 10000000;
    s.pmRaMasPerYr = 100.0f;
    s.pmDecMasPerYr = 200.0f;
    s.parallaxMas = -9999.0f;  // unknown
    s.radVelDeciKmS = 0;
    double ra = 0.0, dec = 0.0;
    // 200 mas/yr × 49.99 yr = 9,998 mas: still linear.
    StarPositionAt(s, 49.99, ra, dec);
    EXPECT_DOUBLE_EQ(dec, (10000000.0 + 200.0 * 49.99) * kRadPerMas);
    // × 50 yr = 10,000 mas: rigorous, parallax 0.
    StarPositionAt(s, 50.0, ra, dec);
    const double decRad = s.decMas * kRadPerMas;
    SpaceMotionStar m{s.raMas * kRadPerMas, decRad, 0.1 * std::cos(decRad), 0.2, 0.0, 0.0};
    double raR = 0.0, decR = 0.0;
    ASSERT_TRUE(PropagateSpaceMotion(m, 50.0, raR, decR));
    EXPECT_DOUBLE_EQ(ra, raR);
    EXPECT_DOUBLE_EQ(dec, decR);
    // The two paths meet: at this size the difference is far below 1 mas.
    EXPECT_NEAR_UNIT((10000000.0 + 10000.0) * kRadPerMas, dec, 0.01 * kRadPerMas, kMasFromRad);
}

TEST(StarPosition, DistanceInLightYears)
{
    EXPECT_EQ(DistanceLightYears(379.21f), 9);     // Sirius: 3261.6 / 379.21 = 8.60 → 9
    EXPECT_EQ(DistanceLightYears(130.23f), 25);    // Vega: 25.04
    EXPECT_EQ(DistanceLightYears(0.0f), 0);
    EXPECT_EQ(DistanceLightYears(-2.5f), 0);       // a negative measured parallax
    EXPECT_EQ(DistanceLightYears(-9999.0f), 0);    // unknown
}
