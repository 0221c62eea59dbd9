// Exporting charts: pictures through FreeImage read back with their size
// (and, for lossless formats, every pixel as drawn), the bitmap-size
// failure, PDF and SVG files that are complete and well formed.
#include <gtest/gtest.h>

#include <FreeImage.h>

#include <QFile>
#include <QXmlStreamReader>

#include <filesystem>
#include <fstream>

#include "app/strings.h"
#include "map/chartexport.h"
#include "renderfixture.h"
#include "support/compare.h"

using namespace orv;
using orv::test::CSmallCatalogueChart;
namespace fs = std::filesystem;

namespace {

std::string Temp(const std::string& name) { return (fs::path(orv::test::MakeTempDir()) / name).string(); }

struct Loaded {
    int width = 0, height = 0;
    FREE_IMAGE_FORMAT format = FIF_UNKNOWN;
};

Loaded LoadBack(const std::string& path)
{
    Loaded out;
    out.format = FreeImage_GetFileType(path.c_str(), 0);
    FIBITMAP* dib = FreeImage_Load(out.format, path.c_str(), 0);
    if (dib == nullptr) return out;
    out.width = static_cast<int>(FreeImage_GetWidth(dib));
    out.height = static_cast<int>(FreeImage_GetHeight(dib));
    FreeImage_Unload(dib);
    return out;
}

}  // namespace

TEST(ExportFormats, ListAndFilter)
{
    const auto& formats = ExportFormats();
    ASSERT_FALSE(formats.empty());
    EXPECT_EQ(formats.front().name, "PNG");
    for (const char* name : {"JPEG", "TIFF", "BMP", "PDF", "SVG"}) {
        EXPECT_TRUE(std::any_of(formats.begin(), formats.end(), [&](const ExportFormat& f) { return f.name == name; }))
            << name;
    }
    const std::string filter = ExportFileFilter();
    EXPECT_EQ(filter.rfind("PNG - ", 0), 0u);
    EXPECT_NE(filter.find("(*.png)"), std::string::npos);
    EXPECT_NE(filter.find("*.jpg"), std::string::npos);
    EXPECT_NE(filter.find("SVG - Scalable Vector Graphics (*.svg)"), std::string::npos);
    ASSERT_NE(ExportFormatForFile("chart.JPG"), nullptr);
    EXPECT_EQ(ExportFormatForFile("chart.JPG")->name, "JPEG");
    EXPECT_EQ(ExportFormatForFile("chart.tif")->name, "TIFF");
    EXPECT_EQ(ExportFormatForFile("chart"), nullptr);
    EXPECT_EQ(ExportFormatForFile("chart.xyz"), nullptr);
}

// Round trips: the file holds a picture of the requested size, whatever the
// format's row order and byte order.
TEST(ExportPictures, RoundTripsThroughFreeImage)
{
    CSmallCatalogueChart chart;
    struct Case {
        const char* file;
        FREE_IMAGE_FORMAT format;
    };
    for (const Case& c : {Case{"chart.png", FIF_PNG}, Case{"chart.jpg", FIF_JPEG}, Case{"chart.tiff", FIF_TIFF},
                          Case{"chart.bmp", FIF_BMP}, Case{"chart.gif", FIF_GIF}, Case{"chart.webp", FIF_WEBP}}) {
        SCOPED_TRACE(c.file);
        const std::string path = Temp(c.file);
        const ExportResult r = ExportChart(chart.Renderer(), chart.View(), {}, path, 640, 360);
        ASSERT_TRUE(r.Ok()) << r.Message();
        const Loaded back = LoadBack(path);
        EXPECT_EQ(back.format, c.format);
        EXPECT_EQ(back.width, 640);
        EXPECT_EQ(back.height, 360);
    }
}

