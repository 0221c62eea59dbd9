#include "app/mainframe.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QCompleter>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QStatusBar>
#include <QTextBrowser>
#include <QToolBar>

#include "app/appcontext.h"
#include "app/deepskywindows.h"
#include "app/dialogs.h"
#include "app/horizoneditor.h"
#include "app/eclipsewindows.h"
#include "app/mapprint.h"
#include "app/mapwindow.h"
#include "app/minorwindows.h"
#include "app/phenomenawindows.h"
#include "app/planetwindows.h"
#include "app/overlaydialog.h"
#include "app/satellitewindows.h"
#include "app/strings.h"
#include "catalog/stars/stardesignation.h"
#include "catalog/stars/tycho2catalogue.h"
#include "map/mapview.h"
#include "map/skyframes.h"
#include "util/angles.h"

namespace orv {

namespace {
constexpr int kMainFrameTimerMs = 250;
QString ToQ(const std::string& s) { return QString::fromStdString(s); }
}  // namespace

CMainFrame::CMainFrame(CAppContext& app, QWidget* parent) : QMainWindow(parent), m_app(app)
{
    setWindowTitle(QStringLiteral("Orvane"));
    m_mdi = new QMdiArea(this);
    m_mdi->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdi->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdi->setDocumentMode(true);
    m_mdi->setBackground(QColor(40, 40, 48));
    setCentralWidget(m_mdi);
    connect(m_mdi, &QMdiArea::subWindowActivated, this, [this] {
        UpdateActions();
        UpdateStatus();
    });

    m_satellites = new CSatelliteCommands(m_app, this, [this] { return ActiveMap(); });
    m_minor = new CMinorCommands(m_app, this, [this] { return ActiveMap(); });
    CreateActions();
    CreateMenus();
    CreateToolBars();
    CreateStatusBar();
    CreateDocks();
    UpdateRecentFiles();
    UpdateActions();
    connect(&m_app, &CAppContext::RecentFilesChanged, this, &CMainFrame::UpdateRecentFiles);

    m_timer.setInterval(kMainFrameTimerMs);
    connect(&m_timer, &QTimer::timeout, this, &CMainFrame::OnTimer);
    m_timer.start();
    resize(1280, 860);
}

CMainFrame::~CMainFrame()
{
    // The child windows are destroyed after this object's members: they must
    // not call back into a half-destroyed frame.
    m_timer.stop();
    m_mdi->disconnect(this);
    for (CMapWindow* w : Maps()) w->disconnect(this);
}

// ------------------------------------------------------------------ actions

void CMainFrame::CreateActions()
{
    const auto make = [this](const QString& text, const QKeySequence& key, auto slot, bool needsMap = true) {
        auto* a = new QAction(text, this);
        if (!key.isEmpty()) a->setShortcut(key);
        connect(a, &QAction::triggered, this, slot);
        if (needsMap) m_mapActions.append(a);
        return a;
    };
    const auto onMap = [this](auto fn) {
        return [this, fn] {
            if (CMapWindow* w = ActiveMap()) fn(w);
        };
    };

    m_newAct = make(tr("&New Map"), QKeySequence::New, [this] { NewMap(); }, false);
    m_openAct = make(tr("&Open..."), QKeySequence::Open, [this] { OpenDialog(); }, false);
    m_saveAct = make(tr("&Save"), QKeySequence::Save, onMap([](CMapWindow* w) { w->Save(); }));
    m_saveAsAct = make(tr("Save &As..."), QKeySequence::SaveAs, onMap([](CMapWindow* w) { w->SaveAs(); }));
    m_saveDefaultAct = make(tr("Save as &Default Map"), QKeySequence(), onMap([this](CMapWindow* w) {
                                if (w->SaveAsDefault())
                                    statusBar()->showMessage(tr("Saved as the default map: %1").arg(m_app.DefaultMapFile()), 5000);
                            }));
    m_printAct = make(tr("&Print..."), QKeySequence::Print, [this] { PrintMap(); });
    m_previewAct = make(tr("Print Pre&view..."), QKeySequence(), [this] { PrintPreview(); });
    m_printOptionsAct = make(tr("Print &Options..."), QKeySequence(), [this] { EditViewSettings(0); });
    m_timeStepAct = make(tr("Time S&tep..."), QKeySequence(), [this] { EditViewSettings(1); });
    m_exportAct = make(tr("&Export Chart..."), QKeySequence(Qt::CTRL | Qt::Key_E), [this] { ExportPicture(); });
    m_exitAct = make(tr("E&xit"), QKeySequence::Quit, [this] { close(); }, false);

    m_zoomInAct = make(tr("Zoom &In"), QKeySequence::ZoomIn, onMap([](CMapWindow* w) { w->ZoomIn(); }));
    m_zoomOutAct = make(tr("Zoom &Out"), QKeySequence::ZoomOut, onMap([](CMapWindow* w) { w->ZoomOut(); }));
    m_levelGroup = new QActionGroup(this);
    for (int i = 0; i < kLevelCount; ++i) {
        const QKeySequence key = i < 9 ? QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + i))
                                       : QKeySequence(Qt::CTRL | Qt::Key_0);
        QAction* a = make(tr("Level %1").arg(i + 1), key, onMap([i](CMapWindow* w) { w->GoToLevel(i); }));
        a->setCheckable(true);
        m_levelGroup->addAction(a);
        m_levelActs.append(a);
    }
    m_zoomLockAct = make(tr("Zoom in &Level Steps"), QKeySequence(), onMap([this](CMapWindow* w) {
                             w->View().coordinates.SetZoomLocked(m_zoomLockAct->isChecked());
                             w->MapChanged();
                         }));
    m_zoomLockAct->setCheckable(true);

    m_schemeGroup = new QActionGroup(this);
    const QString schemeNames[] = {tr("&Normal"), tr("&Red Night Vision"), tr("&Black on White")};
    for (int i = 0; i < 3; ++i) {
        QAction* a = make(schemeNames[i], QKeySequence(), [this, i] { m_app.SetScheme(static_cast<ColourScheme>(i)); }, false);
        a->setCheckable(true);
        a->setChecked(static_cast<int>(m_app.Scheme()) == i);
        m_schemeGroup->addAction(a);
        m_schemeActs.append(a);
    }
    m_showTargetAct = make(tr("Show &Search Target"), QKeySequence(), [this] { m_app.SetShowSearchTarget(m_showTargetAct->isChecked()); }, false);
    m_showTargetAct->setCheckable(true);
    m_showTargetAct->setChecked(m_app.ShowSearchTarget());
    m_clearTargetAct = make(tr("&Clear Search Target"), QKeySequence(), onMap([](CMapWindow* w) { w->ClearSearchTarget(); }));
    m_visibleStarsAct = make(tr("Stars &Visible on the Map..."), QKeySequence(), [this] { VisibleStars(); });
    m_visibleDeepSkyAct = make(tr("&Deep Sky Objects Visible on the Map..."), QKeySequence(), [this] { VisibleDeepSky(); });
    m_viewLevelsAct = make(tr("View &Levels..."), QKeySequence(), [this] { ViewLevels(); }, false);

    m_siteTimeAct = make(tr("&Site and Time..."), QKeySequence(Qt::CTRL | Qt::Key_T), [this] { SiteAndTime(); });
    m_nowAct = make(tr("&Now"), QKeySequence(Qt::CTRL | Qt::Key_Home), onMap([](CMapWindow* w) { w->SetToNow(); }));
    m_stepBackAct = make(tr("Step &Back"), QKeySequence(Qt::CTRL | Qt::Key_Minus), onMap([](CMapWindow* w) { w->StepTime(-1); }));
    m_stepForwardAct =
        make(tr("Step &Forward"), QKeySequence(Qt::CTRL | Qt::Key_Plus), onMap([](CMapWindow* w) { w->StepTime(+1); }));
    m_timeModeGroup = new QActionGroup(this);
    const QString modeNames[] = {tr("Time &Fixed"), tr("Follow the &Clock"), tr("Step &Automatically")};
    for (int i = 0; i < 3; ++i) {
        QAction* a = make(modeNames[i], QKeySequence(), onMap([i](CMapWindow* w) {
                              w->View().settings.timeMode = i;
                              w->Tick();
                          }));
        a->setCheckable(true);
        m_timeModeGroup->addAction(a);
        m_timeModeActs.append(a);
    }
    m_starOptionsAct = make(tr("S&tar Options..."), QKeySequence(), [this] { StarOptions(); });
    m_deepSkyOptionsAct = make(tr("&Deep Sky Options..."), QKeySequence(), [this] { DeepSkyOptions(); });
    m_gridOptionsAct = make(tr("&Grids..."), QKeySequence(), [this] { GridOptions(); });
    m_horizonEditorAct = make(tr("&Horizon Editor..."), QKeySequence(), [this] { HorizonEditor(); });
    m_overlaysAct = make(tr("&Map Overlays..."), QKeySequence(), [this] { MapOverlays(); });
    m_overlaysAct->setStatusTip(tr("Add, remove, and configure map overlays."));
    m_constellationOptionsAct = make(tr("&Constellations..."), QKeySequence(), [this] { ConstellationOptions(); });
    m_findAct = make(tr("&Find..."), QKeySequence::Find, [this] {
        m_findBox->setFocus();
        m_findBox->selectAll();
    });
    m_rotateLeftAct = make(tr("Rotate &Left 15°"), QKeySequence(Qt::CTRL | Qt::Key_BracketLeft),
                           onMap([](CMapWindow* w) { w->Rotate(15); }));
    m_rotateRightAct = make(tr("Rotate &Right 15°"), QKeySequence(Qt::CTRL | Qt::Key_BracketRight),
                            onMap([](CMapWindow* w) { w->Rotate(-15); }));
    m_flipHAct = make(tr("Flip &Horizontally"), QKeySequence(), onMap([](CMapWindow* w) { w->Flip(true); }));
    m_flipVAct = make(tr("Flip &Vertically"), QKeySequence(), onMap([](CMapWindow* w) { w->Flip(false); }));
}

