// Where a catalogue reader takes its files from. The program maps and reads
// them from the data folders (CDataFolderFiles); the fuzz targets hand in
// bytes already in memory (CMemoryDataFiles), so that a damaged catalogue
// can be tried millions of times without writing or opening a file. A
// reader written against this interface reads both the same way: a memory
// file behaves as a mapping of exactly its bytes, and nothing past them.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "util/mappedfile.h"

namespace orv {

class CDataFiles {
public:
    virtual ~CDataFiles() = default;
    // The file's full name for messages ("/usr/share/orvane/data/star/...");
    // false when there is no such file. `name` is a data-folder name with
    // backslashes, as the formats give them ("star\\Tycho2\\Tycho2.dat").
    virtual bool Locate(std::string_view name, std::string& path) const = 0;
    // Maps the file; false (and `out` closed) when absent or unmappable.
    virtual bool Map(std::string_view name, CMappedFile& out) const = 0;
    // Reads the whole file into `out`; false when absent or unreadable.
    virtual bool Read(std::string_view name, std::vector<std::uint8_t>& out) const = 0;
};

// The files of the data folders (util/datapath.h), or of one folder.
class CDataFolderFiles final : public CDataFiles {
public:
    // Every data folder in the usual order of search.
    CDataFolderFiles() = default;
    // Only `folder` (the tests' scratch folders).
    explicit CDataFolderFiles(std::string folder) : m_folder(std::move(folder)) {}

    bool Locate(std::string_view name, std::string& path) const override;
    bool Map(std::string_view name, CMappedFile& out) const override;
    bool Read(std::string_view name, std::vector<std::uint8_t>& out) const override;

private:
    std::string m_folder;
};

// Files held in memory by the caller, by data-folder name; the caller keeps
// the bytes alive while anything opened from them is in use. Names compare
// as the data folder compares them: without regard to case, "/" and "\\"
// alike.
class CMemoryDataFiles final : public CDataFiles {
public:
    void Add(std::string_view name, std::span<const std::uint8_t> bytes);
    void Clear() { m_files.clear(); }

    bool Locate(std::string_view name, std::string& path) const override;
    bool Map(std::string_view name, CMappedFile& out) const override;
    bool Read(std::string_view name, std::vector<std::uint8_t>& out) const override;

private:
    const std::span<const std::uint8_t>* Find(std::string_view name) const;
    std::map<std::string, std::span<const std::uint8_t>, std::less<>> m_files;
};

}  // namespace orv
