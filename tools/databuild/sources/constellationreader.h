// Readers of the constellation sources:
//   stellarium-data skycultures/western/constellationship.fab: the figures,
//     "Abr N hipA1 hipB1 … hipAN hipBN" (N lines, each a pair of HIP numbers);
//   stellarium-data skycultures/western/constellation_names.eng.fab: the
//     English names, "Abr<tab>"Name"<tab>_("Name")";
//   stellarium-data data/constellations_spans.dat: Roman's table (1987,
//     PASP 99, 695; CDS VI/42), "h:mm:ss h:mm:ss ±dd:mm Abr", B1875.0;
//   stellarium-data data/constellation_boundaries.dat: the boundaries of
//     Davenhall and Leggett (1989, CDS VI/49), Delporte's edges precessed to
//     J2000 with points every degree: "N ra1 dec1 … raN decN 2 ABR1 ABR2"
//     (right ascension in hours, declination in degrees, whitespace-separated
//     over any number of lines);
//   kstars-data cnames.dat: where the names are written, the "C Western"
//     section, "hhmmss±ddmmssAbr NAME" (J2000).
// Each reader checks every field and names the file and line of anything
// malformed; none knows the files Orvane writes.
#pragma once

#include <string>
#include <string_view>

#include "common/progress.h"
#include "model/constellations.h"

namespace orv::databuild {

// Constellation number (0-87) of a source's abbreviation in any case;
// Serpens' two parts "SER1" and "SER2" are Serpens. −1 when unknown.
int ConstellationOfAbbreviation(std::string_view abbreviation);

// Line parsers, exposed for the tests. False with a reason in `why`.
bool ParseFigureLine(std::string_view line, ConstellationFigure& out, std::string& why);
bool ParseNameLine(std::string_view line, ConstellationNames& out, std::string& why);
bool ParseRomanStrip(std::string_view line, RomanStrip& out, std::string& why);
// kstars-data's name line; false without `why` for the lines of other
// cultures' asterisms that carry no abbreviation.
bool ParseNamePosition(std::string_view line, NamePosition& out, std::string& why);
// The whole boundary file's text.
bool ParseBoundarySegments(std::string_view text, std::vector<BoundarySegment>& out, std::string& why);

struct ConstellationSourcePaths {
    std::string figures;
    std::string names;
    std::string strips;
    std::string boundaries;
    std::string namePositions;
};
ConstellationSourcePaths LocateConstellationSources(const std::string& stellariumDir, const std::string& kstarsDir);

// Reads all five; stops at the first file missing or malformed.
bool ReadConstellationSources(const ConstellationSourcePaths& paths, ConstellationSources& out,
                              const Progress& progress, std::string& error);

}  // namespace orv::databuild
