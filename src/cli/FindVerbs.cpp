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
#include <system_error>

namespace korvel::cli {
namespace {

int Print(const std::string& out) {
    std::fwrite(out.data(), 1, out.size(), stdout);
    return std::fflush(stdout) == 0 ? 0 : Fail("cannot write the output");
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
    const auto found =
        textures ? FindTextures(archive, text) : FindCollisionModels(archive, TempsFolder(), text);
    if (!textures) {
        // The window leaves its copies for the editor to clear on closing; a
        // command-line run has no closing, so it takes its copies away itself.
        for (const Entry& entry : archive.table().rows()) {
            const auto copy = EntryFileIn(TempsFolder(), entry.name);
            if (KindOfName(entry.name) == EntryKind::Collision && copy) {
                std::error_code ec;
                std::filesystem::remove(*copy, ec);
            }
        }
    }
    std::string out;
    for (const FoundInFile& f : found) {
        out +=
            ShownName(f.name) + '\t' + ShownName(f.entryName) + '\t' + std::to_string(f.row) + '\n';
    }
    return Print(out);
}

int Check(const Arguments& args) {
    Session session;
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    std::string out;
    for (const std::string& name : DuplicatePairs(session.archive().table())) {
        out += ShownName(name) + '\n';
    }
    return Print(out);
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
        "check ARCHIVE.img", "duplicate entry names, one line per pair of rows", {}, 1, 1, Check};
    verbs["report"] = {"report ARCHIVE.img OUT --text|--html [--language NAME]",
                       "write the archive report (replacing OUT)",
                       {{"--text", false}, {"--html", false}, {"--language", true}},
                       2,
                       2,
                       Report};
}

} // namespace korvel::cli
