#include "app/dialogs.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSaveFile>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

#include <cmath>

#include "app/appcontext.h"
#include "app/mapwindow.h"
#include "app/visiblestars.h"
#include "catalog/constellations/drawconstellations.h"
#include "map/mapview.h"
#include "util/angles.h"
#include "util/settingsstore.h"

namespace orv {

namespace {
QString ToQ(const std::string& s) { return QString::fromStdString(s); }

QDialogButtonBox* OkCancel(QDialog* dialog)
{
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}
}  // namespace

QDialogButtonBox* OkCancelSaveDefaults(QDialog* dialog, std::function<void()> saveDefaults)
{
    QDialogButtonBox* buttons = OkCancel(dialog);
    QPushButton* defaults = buttons->addButton(QObject::tr("Save as &Defaults"), QDialogButtonBox::ActionRole);
    QObject::connect(defaults, &QPushButton::clicked, dialog, std::move(saveDefaults));
    return buttons;
}

// ------------------------------------------------------------------ settings form

CSettingsForm::CSettingsForm(QWidget* parent) : QWidget(parent), m_form(new QFormLayout(this)) {}

void CSettingsForm::AddCheck(const QString& label, int& value)
{
    auto* box = new QCheckBox(label, this);
    box->setChecked(value != 0);
    connect(box, &QCheckBox::toggled, this, [&value](bool on) { value = on ? 1 : 0; });
    m_form->addRow(box);
}

void CSettingsForm::AddNumber(const QString& label, int& value, int minimum, int maximum, const QString& suffix)
{
    auto* spin = new QSpinBox(this);
    spin->setRange(minimum, maximum);
    spin->setValue(value);
    spin->setSuffix(suffix);
    connect(spin, &QSpinBox::valueChanged, this, [&value](int v) { value = v; });
    m_form->addRow(label, spin);
}

void CSettingsForm::AddHundredths(const QString& label, int& value, double minimum, double maximum,
                                  const QString& suffix)
{
    auto* spin = new QDoubleSpinBox(this);
    spin->setDecimals(2);
    spin->setSingleStep(0.1);
    spin->setRange(minimum, maximum);
    spin->setValue(value / 100.0);
    spin->setSuffix(suffix);
    connect(spin, &QDoubleSpinBox::valueChanged, this, [&value](double v) { value = static_cast<int>(std::lround(v * 100.0)); });
    m_form->addRow(label, spin);
}

void CSettingsForm::AddThousandths(const QString& label, int& value, double minimum, double maximum)
{
    auto* spin = new QDoubleSpinBox(this);
    spin->setDecimals(3);
    spin->setSingleStep(0.05);
    spin->setRange(minimum, maximum);
    spin->setValue(value / 1000.0);
    connect(spin, &QDoubleSpinBox::valueChanged, this, [&value](double v) { value = static_cast<int>(std::lround(v * 1000.0)); });
    m_form->addRow(label, spin);
}

void CSettingsForm::AddLevels(const QString& label, int& low, int& high)
{
    auto* row = new QWidget(this);
    auto* h = new QHBoxLayout(row);
    h->setContentsMargins(0, 0, 0, 0);
    const auto spin = [row](int& v) {
        auto* s = new QSpinBox(row);
        s->setRange(0, kLevelCount);
        s->setSpecialValueText(QObject::tr("never"));
        s->setValue(v < 0 ? 0 : v + 1);
        QObject::connect(s, &QSpinBox::valueChanged, row, [&v](int x) { v = x == 0 ? -1 : x - 1; });
        return s;
    };
    h->addWidget(new QLabel(tr("from level"), row));
    h->addWidget(spin(low));
    h->addWidget(new QLabel(tr("to"), row));
    h->addWidget(spin(high));
    h->addStretch(1);
    m_form->addRow(label, row);
}

void CSettingsForm::AddChoice(const QString& label, int& value, const QStringList& choices)
{
    auto* combo = new QComboBox(this);
    combo->addItems(choices);
    combo->setCurrentIndex(std::clamp(value, 0, static_cast<int>(choices.size()) - 1));
    connect(combo, &QComboBox::currentIndexChanged, this, [&value](int i) { value = i; });
    m_form->addRow(label, combo);
}

void CSettingsForm::AddNote(const QString& text)
{
    auto* l = new QLabel(text, this);
    l->setWordWrap(true);
    m_form->addRow(l);
}

// ------------------------------------------------------------------ site and time

CSiteTimeDialog::CSiteTimeDialog(const CObserverDoc& observer, CSettingsStore& settings, QWidget* parent)
    : QDialog(parent), m_working(observer), m_settings(settings)
{
    setWindowTitle(tr("Site and Time"));
    auto* layout = new QVBoxLayout(this);

    auto* site = new QGroupBox(tr("Observing site"), this);
    auto* siteForm = new QFormLayout(site);
    m_name = new QLineEdit(ToQ(observer.SiteName()), site);
    m_latitude = new QLineEdit(ToQ(FormatDms(observer.LatitudeRad(), 0)), site);
    m_latitude->setToolTip(tr("Degrees north (negative south): 51.48, 51:28:38 or 51d28m38s"));
    m_longitude = new QLineEdit(ToQ(FormatDms(observer.LongitudeRad(), 0)), site);
    m_longitude->setToolTip(tr("Degrees east (negative west): -0.0015, -77:03:56"));
    m_height = new QDoubleSpinBox(site);
    m_height->setRange(-500.0, 9000.0);
    m_height->setSuffix(tr(" m"));
    m_height->setValue(observer.HeightM());
    m_zone = new QDoubleSpinBox(site);
    m_zone->setRange(-14.0, 14.0);
    m_zone->setSingleStep(0.25);
    m_zone->setDecimals(2);
    m_zone->setPrefix(tr("UTC "));
    m_zone->setSuffix(tr(" h"));
    m_zone->setValue(observer.TimeZoneHours());
    m_dst = new QCheckBox(tr("Daylight saving time in force (one hour ahead)"), site);
    m_dst->setChecked(observer.DaylightSaving());
    siteForm->addRow(tr("Name:"), m_name);
    siteForm->addRow(tr("Latitude:"), m_latitude);
    siteForm->addRow(tr("Longitude:"), m_longitude);
    siteForm->addRow(tr("Height:"), m_height);
    siteForm->addRow(tr("Time zone:"), m_zone);
    siteForm->addRow(m_dst);
    m_makeDefault = new QCheckBox(tr("Use this site for new maps"), site);
    siteForm->addRow(m_makeDefault);
    layout->addWidget(site);

    auto* when = new QGroupBox(tr("Date and time"), this);
    auto* whenLayout = new QGridLayout(when);
    const auto spin = [when](int lo, int hi) {
        auto* s = new QSpinBox(when);
        s->setRange(lo, hi);
        return s;
    };
    m_year = spin(-4712, 9999);
    m_year->setToolTip(tr("Astronomical year: 0 is 1 BC, -1 is 2 BC"));
    m_month = spin(1, 12);
    m_day = spin(1, 31);
    m_hour = spin(0, 23);
    m_minute = spin(0, 59);
    m_second = new QDoubleSpinBox(when);
    m_second->setRange(0.0, 59.9);
    m_second->setDecimals(1);
    whenLayout->addWidget(new QLabel(tr("Year"), when), 0, 0);
    whenLayout->addWidget(new QLabel(tr("Month"), when), 0, 1);
    whenLayout->addWidget(new QLabel(tr("Day"), when), 0, 2);
    whenLayout->addWidget(new QLabel(tr("Hour"), when), 0, 3);
    whenLayout->addWidget(new QLabel(tr("Minute"), when), 0, 4);
    whenLayout->addWidget(new QLabel(tr("Second"), when), 0, 5);
    whenLayout->addWidget(m_year, 1, 0);
    whenLayout->addWidget(m_month, 1, 1);
    whenLayout->addWidget(m_day, 1, 2);
    whenLayout->addWidget(m_hour, 1, 3);
    whenLayout->addWidget(m_minute, 1, 4);
    whenLayout->addWidget(m_second, 1, 5);
    m_universal = new QCheckBox(tr("Universal Time"), when);
    auto* now = new QPushButton(tr("&Now"), when);
    whenLayout->addWidget(m_universal, 2, 0, 1, 3);
    whenLayout->addWidget(now, 2, 5);
    m_info = new QLabel(when);
    m_info->setTextInteractionFlags(Qt::TextSelectableByMouse);
    whenLayout->addWidget(m_info, 3, 0, 1, 6);
    layout->addWidget(when);
    layout->addWidget(OkCancel(this));

    ShowInstant(observer.JulianDate());
    connect(now, &QPushButton::clicked, this, [this] {
        CObserverDoc t;
        t.SetToNow();
        ShowInstant(t.JulianDate());
    });
    connect(m_universal, &QCheckBox::toggled, this, [this] {
        // The instant stays; only the way it is shown changes.
        ShowInstant(m_working.JulianDate());
    });
    for (QSpinBox* s : {m_year, m_month, m_day, m_hour, m_minute})
        connect(s, &QSpinBox::valueChanged, this, &CSiteTimeDialog::UpdateInfo);
    connect(m_second, &QDoubleSpinBox::valueChanged, this, &CSiteTimeDialog::UpdateInfo);
    connect(m_zone, &QDoubleSpinBox::valueChanged, this, &CSiteTimeDialog::UpdateInfo);
    connect(m_dst, &QCheckBox::toggled, this, &CSiteTimeDialog::UpdateInfo);
    connect(m_longitude, &QLineEdit::textChanged, this, &CSiteTimeDialog::UpdateInfo);
}

void CSiteTimeDialog::ShowInstant(double jdUT)
{
    m_working.SetTimeZone(m_zone->value(), m_dst->isChecked());
    m_working.SetJulianDate(jdUT);
    const CivilDateTime t = m_universal->isChecked() ? m_working.UniversalTime() : m_working.LocalTime();
    const QSignalBlocker b1(m_year), b2(m_month), b3(m_day), b4(m_hour), b5(m_minute), b6(m_second);
    m_year->setValue(t.year);
    m_month->setValue(t.month);
    m_day->setValue(t.day);
    m_hour->setValue(t.hour);
    m_minute->setValue(t.minute);
    m_second->setValue(std::floor(t.second * 10.0) / 10.0);
    UpdateInfo();
}

double CSiteTimeDialog::EnteredJulianDate() const
{
    CObserverDoc t;
    t.SetTimeZone(m_zone->value(), m_dst->isChecked());
    const CivilDateTime c{m_year->value(), m_month->value(), m_day->value(), m_hour->value(), m_minute->value(),
                          m_second->value()};
    if (m_universal->isChecked())
        t.SetUniversalTime(c);
    else
        t.SetLocalTime(c);
    return t.JulianDate();
}

bool CSiteTimeDialog::ReadSite(CObserverDoc& into, QString* error) const
{
    double lat = 0.0, lon = 0.0;
    if (!ParseAngle(m_latitude->text().toStdString(), AngleUnit::Degrees, lat) || std::fabs(lat) > kHalfPi) {
        if (error) *error = tr("The latitude must be between -90° and +90°, for example 51:28:38 or -33.87.");
        return false;
    }
    if (!ParseAngle(m_longitude->text().toStdString(), AngleUnit::Degrees, lon) || std::fabs(lon) > kPi + 1e-9) {
        if (error) *error = tr("The longitude must be between -180° and +180°, east positive, for example -77:03:56.");
        return false;
    }
    into.SetSite(m_name->text().toStdString(), lat, lon, m_height->value());
    into.SetTimeZone(m_zone->value(), m_dst->isChecked());
    return true;
}

void CSiteTimeDialog::UpdateInfo()
{
    CObserverDoc probe = m_working;
    ReadSite(probe, nullptr);
    probe.SetJulianDate(EnteredJulianDate());
    const CivilDateTime ut = probe.UniversalTime();
    m_info->setText(tr("UT %1-%2-%3 %4:%5   JD %6   ΔT %7 s   local sidereal time %8")
                        .arg(ut.year)
                        .arg(ut.month, 2, 10, QLatin1Char('0'))
                        .arg(ut.day, 2, 10, QLatin1Char('0'))
                        .arg(ut.hour, 2, 10, QLatin1Char('0'))
                        .arg(ut.minute, 2, 10, QLatin1Char('0'))
                        .arg(probe.JulianDate(), 0, 'f', 5)
                        .arg(probe.DeltaT(), 0, 'f', 1)
                        .arg(ToQ(FormatHms(probe.LAST() * kRadPerHour, 0))));
}

void CSiteTimeDialog::accept()
{
    QString error;
    CObserverDoc probe;
    if (!ReadSite(probe, &error)) {
        QMessageBox::warning(this, windowTitle(), error);
        return;
    }
    if (!IsValidCivilDateTime(CivilDateTime{m_year->value(), m_month->value(), m_day->value(), m_hour->value(),
                                            m_minute->value(), m_second->value()})) {
        QMessageBox::warning(this, windowTitle(), tr("There is no such date in the calendar."));
        return;
    }
    QDialog::accept();
}

void CSiteTimeDialog::Apply(CObserverDoc& observer) const
{
    ReadSite(observer, nullptr);
    observer.SetJulianDate(EnteredJulianDate());
    if (m_makeDefault->isChecked()) {
        observer.SaveSettings(m_settings);
        m_settings.Flush();
    }
}

// ------------------------------------------------------------------ star pages

CStarPageColour::CStarPageColour(CStarSettings& s, QWidget* parent) : CSettingsForm(parent)
{
    AddCheck(tr("Colour stars by their B−V colour index"), s.showColour);
    AddLevels(tr("Colours shown"), s.levelColourLow, s.levelColourHigh);
    AddNote(tr("B−V thresholds: bluer than the first is plain blue; from the first to the second blue whitens; "
               "at the second stars are white, at the third yellow, at the fourth and redder plain red."));
    AddThousandths(tr("Blue starts to whiten (BV1):"), s.bv1, -2.0, 5.0);
    AddThousandths(tr("White (BV2):"), s.bv2, -2.0, 5.0);
    AddThousandths(tr("Yellow (BV3):"), s.bv3, -2.0, 5.0);
    AddThousandths(tr("Red (BV4):"), s.bv4, -2.0, 5.0);
}

CStarPageDisplay::CStarPageDisplay(CStarSettings& s, QWidget* parent) : CSettingsForm(parent)
{
    AddCheck(tr("Show stars"), s.visible);
    AddHundredths(tr("Faintest magnitude drawn:"), s.magLimit, -2.0, 20.0);
    AddHundredths(tr("Largest disc for stars brighter than:"), s.starMagBright, -2.0, 20.0);
    AddNumber(tr("Largest disc radius:"), s.starRadBright, 0, 5000, tr(" × 0.0001 in"));
    AddNumber(tr("Faintest disc radius:"), s.starRadFaint, 0, 5000, tr(" × 0.0001 in"));
    AddCheck(tr("Size discs by magnitude"), s.starShowSize);
    AddNumber(tr("Dot radius when not sized:"), s.starDotRadius, 0, 5000, tr(" × 0.0001 in"));
    AddCheck(tr("Mark double stars"), s.showDoubles);
    AddCheck(tr("Mark variable stars"), s.showVariables);
}

CStarPageGSC::CStarPageGSC(CStarSettings& s, QWidget* parent) : CSettingsForm(parent)
{
    AddNote(tr("Settings of the faint-star (Guide Star Catalog) layer."));
    AddCheck(tr("Show all GSC objects, not only stars"), s.starGSCShowAllObjects);
    AddCheck(tr("Hide GSC entries that are Tycho-2 stars"), s.gscHideTycho);
}

CStarPageOptions::CStarPageOptions(CStarSettings& s, QWidget* parent) : CSettingsForm(parent)
{
    AddLevels(tr("Proper-motion lines"), s.levelPMLow, s.levelPMHigh);
    AddNumber(tr("Proper-motion line length:"), s.pmLine, 1, 10000, tr(" years"));
    AddLevels(tr("Distances (light years)"), s.levelDistLow, s.levelDistHigh);
    AddCheck(tr("Label only stars brighter than the limit below"), s.starLabelMagFilter);
    AddHundredths(tr("Label magnitude limit:"), s.starLabelMagLimit, -2.0, 20.0);
}

CStarPageLabel::CStarPageLabel(CStarSettings& s, QWidget* parent) : CSettingsForm(parent)
{
    AddLevels(tr("Proper names"), s.levelProperLow, s.levelProperHigh);
    AddLevels(tr("Bayer letters"), s.levelBayerLow, s.levelBayerHigh);
    AddLevels(tr("Flamsteed numbers"), s.levelFlamsteedLow, s.levelFlamsteedHigh);
    AddCheck(tr("Flamsteed number also for stars with a Bayer letter"), s.showFlamsteedWithBayer);
    AddCheck(tr("Constellation abbreviations in designations"), s.labelAbbreviated);
    AddCheck(tr("Magnitude labels"), s.labelMag);
    AddLevels(tr("Magnitude labels shown"), s.levelMagLow, s.levelMagHigh);
    AddCheck(tr("Variable stars labelled with their range"), s.labelMagVar);
    AddChoice(tr("Label the magnitudes of stars:"), s.labelMagOption,
              {tr("brighter than the bright limit"), tr("between the two middle limits"),
               tr("fainter than the faint limit")});
    AddHundredths(tr("Bright limit:"), s.labelMagBright, -2.0, 20.0);
    AddHundredths(tr("Middle limits, from:"), s.labelMagBetween1, -2.0, 20.0);
    AddHundredths(tr("to:"), s.labelMagBetween2, -2.0, 20.0);
    AddHundredths(tr("Faint limit:"), s.labelMagFaint, -2.0, 20.0);
}

CStarPropertySheet::CStarPropertySheet(const CStarSettings& settings, CSettingsStore& store, QWidget* parent)
    : QDialog(parent), m_settings(settings)
{
    setWindowTitle(tr("Stars"));
    auto* layout = new QVBoxLayout(this);
    auto* tabs = new QTabWidget(this);
    tabs->addTab(new CStarPageDisplay(m_settings, tabs), tr("Display"));
    tabs->addTab(new CStarPageColour(m_settings, tabs), tr("Colour"));
    tabs->addTab(new CStarPageLabel(m_settings, tabs), tr("Labels"));
    tabs->addTab(new CStarPageOptions(m_settings, tabs), tr("Options"));
    tabs->addTab(new CStarPageGSC(m_settings, tabs), tr("GSC"));
    layout->addWidget(tabs);
    auto* buttons = OkCancelSaveDefaults(this, [this, &store] {
        m_settings.Save(store);
        store.Flush();
    });
    layout->addWidget(buttons);
}

// ------------------------------------------------------------------ constellations

CConstellationGeneralPage::CConstellationGeneralPage(CConstellationSettings& s, QWidget* parent) : CSettingsForm(parent)
{
    AddCheck(tr("Show constellation figures"), s.conFigureVisible);
    AddLevels(tr("Figures:"), s.levelFigureLow, s.levelFigureHigh);
    AddCheck(tr("Show constellation names"), s.conNameVisible);
    AddLevels(tr("Names:"), s.levelNameLow, s.levelNameHigh);
    AddNumber(tr("Abbreviate names from level:"), s.levelAbbrev, 1, kLevelCount);
    AddCheck(tr("Show constellation boundaries"), s.conBoundaryVisible);
    AddLevels(tr("Boundaries:"), s.levelBoundaryLow, s.levelBoundaryHigh);
}

CConstellationCornerPage::CConstellationCornerPage(CConstellationSettings& s, QWidget* parent)
    : QWidget(parent), m_settings(s)
{
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Select an item by clicking its name in the list, then click Edit to change "
                                    "its level range."),
                                 this));
    m_list = new QTableWidget(1, 4, this);
    m_list->setHorizontalHeaderLabels({tr("Item"), tr("Min Lvl"), tr("Max Lvl"), tr("Names")});
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->verticalHeader()->hide();
    layout->addWidget(m_list);
    auto* row = new QHBoxLayout;
    auto* edit = new QPushButton(tr("&Edit..."), this);
    connect(edit, &QPushButton::clicked, this, [this] { EditSelected(); });
    row->addWidget(edit);
    row->addStretch(1);
    row->addWidget(new QLabel(tr("Corner of the constellation name:"), this));
    auto* corner = new QComboBox(this);
    corner->addItems({tr("Top left"), tr("Top right"), tr("Bottom left"), tr("Bottom right")});
    corner->setCurrentIndex(static_cast<int>(CornerOfConstellationName(s.CornerSlots())));
    connect(corner, &QComboBox::currentIndexChanged, this, [this](int i) {
        m_settings.SetCornerSlots(MoveConstellationNameToCorner(m_settings.CornerSlots(), static_cast<ChartCorner>(i)));
    });
    row->addWidget(corner);
    layout->addLayout(row);
    Fill();
}

