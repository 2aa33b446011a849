// The main window's find windows, the archive check and the reports, plugged
// into their menu items by name. Each find window is a single modeless
// instance owned by the main window.
#pragma once

#include <QObject>
#include <QPointer>

namespace korvel::ui {

class MainWindow;
class SearchFilesWindow;
class SearchWindow;

class SearchCommands : public QObject {
    Q_OBJECT
public:
    explicit SearchCommands(MainWindow& main);

    // The windows while they are open.
    SearchWindow* searchWindow() const;
    SearchFilesWindow* searchFilesWindow() const;

private:
    MainWindow& main_;
    QPointer<SearchWindow> search_;
    QPointer<SearchFilesWindow> searchFiles_;
};

} // namespace korvel::ui
