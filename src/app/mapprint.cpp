#include "app/mapprint.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QFormLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QSpinBox>

#include <cmath>

#include "app/appcontext.h"
#include "app/mapwindow.h"
#include "catalog/stars/stardisplay.h"
#include "map/chartexport.h"
#include "map/mapview.h"
#include "util/angles.h"

namespace orv {

namespace {

QString ToQ(const std::string& s) { return QString::fromStdString(s); }

QString StatusLine(const CMapWindow& window)
{
    const CMapView& v = window.View();
    const CObserverDoc& o = v.Doc().observer;
    const CCoordinates& c = v.coordinates;
    return QObject::tr("%1  %2 %3  |  %4  |  centre α %5 δ %6 (J2000)  |  %7  |  %8")
        .arg(ToQ(o.SiteName()))
        .arg(ToQ(FormatDms(o.LatitudeRad(), 0)))
        .arg(ToQ(FormatDms(o.LongitudeRad(), 0)))
        .arg(window.TimeText())
        .arg(ToQ(FormatHms(c.CentreRaJ2000Rad(), 0)))
        .arg(ToQ(FormatDms(c.CentreDecJ2000Rad(), 0)))
        .arg(window.FieldText())
        .arg(window.LevelText());
}

}  // namespace

void DrawMapPage(QPainter& painter, const QRect& page, double dpiX, double dpiY, CMapWindow& window,
                 CAppContext& app)
{
    CMapView& view = window.View();
    const CMapViewSettings& s = view.settings;
    // Margins are kept in thousandths of an inch.
    const QRectF area(page.left() + s.printLeftMargin * dpiX / 1000.0, page.top() + s.printTopMargin * dpiY / 1000.0,
                      page.width() - (s.printLeftMargin + s.printRightMargin) * dpiX / 1000.0,
                      page.height() - (s.printTopMargin + s.printBottomMargin) * dpiY / 1000.0);
    if (area.width() < dpiX || area.height() < dpiY) return;  // margins leave no room
    QRectF chart = area;
    painter.save();
    painter.setPen(Qt::black);

    if (s.printTitle != 0) {
        QFont f(QStringLiteral("DejaVu Sans"));
        f.setPointSizeF(14.0);
        f.setBold(true);
        painter.setFont(f);
        const double h = QFontMetricsF(f, painter.device()).height() * 1.4;
        painter.drawText(QRectF(chart.left(), chart.top(), chart.width(), h), Qt::AlignCenter, window.Title());
        chart.setTop(chart.top() + h);
    }
    if (s.printStatus != 0) {
        QFont f(QStringLiteral("DejaVu Sans"));
        f.setPointSizeF(8.0);
        painter.setFont(f);
        const double h = QFontMetricsF(f, painter.device()).height() * 1.6;
        painter.drawText(QRectF(chart.left(), chart.bottom() - h, chart.width(), h), Qt::AlignCenter,
                         StatusLine(window));
        chart.setBottom(chart.bottom() - h);
    }
    if (s.printKey != 0) {
        // The key: the magnitude scale of the star discs at this level.
        QFont f(QStringLiteral("DejaVu Sans"));
        f.setPointSizeF(8.0);
        painter.setFont(f);
        const double h = QFontMetricsF(f, painter.device()).height() * 2.2;
        const QRectF key(chart.left(), chart.bottom() - h, chart.width(), h);
        // The same scale as the chart's discs at this level.
        const CStarSettings& st = view.Doc().stars;
        const StarLevelState& level = view.starState;
        const StarSizeScale scale{level.magLimit, level.magBright, st.starRadBright, st.starRadFaint};
        const QFontMetricsF fm(f, painter.device());
        double x = key.left();
        painter.setBrush(Qt::black);
        for (int m = (std::max(level.magBright, 0) / 100) * 100; m <= level.magLimit; m += 100) {
            const int r = st.starShowSize != 0 ? StarDiscRadius(m, scale) : st.starDotRadius;
            const double radiusPx = std::max(0.5, r * dpiY * 0.0001);
            painter.drawEllipse(QPointF(x + radiusPx, key.center().y()), radiusPx, radiusPx);
            const QString label = QString::number(m / 100);
            painter.drawText(QPointF(x + 2.0 * radiusPx + 0.03 * dpiX, key.center().y() + 0.35 * fm.ascent()), label);
            x += 2.0 * radiusPx + 0.25 * dpiX;
            if (x > key.right() - dpiX) break;
        }
        chart.setBottom(chart.bottom() - h);
    }
    painter.save();
    painter.setClipRect(chart);
    painter.translate(chart.topLeft());
    DrawSurface surface;
    surface.painter = &painter;
    surface.kind = SurfaceKind::Printer;
    surface.widthPx = static_cast<int>(chart.width());
    surface.heightPx = static_cast<int>(chart.height());
    surface.dpiX = dpiX;
    surface.dpiY = dpiY;
    RenderOptions options;
    options.scheme = ColourScheme::BlackOnWhite;
    options.monochrome = s.printMono != 0;
    options.target = window.Target();
    options.showSearchTarget = app.ShowSearchTarget();
    // The page gets its own projection; the window's is left as it is.
    window.Renderer().Draw(surface, view, options);
    painter.restore();
    // The frame last: the chart fills its own background up to the edges.
    painter.setPen(QPen(Qt::black, std::max(1.0, dpiX / 150.0)));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(chart);
    painter.restore();
    window.RequestRedraw();
}

namespace {
void PrintTo(QPrinter& printer, CMapWindow& window, CAppContext& app)
{
    QPainter painter;
    if (!painter.begin(&printer)) return;
    const QRect page = printer.pageLayout().fullRectPixels(printer.resolution());
    painter.translate(-printer.pageLayout().paintRectPixels(printer.resolution()).topLeft());
    DrawMapPage(painter, page, printer.resolution(), printer.resolution(), window, app);
    painter.end();
}
}  // namespace

void PrintMapWithDialog(QWidget* parent, CMapWindow& window, CAppContext& app)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(window.Title());
    printer.setFullPage(true);
    QPrintDialog dialog(&printer, parent);
    if (dialog.exec() != QDialog::Accepted) return;
    PrintTo(printer, window, app);
}

