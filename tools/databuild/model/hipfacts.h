// What stellarium-data's lists say about Hipparcos stars, keyed by Hipparcos
// number: cross identifications, names, Bayer letters and Flamsteed numbers,
// variability, duplicity, parallax, colour and proper motion. The readers
// fill these from the files as they stand; choosing what fits the catalogue's
// files is left to the linking step.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "catalog/stars/tycho2format.h"

namespace orv::databuild {

// A HIP → SAO, HD, HR line of stellarium-data's cross-id.dat; component is
// the CCDM letter of a multiple system (0 when none).
struct CrossIdLine {
    std::uint32_t hip = 0;
    char component = 0;
    std::uint32_t sao = 0;
    std::uint32_t hd = 0;
    std::uint32_t hr = 0;
};

// Bayer letter and Flamsteed number of a star, from "α_CMa", "γ1_And", "9_CMa".
struct StarProperty {
    std::uint8_t constellation = tycho2::kNoConstellation;  // 0-87
    std::uint8_t flamsteed = 0;
    std::uint8_t greek = tycho2::kNoGreekLetter;            // 0-23
    std::uint8_t superscript = 0;
};

// A GCVS entry of stellarium-data's gcvs_hip_part.dat.
struct VariableStar {
    std::uint32_t hip = 0;
    std::string name;      // "R And"
    std::string type;      // "M"
    std::int16_t maxMagCenti = tycho2::gcvs::kNoMag;
    std::int16_t minMagCenti = tycho2::gcvs::kNoMag;
    std::uint8_t minKind = tycho2::gcvs::kMinIsMagnitude;
    std::string band;      // "V", "Hp", "B", "p" …
    float periodDays = 0.0f;
};

// A double-star discoverer designation of stellarium-data's extra_name.fab:
// "Σ_3053" → code "Σ", number 3053; "H_5_79" → code "H 5", number 79.
struct DoubleDesignation {
    std::string code;
    std::uint32_t number = 0;
};

// Everything taken from stellarium-data, keyed by Hipparcos number.
struct HipData {
    std::vector<CrossIdLine> crossIds;                         // in the order of the file
    std::unordered_map<std::uint32_t, float> parallaxMas;
    std::unordered_map<std::uint32_t, std::int16_t> bvMilli;   // Hipparcos B−V, 0.001 mag
    std::map<std::uint32_t, std::vector<std::string>> properNames;  // every name, the usual one first
    std::map<std::uint32_t, StarProperty> properties;
    std::map<std::uint32_t, std::vector<VariableStar>> variables;   // every entry, in the order of the file
    std::map<std::uint32_t, std::optional<DoubleDesignation>> doubles;  // WDS stars (designation when known)
    // Hipparcos proper motions pmRA* (= μα cos δ) and pmDE, mas/yr.
    std::unordered_map<std::uint32_t, std::pair<float, float>> properMotion;
};

}  // namespace orv::databuild
