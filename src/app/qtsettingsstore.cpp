#include "app/qtsettingsstore.h"

#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <cstdlib>

namespace orv {

namespace {
QString Key(std::string_view section, std::string_view key)
{
    return QString::fromUtf8(section.data(), static_cast<qsizetype>(section.size())) + QLatin1Char('/') +
           QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}
}  // namespace

CQtSettingsStore::CQtSettingsStore(const std::string& iniPath)
{
    std::string path = iniPath;
    if (path.empty()) {
        if (const char* env = std::getenv("ORVANE_SETTINGS"); env != nullptr && *env != '\0') path = env;
    }
    if (path.empty())
        m_settings = std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Orvane"),
                                                 QStringLiteral("Orvane"));
    else
        m_settings = std::make_unique<QSettings>(QString::fromStdString(path), QSettings::IniFormat);
}

CQtSettingsStore::~CQtSettingsStore() = default;

std::optional<std::int64_t> CQtSettingsStore::ReadInt(std::string_view section, std::string_view key) const
{
    const QVariant v = m_settings->value(Key(section, key));
    if (!v.isValid()) return std::nullopt;
    bool ok = false;
    const qlonglong n = v.toString().trimmed().toLongLong(&ok);
    if (!ok) return std::nullopt;
    return static_cast<std::int64_t>(n);
}

std::optional<std::string> CQtSettingsStore::ReadString(std::string_view section, std::string_view key) const
{
    const QVariant v = m_settings->value(Key(section, key));
    if (!v.isValid()) return std::nullopt;
    return v.toString().toStdString();
}

void CQtSettingsStore::WriteInt(std::string_view section, std::string_view key, std::int64_t value)
{
    m_settings->setValue(Key(section, key), static_cast<qlonglong>(value));
}

void CQtSettingsStore::WriteString(std::string_view section, std::string_view key, std::string_view value)
{
    m_settings->setValue(Key(section, key), QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size())));
}

void CQtSettingsStore::Flush() { m_settings->sync(); }

std::string CQtSettingsStore::FileName() const { return m_settings->fileName().toStdString(); }

std::vector<std::string> CQtSettingsStore::Keys() const
{
    std::vector<std::string> out;
    for (const QString& key : m_settings->allKeys()) out.push_back(key.toStdString());
    return out;
}

std::string DefaultMapFilePath(const CSettingsStore& settings)
{
    const std::string stored = settings.GetString("Paths", "MainFile", "");
    if (!stored.empty()) return stored;
    if (const auto* qt = dynamic_cast<const CQtSettingsStore*>(&settings))
        return (QFileInfo(QString::fromStdString(qt->FileName())).absolutePath() + QStringLiteral("/Default.ovm"))
            .toStdString();
    return (QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + QStringLiteral("/Default.ovm"))
        .toStdString();
}

std::string UserOverlayListPath(const CSettingsStore& settings)
{
    return (QFileInfo(QString::fromStdString(DefaultMapFilePath(settings))).absolutePath() +
            QStringLiteral("/overlay.dat"))
        .toStdString();
}

}  // namespace orv
