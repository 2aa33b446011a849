// `showTheseFiles`: the entries of one kind in a list of their own, with
// their row numbers in the main list as they were when it was filled. Every
// action selects those rows in the main list and runs the main window's own
// commands; the window never changes the archive itself.
#pragma once

#include "window/ShowMe.h"

#include <QWidget>

class QMenu;
class QPushButton;
class QTreeWidget;

namespace korvel::ui {

class MainWindow;

class ShowMeWindow : public QWidget {
    Q_OBJECT
public:
    explicit ShowMeWindow(MainWindow& main);

    // Refills the list and the title from a show-me command.
    void fill(ShowMeList list);
    // Every text in the current language; the list stays as it is.
    void relabel();

    QTreeWidget* fileList() const { return list_; }
    QMenu* options() const { return options_; }

    // HighLightFiel and the double click: select the chosen entries in the
    // main list (none for the placeholder) and bring the main window up.
    // True when any was selected.
    bool highlight();
    // OpenFile, extractFile, OutQuick: highlight, then the main command.
    void highlightAndRun(const QString& command);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int twips(int value) const;

    MainWindow& main_;
    ShowMeList shown_;
    QTreeWidget* list_;
    QPushButton* save_;
    QPushButton* close_;
    QMenu* options_;
};

} // namespace korvel::ui
