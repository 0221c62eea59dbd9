#include "catalogbuild.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <numbers>
#include <unordered_set>

#include "app/strings.h"
#include "util/atomicfile.h"
#include "util/binaryio.h"
#include "util/sortedindex.h"

namespace orv::databuild {

namespace fs = std::filesystem;
using namespace orv::tycho2;

namespace {

constexpr double kMasPerDeg = 3600000.0;
constexpr std::int64_t kFullCircleMas = 1296000000;
constexpr std::int32_t kFullCircleCentiDeg = 36000;
constexpr double kDegToRad = std::numbers::pi / 180.0;

// ----- Fixed-column fields ---------------------------------------------------

// Columns `first`..`last` (1-based, inclusive, as the CDS ReadMe numbers them),
// clipped to the line.
std::string_view Columns(std::string_view line, std::size_t first, std::size_t last)
{
    if (first > line.size()) return {};
    const std::size_t count = std::min(last, line.size()) - (first - 1);
    return line.substr(first - 1, count);
}

std::string_view Trim(std::string_view s)
{
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
    return s;
}

enum class FieldState { Blank, Ok, Bad };

FieldState ParseNumber(std::string_view text, double& value)
{
    text = Trim(text);
    if (text.empty()) return FieldState::Blank;
    if (text.front() == '+') text.remove_prefix(1);
    const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || ptr != text.data() + text.size() || !std::isfinite(value)) return FieldState::Bad;
    return FieldState::Ok;
}

FieldState ParseInteger(std::string_view text, std::int64_t& value)
{
    text = Trim(text);
    if (text.empty()) return FieldState::Blank;
    if (text.front() == '+') text.remove_prefix(1);
    const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || ptr != text.data() + text.size()) return FieldState::Bad;
    return FieldState::Ok;
}

std::optional<double> OptionalNumber(std::string_view text, bool& bad)
{
    double v = 0.0;
    switch (ParseNumber(text, v)) {
    case FieldState::Ok: return v;
    case FieldState::Bad: bad = true; return std::nullopt;
    case FieldState::Blank: return std::nullopt;
    }
    return std::nullopt;
}

bool Fail(std::string& error, std::string message)
{
    error = std::move(message);
    return false;
}

std::int32_t DegToMas(double deg) { return static_cast<std::int32_t>(std::llround(deg * kMasPerDeg)); }

std::int32_t RaDegToMas(double raDeg)
{
    std::int64_t mas = std::llround(raDeg * kMasPerDeg);
    mas %= kFullCircleMas;
    if (mas < 0) mas += kFullCircleMas;
    return static_cast<std::int32_t>(mas);
}

std::int16_t ToCenti(double mag) { return static_cast<std::int16_t>(std::lround(mag * 100.0)); }

// The proper motion in right ascension as a coordinate rate dα/dt = μα* / cos δ.
// At the pole itself the rate is undefined; such a star (none exists in
// Tycho-2) is given no motion in right ascension.
float CoordinateRate(double pmRaStarMasPerYr, double decDeg)
{
    const double c = std::cos(decDeg * kDegToRad);
    if (c < 1e-9) return 0.0f;
    return static_cast<float>(pmRaStarMasPerYr / c);
}

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
    std::memcpy(star.ccdm, ccdm.data(), std::min<std::size_t>(ccdm.size(), 3));
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

// ----- Proper motion on the sphere ------------------------------------------------

void MoveAlongProperMotion(double& raDeg, double& decDeg, double pmRaStarMasPerYr, double pmDecMasPerYr,
                           double years)
{
    // Unit vector p and the tangential velocity v = μα* e_α + μδ e_δ (rad/yr);
    // the new direction is (p + v t) / |p + v t|. The error against the
    // exact straight-line space motion is of order (μ t)², below 0.01 mas for
    // every Hipparcos star over the 8.75 years this is used for.
    const double a = raDeg * kDegToRad;
    const double d = decDeg * kDegToRad;
    const double ca = std::cos(a), sa = std::sin(a), cd = std::cos(d), sd = std::sin(d);
    const double p[3] = {cd * ca, cd * sa, sd};
    const double eA[3] = {-sa, ca, 0.0};
    const double eD[3] = {-sd * ca, -sd * sa, cd};
    const double radPerMas = kDegToRad / kMasPerDeg;
    const double ma = pmRaStarMasPerYr * radPerMas * years;
    const double md = pmDecMasPerYr * radPerMas * years;
    double q[3];
    for (int i = 0; i < 3; ++i) q[i] = p[i] + ma * eA[i] + md * eD[i];
    const double n = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2]);
    double ra = std::atan2(q[1], q[0]) / kDegToRad;
    if (ra < 0.0) ra += 360.0;
    if (ra >= 360.0) ra -= 360.0;
    raDeg = ra;
    decDeg = std::asin(std::clamp(q[2] / n, -1.0, 1.0)) / kDegToRad;
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

std::size_t ApplyHipparcosMotion(std::vector<BuildStar>& stars, const HipData& hip)
{
    std::size_t count = 0;
    for (auto& s : stars) {
        if (!(s.origin & origin::kObservedPosition) || s.hip == 0) continue;
        const auto it = hip.properMotion.find(s.hip);
        if (it == hip.properMotion.end()) continue;
        const auto [pmRaStar, pmDec] = it->second;
        double raDeg = s.raMas / kMasPerDeg;
        double decDeg = s.decMas / kMasPerDeg;
        // The two coordinates were observed at slightly different epochs; the
        // mean epoch is used for the carry (they differ by under 0.3 yr, so
        // by under 0.3 × μ, a few mas for all but a handful of stars).
        const double epoch = 0.5 * (s.observedEpochRaYr + s.observedEpochDecYr);
        MoveAlongProperMotion(raDeg, decDeg, pmRaStar, pmDec, 2000.0 - epoch);
        s.raMas = RaDegToMas(raDeg);
        s.decMas = DegToMas(decDeg);
        s.pmRaMasPerYr = CoordinateRate(pmRaStar, decDeg);
        s.pmDecMasPerYr = pmDec;
        s.origin |= origin::kHipparcosMotion;
        ++count;
    }
    return count;
}

// ----- Hipparcos photometry ------------------------------------------------------

