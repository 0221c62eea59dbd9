// Map overlay files: text files of drawing commands in sky coordinates
// (moves, draws and texts with named colours, fonts and line styles) drawn
// over the sky on every chart, and the list of them, "overlay.dat".
//
// The language (docs/overlay-files.md):
//   ; comment                          (and blank lines)
//   epoch J2000.0 | epoch B1950.0      coordinates that follow are of that equinox
//   move RA, Dec                       RA in hours ("5.5", "5 30", "5 30 0.0"),
//   draw RA, Dec                       Dec in degrees ("-0 30" is −0.5°)
//   text RA, Dec, the text
//   define colour|color NAME r, g, b
//   define font NAME face, size, bold, italic, colour, colour
//   define line NAME style, width, colour, colour   (style solid, dash, dot,
//                                                    dashdot, dashdotdot;
//                                                    width in quarter points)
//   select font NAME | select line NAME | select textalign H, V
//
// Parsing keeps every point as a unit vector: of J2000 when an `epoch` line
// gave its equinox (the position is precessed from that epoch, IAU 2006), or
// "of the map's date" when none did, as the file's coordinates are then taken
// to be of the chart's own epoch. A chart brings the whole display list to
// its frame with one matrix per kind, so a parsed overlay serves every chart
// and date. A `draw` is cut into steps of 0.017 rad of right ascension so
// that lines along declination circles follow the projection's curvature.
//
// Bad lines never stop a parse: each is skipped (or, for a name that is not
// known, kept with its default) and reported with its line number.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orv {

struct OverlayColour {
    std::uint8_t r = 255, g = 255, b = 255;
    bool operator==(const OverlayColour&) const = default;
};

// One of the named colours every overlay knows ("black", "dkred", "ltgrey" …);
// the name is compared after trimming and lower-casing.
std::optional<OverlayColour> BuiltInOverlayColour(const std::string& name);

struct OverlayFont {
    std::string face = "Sans Serif";
    double sizePt = 10.0;
    bool bold = false, italic = false;
    OverlayColour first{255, 255, 255};  // on dark backgrounds (screen)
    OverlayColour second{0, 0, 0};       // on paper and light backgrounds
};

enum class OverlayLineStyle : int { Solid = 0, Dash = 1, Dot = 2, DashDot = 3, DashDotDot = 4 };

struct OverlayLine {
    OverlayLineStyle style = OverlayLineStyle::Solid;
    int widthQuarterPt = 0;  // 0: the thinnest line of the surface
    OverlayColour first{255, 255, 255};
    OverlayColour second{0, 0, 0};
};

// Text alignment: horizontal 1 left, 2 centre, 3 right; vertical 1 top,
// 2 centre, 3 bottom; carried as horizontal × 16 + vertical.
inline constexpr int kOverlayAlignCentre = 2 * 16 + 2;

enum class OverlayOp : std::uint8_t { Move, Draw, Text, SelectFont, SelectLine, TextAlign };
// Which frame a point's vector is in.
enum class OverlayFrame : std::uint8_t { J2000, MapEpoch };

struct OverlayCommand {
    OverlayOp op = OverlayOp::Move;
    OverlayFrame frame = OverlayFrame::MapEpoch;
    // Move/Draw/Text: index of the point; Text also `text`; SelectFont and
    // SelectLine: index into fonts/lines; TextAlign: the alignment code.
    std::uint32_t index = 0;
    std::uint32_t text = 0;
};

struct OverlayDiagnostic {
    enum class Severity { Warning, Error };  // Error: the line was skipped
    Severity severity = Severity::Error;
    int line = 0;
    std::string message;  // what was expected
};

// Right ascension 0..2π and declination range of the coordinates met, in
// the file's own equinox.
struct OverlayBounds {
    bool empty = true;
    double raMinRad = 0.0, raMaxRad = 0.0, decMinRad = 0.0, decMaxRad = 0.0;
};

// A run of consecutive moves and draws of one frame, for culling at draw
// time: commands [firstCommand, endCommand) and a cap of the sphere (centre
// unit vector in the run's frame, angular radius) that holds every point of
// the run and the point its first draw starts from. The cap is at most 80°
// across, so every great-circle arc between two of its points stays inside
// it; a run that does not fit has no cap (radiusRad = π) and is never culled.
struct OverlayBlock {
    std::uint32_t firstCommand = 0;
    std::uint32_t endCommand = 0;
    OverlayFrame frame = OverlayFrame::MapEpoch;
    double centre[3] = {0.0, 0.0, 1.0};
    double radiusRad = 3.14159265358979323846;
};

