#include "app/satellitesheets.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <set>

#include "app/appcontext.h"
#include "app/satellitewindows.h"
#include "satellite/describe.h"
#include "satellite/sattime.h"
#include "satellite/worldmap.h"

namespace orv {

namespace {

QString ToQ(const std::string& s) { return QString::fromStdString(s); }

// "UT+1", "UT−5", "UT+5:30": the offset of the site's civil time.
QString OffsetText(double hours)
{
    const int minutes = static_cast<int>(std::lround(std::fabs(hours) * 60.0));
    QString text = QStringLiteral("UT%1%2").arg(hours < 0.0 ? QStringLiteral("\u2212") : QStringLiteral("+")).arg(minutes / 60);
    if (minutes % 60 != 0) text += QStringLiteral(":%1").arg(minutes % 60, 2, 10, QLatin1Char('0'));
    return text;
}

// Site-local wall-clock times are held in QDateTime as if they were UTC, so
// that the computer's own time zone and its daylight-saving rules never
// enter.
QDateTime LocalWallClock(double jdUT, double localOffsetHours)
{
    const sat::SatCivilTime t = sat::SatCivilFromJulianDate(jdUT + localOffsetHours / 24.0);
    return QDateTime(QDate(t.year, t.month, t.day), QTime(t.hour, t.minute, t.second), Qt::UTC);
}

double JdFromLocalWallClock(const QDateTime& local, double localOffsetHours)
{
    const QDate d = local.date();
    const QTime t = local.time();
    return sat::JulianDateFromSatCivil(d.year(), d.month(), d.day(), t.hour(), t.minute(), t.second()) -
           localOffsetHours / 24.0;
}

// The epoch-age question of the satellite core as the Yes/No warning box.
sat::EpochAgeQuestionFn AskEpochAge(QWidget* parent)
{
    return [parent](const sat::SatelliteRecord&, int daysRounded) {
        const auto answer = QMessageBox::warning(parent, QApplication::applicationName(),
                                                 ToQ(sat::EpochAgeQuestion(daysRounded)),
                                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
        return answer == QMessageBox::Yes ? sat::EpochAgeAnswer::Yes : sat::EpochAgeAnswer::No;
    };
}

QSpinBox* NumberEdit(QWidget* parent, int minimum, int maximum, int value)
{
    auto* spin = new QSpinBox(parent);
    spin->setRange(minimum, maximum);
    spin->setValue(std::clamp(value, minimum, maximum));
    return spin;
}

// A row of widgets as one form field: "calculating a position every [1] minutes".
QWidget* Row(QWidget* parent, std::initializer_list<QWidget*> widgets)
{
    auto* row = new QWidget(parent);
    auto* h = new QHBoxLayout(row);
    h->setContentsMargins(0, 0, 0, 0);
    for (QWidget* w : widgets) h->addWidget(w);
    h->addStretch(1);
    return row;
}

// The epoch-age warning settings (SatAgeWarn, SatAge), shared by both sheets.
QWidget* EpochAgeRow(QWidget* parent, sat::CEarthSatSettings& settings, const std::function<void()>& changed)
{
    auto* warn = new QCheckBox(QObject::tr("Warn when the date is more than"), parent);
    warn->setChecked(settings.epochAgeWarning == sat::EpochAgeWarning::On);
    auto* days = NumberEdit(parent, 0, 36500, settings.epochAgeLimitDays);
    days->setEnabled(warn->isChecked());
    QObject::connect(warn, &QCheckBox::toggled, parent, [&settings, days, changed](bool on) {
        settings.epochAgeWarning = on ? sat::EpochAgeWarning::On : sat::EpochAgeWarning::Off;
        days->setEnabled(on);
        changed();
    });
    QObject::connect(days, &QSpinBox::valueChanged, parent, [&settings, changed](int v) {
        settings.epochAgeLimitDays = v;
        changed();
    });
    return Row(parent, {warn, days, new QLabel(QObject::tr("days from the epoch of the elements"), parent)});
}

// "1 pass", "3 passes".
QString Count(int n, const char* one, const char* many)
{
    return QStringLiteral("%1 %2").arg(n).arg(QString::fromLatin1(n == 1 ? one : many));
}

}  // namespace

std::vector<int> PassTableRowOwners(const sat::PassSearchResult& result, const sat::CEarthSatSettings& settings)
{
    std::vector<int> owners;
    bool first = true;
    for (std::size_t i = 0; i < result.passes.size(); ++i) {
        const sat::SatellitePass& pass = result.passes[i];
        if (pass.display != sat::SatellitePass::Display::Shown || pass.points.empty()) continue;
        if (!first) owners.push_back(-1);
        first = false;
        std::size_t rows = pass.points.size();
        if (settings.passDisplay == sat::PassDisplay::Summary) {
            // First point, highest point (when it is neither end), last point.
            const std::size_t last = pass.points.size() - 1;
            rows = 1 + (pass.maxElevationIndex != 0 && pass.maxElevationIndex != last ? 1 : 0) + (last != 0 ? 1 : 0);
        }
        owners.insert(owners.end(), rows, static_cast<int>(i));
    }
    return owners;
}

int PassColumnKeyOffset(const sat::SatelliteTable& table)
{
    return table.columns.empty() || table.columns.front().heading == "Satellite" ? 0 : 1;
}

// ------------------------------------------------------------------ ground-track pages

CSatelliteGndTrkPage::CSatelliteGndTrkPage(sat::CEarthSatSettings& settings, const sat::SatelliteRecord& record,
                                           double localOffsetHours, double startJdUT, QWidget* parent)
    : QWidget(parent), m_settings(settings), m_localOffsetHours(localOffsetHours)
{
    auto* form = new QFormLayout(this);
    auto* name = new QLabel(tr("<b>%1</b> &nbsp; (orbital period %2 minutes)")
                                .arg(ToQ(record.name).toHtmlEscaped())
                                .arg(record.periodMinutes, 0, 'f', 2),
                            this);
    form->addRow(tr("Satellite:"), name);

    m_start = new QDateTimeEdit(this);
    m_start->setTimeSpec(Qt::UTC);
    m_start->setCalendarPopup(true);
    m_start->setDisplayFormat(QStringLiteral("dd MMM yyyy  HH:mm"));
    m_start->setDateTimeRange(QDateTime(QDate(1957, 1, 1), QTime(0, 0), Qt::UTC),
                              QDateTime(QDate(2100, 12, 31), QTime(23, 59), Qt::UTC));
    SetStartJdUT(startJdUT);
    form->addRow(tr("Start at:"), Row(this, {m_start, new QLabel(tr("local time (%1)").arg(OffsetText(localOffsetHours)), this)}));

    auto* group = new QButtonGroup(this);
    m_lengthChoice = new QRadioButton(tr("Length of the track:"), this);
    m_orbitChoice = new QRadioButton(tr("One orbit of the satellite."), this);
    group->addButton(m_lengthChoice);
    group->addButton(m_orbitChoice);
    m_length = NumberEdit(this, 1, 14 * 1440, settings.groundTrackLengthMin);
    const bool orbit = settings.groundTrackDuration == sat::GroundTrackDuration::OneOrbit;
    m_orbitChoice->setChecked(orbit);
    m_lengthChoice->setChecked(!orbit);
    m_length->setEnabled(!orbit);
    form->addRow(Row(this, {m_lengthChoice, m_length, new QLabel(tr("minutes"), this)}));
    form->addRow(m_orbitChoice);
    m_interval = NumberEdit(this, 1, 1440, settings.groundTrackIntervalMin);
    form->addRow(Row(this, {new QLabel(tr("calculating a position every"), this), m_interval,
                            new QLabel(tr("minutes"), this)}));

    auto* distance = new QComboBox(this);
    distance->addItems({tr("kilometres"), tr("miles"), tr("nautical miles")});
    distance->setCurrentIndex(static_cast<int>(settings.distanceUnit));
    auto* speed = new QComboBox(this);
    speed->addItems({tr("kilometres per second"), tr("kilometres per hour"), tr("miles per second"), tr("miles per hour")});
    speed->setCurrentIndex(static_cast<int>(settings.speedUnit));
    form->addRow(tr("Heights in:"), Row(this, {distance}));
    form->addRow(tr("Speeds in:"), Row(this, {speed}));
    const auto changed = [this] { emit Changed(); };
    form->addRow(EpochAgeRow(this, settings, changed));

    connect(m_start, &QDateTimeEdit::dateTimeChanged, this, changed);
    connect(m_orbitChoice, &QRadioButton::toggled, this, [this](bool on) {
        m_settings.groundTrackDuration = on ? sat::GroundTrackDuration::OneOrbit : sat::GroundTrackDuration::Minutes;
        m_length->setEnabled(!on);
        emit Changed();
    });
    connect(m_length, &QSpinBox::valueChanged, this, [this](int v) {
        m_settings.groundTrackLengthMin = v;
        emit Changed();
    });
    connect(m_interval, &QSpinBox::valueChanged, this, [this](int v) {
        m_settings.groundTrackIntervalMin = v;
        emit Changed();
    });
    connect(distance, &QComboBox::currentIndexChanged, this, [this](int i) {
        m_settings.distanceUnit = static_cast<sat::DistanceUnit>(i);
        emit Changed();
    });
    connect(speed, &QComboBox::currentIndexChanged, this, [this](int i) {
        m_settings.speedUnit = static_cast<sat::SpeedUnit>(i);
        emit Changed();
    });
}

double CSatelliteGndTrkPage::StartJdUT() const { return JdFromLocalWallClock(m_start->dateTime(), m_localOffsetHours); }

void CSatelliteGndTrkPage::SetStartJdUT(double jdUT)
{
    // Whole minutes: the table shows the time to the minute.
    const double minute = std::round(jdUT * 1440.0) / 1440.0;
    m_start->setDateTime(LocalWallClock(minute, m_localOffsetHours));
}

CSatelliteGndTrkTablePage::CSatelliteGndTrkTablePage(CAppContext& app, QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    m_panel = new CResultTablePanel(app, CResultTablePanel::Sorting::ByColumn, CResultTablePanel::Selection::Single,
                                    CResultTablePanel::Title::Shown, this);
    m_panel->SetReportName(QStringLiteral("Ground track"));
    layout->addWidget(m_panel);
    QHBoxLayout* buttons = m_panel->Buttons();
    auto* back = new QPushButton(QStringLiteral("-1 Orbit"), this);
    auto* forward = new QPushButton(QStringLiteral("+1 Orbit"), this);
    buttons->insertWidget(0, back);
    buttons->insertWidget(1, forward);
    connect(back, &QPushButton::clicked, this, [this] { emit ShiftOrbits(-1); });
    connect(forward, &QPushButton::clicked, this, [this] { emit ShiftOrbits(+1); });
}

// The world map of the map page.
class CGroundTrackCanvas : public QWidget {
public:
    explicit CGroundTrackCanvas(QWidget* parent) : QWidget(parent)
    {
        sat::CWorldMap map;
        // Without the map file the track is drawn over the graticule alone.
        if (map.LoadFromDataFolder() == sat::WorldMapStatus::Ok) m_land = sat::JoinWorldOutlines(map.Polylines());
        setMinimumSize(480, 280);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    }
    void Draw(QPainter& painter, const QRectF& area) const
    {
        sat::DrawGroundTrackMap(painter, area, m_land, m_track, options);
    }

