// Helpers shared by the fuzz targets: cutting one input into several files,
// and a private scratch folder per process for readers that open files.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orv::fuzz {

// Cuts the input into `parts` pieces at the separator "\n----\n" (so that
// seed files are easy to assemble by hand); missing pieces are empty.
inline std::vector<std::span<const std::uint8_t>> Split(const std::uint8_t* data, std::size_t size, std::size_t parts)
{
    static constexpr std::string_view kSeparator = "\n----\n";
    std::vector<std::span<const std::uint8_t>> out;
    const std::string_view all(reinterpret_cast<const char*>(data), size);
    std::size_t at = 0;
    while (out.size() + 1 < parts) {
        const std::size_t next = all.find(kSeparator, at);
        if (next == std::string_view::npos) break;
        out.emplace_back(data + at, next - at);
        at = next + kSeparator.size();
    }
    out.emplace_back(data + std::min(at, size), size - std::min(at, size));
    while (out.size() < parts) out.emplace_back();
    return out;
}

// The pieces of Split, each copied into a heap block of exactly its size:
// handed to a reader as a file in memory, a read past a piece's end is then
// caught by AddressSanitizer (within the input it would land, unnoticed, in
// the next piece).
inline std::vector<std::vector<std::uint8_t>> SplitCopies(const std::uint8_t* data, std::size_t size, std::size_t parts)
{
    std::vector<std::vector<std::uint8_t>> out;
    for (const auto piece : Split(data, size, parts)) out.emplace_back(piece.begin(), piece.end());
    return out;
}

// A folder of this process's own, in memory when the system offers a
// memory file system (the readers' file writes are most of a run).
inline const std::filesystem::path& ScratchFolder()
{
    static const std::filesystem::path folder = [] {
        std::error_code ec;
        const std::filesystem::path base = std::filesystem::is_directory("/dev/shm", ec)
                                               ? std::filesystem::path("/dev/shm")
                                               : std::filesystem::temp_directory_path();
        auto p = base / ("orvane-fuzz-" + std::to_string(::getpid()));
        std::filesystem::create_directories(p);
        return p;
    }();
    return folder;
}

// Writes `bytes` to `name` below the scratch folder (creating folders on the
// way) and returns the full path.
inline std::string WriteScratch(std::string_view name, std::span<const std::uint8_t> bytes)
{
    const std::filesystem::path p = ScratchFolder() / std::string(name);
    std::filesystem::create_directories(p.parent_path());
    std::ofstream(p, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return p.string();
}

inline std::string_view Text(std::span<const std::uint8_t> bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace orv::fuzz
