#include "app/horizoneditor.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "app/appcontext.h"
#include "util/datapath.h"
#include "util/settingsstore.h"

namespace orv {

namespace {

constexpr int kMinAltDeg = -20, kMaxAltDeg = 60;  // the editor's altitude scale
const char* kCardinals[] = {"N", "NE", "E", "SE", "S", "SW", "W", "NW"};

int Wrap(int deg) { return ((deg % 360) + 360) % 360; }

}  // namespace

// ------------------------------------------------------------ profile widget

CHorizonProfileWidget::CHorizonProfileWidget(QWidget* parent) : QWidget(parent)
{
    setMinimumSize(480, 200);
    setMouseTracking(false);
    setCursor(Qt::CrossCursor);
    setToolTip(tr("Drag with the left button to draw the horizon; right click: marker A, Shift+right click: marker B"));
}

QRectF CHorizonProfileWidget::Plot() const { return QRectF(40, 10, width() - 50, height() - 40); }

double CHorizonProfileWidget::XOf(double azDeg) const { return Plot().left() + azDeg / 360.0 * Plot().width(); }

double CHorizonProfileWidget::YOf(double altDeg) const
{
    return Plot().bottom() - (altDeg - kMinAltDeg) / double(kMaxAltDeg - kMinAltDeg) * Plot().height();
}

int CHorizonProfileWidget::AzimuthAt(double x) const
{
    return std::clamp(static_cast<int>(std::lround((x - Plot().left()) / Plot().width() * 360.0)), 0, 360) % 360;
}

int CHorizonProfileWidget::AltitudeAt(double y) const
{
    const double alt = kMinAltDeg + (Plot().bottom() - y) / Plot().height() * (kMaxAltDeg - kMinAltDeg);
    return std::clamp(static_cast<int>(std::lround(alt)), -90, 90);
}

void CHorizonProfileWidget::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), palette().base());
    const QRectF r = Plot();
    p.setRenderHint(QPainter::Antialiasing, true);
    // The scale: every 10° of altitude, every 15° of azimuth, names at the
    // cardinal and intercardinal points.
    QPen grid(palette().mid().color(), 0, Qt::DotLine);
    p.setPen(grid);
    for (int alt = kMinAltDeg; alt <= kMaxAltDeg; alt += 10) {
        p.setPen(alt == 0 ? QPen(palette().text().color(), 1) : grid);
        p.drawLine(QPointF(r.left(), YOf(alt)), QPointF(r.right(), YOf(alt)));
        p.setPen(palette().text().color());
        p.drawText(QRectF(0, YOf(alt) - 8, r.left() - 4, 16), Qt::AlignRight | Qt::AlignVCenter,
                   QStringLiteral("%1°").arg(alt));
    }
    for (int az = 0; az <= 360; az += 15) {
        p.setPen(grid);
        p.drawLine(QPointF(XOf(az), r.top()), QPointF(XOf(az), r.bottom()));
        p.setPen(palette().text().color());
        const QString label = az % 45 == 0 ? QString::fromLatin1(kCardinals[(az / 45) % 8]) : QString::number(az);
        p.drawText(QRectF(XOf(az) - 20, r.bottom() + 2, 40, 16), Qt::AlignCenter, label);
    }
    if (m_profile == nullptr) return;
    // The ground below the profile and the profile itself.
    QPainterPath ground;
    ground.moveTo(XOf(0), r.bottom());
    for (int k = 0; k <= 360; ++k) ground.lineTo(XOf(k), YOf((*m_profile)[k % 360]));
    ground.lineTo(XOf(360), r.bottom());
    ground.closeSubpath();
    p.save();
    p.setClipRect(r);
    p.fillPath(ground, QColor(60, 110, 60, 150));
    p.setPen(QPen(QColor(20, 90, 20), 2));
    QPolygonF line;
    for (int k = 0; k <= 360; ++k) line << QPointF(XOf(k), YOf((*m_profile)[k % 360]));
    p.drawPolyline(line);
    p.restore();
    // The markers.
    const QColor markerColour[2] = {QColor(200, 40, 40), QColor(40, 60, 200)};
    const int markers[2] = {m_a, m_b};
    for (int i = 0; i < 2; ++i) {
        p.setPen(QPen(markerColour[i], 1, Qt::DashLine));
        p.drawLine(QPointF(XOf(markers[i]), r.top()), QPointF(XOf(markers[i]), r.bottom()));
        p.drawText(QPointF(XOf(markers[i]) + 3, r.top() + 12), i == 0 ? QStringLiteral("A") : QStringLiteral("B"));
    }
}