    sat::GroundTrackMapOptions options;
    sat::GroundTrackResult m_track;
    std::vector<sat::WorldOutline> m_land;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        Draw(painter, rect());
    }
};

CSatelliteGndTrkMapPage::CSatelliteGndTrkMapPage(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    m_canvas = new CGroundTrackCanvas(this);
    layout->addWidget(m_canvas, 1);
    auto* controls = new QHBoxLayout;
    auto* west = new QPushButton(QStringLiteral("<"), this);
    auto* east = new QPushButton(QStringLiteral(">"), this);
    west->setToolTip(tr("Turn the map 15° west"));
    east->setToolTip(tr("Turn the map 15° east"));
    west->setAutoRepeat(true);
    east->setAutoRepeat(true);
    const int w = west->fontMetrics().horizontalAdvance(QStringLiteral("<<")) + 24;
    west->setMaximumWidth(w);
    east->setMaximumWidth(w);
    controls->addWidget(west);
    controls->addWidget(east);
    controls->addStretch(1);
    m_labelInterval = NumberEdit(this, 0, 1440, 10);
    m_labelInterval->setSpecialValueText(tr("no labels"));
    controls->addWidget(new QLabel(tr("Label the track every"), this));
    controls->addWidget(m_labelInterval);
    controls->addWidget(new QLabel(tr("minutes"), this));
    layout->addLayout(controls);
    connect(west, &QPushButton::clicked, this, [this] { Rotate(-1); });
    connect(east, &QPushButton::clicked, this, [this] { Rotate(+1); });
    connect(m_labelInterval, &QSpinBox::valueChanged, this, [this](int v) {
        m_canvas->options.labelIntervalMin = v;
        m_canvas->update();
    });
}

void CSatelliteGndTrkMapPage::SetTrack(const sat::GroundTrackResult& track, const std::string& title,
                                       double localOffsetHours)
{
    m_canvas->m_track = track;
    m_canvas->options.title = title;
    m_canvas->options.localOffsetHours = localOffsetHours;
    m_canvas->options.labelIntervalMin = m_labelInterval->value();
    m_canvas->update();
}

void CSatelliteGndTrkMapPage::Rotate(int steps)
{
    double c = m_canvas->options.centralLongitudeDeg + 15.0 * steps;
    c = std::fmod(c + 540.0, 360.0) - 180.0;
    m_canvas->options.centralLongitudeDeg = c;
    m_canvas->update();
}

double CSatelliteGndTrkMapPage::CentralLongitudeDeg() const { return m_canvas->options.centralLongitudeDeg; }
int CSatelliteGndTrkMapPage::LabelIntervalMin() const { return m_labelInterval->value(); }

QImage CSatelliteGndTrkMapPage::Render(const QSize& size) const
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    QPainter painter(&image);
    m_canvas->Draw(painter, QRectF(QPointF(0, 0), QSizeF(size)));
    return image;
}