void CConstellationCornerPage::Fill()
{
    const auto level = [](int v) { return v < 0 ? tr("never") : QString::number(v + 1); };
    m_list->setItem(0, 0, new QTableWidgetItem(tr("Constellation name")));
    m_list->setItem(0, 1, new QTableWidgetItem(level(m_settings.levelCornerNameLow)));
    m_list->setItem(0, 2, new QTableWidgetItem(level(m_settings.levelCornerNameHigh)));
    m_list->setItem(0, 3, new QTableWidgetItem(m_settings.cornerNameAbbrev != 0 ? tr("Abbreviated") : tr("Full")));
}

void CConstellationCornerPage::EditSelected()
{
    if (m_list->currentRow() != 0) return;
    QDialog d(this);
    d.setWindowTitle(tr("Constellation name"));
    auto* layout = new QVBoxLayout(&d);
    auto* form = new CSettingsForm(&d);
    CConstellationSettings edited = m_settings;
    form->AddLevels(tr("Levels:"), edited.levelCornerNameLow, edited.levelCornerNameHigh);
    form->AddCheck(tr("Abbreviated"), edited.cornerNameAbbrev);
    layout->addWidget(form);
    layout->addWidget(OkCancel(&d));
    if (d.exec() != QDialog::Accepted) return;
    m_settings = edited;
    Fill();
}

