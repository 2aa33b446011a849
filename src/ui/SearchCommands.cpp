#include "ui/SearchCommands.h"

#include "ui/MainWindow.h"
#include "ui/SearchFilesWindow.h"
#include "ui/SearchWindow.h"
#include "window/ReportCommands.h"

namespace korvel::ui {
namespace {

// Opening again brings the open window forward instead of a second one.
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
    Editor& editor = main.editor();
    main.setCommand("EditFind", [this] { Open(main_, search_); });
    main.setCommand("EditFindIn", [this] { Open(main_, searchFiles_); });
    main.setCommand("ComCheck", [&editor] { CheckArchiveAsking(editor); });
    main.setCommand("EditSave", [&editor] { SaveTextReportAskingPath(editor); });
    main.setCommand("EditSaveHtml", [&editor] { SaveHtmlReportAskingPath(editor); });
}

SearchWindow* SearchCommands::searchWindow() const {
    return search_;
}

SearchFilesWindow* SearchCommands::searchFilesWindow() const {
    return searchFiles_;
}

} // namespace korvel::ui
