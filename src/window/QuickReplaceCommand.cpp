#include "window/QuickReplaceCommand.h"
#include "window/LongWork.h"

#include "settings/FailureTexts.h"

#include "platform/Cp1252.h"

namespace korvel {

std::optional<MissingFileOption> StoredMissingFileOption(const Settings& settings) {
    const std::string stored = settings.ReadSetting("qrSetting");
    if (stored == "1") {
        return MissingFileOption::Skip;
    }
    if (stored == "2") {
        return MissingFileOption::ReplaceSeparately;
    }
    if (stored == "3") {
        return MissingFileOption::NewLocation;
    }
    return std::nullopt;
}

void RecordMissingFileOption(Settings& settings, MissingFileOption option) {
    const char* word = option == MissingFileOption::Skip                ? "1"
                       : option == MissingFileOption::ReplaceSeparately ? "2"
                                                                        : "3";
    settings.WriteSetting(word, "qrSetting");
}

QuickReplace::QuickReplace(Editor& editor, EntryCommands& commands, QuickReplaceDialogs& dialogs)
    : editor_(editor), commands_(commands), dialogs_(dialogs) {}

std::optional<std::string> QuickReplace::PickFolder() {
    auto folder = editor_.desktop().ChooseFolderDialog(editor_.text("repFrom"));
    if (folder && folder->empty()) {
        return std::nullopt;
    }
    return folder;
}

void QuickReplace::QuickReplaceSelected() {
    Desktop& desktop = editor_.desktop();
    const std::size_t count = editor_.table().selectedCount();
    if (count == 0) {
        desktop.SetStatus(editor_.text("noneSel"));
        return;
    }
    if (count == 1) {
        desktop.SetStatus(editor_.text("oneSel"));
        commands_.ReplaceSelectedAskingFiles();
        return;
    }
    const std::string lastQR = editor_.settings().ReadSetting("lastQR");
    std::optional<std::string> folder;
    if (lastQR != NoPath &&
        desktop.AskYesNo(editor_.text("useLastQR") + "\r\n" + lastQR, editor_.text("qrPickPath"))) {
        folder = lastQR;
    } else {
        folder = PickFolder();
    }
    if (!folder) {
        desktop.SetStatus(editor_.text("cancelQR"));
        return;
    }
    ReplaceSelectedFromFolder(*folder);
}

QuickReplaceCounts QuickReplace::ReplaceSelectedFromFolder(const std::string& folder) {
    EntryTable& table = editor_.table();
    Settings& settings = editor_.settings();
    Desktop& desktop = editor_.desktop();
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (table[row].selected) {
            rows.push_back(row);
        }
    }
    const auto ask = [&](const std::string& name, std::size_t row, const std::string& in) {
        MissingFileAnswer answer;
        const auto chosen = dialogs_.QrMissing(Cp1252ToUtf8(name), in);
        if (!chosen) {
            // Escape or the close button: nothing of this entry is replaced
            // and the stored choice is neither applied nor changed.
            answer.choice = MissingFileAnswer::Choice::Skip;
            return answer;
        }
        RecordMissingFileOption(settings, *chosen);
        const auto option = StoredMissingFileOption(settings);
        if (!option) {
            answer.choice = MissingFileAnswer::Choice::Nothing;
        } else if (*option == MissingFileOption::Skip) {
            answer.choice = MissingFileAnswer::Choice::Skip;
        } else if (*option == MissingFileOption::ReplaceSeparately) {
            // Counted as replaced only when it was: a cancelled or failed
            // file dialog leaves the entry as it was, which is a skip.
            answer.choice = commands_.ReplaceEntryWithDialog(row)
                                ? MissingFileAnswer::Choice::ReplacedElse
                                : MissingFileAnswer::Choice::Skip;
        } else if (auto picked = PickFolder()) {
            answer.choice = MissingFileAnswer::Choice::LookElsewhere;
            answer.folder = *picked;
        } else {
            // A cancelled picker keeps the folder and skips this entry,
            // rather than looking for files in no folder at all.
            answer.choice = MissingFileAnswer::Choice::Skip;
        }
        return answer;
    };
    QuickReplaceCounts counts;
    {
        // Each row's replacement writes the directory file, so stopping
        // between two rows leaves the rows before it replaced and the rest
        // as they were.
        LongWork work(desktop, rows.size());
        std::size_t done = 0;
        const auto replaced = [&](std::size_t row) {
            work.step(++done);
            desktop.SetStatus(Cp1252ToUtf8(table[row].name) + " " + editor_.text("rep5"));
        };
        counts =
            ReplaceFromFolder(editor_.archive(), rows, folder, ask, replaced, work.stopCheck());
    }
    if (!counts.refused.empty()) {
        std::string refused;
        for (const Status& problem : counts.refused) {
            refused += (refused.empty() ? "" : "\r\n") + StatusText(settings, problem);
        }
        desktop.ShowMessage(refused, settings.LookupText("errorTitle"), MessageIcon::Exclamation);
    }
    if (!counts.status.ok()) {
        if (counts.directoryNotWritten) {
            desktop.ShowMessage(FileFailureText(settings, StatusText(settings, counts.status)),
                                settings.LookupText("errorTitle"), MessageIcon::Exclamation);
        }
        const std::string error = counts.directoryNotWritten ? settings.LookupText("dirNotWritten")
                                                             : StatusText(settings, counts.status);
        desktop.ShowMessage(FileFailureText(settings, error, Cp1252ToUtf8(counts.failedName)),
                            settings.LookupText("errorTitle"), MessageIcon::Exclamation);
    }
    settings.WriteSetting(counts.folder, "lastQR");
    table.clearSelection();
    if (counts.stopped) {
        desktop.SetStatus(settings.LookupFilled(
            "qrCancelled", {std::to_string(counts.replaced), std::to_string(rows.size())}));
        return counts;
    }
    desktop.SetStatus(settings.LookupCountText("replaced", counts.replaced) + ", " +
                      settings.LookupCountText("skipped", counts.skipped));
    return counts;
}

} // namespace korvel
