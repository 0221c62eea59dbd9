#include "app/strings.h"
#include "util/text.h"

#include <algorithm>
#include <cctype>

namespace orv {

namespace {

struct Constellation {
    std::string_view abbreviation;
    std::string_view name;
    std::string_view genitive;
};

// IAU constellations in the alphabetical order of their Latin names.
constexpr std::array<Constellation, kConstellationCount> kConstellations{{
    {"And", "Andromeda", "Andromedae"},
    {"Ant", "Antlia", "Antliae"},
    {"Aps", "Apus", "Apodis"},
    {"Aqr", "Aquarius", "Aquarii"},
    {"Aql", "Aquila", "Aquilae"},
    {"Ara", "Ara", "Arae"},
    {"Ari", "Aries", "Arietis"},
    {"Aur", "Auriga", "Aurigae"},
    {"Boo", "Bootes", "Bootis"},
    {"Cae", "Caelum", "Caeli"},
    {"Cam", "Camelopardalis", "Camelopardalis"},
    {"Cnc", "Cancer", "Cancri"},
    {"CVn", "Canes Venatici", "Canum Venaticorum"},
    {"CMa", "Canis Major", "Canis Majoris"},
    {"CMi", "Canis Minor", "Canis Minoris"},
    {"Cap", "Capricornus", "Capricorni"},
    {"Car", "Carina", "Carinae"},
    {"Cas", "Cassiopeia", "Cassiopeiae"},
    {"Cen", "Centaurus", "Centauri"},
    {"Cep", "Cepheus", "Cephei"},
    {"Cet", "Cetus", "Ceti"},
    {"Cha", "Chamaeleon", "Chamaeleontis"},
    {"Cir", "Circinus", "Circini"},
    {"Col", "Columba", "Columbae"},
    {"Com", "Coma Berenices", "Comae Berenices"},
    {"CrA", "Corona Australis", "Coronae Australis"},
    {"CrB", "Corona Borealis", "Coronae Borealis"},
    {"Crv", "Corvus", "Corvi"},
    {"Crt", "Crater", "Crateris"},
    {"Cru", "Crux", "Crucis"},
    {"Cyg", "Cygnus", "Cygni"},
    {"Del", "Delphinus", "Delphini"},
    {"Dor", "Dorado", "Doradus"},
    {"Dra", "Draco", "Draconis"},
    {"Equ", "Equuleus", "Equulei"},
    {"Eri", "Eridanus", "Eridani"},
    {"For", "Fornax", "Fornacis"},
    {"Gem", "Gemini", "Geminorum"},
    {"Gru", "Grus", "Gruis"},
    {"Her", "Hercules", "Herculis"},
    {"Hor", "Horologium", "Horologii"},
    {"Hya", "Hydra", "Hydrae"},
    {"Hyi", "Hydrus", "Hydri"},
    {"Ind", "Indus", "Indi"},
    {"Lac", "Lacerta", "Lacertae"},
    {"Leo", "Leo", "Leonis"},
    {"LMi", "Leo Minor", "Leonis Minoris"},
    {"Lep", "Lepus", "Leporis"},
    {"Lib", "Libra", "Librae"},
    {"Lup", "Lupus", "Lupi"},
    {"Lyn", "Lynx", "Lyncis"},
    {"Lyr", "Lyra", "Lyrae"},
    {"Men", "Mensa", "Mensae"},
    {"Mic", "Microscopium", "Microscopii"},
    {"Mon", "Monoceros", "Monocerotis"},
    {"Mus", "Musca", "Muscae"},
    {"Nor", "Norma", "Normae"},
    {"Oct", "Octans", "Octantis"},
    {"Oph", "Ophiuchus", "Ophiuchi"},
    {"Ori", "Orion", "Orionis"},
    {"Pav", "Pavo", "Pavonis"},
    {"Peg", "Pegasus", "Pegasi"},
    {"Per", "Perseus", "Persei"},
    {"Phe", "Phoenix", "Phoenicis"},
    {"Pic", "Pictor", "Pictoris"},
    {"Psc", "Pisces", "Piscium"},
    {"PsA", "Piscis Austrinus", "Piscis Austrini"},
    {"Pup", "Puppis", "Puppis"},
    {"Pyx", "Pyxis", "Pyxidis"},
    {"Ret", "Reticulum", "Reticuli"},
    {"Sge", "Sagitta", "Sagittae"},
    {"Sgr", "Sagittarius", "Sagittarii"},
    {"Sco", "Scorpius", "Scorpii"},
    {"Scl", "Sculptor", "Sculptoris"},
    {"Sct", "Scutum", "Scuti"},
    {"Ser", "Serpens", "Serpentis"},
    {"Sex", "Sextans", "Sextantis"},
    {"Tau", "Taurus", "Tauri"},
    {"Tel", "Telescopium", "Telescopii"},
    {"Tri", "Triangulum", "Trianguli"},
    {"TrA", "Triangulum Australe", "Trianguli Australis"},
    {"Tuc", "Tucana", "Tucanae"},
    {"UMa", "Ursa Major", "Ursae Majoris"},
    {"UMi", "Ursa Minor", "Ursae Minoris"},
    {"Vel", "Vela", "Velorum"},
    {"Vir", "Virgo", "Virginis"},
    {"Vol", "Volans", "Volantis"},
    {"Vul", "Vulpecula", "Vulpeculae"},
}};

constexpr std::array<std::string_view, kBodyCount> kBodyNames{
    "Moon", "Mercury", "Venus", "Sun", "Mars", "Jupiter", "Saturn", "Uranus", "Neptune", "Pluto"};

struct Message {
    int id;
    std::string_view text;
};

constexpr Message kMessages[] = {
    {IDS_CANNOT_CREATE_FILE, "Unable to create file %1"},
    {IDS_SIGNATURE, "Orvane"},
    {IDS_CANNOT_OPEN_FILE, "Unable to open file %1"},
    {IDS_NOT_ORVANE_FILE, "File %1 is not a\nOrvane file!"},
    {IDS_VERSION_TOO_NEW,
     "Sorry - I don't know how to handle this file.\nYou need a more recent version of Orvane!"},
    {IDS_UNKNOWN_MAP_TYPE, "File %1 contains an unknown map type."},
    {IDS_BITMAP_TOO_LARGE, "Unable to create a bitmap of the requested size"},
};

}  // namespace

std::string_view LoadString(int id)
{
    if (id >= IDS_CONSTELLATION_GENITIVE_FIRST && id < IDS_CONSTELLATION_GENITIVE_FIRST + kConstellationCount)
        return kConstellations[static_cast<std::size_t>(id - IDS_CONSTELLATION_GENITIVE_FIRST)].genitive;
    if (id >= IDS_CONSTELLATION_ABBREV_FIRST && id < IDS_CONSTELLATION_ABBREV_FIRST + kConstellationCount)
        return kConstellations[static_cast<std::size_t>(id - IDS_CONSTELLATION_ABBREV_FIRST)].abbreviation;
    if (id >= IDS_CONSTELLATION_NAME_FIRST && id < IDS_CONSTELLATION_NAME_FIRST + kConstellationCount)
        return kConstellations[static_cast<std::size_t>(id - IDS_CONSTELLATION_NAME_FIRST)].name;
    if (id >= IDS_BODY_NAME_FIRST && id < IDS_BODY_NAME_FIRST + kBodyCount)
        return kBodyNames[static_cast<std::size_t>(id - IDS_BODY_NAME_FIRST)];
    for (const auto& m : kMessages)
        if (m.id == id) return m.text;
    return {};
}

std::string SubstituteArg(std::string_view pattern, std::string_view arg)
{
    std::string out;
    out.reserve(pattern.size() + arg.size());
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '%' && i + 1 < pattern.size() && pattern[i + 1] == '1') {
            out.append(arg);
            ++i;
        } else {
            out.push_back(pattern[i]);
        }
    }
    return out;
}

std::string FormatString(int id, std::string_view arg) { return SubstituteArg(LoadString(id), arg); }

std::string_view ConstellationGenitive(int number)
{
    if (number < 0 || number >= kConstellationCount) return {};
    return kConstellations[static_cast<std::size_t>(number)].genitive;
}

std::string_view ConstellationAbbreviation(int number)
{
    if (number < 0 || number >= kConstellationCount) return {};
    return kConstellations[static_cast<std::size_t>(number)].abbreviation;
}

std::string_view ConstellationName(int number)
{
    if (number < 0 || number >= kConstellationCount) return {};
    return kConstellations[static_cast<std::size_t>(number)].name;
}

int FindConstellation(std::string_view text)
{
    for (int i = 0; i < kConstellationCount; ++i) {
        const auto& c = kConstellations[static_cast<std::size_t>(i)];
        if (EqualIgnoringCase(text, c.abbreviation) || EqualIgnoringCase(text, c.genitive) || EqualIgnoringCase(text, c.name)) return i;
    }
    return -1;
}

std::string_view BodyName(int bodyId)
{
    if (bodyId < 0 || bodyId >= kBodyCount) return {};
    return kBodyNames[static_cast<std::size_t>(bodyId)];
}

}  // namespace orv
