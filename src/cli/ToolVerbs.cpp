// quick-replace and marker: the window's quick replace and insert-marker
// commands on an archive named on the command line.
#include "archive/Marker.h"
#include "archive/QuickReplace.h"
#include "cli/Interrupt.h"
#include "cli/Verbs.h"
#include "platform/Cp1252.h"
#include "settings/FailureTexts.h"

#include <cstdint>
#include <iostream>

namespace korvel::cli {
namespace {

namespace fs = std::filesystem;

int QuickReplaceVerb(const Arguments& args) {
    const std::string& folder = args.operands[1];
    if (!fs::is_directory(folder)) {
        return Fail(folder + " is not a folder");
    }
    Session session;
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    const std::vector<std::string> names(args.operands.begin() + 2, args.operands.end());
    const auto rows = NamedRows(session.archive().table(), names, true);
    if (!rows) {
        return ExitFailure;
    }
    // No one is asked here: an entry without a file is skipped.
    const auto skip = [](const std::string&, std::size_t, const std::string&) {
        return MissingFileAnswer{};
    };
    CatchInterrupt();
    const QuickReplaceCounts counts =
        ReplaceFromFolder(session.archive(), *rows, folder, skip, {}, InterruptCheck());
    const Settings& texts = session.settings();
    for (const Status& problem : counts.refused) {
        PrintError(problem.error());
    }
    if (!counts.status.ok()) {
        if (counts.directoryNotWritten) {
            PrintError(FileFailureText(texts, counts.status.error()));
        }
        const std::string error = counts.directoryNotWritten ? std::string(DirectoryNotWrittenText)
                                                             : counts.status.error();
        std::cout << "replaced " << counts.replaced << ", skipped " << counts.skipped << '\n';
        PrintError(FileFailureText(texts, error, ShownName(counts.failedName)));
        return ExitFailure;
    }
    std::cout << "replaced " << counts.replaced << ", skipped " << counts.skipped << '\n';
    if (counts.stopped) {
        return ReportInterrupted(std::to_string(counts.replaced) + " of " +
                                 std::to_string(rows->size()) + " entries replaced");
    }
    return counts.refused.empty() ? 0 : ExitFailure;
}

int MarkerVerb(const Arguments& args) {
    Session session;
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    const Settings& settings = session.settings();
    const MarkerResult result = InsertMarker(session.archive(), settings.LookupText("markText"));
    if (result.status.ok()) {
        return 0;
    }
    if (result.failed == MarkerResult::Failed::Data) {
        PrintError(AddFailureText(settings, result.status.error(), std::string(MarkerName)));
        if (!result.directoryAfterFailure.ok()) {
            PrintError(FileFailureText(settings, result.directoryAfterFailure.error()));
        }
    } else {
        PrintError(FileFailureText(settings, result.status.error()));
    }
    return ExitFailure;
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
