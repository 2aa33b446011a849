// The rename dialog `RenameAItem`: a name box of at most 24 characters (the
// name field of a directory record) with a live counter. Ok (or Enter in the
// box) hands the typed name to the request's `doRename`, which refuses a
// blank name and keeps the dialog open.
#pragma once

#include "window/EntryDialogs.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace korvel {
class Settings;
}

namespace korvel::ui {

class RenameDialog : public QDialog {
    Q_OBJECT
public:
    static constexpr int MaxNameLength = 24;

    RenameDialog(Settings& settings, QWidget* parent);

    // Fills `itemNo` and `objectName` for the request; the dialog keeps it
    // until the next fill, so opening it again while shown refills it.
    void fill(const RenameRequest& request);
    // The texts of the current language.
    void relabel();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void updateCounter();
    void doRenameClicked();

    Settings& settings_;
    RenameRequest request_;
    QLineEdit* itemNo_;
    QLineEdit* nameBox_;
    QLabel* label1_;
    QLabel* label2_;
    QPushButton* doRename_;
    QPushButton* cancel_;
};

} // namespace korvel::ui
