// orvane-databuild: builds Orvane's star catalogue files from the sources that
// tools/fetch-sources.sh gathers.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "catalogbuild.h"
#include "constellationbuild.h"
#include "deepskybuild.h"
#include "ephemfit.h"
#include "minorbuild.h"
#include "overlaybuild.h"
#include "eclipsebuild.h"
#include "planetbuild.h"
#include "util/datapath.h"

namespace {

void Usage(std::FILE* to)
{
    std::fputs(
        "usage: orvane-databuild [--sources DIR] [--tycho2 DIR] [--stellarium DIR] [--kstars DIR]\n"
        "                        [--out DATA_FOLDER] [--constellations]\n"
        "       orvane-databuild --deepsky [--sources DIR] [--stellarium DIR] [--out DATA_FOLDER]\n"
        "       orvane-databuild --minor [--sources DIR] [--kstars DIR] [--out DATA_FOLDER]\n"
        "       orvane-databuild --overlays [--sources DIR] [--kstars DIR] [--out DATA_FOLDER]\n"
        "       orvane-databuild --planets ASTRONOMIA_DIR [--moon-block FILE] [--out DATA_FOLDER]\n"
        "       orvane-databuild --ephem96 [--out DATA_FOLDER]\n"
        "       orvane-databuild --earth-offset FILE\n"
        "       orvane-databuild --eclipses [--out DATA_FOLDER]\n"
        "\n"
        "Builds the Tycho-2 star files (star/Tycho2/*, data/rgnbound.dat) into the data folder.\n"
        "  --sources DIR     the folder filled by tools/fetch-sources.sh (default: data-sources)\n"
        "  --tycho2 DIR      the Tycho-2 files (default: DIR/tycho2)\n"
        "  --stellarium DIR  stellarium-data's share folder, holding stars/ and skycultures/\n"
        "                    (default: DIR/stellarium-data/usr/share/stellarium)\n"
        "  --kstars DIR      kstars-data's share folder, holding stars.dat\n"
        "                    (default: DIR/kstars-data/usr/share/kstars)\n"
        "  --out FOLDER      the data folder to write (default: the program's data folder)\n"
        "  --constellations  build the constellation files instead (star/Tycho2/ConstFig.dat,\n"
        "                    data/conname.dat, data/constnam.dat, data/conbound.dat)\n"
        "  --deepsky         build the deep-sky catalogue files (deepsky/*) from stellarium-data\n"
        "                    instead of the star files, and the SAC database when its file\n"
        "                    (SAC_DeepSky_Ver81_QCQ.TXT) lies in DIR/sac\n"
        "  --overlays        write the map overlays that come with the program (overlays/*.ovl:\n"
        "                    the Milky Way from kstars-data's milkyway.dat, the galactic equator)\n"
        "                    and the default list overlay.dat naming them, inactive\n"
        "\n"
        "With --minor, builds the default comet and asteroid catalogues (comet.cat, asteroid.cat)\n"
        "from kstars-data's asteroids.dat and cometels.json.gz.\n"
        "With --planets, builds the VSOP87 series (Data/VSOP87.idx, Data/VSOP87.dat) instead,\n"
        "from the unpacked npm package astronomia (the folder holding data/vsop87D*.js);\n"
        "--moon-block FILE also writes the lunar series block from its ELP/MPP02 series\n"
        "(the program's src/solarsystem/moondata.bin).\n"
        "\n"
        "With --ephem96, fits the compact ephemeris Data/Ephem96.dat to the data folder's VSOP87\n"
        "files (every term) and the built-in Pluto series, and fails when the fit departs from\n"
        "them by more than 0.05 arcsec; --earth-offset FILE writes the program's table of the\n"
        "Earth-Moon barycentre's offset from the Earth (src/solarsystem/earthoffset_terms.inc).\n"
        "\n"
        "With --eclipses, computes every solar and lunar eclipse of -1999 ... +3000 and writes\n"
        "the tables data/solar1-5.dat and data/lunar1-5.dat (needs the VSOP87 files).\n",
        to);
}

}  // namespace

