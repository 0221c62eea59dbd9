// The Tycho-2 record that stands for a Hipparcos entry. Tycho-2 resolves some
// Hipparcos entries into several stars, each carrying the entry's HIP number
// and the CCDM letters of its component ("A", "B", "AB"); the lists keyed by
// Hipparcos number mean either the whole system or one lettered component.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "model/buildstar.h"

namespace orv::databuild {

class CHipStars {
public:
    explicit CHipStars(const std::vector<BuildStar>& stars);

    // The record standing for HIP `hip` (component letter `component`, 0 for
    // the system as a whole), or −1. A component is matched to the Tycho-2
    // entry whose CCDM letters contain it; the system to the entry with no
    // letters or with "A"; ties go to the brightest.
    std::int64_t Find(std::uint32_t hip, char component) const;

    // Every record carrying HIP `hip`, or nullptr.
    const std::vector<std::uint32_t>* All(std::uint32_t hip) const;

    // How many Hipparcos numbers the catalogue carries.
    std::size_t Count() const { return m_byHip.size(); }

private:
    const std::vector<BuildStar>& m_stars;
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> m_byHip;
};

}  // namespace orv::databuild
