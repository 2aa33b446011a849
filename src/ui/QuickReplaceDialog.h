// `qrMissing`: asked by quick replace when an entry has no file of its name
// in the folder. Ok hands back the chosen option; closing it any other way
// hands back nothing, and the previous choice stands.
#pragma once

#include "settings/Settings.h"
#include "window/QuickReplaceDialogs.h"

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

    // The option taken with Ok; nothing when closed any other way.
    std::optional<MissingFileOption> chosen() const { return chosen_; }

private:
    void ok();

    Settings& settings_;
    std::optional<MissingFileOption> chosen_;
    QRadioButton* skip_;
    QRadioButton* separately_;
    QRadioButton* newLocation_;
};

// The window's QuickReplaceDialogs: one modal `qrMissing` per missing file.
class QtQuickReplaceDialogs : public QuickReplaceDialogs {
public:
    QtQuickReplaceDialogs(Settings& settings, QWidget* owner)
        : settings_(settings), owner_(owner) {}
    std::optional<MissingFileOption> QrMissing(const std::string& entryName,
                                               const std::string& folder) override;

private:
    Settings& settings_;
    QWidget* owner_;
};

} // namespace korvel::ui
