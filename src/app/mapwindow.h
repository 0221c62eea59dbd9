// CMapWindow: one sky map on screen — the multiple-document child window
// that holds a map document and its view, draws the chart through the
// renderer, and turns the mouse and keyboard into zooming, scrolling,
// identifying and centring.
//
// Redraws are debounced: a request (re)starts a 100 ms single-shot timer and
// the chart is drawn once when it fires, so a burst of changes costs one
// redraw. While the chart is dragged the last picture follows the mouse at
// once and the full redraw comes when the movement pauses.
#pragma once

#include <QImage>
#include <QPointF>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <optional>

#include "map/mapdraw.h"
#include "map/mapfile.h"
#include "satellite/passdraw.h"

namespace orv {

class CAppContext;
class CMapDoc;
class CMapView;

class CMapWindow : public QWidget {
    Q_OBJECT
public:
    explicit CMapWindow(CAppContext& app, QWidget* parent = nullptr);
    ~CMapWindow() override;

    // A new map: the stored defaults, then the default map file (when there
    // is one) as a template, at the present moment. `number` makes the title
    // "Map1", "Map2" …
    void InitNew(int number);
    // Reads a map file; on failure the window must be discarded.
    MapFileResult LoadFromFile(const QString& path);

    CMapDoc& Doc() { return *m_doc; }
    CMapView& View() { return *m_view; }
    const CMapView& View() const { return *m_view; }
    CChartRenderer& Renderer() { return *m_renderer; }

    QString FilePath() const;
    QString Title() const;
    bool IsModified() const;
    // Marks the map changed (the title shows it) and redraws.
    void MapChanged();

    // File commands; each reports failures to the user itself and returns
    // whether the map was written.
    bool Save();
    bool SaveAs();
    bool SaveAsDefault();
    // Asks whether to save a modified map; false when the user cancels.
    bool MaybeSave();

    // --- Drawing ---------------------------------------------------------------
    void RequestRedraw();
    // Draws the chart now (for interactive zooming).
    void RedrawNow();
    int RedrawCount() const { return m_redrawCount; }

    // --- Navigation ----------------------------------------------------------------
    void ZoomBy(double factor, std::optional<QPointF> anchorPx = std::nullopt);
    void ZoomIn();
    void ZoomOut();
    void GoToLevel(int level);
    // Scrolls by a fraction of the field (arrow keys).
    void ScrollBy(double rightFraction, double downFraction);
    void CentreAtPixel(QPointF px);
    // Centres on a catalogue position; with `target` the search target is set there.
    void CentreOn(double raJ2000Rad, double decJ2000Rad, std::optional<SearchTarget> target = std::nullopt);
    void ClearSearchTarget();
    const std::optional<SearchTarget>& Target() const { return m_target; }
    void Rotate(int degrees);
    void Flip(bool horizontal);

    // --- Time ------------------------------------------------------------------------
    void SetToNow();
    void StepTime(int direction);
    // Called by the main frame's 250 ms timer: follows the clock or steps
    // the time as the map's time mode says.
    void Tick();

    // --- Satellite passes plotted on this chart ------------------------------------
    // They belong to this chart's pass layer, so the window, its printed
    // pages and its exported pictures all show them.
    void SetPlottedPasses(sat::PlottedPassList passes);
    void ClearPlottedPasses();
    const sat::PlottedPassList& PlottedPasses() const;

    // The options the window draws with (scheme, search target); printing
    // and export start from them.
    RenderOptions Options() const;

    // The object nearest a pixel of the chart, within a few pixels.
    std::optional<IdentifiedObject> IdentifyAt(QPointF px) const;

    // Status texts for the main frame.
    QString LevelText() const;
    QString FieldText() const;
    QString TimeText() const;
    QString CursorRaDecText() const { return m_cursorRaDec; }
    QString CursorAltAzText() const { return m_cursorAltAz; }

signals:
    void StatusChanged();               // level, field, time, cursor
    void Identified(const QString& title, const QString& information);
    void TitleChanged();

private:
    // The planet paths plotted on this map, kept beside its file.
    void LoadPlanetPaths(const QString& mapPath);
    void ReportDamagedFiles();
    void SavePlanetPaths(const QString& mapPath);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void OnRedrawTimer();
    void RenderBacking();
    void UpdateCursorTexts(QPointF px);
    void ShowIdentification(QPointF px);
    // Moves the chart so that the sky under `fromPx` comes under `toPx`.
    void DragSky(QPointF fromPx, QPointF toPx);
    void ApplyTitle();
    bool WriteTo(const QString& path, SaveTarget target);

    CAppContext& m_app;
    std::unique_ptr<CMapDoc> m_doc;
    std::unique_ptr<CMapView> m_view;
    std::unique_ptr<CChartRenderer> m_renderer;

    QTimer m_redrawTimer;
    bool m_redrawPending = true;
    int m_redrawCount = 0;
    QImage m_backing;          // the last chart drawn
    QPointF m_backingOffset;   // how far the picture has been dragged since

    bool m_dragging = false;
    bool m_moved = false;
    QPointF m_pressPx;
    QPointF m_lastDragPx;

    std::optional<SearchTarget> m_target;
    QString m_cursorRaDec;
    QString m_cursorAltAz;
    double m_lastTickSecond = 0.0;
};

}  // namespace orv
