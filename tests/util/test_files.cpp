#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/compare.h"
#include "util/atomicfile.h"
#include "util/mappedfile.h"

using namespace orv;
namespace fs = std::filesystem;

namespace {
std::string ReadAll(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}
std::vector<std::uint8_t> Bytes(const std::string& s) { return {s.begin(), s.end()}; }
}  // namespace

TEST(MappedFile, MapsWholeFileAndReleasesIt)
{
    const fs::path p = fs::path(orv::test::MakeTempDir()) / "stars.dat";
    std::ofstream(p, std::ios::binary) << "Betelgeuse";
    CMappedFile f;
    ASSERT_TRUE(f.Open(p.string()));
    ASSERT_EQ(f.Size(), 10u);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(f.Data()), f.Size()), "Betelgeuse");
    CMappedFile moved(std::move(f));
    EXPECT_FALSE(f.IsOpen());
    EXPECT_TRUE(moved.IsOpen());
    moved.Close();
    EXPECT_EQ(moved.Data(), nullptr);
}

TEST(MappedFile, MissingEmptyAndFolderInputs)
{
    const fs::path dir = orv::test::MakeTempDir();
    CMappedFile f;
    EXPECT_FALSE(f.Open((dir / "absent.dat").string()));
    EXPECT_FALSE(f.IsOpen());
    EXPECT_FALSE(f.Open(dir.string()));
    std::ofstream(dir / "empty.dat").close();
    ASSERT_TRUE(f.Open((dir / "empty.dat").string()));
    EXPECT_EQ(f.Size(), 0u);
}

TEST(AtomicFile, CommitReplacesAndDiscardKeepsTheOldFile)
{
    const fs::path dir = orv::test::MakeTempDir();
    const fs::path p = dir / "map.ovm";
    ASSERT_TRUE(WriteFileAtomically(p.string(), Bytes("first")).ok);
    EXPECT_EQ(ReadAll(p), "first");
    {
        CAtomicFileWriter w;
        ASSERT_TRUE(w.Open(p.string()));
        ASSERT_TRUE(w.Write(Bytes("half a file")));
        // Destroyed without Commit: as if the program had failed mid-save.
    }
    EXPECT_EQ(ReadAll(p), "first");
    ASSERT_TRUE(WriteFileAtomically(p.string(), Bytes("second")).ok);
    EXPECT_EQ(ReadAll(p), "second");
    // No temporary files are left behind.
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);
}

TEST(AtomicFile, UnwritableFolderFailsWithAReason)
{
    const auto r = WriteFileAtomically("/nonexistent-folder/map.ovm", Bytes("x"));
    EXPECT_FALSE(r.ok);
    EXPECT_FALSE(r.error.empty());
}
