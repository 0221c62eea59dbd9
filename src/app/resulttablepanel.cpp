#include "app/resulttablepanel.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <memory>

#include "app/appcontext.h"
#include "app/satellitewindows.h"

namespace orv {

namespace {

QString ToQ(const std::string& s) { return QString::fromStdString(s); }

constexpr const char* kReportFilter = "Text Files (*.txt)|*.txt|All Files (*.*)|*.*||";
constexpr const char* kDataTableFilter = "Table Files (*.tbl)|*.tbl|All Files (*.*)|*.*||";
constexpr const char* kTablesFolderKey = "Tables";

Qt::Alignment AlignmentOf(CellAlign align)
{
    switch (align) {
    case CellAlign::Right: return Qt::AlignRight | Qt::AlignVCenter;
    case CellAlign::Centre: return Qt::AlignCenter;
    case CellAlign::Left: break;
    }
    return Qt::AlignLeft | Qt::AlignVCenter;
}

// The widest a column measured on its cells grows by default.
constexpr int kWidestMeasuredColumnPx = 260;

}  // namespace

// ------------------------------------------------------------------ model

void CResultTableModel::SetTable(ResultTable table)
{
    beginResetModel();
    m_table = std::move(table);
    endResetModel();
}

int CResultTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_table.rows.size());
}

int CResultTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_table.columns.size());
}

QVariant CResultTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) return {};
    const auto row = static_cast<std::size_t>(index.row()), column = static_cast<std::size_t>(index.column());
    if (role == Qt::DisplayRole) return ToQ(m_table.Cell(row, column).text);
    if (role == Qt::TextAlignmentRole && column < m_table.columns.size())
        return QVariant::fromValue(AlignmentOf(m_table.columns[column].align));
    return {};
}

QVariant CResultTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 &&
        static_cast<std::size_t>(section) < m_table.columns.size())
        return ToQ(m_table.columns[static_cast<std::size_t>(section)].heading);
    return QAbstractTableModel::headerData(section, orientation, role);
}

Qt::ItemFlags CResultTableModel::flags(const QModelIndex& index) const
{
    if (!index.isValid() || static_cast<std::size_t>(index.row()) >= m_table.rows.size()) return Qt::NoItemFlags;
    // The blank row between groups (passes) is not a result.
    if (m_table.rows[static_cast<std::size_t>(index.row())].IsSeparator()) return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

bool CResultSortModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    const auto* model = static_cast<const CResultTableModel*>(sourceModel());
    const ResultTable& t = model->Table();
    return CompareCells(t.Cell(static_cast<std::size_t>(left.row()), static_cast<std::size_t>(left.column())),
                        t.Cell(static_cast<std::size_t>(right.row()), static_cast<std::size_t>(right.column()))) < 0;
}

// ------------------------------------------------------------------ panel

