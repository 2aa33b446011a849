// The duplicate dialog `addingDup`: what adding does with a file whose name
// the archive already holds. Asked about a duplicate it hands its answer
// back; opened as the scan settings window it records its choices at once
// (`addingOpt` on Ok, `scanPrompt` as soon as the check box is clicked).
#pragma once

#include "window/EntryDialogs.h"

#include <QDialog>

#include <array>

class QButtonGroup;
class QCheckBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace korvel {
class Settings;
}

namespace korvel::ui {

class AddingDupDialog : public QDialog {
    Q_OBJECT
public:
    AddingDupDialog(Settings& settings, QWidget* parent);

    // Sets the captions in the current language and the choices from the
    // settings. With a name it asks about that duplicate; without one it is
    // the settings window and the conflict lines are hidden.
    void load(const QString& conflictingName = {});
    // The texts of the current language; the choices stay as they are.
    void relabel();
    // The answer once closed: the option taken with Ok (nothing when closed
    // by its frame) and the check box.
    DuplicateDialogAnswer answer() const;

private:
    void dontPromptClicked(bool checked);
    void doThisClicked();

    Settings& settings_;
    bool asking_ = false;
    std::optional<DuplicateAnswer> chosen_;
    QLabel* questionLabel_;
    QLabel* choiceLabel_;
    QLabel* conflictCaptionLabel_;
    QLabel* conflictNameLabel_;
    QButtonGroup* group_;
    std::array<QRadioButton*, 4> options_{};
    QCheckBox* dontPrompt_;
    QPushButton* doThis_;
};

} // namespace korvel::ui
