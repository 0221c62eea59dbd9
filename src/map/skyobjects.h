// What a chart shows, object by object, and how objects are found by name.
//
// The chart scene: while a chart is drawn, every layer that draws objects
// records each one that landed on the surface — which source it comes from,
// the source's own key, its J2000 place, where it was drawn and how large,
// its magnitude and its object type code. Identification under the cursor,
// the context menu, tooltips and the lists of visible objects read the scene,
// whatever layer drew the object, so they know no catalogue in particular.
//
// Sky-object sources: each catalogue (stars, and later deep-sky objects,
// planets, comets, asteroids …) registers one source with the registry. A
// source resolves typed text ("Sirius", "HIP 32349", "M 42") to objects with
// their place at an instant, and describes one of its objects for the
// identify read-out. The find box, the command line and the searches all go
// through the registry, so a new catalogue is found the moment it registers.
//
// Standard C++ only: the scene and the registry are used headless.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "map/horizonprofile.h"
#include "util/objecttype.h"

namespace orv {

class CObserverDoc;
class CGroundCover;

// The registry's number for a source, in order of registration.
using SkySourceId = std::uint16_t;
inline constexpr SkySourceId kNoSkySource = std::numeric_limits<SkySourceId>::max();
// Magnitude of an object whose brightness the source does not give.
inline constexpr std::int16_t kNoMagnitudeCenti = std::numeric_limits<std::int16_t>::max();

// One object drawn on a chart. 40 bytes: a wide chart holds a million.
struct SceneObject {
    // Mean place on the J2000 equator and equinox at the chart's date (a
    // star's proper motion applied), radians.
    double raJ2000Rad = 0.0;
    double decJ2000Rad = 0.0;
    float xPx = 0.0f;       // centre on the surface, device pixels
    float yPx = 0.0f;
    float radiusPx = 0.0f;  // disc radius or half the symbol's size
    std::uint32_t key = 0;  // the source's own key (a star: its record number)
    std::int16_t magCenti = kNoMagnitudeCenti;  // 0.01 mag
    std::int16_t typeCode = static_cast<std::int16_t>(ObjectType::Unknown);
    SkySourceId source = kNoSkySource;

    ObjectType Type() const { return static_cast<ObjectType>(typeCode); }
};
static_assert(sizeof(SceneObject) == 40, "scene entries are kept small: a wide chart records a million");

// Everything one draw recorded.
class CChartScene {
public:
    struct Header {
        double jdUT = 0.0;  // the chart's instant
        double jdTT = 0.0;
        int level = 0;      // map level index 0–9
        int widthPx = 0;
        int heightPx = 0;
        // The observer's site, for read-outs that depend on it (rise and set).
        double latitudeRad = 0.0;
        double longitudeRad = 0.0;
        double siteHeightM = 0.0;
        double localOffsetHours = 0.0;  // civil time − UT
        bool hasSite = false;
    };

    // Starts a new draw: the objects of the last one are forgotten (their
    // memory kept for the next draw), every source's style word cleared.
    void Begin(const Header& header);
    const Header& Info() const { return m_header; }
    // The observer's own horizon when rise and set are to be taken over it
    // (the horizon setting "UseForEvents"); none (Begin clears it): the
    // mathematical horizon.
    void SetHorizon(std::shared_ptr<const HorizonProfile> horizon) { m_horizon = std::move(horizon); }
    const std::shared_ptr<const HorizonProfile>& Horizon() const { return m_horizon; }
    // The ground of this draw, as the layer that owns it (place 9) tells the
    // others what it hides; none (Begin clears it) when no ground is drawn.
    void SetGround(std::shared_ptr<const CGroundCover> ground) { m_ground = std::move(ground); }
    const CGroundCover* Ground() const { return m_ground.get(); }
    bool Valid() const { return m_valid; }
    void Invalidate();

    void Reserve(std::size_t n) { m_objects.reserve(m_objects.size() + n); }
    void Add(const SceneObject& o) { m_objects.push_back(o); }
    std::span<const SceneObject> Objects() const { return m_objects; }

    // A word a layer leaves for its source's describer: how it wrote the
    // designations on this chart (the star layer: proper names shown,
    // constellations abbreviated), so the read-out matches the chart.
    void SetSourceStyle(SkySourceId source, std::uint32_t style);
    std::uint32_t SourceStyle(SkySourceId source) const;

