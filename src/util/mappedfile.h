// A read-only memory mapping of a whole file, owned by the object.
//
// The large catalogues are walked in place through this type: nothing is
// copied to the heap. An empty file opens successfully with Size() 0 and a
// null Data().
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace orv {

class CMappedFile {
public:
    CMappedFile() = default;
    ~CMappedFile();
    CMappedFile(CMappedFile&& other) noexcept;
    CMappedFile& operator=(CMappedFile&& other) noexcept;
    CMappedFile(const CMappedFile&) = delete;
    CMappedFile& operator=(const CMappedFile&) = delete;

    // Maps `path` read-only. Returns false (and leaves the object closed) when
    // the file is missing, is not a regular file, or cannot be mapped.
    bool Open(const std::string& path);
    // Stands for a mapping of `bytes`, which the caller keeps alive while
    // this is open and which are not copied (the fuzz targets hand in their
    // input this way); `path` names it in messages.
    void OpenBytes(std::span<const std::uint8_t> bytes, std::string path);
    void Close();

    bool IsOpen() const { return m_open; }
    const std::uint8_t* Data() const { return m_data; }
    std::size_t Size() const { return m_size; }
    std::span<const std::uint8_t> Bytes() const { return {m_data, m_size}; }
    // The path it was opened from (for messages about the file).
    const std::string& Path() const { return m_path; }

private:
    const std::uint8_t* m_data = nullptr;
    std::size_t m_size = 0;
    bool m_open = false;
    bool m_mapped = false;  // m_data is our mapping, to be unmapped
    std::string m_path;
};

}  // namespace orv
