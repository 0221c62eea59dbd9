// Options shared by the commands: the observer's site and the instant.
#pragma once

#include <string>

#include "cli/cli.h"

namespace orv {
class CObserverDoc;
struct CivilDateTime;
}  // namespace orv

namespace orv::cli {

// Site options on top of the stored default site: --lat and --lon (degrees,
// or sexagesimal; east longitude positive), --height (metres), --site (name),
// --zone (hours east of Greenwich), --dst (daylight saving, 0 or 1).
bool ApplySiteOptions(const Context& ctx, CObserverDoc& observer, std::string& error);

// The instant: --jd (UT), or --date YYYY-MM-DD with --time HH:MM[:SS.s]
// (local civil time at the site's zone, or UT with --utc); without either the
// present moment.
bool ApplyTimeOptions(const Context& ctx, CObserverDoc& observer, std::string& error);

// "2025-11-19" (astronomical years, so "-0043-03-15" is 44 BC) and
// "21:30", "21:30:05.5".
bool ParseDate(const std::string& text, CivilDateTime& date);
bool ParseTimeOfDay(const std::string& text, CivilDateTime& date);

// Option names these functions read, for the unknown-option check.
extern const std::vector<std::string> kSiteOptionNames;
extern const std::vector<std::string> kTimeOptionNames;
extern const std::vector<std::string> kGlobalOptionNames;

// Every option name of the lists given, for CArgs::Unknown.
std::vector<std::string> OptionNames(std::initializer_list<const std::vector<std::string>*> lists,
                                     std::initializer_list<const char*> more = {});

}  // namespace orv::cli
