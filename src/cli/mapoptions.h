// The chart a command describes with options: the observing site and the
// instant, the level or field, and the centre (shared by "map new" and
// "render").
#pragma once

#include <string>
#include <vector>

#include "cli/cli.h"

namespace orv {
class CMapView;
}

namespace orv::cli {

// Where the map came from: a new map takes the present moment when no time
// option is given; a map read from a file keeps its own instant and site
// unless an option changes them.
enum class MapSource { NewMap, MapFile };

// --lat/--lon/--height/--site/--zone/--dst, --jd or --date/--time/--utc,
// --level N (1-10, with its field) or --field DEG (the level follows), and
// the centre as --ra/--dec (J2000; holds the centre in right ascension and
// declination) or --alt/--az (holds it in altitude and azimuth). False with
// a usage message in `error`.
bool ApplyMapOptions(const Context& ctx, CMapView& view, MapSource source, std::string& error);

// The option names ApplyMapOptions reads beside the site and time options.
extern const std::vector<std::string> kMapOptionNames;

}  // namespace orv::cli

// Usage lines of those options, for the commands' help texts (a literal, so
// that it joins the commands' own usage literals).
#define ORV_CLI_MAP_OPTIONS_USAGE                                                                                  \
    "  --ra HOURS --dec DEG  centre, J2000 (\"5h35m17s\", \"5:35:17\", \"5.588\" or \"83.82d\"; \"-5:23:28\"); holds it in RA/Dec\n" \
    "  --alt DEG --az DEG    centre in altitude and azimuth (azimuth from north through east)\n"                    \
    "  --field DEG           degrees from the centre to the top edge (the level follows)\n"                         \
    "  --level N             level 1-10 with its field\n"                                                           \
    "  --lat DEG --lon DEG --height M --site NAME --zone H --dst 0|1   observing site\n"                            \
    "  --date YYYY-MM-DD --time HH:MM[:SS] [--utc] | --jd JD            instant\n"
