#include "app/planetwindows.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include <cmath>

#include "app/appcontext.h"
#include "app/mapwindow.h"
#include "app/resulttablepanel.h"
#include "map/mapdraw.h"
#include "solarsystem/drawbodypath.h"

namespace orv {

namespace {

QString ToQ(const std::string& s) { return QString::fromStdString(s); }

// The bodies in the order of the choosers: the Sun, the Moon, then the
// planets outward.
constexpr int kBodyOrder[] = {kBodySun, kBodyMoon, kBodyMercury, kBodyVenus, kBodyMars,
                              kBodyJupiter, kBodySaturn, kBodyUranus, kBodyNeptune, kBodyPluto};

QComboBox* BodyChooser(QWidget* parent, int body)
{
    auto* box = new QComboBox(parent);
    for (int b : kBodyOrder) {
        box->addItem(QString::fromLatin1(BodyName(b).data(), static_cast<int>(BodyName(b).size())), b);
        if (b == body) box->setCurrentIndex(box->count() - 1);
    }
    return box;
}

QDateEdit* DateChooser(QWidget* parent, const CivilDateTime& date)
{
    auto* edit = new QDateEdit(QDate(date.year, date.month, date.day), parent);
    edit->setCalendarPopup(true);
    edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    edit->setDateRange(QDate(1000, 1, 1), QDate(3000, 12, 31));
    return edit;
}

void ReadChooser(const QComboBox* body, const QDateEdit* from, const QDateEdit* to, const QDoubleSpinBox* step,
                 PlanetSpanChoice& c)
{
    c.body = body->currentData().toInt();
    c.fromYear = from->date().year();
    c.fromMonth = from->date().month();
    c.fromDay = from->date().day();
    c.toYear = to->date().year();
    c.toMonth = to->date().month();
    c.toDay = to->date().day();
    c.stepDays = step->value();
}

// Progress in a dialog with Cancel, for the path.
ProgressFn DialogProgress(QProgressDialog& dialog)
{
    return [&dialog](double fraction) {
        dialog.setValue(static_cast<int>(std::lround(fraction * 1000.0)));
        QApplication::processEvents();
        return dialog.wasCanceled() ? ProgressAnswer::Cancel : ProgressAnswer::Continue;
    };
}

}  // namespace

// ---------------------------------------------------------------- visible list

CVisiblePlanetsDialog::CVisiblePlanetsDialog(CMapWindow& window, CAppContext& app, QWidget* parent)
    : QDialog(parent),
      m_window(window),
      m_rows(VisiblePlanetRows(window.Renderer().WindowScene(), app.Components().objects))
{
    setWindowTitle(tr("Planets Visible on the Map"));
    auto* layout = new QVBoxLayout(this);
    m_panel = new CResultTablePanel(app, CResultTablePanel::Sorting::ByColumn, CResultTablePanel::Selection::Single,
                                    CResultTablePanel::Title::Hidden, this);
    m_panel->SetReportName(QStringLiteral("Planets"));
    m_panel->SetTable(VisiblePlanetsTable(m_rows));
    m_panel->View()->setToolTip(tr("Double-click a body to centre the chart on it"));
    layout->addWidget(m_panel);
    layout->addWidget(new QLabel(m_rows.size() == 1 ? tr("1 body") : tr("%1 bodies").arg(m_rows.size()), this));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    connect(m_panel, &CResultTablePanel::RowActivated, this, &CVisiblePlanetsDialog::CentreOnRow);
    connect(&m_window, &QObject::destroyed, this, &QDialog::close);
    resize(640, 360);
}

void CVisiblePlanetsDialog::CentreOnRow(int row)
{
    if (row < 0 || row >= static_cast<int>(m_rows.size())) return;
    const VisiblePlanetRow& b = m_rows[static_cast<std::size_t>(row)];
    m_window.CentreOn(b.raJ2000Rad, b.decJ2000Rad, SearchTarget{b.raJ2000Rad, b.decJ2000Rad, b.name});
}

void ShowVisiblePlanets(QWidget* parent, CMapWindow& window, CAppContext& app)
{
    auto* dialog = new CVisiblePlanetsDialog(window, app, parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

// ---------------------------------------------------------------- ephemeris

void SpanJulianDates(const CObserverDoc& site, const PlanetSpanChoice& c, double& jdUTFrom, double& jdUTTo)
{
    CObserverDoc o = site;
    o.SetLocalTime(CivilDateTime{c.fromYear, c.fromMonth, c.fromDay, 0, 0, 0.0});
    jdUTFrom = o.JulianDate();
    o.SetLocalTime(CivilDateTime{c.toYear, c.toMonth, c.toDay, 0, 0, 0.0});
    jdUTTo = o.JulianDate();
}

CEphemerisDialog::CEphemerisDialog(const CObserverDoc& site, CAppContext& app, QWidget* parent)
    : QDialog(parent), m_site(site), m_app(app)
{
    setWindowTitle(tr("Ephemeris"));
    auto* layout = new QVBoxLayout(this);
    auto* controls = new QHBoxLayout;
    const CivilDateTime today = site.LocalTime();
    CObserverDoc later = site;
    later.SetJulianDate(site.JulianDate() + 30.0);
    m_body = BodyChooser(this, kBodyJupiter);
    m_from = DateChooser(this, today);
    m_to = DateChooser(this, later.LocalTime());
    m_step = new QDoubleSpinBox(this);
    m_step->setRange(1.0 / 24.0, 3650.0);
    m_step->setDecimals(3);
    m_step->setValue(1.0);
    m_step->setSuffix(tr(" d"));
    m_topocentric = new QCheckBox(tr("&Topocentric"), this);
    // Each label's mnemonic moves to the field beside it.
    auto labelled = [&](const QString& text, QWidget* field) {
        auto* label = new QLabel(text, this);
        label->setBuddy(field);
        controls->addWidget(label);
        controls->addWidget(field);
    };
    labelled(tr("&Body:"), m_body);
    labelled(tr("&From:"), m_from);
    labelled(tr("&To:"), m_to);
    labelled(tr("&Step:"), m_step);
    controls->addWidget(m_topocentric);
    auto* compute = new QPushButton(tr("&Compute"), this);
    compute->setDefault(true);
    controls->addWidget(compute);
    controls->addStretch(1);
    layout->addLayout(controls);
    m_message = new QLabel(this);
    layout->addWidget(m_message);
    m_panel = new CResultTablePanel(app, CResultTablePanel::Sorting::ByColumn, CResultTablePanel::Selection::Extended,
                                    CResultTablePanel::Title::Shown, this);
    m_panel->SetReportName(QStringLiteral("Ephemeris"));
    layout->addWidget(m_panel, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    connect(compute, &QPushButton::clicked, this, [this] { Compute(); });
    resize(1100, 600);
}

PlanetSpanChoice CEphemerisDialog::Choice() const
{
    PlanetSpanChoice c;
    ReadChooser(m_body, m_from, m_to, m_step, c);
    c.topocentric = m_topocentric->isChecked();
    return c;
}

void CEphemerisDialog::SetChoice(const PlanetSpanChoice& c)
{
    const int index = m_body->findData(c.body);
    if (index >= 0) m_body->setCurrentIndex(index);
    m_from->setDate(QDate(c.fromYear, c.fromMonth, c.fromDay));
    m_to->setDate(QDate(c.toYear, c.toMonth, c.toDay));
    m_step->setValue(c.stepDays);
    m_topocentric->setChecked(c.topocentric);
}

bool CEphemerisDialog::Compute()
{
    if (m_panel->InProgress()) return false;
    const PlanetSpanChoice c = Choice();
    EphemerisRequest request;
    request.body = c.body;
    SpanJulianDates(m_site, c, request.jdUTFrom, request.jdUTTo);
    request.stepDays = c.stepDays;
    request.centre = c.topocentric ? PlaceCentre::Topocentric : PlaceCentre::Geocentric;
    request.horizon = m_horizon;
    std::vector<EphemerisRow> rows;
    const QString name = QString::fromLatin1(BodyName(c.body).data(), static_cast<int>(BodyName(c.body).size()));
    const ProgressFn progress = m_panel->BeginProgress(tr("Computing the ephemeris of %1...").arg(name));
    const EphemerisStatus status = ComputeEphemeris(m_site, request, rows, progress);
    m_panel->EndProgress();
    if (status != EphemerisStatus::Ok && status != EphemerisStatus::Cancelled) {
        QMessageBox::warning(this, QApplication::applicationName(), ToQ(EphemerisStatusMessage(status, c.body)));
        return false;
    }
    ResultTable table = MakeEphemerisTable(c.body, rows, m_site.LocalOffsetHours(), m_site.SiteName());
    if (m_horizon) table.title += " (rise and set over the local horizon)";
    m_panel->SetTable(std::move(table));
    m_message->setText(status == EphemerisStatus::Cancelled ? tr("Cancelled: %1 rows computed").arg(rows.size())
                                                            : tr("%1 rows").arg(rows.size()));
    return status == EphemerisStatus::Ok;
}

void ShowEphemeris(QWidget* parent, CMapWindow& window, CAppContext& app)
{
    auto* dialog = new CEphemerisDialog(window.Doc().observer, app, parent);
    if (window.Doc().horizon.useForEvents != 0)
        dialog->SetHorizon(std::make_shared<const HorizonProfile>(window.Doc().horizon.altitudeDeg));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

// ---------------------------------------------------------------- paths

CPlanetPathDialog::CPlanetPathDialog(const CObserverDoc& site, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Plot Planet Path"));
    auto* form = new QFormLayout(this);
    CObserverDoc from = site, to = site;
    from.SetJulianDate(site.JulianDate() - 30.0);
    to.SetJulianDate(site.JulianDate() + 30.0);
    m_body = BodyChooser(this, kBodyMars);
    m_from = DateChooser(this, from.LocalTime());
    m_to = DateChooser(this, to.LocalTime());
    m_step = new QDoubleSpinBox(this);
    m_step->setRange(1.0 / 24.0, 3650.0);
    m_step->setDecimals(3);
    m_step->setValue(5.0);
    m_step->setSuffix(tr(" d"));
    form->addRow(tr("&Body:"), m_body);
    form->addRow(tr("&From:"), m_from);
    form->addRow(tr("&To:"), m_to);
    form->addRow(tr("&Marks every:"), m_step);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

PlanetSpanChoice CPlanetPathDialog::Choice() const
{
    PlanetSpanChoice c;
    ReadChooser(m_body, m_from, m_to, m_step, c);
    return c;
}

bool PlotPlanetPath(QWidget* parent, CMapWindow& window)
{
    const CObserverDoc& site = window.Doc().observer;
    CPlanetPathDialog dialog(site, parent);
    if (dialog.exec() != QDialog::Accepted) return false;
    const PlanetSpanChoice c = dialog.Choice();
    double from = 0.0, to = 0.0;
    SpanJulianDates(site, c, from, to);
    QProgressDialog progress(QObject::tr("Computing the path..."), QObject::tr("Cancel"), 0, 1000, parent);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(300);
    BodyPath path;
    const EphemerisStatus status = ComputeBodyPath(site, c.body, from, to, c.stepDays, path, DialogProgress(progress));
    progress.reset();
    if (status == EphemerisStatus::Cancelled) return false;
    if (status != EphemerisStatus::Ok) {
        QString message = ToQ(EphemerisStatusMessage(status, c.body));
        if (status == EphemerisStatus::InvalidInput) message = QObject::tr("The end date must be after the start date.");
        if (status == EphemerisStatus::TooManyRows) message = QObject::tr("Too many marks: choose a longer step.");
        QMessageBox::warning(parent, QApplication::applicationName(), message);
        return false;
    }
    auto* layer = window.Renderer().FindLayer<CBodyPathLayer>();
    if (layer == nullptr) return false;
    layer->Add(std::move(path));
    window.MapChanged();  // saved with the map (beside its file)
    return true;
}

void ClearPlanetPaths(CMapWindow& window)
{
    auto* layer = window.Renderer().FindLayer<CBodyPathLayer>();
    if (layer == nullptr || layer->Paths().empty()) return;
    layer->Clear();
    window.MapChanged();
}

}  // namespace orv
