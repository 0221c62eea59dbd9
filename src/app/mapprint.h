// Printing a chart, with the map's print options: the title above, the key
// (magnitude scale) and the status line (site, time, centre, field) below,
// monochrome when asked, and the page margins of the map. The chart itself is
// drawn by the same renderer as on screen, at the printer's resolution.
// Also: exporting the chart as a picture or a vector file.
#pragma once

class QPainter;
class QPrinter;
class QRect;
class QWidget;

namespace orv {

class CAppContext;
class CMapWindow;

// Lays out one page (title, chart, key, status line) inside `page` (device
// pixels) at `dpi` and draws it.
void DrawMapPage(QPainter& painter, const QRect& page, double dpiX, double dpiY, CMapWindow& window,
                 CAppContext& app);

void PrintMapWithDialog(QWidget* parent, CMapWindow& window, CAppContext& app);
void PreviewMap(QWidget* parent, CMapWindow& window, CAppContext& app);
void ExportMapWithDialog(QWidget* parent, CMapWindow& window, CAppContext& app);

}  // namespace orv
