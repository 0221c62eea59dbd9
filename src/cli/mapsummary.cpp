#include "cli/mapsummary.h"

#include <QJsonArray>

#include <ostream>

#include "map/mapview.h"
#include "util/angles.h"

namespace orv::cli {

namespace {

template <typename T>
QJsonObject Fields(const T& object)
{
    QJsonObject o;
    for (const auto& f : T::Fields()) o[f.key] = object.*(f.member);
    return o;
}

QJsonArray Range(const LevelRange& r) { return QJsonArray{r.low, r.high}; }

QString Str(const std::string& s) { return QString::fromStdString(s); }

QJsonObject Grid(const CGridData& data, const CGridDisplay& display)
{
    QJsonObject o;
    o["LabelVisible"] = data.labelVisible;
    o["Method"] = data.method;
    o[data.Interval1Key()] = data.interval1;
    o[data.Interval2Key()] = data.interval2;
    o["Visible"] = display.visible;
    o["Levels"] = Range(display.first);
    o["Levels2"] = Range(display.second);
    if (display.kind == GridKind::AltAz) {
        o["SolidHorizon"] = display.solidHorizon;
        o["SolidHorizonLevels"] = Range(display.solidHorizonLevels);
    }
    o["StateAtLevel"] = display.state;
    return o;
}

QJsonObject Overlay(const COverlayBlock& b)
{
    return QJsonObject{{"Visible", b.visible}, {"Levels", Range(b.levels)}, {"Shown", b.shown}};
}

QJsonObject Body(const CBodyDisplay& b)
{
    return QJsonObject{{"Visible", b.visible},     {"Levels", Range(b.levels)}, {"LabelLevels", Range(b.labelLevels)},
                       {"MagLimit", b.magLimit}, {"LabelMag", b.labelMag}};
}

void PrintValue(std::ostream& out, const QJsonValue& v)
{
    switch (v.type()) {
    case QJsonValue::Array: {
        const QJsonArray a = v.toArray();
        out << '[';
        for (qsizetype i = 0; i < a.size(); ++i) {
            if (i) out << ", ";
            PrintValue(out, a[i]);
        }
        out << ']';
        break;
    }
    case QJsonValue::Bool: out << (v.toBool() ? "yes" : "no"); break;
    case QJsonValue::Double: {
        const double d = v.toDouble();
        if (d == static_cast<double>(static_cast<long long>(d)) && std::abs(d) < 1e15)
            out << static_cast<long long>(d);
        else
            out << QString::number(d, 'g', 12).toStdString();
        break;
    }
    case QJsonValue::String: out << '"' << v.toString().toStdString() << '"'; break;
    default: out << "-"; break;
    }
}

// "RADecGrid" → "raDecGrid", "LASTHours" → "lastHours", "StarMagLimit" →
// "starMagLimit", "JdUT" → "jdUT": the leading word (or leading acronym) in
// lower case, the rest as written.
QString LeadingWordLower(const QString& key)
{
    qsizetype upper = 0;
    while (upper < key.size() && key[upper].isUpper()) ++upper;
    // An acronym followed by a word: the word's capital stays ("RADec").
    qsizetype lowered = upper > 1 && upper < key.size() && key[upper].isLower() ? upper - 1 : upper;
    if (lowered == 0) lowered = 1;
    return key.left(lowered).toLower() + key.mid(lowered);
}

QJsonValue CamelCase(const QJsonValue& v)
{
    if (v.isObject()) return CamelCaseKeys(v.toObject());
    if (v.isArray()) {
        QJsonArray out;
        for (const QJsonValue& item : v.toArray()) out.append(CamelCase(item));
        return out;
    }
    return v;
}

}  // namespace

QJsonObject CamelCaseKeys(const QJsonObject& object)
{
    QJsonObject out;
    for (auto it = object.begin(); it != object.end(); ++it) out[LeadingWordLower(it.key())] = CamelCase(it.value());
    return out;
}

QJsonObject DescribeMap(const CMapView& view)
{
    const CMapDoc& doc = view.Doc();
    const CObserverDoc& obs = doc.observer;
    const CCoordinates& c = view.coordinates;
    QJsonObject blocks;

    blocks["Map"] = QJsonObject{{"Title", Str(doc.title)},
                                {"File", Str(doc.pathName)},
                                {"Level", view.Level() + 1},
                                {"LevelText", Str(LevelStatusText(view.Level()))}};

    QJsonObject area = Fields(view.settings);
    area["FreeText1"] = Str(view.settings.freeText1);
    area["FreeText2"] = Str(view.settings.freeText2);
    blocks["AreaMap"] = area;

    const CivilDateTime local = obs.LocalTime();
    char when[64];
    std::snprintf(when, sizeof when, "%04d-%02d-%02d %02d:%02d:%02.0f", local.year, local.month, local.day, local.hour,
                  local.minute, local.second);
    blocks["Observer"] = QJsonObject{{"SiteName", Str(obs.SiteName())},
                                     {"LatitudeDeg", obs.LatitudeRad() * kDegPerRad},
                                     {"LongitudeDeg", obs.LongitudeRad() * kDegPerRad},
                                     {"HeightM", obs.HeightM()},
                                     {"TimeZoneHours", obs.TimeZoneHours()},
                                     {"DaylightSaving", obs.DaylightSaving()},
                                     {"LocalTime", QString::fromLatin1(when)},
                                     {"JdUT", obs.JulianDate()},
                                     {"JdTT", obs.JulianDateTDT()},
                                     {"DeltaTSeconds", obs.DeltaT()},
                                     {"LASTHours", obs.LAST()}};

    blocks["Coordinates"] = QJsonObject{
        {"CentreRaJ2000", Str(FormatHms(c.CentreRaJ2000Rad(), 2))},
        {"CentreDecJ2000", Str(FormatDms(c.CentreDecJ2000Rad(), 1, true))},
        {"CentreRaJ2000Deg", c.CentreRaJ2000Rad() * kDegPerRad},
        {"CentreDecJ2000Deg", c.CentreDecJ2000Rad() * kDegPerRad},
        {"CentreAltDeg", c.CentreAltRad() * kDegPerRad},
        {"CentreAzDeg", c.CentreAzRad() * kDegPerRad},
        {"CentringMode", c.CentringMode() == Centring::RaDec ? "RA/Dec" : "Alt/Az"},
        {"FieldDeg", c.FieldDeg()},
        {"ZoomLocked", c.ZoomLocked() ? 1 : 0},
        {"FlipHorizontal", c.FlipHorizontal()},
        {"FlipVertical", c.FlipVertical()},
        {"RotationDeg", c.RotationWholeDeg()},
        {"PoleInView", c.PoleInView()}};

    blocks["ScaleLine"] = Overlay(view.scaleLine);
    blocks["Compass"] = Overlay(view.compass);
    blocks["Shadow"] = Overlay(view.shadow);
    blocks["Stars"] = Fields(doc.stars);
    QJsonObject deep = Fields(doc.deepSky);
    QJsonArray adjust;
    for (const int a : doc.deepSky.magAdjust) adjust.append(a);
    deep["MagAdjust"] = adjust;
    deep["NameFilter"] = Str(doc.deepSky.nameFilter);
    blocks["DeepSky"] = deep;
    blocks["Constellation"] = Fields(doc.constellations);
    QJsonObject planet = Body(view.planets);
    planet["GRSLong"] = doc.solarSystem.grsLongitudeDeg;
    blocks["Planet"] = planet;
    QJsonObject comet = Body(view.comets);
    comet["FilterMode"] = doc.comets.filterMode;
    comet["FilterDays"] = doc.comets.filterDays;
    blocks["Comet"] = comet;
    QJsonObject asteroid = Body(view.asteroids);
    asteroid["FilterMode"] = doc.asteroids.filterMode;
    asteroid["FilterNumber"] = doc.asteroids.filterNumber;
    asteroid["FilterHMin"] = doc.asteroids.filterHMin;
    asteroid["FilterHMax"] = doc.asteroids.filterHMax;
    blocks["Asteroid"] = asteroid;
    blocks["RADecGrid"] = Grid(doc.raDecGrid, view.raDecGrid);
    blocks["AltAzGrid"] = Grid(doc.altAzGrid, view.altAzGrid);
    blocks["EclipticGrid"] = Grid(doc.eclipticGrid, view.eclipticGrid);
    blocks["GalacticGrid"] = Grid(doc.galacticGrid, view.galacticGrid);
    blocks["Track"] = QJsonObject{{"Interval", doc.track.interval},    {"Points", doc.track.points},
                                  {"MarkInterval", doc.track.markInterval}, {"Visible", view.track.visible},
                                  {"Levels", Range(view.track.levels)},  {"LabelMag", view.track.labelMag}};
    QJsonArray notes;
    for (const Annotation& a : doc.annotations.items)
        notes.append(QJsonObject{{"Kind", static_cast<int>(a.kind)},
                                 {"RAJ2000Deg", a.raJ2000Rad * kDegPerRad},
                                 {"DecJ2000Deg", a.decJ2000Rad * kDegPerRad},
                                 {"Text", Str(a.text)}});
    blocks["Annotation"] = QJsonObject{
        {"Visible", doc.annotations.visible}, {"Levels", Range(doc.annotations.levels)}, {"Items", notes}};
    int lowest = 127, highest = -128;
    for (const auto a : doc.horizon.altitudeDeg) {
        lowest = std::min<int>(lowest, a);
        highest = std::max<int>(highest, a);
    }
    blocks["Horizon"] = QJsonObject{{"Filename", Str(doc.horizon.fileName)},
                                    {"ProfileMinDeg", lowest},
                                    {"ProfileMaxDeg", highest},
                                    {"Visible", view.horizon.visible},
                                    {"Levels", Range(view.horizon.levels)}};
    return blocks;
}

void PrintBlocks(std::ostream& out, const QJsonObject& blocks)
{
    // Blocks in the order of the map file rather than alphabetically.
    static const char* const kOrder[] = {"Map",       "AreaMap",   "ScaleLine",    "Observer",     "Coordinates",
                                         "Stars",     "Planet",    "Comet",        "Asteroid",     "DeepSky",
                                         "RADecGrid", "AltAzGrid", "EclipticGrid", "GalacticGrid", "Constellation",
                                         "Track",     "Annotation", "Horizon",     "Shadow",       "Compass"};
    for (const char* name : kOrder) {
        if (!blocks.contains(name)) continue;
        out << '[' << name << "]\n";
        const QJsonObject b = blocks[name].toObject();
        for (auto it = b.begin(); it != b.end(); ++it) {
            out << "  " << it.key().toStdString() << " = ";
            PrintValue(out, it.value());
            out << '\n';
        }
    }
}

}  // namespace orv::cli
