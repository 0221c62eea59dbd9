#include "util/dataproblems.h"
#include "app/mapwindow.h"

#include <QTimer>
#include <QApplication>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>

#include <cmath>

#include "app/appcontext.h"
#include "app/dataproblemsbox.h"
#include "app/strings.h"
#include "map/chartframe.h"
#include "map/mapview.h"
#include "solarsystem/bodypathfile.h"
#include "solarsystem/drawbodypath.h"
#include "util/atomicfile.h"
#include "util/angles.h"
#include "util/settingsstore.h"

namespace orv {

namespace {

constexpr int kRedrawDelayMs = 100;
// How far (pixels) the mouse may move between press and release for a click.
constexpr double kClickSlopPx = 3.0;
// Identification picks the nearest object within this many pixels.
constexpr double kIdentifyTolerancePx = 8.0;
// Continuous zoom: one wheel notch, and one notch with Ctrl for fine steps.
constexpr double kZoomStep = 1.25;
constexpr double kFineZoomStep = 1.08;

QString ToQ(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

CMapWindow::CMapWindow(CAppContext& app, QWidget* parent)
    : QWidget(parent), m_app(app), m_renderer(std::make_unique<CChartRenderer>(app.Components()))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_DeleteOnClose);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(200, 150);
    m_redrawTimer.setSingleShot(true);
    connect(&m_redrawTimer, &QTimer::timeout, this, &CMapWindow::OnRedrawTimer);
    connect(&m_app, &CAppContext::DisplayOptionsChanged, this, &CMapWindow::RequestRedraw);
    connect(&m_app, &CAppContext::LevelsChanged, this, [this] {
        m_view->SetLevels(m_app.Levels());
        m_renderer->Invalidate();
        RequestRedraw();
        emit StatusChanged();
    });
}

CMapWindow::~CMapWindow() = default;

void CMapWindow::InitNew(int number)
{
    CSettingsStore& settings = m_app.Settings();
    m_doc = std::make_unique<CMapDoc>(settings);
    m_view = std::make_unique<CMapView>(*m_doc, settings, m_app.Levels());
    const QString defaultFile = m_app.DefaultMapFile();
    QFile f(defaultFile);
    if (f.exists() && f.open(QIODevice::ReadOnly)) {
        const QByteArray bytes = f.readAll();
        const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.constData());
        // The default map is a template: a damaged one is simply not used.
        auto doc = std::make_unique<CMapDoc>(settings);
        auto view = std::make_unique<CMapView>(*doc, settings, m_app.Levels());
        if (ReadMapBytes({data, static_cast<std::size_t>(bytes.size())}, *view, KeepTitle::Yes).Ok()) {
            m_doc = std::move(doc);
            m_view = std::move(view);
            m_doc->loadedFromFile = 0;
            m_view->loadedFromFile = 0;
        }
    }
    m_doc->title = "Map" + std::to_string(number);
    m_doc->pathName.clear();
    m_doc->modified = false;
    m_doc->observer.SetToNow();
    m_view->coordinates.Update(m_doc->observer);
    ApplyTitle();
    RequestRedraw();
    ReportDamagedFiles();
}

MapFileResult CMapWindow::LoadFromFile(const QString& path)
{
    CSettingsStore& settings = m_app.Settings();
    m_doc = std::make_unique<CMapDoc>(settings);
    m_view = std::make_unique<CMapView>(*m_doc, settings, m_app.Levels());
    const MapFileResult r =
        LoadMapFile(path.toStdString(), *m_view, m_app.KeepTitle() ? KeepTitle::Yes : KeepTitle::No);
    if (r.Ok()) {
        LoadPlanetPaths(path);
        ApplyTitle();
        RequestRedraw();
        ReportDamagedFiles();
    }
    return r;
}

// The overlays the chart will draw are read now, so that one cut short or
// of another kind is named as the map opens, with any other damaged file
// met so far, rather than at the first redraw.
void CMapWindow::ReportDamagedFiles()
{
    m_app.Overlays().LoadDrawn();
    ShowDataFileProblems(this);
}

