#include "app/eclipsewindows.h"

#include <QApplication>
#include <QFileDialog>
#include <QFontDatabase>
#include <QImage>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPlainTextEdit>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>
#include <QVBoxLayout>

#include <cstdio>

#include "app/appcontext.h"
#include "app/dataproblemsbox.h"
#include "app/mapwindow.h"
#include "app/resulttablepanel.h"
#include "eclipse/eclipsemapdraw.h"
#include "eclipse/eclipsemapexport.h"
#include "satellite/worldmap.h"
#include "observer/observer.h"
#include "util/datapath.h"
#include "util/settingsstore.h"

namespace orv {

namespace {

QString ToQ(const std::string& s) { return QString::fromStdString(s); }

constexpr double kRadToDeg = 57.29577951308232;

// Result-list column widths: "ResultCol%1d" of "EclipseSearch", "%d %d"
// (width, position).
CResultTablePanel::Layouts LoadResultLayouts(const CSettingsStore& store)
{
    CResultTablePanel::Layouts layouts;
    for (int c = 0; c < 7; ++c) {
        char key[32];
        std::snprintf(key, sizeof key, "ResultCol%1d", c);
        int width = 0, position = 0;
        const std::string text = store.GetString("EclipseSearch", key, "");
        if (std::sscanf(text.c_str(), "%d %d", &width, &position) == 2 && width > 0) layouts[c] = {width, position};
    }
    return layouts;
}

void SaveResultLayouts(CSettingsStore& store, const CResultTablePanel::Layouts& layouts)
{
    for (const auto& [c, wp] : layouts) {
        char key[32], value[32];
        std::snprintf(key, sizeof key, "ResultCol%1d", c);
        std::snprintf(value, sizeof value, "%d %d", wp.first, wp.second);
        store.SetString("EclipseSearch", key, value);
    }
}

QString ContactLine(const char* name, const EclipseContact& c, bool azimuth)
{
    if (!c.valid) return {};
    const CivilDateTime t = CivilFromJulianDate(c.jdUT);
    QString line = QStringLiteral("%1 %2:%3:%4 UT  alt %5°")
                       .arg(QString::fromLatin1(name), -17)
                       .arg(t.hour, 2, 10, QChar('0'))
                       .arg(t.minute, 2, 10, QChar('0'))
                       .arg(static_cast<int>(t.second), 2, 10, QChar('0'))
                       .arg(c.altitudeRad * kRadToDeg, 0, 'f', 1);
    if (azimuth) line += QStringLiteral("  az %1°").arg(c.azimuthRad * kRadToDeg, 5, 'f', 1);
    return line + QLatin1Char('\n');
}

}  // namespace

// ---- Search dialog ----------------------------------------------------------

CEclipseSearchDialog::CEclipseSearchDialog(const EclipseSearchSettings& s, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Eclipse Search"));
    auto* form = new QFormLayout;
    m_start = new QSpinBox(this);
    m_start->setRange(-1999, 3000);
    m_start->setValue(s.startYear);
    m_start->setToolTip(tr("Astronomical year: 0 is 1 BC, -1 is 2 BC"));
    m_end = new QSpinBox(this);
    m_end->setRange(-9999, 9999);  // the range is checked on OK, with its message
    m_end->setValue(s.endYear);
    m_solar = new QCheckBox(tr("Solar eclipses"), this);
    m_solar->setChecked(s.solar);
    m_lunar = new QCheckBox(tr("Lunar eclipses"), this);
    m_lunar->setChecked(s.lunar);
    m_display = new QComboBox(this);
    m_display->addItem(tr("All eclipses"), 0);
    m_display->addItem(tr("Exclude partial solar eclipses"), kEclipseDisplayNoPartialSolar);
    m_display->setCurrentIndex(s.displayOption == kEclipseDisplayNoPartialSolar ? 1 : 0);
    form->addRow(tr("Start year:"), m_start);
    form->addRow(tr("End year:"), m_end);
    form->addRow(m_solar);
    form->addRow(m_lunar);
    form->addRow(tr("Display:"), m_display);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(new QLabel(tr("Eclipses are listed when some phase is seen from the site."), this));
    layout->addWidget(buttons);
}

EclipseSearchSettings CEclipseSearchDialog::Settings() const
{
    EclipseSearchSettings s;
    s.startYear = m_start->value();
    s.endYear = m_end->value();
    s.solar = m_solar->isChecked();
    s.lunar = m_lunar->isChecked();
    s.displayOption = m_display->currentData().toInt();
    return s;
}

void CEclipseSearchDialog::accept()
{
    if (const auto message = ValidateEclipseSearch(Settings())) {
        QMessageBox::warning(this, QApplication::applicationName(), ToQ(*message));
        return;
    }
    QDialog::accept();
}

// ---- Result list ------------------------------------------------------------

CEclipseResultWindow::CEclipseResultWindow(CAppContext& app, QWidget* parent) : QWidget(parent, Qt::Window), m_app(app)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Eclipse Search Results"));
    auto* layout = new QVBoxLayout(this);
    m_panel = new CResultTablePanel(app, CResultTablePanel::Sorting::ByColumn, CResultTablePanel::Selection::Single,
                                    CResultTablePanel::Title::Shown, this);
    m_panel->SetReportName(QStringLiteral("Eclipses"));
    auto* map = new QPushButton(tr("&Map"), this);
    map->setToolTip(tr("The local circumstances of the selected solar eclipse"));
    m_panel->Buttons()->insertWidget(0, map);
    connect(map, &QPushButton::clicked, this, &CEclipseResultWindow::ShowSelected);
    connect(m_panel, &CResultTablePanel::RowActivated, this, [this](int) { ShowSelected(); });
    layout->addWidget(m_panel);
    resize(900, 480);
}

