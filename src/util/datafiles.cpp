#include "util/datafiles.h"

#include <cctype>

#include "util/binaryio.h"
#include "util/datapath.h"

namespace orv {

bool CDataFolderFiles::Locate(std::string_view name, std::string& path) const
{
    return m_folder.empty() ? LocateDataFile(name, path) : ResolveCaseInsensitive(m_folder, name, path);
}

bool CDataFolderFiles::Map(std::string_view name, CMappedFile& out) const
{
    out.Close();
    std::string path;
    return Locate(name, path) && out.Open(path);
}

bool CDataFolderFiles::Read(std::string_view name, std::vector<std::uint8_t>& out) const
{
    std::string path;
    return Locate(name, path) && ReadWholeFile(path, out);
}

namespace {

// The key a name is kept under: lower case, forward slashes.
std::string Key(std::string_view name)
{
    std::string key(name);
    for (char& c : key) c = c == '\\' ? '/' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return key;
}

}  // namespace

void CMemoryDataFiles::Add(std::string_view name, std::span<const std::uint8_t> bytes) { m_files[Key(name)] = bytes; }

const std::span<const std::uint8_t>* CMemoryDataFiles::Find(std::string_view name) const
{
    const auto it = m_files.find(Key(name));
    return it == m_files.end() ? nullptr : &it->second;
}

bool CMemoryDataFiles::Locate(std::string_view name, std::string& path) const
{
    if (Find(name) == nullptr) return false;
    path = "memory:" + Key(name);
    return true;
}

bool CMemoryDataFiles::Map(std::string_view name, CMappedFile& out) const
{
    out.Close();
    const auto* bytes = Find(name);
    if (bytes == nullptr) return false;
    out.OpenBytes(*bytes, "memory:" + Key(name));
    return true;
}

bool CMemoryDataFiles::Read(std::string_view name, std::vector<std::uint8_t>& out) const
{
    const auto* bytes = Find(name);
    if (bytes == nullptr) return false;
    out.assign(bytes->begin(), bytes->end());
    return true;
}

}  // namespace orv
