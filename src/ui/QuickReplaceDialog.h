// `qrMissing`: asked by quick replace when an entry has no file of its name
// in the folder. Ok stores the chosen option in `qrSetting`; closing it any
// other way keeps the previous choice.
#pragma once

#include "window/QuickReplaceDialogs.h"
#include "settings/Settings.h"

#include <QDialog>

class QLabel;
class QPushButton;
class QRadioButton;

namespace korvel::ui {

class QuickReplaceDialog : public QDialog {
    Q_OBJECT
public:
    QuickReplaceDialog(Settings& settings, const std::string& entryName, const std::string& folder,
                       QWidget* parent);

private:
    void ok();

    Settings& settings_;
    QRadioButton* skip_;
    QRadioButton* separately_;
    QRadioButton* newLocation_;
};

// The window's QuickReplaceDialogs: one modal `qrMissing` per missing file.
class QtQuickReplaceDialogs : public QuickReplaceDialogs {
public:
    QtQuickReplaceDialogs(Settings& settings, QWidget* owner)
        : settings_(settings), owner_(owner) {}
    void QrMissing(const std::string& entryName, const std::string& folder) override;

private:
    Settings& settings_;
    QWidget* owner_;
};

} // namespace korvel::ui
