#include "map/skyobjects.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "util/angles.h"
#include "util/text.h"

namespace orv {

// ------------------------------------------------------------------ scene

void CChartScene::Begin(const Header& header)
{
    m_header = header;
    m_horizon.reset();
    m_ground.reset();
    m_valid = true;
    m_objects.clear();
    std::fill(m_styles.begin(), m_styles.end(), 0u);
}

void CChartScene::Invalidate()
{
    m_valid = false;
    m_objects.clear();
}

void CChartScene::SetSourceStyle(SkySourceId source, std::uint32_t style)
{
    if (source == kNoSkySource) return;
    if (source >= m_styles.size()) m_styles.resize(static_cast<std::size_t>(source) + 1, 0u);
    m_styles[source] = style;
}

std::uint32_t CChartScene::SourceStyle(SkySourceId source) const
{
    return source < m_styles.size() ? m_styles[source] : 0u;
}

const SceneObject* CChartScene::Nearest(double xPx, double yPx, double tolerancePx) const
{
    if (!m_valid || !std::isfinite(xPx) || !std::isfinite(yPx) || !(tolerancePx >= 0.0)) return nullptr;
    const SceneObject* best = nullptr;
    double bestGap = 0.0;
    for (const SceneObject& o : m_objects) {
        const double gap = std::hypot(o.xPx - xPx, o.yPx - yPx) - o.radiusPx;
        if (gap > tolerancePx) continue;
        if (best == nullptr || gap < bestGap || (gap == bestGap && o.magCenti < best->magCenti)) {
            best = &o;
            bestGap = gap;
        }
    }
    return best;
}

// ------------------------------------------------------------------ registry

SkySourceId CSkyObjectRegistry::Register(std::shared_ptr<const ISkyObjectSource> source)
{
    if (!source || m_sources.size() >= kNoSkySource) return kNoSkySource;
    m_sources.push_back(std::move(source));
    return static_cast<SkySourceId>(m_sources.size() - 1);
}

const ISkyObjectSource* CSkyObjectRegistry::Source(SkySourceId id) const
{
    return id < m_sources.size() ? m_sources[id].get() : nullptr;
}

std::optional<SkySourceId> CSkyObjectRegistry::IdOf(const ISkyObjectSource* source) const
{
    for (std::size_t i = 0; i < m_sources.size(); ++i)
        if (m_sources[i].get() == source) return static_cast<SkySourceId>(i);
    return std::nullopt;
}

namespace {

std::string Trimmed(std::string_view text)
{
    std::size_t a = 0, b = text.size();
    while (a < b && std::isspace(static_cast<unsigned char>(text[a]))) ++a;
    while (b > a && std::isspace(static_cast<unsigned char>(text[b - 1]))) --b;
    return std::string(text.substr(a, b - a));
}

// Two matches closer than this are the same object seen by two catalogues.
constexpr double kSameObjectRad = 60.0 * kRadPerArcsec;

}  // namespace

FindResult CSkyObjectRegistry::Resolve(std::string_view text, const CObserverDoc& observer) const
{
    FindResult r;
    const std::string query = Trimmed(text);
    if (query.empty()) {
        r.status = FindStatus::EmptyText;
        r.message = "Type a name or a catalogue number to find.";
        return r;
    }
    std::vector<const ISkyObjectSource*> tried;
    for (std::size_t i = 0; i < m_sources.size(); ++i) {
        const ISkyObjectSource& s = *m_sources[i];
        if (!s.Available()) continue;
        tried.push_back(&s);
        for (SkyObjectMatch& m : s.Resolve(query, observer)) {
            m.source = static_cast<SkySourceId>(i);
            const bool seen = std::any_of(r.matches.begin(), r.matches.end(), [&](const SkyObjectMatch& o) {
                return o.source != m.source &&
                       AngularDistance(o.raJ2000Rad, o.decJ2000Rad, m.raJ2000Rad, m.decJ2000Rad) < kSameObjectRad;
            });
            if (!seen) r.matches.push_back(std::move(m));
        }
    }
    if (tried.empty()) {
        r.status = FindStatus::NothingInstalled;
        r.message = "No catalogue is installed, so nothing can be found by name.";
        return r;
    }
    if (r.matches.size() == 1) {
        r.status = FindStatus::Found;
        return r;
    }
    if (r.matches.empty()) {
        r.status = FindStatus::NotFound;
        r.message = "\"" + query + "\" was not found. Searched:";
        for (const ISkyObjectSource* s : tried)
            r.message += "\n  " + std::string(s->Name()) + " (" + std::string(s->Forms()) + ")";
        return r;
    }
    r.status = FindStatus::Ambiguous;
    r.message = "\"" + query + "\" names more than one object:";
    for (const SkyObjectMatch& m : r.matches) {
        r.message += "\n  " + m.designation;
        if (const ISkyObjectSource* s = Source(m.source)) r.message += " (" + std::string(s->Name()) + ")";
    }
    r.message += "\nType the full designation of the one you mean.";
    return r;
}

std::optional<ObjectDescription> CSkyObjectRegistry::Describe(const SceneObject& object,
                                                              const CChartScene& scene) const
{
    const ISkyObjectSource* s = Source(object.source);
    if (s == nullptr) return std::nullopt;
    DescribeRequest req;
    req.jdUT = scene.Info().jdUT;
    req.jdTT = scene.Info().jdTT;
    req.style = scene.SourceStyle(object.source);
    req.hasSite = scene.Info().hasSite;
    req.latitudeRad = scene.Info().latitudeRad;
    req.longitudeRad = scene.Info().longitudeRad;
    req.heightM = scene.Info().siteHeightM;
    req.localOffsetHours = scene.Info().localOffsetHours;
    req.horizon = scene.Horizon();
    return s->Describe(object.key, req);
}

std::vector<std::string> CSkyObjectRegistry::CompletionNames() const
{
    std::vector<std::string> names;
    for (const auto& s : m_sources)
        if (s->Available()) s->CompletionNames(names);
    // Sorted without regard to case (keys made once, not per comparison).
    std::vector<std::pair<std::string, std::string>> keyed;
    keyed.reserve(names.size());
    for (std::string& n : names) {
        keyed.emplace_back(AsciiLower(n), std::move(n));
    }
    std::sort(keyed.begin(), keyed.end());
    names.clear();
    for (auto& [key, n] : keyed) names.push_back(std::move(n));
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

}  // namespace orv
