// What the constellation sources say, as the builder hands it from the
// readers to the writers: figure lines between Hipparcos stars, the places
// where the names are written, the names, Roman's table of declination
// strips and Delporte's boundary edges. Constellations are numbered 0-87 in
// the alphabetical order of their Latin names (the program's string table).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orv::databuild {

// One line of a constellation figure, joining two Hipparcos stars.
struct FigureLine {
    std::uint32_t hipA = 0;
    std::uint32_t hipB = 0;
};

struct ConstellationFigure {
    int constellation = -1;
    std::vector<FigureLine> lines;
};

// Where a constellation's name is written: J2000 mean place, degrees. Serpens
// has two (Caput first, then Cauda).
struct NamePosition {
    int constellation = -1;
    double raJ2000Deg = 0.0;
    double decJ2000Deg = 0.0;
};

struct ConstellationNames {
    int constellation = -1;
    std::string abbreviation;  // "UMa"
    std::string name;          // "Ursa Major"
    std::string genitive;      // "Ursae Majoris"
};

// One row of Roman's table (1987, PASP 99, 695): the southern edge of a
// constellation, a declination arc of the B1875.0 equator from raLow to
// raHigh. The rows are ordered by decreasing declination, so the first row
// whose strip holds a point names its constellation.
struct RomanStrip {
    int constellation = -1;
    std::int32_t raLowSecTime = 0;   // B1875.0, seconds of time 0–86400
    std::int32_t raHighSecTime = 0;
    std::int32_t decLowArcmin = 0;   // B1875.0, arc minutes
};

// One edge of Delporte's boundaries (1930) between two B1875.0 vertices: a
// meridian arc (both right ascensions equal) or a declination arc (both
// declinations equal), separating constellations `left` and `right`.
struct BoundaryEdge {
    int left = -1;
    int right = -1;
    std::int32_t ra1SecTime = 0;  // B1875.0, whole seconds of time
    std::int32_t dec1Arcsec = 0;  // B1875.0, arc seconds (whole arc minutes in Delporte)
    std::int32_t ra2SecTime = 0;
    std::int32_t dec2Arcsec = 0;
};

// A boundary segment as the source gives it: J2000 points along the edge
// (precessed vertices with points interpolated between them).
struct BoundarySegment {
    int left = -1;
    int right = -1;
    std::vector<std::pair<double, double>> pointsJ2000Deg;  // (right ascension, declination)
    std::size_t line = 0;  // where it starts in the source, for messages
};

struct ConstellationSources {
    std::vector<ConstellationFigure> figures;
    std::vector<NamePosition> namePositions;
    std::vector<ConstellationNames> names;
    std::vector<RomanStrip> strips;
    std::vector<BoundarySegment> segments;
};

}  // namespace orv::databuild
