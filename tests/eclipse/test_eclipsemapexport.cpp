// The eclipse map written as a picture and as vector pages: the format
// follows the suffix, the vector pages carry the drawing as paths (not one
// embedded bitmap), and failures name the file.
#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include "eclipse/eclipsefinder.h"
#include "eclipse/eclipsegeometry.h"
#include "eclipse/eclipsemapexport.h"
#include "observer/observer.h"
#include "util/datapath.h"

namespace orv {
namespace {

QByteArray ReadAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

TEST(EclipseMapExport, PictureAndVectorPages)
{
    SunMoonPlaces probe;
    if (!SunMoonAt(2451545.0, probe)) GTEST_SKIP() << "no VSOP87 files in the data folder (" << GetDataPath() << ")";
    const auto e = EclipseAtSyzygyNear(JulianDateFromCivil(CivilDateTime{2024, 4, 8, 18, 0, 0.0}), EclipseKind::Solar);
    ASSERT_TRUE(e.has_value());
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::vector<sat::WorldOutline> noLand;
    const std::string title = "Total Solar Eclipse of 2024 AD Apr 08 18:18 TT";

    const QString png = dir.filePath("map.PNG");
    ASSERT_FALSE(ExportEclipseMap(png.toStdString(), 800, 450, noLand, *e, title).has_value());
    const QImage image(png);
    EXPECT_EQ(800, image.width());
    EXPECT_EQ(450, image.height());

    const QString svg = dir.filePath("map.svg");
    ASSERT_FALSE(ExportEclipseMap(svg.toStdString(), 800, 450, noLand, *e, title).has_value());
    const QByteArray svgText = ReadAll(svg);
    EXPECT_TRUE(svgText.contains("<svg"));
    EXPECT_FALSE(svgText.contains("<image"));  // drawn as vectors, not a bitmap
    // The graticule, the central line and four limits: many paths.
    EXPECT_GT(svgText.count("<path") + svgText.count("<polyline"), 20);

    const QString pdf = dir.filePath("map.pdf");
    ASSERT_FALSE(ExportEclipseMap(pdf.toStdString(), 800, 450, noLand, *e, title).has_value());
    EXPECT_TRUE(ReadAll(pdf).startsWith("%PDF-"));

    // An unknown suffix and an unwritable place are refused with the file named.
    const auto unknown = ExportEclipseMap(dir.filePath("map.txt").toStdString(), 800, 450, noLand, *e, title);
    ASSERT_TRUE(unknown.has_value());
    EXPECT_NE(std::string::npos, unknown->find("map.txt"));
    const std::string nowhere = dir.filePath("missing/map.pdf").toStdString();
    const auto failed = ExportEclipseMap(nowhere, 800, 450, noLand, *e, title);
    ASSERT_TRUE(failed.has_value());
    EXPECT_EQ("Unable to create file\n\"" + nowhere + "\"", *failed);
}

}  // namespace
}  // namespace orv