void CMainFrame::CreateMenus()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(m_newAct);
    file->addAction(m_openAct);
    m_recentMenu = file->addMenu(tr("Recent &Files"));
    file->addAction(m_saveAct);
    file->addAction(m_saveAsAct);
    file->addAction(m_saveDefaultAct);
    file->addSeparator();
    file->addAction(m_printAct);
    file->addAction(m_previewAct);
    file->addAction(m_printOptionsAct);
    file->addAction(m_exportAct);
    file->addSeparator();
    file->addAction(m_exitAct);

    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->addAction(m_zoomInAct);
    view->addAction(m_zoomOutAct);
    view->addAction(m_zoomLockAct);
    QMenu* levels = view->addMenu(tr("&Level"));
    levels->addActions(m_levelActs);
    view->addSeparator();
    QMenu* schemes = view->addMenu(tr("&Colours"));
    schemes->addActions(m_schemeActs);
    view->addAction(m_showTargetAct);
    view->addAction(m_clearTargetAct);
    view->addSeparator();
    view->addAction(m_rotateLeftAct);
    view->addAction(m_rotateRightAct);
    view->addAction(m_flipHAct);
    view->addAction(m_flipVAct);
    view->addSeparator();
    view->addAction(m_visibleStarsAct);
    view->addAction(m_visibleDeepSkyAct);
    QAction* visiblePlanets = view->addAction(tr("&Planets Visible on the Map..."));
    connect(visiblePlanets, &QAction::triggered, this, [this] {
        if (CMapWindow* w = ActiveMap()) ShowVisiblePlanets(this, *w, m_app);
    });
    // Jupiter's belts on its disc at deep levels: a program setting
    // ("JupiterBelts" of section "Planet"), applied to the active chart.
    QAction* belts = view->addAction(tr("Jupiter's &Belts"));
    belts->setCheckable(true);
    belts->setChecked(m_app.Settings().GetInt("Planet", "JupiterBelts", 1) != 0);
    connect(belts, &QAction::toggled, this, [this](bool on) {
        m_app.Settings().SetInt("Planet", "JupiterBelts", on ? 1 : 0);
        if (CMapWindow* w = ActiveMap()) {
            w->Doc().solarSystem.jupiterBelts = on;
            w->RequestRedraw();
        }
    });
    view->addAction(m_viewLevelsAct);

    QMenu* map = menuBar()->addMenu(tr("&Map"));
    map->addAction(m_siteTimeAct);
    map->addAction(m_nowAct);
    map->addAction(m_stepBackAct);
    map->addAction(m_stepForwardAct);
    QMenu* modes = map->addMenu(tr("Time &Mode"));
    modes->addActions(m_timeModeActs);
    map->addAction(m_timeStepAct);
    map->addSeparator();
    map->addAction(m_findAct);
    map->addAction(m_starOptionsAct);
    map->addAction(m_constellationOptionsAct);
    map->addAction(m_deepSkyOptionsAct);
    map->addAction(m_gridOptionsAct);
    map->addSeparator();
    QAction* ephemeris = map->addAction(tr("Planet &Ephemeris..."));
    connect(ephemeris, &QAction::triggered, this, [this] {
        if (CMapWindow* w = ActiveMap()) ShowEphemeris(this, *w, m_app);
    });
    QAction* phenomena = map->addAction(tr("P&henomena Search..."));
    connect(phenomena, &QAction::triggered, this, [this] {
        if (CMapWindow* w = ActiveMap()) ShowPhenomena(this, *w, m_app);
    });
    QAction* plotPath = map->addAction(tr("Plot Planet &Path..."));
    connect(plotPath, &QAction::triggered, this, [this] {
        if (CMapWindow* w = ActiveMap()) PlotPlanetPath(this, *w);
    });
    QAction* clearPaths = map->addAction(tr("C&lear Planet Paths"));
    connect(clearPaths, &QAction::triggered, this, [this] {
        if (CMapWindow* w = ActiveMap()) ClearPlanetPaths(*w);
    });
    map->addSeparator();
    map->addAction(m_horizonEditorAct);
    map->addAction(m_overlaysAct);

    menuBar()->addMenu(m_minor->Menu());
    menuBar()->addMenu(m_satellites->Menu());
    menuBar()->addMenu((new CEclipseCommands(m_app, this, [this] { return ActiveMap(); }))->Menu());

    m_windowMenu = menuBar()->addMenu(tr("&Window"));
    connect(m_windowMenu, &QMenu::aboutToShow, this, [this] {
        m_windowMenu->clear();
        m_windowMenu->addAction(tr("&Tile"), m_mdi, &QMdiArea::tileSubWindows);
        m_windowMenu->addAction(tr("&Cascade"), m_mdi, &QMdiArea::cascadeSubWindows);
        m_windowMenu->addAction(tr("Ne&xt"), QKeySequence::NextChild, m_mdi, &QMdiArea::activateNextSubWindow);
        m_windowMenu->addSeparator();
        int n = 1;
        for (QMdiSubWindow* sub : m_mdi->subWindowList()) {
            QAction* a = m_windowMenu->addAction(QStringLiteral("&%1 %2").arg(n++).arg(sub->widget()->windowTitle().remove("[*]")));
            a->setCheckable(true);
            a->setChecked(sub == m_mdi->activeSubWindow());
            connect(a, &QAction::triggered, this, [this, sub] { m_mdi->setActiveSubWindow(sub); });
        }
    });

    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("&About Orvane"), this, &CMainFrame::About);
}

