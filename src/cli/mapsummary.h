// Every setting of a map, block by block, as JSON (and as text through
// PrintBlocks): what `map info` and `map new` print.
#pragma once

#include <QJsonObject>

#include <iosfwd>

namespace orv {
class CMapView;
}

namespace orv::cli {

QJsonObject DescribeMap(const CMapView& view);
// Text form: one "[block]" heading per top-level object, then "key = value" lines.
void PrintBlocks(std::ostream& out, const QJsonObject& blocks);

}  // namespace orv::cli
