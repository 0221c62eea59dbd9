// Saves that survive a kill: the atomic writer killed at every checkpoint of
// a save (see support/killedsave.h).
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/compare.h"
#include "support/killedsave.h"
#include "util/atomicfile.h"

using namespace orv;
namespace fs = std::filesystem;

TEST(KilledSave, AtomicWriterLeavesTheOldFileOrTheNewOneWhole)
{
    const fs::path dir = test::MakeTempDir();
    const fs::path path = dir / "catalogue.dat";
    // A million bytes: sixteen blocks, so that kills fall between writes.
    std::string big(1'000'000, ' ');
    for (std::size_t i = 0; i < big.size(); ++i) big[i] = static_cast<char>('a' + i % 26);
    const int points = test::KillSaveAtEveryStep(path, "the observer's previous file\n", [&] {
        return WriteFileAtomically(path.string(), {reinterpret_cast<const std::uint8_t*>(big.data()), big.size()}).ok;
    });
    // Opened, 16 blocks, flushing, renaming, renamed.
    EXPECT_EQ(points, 20);
}
