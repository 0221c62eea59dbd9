#include <QCoreApplication>
#include <QGuiApplication>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>

#include <sys/stat.h>
#include <unistd.h>

#include "app/qtsettingsstore.h"
#include "cli/cli.h"
#include "util/datapath.h"
#include "util/dataproblems.h"

namespace orv::cli {

namespace {
std::vector<Command>& Registry()
{
    static std::vector<Command> commands;
    return commands;
}
}  // namespace

CommandRegistrar::CommandRegistrar(const char* name, const char* summary, const char* usage, CommandFn run)
{
    Registry().push_back(Command{name, summary, usage, run});
}

const std::vector<Command>& Commands() { return Registry(); }

void PrintJson(std::ostream& out, const QJsonObject& object)
{
    out << QJsonDocument(object).toJson(QJsonDocument::Indented).toStdString();
}

int Fail(Context& ctx, const std::string& message)
{
    if (ctx.json) {
        QJsonObject o;
        o["error"] = QString::fromStdString(message);
        PrintJson(ctx.out, o);
    } else {
        ctx.err << "orvane-cli: " << message << '\n';
    }
    return 1;
}

int UsageError(Context& ctx, const std::string& message)
{
    ctx.err << "orvane-cli: " << message << "\n(orvane-cli help for the commands and their options)\n";
    return 2;
}

}  // namespace orv::cli

namespace {

void PrintHelp(std::ostream& out)
{
    out << "orvane-cli: Orvane's planetarium computations without a window\n\n"
           "usage: orvane-cli <command> [options] [--json] [--settings FILE]\n\n"
           "commands:\n";
    auto commands = orv::cli::Commands();
    std::sort(commands.begin(), commands.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    for (const auto& c : commands) out << "  " << c.name << std::string(c.name.size() < 16 ? 16 - c.name.size() : 1, ' ') << c.summary << '\n';
    out << "\nglobal options:\n"
           "  --json           machine-readable output (keys camelCase with their unit: raDeg, jdUT)\n"
           "  --csv            tables as comma-separated values (the commands that print tables)\n"
           "  --settings FILE  use this settings file instead of the user's\n"
           "  --data DIR       use this data folder (as ORVANE_DATA)\n"
           "orvane-cli <command> --help shows a command's options.\n";
}

}  // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> words(argv + 1, argv + argc);
    if (words.empty() || words[0] == "help" || words[0] == "--help" || words[0] == "-h") {
        PrintHelp(std::cout);
        return words.empty() ? 2 : 0;
    }

    // Longest registered name that the leading words spell ("map new" before "map").
    const orv::cli::Command* command = nullptr;
    std::size_t used = 0;
    for (const auto& c : orv::cli::Commands()) {
        std::istringstream parts(c.name);
        std::string part;
        std::size_t n = 0;
        bool match = true;
        while (parts >> part) {
            if (n >= words.size() || words[n] != part) {
                match = false;
                break;
            }
            ++n;
        }
        if (match && n > used) {
            command = &c;
            used = n;
        }
    }
    if (command == nullptr) {
        std::cerr << "orvane-cli: unknown command \"" << words[0] << "\"\n\n";
        PrintHelp(std::cerr);
        return 2;
    }
    // Commands that draw text need a QGuiApplication (fonts); without a
    // display they use Qt's offscreen platform. The others stay headless.
    static const std::vector<std::string> kDrawingCommands{"render", "minor chart", "eclipse"};
    std::unique_ptr<QCoreApplication> app;
    if (std::find(kDrawingCommands.begin(), kDrawingCommands.end(), command->name) != kDrawingCommands.end()) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
            // Qt wants a private runtime folder and warns when it has to make
            // one itself; a batch program has none, so it gets the same one
            // quietly.
            const std::string dir = "/tmp/runtime-" + std::to_string(getuid());
            mkdir(dir.c_str(), 0700);
            struct stat info {};
            if (stat(dir.c_str(), &info) == 0 && info.st_uid == getuid() && (info.st_mode & 0777) == 0700)
                setenv("XDG_RUNTIME_DIR", dir.c_str(), 1);
        }
        app = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }
    words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(used));
    if (std::find(words.begin(), words.end(), "--help") != words.end()) {
        std::cout << "orvane-cli " << command->name << ": " << command->summary << "\n\n" << command->usage << '\n';
        return 0;
    }

    static const std::vector<std::string> kFlags{"json", "help", "all", "visible", "catalogue-only", "utc",
                                                 "apparent", "alt-az", "night", "no-refraction", "yes",
                                                 "no-age-check", "orbit", "any", "no-min-alt", "full", "summary",
                                                 "mono", "list-formats", "csv", "topocentric", "solar", "lunar",
                                                 "no-overlays"};
    orv::cli::CArgs args(words, kFlags);
    std::string settingsPath = args.Get("settings").value_or("");
    if (auto data = args.Get("data")) setenv("ORVANE_DATA", data->c_str(), 1);
    orv::CQtSettingsStore settings(settingsPath);
    if (auto configured = settings.ReadString("Paths", "Data")) orv::SetConfiguredDataPath(*configured);
    orv::cli::Context ctx{std::move(args), false, settings, std::cout, std::cerr};
    ctx.json = ctx.args.Has("json");
    const int rc = command->run(ctx);
    // Damaged data files were left out of the answer: say which.
    const std::string problems = orv::DataFileProblemsText(orv::TakeDataFileProblems());
    if (!problems.empty()) std::cerr << "orvane-cli: warning: " << problems << '\n';
    return rc;
}
