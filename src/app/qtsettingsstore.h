// The settings store of the desktop program: an INI file handled by QSettings.
//
// Sections are INI groups and keys their entries, so a user can read and
// edit the file by hand. The default file is Orvane/Orvane.ini under the
// user's configuration folder; the environment variable ORVANE_SETTINGS or an
// explicit path (the command line's --settings, the tests) points elsewhere.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "util/settingsstore.h"

class QSettings;

namespace orv {

class CQtSettingsStore final : public CSettingsStore {
public:
    // Uses `iniPath` when not empty, else ORVANE_SETTINGS, else the user's default file.
    explicit CQtSettingsStore(const std::string& iniPath = {});
    ~CQtSettingsStore() override;

    std::optional<std::int64_t> ReadInt(std::string_view section, std::string_view key) const override;
    std::optional<std::string> ReadString(std::string_view section, std::string_view key) const override;
    void WriteInt(std::string_view section, std::string_view key, std::int64_t value) override;
    void WriteString(std::string_view section, std::string_view key, std::string_view value) override;
    void Flush() override;

    std::string FileName() const;
    // Every key the file holds as "Section/Key" (for tools that walk the
    // whole file, such as the settings fuzz target).
    std::vector<std::string> Keys() const;

private:
    std::unique_ptr<QSettings> m_settings;
};

// The default map file: "Paths", "MainFile" when set, else "Default.ovm"
// beside the settings file (or in the user's configuration folder for a
// store that is not a file). The program and the command line agree on it.
std::string DefaultMapFilePath(const CSettingsStore& settings);
// The user's list of map overlays, "overlay.dat" beside the default map file.
std::string UserOverlayListPath(const CSettingsStore& settings);

}  // namespace orv