CConstellationPropertySheet::CConstellationPropertySheet(const CConstellationSettings& settings,
                                                         CSettingsStore& store, QWidget* parent)
    : QDialog(parent), m_settings(settings)
{
    setWindowTitle(tr("Constellations"));
    auto* layout = new QVBoxLayout(this);
    auto* tabs = new QTabWidget(this);
    tabs->addTab(new CConstellationGeneralPage(m_settings, tabs), tr("General"));
    tabs->addTab(new CConstellationCornerPage(m_settings, tabs), tr("Corner"));
    layout->addWidget(tabs);
    auto* buttons = OkCancelSaveDefaults(this, [this, &store] {
        m_settings.Save(store);
        store.Flush();
    });
    layout->addWidget(buttons);
}

// ------------------------------------------------------------------ grids

struct CGridOptionsDialog::Grid {
    CGridData data;
    CGridDisplay display;
};

CGridOptionsDialog::CGridOptionsDialog(const CMapDoc& doc, const CMapView& view, CSettingsStore& store,
                                       QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Grids"));
    auto* layout = new QVBoxLayout(this);
    auto* tabs = new QTabWidget(this);
    const std::pair<const CGridData*, const CGridDisplay*> sources[] = {{&doc.raDecGrid, &view.raDecGrid},
                                                                         {&doc.altAzGrid, &view.altAzGrid},
                                                                         {&doc.eclipticGrid, &view.eclipticGrid},
                                                                         {&doc.galacticGrid, &view.galacticGrid}};
    const QString names[] = {tr("Right Ascension / Declination"), tr("Altitude / Azimuth"), tr("Ecliptic"), tr("Galactic")};
    const QString interval1[] = {tr("Right ascension spacing:"), tr("Azimuth spacing:"), tr("Longitude spacing:"),
                                 tr("Longitude spacing:")};
    const QString interval2[] = {tr("Declination spacing:"), tr("Altitude spacing:"), tr("Latitude spacing:"),
                                 tr("Latitude spacing:")};
    for (int i = 0; i < 4; ++i) {
        auto g = std::make_unique<Grid>(Grid{*sources[i].first, *sources[i].second});
        auto* page = new CSettingsForm(tabs);
        page->AddCheck(tr("Show this grid"), g->display.visible);
        page->AddCheck(tr("Label the lines"), g->data.labelVisible);
        page->AddLevels(tr("Solid lines"), g->display.first.low, g->display.first.high);
        page->AddLevels(tr("Faint lines"), g->display.second.low, g->display.second.high);
        page->AddChoice(tr("Line spacing:"), g->data.method, {tr("chosen from the field"), tr("as set below")});
        page->AddNumber(interval1[i], g->data.interval1, 1, 32767, i == 0 ? tr(" min of time") : tr(" arcmin"));
        page->AddNumber(interval2[i], g->data.interval2, 1, 32767, tr(" arcmin"));
        if (i == 1)
            page->AddLevels(tr("Ground filled below the horizon"), g->display.solidHorizonLevels.low,
                            g->display.solidHorizonLevels.high);
        tabs->addTab(page, names[i]);
        m_grids.push_back(std::move(g));
    }
    layout->addWidget(tabs);
    auto* buttons = OkCancelSaveDefaults(this, [this, &store] {
        for (const auto& g : m_grids) {
            g->data.Save(store);
            g->display.Save(store);
        }
        store.Flush();
    });
    layout->addWidget(buttons);
}

