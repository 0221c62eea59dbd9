#include "app/visiblestars.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QTableView>
#include <QVBoxLayout>

#include <array>
#include <optional>

#include "app/appcontext.h"
#include "app/mapwindow.h"
#include "app/resulttablepanel.h"
#include "catalog/stars/starsource.h"
#include "map/mapdraw.h"
#include "util/settingsstore.h"

namespace orv {

namespace {

constexpr const char* kStarsSection = "Stars";

// The sort choices in the order of the "Sort by" box.
constexpr std::array<StarListSort, 5> kSortChoices = {StarListSort::Designation, StarListSort::Magnitude,
                                                      StarListSort::Variable, StarListSort::Double,
                                                      StarListSort::Constellation};

// The sort a click on a column heading asks for; the colour and the
// position columns have no sort of their own.
std::optional<StarListSort> SortOfColumn(int column)
{
    switch (column) {
    case 0: return StarListSort::Designation;
    case 1: return StarListSort::Magnitude;
    case 3: return StarListSort::Variable;
    case 4: return StarListSort::Double;
    default: return std::nullopt;
    }
}

int DefaultWidth(int column) { return column == 0 ? 190 : column >= 5 ? 110 : column == 1 || column == 2 ? 60 : 40; }

}  // namespace

CVisibleStarsDialog::CVisibleStarsDialog(CMapWindow& window, CAppContext& app, QWidget* parent)
    : QDialog(parent),
      m_window(window),
      m_app(app),
      m_rows(VisibleStarRows(window.Renderer().WindowScene(), app.Components().objects))
{
    setWindowTitle(tr("Stars Visible on the Map"));
    auto* layout = new QVBoxLayout(this);

    auto* controls = new QHBoxLayout;
    controls->addWidget(new QLabel(tr("Sort by:"), this));
    m_sortChoice = new QComboBox(this);
    m_sortChoice->addItems({tr("Designation"), tr("Magnitude"), tr("Variable stars first"), tr("Double stars first"),
                            tr("Constellation")});
    controls->addWidget(m_sortChoice);
    m_descending = new QCheckBox(tr("&Descending"), this);
    controls->addWidget(m_descending);
    controls->addStretch(1);
    m_count = new QLabel(this);
    controls->addWidget(m_count);
    layout->addLayout(controls);

    m_panel = new CResultTablePanel(m_app, CResultTablePanel::Sorting::ByOwner, CResultTablePanel::Selection::Single,
                                    CResultTablePanel::Title::Hidden, this);
    m_panel->SetReportName(QStringLiteral("Stars"));
    m_panel->SetColumnsMovable(false);
    m_panel->SetDefaultWidths(DefaultWidth);
    Table()->setToolTip(tr("Double-click a star to centre the chart on it"));
    layout->addWidget(m_panel);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    connect(m_panel, &CResultTablePanel::HeadingClicked, this, &CVisibleStarsDialog::HeaderClicked);
    connect(m_panel, &CResultTablePanel::RowActivated, this, &CVisibleStarsDialog::CentreOnRow);
    auto resort = [this] {
        SortBy(kSortChoices[static_cast<std::size_t>(m_sortChoice->currentIndex())],
               m_descending->isChecked() ? SortDirection::Descending : SortDirection::Ascending);
    };
    m_sortChoice->setCurrentIndex(1);  // brightest first, as the chart hands them over
    connect(m_sortChoice, &QComboBox::currentIndexChanged, this, resort);
    connect(m_descending, &QCheckBox::toggled, this, resort);
    // The list belongs to one chart: it goes when the chart's window goes.
    connect(&m_window, &QObject::destroyed, this, &QDialog::close);
    Fill();
    resize(760, 520);
}

void CVisibleStarsDialog::SortBy(StarListSort by, SortDirection direction)
{
    m_sort = by;
    m_direction = direction;
    SortVisibleStars(m_rows, by, direction);
    // Keep the controls in step when the sort came from a heading click.
    for (std::size_t i = 0; i < kSortChoices.size(); ++i)
        if (kSortChoices[i] == by) {
            const QSignalBlocker blockChoice(m_sortChoice);
            m_sortChoice->setCurrentIndex(static_cast<int>(i));
        }
    const QSignalBlocker blockDirection(m_descending);
    m_descending->setChecked(direction == SortDirection::Descending);
    Fill();
}

QTableView* CVisibleStarsDialog::Table() const { return m_panel->View(); }

void CVisibleStarsDialog::Fill()
{
    // The widths the user set stay as the rows change; the first time they
    // come from the "Stars" section's "StarListCol%1d" entries.
    CResultTablePanel::Layouts layouts;
    if (m_panel->Table().columns.empty()) {
        const CSettingsStore& store = m_app.Settings();
        for (int c = 0; c < kStarListColumns; ++c)
            layouts[c] = {store.GetInt(kStarsSection, StarListColumnKey(c), DefaultWidth(c)), c};
    } else {
        m_panel->StoreLayouts(layouts);
    }
    m_panel->SetTable(VisibleStarsTable(m_rows), layouts);
    m_count->setText(m_rows.size() == 1 ? tr("1 star") : tr("%1 stars").arg(m_rows.size()));
}

void CVisibleStarsDialog::HeaderClicked(int column)
{
    const auto by = SortOfColumn(column);
    if (!by) return;
    // A second click on the column that sorts the list turns the order round.
    const SortDirection direction = *by == m_sort && m_direction == SortDirection::Ascending ? SortDirection::Descending
                                                                                             : SortDirection::Ascending;
    SortBy(*by, direction);
}

void CVisibleStarsDialog::CentreOnRow(int row)
{
    if (row < 0 || row >= static_cast<int>(m_rows.size())) return;
    const VisibleStarRow& star = m_rows[static_cast<std::size_t>(row)];
    m_window.CentreOn(star.raJ2000Rad, star.decJ2000Rad,
                      SearchTarget{star.raJ2000Rad, star.decJ2000Rad, star.designation});
}

bool CVisibleStarsDialog::SaveTo(const QString& path) { return m_panel->SaveTo(path); }

void CVisibleStarsDialog::SaveWidths()
{
    CSettingsStore& store = m_app.Settings();
    for (int c = 0; c < kStarListColumns; ++c) store.SetInt(kStarsSection, StarListColumnKey(c), Table()->columnWidth(c));
}

void CVisibleStarsDialog::done(int result)
{
    SaveWidths();
    QDialog::done(result);
}

}  // namespace orv
