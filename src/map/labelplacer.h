// Keeping the chart's texts apart: a register of the rectangles already
// taken on the chart (labels, star discs, marks) in a coarse grid of cells,
// and the choice, for each new label, of the first of its candidate places
// that overlaps nothing taken and lies on the chart. Labels are offered in
// order of importance (grid labels, then stars from the brightest), so a
// label that finds no free place is the least important one and is left out.
#pragma once

#include <cstdint>
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

    // Marks `r` as taken.
    void Occupy(const LabelRect& r);
    // True when `r` lies on the chart and overlaps nothing taken.
    bool IsFree(const LabelRect& r) const;
    // The index of the first free candidate, which is then taken; −1 when
    // every candidate collides or leaves the chart.
    int Place(std::span<const LabelRect> candidates);

    std::size_t Count() const { return m_rects.size(); }

private:
    int CellX(double x) const;
    int CellY(double y) const;

    double m_width, m_height, m_cell;
    int m_cols, m_rows;
    std::vector<LabelRect> m_rects;
    std::vector<std::vector<std::uint32_t>> m_cells;  // indices into m_rects
};

}  // namespace orv