CGridOptionsDialog::~CGridOptionsDialog() = default;

void CGridOptionsDialog::Apply(CMapDoc& doc, CMapView& view) const
{
    CGridData* data[] = {&doc.raDecGrid, &doc.altAzGrid, &doc.eclipticGrid, &doc.galacticGrid};
    CGridDisplay* display[] = {&view.raDecGrid, &view.altAzGrid, &view.eclipticGrid, &view.galacticGrid};
    for (std::size_t i = 0; i < 4; ++i) {
        *data[i] = m_grids[i]->data;
        *display[i] = m_grids[i]->display;
    }
}

// ------------------------------------------------------------------ levels

namespace {
enum LevelColumn { kField, kStarLimit, kStarBright, kDsLimit, kDsSize, kScroll, kColumns };
}

CViewLevelsDialog::CViewLevelsDialog(const CLevelTable& levels, QWidget* parent) : QDialog(parent), m_levels(levels)
{
    setWindowTitle(QStringLiteral("View Levels"));
    auto* layout = new QVBoxLayout(this);
    m_table = new QTableWidget(kLevelCount, kColumns, this);
    m_table->setHorizontalHeaderLabels({tr("Field (arcmin)"), tr("Star limit"), tr("Brightest star"),
                                        tr("Deep-sky limit"), tr("Deep-sky size"), tr("Scroll mode")});
    for (int i = 0; i < kLevelCount; ++i) {
        m_table->setVerticalHeaderItem(i, new QTableWidgetItem(tr("Level %1").arg(i + 1)));
        const LevelRecord& r = levels[i];
        const auto put = [this, i](int col, const QString& text) { m_table->setItem(i, col, new QTableWidgetItem(text)); };
        put(kField, QString::number(r.fieldDeg * 60.0, 'g', 8));
        put(kStarLimit, QString::number(r.starMagLimit / 100.0, 'f', 2));
        put(kStarBright, QString::number(r.starMagBright / 100.0, 'f', 2));
        put(kDsLimit, QString::number(r.dsMagLimit / 100.0, 'f', 2));
        put(kDsSize, QString::number(r.dsSizeLimit));
        auto* scroll = new QComboBox(m_table);
        scroll->addItems({tr("Alt/Az fixed"), tr("RA/Dec fixed")});
        scroll->setCurrentIndex(r.scrollMode != 0 ? 1 : 0);
        m_table->setCellWidget(i, kScroll, scroll);
    }
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    layout->addWidget(m_table);
    auto* note = new QLabel(tr("Magnitudes in magnitudes (a deep-sky limit of 0 means none); the field is the "
                               "distance from the chart centre to its top edge."),
                            this);
    note->setWordWrap(true);
    layout->addWidget(note);
    layout->addWidget(OkCancel(this));
    resize(720, 420);
}

