#include "map/chartexport.h"

#include <FreeImage.h>

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <mutex>
#include <random>
#include <span>
#include <system_error>

#include "app/strings.h"
#include "map/mapview.h"
#include "util/atomicfile.h"
#include "util/text.h"

namespace orv {

namespace {

std::string ExtensionOf(const std::string& path)
{
    const std::string ext = std::filesystem::path(path).extension().string();
    return ext.size() > 1 ? AsciiLower(ext.substr(1)) : std::string();
}

// FreeImage's own account of its last failure (it reports through a
// callback, never a return value), kept for the export's result.
thread_local std::string t_freeImageMessage;

void KeepFreeImageMessage(FREE_IMAGE_FORMAT, const char* message)
{
    t_freeImageMessage = message != nullptr ? message : "";
}

void InitialiseFreeImage()
{
    // The shared library initialises itself; the call is harmless there and
    // needed where FreeImage is linked statically.
    static std::once_flag once;
    std::call_once(once, [] {
        FreeImage_Initialise(FALSE);
        FreeImage_SetOutputMessage(KeepFreeImageMessage);
    });
}

// Whether FreeImage can write the format from a chart picture, through one
// of the conversions SavePicture knows.
bool Writable(FREE_IMAGE_FORMAT fif)
{
    if (!FreeImage_FIFSupportsWriting(fif)) return false;
    return FreeImage_FIFSupportsExportBPP(fif, 24) || FreeImage_FIFSupportsExportBPP(fif, 32) ||
           FreeImage_FIFSupportsExportBPP(fif, 8) || FreeImage_FIFSupportsExportBPP(fif, 1) ||
           FreeImage_FIFSupportsExportType(fif, FIT_RGBF);
}

std::vector<ExportFormat> BuildFormats()
{
    InitialiseFreeImage();
    std::vector<ExportFormat> out;
    const int count = FreeImage_GetFIFCount();
    for (int i = 0; i < count; ++i) {
        const auto fif = static_cast<FREE_IMAGE_FORMAT>(i);
        if (!Writable(fif)) continue;
        ExportFormat f;
        f.name = FreeImage_GetFormatFromFIF(fif) ? FreeImage_GetFormatFromFIF(fif) : "";
        f.description = FreeImage_GetFIFDescription(fif) ? FreeImage_GetFIFDescription(fif) : f.name;
        f.freeImageFormat = i;
        const std::string list = FreeImage_GetFIFExtensionList(fif) ? FreeImage_GetFIFExtensionList(fif) : "";
        std::size_t start = 0;
        while (start <= list.size()) {
            const std::size_t comma = std::min(list.find(',', start), list.size());
            if (comma > start) f.extensions.push_back(AsciiLower(list.substr(start, comma - start)));
            start = comma + 1;
        }
        if (f.name.empty() || f.extensions.empty()) continue;
        out.push_back(std::move(f));
    }
    // PNG first: the usual choice for charts (lossless, small for flat colours).
    std::stable_partition(out.begin(), out.end(), [](const ExportFormat& f) { return f.name == "PNG"; });
    out.push_back({"PDF", "Portable Document Format", {"pdf"}, -1});
    out.push_back({"SVG", "Scalable Vector Graphics", {"svg"}, -1});
    return out;
}

// A temporary name beside the target, renamed over it once complete.
std::string TemporaryBeside(const std::string& path)
{
    static std::mt19937_64 rng{std::random_device{}()};
    const std::filesystem::path p(path);
    char tag[24];
    std::snprintf(tag, sizeof tag, ".%012llx", static_cast<unsigned long long>(rng() & 0xffffffffffffULL));
    // The extension stays last: some writers look at it.
    return (p.parent_path() / ("." + p.stem().string() + tag + p.extension().string())).string();
}

ExportResult Failure(ExportResult r, ExportStatus status, std::string reason = {})
{
    r.status = status;
    r.systemReason = std::move(reason);
    return r;
}

DrawSurface SurfaceFor(QPainter& painter, SurfaceKind kind, int w, int h, double dpi)
{
    DrawSurface s;
    s.painter = &painter;
    s.kind = kind;
    s.widthPx = w;
    s.heightPx = h;
    s.dpiX = dpi;
    s.dpiY = dpi;
    return s;
}

// Copies a drawn chart into a FreeImage bitmap: FreeImage keeps its rows
// bottom-up, and its 24- and 32-bit pixels in the byte order given by the
// FI_RGBA_* offsets (blue, green, red on little-endian machines).
void CopyRows(const QImage& image, FIBITMAP* dib, int bytesPerPixel)
{
    const int w = image.width(), h = image.height();
    for (int y = 0; y < h; ++y) {
        const auto* src = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        BYTE* dst = FreeImage_GetScanLine(dib, h - 1 - y);
        for (int x = 0; x < w; ++x) {
            const QRgb c = src[x];
            dst[FI_RGBA_RED] = static_cast<BYTE>(qRed(c));
            dst[FI_RGBA_GREEN] = static_cast<BYTE>(qGreen(c));
            dst[FI_RGBA_BLUE] = static_cast<BYTE>(qBlue(c));
            if (bytesPerPixel == 4) dst[FI_RGBA_ALPHA] = 0xFF;
            dst += bytesPerPixel;
        }
    }
}

struct DibDeleter {
    void operator()(FIBITMAP* d) const
    {
        if (d) FreeImage_Unload(d);
    }
};
using Dib = std::unique_ptr<FIBITMAP, DibDeleter>;

// The bitmap in a form the format takes: 24 bits where it can, else 32,
// else 8 (a colour palette, or grey levels), else 1, else floating RGB.
Dib Converted(FIBITMAP* rgb24, FREE_IMAGE_FORMAT fif, bool& ok)
{
    ok = true;
    if (FreeImage_FIFSupportsExportBPP(fif, 24)) return Dib(FreeImage_Clone(rgb24));
    if (FreeImage_FIFSupportsExportBPP(fif, 32)) return Dib(FreeImage_ConvertTo32Bits(rgb24));
    if (FreeImage_FIFSupportsExportBPP(fif, 8)) {
        // Grey-level formats (PGM) refuse palettes of colours.
        if (fif == FIF_PGM || fif == FIF_PGMRAW) return Dib(FreeImage_ConvertToGreyscale(rgb24));
        return Dib(FreeImage_ColorQuantize(rgb24, FIQ_WUQUANT));
    }
    if (FreeImage_FIFSupportsExportBPP(fif, 1)) {
        Dib grey(FreeImage_ConvertToGreyscale(rgb24));
        return Dib(grey ? FreeImage_Threshold(grey.get(), 128) : nullptr);
    }
    if (FreeImage_FIFSupportsExportType(fif, FIT_RGBF)) return Dib(FreeImage_ConvertToRGBF(rgb24));
    ok = false;
    return nullptr;
}

ExportResult ExportRaster(CChartRenderer& renderer, CMapView& view, const RenderOptions& options,
                          const ExportRequest& req, const ExportFormat& format, ExportResult r)
{
    InitialiseFreeImage();
    const auto fif = static_cast<FREE_IMAGE_FORMAT>(format.freeImageFormat);
    // Both the FreeImage bitmap and the image drawn into must exist before
    // anything is drawn; either failing is the one message the user sees.
    Dib dib(FreeImage_Allocate(req.widthPx, req.heightPx, 24));
    if (!dib || FreeImage_GetBits(dib.get()) == nullptr) return Failure(r, ExportStatus::BitmapTooLarge);
    QImage image(req.widthPx, req.heightPx, QImage::Format_RGB32);
    if (image.isNull()) return Failure(r, ExportStatus::BitmapTooLarge);
    const int dpm = static_cast<int>(std::lround(req.dpi / 0.0254));
    image.setDotsPerMeterX(dpm);
    image.setDotsPerMeterY(dpm);
    {
        QPainter painter(&image);
        renderer.Draw(SurfaceFor(painter, SurfaceKind::Bitmap, req.widthPx, req.heightPx, req.dpi), view, options);
    }
    CopyRows(image, dib.get(), 3);
    image = QImage();  // the memory back before the format's conversion
    FreeImage_SetDotsPerMeterX(dib.get(), static_cast<unsigned>(dpm));
    FreeImage_SetDotsPerMeterY(dib.get(), static_cast<unsigned>(dpm));

    bool convertible = false;
    Dib out = Converted(dib.get(), fif, convertible);
    if (!convertible || !out) return Failure(r, ExportStatus::CannotWrite, "the format cannot hold this picture");
    int flags = 0;
    if (fif == FIF_JPEG) flags = std::clamp(req.jpegQuality, 1, 100);

    const std::string temp = TemporaryBeside(req.path);
    t_freeImageMessage.clear();
    if (!FreeImage_Save(fif, out.get(), temp.c_str(), flags)) {
        std::error_code ec;
        std::filesystem::remove(temp, ec);
        // Tell a folder that takes no file from a writer that failed.
        CAtomicFileWriter probe;
        if (!probe.Open(req.path)) return Failure(r, ExportStatus::CannotCreateFile, probe.Error());
        probe.Discard();
        return Failure(r, ExportStatus::CannotWrite,
                       t_freeImageMessage.empty() ? "the picture writer failed" : t_freeImageMessage);
    }
    std::error_code ec;
    std::filesystem::rename(temp, req.path, ec);
    if (ec) {
        std::filesystem::remove(temp, ec);
        return Failure(r, ExportStatus::CannotCreateFile, ec.message());
    }
    return r;
}

ExportResult WriteBytes(const QByteArray& bytes, ExportResult r)
{
    const AtomicWriteResult w = WriteFileAtomically(
        r.path, std::span<const std::uint8_t>(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                                              static_cast<std::size_t>(bytes.size())));
    if (!w.ok) return Failure(r, ExportStatus::CannotCreateFile, w.error);
    return r;
}

ExportResult ExportPdf(CChartRenderer& renderer, CMapView& view, const RenderOptions& options,
                       const ExportRequest& req, ExportResult r)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        // The page is the picture size at the request's resolution, and one
        // unit of the writer is one pixel of it.
        writer.setResolution(static_cast<int>(std::lround(req.dpi)));
        writer.setPageSize(QPageSize(QSizeF(req.widthPx / req.dpi * 72.0, req.heightPx / req.dpi * 72.0),
                                     QPageSize::Point, QString(), QPageSize::ExactMatch));
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        writer.setTitle(QString::fromStdString(view.Doc().title));
        writer.setCreator(QStringLiteral("Orvane"));
        QPainter painter;
        if (!painter.begin(&writer)) return Failure(r, ExportStatus::CannotWrite, "the PDF writer failed");
        renderer.Draw(SurfaceFor(painter, SurfaceKind::Vector, writer.width(), writer.height(), req.dpi), view,
                      options);
        painter.end();
    }
    return WriteBytes(bytes, r);
}

