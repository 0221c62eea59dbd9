#include "eclipse/eclipsemapexport.h"

#include <QBuffer>
#include <QByteArray>
#include <QFileInfo>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#ifdef ORVANE_HAVE_QT_SVG
#include <QSvgGenerator>
#endif

#include "eclipse/eclipsemapdraw.h"

namespace orv {

namespace {

std::string CannotCreate(const std::string& path) { return "Unable to create file\n\"" + path + "\""; }

bool SaveBytes(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

}  // namespace

std::optional<std::string> ExportEclipseMap(const std::string& path, int widthPx, int heightPx,
                                            const std::vector<sat::WorldOutline>& land, const EclipseEvent& event,
                                            const std::string& title)
{
    const QString qpath = QString::fromStdString(path);
    const QString suffix = QFileInfo(qpath).suffix().toLower();
    const QRectF area(0, 0, widthPx, heightPx);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);

    if (suffix == QLatin1String("pdf")) {
        // One unit of the writer is one pixel of the requested size.
        constexpr int kDpi = 150;
        QPdfWriter writer(&buffer);
        writer.setResolution(kDpi);
        writer.setPageSize(QPageSize(QSizeF(widthPx * 72.0 / kDpi, heightPx * 72.0 / kDpi), QPageSize::Point,
                                     QString(), QPageSize::ExactMatch));
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        writer.setTitle(QString::fromStdString(title));
        writer.setCreator(QStringLiteral("Orvane"));
        QPainter painter;
        if (!painter.begin(&writer)) return CannotCreate(path);
        DrawEclipseMap(painter, QRectF(0, 0, writer.width(), writer.height()), land, event, title);
        painter.end();
    } else if (suffix == QLatin1String("svg")) {
#ifndef ORVANE_HAVE_QT_SVG
        return "\"" + path + "\": this build writes no SVG (Qt Svg was not found)";
#else
        QSvgGenerator svg;
        svg.setOutputDevice(&buffer);
        svg.setSize(QSize(widthPx, heightPx));
        svg.setViewBox(QRect(0, 0, widthPx, heightPx));
        svg.setTitle(QString::fromStdString(title));
        svg.setDescription(QStringLiteral("Eclipse map drawn by Orvane"));
        QPainter painter;
        if (!painter.begin(&svg)) return CannotCreate(path);
        DrawEclipseMap(painter, area, land, event, title);
        painter.end();
#endif
    } else {
        const char* format = nullptr;
        if (suffix == QLatin1String("png")) format = "PNG";
        if (suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg")) format = "JPG";
        if (suffix == QLatin1String("bmp")) format = "BMP";
        if (format == nullptr)
            return "\"" + path + "\": the map is written as .png, .jpg, .bmp, .pdf or .svg";
        QImage image(widthPx, heightPx, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        {
            QPainter painter(&image);
            DrawEclipseMap(painter, area, land, event, title);
        }
        if (!image.save(&buffer, format)) return CannotCreate(path);
    }
    buffer.close();
    if (!SaveBytes(qpath, bytes)) return CannotCreate(path);
    return std::nullopt;
}

}  // namespace orv
