// The main window's tool windows: the row colours dialog and the show-me list.
// Each is a single instance owned by the main window, made the first time it
// is asked for and brought forward after that.
#pragma once

#include "window/RowColours.h"
#include "window/ShowMe.h"

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

    void openLineColours();
    void showEntryList(ShowMeList list);
    // The open windows take the texts of the current language.
    void relabel();

    // The windows, once a command opened them.
    LineColorsDialog* lineColors() const;
    ShowMeWindow* showMeWindow() const;

private:
    MainWindow& main_;
    RowColours rowColours_;
    QPointer<LineColorsDialog> lineColors_;
    QPointer<ShowMeWindow> showMe_;
};

} // namespace korvel::ui
