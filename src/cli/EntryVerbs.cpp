// The entry verbs of korvel-cli: each runs the same engine command as the
// window, on the rows named on the command line, so both change an archive
// byte for byte alike. Names match ignoring letter case, every matching row
// is acted on, and a name that matches nothing stops the verb before any
// change.
#include "archive/EntryCommands.h"
#include "cli/Verbs.h"

#include <iostream>
#include <system_error>

namespace korvel::cli {
namespace {

namespace fs = std::filesystem;

// No one is at the desk: the duplicate dialog is never shown (the verb sets
// scanPrompt) and a rename dialog is closed at once.
class NoEntryDialogs : public EntryDialogs {
public:
    void AddingDup(const std::string&) override {}
    void RenameAItem(const RenameRequest&) override {}
};

// An open archive with the entry commands over it.
struct Run {
    Session session;
    NoEntryDialogs dialogs;
    EntryCommands commands{session.editor(), dialogs};

    Editor& editor() { return session.editor(); }
    Settings& settings() { return session.editor().settings(); }
    EntryTable& table() { return session.editor().table(); }

    // Prints what the engine told the person, one line each, and gives the
    // exit status.
    int finish(bool ok) {
        for (const std::string& message : session.desktop().messages) {
            std::cerr << "korvel-cli: " << message << '\n';
        }
        return ok ? 0 : ExitFailure;
    }
};

// Rows whose names equal one of `names` ignoring case. Every name must match
// at least one row; `problem` names the first that does not.
std::optional<std::vector<std::size_t>>
MatchRows(const EntryTable& table, const std::vector<std::string>& names, std::string& problem) {
    std::vector<bool> matched(table.size(), false);
    for (const std::string& typed : names) {
        const auto name = Utf8ToCp1252(typed);
        bool any = false;
        for (std::size_t row = 0; name && row < table.size(); ++row) {
            if (EqualsIgnoreCase(table[row].name, *name)) {
                matched[row] = true;
                any = true;
            }
        }
        if (!any) {
            problem = "no entry is named \"" + typed + "\"";
            return std::nullopt;
        }
    }
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < matched.size(); ++row) {
        if (matched[row]) {
            rows.push_back(row);
        }
    }
    return rows;
}

// Selects the named rows (all rows when `names` is empty and `allWhenNone`).
bool SelectNamed(Run& run, const std::vector<std::string>& names, bool allWhenNone) {
    EntryTable& table = run.table();
    table.clearSelection();
    if (names.empty() && allWhenNone) {
        table.selectAll();
        return true;
    }
    std::string problem;
    const auto rows = MatchRows(table, names, problem);
    if (!rows) {
        Fail(problem);
        return false;
    }
    for (std::size_t row : *rows) {
        table.setSelected(row, true);
    }
    return true;
}

std::vector<std::string> From(const Arguments& args, std::size_t first) {
    return {args.operands.begin() + static_cast<std::ptrdiff_t>(first), args.operands.end()};
}

int Extract(const Arguments& args) {
    Run run;
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    if (!SelectNamed(run, From(args, 2), true)) {
        return ExitFailure;
    }
    if (run.table().empty()) {
        return 0;
    }
    const std::string& dest = args.operands[1];
    std::error_code ec;
    fs::create_directories(dest, ec);
    if (!fs::is_directory(dest)) {
        return Fail("cannot create the folder " + dest + (ec ? ": " + ec.message() : ""));
    }
    run.settings().WriteSetting(dest, "lastExtract");
    return run.finish(run.commands.ExtractSelectedToLastFolder() == 0);
}

int AddFiles(const Arguments& args) {
    Run run;
    std::string answer = "replace";
    if (args.has("--on-duplicate")) {
        answer = args.options.at("--on-duplicate");
        if (answer != "replace" && answer != "skip") {
            return Fail("--on-duplicate takes \"replace\" or \"skip\", not \"" + answer + "\"");
        }
    }
    const std::vector<std::string> files = From(args, 1);
    for (const std::string& file : files) {
        if (!FileExists(file)) {
            return Fail(file + " is not a file");
        }
        if (!Utf8ToCp1252(fs::path(file).filename().string())) {
            return Fail("the name of " + file + " holds characters an archive cannot store");
        }
    }
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    run.settings().WriteSetting(answer, "addingOpt");
    run.settings().WriteSetting("1", "scanPrompt");
    run.settings().WriteSetting(args.has("--no-scan") ? "False" : "True", "addingScan");
    return run.finish(run.commands.AddFileBatch(files) == 0);
}

int ReplaceFile(const Arguments& args) {
    Run run;
    const std::string& file = args.operands[2];
    if (!FileExists(file)) {
        return Fail(file + " is not a file");
    }
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    std::string problem;
    const auto rows = MatchRows(run.table(), {args.operands[1]}, problem);
    if (!rows) {
        return Fail(problem);
    }
    for (std::size_t row : *rows) {
        if (FsError error = run.commands.ReplaceEntry(file, row); !error.empty()) {
            run.finish(false);
            return Fail(error);
        }
    }
    return run.finish(true);
}

int RenameEntry(const Arguments& args) {
    Run run;
    const std::string& typed = args.operands[2];
    if (typed.find_first_not_of(' ') == std::string::npos) {
        return Fail("No name entered");
    }
    const auto name = Utf8ToCp1252(typed);
    if (!name) {
        return Fail("the name \"" + typed + "\" holds characters an archive cannot store");
    }
    if (name->size() > NameFieldSize) {
        return Fail("the name \"" + typed + "\" is longer than 24 characters");
    }
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    std::string problem;
    const auto rows = MatchRows(run.table(), {args.operands[1]}, problem);
    if (!rows) {
        return Fail(problem);
    }
    bool ok = true;
    for (std::size_t row : *rows) {
        ok = run.commands.DoRename(row, typed) && ok;
    }
    return run.finish(ok && run.session.desktop().messages.empty());
}

int LowerCase(const Arguments& args) {
    const int given = args.has("--name") + args.has("--extension") + args.has("--all");
    if (given != 1) {
        return Fail("give exactly one of --name, --extension and --all");
    }
    Run run;
    if (!run.session.open(args.operands[0]) || !SelectNamed(run, From(args, 1), true)) {
        return ExitFailure;
    }
    if (args.has("--name")) {
        run.commands.LowerCaseSelected(EntryCommands::NameCase::BeforeExtension);
    } else if (args.has("--extension")) {
        run.commands.LowerCaseSelected(EntryCommands::NameCase::Extension);
    } else {
        run.commands.LowerCaseSelected(EntryCommands::NameCase::Whole);
    }
    return run.finish(run.session.desktop().messages.empty());
}

int Delete(const Arguments& args) {
    Run run;
    if (!run.session.open(args.operands[0]) || !SelectNamed(run, From(args, 1), false)) {
        return ExitFailure;
    }
    return run.finish(run.commands.DeleteSelectedEntries());
}

int MoveToEnd(const Arguments& args) {
    Run run;
    if (!run.session.open(args.operands[0]) || !SelectNamed(run, From(args, 1), false)) {
        return ExitFailure;
    }
    run.commands.MoveSelectedToEnd();
    // Moving only the last row is a no-op the window explains; say so too.
    return run.finish(true);
}

int RebuildArchive(const Arguments& args) {
    Run run;
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    return run.finish(run.commands.Rebuild());
}

} // namespace

