// Keeping the chart's texts apart: a register of the rectangles already
// taken on the chart (labels, star discs, marks) in a coarse grid of cells,
// and the choice, for each new label, of the first of its candidate places
// that overlaps nothing taken and lies on the chart. Labels are offered in
// order of importance (grid labels, then stars from the brightest), so a
// label that finds no free place is the least important one and is left out.
//
// Star discs are registered with their magnitude. In a rich field the discs
// of faint stars cover the sky round a bright star so closely that no place
// is wholly free, and a chart that then left out the label of δ Orionis
// while labelling faint stars elsewhere would be no use at the eyepiece: a
// bright star's label may therefore, when nothing else is free, cover the
// discs of stars much fainter than itself (never a label, a mark or a
// brighter star's disc).
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace orv {

struct LabelRect {
    double x0 = 0.0, y0 = 0.0, x1 = 0.0, y1 = 0.0;  // pixels, x0 ≤ x1, y0 ≤ y1
    bool Overlaps(const LabelRect& o) const { return x0 < o.x1 && o.x0 < x1 && y0 < o.y1 && o.y0 < y1; }
};

class CLabelPlacer {
public:
    // A chart of `widthPx` × `heightPx`, cells of about `cellPx`.
    CLabelPlacer(double widthPx, double heightPx, double cellPx = 48.0);

    // Magnitude (0.01 mag) of what always blocks a label: texts and marks.
    static constexpr int kAlwaysBlocks = std::numeric_limits<int>::min();
    // Tolerance of Place: nothing taken may be covered.
    static constexpr int kCoverNothing = std::numeric_limits<int>::max();

    // Marks `r` as taken; a star disc passes its magnitude (0.01 mag).
    void Occupy(const LabelRect& r, int magCenti = kAlwaysBlocks);
    // True when `r` lies on the chart and overlaps nothing taken except
    // discs of stars fainter than `coverFainterThanCenti`.
    bool IsFree(const LabelRect& r, int coverFainterThanCenti = kCoverNothing) const;
    // The index of the first free candidate, which is then taken; −1 when
    // every candidate collides or leaves the chart.
    int Place(std::span<const LabelRect> candidates, int coverFainterThanCenti = kCoverNothing);

    std::size_t Count() const { return m_rects.size(); }

private:
    int CellX(double x) const;
    int CellY(double y) const;

    double m_width, m_height, m_cell;
    int m_cols, m_rows;
    std::vector<LabelRect> m_rects;
    std::vector<int> m_magCenti;  // per rectangle
    std::vector<std::vector<std::uint32_t>> m_cells;  // indices into m_rects
};

}  // namespace orv
