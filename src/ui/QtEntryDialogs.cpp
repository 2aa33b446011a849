#include "ui/QtEntryDialogs.h"

#include "ui/AddingDupDialog.h"
#include "ui/RenameDialog.h"

namespace korvel::ui {
namespace {

void ShowModeless(QDialog* dialog) {
    dialog->setModal(false);
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

// exec() on a dialog that is already shown modeless would not block the
// owner; show it anew as a modal one.
int ExecModal(QDialog* dialog) {
    if (dialog->isVisible()) {
        dialog->hide();
    }
    return dialog->exec();
}

} // namespace

QtEntryDialogs::QtEntryDialogs(Settings& settings, QWidget* owner)
    : settings_(settings), owner_(owner) {}

AddingDupDialog* QtEntryDialogs::addingDupDialog() {
    if (!addingDup_) {
        addingDup_ = new AddingDupDialog(settings_, owner_);
    }
    return addingDup_;
}

RenameDialog* QtEntryDialogs::renameDialog() {
    if (!rename_) {
        rename_ = new RenameDialog(settings_, owner_);
    }
    return rename_;
}

DuplicateDialogAnswer QtEntryDialogs::AddingDup(const std::string& conflictingName) {
    AddingDupDialog* dialog = addingDupDialog();
    dialog->load(QString::fromStdString(conflictingName));
    ExecModal(dialog);
    return dialog->answer();
}

void QtEntryDialogs::ShowScanSettings() {
    AddingDupDialog* dialog = addingDupDialog();
    if (!dialog->isVisible()) {
        dialog->load();
    }
    ShowModeless(dialog);
}

void QtEntryDialogs::relabel() {
    if (addingDup_) {
        addingDup_->relabel();
    }
    if (rename_) {
        rename_->relabel();
    }
}

void QtEntryDialogs::RenameAItem(const RenameRequest& request) {
    RenameDialog* dialog = renameDialog();
    dialog->fill(request);
    if (request.modal) {
        ExecModal(dialog);
    } else {
        ShowModeless(dialog);
    }
}

} // namespace korvel::ui