ExportResult ExportSvg(CChartRenderer& renderer, CMapView& view, const RenderOptions& options,
                       const ExportRequest& req, ExportResult r)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QSvgGenerator svg;
        svg.setOutputDevice(&buffer);
        svg.setSize(QSize(req.widthPx, req.heightPx));
        svg.setViewBox(QRect(0, 0, req.widthPx, req.heightPx));
        svg.setResolution(static_cast<int>(std::lround(req.dpi)));
        svg.setTitle(QString::fromStdString(view.Doc().title));
        svg.setDescription(QStringLiteral("Sky chart drawn by Orvane"));
        QPainter painter;
        if (!painter.begin(&svg)) return Failure(r, ExportStatus::CannotWrite, "the SVG writer failed");
        renderer.Draw(SurfaceFor(painter, SurfaceKind::Vector, req.widthPx, req.heightPx, req.dpi), view, options);
        painter.end();
    }
    return WriteBytes(bytes, r);
}

}  // namespace

const std::vector<ExportFormat>& ExportFormats()
{
    static const std::vector<ExportFormat> formats = BuildFormats();
    return formats;
}

std::string ExportFileFilter()
{
    std::string out;
    for (const ExportFormat& f : ExportFormats()) {
        if (!out.empty()) out += ";;";
        out += f.name + " - " + f.description + " (";
        for (std::size_t i = 0; i < f.extensions.size(); ++i) {
            if (i) out += ' ';
            out += "*." + f.extensions[i];
        }
        out += ')';
    }
    return out;
}

