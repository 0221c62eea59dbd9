// Map files (".ovm"): the whole state of a map written block after block.
//
// The layout, field by field with the rules for every older version, is in
// docs/map-file-format.md. Reading never goes past the end of the data: a
// truncated file leaves the members it did not reach at their defaults (the
// result says so). Saving is atomic: the old file stays intact until the new
// one is completely on disk.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orv {

class CMapView;

enum class MapFileStatus {
    Ok,
    CannotOpen,      // message 1036
    NotOrvaneFile,   // message 1037
    VersionTooNew,   // message 1039
    UnknownMapType,  // message 1056
    CannotCreate,    // message 1034
};

struct MapFileResult {
    MapFileStatus status = MapFileStatus::Ok;
    std::string path;
    std::string systemReason;  // the operating system's reason for CannotOpen/CannotCreate
    int version = 0;
    int mapType = 0;
    bool truncated = false;    // the data ended before the last block

    bool Ok() const { return status == MapFileStatus::Ok; }
    // The string-table message of the status (0 when Ok).
    int MessageId() const;
    // The program's message with the file name in place of %1.
    std::string Message() const;
};

// What a reader keeps of the title stored in the file.
enum class KeepTitle { No, Yes };

// The title record at the start of every map file.
struct MapFileHeader {
    int version = 0;
    int mapType = 0;
    std::string title;
};

// Checks the signature, version and map type of a map file held in memory,
// in that order, as the open command does.
MapFileResult InspectMapBytes(std::span<const std::uint8_t> bytes, MapFileHeader& header);

// The file as this program writes it (version 10).
std::vector<std::uint8_t> WriteMapBytes(const CMapView& view);

// Reads a whole map file held in memory into a view and its document
// (constructed from the stored defaults beforehand). With KeepTitle::No a
// non-empty stored title becomes the document's title.
MapFileResult ReadMapBytes(std::span<const std::uint8_t> bytes, CMapView& view, KeepTitle keepTitle);

// Opens and reads `path`; on success the document's path is `path`, its
// title the stored one (or, when none is stored or keepTitle is set, the
// file's base name) and it is not modified.
MapFileResult LoadMapFile(const std::string& path, CMapView& view, KeepTitle keepTitle = KeepTitle::No);

enum class SaveTarget {
    DocumentPath,    // the document's own path; the title becomes the file's base name
    DefaultMapFile,  // the default map file (settings "Paths", "MainFile"); the document is unchanged
};

// Writes the map to `path` (the document's path or the default map file, as
// the caller resolved it for `target`). On success with
// SaveTarget::DocumentPath the document takes the path, its title becomes the
// base name and it is no longer modified.
MapFileResult SaveMapFile(CMapView& view, const std::string& path, SaveTarget target);

// The file's name without folder and extension ("C:\Maps\Orion.ovm" and
// "/home/a/Orion.ovm" both give "Orion").
std::string MapTitleFromPath(const std::string& path);

}  // namespace orv