void AddEntryVerbs(VerbTable& verbs) {
    const std::size_t many = SIZE_MAX;
    verbs["extract"] = {"extract ARCHIVE.img DEST_DIR [NAME...]",
                        "write all entries, or the named ones, as files into DEST_DIR",
                        {},
                        2,
                        many,
                        Extract};
    verbs["add"] = {"add ARCHIVE.img FILE... [--on-duplicate replace|skip] [--no-scan]",
                    "add files as new entries (texture dictionaries last)",
                    {{"--on-duplicate", true}, {"--no-scan", false}},
                    2,
                    many,
                    AddFiles};
    verbs["replace"] = {"replace ARCHIVE.img NAME FILE",
                        "put FILE's data in place of NAME's",
                        {},
                        3,
                        3,
                        ReplaceFile};
    verbs["rename"] = {"rename ARCHIVE.img OLD NEW", "rename an entry", {}, 3, 3, RenameEntry};
    verbs["lowercase"] = {"lowercase ARCHIVE.img --name|--extension|--all [NAME...]",
                          "lower-case the names of all entries or the named ones",
                          {{"--name", false}, {"--extension", false}, {"--all", false}},
                          1,
                          many,
                          LowerCase};
    verbs["delete"] = {"delete ARCHIVE.img NAME...",
                       "delete entries (their data stays until a rebuild)",
                       {},
                       2,
                       many,
                       Delete};
    verbs["move-to-end"] = {"move-to-end ARCHIVE.img NAME...",
                            "move entries to the end of the directory",
                            {},
                            2,
                            many,
                            MoveToEnd};
    verbs["rebuild"] = {
        "rebuild ARCHIVE.img", "write a compact copy of the archive in its place", {}, 1, 1,
        RebuildArchive};
}

} // namespace korvel::cli
