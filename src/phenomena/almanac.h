// The almanac of a year: every event the phenomena search knows of, merged
// in time order — the Moon's phases, apogees and perigees, the equinoxes and
// solstices, the Earth's perihelion and aphelion, the planets' conjunctions
// with the Sun, oppositions and stationary points, the greatest elongations
// of Mercury and Venus, the Moon's conjunctions with the planets (with
// occultations flagged) and the year's eclipses from the eclipse tables.
//
// Standard C++ only.
#pragma once

#include <string>
#include <vector>

#include "phenomena/phenomena.h"
#include "util/resulttable.h"

namespace orv {

class CObserverDoc;

struct AlmanacEntry {
    double jdUT = 0.0;
    std::string event;    // "Full Moon", "Mars at opposition", "Total Solar eclipse" …
    std::string details;  // "Moon 2.1° S of Jupiter", "distance 356,780 km" …
};

struct AlmanacOutcome {
    PhenomenaStatus status = PhenomenaStatus::Ok;
    std::vector<AlmanacEntry> entries;
    bool eclipseTablesMissing = false;
};

// The almanac of a Gregorian year (−1999 … 3000; the year's UT span).
// `stars`: fixed objects (bright stars near the ecliptic) whose conjunctions
// with the Moon are listed too, occultations named. Progress runs from 0 to
// 1 over the whole; false cancels.
AlmanacOutcome MakeAlmanac(const CObserverDoc& observer, int year, const PhenomenaProgressFn& progress = {},
                           const std::vector<PhenomenonBody>& stars = {});

// The bright stars the Moon can occult (within 6.6° of the ecliptic, brighter
// than magnitude 1.5, and the Pleiades' brightest), by name for a catalogue
// look-up.
inline constexpr const char* kAlmanacStarNames[] = {"Aldebaran", "Regulus", "Spica", "Antares", "Alcyone"};

// Columns: Date (UT, "%5d %s %02d %02d:%02d"), Event, Details. Title
// "Almanac for <year>".
ResultTable MakeAlmanacTable(int year, const std::vector<AlmanacEntry>& entries);

}  // namespace orv