void CMainFrame::CreateToolBars()
{
    QToolBar* file = addToolBar(tr("File"));
    file->setObjectName(QStringLiteral("FileToolBar"));
    file->addAction(m_newAct);
    file->addAction(m_openAct);
    file->addAction(m_saveAct);
    file->addAction(m_printAct);

    QToolBar* chart = addToolBar(tr("Chart"));
    chart->setObjectName(QStringLiteral("ChartToolBar"));
    chart->addAction(m_zoomOutAct);
    chart->addAction(m_zoomInAct);
    chart->addSeparator();
    chart->addAction(m_stepBackAct);
    chart->addAction(m_nowAct);
    chart->addAction(m_stepForwardAct);
    chart->addSeparator();

    m_findBox = new QLineEdit(this);
    m_findBox->setPlaceholderText(tr("Find: Sirius, alpha CMa, HIP 32349, M 42, NGC 7000…"));
    m_findBox->setClearButtonEnabled(true);
    m_findBox->setMinimumWidth(240);
    chart->addWidget(m_findBox);
    connect(m_findBox, &QLineEdit::returnPressed, this, [this] { FindAndCentre(m_findBox->text()); });
    // The names every catalogue offers, as the user types.
    QStringList names;
    for (const std::string& n : m_app.Components().objects.CompletionNames()) names << ToQ(n);
    auto* completer = new QCompleter(names, m_findBox);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_findBox->setCompleter(completer);
}

