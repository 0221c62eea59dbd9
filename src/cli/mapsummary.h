// Every setting of a map, block by block, as JSON (and as text through
// PrintBlocks): what `map info` and `map new` print.
#pragma once

#include <QJsonObject>

#include <iosfwd>

namespace orv {
class CMapView;
}

namespace orv::cli {

// Keys are the names of the map file's blocks and the settings ("AreaMap",
// "StarMagLimit"), so that the text form matches the settings file.
QJsonObject DescribeMap(const CMapView& view);
// The same object with every key in the command line's JSON style: the
// leading word in lower case ("areaMap", "starMagLimit", "raDecGrid").
QJsonObject CamelCaseKeys(const QJsonObject& object);
// Text form: one "[block]" heading per top-level object, then "key = value" lines.
void PrintBlocks(std::ostream& out, const QJsonObject& blocks);

}  // namespace orv::cli
