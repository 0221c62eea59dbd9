#include "writers/starrecords.h"

namespace orv::databuild {

using namespace orv::tycho2;

OutputFile WriteStarRecords(const std::vector<BuildStar>& stars)
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
    return {std::string(kCatalogueDiskName), std::move(w.Data())};
}

}  // namespace orv::databuild