void CViewLevelsDialog::accept()
{
    CLevelTable t = m_levels;
    for (int i = 0; i < kLevelCount; ++i) {
        bool ok = true;
        const auto number = [&](int col) {
            bool good = false;
            const double v = m_table->item(i, col)->text().trimmed().toDouble(&good);
            ok = ok && good && std::isfinite(v);
            return v;
        };
        const double fieldArcmin = number(kField);
        const double starLimit = number(kStarLimit), starBright = number(kStarBright), ds = number(kDsLimit);
        const double size = number(kDsSize);
        if (!ok || fieldArcmin <= 0.0 || fieldArcmin > 179.0 * 60.0) {
            QMessageBox::warning(this, windowTitle(), tr("Level %1: please enter numbers; the field must be between 0 "
                                                         "and 10740 arc minutes.").arg(i + 1));
            return;
        }
        LevelRecord& r = t[i];
        r.fieldDeg = fieldArcmin / 60.0;
        r.starMagLimit = static_cast<std::int16_t>(std::lround(starLimit * 100.0));
        r.starMagBright = static_cast<std::int16_t>(std::lround(starBright * 100.0));
        r.dsMagLimit = static_cast<std::int16_t>(std::lround(ds * 100.0));
        r.dsSizeLimit = static_cast<std::int16_t>(std::lround(size));
        r.scrollMode = static_cast<std::int16_t>(qobject_cast<QComboBox*>(m_table->cellWidget(i, kScroll))->currentIndex());
    }
    m_levels = t;
    QDialog::accept();
}