void CMainFrame::CreateStatusBar()
{
    m_levelPane = new QLabel(this);
    m_raDecPane = new QLabel(this);
    m_altAzPane = new QLabel(this);
    m_fieldPane = new QLabel(this);
    m_timePane = new QLabel(this);
    m_levelPane->setMinimumWidth(60);
    m_raDecPane->setMinimumWidth(230);
    m_altAzPane->setMinimumWidth(190);
    m_fieldPane->setMinimumWidth(90);
    m_timePane->setMinimumWidth(200);
    for (QLabel* l : {m_levelPane, m_raDecPane, m_altAzPane, m_fieldPane, m_timePane}) statusBar()->addPermanentWidget(l);
}

void CMainFrame::CreateDocks()
{
    auto* dock = new QDockWidget(tr("Object Information"), this);
    dock->setObjectName(QStringLiteral("IdentifyDock"));
    m_identify = new QTextBrowser(dock);
    m_identify->setPlaceholderText(tr("Click an object on the chart to identify it."));
    dock->setWidget(m_identify);
    addDockWidget(Qt::RightDockWidgetArea, dock);
    dock->resize(260, 200);
}

// ------------------------------------------------------------------ maps

CMapWindow* CMainFrame::AddMapWindow(CMapWindow* window)
{
    QMdiSubWindow* sub = m_mdi->addSubWindow(window);
    sub->setWindowIcon(QIcon());
    connect(window, &CMapWindow::StatusChanged, this, [this, window] {
        if (window == ActiveMap()) UpdateStatus();
    });
    connect(window, &CMapWindow::TitleChanged, this, &CMainFrame::UpdateActions);
    connect(window, &CMapWindow::Identified, this, [this](const QString& title, const QString& info) {
        m_identify->setHtml(QStringLiteral("<h3>%1</h3><p>%2</p>")
                                .arg(title.toHtmlEscaped(), info.toHtmlEscaped().replace('\n', "<br>")));
        statusBar()->showMessage(title.isEmpty() ? info : title, 4000);
    });
    if (m_mdi->subWindowList().size() == 1)
        sub->showMaximized();
    else
        sub->show();
    window->setFocus();
    UpdateActions();
    UpdateStatus();
    return window;
}

