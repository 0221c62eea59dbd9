#include "match/hipphotometry.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

#include "common/sky.h"
#include "match/hipstars.h"

namespace orv::databuild {

using namespace orv::tycho2;

namespace {

// Relative flux of a magnitude in 0.01 mag.
double FluxOfCenti(std::int16_t magCenti) { return std::pow(10.0, -0.004 * magCenti); }

std::string DescribeSkipped(const BuildStar& s, const KStarsStar& line, double separationArcsec)
{
    char buf[160];
    std::snprintf(buf, sizeof buf, "HIP %u (TYC %d-%u-%u): V %.2f in Hipparcos, %.2f in Tycho-2, %.2f\" apart",
                  s.hip, s.tyc1, s.tyc2, s.tyc3, line.magCenti / 100.0, s.magCenti / 100.0, separationArcsec);
    return buf;
}

}  // namespace

void ApplyHipparcosPhotometry(std::vector<BuildStar>& stars, const std::vector<KStarsStar>& hipparcos,
                              PhotometryReport& report)
{
    report = PhotometryReport{};
    const CHipStars hipStars(stars);

    // Tycho-2 stars with a Hipparcos number, by declination: a line's
    // candidates lie in a strip of ±1″ of declination (about one star in
    // three strips), searched with the exact separation, which needs no care
    // at 0h or at the poles.
    std::vector<std::uint32_t> byDec;
    for (std::size_t i = 0; i < stars.size(); ++i)
        if (stars[i].hip != 0) byDec.push_back(static_cast<std::uint32_t>(i));
    std::sort(byDec.begin(), byDec.end(),
              [&](std::uint32_t a, std::uint32_t b) { return stars[a].decMas < stars[b].decMas; });
    const auto windowMas = static_cast<std::int32_t>(std::ceil(kHipMatchRadiusArcsec * 1000.0));

    // Line → Hipparcos number of the nearest Tycho-2 Hipparcos star.
    std::map<std::uint32_t, std::vector<std::size_t>> linesOf;
    for (std::size_t l = 0; l < hipparcos.size(); ++l) {
        const KStarsStar& line = hipparcos[l];
        if (line.entry != KStarsEntry::Hipparcos) continue;
        auto it = std::lower_bound(byDec.begin(), byDec.end(), line.decMas - windowMas,
                                   [&](std::uint32_t r, std::int32_t dec) { return stars[r].decMas < dec; });
        std::int64_t best = -1;
        double bestSep = kHipMatchRadiusArcsec;
        for (; it != byDec.end() && stars[*it].decMas <= line.decMas + windowMas; ++it) {
            const BuildStar& s = stars[*it];
            const double sep = SeparationArcsec(line.raMas, line.decMas, s.raMas, s.decMas);
            if (sep <= bestSep) {
                bestSep = sep;
                best = *it;
            }
        }
        if (best < 0) {
            ++report.noStarWithin;
            continue;
        }
        linesOf[stars[best].hip].push_back(l);
    }

    for (const auto& [hip, lines] : linesOf) {
        if (lines.size() > 1) {
            // Two Hipparcos entries claim one Tycho-2 star: neither is trusted.
            report.ambiguous += lines.size();
            continue;
        }
        const KStarsStar& line = hipparcos[lines.front()];
        const std::int64_t main = hipStars.Find(hip, 0);
        BuildStar& s = stars[static_cast<std::size_t>(main)];
        const double sep = SeparationArcsec(line.raMas, line.decMas, s.raMas, s.decMas);
        if (sep > kHipMatchRadiusArcsec) {
            ++report.offPosition;
            report.mismatches.push_back(DescribeSkipped(s, line, sep));
            continue;
        }
        double companions = 0.0;
        for (const std::uint32_t rec : *hipStars.All(hip))
            if (rec != main) companions += FluxOfCenti(stars[rec].magCenti);
        if (2.5 * std::log10(1.0 + companions / FluxOfCenti(s.magCenti)) > kCompanionLightLimitMag) {
            ++report.brightCompanions;
            continue;
        }
        if (std::abs(line.magCenti - s.magCenti) >= kHipMagnitudeLimitCenti) {
            ++report.magnitudeMismatch;
            report.mismatches.push_back(DescribeSkipped(s, line, sep));
            continue;
        }
        s.magCenti = line.magCenti;
        s.bvMilli = static_cast<std::int16_t>(line.bvCenti * 10);
        s.origin = static_cast<std::uint16_t>((s.origin | origin::kMagFromHipparcos) & ~origin::kColourFromHip);
        ++report.replaced;
    }
}

}  // namespace orv::databuild
