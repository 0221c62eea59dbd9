// Settings of the catalogue layers held by a map document: stars ("Stars"),
// deep-sky objects ("DeepSky") and constellations ("Constellation").
//
// Each is loaded from and saved to its settings section with the keys and
// defaults below and written to the map file as a fixed sequence of i16
// fields in table order (docs/map-file-format.md lists them). Magnitudes are
// in hundredths of a magnitude, B−V in thousandths, level pairs are level
// indices 0-9 with −1, −1 meaning never.
#pragma once

#include <array>
#include <span>
#include <string>

#include "map/levels.h"
#include "map/mapfileio.h"

namespace orv {

struct CStarSettings {
    int magLimit;                // "MagLimit": faintest magnitude drawn, faint end of the size scale
    int starMagBright;           // "StarMagBright": this bright or brighter gets the largest disc
    int starRadBright;           // "StarRadBright": disc radius at StarMagBright, 0.0001 inch
    int starRadFaint;            // "StarRadFaint": disc radius at MagLimit, 0.0001 inch
    int visible;                 // "Visible"
    int levelProperLow, levelProperHigh;        // proper-name labels
    int levelBayerLow, levelBayerHigh;          // Bayer-letter labels
    int levelFlamsteedLow, levelFlamsteedHigh;  // Flamsteed-number labels
    int starLabelMagFilter;      // "StarLabelMagFilter": label only stars brighter than the limit
    int starLabelMagLimit;       // "StarLabelMagLimit"
    int starGSCShowAllObjects;   // "StarGSCShowAllObjects"
    int gscHideTycho;            // "GSCHideTycho"
    int starShowSize;            // "StarShowSize": size discs by magnitude (else StarDotRadius)
    int starDotRadius;           // "StarDotRadius": 0.0001 inch
    int showDoubles;             // "ShowDoubles"
    int showVariables;           // "ShowVariables"
    int showFlamsteedWithBayer;  // "ShowFlamsteedWithBayer"
    int showColour;              // "ShowColour"
    int levelColourLow, levelColourHigh;
    int levelMagLow, levelMagHigh;  // magnitude labels
    int labelMag;                // "LabelMag"
    int labelMagVar;             // "LabelMagVar": variable stars labelled with their range
    int labelMagOption;          // "LabelMagOption": which band is labelled
    int labelMagBright, labelMagBetween1, labelMagBetween2, labelMagFaint;
    int levelDistLow, levelDistHigh;  // distance labels (light years)
    int levelPMLow, levelPMHigh;      // proper-motion lines
    int pmLine;                  // "PMLine": proper-motion line length, years × 100
    int bv1, bv2, bv3, bv4;      // "BV1".."BV4": colour thresholds, B−V in thousandths
    int labelAbbreviated;        // "StarLabelAbbrev": constellation abbreviations in designations

    CStarSettings();
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;
    void Read(CMapFileReader& in);

    LevelRange ProperLevels() const { return {levelProperLow, levelProperHigh}; }
    LevelRange BayerLevels() const { return {levelBayerLow, levelBayerHigh}; }
    LevelRange FlamsteedLevels() const { return {levelFlamsteedLow, levelFlamsteedHigh}; }
    LevelRange ColourLevels() const { return {levelColourLow, levelColourHigh}; }
    LevelRange MagLevels() const { return {levelMagLow, levelMagHigh}; }
    LevelRange DistLevels() const { return {levelDistLow, levelDistHigh}; }
    LevelRange PMLevels() const { return {levelPMLow, levelPMHigh}; }

    static std::span<const IntSetting<CStarSettings>> Fields();
    static constexpr const char* kSection = "Stars";
};

inline constexpr int kDeepSkyTypeCount = 13;  // object type codes 0-12 with magnitude adjustments

struct CDeepSkySettings {
    int visible;            // "Visible"
    int objectTypes;        // "ObjectTypes": bit n set = type code n shown; bit 0 ("All") shows every type
    int dsMagnitude;        // "DSMagnitude": magnitude filter on
    int magLimit;           // "MagLimit": that filter's limit
    int dsSize;             // "DSSize": size filter on
    int dsSizeLimit;        // "DSSizeLimit": smallest size shown, arc seconds
    int levelLowNGCIC, levelHighNGCIC;
    int levelLowSAC, levelHighSAC;
    int levelLowLEDA, levelHighLEDA;
    int levelLowStras, levelHighStras;
    int darkLevelLow, darkLevelHigh;
    int labelOption;        // "LabelOption": 0 designation, 1 common name when known, 2 both
    std::array<int, kDeepSkyTypeCount> magAdjust{};  // "MagAdjust%1d", 0.01 mag added per type
    std::string nameFilter; // "NameFilter"

    CDeepSkySettings();
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;
    void Read(CMapFileReader& in);

    static std::span<const IntSetting<CDeepSkySettings>> Fields();
    static constexpr const char* kSection = "DeepSky";
};

struct CConstellationSettings {
    int conFigureVisible;                // "ConFigureVisible"
    int conNameVisible;                  // "ConNameVisible"
    int conBoundaryVisible;              // "ConBoundaryVisible"
    int levelAbbrev;                     // "ConstellationLevelAbbrev": from this level names are abbreviated
    int levelBoundaryLow, levelBoundaryHigh;
    int levelFigureLow, levelFigureHigh;
    int levelNameLow, levelNameHigh;
    int cornerNameAbbrev;                // "CornerNameAbbrev" (0/1)
    int levelCornerNameLow, levelCornerNameHigh;
    int cornerLabel;                     // "CornerLabel": four decimal digits, one corner slot each

    CConstellationSettings();
    void Load(const CSettingsStore& store);
    void Save(CSettingsStore& store) const;
    void Write(CByteWriter& out) const;
    void Read(CMapFileReader& in);

    // The four corner slots, taken from the least significant digit upwards
    // (3210 gives 0, 1, 2, 3), and back.
    std::array<int, 4> CornerSlots() const;
    void SetCornerSlots(const std::array<int, 4>& slots);

    static std::span<const IntSetting<CConstellationSettings>> Fields();
    static constexpr const char* kSection = "Constellation";
};

}  // namespace orv
