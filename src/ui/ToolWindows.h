// The main window's tool commands and their windows: quick replace with its
// `qrMissing` dialog, the marker, the row colours dialog, the show-me list,
// the file association and the Help links. Plugged into the window's menu
// items by name; the windows are single instances owned by the main window.
#pragma once

#include "window/QuickReplaceCommand.h"
#include "window/RowColours.h"
#include "ui/QuickReplaceDialog.h"

#include <QObject>
#include <QPointer>

namespace korvel::ui {

class LineColorsDialog;
class MainWindow;
class ShowMeWindow;

class ToolWindows : public QObject {
    Q_OBJECT
public:
    explicit ToolWindows(MainWindow& main);

    // The windows, once a command opened them.
    LineColorsDialog* lineColors() const;
    ShowMeWindow* showMeWindow() const;

private:
    void optsPick();
    void showMe(const char* item);

    MainWindow& main_;
    QtQuickReplaceDialogs qrDialogs_;
    QuickReplace quickReplace_;
    RowColours rowColours_;
    QPointer<LineColorsDialog> lineColors_;
    QPointer<ShowMeWindow> showMe_;
};

} // namespace korvel::ui