namespace {

// Selection of the Tycho-2 star that stands for a Hipparcos entry.
class CHipStars {
public:
    explicit CHipStars(const std::vector<BuildStar>& stars) : m_stars(stars)
    {
        for (std::size_t i = 0; i < stars.size(); ++i)
            if (stars[i].hip != 0) m_byHip[stars[i].hip].push_back(static_cast<std::uint32_t>(i));
    }

    // The record standing for HIP `hip` (component letter `component`, 0 for
    // the system as a whole), or −1. A component is matched to the Tycho-2
    // entry whose CCDM letters contain it; the system to the entry with no
    // letters or with "A"; ties go to the brightest.
    std::int64_t Find(std::uint32_t hip, char component) const
    {
        const auto it = m_byHip.find(hip);
        if (it == m_byHip.end()) return -1;
        std::int64_t best = -1;
        int bestRank = 3;
        for (const std::uint32_t rec : it->second) {
            const BuildStar& s = m_stars[rec];
            const std::string_view ccdm(s.ccdm, strnlen(s.ccdm, sizeof s.ccdm));
            int rank = 2;
            if (component != 0) {
                if (ccdm.size() == 1 && ccdm[0] == component) rank = 0;
                else if (ccdm.find(component) != std::string_view::npos) rank = 1;
            } else {
                if (ccdm.empty()) rank = 0;
                else if (ccdm.find('A') != std::string_view::npos) rank = 1;
            }
            if (rank < bestRank || (rank == bestRank && s.magCenti < m_stars[best].magCenti)) {
                best = rec;
                bestRank = rank;
            }
        }
        return best;
    }

    const std::vector<std::uint32_t>* All(std::uint32_t hip) const
    {
        const auto it = m_byHip.find(hip);
        return it == m_byHip.end() ? nullptr : &it->second;
    }

    std::size_t Count() const { return m_byHip.size(); }

private:
    const std::vector<BuildStar>& m_stars;
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> m_byHip;
};

// Angular distance between two J2000 places in mas, in arcseconds (haversine
// form: exact for the sub-arcsecond separations it is used for).
double SeparationArcsec(std::int32_t ra1Mas, std::int32_t dec1Mas, std::int32_t ra2Mas, std::int32_t dec2Mas)
{
    const double radPerMas = kDegToRad / kMasPerDeg;
    const double d1 = dec1Mas * radPerMas, d2 = dec2Mas * radPerMas;
    const double sdd = std::sin(0.5 * (d2 - d1));
    const double sda = std::sin(0.5 * (static_cast<double>(ra2Mas) - ra1Mas) * radPerMas);
    const double h = sdd * sdd + std::cos(d1) * std::cos(d2) * sda * sda;
    return 2.0 * std::asin(std::sqrt(std::clamp(h, 0.0, 1.0))) / kDegToRad * 3600.0;
}

// Relative flux of a magnitude in 0.01 mag.
double FluxOfCenti(std::int16_t magCenti) { return std::pow(10.0, -0.004 * magCenti); }

std::string DescribeSkipped(const BuildStar& s, const KStarsStar& line, double separationArcsec)
{
    char buf[160];
    std::snprintf(buf, sizeof buf, "HIP %u (TYC %d-%u-%u): V %.2f in Hipparcos, %.2f in Tycho-2, %.2f\" apart",
                  s.hip, s.tyc1, s.tyc2, s.tyc3, line.magCenti / 100.0, s.magCenti / 100.0, separationArcsec);
    return buf;
}

}  // namespace

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

void ApplyHipparcosPhotometry(std::vector<BuildStar>& stars, const std::vector<KStarsStar>& hipparcos,
                              PhotometryReport& report)
{
    report = PhotometryReport{};
    const CHipStars hipStars(stars);

    // Tycho-2 stars with a Hipparcos number, by declination: a line's
    // candidates lie in a strip of ±1″ of declination (about one star in
    // three strips), searched with the exact separation, which needs no care
    // at 0h or at the poles.
    std::vector<std::uint32_t> byDec;
    for (std::size_t i = 0; i < stars.size(); ++i)
        if (stars[i].hip != 0) byDec.push_back(static_cast<std::uint32_t>(i));
    std::sort(byDec.begin(), byDec.end(),
              [&](std::uint32_t a, std::uint32_t b) { return stars[a].decMas < stars[b].decMas; });
    const auto windowMas = static_cast<std::int32_t>(std::ceil(kHipMatchRadiusArcsec * 1000.0));

    // Line → Hipparcos number of the nearest Tycho-2 Hipparcos star.
    std::map<std::uint32_t, std::vector<std::size_t>> linesOf;
    for (std::size_t l = 0; l < hipparcos.size(); ++l) {
        const KStarsStar& line = hipparcos[l];
        if (line.entry != KStarsEntry::Hipparcos) continue;
        auto it = std::lower_bound(byDec.begin(), byDec.end(), line.decMas - windowMas,
                                   [&](std::uint32_t r, std::int32_t dec) { return stars[r].decMas < dec; });
        std::int64_t best = -1;
        double bestSep = kHipMatchRadiusArcsec;
        for (; it != byDec.end() && stars[*it].decMas <= line.decMas + windowMas; ++it) {
            const BuildStar& s = stars[*it];
            const double sep = SeparationArcsec(line.raMas, line.decMas, s.raMas, s.decMas);
            if (sep <= bestSep) {
                bestSep = sep;
                best = *it;
            }
        }
        if (best < 0) {
            ++report.noStarWithin;
            continue;
        }
        linesOf[stars[best].hip].push_back(l);
    }

    for (const auto& [hip, lines] : linesOf) {
        if (lines.size() > 1) {
            // Two Hipparcos entries claim one Tycho-2 star: neither is trusted.
            report.ambiguous += lines.size();
            continue;
        }
        const KStarsStar& line = hipparcos[lines.front()];
        const std::int64_t main = hipStars.Find(hip, 0);
        BuildStar& s = stars[static_cast<std::size_t>(main)];
        const double sep = SeparationArcsec(line.raMas, line.decMas, s.raMas, s.decMas);
        if (sep > kHipMatchRadiusArcsec) {
            ++report.offPosition;
            report.mismatches.push_back(DescribeSkipped(s, line, sep));
            continue;
        }
        double companions = 0.0;
        for (const std::uint32_t rec : *hipStars.All(hip))
            if (rec != main) companions += FluxOfCenti(stars[rec].magCenti);
        if (2.5 * std::log10(1.0 + companions / FluxOfCenti(s.magCenti)) > kCompanionLightLimitMag) {
            ++report.brightCompanions;
            continue;
        }
        if (std::abs(line.magCenti - s.magCenti) >= kHipMagnitudeLimitCenti) {
            ++report.magnitudeMismatch;
            report.mismatches.push_back(DescribeSkipped(s, line, sep));
            continue;
        }
        s.magCenti = line.magCenti;
        s.bvMilli = static_cast<std::int16_t>(line.bvCenti * 10);
        s.origin = static_cast<std::uint16_t>((s.origin | origin::kMagFromHipparcos) & ~origin::kColourFromHip);
        ++report.replaced;
    }
}

