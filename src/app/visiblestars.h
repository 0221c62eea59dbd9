// The list of the stars visible on a chart: a sortable table of the stars
// the chart drew, which can be saved, copied, and used to find a star on
// the chart again.
#pragma once

#include <QDialog>

#include <vector>

#include "catalog/stars/stardisplay.h"

class QComboBox;
class QCheckBox;
class QLabel;
class QTableWidget;

namespace orv {

class CAppContext;
class CMapWindow;

class CVisibleStarsDialog : public QDialog {
    Q_OBJECT
public:
    // Takes the stars of the window's last drawing. Column widths come from
    // the "Stars" section's "StarListCol%1d" entries and go back there when
    // the dialog closes.
    CVisibleStarsDialog(CMapWindow& window, CAppContext& app, QWidget* parent = nullptr);

    void SortBy(StarListSort by, SortDirection direction);
    const std::vector<VisibleStarRow>& Rows() const { return m_rows; }
    QTableWidget* Table() const { return m_table; }
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
    QTableWidget* m_table = nullptr;
    QComboBox* m_sortChoice = nullptr;
    QCheckBox* m_descending = nullptr;
    QLabel* m_count = nullptr;
};

}  // namespace orv
