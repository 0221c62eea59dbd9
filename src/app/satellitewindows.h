// The satellite windows: the satellite list document (the element file and
// the "EarthSat" settings), the "Satellite List" window, the "Satellite
// Orbital Elements" box and the Satellites menu that ties them to the maps
// (the ground-track and pass sheets are in satellitesheets.h).
#pragma once

#include <QDialog>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <functional>

#include "satellite/elements.h"
#include "satellite/satsettings.h"

class QLabel;
class QLineEdit;
class QMenu;
class QPlainTextEdit;
class QTreeWidget;

namespace orv {

class CAppContext;
class CMapWindow;
class CObserverDoc;
class CSettingsStore;

// The MFC-style filter of the element-file dialog.
inline constexpr const char* kElementFileFilter =
    "Text Files (*.txt)|*.txt|TLE Files (*.TLE)|*.TLE|All Files (*.*)|*.*||";
// "Paths" keys of the folders the file dialogs remember.
inline constexpr const char* kSatelliteFolderKey = "SatelliteTLE";
inline constexpr const char* kReportsFolderKey = "Reports";

// A file-dialog filter written as the program has always written them,
// "Description|pattern|…||", turned into Qt's "Description (pattern);;…";
// a description that already shows its pattern in parentheses is kept as it is.
QString QtFileFilter(const char* pipeFilter);

// The satellite list and its settings: created with the main frame, it reads
// the "EarthSat" section and loads the element file of `TLEFile` when one is
// set.
class CSatelliteDoc : public QObject {
    Q_OBJECT
public:
    explicit CSatelliteDoc(CSettingsStore& store, QObject* parent = nullptr);

    // Reads an element file. Only when it opens is the list replaced (and the
    // path stored as `TLEFile`); otherwise the list stays as it was.
    bool LoadFile(const QString& path);

    const sat::CSatelliteList& List() const { return m_list; }
    QString FileName() const { return QString::fromStdString(m_list.FileName()); }
    const sat::CEarthSatSettings& Settings() const { return m_settings; }
    // Takes the settings a sheet closed with OK and writes them to the store.
    void SetSettings(const sat::CEarthSatSettings& settings);
    CSettingsStore& Store() { return m_store; }

signals:
    void ListChanged();

private:
    CSettingsStore& m_store;
    sat::CSatelliteList m_list;
    sat::CEarthSatSettings m_settings;
};

// "Satellite Orbital Elements": the description of one element set and a
// "&Copy" button that puts it on the clipboard.
class CSatelliteElementsDialog : public QDialog {
    Q_OBJECT
public:
    CSatelliteElementsDialog(const sat::SatelliteRecord& record, QWidget* parent = nullptr);
    QString Text() const;
    void Copy();

private:
    sat::SatelliteRecord m_record;
    QPlainTextEdit* m_text = nullptr;
};

// The "Satellite List" window: the satellites of the element file with
// their periods, and the commands that work on the selected one.
class CSatelliteListWindow : public QWidget {
    Q_OBJECT
public:
    CSatelliteListWindow(CSatelliteDoc& doc, QWidget* parent = nullptr);

    // Index into the list of the selected satellite, −1 when none is.
    int SelectedIndex() const;
    void Select(int index);
    QTreeWidget* Tree() const { return m_tree; }

signals:
    void OpenRequested();
    void ElementsRequested();
    void GroundTrackRequested();
    void PassesRequested();

private:
    void Fill();
    void ApplyFilter(const QString& text);

    CSatelliteDoc& m_doc;
    QTreeWidget* m_tree = nullptr;
    QLineEdit* m_filter = nullptr;
    QLabel* m_count = nullptr;
};

// The Satellites menu and what it opens. The maps are reached through
// `activeMap`: the passes are computed for the active map's site and
// plotted on it.
class CSatelliteCommands : public QObject {
    Q_OBJECT
public:
    CSatelliteCommands(CAppContext& app, QWidget* frame, std::function<CMapWindow*()> activeMap);
    ~CSatelliteCommands() override;

    QMenu* Menu() const { return m_menu; }
    CSatelliteDoc& Doc() { return m_doc; }
    CSatelliteListWindow* ListWindow() const { return m_listWindow; }

    void OpenElementFile();  // the file dialog
    void ShowList();
    void ShowElements();
    void GroundTrack();
    void Passes();
    void ClearPlottedPasses();

private:
    // The selected satellite, or −1 after telling the user to select one.
    int RequireSelection();
    int Selection() const;
    // The observer the computations use: the active map's, or the stored
    // default site at the present moment when no map is open.
    CObserverDoc Observer() const;
    void UpdateMenu();

    CAppContext& m_app;
    QWidget* m_frame;
    std::function<CMapWindow*()> m_activeMap;
    CSatelliteDoc m_doc;
    QMenu* m_menu = nullptr;
    QPointer<CSatelliteListWindow> m_listWindow;
    QAction* m_clearAct = nullptr;
};

}  // namespace orv
