// The Desktop of the real editor: Qt message boxes and dialogs, the status
// bar panels, PB1, the clipboard and the shell. Status texts and the progress
// bar repaint at once, so a long command that never returns to the event loop
// still shows its progress, and no input is taken meanwhile. Long work that
// can be cancelled runs the event loop between its steps instead, with every
// input but the Cancel button (and Escape) held back.
#pragma once

#include "platform/Desktop.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class QAbstractButton;
class QLabel;
class QProgressBar;
class QStatusBar;
class QWidget;

namespace korvel::ui {

class QtDesktop : public Desktop {
public:
    explicit QtDesktop(QWidget* owner);
    ~QtDesktop() override;

    void attachStatusBar(QStatusBar* bar, QLabel* panel1, QLabel* panel2, QProgressBar* progress);
    // A tool window with a progress bar of its own lends it for one command;
    // returns the bar it replaces, to be handed back afterwards.
    QProgressBar* swapProgressBar(QProgressBar* progress);

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
    void ShowCancellableProgress(int maximum) override;
    bool ProgressCancelled() override;

    // The button that cancels long work, shown only while such work runs;
    // `beforeShowing` gives it its caption in the language of the moment.
    void attachCancelButton(QAbstractButton* button, std::function<void()> beforeShowing);
    // Whether long work runs; the window then starts no other command.
    bool workRunning() const { return workDepth_ > 0; }
    // Asks the running work to stop at its next safe point (Cancel, Escape).
    void cancelWork();
    // Closing the window while work runs: cancel, and close once it stopped.
    void cancelWorkAndClose();
    bool AskDestructive(const std::string& text, const std::string& title) override;
    OverwriteAnswer AskOverwrite(const std::string& text, const std::string& title) override;

    // Whether the desktop names a program that opens `file`'s type.
    static bool HasDefaultApplication(const QString& file);

private:
    class WorkGuard;
    // Lets the window repaint and take Cancel, at most every PumpIntervalMs.
    void pumpEvents();
    void endWork();
    FileDialogAnswer fileDialog(const FileDialogRequest& request, bool saving);
    // Paints the widget now, at most every few milliseconds unless forced.
    void paintNow(QWidget* widget, bool force);

    QWidget* owner_;
    QPointer<QStatusBar> bar_;
    QPointer<QLabel> panel1_;
    QPointer<QLabel> panel2_;
    QPointer<QProgressBar> progress_;
    QElapsedTimer sincePaint_;
    int busyDepth_ = 0;
    QPointer<QAbstractButton> cancelButton_;
    std::function<void()> beforeShowingCancel_;
    std::unique_ptr<WorkGuard> guard_;
    QElapsedTimer sincePump_;
    int workDepth_ = 0;
    bool cancelled_ = false;
    bool closeAfterWork_ = false;
};

} // namespace korvel::ui