CMapWindow* CMainFrame::NewMap()
{
    auto* window = new CMapWindow(m_app);
    window->InitNew(m_nextMapNumber++);
    return AddMapWindow(window);
}

CMapWindow* CMainFrame::OpenMap(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    for (QMdiSubWindow* sub : m_mdi->subWindowList()) {
        auto* w = qobject_cast<CMapWindow*>(sub->widget());
        if (w && QFileInfo(w->FilePath()).absoluteFilePath() == absolute) {
            m_mdi->setActiveSubWindow(sub);
            return w;
        }
    }
    auto* window = new CMapWindow(m_app);
    const MapFileResult r = window->LoadFromFile(absolute);
    if (!r.Ok()) {
        delete window;
        QMessageBox::critical(this, QApplication::applicationName(), ToQ(r.Message()));
        return nullptr;
    }
    if (r.truncated)
        QMessageBox::warning(this, QApplication::applicationName(),
                             tr("The map file %1 ends early; the settings it does not contain keep their defaults.")
                                 .arg(absolute));
    m_app.AddRecentFile(absolute);
    m_app.RememberFolder("Maps", absolute);
    return AddMapWindow(window);
}

CMapWindow* CMainFrame::ActiveMap() const
{
    QMdiSubWindow* sub = m_mdi->activeSubWindow();
    if (sub == nullptr && !m_mdi->subWindowList().isEmpty()) sub = m_mdi->subWindowList().last();
    return sub ? qobject_cast<CMapWindow*>(sub->widget()) : nullptr;
}

