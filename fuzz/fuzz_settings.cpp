// A settings file damaged by a crash of another program, an editor or a
// disk: the whole INI file read through QSettings into the settings store,
// then every section the program reads loaded into fresh objects the way
// the program starts up. Nothing may crash or hang, and what was loaded
// must be usable: a site on the Earth, finite chart centre and field, a
// level table of positive fields, eclipse years in the tables' span.
//
// QSettings reads only files, so each input is still written once (to a
// memory file system where there is one). Every key it finds is then read
// once through the program's store, CQtSettingsStore, as integer and as
// text, and the loaders, which ask for several hundred keys, most of them
// absent, are served those answers from memory: the same values reach them
// as in the program, without a conversion through Qt's strings for each
// question.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "app/qtsettingsstore.h"
#include "eclipse/eclipsesearch.h"
#include "fuzzsupport.h"
#include "map/levels.h"
#include "map/mapdoc.h"
#include "map/mapfile.h"
#include "map/mapview.h"
#include "satellite/satsettings.h"
#include "solarsystem/planets.h"
#include "util/settingsstore.h"

namespace {

using namespace orv;

void Check(bool ok)
{
    if (!ok) __builtin_trap();
}

// The answers of a CQtSettingsStore for every key its file holds, kept in
// memory; a key not in the file is absent, as it is for the program.
class CAnswers final : public CSettingsStore {
public:
    explicit CAnswers(const CQtSettingsStore& store)
    {
        for (const std::string& name : store.Keys()) {
            // "Section/Key" (a key of nested groups keeps its later slashes
            // in the key, which joins back to the same name)
            const std::size_t slash = name.find('/');
            const std::string section = slash == std::string::npos ? std::string() : name.substr(0, slash);
            const std::string key = slash == std::string::npos ? name : name.substr(slash + 1);
            m_values[Key{section, key}] = {store.ReadInt(section, key), store.ReadString(section, key)};
        }
    }

    std::optional<std::int64_t> ReadInt(std::string_view section, std::string_view key) const override
    {
        const auto it = m_values.find(Name{section, key});
        return it == m_values.end() ? std::nullopt : it->second.first;
    }
    std::optional<std::string> ReadString(std::string_view section, std::string_view key) const override
    {
        const auto it = m_values.find(Name{section, key});
        return it == m_values.end() ? std::nullopt : it->second.second;
    }
    void WriteInt(std::string_view section, std::string_view key, std::int64_t value) override
    {
        m_values[Key{std::string(section), std::string(key)}] = {value, std::to_string(value)};
    }
    void WriteString(std::string_view section, std::string_view key, std::string_view value) override
    {
        m_values[Key{std::string(section), std::string(key)}] = {std::nullopt, std::string(value)};
    }

private:
    // Looked up without building a string: the loaders ask hundreds of
    // times per input.
    using Key = std::pair<std::string, std::string>;
    using Name = std::pair<std::string_view, std::string_view>;
    struct Less {
        using is_transparent = void;
        template <class A, class B>
        bool operator()(const A& a, const B& b) const
        {
            const int c = std::string_view(a.first).compare(std::string_view(b.first));
            return c < 0 || (c == 0 && std::string_view(a.second) < std::string_view(b.second));
        }
    };
    std::map<Key, std::pair<std::optional<std::int64_t>, std::optional<std::string>>, Less> m_values;
};

// Writes the input as the settings file: one name for every input
// (QSettings keeps parsed files in a cache keyed by name: new names would
// grow it, and make every input look like a leak to the sanitizer), with a
// time stamp of its own so that QSettings, which checks the time stamp and
// size, reads each afresh.
std::string WriteSettingsFile(const std::uint8_t* data, std::size_t size)
{
    static const std::string path = (fuzz::ScratchFolder() / "settings.ini").string();
    static long long serial = 0;
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) __builtin_trap();
    for (std::size_t done = 0; done < size;) {
        const ssize_t n = ::write(fd, data + done, size - done);
        if (n <= 0) __builtin_trap();
        done += static_cast<std::size_t>(n);
    }
    const timespec stamp{1000000000 + ++serial, 0};
    const timespec times[2] = {stamp, stamp};
    ::futimens(fd, times);
    ::close(fd);
    return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string path = WriteSettingsFile(data, size);
    const CQtSettingsStore qtStore(path);
    const CAnswers store(qtStore);

    CLevelTable levels;
    levels.Load(store);
    for (int i = 0; i < kLevelCount; ++i) Check(std::isfinite(levels[i].fieldDeg) && levels[i].fieldDeg > 0.0);

    CMapDoc doc(store);
    CMapView view(doc, store, levels);
    Check(std::isfinite(doc.observer.LatitudeRad()) && std::abs(doc.observer.LatitudeRad()) <= 1.5707963268);
    Check(std::isfinite(doc.observer.LongitudeRad()) && std::isfinite(doc.observer.HeightM()));
    Check(std::isfinite(view.coordinates.FieldDeg()) && view.coordinates.FieldDeg() > 0.0);
    view.coordinates.Update(doc.observer);
    view.FollowField();
    // What was loaded goes into a map file and must read back (into the
    // same view: reading replaces everything a map file holds).
    const std::vector<std::uint8_t> bytes = WriteMapBytes(view);
    Check(ReadMapBytes(bytes, view, KeepTitle::No).status == MapFileStatus::Ok);

    CPlanets planets;
    planets.LoadSettings(store);
    Check(std::isfinite(planets.GreatRedSpotLongitudeDeg()));

    sat::CEarthSatSettings satellites;
    satellites.Load(store);
    Check(satellites.passDurationDays >= 1 && satellites.passDurationDays <= 365);
    Check(satellites.groundTrackLengthMin >= 1 && satellites.groundTrackIntervalMin >= 1);

    EclipseSearchSettings search;
    search.Load(store);
    Check(search.startYear >= -1999 && search.endYear <= 3000);
    EclipseBrowsePosition solar, lunar;
    solar.Load(store, EclipseKind::Solar);
    lunar.Load(store, EclipseKind::Lunar);

    // Every real setting the file holds reads as a finite number or
    // falls back to its default.
    for (const char* section : {"Observer", "AreaMap", "Planet", "Level1", "Satellite"})
        for (const char* key : {"Latitude", "Longitude", "Height", "TimeZone", "GRSLong", "Field"})
            Check(std::isfinite(store.GetReal(section, key, 1.0)));
    return 0;
}
