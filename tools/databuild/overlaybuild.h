// orvane-databuild --overlays: the map overlays that come with the program,
// written in the overlay language (docs/overlay-files.md), and the default
// overlay list "overlay.dat" naming them, every one inactive:
//   overlays/milkyway.ovl   the outline of the Milky Way, from kstars-data's
//                           milkyway.dat (contours by Till Credner and Sven
//                           Kohle, J2000 right ascension in hours and
//                           declination in degrees; lines "M" move, "S" start
//                           a contour, "D" draw)
//   overlays/galactic.ovl   the galactic equator, the lines b = ±10°, ticks
//                           and labels every 30° of galactic longitude and
//                           the galactic centre, computed from the galactic
//                           pole and the longitude of the celestial pole of
//                           the Hipparcos definition of the galactic frame
//                           (ESA 1997, vol. 1, sect. 1.5.3)
#pragma once

#include <string>
#include <vector>

#include "common/progress.h"
#include "writers/outputfile.h"

namespace orv::databuild {

// The overlay from the text of milkyway.dat; false (with the line) on a
// line that is not "M|S|D hours degrees".
bool MilkyWayOverlay(const std::string& milkywayDat, OutputFile& out, std::string& error);
// The galactic equator overlay.
OutputFile GalacticOverlay();
// The default list naming `files` (paths below the data folder), inactive.
OutputFile DefaultOverlayList(const std::vector<std::string>& files);

bool RunOverlayBuild(const std::string& kstarsDir, const std::string& outputDir, const Progress& progress,
                     std::string& error);

}  // namespace orv::databuild
