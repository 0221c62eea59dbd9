// Reader of the Saguaro Astronomy Club deep-sky database (version 8.1,
// "SAC_DeepSky_Ver81_QCQ.TXT"), in the club's quote-comma-quote form: one
// object a line, 19 fields each in double quotes, separated by commas —
// object, other name, type, constellation, right ascension "HH MM.m" and
// declination "+DD MM" (J2000), magnitude (99.9 when none), surface
// brightness, Uranometria 2000 chart, Tirion chart, major and minor size
// with a unit letter ("m" arc minutes, "s" arc seconds, "d" degrees),
// position angle, class, number of stars, brightest star, Burnham, NGC
// description and notes (field list of the club's SACDOC.TXT).
//
// No Debian package carries the database: the user places the club's file
// in the sources folder (data-sources/sac/) and the builder imports it; the
// catalogue is simply absent otherwise.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/progress.h"
#include "model/deepsky.h"

namespace orv::databuild {

struct BuildSacObject {
    std::string designation;  // "NGC 7831", "AND III" (blanks inside numbers closed up)
    std::string other;        // "IC 1530", "UGC 174;IC 1539"
    std::string type;         // the club's type word: "GALXY", "OPNCL", "2STAR" …
    std::int64_t raMas = 0;   // J2000
    std::int64_t decMas = 0;
    double magnitude = 99.9;  // 99.9 (and 79.9 for some nebulae): none
    double majorArcmin = 0.0, minorArcmin = 0.0;
    int paDeg = -1;
    std::string objectClass;  // "Sb", "E-SO"

    bool HasMagnitude() const { return magnitude < 79.0; }
};

// One line; false with the reason in `why` for a malformed line.
bool ParseSacLine(std::string_view line, BuildSacObject& out, std::string& why);

// The file of the database; false with a message naming the line at fault.
bool ReadSac(const std::string& path, std::vector<BuildSacObject>& out, const Progress& progress, std::string& error);

// The program's object type code of a type word of the club.
int SacSystemType(std::string_view type);

}  // namespace orv::databuild
