// Star display arithmetic: the size of a star's disc from its magnitude, its
// colour from its B−V index, the texts of the chart's star labels and of the
// identify read-out, and the rows of the "Stars Visible on the Map" list with
// its sorting rules. Plain C++ with no drawing, so that every rule here can
// be checked headless; the chart's star layer (map/drawstars.cpp) paints with
// these results.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "catalog/stars/tycho2format.h"
#include "util/resulttable.h"

namespace orv {

struct CStarSettings;

// ------------------------------------------------------------------ Disc size

// The magnitude scale of the discs. Magnitudes in 0.01 mag, radii in units of
// 0.0001 inch ("StarRadBright", "StarRadFaint").
struct StarSizeScale {
    int magLimitCenti = 600;   // faint end: this magnitude and fainter get radFaint
    int magBrightCenti = 200;  // bright end: this magnitude and brighter get radBright
    int radBright = 625;
    int radFaint = 0;
};

// Disc radius of a star of magnitude `magCenti`, 0.0001 inch: radFaint at or
// beyond the limit, radBright at or above the bright end, linear in between
// (truncated towards zero). A limit not fainter than the bright end is taken
// as one hundredth fainter, so the scale never divides by zero.
int StarDiscRadius(int magCenti, const StarSizeScale& scale);

// Vertical disc radius in device pixels for a surface with `dpiY` pixels per
// inch: radius × dpiY × 0.0001, rounded half up.
int StarDiscVerticalPx(int radiusTenThousandthsInch, double dpiY);
// Horizontal radius in device pixels, so that the disc is round on surfaces
// whose pixels are not square: the vertical radius scaled by dpiX/dpiY, in
// integer arithmetic (hundredths of a pixel per inch).
int StarDiscHorizontalPx(int verticalPx, double dpiX, double dpiY);

// --------------------------------------------------------------- B−V colour

struct BvThresholds {
    int bv1 = -500;  // below: plain blue; from here blue whitens
    int bv2 = 100;   // white
    int bv3 = 500;   // yellow
    int bv4 = 2000;  // plain red from here
};

struct StarRgb {
    std::uint8_t r = 0, g = 0, b = 0;
    bool operator==(const StarRgb&) const = default;
};

// Colour of a star of colour index `bvMilli` (0.001 mag): blue below BV1,
// blue whitening to white at BV2, white yellowing to yellow at BV3, yellow
// reddening to red at BV4, red beyond, with integer steps truncated towards
// zero. Nothing for a star without a colour index (tycho2::kNoColour): it
// keeps the chart's plain star colour.
std::optional<StarRgb> StarColourFromBV(int bvMilli, const BvThresholds& thresholds);

// -------------------------------------------------------------------- Greek

// The Unicode lowercase Greek letter of Bayer letter `index` (0 alpha … 23
// omega), read through the Symbol-font letter "abgdezhqiklmnxoprstufcyw"
// that the chart historically used; 0 for an index out of range. Sigma is
// U+03C3, never the final sigma U+03C2.
char32_t GreekLetterCodePoint(int index);
// The same as UTF-8 text.
std::string GreekLetterUtf8(int index);

// ------------------------------------------------------------------- Labels

// Flamsteed number next to a Bayer letter: "(%1d)".
std::string FlamsteedBesideBayerLabel(int flamsteed);
// Flamsteed number alone: "%1d".
std::string FlamsteedLabel(int flamsteed);
// Magnitude label in tenths without the decimal point, as on variable-star
// charts (so that it cannot be taken for a star): "[%1d]".
std::string MagnitudeLabel(int magCenti);
// Range of a variable star in tenths: "[%1d - %1d]".
std::string MagnitudeRangeLabel(int brightCenti, int faintCenti);
// A variable star whose range is not known, with its catalogue magnitude in
// tenths: "V%1d".
std::string VariableMagnitudeLabel(int magCenti);
// Distance label: "%1u ly".
std::string DistanceLabel(unsigned lightYears);

// Tenths of a magnitude, rounded half away from zero (5.75 → 58).
int MagnitudeTenths(int magCenti);

// Which stars carry a magnitude label ("LabelMagOption"):
//   0 every star drawn;
//   1 stars brighter than "LabelMagBright";
//   2 stars from "LabelMagBetween1" to "LabelMagBetween2";
//   3 stars fainter than "LabelMagFaint".
// Other values label none.
bool MagnitudeLabelWanted(int magCenti, const CStarSettings& settings);

// The label-magnitude filter ("StarLabelMagFilter"): with the filter on,
// only stars brighter than "StarLabelMagLimit" get name, Bayer and Flamsteed
// labels.
bool PassesLabelFilter(int magCenti, const CStarSettings& settings);

// -------------------------------------------------------- Identify read-out

struct StarReadout {
    int magCenti = 0;
    std::optional<int> rangeBrightCenti;  // variable stars with a known range
    std::optional<int> rangeFaintCenti;
    std::string variableText;             // "EA/SD", the variability type (variable stars)
    int distanceLy = 0;                   // 0 = unknown
};

// The read-out lines that follow a star's designation: "\nMag: %.2lf",
// "\nMag range: %.2f to %.2f" and "\nVar: %s" for variable stars,
// "\nDistance: %1d ly" when the distance is known.
std::string StarReadoutLines(const StarReadout& star);

// ------------------------------------------------- Stars visible on the map

// One row of the list of stars visible on the chart.
struct VisibleStarRow {
    std::string designation;   // by the designation rules
    std::string name;          // proper name, empty when none
    int constellation = tycho2::kNoConstellation;  // 0-87, 255 none
    int greek = tycho2::kNoGreekLetter;            // 0-23, 255 none
    int superscript = 0;
    int flamsteed = 0;
    int tyc1 = 0, tyc2 = 0, tyc3 = 0;
    int magCenti = 0;
    int bvMilli = tycho2::kNoColour;
    bool variable = false;
    bool isDouble = false;
    double raJ2000Rad = 0.0;
    double decJ2000Rad = 0.0;
    double xPx = 0.0, yPx = 0.0;  // where it was drawn
};

// Columns the list sorts by.
enum class StarListSort {
    Designation,    // constellation, Greek letter, superscript, Flamsteed, Tycho identifier, then the name (any case)
    Magnitude,      // in steps of 0.01 mag
    Variable,       // first flag column
    Double,         // second flag column
    Constellation,  // constellation only
};

// Stable sort of the rows; the direction factor multiplies every comparison.
void SortVisibleStars(std::vector<VisibleStarRow>& rows, StarListSort by, SortDirection direction);

// The columns of the list window, for its "StarListCol%1d" widths.
inline constexpr int kStarListColumns = 7;
// The settings key of a column's width in the "Stars" section:
// "StarListCol%1d" with the column number.
std::string StarListColumnKey(int column);
// Column headings: designation, magnitude, B−V, variable, double, RA, Dec.
const char* StarListHeading(int column);
// The text of one cell (the list window and the text listing).
std::string StarListCell(const VisibleStarRow& row, int column);

// The list as a result table, in the order of `rows`: the cells of
// StarListCell, magnitudes, colours and places also as numbers (degrees for
// the J2000 place), the headings in the text report.
ResultTable VisibleStarsTable(const std::vector<VisibleStarRow>& rows);

// The text listing: "Stars Visible on the Map", a blank line, the headings,
// then one line a star with the columns separated by tabs.
std::string VisibleStarsListing(const std::vector<VisibleStarRow>& rows);

}  // namespace orv