// ----- Assembly ---------------------------------------------------------------------

bool AssembleCatalogue(std::vector<BuildStar> stars, const std::vector<IndexLine>& index, Catalogue& out,
                       std::string& error)
{
    if (index.size() != static_cast<std::size_t>(kRegionCount) + 1)
        return Fail(error, "the region index must have 9538 lines, not " + std::to_string(index.size()));
    if (stars.size() > 0xFFFFFFFFu) return Fail(error, "too many stars");
    for (const auto& s : stars)
        if (s.tyc1 < 1 || s.tyc1 > kRegionCount) return Fail(error, "star with a region outside 1..9537");

    std::sort(stars.begin(), stars.end(), [](const BuildStar& a, const BuildStar& b) {
        if (a.tyc1 != b.tyc1) return a.tyc1 < b.tyc1;
        if (a.magCenti != b.magCenti) return a.magCenti < b.magCenti;
        if (a.tyc2 != b.tyc2) return a.tyc2 < b.tyc2;
        return a.tyc3 < b.tyc3;
    });

    out.regionStart.assign(kRegionCount + 1, 0);
    out.regionBrightest.assign(kRegionCount, INT16_MAX);
    out.regionBounds.resize(kRegionCount);
    std::vector<std::array<std::int32_t, 4>> centi(kRegionCount);  // raMin, raMax, decMin, decMax in 0.01°
    for (int r = 0; r < kRegionCount; ++r)
        centi[r] = {index[r].raMinCentiDeg, index[r].raMaxCentiDeg, index[r].decMinCentiDeg,
                    index[r].decMaxCentiDeg};
    std::vector<bool> widened(kRegionCount, false);

    std::size_t i = 0;
    for (int r = 0; r < kRegionCount; ++r) {
        out.regionStart[r] = static_cast<std::uint32_t>(i);
        if (i < stars.size() && stars[i].tyc1 == r + 1) out.regionBrightest[r] = stars[i].magCenti;
        auto& box = centi[r];
        for (; i < stars.size() && stars[i].tyc1 == r + 1; ++i) {
            // Position in 0.01° as an exact fraction of mas (1 unit = 36,000 mas).
            const std::int64_t raMas = stars[i].raMas;
            const std::int64_t decMas = stars[i].decMas;
            // The right ascension may sit on the far side of 0h from the box
            // (a box from −0.01° takes a star at 359.995°): use the turn
            // closest to the box.
            std::int64_t best = raMas;
            std::int64_t bestGap = INT64_MAX;
            for (const std::int64_t cand : {raMas, raMas - kFullCircleMas, raMas + kFullCircleMas}) {
                const std::int64_t lo = static_cast<std::int64_t>(box[0]) * 36000;
                const std::int64_t hi = static_cast<std::int64_t>(box[1]) * 36000;
                const std::int64_t gap = cand < lo ? lo - cand : (cand > hi ? cand - hi : 0);
                if (gap < bestGap) {
                    bestGap = gap;
                    best = cand;
                }
            }
            auto floorDiv = [](std::int64_t a, std::int64_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); };
            auto ceilDiv = [&](std::int64_t a, std::int64_t b) { return -floorDiv(-a, b); };
            const auto raLo = static_cast<std::int32_t>(floorDiv(best, 36000));
            const auto raHi = static_cast<std::int32_t>(ceilDiv(best, 36000));
            const auto decLo = static_cast<std::int32_t>(floorDiv(decMas, 36000));
            const auto decHi = static_cast<std::int32_t>(ceilDiv(decMas, 36000));
            if (raLo < box[0]) box[0] = raLo, widened[r] = true;
            if (raHi > box[1]) box[1] = raHi, widened[r] = true;
            if (decLo < box[2]) box[2] = decLo, widened[r] = true;
            if (decHi > box[3]) box[3] = decHi, widened[r] = true;
        }
        // 0.01° = 360 units of 0.1″.
        out.regionBounds[r] = RegionBounds{box[0] * 360, box[1] * 360, box[2] * 360, box[3] * 360};
    }
    out.regionStart[kRegionCount] = static_cast<std::uint32_t>(stars.size());
    out.widenedRegions = static_cast<int>(std::count(widened.begin(), widened.end(), true));
    out.stars = std::move(stars);
    return true;
}

// ----- stellarium-data lines --------------------------------------------------------

namespace {

// Splits `line` at `sep` into at most `maxParts` views (the last takes the rest).
std::size_t Split(std::string_view line, char sep, std::string_view* parts, std::size_t maxParts)
{
    std::size_t n = 0;
    while (n + 1 < maxParts) {
        const auto at = line.find(sep);
        if (at == std::string_view::npos) break;
        parts[n++] = line.substr(0, at);
        line.remove_prefix(at + 1);
    }
    parts[n++] = line;
    return n;
}

bool ParseUnsigned(std::string_view text, std::uint32_t& value)
{
    std::int64_t v = 0;
    if (ParseInteger(text, v) != FieldState::Ok || v < 0 || v > 0xFFFFFFFFll) return false;
    value = static_cast<std::uint32_t>(v);
    return true;
}

// The 24 Greek letters in UTF-8, in the order of the property file's index.
constexpr std::array<std::string_view, 24> kGreekUtf8 = {"α", "β", "γ", "δ", "ε", "ζ", "η", "θ",
                                                        "ι", "κ", "λ", "μ", "ν", "ξ", "ο", "π",
                                                        "ρ", "σ", "τ", "υ", "φ", "χ", "ψ", "ω"};

}  // namespace

