#include "sources/starnamereader.h"

#include <array>

#include "app/strings.h"
#include "common/linereader.h"
#include "common/textfields.h"

namespace orv::databuild {

using namespace orv::tycho2;

namespace {

// The 24 Greek letters in UTF-8 in alphabetical order, α = 0 … ω = 23 as
// StarProperty numbers them.
constexpr std::array<std::string_view, 24> kGreekUtf8 = {"α", "β", "γ", "δ", "ε", "ζ", "η", "θ",
                                                        "ι", "κ", "λ", "μ", "ν", "ξ", "ο", "π",
                                                        "ρ", "σ", "τ", "υ", "φ", "χ", "ψ", "ω"};

}  // namespace

bool ParseBayerFlamsteed(std::string_view designation, StarProperty& property)
{
    const auto us = designation.rfind('_');
    if (us == std::string_view::npos) return false;
    const std::string_view head = designation.substr(0, us);
    const std::string_view abbrev = designation.substr(us + 1);
    // Three-letter abbreviations only; FindConstellation would also take
    // full names, which this file does not use.
    if (abbrev.size() != 3) return false;
    const int constellation = FindConstellation(abbrev);
    if (constellation < 0) return false;
    if (property.constellation != kNoConstellation && property.constellation != constellation) return false;

    if (!head.empty() && head[0] >= '0' && head[0] <= '9') {
        std::uint32_t n = 0;
        if (!ParseUnsigned(head, n) || n == 0 || n > 255) return false;
        if (property.flamsteed == 0) property.flamsteed = static_cast<std::uint8_t>(n);
        property.constellation = static_cast<std::uint8_t>(constellation);
        return true;
    }
    for (std::size_t g = 0; g < kGreekUtf8.size(); ++g) {
        if (head.substr(0, kGreekUtf8[g].size()) != kGreekUtf8[g]) continue;
        const std::string_view rest = head.substr(kGreekUtf8[g].size());
        std::uint32_t sup = 0;
        if (!rest.empty() && (!ParseUnsigned(rest, sup) || sup == 0 || sup > 255)) return false;
        if (property.greek == kNoGreekLetter) {
            property.greek = static_cast<std::uint8_t>(g);
            property.superscript = static_cast<std::uint8_t>(sup);
        }
        property.constellation = static_cast<std::uint8_t>(constellation);
        return true;
    }
    return false;  // Latin letters (Bayer's and Lacaille's) have no field in the property file
}

bool ReadDesignations(const std::string& path, std::map<std::uint32_t, StarProperty>& out, const Progress& progress,
                      std::string& error)
{
    progress("reading Bayer letters and Flamsteed numbers (name.fab)");
    return ReadHipList(path, '|', "HIP|designation",
                       [&](std::uint32_t hip, std::string_view designation, std::string&) {
                           StarProperty p = out.count(hip) ? out[hip] : StarProperty{};
                           if (ParseBayerFlamsteed(Trim(designation), p)) out[hip] = p;
                           return true;
                       },
                       error);
}

bool ReadProperNames(const std::string& path, std::map<std::uint32_t, std::vector<std::string>>& out,
                     const Progress& progress, std::string& error)
{
    progress("reading proper names (" + path + ")");
    return ReadHipList(path, '|', "HIP|_(\"name\")",
                       [&](std::uint32_t hip, std::string_view text, std::string& why) {
                           // _("Sirius") followed by the numbers of the references.
                           const auto open = text.find("_(\"");
                           const auto close = text.find("\")");
                           if (open == std::string_view::npos || close == std::string_view::npos ||
                               close < open + 3) {
                               why = "expected a quoted name";
                               return false;
                           }
                           const std::string_view name = text.substr(open + 3, close - open - 3);
                           if (!name.empty()) out[hip].emplace_back(name);
                           return true;
                       },
                       error);
}

}  // namespace orv::databuild