QList<CMapWindow*> CMainFrame::Maps() const
{
    QList<CMapWindow*> out;
    for (QMdiSubWindow* sub : m_mdi->subWindowList())
        if (auto* w = qobject_cast<CMapWindow*>(sub->widget())) out.append(w);
    return out;
}

void CMainFrame::OpenDialog()
{
    const QStringList paths = QFileDialog::getOpenFileNames(this, tr("Open Map"), m_app.RememberedFolder("Maps"),
                                                            tr("Orvane Maps (*.ovm);;All Files (*)"));
    for (const QString& p : paths) OpenMap(p);
}

bool CMainFrame::FindAndCentre(const QString& text)
{
    CMapWindow* w = ActiveMap();
    if (w == nullptr) w = NewMap();
    QString query = text.trimmed();
    if (query.isEmpty()) return false;
    // A number typed alone names nothing until its catalogue is known.
    if (IsBareCatalogueNumber(query.toStdString())) {
        const auto prefix = AskCatalogPrefix(this);
        if (!prefix) return false;
        query = QString::fromStdString(WithCatalogPrefix(*prefix, query.toStdString()));
    }
    // Every catalogue registered with the program is asked, the place
    // computed for the map's date.
    const FindResult found = m_app.Components().objects.Resolve(query.toStdString(), w->Doc().observer);
    switch (found.status) {
    case FindStatus::Found: break;
    case FindStatus::NotFound:
        statusBar()->showMessage(tr("\"%1\" was not found").arg(query), 5000);
        QApplication::beep();
        m_findBox->setToolTip(ToQ(found.message));
        return false;
    case FindStatus::EmptyText: return false;
    case FindStatus::NothingInstalled:
    case FindStatus::Ambiguous:
        QMessageBox::warning(this, QApplication::applicationName(), ToQ(found.message));
        return false;
    }
    const SkyObjectMatch& m = found.matches.front();
    SearchTarget target{m.raJ2000Rad, m.decJ2000Rad, query.toStdString()};
    w->CentreOn(m.raJ2000Rad, m.decJ2000Rad, target);
    statusBar()->showMessage(tr("%1 at α %2, δ %3 (J2000)")
                                 .arg(query, ToQ(FormatHms(m.raJ2000Rad, 1)), ToQ(FormatDms(m.decJ2000Rad, 0))),
                             8000);
    return true;
}

// ------------------------------------------------------------------ state

void CMainFrame::UpdateActions()
{
    CMapWindow* w = ActiveMap();
    for (QAction* a : m_mapActions) a->setEnabled(w != nullptr);
    if (w == nullptr) return;
    const CMapView& v = w->View();
    if (v.Level() >= 0 && v.Level() < m_levelActs.size()) m_levelActs[v.Level()]->setChecked(true);
    m_zoomLockAct->setChecked(v.coordinates.ZoomLocked());
    const int mode = std::clamp(v.settings.timeMode, 0, 2);
    m_timeModeActs[mode]->setChecked(true);
    m_clearTargetAct->setEnabled(w->Target().has_value());
}