    // The object whose disc edge is nearest the pixel, within `tolerancePx`
    // of it; among equally near ones the brighter. Nothing when none is
    // that close, or for a non-finite pixel.
    const SceneObject* Nearest(double xPx, double yPx, double tolerancePx) const;

private:
    Header m_header;
    std::shared_ptr<const HorizonProfile> m_horizon;
    std::shared_ptr<const CGroundCover> m_ground;
    bool m_valid = false;
    std::vector<SceneObject> m_objects;
    std::vector<std::uint32_t> m_styles;  // by source
};

// An object that typed text names, with its place at the instant asked for.
struct SkyObjectMatch {
    SkySourceId source = kNoSkySource;
    std::uint32_t key = 0;
    ObjectType type = ObjectType::Unknown;
    std::string designation;  // as the source writes it ("Sirius", "HIP 32349")
    // Where the object is at the instant, referred to the J2000 equator and
    // equinox (a star's proper motion applied), radians: a chart centred
    // here has the object at its centre.
    double raJ2000Rad = 0.0;
    double decJ2000Rad = 0.0;
    std::optional<double> magnitude;
};

// What a describer is told about the chart the object was drawn on.
struct DescribeRequest {
    double jdUT = 0.0;
    double jdTT = 0.0;
    std::uint32_t style = 0;  // the layer's style word (CChartScene::SourceStyle)
    // The site the chart is drawn for, when known: read-outs add the
    // object's rise, transit and set there.
    bool hasSite = false;
    double latitudeRad = 0.0;
    double longitudeRad = 0.0;  // east positive
    double heightM = 0.0;
    double localOffsetHours = 0.0;
    // Rise and set over this horizon profile when given (the trees and roofs
    // of the site), else over the mathematical horizon.
    std::shared_ptr<const HorizonProfile> horizon;
};

// The identify read-out of one object.
struct ObjectDescription {
    ObjectType type = ObjectType::Unknown;
    std::string designation;
    std::string information;  // several lines, the designation first
    double raJ2000Rad = 0.0;  // the place the read-out gives
    double decJ2000Rad = 0.0;
};

class ISkyObjectSource {
public:
    virtual ~ISkyObjectSource() = default;

    // The catalogue's name in messages ("Tycho-2 stars").
    virtual std::string_view Name() const = 0;
    // The forms of text it understands, for the message that lists what was
    // tried ("proper names, Bayer and Flamsteed designations, HIP …").
    virtual std::string_view Forms() const = 0;
    // False when its data is not installed: it is then skipped.
    virtual bool Available() const = 0;
    // The objects `text` names, placed at the observer's instant; empty when
    // it names none. A source gives more than one only when the text is
    // ambiguous within it.
    virtual std::vector<SkyObjectMatch> Resolve(std::string_view text, const CObserverDoc& observer) const = 0;
    // The read-out of the object with the source's `key`.
    virtual std::optional<ObjectDescription> Describe(std::uint32_t key, const DescribeRequest& request) const = 0;
    // Names offered while the user types (proper names and the like).
    virtual void CompletionNames(std::vector<std::string>& /*out*/) const {}
};

enum class FindStatus {
    Found,           // one object: matches[0]
    Ambiguous,       // several different objects: matches lists them
    NotFound,        // no source knows the text
    NothingInstalled,  // no source has its data
    EmptyText,
};

struct FindResult {
    FindStatus status = FindStatus::EmptyText;
    std::vector<SkyObjectMatch> matches;
    std::string message;  // for the user, when the status is not Found
};

class CSkyObjectRegistry {
public:
    SkySourceId Register(std::shared_ptr<const ISkyObjectSource> source);
    std::size_t Count() const { return m_sources.size(); }
    const ISkyObjectSource* Source(SkySourceId id) const;
    // The first registered source of a type, or nothing.
    template <class T>
    const T* SourceOf() const
    {
        for (const auto& s : m_sources)
            if (const auto* t = dynamic_cast<const T*>(s.get())) return t;
        return nullptr;
    }
    std::optional<SkySourceId> IdOf(const ISkyObjectSource* source) const;

    // Asks every source in order of registration. Matches of several
    // sources that lie within an arc minute of each other are one object
    // (a star that two catalogues hold) and the first source's is kept.
    FindResult Resolve(std::string_view text, const CObserverDoc& observer) const;

    // The read-out of a drawn object, through its source.
    std::optional<ObjectDescription> Describe(const SceneObject& object, const CChartScene& scene) const;

    // Every source's completion names, sorted case-insensitively, once each.
    std::vector<std::string> CompletionNames() const;

private:
    std::vector<std::shared_ptr<const ISkyObjectSource>> m_sources;
};

}  // namespace orv