// The planet paths kept beside the map file (solarsystem/bodypathfile.h);
// a map without them has no such file.
void CMapWindow::LoadPlanetPaths(const QString& mapPath)
{
    auto* layer = m_renderer->FindLayer<CBodyPathLayer>();
    if (layer == nullptr) return;
    const QString sidecar = ToQ(BodyPathsFilePath(mapPath.toStdString()));
    QFile file(sidecar);
    if (!file.exists()) return;
    if (!file.open(QIODevice::ReadOnly)) {
        QMessageBox::warning(this, QApplication::applicationName(),
                             tr("Unable to read the planet paths of this map from %1: %2").arg(sidecar, file.errorString()));
        return;
    }
    const QByteArray bytes = file.readAll();
    const BodyPathsReadResult paths = ParseBodyPaths(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    if (!paths.ok) {
        QMessageBox::warning(this, QApplication::applicationName(),
                             tr("The planet paths of this map were not loaded: %1, line %2: %3")
                                 .arg(sidecar)
                                 .arg(paths.errorLine)
                                 .arg(ToQ(paths.error)));
        return;
    }
    layer->Clear();
    for (const BodyPath& p : paths.paths) layer->Add(p);
}

// Writes the map's planet paths beside the map file, or removes an old
// sidecar when the map has none. Reports a failure; the map itself is saved.
void CMapWindow::SavePlanetPaths(const QString& mapPath)
{
    const auto* layer = m_renderer->FindLayer<CBodyPathLayer>();
    const std::string sidecar = BodyPathsFilePath(mapPath.toStdString());
    if (layer == nullptr || layer->Paths().empty()) {
        QFile::remove(ToQ(sidecar));
        return;
    }
    const std::string text = FormatBodyPaths(layer->Paths());
    const AtomicWriteResult w = WriteFileAtomically(
        sidecar, std::span<const std::uint8_t>(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    if (!w.ok)
        QMessageBox::warning(this, QApplication::applicationName(),
                             tr("The map was saved but its planet paths could not be written to %1: %2")
                                 .arg(ToQ(sidecar), ToQ(w.error)));
}

QString CMapWindow::FilePath() const { return ToQ(m_doc->pathName); }
QString CMapWindow::Title() const { return ToQ(m_doc->title); }
bool CMapWindow::IsModified() const { return m_doc->modified; }

void CMapWindow::ApplyTitle()
{
    setWindowTitle(ToQ(m_doc->title) + QStringLiteral("[*]"));
    setWindowModified(m_doc->modified);
    emit TitleChanged();
}

void CMapWindow::MapChanged()
{
    m_doc->modified = true;
    ApplyTitle();
    RequestRedraw();
    emit StatusChanged();
}

// ------------------------------------------------------------------ saving

bool CMapWindow::WriteTo(const QString& path, SaveTarget target)
{
    const MapFileResult r = SaveMapFile(*m_view, path.toStdString(), target);
    if (!r.Ok()) {
        // A plain message, as the program has always given it.
        QMessageBox box(QMessageBox::NoIcon, QApplication::applicationName(), ToQ(r.Message()), QMessageBox::Ok, this);
        if (!r.systemReason.empty()) box.setInformativeText(ToQ(r.systemReason));
        box.exec();
        return false;
    }
    if (target == SaveTarget::DocumentPath) {
        SavePlanetPaths(path);
        m_app.AddRecentFile(path);
    }
    ApplyTitle();
    return true;
}

bool CMapWindow::Save()
{
    if (m_doc->pathName.empty()) return SaveAs();
    return WriteTo(FilePath(), SaveTarget::DocumentPath);
}

bool CMapWindow::SaveAs()
{
    QString start = FilePath();
    if (start.isEmpty()) start = QDir(m_app.RememberedFolder("Maps")).filePath(Title() + QStringLiteral(".ovm"));
    QString path = QFileDialog::getSaveFileName(this, tr("Save Map As"), start, tr("Orvane Maps (*.ovm);;All Files (*)"));
    if (path.isEmpty()) return false;
    if (QFileInfo(path).suffix().isEmpty()) path += QStringLiteral(".ovm");
    m_app.RememberFolder("Maps", path);
    return WriteTo(path, SaveTarget::DocumentPath);
}

bool CMapWindow::SaveAsDefault()
{
    const QString path = m_app.DefaultMapFile();
    QDir().mkpath(QFileInfo(path).absolutePath());
    return WriteTo(path, SaveTarget::DefaultMapFile);
}

bool CMapWindow::MaybeSave()
{
    if (!m_doc || !m_doc->modified) return true;
    const auto answer = QMessageBox::question(
        this, QApplication::applicationName(), tr("Save changes to %1?").arg(Title()),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Cancel) return false;
    if (answer == QMessageBox::Discard) return true;
    return Save();
}

void CMapWindow::closeEvent(QCloseEvent* event)
{
    if (MaybeSave())
        event->accept();
    else
        event->ignore();
}

// ------------------------------------------------------------------ drawing

RenderOptions CMapWindow::Options() const
{
    RenderOptions o;
    o.scheme = m_app.Scheme();
    o.target = m_target;
    o.showSearchTarget = m_app.ShowSearchTarget();
    return o;
}

void CMapWindow::SetPlottedPasses(sat::PlottedPassList passes)
{
    if (auto* layer = m_renderer->FindLayer<sat::CPlottedPassLayer>()) layer->SetPasses(std::move(passes));
    RequestRedraw();
}

void CMapWindow::ClearPlottedPasses()
{
    if (auto* layer = m_renderer->FindLayer<sat::CPlottedPassLayer>()) layer->Clear();
    RequestRedraw();
}

const sat::PlottedPassList& CMapWindow::PlottedPasses() const
{
    static const sat::PlottedPassList kNone;
    const auto* layer = m_renderer->FindLayer<sat::CPlottedPassLayer>();
    return layer != nullptr ? layer->Passes() : kNone;
}

void CMapWindow::RequestRedraw()
{
    m_redrawTimer.start(kRedrawDelayMs);  // restarts a running timer
}

void CMapWindow::OnRedrawTimer()
{
    m_redrawPending = true;
    update();
}

void CMapWindow::RedrawNow()
{
    m_redrawTimer.stop();
    m_redrawPending = true;
    repaint();
}

void CMapWindow::RenderBacking()
{
    const qreal dpr = devicePixelRatioF();
    const QSize logical = size();
    if (m_backing.size() != logical * dpr) {
        m_backing = QImage(logical * dpr, QImage::Format_ARGB32_Premultiplied);
        m_backing.setDevicePixelRatio(dpr);
    }
    m_backing.fill(BackgroundColour(m_app.Scheme()));
    QPainter painter(&m_backing);
    DrawSurface surface;
    surface.painter = &painter;
    surface.kind = SurfaceKind::RasterDisplay;
    surface.widthPx = logical.width();
    surface.heightPx = logical.height();
    surface.dpiX = logicalDpiX();
    surface.dpiY = logicalDpiY();
    m_renderer->Draw(surface, *m_view, Options());
    painter.end();
    m_backingOffset = QPointF();
    m_redrawPending = false;
    ++m_redrawCount;
    // A catalogue opened for this chart found a damaged file and left it
    // out: tell the user once, after the paint.
    ShowDataFileProblems(this);
}

void CMapWindow::paintEvent(QPaintEvent*)
{
    if (!m_view) return;
    if (m_redrawPending || m_backing.isNull() || m_backing.size() != size() * devicePixelRatioF()) RenderBacking();
    QPainter p(this);
    if (!m_backingOffset.isNull()) p.fillRect(rect(), BackgroundColour(m_app.Scheme()));
    p.drawImage(m_backingOffset, m_backing);
}

void CMapWindow::resizeEvent(QResizeEvent*)
{
    m_redrawPending = true;
}

// ------------------------------------------------------------------ navigation

void CMapWindow::DragSky(QPointF fromPx, QPointF toPx)
{
    // The centre moves to the sky that was at centre − (to − from).
    CCoordinates& c = m_view->coordinates;
    c.SetupSurface(width(), height(), logicalDpiX(), logicalDpiY());
    const CChartFrame frame(m_doc->observer, c);
    const double x = c.ScreenCentreX() - (toPx.x() - fromPx.x());
    const double y = c.ScreenCentreY() - (toPx.y() - fromPx.y());
    if (c.CentringMode() == Centring::AltAz) {
        double alt = 0.0, az = 0.0;
        frame.ScreenToHorizontal(x, y, alt, az);
        c.SetCentreAltAz(m_doc->observer, alt, az);
    } else {
        double ra = 0.0, dec = 0.0;
        frame.ScreenToCatalogue(x, y, ra, dec);
        c.SetCentreRaDec(m_doc->observer, ra, dec);
    }
}

void CMapWindow::ZoomBy(double factor, std::optional<QPointF> anchorPx)
{
    if (!(factor > 0.0)) return;
    CCoordinates& c = m_view->coordinates;
    c.SetupSurface(width(), height(), logicalDpiX(), logicalDpiY());
    double ra = 0.0, dec = 0.0, alt = 0.0, az = 0.0;
    if (anchorPx) {
        const CChartFrame frame(m_doc->observer, c);
        frame.ScreenToCatalogue(anchorPx->x(), anchorPx->y(), ra, dec);
        frame.ScreenToHorizontal(anchorPx->x(), anchorPx->y(), alt, az);
    }
    const Centring before = c.CentringMode();
    m_view->SetField(c.FieldDeg() / factor);
    if (anchorPx) {
        // Keep the sky under the cursor where it was.
        c.SetupSurface(width(), height(), logicalDpiX(), logicalDpiY());
        const CChartFrame frame(m_doc->observer, c);
        double v[3];
        if (before == Centring::AltAz && c.CentringMode() == Centring::AltAz)
            frame.HorizontalToFrame(alt, az, v);
        else
            frame.CatalogueToFrame(ra, dec, EpochPath::Apparent, v);
        ScreenPoint now;
        if (frame.ToScreen(v, now)) DragSky(QPointF(now.x, now.y), *anchorPx);
    }
    MapChanged();
    RedrawNow();
}

void CMapWindow::ZoomIn()
{
    if (m_view->coordinates.ZoomLocked())
        GoToLevel(m_view->Level() + 1);
    else
        ZoomBy(kZoomStep);
}

void CMapWindow::ZoomOut()
{
    if (m_view->coordinates.ZoomLocked())
        GoToLevel(m_view->Level() - 1);
    else
        ZoomBy(1.0 / kZoomStep);
}

void CMapWindow::GoToLevel(int level)
{
    m_view->SetLevel(CLevelTable::Clamp(level), CMapView::TakeField::Yes);
    MapChanged();
    RedrawNow();
}

void CMapWindow::ScrollBy(double rightFraction, double downFraction)
{
    const double px = std::min(width(), height()) * 0.5;
    const QPointF c(width() / 2.0, height() / 2.0);
    // The sky moves the other way: scrolling right brings the sky on the right into view.
    DragSky(c, c - QPointF(rightFraction * px, downFraction * px));
    MapChanged();
    RedrawNow();
}

void CMapWindow::CentreAtPixel(QPointF px)
{
    DragSky(px, QPointF(width() / 2.0, height() / 2.0));
    MapChanged();
    RedrawNow();
}

void CMapWindow::CentreOn(double raJ2000Rad, double decJ2000Rad, std::optional<SearchTarget> target)
{
    CCoordinates& c = m_view->coordinates;
    c.SetCentreRaDec(m_doc->observer, raJ2000Rad, decJ2000Rad);
    if (c.CentringMode() == Centring::AltAz) c.SetCentreAltAz(m_doc->observer, c.CentreAltRad(), c.CentreAzRad());
    if (target) m_target = target;
    MapChanged();
    RedrawNow();
}

void CMapWindow::ClearSearchTarget()
{
    m_target.reset();
    RequestRedraw();
}

void CMapWindow::Rotate(int degrees)
{
    m_view->coordinates.RotateByDegrees(degrees);
    MapChanged();
}

void CMapWindow::Flip(bool horizontal)
{
    CCoordinates& c = m_view->coordinates;
    if (horizontal)
        c.SetFlips(-c.FlipHorizontal(), c.FlipVertical());
    else
        c.SetFlips(c.FlipHorizontal(), -c.FlipVertical());
    MapChanged();
}

// ------------------------------------------------------------------ time

void CMapWindow::SetToNow()
{
    m_doc->observer.SetToNow();
    m_view->coordinates.Update(m_doc->observer);
    MapChanged();
}

void CMapWindow::StepTime(int direction)
{
    m_view->StepTime(direction);
    MapChanged();
}

void CMapWindow::Tick()
{
    const auto mode = static_cast<TimeMode>(m_view->settings.timeMode);
    if (mode == TimeMode::Fixed) return;
    const double nowSeconds = QDateTime::currentMSecsSinceEpoch() / 1000.0;
    const double interval = std::max(1, m_view->settings.timeUpdateInterval);
    if (nowSeconds - m_lastTickSecond < interval) return;
    m_lastTickSecond = nowSeconds;
    if (mode == TimeMode::RealTime) {
        m_doc->observer.SetToNow();
        m_view->coordinates.Update(m_doc->observer);
    } else {
        m_view->StepTime(+1);
    }
    // Following the clock is not an edit of the map.
    RequestRedraw();
    emit StatusChanged();
}

// ------------------------------------------------------------------ status texts

QString CMapWindow::LevelText() const { return ToQ(LevelStatusText(m_view->Level())); }

QString CMapWindow::FieldText() const
{
    const double f = m_view->coordinates.FieldDeg();
    if (f >= 1.0) return tr("Field %1°").arg(f, 0, 'f', f < 10.0 ? 1 : 0);
    if (f * 60.0 >= 1.0) return tr("Field %1′").arg(f * 60.0, 0, 'f', 1);
    return tr("Field %1″").arg(f * 3600.0, 0, 'f', 1);
}

QString CMapWindow::TimeText() const
{
    const CivilDateTime t = m_doc->observer.LocalTime();
    const double zone = m_doc->observer.LocalOffsetHours();
    return QStringLiteral("%1-%2-%3 %4:%5:%6 UTC%7%8")
        .arg(t.year, 4, 10, QLatin1Char('0'))
        .arg(t.month, 2, 10, QLatin1Char('0'))
        .arg(t.day, 2, 10, QLatin1Char('0'))
        .arg(t.hour, 2, 10, QLatin1Char('0'))
        .arg(t.minute, 2, 10, QLatin1Char('0'))
        .arg(static_cast<int>(t.second), 2, 10, QLatin1Char('0'))
        .arg(zone < 0 ? QStringLiteral("−") : QStringLiteral("+"))
        .arg(std::fabs(zone), 0, 'g', 4);
}

void CMapWindow::UpdateCursorTexts(QPointF px)
{
    CCoordinates c = m_view->coordinates;
    c.SetupSurface(width(), height(), logicalDpiX(), logicalDpiY());
    const CChartFrame frame(m_doc->observer, c);
    double ra = 0.0, dec = 0.0, alt = 0.0, az = 0.0;
    frame.ScreenToCatalogue(px.x(), px.y(), ra, dec);
    frame.ScreenToHorizontal(px.x(), px.y(), alt, az);
    m_cursorRaDec = QStringLiteral("α %1  δ %2").arg(ToQ(FormatHms(ra, 1)), ToQ(FormatDms(dec, 0)));
    m_cursorAltAz = QStringLiteral("Alt %1  Az %2").arg(ToQ(FormatDms(alt, 0)), ToQ(FormatDms(az, 0)).mid(1));
    emit StatusChanged();
}

// ------------------------------------------------------------------ identification

std::optional<IdentifiedObject> CMapWindow::IdentifyAt(QPointF px) const
{
    return m_renderer->Identify(px.x(), px.y(), kIdentifyTolerancePx);
}

void CMapWindow::ShowIdentification(QPointF px)
{
    const auto found = IdentifyAt(px);
    if (!found) {
        emit Identified(QString(), tr("No object here"));
        return;
    }
    const QString title = ToQ(found->designation);
    const QString info = ToQ(found->information).trimmed();
    emit Identified(title, info);
    QToolTip::showText(mapToGlobal(px.toPoint()), QStringLiteral("<b>%1</b><br>%2").arg(title.toHtmlEscaped(),
                                                                                       info.toHtmlEscaped().replace('\n', "<br>")),
                       this);
}

// ------------------------------------------------------------------ mouse and keys

void CMapWindow::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) return;
    m_dragging = true;
    m_moved = false;
    m_pressPx = event->position();
    m_lastDragPx = m_pressPx;
}

void CMapWindow::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF pos = event->position();
    if (m_dragging) {
        if (!m_moved && QLineF(pos, m_pressPx).length() <= kClickSlopPx) return;
        m_moved = true;
        DragSky(m_lastDragPx, pos);
        m_backingOffset += pos - m_lastDragPx;
        m_lastDragPx = pos;
        m_doc->modified = true;
        setWindowModified(true);
        update();
        RequestRedraw();
        return;
    }
    UpdateCursorTexts(pos);
}

