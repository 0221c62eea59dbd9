#include "sources/stellariumdsoreader.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <unordered_map>

#include "common/linereader.h"
#include "common/textfields.h"

namespace orv::databuild {

namespace {

constexpr double kMasPerRad = 180.0 / 3.14159265358979323846 * 3'600'000.0;

// Qt's data-stream encoding: big-endian integers and IEEE doubles; a string
// is a 32-bit byte count (0xFFFFFFFF for a null string) and UTF-16BE text.
class CBigEndianStream {
public:
    explicit CBigEndianStream(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    bool U32(std::uint32_t& v)
    {
        if (m_bytes.size() - m_pos < 4) return Short();
        v = (std::uint32_t{m_bytes[m_pos]} << 24) | (std::uint32_t{m_bytes[m_pos + 1]} << 16) |
            (std::uint32_t{m_bytes[m_pos + 2]} << 8) | std::uint32_t{m_bytes[m_pos + 3]};
        m_pos += 4;
        return true;
    }
    bool I32(std::int32_t& v)
    {
        std::uint32_t u = 0;
        if (!U32(u)) return false;
        v = static_cast<std::int32_t>(u);
        return true;
    }
    bool F64(double& v)
    {
        std::uint32_t hi = 0, lo = 0;
        if (!U32(hi) || !U32(lo)) return false;
        const std::uint64_t bits = (std::uint64_t{hi} << 32) | lo;
        static_assert(sizeof(double) == sizeof(bits));
        std::memcpy(&v, &bits, sizeof v);
        return true;
    }
    // Strings of the catalogue are ASCII designations; other characters are
    // kept as UTF-8.
    bool String(std::string& s)
    {
        s.clear();
        std::uint32_t n = 0;
        if (!U32(n)) return false;
        if (n == 0xFFFFFFFFu) return true;
        if (n % 2 != 0 || m_bytes.size() - m_pos < n) return Short();
        for (std::uint32_t i = 0; i < n; i += 2) {
            const unsigned c = (unsigned{m_bytes[m_pos + i]} << 8) | m_bytes[m_pos + i + 1];
            if (c < 0x80) {
                s.push_back(static_cast<char>(c));
            } else if (c < 0x800) {
                s.push_back(static_cast<char>(0xC0 | (c >> 6)));
                s.push_back(static_cast<char>(0x80 | (c & 0x3F)));
            } else {
                s.push_back(static_cast<char>(0xE0 | (c >> 12)));
                s.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
                s.push_back(static_cast<char>(0x80 | (c & 0x3F)));
            }
        }
        m_pos += n;
        return true;
    }
    bool AtEnd() const { return m_pos >= m_bytes.size(); }
    std::size_t Position() const { return m_pos; }

private:
    bool Short()
    {
        m_pos = m_bytes.size();
        return false;
    }
    std::span<const std::uint8_t> m_bytes;
    std::size_t m_pos = 0;
};

bool ReadRecord(CBigEndianStream& in, BuildDeepSkyObject& o)
{
    std::uint32_t type = 0;
    std::int32_t pa = 0;
    double ra = 0, dec = 0, majorDeg = 0, minorDeg = 0, unused = 0;
    std::string text;
    bool ok = in.U32(o.stelId) && in.F64(ra) && in.F64(dec) && in.F64(o.magB) && in.F64(o.magV) && in.U32(type) &&
              in.String(o.morphology) && in.F64(majorDeg) && in.F64(minorDeg) && in.I32(pa);
    // Redshift, parallax and distance, each with its error: not used.
    for (int i = 0; ok && i < 6; ++i) ok = in.F64(unused);
    std::uint32_t n = 0;
    auto number = [&](std::uint32_t& into) { ok = ok && in.U32(into); };
    auto skipNumber = [&] { ok = ok && in.U32(n); };
    auto string = [&](std::string& into) { ok = ok && in.String(into); };
    auto skipString = [&] { ok = ok && in.String(text); };
    number(o.ngc);
    number(o.ic);
    number(o.messier);
    number(o.caldwell);
    number(o.barnard);
    number(o.sh2);
    skipNumber();  // van den Bergh
    skipNumber();  // RCW
    number(o.ldn);
    number(o.lbn);
    number(o.collinder);
    number(o.melotte);
    number(o.pgc);
    number(o.ugc);
    skipString();  // Cederblad
    skipNumber();  // Arp
    skipNumber();  // VV
    string(o.pk);
    string(o.png);
    skipString();  // SNR G
    skipString();  // ACO
    skipString();  // HCG
    skipString();  // ESO
    skipString();  // vdB-H
    skipNumber();  // DWB
    skipNumber();  // Trumpler
    skipNumber();  // Stock
    skipNumber();  // Ruprecht
    skipNumber();  // vdB-Ha
    if (!ok) return false;
    if (!std::isfinite(ra) || !std::isfinite(dec)) return false;
    o.raMas = std::llround(ra * kMasPerRad);
    constexpr std::int64_t kFullCircleMas = 360LL * 3'600'000;
    o.raMas = ((o.raMas % kFullCircleMas) + kFullCircleMas) % kFullCircleMas;
    o.decMas = std::llround(dec * kMasPerRad);
    o.type = type <= static_cast<std::uint32_t>(StelDsoType::Unknown) ? static_cast<StelDsoType>(type)
                                                                      : StelDsoType::Unknown;
    o.majorArcmin = std::isfinite(majorDeg) && majorDeg > 0 ? majorDeg * 60.0 : 0.0;
    o.minorArcmin = std::isfinite(minorDeg) && minorDeg > 0 ? minorDeg * 60.0 : 0.0;
    o.paDeg = pa >= 0 && pa < 360 ? pa : -1;
    return true;
}

}  // namespace

bool ParseStellariumDsoStream(std::span<const std::uint8_t> stream, std::vector<BuildDeepSkyObject>& out,
                              std::string& error)
{
    CBigEndianStream in(stream);
    std::string version, edition;
    if (!in.String(version) || !in.String(edition)) {
        error = "the deep-sky catalogue has no header";
        return false;
    }
    if (version != kStellariumDsoVersion) {
        error = "the deep-sky catalogue is of format version " + version + "; this builder reads " +
                kStellariumDsoVersion;
        return false;
    }
    while (!in.AtEnd()) {
        const std::size_t at = in.Position();
        BuildDeepSkyObject o;
        if (!ReadRecord(in, o)) {
            error = "malformed deep-sky record at byte " + std::to_string(at) + " of the uncompressed catalogue";
            return false;
        }
        out.push_back(std::move(o));
    }
    return true;
}

bool ReadStellariumDso(const std::string& path, std::vector<BuildDeepSkyObject>& out, const Progress& progress,
                       std::string& error)
{
    gzFile f = gzopen(path.c_str(), "rb");
    if (f == nullptr) {
        error = "cannot open " + path;
        return false;
    }
    std::vector<std::uint8_t> bytes;
    std::uint8_t buffer[1 << 16];
    int n = 0;
    while ((n = gzread(f, buffer, sizeof buffer)) > 0) bytes.insert(bytes.end(), buffer, buffer + n);
    const bool failed = n < 0;
    gzclose(f);
    if (failed) {
        error = "cannot decompress " + path;
        return false;
    }
    if (!ParseStellariumDsoStream(bytes, out, error)) {
        error = path + ": " + error;
        return false;
    }
    progress("read " + std::to_string(out.size()) + " deep-sky objects from " + path);
    return true;
}

bool ParseDsoNameLine(std::string_view line, DsoNameLine& out)
{
    if (line.empty() || line[0] == '#' || line.size() < 21) return false;
    out.prefix = std::string(Trim(Columns(line, 1, 5)));
    out.id = std::string(Trim(Columns(line, 6, 20)));
    const std::string_view rest = line.substr(20);
    const std::size_t open = rest.find("_(\"");
    if (open == std::string_view::npos) return false;
    const std::size_t close = rest.find("\")", open + 3);
    if (close == std::string_view::npos) return false;
    out.name = std::string(rest.substr(open + 3, close - open - 3));
    return !out.prefix.empty() && !out.id.empty() && !out.name.empty();
}

bool ReadDsoNames(const std::string& path, std::vector<DsoNameLine>& out, std::string& error)
{
    return ReadLines(
        path,
        [&](std::string_view line, std::size_t, std::string&) {
            DsoNameLine n;
            if (ParseDsoNameLine(line, n)) out.push_back(std::move(n));
            return true;
        },
        error);
}

std::size_t AttachCommonNames(std::vector<BuildDeepSkyObject>& objects, const std::vector<DsoNameLine>& names)
{
    // Keyed "PREFIX id" in the file's spelling; each object looks up its own
    // designations in the order a name is most likely filed under.
    std::unordered_map<std::string, std::vector<const std::string*>> byKey;
    for (const DsoNameLine& n : names) byKey[n.prefix + " " + n.id].push_back(&n.name);
    std::size_t named = 0;
    for (BuildDeepSkyObject& o : objects) {
        std::vector<std::string> keys;
        if (o.messier) keys.push_back("M " + std::to_string(o.messier));
        if (o.ngc) keys.push_back("NGC " + std::to_string(o.ngc));
        if (o.ic) keys.push_back("IC " + std::to_string(o.ic));
        if (o.caldwell) keys.push_back("C " + std::to_string(o.caldwell));
        if (o.pgc) keys.push_back("PGC " + std::to_string(o.pgc));
        if (o.ugc) keys.push_back("UGC " + std::to_string(o.ugc));
        if (o.sh2) keys.push_back("SH2 " + std::to_string(o.sh2));
        if (o.barnard) keys.push_back("B " + std::to_string(o.barnard));
        if (o.ldn) keys.push_back("LDN " + std::to_string(o.ldn));
        if (o.lbn) keys.push_back("LBN " + std::to_string(o.lbn));
        if (o.collinder) keys.push_back("CR " + std::to_string(o.collinder));
        if (o.melotte) keys.push_back("MEL " + std::to_string(o.melotte));
        if (!o.png.empty()) keys.push_back("PNG " + o.png);
        // Every name of the object, the first one first, separated by "; ".
        std::vector<const std::string*> taken;
        std::string all;
        for (const std::string& k : keys) {
            const auto it = byKey.find(k);
            if (it == byKey.end()) continue;
            for (const std::string* name : it->second) {
                if (std::any_of(taken.begin(), taken.end(), [&](const std::string* t) { return *t == *name; }))
                    continue;
                taken.push_back(name);
                all += all.empty() ? *name : "; " + *name;
            }
        }
        if (!all.empty()) {
            o.commonName = std::move(all);
            ++named;
        }
    }
    return named;
}

}  // namespace orv::databuild
