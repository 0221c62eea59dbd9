#include "match/hipstars.h"

#include <cstring>
#include <string_view>

namespace orv::databuild {

CHipStars::CHipStars(const std::vector<BuildStar>& stars) : m_stars(stars)
{
    for (std::size_t i = 0; i < stars.size(); ++i)
        if (stars[i].hip != 0) m_byHip[stars[i].hip].push_back(static_cast<std::uint32_t>(i));
}

std::int64_t CHipStars::Find(std::uint32_t hip, char component) const
{
    const auto it = m_byHip.find(hip);
    if (it == m_byHip.end()) return -1;
    std::int64_t best = -1;
    int bestRank = 3;
    for (const std::uint32_t rec : it->second) {
        const BuildStar& s = m_stars[rec];
        const std::string_view ccdm(s.ccdm, strnlen(s.ccdm, sizeof s.ccdm));
        int rank = 2;
        if (component != 0) {
            if (ccdm.size() == 1 && ccdm[0] == component) rank = 0;
            else if (ccdm.find(component) != std::string_view::npos) rank = 1;
        } else {
            if (ccdm.empty()) rank = 0;
            else if (ccdm.find('A') != std::string_view::npos) rank = 1;
        }
        if (rank < bestRank || (rank == bestRank && s.magCenti < m_stars[best].magCenti)) {
            best = rec;
            bestRank = rank;
        }
    }
    return best;
}

const std::vector<std::uint32_t>* CHipStars::All(std::uint32_t hip) const
{
    const auto it = m_byHip.find(hip);
    return it == m_byHip.end() ? nullptr : &it->second;
}

}  // namespace orv::databuild