void CHorizonProfileWidget::mousePressEvent(QMouseEvent* e)
{
    const QPointF pos = e->position();
    if (e->button() == Qt::RightButton) {
        emit MarkerPlaced((e->modifiers() & Qt::ShiftModifier) ? 1 : 0, AzimuthAt(pos.x()));
        return;
    }
    if (e->button() != Qt::LeftButton) return;
    m_dragging = true;
    m_lastAz = AzimuthAt(pos.x());
    m_lastAlt = AltitudeAt(pos.y());
    emit DragStarted();
    emit Dragged(m_lastAz, m_lastAz, m_lastAlt, m_lastAlt);
}

void CHorizonProfileWidget::mouseMoveEvent(QMouseEvent* e)
{
    if (!m_dragging) return;
    const int az = AzimuthAt(e->position().x()), alt = AltitudeAt(e->position().y());
    // Every degree between the last position and this one, so that a fast
    // drag leaves no gaps.
    if (az >= m_lastAz) emit Dragged(m_lastAz, az, m_lastAlt, alt);
    else emit Dragged(az, m_lastAz, alt, m_lastAlt);
    m_lastAz = az;
    m_lastAlt = alt;
}

void CHorizonProfileWidget::mouseReleaseEvent(QMouseEvent*) { m_dragging = false; }

// ------------------------------------------------------------------ dialog

