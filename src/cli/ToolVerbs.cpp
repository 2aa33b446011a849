// quick-replace and marker: the window's quick replace and insert-marker
// commands on an archive named on the command line.
#include "archive/Marker.h"
#include "archive/QuickReplace.h"
#include "cli/Verbs.h"

#include <cstdint>
#include <iostream>

namespace korvel::cli {
namespace {

namespace fs = std::filesystem;

// No one answers dialogs here: a marker never meets the duplicate scan, and
// an entry without a file is skipped (qrSetting "1" is set before the run).
class NoDialogs : public EntryDialogs, public QuickReplaceDialogs {
public:
    void AddingDup(const std::string&) override {}
    void RenameAItem(const RenameRequest&) override {}
    void QrMissing(const std::string&, const std::string&) override {}
};

struct Run {
    Session session;
    NoDialogs dialogs;
    EntryCommands commands{session.editor(), dialogs};

    int finish(bool ok) {
        for (const std::string& message : session.desktop().messages) {
            std::cerr << "korvel-cli: " << OneLine(message) << '\n';
        }
        return ok ? 0 : ExitFailure;
    }
};

int QuickReplaceVerb(const Arguments& args) {
    const std::string& folder = args.operands[1];
    if (!fs::is_directory(folder)) {
        return Fail(folder + " is not a folder");
    }
    Run run;
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    EntryTable& table = run.session.editor().table();
    table.clearSelection();
    if (args.operands.size() == 2) {
        table.selectAll();
    }
    for (std::size_t i = 2; i < args.operands.size(); ++i) {
        const auto name = Utf8ToCp1252(args.operands[i]);
        bool any = false;
        for (std::size_t row = 0; name && row < table.size(); ++row) {
            if (EqualsIgnoreCase(table[row].name, *name)) {
                table.setSelected(row, true);
                any = true;
            }
        }
        if (!any) {
            return Fail("no entry is named \"" + args.operands[i] + "\"");
        }
    }
    run.session.editor().settings().WriteSetting("1", "qrSetting");
    QuickReplace quick(run.session.editor(), run.commands, run.dialogs);
    const QuickReplaceCounts counts = quick.ReplaceFromFolder(folder);
    std::cout << "replaced " << counts.replaced << ", skipped " << counts.skipped << '\n';
    return run.finish(!counts.failed);
}

int MarkerVerb(const Arguments& args) {
    Run run;
    if (!run.session.open(args.operands[0])) {
        return ExitFailure;
    }
    return run.finish(InsertMarker(run.commands, run.session.editor()));
}

} // namespace

void AddToolVerbs(VerbTable& verbs) {
    verbs["quick-replace"] = {
        "quick-replace ARCHIVE.img FOLDER [NAME...]",
        "replace the named (or all) entries from the files of the same name in FOLDER",
        {},
        2,
        SIZE_MAX,
        QuickReplaceVerb};
    verbs["marker"] = {"marker ARCHIVE.img", "append a separator entry", {}, 1, 1, MarkerVerb};
}

} // namespace korvel::cli
