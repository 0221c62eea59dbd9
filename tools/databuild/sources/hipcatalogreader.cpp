#include "sources/hipcatalogreader.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "common/textfields.h"
#include "util/binaryio.h"

namespace orv::databuild {

namespace fs = std::filesystem;

namespace {

bool ReadStellariumStars(const std::string& path, std::unordered_map<std::uint32_t, float>& parallaxMas,
                         std::unordered_map<std::uint32_t, std::int16_t>& bvMilli, std::size_t& count,
                         std::string& error)
{
    // The catalogue files of stellarium-data: a 32-byte header (magic
    // 0x835f040a, data type, version major and minor, level, magnitude
    // minimum, range and steps), the star count of each of the 20 × 4^level
    // zones, then the records. Data type 0 holds Hipparcos stars in 28-byte
    // records: HIP number (24 bits) and component byte, two position
    // components, B−V index (0..127 for −0.5..+3.5), magnitude step, spectral
    // index, two proper-motion components and the parallax in 0.01 mas. Only
    // the HIP number, the colour and the parallax are taken.
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (f == nullptr) return Fail(error, "cannot open " + path);
    std::vector<std::uint8_t> bytes;
    std::uint8_t chunk[65536];
    std::size_t got = 0;
    while ((got = std::fread(chunk, 1, sizeof chunk, f)) > 0) bytes.insert(bytes.end(), chunk, chunk + got);
    std::fclose(f);
    if (bytes.size() < 32) return Fail(error, path + ": too short for a star catalogue header");
    const auto magic = LoadLE<std::uint32_t>(bytes.data());
    const auto type = LoadLE<std::int32_t>(bytes.data() + 4);
    const auto level = LoadLE<std::int32_t>(bytes.data() + 16);
    if (magic != 0x835f040au) return Fail(error, path + ": not a stellarium star catalogue (bad magic number)");
    if (type != 0) {
        count = 0;
        return true;  // no Hipparcos stars in this file
    }
    if (level < 0 || level > 6) return Fail(error, path + ": implausible level");
    const std::size_t zones = static_cast<std::size_t>(20) << (2 * level);
    const std::size_t tableEnd = 32 + zones * 4;
    if (bytes.size() < tableEnd) return Fail(error, path + ": zone table cut short");
    std::size_t total = 0;
    for (std::size_t z = 0; z < zones; ++z) total += LoadLE<std::uint32_t>(bytes.data() + 32 + z * 4);
    if (tableEnd + total * 28 != bytes.size())
        return Fail(error, path + ": the record count does not match the file size");
    count = 0;
    for (std::size_t i = 0; i < total; ++i) {
        const std::uint8_t* r = bytes.data() + tableEnd + i * 28;
        const std::uint32_t h = LoadLE<std::uint32_t>(r) & 0x00FFFFFFu;
        if (h == 0) continue;
        const std::uint8_t bvIndex = r[12];
        const std::int32_t plx = LoadLE<std::int32_t>(r + 24);
        parallaxMas[h] = static_cast<float>(plx * 0.01);
        if (bvIndex <= 127)
            bvMilli[h] = static_cast<std::int16_t>(std::lround((bvIndex * (4.0 / 127.0) - 0.5) * 1000.0));
        ++count;
    }
    return true;
}

}  // namespace

bool ReadHipparcosCatalogues(const std::string& starsDir, std::unordered_map<std::uint32_t, float>& parallaxMas,
                             std::unordered_map<std::uint32_t, std::int16_t>& bvMilli, const Progress& progress,
                             std::string& error)
{
    const fs::path stars = starsDir;
    std::size_t catalogues = 0;
    std::vector<fs::path> files;
    for (const auto& e : fs::directory_iterator(stars)) {
        const std::string n = e.path().filename().string();
        // stars_<level>_<type>v<version>.cat; the other stars_*.cat files are
        // spectral and component tables.
        if (n.size() > 7 && n.rfind("stars_", 0) == 0 && n[6] >= '0' && n[6] <= '9' && e.path().extension() == ".cat")
            files.push_back(e.path());
    }
    std::sort(files.begin(), files.end());
    for (const auto& p : files) {
        std::size_t n = 0;
        if (!ReadStellariumStars(p.string(), parallaxMas, bvMilli, n, error)) return false;
        if (n > 0) {
            ++catalogues;
            progress("  " + std::to_string(n) + " Hipparcos parallaxes from " + p.filename().string());
        }
    }
    if (catalogues == 0) return Fail(error, "no Hipparcos star catalogue (stars_0_*.cat) in " + stars.string());
    return true;
}

}  // namespace orv::databuild
