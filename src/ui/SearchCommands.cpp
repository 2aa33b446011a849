#include "ui/SearchCommands.h"

#include "ui/MainWindow.h"
#include "ui/SearchFilesWindow.h"
#include "ui/SearchWindow.h"
#include "window/ReportCommands.h"

namespace korvel::ui {
namespace {

template <class Window> void Open(MainWindow& main, QPointer<Window>& window) {
    if (window.isNull()) {
        window = new Window(main);
    }
    window->show();
    window->raise();
    window->activateWindow();
}

} // namespace

SearchCommands::SearchCommands(MainWindow& main) : QObject(&main), main_(main) {
    setObjectName(QStringLiteral("searchCommands"));
}

void SearchCommands::openFindWindow() {
    Open(main_, search_);
}

void SearchCommands::openFindInFilesWindow() {
    Open(main_, searchFiles_);
}

void SearchCommands::relabel() {
    if (!search_.isNull()) {
        search_->relabel();
    }
    if (!searchFiles_.isNull()) {
        searchFiles_->relabel();
    }
}

SearchWindow* SearchCommands::searchWindow() const {
    return search_;
}

SearchFilesWindow* SearchCommands::searchFilesWindow() const {
    return searchFiles_;
}

} // namespace korvel::ui
