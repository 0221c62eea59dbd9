// The lists of stellarium-data attached to the records of the assembled
// catalogue (record numbers and Tycho identifiers), as the writers take them.
// Entries are in the order the linking step found them; the order and packing
// of each file is its writer's.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/hipfacts.h"

namespace orv::databuild {

// A 64-bit key (a catalogue number or a Tycho identifier) and a 32-bit value
// (a record number or a catalogue number).
struct KeyedValue {
    std::int64_t key;
    std::uint32_t value;
};

// The cross-index pairs: number → record keeps the brightest record per
// number; Tycho identifier → number keeps the first line of the list per star.
struct CrossTables {
    std::vector<KeyedValue> hipToRecord, tychoToHip;
    std::vector<KeyedValue> saoToRecord, tychoToSao;
    std::vector<KeyedValue> hdToRecord, tychoToHd;
    std::vector<KeyedValue> hrToRecord, tychoToHr;
};

struct NamedStar {
    std::int64_t tychoId;
    std::string name;  // fits tycho2::kNameMaxBytes
};

struct PropertyOfStar {
    std::int64_t tychoId;
    StarProperty property;
};

struct VariableOfStar {
    std::int64_t tychoId;
    VariableStar variable;  // name and type under 12 bytes, band under 3
};

struct DoubleOfStar {
    std::uint32_t record;
    std::optional<DoubleDesignation> designation;
};

struct StarTables {
    CrossTables cross;
    std::vector<NamedStar> names;
    std::vector<PropertyOfStar> properties;
    std::vector<VariableOfStar> variables;
    std::vector<DoubleOfStar> doubles;
};

}  // namespace orv::databuild