const ExportFormat* ExportFormatForFile(const std::string& path)
{
    const std::string ext = ExtensionOf(path);
    if (ext.empty()) return nullptr;
    // FreeImage's own choice for the name first (it knows aliases such as
    // ".jpe"), then the extension lists.
    if (ext != "pdf" && ext != "svg") {
        InitialiseFreeImage();
        const FREE_IMAGE_FORMAT fif = FreeImage_GetFIFFromFilename(path.c_str());
        for (const ExportFormat& f : ExportFormats())
            if (fif != FIF_UNKNOWN && f.freeImageFormat == static_cast<int>(fif)) return &f;
    }
    for (const ExportFormat& f : ExportFormats())
        if (std::find(f.extensions.begin(), f.extensions.end(), ext) != f.extensions.end()) return &f;
    return nullptr;
}

std::string ExportResult::Message() const
{
    switch (status) {
    case ExportStatus::Ok: return {};
    case ExportStatus::BitmapTooLarge: return std::string(LoadString(IDS_BITMAP_TOO_LARGE));
    case ExportStatus::UnknownFormat:
        return FormatString(IDS_CANNOT_CREATE_FILE, path) + " (no picture format has this extension)";
    case ExportStatus::CannotCreateFile:
    case ExportStatus::CannotWrite:
        return FormatString(IDS_CANNOT_CREATE_FILE, path) + (systemReason.empty() ? "" : " (" + systemReason + ")");
    }
    return {};
}

ExportResult ExportChart(CChartRenderer& renderer, CMapView& view, const RenderOptions& options,
                         const ExportRequest& request)
{
    ExportResult r;
    r.path = request.path;
    r.widthPx = request.widthPx;
    r.heightPx = request.heightPx;
    const ExportFormat* format = ExportFormatForFile(request.path);
    if (format == nullptr) return Failure(r, ExportStatus::UnknownFormat);
    r.format = format->name;
    if (request.widthPx <= 0 || request.heightPx <= 0 || !(request.dpi > 0.0) || !std::isfinite(request.dpi))
        return Failure(r, ExportStatus::BitmapTooLarge);
    if (format->name == "PDF") return ExportPdf(renderer, view, options, request, r);
    if (format->name == "SVG") return ExportSvg(renderer, view, options, request, r);
    return ExportRaster(renderer, view, options, request, *format, r);
}

ExportResult ExportChart(CChartRenderer& renderer, CMapView& view, const RenderOptions& options,
                         const std::string& path, int widthPx, int heightPx)
{
    ExportRequest request;
    request.path = path;
    request.widthPx = widthPx;
    request.heightPx = heightPx;
    return ExportChart(renderer, view, options, request);
}

}  // namespace orv
