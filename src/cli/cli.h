// orvane-cli: everything Orvane does that needs no window.
//
// Each command lives in its own cmd_*.cpp and registers itself with
// ORV_CLI_COMMAND. A command prints plain text, or JSON with --json, and
// returns the process exit code: 0 on success, 1 on a failure that the
// program's own message describes (printed to standard error), 2 on a usage
// error.
#pragma once

#include <QJsonArray>
#include <QJsonObject>

#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orv {
class CSettingsStore;
}

namespace orv::cli {

// Options of the form --name value and --flag, and positional words.
class CArgs {
public:
    CArgs(std::vector<std::string> words, const std::vector<std::string>& flagNames);

    const std::vector<std::string>& Positional() const { return m_positional; }
    bool Has(const std::string& name) const { return m_options.count(name) != 0; }
    std::optional<std::string> Get(const std::string& name) const;
    // Every value of an option given more than once, in order ("--body Moon
    // --body Mars"); Get answers the last.
    std::vector<std::string> GetAll(const std::string& name) const;
    // The option as a number; `error` receives a message when it is present
    // but not a number.
    std::optional<double> GetNumber(const std::string& name, std::string& error) const;
    // Names given but not in `known` (for the "unknown option" usage error).
    std::vector<std::string> Unknown(const std::vector<std::string>& known) const;

private:
    std::vector<std::string> m_positional;
    std::map<std::string, std::string> m_options;
    std::vector<std::pair<std::string, std::string>> m_given;  // every option in order
};

struct Context {
    CArgs args;
    bool json = false;
    CSettingsStore& settings;
    std::ostream& out;
    std::ostream& err;
};

using CommandFn = int (*)(Context&);

struct Command {
    std::string name;     // e.g. "map new"
    std::string summary;  // one line for the help text
    std::string usage;    // options, shown by --help
    CommandFn run;
};

class CommandRegistrar {
public:
    CommandRegistrar(const char* name, const char* summary, const char* usage, CommandFn run);
};

const std::vector<Command>& Commands();

// Writes `object` as indented JSON.
void PrintJson(std::ostream& out, const QJsonObject& object);
// Prints `message` as the program's error on standard error (plain) or as
// {"error": message} on standard output with --json; returns 1.
int Fail(Context& ctx, const std::string& message);
// A usage error; returns 2.
int UsageError(Context& ctx, const std::string& message);

}  // namespace orv::cli

#define ORV_CLI_CONCAT2(a, b) a##b
#define ORV_CLI_CONCAT(a, b) ORV_CLI_CONCAT2(a, b)
#define ORV_CLI_COMMAND(name, summary, usage, fn) \
    static ::orv::cli::CommandRegistrar ORV_CLI_CONCAT(g_registrar_, __LINE__)(name, summary, usage, fn)
