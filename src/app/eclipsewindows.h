// The Eclipses menu: the eclipse search (dialog, progress with Cancel, the
// result list with its report and data table) and the two browsing lists of
// every solar and every lunar eclipse of the tables. The windows are thin:
// the search, its settings and the tables are src/eclipse/'s.
#pragma once

#include <QDialog>
#include <QObject>
#include <QWidget>

#include <functional>
#include <vector>

#include "eclipse/eclipsesearch.h"

class QCheckBox;
class QComboBox;
class QMenu;
class QSpinBox;
class QPainter;
class QRectF;

namespace orv {

class CAppContext;
class CMapWindow;
class CResultTablePanel;

// Start and end year, the kinds and the display option. OK checks the
// settings and keeps the dialog open with the check's message.
class CEclipseSearchDialog : public QDialog {
    Q_OBJECT
public:
    CEclipseSearchDialog(const EclipseSearchSettings& settings, QWidget* parent = nullptr);
    EclipseSearchSettings Settings() const;
    void accept() override;

private:
    QSpinBox* m_start = nullptr;
    QSpinBox* m_end = nullptr;
    QCheckBox* m_solar = nullptr;
    QCheckBox* m_lunar = nullptr;
    QComboBox* m_display = nullptr;
};

// The result list of a search; "Map" is offered for solar eclipses and
// shows the local circumstances of the selected eclipse.
class CEclipseResultWindow : public QWidget {
    Q_OBJECT
public:
    CEclipseResultWindow(CAppContext& app, QWidget* parent = nullptr);
    // Runs the search with the panel's progress bar; false when cancelled
    // or nothing was found (the message has been shown).
    bool Run(const EclipseSearchSettings& settings, const EclipseSite& site);

protected:
    void closeEvent(class QCloseEvent* event) override;

private:
    void ShowSelected();
    CAppContext& m_app;
    CResultTablePanel* m_panel = nullptr;
    std::vector<EclipseSearchResult> m_results;
    EclipseSearchSettings m_settings;
    EclipseSite m_site;
};

// The world map of one eclipse with the local circumstances beside it;
// Print and Save Picture draw the same map on the printer or an image.
class CEclipseMapWindow : public QWidget {
    Q_OBJECT
public:
    CEclipseMapWindow(CAppContext& app, const EclipseEvent& event, const QString& circumstances,
                      QWidget* parent = nullptr);
    void Draw(QPainter& painter, const QRectF& area) const;

private:
    void SavePicture();
    void Print();
    CAppContext& m_app;
    EclipseEvent m_event;
    std::string m_title;
    class CEclipseMapCanvas* m_canvas = nullptr;
};

// One file of the tables, file number 1–5 chosen above the list; the place
// is kept in "SolarEclipse" / "LunarEclipse". Map shows the world map of
// the selected eclipse, solar or lunar, with its global circumstances.
class CEclipseBrowseWindow : public QWidget {
    Q_OBJECT
public:
    CEclipseBrowseWindow(CAppContext& app, EclipseKind kind, QWidget* parent = nullptr);

protected:
    void closeEvent(class QCloseEvent* event) override;

private:
    void Load(int fileNumber, int lineNumber);
    void ShowMap();
    CAppContext& m_app;
    EclipseKind m_kind;
    std::vector<EclipseRecord> m_records;  // the rows of the list, in order
    QComboBox* m_file = nullptr;
    CResultTablePanel* m_panel = nullptr;
};

class CEclipseCommands : public QObject {
    Q_OBJECT
public:
    // `activeMap` gives the map whose site is used (the stored default site
    // when there is none).
    CEclipseCommands(CAppContext& app, QWidget* frame, std::function<CMapWindow*()> activeMap);
    QMenu* Menu() const { return m_menu; }

    void Search();
    void Browse(EclipseKind kind);

private:
    CAppContext& m_app;
    QWidget* m_frame;
    std::function<CMapWindow*()> m_activeMap;
    QMenu* m_menu = nullptr;
};

}  // namespace orv
