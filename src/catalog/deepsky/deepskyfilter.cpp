#include "catalog/deepsky/deepskyfilter.h"

#include <algorithm>
#include <cctype>

namespace orv {

namespace {

bool TypeBit(int objectTypes, ObjectType t)
{
    const int code = static_cast<int>(t);
    return code >= 0 && code < 31 && (objectTypes & (1 << code)) != 0;
}

// '*' and '?' matching on normalised (upper case, no blanks) texts.
bool Glob(std::string_view pattern, std::string_view text)
{
    std::size_t p = 0, t = 0, star = std::string_view::npos, mark = 0;
    while (t < text.size()) {
        if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
            ++p;
            ++t;
        } else if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            mark = t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++mark;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}

std::string Squeeze(std::string_view s)
{
    std::string out;
    for (char c : s)
        if (c != ' ' && c != '\t') out.push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(c))));
    return out;
}

}  // namespace

bool DeepSkyTypeBit(const CDeepSkySettings& s, ObjectType type) { return TypeBit(s.objectTypes, type); }

void SetDeepSkyTypeBit(CDeepSkySettings& s, ObjectType type, bool shown)
{
    const int code = static_cast<int>(type);
    if (code < 0 || code >= 31) return;
    if (shown)
        s.objectTypes |= 1 << code;
    else
        s.objectTypes &= ~(1 << code);
}

bool NgcTypeMatches(ObjectType code, std::uint8_t b)
{
    using deepsky::NgcType;
    const auto is = [&](NgcType t) { return b == static_cast<std::uint8_t>(t); };
    switch (code) {
    case ObjectType::All: return true;
    case ObjectType::Galaxy: return is(NgcType::Galaxy);
    case ObjectType::OpenCluster: return is(NgcType::OpenCluster);
    case ObjectType::GlobularCluster: return is(NgcType::GlobularCluster);
    case ObjectType::PlanetaryNebula: return is(NgcType::PlanetaryNebula);
    case ObjectType::BrightNebula: return is(NgcType::EmissionNebula) || is(NgcType::ReflectionNebula);
    case ObjectType::DarkNebula: return is(NgcType::DarkNebula);
    case ObjectType::Star: return is(NgcType::Star);
    case ObjectType::SupernovaRemnant: return is(NgcType::SupernovaRemnant);
    default: return false;
    }
}

bool NameFilterMatches(std::string_view filter, std::string_view name)
{
    const std::string text = Squeeze(name);
    bool any = false;
    std::size_t at = 0;
    while (at <= filter.size()) {
        const std::size_t end = std::min(filter.find_first_of(";,", at), filter.size());
        const std::string pattern = Squeeze(filter.substr(at, end - at));
        if (!pattern.empty()) {
            any = true;
            if (Glob(pattern, text)) return true;
        }
        at = end + 1;
    }
    return !any;
}

CDeepSkyFilter::CDeepSkyFilter(const CDeepSkySettings& s, const DeepSkyLevelState& level)
{
    m_catalogues = {level.ngcic, level.sac, level.leda, level.strasbourg};
    m_dark = level.dark;
    m_objectTypes = s.objectTypes;
    for (int b = 0; b < 256; ++b) {
        bool shown = false;
        for (int code = 0; code < kDeepSkyTypeCount && !shown; ++code)
            shown = TypeBit(m_objectTypes, static_cast<ObjectType>(code)) &&
                    NgcTypeMatches(static_cast<ObjectType>(code), static_cast<std::uint8_t>(b));
        m_ngcTypeShown[static_cast<std::size_t>(b)] = shown;
    }
    m_magFilter = s.dsMagnitude != 0;
    m_magLimitCenti = s.magLimit;
    m_levelMagLimitCenti = level.magLimit;
    m_sizeFilter = s.dsSize != 0;
    m_sizeLimitArcsec = s.dsSizeLimit;
    m_levelSizeLimitTenthArcmin = level.sizeLimit;
    m_magAdjust = s.magAdjust;
    m_nameFilter = s.nameFilter;
}

bool CDeepSkyFilter::AnyCatalogueShown() const
{
    return std::any_of(m_catalogues.begin(), m_catalogues.end(), [](bool b) { return b; });
}

bool CDeepSkyFilter::TypeShown(const DeepSkyObject& o) const
{
    if (o.type == ObjectType::DarkNebula && !m_dark) return false;
    // NGC/IC records are matched on their own type byte; the others on
    // the program's code.
    if (o.catalogue == DeepSkyCatalogueId::NgcIc) return m_ngcTypeShown[o.ngcType];
    return TypeBit(m_objectTypes, ObjectType::All) || TypeBit(m_objectTypes, o.type);
}

int CDeepSkyFilter::AdjustedMagnitude(const DeepSkyObject& o) const
{
    const int code = static_cast<int>(o.type);
    const int own = code > 0 && code < kDeepSkyTypeCount ? m_magAdjust[static_cast<std::size_t>(code)] : 0;
    return o.magCenti + own + m_magAdjust[0];
}

bool CDeepSkyFilter::Passes(const DeepSkyObject& o) const
{
    if (!CatalogueShown(o.catalogue) || !TypeShown(o)) return false;
    // Objects without a magnitude (dark nebulae, many nebulae) are not
    // judged by magnitude; those without a size not by size.
    if (o.HasMagnitude()) {
        const int mag = AdjustedMagnitude(o);
        if (m_magFilter && mag > m_magLimitCenti) return false;
        if (m_levelMagLimitCenti > 0 && mag > m_levelMagLimitCenti) return false;
    }
    if (o.majorArcmin > 0.0f) {
        if (m_sizeFilter && o.majorArcmin * 60.0f < static_cast<float>(m_sizeLimitArcsec)) return false;
        if (m_levelSizeLimitTenthArcmin > 0 && o.majorArcmin * 10.0f < static_cast<float>(m_levelSizeLimitTenthArcmin))
            return false;
    }
    return true;
}

bool CDeepSkyFilter::NamePasses(const DeepSkyTexts& t) const
{
    if (m_nameFilter.empty()) return true;
    return NameFilterMatches(m_nameFilter, t.designation) ||
           (!t.messier.empty() && NameFilterMatches(m_nameFilter, t.messier)) ||
           (!t.caldwell.empty() && NameFilterMatches(m_nameFilter, t.caldwell)) ||
           (!t.names.empty() && NameFilterMatches(m_nameFilter, t.CommonName()));
}

}  // namespace orv
