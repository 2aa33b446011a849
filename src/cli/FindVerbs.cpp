// find, find-in, check, report: the finding and report commands without a
// window. Their output lines are a contract for scripts: keep them as they are.
#include "archive/ArchiveCheck.h"
#include "archive/EntryFiles.h"
#include "archive/Names.h"
#include "cli/Verbs.h"
#include "platform/Folders.h"
#include "platform/OutputFile.h"
#include "reports/Reports.h"
#include "search/FindInArchive.h"
#include "search/FindInFiles.h"
#include "settings/IniFile.h"

#include <cstdio>

namespace korvel::cli {
namespace {

// find-in read the entries it could, printed what they hold, and named on
// stderr the entries it could not read: the list may be incomplete.
constexpr int ExitSomeUnread = 3;

// Writes `out` and flushes. The streaming verbs have written their lines
// already and call this with nothing: a write that failed on the way left
// the stream's error mark, which counts as well.
int Print(const std::string& out) {
    std::fwrite(out.data(), 1, out.size(), stdout);
    return std::fflush(stdout) == 0 && !std::ferror(stdout) ? 0 : Fail("cannot write the output");
}

int Find(const Arguments& args) {
    static const std::map<std::string, std::optional<EntryKind>, std::less<>> kinds = {
        {"all", std::nullopt},
        {"dff", EntryKind::Model},
        {"txd", EntryKind::Texture},
        {"ifp", EntryKind::Animation},
        {"col", EntryKind::Collision}};
    std::optional<EntryKind> kind;
    if (args.has("--type")) {
        const auto found = kinds.find(args.options.at("--type"));
        if (found == kinds.end()) {
            return Fail("--type takes all, dff, txd, ifp or col, not \"" +
                        args.options.at("--type") + "\"");
        }
        kind = found->second;
    }
    Session session;
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    std::string out;
    for (const FoundEntry& found : FindEntries(session.archive().table(), args.operands[1], kind)) {
        out += std::to_string(found.row) + '\t' + ShownName(found.name) + '\n';
    }
    return Print(out);
}

int FindIn(const Arguments& args) {
    const bool textures = args.has("--textures");
    if (textures == args.has("--collisions")) {
        std::fprintf(stderr, "korvel-cli: give exactly one of --textures and --collisions\n");
        return ExitUsage;
    }
    Session session;
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    const Archive& archive = session.archive();
    const std::string& text = args.operands[1];
    // Rows go out as they are found and unread entries are named as they
    // come, so memory stays flat however many names the entries hold.
    const FileSearchOutput output{
        [](const FoundInFile& f) {
            const std::string line = ShownName(f.name) + '\t' + ShownName(f.entryName) + '\t' +
                                     std::to_string(f.row) + '\n';
            std::fwrite(line.data(), 1, line.size(), stdout);
        },
        [](const UnreadEntry& entry) {
            PrintError("cannot read " + ShownName(entry.entryName) + " (row " +
                       std::to_string(entry.row) + "): " + entry.why);
        }};
    const FileSearchCounts counts = textures
                                        ? FindTextures(archive, text, output)
                                        : FindCollisionModels(archive, TempsFolder(), text, output);
    const int printed = Print({});
    if (printed == 0 && counts.unread != 0) {
        PrintError("entries that could not be read: " + std::to_string(counts.unread));
        return ExitSomeUnread;
    }
    return printed;
}

int Check(const Arguments& args) {
    Session session;
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    // Each pair goes out as it is found: the pairs of one name held by many
    // rows outnumber what memory could hold.
    (void)ForEachDuplicatePair(session.archive().table(), [](const std::string& name) {
        const std::string line = ShownName(name) + '\n';
        std::fwrite(line.data(), 1, line.size(), stdout);
    });
    // Then the second form: names the game takes for one file because they
    // differ only in letter case, "case", TAB, one spelling, TAB, the other.
    (void)ForEachCaseOnlyPair(
        session.archive().table(), [](const std::string& first, const std::string& second) {
            const std::string line = "case\t" + ShownName(first) + '\t' + ShownName(second) + '\n';
            std::fwrite(line.data(), 1, line.size(), stdout);
        });
    return Print({});
}

int Report(const Arguments& args) {
    const bool text = args.has("--text");
    if (text == args.has("--html")) {
        std::fprintf(stderr, "korvel-cli: give exactly one of --text and --html\n");
        return ExitUsage;
    }
    Session session;
    Settings& settings = session.settings();
    if (args.has("--language")) {
        const std::string& language = args.options.at("--language");
        settings.WriteSetting(language, "language");
        if (settings.LookupText("report1") == SettingsError) {
            return Fail("lang.ini has no language \"" + language + "\"");
        }
    }
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    const ReportKind kind = text ? ReportKind::Text : ReportKind::Html;
    if (const std::string problem =
            OutputTargetProblem(args.operands[1], ArchiveOwnFiles(session.archive()));
        !problem.empty()) {
        return Fail(problem);
    }
    if (!WriteReport(session.archive(), settings, kind, args.operands[1]).ok()) {
        return Fail("cannot write the report " + args.operands[1]);
    }
    return 0;
}

} // namespace

void AddFindVerbs(VerbTable& verbs) {
    verbs["find"] = {"find ARCHIVE.img TEXT [--type all|dff|txd|ifp|col]",
                     "entries whose names hold TEXT (any case): row, TAB, name",
                     {{"--type", true}},
                     2,
                     2,
                     Find};
    verbs["find-in"] = {"find-in ARCHIVE.img TEXT --textures|--collisions",
                        "texture or collision-model names holding TEXT: name, TAB, entry, TAB, row",
                        {{"--textures", false}, {"--collisions", false}},
                        2,
                        2,
                        FindIn};
    verbs["check"] = {
        "check ARCHIVE.img",
        "duplicate entry names, one line per pair of rows; then case, TAB, name, TAB, NAME "
        "for each two names differing only in letter case",
        {},
        1,
        1,
        Check};
    verbs["report"] = {"report ARCHIVE.img OUT --text|--html [--language NAME]",
                       "write the archive report (replacing OUT)",
                       {{"--text", false}, {"--html", false}, {"--language", true}},
                       2,
                       2,
                       Report};
}

} // namespace korvel::cli
