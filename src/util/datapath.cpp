#include "util/datapath.h"
#include "util/text.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <system_error>

namespace fs = std::filesystem;

namespace orv {

namespace {

std::mutex g_configuredMutex;
std::string g_configuredPath;

std::vector<std::string> SplitComponents(std::string_view name)
{
    std::vector<std::string> parts;
    std::string current;
    for (const char c : name) {
        if (c == '\\' || c == '/') {
            if (!current.empty()) parts.push_back(std::move(current));
            current.clear();
        } else {
            current.push_back(c);
        }
    }
    if (!current.empty()) parts.push_back(std::move(current));
    return parts;
}

// Finds `component` in `dir`: the exact name first, then any case variant.
bool FindEntry(const fs::path& dir, const std::string& component, fs::path& found)
{
    std::error_code ec;
    fs::path exact = dir / component;
    if (fs::exists(exact, ec)) {
        found = exact;
        return true;
    }
    for (fs::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
        if (EqualIgnoringCase(it->path().filename().string(), component)) {
            found = it->path();
            return true;
        }
    }
    return false;
}

}  // namespace

std::string ExecutableFolder()
{
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (ec) return {};
    return exe.parent_path().string();
}

void SetConfiguredDataPath(std::string folder)
{
    std::lock_guard lock(g_configuredMutex);
    g_configuredPath = std::move(folder);
}

std::vector<std::string> DataPathCandidates()
{
    std::vector<std::string> out;
    if (const char* env = std::getenv("ORVANE_DATA"); env != nullptr && *env != '\0') out.emplace_back(env);
    {
        std::lock_guard lock(g_configuredMutex);
        if (!g_configuredPath.empty()) out.push_back(g_configuredPath);
    }
    const std::string exeDir = ExecutableFolder();
    if (!exeDir.empty()) {
        out.push_back((fs::path(exeDir) / "data").string());
        out.push_back((fs::path(exeDir) / ".." / "data").lexically_normal().string());
        out.push_back((fs::path(exeDir) / ".." / "share" / "orvane" / "data").lexically_normal().string());
    }
#ifdef ORVANE_BUILD_DATA_DIR
    out.emplace_back(ORVANE_BUILD_DATA_DIR);
#endif
    return out;
}

std::string GetDataPath()
{
    const std::vector<std::string> candidates = DataPathCandidates();
    std::error_code ec;
    for (const auto& c : candidates)
        if (fs::is_directory(c, ec)) return c;
    return candidates.empty() ? std::string(".") : candidates.front();
}

bool ResolveCaseInsensitive(const std::string& folder, std::string_view name, std::string& fullPath)
{
    fs::path current(folder);
    std::error_code ec;
    if (!fs::is_directory(current, ec)) return false;
    for (const auto& component : SplitComponents(name)) {
        fs::path next;
        if (!FindEntry(current, component, next)) return false;
        current = std::move(next);
    }
    if (!fs::is_regular_file(current, ec)) return false;
    fullPath = current.string();
    return true;
}

bool LocateDataFile(std::string_view name, std::string& fullPath)
{
    for (const auto& folder : DataPathCandidates())
        if (ResolveCaseInsensitive(folder, name, fullPath)) return true;
    return false;
}

std::string GetDataFileName(std::string_view name)
{
    fs::path current(GetDataPath());
    bool matching = true;  // still walking folders that exist
    for (const auto& component : SplitComponents(name)) {
        fs::path next;
        if (matching && FindEntry(current, component, next)) {
            current = std::move(next);
        } else {
            matching = false;
            current /= component;
        }
    }
    return current.string();
}

}  // namespace orv
