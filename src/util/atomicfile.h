// Replacing a file so that readers see either the old or the new contents,
// never a mixture: the bytes go to a temporary file in the same folder, are
// flushed to disk, and the temporary file is then renamed over the target.
// A failure at any step, or an object destroyed before Commit(), leaves the
// existing file untouched and removes the temporary file.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace orv {

class CAtomicFileWriter {
public:
    CAtomicFileWriter() = default;
    ~CAtomicFileWriter();
    CAtomicFileWriter(const CAtomicFileWriter&) = delete;
    CAtomicFileWriter& operator=(const CAtomicFileWriter&) = delete;

    // Creates the temporary file beside `path`. False (see Error()) when the
    // folder cannot take a new file.
    bool Open(const std::string& path);
    bool Write(std::span<const std::uint8_t> bytes);
    bool Write(const void* data, std::size_t size)
    {
        return Write(std::span<const std::uint8_t>(static_cast<const std::uint8_t*>(data), size));
    }
    // Flushes and renames over the target. False (see Error()) on failure, in
    // which case the target is unchanged.
    bool Commit();
    // Drops the temporary file; the target is unchanged.
    void Discard();

    const std::string& Error() const { return m_error; }

private:
    bool Fail();
    int m_fd = -1;
    std::string m_target;
    std::string m_temp;
    std::string m_error;
};

struct AtomicWriteResult {
    bool ok = false;
    std::string error;  // the system's reason when !ok
};

AtomicWriteResult WriteFileAtomically(const std::string& path, std::span<const std::uint8_t> bytes);

// The points of a save at which a process may die: the temporary file made,
// each block of at most 64 KiB written, the flush, the rename, and after it.
enum class AtomicWriteStep { Opened, BlockWritten, Flushing, Renaming, Renamed };
// For the tests that kill a writer part-way: called at every step of every
// save of this process (nullptr, the default, for none).
using AtomicWriteFaultHook = void (*)(AtomicWriteStep step);
void SetAtomicWriteFaultHook(AtomicWriteFaultHook hook);

}  // namespace orv