CLevelTable CViewLevelsDialog::Result() const { return m_levels; }

// ------------------------------------------------------------------ print and time step

CViewSettingsDialog::CViewSettingsDialog(const CMapViewSettings& settings, Page page, CSettingsStore& store,
                                         QWidget* parent)
    : QDialog(parent), m_settings(settings)
{
    auto* layout = new QVBoxLayout(this);
    auto* form = new CSettingsForm(this);
    if (page == Page::Print) {
        setWindowTitle(tr("Print Options"));
        form->AddCheck(tr("Print the map title"), m_settings.printTitle);
        form->AddCheck(tr("Print the key (magnitude scale)"), m_settings.printKey);
        form->AddCheck(tr("Print the status line (site, time, centre, field)"), m_settings.printStatus);
        form->AddCheck(tr("Print in black and white"), m_settings.printMono);
        form->AddNumber(tr("Top margin:"), m_settings.printTopMargin, 0, 5000, tr(" × 0.001 in"));
        form->AddNumber(tr("Bottom margin:"), m_settings.printBottomMargin, 0, 5000, tr(" × 0.001 in"));
        form->AddNumber(tr("Left margin:"), m_settings.printLeftMargin, 0, 5000, tr(" × 0.001 in"));
        form->AddNumber(tr("Right margin:"), m_settings.printRightMargin, 0, 5000, tr(" × 0.001 in"));
    } else {
        setWindowTitle(tr("Time Step"));
        form->AddNumber(tr("Step by:"), m_settings.timeNumber, 1, 10000);
        form->AddChoice(tr("Unit:"), m_settings.timeUnit,
                        {tr("seconds"), tr("minutes"), tr("hours"), tr("days"), tr("weeks"), tr("months"), tr("years"),
                         tr("sidereal days")});
        form->AddChoice(tr("Map time:"), m_settings.timeMode,
                        {tr("fixed"), tr("follows the clock"), tr("steps automatically")});
        form->AddNumber(tr("Update every:"), m_settings.timeUpdateInterval, 1, 3600, tr(" s"));
    }
    layout->addWidget(form);
    auto* buttons = OkCancelSaveDefaults(this, [this, &store] {
        m_settings.Save(store);
        store.Flush();
    });
    layout->addWidget(buttons);
}

// ------------------------------------------------------------------ visible stars

void ShowVisibleStars(QWidget* parent, CMapWindow& window, CAppContext& app)
{
    auto* dialog = new CVisibleStarsDialog(window, app, parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

}  // namespace orv