void CMainFrame::UpdateStatus()
{
    CMapWindow* w = ActiveMap();
    if (w == nullptr) {
        for (QLabel* l : {m_levelPane, m_raDecPane, m_altAzPane, m_fieldPane, m_timePane}) l->clear();
        return;
    }
    m_levelPane->setText(w->LevelText());
    m_raDecPane->setText(w->CursorRaDecText());
    m_altAzPane->setText(w->CursorAltAzText());
    m_fieldPane->setText(w->FieldText());
    m_timePane->setText(w->TimeText());
    const int level = w->View().Level();
    if (level >= 0 && level < m_levelActs.size() && !m_levelActs[level]->isChecked()) m_levelActs[level]->setChecked(true);
}

void CMainFrame::UpdateRecentFiles()
{
    m_recentMenu->clear();
    const QStringList files = m_app.RecentFiles();
    int n = 1;
    for (const QString& f : files) {
        QAction* a = m_recentMenu->addAction(QStringLiteral("&%1 %2").arg(n++).arg(QFileInfo(f).fileName()));
        a->setToolTip(f);
        connect(a, &QAction::triggered, this, [this, f] { OpenMap(f); });
    }
    m_recentMenu->setEnabled(!files.isEmpty());
}

void CMainFrame::OnTimer()
{
    for (CMapWindow* w : Maps()) w->Tick();
}

void CMainFrame::closeEvent(QCloseEvent* event)
{
    for (CMapWindow* w : Maps()) {
        if (!w->MaybeSave()) {
            event->ignore();
            return;
        }
        w->Doc().modified = false;  // asked once; closing the window must not ask again
    }
    m_app.Settings().Flush();
    event->accept();
}

// ------------------------------------------------------------------ commands

void CMainFrame::PrintMap()
{
    if (CMapWindow* w = ActiveMap()) PrintMapWithDialog(this, *w, m_app);
}

void CMainFrame::PrintPreview()
{
    if (CMapWindow* w = ActiveMap()) PreviewMap(this, *w, m_app);
}

void CMainFrame::EditViewSettings(int page)
{
    CMapWindow* w = ActiveMap();
    if (w == nullptr) return;
    CViewSettingsDialog dialog(w->View().settings,
                               page == 0 ? CViewSettingsDialog::Page::Print : CViewSettingsDialog::Page::TimeStep,
                               m_app.Settings(), this);
    if (dialog.exec() == QDialog::Accepted) {
        w->View().settings = dialog.Result();
        w->MapChanged();
        UpdateActions();
    }
}

void CMainFrame::ExportPicture()
{
    if (CMapWindow* w = ActiveMap()) ExportMapWithDialog(this, *w, m_app);
}

void CMainFrame::SiteAndTime()
{
    CMapWindow* w = ActiveMap();
    if (w == nullptr) return;
    CSiteTimeDialog dialog(w->Doc().observer, m_app.Settings(), this);
    if (dialog.exec() == QDialog::Accepted) {
        dialog.Apply(w->Doc().observer);
        w->View().coordinates.Update(w->Doc().observer);
        w->MapChanged();
    }
}

void CMainFrame::StarOptions()
{
    CMapWindow* w = ActiveMap();
    if (w == nullptr) return;
    CStarPropertySheet sheet(w->Doc().stars, m_app.Settings(), this);
    if (sheet.exec() == QDialog::Accepted) {
        w->Doc().stars = sheet.Result();
        w->View().SetLevel(w->View().Level(), CMapView::TakeField::No);
        w->Renderer().Invalidate();
        w->MapChanged();
    }
}

void CMainFrame::ConstellationOptions()
{
    CMapWindow* w = ActiveMap();
    if (w == nullptr) return;
    CConstellationPropertySheet sheet(w->Doc().constellations, m_app.Settings(), this);
    if (sheet.exec() == QDialog::Accepted) {
        w->Doc().constellations = sheet.Result();
        w->View().SetLevel(w->View().Level(), CMapView::TakeField::No);
        w->MapChanged();
    }
}

