// The add commands: the add dialog, drops, the duplicate question and its
// remembered answer.
#include "window/EntryCommands.h"
#include "window/LongWork.h"

#include "settings/FailureTexts.h"

#include "archive/Marker.h"

#include "platform/Blanks.h"
#include "platform/Cp1252.h"
#include "platform/FileSystem.h"
#include "platform/Folders.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <system_error>

namespace korvel {
namespace fs = std::filesystem;

long NumberSetting(const std::string& value) {
    long number = 0;
    for (char c : value) {
        if (c < '0' || c > '9') {
            break;
        }
        number = number * 10 + (c - '0');
        if (number > 1000000) {
            break;
        }
    }
    return number;
}

DuplicateAnswer StoredDuplicateAnswer(const Settings& settings) {
    return DuplicateAnswerFromWord(settings.ReadSetting("addingOpt"));
}

void RecordDuplicateAnswer(Settings& settings, const DuplicateDialogAnswer& answer) {
    if ((NumberSetting(settings.ReadSetting("scanPrompt")) == 1) != answer.dontPrompt) {
        settings.WriteSetting(answer.dontPrompt ? "1" : "0", "scanPrompt");
    }
    if (answer.action) {
        settings.WriteSetting(std::string(DuplicateAnswerWord(*answer.action)), "addingOpt");
    }
}

// --- adding --------------------------------------------------------------------

void EntryCommands::ReportAddFailure(const std::string& description, const std::string& name) {
    editor_.desktop().ShowMessage(AddFailureText(editor_.settings(), description, name), "Error",
                                  MessageIcon::Exclamation);
}

DecideDuplicate EntryCommands::DuplicateDecider() {
    return [this](const std::string& name, std::size_t row) {
        Settings& settings = editor_.settings();
        DuplicateDecision decision;
        if (NumberSetting(settings.ReadSetting("scanPrompt")) == 0) {
            // Escape or the close button is Cancel: this file is left out,
            // and neither the remembered answer nor the box is touched.
            const DuplicateDialogAnswer answer = dialogs_.AddingDup(Cp1252ToUtf8(name));
            if (!answer.action) {
                decision.answer = DuplicateAnswer::Skip;
                return decision;
            }
            RecordDuplicateAnswer(settings, answer);
        }
        decision.answer = StoredDuplicateAnswer(settings);
        if (decision.answer == DuplicateAnswer::RenameOld) {
            const std::string before = editor_.table()[row].name;
            RenameRequest request;
            request.row = row;
            request.currentName = Cp1252ToUtf8(editor_.table()[row].name);
            request.modal = true;
            request.doRename = [this, row](const std::string& typed) {
                return DoRename(row, typed);
            };
            dialogs_.RenameAItem(request);
            // Renaming the old entry cancelled: adding now would put a
            // second entry of the same name beside it.
            if (row < editor_.table().size() && editor_.table()[row].name == before) {
                decision.answer = DuplicateAnswer::Skip;
            }
        } else if (decision.answer == DuplicateAnswer::RenameNew) {
            const auto typed =
                editor_.desktop().InputBox(editor_.text("reTrouble1") + " " + Cp1252ToUtf8(name),
                                           editor_.text("reTrouble2"), "");
            if (!typed) {
                // Cancelled: no name to add it under, so it is not added.
                decision.answer = DuplicateAnswer::Skip;
                return decision;
            }
            const auto converted = Utf8ToCp1252(*typed);
            if (converted) {
                decision.newName = *converted;
            } else {
                decision.problem =
                    Status::Failed("the new name holds characters an archive cannot store",
                                   "nameNotStorable", {*typed});
            }
        }
        return decision;
    };
}

bool EntryCommands::ReportAdded(const AddOutcome& outcome, const std::string& name) {
    Desktop& desktop = editor_.desktop();
    switch (outcome.result) {
    case AddResult::Added:
        editor_.ShowEntryCount();
        return false;
    case AddResult::Replaced:
        desktop.SetStatus(Cp1252ToUtf8(editor_.table()[outcome.row].name) + " " +
                          editor_.text("rep5"));
        return false;
    case AddResult::Skipped:
        return false;
    case AddResult::Failed:
        break;
    }
    if (outcome.directoryNotWritten) {
        ShowError(outcome.status);
        ReportAddFailure(editor_.text("dirNotWritten"), name);
    } else {
        ReportAddFailure(StatusText(editor_.settings(), outcome.status), name);
    }
    if (!outcome.directoryAfterFailure.ok()) {
        ShowError(outcome.directoryAfterFailure);
    }
    return true;
}

std::size_t EntryCommands::AddFileBatch(const std::vector<std::string>& paths, bool fromDialog) {
    Desktop& desktop = editor_.desktop();
    const bool scan = BooleanWord(editor_.settings().ReadSetting("addingScan")).value_or(false);
    AddBatch batch(editor_.archive(), scan, DuplicateDecider());
    std::size_t failed = 0;
    std::size_t added = 0; // added or replacing an entry
    std::size_t skipped = 0;
    bool cancelled = false;
    std::string shortened;
    const auto addOne = [&](const std::string& path) {
        const std::string fileName = fs::path(path).filename().string();
        const auto converted = Utf8ToCp1252(fileName);
        if (!converted) {
            ReportAddFailure(editor_.settings().LookupFilled("nameNotStorable", {fileName}),
                             fileName);
            ++failed;
            return;
        }
        std::string name = *converted;
        const AddOutcome outcome = batch.Add(path, name);
        if (!outcome.shortenedFrom.empty()) {
            shortened += "\r\n" + ShownName(outcome.shortenedFrom) + " -> " + ShownName(name);
        }
        if (ReportAdded(outcome, name)) {
            ++failed;
        } else if (outcome.result == AddResult::Skipped) {
            ++skipped;
        } else {
            ++added;
        }
    };

    const bool single = fromDialog && paths.size() == 1;
    if (single) {
        addOne(paths.front());
    } else {
        const std::string of = " " + editor_.text("adding2") + " ";
        std::vector<std::string> textures;
        // Stops only between two files: the files added so far stay, and the
        // directory file is written once for them below.
        LongWork work(desktop, paths.size());
        std::size_t tried = 0;
        const auto goOn = [&] {
            work.step(tried++);
            return !work.cancelled();
        };
        for (std::size_t i = 0; i < paths.size(); ++i) {
            desktop.SetStatus(editor_.text("adding1") + " " + std::to_string(i + 1) + of +
                              std::to_string(paths.size()));
            if (IsTextureDictionary(fs::path(paths[i]).filename().string())) {
                textures.push_back(paths[i]);
            } else if (goOn()) {
                addOne(paths[i]);
            } else {
                break;
            }
        }
        for (std::size_t j = 0; j < textures.size() && !work.cancelled(); ++j) {
            if (fromDialog) {
                desktop.SetStatus(editor_.text("adding4") + " " + std::to_string(j + 1) + of +
                                  std::to_string(textures.size()));
            }
            if (goOn()) {
                addOne(textures[j]);
            }
        }
        cancelled = work.cancelled();
    }
    const Status written = batch.Finish();
    if (!written.ok()) {
        ShowError(written);
        // The directory file still lists what it listed before: none of them
        // is in the archive.
        failed += added;
        added = 0;
    }
    // The count is what the archive now holds, not what was dropped or chosen.
    if (single && added == 1) {
        desktop.SetStatus(editor_.text("adding5"));
    } else if (cancelled) {
        desktop.SetStatus(editor_.settings().LookupFilled(
            "addCancelled", {std::to_string(added), std::to_string(paths.size())}));
    } else {
        std::string counts = editor_.settings().LookupCountText("filesAdded", added);
        if (skipped != 0) {
            counts += ", " + std::to_string(skipped) + " " + editor_.text("addSkipped");
        }
        if (failed != 0) {
            counts += ", " + std::to_string(failed) + " " + editor_.text("addFailed");
        }
        desktop.SetStatus(counts);
    }
    if (!shortened.empty()) {
        desktop.ShowMessage(
            editor_.settings().LookupFilled("namesShortened", {std::to_string(NameFieldSize)}) +
                shortened,
            "", MessageIcon::Information);
    }
    return written.ok() ? failed : std::max<std::size_t>(failed, 1);
}

std::vector<std::string> EntryCommands::AddDialog() {
    const std::string lastAdd = editor_.settings().ReadSetting("lastAdd");
    FileDialogRequest request;
    request.title = editor_.text("adding6");
    request.filter = editor_.text("cdFiles2");
    request.startFolder = lastAdd == NoPath ? std::string() : lastAdd;
    request.multiple = true;
    const FileDialogAnswer answer = editor_.desktop().OpenFileDialog(request);
    if (answer.outcome == FileDialogAnswer::Outcome::Failed) {
        editor_.desktop().SetStatus(editor_.text("adding7"));
        return {};
    }
    if (!answer.chosen()) {
        return {};
    }
    return answer.paths;
}

void EntryCommands::AddFilesAskingPaths() {
    const std::vector<std::string> paths = AddDialog();
    if (paths.empty() || (paths.size() == 1 && paths.front().empty())) {
        return;
    }
    // One file remembers its folder with the separator, several the folder
    // itself, as the dialog hands them over.
    const std::string folder = paths.size() == 1 ? FolderWithSeparator(paths.front())
                                                 : fs::path(paths.front()).parent_path().string();
    editor_.settings().WriteSetting(folder, "lastAdd");
    AddFileBatch(paths, true);
}

void EntryCommands::ToggleAddingScan() {
    MenuState& menu = editor_.menu();
    const bool scan = !menu.isChecked("AddingScan");
    menu.setChecked("AddingScan", scan);
    editor_.settings().WriteSetting(scan ? "True" : "False", "addingScan");
}

} // namespace korvel