bool CEclipseResultWindow::Run(const EclipseSearchSettings& settings, const EclipseSite& site)
{
    m_settings = settings;
    m_site = site;
    const int range = EclipseSearchProgressRange(settings);
    const ProgressFn progress = m_panel->BeginProgress(tr("Searching for eclipses..."));
    const EclipseSearchOutcome outcome = RunEclipseSearch(
        settings, site, EclipseVisibility::FromSite,
        [&](int years) { return progress(static_cast<double>(years) / range) == ProgressAnswer::Continue; },
        GetDataFileName("EclipseSearch.dat"));
    m_panel->EndProgress();
    // Tables refused during the search (their years are missing from it).
    ShowDataFileProblems(parentWidget());
    if (outcome.cancelled) return false;
    if (outcome.results.empty()) {
        QMessageBox::information(parentWidget(), QApplication::applicationName(),
                                 tr("No eclipses are visible during the specified time period."));
        return false;
    }
    m_results = outcome.results;
    m_panel->SetTable(MakeEclipseResultTable(settings, m_results), LoadResultLayouts(m_app.Settings()));
    return true;
}

void CEclipseResultWindow::closeEvent(QCloseEvent* event)
{
    CResultTablePanel::Layouts layouts;
    m_panel->StoreLayouts(layouts);
    SaveResultLayouts(m_app.Settings(), layouts);
    QWidget::closeEvent(event);
}

