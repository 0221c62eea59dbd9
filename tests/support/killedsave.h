// Saves interrupted by a hard kill: a child process runs a save and dies
// (SIGKILL, as from the OOM killer or a power switch) at its n-th
// checkpoint, for n = 1, 2, … until a save runs to the end; after each
// death the file on disk must still be complete — the previous contents
// byte for byte, or, once the rename is done, the new ones.
#pragma once

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "util/atomicfile.h"

namespace orv::test {

namespace killedsave {
inline int g_killAt = 0;
inline int g_reached = 0;
inline void Hook(AtomicWriteStep)
{
    if (++g_reached == g_killAt) ::raise(SIGKILL);
}
inline std::string Contents(const std::filesystem::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}
}  // namespace killedsave

inline void WriteFile(const std::filesystem::path& path, const std::string& contents)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << contents;
}

// Runs `save` in a child process, killed at its `killAt`-th checkpoint (0:
// never). True when the child was killed.
inline bool RunSaveInChild(const std::function<bool()>& save, int killAt, int& exitStatus)
{
    const pid_t child = ::fork();
    if (child == 0) {
        killedsave::g_killAt = killAt;
        killedsave::g_reached = 0;
        SetAtomicWriteFaultHook(killAt > 0 ? &killedsave::Hook : nullptr);
        ::_exit(save() ? 0 : 2);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

// `save` writes new contents to `path`, which holds `before`; it returns
// true on success. Every kill point is tried in turn; returns how many there
// were.
inline int KillSaveAtEveryStep(const std::filesystem::path& path, const std::string& before,
                               const std::function<bool()>& save)
{
    // The contents of an uninterrupted save.
    WriteFile(path, before);
    int exitStatus = 0;
    EXPECT_FALSE(RunSaveInChild(save, 0, exitStatus));
    EXPECT_EQ(exitStatus, 0) << "the save fails even without a kill";
    const std::string after = killedsave::Contents(path);
    EXPECT_NE(after, before) << "the save wrote nothing new";
    for (int killAt = 1; killAt < 10000; ++killAt) {
        WriteFile(path, before);
        const bool killed = RunSaveInChild(save, killAt, exitStatus);
        const std::string now = killedsave::Contents(path);
        if (!killed) {
            // Fewer checkpoints than killAt: the save ran to its end.
            EXPECT_EQ(exitStatus, 0);
            EXPECT_EQ(now, after);
            return killAt - 1;
        }
        // Killed part-way: the old file whole, or the new one whole once
        // the rename has happened; never a mixture, never a missing file.
        EXPECT_TRUE(now == before || now == after)
            << "killed at checkpoint " << killAt << ": the file holds " << now.size() << " bytes of neither version";
    }
    ADD_FAILURE() << "the save never finished";
    return 0;
}

}  // namespace orv::test
