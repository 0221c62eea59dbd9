// "Map Overlays": the list of overlay files ("overlay.dat") with their
// active flags and activation levels; "Add...", "Edit..." and "Delete...".
// Each file added or edited is parsed at once, and the lines it would skip
// are shown with their numbers.
#pragma once

#include <QDialog>

#include <vector>

#include "overlay/overlayfile.h"

class QCheckBox;
class QLineEdit;
class QSpinBox;
class QTableWidget;

namespace orv {

class CAppContext;

// One entry: the file, whether it is drawn, and the levels at which it is
// switched on by itself.
class COverlayEntryDialog : public QDialog {
    Q_OBJECT
public:
    COverlayEntryDialog(const OverlayListEntry& entry, QWidget* parent = nullptr);
    OverlayListEntry Result() const;

private:
    void Browse();
    void accept() override;
    QLineEdit* m_path = nullptr;
    QCheckBox* m_active = nullptr;
    QSpinBox* m_min = nullptr;
    QSpinBox* m_max = nullptr;
};

class COverlayListDialog : public QDialog {
    Q_OBJECT
public:
    COverlayListDialog(CAppContext& app, QWidget* parent = nullptr);
    const std::vector<OverlayListEntry>& Entries() const { return m_entries; }

private:
    void Fill();
    void Add();
    void Edit();
    void Delete();
    void ReadIfDrawn(int row);
    int Current() const;

    CAppContext& m_app;
    std::vector<OverlayListEntry> m_entries;
    QTableWidget* m_table = nullptr;
};

// The lines of an overlay that were skipped or drawn with a default, as
// "file, line N: what was expected", empty when there are none.
QString OverlayProblems(const COverlay& overlay);

}  // namespace orv
