#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/compare.h"
#include "util/datapath.h"

using namespace orv;
namespace fs = std::filesystem;

namespace {
class DataPathTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_dir = orv::test::MakeTempDir();
        fs::create_directories(fs::path(m_dir) / "Star" / "tycho2");
        std::ofstream(fs::path(m_dir) / "Star" / "tycho2" / "T2Id.IDX") << "x";
        const char* old = std::getenv("ORVANE_DATA");
        if (old != nullptr) m_old = old;
        setenv("ORVANE_DATA", m_dir.c_str(), 1);
    }
    void TearDown() override
    {
        if (m_old.empty())
            unsetenv("ORVANE_DATA");
        else
            setenv("ORVANE_DATA", m_old.c_str(), 1);
    }
    std::string m_dir;
    std::string m_old;
};
}  // namespace

TEST_F(DataPathTest, ResolvesBackslashNamesInAnyCase)
{
    std::string path;
    ASSERT_TRUE(LocateDataFile("star\\Tycho2\\t2id.idx", path));
    EXPECT_EQ(fs::path(path), fs::path(m_dir) / "Star" / "tycho2" / "T2Id.IDX");
    ASSERT_TRUE(LocateDataFile("STAR/TYCHO2/T2ID.IDX", path));
    // (A name no data folder holds: the real catalogue may be installed.)
    EXPECT_FALSE(LocateDataFile("star\\Tycho2\\NoSuchCatalogue.dat", path));
    // A folder is not a data file.
    EXPECT_FALSE(LocateDataFile("star\\Tycho2", path));
}

TEST_F(DataPathTest, EnvironmentFolderComesFirst)
{
    EXPECT_EQ(GetDataPath(), m_dir);
    ASSERT_FALSE(DataPathCandidates().empty());
    EXPECT_EQ(DataPathCandidates().front(), m_dir);
}

TEST_F(DataPathTest, WriterNamesMatchTheExistingCase)
{
    // A writer replaces the file a reader finds, and creates missing parts as named.
    EXPECT_EQ(fs::path(GetDataFileName("star\\Tycho2\\t2id.idx")), fs::path(m_dir) / "Star" / "tycho2" / "T2Id.IDX");
    EXPECT_EQ(fs::path(GetDataFileName("data\\rgnbound.dat")), fs::path(m_dir) / "data" / "rgnbound.dat");
}
