// Everything a command may ask of the person at the desk. The engine talks to
// the screen only through this interface: the Qt window implements it with
// real widgets, tests with a scripted answer queue, the command-line tool with
// stderr and fixed answers. All text crossing it is UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace korvel {

enum class MessageIcon { None, Information, Exclamation, Critical };

struct FileDialogRequest {
    std::string title;
    // Qt filter syntax: "IMG archives (*.img);;All files (*)".
    std::string filter;
    std::string startFolder; // empty: the desktop's choice
    std::string presetName;  // empty: no preset
    bool multiple = false;
};

struct FileDialogAnswer {
    enum class Outcome { Chosen, Cancelled, Failed };
    Outcome outcome = Outcome::Cancelled;
    std::vector<std::string> paths; // full paths, when chosen
    // Which of the request's file types (its filter's parts between ";;",
    // from 0) was selected when the dialog closed.
    std::size_t filterIndex = 0;

    bool chosen() const { return outcome == Outcome::Chosen && !paths.empty(); }
};

// The answers to "write over this file?" while extracting.
enum class OverwriteAnswer { Yes, YesToAll, No, Cancel };

struct Rgb {
    int red = 0;
    int green = 0;
    int blue = 0;
    friend bool operator==(const Rgb&, const Rgb&) = default;
};

class Desktop {
public:
    virtual ~Desktop() = default;

    // A message box with an OK button. An empty title means the program's own.
    virtual void ShowMessage(const std::string& text, const std::string& title,
                             MessageIcon icon) = 0;
    // A Yes/No question; true only for Yes. An empty title means the program's own.
    virtual bool AskYesNo(const std::string& text, const std::string& title) = 0;

    virtual FileDialogAnswer OpenFileDialog(const FileDialogRequest& request) = 0;
    virtual FileDialogAnswer SaveFileDialog(const FileDialogRequest& request) = 0;
    // The chosen folder, or nothing when cancelled.
    virtual std::optional<std::string> ChooseFolderDialog(const std::string& title) = 0;
    // The typed text, or nothing when cancelled.
    virtual std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                                const std::string& initial) = 0;
    virtual std::optional<Rgb> PickColour() = 0;

    // Status bar: panel 1 carries the last command's message, panel 2 the
    // statistics; the path of the open archive goes to the bar's tool-tip.
    virtual void SetStatus(const std::string& text) = 0;
    virtual void SetStats(const std::string& text) = 0;
    virtual void SetArchivePath(const std::string& path) = 0;
    // Progress bar PB1: shown with a range, stepped, hidden again.
    virtual void ShowProgress(int maximum) = 0;
    virtual void SetProgress(int value) = 0;
    virtual void HideProgress() = 0;
    virtual void SetBusy(bool busy) = 0;

    virtual void SetClipboardText(const std::string& text) = 0;
    // Opens a file or web address with the desktop's associated program.
    virtual bool OpenWithShell(const std::string& pathOrAddress) = 0;

    // Long work that can stop where the archive is whole (between files,
    // before a rebuild puts its new files in place): PB1 with a Cancel
    // button that Escape presses too. Until HideProgress the window keeps
    // painting, takes no other command, and a request to close it cancels
    // the work first.
    virtual void ShowCancellableProgress(int maximum) { ShowProgress(maximum); }
    // Whether Cancel was pressed since ShowCancellableProgress. The work asks
    // between its steps; the window handles what waited meanwhile (painting,
    // the Cancel button) before it answers.
    virtual bool ProgressCancelled() { return false; }
    // A Yes/No question whose Yes destroys something (deleting entries,
    // emptying a file, rebuilding): a warning icon, No is the default button
    // and Escape answers No. True only for Yes.
    virtual bool AskDestructive(const std::string& text, const std::string& title) = 0;
    // Before a file is written over: Yes, Yes to all, No (the default) or
    // Cancel (also Escape and the close button).
    virtual OverwriteAnswer AskOverwrite(const std::string& text, const std::string& title) = 0;
};

} // namespace korvel
