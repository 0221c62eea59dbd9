// Options shared by the commands: the observer's site and the instant, and
// the one reading of angles every command uses.
//
// Angles: a right ascension (--ra) is hours, as astronomers write it —
// "5h35m17s", "5:35:17", "5 35 17" or the decimal "5.588" — unless it is
// marked as degrees with a trailing "d" or "°" ("83.8d"); more than 24 hours
// is refused rather than wrapped. Every other angle (--dec, --lat, --lon,
// --alt, --az, --rotate) is degrees: "-5.39", "-5:23:28", "-5d23m28s",
// "-5°23′28″"; an "h" there is refused.
#pragma once

#include <string>
#include <vector>

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
// present moment. Both --jd and --date/--time is a usage error.
bool ApplyTimeOptions(const Context& ctx, CObserverDoc& observer, std::string& error);

// --ra (or another right-ascension option): radians in [0, 2π). False with a
// message naming the option and the accepted forms.
bool ParseRightAscensionOption(const std::string& option, const std::string& text, double& raRad,
                               std::string& error);
// A degrees option whose absolute value may not exceed `limitDeg` (90 for a
// declination, latitude or altitude, 180 for a longitude, 360 for an
// azimuth). False with a message naming the option and what it takes.
bool ParseDegreesOption(const std::string& option, const std::string& text, double limitDeg, double& angleRad,
                        std::string& error);

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
