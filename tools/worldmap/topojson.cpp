#include "topojson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdlib>

namespace orv::worldmap {

namespace {

struct Decoder {
    std::vector<std::vector<LonLat>> arcs;

    // The points of arc `index` (negative: reversed arc ~index).
    void AppendArc(int index, Ring& ring) const
    {
        const bool reversed = index < 0;
        const std::size_t i = static_cast<std::size_t>(reversed ? ~index : index);
        if (i >= arcs.size()) return;
        const auto& arc = arcs[i];
        // Consecutive arcs of a ring share their end points: skip the first
        // point of every arc after the first.
        const std::size_t skip = ring.empty() ? 0 : 1;
        if (!reversed) {
            for (std::size_t k = skip; k < arc.size(); ++k) ring.push_back(arc[k]);
        } else {
            for (std::size_t k = skip; k < arc.size(); ++k) ring.push_back(arc[arc.size() - 1 - k]);
        }
    }

    void Polygon(const QJsonArray& polygon, std::vector<Ring>& rings) const
    {
        for (const QJsonValue& ringValue : polygon) {
            Ring ring;
            for (const QJsonValue& arc : ringValue.toArray()) AppendArc(arc.toInt(), ring);
            if (ring.size() >= 2) rings.push_back(std::move(ring));
        }
    }

    void Geometry(const QJsonObject& g, std::vector<Ring>& rings) const
    {
        const QString type = g["type"].toString();
        if (type == "GeometryCollection") {
            for (const QJsonValue& child : g["geometries"].toArray()) Geometry(child.toObject(), rings);
        } else if (type == "Polygon") {
            Polygon(g["arcs"].toArray(), rings);
        } else if (type == "MultiPolygon") {
            for (const QJsonValue& polygon : g["arcs"].toArray()) Polygon(polygon.toArray(), rings);
        }
    }
};

}  // namespace

bool DecodeTopoJsonRings(const std::string& json, const std::string& objectName, std::vector<Ring>& rings,
                         std::string& error)
{
    QJsonParseError parseError;
    const QJsonDocument doc = QJsonDocument::fromJson(QByteArray::fromStdString(json), &parseError);
    if (doc.isNull() || !doc.isObject()) {
        error = "not JSON: " + parseError.errorString().toStdString();
        return false;
    }
    const QJsonObject topology = doc.object();
    if (topology["type"].toString() != "Topology") {
        error = "not a TopoJSON topology";
        return false;
    }
    // Quantized topologies: position = delta-decoded integer × scale + translate.
    double scale[2] = {1.0, 1.0}, translate[2] = {0.0, 0.0};
    const bool quantized = topology.contains("transform");
    if (quantized) {
        const QJsonObject t = topology["transform"].toObject();
        scale[0] = t["scale"].toArray()[0].toDouble();
        scale[1] = t["scale"].toArray()[1].toDouble();
        translate[0] = t["translate"].toArray()[0].toDouble();
        translate[1] = t["translate"].toArray()[1].toDouble();
    }
    Decoder decoder;
    for (const QJsonValue& arcValue : topology["arcs"].toArray()) {
        std::vector<LonLat> arc;
        double x = 0, y = 0;
        for (const QJsonValue& positionValue : arcValue.toArray()) {
            const QJsonArray p = positionValue.toArray();
            if (quantized) {
                x += p[0].toDouble();
                y += p[1].toDouble();
                arc.push_back({x * scale[0] + translate[0], y * scale[1] + translate[1]});
            } else {
                arc.push_back({p[0].toDouble(), p[1].toDouble()});
            }
        }
        decoder.arcs.push_back(std::move(arc));
    }
    const QJsonObject objects = topology["objects"].toObject();
    if (!objects.contains(QString::fromStdString(objectName))) {
        error = "the topology has no object \"" + objectName + "\"";
        return false;
    }
    decoder.Geometry(objects[QString::fromStdString(objectName)].toObject(), rings);
    return true;
}

}  // namespace orv::worldmap