void CMainFrame::DeepSkyOptions()
{
    CMapWindow* w = ActiveMap();
    if (w == nullptr) return;
    CDeepSkyPropertySheet sheet(w->Doc().deepSky, m_app.Settings(), this);
    if (sheet.exec() == QDialog::Accepted) {
        w->Doc().deepSky = sheet.Result();
        w->View().SetLevel(w->View().Level(), CMapView::TakeField::No);
        w->Renderer().Invalidate();
        w->MapChanged();
    }
}

void CMainFrame::VisibleDeepSky()
{
    if (CMapWindow* w = ActiveMap()) ShowVisibleDeepSky(this, *w, m_app);
}

void CMainFrame::GridOptions()
{
    CMapWindow* w = ActiveMap();
    if (w == nullptr) return;
    CGridOptionsDialog dialog(w->Doc(), w->View(), m_app.Settings(), this);
    if (dialog.exec() == QDialog::Accepted) {
        dialog.Apply(w->Doc(), w->View());
        w->View().SetLevel(w->View().Level(), CMapView::TakeField::No);
        w->MapChanged();
    }
}

void CMainFrame::HorizonEditor()
{
    CMapWindow* w = ActiveMap();
    const HorizonProfile start = w ? w->Doc().horizon.altitudeDeg : HorizonProfile{};
    const QString file = w ? QString::fromStdString(w->Doc().horizon.fileName) : QString();
    // Every change shows at once on every open map that shows the horizon
    // being edited: the active map and those with the same file (or, when
    // it has none, the same unsaved profile). The flag for rising, setting
    // and "above the horizon" is the program's, so every open map takes it.
    QList<QPointer<CMapWindow>> sharing, all;
    for (CMapWindow* m : Maps()) {
        all.append(m);
        if (w == nullptr) continue;
        const CHorizonData& h = m->Doc().horizon;
        const CHorizonData& edited = w->Doc().horizon;
        const bool same = h.fileName.empty() && edited.fileName.empty() ? h.altitudeDeg == edited.altitudeDeg
                                                                         : h.fileName == edited.fileName;
        if (m == w || same) sharing.append(m);
    }
    CHorizonEditorDialog dialog(
        m_app, start, file,
        [sharing, all, &settings = m_app.Settings()](const HorizonProfile& profile, const QString& fileName) {
            const int useForEvents = settings.GetInt("Horizon", "UseForEvents", 0);
            for (const QPointer<CMapWindow>& m : all) {
                if (!m) continue;
                CHorizonData& h = m->Doc().horizon;
                bool changed = h.useForEvents != useForEvents;
                h.useForEvents = useForEvents;
                if (sharing.contains(m)) {
                    changed = changed || h.altitudeDeg != profile || h.fileName != fileName.toStdString();
                    h.altitudeDeg = profile;
                    h.fileName = fileName.toStdString();
                }
                if (changed) m->MapChanged();
            }
        },
        this);
    dialog.exec();
}

void CMainFrame::MapOverlays()
{
    COverlayListDialog dialog(m_app, this);
    if (dialog.exec() != QDialog::Accepted) return;
    m_app.Overlays().entries = dialog.Entries();
    if (const QString error = m_app.SaveOverlayList(); !error.isEmpty())
        QMessageBox::critical(this, tr("Map Overlays"), error);
}

void CMainFrame::ViewLevels()
{
    CViewLevelsDialog dialog(m_app.Levels(), this);
    if (dialog.exec() == QDialog::Accepted) m_app.SetLevels(dialog.Result());
}

void CMainFrame::VisibleStars()
{
    if (CMapWindow* w = ActiveMap()) ShowVisibleStars(this, *w, m_app);
}

void CMainFrame::About()
{
    QMessageBox::about(this, tr("About Orvane"),
                       tr("<h3>Orvane %1</h3><p>A planetarium and star-charting program for amateur astronomers.</p>"
                          "<p>Star positions from the Tycho-2 catalogue (Høg et al. 2000); precession, nutation and "
                          "sidereal time on the IAU 2006 and 2000B models through ERFA.</p>")
                           .arg(QApplication::applicationVersion()));
}

}  // namespace orv