CResultTablePanel::CResultTablePanel(CAppContext& app, Sorting sorting, Selection selection, Title title,
                                     QWidget* parent)
    : QWidget(parent), m_app(app), m_sorting(sorting)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_title = new QLabel(this);
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_title->setWordWrap(true);
    m_title->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_title->setVisible(title == Title::Shown);
    layout->addWidget(m_title);

    m_model = new CResultTableModel(this);
    m_sort = new CResultSortModel(this);
    m_sort->setSourceModel(m_model);
    m_view = new QTableView(this);
    m_view->setModel(m_sort);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(selection == Selection::Extended ? QAbstractItemView::ExtendedSelection
                                                              : QAbstractItemView::SingleSelection);
    m_view->verticalHeader()->setVisible(false);
    m_view->verticalHeader()->setDefaultSectionSize(m_view->fontMetrics().height() + 6);
    m_view->horizontalHeader()->setSectionsMovable(true);
    m_view->horizontalHeader()->setHighlightSections(false);
    m_view->horizontalHeader()->setStretchLastSection(true);
    m_view->setWordWrap(false);
    m_view->setShowGrid(false);
    m_view->setAlternatingRowColors(true);
    if (sorting == Sorting::ByColumn) {
        m_view->setSortingEnabled(true);
        m_view->horizontalHeader()->setSortIndicatorShown(true);
        // Unsorted until the user clicks a heading: the table's own order.
        m_view->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
        m_sort->sort(-1);
    } else if (sorting == Sorting::ByOwner) {
        connect(m_view->horizontalHeader(), &QHeaderView::sectionClicked, this, &CResultTablePanel::HeadingClicked);
    }
    connect(m_view, &QTableView::doubleClicked, this, [this](const QModelIndex& index) {
        if (index.isValid()) emit RowActivated(TableRow(index.row()));
    });
    connect(m_view, &QTableView::activated, this, [this](const QModelIndex& index) {
        // Enter on a row; a double click arrives through doubleClicked.
        if (index.isValid() && QApplication::mouseButtons() == Qt::NoButton) emit RowActivated(TableRow(index.row()));
    });
    layout->addWidget(m_view, 1);

    m_progressRow = new QWidget(this);
    auto* progressLayout = new QHBoxLayout(m_progressRow);
    progressLayout->setContentsMargins(0, 0, 0, 0);
    m_progressText = new QLabel(m_progressRow);
    m_progress = new QProgressBar(m_progressRow);
    m_progress->setRange(0, 1000);
    m_cancel = new QPushButton(tr("Cancel"), m_progressRow);
    progressLayout->addWidget(m_progressText);
    progressLayout->addWidget(m_progress, 1);
    progressLayout->addWidget(m_cancel);
    m_progressRow->setVisible(false);
    layout->addWidget(m_progressRow);
    connect(m_cancel, &QPushButton::clicked, this, [this] {
        m_cancelled = true;
        m_cancel->setEnabled(false);
        m_progressText->setText(tr("Cancelling..."));
    });

    m_buttons = new QHBoxLayout;
    m_buttons->setObjectName(QStringLiteral("TableButtons"));
    m_buttons->addStretch(1);
    m_save = new QPushButton(tr("&Save..."), this);
    m_saveTable = new QPushButton(tr("Save &Table..."), this);
    m_saveTable->setToolTip(tr("Save as a data table (.tbl) for other programs"));
    m_copy = new QPushButton(tr("&Copy"), this);
    m_buttons->addWidget(m_save);
    m_buttons->addWidget(m_saveTable);
    m_buttons->addWidget(m_copy);
    layout->addLayout(m_buttons);
    connect(m_save, &QPushButton::clicked, this, &CResultTablePanel::Save);
    connect(m_saveTable, &QPushButton::clicked, this, &CResultTablePanel::SaveDataTable);
    connect(m_copy, &QPushButton::clicked, this, &CResultTablePanel::Copy);
}

void CResultTablePanel::SetColumnsMovable(bool movable) { m_view->horizontalHeader()->setSectionsMovable(movable); }

int CResultTablePanel::DefaultWidth(int column) const
{
    if (m_defaultWidth) return m_defaultWidth(column);
    const ResultTable& table = m_model->Table();
    const ResultColumn& c = table.columns[static_cast<std::size_t>(column)];
    const QFontMetrics fm = m_view->fontMetrics();
    const int headingWidth = fm.horizontalAdvance(ToQ(c.heading)) + 28;
    if (!c.widthSample.empty()) return std::max(fm.horizontalAdvance(ToQ(c.widthSample)) + 12, headingWidth);
    int widest = 0;
    for (const ResultRow& row : table.rows)
        if (static_cast<std::size_t>(column) < row.cells.size())
            widest = std::max(widest, fm.horizontalAdvance(ToQ(row.cells[static_cast<std::size_t>(column)].text)));
    return std::clamp(widest + 20, headingWidth, std::max(headingWidth, kWidestMeasuredColumnPx));
}

void CResultTablePanel::SetTable(ResultTable table, const Layouts& layouts, int keyOffset)
{
    m_title->setText(ToQ(table.title));
    m_model->SetTable(std::move(table));
    const int columns = m_model->columnCount();
    QHeaderView* header = m_view->horizontalHeader();
    for (int c = 0; c < columns; ++c) header->moveSection(header->visualIndex(c), c);
    std::vector<std::pair<int, int>> order;  // (position, column)
    for (int c = 0; c < columns; ++c) {
        const auto it = layouts.find(c + keyOffset);
        // A stored width of a few pixels is a column the user lost, not one he wants.
        const int width = it != layouts.end() && it->second.first > 8 ? it->second.first : DefaultWidth(c);
        m_view->setColumnWidth(c, width);
        if (it != layouts.end()) order.emplace_back(it->second.second - keyOffset, c);
    }
    std::sort(order.begin(), order.end());
    for (const auto& [position, column] : order)
        if (position >= 0 && position < columns) header->moveSection(header->visualIndex(column), position);
}