void CMapWindow::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !m_dragging) return;
    m_dragging = false;
    if (m_moved) {
        MapChanged();
        RedrawNow();
    } else {
        ShowIdentification(event->position());
    }
}

void CMapWindow::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) CentreAtPixel(event->position());
}

void CMapWindow::wheelEvent(QWheelEvent* event)
{
    const double notches = event->angleDelta().y() / 120.0;
    if (notches == 0.0) return;
    const bool fine = event->modifiers() & Qt::ControlModifier;
    if (!fine && m_view->coordinates.ZoomLocked()) {
        GoToLevel(m_view->Level() + (notches > 0 ? 1 : -1));
    } else {
        ZoomBy(std::pow(fine ? kFineZoomStep : kZoomStep, notches), event->position());
    }
    event->accept();
}

void CMapWindow::keyPressEvent(QKeyEvent* event)
{
    const double step = (event->modifiers() & Qt::ShiftModifier) ? 0.05 : 0.25;
    switch (event->key()) {
    case Qt::Key_Left: ScrollBy(-step, 0.0); break;
    case Qt::Key_Right: ScrollBy(step, 0.0); break;
    case Qt::Key_Up: ScrollBy(0.0, -step); break;
    case Qt::Key_Down: ScrollBy(0.0, step); break;
    case Qt::Key_Plus:
    case Qt::Key_Equal: ZoomIn(); break;
    case Qt::Key_Minus: ZoomOut(); break;
    case Qt::Key_PageDown: GoToLevel(m_view->Level() + 1); break;
    case Qt::Key_PageUp: GoToLevel(m_view->Level() - 1); break;
    case Qt::Key_Escape: ClearSearchTarget(); break;
    default: QWidget::keyPressEvent(event); return;
    }
    event->accept();
}

void CMapWindow::contextMenuEvent(QContextMenuEvent* event)
{
    const QPointF px = event->pos();
    QMenu menu(this);
    menu.addAction(tr("&Centre Here"), this, [this, px] { CentreAtPixel(px); });
    menu.addAction(tr("&Identify"), this, [this, px] { ShowIdentification(px); });
    menu.addSeparator();
    menu.addAction(tr("Zoom &In Here"), this, [this, px] { ZoomBy(2.0, px); });
    menu.addAction(tr("Zoom &Out"), this, [this] { ZoomBy(0.5); });
    if (m_target) {
        menu.addSeparator();
        menu.addAction(tr("Clear Search &Target"), this, &CMapWindow::ClearSearchTarget);
    }
    menu.exec(event->globalPos());
}

}  // namespace orv
