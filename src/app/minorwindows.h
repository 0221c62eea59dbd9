// The comet and asteroid windows: the "Comets & Asteroids" menu, the
// catalogue dialog of each kind (list, search by name or number, add, edit,
// delete, open, save), the element editor, the import of the Minor Planet
// Center's files with progress and a report of refused lines, the pasting
// of single element lines, the filter and display settings of a map
// (pages CAsterPageCatalog and CAsterPageDisplay) and the list of the comets
// and asteroids visible on a chart.
#pragma once

#include <optional>
#include <QAbstractTableModel>
#include <QDialog>
#include <QPointer>

#include <functional>
#include <vector>

#include "map/layersettings.h"
#include "solarsystem/minorsource.h"

class QLineEdit;
class QMenu;
class QTableView;
class QLabel;

namespace orv {

class CAppContext;
class CMapWindow;
class CSettingsStore;

// The entries of one catalogue that match the search text, as a table.
class CMinorCatalogModel : public QAbstractTableModel {
    Q_OBJECT
public:
    CMinorCatalogModel(CMinorCatalogs& catalogs, MinorKind kind, QObject* parent = nullptr);
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    // Keeps the entries whose name (or number) contains `text`, case-blind.
    void SetFilter(const QString& text);
    void Refresh();
    // The catalogue index of a shown row, or −1.
    int EntryAt(int row) const;

private:
    CMinorCatalogs& m_catalogs;
    MinorKind m_kind;
    QString m_filter;
    std::vector<std::size_t> m_shown;
};

class CMinorCatalogDialog : public QDialog {
    Q_OBJECT
public:
    CMinorCatalogDialog(CAppContext& app, MinorKind kind, QWidget* parent = nullptr);
    CMinorCatalogModel* Model() const { return m_model; }
    QLineEdit* Search() const { return m_search; }

    void AddEntry();
    void EditEntry();
    void DeleteEntry();
    void OpenCatalog();
    bool SaveCatalog();
    void SaveCatalogAs();
    // Draws the selected entry's orbit path on the charts: a span of days
    // (asked) centred on the active map's instant, or on now without a map;
    // ClearPaths removes every path.
    void ShowPath();
    // The instant (JD TT) the paths are centred on; nothing for the present.
    void SetPathCentre(std::optional<double> jdTT) { m_pathCentreJdTT = jdTT; }
    void ClearPaths();

protected:
    void done(int result) override;

private:
    int SelectedEntry() const;
    void Changed();
    // Asks to save a changed catalogue; false when the user cancels.
    bool MaybeSave(const QString& question);
    void UpdateTitle();

    CAppContext& m_app;
    std::optional<double> m_pathCentreJdTT;
    MinorKind m_kind;
    CMinorCatalogModel* m_model = nullptr;
    QTableView* m_view = nullptr;
    QLineEdit* m_search = nullptr;
    QLabel* m_count = nullptr;
};

// Edits one entry's elements; Result() holds them after OK.
class CAsteroidElementsDialog : public QDialog {
    Q_OBJECT
public:
    CAsteroidElementsDialog(const AsteroidElements& a, QWidget* parent = nullptr);
    // False with a message when a field does not read.
    bool Read(AsteroidElements& out, QString& error) const;

private:
    std::vector<QLineEdit*> m_fields;
};
class CCometElementsDialog : public QDialog {
    Q_OBJECT
public:
    CCometElementsDialog(const CometElements& c, QWidget* parent = nullptr);
    bool Read(CometElements& out, QString& error) const;

private:
    std::vector<QLineEdit*> m_fields;
};

// The settings of the comets and asteroids of one map: the catalogue
// filters (document side) and the display (view side), two tabs each.
class CMinorSettingsDialog : public QDialog {
    Q_OBJECT
public:
    // With `defaults`, a "Save as Defaults" button writes the pages there.
    CMinorSettingsDialog(const CAsteroidCatalogSettings& asteroids, const CCometCatalogSettings& comets,
                         const CBodyDisplay& asteroidDisplay, const CBodyDisplay& cometDisplay, QWidget* parent = nullptr,
                         CSettingsStore* defaults = nullptr);
    CAsteroidCatalogSettings asteroids;
    CCometCatalogSettings comets;
    CBodyDisplay asteroidDisplay;
    CBodyDisplay cometDisplay;
};

// The "Comets & Asteroids" menu and what it opens.
class CMinorCommands : public QObject {
    Q_OBJECT
public:
    CMinorCommands(CAppContext& app, QWidget* frame, std::function<CMapWindow*()> activeMap);
    QMenu* Menu() const { return m_menu; }

    void ShowCatalog(MinorKind kind);
    // Imports a file into the catalogue of its kind; the report as text.
    QString ImportFile(const QString& path, bool showProgress);
    void Import();      // the file dialog, then ImportFile
    void PasteLines();  // the dialog of pasted lines
    // Adds the pasted lines; the report as text.
    QString AddPastedLines(const QString& text);
    void Options();
    void VisibleList();

private:
    CAppContext& m_app;
    QWidget* m_frame;
    std::function<CMapWindow*()> m_activeMap;
    QMenu* m_menu = nullptr;
};

}  // namespace orv