void PreviewMap(QWidget* parent, CMapWindow& window, CAppContext& app)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(window.Title());
    printer.setFullPage(true);
    QPrintPreviewDialog preview(&printer, parent);
    QObject::connect(&preview, &QPrintPreviewDialog::paintRequested, &preview,
                     [&window, &app](QPrinter* p) { PrintTo(*p, window, app); });
    preview.resize(900, 1000);
    preview.exec();
}

// ------------------------------------------------------------------ export

void ExportMapWithDialog(QWidget* parent, CMapWindow& window, CAppContext& app)
{
    // File name first: its extension chooses the format.
    const QString start = QDir(app.RememberedFolder("Export")).filePath(window.Title() + QStringLiteral(".png"));
    QString path = QFileDialog::getSaveFileName(parent, QObject::tr("Export Chart"), start,
                                                QString::fromStdString(ExportFileFilter()));
    if (path.isEmpty()) return;
    if (QFileInfo(path).suffix().isEmpty()) path += QStringLiteral(".png");
    app.RememberFolder("Export", path);
    const ExportFormat* format = ExportFormatForFile(path.toStdString());
    const bool vector = format != nullptr && format->freeImageFormat < 0;
    const bool jpeg = format != nullptr && format->name == "JPEG";

    // Then the size, starting from the window's, and the resolution the
    // chart is drawn for: star discs and text are sized in inches, so a
    // picture for a 300 dpi page wants 300 here and a correspondingly larger
    // size in pixels.
    QDialog sizeDialog(parent);
    sizeDialog.setWindowTitle(QObject::tr("Chart Size"));
    auto* form = new QFormLayout(&sizeDialog);
    auto* width = new QSpinBox(&sizeDialog);
    auto* height = new QSpinBox(&sizeDialog);
    auto* dpi = new QSpinBox(&sizeDialog);
    auto* quality = new QSpinBox(&sizeDialog);
    width->setRange(16, 100000);
    height->setRange(16, 100000);
    dpi->setRange(36, 2400);
    quality->setRange(1, 100);
    width->setSuffix(QObject::tr(" px"));
    height->setSuffix(QObject::tr(" px"));
    dpi->setSuffix(QObject::tr(" dpi"));
    width->setValue(window.width());
    height->setValue(window.height());
    dpi->setValue(96);
    quality->setValue(90);
    form->addRow(QObject::tr("Width:"), width);
    form->addRow(QObject::tr("Height:"), height);
    form->addRow(QObject::tr("Resolution:"), dpi);
    if (jpeg) form->addRow(QObject::tr("JPEG quality:"), quality);
    else quality->hide();
    auto* inches = new QLabel(&sizeDialog);
    auto updateInches = [=] {
        inches->setText(QObject::tr("%1 × %2 in%3")
                            .arg(width->value() / static_cast<double>(dpi->value()), 0, 'f', 2)
                            .arg(height->value() / static_cast<double>(dpi->value()), 0, 'f', 2)
                            .arg(vector ? QObject::tr(" (page size)") : QString()));
    };
    updateInches();
    for (QSpinBox* box : {width, height, dpi}) QObject::connect(box, &QSpinBox::valueChanged, &sizeDialog, updateInches);
    form->addRow(QObject::tr("Printed size:"), inches);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &sizeDialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &sizeDialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &sizeDialog, &QDialog::reject);
    form->addRow(buttons);
    if (sizeDialog.exec() != QDialog::Accepted) return;

    RenderOptions options;
    options.scheme = app.Scheme();
    options.target = window.Target();
    options.showSearchTarget = app.ShowSearchTarget();
    ExportRequest request;
    request.path = path.toStdString();
    request.widthPx = width->value();
    request.heightPx = height->value();
    request.dpi = dpi->value();
    request.jpegQuality = quality->value();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const ExportResult r = ExportChart(window.Renderer(), window.View(), options, request);
    QApplication::restoreOverrideCursor();
    if (!r.Ok()) QMessageBox::critical(parent, QApplication::applicationName(), QString::fromStdString(r.Message()));
}

}  // namespace orv
