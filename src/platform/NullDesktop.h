// A Desktop with no one at it: messages go nowhere, questions are answered
// Yes, dialogs are cancelled. Benchmarks use it (a recording desktop would
// measure its own bookkeeping).
#pragma once

#include "platform/Desktop.h"

namespace korvel {

class NullDesktop : public Desktop {
public:
    void ShowMessage(const std::string&, const std::string&, MessageIcon) override {}
    bool AskYesNo(const std::string&, const std::string&) override { return true; }
    FileDialogAnswer OpenFileDialog(const FileDialogRequest&) override { return {}; }
    FileDialogAnswer SaveFileDialog(const FileDialogRequest&) override { return {}; }
    std::optional<std::string> ChooseFolderDialog(const std::string&) override { return {}; }
    std::optional<std::string> InputBox(const std::string&, const std::string&,
                                        const std::string&) override {
        return {};
    }
    std::optional<Rgb> PickColour() override { return {}; }
    void SetStatus(const std::string&) override {}
    void SetStats(const std::string&) override {}
    void SetArchivePath(const std::string&) override {}
    void ShowProgress(int) override {}
    void SetProgress(int) override {}
    void HideProgress() override {}
    void SetBusy(bool) override {}
    void SetClipboardText(const std::string&) override {}
    bool OpenWithShell(const std::string&) override { return true; }
    // Nobody to ask: the command goes ahead, as with AskYesNo, but no file
    // is ever written over unasked.
    bool AskDestructive(const std::string&, const std::string&) override { return true; }
    OverwriteAnswer AskOverwrite(const std::string&, const std::string&) override {
        return OverwriteAnswer::No;
    }
};

} // namespace korvel
