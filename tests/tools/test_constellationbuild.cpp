// The constellation part of the data builder: each source's line parser on
// lines copied from the sources, the recovery of Delporte's B1875.0 vertices
// from the J2000 boundary points, and the files it writes read back by the
// program's decoders.
#include <gtest/gtest.h>

#include <cmath>

#include "catalog/constellations/constellationfiles.h"
#include "constellationbuild.h"

namespace db = orv::databuild;

namespace {

// Constellation numbers in the alphabetical order of the Latin names.
constexpr int kAqr = 3, kAql = 4, kOri = 59, kSer = 75, kSex = 76, kUMa = 82;

TEST(ConstellationSources, LinesOfEachSource)
{
    std::string why;
    // stellarium-data skycultures/western/constellationship.fab
    db::ConstellationFigure fig;
    ASSERT_TRUE(db::ParseFigureLine("Sex 1  51437 49641", fig, why)) << why;
    EXPECT_EQ(fig.constellation, kSex);
    ASSERT_EQ(fig.lines.size(), 1u);
    EXPECT_EQ(fig.lines[0].hipA, 51437u);
    EXPECT_EQ(fig.lines[0].hipB, 49641u);
    EXPECT_FALSE(db::ParseFigureLine("Sex 2  51437 49641", fig, why));  // two lines announced, one given
    EXPECT_FALSE(db::ParseFigureLine("Xyz 1  51437 49641", fig, why));

    // constellation_names.eng.fab
    db::ConstellationNames names;
    ASSERT_TRUE(db::ParseNameLine("Aql\t\"Aquila\"\t_(\"Aquila\")", names, why)) << why;
    EXPECT_EQ(names.constellation, kAql);
    EXPECT_EQ(names.name, "Aquila");
    EXPECT_EQ(names.abbreviation, "Aql");

    // constellations_spans.dat (Roman's table)
    db::RomanStrip strip;
    ASSERT_TRUE(db::ParseRomanStrip("20:32:12 20:36:00 60:55 Cep", strip, why)) << why;
    EXPECT_EQ(strip.raLowSecTime, 20 * 3600 + 32 * 60 + 12);
    EXPECT_EQ(strip.raHighSecTime, 20 * 3600 + 36 * 60);
    EXPECT_EQ(strip.decLowArcmin, 60 * 60 + 55);
    ASSERT_TRUE(db::ParseRomanStrip(" 0:00:00 24:00:00 -90:00 Oct", strip, why)) << why;
    EXPECT_EQ(strip.decLowArcmin, -5400);
    EXPECT_FALSE(db::ParseRomanStrip("20:36:00 20:32:12 60:55 Cep", strip, why));  // empty range

    // kstars-data cnames.dat, Western section; Serpens' parts are Serpens.
    db::NamePosition place;
    ASSERT_TRUE(db::ParseNamePosition("054000+030000Ori ORION", place, why)) << why;
    EXPECT_EQ(place.constellation, kOri);
    EXPECT_DOUBLE_EQ(place.raJ2000Deg, 85.0);
    EXPECT_DOUBLE_EQ(place.decJ2000Deg, 3.0);
    ASSERT_TRUE(db::ParseNamePosition("180000-053000SCd SERPENS CAUDA", place, why)) << why;
    EXPECT_EQ(place.constellation, kSer);
    EXPECT_DOUBLE_EQ(place.decJ2000Deg, -5.5);
    why.clear();
    EXPECT_FALSE(db::ParseNamePosition("232514+510902    CLIMBING SERPENT", place, why));
    EXPECT_TRUE(why.empty());  // another culture's figure: skipped, not refused
}

// stellarium-data data/constellation_boundaries.dat, its first segment: the
// Aquila–Aquarius meridian, from +2° to 0°. Roman's strips (the same
// boundaries, from another source) put the edge between Aquila and Aquarius
// at 20h32m00s of B1875.0 ("20:00:00 20:32:00 -9:00 Aql",
// "20:32:00 21:20:00 -15:00 Aqr").
TEST(DelporteEdges, MeridianRecoveredOnWholeSecondsAndArcminutes)
{
    std::vector<db::BoundarySegment> segs;
    std::string why;
    ASSERT_TRUE(db::ParseBoundarySegments("3 20.6386585 2.4360874 20.6392918 1.4361323 20.6399231 0.4361772 2 AQL AQR\n",
                                          segs, why))
        << why;
    ASSERT_EQ(segs.size(), 1u);
    EXPECT_EQ(segs[0].left, kAql);
    EXPECT_EQ(segs[0].right, kAqr);
    std::vector<db::BoundaryEdge> edges;
    ASSERT_TRUE(db::RecoverDelporteEdges(segs, edges, why)) << why;
    ASSERT_EQ(edges.size(), 1u);
    EXPECT_EQ(edges[0].ra1SecTime, 20 * 3600 + 32 * 60);
    EXPECT_EQ(edges[0].ra2SecTime, 20 * 3600 + 32 * 60);
    EXPECT_EQ(edges[0].dec1Arcsec, 2 * 3600);
    EXPECT_EQ(edges[0].dec2Arcsec, 0);
}

// A point precessed from J2000 to B1875.0 and back returns within 1 mas; and
// the precession over 125 years is about 1.75° in right ascension near the
// equinox (50.3″ a year, Meeus ch. 21).
TEST(DelporteEdges, PrecessionRoundTripAndRate)
{
    double ra = 0.0, dec = 0.0;
    db::PrecessIau1976(ra, dec, 2451545.0, db::kJdB1875);
    EXPECT_NEAR(ra, 360.0 - 125 * 46.1 / 3600.0, 0.02);  // m = 46.1″ a year in α at the equinox
    db::PrecessIau1976(ra, dec, db::kJdB1875, 2451545.0);
    EXPECT_NEAR(std::fmod(ra + 180.0, 360.0) - 180.0, 0.0, 1e-3 / 3600.0);
    EXPECT_NEAR(dec, 0.0, 1e-3 / 3600.0);
}

TEST(DelporteEdges, PointOffTheGridIsRefused)
{
    std::vector<db::BoundarySegment> segs;
    std::string why;
    ASSERT_TRUE(db::ParseBoundarySegments("2 20.6386585 2.4360874 20.6392918 1.2 2 AQL AQR", segs, why));
    std::vector<db::BoundaryEdge> edges;
    EXPECT_FALSE(db::RecoverDelporteEdges(segs, edges, why));
    EXPECT_NE(why.find("line 1"), std::string::npos) << why;
}

TEST(ConstellationFiles, WrittenFilesReadBack)
{
    db::ConstellationSources s;
    std::string why;
    db::ConstellationFigure f;
    ASSERT_TRUE(db::ParseFigureLine("UMa 2  67301 65378 65378 62956", f, why));
    s.figures.push_back(f);
    ASSERT_TRUE(db::ParseFigureLine("Sex 1  51437 49641", f, why));
    s.figures.push_back(f);
    s.namePositions.push_back({kOri, 85.0, 3.0});
    s.names.push_back({kUMa, "UMa", "Ursa Major", "Ursae Majoris"});
    s.strips.push_back({kUMa, 8 * 3600, 14 * 3600 + 1800, 86 * 60 + 30});
    ASSERT_TRUE(db::ParseBoundarySegments("3 20.6386585 2.4360874 20.6392918 1.4361323 20.6399231 0.4361772 2 AQL AQR",
                                          s.segments, why));
    std::vector<db::OutputFile> files;
    ASSERT_TRUE(db::BuildConstellationFiles(s, files, why)) << why;
    ASSERT_EQ(files.size(), 4u);
    EXPECT_EQ(files[0].path, "star/Tycho2/ConstFig.dat");

    std::vector<orv::FigureRecord> figures;
    ASSERT_EQ(orv::DecodeFigures(files[0].bytes, figures), orv::ConstFileStatus::Ok);
    ASSERT_EQ(figures.size(), 3u);
    EXPECT_EQ(figures[0].constellation, kSex);  // Sextans before Ursa Major in the fixed order
    EXPECT_EQ(figures[1].hipA, 67301u);
    EXPECT_EQ(figures[2].constellation, kUMa);

    std::vector<orv::NamePlace> places;
    ASSERT_EQ(orv::DecodeNamePlaces(files[1].bytes, places), orv::ConstFileStatus::Ok);
    ASSERT_EQ(places.size(), 1u);
    EXPECT_NEAR(places[0].raJ2000Rad, 85.0 * M_PI / 180.0, 1e-12);

    std::vector<orv::ConstellationNameEntry> names;
    ASSERT_EQ(orv::DecodeNames(files[2].bytes, names), orv::ConstFileStatus::Ok);
    EXPECT_EQ(names[kUMa].genitive, "Ursae Majoris");
    EXPECT_TRUE(names[kOri].name.empty());

    std::vector<orv::DeclinationStrip> strips;
    std::vector<orv::BoundaryEdge> edges;
    ASSERT_EQ(orv::DecodeBoundaries(files[3].bytes, strips, edges), orv::ConstFileStatus::Ok);
    ASSERT_EQ(strips.size(), 1u);
    ASSERT_EQ(edges.size(), 1u);
    EXPECT_TRUE(edges[0].AlongMeridian());

    // A file cut short is refused whole.
    auto cut = files[3].bytes;
    cut.pop_back();
    EXPECT_EQ(orv::DecodeBoundaries(cut, strips, edges), orv::ConstFileStatus::Damaged);
    EXPECT_TRUE(strips.empty());
}

}  // namespace
