#include "map/mapfile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "app/strings.h"
#include "map/mapfileio.h"
#include "map/mapview.h"
#include "util/atomicfile.h"
#include "util/binaryio.h"

namespace orv {

namespace {

constexpr std::size_t kTitleBytes = 80;
// Each record of the list that files before version 4 carry after the track
// display block: three f64 and one i16.
constexpr std::size_t kLegacyRecordBytes = 26;

std::string Signature() { return std::string(LoadString(IDS_SIGNATURE)); }

}  // namespace

int MapFileResult::MessageId() const
{
    switch (status) {
    case MapFileStatus::Ok: return 0;
    case MapFileStatus::CannotOpen: return IDS_CANNOT_OPEN_FILE;
    case MapFileStatus::NotOrvaneFile: return IDS_NOT_ORVANE_FILE;
    case MapFileStatus::VersionTooNew: return IDS_VERSION_TOO_NEW;
    case MapFileStatus::UnknownMapType: return IDS_UNKNOWN_MAP_TYPE;
    case MapFileStatus::CannotCreate: return IDS_CANNOT_CREATE_FILE;
    }
    return 0;
}

std::string MapFileResult::Message() const
{
    if (status == MapFileStatus::Ok) return {};
    return FormatString(MessageId(), path);
}

std::string MapTitleFromPath(const std::string& path)
{
    std::size_t start = path.find_last_of("/\\");
    start = start == std::string::npos ? 0 : start + 1;
    std::string name = path.substr(start);
    if (const std::size_t dot = name.find_last_of('.'); dot != std::string::npos && dot > 0) name.resize(dot);
    return name;
}

MapFileResult InspectMapBytes(std::span<const std::uint8_t> bytes, MapFileHeader& header)
{
    MapFileResult result;
    const std::string sig = Signature();
    // The signature is compared over its text; the byte after it is the terminator.
    if (bytes.size() < sig.size() + 1 || std::memcmp(bytes.data(), sig.data(), sig.size()) != 0) {
        result.status = MapFileStatus::NotOrvaneFile;
        return result;
    }
    CByteReader r(bytes.subspan(sig.size() + 1));
    std::uint16_t version = 0;
    if (!r.U16(version)) {
        result.status = MapFileStatus::NotOrvaneFile;
        return result;
    }
    result.version = header.version = version;
    if (version > kMapFileVersion) {
        result.status = MapFileStatus::VersionTooNew;
        return result;
    }
    std::int16_t type = 0;
    if (!r.I16(type)) {
        result.status = MapFileStatus::NotOrvaneFile;
        return result;
    }
    result.mapType = header.mapType = type;
    // Only the sky map is built into this program; a file of the second map
    // kind cannot be shown by it and is reported like an unknown type.
    if (type != kMapTypeSky) {
        result.status = MapFileStatus::UnknownMapType;
        return result;
    }
    r.FixedText(header.title, kTitleBytes);
    return result;
}

std::vector<std::uint8_t> WriteMapBytes(const CMapView& view)
{
    const CMapDoc& doc = view.Doc();
    CByteWriter out;
    const std::string sig = Signature();
    out.FixedText(sig, sig.size() + 1);
    out.U16(kMapFileVersion);
    out.I16(kMapTypeSky);
    out.FixedText(doc.title, kTitleBytes);
    out.I16(1);
    view.WriteHeader(out);
    view.scaleLine.Write(out);
    doc.Write(out);
    view.coordinates.Write(out);
    doc.stars.Write(out);
    view.planets.Write(out);
    view.comets.Write(out);
    doc.comets.Write(out);
    view.asteroids.Write(out);
    doc.asteroids.Write(out);
    doc.deepSky.Write(out);
    view.raDecGrid.Write(out);
    view.altAzGrid.Write(out);
    view.eclipticGrid.Write(out);
    view.galacticGrid.Write(out);
    doc.constellations.Write(out);
    view.track.Write(out);
    view.shadow.Write(out);
    view.compass.Write(out);
    view.horizon.Write(out);
    return std::move(out.Data());
}

MapFileResult ReadMapBytes(std::span<const std::uint8_t> bytes, CMapView& view, KeepTitle keepTitle)
{
    MapFileHeader header;
    MapFileResult result = InspectMapBytes(bytes, header);
    if (!result.Ok()) return result;

    CMapDoc& doc = view.Doc();
    const std::size_t bodyStart = Signature().size() + 1 + 2 + 2;
    CMapFileReader in(bytes.subspan(bodyStart), header.version);
    CByteReader& r = in.Bytes();
    const int V = header.version;

    std::string title;
    r.FixedText(title, kTitleBytes);
    if (!title.empty() && keepTitle == KeepTitle::No) doc.title = title;
    std::int16_t ignored = 0;
    r.I16(ignored);

    view.ReadHeader(in);
    if (V > 3) view.scaleLine.Read(in);
    if (V > 3 && V < 7) r.I16(ignored);
    doc.Read(in);
    view.coordinates.Read(in);
    doc.stars.Read(in);
    view.planets.Read(in);
    view.comets.Read(in);
    doc.comets.Read(in);
    view.asteroids.Read(in);
    doc.asteroids.Read(in);
    doc.deepSky.Read(in);
    view.raDecGrid.Read(in);
    view.altAzGrid.Read(in);
    view.eclipticGrid.Read(in);
    view.galacticGrid.Read(in);
    doc.constellations.Read(in);
    view.track.Read(in);
    if (V < 4) {
        std::int16_t count = 0;
        r.I16(count);
        if (count > 0) r.Skip(static_cast<std::size_t>(count) * kLegacyRecordBytes);
    }
    if (V > 1 && V < 6) r.I16(ignored);
    view.shadow.Read(in);
    view.compass.Read(in);
    view.horizon.Read(in);

    result.truncated = r.ShortRead();
    doc.loadedFromFile = 1;
    view.loadedFromFile = 1;
    // The centre, the frame and the level follow from what was read.
    view.coordinates.Update(doc.observer);
    view.FollowField();
    return result;
}

MapFileResult LoadMapFile(const std::string& path, CMapView& view, KeepTitle keepTitle)
{
    MapFileResult result;
    result.path = path;
    std::vector<std::uint8_t> bytes;
    errno = 0;
    if (!ReadWholeFile(path, bytes)) {
        result.status = MapFileStatus::CannotOpen;
        result.systemReason = std::strerror(errno);
        return result;
    }
    CMapDoc& doc = view.Doc();
    const std::string titleBefore = doc.title;
    doc.title.clear();
    MapFileResult read = ReadMapBytes(bytes, view, keepTitle);
    read.path = path;
    if (!read.Ok()) {
        doc.title = titleBefore;
        return read;
    }
    if (doc.title.empty()) doc.title = MapTitleFromPath(path);
    doc.pathName = path;
    doc.modified = false;
    return read;
}

MapFileResult SaveMapFile(CMapView& view, const std::string& path, SaveTarget target)
{
    MapFileResult result;
    result.path = path;
    result.version = kMapFileVersion;
    result.mapType = kMapTypeSky;
    CMapDoc& doc = view.Doc();
    const std::string titleBefore = doc.title;
    if (target == SaveTarget::DocumentPath) doc.title = MapTitleFromPath(path);
    const std::vector<std::uint8_t> bytes = WriteMapBytes(view);
    const AtomicWriteResult written = WriteFileAtomically(path, bytes);
    if (!written.ok) {
        doc.title = titleBefore;
        result.status = MapFileStatus::CannotCreate;
        result.systemReason = written.error;
        return result;
    }
    if (target == SaveTarget::DocumentPath) {
        doc.pathName = path;
        doc.modified = false;
    }
    return result;
}

}  // namespace orv
