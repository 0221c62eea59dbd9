// CAppContext: what every window of the program shares — the settings
// store, the level table, the chart's layers and sky-object sources (the
// program is assembled here), the colour scheme and the
// preferences of the application itself (section "Settings": recent files,
// the keep-title flag; section "Paths": the data folder and the default map
// file "MainFile").
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

#include "map/chartlayer.h"
#include "map/levels.h"
#include "map/mapdraw.h"
#include "overlay/overlayfile.h"

namespace orv {

class CSettingsStore;
class CStarCatalogueHandle;
class CMinorCatalogHandle;

class CAppContext : public QObject {
    Q_OBJECT
public:
    explicit CAppContext(CSettingsStore& settings, QObject* parent = nullptr);
    ~CAppContext() override;

    CSettingsStore& Settings() { return m_settings; }
    // The layers every chart draws and the sources that find and describe
    // what they draw.
    const CChartComponents& Components() const { return m_components; }

    const CLevelTable& Levels() const { return m_levels; }
    // Stores a new level table under "Level1".."Level10" and tells the maps.
    void SetLevels(const CLevelTable& levels);

    ColourScheme Scheme() const { return m_scheme; }
    void SetScheme(ColourScheme scheme);
    bool ShowSearchTarget() const { return m_showSearchTarget; }
    void SetShowSearchTarget(bool show);

    // When set, opening a map keeps the title the program gives it instead
    // of the title stored in the file ("Settings", "KeepTitle").
    bool KeepTitle() const { return m_keepTitle; }

    // The default map file: "Paths", "MainFile"; when unset, Default.ovm in
    // the folder of the settings file.
    QString DefaultMapFile() const;
    // Folder remembered for a kind of file dialog ("Paths", key).
    QString RememberedFolder(const char* key) const;
    void RememberFolder(const char* key, const QString& fileOrFolder);

    // The map overlays every chart draws, and their list: the user's
    // "overlay.dat" beside the settings file, or else the one in the data
    // folder (the overlays that come with the program).
    COverlayStore& Overlays() { return *m_overlays; }
    QString UserOverlayListFile() const;
    // Saves the list to the user's file and redraws every chart; the
    // program's message when the file cannot be written.
    QString SaveOverlayList();
    // Tells every chart that the overlays or the horizon changed.
    void NotifyChartContentChanged() { emit DisplayOptionsChanged(); }

    QStringList RecentFiles() const { return m_recent; }
    void AddRecentFile(const QString& path);

    static constexpr int kMaxRecentFiles = 8;

    // The comet and asteroid catalogues every chart shows (the paths of
    // "Paths", "AsteroidCat" and "CometCat"), edited by their dialogs.
    CMinorCatalogHandle& MinorCatalogs() { return *m_minor; }
    // Tells the maps that a catalogue changed (they redraw).
    void NotifyCatalogsChanged() { emit DisplayOptionsChanged(); }

signals:
    void LevelsChanged();
    void DisplayOptionsChanged();  // colour scheme, search target shown
    void RecentFilesChanged();

private:
    CSettingsStore& m_settings;
    void LoadOverlayList();
    std::shared_ptr<CStarCatalogueHandle> m_stars;
    std::shared_ptr<CMinorCatalogHandle> m_minor;
    std::shared_ptr<COverlayStore> m_overlays;
    CChartComponents m_components;
    CLevelTable m_levels;
    ColourScheme m_scheme = ColourScheme::Normal;
    bool m_showSearchTarget = true;
    bool m_keepTitle = false;
    QStringList m_recent;
};

}  // namespace orv
