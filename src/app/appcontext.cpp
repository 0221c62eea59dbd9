#include "app/appcontext.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include "app/qtsettingsstore.h"
#include "catalog/constellations/drawconstellations.h"
#include "catalog/deepsky/drawdeepsky.h"
#include "catalog/stars/drawstars.h"
#include "overlay/drawoverlay.h"
#include "satellite/passdraw.h"
#include "solarsystem/drawminor.h"
#include "solarsystem/drawplanets.h"
#include "util/datapath.h"
#include "util/settingsstore.h"

namespace orv {

namespace {
constexpr const char* kSettings = "Settings";
}

CAppContext::CAppContext(CSettingsStore& settings, QObject* parent)
    : QObject(parent),
      m_settings(settings),
      m_stars(std::make_shared<CStarCatalogueHandle>()),
      m_minor(std::make_shared<CMinorCatalogHandle>()),
      m_overlays(std::make_shared<COverlayStore>())
{
    m_minor->Unloaded().SetPaths(settings.GetString("Paths", "AsteroidCat", ""), settings.GetString("Paths", "CometCat", ""));
    LoadOverlayList();
    // The program's charts: the map's own layers, the star and deep-sky catalogues, and
    // the satellite passes plotted from the pass sheet.
    RegisterMapLayers(m_components.layers);
    RegisterStarCatalogue(m_components, m_stars);
    RegisterConstellations(m_components, m_stars);
    RegisterDeepSkyCatalogues(m_components, std::make_shared<CDeepSkyCatalogueHandle>());
    RegisterPlanets(m_components);
    RegisterMinorBodies(m_components, m_minor);
    sat::RegisterPlottedPassLayer(m_components.layers);
    RegisterOverlays(m_components.layers, m_overlays);
    m_levels.Load(settings);
    const int scheme = settings.GetInt(kSettings, "ColourScheme", 0);
    m_scheme = scheme == 1 ? ColourScheme::RedNightVision : scheme == 2 ? ColourScheme::BlackOnWhite : ColourScheme::Normal;
    m_showSearchTarget = settings.GetInt(kSettings, "ShowSearchTarget", 1) != 0;
    m_keepTitle = settings.GetInt(kSettings, "KeepTitle", 0) != 0;
    for (int i = 1; i <= kMaxRecentFiles; ++i) {
        const std::string f = settings.GetString(kSettings, "RecentFile" + std::to_string(i), "");
        if (!f.empty()) m_recent.append(QString::fromStdString(f));
    }
}

CAppContext::~CAppContext() = default;

void CAppContext::SetLevels(const CLevelTable& levels)
{
    m_levels = levels;
    m_levels.Save(m_settings);
    m_settings.Flush();
    emit LevelsChanged();
}

void CAppContext::SetScheme(ColourScheme scheme)
{
    m_scheme = scheme;
    m_settings.SetInt(kSettings, "ColourScheme", static_cast<int>(scheme));
    emit DisplayOptionsChanged();
}

void CAppContext::SetShowSearchTarget(bool show)
{
    m_showSearchTarget = show;
    m_settings.SetInt(kSettings, "ShowSearchTarget", show ? 1 : 0);
    emit DisplayOptionsChanged();
}

QString CAppContext::DefaultMapFile() const { return QString::fromStdString(DefaultMapFilePath(m_settings)); }

QString CAppContext::UserOverlayListFile() const { return QString::fromStdString(UserOverlayListPath(m_settings)); }

void CAppContext::LoadOverlayList()
{
    LoadStartupOverlayList(*m_overlays, UserOverlayListPath(m_settings));
}

QString CAppContext::SaveOverlayList()
{
    ++m_overlays->generation;
    emit DisplayOptionsChanged();
    const QString path = UserOverlayListFile();
    QDir().mkpath(QFileInfo(path).absolutePath());
    const OverlayListResult r = WriteOverlayList(path.toStdString(), m_overlays->entries);
    return r.ok ? QString() : QString::fromStdString(r.message);
}

QString CAppContext::RememberedFolder(const char* key) const
{
    return QString::fromStdString(m_settings.GetString("Paths", key, ""));
}

void CAppContext::RememberFolder(const char* key, const QString& fileOrFolder)
{
    const QFileInfo info(fileOrFolder);
    const QString folder = info.isDir() ? info.absoluteFilePath() : info.absolutePath();
    m_settings.SetString("Paths", key, folder.toStdString());
}

void CAppContext::AddRecentFile(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    m_recent.removeAll(absolute);
    m_recent.prepend(absolute);
    while (m_recent.size() > kMaxRecentFiles) m_recent.removeLast();
    for (int i = 0; i < kMaxRecentFiles; ++i)
        m_settings.SetString(kSettings, "RecentFile" + std::to_string(i + 1),
                             i < m_recent.size() ? m_recent[i].toStdString() : std::string());
    m_settings.Flush();
    emit RecentFilesChanged();
}

}  // namespace orv
