#include "catalog/stars/stardesignation.h"

#include <array>
#include <cctype>
#include <charconv>
#include <cstdio>

#include "app/strings.h"
#include "catalog/stars/crossindex.h"
#include "util/text.h"

namespace orv {

namespace {

constexpr std::array<std::string_view, 24> kGreek = {
    "alpha", "beta", "gamma", "delta",   "epsilon", "zeta", "eta", "theta", "iota", "kappa", "lambda", "mu",
    "nu",    "xi",   "omicron", "pi",    "rho",     "sigma", "tau", "upsilon", "phi", "chi", "psi",  "omega"};
constexpr std::string_view kSymbolLetters = "abgdezhqiklmnxoprstufcyw";

bool ParseInt(std::string_view s, std::int64_t& v)
{
    s = TrimBlanks(s);
    if (s.empty()) return false;
    const auto [p, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
    return ec == std::errc() && p == s.data() + s.size();
}

std::string_view ConstellationWord(int number, ConstellationText style)
{
    return style == ConstellationText::Abbreviation ? ConstellationAbbreviation(number) : ConstellationGenitive(number);
}

}  // namespace

std::string_view GreekLetterName(int index)
{
    return index >= 0 && index < 24 ? kGreek[static_cast<std::size_t>(index)] : std::string_view();
}

char GreekSymbolLetter(int index) { return index >= 0 && index < 24 ? kSymbolLetters[static_cast<std::size_t>(index)] : ' '; }

std::string BayerFlamsteedText(const StarProperty& p, ConstellationText style)
{
    const std::string constellation(ConstellationWord(p.constellation, style));
    char buf[96];
    if (p.greek < 24) {
        const std::string greek(GreekLetterName(p.greek));
        if (p.superscript != 0)
            std::snprintf(buf, sizeof buf, "%s%1d %s", greek.c_str(), p.superscript, constellation.c_str());
        else
            std::snprintf(buf, sizeof buf, "%s %s", greek.c_str(), constellation.c_str());
        return buf;
    }
    if (p.flamsteed != 0) {
        std::snprintf(buf, sizeof buf, "%1d %s", p.flamsteed, constellation.c_str());
        return buf;
    }
    return {};
}

std::string TychoText(int tyc1, int tyc2, int tyc3)
{
    char buf[48];
    std::snprintf(buf, sizeof buf, "TYC %1d-%1d-%1d", tyc1, tyc2, tyc3);
    return buf;
}

std::string StarDesignation(const CTycho2Catalogue& catalogue, const StarRecord& star, std::uint32_t recordNumber,
                            ProperNames names, ConstellationText style)
{
    const std::int64_t id = star.TychoId();
    if ((star.flags & tycho2::flag::kProperName) && names == ProperNames::Show) {
        const std::string_view name = catalogue.ProperName(id);
        if (!name.empty()) return std::string(name);
    }
    if (star.flags & tycho2::flag::kBayerFlamsteed) {
        std::string text = BayerFlamsteedText(catalogue.Property(id), style);
        if (!text.empty()) return text;
    }
    if (star.flags & tycho2::flag::kVariable) {
        if (const auto v = FindVariableStar(id); v && !v->name.empty()) return v->name;
    }
    if (star.flags & tycho2::flag::kDouble) {
        if (const auto d = FindDoubleStar(recordNumber); d && !d->code.empty()) return d->Designation();
    }
    return TychoText(star.tyc1, star.tyc2, star.tyc3);
}

std::optional<std::int64_t> ResolveStarDesignation(const CTycho2Catalogue& catalogue, std::string_view text)
{
    text = TrimBlanks(text);
    if (text.empty()) return std::nullopt;
    const std::string lower = AsciiLower(text);

    // Catalogue prefix and number.
    struct Prefix {
        std::string_view word;
        CrossCatalogue catalogue;
    };
    static constexpr Prefix kPrefixes[] = {{"hip", CrossCatalogue::Hip}, {"hd", CrossCatalogue::Hd},
                                           {"sao", CrossCatalogue::Sao}, {"hr", CrossCatalogue::Bsc},
                                           {"bsc", CrossCatalogue::Bsc}, {"ppm", CrossCatalogue::Ppm}};
    const auto space = lower.find(' ');
    const std::string_view head = std::string_view(lower).substr(0, space);
    const std::string_view tail = space == std::string::npos ? std::string_view() : TrimBlanks(std::string_view(lower).substr(space));
    if (head == "tyc") {
        int parts[3] = {0, 0, 0};
        std::size_t n = 0, start = 0;
        const std::string t(tail);
        while (n < 3) {
            const auto dash = t.find('-', start);
            std::int64_t v = 0;
            if (!ParseInt(std::string_view(t).substr(start, dash == std::string::npos ? std::string::npos : dash - start), v))
                return std::nullopt;
            parts[n++] = static_cast<int>(v);
            if (dash == std::string::npos) break;
            start = dash + 1;
        }
        if (n != 3) return std::nullopt;
        const std::int64_t rec = catalogue.FindByTychoId(parts[0], parts[1], parts[2]);
        return rec >= 0 ? std::optional<std::int64_t>(rec) : std::nullopt;
    }
    for (const auto& p : kPrefixes) {
        std::int64_t number = 0;
        if (head == p.word && ParseInt(tail, number)) {
            const std::int64_t rec = FindStarByNumber(p.catalogue, number);
            return rec >= 0 && static_cast<std::size_t>(rec) < catalogue.RecordCount()
                       ? std::optional<std::int64_t>(rec)
                       : std::nullopt;
        }
    }

    // Bayer letter or Flamsteed number with a constellation.
    if (space != std::string::npos) {
        const int constellation = FindConstellation(tail);
        if (constellation >= 0) {
            std::int64_t flamsteed = 0;
            int greek = -1, superscript = -1;
            if (!ParseInt(head, flamsteed)) {
                flamsteed = 0;
                for (int g = 0; g < 24; ++g) {
                    const std::string_view name = kGreek[static_cast<std::size_t>(g)];
                    if (head.substr(0, name.size()) != name) continue;
                    const std::string_view rest = head.substr(name.size());
                    std::int64_t sup = 0;
                    if (rest.empty()) {
                        greek = g;
                        superscript = 0;
                    } else if (ParseInt(rest, sup)) {
                        greek = g;
                        superscript = static_cast<int>(sup);
                    }
                    // "eta" is a prefix of nothing else, but "mu"/"nu" … are exact.
                    if (greek >= 0) break;
                }
                if (greek < 0) return std::nullopt;
            }
            // Scan the property table (a few thousand entries). A Greek letter
            // without superscript also finds the star with superscript 1 when
            // no plain one exists ("alpha Cen" → alpha1 Cen).
            std::optional<std::int64_t> fallback;
            for (std::size_t i = 0; i < catalogue.PropertyCount(); ++i) {
                const StarProperty p = catalogue.PropertyAt(i);
                if (p.constellation != constellation) continue;
                const bool match = flamsteed > 0 ? p.flamsteed == flamsteed
                                                 : (p.greek == greek && p.superscript == superscript);
                const bool near = flamsteed == 0 && superscript == 0 && p.greek == greek && p.superscript == 1;
                if (!match && !near) continue;
                const std::int64_t rec = catalogue.FindByTychoId(catalogue.PropertyId(i));
                if (rec < 0) continue;
                if (match) return rec;
                if (!fallback) fallback = rec;
            }
            if (fallback) return fallback;
        }
    }

    // Proper name.
    for (std::size_t i = 0; i < catalogue.ProperNameCount(); ++i) {
        if (AsciiLower(catalogue.ProperNameAt(i)) == lower) {
            const std::int64_t rec = catalogue.FindByTychoId(catalogue.ProperNameId(i));
            if (rec >= 0) return rec;
        }
    }
    return std::nullopt;
}

}  // namespace orv
