// Attaching stellarium-data's Hipparcos-keyed lists (model/hipfacts.h) to the
// records of the assembled catalogue: the parallax and colour go into the
// records themselves; cross identifications, names, designations, variables
// and doubles become the tables of model/startables.h, and each star so
// listed gets the flag bit that tells a reader of the catalogue to look it up.
// Run after AssembleCatalogue: the tables hold final record numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "match/hipstars.h"
#include "model/buildstar.h"
#include "model/hipfacts.h"
#include "model/startables.h"

namespace orv::databuild {

// Counts of what the cross identification attached, for the build report.
struct CrossReport {
    std::size_t hipStars = 0, saoEntries = 0, hdEntries = 0, hrEntries = 0;
    std::size_t names = 0, properties = 0, variables = 0, doubles = 0, parallaxes = 0, hipColours = 0;
    std::size_t unmatchedHip = 0;  // HIP numbers in the lists with no Tycho-2 star
};

// The records of a catalogue looked up by Hipparcos number, noting the
// numbers of the lists that no Tycho-2 star carries (a few dozen Hipparcos
// entries are not in Tycho-2).
class CHipLinker {
public:
    explicit CHipLinker(std::vector<BuildStar>& stars) : m_stars(stars), m_hipStars(stars) {}

    std::vector<BuildStar>& Stars() { return m_stars; }
    const CHipStars& HipStars() const { return m_hipStars; }

    // The record standing for HIP `hip` (CCDM component letter `component`,
    // 0 for the system), or −1 with `hip` noted as unmatched.
    std::int64_t Find(std::uint32_t hip, char component);
    // The record standing for the system HIP `hip`, given the flag bit
    // `flag`; −1 (and `hip` noted) when no star stands for it.
    std::int64_t Attach(std::uint32_t hip, std::uint16_t flag);

    std::size_t UnmatchedCount() const { return m_unmatched.size(); }

private:
    std::vector<BuildStar>& m_stars;
    CHipStars m_hipStars;
    std::unordered_set<std::uint32_t> m_unmatched;
};

// The Hipparcos parallax of the system for every Tycho-2 entry of a
// Hipparcos star; the Hipparcos B−V for the entry standing for the system
// where Tycho-2 gives no colour (origin::kColourFromHip).
void LinkHipparcosAstrometry(CHipLinker& linker, const std::unordered_map<std::uint32_t, float>& parallaxMas,
                             const std::unordered_map<std::uint32_t, std::int16_t>& bvMilli, CrossReport& report);

// The HIP, SAO, HD and HR cross identifications. Number → record keeps the
// brightest record per number; Tycho identifier → number keeps the first line
// of the list per star. Stars with an HR number get flag::kBrightStar.
void LinkCrossIdentifications(CHipLinker& linker, const std::vector<CrossIdLine>& lines, CrossTables& out);

// The first proper name of each star that fits the name file's field
// (tycho2::kNameMaxBytes); stars with none that fits are left out.
std::vector<NamedStar> LinkProperNames(CHipLinker& linker,
                                       const std::map<std::uint32_t, std::vector<std::string>>& names);
std::vector<PropertyOfStar> LinkDesignations(CHipLinker& linker,
                                             const std::map<std::uint32_t, StarProperty>& properties);
// The first GCVS entry of each star whose designation and type fit their
// 12-byte fields and whose band fits its 3-byte field (terminators included).
std::vector<VariableOfStar> LinkVariables(CHipLinker& linker,
                                          const std::map<std::uint32_t, std::vector<VariableStar>>& variables);
std::vector<DoubleOfStar> LinkDoubles(CHipLinker& linker,
                                      const std::map<std::uint32_t, std::optional<DoubleDesignation>>& doubles);

// All of the above, in that order, for the lists of `hip`.
void LinkHipparcosLists(Catalogue& catalogue, const HipData& hip, StarTables& out, CrossReport& report);

}  // namespace orv::databuild
