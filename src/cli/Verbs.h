// The verbs of korvel-cli. Each verb lives in a small function registered in
// a table; the families of verbs (archive basics, entry commands, finding and
// reports) add theirs through one Add...Verbs function each.
#pragma once

#include "archive/Archive.h"
#include "settings/Settings.h"

#include <functional>
#include <map>
#include <optional>
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

// Prints "korvel-cli: message" on stderr as one line (line breaks become
// single spaces).
void PrintError(const std::string& message);
// PrintError, then ExitFailure.
int Fail(const std::string& message);

// An archive with no window: the operations work on it directly. The
// interface texts of the error lines come from the shipped language file;
// the settings live in memory at their defaults, so the tool never reads or
// writes the editor's korvel.ini.
class Session {
public:
    Session();
    Archive& archive() { return archive_; }
    Settings& settings() { return settings_; }
    std::string text(const char* key) const { return settings_.LookupText(key); }
    // Opens the archive (finishing or clearing an interrupted rebuild first),
    // or returns false after printing why.
    bool open(const std::string& path);

private:
    Settings settings_;
    Archive archive_;
};

// Rows whose names equal one of `names` ignoring case, in table order: all
// rows when `names` is empty and `allWhenNone`. Nothing, after printing the
// first name that matches no row, when one does not.
std::optional<std::vector<std::size_t>>
NamedRows(const EntryTable& table, const std::vector<std::string>& names, bool allWhenNone);

void AddArchiveVerbs(VerbTable& verbs); // list, new, convert
// extract, add, replace, rename, lowercase, delete, move-to-end, rebuild
void AddEntryVerbs(VerbTable& verbs);
void AddFindVerbs(VerbTable& verbs);    // find, find-in, check, report
void AddToolVerbs(VerbTable& verbs);    // quick-replace, marker
void AddPreviewVerbs(VerbTable& verbs); // info, export-textures, export-model

} // namespace korvel::cli