void CEclipseResultWindow::ShowSelected()
{
    const std::vector<int> rows = m_panel->SelectedTableRows();
    if (rows.empty() || rows.front() < 0 || rows.front() >= static_cast<int>(m_results.size())) {
        QMessageBox::information(this, QApplication::applicationName(),
                                 tr("Please select an item from the list before\nclicking the \"Map\" button."));
        return;
    }
    const EclipseSearchResult& r = m_results[static_cast<std::size_t>(rows.front())];
    if (r.kind != EclipseKind::Solar) {
        QMessageBox::information(this, QApplication::applicationName(),
                                 tr("An eclipse map can only be displayed for a solar eclipse."));
        return;
    }
    const SolarLocalCircumstances& s = r.solar;
    QString text = ToQ(EclipseTypeText(r.kind, r.record.type) + " eclipse of " + ResultDateText(r.record) + " TT\n\n");
    text += ContactLine("First contact", s.first, true);
    text += ContactLine("Second contact", s.second, true);
    text += ContactLine("Greatest eclipse", s.greatest, true);
    text += ContactLine("Third contact", s.third, true);
    text += ContactLine("Last contact", s.last, true);
    text += tr("\nMagnitude %1, obscuration %2").arg(s.magnitude, 0, 'f', 3).arg(s.obscuration, 0, 'f', 3);
    if (s.centralDurationSeconds > 0.0)
        text += tr("\nDuration of %1 %2")
                    .arg(s.localType == 'T' ? tr("totality") : tr("annularity"))
                    .arg(ToQ(FormatEclipseDuration(s.centralDurationSeconds)));
    EclipseEvent event;
    event.kind = r.kind;
    event.type = r.record.type;
    // The map is drawn for the exact greatest eclipse of the ephemeris.
    const auto exact = EclipseAtSyzygyNear(RecordJulianDateTT(r.record), r.kind);
    event = exact ? *exact : event;
    if (!exact) event.jdTT = RecordJulianDateTT(r.record);
    auto* window = new CEclipseMapWindow(m_app, event, text, parentWidget());
    window->show();
}

// ---- World map --------------------------------------------------------------

class CEclipseMapCanvas : public QWidget {
public:
    CEclipseMapCanvas(const CEclipseMapWindow& owner, QWidget* parent) : QWidget(parent), m_owner(owner)
    {
        setMinimumSize(640, 360);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        m_owner.Draw(painter, QRectF(rect()));
    }

private:
    const CEclipseMapWindow& m_owner;
};

namespace {
const std::vector<sat::WorldOutline>& Land()
{
    static const std::vector<sat::WorldOutline> land = [] {
        sat::CWorldMap world;
        world.LoadFromDataFolder();
        return sat::JoinWorldOutlines(world.Polylines());
    }();
    return land;
}
}  // namespace

CEclipseMapWindow::CEclipseMapWindow(CAppContext& app, const EclipseEvent& event, const QString& circumstances,
                                     QWidget* parent)
    : QWidget(parent, Qt::Window), m_app(app), m_event(event)
{
    setAttribute(Qt::WA_DeleteOnClose);
    const EclipseRecord r = RecordFromEvent(event);
    m_title = EclipseTypeText(event.kind, event.type) + " Eclipse of " + ResultDateText(r) + " TT";
    setWindowTitle(ToQ(m_title));
    auto* layout = new QHBoxLayout(this);
    m_canvas = new CEclipseMapCanvas(*this, this);
    layout->addWidget(m_canvas, 1);
    auto* side = new QVBoxLayout;
    auto* text = new QPlainTextEdit(circumstances, this);
    text->setReadOnly(true);
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setMinimumWidth(400);
    side->addWidget(text, 1);
    auto* save = new QPushButton(tr("Save &Picture..."), this);
    auto* print = new QPushButton(tr("&Print..."), this);
    side->addWidget(save);
    side->addWidget(print);
    layout->addLayout(side);
    connect(save, &QPushButton::clicked, this, &CEclipseMapWindow::SavePicture);
    connect(print, &QPushButton::clicked, this, &CEclipseMapWindow::Print);
    resize(1280, 560);
}

void CEclipseMapWindow::Draw(QPainter& painter, const QRectF& area) const
{
    DrawEclipseMap(painter, area, Land(), m_event, m_title);
}

void CEclipseMapWindow::SavePicture()
{
    // Pictures, or vector pages (PDF, SVG) drawn by the same painter code.
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Save Picture"), QStringLiteral("Eclipse.png"),
        tr("Pictures (*.png *.jpg *.bmp);;PDF Documents (*.pdf);;SVG Drawings (*.svg);;All Files (*)"));
    if (path.isEmpty()) return;
    if (const auto error = ExportEclipseMap(path.toStdString(), 1800, 1000, Land(), m_event, m_title))
        QMessageBox::warning(this, QApplication::applicationName(), QString::fromStdString(*error));
}

void CEclipseMapWindow::Print()
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageOrientation(QPageLayout::Landscape);
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() != QDialog::Accepted) return;
    QPainter painter(&printer);
    Draw(painter, QRectF(painter.viewport()));
}

