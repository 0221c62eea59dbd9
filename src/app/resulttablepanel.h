// The one window panel every computed result is shown in: a table view over
// a result table (util/resulttable.h), with Copy, Save as a text report,
// Save as a ".tbl" data table, column layouts kept by the owner's settings,
// and a progress bar with Cancel for computations that take a while.
//
// The panel holds no astronomy and no settings section of its own: the
// window that owns it hands it the table, the stored column layouts and the
// name reports are suggested under, and takes the layouts back when it
// closes.
#pragma once

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <QWidget>

#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "util/progress.h"
#include "util/resulttable.h"

class QHBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QTableView;

namespace orv {

class CAppContext;

// A result table as a Qt model: the cells' texts for display, their
// alignment, the headings; separator rows cannot be selected.
class CResultTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using QAbstractTableModel::QAbstractTableModel;
    void SetTable(ResultTable table);
    const ResultTable& Table() const { return m_table; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    ResultTable m_table;
};

// Sorting by a column in the result table's order: numbers by value, text
// without regard to case, empty cells last (CompareCells).
class CResultSortModel : public QSortFilterProxyModel {
    Q_OBJECT
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
};

class CResultTablePanel : public QWidget {
    Q_OBJECT
public:
    // How a click on a heading sorts: not at all (tables whose rows belong
    // together, such as passes), by the column's cells, or by the owner
    // (which is told through HeadingClicked and hands back a sorted table).
    enum class Sorting { None, ByColumn, ByOwner };
    enum class Selection { Single, Extended };
    enum class Title { Shown, Hidden };

    CResultTablePanel(CAppContext& app, Sorting sorting, Selection selection, Title title,
                      QWidget* parent = nullptr);

    // Column layouts: width and position, by column number + `keyOffset`
    // (so that tables that lack a leading column can share one set of
    // numbers with those that have it).
    using Layouts = std::map<int, std::pair<int, int>>;
    void SetTable(ResultTable table, const Layouts& layouts = {}, int keyOffset = 0);
    const ResultTable& Table() const { return m_model->Table(); }
    void StoreLayouts(Layouts& layouts, int keyOffset = 0) const;
    // A fixed default width for a column, instead of one measured on the
    // column's sample text.
    void SetDefaultWidths(std::function<int(int column)> widthPx) { m_defaultWidth = std::move(widthPx); }
    void SetColumnsMovable(bool movable);

    QTableView* View() const { return m_view; }
    // The table rows in the order shown, and the table row of a view row.
    std::vector<std::size_t> ShownOrder() const;
    int TableRow(int viewRow) const;
    std::vector<int> SelectedTableRows() const;

    // The buttons' row, for the owner's own buttons.
    QHBoxLayout* Buttons() const { return m_buttons; }
    QPushButton* SaveButton() const { return m_save; }
    QPushButton* CopyButton() const { return m_copy; }
    QPushButton* SaveDataTableButton() const { return m_saveTable; }
    // The file name Save suggests, without extension ("Passes").
    void SetReportName(const QString& name) { m_reportName = name; }

    // Write the table in the order shown; on failure tell the user.
    bool SaveTo(const QString& path);
    bool SaveDataTableTo(const QString& path);
    void Save();           // asks for the file; folder remembered as "Reports"
    void SaveDataTable();  // asks for the file; folder remembered as "Tables"
    void Copy();           // the text report on the clipboard, "\r\n" line ends

    // Progress of a computation: shows the bar with `text` and a Cancel
    // button, disables the buttons, and returns the function the
    // computation reports to. It keeps the window responsive (events are
    // handled as the computation reports) and answers Cancel once the user
    // has pressed it. EndProgress hides the bar again.
    ProgressFn BeginProgress(const QString& text);
    void EndProgress();
    bool InProgress() const { return m_inProgress; }

signals:
    void HeadingClicked(int column);    // Sorting::ByOwner
    void RowActivated(int tableRow);    // double click or Enter

private:
    int DefaultWidth(int column) const;
    // The save dialog, in the folder remembered under `folderKey` of "Paths".
    QString AskSavePath(const QString& caption, const char* folderKey, const char* extension, const char* filter);

    CAppContext& m_app;
    Sorting m_sorting;
    CResultTableModel* m_model = nullptr;
    CResultSortModel* m_sort = nullptr;
    QLabel* m_title = nullptr;
    QTableView* m_view = nullptr;
    QHBoxLayout* m_buttons = nullptr;
    QPushButton* m_save = nullptr;
    QPushButton* m_copy = nullptr;
    QPushButton* m_saveTable = nullptr;
    QWidget* m_progressRow = nullptr;
    QLabel* m_progressText = nullptr;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_cancel = nullptr;
    bool m_inProgress = false;
    bool m_cancelled = false;
    QString m_reportName = QStringLiteral("Report");
    std::function<int(int)> m_defaultWidth;
};

}  // namespace orv
