#include "sources/kstarsreader.h"

#include <cmath>
#include <filesystem>

#include "common/linereader.h"
#include "common/sky.h"
#include "common/textfields.h"

namespace orv::databuild {

namespace fs = std::filesystem;

bool ParseKStarsStarLine(std::string_view line, KStarsStar& out, std::string& error)
{
    // Columns: 1-9 α (hhmmss.ss), 11-19 δ (±ddmmss.s), 21-29 and 30-38 proper
    // motions, 39-45 parallax, 47-51 V, 52-56 B−V, 57-58 spectral type.
    out = KStarsStar{};
    if (line.size() < 58) return Fail(error, "line shorter than the 58 columns of place, magnitudes and type");
    if (line[9] != ' ' || line[19] != ' ' || line[45] != ' ') return Fail(error, "columns out of place");
    std::int64_t h = 0, m = 0, d = 0, dm = 0;
    double sec = 0.0, dsec = 0.0;
    if (ParseInteger(Columns(line, 1, 2), h) != FieldState::Ok || ParseInteger(Columns(line, 3, 4), m) != FieldState::Ok ||
        ParseNumber(Columns(line, 5, 9), sec) != FieldState::Ok)
        return Fail(error, "malformed right ascension");
    const char sign = line[10];
    if ((sign != '+' && sign != '-') || ParseInteger(Columns(line, 12, 13), d) != FieldState::Ok ||
        ParseInteger(Columns(line, 14, 15), dm) != FieldState::Ok ||
        ParseNumber(Columns(line, 16, 19), dsec) != FieldState::Ok)
        return Fail(error, "malformed declination");
    const std::int64_t secCenti = std::llround(sec * 100.0);
    const std::int64_t dsecDeci = std::llround(dsec * 10.0);
    // Seconds of exactly 60.00 (and 60.0″) occur: values just below a minute
    // rounded up when the file was written. They carry into the minute.
    if (h < 0 || h > 23 || m < 0 || m > 59 || secCenti < 0 || secCenti > 6000)
        return Fail(error, "right ascension outside 0h..24h");
    if (d < 0 || dm < 0 || dm > 59 || dsecDeci < 0 || dsecDeci > 600) return Fail(error, "malformed declination");
    // 0.01 s of time = 150 mas; 0.1″ = 100 mas.
    const std::int64_t raMas = (((h * 60 + m) * 6000 + secCenti) * 150) % kFullCircleMas;
    const std::int64_t decMas = ((d * 60 + dm) * 600 + dsecDeci) * 100 * (sign == '-' ? -1 : 1);
    if (decMas < -324000000 || decMas > 324000000) return Fail(error, "declination beyond the pole");

    double v = 0.0, bv = 0.0;
    if (ParseNumber(Columns(line, 47, 51), v) != FieldState::Ok || v < -2.0 || v > 20.0)
        return Fail(error, "malformed V magnitude");
    if (ParseNumber(Columns(line, 52, 56), bv) != FieldState::Ok || bv < -1.0 || bv > 7.0)
        return Fail(error, "malformed B-V colour");
    out.raMas = static_cast<std::int32_t>(raMas);
    out.decMas = static_cast<std::int32_t>(decMas);
    out.magCenti = ToCenti(v);
    out.bvCenti = ToCenti(bv);
    out.entry = Columns(line, 57, 58).find('?') == std::string_view::npos ? KStarsEntry::Hipparcos
                                                                            : KStarsEntry::Tycho1;
    return true;
}

bool ReadKStarsStars(const std::string& dir, std::vector<KStarsStar>& out, const Progress& progress,
                     std::string& error)
{
    const fs::path path = fs::path(dir) / "stars.dat";
    if (dir.empty() || !fs::exists(path)) return Fail(error, "missing source " + path.string());
    progress("reading Hipparcos V and B-V (" + path.string() + ")");
    std::size_t tycho1 = 0;
    if (!ReadLines(path.string(),
                   [&](std::string_view line, std::size_t, std::string& why) {
                       if (IsComment(line)) return true;
                       KStarsStar s;
                       if (!ParseKStarsStarLine(line, s, why)) return false;
                       if (s.entry == KStarsEntry::Hipparcos) out.push_back(s);
                       else ++tycho1;
                       return true;
                   },
                   error))
        return false;
    if (out.empty()) return Fail(error, path.string() + " holds no Hipparcos stars");
    progress("  " + std::to_string(out.size()) + " Hipparcos stars; " + std::to_string(tycho1) +
             " Tycho-1 stars left out (Tycho photometry)");
    return true;
}

}  // namespace orv::databuild