// ---- Browsing lists ---------------------------------------------------------

CEclipseBrowseWindow::CEclipseBrowseWindow(CAppContext& app, EclipseKind kind, QWidget* parent)
    : QWidget(parent, Qt::Window), m_app(app), m_kind(kind)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(kind == EclipseKind::Solar ? tr("Solar Eclipses") : tr("Lunar Eclipses"));
    auto* layout = new QVBoxLayout(this);
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(tr("Years:"), this));
    m_file = new QComboBox(this);
    m_file->addItem(tr("2000 BC - 1001 BC"), 1);
    m_file->addItem(tr("1000 BC - 1 BC"), 2);
    m_file->addItem(tr("1 AD - 1000 AD"), 3);
    m_file->addItem(tr("1001 AD - 2000 AD"), 4);
    m_file->addItem(tr("2001 AD - 3000 AD"), 5);
    row->addWidget(m_file);
    row->addStretch();
    layout->addLayout(row);
    m_panel = new CResultTablePanel(app, CResultTablePanel::Sorting::None, CResultTablePanel::Selection::Single,
                                    CResultTablePanel::Title::Hidden, this);
    m_panel->SetReportName(kind == EclipseKind::Solar ? QStringLiteral("SolarEclipses") : QStringLiteral("LunarEclipses"));
    layout->addWidget(m_panel);
    auto* map = new QPushButton(tr("&Map"), this);
    map->setToolTip(tr("The world map of the selected eclipse"));
    m_panel->Buttons()->insertWidget(0, map);
    connect(map, &QPushButton::clicked, this, &CEclipseBrowseWindow::ShowMap);
    EclipseBrowsePosition position;
    position.Load(app.Settings(), kind);
    m_file->setCurrentIndex(position.fileNumber - 1);
    Load(position.fileNumber, position.lineNumber);
    connect(m_file, &QComboBox::currentIndexChanged, this, [this](int index) { Load(index + 1, 0); });
    resize(420, 560);
}

void CEclipseBrowseWindow::Load(int fileNumber, int lineNumber)
{
    const auto table = MakeEclipseBrowseTable(m_kind, fileNumber);
    if (!table) {
        m_panel->SetTable(ResultTable{});
        // A table that is there but damaged says why it was refused.
        const QString why = TakeDataFileProblemsText();
        QMessageBox::warning(this, QApplication::applicationName(),
                             tr("Unable to open file\n\"%1\"").arg(ToQ(EclipseFileName(m_kind, fileNumber))) +
                                 (why.isEmpty() ? QString() : QStringLiteral("\n\n") + why));
        return;
    }
    m_panel->SetTable(*table);
    m_records.clear();
    std::string path;
    if (LocateDataFile(EclipseFileName(m_kind, fileNumber), path))
        if (auto records = ReadEclipseFile(path)) m_records = std::move(*records);
    if (lineNumber > 0 && lineNumber < static_cast<int>(table->rows.size())) {
        const QModelIndex index = m_panel->View()->model()->index(lineNumber, 0);
        m_panel->View()->scrollTo(index, QAbstractItemView::PositionAtTop);
        m_panel->View()->selectRow(lineNumber);
    }
}

