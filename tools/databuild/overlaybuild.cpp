#include "overlaybuild.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "util/angles.h"
#include "util/atomicfile.h"

namespace orv::databuild {

namespace {

OutputFile TextFile(const std::string& path, const std::string& text)
{
    return {path, std::vector<std::uint8_t>(text.begin(), text.end())};
}

// "hh mm ss.s" of right ascension and "±dd mm ss" of declination, as the
// overlay language writes them (the sign in front applies to the whole).
std::string Position(double raHours, double decDeg)
{
    raHours = std::fmod(raHours, 24.0);
    if (raHours < 0.0) raHours += 24.0;
    long long raTenths = std::llround(raHours * 36000.0);
    if (raTenths >= 24LL * 36000) raTenths -= 24LL * 36000;
    const long long decSec = std::llround(std::fabs(decDeg) * 3600.0);
    char buf[64];
    std::snprintf(buf, sizeof buf, "%lld %02lld %04.1f, %c%lld %02lld %02lld", raTenths / 36000, raTenths / 600 % 60,
                  (raTenths % 600) / 10.0, decDeg < 0.0 ? '-' : '+', decSec / 3600, decSec / 60 % 60, decSec % 60);
    return buf;
}

// Galactic → J2000 equatorial through the Hipparcos definition of the
// galactic frame: north galactic pole at α = 192.85948°, δ = +27.12825°, and
// the celestial pole at galactic longitude 122.93192° (ESA 1997, The
// Hipparcos and Tycho Catalogues, vol. 1, sect. 1.5.3).
void GalacticToJ2000(double lDeg, double bDeg, double& raHours, double& decDeg)
{
    const double aP = 192.85948 * kRadPerDeg, dP = 27.12825 * kRadPerDeg, lNcp = 122.93192 * kRadPerDeg;
    const double l = lDeg * kRadPerDeg, b = bDeg * kRadPerDeg;
    const double sinDec = std::sin(b) * std::sin(dP) + std::cos(b) * std::cos(dP) * std::cos(lNcp - l);
    const double y = std::cos(b) * std::sin(lNcp - l);
    const double x = std::sin(b) * std::cos(dP) - std::cos(b) * std::sin(dP) * std::cos(lNcp - l);
    const double ra = mod2pi(aP + std::atan2(y, x));
    raHours = ra * kDegPerRad / 15.0;
    decDeg = std::asin(std::clamp(sinDec, -1.0, 1.0)) * kDegPerRad;
}

}  // namespace

bool MilkyWayOverlay(const std::string& milkywayDat, OutputFile& out, std::string& error)
{
    std::ostringstream o;
    o << "; The outline of the Milky Way.\n"
         "; Written by orvane-databuild from milkyway.dat of the kstars-data package\n"
         "; (contours by Till Credner and Sven Kohle; GPL-2+). Coordinates J2000.\n"
         "epoch J2000.0\n"
         "define colour milkyway 100, 130, 200\n"
         "define line outline solid, 2, milkyway, ltgrey\n"
         "select line outline\n";
    std::istringstream in(milkywayDat);
    std::string line;
    int lineNo = 0, points = 0;
    while (std::getline(in, line)) {
        ++lineNo;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.find_first_not_of(" \t") == std::string::npos || line[0] == '#') continue;
        std::istringstream words(line);
        std::string op;
        double ra = 0.0, dec = 0.0;
        if (!(words >> op >> ra >> dec) || (op != "M" && op != "S" && op != "D") || !(ra >= 0.0 && ra <= 24.0) ||
            !(dec >= -90.0 && dec <= 90.0)) {
            error = "milkyway.dat, line " + std::to_string(lineNo) + ": expected \"M|S|D hours degrees\"";
            return false;
        }
        o << (op == "D" ? "draw " : "move ") << Position(ra, dec) << '\n';
        ++points;
    }
    if (points == 0) {
        error = "milkyway.dat holds no contour points";
        return false;
    }
    out = TextFile("overlays/milkyway.ovl", o.str());
    return true;
}

