// The main window's two find windows. Each is a single modeless instance
// owned by the main window; opening it again brings the open one forward.
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

    void openFindWindow();
    void openFindInFilesWindow();
    // The open windows take the texts of the current language.
    void relabel();

    // The windows while they are open.
    SearchWindow* searchWindow() const;
    SearchFilesWindow* searchFilesWindow() const;

private:
    MainWindow& main_;
    QPointer<SearchWindow> search_;
    QPointer<SearchFilesWindow> searchFiles_;
};

} // namespace korvel::ui
