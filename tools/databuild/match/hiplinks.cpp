#include "match/hiplinks.h"

#include <algorithm>

namespace orv::databuild {

using namespace orv::tycho2;

std::int64_t CHipLinker::Find(std::uint32_t hip, char component)
{
    const std::int64_t rec = m_hipStars.Find(hip, component);
    if (rec < 0) m_unmatched.insert(hip);
    return rec;
}

std::int64_t CHipLinker::Attach(std::uint32_t hip, std::uint16_t flag)
{
    const std::int64_t rec = Find(hip, 0);
    if (rec >= 0) m_stars[static_cast<std::size_t>(rec)].flags |= flag;
    return rec;
}

void LinkHipparcosAstrometry(CHipLinker& linker, const std::unordered_map<std::uint32_t, float>& parallaxMas,
                             const std::unordered_map<std::uint32_t, std::int16_t>& bvMilli, CrossReport& report)
{
    // The parallax belongs to the system, so every component takes it.
    auto& stars = linker.Stars();
    for (auto& s : stars) {
        if (s.hip == 0) continue;
        if (const auto it = parallaxMas.find(s.hip); it != parallaxMas.end()) {
            s.parallaxMas = it->second;
            ++report.parallaxes;
        }
    }
    for (const auto& [h, bv] : bvMilli) {
        const std::int64_t rec = linker.HipStars().Find(h, 0);
        if (rec >= 0 && stars[rec].bvMilli == kNoColour) {
            stars[rec].bvMilli = bv;
            stars[rec].origin |= origin::kColourFromHip;
            ++report.hipColours;
        }
    }
}

namespace {

// A table that keeps one entry per key: the first one inserted (callers
// insert in order of preference).
class CFirstPerKey {
public:
    explicit CFirstPerKey(std::vector<KeyedValue>& list) : m_list(list) {}
    void Insert(std::int64_t key, std::uint32_t value)
    {
        if (m_seen.insert(key).second) m_list.push_back({key, value});
    }

private:
    std::vector<KeyedValue>& m_list;
    std::unordered_set<std::int64_t> m_seen;
};

}  // namespace

void LinkCrossIdentifications(CHipLinker& linker, const std::vector<CrossIdLine>& lines, CrossTables& out)
{
    auto& stars = linker.Stars();
    for (std::size_t i = 0; i < stars.size(); ++i)
        if (stars[i].hip != 0) out.tychoToHip.push_back({stars[i].TychoId(), stars[i].hip});
    CFirstPerKey hipTo(out.hipToRecord);
    for (std::size_t i = 0; i < stars.size(); ++i)
        if (stars[i].hip != 0)
            hipTo.Insert(stars[i].hip, static_cast<std::uint32_t>(linker.HipStars().Find(stars[i].hip, 0)));

    // Candidate (number, record) pairs, ordered brightest first before the
    // unique insertion so that a number shared by two stars names the brighter.
    enum class Numbering : std::uint8_t { Sao, Hd, Hr };
    struct Candidate {
        std::uint32_t number;
        std::uint32_t record;
        Numbering which;
    };
    std::vector<Candidate> candidates;
    CFirstPerKey toSao(out.tychoToSao), toHd(out.tychoToHd), toHr(out.tychoToHr);
    for (const auto& line : lines) {
        const std::int64_t rec = linker.Find(line.hip, line.component);
        if (rec < 0) continue;
        const auto r = static_cast<std::uint32_t>(rec);
        const std::int64_t id = stars[r].TychoId();
        if (line.sao) {
            toSao.Insert(id, line.sao);
            candidates.push_back({line.sao, r, Numbering::Sao});
        }
        if (line.hd) {
            toHd.Insert(id, line.hd);
            candidates.push_back({line.hd, r, Numbering::Hd});
        }
        if (line.hr) {
            toHr.Insert(id, line.hr);
            candidates.push_back({line.hr, r, Numbering::Hr});
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(), [&](const Candidate& a, const Candidate& b) {
        return stars[a.record].magCenti < stars[b.record].magCenti;
    });
    CFirstPerKey saoTo(out.saoToRecord), hdTo(out.hdToRecord), hrTo(out.hrToRecord);
    for (const auto& c : candidates) {
        switch (c.which) {
        case Numbering::Sao: saoTo.Insert(c.number, c.record); break;
        case Numbering::Hd: hdTo.Insert(c.number, c.record); break;
        case Numbering::Hr: hrTo.Insert(c.number, c.record); break;
        }
    }

    std::unordered_set<std::int64_t> hrIds;
    for (const auto& e : out.tychoToHr) hrIds.insert(e.key);
    for (auto& s : stars)
        if (hrIds.count(s.TychoId())) s.flags |= flag::kBrightStar;
}

namespace {

// For each star of `list` for which `pick` chooses an item (a pointer to it,
// or nullptr to pass the star over), attaches the star with `flag` and adds
// `make(record, item)` to the result, in the order of the list.
template <typename Out, typename Value, typename Pick, typename Make>
std::vector<Out> LinkEach(CHipLinker& linker, const std::map<std::uint32_t, Value>& list, std::uint16_t flag,
                          Pick pick, Make make)
{
    std::vector<Out> out;
    for (const auto& [h, value] : list) {
        const auto* item = pick(value);
        if (item == nullptr) continue;
        const std::int64_t rec = linker.Attach(h, flag);
        if (rec < 0) continue;
        out.push_back(make(static_cast<std::uint32_t>(rec), *item));
    }
    return out;
}

// The first entry of `list` that `fits`, or nullptr.
template <typename T, typename Fits>
const T* FirstFitting(const std::vector<T>& list, Fits fits)
{
    const auto it = std::find_if(list.begin(), list.end(), fits);
    return it == list.end() ? nullptr : &*it;
}

}  // namespace

std::vector<NamedStar> LinkProperNames(CHipLinker& linker,
                                       const std::map<std::uint32_t, std::vector<std::string>>& names)
{
    // The first name listed is the star's usual one; names that do not fit
    // the field are passed over.
    return LinkEach<NamedStar>(
        linker, names, flag::kProperName,
        [](const std::vector<std::string>& list) {
            return FirstFitting(list, [](const std::string& n) { return !n.empty() && n.size() <= kNameMaxBytes; });
        },
        [&](std::uint32_t rec, const std::string& name) { return NamedStar{linker.Stars()[rec].TychoId(), name}; });
}

std::vector<PropertyOfStar> LinkDesignations(CHipLinker& linker,
                                             const std::map<std::uint32_t, StarProperty>& properties)
{
    return LinkEach<PropertyOfStar>(
        linker, properties, flag::kBayerFlamsteed, [](const StarProperty& p) { return &p; },
        [&](std::uint32_t rec, const StarProperty& p) { return PropertyOfStar{linker.Stars()[rec].TychoId(), p}; });
}

std::vector<VariableOfStar> LinkVariables(CHipLinker& linker,
                                          const std::map<std::uint32_t, std::vector<VariableStar>>& variables)
{
    return LinkEach<VariableOfStar>(
        linker, variables, flag::kVariable,
        [](const std::vector<VariableStar>& list) {
            return FirstFitting(list, [](const VariableStar& v) {
                return v.name.size() < 12 && v.type.size() < 12 && v.band.size() < 3;
            });
        },
        [&](std::uint32_t rec, const VariableStar& v) { return VariableOfStar{linker.Stars()[rec].TychoId(), v}; });
}

std::vector<DoubleOfStar> LinkDoubles(CHipLinker& linker,
                                      const std::map<std::uint32_t, std::optional<DoubleDesignation>>& doubles)
{
    using Designation = std::optional<DoubleDesignation>;
    return LinkEach<DoubleOfStar>(
        linker, doubles, flag::kDouble, [](const Designation& d) { return &d; },
        [](std::uint32_t rec, const Designation& d) { return DoubleOfStar{rec, d}; });
}

void LinkHipparcosLists(Catalogue& catalogue, const HipData& hip, StarTables& out, CrossReport& report)
{
    CHipLinker linker(catalogue.stars);
    report = CrossReport{};
    report.hipStars = linker.HipStars().Count();
    out = StarTables{};
    LinkHipparcosAstrometry(linker, hip.parallaxMas, hip.bvMilli, report);
    LinkCrossIdentifications(linker, hip.crossIds, out.cross);
    out.names = LinkProperNames(linker, hip.properNames);
    out.properties = LinkDesignations(linker, hip.properties);
    out.variables = LinkVariables(linker, hip.variables);
    out.doubles = LinkDoubles(linker, hip.doubles);

    report.saoEntries = out.cross.tychoToSao.size();
    report.hdEntries = out.cross.tychoToHd.size();
    report.hrEntries = out.cross.tychoToHr.size();
    report.names = out.names.size();
    report.properties = out.properties.size();
    report.variables = out.variables.size();
    report.doubles = out.doubles.size();
    report.unmatchedHip = linker.UnmatchedCount();
}

}  // namespace orv::databuild
