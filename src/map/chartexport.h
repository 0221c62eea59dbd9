// Exporting a chart as a picture or a vector file, through the same drawing
// function as the window and the printer.
//
// Raster pictures go through FreeImage, to every format it can write (PNG,
// JPEG, TIFF, BMP, WebP, …): the chart is drawn into an off-screen image at
// the size the user chose, copied row by row into a FreeImage bitmap (which
// stores its rows bottom-up, in blue-green-red order) and saved. PDF files
// come from QPdfWriter and SVG files from QSvgGenerator. Every file is
// written beside its target and renamed over it only when complete, so a
// failed export never leaves half a picture in place of an older one.
#pragma once

#include <string>
#include <vector>

#include "map/mapdraw.h"

namespace orv {

// One format the export can write.
struct ExportFormat {
    std::string name;                     // "PNG", "JPEG", "PDF", "SVG"
    std::string description;              // "Portable Network Graphics"
    std::vector<std::string> extensions;  // lower case, without the dot; the first is the usual one
    int freeImageFormat = -1;             // FREE_IMAGE_FORMAT, −1 for PDF and SVG
};

// Every format the export can write: FreeImage's writable formats, then PDF
// and SVG.
const std::vector<ExportFormat>& ExportFormats();

// The file dialog's filter: "PNG - Portable Network Graphics (*.png);;…",
// one entry per format, PNG first.
std::string ExportFileFilter();

// The format a file name asks for (by its extension, any case), or nullptr.
const ExportFormat* ExportFormatForFile(const std::string& path);

enum class ExportStatus {
    Ok,
    UnknownFormat,     // the extension names no format the export can write
    BitmapTooLarge,    // "Unable to create a bitmap of the requested size"
    CannotCreateFile,  // "Unable to create file %1"
    CannotWrite,       // the format's writer failed
};

struct ExportResult {
    ExportStatus status = ExportStatus::Ok;
    std::string path;
    std::string format;       // name of the format written
    int widthPx = 0, heightPx = 0;
    std::string systemReason; // the system's reason when a file could not be written

    bool Ok() const { return status == ExportStatus::Ok; }
    // The program's message for the status (empty when Ok).
    std::string Message() const;
};

struct ExportRequest {
    std::string path;        // the format follows the extension
    int widthPx = 1920;      // picture size; PDF and SVG pages take this size at `dpi`
    int heightPx = 1080;
    double dpi = 96.0;       // resolution the chart is drawn for (disc sizes and text are in inches)
    int jpegQuality = 90;    // 1-100, JPEG only
};

// Draws the chart of `view` and writes it as the request asks. The chart on
// screen is not touched (the renderer keeps exports apart from the window).
ExportResult ExportChart(CChartRenderer& renderer, CMapView& view, const RenderOptions& options,
                         const ExportRequest& request);
// The same at 96 pixels per inch.
ExportResult ExportChart(CChartRenderer& renderer, CMapView& view, const RenderOptions& options,
                         const std::string& path, int widthPx, int heightPx);

}  // namespace orv
