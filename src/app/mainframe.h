// CMainFrame: the program's main window — several maps at once in a
// multiple-document area, the menus and toolbars, the status bar panes
// (level, cursor position in right ascension and declination and in
// altitude and azimuth, field, date and time), the find box and the
// identification panel. Its 250 ms timer lets maps follow the clock.
#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

class QAction;
class QActionGroup;
class QLabel;
class QLineEdit;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QTextBrowser;

namespace orv {

class CAppContext;
class CMapWindow;
class CSatelliteCommands;
class CMinorCommands;

class CMainFrame : public QMainWindow {
    Q_OBJECT
public:
    explicit CMainFrame(CAppContext& app, QWidget* parent = nullptr);
    ~CMainFrame() override;

    // File commands (also used at start-up and by the tests).
    CMapWindow* NewMap();
    // Opens a map file, or brings its window to the front when it is open
    // already; nullptr (after telling the user why) when it cannot be read.
    CMapWindow* OpenMap(const QString& path);
    CMapWindow* ActiveMap() const;
    QList<CMapWindow*> Maps() const;

    // Centres the active map on a star named as the user would type it.
    bool FindAndCentre(const QString& text);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void CreateActions();
    void CreateMenus();
    void CreateToolBars();
    void CreateStatusBar();
    void CreateDocks();
    CMapWindow* AddMapWindow(CMapWindow* window);
    void UpdateActions();
    void UpdateStatus();
    void UpdateRecentFiles();
    void OnTimer();

    void OpenDialog();
    void PrintMap();
    void PrintPreview();
    void EditViewSettings(int page);
    void ExportPicture();
    void SiteAndTime();
    void StarOptions();
    void ConstellationOptions();
    void GridOptions();
    void HorizonEditor();
    void MapOverlays();
    void ViewLevels();
    void VisibleStars();
    void VisibleDeepSky();
    void DeepSkyOptions();
    void About();

    CAppContext& m_app;
    QMdiArea* m_mdi = nullptr;
    CSatelliteCommands* m_satellites = nullptr;  // the Satellites menu and windows
    CMinorCommands* m_minor = nullptr;           // the Comets & Asteroids menu and windows
    QTimer m_timer;
    int m_nextMapNumber = 1;

    QLabel* m_levelPane = nullptr;
    QLabel* m_raDecPane = nullptr;
    QLabel* m_altAzPane = nullptr;
    QLabel* m_fieldPane = nullptr;
    QLabel* m_timePane = nullptr;
    QLineEdit* m_findBox = nullptr;
    QTextBrowser* m_identify = nullptr;

    QAction* m_newAct = nullptr;
    QAction* m_openAct = nullptr;
    QAction* m_saveAct = nullptr;
    QAction* m_saveAsAct = nullptr;
    QAction* m_saveDefaultAct = nullptr;
    QAction* m_printAct = nullptr;
    QAction* m_previewAct = nullptr;
    QAction* m_printOptionsAct = nullptr;
    QAction* m_timeStepAct = nullptr;
    QAction* m_exportAct = nullptr;
    QAction* m_exitAct = nullptr;
    QAction* m_zoomInAct = nullptr;
    QAction* m_zoomOutAct = nullptr;
    QList<QAction*> m_levelActs;
    QActionGroup* m_levelGroup = nullptr;
    QActionGroup* m_schemeGroup = nullptr;
    QList<QAction*> m_schemeActs;
    QAction* m_showTargetAct = nullptr;
    QAction* m_clearTargetAct = nullptr;
    QAction* m_visibleStarsAct = nullptr;
    QAction* m_visibleDeepSkyAct = nullptr;
    QAction* m_deepSkyOptionsAct = nullptr;
    QAction* m_viewLevelsAct = nullptr;
    QAction* m_siteTimeAct = nullptr;
    QAction* m_nowAct = nullptr;
    QAction* m_stepBackAct = nullptr;
    QAction* m_stepForwardAct = nullptr;
    QActionGroup* m_timeModeGroup = nullptr;
    QList<QAction*> m_timeModeActs;
    QAction* m_starOptionsAct = nullptr;
    QAction* m_constellationOptionsAct = nullptr;
    QAction* m_gridOptionsAct = nullptr;
    QAction* m_horizonEditorAct = nullptr;
    QAction* m_overlaysAct = nullptr;
    QAction* m_findAct = nullptr;
    QAction* m_rotateLeftAct = nullptr;
    QAction* m_rotateRightAct = nullptr;
    QAction* m_flipHAct = nullptr;
    QAction* m_flipVAct = nullptr;
    QAction* m_zoomLockAct = nullptr;
    QMenu* m_recentMenu = nullptr;
    QMenu* m_windowMenu = nullptr;
    QList<QAction*> m_mapActions;  // enabled only with a map open
};

}  // namespace orv