// PNG is lossless: every pixel read back equals the chart drawn into an
// image directly. Rows written top-down or colours in the wrong byte order
// would show here.
TEST(ExportPictures, PngHoldsEveryPixelAsDrawn)
{
    CSmallCatalogueChart chart(640, 360);
    const std::string path = Temp("exact.png");
    ASSERT_TRUE(ExportChart(chart.Renderer(), chart.View(), {}, path, 640, 360).Ok());
    const QImage drawn = chart.Render(SurfaceKind::Bitmap);
    QImage back(QString::fromStdString(path));
    ASSERT_FALSE(back.isNull());
    back = back.convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(back.size(), drawn.size());
    int differing = 0;
    for (int y = 0; y < drawn.height(); ++y)
        for (int x = 0; x < drawn.width(); ++x)
            if (back.pixel(x, y) != drawn.pixel(x, y)) ++differing;
    EXPECT_EQ(differing, 0);
    // And the picture is not uniform: the compass sits at the bottom right.
    EXPECT_NE(drawn.pixel(5, 5), drawn.pixel(drawn.width() / 2, drawn.height() / 2));
}

TEST(ExportPictures, OversizeBitmapFailsWithTheProgramsMessage)
{
    CSmallCatalogueChart chart;
    const std::string path = Temp("huge.png");
    const ExportResult r = ExportChart(chart.Renderer(), chart.View(), {}, path, 200000, 200000);
    EXPECT_EQ(r.status, ExportStatus::BitmapTooLarge);
    EXPECT_EQ(r.Message(), "Unable to create a bitmap of the requested size");
    EXPECT_EQ(r.Message(), std::string(LoadString(IDS_BITMAP_TOO_LARGE)));
    EXPECT_FALSE(fs::exists(path));
    // The window's chart is untouched: it still draws and identifies.
    chart.Render();
    EXPECT_EQ(chart.VisibleStars().size(), 4u);
}

TEST(ExportPictures, FailuresLeaveTheOldFile)
{
    CSmallCatalogueChart chart;
    const std::string path = Temp("old.png");
    { std::ofstream(path) << "old picture"; }
    EXPECT_EQ(ExportChart(chart.Renderer(), chart.View(), {}, path, 0, 10).status, ExportStatus::BitmapTooLarge);
    std::ifstream in(path);
    std::string text;
    std::getline(in, text);
    EXPECT_EQ(text, "old picture");
    EXPECT_EQ(ExportChart(chart.Renderer(), chart.View(), {}, Temp("chart.xyz"), 10, 10).status,
              ExportStatus::UnknownFormat);
    const ExportResult noFolder =
        ExportChart(chart.Renderer(), chart.View(), {}, "/nonexistent-folder/chart.png", 10, 10);
    EXPECT_EQ(noFolder.status, ExportStatus::CannotCreateFile);
    EXPECT_EQ(noFolder.Message().rfind("Unable to create file /nonexistent-folder/chart.png", 0), 0u);
}

TEST(ExportVector, PdfIsComplete)
{
    CSmallCatalogueChart chart;
    const std::string path = Temp("chart.pdf");
    const ExportResult r = ExportChart(chart.Renderer(), chart.View(), {}, path, 800, 600);
    ASSERT_TRUE(r.Ok()) << r.Message();
    std::ifstream in(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ASSERT_GT(bytes.size(), 1000u);
    EXPECT_EQ(bytes.rfind("%PDF-", 0), 0u);
    EXPECT_NE(bytes.find("%%EOF", bytes.size() - 32), std::string::npos);
    EXPECT_NE(bytes.find("/MediaBox"), std::string::npos);
}

TEST(ExportVector, SvgIsWellFormed)
{
    CSmallCatalogueChart chart;
    const std::string path = Temp("chart.svg");
    const ExportResult r = ExportChart(chart.Renderer(), chart.View(), {}, path, 800, 600);
    ASSERT_TRUE(r.Ok()) << r.Message();
    QFile file(QString::fromStdString(path));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    int elements = 0;
    QString root, viewBox;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement) {
            if (elements++ == 0) {
                root = xml.name().toString();
                viewBox = xml.attributes().value(QStringLiteral("viewBox")).toString();
            }
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_EQ(root, QStringLiteral("svg"));
    EXPECT_EQ(viewBox, QStringLiteral("0 0 800 600"));
    EXPECT_GT(elements, 20);  // grid lines, discs, labels
}
