#include "map/labelplacer.h"

#include <algorithm>
#include <cmath>

namespace orv {

CLabelPlacer::CLabelPlacer(double widthPx, double heightPx, double cellPx)
    : m_width(std::max(widthPx, 1.0)), m_height(std::max(heightPx, 1.0)), m_cell(std::max(cellPx, 4.0))
{
    m_cols = std::max(1, static_cast<int>(std::ceil(m_width / m_cell)));
    m_rows = std::max(1, static_cast<int>(std::ceil(m_height / m_cell)));
    // Very large surfaces (print pages) keep the cell count bounded.
    while (static_cast<long long>(m_cols) * m_rows > 1 << 16) {
        m_cell *= 2.0;
        m_cols = std::max(1, static_cast<int>(std::ceil(m_width / m_cell)));
        m_rows = std::max(1, static_cast<int>(std::ceil(m_height / m_cell)));
    }
    m_cells.resize(static_cast<std::size_t>(m_cols) * static_cast<std::size_t>(m_rows));
}

int CLabelPlacer::CellX(double x) const
{
    if (!(x > 0.0)) return 0;
    return std::min(m_cols - 1, static_cast<int>(x / m_cell));
}

int CLabelPlacer::CellY(double y) const
{
    if (!(y > 0.0)) return 0;
    return std::min(m_rows - 1, static_cast<int>(y / m_cell));
}

void CLabelPlacer::Occupy(const LabelRect& r, int magCenti)
{
    if (!(r.x1 > 0.0 && r.y1 > 0.0 && r.x0 < m_width && r.y0 < m_height)) return;
    const auto index = static_cast<std::uint32_t>(m_rects.size());
    m_rects.push_back(r);
    m_magCenti.push_back(magCenti);
    for (int cy = CellY(r.y0); cy <= CellY(r.y1); ++cy)
        for (int cx = CellX(r.x0); cx <= CellX(r.x1); ++cx)
            m_cells[static_cast<std::size_t>(cy) * static_cast<std::size_t>(m_cols) + static_cast<std::size_t>(cx)]
                .push_back(index);
}

bool CLabelPlacer::IsFree(const LabelRect& r, int coverFainterThanCenti) const
{
    if (!(r.x0 >= 0.0 && r.y0 >= 0.0 && r.x1 <= m_width && r.y1 <= m_height)) return false;
    for (int cy = CellY(r.y0); cy <= CellY(r.y1); ++cy)
        for (int cx = CellX(r.x0); cx <= CellX(r.x1); ++cx)
            for (std::uint32_t i :
                 m_cells[static_cast<std::size_t>(cy) * static_cast<std::size_t>(m_cols) + static_cast<std::size_t>(cx)])
                if (m_magCenti[i] <= coverFainterThanCenti && m_rects[i].Overlaps(r)) return false;
    return true;
}

int CLabelPlacer::Place(std::span<const LabelRect> candidates, int coverFainterThanCenti)
{
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        if (IsFree(candidates[i], coverFainterThanCenti)) {
            Occupy(candidates[i]);
            return static_cast<int>(i);
        }
    }
    return -1;
}

}  // namespace orv
