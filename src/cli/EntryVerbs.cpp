// The entry verbs of korvel-cli: each runs the same engine command as the
// window, on the rows named on the command line, so both change an archive
// byte for byte alike. Names match ignoring letter case, every matching row
// is acted on, and a name that matches nothing stops the verb before any
// change.
#include "archive/EntryFiles.h"
#include "archive/EntryOperations.h"
#include "cli/Interrupt.h"
#include "cli/Verbs.h"
#include "platform/Cp1252.h"
#include "platform/FileSystem.h"
#include "settings/FailureTexts.h"

#include <algorithm>
#include <iostream>
#include <system_error>

namespace korvel::cli {
namespace {

namespace fs = std::filesystem;

// An open archive and the interface texts its error lines use.
struct Run {
    Session session;
    bool failed = false;

    Archive& archive() { return session.archive(); }
    EntryTable& table() { return session.archive().table(); }
    std::string text(const char* key) { return session.text(key); }

    // One error line, as the window would have shown it.
    void error(const std::string& message) {
        PrintError(message);
        failed = true;
    }
    void failure(const Status& status, const std::string& concerning = {}) {
        error(FileFailureText(session.settings(), status.error(), concerning));
    }
    void addFailure(const std::string& description, const std::string& rawName) {
        error(AddFailureText(session.settings(), description, rawName));
    }
    int finish() { return failed ? ExitFailure : 0; }
};

std::vector<std::string> From(const Arguments& args, std::size_t first) {
    return {args.operands.begin() + static_cast<std::ptrdiff_t>(first), args.operands.end()};
}

int Extract(const Arguments& args) {
    const bool overwrite = args.has("--overwrite");
    const bool keep = args.has("--no-overwrite");
    if (overwrite && keep) {
        PrintError("--overwrite and --no-overwrite cannot both be given");
        return ExitUsage;
    }
    Run run;
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    const auto rows = NamedRows(run.table(), From(args, 2), true);
    if (!rows) {
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
    // Without a choice an existing file is kept and the run counts as
    // failed, so a script notices what it did not get.
    const DecideOverwrite decide = [&](const fs::path& existing) {
        if (overwrite) {
            return OverwriteChoice::Overwrite;
        }
        PrintError("skipped " + EscapeControls(existing.string()) + ": the file exists" +
                   (keep ? "" : " (--overwrite writes over it)"));
        run.failed = run.failed || !keep;
        return OverwriteChoice::Skip;
    };
    CatchInterrupt();
    std::size_t done = 0;
    for (std::size_t row : *rows) {
        if (Interrupted()) {
            return ReportInterrupted(std::to_string(done) + " of " + std::to_string(rows->size()) +
                                     " entries written");
        }
        ++done;
        const ExtractResult result = ExtractEntryTo(run.archive(), row, dest, decide);
        if (result.skipped) {
            continue;
        }
        if (!result.target || result.refused) {
            run.error(result.status.error());
        } else if (!result.status.ok()) {
            run.failure(result.status, result.target->string());
        } else if (result.missingBytes > 0) {
            run.error(MissingBytesText(run.table()[row].name, result.missingBytes) +
                      "; the file holds the bytes that exist.");
        }
    }
    return run.finish();
}

int AddFiles(const Arguments& args) {
    Run run;
    DuplicateAnswer answer = DuplicateAnswer::Replace;
    if (args.has("--on-duplicate")) {
        const std::string& word = args.options.at("--on-duplicate");
        answer = DuplicateAnswerFromWord(word);
        if (answer != DuplicateAnswer::Replace && answer != DuplicateAnswer::Skip) {
            return Fail("--on-duplicate takes \"replace\" or \"skip\", not \"" + word + "\"");
        }
    }
    std::vector<std::string> files = From(args, 1);
    for (const std::string& file : files) {
        if (!FileExists(file)) {
            return Fail(file + " is not a file");
        }
        const auto name = Utf8ToCp1252(fs::path(file).filename().string());
        if (!name) {
            return Fail("the name of " + file + " holds characters an archive cannot store");
        }
        if (const std::string problem = EntryNameProblem(*name); !problem.empty()) {
            return Fail(problem);
        }
    }
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    // Texture dictionaries go last, as in the window.
    std::stable_partition(files.begin(), files.end(), [](const std::string& file) {
        return !IsTextureDictionary(fs::path(file).filename().string());
    });
    AddBatch batch(run.archive(), !args.has("--no-scan"),
                   [answer](const std::string&, std::size_t) {
                       DuplicateDecision decision;
                       decision.answer = answer;
                       return decision;
                   });
    // An interrupt stops between two files; the directory file is then
    // written once for the files added so far.
    CatchInterrupt();
    std::size_t tried = 0;
    std::size_t added = 0;
    for (const std::string& file : files) {
        if (Interrupted()) {
            break;
        }
        ++tried;
        std::string name = *Utf8ToCp1252(fs::path(file).filename().string());
        const AddOutcome outcome = batch.Add(file, name);
        if (outcome.result == AddResult::Added || outcome.result == AddResult::Replaced) {
            ++added;
        }
        if (!outcome.shortenedFrom.empty()) {
            PrintError("the name \"" + ShownName(outcome.shortenedFrom) + "\" is longer than " +
                       std::to_string(NameFieldSize) + " characters; it is stored as \"" +
                       ShownName(name) + "\"");
        }
        if (outcome.result != AddResult::Failed) {
            continue;
        }
        if (outcome.directoryNotWritten) {
            run.failure(outcome.status);
            run.addFailure(std::string(DirectoryNotWrittenText), name);
        } else {
            run.addFailure(outcome.status.error(), name);
        }
        if (!outcome.directoryAfterFailure.ok()) {
            run.failure(outcome.directoryAfterFailure);
        }
    }
    if (const Status written = batch.Finish(); !written.ok()) {
        run.failure(written);
    }
    if (tried < files.size()) {
        return ReportInterrupted(std::to_string(added) + " of " + std::to_string(files.size()) +
                                 " files added");
    }
    return run.finish();
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
    const auto rows = NamedRows(run.table(), {args.operands[1]}, false);
    if (!rows) {
        return ExitFailure;
    }
    for (std::size_t row : *rows) {
        const ReplaceResult result = ReplaceEntry(run.archive(), row, file);
        if (result.directoryNotWritten) {
            run.failure(result.status);
            return Fail(std::string(DirectoryNotWrittenText));
        }
        if (!result.status.ok()) {
            return Fail(result.status.error());
        }
    }
    return 0;
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
    if (const std::string problem = EntryNameProblem(*name); !problem.empty()) {
        return Fail(problem);
    }
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    const auto rows = NamedRows(run.table(), {args.operands[1]}, false);
    if (!rows) {
        return ExitFailure;
    }
    for (std::size_t row : *rows) {
        if (const Status renamed = korvel::RenameEntry(run.archive(), row, *name); !renamed.ok()) {
            run.failure(renamed);
        }
    }
    return run.finish();
}

int LowerCase(const Arguments& args) {
    const int given = args.has("--name") + args.has("--extension") + args.has("--all");
    if (given != 1) {
        return Fail("give exactly one of --name, --extension and --all");
    }
    Run run;
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    const auto rows = NamedRows(run.table(), From(args, 1), true);
    if (!rows) {
        return ExitFailure;
    }
    const NameCase which = args.has("--name")        ? NameCase::BeforeExtension
                           : args.has("--extension") ? NameCase::Extension
                                                     : NameCase::Whole;
    if (const LowerCaseResult result = LowerCaseNames(run.archive(), *rows, which);
        !result.status.ok()) {
        run.failure(result.status);
    }
    return run.finish();
}

int Delete(const Arguments& args) {
    Run run;
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    const auto rows = NamedRows(run.table(), From(args, 1), false);
    if (!rows) {
        return ExitFailure;
    }
    if (const Status deleted = DeleteRows(run.archive(), *rows); !deleted.ok()) {
        run.failure(deleted);
    }
    return run.finish();
}

int MoveToEnd(const Arguments& args) {
    Run run;
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    const auto rows = NamedRows(run.table(), From(args, 1), false);
    if (!rows) {
        return ExitFailure;
    }
    if (rows->front() + 1 == run.table().size()) {
        // Moving only the last row is a no-op the window explains; say so too.
        PrintError(run.text("move1") + "\r\nDe dum de de, de diddle dum.");
        return 0;
    }
    if (const Status moved = MoveRowsToEnd(run.archive(), *rows); !moved.ok()) {
        run.failure(moved);
        return ExitFailure;
    }
    return 0;
}

int RebuildArchive(const Arguments& args) {
    Run run;
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    const std::string dataPath = run.archive().dataPath();
    CatchInterrupt();
    RebuildProgress progress;
    progress.stop = InterruptCheck();
    const RebuildResult result = korvel::RebuildArchive(run.archive(), progress);
    if (result.stopped) {
        return ReportInterrupted("the archive is unchanged");
    }
    if (!result.status.ok()) {
        run.failure(result.status);
    }
    for (const Status& cut : result.cut) {
        run.error(cut.error() + "; the rebuilt archive keeps the sectors that exist.");
    }
    if (result.reopen && !run.session.open(dataPath)) {
        run.failed = true;
    }
    return run.finish();
}

} // namespace

void AddEntryVerbs(VerbTable& verbs) {
    const std::size_t many = SIZE_MAX;
    verbs["extract"] = {"extract ARCHIVE.img DEST_DIR [NAME...] [--overwrite|--no-overwrite]",
                        "write all entries, or the named ones, as files into DEST_DIR; an "
                        "existing file is kept (exit 1) unless --overwrite writes over it or "
                        "--no-overwrite skips it",
                        {{"--overwrite", false}, {"--no-overwrite", false}},
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
