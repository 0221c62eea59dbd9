#include "catalog/stars/stardisplay.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>

#include "map/catalogsettings.h"
#include "util/angles.h"

namespace orv {

// ------------------------------------------------------------------ Disc size

int StarDiscRadius(int magCenti, const StarSizeScale& scale)
{
    const int B = scale.magBrightCenti;
    int L = scale.magLimitCenti;
    if (L <= B) L = B + 1;
    if (magCenti >= L) return scale.radFaint;
    if (magCenti <= B) return scale.radBright;
    const double k = static_cast<double>(scale.radBright - scale.radFaint) / static_cast<double>(L - B);
    return static_cast<int>(L * k + scale.radFaint - magCenti * k);
}

int StarDiscVerticalPx(int radiusTenThousandthsInch, double dpiY)
{
    if (!(dpiY > 0.0) || !std::isfinite(dpiY)) return 0;
    const double px = radiusTenThousandthsInch * dpiY * 0.0001 + 0.5;
    return px > 0.0 ? static_cast<int>(px) : 0;
}

int StarDiscHorizontalPx(int verticalPx, double dpiX, double dpiY)
{
    if (!(dpiX > 0.0 && dpiY > 0.0) || !std::isfinite(dpiX) || !std::isfinite(dpiY)) return verticalPx;
    const long long x = std::llround(dpiX * 100.0), y = std::llround(dpiY * 100.0);
    if (y <= 0) return verticalPx;
    return static_cast<int>(static_cast<long long>(verticalPx) * x / y);
}

// --------------------------------------------------------------- B−V colour

std::optional<StarRgb> StarColourFromBV(int bv, const BvThresholds& t)
{
    if (bv == tycho2::kNoColour) return std::nullopt;
    auto c = [](int v) { return static_cast<std::uint8_t>(std::clamp(v, 0, 255)); };
    // A zero-width band (equal thresholds in the settings) is skipped rather
    // than divided by.
    if (bv < t.bv1) return StarRgb{0, 0, 255};
    if (bv < t.bv2) {
        const int q = (bv - t.bv1) * 255 / (t.bv2 - t.bv1);
        return StarRgb{c(q), c(q), 255};
    }
    if (bv < t.bv3) return StarRgb{255, 255, c(255 - (bv - t.bv2) * 255 / (t.bv3 - t.bv2))};
    if (bv < t.bv4) return StarRgb{255, c(255 - (bv - t.bv3) * 255 / (t.bv4 - t.bv3)), 0};
    return StarRgb{255, 0, 0};
}

// -------------------------------------------------------------------- Greek

char32_t GreekLetterCodePoint(int index)
{
    static constexpr char kSymbolLetters[] = "abgdezhqiklmnxoprstufcyw";
    if (index < 0 || index >= 24) return 0;
    // The Symbol font's encoding of the Latin letters it shows as Greek ones.
    switch (kSymbolLetters[index]) {
    case 'a': return U'\u03B1';
    case 'b': return U'\u03B2';
    case 'g': return U'\u03B3';
    case 'd': return U'\u03B4';
    case 'e': return U'\u03B5';
    case 'z': return U'\u03B6';
    case 'h': return U'\u03B7';
    case 'q': return U'\u03B8';
    case 'i': return U'\u03B9';
    case 'k': return U'\u03BA';
    case 'l': return U'\u03BB';
    case 'm': return U'\u03BC';
    case 'n': return U'\u03BD';
    case 'x': return U'\u03BE';
    case 'o': return U'\u03BF';
    case 'p': return U'\u03C0';
    case 'r': return U'\u03C1';
    case 's': return U'\u03C3';
    case 't': return U'\u03C4';
    case 'u': return U'\u03C5';
    case 'f': return U'\u03C6';
    case 'c': return U'\u03C7';
    case 'y': return U'\u03C8';
    case 'w': return U'\u03C9';
    default: return 0;
    }
}

std::string GreekLetterUtf8(int index)
{
    const char32_t cp = GreekLetterCodePoint(index);
    if (cp == 0) return {};
    // Two-byte UTF-8: every lowercase Greek letter lies in U+0080..U+07FF.
    std::string out;
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    return out;
}

// ------------------------------------------------------------------- Labels

namespace {
std::string Format(const char* pattern, int a)
{
    char buf[48];
    std::snprintf(buf, sizeof buf, pattern, a);
    return buf;
}
}  // namespace

int MagnitudeTenths(int magCenti) { return magCenti >= 0 ? (magCenti + 5) / 10 : -((-magCenti + 5) / 10); }

std::string FlamsteedBesideBayerLabel(int flamsteed) { return Format("(%1d)", flamsteed); }
std::string FlamsteedLabel(int flamsteed) { return Format("%1d", flamsteed); }
std::string MagnitudeLabel(int magCenti) { return Format("[%1d]", MagnitudeTenths(magCenti)); }
std::string VariableMagnitudeLabel(int magCenti) { return Format("V%1d", MagnitudeTenths(magCenti)); }

std::string MagnitudeRangeLabel(int brightCenti, int faintCenti)
{
    char buf[48];
    std::snprintf(buf, sizeof buf, "[%1d - %1d]", MagnitudeTenths(brightCenti), MagnitudeTenths(faintCenti));
    return buf;
}

std::string DistanceLabel(unsigned lightYears)
{
    char buf[32];
    std::snprintf(buf, sizeof buf, "%1u ly", lightYears);
    return buf;
}

bool MagnitudeLabelWanted(int mag, const CStarSettings& s)
{
    switch (s.labelMagOption) {
    case 0: return true;
    case 1: return mag < s.labelMagBright;
    case 2: return mag >= s.labelMagBetween1 && mag <= s.labelMagBetween2;
    case 3: return mag > s.labelMagFaint;
    default: return false;
    }
}

bool PassesLabelFilter(int mag, const CStarSettings& s)
{
    return s.starLabelMagFilter == 0 || mag < s.starLabelMagLimit;
}

// -------------------------------------------------------- Identify read-out

std::string StarReadoutLines(const StarReadout& star)
{
    std::string out;
    char buf[128];
    std::snprintf(buf, sizeof buf, "\nMag: %.2lf", star.magCenti / 100.0);
    out += buf;
    if (star.rangeBrightCenti && star.rangeFaintCenti) {
        std::snprintf(buf, sizeof buf, "\nMag range: %.2f to %.2f", *star.rangeBrightCenti / 100.0,
                      *star.rangeFaintCenti / 100.0);
        out += buf;
    }
    if (!star.variableText.empty()) {
        std::snprintf(buf, sizeof buf, "\nVar: %s", star.variableText.c_str());
        out += buf;
    }
    if (star.distanceLy > 0) {
        std::snprintf(buf, sizeof buf, "\nDistance: %1d ly", star.distanceLy);
        out += buf;
    }
    return out;
}

// ------------------------------------------------- Stars visible on the map

namespace {

int Sign(long long v) { return v < 0 ? -1 : (v > 0 ? 1 : 0); }

int CompareNoCase(const std::string& a, const std::string& b)
{
    const std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        const int ca = std::tolower(static_cast<unsigned char>(a[i]));
        const int cb = std::tolower(static_cast<unsigned char>(b[i]));
        if (ca != cb) return ca < cb ? -1 : 1;
    }
    return Sign(static_cast<long long>(a.size()) - static_cast<long long>(b.size()));
}

// Designation order: stars of a constellation together, Bayer stars in
// letter order (and superscript) before the Flamsteed-only ones, then by
// Flamsteed number, then by Tycho identifier, and last by name.
int CompareDesignation(const VisibleStarRow& a, const VisibleStarRow& b)
{
    if (int c = Sign(a.constellation - b.constellation)) return c;
    if (int c = Sign(a.greek - b.greek)) return c;
    if (int c = Sign(a.superscript - b.superscript)) return c;
    // A star without a Flamsteed number (0) sorts after the numbered ones.
    const int fa = a.flamsteed == 0 ? 1000 : a.flamsteed, fb = b.flamsteed == 0 ? 1000 : b.flamsteed;
    if (int c = Sign(fa - fb)) return c;
    if (int c = Sign(a.tyc1 - b.tyc1)) return c;
    if (int c = Sign(a.tyc2 - b.tyc2)) return c;
    if (int c = Sign(a.tyc3 - b.tyc3)) return c;
    return CompareNoCase(a.name.empty() ? a.designation : a.name, b.name.empty() ? b.designation : b.name);
}

}  // namespace

