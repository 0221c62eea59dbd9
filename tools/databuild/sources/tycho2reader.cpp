#include "sources/tycho2reader.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "common/linereader.h"
#include "common/sky.h"
#include "common/textfields.h"

namespace orv::databuild {

namespace fs = std::filesystem;
using namespace orv::tycho2;

namespace {

bool ParseTyc(std::string_view line, BuildStar& star, int maxTyc3, std::string& error)
{
    std::int64_t t1 = 0, t2 = 0, t3 = 0;
    if (ParseInteger(Columns(line, 1, 4), t1) != FieldState::Ok ||
        ParseInteger(Columns(line, 6, 10), t2) != FieldState::Ok ||
        ParseInteger(Columns(line, 12, 12), t3) != FieldState::Ok)
        return Fail(error, "malformed TYC identifier");
    if (t1 < 1 || t1 > kRegionCount) return Fail(error, "TYC1 outside 1..9537");
    if (t2 < 1 || t2 > 65535) return Fail(error, "TYC2 outside 1..65535");
    if (t3 < 1 || t3 > maxTyc3) return Fail(error, "TYC3 outside 1.." + std::to_string(maxTyc3));
    star.tyc1 = static_cast<std::int16_t>(t1);
    star.tyc2 = static_cast<std::uint16_t>(t2);
    star.tyc3 = static_cast<std::uint8_t>(t3);
    star.flags = static_cast<std::uint16_t>(t3);
    return true;
}

bool ParseHip(std::string_view hipField, std::string_view ccdmField, BuildStar& star, std::string& error)
{
    std::int64_t hip = 0;
    switch (ParseInteger(hipField, hip)) {
    case FieldState::Bad: return Fail(error, "malformed HIP number");
    case FieldState::Blank: star.hip = 0; return true;
    case FieldState::Ok: break;
    }
    if (hip < 1 || hip > 120404) return Fail(error, "HIP number outside 1..120404");
    star.hip = static_cast<std::uint32_t>(hip);
    const std::string_view ccdm = Trim(ccdmField);
    std::memset(star.ccdm, 0, sizeof star.ccdm);
    // An empty field may have no storage at all (a line cut short).
    if (!ccdm.empty()) std::memcpy(star.ccdm, ccdm.data(), std::min<std::size_t>(ccdm.size(), 3));
    return true;
}

bool CheckPosition(double raDeg, double decDeg, std::string& error)
{
    if (raDeg < 0.0 || raDeg >= 360.0) return Fail(error, "right ascension outside [0, 360)");
    if (decDeg < -90.0 || decDeg > 90.0) return Fail(error, "declination outside [-90, 90]");
    return true;
}

}  // namespace

// ----- Photometry -----------------------------------------------------------------

std::optional<Photometry> TychoToJohnson(std::optional<double> btMag, std::optional<double> vtMag)
{
    Photometry p;
    if (btMag && vtMag) {
        const double diff = *btMag - *vtMag;
        p.magCenti = ToCenti(*vtMag - 0.090 * diff);
        p.bvMilli = static_cast<std::int16_t>(std::lround(0.850 * diff * 1000.0));
        p.basis = origin::kMagFromBtVt;
        return p;
    }
    if (vtMag) {
        p.magCenti = ToCenti(*vtMag);
        p.basis = origin::kMagVtOnly;
        return p;
    }
    if (btMag) {
        p.magCenti = ToCenti(*btMag);
        p.basis = origin::kMagBtOnly;
        return p;
    }
    return std::nullopt;
}

// ----- Line parsers -----------------------------------------------------------------

bool ParseMainLine(std::string_view line, BuildStar& star, std::string& error)
{
    star = BuildStar{};
    if (line.size() < 201) return Fail(error, "line shorter than the 206 columns of tyc2.dat");
    if (!ParseTyc(line, star, 3, error)) return false;

    const char pflag = line[13];
    if (pflag != ' ' && pflag != 'P' && pflag != 'X') return Fail(error, "unknown mean position flag");
    bool bad = false;
    double raDeg = 0.0, decDeg = 0.0, pmRa = 0.0, pmDec = 0.0;
    if (pflag == 'X') {
        // No mean position: the observed Tycho-2 place (epoch ~J1991) with no motion.
        const auto ra = OptionalNumber(Columns(line, 153, 164), bad);
        const auto dec = OptionalNumber(Columns(line, 166, 177), bad);
        if (bad || !ra || !dec) return Fail(error, "malformed observed position");
        raDeg = *ra;
        decDeg = *dec;
        star.origin |= origin::kObservedPosition;
        const auto epRa = OptionalNumber(Columns(line, 179, 182), bad);
        const auto epDec = OptionalNumber(Columns(line, 184, 187), bad);
        if (bad || !epRa || !epDec) return Fail(error, "malformed epoch of the observed position");
        star.observedEpochRaYr = static_cast<float>(1990.0 + *epRa);
        star.observedEpochDecYr = static_cast<float>(1990.0 + *epDec);
    } else {
        const auto ra = OptionalNumber(Columns(line, 16, 27), bad);
        const auto dec = OptionalNumber(Columns(line, 29, 40), bad);
        const auto pa = OptionalNumber(Columns(line, 42, 48), bad);
        const auto pd = OptionalNumber(Columns(line, 50, 56), bad);
        if (bad || !ra || !dec || !pa || !pd) return Fail(error, "malformed mean position or proper motion");
        raDeg = *ra;
        decDeg = *dec;
        pmRa = *pa;
        pmDec = *pd;
        if (pflag == 'P') star.origin |= origin::kPhotocentre;
    }
    if (!CheckPosition(raDeg, decDeg, error)) return false;
    if (std::fabs(pmRa) > 20000.0 || std::fabs(pmDec) > 20000.0) return Fail(error, "proper motion beyond 20″/yr");

    const auto bt = OptionalNumber(Columns(line, 111, 116), bad);
    const auto vt = OptionalNumber(Columns(line, 124, 129), bad);
    if (bad) return Fail(error, "malformed BT or VT magnitude");
    if ((bt && (*bt < -2.0 || *bt > 20.0)) || (vt && (*vt < -2.0 || *vt > 20.0)))
        return Fail(error, "magnitude outside -2..20");
    const auto phot = TychoToJohnson(bt, vt);
    if (!phot) return Fail(error, "neither BT nor VT given");
    if (line[140] == 'T') star.origin |= origin::kTycho1Star;
    if (!ParseHip(Columns(line, 143, 148), Columns(line, 149, 151), star, error)) return false;

    star.raMas = RaDegToMas(raDeg);
    star.decMas = DegToMas(decDeg);
    star.pmRaMasPerYr = CoordinateRate(pmRa, decDeg);
    star.pmDecMasPerYr = static_cast<float>(pmDec);
    star.magCenti = phot->magCenti;
    star.bvMilli = phot->bvMilli;
    star.origin |= static_cast<std::uint16_t>(phot->basis << origin::kMagBasisShift);
    star.origin |= origin::kSourceMain;
    return true;
}

bool ParseSupplementLine(std::string_view line, BuildStar& star, std::string& error)
{
    star = BuildStar{};
    if (line.size() < 108) return Fail(error, "line shorter than the columns of suppl_1.dat");
    if (!ParseTyc(line, star, 4, error)) return false;
    const char source = line[13];
    if (source != 'H' && source != 'T') return Fail(error, "unknown data source flag (expected H or T)");

    bool bad = false;
    const auto ra = OptionalNumber(Columns(line, 16, 27), bad);
    const auto dec = OptionalNumber(Columns(line, 29, 40), bad);
    const auto pa = OptionalNumber(Columns(line, 42, 48), bad);
    const auto pd = OptionalNumber(Columns(line, 50, 56), bad);
    if (bad || !ra || !dec) return Fail(error, "malformed position or proper motion");
    if (pa.has_value() != pd.has_value()) return Fail(error, "only one proper motion component given");
    double raDeg = *ra, decDeg = *dec;
    if (!CheckPosition(raDeg, decDeg, error)) return false;
    if (pa) {
        if (std::fabs(*pa) > 20000.0 || std::fabs(*pd) > 20000.0)
            return Fail(error, "proper motion beyond 20″/yr");
        // Supplement positions are at epoch J1991.25: carry them to J2000.0.
        MoveAlongProperMotion(raDeg, decDeg, *pa, *pd, 2000.0 - 1991.25);
        star.pmRaMasPerYr = CoordinateRate(*pa, decDeg);
        star.pmDecMasPerYr = static_cast<float>(*pd);
    }

    const char mflag = line[81];
    const auto bt = OptionalNumber(Columns(line, 84, 89), bad);
    const auto vtOrHp = OptionalNumber(Columns(line, 97, 102), bad);
    if (bad) return Fail(error, "malformed BT or VT magnitude");
    std::optional<Photometry> phot;
    if (mflag == 'H') {
        if (!vtOrHp) return Fail(error, "Hp magnitude flagged but not given");
        phot = Photometry{ToCenti(*vtOrHp), kNoColour, origin::kMagHp};
    } else if (mflag == ' ' || mflag == 'B' || mflag == 'V') {
        phot = TychoToJohnson(bt, vtOrHp);
    } else {
        return Fail(error, "unknown magnitude flag");
    }
    if (!phot) return Fail(error, "no magnitude given");
    if (phot->magCenti < -200 || phot->magCenti > 2000) return Fail(error, "magnitude outside -2..20");
    if (line.size() >= 114 && line[113] == 'T') star.origin |= origin::kTycho1Star;
    if (!ParseHip(Columns(line, 116, 121), Columns(line, 122, 122), star, error)) return false;

    star.raMas = RaDegToMas(raDeg);
    star.decMas = DegToMas(decDeg);
    star.magCenti = phot->magCenti;
    star.bvMilli = phot->bvMilli;
    star.origin |= static_cast<std::uint16_t>(phot->basis << origin::kMagBasisShift);
    star.origin |= source == 'H' ? origin::kSourceSupplHip : origin::kSourceSupplTyc;
    return true;
}

bool ParseIndexLine(std::string_view line, IndexLine& out, std::string& error)
{
    std::int64_t rec = 0, sup = 0;
    if (ParseInteger(Columns(line, 1, 7), rec) != FieldState::Ok ||
        ParseInteger(Columns(line, 9, 14), sup) != FieldState::Ok || rec < 1 || sup < 1)
        return Fail(error, "malformed record numbers");
    double v[4];
    const std::size_t cols[4][2] = {{16, 21}, {23, 28}, {30, 35}, {37, 42}};
    for (int i = 0; i < 4; ++i)
        if (ParseNumber(Columns(line, cols[i][0], cols[i][1]), v[i]) != FieldState::Ok)
            return Fail(error, "malformed region bounds");
    out.firstMainRecord = rec;
    out.firstSupplRecord = sup;
    out.raMinCentiDeg = static_cast<std::int32_t>(std::lround(v[0] * 100.0));
    out.raMaxCentiDeg = static_cast<std::int32_t>(std::lround(v[1] * 100.0));
    out.decMinCentiDeg = static_cast<std::int32_t>(std::lround(v[2] * 100.0));
    out.decMaxCentiDeg = static_cast<std::int32_t>(std::lround(v[3] * 100.0));
    return true;
}

namespace {

// Region number `region` (1-based) holds the records [first[r-1], first[r])
// (1-based record numbers) of a catalogue file.
bool CheckRegionOrder(const std::vector<IndexLine>& index, bool main, std::size_t record, int region,
                      std::string& why)
{
    const auto first = [&](int r) { return main ? index[r].firstMainRecord : index[r].firstSupplRecord; };
    const auto rec = static_cast<std::int64_t>(record);
    if (rec < first(region - 1) || rec >= first(region)) {
        why = "star of region " + std::to_string(region) + " outside that region's records in index.dat";
        return false;
    }
    return true;
}

bool ReadIndex(const fs::path& path, std::vector<IndexLine>& index, const Progress& progress, std::string& error)
{
    progress("reading " + path.string());
    if (!ReadLines(path.string(),
                   [&](std::string_view line, std::size_t, std::string& why) {
                       if (IsBlank(line)) return true;
                       IndexLine l;
                       if (!ParseIndexLine(line, l, why)) return false;
                       index.push_back(l);
                       return true;
                   },
                   error))
        return false;
    if (index.size() != static_cast<std::size_t>(kRegionCount) + 1)
        return Fail(error, "index.dat has " + std::to_string(index.size()) + " lines, expected 9538");
    for (std::size_t r = 1; r < index.size(); ++r)
        if (index[r].firstMainRecord < index[r - 1].firstMainRecord ||
            index[r].firstSupplRecord < index[r - 1].firstSupplRecord)
            return Fail(error, "index.dat: record numbers decrease at line " + std::to_string(r + 1));
    return true;
}

// The main catalogue as CDS distributes it (tyc2.dat.00 to tyc2.dat.19) or
// joined into one file; nothing when neither is complete.
std::vector<fs::path> MainCatalogueParts(const fs::path& dir)
{
    std::vector<fs::path> parts;
    for (int i = 0; i < 20; ++i) {
        char name[16];
        std::snprintf(name, sizeof name, "tyc2.dat.%02d", i);
        if (fs::exists(dir / name)) parts.push_back(dir / name);
    }
    if (parts.empty() && fs::exists(dir / "tyc2.dat")) parts.push_back(dir / "tyc2.dat");
    if (parts.size() != 1 && parts.size() != 20) parts.clear();
    return parts;
}

}  // namespace

bool ReadTycho2(const std::string& dir, Tycho2Source& out, const Progress& progress, std::string& error)
{
    const fs::path t2 = dir;
    std::vector<IndexLine>& index = out.index;
    index.clear();
    if (!ReadIndex(t2 / "index.dat", index, progress, error)) return false;

    const std::vector<fs::path> parts = MainCatalogueParts(t2);
    if (parts.empty())
        return Fail(error, "the Tycho-2 main catalogue in " + t2.string() +
                               " is incomplete: expected tyc2.dat.00 to tyc2.dat.19 (or tyc2.dat)");

    const std::size_t expectedMain = static_cast<std::size_t>(index.back().firstMainRecord - 1);
    const std::size_t expectedSuppl = static_cast<std::size_t>(index.back().firstSupplRecord - 1);
    std::vector<BuildStar>& stars = out.stars;
    stars.clear();
    stars.reserve(expectedMain + expectedSuppl);
    std::size_t record = 0;
    // One file of the main catalogue or of supplement 1: each record parsed
    // and checked against the region index's ranges.
    auto readStars = [&](const fs::path& file, bool main) {
        return ReadLines(
            file.string(),
            [&](std::string_view line, std::size_t, std::string& why) {
                if (IsBlank(line)) return true;
                BuildStar s;
                if (!(main ? ParseMainLine(line, s, why) : ParseSupplementLine(line, s, why))) return false;
                ++record;
                if (!CheckRegionOrder(index, main, record, s.tyc1, why)) return false;
                stars.push_back(s);
                return true;
            },
            error);
    };
    for (std::size_t p = 0; p < parts.size(); ++p) {
        progress("reading " + parts[p].filename().string() + " (" + std::to_string(p + 1) + "/" +
                 std::to_string(parts.size()) + ")");
        if (!readStars(parts[p], true)) return false;
    }
    if (record != expectedMain)
        return Fail(error, "the main catalogue has " + std::to_string(record) + " records, index.dat expects " +
                               std::to_string(expectedMain) + " (damaged or truncated file?)");

    progress("reading suppl_1.dat");
    record = 0;
    if (!readStars(t2 / "suppl_1.dat", false)) return false;
    if (record != expectedSuppl)
        return Fail(error, "suppl_1.dat has " + std::to_string(record) + " records, index.dat expects " +
                               std::to_string(expectedSuppl));

    // Supplement 1 repeats the identifier of a Tycho-2 entry for some
    // Hipparcos components (the B star of a pair whose A star is in the main
    // catalogue). Both are real stars and both are kept; they are counted
    // here because a look-up by Tycho identifier can name only one of them.
    {
        std::vector<std::int64_t> ids;
        ids.reserve(stars.size());
        for (const auto& s : stars) ids.push_back(s.TychoId());
        std::sort(ids.begin(), ids.end());
        std::size_t shared = 0;
        for (std::size_t i = 1; i < ids.size(); ++i) shared += ids[i] == ids[i - 1];
        if (shared > 0)
            progress("  supplement stars sharing the identifier of a main-catalogue star: " + std::to_string(shared));
    }
    return true;
}

}  // namespace orv::databuild
