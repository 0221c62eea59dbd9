// The eclipse search over the tables: which eclipses of a span of years are
// visible from the observer's site, with their local circumstances; its
// settings (section "EclipseSearch"), validation, result table and text
// report; and the browsing lists' positions (sections "SolarEclipse" and
// "LunarEclipse").
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "eclipse/eclipsetables.h"
#include "eclipse/localcircumstances.h"
#include "util/resulttable.h"

namespace orv {

class CSettingsStore;

// Display options: 0 every eclipse found, 2 leaves out partial solar
// eclipses (1 behaves as 0).
inline constexpr int kEclipseDisplayNoPartialSolar = 2;

struct EclipseSearchSettings {
    int startYear = 2000;  // astronomical years
    int endYear = 2030;
    bool solar = true;
    bool lunar = true;
    int displayOption = 0;
    // Section "EclipseSearch": "StartYear", "EndYear", "DisplayOption",
    // "Solar", "Lunar" (0/1).
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
};

// The dialog's checks, each the message shown: neither kind chosen; an end
// year outside −1999 … +3000; an end year not after the start year (also a
// start year outside the span). Nothing when the settings can be searched.
std::optional<std::string> ValidateEclipseSearch(const EclipseSearchSettings& settings);

// The progress bar's range: years of the span, doubled when both kinds are
// searched.
int EclipseSearchProgressRange(const EclipseSearchSettings& settings);

struct EclipseSearchResult {
    EclipseRecord record;
    EclipseKind kind = EclipseKind::Solar;
    SolarLocalCircumstances solar;  // solar eclipses
    LunarLocalCircumstances lunar;  // lunar eclipses
};

struct EclipseSearchOutcome {
    std::vector<EclipseSearchResult> results;
    bool cancelled = false;
    bool tablesMissing = false;  // a kind's first file could not be opened
};

// Progress: the number of years done (of EclipseSearchProgressRange); return
// false to cancel.
using EclipseSearchProgressFn = std::function<bool(int yearsDone)>;

enum class EclipseVisibility { FromSite, Anywhere };

// Scans the tables of the data folder, solar first, then lunar, from the
// file of the start year onwards; keeps the eclipses seen from the site
// (some phase with the Sun, or the Moon, above the horizon), or every one
// with Anywhere (then local circumstances are still computed for the site).
// The scratch file `scratchPath` (normally GetDataFileName("EclipseSearch.dat"))
// is deleted first and receives the records of the eclipses found; empty
// for none.
EclipseSearchOutcome RunEclipseSearch(const EclipseSearchSettings& settings, const EclipseSite& site,
                                      EclipseVisibility visibility, const EclipseSearchProgressFn& progress,
                                      const std::string& scratchPath);

// The result list: Date (TT of greatest eclipse, "%s %s %02d %02d:%02d"),
// Type ("Total Solar" …), local greatest eclipse (UT), magnitude, the Sun's
// or the Moon's altitude there, obscuration and duration of totality or
// annularity ("%02dh %02dm %02ds") for solar ones, the umbral magnitude for
// lunar ones. Title "Eclipses visible between <start> and <end>" (years as
// "%1d BC" / "%1d AD").
ResultTable MakeEclipseResultTable(const EclipseSearchSettings& settings,
                                   const std::vector<EclipseSearchResult>& results);

// The browsing list of one file: "Date" ("%4dBC %s %02d" / "%4d %s %02d")
// and "Type" ("Total", "Partial", …), with the greatest eclipse (TT) and
// magnitude. Nothing when the file cannot be read.
std::optional<ResultTable> MakeEclipseBrowseTable(EclipseKind kind, int fileNumber);

// The browsing lists' remembered place: section "SolarEclipse" or
// "LunarEclipse", "FileNumber" (1–5, default 5) and "LineNumber" (default 0).
struct EclipseBrowsePosition {
    int fileNumber = 5;
    int lineNumber = 0;
    void Load(const CSettingsStore& store, EclipseKind kind);
    void Save(CSettingsStore& store, EclipseKind kind) const;
};

// "%02dh %02dm %02ds".
std::string FormatEclipseDuration(double seconds);

}  // namespace orv