CHorizonEditorDialog::CHorizonEditorDialog(CAppContext& app, const HorizonProfile& profile, const QString& fileName,
                                           std::function<void(const HorizonProfile&, const QString&)> apply,
                                           QWidget* parent)
    : QDialog(parent), m_app(app), m_profile(profile), m_fileName(fileName), m_apply(std::move(apply))
{
    auto* layout = new QVBoxLayout(this);
    m_plot = new CHorizonProfileWidget(this);
    m_plot->SetProfile(&m_profile);
    layout->addWidget(m_plot, 1);

    auto* tools = new QGridLayout;
    m_markerA = new QSpinBox(this);
    m_markerB = new QSpinBox(this);
    for (QSpinBox* s : {m_markerA, m_markerB}) {
        s->setRange(0, 359);
        s->setWrapping(true);
        s->setSuffix(QStringLiteral("°"));
    }
    m_markerB->setValue(90);
    m_labelA = new QLabel(this);
    m_labelB = new QLabel(this);
    m_altitude = new QSpinBox(this);
    m_altitude->setRange(-90, 90);
    m_altitude->setSuffix(QStringLiteral("°"));
    m_altitude->setToolTip(tr("The altitude of the horizon at marker A"));
    m_flatAltitude = new QSpinBox(this);
    m_flatAltitude->setRange(-90, 90);
    m_flatAltitude->setSuffix(QStringLiteral("°"));
    auto buddy = [this](const QString& text, QWidget* field) {
        auto* label = new QLabel(text, this);
        label->setBuddy(field);
        return label;
    };
    tools->addWidget(buddy(tr("Marker &A:"), m_markerA), 0, 0);
    tools->addWidget(m_markerA, 0, 1);
    tools->addWidget(m_labelA, 0, 2);
    tools->addWidget(buddy(tr("A&ltitude at A:"), m_altitude), 0, 3);
    tools->addWidget(m_altitude, 0, 4);
    tools->addWidget(buddy(tr("Marker &B:"), m_markerB), 1, 0);
    tools->addWidget(m_markerB, 1, 1);
    tools->addWidget(m_labelB, 1, 2);
    auto* smooth = new QPushButton(tr("&Smooth A-B"), this);
    auto* flatten = new QPushButton(tr("&Flatten A-B to"), this);
    auto* straight = new QPushButton(tr("S&traight Line A-B"), this);
    tools->addWidget(smooth, 1, 3);
    tools->addWidget(straight, 1, 4);
    tools->addWidget(flatten, 2, 3);
    tools->addWidget(m_flatAltitude, 2, 4);
    layout->addLayout(tools);

    m_useForEvents = new QCheckBox(tr("Use this horizon for rising, setting and \"above the horizon\""), this);
    m_useForEvents->setChecked(m_app.Settings().GetInt("Horizon", "UseForEvents", 0) != 0);
    layout->addWidget(m_useForEvents);

    auto* buttons = new QDialogButtonBox(this);
    auto* undo = buttons->addButton(tr("&Undo"), QDialogButtonBox::ActionRole);
    auto* load = buttons->addButton(tr("&Load..."), QDialogButtonBox::ActionRole);
    auto* import = buttons->addButton(tr("&Import Text..."), QDialogButtonBox::ActionRole);
    auto* save = buttons->addButton(tr("Sa&ve"), QDialogButtonBox::ActionRole);
    auto* saveAs = buttons->addButton(tr("Save &As..."), QDialogButtonBox::ActionRole);
    buttons->addButton(QDialogButtonBox::Close);
    layout->addWidget(buttons);
    undo->setShortcut(QKeySequence::Undo);

    connect(m_plot, &CHorizonProfileWidget::DragStarted, this, [this] {
        m_undo.push_back(m_profile);
    });
    connect(m_plot, &CHorizonProfileWidget::Dragged, this, [this](int from, int to, int altFrom, int altTo) {
        for (int k = from; k <= to; ++k) {
            const int alt = to == from ? altTo : altFrom + (altTo - altFrom) * (k - from) / (to - from);
            m_profile[Wrap(k)] = static_cast<std::int8_t>(std::clamp(alt, -90, 90));
        }
        m_modified = true;
        Applied();
    });
    connect(m_plot, &CHorizonProfileWidget::MarkerPlaced, this,
            [this](int which, int az) { (which == 0 ? m_markerA : m_markerB)->setValue(az); });
    connect(m_markerA, &QSpinBox::valueChanged, this, [this] { Refresh(); });
    connect(m_markerB, &QSpinBox::valueChanged, this, [this] { Refresh(); });
    connect(m_altitude, &QSpinBox::valueChanged, this, [this](int alt) {
        if (m_refreshing || m_profile[m_markerA->value()] == alt) return;
        Edit([&](HorizonProfile& p) { p[m_markerA->value()] = static_cast<std::int8_t>(alt); });
    });
    connect(smooth, &QPushButton::clicked, this,
            [this] { Edit([&](HorizonProfile& p) { SmoothHorizon(p, m_markerA->value(), m_markerB->value()); }); });
    connect(flatten, &QPushButton::clicked, this, [this] {
        Edit([&](HorizonProfile& p) {
            FlattenHorizon(p, m_markerA->value(), m_markerB->value(), m_flatAltitude->value());
        });
    });
    connect(straight, &QPushButton::clicked, this, [this] {
        Edit([&](HorizonProfile& p) { InterpolateHorizon(p, m_markerA->value(), m_markerB->value()); });
    });
    connect(undo, &QPushButton::clicked, this, &CHorizonEditorDialog::Undo);
    connect(load, &QPushButton::clicked, this, &CHorizonEditorDialog::Load);
    connect(import, &QPushButton::clicked, this, &CHorizonEditorDialog::Import);
    connect(save, &QPushButton::clicked, this, &CHorizonEditorDialog::Save);
    connect(saveAs, &QPushButton::clicked, this, &CHorizonEditorDialog::SaveAs);
    connect(buttons, &QDialogButtonBox::rejected, this, &CHorizonEditorDialog::reject);
    connect(m_useForEvents, &QCheckBox::toggled, this, [this](bool on) {
        m_app.Settings().SetInt("Horizon", "UseForEvents", on ? 1 : 0);
        m_app.Settings().Flush();
        Applied();
    });
    Refresh();
}

void CHorizonEditorDialog::Refresh()
{
    m_refreshing = true;
    const int a = m_markerA->value(), b = m_markerB->value();
    m_labelA->setText(QString::asprintf("A %1d:%1d", a, int(m_profile[a])));
    m_labelB->setText(QString::asprintf("B %1d:%1d", b, int(m_profile[b])));
    m_altitude->setValue(m_profile[a]);
    m_plot->SetMarkers(a, b);
    const QString name = m_fileName.isEmpty() ? tr("Untitled") : QFileInfo(m_fileName).fileName();
    if (m_modified)
        setWindowTitle(QString::asprintf("Horizon Editor - %s%s", name.toUtf8().constData(), " (modified)"));
    else
        setWindowTitle(QString::asprintf("Horizon Editor - %s", name.toUtf8().constData()));
    m_refreshing = false;
}

