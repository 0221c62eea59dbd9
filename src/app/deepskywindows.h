// The deep-sky windows: the property sheet of the "DeepSky" settings (pages
// CConfigDeepSkyObjectsPage, CConfigDeepSkyDisplayPage and
// CConfigDeepSkyNamesPage, with CDeepSkyNameCatalogDlg for the catalogue
// prefixes), the list of the deep-sky objects visible on a chart, and the
// prompt for a catalogue prefix when a number is typed alone. Each page
// edits a copy of CDeepSkySettings, which is loaded, saved and tested
// without the dialogs.
#pragma once

#include <QDialog>
#include <QWidget>

#include <optional>
#include <string>
#include <vector>

#include "catalog/deepsky/catalogprefix.h"
#include "catalog/deepsky/deepskysource.h"
#include "map/catalogsettings.h"

class QLabel;
class QListWidget;
class QTableView;

namespace orv {

class CAppContext;
class CMapWindow;
class CResultTablePanel;
class CSettingsStore;

// Which object types are drawn, the magnitude and size filters and the
// magnitude adjustment of each type.
class CConfigDeepSkyObjectsPage : public QWidget {
    Q_OBJECT
public:
    CConfigDeepSkyObjectsPage(CDeepSkySettings& s, QWidget* parent = nullptr);
};

// Whether deep-sky objects are drawn, and the levels of each catalogue.
class CConfigDeepSkyDisplayPage : public QWidget {
    Q_OBJECT
public:
    CConfigDeepSkyDisplayPage(CDeepSkySettings& s, QWidget* parent = nullptr);
};

// How labels are formed ("LabelOption") and the name filter ("NameFilter").
class CConfigDeepSkyNamesPage : public QWidget {
    Q_OBJECT
public:
    CConfigDeepSkyNamesPage(CDeepSkySettings& s, QWidget* parent = nullptr);
};

// The catalogue whose prefix completes a number typed alone, chosen among
// the prefixes of "CatExt.dat".
class CDeepSkyNameCatalogDlg : public QDialog {
    Q_OBJECT
public:
    CDeepSkyNameCatalogDlg(const std::vector<CatalogPrefix>& prefixes, QWidget* parent = nullptr);
    // The prefix chosen, or nothing before one is.
    std::optional<std::string> Prefix() const;
    QListWidget* List() const { return m_list; }

private:
    std::vector<CatalogPrefix> m_prefixes;
    QListWidget* m_list = nullptr;
};

// "Please enter a catalog prefix": the prefix for a number typed alone,
// nothing when the user cancels.
std::optional<std::string> AskCatalogPrefix(QWidget* parent);

class CDeepSkyPropertySheet : public QDialog {
    Q_OBJECT
public:
    CDeepSkyPropertySheet(const CDeepSkySettings& settings, CSettingsStore& store, QWidget* parent = nullptr);
    const CDeepSkySettings& Result() const { return m_settings; }

private:
    CDeepSkySettings m_settings;
};

// The "Deep Sky Objects Visible on the Map" list of a chart, sortable by
// any column, saved and copied as a report; a double click centres the
// chart on the object. Column widths are kept as "DeepSkyListCol%1d" in the
// "DeepSky" section.
class CVisibleDeepSkyDialog : public QDialog {
    Q_OBJECT
public:
    CVisibleDeepSkyDialog(CMapWindow& window, CAppContext& app, QWidget* parent = nullptr);
    const std::vector<VisibleDeepSkyRow>& Rows() const { return m_rows; }
    CResultTablePanel* Panel() const { return m_panel; }

protected:
    void done(int result) override;

private:
    void CentreOnRow(int tableRow);

    CMapWindow& m_window;
    CAppContext& m_app;
    std::vector<VisibleDeepSkyRow> m_rows;
    CResultTablePanel* m_panel = nullptr;
};

void ShowVisibleDeepSky(QWidget* parent, CMapWindow& window, CAppContext& app);

}  // namespace orv
