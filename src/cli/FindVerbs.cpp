// find, find-in, check, report: the finding and report commands without a
// window. Their output lines are a contract for scripts: keep them as they are.
#include "archive/ArchiveCheck.h"
#include "archive/Names.h"
#include "cli/Verbs.h"
#include "platform/Folders.h"
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
    static const std::map<std::string, FindType, std::less<>> types = {
        {"all", FindType::All},
        {"dff", FindType::Models},
        {"txd", FindType::Textures},
        {"ifp", FindType::Animations},
        {"col", FindType::Collisions}};
    FindType type = FindType::All;
    if (args.has("--type")) {
        const auto found = types.find(args.options.at("--type"));
        if (found == types.end()) {
            return Fail("--type takes all, dff, txd, ifp or col, not \"" +
                        args.options.at("--type") + "\"");
        }
        type = found->second;
    }
    Session session;
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    std::string out;
    for (const FoundEntry& found : SearchArchive(session.editor(), args.operands[1], type)) {
        out += std::to_string(found.row) + '\t' + Cp1252ToUtf8(found.name) + '\n';
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
    Editor& editor = session.editor();
    const std::string& text = args.operands[1];
    const auto found =
        textures ? FindTexturesInArchive(editor, text) : FindCollisionModelsInArchive(editor, text);
    if (!textures) {
        // The window leaves its copies for the editor to clear on closing; a
        // command-line run has no closing, so it takes its copies away itself.
        for (const Entry& entry : editor.table().rows()) {
            if (ToLowerCp1252(entry.name).ends_with(".col")) {
                std::error_code ec;
                std::filesystem::remove(TempsFolder() / Cp1252ToUtf8(entry.name), ec);
            }
        }
    }
    std::string out;
    for (const FoundInFile& f : found) {
        out += Cp1252ToUtf8(f.name) + '\t' + Cp1252ToUtf8(f.entryName) + '\t' +
               std::to_string(f.row) + '\n';
    }
    return Print(out);
}

int Check(const Arguments& args) {
    Session session;
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    std::string out;
    for (const std::string& name : DuplicatePairs(session.editor().table())) {
        out += Cp1252ToUtf8(name) + '\n';
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
    Editor& editor = session.editor();
    if (args.has("--language")) {
        const std::string& language = args.options.at("--language");
        editor.settings().WriteSetting(language, "language");
        if (editor.text("report1") == SettingsError) {
            return Fail("lang.ini has no language \"" + language + "\"");
        }
    }
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    // The report command itself, answered as a person would: this file, and
    // yes, replace it.
    session.desktop().fileDialogPaths = {args.operands[1]};
    session.desktop().yesAnswer = true;
    text ? SaveTextReportAskingPath(editor) : SaveHtmlReportAskingPath(editor);
    if (session.desktop().status != editor.text("sd7")) {
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
