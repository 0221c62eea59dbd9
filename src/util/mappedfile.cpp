#include "util/mappedfile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace orv {

CMappedFile::~CMappedFile() { Close(); }

CMappedFile::CMappedFile(CMappedFile&& other) noexcept
    : m_data(std::exchange(other.m_data, nullptr)),
      m_size(std::exchange(other.m_size, 0)),
      m_open(std::exchange(other.m_open, false)),
      m_mapped(std::exchange(other.m_mapped, false)),
      m_path(std::exchange(other.m_path, {}))
{
}

CMappedFile& CMappedFile::operator=(CMappedFile&& other) noexcept
{
    if (this != &other) {
        Close();
        m_data = std::exchange(other.m_data, nullptr);
        m_size = std::exchange(other.m_size, 0);
        m_open = std::exchange(other.m_open, false);
        m_mapped = std::exchange(other.m_mapped, false);
        m_path = std::exchange(other.m_path, {});
    }
    return *this;
}

bool CMappedFile::Open(const std::string& path)
{
    Close();
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return false;
    }
    const auto size = static_cast<std::size_t>(st.st_size);
    void* p = nullptr;
    if (size > 0) {
        p = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, fd, 0);
        if (p == MAP_FAILED) {
            ::close(fd);
            return false;
        }
    }
    // The mapping keeps the file alive; the descriptor is not needed any more.
    ::close(fd);
    m_data = static_cast<const std::uint8_t*>(p);
    m_size = size;
    m_open = true;
    m_mapped = p != nullptr;
    m_path = path;
    return true;
}

void CMappedFile::OpenBytes(std::span<const std::uint8_t> bytes, std::string path)
{
    Close();
    // Like a mapping of an empty file, no bytes give a null Data().
    m_data = bytes.empty() ? nullptr : bytes.data();
    m_size = bytes.size();
    m_open = true;
    m_path = std::move(path);
}

void CMappedFile::Close()
{
    if (m_mapped) ::munmap(const_cast<std::uint8_t*>(m_data), m_size);
    m_mapped = false;
    m_data = nullptr;
    m_size = 0;
    m_open = false;
    m_path.clear();
}

}  // namespace orv