void CHorizonEditorDialog::Applied()
{
    Refresh();
    m_plot->update();
    if (m_apply) m_apply(m_profile, m_fileName);
}

void CHorizonEditorDialog::Edit(const std::function<void(HorizonProfile&)>& change)
{
    m_undo.push_back(m_profile);
    change(m_profile);
    m_modified = true;
    Applied();
}

void CHorizonEditorDialog::Undo()
{
    if (m_undo.empty()) return;
    m_profile = m_undo.back();
    m_undo.pop_back();
    m_modified = true;
    Applied();
}

bool CHorizonEditorDialog::MaybeSave(const QString& question)
{
    if (!m_modified) return true;
    if (QMessageBox::question(this, windowTitle(), question, QMessageBox::Yes | QMessageBox::No) ==
        QMessageBox::Yes)
        return Save();
    return true;
}

void CHorizonEditorDialog::Load()
{
    if (!MaybeSave(tr("The changes you have made to the horizon line\nhave not been saved to a file. Do you want "
                      "to\nsave the changes before loading a new file?")))
        return;
    const QString path = QFileDialog::getOpenFileName(this, tr("Open Horizon"), QString::fromStdString(GetDataPath()),
                                                      tr("Horizon Files (*.hzn);;All files (*)"));
    if (path.isEmpty()) return;
    HorizonProfile loaded = m_profile;
    const HorizonFileResult r = ReadHorizonFile(path.toStdString(), loaded);
    if (!r.ok) {
        QMessageBox::critical(this, windowTitle(), QString::fromStdString(r.message));
        return;
    }
    if (!r.message.empty()) QMessageBox::warning(this, windowTitle(), QString::fromStdString(r.message));
    m_undo.push_back(m_profile);
    m_profile = loaded;
    m_fileName = path;
    m_modified = false;
    m_app.Settings().SetString("Horizon", "Filename", path.toStdString());
    m_app.Settings().Flush();
    Applied();
}

void CHorizonEditorDialog::Import()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Import Horizon"), QString::fromStdString(GetDataPath()),
        tr("Horizon Lists (*.txt *.csv *.hor *.dat);;All files (*)"));
    if (path.isEmpty()) return;
    HorizonProfile imported = m_profile;
    const HorizonFileResult r = ImportHorizonText(path.toStdString(), imported);
    if (!r.ok) {
        QMessageBox::critical(this, windowTitle(), QString::fromStdString(r.message));
        return;
    }
    Edit([&](HorizonProfile& p) { p = imported; });
}

bool CHorizonEditorDialog::SaveTo(const QString& path)
{
    const HorizonFileResult r = WriteHorizonFile(path.toStdString(), m_profile);
    if (!r.ok) {
        QMessageBox::critical(this, windowTitle(), QString::fromStdString(r.message));
        return false;
    }
    m_fileName = path;
    m_modified = false;
    m_app.Settings().SetString("Horizon", "Filename", path.toStdString());
    m_app.Settings().Flush();
    Applied();
    return true;
}

bool CHorizonEditorDialog::Save() { return m_fileName.isEmpty() ? SaveAs() : SaveTo(m_fileName); }

bool CHorizonEditorDialog::SaveAs()
{
    QFileDialog dialog(this, tr("Save Horizon"),
                       m_fileName.isEmpty() ? QString::fromStdString(GetDataPath()) : m_fileName,
                       tr("Horizon Files (*.hzn);;All Files (*)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("hzn"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return false;
    return SaveTo(dialog.selectedFiles().front());
}

void CHorizonEditorDialog::reject()
{
    if (!MaybeSave(tr("The changes you have made to the horizon line\nhave not been saved to a file. Do you want "
                      "to\nsave the changes before exiting the horizon\neditor")))
        return;
    m_modified = false;
    QDialog::reject();
}

void CHorizonEditorDialog::closeEvent(QCloseEvent* e)
{
    e->ignore();
    reject();
}

}  // namespace orv
