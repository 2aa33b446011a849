// The main window `Main`: menu bar built from the menu tree, the list
// `Archive`, the status bar `SB` with its two panels and PB1. It owns the
// editor session for the whole run and holds no archive logic: menu items
// call the engine, and the engine's menu state is mirrored into the actions.
#pragma once

#include "ui/QtDesktop.h"
#include "ui/QtEntryDialogs.h"
#include "ui/QuickReplaceDialog.h"
#include "window/CommandTable.h"
#include "window/Editor.h"
#include "window/EntryCommands.h"
#include "window/MainCommands.h"
#include "window/QuickReplaceCommand.h"

#include "window/EntryExport.h"
#include "window/PreviewCommands.h"

#include <QHash>
#include <QMainWindow>

#include <functional>
#include <memory>
#include <string>

class QAction;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QMimeData;
class QMenu;
class QProgressBar;
class QStatusBar;
class QTimer;

namespace korvel {
struct MenuNode;
}

namespace korvel::ui {

class ArchiveView;
class EntryModel;
class PreviewDock;
class PreviewPane;
class SearchCommands;
class ToolWindows;

class MainWindow : public QMainWindow, private ListAppearance, private WindowOnlyCommands {
    Q_OBJECT
public:
    explicit MainWindow(Settings& settings, QWidget* parent = nullptr);
    ~MainWindow() override;

    // The start-up sequence; `commandLine` is the program's arguments joined.
    void startup(const std::string& commandLine);

    // Runs the command of a menu item by its name, as clicking it does.
    void runCommand(const QString& name);
    // Puts another command behind an item the command table binds (tests
    // record what an item would run). An unknown name stops the program: a
    // misspelt item must not quietly do nothing.
    void setCommand(const QString& name, std::function<void()> command);

    QAction* action(const QString& name) const { return actions_.value(name); }
    QMenu* menu(const QString& name) const { return menus_.value(name); }
    Editor& editor() { return editor_; }
    MainCommands& commands() { return commands_; }
    EntryCommands& entryCommands() { return entries_; }
    ToolWindows& toolWindows() { return *tools_; }
    SearchCommands& findWindows() { return *finds_; }
    QtEntryDialogs& entryDialogs() { return dialogs_; }
    QtDesktop& desktop() { return desktop_; }
    ArchiveView* archiveView() const { return view_; }
    EntryModel* model() const { return model_; }
    QLabel* statusPanel() const { return panel1_; }
    QLabel* statsPanel() const { return panel2_; }
    // F10, or Alt on its own: the first menu of the menu bar opens.
    void openMenuBar();
    QLineEdit* filterBox() const { return filterBox_; }
    QComboBox* filterKind() const { return filterKind_; }
    // The selection, the archive's size and what a rebuild would free.
    QLabel* summaryPanel() const { return summary_; }
    PreviewDock* previewDock() const { return previewDock_; }
    PreviewPane* previewPane() const { return preview_; }
    // Title and summary anew from the editor; runs after every command and,
    // batched, after every change of the rows or the selection.
    void showArchiveState();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // ListAppearance
    void ClearColumnHeaders() override;
    void AddColumnHeader(const std::string& text, int widthTwips) override;
    void SetGridLines(bool shown) override;
    void SetRowStripes(std::optional<std::pair<Rgb, Rgb>> colours) override;
    void LanguageChanged() override;

    // WindowOnlyCommands
    void CloseMainWindow() override;
    void ShowAboutBox() override;
    void OpenFindWindow() override;
    void OpenFindInFilesWindow() override;
    void OpenLineColoursDialog() override;
    void OpenScanOptionsDialog() override;
    void ShowEntryList(ShowMeList list) override;
    void CopySelectedAsFiles() override;

    // The Cancel button of long work, beside PB1's status bar panels.
    void addCancelButton(QStatusBar* bar);
    void buildMenus();
    void addMenuItems(QMenu* menu, const std::vector<MenuNode>& nodes);
    void installMenuKeys();
    void mirror(const std::string& name, const MenuItemState& state);
    void mirrorChecks();
    int twipsToPixelsX(int twips) const;
    int twipsToPixelsY(int twips) const;

    // The filter bar above the list, and what its box and chooser do.
    QHBoxLayout* buildFilterBar();
    void retranslateFilterBar();
    void applyFilter();
    // Choosing an order from the Sort menu drops the header's order.
    void connectListSorting();
    // Drags and copies hand the selected entries over as files.
    QMimeData* exportSelectedFiles();
    // The preview pane in its dock, following the list's current entry.
    void buildPreviewPane();
    void showPreviewDock(bool shown);
    void widenForPreview();
    // The window's place and the list's column widths across runs.
    void placeWindow();
    void rememberWindowPlace();

    QtDesktop desktop_;
    Editor editor_;
    MainCommands commands_;
    QtEntryDialogs dialogs_;
    EntryCommands entries_;
    QtQuickReplaceDialogs quickReplaceDialogs_;
    QuickReplace quickReplace_;
    ToolWindows* tools_ = nullptr;
    SearchCommands* finds_ = nullptr;
    ArchiveView* view_ = nullptr;
    EntryModel* model_ = nullptr;
    QLabel* panel1_ = nullptr;
    QLabel* panel2_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QLabel* summary_ = nullptr;
    QTimer* stateTimer_ = nullptr;
    QHash<QString, QAction*> actions_;
    QHash<QString, QMenu*> menus_;
    QHash<QString, std::function<void()>> handlers_;
    bool shutDown_ = false;
    QLineEdit* filterBox_ = nullptr;
    QComboBox* filterKind_ = nullptr;
    // The list's column widths: the person's from the last run, kept while
    // the columns are re-added for another language.
    std::vector<int> columnWidths_;
    EntryExport exports_{editor_};
    PreviewExports previewExports_{editor_};
    PreviewDock* previewDock_ = nullptr;
    PreviewPane* preview_ = nullptr;
    QTimer* previewTimer_ = nullptr;
    int grownForPreview_ = 0; // pixels the window grew when the pane showed
};

} // namespace korvel::ui
