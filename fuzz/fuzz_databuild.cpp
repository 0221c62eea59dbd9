// The data builder's readers of its public sources: every line parser fed
// each line of the input (Tycho-2 main, supplement and index lines,
// cross-identifications, GCVS, kstars stars, star designations, constellation
// figures, names, strips and boundaries, stellarium deep-sky names, the SAC
// database), and stellarium's binary deep-sky stream and astronomia's series
// literals fed the whole input. A source replaced by a broken or hostile
// file must be refused with a message, never crash the build.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "match/delporteedges.h"
#include "sources/astronomiareader.h"
#include "sources/constellationreader.h"
#include "sources/crossidreader.h"
#include "sources/gcvsreader.h"
#include "sources/kstarsreader.h"
#include "sources/sacreader.h"
#include "sources/starnamereader.h"
#include "sources/stellariumdsoreader.h"
#include "sources/tycho2reader.h"
#include "fuzzsupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace orv::databuild;
    const std::string_view text = orv::fuzz::Text({data, size});
    std::string error;
    std::size_t at = 0;
    int lines = 0;
    while (at <= text.size() && ++lines < 200) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line = text.substr(at, end - at);
        at = end + 1;
        BuildStar star;
        ParseMainLine(line, star, error);
        ParseSupplementLine(line, star, error);
        IndexLine index;
        ParseIndexLine(line, index, error);
        CrossIdLine cross;
        ParseCrossIdLine(line, cross, error);
        VariableStar variable;
        ParseGcvsLine(line, variable, error);
        KStarsStar kstar;
        ParseKStarsStarLine(line, kstar, error);
        StarProperty property;
        ParseBayerFlamsteed(line, property);
        ConstellationFigure figure;
        ParseFigureLine(line, figure, error);
        ConstellationNames names;
        ParseNameLine(line, names, error);
        RomanStrip strip;
        ParseRomanStrip(line, strip, error);
        NamePosition position;
        ParseNamePosition(line, position, error);
        DsoNameLine dsoName;
        ParseDsoNameLine(line, dsoName);
        BuildSacObject sac;
        ParseSacLine(line, sac, error);
    }
    std::vector<BoundarySegment> segments;
    if (ParseBoundarySegments(text, segments, error)) {
        std::vector<BoundaryEdge> edges;
        RecoverDelporteEdges(segments, edges, error);
    }
    std::vector<BuildDeepSkyObject> objects;
    ParseStellariumDsoStream({data, size}, objects, error);
    Vsop87Planet planet;
    ParseVsop87DLiteral(text, planet, error);
    ElpSeries elp;
    ParseElpLiteral(text, elp, error);
    return 0;
}