bool ParseCrossIdLine(std::string_view line, CrossIdLine& out, std::string& error)
{
    std::string_view f[5];
    if (Split(line, '\t', f, 5) != 5) return Fail(error, "expected 5 tab-separated fields");
    out = CrossIdLine{};
    if (!ParseUnsigned(f[0], out.hip) || out.hip == 0) return Fail(error, "malformed HIP number");
    const auto comp = Trim(f[1]);
    if (comp.size() > 1) return Fail(error, "malformed component letter");
    out.component = comp.empty() ? 0 : comp[0];
    for (int k = 2; k < 5; ++k) {
        std::uint32_t v = 0;
        if (!Trim(f[k]).empty() && !ParseUnsigned(f[k], v)) return Fail(error, "malformed catalogue number");
        (k == 2 ? out.sao : k == 3 ? out.hd : out.hr) = v;
    }
    return true;
}

bool ParseBayerFlamsteed(std::string_view designation, StarProperty& property)
{
    const auto us = designation.rfind('_');
    if (us == std::string_view::npos) return false;
    const std::string_view head = designation.substr(0, us);
    const std::string_view abbrev = designation.substr(us + 1);
    // Three-letter abbreviations only; FindConstellation would also take
    // full names, which this file does not use.
    if (abbrev.size() != 3) return false;
    const int constellation = FindConstellation(abbrev);
    if (constellation < 0) return false;
    if (property.constellation != kNoConstellation && property.constellation != constellation) return false;

    if (!head.empty() && head[0] >= '0' && head[0] <= '9') {
        std::uint32_t n = 0;
        if (!ParseUnsigned(head, n) || n == 0 || n > 255) return false;
        if (property.flamsteed == 0) property.flamsteed = static_cast<std::uint8_t>(n);
        property.constellation = static_cast<std::uint8_t>(constellation);
        return true;
    }
    for (std::size_t g = 0; g < kGreekUtf8.size(); ++g) {
        if (head.substr(0, kGreekUtf8[g].size()) != kGreekUtf8[g]) continue;
        const std::string_view rest = head.substr(kGreekUtf8[g].size());
        std::uint32_t sup = 0;
        if (!rest.empty() && (!ParseUnsigned(rest, sup) || sup == 0 || sup > 255)) return false;
        if (property.greek == kNoGreekLetter) {
            property.greek = static_cast<std::uint8_t>(g);
            property.superscript = static_cast<std::uint8_t>(sup);
        }
        property.constellation = static_cast<std::uint8_t>(constellation);
        return true;
    }
    return false;  // Latin letters (Bayer's and Lacaille's) have no field in the property file
}

bool ParseGcvsLine(std::string_view line, VariableStar& out, std::string& error)
{
    std::string_view f[12];
    if (Split(line, '\t', f, 12) < 8) return Fail(error, "expected at least 8 tab-separated fields");
    out = VariableStar{};
    if (!ParseUnsigned(f[0], out.hip) || out.hip == 0) return Fail(error, "malformed HIP number");
    out.name = std::string(Trim(f[1]));
    out.type = std::string(Trim(f[2]));
    if (out.name.empty()) return Fail(error, "no designation");
    double maxMag = 0.0;
    if (ParseNumber(f[3], maxMag) == FieldState::Ok) out.maxMagCenti = ToCenti(maxMag);
    std::int64_t ampFlag = 0;
    if (ParseInteger(f[4], ampFlag) == FieldState::Bad) return Fail(error, "malformed amplitude flag");
    double min1 = 0.0;
    if (ParseNumber(f[5], min1) == FieldState::Ok) {
        if (ampFlag == 1) {
            // The faint end is given as an amplitude.
            if (out.maxMagCenti != gcvs::kNoMag) out.minMagCenti = ToCenti(maxMag + min1);
            out.minKind = gcvs::kMinFromAmplitude;
        } else {
            out.minMagCenti = ToCenti(min1);
            out.minKind = ampFlag == 2 ? gcvs::kMinIsLimit : gcvs::kMinIsMagnitude;
        }
    }
    out.band = std::string(Trim(f[7]));
    double period = 0.0;
    if (Split(line, '\t', f, 12) >= 10 && ParseNumber(f[9], period) == FieldState::Ok && period > 0.0)
        out.periodDays = static_cast<float>(period);
    return true;
}

bool ParseDiscovererDesignation(std::string_view text, DoubleDesignation& out)
{
    text = Trim(text);
    const auto us = text.rfind('_');
    if (us == std::string_view::npos || us == 0) return false;
    std::uint32_t n = 0;
    if (!ParseUnsigned(text.substr(us + 1), n)) return false;
    out.code = std::string(text.substr(0, us));
    std::replace(out.code.begin(), out.code.end(), '_', ' ');
    out.number = n;
    return true;
}

// ----- File images --------------------------------------------------------------------

namespace {

void PutKey(CByteWriter& w, std::int64_t key)
{
    w.U32(static_cast<std::uint32_t>(static_cast<std::uint64_t>(key) & 0xFFFFFFFFu));
    w.I32(static_cast<std::int32_t>(key >> 32));
}

void PutFixedText(CByteWriter& w, std::string_view text, std::size_t width)
{
    // Exactly `width` bytes, at least one of them a terminating zero.
    w.FixedText(text, width);
}

struct Pair64 {
    std::int64_t key;
    std::uint32_t value;
};

std::vector<std::uint8_t> CrossFile(std::vector<Pair64> entries)
{
    std::stable_sort(entries.begin(), entries.end(), [](const Pair64& a, const Pair64& b) { return a.key < b.key; });
    CByteWriter w;
    w.Data().reserve(entries.size() * kCrossEntrySize);
    for (const auto& e : entries) {
        PutKey(w, e.key);
        w.U32(e.value);
    }
    return std::move(w.Data());
}

// Keeps one entry per key: the first one inserted (callers insert in order of
// preference).
void InsertUnique(std::unordered_map<std::int64_t, std::uint32_t>& map, std::vector<Pair64>& list, std::int64_t key,
                  std::uint32_t value)
{
    if (map.emplace(key, value).second) list.push_back({key, value});
}

}  // namespace

