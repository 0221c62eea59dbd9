// The deep-sky catalogues on disk: the revised NGC/IC, LEDA galaxies and the
// Strasbourg planetary nebulae (and the SAC database when it was built),
// each mapped read-only once and walked in place, every read checked against
// the mapped length. The chart asks for the objects of a circle of the sky;
// the find box asks for a designation through the catalogue's sorted name
// index.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "catalog/deepsky/deepskyformat.h"
#include "util/datafiles.h"
#include "util/mappedfile.h"
#include "util/objecttype.h"

namespace orv {

// The catalogues, in the order the chart draws and the find box asks them.
enum class DeepSkyCatalogueId : std::uint8_t { NgcIc = 0, Sac = 1, Leda = 2, Strasbourg = 3 };
inline constexpr int kDeepSkyCatalogueCount = 4;

// One object as the chart and the lists use it: decoded from its record
// without its texts.
struct DeepSkyObject {
    DeepSkyCatalogueId catalogue = DeepSkyCatalogueId::NgcIc;
    std::uint32_t record = 0;
    double raJ2000Rad = 0.0;
    double decJ2000Rad = 0.0;
    std::int16_t magCenti = deepsky::kNoMagnitude;  // kNoMagnitude: not measured
    ObjectType type = ObjectType::Unknown;
    std::uint8_t ngcType = 0;        // the NGC/IC type byte (NGC/IC records only)
    float majorArcmin = 0.0f;        // 0: not measured
    float minorArcmin = 0.0f;
    std::int16_t paDeg = deepsky::kNoPositionAngle;
    bool inNgcIc = false;            // a LEDA or Strasbourg object the NGC/IC also holds

    bool HasMagnitude() const { return magCenti != deepsky::kNoMagnitude; }
};

// The key of an object in the chart scene: the catalogue in the top four
// bits, the record number below.
inline std::uint32_t DeepSkyKey(DeepSkyCatalogueId c, std::uint32_t record)
{
    return (static_cast<std::uint32_t>(c) << 28) | (record & 0x0FFFFFFFu);
}
inline DeepSkyCatalogueId DeepSkyKeyCatalogue(std::uint32_t key) { return static_cast<DeepSkyCatalogueId>(key >> 28); }
inline std::uint32_t DeepSkyKeyRecord(std::uint32_t key) { return key & 0x0FFFFFFFu; }

// The texts of an object, for labels and the identify read-out.
struct DeepSkyTexts {
    std::string designation;  // "NGC 1976", "LEDA 2557", "PN G054.1-12.1"
    std::string messier;      // "M 42" when it has a Messier number
    std::string caldwell;     // "C 14"
    std::string names;        // common names, "; "-separated ("Great Orion Nebula; Orion Nebula")
    std::string morphology;   // "SA(s)b"
    std::string otherIds;     // "Sh2-281; LBN 974"
    std::string label;        // the chart label a catalogue's label list gives (SAC), else empty

    // The first common name, or empty.
    std::string CommonName() const { return names.substr(0, names.find("; ")); }
};

class CDeepSkyCatalogues {
public:
    // Opens every catalogue whose files the data folder holds; those it
    // lacks stay closed, silently. True when any is open.
    bool Open();
    // Opens the catalogues of one data folder (the tests).
    bool OpenFolder(const std::string& folder);
    // Opens the catalogues that `files` hold (the fuzz targets hand in
    // bytes in memory).
    bool OpenFiles(const CDataFiles& files);

    bool IsOpen(DeepSkyCatalogueId c) const { return File(c).records.IsOpen(); }
    bool AnyOpen() const;
    std::size_t Count(DeepSkyCatalogueId c) const;

    // The object of a record; false when the record is out of range.
    bool Object(DeepSkyCatalogueId c, std::uint32_t record, DeepSkyObject& out) const;
    bool Texts(DeepSkyCatalogueId c, std::uint32_t record, DeepSkyTexts& out) const;

    // A name looked up in a catalogue's sorted name index: "NGC 7000",
    // "IC 434", "M 42", "C 14" (NGC/IC); "LEDA 2557", "UGC 454" (LEDA). The
    // name must be written as the index writes it (see NormaliseDeepSkyName).
    std::optional<std::uint32_t> FindName(DeepSkyCatalogueId c, std::string_view name) const;
    // A Strasbourg nebula by its galactic designation ("054.1-12.1").
    std::optional<std::uint32_t> FindPlanetary(std::string_view png) const;
    // Objects whose common names include `name`, compared without regard to
    // case ("orion nebula", "cartwheel galaxy"): NGC/IC records first, then
    // the LEDA galaxies and SAC objects of the popular-name lists.
    std::vector<std::pair<DeepSkyCatalogueId, std::uint32_t>> FindCommonName(std::string_view name) const;
    // The chart label a SAC object's label list gives it, or empty.
    std::string SacLabel(std::uint32_t record) const;

    // Every object of catalogue `c` within `radiusRad` of the J2000 place
    // (its extent included), region by region, appended to `out`.
    void Gather(DeepSkyCatalogueId c, double raJ2000Rad, double decJ2000Rad, double radiusRad,
                std::vector<DeepSkyObject>& out) const;

private:
    struct FileSet {
        CMappedFile records, bounds, names;
        std::size_t recordSize = 0, nameEntrySize = 0, nameWidth = 0;
        // Per region: centre (unit vector) and the radius that holds its
        // cell and the objects reaching out of it.
        std::vector<std::array<double, 4>> regionCircles;
    };
    const FileSet& File(DeepSkyCatalogueId c) const { return m_files[static_cast<std::size_t>(c)]; }
    static void ComputeRegionCircles(FileSet& f);

    // A "designation|text" list read whole, keyed by record.
    using NameList = std::unordered_map<std::uint32_t, std::string>;
    void LoadNameList(DeepSkyCatalogueId c, std::span<const std::uint8_t> bytes, NameList& out) const;

    std::array<FileSet, kDeepSkyCatalogueCount> m_files;
    std::array<NameList, kDeepSkyCatalogueCount> m_popularNames;  // LEDA and SAC only
    NameList m_sacLabels;
};

// The name written as the name indexes hold it: the catalogue prefix in its
// usual case and one space before the number ("m42" → "M 42",
// "ngc7000" → "NGC 7000", "pgc 2557" → "LEDA 2557"). Empty when the text
// has no known prefix.
std::string NormaliseDeepSkyName(std::string_view text);

// The NGC/IC type words of the identify read-out ("Galaxy", "Part of galaxy" …).
std::string_view NgcTypeWords(std::uint8_t ngcType);

}  // namespace orv