class COverlay {
public:
    std::vector<OverlayCommand> commands;
    std::vector<double> points;  // x, y, z of each point, unit vectors
    std::vector<std::string> texts;
    std::vector<OverlayFont> fonts;
    std::vector<OverlayLine> lines;
    std::map<std::string, OverlayColour> colours;  // defined by the file (lower case)
    std::vector<OverlayDiagnostic> diagnostics;
    OverlayBounds bounds;
    // Runs of at most 32 moves and draws, in command order.
    std::vector<OverlayBlock> blocks;
    std::string path;
    bool opened = false;

    std::size_t PointCount() const { return points.size() / 3; }
    std::size_t TextCount() const { return texts.size(); }
    std::size_t ErrorCount() const;
};

// Cuts the display list into culling blocks (done by the parsers).
void IndexOverlayBlocks(COverlay& overlay);

// Parses an overlay file; a file that cannot be opened gives an empty
// overlay (opened false) without diagnostics.
COverlay ParseOverlayFile(const std::string& path);
// The same from text in memory.
COverlay ParseOverlayText(const std::string& text, const std::string& name = {});

// Julian date (TT) of an `epoch` word: "B1950.0" (Besselian year, JD =
// (year − 1950) × 365.2421988 + 2433282.4235) or "J2000.0" ((year − 2000) ×
// 365.25 + 2451545.0); nothing for any other first letter or no number.
std::optional<double> OverlayEpochJd(const std::string& word);
// Right ascension in hours ("5.5", "5 30.0", "5 30 0") and declination in
// degrees ("-0 30" = −0.5°) of an overlay line; nothing when unreadable.
std::optional<double> ParseOverlayHours(const std::string& token);
std::optional<double> ParseOverlayDegrees(const std::string& token);

// --------------------------------------------------------------- The list

struct OverlayListEntry {
    std::string path;             // absolute, or relative to the list's folder
    std::int16_t minLevel = 0;    // shown levels 1–10; both 0: never switched on by the level
    std::int16_t maxLevel = 0;
    std::uint8_t active = 0;      // non-zero: drawn
    bool HasLevelRange() const { return minLevel != 0 || maxLevel != 0; }
    // Whether a chart at level index `levelIndex` (0–9) is inside the range.
    bool LevelInRange(int levelIndex) const { return levelIndex + 1 >= minLevel && levelIndex + 1 <= maxLevel; }
};

struct OverlayListResult {
    bool ok = false;
    std::string message;
};

// "overlay.dat": one entry a line, "active<TAB>min<TAB>max<TAB>path";
// "#" lines are comments. Relative paths are resolved against the list's
// folder when read. Reading replaces `entries` only on success.
OverlayListResult ReadOverlayList(const std::string& path, std::vector<OverlayListEntry>& entries);
// Writes the list atomically.
OverlayListResult WriteOverlayList(const std::string& path, const std::vector<OverlayListEntry>& entries);

// The overlays of a program: the list and the overlays parsed from it, each
// parsed again when its file changes. Shared by every chart.
class COverlayStore {
public:
    std::vector<OverlayListEntry> entries;
    // Files drawn on every chart in addition to the list (the command line's
    // --overlay).
    std::vector<std::string> extraFiles;
    // Bumped whenever the list changes, so that charts drop their overrides.
    int generation = 0;

    // The overlay of `path`, parsed now or reused when the file has not
    // changed since.
    std::shared_ptr<const COverlay> Get(const std::string& path);
    // Reads every overlay a chart may draw (the active entries, those shown
    // by level, the extra files) so that damaged ones are reported now.
    void LoadDrawn();

private:
    struct Cached {
        std::filesystem::file_time_type time;
        std::uintmax_t size = 0;
        std::shared_ptr<const COverlay> overlay;
    };
    std::map<std::string, Cached> m_cache;
};

// The list a program starts with: the user's list at `userListPath` when it
// can be read, else the list that comes with the program ("overlay.dat" in
// the data folders), else none. Replaces the store's entries and bumps its
// generation; false when neither list was read.
bool LoadStartupOverlayList(COverlayStore& store, const std::string& userListPath);

}  // namespace orv