// ------------------------------------------------------------------ ground-track sheet

CSatelliteGndTrkSheet::CSatelliteGndTrkSheet(CAppContext& app, CSatelliteDoc& doc, int satelliteIndex,
                                             const CObserverDoc& observer, QWidget* parent)
    : QDialog(parent),
      m_doc(doc),
      m_record(doc.List()[static_cast<std::size_t>(satelliteIndex)]),
      m_localOffsetHours(observer.LocalOffsetHours()),
      m_settings(doc.Settings())
{
    setWindowTitle(tr("Ground Track of %1").arg(ToQ(m_record.name)));
    auto* layout = new QVBoxLayout(this);
    m_tabs = new QTabWidget(this);
    m_settingsPage = new CSatelliteGndTrkPage(m_settings, m_record, m_localOffsetHours, observer.JulianDate(), this);
    m_tablePage = new CSatelliteGndTrkTablePage(app, this);
    m_mapPage = new CSatelliteGndTrkMapPage(this);
    m_tabs->addTab(m_settingsPage, tr("Ground Track"));
    m_tabs->addTab(m_tablePage, tr("Table"));
    m_tabs->addTab(m_mapPage, tr("Map"));
    layout->addWidget(m_tabs, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    connect(m_settingsPage, &CSatelliteGndTrkPage::Changed, this, [this] { m_stale = true; });
    connect(m_tablePage, &CSatelliteGndTrkTablePage::ShiftOrbits, this, &CSatelliteGndTrkSheet::ShiftOrbits);
    connect(m_tabs, &QTabWidget::currentChanged, this, [this](int page) {
        if (page != kSettingsPage && m_stale) Compute();
    });
    resize(820, 600);
}

void CSatelliteGndTrkSheet::ShowPage(int page) { m_tabs->setCurrentIndex(page); }

bool CSatelliteGndTrkSheet::Compute()
{
    const double start = m_settingsPage->StartJdUT();
    m_track = sat::ComputeGroundTrack(m_record, start, m_settings, AskEpochAge(this));
    m_stale = false;
    const bool computed = m_track.outcome == sat::GroundTrackResult::Outcome::Computed;
    if (!computed) m_track.points.clear();
    const sat::SatelliteTable table = sat::MakeGroundTrackTable(m_record, m_track, m_settings, m_localOffsetHours);
    // The columns keep what the user made of them in the table shown before.
    m_tablePage->Panel()->StoreLayouts(m_settings.groundTrackColumns);
    m_tablePage->Panel()->SetTable(table, m_settings.groundTrackColumns);
    m_mapPage->SetTrack(m_track, table.title, m_localOffsetHours);
    if (computed && m_track.points.empty() && m_track.failedSteps > 0)
        QMessageBox::warning(this, QApplication::applicationName(),
                             tr("No position of %1 could be computed for these times: %2.")
                                 .arg(ToQ(m_record.name), ToQ(std::string(sat::PropagationStatusText(m_track.firstFailure)))));
    return computed;
}

void CSatelliteGndTrkSheet::ShiftOrbits(int orbits)
{
    m_settingsPage->SetStartJdUT(sat::ShiftByOrbits(m_record, m_settingsPage->StartJdUT(), orbits));
    Compute();
}

void CSatelliteGndTrkSheet::accept()
{
    m_tablePage->Panel()->StoreLayouts(m_settings.groundTrackColumns);
    m_doc.SetSettings(m_settings);
    QDialog::accept();
}

// ------------------------------------------------------------------ pass pages

CSatellitePassSelectPage::CSatellitePassSelectPage(sat::CEarthSatSettings& settings, const QString& satelliteName,
                                                   QDate startDate, QWidget* parent)
    : QWidget(parent), m_settings(settings)
{
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    layout->addLayout(form);
    m_date = new QDateEdit(this);
    m_date->setCalendarPopup(true);
    m_date->setDisplayFormat(QStringLiteral("dd MMM yyyy"));
    m_date->setDateRange(QDate(1957, 1, 1), QDate(2100, 12, 31));
    m_date->setDate(startDate);
    form->addRow(tr("Start at midday on:"), Row(this, {m_date}));

    auto* which = new QGroupBox(tr("Satellites"), this);
    auto* whichLayout = new QGridLayout(which);
    m_selected = new QRadioButton(tr("Show passes of the currently selected satellite"), which);
    m_all = new QRadioButton(tr("Show passes of all the satellites in the list"), which);
    auto* whichGroup = new QButtonGroup(which);
    whichGroup->addButton(m_selected);
    whichGroup->addButton(m_all);
    whichLayout->addWidget(m_selected, 0, 0, 1, 3);
    if (!satelliteName.isEmpty()) whichLayout->addWidget(new QLabel(QStringLiteral("(%1)").arg(satelliteName), which), 0, 3);
    m_duration = NumberEdit(which, 1, 365, settings.passDurationDays);
    whichLayout->addWidget(new QLabel(tr("      for"), which), 1, 0);
    whichLayout->addWidget(m_duration, 1, 1);
    whichLayout->addWidget(new QLabel(tr("days"), which), 1, 2);
    whichLayout->addWidget(m_all, 2, 0, 1, 4);
    whichLayout->addWidget(new QLabel(tr("      for one night (24 hours when the passes need not be visible)"), which), 3, 0, 1, 4);
    whichLayout->setColumnStretch(3, 1);
    layout->addWidget(which);
    const bool haveSatellite = !satelliteName.isEmpty();
    if (!haveSatellite) settings.passScope = sat::PassScope::AllSatellites;
    m_selected->setEnabled(haveSatellite);
    m_selected->setChecked(settings.passScope == sat::PassScope::SelectedSatellite);
    m_all->setChecked(settings.passScope == sat::PassScope::AllSatellites);
    m_duration->setEnabled(m_selected->isChecked());

    auto* rules = new QGroupBox(tr("Passes"), this);
    auto* rulesForm = new QFormLayout(rules);
    m_visible = new QCheckBox(tr("Show only visible passes"), rules);
    m_visible->setChecked(settings.passVisibility == sat::PassVisibility::VisibleOnly);
    m_visible->setToolTip(tr("The satellite sunlit and the Sun 6° or more below the horizon"));
    rulesForm->addRow(m_visible);
    m_minAltFlag = new QCheckBox(tr("Show only passes with a minimum altitude"), rules);
    m_minAltFlag->setChecked(settings.passMinAltitude == sat::PassMinimumAltitude::Apply);
    m_minAlt = NumberEdit(rules, 0, 90, settings.passMinAltitudeDeg);
    m_minAlt->setSuffix(QStringLiteral("°"));
    m_minAlt->setEnabled(m_minAltFlag->isChecked());
    rulesForm->addRow(Row(rules, {m_minAltFlag, m_minAlt}));
    auto* distance = new QComboBox(rules);
    distance->addItems({tr("kilometres"), tr("miles"), tr("nautical miles")});
    distance->setCurrentIndex(static_cast<int>(settings.distanceUnit));
    rulesForm->addRow(tr("Range and rate in:"), Row(rules, {distance}));
    layout->addWidget(rules);

    auto* display = new QGroupBox(tr("Display"), this);
    auto* displayForm = new QFormLayout(display);
    m_summary = new QRadioButton(tr("Summary"), display);
    m_full = new QRadioButton(tr("Full"), display);
    auto* displayGroup = new QButtonGroup(display);
    displayGroup->addButton(m_summary);
    displayGroup->addButton(m_full);
    m_summary->setChecked(settings.passDisplay == sat::PassDisplay::Summary);
    m_full->setChecked(settings.passDisplay == sat::PassDisplay::Full);
    m_summary->setToolTip(tr("The start, the highest point and the end of each pass"));
    m_full->setToolTip(tr("Every position of each pass"));
    displayForm->addRow(Row(display, {m_summary, m_full}));
    m_positionInterval = NumberEdit(display, 1, 3600, settings.passPositionIntervalSec);
    displayForm->addRow(Row(display, {new QLabel(tr("Display positions every"), display), m_positionInterval,
                                      new QLabel(tr("seconds"), display)}));
    m_labelInterval = NumberEdit(display, 1, 3600, settings.passLabelIntervalSec);
    displayForm->addRow(Row(display, {new QLabel(tr("Label position every:"), display), m_labelInterval,
                                      new QLabel(tr("seconds (passes plotted on the star chart)"), display)}));
    layout->addWidget(display);

    const auto changed = [this] { emit Changed(); };
    layout->addWidget(EpochAgeRow(this, settings, changed));
    layout->addStretch(1);

    connect(m_date, &QDateEdit::dateChanged, this, changed);
    connect(m_selected, &QRadioButton::toggled, this, [this](bool on) {
        m_settings.passScope = on ? sat::PassScope::SelectedSatellite : sat::PassScope::AllSatellites;
        m_duration->setEnabled(on);
        emit Changed();
    });
    connect(m_duration, &QSpinBox::valueChanged, this, [this](int v) {
        m_settings.passDurationDays = v;
        emit Changed();
    });
    connect(m_visible, &QCheckBox::toggled, this, [this](bool on) {
        m_settings.passVisibility = on ? sat::PassVisibility::VisibleOnly : sat::PassVisibility::AllPasses;
        emit Changed();
    });
    connect(m_minAltFlag, &QCheckBox::toggled, this, [this](bool on) {
        m_settings.passMinAltitude = on ? sat::PassMinimumAltitude::Apply : sat::PassMinimumAltitude::Ignore;
        m_minAlt->setEnabled(on);
        emit Changed();
    });
    connect(m_minAlt, &QSpinBox::valueChanged, this, [this](int v) {
        m_settings.passMinAltitudeDeg = v;
        emit Changed();
    });
    connect(distance, &QComboBox::currentIndexChanged, this, [this](int i) {
        m_settings.distanceUnit = static_cast<sat::DistanceUnit>(i);
        emit Changed();
    });
    connect(m_full, &QRadioButton::toggled, this, [this](bool on) {
        m_settings.passDisplay = on ? sat::PassDisplay::Full : sat::PassDisplay::Summary;
        emit Changed();
    });
    connect(m_positionInterval, &QSpinBox::valueChanged, this, [this](int v) {
        m_settings.passPositionIntervalSec = v;
        emit Changed();
    });
    // The label interval only changes how plotted passes are drawn.
    connect(m_labelInterval, &QSpinBox::valueChanged, this, [this](int v) { m_settings.passLabelIntervalSec = v; });
}

QDate CSatellitePassSelectPage::StartDate() const { return m_date->date(); }
void CSatellitePassSelectPage::SetStartDate(QDate date) { m_date->setDate(date); }

CSatellitePassTablePage::CSatellitePassTablePage(CAppContext& app, QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    // Passes keep their rows together: the table does not sort.
    m_panel = new CResultTablePanel(app, CResultTablePanel::Sorting::None, CResultTablePanel::Selection::Extended,
                                    CResultTablePanel::Title::Shown, this);
    m_panel->SetReportName(QStringLiteral("Passes"));
    layout->addWidget(m_panel);
    m_status = new QLabel(this);
    layout->insertWidget(1, m_status);
    QHBoxLayout* buttons = m_panel->Buttons();
    auto* back = new QPushButton(QStringLiteral("-"), this);
    auto* forward = new QPushButton(QStringLiteral("+"), this);
    back->setToolTip(tr("The period before"));
    forward->setToolTip(tr("The period after"));
    const int w = back->fontMetrics().horizontalAdvance(QStringLiteral("+")) + 36;
    back->setMaximumWidth(w);
    forward->setMaximumWidth(w);
    m_plot = new QPushButton(tr("&Plot on Chart"), this);
    m_plot->setToolTip(tr("Draw the selected passes (all of them when none is selected) on the active star chart"));
    buttons->insertWidget(0, back);
    buttons->insertWidget(1, forward);
    buttons->insertWidget(2, m_plot);
    connect(back, &QPushButton::clicked, this, [this] { emit Step(-1); });
    connect(forward, &QPushButton::clicked, this, [this] { emit Step(+1); });
    connect(m_plot, &QPushButton::clicked, this, &CSatellitePassTablePage::PlotRequested);
}

void CSatellitePassTablePage::SetStatus(const QString& text) { m_status->setText(text); }
QString CSatellitePassTablePage::Status() const { return m_status->text(); }

// ------------------------------------------------------------------ pass sheet

CSatellitePassSheet::CSatellitePassSheet(CAppContext& app, CSatelliteDoc& doc, int satelliteIndex,
                                         const CObserverDoc& observer, PlotFn plot, QWidget* parent)
    : QDialog(parent),
      m_app(app),
      m_doc(doc),
      m_satelliteIndex(satelliteIndex >= 0 && static_cast<std::size_t>(satelliteIndex) < doc.List().Size()
                           ? satelliteIndex
                           : -1),
      m_observer(observer),
      m_plot(std::move(plot)),
      m_settings(doc.Settings())
{
    const QString name =
        m_satelliteIndex >= 0 ? ToQ(doc.List()[static_cast<std::size_t>(m_satelliteIndex)].name) : QString();
    setWindowTitle(tr("Satellite Passes over %1").arg(ToQ(observer.SiteName())));
    auto* layout = new QVBoxLayout(this);
    m_tabs = new QTabWidget(this);
    const CivilDateTime local = observer.LocalTime();
    m_selectPage = new CSatellitePassSelectPage(m_settings, name, QDate(local.year, local.month, local.day), this);
    m_tablePage = new CSatellitePassTablePage(app, this);
    m_tabs->addTab(m_selectPage, tr("Pass Prediction"));
    m_tabs->addTab(m_tablePage, tr("Passes"));
    layout->addWidget(m_tabs, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    connect(m_selectPage, &CSatellitePassSelectPage::Changed, this, [this] { m_stale = true; });
    connect(m_tablePage, &CSatellitePassTablePage::Step, this, &CSatellitePassSheet::StepPeriod);
    connect(m_tablePage, &CSatellitePassTablePage::PlotRequested, this, &CSatellitePassSheet::PlotSelected);
    connect(m_tabs, &QTabWidget::currentChanged, this, [this](int page) {
        if (page == kTablePage && m_stale) Compute();
    });
    resize(860, 620);
}

void CSatellitePassSheet::ShowPage(int page) { m_tabs->setCurrentIndex(page); }

bool CSatellitePassSheet::Compute()
{
    m_stale = false;
    m_result = sat::PassSearchResult{};
    m_rowOwners.clear();
    m_resultSettings = m_settings;
    const bool all = m_settings.passScope == sat::PassScope::AllSatellites || m_satelliteIndex < 0;
    if (all) m_resultSettings.passScope = sat::PassScope::AllSatellites;
    const QDate date = m_selectPage->StartDate();
    const double localOffset = m_observer.LocalOffsetHours();
    const double startJd = sat::LocalMiddayJd(date.year(), date.month(), date.day(), localOffset);

    if (all)
        m_searched = m_doc.List().Records();
    else
        m_searched = {m_doc.List()[static_cast<std::size_t>(m_satelliteIndex)]};
    if (m_searched.empty()) {
        m_tablePage->Panel()->SetTable(sat::SatelliteTable{}, m_settings.passColumns);
        return false;
    }

    CResultTablePanel* panel = m_tablePage->Panel();
    sat::PassSearchCallbacks callbacks;
    callbacks.askEpochAge = AskEpochAge(this);
    callbacks.progress = panel->BeginProgress(
        all ? tr("Searching for passes of %1...").arg(Count(static_cast<int>(m_searched.size()), "satellite", "satellites"))
            : tr("Searching for passes of %1...").arg(ToQ(m_searched.front().name)));
    if (all)
        m_result = sat::SearchAllSatellitePasses(m_searched, m_observer, startJd, m_resultSettings, callbacks);
    else
        m_result = sat::SearchSatellitePasses(m_searched.front(), 0, sat::SiteOfObserver(m_observer), startJd,
                                              m_resultSettings, callbacks);
    panel->EndProgress();

    // Passes too long to show: one box naming each satellite concerned.
    std::vector<std::string> notices = sat::TooManyPointsNotices(m_searched, m_result);
    std::vector<std::string> distinct;
    for (const std::string& n : notices)
        if (std::find(distinct.begin(), distinct.end(), n) == distinct.end()) distinct.push_back(n);
    if (!distinct.empty()) {
        constexpr std::size_t kMostShown = 4;
        QStringList texts;
        for (std::size_t i = 0; i < distinct.size() && i < kMostShown; ++i) texts << ToQ(distinct[i]);
        if (distinct.size() > kMostShown)
            texts << tr("(and %1 more with passes too long to be displayed)")
                         .arg(Count(static_cast<int>(distinct.size() - kMostShown), "satellite", "satellites"));
        QMessageBox::critical(this, QApplication::applicationName(), texts.join(QStringLiteral("\n\n")));
    }

    const sat::SatelliteTable table =
        sat::MakePassTable(m_searched, m_result, m_resultSettings, m_resultSettings.passScope, localOffset);
    panel->StoreLayouts(m_settings.passColumns, PassColumnKeyOffset(panel->Table()));
    panel->SetTable(table, m_settings.passColumns, PassColumnKeyOffset(table));
    m_rowOwners = PassTableRowOwners(m_result, m_resultSettings);
    std::set<int> passesShown;
    for (int owner : m_rowOwners)
        if (owner >= 0) passesShown.insert(owner);
    const int shown = static_cast<int>(passesShown.size());
    QString status = m_result.completion == sat::PassSearchResult::Completion::Cancelled
                         ? tr("The search was cancelled; the passes found until then are listed.")
                         : shown == 0 ? tr("No passes were found.") : Count(shown, "pass.", "passes.");
    if (!m_result.abandonedSatellites.empty())
        status += QLatin1Char(' ') + tr("%1 left out because of the age of their elements.")
                                        .arg(Count(static_cast<int>(m_result.abandonedSatellites.size()), "satellite", "satellites"));
    m_tablePage->SetStatus(status);
    return true;
}

sat::PlottedPassList CSatellitePassSheet::SelectedPasses() const
{
    sat::PlottedPassList list;
    list.labelIntervalSec = m_settings.passLabelIntervalSec;
    std::set<int> chosen;
    for (const int row : m_tablePage->Panel()->SelectedTableRows())
        if (row >= 0 && static_cast<std::size_t>(row) < m_rowOwners.size() && m_rowOwners[static_cast<std::size_t>(row)] >= 0)
            chosen.insert(m_rowOwners[static_cast<std::size_t>(row)]);
    if (chosen.empty())
        for (int owner : m_rowOwners)
            if (owner >= 0) chosen.insert(owner);
    for (int index : chosen) {
        const sat::SatellitePass& pass = m_result.passes[static_cast<std::size_t>(index)];
        const std::string name = pass.satelliteIndex >= 0 && static_cast<std::size_t>(pass.satelliteIndex) < m_searched.size()
                                     ? m_searched[static_cast<std::size_t>(pass.satelliteIndex)].name
                                     : std::string();
        list.passes.push_back(sat::MakePlottedPass(name, pass, m_observer));
    }
    return list;
}

void CSatellitePassSheet::PlotSelected()
{
    sat::PlottedPassList passes = SelectedPasses();
    if (passes.passes.empty()) return;
    const int count = static_cast<int>(passes.passes.size());
    if (!m_plot || !m_plot(std::move(passes)))
        QMessageBox::information(this, QApplication::applicationName(), tr("Open a star chart to plot the passes on."));
    else
        m_tablePage->SetStatus(tr("%1 plotted on the star chart.").arg(Count(count, "pass", "passes")));
}

void CSatellitePassSheet::StepPeriod(int direction)
{
    const bool all = m_settings.passScope == sat::PassScope::AllSatellites || m_satelliteIndex < 0;
    const int days = all ? 1 : m_settings.passDurationDays;
    m_selectPage->SetStartDate(m_selectPage->StartDate().addDays(static_cast<qint64>(direction) * days));
    Compute();
}

void CSatellitePassSheet::accept()
{
    m_tablePage->Panel()->StoreLayouts(m_settings.passColumns, PassColumnKeyOffset(m_tablePage->Panel()->Table()));
    m_doc.SetSettings(m_settings);
    QDialog::accept();
}

}  // namespace orv