OutputFile GalacticOverlay()
{
    std::ostringstream o;
    o << "; The galactic equator (solid), the lines of galactic latitude +10 and -10\n"
         "; degrees (dotted), longitudes every 30 degrees and the galactic centre.\n"
         "; Written by orvane-databuild from the Hipparcos definition of the galactic\n"
         "; frame: north galactic pole at RA 192.85948, Dec +27.12825 degrees, the\n"
         "; celestial pole at galactic longitude 122.93192 degrees (ESA 1997).\n"
         "epoch J2000.0\n"
         "define colour galactic 150, 90, 170\n"
         "define line equator solid, 4, galactic, dkmagenta\n"
         "define line band dot, 4, galactic, dkmagenta\n"
         "define font labels Sans Serif, 8, 0, 1, galactic, dkmagenta\n"
         "define font centre Sans Serif, 9, 1, 0, galactic, dkmagenta\n";
    double ra = 0.0, dec = 0.0;
    for (const double b : {0.0, 10.0, -10.0}) {
        o << "select line " << (b == 0.0 ? "equator" : "band") << '\n';
        for (int l = 0; l <= 360; ++l) {
            GalacticToJ2000(l, b, ra, dec);
            o << (l == 0 ? "move " : "draw ") << Position(ra, dec) << '\n';
        }
    }
    o << "select line equator\nselect font labels\nselect textalign left, bottom\n";
    for (int l = 30; l < 360; l += 30) {
        GalacticToJ2000(l, -1.5, ra, dec);
        o << "move " << Position(ra, dec) << '\n';
        GalacticToJ2000(l, 1.5, ra, dec);
        o << "draw " << Position(ra, dec) << '\n';
        GalacticToJ2000(l + 0.5, 1.0, ra, dec);
        o << "text " << Position(ra, dec) << ", l = " << l << "°\n";
    }
    // The centre (l = 0, b = 0) marked with a cross 3° across.
    for (const auto& arm : {std::pair{-1.5, 0.0}, std::pair{0.0, -1.5}}) {
        GalacticToJ2000(arm.first, arm.second, ra, dec);
        o << "move " << Position(ra, dec) << '\n';
        GalacticToJ2000(-arm.first, -arm.second, ra, dec);
        o << "draw " << Position(ra, dec) << '\n';
    }
    GalacticToJ2000(0.0, 2.0, ra, dec);
    o << "select font centre\nselect textalign centre, bottom\ntext " << Position(ra, dec) << ", Galactic centre\n";
    return TextFile("overlays/galactic.ovl", o.str());
}

OutputFile DefaultOverlayList(const std::vector<std::string>& files)
{
    std::string text = "# Orvane map overlays: active, lowest and highest level (1-10, both 0: none), file\n";
    for (const std::string& f : files) text += "0\t0\t0\t" + f + '\n';
    return TextFile("overlay.dat", text);
}

bool RunOverlayBuild(const std::string& kstarsDir, const std::string& outputDir, const Progress& progress,
                     std::string& error)
{
    namespace fs = std::filesystem;
    const fs::path source = fs::path(kstarsDir) / "milkyway.dat";
    std::ifstream in(source, std::ios::binary);
    if (!in) {
        error = "no milkyway.dat in " + kstarsDir + " (run tools/fetch-sources.sh first)";
        return false;
    }
    std::ostringstream text;
    text << in.rdbuf();
    std::vector<OutputFile> files(1);
    if (!MilkyWayOverlay(text.str(), files[0], error)) return false;
    files.push_back(GalacticOverlay());
    files.push_back(DefaultOverlayList({"overlays/milkyway.ovl", "overlays/galactic.ovl"}));
    for (const OutputFile& f : files) {
        const fs::path path = fs::path(outputDir) / f.path;
        std::error_code ec;
        fs::create_directories(path.parent_path(), ec);
        const AtomicWriteResult r = WriteFileAtomically(path.string(), f.bytes);
        if (!r.ok) {
            error = "cannot write " + path.string() + ": " + r.error;
            return false;
        }
        progress("wrote " + f.path + " (" + std::to_string(f.bytes.size()) + " bytes)");
    }
    return true;
}

}  // namespace orv::databuild
