// Star designations as text, and back: the name shown for a Tycho-2 star
// (proper name, Bayer letter, Flamsteed number, variable or double-star
// designation, Tycho identifier) and the resolution of a typed designation
// ("Sirius", "alpha CMa", "9 CMa", "HIP 32349", "HD 48915", "SAO 151881",
// "HR 2491", "TYC 5949-2777-1") to a star.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "catalog/stars/tycho2catalogue.h"

namespace orv {

enum class ProperNames { Show, Hide };
enum class ConstellationText { Abbreviation, Genitive };

// "alpha" … "omega" for 0-23; empty otherwise.
std::string_view GreekLetterName(int index);
// The chart's Symbol-font letter for 0-23 ("abgdezhqiklmnxoprstufcyw").
char GreekSymbolLetter(int index);

// "alpha2 CMa" style text of a property entry ("%s%1d %s", "%s %s", "%1d %s");
// empty when the entry holds neither a Greek letter nor a Flamsteed number.
std::string BayerFlamsteedText(const StarProperty& property, ConstellationText style);

// "TYC %1d-%1d-%1d".
std::string TychoText(int tyc1, int tyc2, int tyc3);

// The designation of a Tycho-2 star by the first rule that applies: proper
// name (when shown), Bayer letter or Flamsteed number, variable-star
// designation, double-star designation ("%s %1d"), Tycho identifier.
std::string StarDesignation(const CTycho2Catalogue& catalogue, const StarRecord& star, std::uint32_t recordNumber,
                            ProperNames names, ConstellationText style);

// The record number of the star a typed designation names, or nothing.
// Accepted forms (case does not matter): "TYC 1-8-1", "HIP n", "HD n",
// "SAO n", "HR n" (also "BSC n"), "PPM n", a Bayer designation with the
// Greek letter spelt out and an optional superscript ("alpha CMa",
// "pi3 Ori", "alpha Canis Majoris"), a Flamsteed designation ("9 CMa") and a
// proper name ("Sirius").
std::optional<std::int64_t> ResolveStarDesignation(const CTycho2Catalogue& catalogue, std::string_view text);

}  // namespace orv
