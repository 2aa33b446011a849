// A Desktop for tests: it replays queued answers ("yes", "no", a path, a
// folder, "<cancel>") and records every message, question, dialog and status
// text in order, so a test can assert the whole conversation a command had.
#pragma once

#include "platform/Desktop.h"

#include <deque>
#include <string>
#include <vector>

namespace korvel::test {

inline constexpr const char* Cancel = "<cancel>";
inline constexpr const char* Fail = "<fail>";

class ScriptedDesktop : public Desktop {
public:
    // Answers, consumed in order by questions and dialogs. A question or
    // dialog with no answer left throws, so an unexpected prompt fails the test.
    std::deque<std::string> answers;
    // "message(Information) title: text", "ask title: text -> yes",
    // "open title [filter] -> path", "status: text", "stats: text", ...
    std::vector<std::string> conversation;
    std::vector<std::string> shellOpened;
    std::string clipboard;
    std::string status;
    std::string stats;
    std::string archivePath;
    // Cancel is pressed at the `cancelAtPoll`-th ProgressCancelled from now (0: never).
    std::size_t cancelAtPoll = 0;
    // What OpenWithShell answers: false as on a desktop with no program for the type.
    bool shellOpens = true;
    FileDialogRequest lastFileDialog;
    // The file type the next file dialog answers as selected (then 0 again).
    std::size_t nextFilterIndex = 0;

    void answer(std::initializer_list<std::string> next) {
        answers.insert(answers.end(), next.begin(), next.end());
    }
    // Entries of the conversation that start with `prefix`.
    std::vector<std::string> said(const std::string& prefix) const;

    void ShowMessage(const std::string& text, const std::string& title, MessageIcon icon) override;
    bool AskYesNo(const std::string& text, const std::string& title) override;
    FileDialogAnswer OpenFileDialog(const FileDialogRequest& request) override;
    FileDialogAnswer SaveFileDialog(const FileDialogRequest& request) override;
    std::optional<std::string> ChooseFolderDialog(const std::string& title) override;
    std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                        const std::string& initial) override;
    std::optional<Rgb> PickColour() override;
    void SetStatus(const std::string& text) override;
    void SetStats(const std::string& text) override;
    void SetArchivePath(const std::string& path) override;
    void ShowProgress(int maximum) override;
    void SetProgress(int value) override;
    void HideProgress() override;
    void SetBusy(bool busy) override;
    void SetClipboardText(const std::string& text) override;
    bool OpenWithShell(const std::string& pathOrAddress) override;
    bool ProgressCancelled() override;
    bool AskDestructive(const std::string& text, const std::string& title) override; // "ask !title"
    OverwriteAnswer AskOverwrite(const std::string& text, // "yes", "all", "no", "<cancel>"
                                 const std::string& title) override;

private:
    std::string next(const std::string& asking);
    FileDialogAnswer fileDialog(const char* kind, const FileDialogRequest& request);
};

} // namespace korvel::test
