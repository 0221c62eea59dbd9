#include "util/atomicfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>

namespace orv {

namespace {

AtomicWriteFaultHook g_faultHook = nullptr;

void Checkpoint(AtomicWriteStep step)
{
    if (g_faultHook) g_faultHook(step);
}

// Writes are cut into blocks so that a test can stop a save between them.
constexpr std::size_t kBlockBytes = 64 * 1024;

}  // namespace

void SetAtomicWriteFaultHook(AtomicWriteFaultHook hook) { g_faultHook = hook; }

CAtomicFileWriter::~CAtomicFileWriter() { Discard(); }

bool CAtomicFileWriter::Fail()
{
    m_error = std::strerror(errno);
    Discard();
    return false;
}

bool CAtomicFileWriter::Open(const std::string& path)
{
    namespace fs = std::filesystem;
    Discard();
    m_error.clear();
    m_target = path;
    const fs::path target(path);
    fs::path dir = target.parent_path();
    if (dir.empty()) dir = ".";
    m_temp = (dir / ("." + target.filename().string() + ".XXXXXX")).string();
    m_fd = ::mkstemp(m_temp.data());
    if (m_fd < 0) {
        m_error = std::strerror(errno);
        m_temp.clear();
        return false;
    }
    // Keep the permissions of a file being replaced; a new file gets the
    // usual rw-r--r-- less the umask.
    struct stat st {};
    if (::stat(path.c_str(), &st) == 0) {
        ::fchmod(m_fd, st.st_mode & 07777);
    } else {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        ::fchmod(m_fd, 0666 & ~mask);
    }
    Checkpoint(AtomicWriteStep::Opened);
    return true;
}

bool CAtomicFileWriter::Write(std::span<const std::uint8_t> bytes)
{
    if (m_fd < 0) return false;
    const std::uint8_t* p = bytes.data();
    std::size_t left = bytes.size();
    while (left > 0) {
        const ssize_t n = ::write(m_fd, p, std::min(left, kBlockBytes));
        if (n < 0) {
            if (errno == EINTR) continue;
            return Fail();
        }
        p += n;
        left -= static_cast<std::size_t>(n);
        Checkpoint(AtomicWriteStep::BlockWritten);
    }
    return true;
}

bool CAtomicFileWriter::Commit()
{
    if (m_fd < 0) return false;
    Checkpoint(AtomicWriteStep::Flushing);
    if (::fsync(m_fd) != 0) return Fail();
    const int fd = m_fd;
    m_fd = -1;
    if (::close(fd) != 0) return Fail();
    Checkpoint(AtomicWriteStep::Renaming);
    if (::rename(m_temp.c_str(), m_target.c_str()) != 0) return Fail();
    m_temp.clear();
    // The rename itself reaches the disk with the folder's entry.
    std::filesystem::path dir = std::filesystem::path(m_target).parent_path();
    if (dir.empty()) dir = ".";
    if (const int dirFd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY); dirFd >= 0) {
        ::fsync(dirFd);
        ::close(dirFd);
    }
    Checkpoint(AtomicWriteStep::Renamed);
    return true;
}

void CAtomicFileWriter::Discard()
{
    if (m_fd >= 0) ::close(m_fd);
    m_fd = -1;
    if (!m_temp.empty()) ::unlink(m_temp.c_str());
    m_temp.clear();
}

AtomicWriteResult WriteFileAtomically(const std::string& path, std::span<const std::uint8_t> bytes)
{
    CAtomicFileWriter writer;
    AtomicWriteResult result;
    result.ok = writer.Open(path) && writer.Write(bytes) && writer.Commit();
    if (!result.ok) result.error = writer.Error();
    return result;
}

}  // namespace orv