void CResultTablePanel::StoreLayouts(Layouts& layouts, int keyOffset) const
{
    const int columns = m_model->columnCount();
    const QHeaderView* header = m_view->horizontalHeader();
    for (int c = 0; c < columns; ++c)
        layouts[c + keyOffset] = {m_view->columnWidth(c), header->visualIndex(c) + keyOffset};
}

int CResultTablePanel::TableRow(int viewRow) const { return m_sort->mapToSource(m_sort->index(viewRow, 0)).row(); }

std::vector<std::size_t> CResultTablePanel::ShownOrder() const
{
    std::vector<std::size_t> order;
    const int rows = m_sort->rowCount();
    order.reserve(static_cast<std::size_t>(rows));
    for (int r = 0; r < rows; ++r) order.push_back(static_cast<std::size_t>(TableRow(r)));
    return order;
}

std::vector<int> CResultTablePanel::SelectedTableRows() const
{
    std::vector<int> rows;
    if (!m_view->selectionModel()) return rows;
    for (const QModelIndex& index : m_view->selectionModel()->selectedRows()) rows.push_back(TableRow(index.row()));
    std::sort(rows.begin(), rows.end());
    return rows;
}

bool CResultTablePanel::SaveTo(const QString& path)
{
    const std::vector<std::size_t> order = ShownOrder();
    if (const auto error = SaveReport(Table(), path.toStdString(), order)) {
        QMessageBox::critical(this, QApplication::applicationName(), ToQ(*error));
        return false;
    }
    return true;
}

bool CResultTablePanel::SaveDataTableTo(const QString& path)
{
    const std::vector<std::size_t> order = ShownOrder();
    if (const auto error = orv::SaveDataTable(Table(), path.toStdString(), order)) {
        QMessageBox::critical(this, QApplication::applicationName(), ToQ(*error));
        return false;
    }
    return true;
}

QString CResultTablePanel::AskSavePath(const QString& caption, const char* folderKey, const char* extension,
                                       const char* filter)
{
    const QString folder = m_app.RememberedFolder(folderKey);
    const QString file = m_reportName + QLatin1String(extension);
    const QString path = QFileDialog::getSaveFileName(this, caption,
                                                      folder.isEmpty() ? file : folder + QLatin1Char('/') + file,
                                                      QtFileFilter(filter));
    if (!path.isEmpty()) m_app.RememberFolder(folderKey, path);
    return path;
}

void CResultTablePanel::Save()
{
    if (const QString path = AskSavePath(tr("Save Table"), kReportsFolderKey, ".txt", kReportFilter); !path.isEmpty())
        SaveTo(path);
}

void CResultTablePanel::SaveDataTable()
{
    if (const QString path = AskSavePath(tr("Save as Data Table"), kTablesFolderKey, ".tbl", kDataTableFilter);
        !path.isEmpty())
        SaveDataTableTo(path);
}

void CResultTablePanel::Copy()
{
    const std::vector<std::size_t> order = ShownOrder();
    QGuiApplication::clipboard()->setText(ToQ(ReportText(Table(), LineEnding::CrLf, order)));
}

ProgressFn CResultTablePanel::BeginProgress(const QString& text)
{
    m_inProgress = true;
    m_cancelled = false;
    m_progressText->setText(text);
    m_progress->setValue(0);
    m_cancel->setEnabled(true);
    m_progressRow->setVisible(true);
    // The buttons (the owner's too) would start another computation or save
    // a half-made table.
    for (int i = 0; i < m_buttons->count(); ++i)
        if (QWidget* w = m_buttons->itemAt(i)->widget()) w->setEnabled(false);
    QApplication::setOverrideCursor(Qt::BusyCursor);
    auto clock = std::make_shared<QElapsedTimer>();
    clock->start();
    return [this, clock](double fraction) {
        // Events are handled at most every 50 ms: often enough for the window
        // to follow the user, seldom enough not to slow the computation.
        if (clock->elapsed() >= 50) {
            m_progress->setValue(static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * 1000.0)));
            QCoreApplication::processEvents();
            clock->restart();
        }
        return m_cancelled ? ProgressAnswer::Cancel : ProgressAnswer::Continue;
    };
}

void CResultTablePanel::EndProgress()
{
    if (!m_inProgress) return;
    m_inProgress = false;
    QApplication::restoreOverrideCursor();
    m_progressRow->setVisible(false);
    for (int i = 0; i < m_buttons->count(); ++i)
        if (QWidget* w = m_buttons->itemAt(i)->widget()) w->setEnabled(true);
}

}  // namespace orv