int main(int argc, char** argv)
{
    namespace fs = std::filesystem;
    std::string sources = "data-sources";
    orv::databuild::BuildOptions options;
    bool constellations = false;
    bool deepSky = false;
    bool minor = false;
    bool overlays = false;
    std::string astronomiaDir;
    std::string moonBlock;
    bool ephem96 = false;
    std::string earthOffset;
    bool eclipses = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        auto value = [&](std::string& into) {
            if (i + 1 >= argc) {
                std::fprintf(stderr, "orvane-databuild: %s needs a value\n", arg.c_str());
                std::exit(2);
            }
            into = argv[++i];
        };
        if (arg == "--sources") value(sources);
        else if (arg == "--tycho2") value(options.tycho2Dir);
        else if (arg == "--stellarium") value(options.stellariumDir);
        else if (arg == "--kstars") value(options.kstarsDir);
        else if (arg == "--out") value(options.outputDir);
        else if (arg == "--constellations") constellations = true;
        else if (arg == "--deepsky") deepSky = true;
        else if (arg == "--minor") minor = true;
        else if (arg == "--overlays") overlays = true;
        else if (arg == "--planets") value(astronomiaDir);
        else if (arg == "--moon-block") value(moonBlock);
        else if (arg == "--ephem96") ephem96 = true;
        else if (arg == "--earth-offset") value(earthOffset);
        else if (arg == "--eclipses") eclipses = true;
        else if (arg == "--help" || arg == "-h") {
            Usage(stdout);
            return 0;
        } else {
            std::fprintf(stderr, "orvane-databuild: unknown argument %s\n", arg.c_str());
            Usage(stderr);
            return 2;
        }
    }
    if (options.outputDir.empty()) options.outputDir = orv::GetDataPath();
    const auto start = std::chrono::steady_clock::now();
    const auto progress = [&](const std::string& line) {
        const double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        std::printf("[%6.1f s] %s\n", s, line.c_str());
        std::fflush(stdout);
    };
    if (!earthOffset.empty() || ephem96) {
        std::string error;
        const bool ok = !earthOffset.empty() ? orv::databuild::RunEarthOffsetBuild(earthOffset, progress, error)
                                             : orv::databuild::RunEphem96Build(options.outputDir, progress, error);
        if (!ok) {
            std::fprintf(stderr, "orvane-databuild: %s\n", error.c_str());
            return 1;
        }
        std::printf("orvane-databuild: done\n");
        return 0;
    }
    if (eclipses) {
        std::string error;
        if (!orv::databuild::RunEclipseBuild(options.outputDir, progress, error)) {
            std::fprintf(stderr, "orvane-databuild: %s\n", error.c_str());
            return 1;
        }
        std::printf("orvane-databuild: done\n");
        return 0;
    }
    if (!astronomiaDir.empty()) {
        std::string error;
        if (!orv::databuild::RunPlanetBuild({astronomiaDir, options.outputDir, moonBlock}, progress, error)) {
            std::fprintf(stderr, "orvane-databuild: %s\n", error.c_str());
            return 1;
        }
        std::printf("orvane-databuild: done\n");
        return 0;
    }
    if (options.tycho2Dir.empty()) options.tycho2Dir = (fs::path(sources) / "tycho2").string();
    if (options.stellariumDir.empty())
        options.stellariumDir = (fs::path(sources) / "stellarium-data" / "usr" / "share" / "stellarium").string();
    if (options.kstarsDir.empty())
        options.kstarsDir = (fs::path(sources) / "kstars-data" / "usr" / "share" / "kstars").string();
    if (constellations) {
        std::string error;
        if (!orv::databuild::RunConstellationBuild(options.stellariumDir, options.kstarsDir, options.outputDir,
                                                   progress, error)) {
            std::fprintf(stderr, "orvane-databuild: %s\n", error.c_str());
            return 1;
        }
        std::printf("orvane-databuild: done\n");
        return 0;
    }
    if (minor) {
        std::string error;
        orv::databuild::MinorBuildCounts counts;
        if (!orv::databuild::RunMinorBuild({options.kstarsDir, options.outputDir}, progress, counts, error)) {
            std::fprintf(stderr, "orvane-databuild: %s\n", error.c_str());
            return 1;
        }
        std::printf("orvane-databuild: comet and asteroid catalogues done (%d asteroids, %d comets; %d and %d "
                    "entries refused)\n",
                    counts.asteroids, counts.comets, counts.asteroidsRefused, counts.cometsRefused);
        return 0;
    }
    if (overlays) {
        std::string error;
        if (!orv::databuild::RunOverlayBuild(options.kstarsDir, options.outputDir, progress, error)) {
            std::fprintf(stderr, "orvane-databuild: %s\n", error.c_str());
            return 1;
        }
        std::printf("orvane-databuild: overlays done\n");
        return 0;
    }
    if (deepSky) {
        std::string error;
        const std::string sacFile = orv::databuild::FindSacFile((fs::path(sources) / "sac").string());
        if (!orv::databuild::RunDeepSkyBuild({options.stellariumDir, options.outputDir, sacFile}, progress, error)) {
            std::fprintf(stderr, "orvane-databuild: %s\n", error.c_str());
            return 1;
        }
        std::printf("orvane-databuild: deep-sky files done\n");
        return 0;
    }
    if (!fs::is_directory(options.tycho2Dir)) {
        std::fprintf(stderr,
                     "orvane-databuild: no Tycho-2 folder at %s\n"
                     "(run tools/fetch-sources.sh first, or give --sources/--tycho2)\n",
                     options.tycho2Dir.c_str());
        return 1;
    }

    std::printf("orvane-databuild: writing into %s\n", options.outputDir.c_str());
    std::string error;
    const bool ok = orv::databuild::RunBuild(options, progress, error);
    if (!ok) {
        std::fprintf(stderr, "orvane-databuild: %s\n", error.c_str());
        std::fprintf(stderr, "orvane-databuild: nothing was replaced after this point; existing files are intact\n");
        return 1;
    }
    std::printf("orvane-databuild: done\n");
    return 0;
}
