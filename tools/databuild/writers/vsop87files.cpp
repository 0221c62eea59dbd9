#include "writers/vsop87files.h"

#include <cstdint>
#include <utility>

#include "common/textfields.h"
#include "util/binaryio.h"

namespace orv::databuild {

bool WriteVsop87Files(const std::array<Vsop87Planet, 8>& planets, std::vector<OutputFile>& out, std::string& error)
{
    CByteWriter index;
    CByteWriter terms;
    std::size_t next = 0;
    for (std::size_t body = 0; body < planets.size(); ++body) {
        // Only the first entry's term index is read; the others carry the
        // index of their own series too, which costs nothing and helps a
        // reader checking the file by hand.
        for (int c = 0; c < 3; ++c) {
            for (int power = 0; power < 6; ++power) {
                const std::vector<Vsop87Term>& series = planets[body].series[c][power];
                if (next > 32767 || series.size() > 32767)
                    return Fail(error, "the VSOP87 series of " + std::string(kVsop87PlanetFiles[body]) +
                                           " do not fit the index's 16-bit fields");
                index.I16(static_cast<std::int16_t>(next));
                index.I16(static_cast<std::int16_t>(series.size()));
                for (const Vsop87Term& t : series) {
                    terms.F64(t.a);
                    terms.F64(t.b);
                    terms.F64(t.c);
                }
                next += series.size();
            }
        }
    }
    out.push_back({kVsop87IndexPath, std::move(index.Data())});
    out.push_back({kVsop87TermsPath, std::move(terms.Data())});
    return true;
}

}  // namespace orv::databuild
