// The command-line tool's Desktop: no one is at the desk, so questions get
// fixed answers set by the verb, dialogs answer with the paths given on the
// command line, and messages are kept so the tool can print the first one as
// its error line.
#pragma once

#include "platform/Desktop.h"

#include <string>
#include <vector>

namespace korvel::cli {

class CliDesktop : public Desktop {
public:
    bool yesAnswer = false;                   // what every Yes/No question gets
    std::vector<std::string> fileDialogPaths; // what a file dialog returns; empty: cancel
    std::vector<std::string> messages;        // every message shown, one line each
    std::string status;

    void ShowMessage(const std::string& text, const std::string& title, MessageIcon icon) override;
    bool AskYesNo(const std::string& text, const std::string& title) override;
    FileDialogAnswer OpenFileDialog(const FileDialogRequest& request) override;
    FileDialogAnswer SaveFileDialog(const FileDialogRequest& request) override;
    std::optional<std::string> ChooseFolderDialog(const std::string& title) override;
    std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                        const std::string& initial) override;
    std::optional<Rgb> PickColour() override;
    void SetStatus(const std::string& text) override { status = text; }
    void SetStats(const std::string&) override {}
    void SetArchivePath(const std::string&) override {}
    void ShowProgress(int) override {}
    void SetProgress(int) override {}
    void HideProgress() override {}
    void SetBusy(bool) override {}
    void SetClipboardText(const std::string&) override {}
    bool OpenWithShell(const std::string&) override { return false; }
};

// A message as one line: line breaks become single spaces.
std::string OneLine(const std::string& text);

} // namespace korvel::cli
