// The add commands: the add dialog, drops, the duplicate question and its
// remembered answer.
#include "window/EntryCommands.h"

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
    editor_.desktop().ShowMessage(AddFailureText(editor_.settings(), description, name),
                                  editor_.text("errorTitle"), MessageIcon::Exclamation);
}

DecideDuplicate EntryCommands::DuplicateDecider() {
    return [this](const std::string& name, std::size_t row) {
        Settings& settings = editor_.settings();
        if (NumberSetting(settings.ReadSetting("scanPrompt")) == 0) {
            RecordDuplicateAnswer(settings, dialogs_.AddingDup(Cp1252ToUtf8(name)));
        }
        DuplicateDecision decision;
        decision.answer = StoredDuplicateAnswer(settings);
        if (decision.answer == DuplicateAnswer::RenameOld) {
            RenameRequest request;
            request.row = row;
            request.currentName = Cp1252ToUtf8(editor_.table()[row].name);
            request.modal = true;
            request.doRename = [this, row](const std::string& typed) {
                return DoRename(row, typed);
            };
            dialogs_.RenameAItem(request);
        } else if (decision.answer == DuplicateAnswer::RenameNew) {
            const auto typed =
                editor_.desktop().InputBox(editor_.text("reTrouble1") + " " + Cp1252ToUtf8(name),
                                           editor_.text("reTrouble2"), "");
            const auto converted = Utf8ToCp1252(typed.value_or(""));
            if (converted) {
                decision.newName = *converted;
            } else {
                decision.problem =
                    Status::Failed("the new name holds characters an archive cannot store");
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
        ReportAddFailure(std::string(DirectoryNotWrittenText), name);
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
    std::string shortened;
    const auto addOne = [&](const std::string& path) {
        const std::string fileName = fs::path(path).filename().string();
        const auto converted = Utf8ToCp1252(fileName);
        if (!converted) {
            ReportAddFailure("its name holds characters an archive cannot store", fileName);
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
        }
    };

    if (fromDialog && paths.size() == 1) {
        addOne(paths.front());
        desktop.SetStatus(editor_.text("adding5"));
    } else {
        const std::string of = " " + editor_.text("adding2") + " ";
        std::vector<std::string> textures;
        for (std::size_t i = 0; i < paths.size(); ++i) {
            desktop.SetStatus(editor_.text("adding1") + " " + std::to_string(i + 1) + of +
                              std::to_string(paths.size()));
            if (IsTextureDictionary(fs::path(paths[i]).filename().string())) {
                textures.push_back(paths[i]);
            } else {
                addOne(paths[i]);
            }
        }
        for (std::size_t j = 0; j < textures.size(); ++j) {
            if (fromDialog) {
                desktop.SetStatus(editor_.text("adding4") + " " + std::to_string(j + 1) + of +
                                  std::to_string(textures.size()));
            }
            addOne(textures[j]);
        }
        desktop.SetStatus(editor_.settings().LookupCountText("filesAdded", paths.size()));
    }
    if (const Status written = batch.Finish(); !written.ok()) {
        ShowError(written);
        failed = std::max<std::size_t>(failed, 1);
    }
    if (!shortened.empty()) {
        desktop.ShowMessage(
            editor_.settings().LookupFilled("namesShortened", {std::to_string(NameFieldSize)}) +
                shortened,
            "", MessageIcon::Information);
    }
    return failed;
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
