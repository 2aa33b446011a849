// The verbs of korvel-cli. Each verb lives in a small function registered in
// a table; the families of verbs (archive basics, entry commands, finding and
// reports) add theirs through one Add...Verbs function each.
#pragma once

#include "window/Editor.h"
#include "cli/CliDesktop.h"
#include "settings/Settings.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace korvel::cli {

inline constexpr int ExitFailure = 1;
inline constexpr int ExitUsage = 2;

struct Arguments {
    std::vector<std::string> operands;
    // "--sort" -> "name", "--force" -> "" (options may stand anywhere).
    std::map<std::string, std::string> options;
    bool has(const std::string& option) const { return options.count(option) != 0; }
};

struct Verb {
    std::string usage;   // "list ARCHIVE.img [--sort name]"
    std::string summary; // one line for --help
    // Options the verb takes, and whether each takes a value.
    std::map<std::string, bool> options;
    std::size_t minOperands = 0;
    std::size_t maxOperands = 0; // SIZE_MAX: no limit
    std::function<int(const Arguments&)> run;
};

using VerbTable = std::map<std::string, Verb>;

// Prints "korvel-cli: message" on stderr and returns ExitFailure.
int Fail(const std::string& message);

// An editor with no window: in-memory settings at their defaults, the
// shipped language file for its texts, and a desktop that answers for itself.
class Session {
public:
    Session();
    CliDesktop& desktop() { return desktop_; }
    Editor& editor() { return editor_; }
    Archive& archive() { return editor_.archive(); }
    Settings& settings() { return settings_; }
    // Opens the archive or returns false after printing why.
    bool open(const std::string& path);
    // The first message the engine showed, or `fallback`.
    std::string failure(const std::string& fallback) const;

private:
    CliDesktop desktop_;
    Settings settings_;
    Editor editor_;
};

void AddArchiveVerbs(VerbTable& verbs); // list, new
// extract, add, replace, rename, lowercase, delete, move-to-end, rebuild
void AddEntryVerbs(VerbTable& verbs);
void AddFindVerbs(VerbTable& verbs); // find, find-in, check, report
void AddToolVerbs(VerbTable& verbs); // quick-replace, marker

} // namespace korvel::cli
