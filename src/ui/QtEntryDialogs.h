// EntryDialogs of the real editor. One duplicate dialog and one rename dialog
// live beside the main window, each a single instance: asked modally by
// adding, or shown without blocking (the scan settings window, the rename
// command), and refilled when opened again.
#pragma once

#include "window/EntryDialogs.h"

#include <QPointer>

class QWidget;

namespace korvel {
class Settings;
}

namespace korvel::ui {

class AddingDupDialog;
class RenameDialog;

class QtEntryDialogs : public EntryDialogs {
public:
    QtEntryDialogs(Settings& settings, QWidget* owner);

    DuplicateDialogAnswer AddingDup(const std::string& conflictingName) override;
    void RenameAItem(const RenameRequest& request) override;
    // The `ScanSettings` menu item: `addingDup` as a settings window.
    void ShowScanSettings();
    // The open dialogs take the texts of the current language.
    void relabel();

    AddingDupDialog* addingDupDialog();
    RenameDialog* renameDialog();

private:
    Settings& settings_;
    QWidget* owner_;
    QPointer<AddingDupDialog> addingDup_;
    QPointer<RenameDialog> rename_;
};

} // namespace korvel::ui