void SortVisibleStars(std::vector<VisibleStarRow>& rows, StarListSort by, SortDirection direction)
{
    const int dir = static_cast<int>(direction);
    auto compare = [by](const VisibleStarRow& a, const VisibleStarRow& b) {
        switch (by) {
        case StarListSort::Designation: return CompareDesignation(a, b);
        case StarListSort::Magnitude: return Sign(a.magCenti - b.magCenti);
        // Flag columns: flagged stars first in ascending order.
        case StarListSort::Variable: return Sign(static_cast<int>(b.variable) - static_cast<int>(a.variable));
        case StarListSort::Double: return Sign(static_cast<int>(b.isDouble) - static_cast<int>(a.isDouble));
        case StarListSort::Constellation: return Sign(a.constellation - b.constellation);
        }
        return 0;
    };
    std::stable_sort(rows.begin(), rows.end(),
                     [&](const VisibleStarRow& a, const VisibleStarRow& b) { return dir * compare(a, b) < 0; });
}

std::string StarListColumnKey(int column) { return Format("StarListCol%1d", column); }

const char* StarListHeading(int column)
{
    static constexpr const char* kHeadings[kStarListColumns] = {"Star", "Mag", "B-V", "Var", "Dbl", "RA (J2000)",
                                                                "Dec (J2000)"};
    return column >= 0 && column < kStarListColumns ? kHeadings[column] : "";
}

