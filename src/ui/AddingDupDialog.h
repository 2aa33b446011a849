// The duplicate dialog `addingDup`: what adding does with a file whose name
// the archive already holds. Its choices go straight to the settings
// (`addingOpt` on Ok, `scanPrompt` as soon as the check box is clicked), so
// the same window also serves as the scan settings window.
#pragma once

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

private:
    void dontPromptClicked(bool checked);
    void doThisClicked();

    Settings& settings_;
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
