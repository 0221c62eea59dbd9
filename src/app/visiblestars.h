// The list of the stars visible on a chart: a sortable table of the stars
// the chart drew, which can be saved, copied, and used to find a star on
// the chart again. The table is the result-table panel; the list keeps its
// own sort rules (designation order, flagged stars first), so a click on a
// heading comes back here.
#pragma once

#include <QDialog>

#include <vector>

#include "catalog/stars/stardisplay.h"

class QComboBox;
class QCheckBox;
class QLabel;
class QTableView;

namespace orv {

class CAppContext;
class CMapWindow;
class CResultTablePanel;

class CVisibleStarsDialog : public QDialog {
    Q_OBJECT
public:
    // Takes the stars of the window's last drawing. Column widths come from
    // the "Stars" section's "StarListCol%1d" entries and go back there when
    // the dialog closes.
    CVisibleStarsDialog(CMapWindow& window, CAppContext& app, QWidget* parent = nullptr);

    void SortBy(StarListSort by, SortDirection direction);
    const std::vector<VisibleStarRow>& Rows() const { return m_rows; }
    QTableView* Table() const;
    CResultTablePanel* Panel() const { return m_panel; }
    // The listing as saved and copied: in the order shown.
    std::string Listing() const { return VisibleStarsListing(m_rows); }
    bool SaveTo(const QString& path);

protected:
    void done(int result) override;

private:
    void Fill();
    void HeaderClicked(int column);
    void CentreOnRow(int row);
    void SaveWidths();

    CMapWindow& m_window;
    CAppContext& m_app;
    std::vector<VisibleStarRow> m_rows;
    StarListSort m_sort = StarListSort::Magnitude;
    SortDirection m_direction = SortDirection::Ascending;
    CResultTablePanel* m_panel = nullptr;
    QComboBox* m_sortChoice = nullptr;
    QCheckBox* m_descending = nullptr;
    QLabel* m_count = nullptr;
};

}  // namespace orv
