#include "app/deepskywindows.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

#include "app/appcontext.h"
#include "app/dialogs.h"
#include "app/mapwindow.h"
#include "app/resulttablepanel.h"
#include "catalog/deepsky/deepskyfilter.h"
#include "map/mapdraw.h"
#include "util/settingsstore.h"

namespace orv {

namespace {

constexpr const char* kDeepSkySection = "DeepSky";
constexpr int kListColumns = 9;

QString TypeName(int code) { return QString::fromStdString(std::string(ObjectTypeName(static_cast<ObjectType>(code)))); }

std::string ListColumnKey(int column) { return "DeepSkyListCol" + std::to_string(column); }

}  // namespace

CConfigDeepSkyObjectsPage::CConfigDeepSkyObjectsPage(CDeepSkySettings& s, QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    auto* types = new QGroupBox(tr("Object types shown"), this);
    auto* grid = new QGridLayout(types);
    for (int code = 0; code < kDeepSkyTypeCount; ++code) {
        const auto type = static_cast<ObjectType>(code);
        auto* box = new QCheckBox(TypeName(code), types);
        box->setChecked(DeepSkyTypeBit(s, type));
        connect(box, &QCheckBox::toggled, this, [&s, type](bool on) { SetDeepSkyTypeBit(s, type, on); });
        grid->addWidget(box, code / 3, code % 3);
    }
    layout->addWidget(types);
    auto* filters = new CSettingsForm(this);
    filters->AddCheck(tr("Only objects brighter than the magnitude limit"), s.dsMagnitude);
    filters->AddHundredths(tr("Magnitude limit:"), s.magLimit, -2.0, 30.0);
    filters->AddCheck(tr("Only objects larger than the size limit"), s.dsSize);
    filters->AddNumber(tr("Size limit:"), s.dsSizeLimit, 0, 32767, tr(" arcsec"));
    filters->AddNote(tr("Magnitude adjustment by type (added before the limits are compared; "
                        "\"All\" applies to every type):"));
    for (int code = 0; code < kDeepSkyTypeCount; ++code)
        filters->AddHundredths(TypeName(code) + ":", s.magAdjust[static_cast<std::size_t>(code)], -10.0, 10.0, tr(" mag"));
    layout->addWidget(filters);
}

CConfigDeepSkyDisplayPage::CConfigDeepSkyDisplayPage(CDeepSkySettings& s, QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    auto* form = new CSettingsForm(this);
    form->AddCheck(tr("Show deep-sky objects"), s.visible);
    form->AddLevels(tr("Revised NGC/IC database"), s.levelLowNGCIC, s.levelHighNGCIC);
    form->AddLevels(tr("Saguaro Astronomy Club (SAC) database"), s.levelLowSAC, s.levelHighSAC);
    form->AddLevels(tr("Lyon-Meudon Extragalactic Database (LEDA)"), s.levelLowLEDA, s.levelHighLEDA);
    form->AddLevels(tr("Strasbourg Catalogue of Galactic Planetary Nebulae"), s.levelLowStras, s.levelHighStras);
    form->AddLevels(tr("Dark nebulae"), s.darkLevelLow, s.darkLevelHigh);
    layout->addWidget(form);
    layout->addStretch(1);
}

CConfigDeepSkyNamesPage::CConfigDeepSkyNamesPage(CDeepSkySettings& s, QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    auto* form = new CSettingsForm(this);
    form->AddChoice(tr("Label objects with:"), s.labelOption,
                    {tr("their designation (Messier number first)"), tr("their common name when they have one"),
                     tr("designation and common name")});
    layout->addWidget(form);
    auto* filterForm = new QFormLayout;
    auto* filter = new QLineEdit(QString::fromStdString(s.nameFilter), this);
    filter->setPlaceholderText(tr("e.g. NGC 7*; M*"));
    filter->setToolTip(tr("Only objects whose designation or name matches are drawn: '*' any run of "
                          "characters, '?' one, patterns separated by ';'. Empty: every object."));
    connect(filter, &QLineEdit::textChanged, this, [&s](const QString& text) { s.nameFilter = text.toStdString(); });
    filterForm->addRow(tr("Name filter:"), filter);
    layout->addLayout(filterForm);
    // One catalogue's objects only: the filter becomes that catalogue's
    // prefix followed by any number ("M *" shows the Messier objects).
    auto* prefixes = new QPushButton(tr("Only One &Catalogue..."), this);
    connect(prefixes, &QPushButton::clicked, this, [this, filter] {
        CDeepSkyNameCatalogDlg dialog(LoadCatalogPrefixes(), this);
        if (dialog.exec() != QDialog::Accepted) return;
        if (const auto prefix = dialog.Prefix()) filter->setText(QString::fromStdString(WithCatalogPrefix(*prefix, "*")));
    });
    layout->addWidget(prefixes, 0, Qt::AlignLeft);
    layout->addStretch(1);
}

CDeepSkyNameCatalogDlg::CDeepSkyNameCatalogDlg(const std::vector<CatalogPrefix>& prefixes, QWidget* parent)
    : QDialog(parent), m_prefixes(prefixes)
{
    setWindowTitle(tr("Catalogue"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Please enter a catalog prefix"), this));
    m_list = new QListWidget(this);
    for (const CatalogPrefix& p : m_prefixes)
        m_list->addItem(QString::fromStdString(p.prefix) + QStringLiteral("  —  ") + QString::fromStdString(p.description));
    if (!m_prefixes.empty()) m_list->setCurrentRow(0);
    layout->addWidget(m_list);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    layout->addWidget(buttons);
}

std::optional<std::string> CDeepSkyNameCatalogDlg::Prefix() const
{
    const int row = m_list->currentRow();
    if (row < 0 || row >= static_cast<int>(m_prefixes.size())) return std::nullopt;
    return m_prefixes[static_cast<std::size_t>(row)].prefix;
}

std::optional<std::string> AskCatalogPrefix(QWidget* parent)
{
    CDeepSkyNameCatalogDlg dialog(LoadCatalogPrefixes(), parent);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.Prefix();
}

CDeepSkyPropertySheet::CDeepSkyPropertySheet(const CDeepSkySettings& settings, CSettingsStore& store, QWidget* parent)
    : QDialog(parent), m_settings(settings)
{
    setWindowTitle(tr("Deep Sky"));
    auto* layout = new QVBoxLayout(this);
    auto* tabs = new QTabWidget(this);
    tabs->addTab(new CConfigDeepSkyObjectsPage(m_settings, tabs), tr("Objects"));
    tabs->addTab(new CConfigDeepSkyDisplayPage(m_settings, tabs), tr("Display"));
    tabs->addTab(new CConfigDeepSkyNamesPage(m_settings, tabs), tr("Names"));
    layout->addWidget(tabs);
    auto* buttons = OkCancelSaveDefaults(this, [this, &store] {
        m_settings.Save(store);
        store.Flush();
    });
    layout->addWidget(buttons);
}

CVisibleDeepSkyDialog::CVisibleDeepSkyDialog(CMapWindow& window, CAppContext& app, QWidget* parent)
    : QDialog(parent),
      m_window(window),
      m_app(app),
      m_rows(VisibleDeepSkyRows(window.Renderer().WindowScene(), app.Components().objects))
{
    setWindowTitle(tr("Deep Sky Objects Visible on the Map"));
    auto* layout = new QVBoxLayout(this);
    m_panel = new CResultTablePanel(m_app, CResultTablePanel::Sorting::ByColumn, CResultTablePanel::Selection::Single,
                                    CResultTablePanel::Title::Hidden, this);
    m_panel->SetReportName(QStringLiteral("DeepSky"));
    m_panel->SetDefaultWidths([](int column) { return column <= 1 ? 170 : column == 2 ? 120 : 80; });
    CResultTablePanel::Layouts layouts;
    const CSettingsStore& store = m_app.Settings();
    for (int c = 0; c < kListColumns; ++c)
        layouts[c] = {store.GetInt(kDeepSkySection, ListColumnKey(c), c <= 1 ? 170 : c == 2 ? 120 : 80), c};
    m_panel->SetTable(VisibleDeepSkyTable(m_rows), layouts);
    m_panel->View()->setToolTip(tr("Double-click an object to centre the chart on it"));
    layout->addWidget(m_panel);
    auto* count = new QLabel(m_rows.size() == 1 ? tr("1 object") : tr("%1 objects").arg(m_rows.size()), this);
    layout->addWidget(count);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    connect(m_panel, &CResultTablePanel::RowActivated, this, &CVisibleDeepSkyDialog::CentreOnRow);
    connect(&m_window, &QObject::destroyed, this, &QDialog::close);
    resize(900, 520);
}

void CVisibleDeepSkyDialog::CentreOnRow(int row)
{
    if (row < 0 || row >= static_cast<int>(m_rows.size())) return;
    const VisibleDeepSkyRow& o = m_rows[static_cast<std::size_t>(row)];
    m_window.CentreOn(o.raJ2000Rad, o.decJ2000Rad, SearchTarget{o.raJ2000Rad, o.decJ2000Rad, o.designation});
}

void CVisibleDeepSkyDialog::done(int result)
{
    CSettingsStore& store = m_app.Settings();
    for (int c = 0; c < kListColumns; ++c)
        store.SetInt(kDeepSkySection, ListColumnKey(c), m_panel->View()->columnWidth(c));
    QDialog::done(result);
}

void ShowVisibleDeepSky(QWidget* parent, CMapWindow& window, CAppContext& app)
{
    auto* dialog = new CVisibleDeepSkyDialog(window, app, parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

}  // namespace orv
