#include "writers/constellations.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orv::databuild {

namespace {
constexpr int kConstellations = 88;
}

OutputFile WriteConstellationFigures(const std::vector<ConstellationFigure>& figures)
{
    // Lines grouped by constellation, in constellation order; a constellation
    // listed twice keeps both lists.
    std::array<std::vector<FigureLine>, kConstellations> byNumber;
    for (const ConstellationFigure& f : figures)
        if (f.constellation >= 0 && f.constellation < kConstellations)
            byNumber[static_cast<std::size_t>(f.constellation)].insert(
                byNumber[static_cast<std::size_t>(f.constellation)].end(), f.lines.begin(), f.lines.end());
    CByteWriter w;
    w.U32(kConstellations);
    std::uint32_t first = 0;
    for (int c = 0; c < kConstellations; ++c) {
        const auto count = static_cast<std::uint32_t>(byNumber[static_cast<std::size_t>(c)].size());
        w.U8(static_cast<std::uint8_t>(c));
        w.U8(0);
        w.U16(0);
        w.U32(first);
        w.U32(count);
        first += count;
    }
    for (const auto& lines : byNumber)
        for (const FigureLine& l : lines) {
            w.U16(kFigureLineCode);
            w.U32(l.hipA);
            w.U32(l.hipB);
        }
    return {"star/Tycho2/ConstFig.dat", std::move(w.Data())};
}

OutputFile WriteNamePositions(const std::vector<NamePosition>& positions)
{
    CByteWriter w;
    for (const NamePosition& p : positions) {
        w.U8(static_cast<std::uint8_t>(p.constellation));
        w.I16(static_cast<std::int16_t>(std::lround(p.raJ2000Deg * 60.0)));
        w.I16(static_cast<std::int16_t>(std::lround(p.decJ2000Deg * 60.0)));
    }
    return {"data/conname.dat", std::move(w.Data())};
}

OutputFile WriteConstellationNames(const std::vector<ConstellationNames>& names)
{
    std::array<const ConstellationNames*, kConstellations> byNumber{};
    for (const ConstellationNames& n : names)
        if (n.constellation >= 0 && n.constellation < kConstellations)
            byNumber[static_cast<std::size_t>(n.constellation)] = &n;
    CByteWriter w;
    for (const ConstellationNames* n : byNumber) {
        w.FixedText(n ? n->abbreviation : "", 4);
        w.FixedText(n ? n->name : "", 30);
        w.FixedText(n ? n->genitive : "", 30);
    }
    return {"data/constnam.dat", std::move(w.Data())};
}

OutputFile WriteConstellationBoundaries(const std::vector<RomanStrip>& strips, const std::vector<BoundaryEdge>& edges)
{
    CByteWriter w;
    w.U32(static_cast<std::uint32_t>(strips.size()));
    w.U32(static_cast<std::uint32_t>(edges.size()));
    // Strips in the source's order: by decreasing declination, which the
    // first-match search depends on.
    for (const RomanStrip& s : strips) {
        w.I32(s.raLowSecTime);
        w.I32(s.raHighSecTime);
        w.I16(static_cast<std::int16_t>(s.decLowArcmin));
        w.U8(static_cast<std::uint8_t>(s.constellation));
        w.U8(0);
    }
    for (const BoundaryEdge& e : edges) {
        w.U8(static_cast<std::uint8_t>(e.left));
        w.U8(static_cast<std::uint8_t>(e.right));
        w.U16(0);
        w.I32(e.ra1SecTime);
        w.I32(e.dec1Arcsec);
        w.I32(e.ra2SecTime);
        w.I32(e.dec2Arcsec);
    }
    return {"data/conbound.dat", std::move(w.Data())};
}

}  // namespace orv::databuild