void BuildFiles(Catalogue& cat, const HipData& hip, OutputFiles& out, CrossReport& report)
{
    auto& stars = cat.stars;
    const CHipStars hipStars(stars);
    report = CrossReport{};
    report.hipStars = hipStars.Count();
    std::unordered_set<std::uint32_t> unmatched;

    // Parallax of the system for every entry of a Hipparcos star; Hipparcos
    // colour for the main entry when Tycho gives none.
    for (auto& s : stars) {
        if (s.hip == 0) continue;
        if (const auto it = hip.parallaxMas.find(s.hip); it != hip.parallaxMas.end()) {
            s.parallaxMas = it->second;
            ++report.parallaxes;
        }
    }
    for (const auto& [h, bv] : hip.bvMilli) {
        const std::int64_t rec = hipStars.Find(h, 0);
        if (rec >= 0 && stars[rec].bvMilli == kNoColour) {
            stars[rec].bvMilli = bv;
            stars[rec].origin |= origin::kColourFromHip;
            ++report.hipColours;
        }
    }

    // Cross identifications. Number → star keeps the brightest star per
    // number; star → number keeps the first line of the list per star.
    std::vector<Pair64> hipTo, toHip, saoTo, toSao, hdTo, toHd, hrTo, toHr;
    std::unordered_map<std::int64_t, std::uint32_t> seenHipTo, seenSaoTo, seenHdTo, seenHrTo;
    std::unordered_map<std::int64_t, std::uint32_t> seenToSao, seenToHd, seenToHr;
    for (std::size_t i = 0; i < stars.size(); ++i)
        if (stars[i].hip != 0) toHip.push_back({stars[i].TychoId(), stars[i].hip});
    for (std::size_t i = 0; i < stars.size(); ++i) {
        if (stars[i].hip == 0 || seenHipTo.count(stars[i].hip)) continue;
        const std::int64_t rec = hipStars.Find(stars[i].hip, 0);
        InsertUnique(seenHipTo, hipTo, stars[i].hip, static_cast<std::uint32_t>(rec));
    }
    // Candidate (number, record) pairs, ordered brightest first before the
    // unique insertion so that a number shared by two stars names the brighter.
    struct Candidate {
        std::uint32_t number;
        std::uint32_t record;
        int which;  // 0 SAO, 1 HD, 2 HR
    };
    std::vector<Candidate> candidates;
    for (const auto& line : hip.crossIds) {
        const std::int64_t rec = hipStars.Find(line.hip, line.component);
        if (rec < 0) {
            unmatched.insert(line.hip);
            continue;
        }
        const auto r = static_cast<std::uint32_t>(rec);
        const std::int64_t id = stars[r].TychoId();
        if (line.sao) {
            InsertUnique(seenToSao, toSao, id, line.sao);
            candidates.push_back({line.sao, r, 0});
        }
        if (line.hd) {
            InsertUnique(seenToHd, toHd, id, line.hd);
            candidates.push_back({line.hd, r, 1});
        }
        if (line.hr) {
            InsertUnique(seenToHr, toHr, id, line.hr);
            candidates.push_back({line.hr, r, 2});
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(), [&](const Candidate& a, const Candidate& b) {
        return stars[a.record].magCenti < stars[b.record].magCenti;
    });
    for (const auto& c : candidates) {
        if (c.which == 0) InsertUnique(seenSaoTo, saoTo, c.number, c.record);
        if (c.which == 1) InsertUnique(seenHdTo, hdTo, c.number, c.record);
        if (c.which == 2) InsertUnique(seenHrTo, hrTo, c.number, c.record);
    }
    {
        std::unordered_set<std::int64_t> hrIds;
        for (const auto& e : toHr) hrIds.insert(e.key);
        for (auto& s : stars)
            if (hrIds.count(s.TychoId())) s.flags |= flag::kBrightStar;
    }
    report.saoEntries = toSao.size();
    report.hdEntries = toHd.size();
    report.hrEntries = toHr.size();

    // Proper names, Bayer letters and Flamsteed numbers, variables, doubles:
    // each attached to the star standing for the Hipparcos system.
    // The record standing for HIP `h`, flagged with `f`; −1 (and `h` noted
    // as unmatched) when no star of the catalogue stands for it.
    auto attach = [&](std::uint32_t h, std::uint16_t f) -> std::int64_t {
        const std::int64_t rec = hipStars.Find(h, 0);
        if (rec < 0) {
            unmatched.insert(h);
            return -1;
        }
        stars[rec].flags |= f;
        return rec;
    };
    struct NameEntry {
        std::int64_t id;
        std::string name;
    };
    std::vector<NameEntry> names;
    for (const auto& [h, name] : hip.properNames) {
        const std::int64_t rec = attach(h, flag::kProperName);
        if (rec < 0) continue;
        names.push_back({stars[rec].TychoId(), name});
    }
    struct PropEntry {
        std::int64_t id;
        StarProperty p;
    };
    std::vector<PropEntry> props;
    for (const auto& [h, p] : hip.properties) {
        const std::int64_t rec = attach(h, flag::kBayerFlamsteed);
        if (rec < 0) continue;
        props.push_back({stars[rec].TychoId(), p});
    }
    struct VarEntry {
        std::int64_t id;
        const VariableStar* v;
    };
    std::vector<VarEntry> vars;
    for (const auto& [h, v] : hip.variables) {
        const std::int64_t rec = attach(h, flag::kVariable);
        if (rec < 0) continue;
        vars.push_back({stars[rec].TychoId(), &v});
    }
    struct DoubleEntry {
        std::uint32_t record;
        std::uint16_t code;
        std::uint16_t number;
    };
    std::vector<DoubleEntry> doubles;
    std::vector<std::string> codes;
    std::map<std::string, std::uint16_t> codeNumber;
    for (const auto& [h, d] : hip.doubles) {
        const std::int64_t rec = attach(h, flag::kDouble);
        if (rec < 0) continue;
        DoubleEntry e{static_cast<std::uint32_t>(rec), kWdsNoCode, 0};
        if (d && d->code.size() < kWdsEntrySize && d->number <= 0xFFFF) {
            auto [it, inserted] = codeNumber.emplace(d->code, static_cast<std::uint16_t>(codes.size() + 1));
            if (inserted) codes.push_back(d->code);
            e.code = it->second;
            e.number = static_cast<std::uint16_t>(d->number);
        }
        doubles.push_back(e);
    }
    report.names = names.size();
    report.properties = props.size();
    report.variables = vars.size();
    report.doubles = doubles.size();
    report.unmatchedHip = unmatched.size();

    // ----- Images -----
    out.files.clear();
    {
        CByteWriter w;
        w.Data().reserve(stars.size() * kRecordSize);
        for (const auto& s : stars) {
            w.I16(s.tyc1);
            w.U16(s.tyc2);
            w.I16(s.magCenti);
            w.I16(s.bvMilli);
            w.I32(s.raMas);
            w.I32(s.decMas);
            w.F32(s.pmRaMasPerYr);
            w.F32(s.pmDecMasPerYr);
            w.F32(s.parallaxMas);
            w.U32(s.hip);
            w.I16(s.radVelDeciKmS);
            w.U16(s.flags);
            w.U16(s.origin);
        }
        out.files.emplace_back(std::string(kCatalogueDiskName), std::move(w.Data()));
    }
    {
        CByteWriter w;
        for (int r = 0; r <= kRegionCount; ++r) {
            w.U32(cat.regionStart[r]);
            w.I16(r < kRegionCount ? cat.regionBrightest[r] : INT16_MAX);
        }
        out.files.emplace_back(std::string(kRegionStartDiskName), std::move(w.Data()));
    }
    {
        CByteWriter w;
        for (const auto& b : cat.regionBounds) {
            w.I32(b.raMin);
            w.I32(b.raMax);
            w.I32(b.decMin);
            w.I32(b.decMax);
        }
        out.files.emplace_back(std::string(kRegionBoundsDiskName), std::move(w.Data()));
    }
    {
        std::vector<Pair64> ids;
        ids.reserve(stars.size());
        for (std::size_t i = 0; i < stars.size(); ++i) ids.push_back({stars[i].TychoId(), static_cast<std::uint32_t>(i)});
        // Equal identifiers: the main-catalogue star first, and only it is kept.
        std::sort(ids.begin(), ids.end(), [&](const Pair64& a, const Pair64& b) {
            if (a.key != b.key) return a.key < b.key;
            const int sa = stars[a.value].origin & origin::kSourceMask;
            const int sb = stars[b.value].origin & origin::kSourceMask;
            return sa != sb ? sa < sb : a.value < b.value;
        });
        ids.erase(std::unique(ids.begin(), ids.end(), [](const Pair64& a, const Pair64& b) { return a.key == b.key; }),
                  ids.end());
        CByteWriter w;
        w.Data().reserve(ids.size() * kTychoIdEntrySize);
        for (const auto& e : ids) {
            const BuildStar& s = stars[e.value];
            w.I16(s.tyc1);
            w.I16(static_cast<std::int16_t>(s.tyc2));
            w.I16(s.tyc3);
            w.U32(e.value);
        }
        out.files.emplace_back(std::string(kTychoIdDiskName), std::move(w.Data()));
    }
    out.files.emplace_back("star/Tycho2/hip.idx", CrossFile(hipTo));
    out.files.emplace_back("star/Tycho2/t2hip.idx", CrossFile(toHip));
    out.files.emplace_back("star/Tycho2/sao.idx", CrossFile(saoTo));
    out.files.emplace_back("star/Tycho2/t2sao.idx", CrossFile(toSao));
    out.files.emplace_back("star/Tycho2/hd.idx", CrossFile(hdTo));
    out.files.emplace_back("star/Tycho2/t2hd.idx", CrossFile(toHd));
    out.files.emplace_back("star/Tycho2/bsc.idx", CrossFile(hrTo));
    out.files.emplace_back("star/Tycho2/t2bsc.idx", CrossFile(toHr));
    {
        std::stable_sort(names.begin(), names.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
        CByteWriter w;
        for (const auto& n : names) {
            PutKey(w, n.id);
            PutFixedText(w, n.name, kNameEntrySize - 8);
        }
        out.files.emplace_back(std::string(kProperNameDiskName), std::move(w.Data()));
    }
    {
        std::stable_sort(props.begin(), props.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
        CByteWriter w;
        for (const auto& p : props) {
            PutKey(w, p.id);
            w.U8(p.p.constellation);
            w.U8(p.p.flamsteed);
            w.U8(p.p.greek);
            w.U8(p.p.superscript);
        }
        out.files.emplace_back(std::string(kPropertyDiskName), std::move(w.Data()));
    }
    {
        std::sort(doubles.begin(), doubles.end(), [](const auto& a, const auto& b) { return a.record < b.record; });
        CByteWriter w;
        w.U32(kWdsMagic);
        w.U32(static_cast<std::uint32_t>(codes.size()));
        for (const auto& c : codes) PutFixedText(w, c, kWdsEntrySize);
        for (const auto& d : doubles) {
            w.U32(d.record);
            w.U16(d.code);
            w.U16(d.number);
        }
        out.files.emplace_back(std::string(kWdsDiskName), std::move(w.Data()));
    }
    {
        std::stable_sort(vars.begin(), vars.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
        CByteWriter w;
        for (const auto& e : vars) {
            const VariableStar& v = *e.v;
            PutKey(w, e.id);
            w.I16(v.maxMagCenti);
            w.I16(v.minMagCenti);
            w.U8(v.minKind);
            PutFixedText(w, v.band, 3);
            PutFixedText(w, v.name, 12);
            PutFixedText(w, v.type, 12);
            w.F32(v.periodDays);
        }
        out.files.emplace_back(std::string(kGcvsDiskName), std::move(w.Data()));
    }
}

// ----- Reading the sources ------------------------------------------------------------

namespace {

// Streams a text file line by line through one large buffer: no allocation
// per line.
class CLineReader {
public:
    bool Open(const std::string& path)
    {
        m_file.reset(std::fopen(path.c_str(), "rb"));
        m_buffer.resize(1 << 22);
        m_begin = m_end = 0;
        m_eof = false;
        return m_file != nullptr;
    }

    bool Next(std::string_view& line)
    {
        for (;;) {
            const char* data = m_buffer.data();
            const void* nl = std::memchr(data + m_begin, '\n', m_end - m_begin);
            if (nl != nullptr) {
                const auto at = static_cast<std::size_t>(static_cast<const char*>(nl) - data);
                line = std::string_view(data + m_begin, at - m_begin);
                if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
                m_begin = at + 1;
                return true;
            }
            if (m_eof) {
                if (m_begin == m_end) return false;
                line = std::string_view(data + m_begin, m_end - m_begin);
                m_begin = m_end;
                return true;
            }
            // Move the partial line to the front and read more.
            std::memmove(m_buffer.data(), data + m_begin, m_end - m_begin);
            m_end -= m_begin;
            m_begin = 0;
            if (m_end == m_buffer.size()) m_buffer.resize(m_buffer.size() * 2);
            const std::size_t got = std::fread(m_buffer.data() + m_end, 1, m_buffer.size() - m_end, m_file.get());
            if (got == 0) {
                if (std::ferror(m_file.get())) m_error = true;
                m_eof = true;
            }
            m_end += got;
        }
    }

    bool ReadError() const { return m_error; }

private:
    struct Closer {
        void operator()(std::FILE* f) const { std::fclose(f); }
    };
    std::unique_ptr<std::FILE, Closer> m_file;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0, m_end = 0;
    bool m_eof = false;
    bool m_error = false;
};

bool IsBlank(std::string_view line) { return Trim(line).empty(); }

bool IsComment(std::string_view line)
{
    const auto t = Trim(line);
    return t.empty() || t.front() == '#';
}

using Progress = std::function<void(const std::string&)>;

bool ReadLines(const std::string& path, const std::function<bool(std::string_view, std::size_t, std::string&)>& each,
               std::string& error)
{
    CLineReader reader;
    if (!reader.Open(path)) return Fail(error, "cannot open " + path);
    std::string_view line;
    std::size_t number = 0;
    std::string why;
    while (reader.Next(line)) {
        ++number;
        if (!each(line, number, why)) return Fail(error, path + ", line " + std::to_string(number) + ": " + why);
    }
    if (reader.ReadError()) return Fail(error, "read error in " + path);
    return true;
}

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

bool ReadStellariumStars(const std::string& path, HipData& hip, std::size_t& count, std::string& error)
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
        hip.parallaxMas[h] = static_cast<float>(plx * 0.01);
        if (bvIndex <= 127)
            hip.bvMilli[h] = static_cast<std::int16_t>(std::lround((bvIndex * (4.0 / 127.0) - 0.5) * 1000.0));
        ++count;
    }
    return true;
}

bool ReadHipData(const std::string& dir, HipData& hip, const Progress& progress, std::string& error)
{
    const fs::path stars = fs::path(dir) / "stars" / "default";
    const fs::path names = fs::path(dir) / "skycultures" / "western" / "star_names.fab";
    for (const char* f :
         {"cross-id.dat", "name.fab", "gcvs_hip_part.dat", "wds_hip_part.dat", "extra_name.fab", "hip_pm.dat"})
        if (!fs::exists(stars / f)) return Fail(error, "missing source " + (stars / f).string());
    if (!fs::exists(names)) return Fail(error, "missing source " + names.string());

    progress("reading " + (stars / "cross-id.dat").string());
    if (!ReadLines((stars / "cross-id.dat").string(),
                   [&](std::string_view line, std::size_t, std::string& why) {
                       if (IsComment(line)) return true;
                       CrossIdLine c;
                       if (!ParseCrossIdLine(line, c, why)) return false;
                       hip.crossIds.push_back(c);
                       return true;
                   },
                   error))
        return false;
    if (hip.crossIds.empty()) return Fail(error, "cross-id.dat holds no cross identifications");

    progress("reading Bayer letters and Flamsteed numbers (name.fab)");
    if (!ReadLines((stars / "name.fab").string(),
                   [&](std::string_view line, std::size_t, std::string& why) {
                       if (IsComment(line)) return true;
                       std::string_view f[2];
                       std::uint32_t h = 0;
                       if (Split(line, '|', f, 2) != 2 || !ParseUnsigned(f[0], h) || h == 0) {
                           why = "expected HIP|designation";
                           return false;
                       }
                       StarProperty p = hip.properties.count(h) ? hip.properties[h] : StarProperty{};
                       if (ParseBayerFlamsteed(Trim(f[1]), p)) hip.properties[h] = p;
                       return true;
                   },
                   error))
        return false;

    progress("reading proper names (" + names.string() + ")");
    if (!ReadLines(names.string(),
                   [&](std::string_view line, std::size_t, std::string& why) {
                       if (IsComment(line)) return true;
                       std::string_view f[2];
                       std::uint32_t h = 0;
                       if (Split(line, '|', f, 2) != 2 || !ParseUnsigned(f[0], h) || h == 0) {
                           why = "expected HIP|_(\"name\")";
                           return false;
                       }
                       const auto open = f[1].find("_(\"");
                       const auto close = f[1].find("\")");
                       if (open == std::string_view::npos || close == std::string_view::npos || close < open + 3) {
                           why = "expected a quoted name";
                           return false;
                       }
                       const std::string_view name = f[1].substr(open + 3, close - open - 3);
                       // The first name listed is the star's usual one; names that
                       // do not fit the 18-byte field are left out.
                       if (!name.empty() && name.size() <= kNameMaxBytes && !hip.properNames.count(h))
                           hip.properNames.emplace(h, std::string(name));
                       return true;
                   },
                   error))
        return false;

    progress("reading variable stars (gcvs_hip_part.dat)");
    if (!ReadLines((stars / "gcvs_hip_part.dat").string(),
                   [&](std::string_view line, std::size_t, std::string& why) {
                       if (IsComment(line)) return true;
                       VariableStar v;
                       if (!ParseGcvsLine(line, v, why)) return false;
                       if (v.name.size() < 12 && v.type.size() < 12 && v.band.size() < 3)
                           hip.variables.emplace(v.hip, std::move(v));
                       return true;
                   },
                   error))
        return false;

    progress("reading double stars (wds_hip_part.dat, extra_name.fab)");
    if (!ReadLines((stars / "wds_hip_part.dat").string(),
                   [&](std::string_view line, std::size_t, std::string& why) {
                       if (IsComment(line)) return true;
                       std::string_view f[2];
                       std::uint32_t h = 0;
                       if (Split(line, '\t', f, 2) != 2 || !ParseUnsigned(f[0], h) || h == 0) {
                           why = "expected HIP<tab>WDS designation";
                           return false;
                       }
                       hip.doubles.emplace(h, std::nullopt);
                       return true;
                   },
                   error))
        return false;
    if (!ReadLines((stars / "extra_name.fab").string(),
                   [&](std::string_view line, std::size_t, std::string& why) {
                       if (IsComment(line)) return true;
                       std::string_view f[2];
                       std::uint32_t h = 0;
                       if (Split(line, '|', f, 2) != 2 || !ParseUnsigned(f[0], h) || h == 0) {
                           why = "expected HIP|designation";
                           return false;
                       }
                       DoubleDesignation d;
                       const auto it = hip.doubles.find(h);
                       // Only stars of the WDS list; the first designation wins.
                       if (it != hip.doubles.end() && !it->second && ParseDiscovererDesignation(f[1], d))
                           it->second = std::move(d);
                       return true;
                   },
                   error))
        return false;

    progress("reading Hipparcos proper motions (hip_pm.dat)");
    if (!ReadLines((stars / "hip_pm.dat").string(),
                   [&](std::string_view line, std::size_t, std::string& why) {
                       if (IsComment(line)) return true;
                       std::string_view f[3];
                       std::uint32_t h = 0;
                       double a = 0.0, d = 0.0;
                       if (Split(line, '\t', f, 3) != 3 || !ParseUnsigned(f[0], h) || h == 0 ||
                           ParseNumber(f[1], a) != FieldState::Ok || ParseNumber(f[2], d) != FieldState::Ok ||
                           std::fabs(a) > 20000.0 || std::fabs(d) > 20000.0) {
                           why = "expected HIP<tab>pmRA<tab>pmDE";
                           return false;
                       }
                       hip.properMotion[h] = {static_cast<float>(a), static_cast<float>(d)};
                       return true;
                   },
                   error))
        return false;

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
        if (!ReadStellariumStars(p.string(), hip, n, error)) return false;
        if (n > 0) {
            ++catalogues;
            progress("  " + std::to_string(n) + " Hipparcos parallaxes from " + p.filename().string());
        }
    }
    if (catalogues == 0) return Fail(error, "no Hipparcos star catalogue (stars_0_*.cat) in " + stars.string());
    return true;
}

// kstars-data's "stars.dat": the Hipparcos main-catalogue lines; the Tycho-1
// lines that follow them are counted and left out.
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

}  // namespace

bool RunBuild(const BuildOptions& options, const Progress& progress, std::string& error)
{
    const fs::path t2 = options.tycho2Dir;
    // Region index.
    std::vector<IndexLine> index;
    progress("reading " + (t2 / "index.dat").string());
    if (!ReadLines((t2 / "index.dat").string(),
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

    // Main catalogue, in its 20 parts or whole.
    std::vector<fs::path> parts;
    for (int i = 0; i < 20; ++i) {
        char name[16];
        std::snprintf(name, sizeof name, "tyc2.dat.%02d", i);
        if (fs::exists(t2 / name)) parts.push_back(t2 / name);
    }
    if (parts.empty() && fs::exists(t2 / "tyc2.dat")) parts.push_back(t2 / "tyc2.dat");
    if (parts.size() != 1 && parts.size() != 20)
        return Fail(error, "the Tycho-2 main catalogue in " + t2.string() +
                               " is incomplete: expected tyc2.dat.00 to tyc2.dat.19 (or tyc2.dat)");

    const std::size_t expectedMain = static_cast<std::size_t>(index.back().firstMainRecord - 1);
    const std::size_t expectedSuppl = static_cast<std::size_t>(index.back().firstSupplRecord - 1);
    std::vector<BuildStar> stars;
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
    // catalogue). Both stars are kept on the chart; "T2Id.idx" leads the
    // identifier to the main-catalogue star.
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

    HipData hip;
    if (!ReadHipData(options.stellariumDir, hip, progress, error)) return false;
    progress("  stars without a Tycho-2 mean position given the Hipparcos motion: " +
             std::to_string(ApplyHipparcosMotion(stars, hip)));

    // Hipparcos V and B−V, before the regions are ordered by magnitude. The
    // places are compared at J2000, after the Hipparcos motion above.
    std::vector<KStarsStar> hipPhotometry;
    if (!ReadKStarsStars(options.kstarsDir, hipPhotometry, progress, error)) return false;
    PhotometryReport photometry;
    ApplyHipparcosPhotometry(stars, hipPhotometry, photometry);
    progress("  stars given the Hipparcos V and B-V: " + std::to_string(photometry.replaced));
    progress("  kept on Tycho photometry: " + std::to_string(photometry.brightCompanions) +
             " Hipparcos entries whose Tycho-2 components add more than 0.05 mag, " +
             std::to_string(photometry.noStarWithin) + " lines with no Tycho-2 Hipparcos star within 1\", " +
             std::to_string(photometry.ambiguous) + " lines naming the same star as another");
    progress("  skipped as mismatches: " + std::to_string(photometry.offPosition) + " by position, " +
             std::to_string(photometry.magnitudeMismatch) + " by magnitude (|dV| >= 1)");
    for (const auto& line : photometry.mismatches) progress("    " + line);

    progress("sorting " + std::to_string(stars.size()) + " stars by region and magnitude");
    Catalogue cat;
    if (!AssembleCatalogue(std::move(stars), index, cat, error)) return false;
    progress("  region boxes widened to hold their stars: " + std::to_string(cat.widenedRegions));

    OutputFiles files;
    CrossReport report;
    BuildFiles(cat, hip, files, report);
    progress("  Hipparcos stars in Tycho-2: " + std::to_string(report.hipStars) +
             ", parallaxes attached: " + std::to_string(report.parallaxes) +
             ", Hipparcos colours used: " + std::to_string(report.hipColours));
    progress("  SAO: " + std::to_string(report.saoEntries) + ", HD: " + std::to_string(report.hdEntries) +
             ", HR: " + std::to_string(report.hrEntries) + ", proper names: " + std::to_string(report.names) +
             ", Bayer/Flamsteed: " + std::to_string(report.properties) + ", variables: " +
             std::to_string(report.variables) + ", doubles: " + std::to_string(report.doubles));
    if (report.unmatchedHip > 0)
        progress("  HIP numbers of the lists without a Tycho-2 star (left out): " +
                 std::to_string(report.unmatchedHip));

    for (const auto& [name, bytes] : files.files) {
        const fs::path path = fs::path(options.outputDir) / name;
        std::error_code ec;
        fs::create_directories(path.parent_path(), ec);
        if (ec) return Fail(error, "cannot create folder " + path.parent_path().string() + ": " + ec.message());
        CAtomicFileWriter w;
        if (!w.Open(path.string()) || !w.Write(bytes) || !w.Commit())
            return Fail(error, "cannot write " + path.string() + ": " + w.Error());
        progress("wrote " + path.string() + " (" + std::to_string(bytes.size()) + " bytes)");
    }
    return true;
}

}  // namespace orv::databuild
