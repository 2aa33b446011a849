// quick-replace and marker: the window's quick replace and insert-marker
// commands on an archive named on the command line.
#include "archive/Marker.h"
#include "archive/QuickReplace.h"
#include "cli/Verbs.h"
#include "platform/Cp1252.h"

#include <cstdint>
#include <iostream>

namespace korvel::cli {
namespace {

namespace fs = std::filesystem;

void PrintError(const std::string& message) {
    std::cerr << "korvel-cli: " << OneLine(message) << '\n';
}

int QuickReplaceVerb(const Arguments& args) {
    const std::string& folder = args.operands[1];
    if (!fs::is_directory(folder)) {
        return Fail(folder + " is not a folder");
    }
    Session session;
    if (!session.open(args.operands[0])) {
        return ExitFailure;
    }
    const EntryTable& table = session.archive().table();
    std::vector<bool> named(table.size(), args.operands.size() == 2);
    for (std::size_t i = 2; i < args.operands.size(); ++i) {
        const auto name = Utf8ToCp1252(args.operands[i]);
        bool any = false;
        for (std::size_t row = 0; name && row < table.size(); ++row) {
            if (EqualsIgnoreCase(table[row].name, *name)) {
                named[row] = true;
                any = true;
            }
        }
        if (!any) {
            return Fail("no entry is named \"" + args.operands[i] + "\"");
        }
    }
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < named.size(); ++row) {
        if (named[row]) {
            rows.push_back(row);
        }
    }
    // No one is asked here: an entry without a file is skipped.
    const auto skip = [](const std::string&, std::size_t, const std::string&) {
        return MissingFileAnswer{};
    };
    const QuickReplaceCounts counts = ReplaceFromFolder(session.archive(), rows, folder, skip, {});
    const std::string ohCrap = session.settings().LookupText("ohCrap1") + " ";
    if (!counts.status.ok()) {
        if (counts.directoryNotWritten) {
            PrintError(ohCrap + counts.status.error());
        }
        const std::string error = counts.directoryNotWritten ? std::string(DirectoryNotWrittenText)
                                                             : counts.status.error();
        std::cout << "replaced " << counts.replaced << ", skipped " << counts.skipped << '\n';
        PrintError(ohCrap + error + "\r\n" + Cp1252ToUtf8(counts.failedName));
        return ExitFailure;
    }
    std::cout << "replaced " << counts.replaced << ", skipped " << counts.skipped << '\n';
    return 0;
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
    const std::string ohCrap = settings.LookupText("ohCrap1") + " ";
    if (result.failed == MarkerResult::Failed::Data) {
        PrintError(ohCrap + result.status.error() + "\r\n" + settings.LookupText("ohCrap2") +
                   "\r\n" + Cp1252ToUtf8(std::string(MarkerName)));
        // Deliberate: the rows as they stand are written after a failed copy.
        if (const Status written = session.archive().WriteDirectory(); !written.ok()) {
            PrintError(ohCrap + written.error());
        }
    } else {
        PrintError(ohCrap + result.status.error());
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
