#include "catalog/deepsky/catalogprefix.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>

#include "catalog/deepsky/deepskyformat.h"
#include "util/datapath.h"
#include "util/text.h"

namespace orv {

namespace {

}  // namespace

std::vector<CatalogPrefix> DefaultCatalogPrefixes()
{
    return {{"M", "Messier catalogue"},
            {"NGC", "New General Catalogue (revised)"},
            {"IC", "Index Catalogue (revised)"},
            {"C", "Caldwell catalogue"},
            {"LEDA", "Lyon-Meudon Extragalactic Database (PGC numbers)"},
            {"UGC", "Uppsala General Catalogue of Galaxies"},
            {"PN G", "Strasbourg-ESO Catalogue of Galactic Planetary Nebulae"}};
}

std::vector<CatalogPrefix> ParseCatalogPrefixes(std::string_view text)
{
    std::vector<CatalogPrefix> out;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line = TrimBlanks(text.substr(at, end - at));
        at = end + 1;
        if (line.empty() || line.front() == '#') continue;
        const std::size_t bar = line.find('|');
        const std::string_view prefix = TrimBlanks(line.substr(0, bar));
        if (prefix.empty()) continue;
        out.push_back({std::string(prefix),
                       bar == std::string_view::npos ? std::string() : std::string(TrimBlanks(line.substr(bar + 1)))});
    }
    return out;
}

std::vector<CatalogPrefix> LoadCatalogPrefixes()
{
    std::string path;
    if (LocateDataFile(deepsky::kCatExtFile, path)) {
        std::ifstream in(path, std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        auto list = ParseCatalogPrefixes(text.str());
        if (!list.empty()) return list;
    }
    return DefaultCatalogPrefixes();
}

std::string CatalogPrefixText(const std::vector<CatalogPrefix>& prefixes)
{
    std::string text = "# Catalogue prefixes offered for a number typed alone: PREFIX|description\n";
    for (const CatalogPrefix& p : prefixes) text += p.prefix + "|" + p.description + "\n";
    return text;
}

bool IsBareCatalogueNumber(std::string_view text)
{
    text = TrimBlanks(text);
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return std::isdigit(static_cast<unsigned char>(c)) != 0;
    });
}

std::string WithCatalogPrefix(std::string_view prefix, std::string_view number)
{
    prefix = TrimBlanks(prefix);
    number = TrimBlanks(number);
    const bool joined = !prefix.empty() && prefix.back() == 'G' && prefix.find(' ') != std::string_view::npos;
    return std::string(prefix) + (joined ? "" : " ") + std::string(number);
}

}  // namespace orv