std::string StarListCell(const VisibleStarRow& row, int column)
{
    char buf[64];
    switch (column) {
    case 0: return row.designation;
    case 1: std::snprintf(buf, sizeof buf, "%.2f", row.magCenti / 100.0); return buf;
    case 2:
        if (row.bvMilli == tycho2::kNoColour) return {};
        std::snprintf(buf, sizeof buf, "%.2f", row.bvMilli / 1000.0);
        return buf;
    case 3: return row.variable ? "V" : "";
    case 4: return row.isDouble ? "D" : "";
    case 5: return FormatHms(row.raJ2000Rad, 1);
    case 6: return FormatDms(row.decJ2000Rad, 0);
    default: return {};
    }
}

ResultTable VisibleStarsTable(const std::vector<VisibleStarRow>& rows)
{
    ResultTable table;
    table.title = "Stars Visible on the Map";
    table.reportHeadings = HeadingLine::Include;
    table.columns = {{StarListHeading(0), "designation", "", CellAlign::Left, "", {}, {}},
                     {StarListHeading(1), "magnitude", "mag", CellAlign::Right, "", {}, {}},
                     {StarListHeading(2), "bv", "mag", CellAlign::Right, "", {}, {}},
                     {StarListHeading(3), "variable", "", CellAlign::Centre, "", {}, {}},
                     {StarListHeading(4), "double", "", CellAlign::Centre, "", {}, {}},
                     {StarListHeading(5), "raJ2000Deg", "deg", CellAlign::Right, "", {}, {}},
                     {StarListHeading(6), "decJ2000Deg", "deg", CellAlign::Right, "", {}, {}}};
    table.rows.reserve(rows.size());
    for (const VisibleStarRow& star : rows) {
        ResultRow row;
        row.cells.emplace_back(StarListCell(star, 0));
        row.cells.push_back(ResultCell::Number(star.magCenti / 100.0, StarListCell(star, 1)));
        row.cells.push_back(star.bvMilli == tycho2::kNoColour ? ResultCell()
                                                              : ResultCell::Number(star.bvMilli / 1000.0, StarListCell(star, 2)));
        row.cells.emplace_back(StarListCell(star, 3));
        row.cells.emplace_back(StarListCell(star, 4));
        row.cells.push_back(ResultCell::Number(star.raJ2000Rad * kDegPerRad, StarListCell(star, 5)));
        row.cells.push_back(ResultCell::Number(star.decJ2000Rad * kDegPerRad, StarListCell(star, 6)));
        table.rows.push_back(std::move(row));
    }
    return table;
}

std::string VisibleStarsListing(const std::vector<VisibleStarRow>& rows)
{
    return ReportText(VisibleStarsTable(rows), LineEnding::Lf);
}

}  // namespace orv