void CEclipseBrowseWindow::ShowMap()
{
    const std::vector<int> rows = m_panel->SelectedTableRows();
    if (rows.empty() || rows.front() < 0 || rows.front() >= static_cast<int>(m_records.size())) {
        QMessageBox::information(this, QApplication::applicationName(),
                                 tr("Please select an item from the list before\nclicking the \"Map\" button."));
        return;
    }
    const EclipseRecord& r = m_records[static_cast<std::size_t>(rows.front())];
    const double jdTT = RecordJulianDateTT(r);
    const auto event = EclipseAtSyzygyNear(jdTT, m_kind);
    if (!event) {
        QMessageBox::warning(this, QApplication::applicationName(),
                             tr("The eclipse cannot be computed: the VSOP87 files are missing from the data folder."));
        return;
    }
    // The global circumstances: the instants are the same for every site.
    QString text = ToQ(EclipseTypeText(m_kind, r.type) + " eclipse of " + ResultDateText(r) + " TT\n\n");
    const double deltaT = DeltaTSeconds(event->jdTT);
    const auto utText = [&](double jdTTInstant) {
        const CivilDateTime t = CivilFromJulianDate(jdTTInstant - deltaT / 86400.0);
        return QStringLiteral("%1:%2:%3 UT")
            .arg(t.hour, 2, 10, QChar('0'))
            .arg(t.minute, 2, 10, QChar('0'))
            .arg(static_cast<int>(t.second), 2, 10, QChar('0'));
    };
    text += tr("Greatest eclipse   %1  (ΔT %2 s)\n").arg(utText(event->jdTT)).arg(deltaT, 0, 'f', 1);
    text += tr("Gamma              %1\n").arg(event->gamma, 0, 'f', 4);
    if (m_kind == EclipseKind::Solar) {
        text += tr("Magnitude          %1\n").arg(event->magnitude, 0, 'f', 4);
    } else {
        text += tr("Penumbral magnitude %1\nUmbral magnitude    %2\n\n")
                    .arg(event->penumbralMagnitude, 0, 'f', 4)
                    .arg(event->magnitude, 0, 'f', 4);
        if (const auto lunar = LunarLocal(event->jdTT, EclipseSite{})) {
            const std::pair<const char*, const EclipseContact*> phases[] = {
                {"P1 penumbra begins", &lunar->p1}, {"U1 partial begins", &lunar->u1}, {"U2 total begins", &lunar->u2},
                {"U3 total ends", &lunar->u3},      {"U4 partial ends", &lunar->u4},   {"P4 penumbra ends", &lunar->p4}};
            for (const auto& [name, c] : phases)
                if (c->valid) text += QStringLiteral("%1 %2\n").arg(QString::fromLatin1(name), -19).arg(utText(c->jdTT));
        }
    }
    auto* window = new CEclipseMapWindow(m_app, *event, text, parentWidget());
    window->show();
}

void CEclipseBrowseWindow::closeEvent(QCloseEvent* event)
{
    EclipseBrowsePosition position;
    position.fileNumber = m_file->currentIndex() + 1;
    position.lineNumber = std::max(0, m_panel->View()->rowAt(0));
    position.Save(m_app.Settings(), m_kind);
    QWidget::closeEvent(event);
}

// ---- Menu -------------------------------------------------------------------

CEclipseCommands::CEclipseCommands(CAppContext& app, QWidget* frame, std::function<CMapWindow*()> activeMap)
    : QObject(frame), m_app(app), m_frame(frame), m_activeMap(std::move(activeMap))
{
    m_menu = new QMenu(tr("&Eclipses"), frame);
    m_menu->addAction(tr("Eclipse &Search..."), this, &CEclipseCommands::Search);
    m_menu->addSeparator();
    m_menu->addAction(tr("All S&olar Eclipses"), this, [this] { Browse(EclipseKind::Solar); });
    m_menu->addAction(tr("All &Lunar Eclipses"), this, [this] { Browse(EclipseKind::Lunar); });
}

void CEclipseCommands::Search()
{
    EclipseSearchSettings settings;
    settings.Load(m_app.Settings());
    CEclipseSearchDialog dialog(settings, m_frame);
    if (dialog.exec() != QDialog::Accepted) return;
    settings = dialog.Settings();
    settings.Save(m_app.Settings());

    CObserverDoc observer;
    if (CMapWindow* map = m_activeMap ? m_activeMap() : nullptr)
        observer = map->Doc().observer;
    else
        observer.LoadSettings(m_app.Settings());
    const EclipseSite site{observer.LatitudeRad(), observer.LongitudeRad(), observer.HeightM()};
    auto* window = new CEclipseResultWindow(m_app, m_frame);
    window->show();
    if (!window->Run(settings, site)) window->close();
}

void CEclipseCommands::Browse(EclipseKind kind)
{
    auto* window = new CEclipseBrowseWindow(m_app, kind, m_frame);
    window->show();
}

}  // namespace orv
