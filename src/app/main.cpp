// orvane: the desktop program.

#include <QApplication>
#include <QCommandLineParser>

#include "app/appcontext.h"
#include "app/mainframe.h"
#include "app/mapwindow.h"
#include "app/qtsettingsstore.h"
#include "util/datapath.h"

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Orvane"));
    QApplication::setOrganizationName(QStringLiteral("Orvane"));
    QApplication::setApplicationVersion(QStringLiteral(ORVANE_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Orvane: planetarium and star charts for amateur astronomers"));
    parser.addHelpOption();
    parser.addVersionOption();
    QCommandLineOption settingsOption(QStringLiteral("settings"), QStringLiteral("Settings file to use."),
                                      QStringLiteral("file"));
    QCommandLineOption dataOption(QStringLiteral("data"), QStringLiteral("Data folder to use."), QStringLiteral("folder"));
    parser.addOption(settingsOption);
    parser.addOption(dataOption);
    parser.addPositionalArgument(QStringLiteral("maps"), QStringLiteral("Map files (.ovm) to open."), QStringLiteral("[maps...]"));
    parser.process(application);

    if (parser.isSet(dataOption)) qputenv("ORVANE_DATA", parser.value(dataOption).toLocal8Bit());
    orv::CQtSettingsStore settings(parser.value(settingsOption).toStdString());
    if (auto folder = settings.ReadString("Paths", "Data")) orv::SetConfiguredDataPath(*folder);

    orv::CAppContext app(settings);
    orv::CMainFrame frame(app);
    bool opened = false;
    for (const QString& path : parser.positionalArguments()) opened = frame.OpenMap(path) != nullptr || opened;
    if (!opened) frame.NewMap();
    frame.show();
    return QApplication::exec();
}
