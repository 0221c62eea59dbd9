// Catalogue prefixes for typed designations: a bare number typed in the find
// box ("7000") is completed with a prefix the user picks ("NGC 7000"). The
// prefixes and what they stand for are listed in the data folder's
// "CatExt.dat", one a line as "PREFIX|description" ('#' starts a comment);
// without that file the prefixes of the deep-sky catalogues are offered.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv {

struct CatalogPrefix {
    std::string prefix;       // "NGC", "PN G"
    std::string description;  // "New General Catalogue"
};

// The prefixes of the deep-sky catalogues the program reads.
std::vector<CatalogPrefix> DefaultCatalogPrefixes();
// The lines of a "CatExt.dat"; malformed lines are skipped.
std::vector<CatalogPrefix> ParseCatalogPrefixes(std::string_view text);
// "CatExt.dat" of the data folder, else the defaults.
std::vector<CatalogPrefix> LoadCatalogPrefixes();
// The file's text for a list (what the data builder writes).
std::string CatalogPrefixText(const std::vector<CatalogPrefix>& prefixes);

// True for text that is a number alone and so needs a prefix ("7000", "42").
bool IsBareCatalogueNumber(std::string_view text);
// The designation of a number in a catalogue: "NGC 7000"; galactic
// designations follow their prefix without a blank ("PN G054.1-12.1").
std::string WithCatalogPrefix(std::string_view prefix, std::string_view number);

}  // namespace orv
