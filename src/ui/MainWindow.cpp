#include "ui/MainWindow.h"
#include "ui/WidgetUnits.h"

#include "archive/NameFilter.h"
#include "platform/Folders.h"
#include "ui/AboutBox.h"
#include "ui/AppIcon.h"
#include "ui/ArchiveView.h"
#include "ui/EntryDrag.h"
#include "ui/EntryModel.h"
#include "ui/PreviewPane.h"
#include "ui/QtTranslations.h"
#include "ui/SearchCommands.h"
#include "ui/ToolWindows.h"
#include "window/MenuTree.h"
#include "window/RowColours.h"

#include <algorithm>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QComboBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>

#include <array>
#include <cmath>
#include <optional>

namespace korvel::ui {
namespace {

// Stripes and rows are 255 twips high plus one screen pixel.
constexpr int RowHeightTwips = 255;

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// A caption that is data (a path, a language's name) is plain text: an
// ampersand in it must not become a mnemonic.
QString Caption(const std::string& text) {
    return Q(text).replace('&', QStringLiteral("&&"));
}

// Alt pressed and released on its own opens the menu bar, as F10 does. Qt's
// menu bar does this itself only under styles that ask for it; this filter
// stands in under the others. Any other key or a click in between (Alt+F,
// Alt+drag) cancels it.
class AltKeyMenuOpener : public QObject {
public:
    AltKeyMenuOpener(QMainWindow& window, std::function<void()> open)
        : QObject(&window), window_(window), open_(std::move(open)) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto type = event->type();
        if (type == QEvent::KeyPress || type == QEvent::KeyRelease) {
            const auto* key = static_cast<QKeyEvent*>(event);
            const bool alt = key->key() == Qt::Key_Alt;
            if (type == QEvent::KeyPress) {
                armed_ = alt && !key->isAutoRepeat() && ownWindow(watched);
            } else if (alt && armed_ && !key->isAutoRepeat()) {
                armed_ = false;
                open_();
                return true;
            }
        } else if (type == QEvent::MouseButtonPress || type == QEvent::FocusOut) {
            armed_ = false;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    bool ownWindow(QObject* watched) const {
        auto* widget = qobject_cast<QWidget*>(watched);
        return widget != nullptr && widget->window() == &window_;
    }

    QMainWindow& window_;
    std::function<void()> open_;
    bool armed_ = false;
};
// The filter's type chooser: every entry, or one of the kinds Select all and
// Show me offer, under the same captions.
struct FilterKind {
    std::optional<EntryKind> kind;
    std::string_view textKey;
};
constexpr std::array<FilterKind, 6> FilterKinds = {{
    {std::nullopt, "filterAll"},
    {EntryKind::Model, "files2"},
    {EntryKind::Texture, "files3"},
    {EntryKind::Animation, "files4"},
    {EntryKind::Collision, "files5"},
    {EntryKind::Other, "files7"},
}};

// The window's designed size, in device-independent pixels.
constexpr QSize DesignedWindowSize(420, 560);
// What a window manager's frame and title bar take around the window.
constexpr QSize FrameAllowance(16, 48);

// How an item's caption reaches the screen. Texts from lang.ini carry their
// mnemonic; the others (recent paths, the home page) are plain text, and a
// language's section name is underlined at its first letter.
enum class CaptionForm { Mnemonic, Plain, FirstLetter };
const char* const CaptionFormProperty = "korvelCaptionForm";

CaptionForm FormOf(const MenuNode& node) {
    if (!node.textKey.empty()) {
        return CaptionForm::Mnemonic;
    }
    return node.name.starts_with("lang") ? CaptionForm::FirstLetter : CaptionForm::Plain;
}

QString Displayed(CaptionForm form, const std::string& caption) {
    switch (form) {
    case CaptionForm::Mnemonic:
        return Q(caption);
    case CaptionForm::FirstLetter:
        return QStringLiteral("&") + Caption(caption);
    case CaptionForm::Plain:
        break;
    }
    return Caption(caption);
}

} // namespace

MainWindow::MainWindow(Settings& settings, QWidget* parent)
    : QMainWindow(parent), desktop_(this), editor_(desktop_, settings, EditorFolder()),
      commands_(editor_, *this), dialogs_(settings, this), entries_(editor_, dialogs_),
      quickReplaceDialogs_(settings, this), quickReplace_(editor_, entries_, quickReplaceDialogs_) {
    setObjectName(QStringLiteral("Main"));
    setWindowTitle(QStringLiteral(" Korvel"));
    // The desktop file's name lets a Wayland compositor find the icon and
    // name of the installed desktop entry for this window.
    QGuiApplication::setDesktopFileName(QStringLiteral("korvel"));
    QGuiApplication::setWindowIcon(ApplicationIcon());
    setWindowIcon(QGuiApplication::windowIcon());

    view_ = new ArchiveView(this);
    model_ = new EntryModel(
        editor_.table(), [this] { return Q(editor_.text("ready")); }, this);
    view_->setModel(model_->viewModel());
    model_->attachSelectionModel(view_->selectionModel());
    view_->setDragData([this] { return exportSelectedFiles(); });
    view_->verticalHeader()->setDefaultSectionSize(twipsToPixelsY(RowHeightTwips) + 1);
    view_->verticalHeader()->setMinimumSectionSize(1);

    progress_ = new QProgressBar(this);
    progress_->setObjectName(QStringLiteral("PB1"));
    progress_->setTextVisible(false);
    progress_->setMaximumHeight(12);
    progress_->hide();

    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addLayout(buildFilterBar());
    layout->addWidget(view_, 1);
    layout->addWidget(progress_);
    setCentralWidget(central);

    auto* bar = new QStatusBar(this);
    bar->setObjectName(QStringLiteral("SB"));
    panel1_ = new QLabel(bar);
    panel1_->setObjectName(QStringLiteral("SBPanel1"));
    panel2_ = new QLabel(bar);
    panel2_->setObjectName(QStringLiteral("SBPanel2"));
    summary_ = new QLabel(bar);
    summary_->setObjectName(QStringLiteral("SBSummary"));
    // The last command's message and the summary share the width the window
    // has: each gets its whole text while both fit, the message takes what is
    // left over, and when the window is too narrow the summary gives way down
    // to the message's third (resizeEvent). Neither may
    // widen the window past the screen (long German texts at scale 2 did),
    // and each shows its whole text as a tooltip when cut.
    for (QLabel* panel : {panel1_, summary_}) {
        panel->setMinimumWidth(1);
        panel->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    }
    bar->addWidget(panel1_, 1);
    bar->addWidget(summary_, 0);
    bar->addPermanentWidget(panel2_);
    setStatusBar(bar);
    desktop_.attachStatusBar(bar, panel1_, panel2_, progress_);
    addCancelButton(bar);

    buildPreviewPane();
    tools_ = new ToolWindows(*this);
    finds_ = new SearchCommands(*this);
    for (MenuCommand& command :
         BuildCommandTable({editor_, commands_, entries_, quickReplace_, *this})) {
        handlers_.insert(Q(command.item), std::move(command.run));
    }
    buildMenus();
    connectListSorting();
    editor_.menu().setObserver(
        [this](const std::string& name, const MenuItemState& state) { mirror(name, state); });
    ForEachMenuNode(MainMenuTree(), [this](const MenuNode& node) {
        mirror(node.name, editor_.menu().item(node.name));
    });
    ApplyShortcutScheme(editor_.menu(), settings.StandardShortcuts());

    // A delete of many rows changes the table row by row: the summary is
    // worked out once, when the command is over.
    stateTimer_ = new QTimer(this);
    stateTimer_->setSingleShot(true);
    stateTimer_->setInterval(0);
    connect(stateTimer_, &QTimer::timeout, this, &MainWindow::showArchiveState);
    const auto later = [this] { stateTimer_->start(); };
    connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this, later);
    connect(model_, &QAbstractItemModel::modelReset, this, later);
    connect(model_, &QAbstractItemModel::rowsInserted, this, later);
    connect(model_, &QAbstractItemModel::rowsRemoved, this, later);
    connect(model_, &QAbstractItemModel::dataChanged, this, later);
    // The pane follows the same changes, batched as well: a command that
    // changes many rows reads the entry shown once, when it is over.
    const auto previewLater = [this] { previewTimer_->start(); };
    connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this, previewLater);
    connect(view_->selectionModel(), &QItemSelectionModel::currentChanged, this, previewLater);
    connect(model_, &QAbstractItemModel::modelReset, this, previewLater);
    connect(model_, &QAbstractItemModel::rowsInserted, this, previewLater);
    connect(model_, &QAbstractItemModel::rowsRemoved, this, previewLater);
    connect(model_, &QAbstractItemModel::dataChanged, this, previewLater);

    connect(view_, &ArchiveView::viewRequested, this, [this] { runCommand("EditView"); });
    installMenuKeys();
    // The list is what the keys work on: it has the focus from the start.
    view_->setFocus(Qt::OtherFocusReason);
    connect(view_, &ArchiveView::popupRequested, this,
            [this](const QPoint& at) { menus_.value("MenuEdit")->popup(at); });
    connect(view_, &ArchiveView::filesDropped, this, [this](const QStringList& paths) {
        std::vector<std::string> files;
        for (const QString& path : paths) {
            files.push_back(path.toStdString());
        }
        entries_.AddFileBatch(files);
    });

    placeWindow();
    view_->setFocus();
}

MainWindow::~MainWindow() {
    editor_.menu().setObserver(nullptr);
    // The model listens to the table, which goes away with the editor before
    // Qt deletes the child widgets: take the view and model down first.
    delete view_;
    delete model_;
}

void MainWindow::startup(const std::string& commandLine) {
    // The first start's question already speaks the language korvel.ini
    // starts with, Qt's buttons included.
    editor_.settings().EnsureSettingsFile();
    UseQtTranslations(editor_.settings().ReadSetting("language"));
    commands_.Startup(commandLine);
    // korvel.ini decides, whatever the dock layout restored from it says.
    showPreviewDock(editor_.menu().isChecked("OptPreview"));
    showArchiveState();
}

void MainWindow::showArchiveState() {
    editor_.EnableSelectionCommands();
    setWindowTitle(Q(editor_.WindowTitle()));
    const QString summary = Q(editor_.ArchiveSummary());
    summary_->setText(summary);
    summary_->setToolTip(summary);
    summary_->setVisible(!summary.isEmpty());
}

int MainWindow::twipsToPixelsX(int twips) const {
    return TwipsToPixelsX(*this, twips);
}

int MainWindow::twipsToPixelsY(int twips) const {
    return TwipsToPixelsY(*this, twips);
}

void MainWindow::buildMenus() {
    for (const MenuNode& top : MainMenuTree()) {
        QMenu* menu = menuBar()->addMenu(Q(top.caption));
        menu->setObjectName(Q(top.name));
        menu->menuAction()->setProperty(CaptionFormProperty, static_cast<int>(FormOf(top)));
        menu->menuAction()->setObjectName(Q(top.name));
        menus_.insert(Q(top.name), menu);
        actions_.insert(Q(top.name), menu->menuAction());
        addMenuItems(menu, top.children);
    }
}

void MainWindow::installMenuKeys() {
    auto* f10 = new QShortcut(QKeySequence(Qt::Key_F10), this);
    f10->setObjectName(QStringLiteral("menuBarKey"));
    connect(f10, &QShortcut::activated, this, &MainWindow::openMenuBar);
    if (style()->styleHint(QStyle::SH_MenuBar_AltKeyNavigation, nullptr, menuBar()) == 0) {
        qApp->installEventFilter(new AltKeyMenuOpener(*this, [this] { openMenuBar(); }));
    }
}

void MainWindow::openMenuBar() {
    // The first menu opens with its first item highlighted, so Enter and
    // the arrows act at once, as after Alt and the menu's letter.
    for (QAction* top : menuBar()->actions()) {
        if (top->isVisible() && top->isEnabled()) {
            menuBar()->setActiveAction(top);
            if (QMenu* menu = top->menu()) {
                for (QAction* item : menu->actions()) {
                    if (!item->isSeparator() && item->isVisible() && item->isEnabled()) {
                        menu->setActiveAction(item);
                        break;
                    }
                }
            }
            return;
        }
    }
}

void MainWindow::addMenuItems(QMenu* menu, const std::vector<MenuNode>& nodes) {
    for (const MenuNode& node : nodes) {
        const QString name = Q(node.name);
        if (node.isSeparator()) {
            QAction* gap = menu->addSeparator();
            gap->setObjectName(name);
            actions_.insert(name, gap);
            continue;
        }
        if (node.isSubMenu()) {
            QMenu* sub = menu->addMenu(Displayed(FormOf(node), node.caption));
            sub->setObjectName(name);
            sub->menuAction()->setProperty(CaptionFormProperty, static_cast<int>(FormOf(node)));
            sub->menuAction()->setObjectName(name);
            menus_.insert(name, sub);
            actions_.insert(name, sub->menuAction());
            addMenuItems(sub, node.children);
            continue;
        }
        QAction* item = menu->addAction(Displayed(FormOf(node), node.caption));
        item->setObjectName(name);
        item->setProperty(CaptionFormProperty, static_cast<int>(FormOf(node)));
        item->setCheckable(node.checkable);
        connect(item, &QAction::triggered, this, [this, name] { runCommand(name); });
        actions_.insert(name, item);
    }
}

void MainWindow::mirror(const std::string& name, const MenuItemState& state) {
    QAction* item = actions_.value(Q(name));
    if (item == nullptr || item->isSeparator()) {
        return;
    }
    item->setText(Displayed(static_cast<CaptionForm>(item->property(CaptionFormProperty).toInt()),
                            state.caption));
    // Stored in the portable spelling; the menu shows it in the desktop's
    // own words ("Strg+W" in German) through QKeySequence::NativeText.
    const QKeySequence key(Q(state.shortcut), QKeySequence::PortableText);
    if (item->menu() == nullptr && item->shortcut() != key) {
        item->setShortcut(key);
    }
    item->setEnabled(state.enabled);
    item->setVisible(state.visible);
    if (item->isCheckable()) {
        item->setChecked(state.checked);
    }
    if (name == "OptPreview") {
        showPreviewDock(state.checked);
    }
}

void MainWindow::mirrorChecks() {
    // Qt flips a checkable action before its command runs; the engine's state
    // is the truth, also when the command left it unchanged.
    for (QAction* item : std::as_const(actions_)) {
        if (item->isCheckable()) {
            item->setChecked(editor_.menu().isChecked(item->objectName().toStdString()));
        }
    }
}

void MainWindow::setCommand(const QString& name, std::function<void()> command) {
    if (!handlers_.contains(name)) {
        qFatal("No menu item is named %s", qPrintable(name));
    }
    handlers_.insert(name, std::move(command));
}

void MainWindow::addCancelButton(QStatusBar* bar) {
    auto* cancel = new QPushButton(bar);
    cancel->setObjectName(QStringLiteral("cancelWork"));
    cancel->setFocusPolicy(Qt::NoFocus); // Escape cancels from anywhere
    cancel->hide();
    // At the left, where the space the status text gives up is: the
    // statistics keep their place on the right.
    bar->insertWidget(0, cancel);
    desktop_.attachCancelButton(cancel, [this, cancel] {
        cancel->setText(Q(editor_.text("workCancel")));
        cancel->setToolTip(Q(editor_.text("workCancelTip")));
    });
}

void MainWindow::runCommand(const QString& name) {
    // Long work turns the event loop; nothing starts inside it.
    if (desktop_.workRunning()) {
        return;
    }
    const auto found = handlers_.constFind(name);
    if (found != handlers_.constEnd() && *found) {
        (*found)();
    }
    mirrorChecks();
    showArchiveState();
}

void MainWindow::CloseMainWindow() {
    close();
}

void MainWindow::ShowAboutBox() {
    AboutBox box(editor_.settings(), this);
    box.exec();
}

void MainWindow::OpenFindWindow() {
    finds_->openFindWindow();
}

void MainWindow::OpenFindInFilesWindow() {
    finds_->openFindInFilesWindow();
}

void MainWindow::OpenLineColoursDialog() {
    tools_->openLineColours();
}

void MainWindow::OpenScanOptionsDialog() {
    dialogs_.ShowScanSettings();
}

void MainWindow::ShowEntryList(ShowMeList list) {
    tools_->showEntryList(std::move(list));
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!shutDown_) {
        shutDown_ = true;
        rememberWindowPlace();
        commands_.Shutdown();
        exports_.RemoveExported();
    }
    event->accept();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    // However narrow the window, a third of the status bar stays the last
    // command's message.
    panel1_->setMinimumWidth(std::max(1, width() / 3));
    commands_.Resized();
}

void MainWindow::ClearColumnHeaders() {
    // The columns come back in another language with the widths they had.
    if (model_->columnCount() > 0) {
        columnWidths_ = {view_->nameFloor()};
        for (int column = 1; column < model_->columnCount(); ++column) {
            columnWidths_.push_back(view_->columnWidth(column));
        }
    }
    view_->clearHeaderSort();
    model_->clearColumns();
    retranslateFilterBar();
}

void MainWindow::AddColumnHeader(const std::string& text, int widthTwips) {
    model_->addColumn(Q(text));
    const int column = model_->columnCount() - 1;
    const auto kept = static_cast<std::size_t>(column);
    const int width =
        kept < columnWidths_.size() ? columnWidths_[kept] : twipsToPixelsX(widthTwips);
    if (column == 0) {
        view_->setNameFloor(width);
    } else {
        view_->setColumnWidth(column, width);
    }
}

QHBoxLayout* MainWindow::buildFilterBar() {
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(2, 2, 2, 0);
    filterBox_ = new QLineEdit(this);
    filterBox_->setObjectName(QStringLiteral("FilterBox"));
    filterBox_->setClearButtonEnabled(true);
    filterKind_ = new QComboBox(this);
    filterKind_->setObjectName(QStringLiteral("FilterKind"));
    for (std::size_t k = 0; k < FilterKinds.size(); ++k) {
        filterKind_->addItem(QString());
    }
    bar->addWidget(filterBox_, 1);
    bar->addWidget(filterKind_);
    setTabOrder(filterBox_, filterKind_);
    setTabOrder(filterKind_, view_);
    retranslateFilterBar();

    connect(filterBox_, &QLineEdit::textChanged, this, &MainWindow::applyFilter);
    connect(filterKind_, &QComboBox::currentIndexChanged, this, &MainWindow::applyFilter);
    const auto focusFilter = [this] {
        filterBox_->setFocus(Qt::ShortcutFocusReason);
        filterBox_->selectAll();
    };
    auto* ctrlL = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_L), this);
    connect(ctrlL, &QShortcut::activated, this, focusFilter);
    // "/" starts a filter from the list, as in file managers; elsewhere it is
    // a character like any other.
    auto* slash = new QShortcut(QKeySequence(Qt::Key_Slash), view_);
    slash->setContext(Qt::WidgetShortcut);
    connect(slash, &QShortcut::activated, this, focusFilter);
    // Escape empties the box; in an empty box it goes back to the list.
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), filterBox_);
    escape->setContext(Qt::WidgetShortcut);
    connect(escape, &QShortcut::activated, this, [this] {
        if (filterBox_->text().isEmpty()) {
            view_->setFocus(Qt::ShortcutFocusReason);
        } else {
            filterBox_->clear();
        }
    });
    // Down goes on to the rows the filter left, with the first one current
    // when none is, so the keyboard alone can filter and then pick.
    auto* down = new QShortcut(QKeySequence(Qt::Key_Down), filterBox_);
    down->setContext(Qt::WidgetShortcut);
    connect(down, &QShortcut::activated, this, [this] {
        view_->setFocus(Qt::ShortcutFocusReason);
        if (!view_->currentIndex().isValid() && view_->model()->rowCount() > 0) {
            view_->setCurrentIndex(view_->model()->index(0, 0));
        }
    });
    return bar;
}

void MainWindow::retranslateFilterBar() {
    filterBox_->setPlaceholderText(Q(editor_.text("filterHint")));
    filterBox_->setToolTip(filterBox_->placeholderText());
    filterKind_->setToolTip(Q(editor_.text("filterKind")));
    for (std::size_t k = 0; k < FilterKinds.size(); ++k) {
        filterKind_->setItemText(static_cast<int>(k), Q(editor_.text(FilterKinds[k].textKey)));
    }
}

void MainWindow::applyFilter() {
    const int chosen = std::max(0, filterKind_->currentIndex());
    model_->setFilter(NameFilter(filterBox_->text().toStdString(),
                                 FilterKinds[static_cast<std::size_t>(chosen)].kind));
    const EntryTable& table = editor_.table();
    if (!table.filtering()) {
        editor_.desktop().SetStatus(editor_.text("filterOff"));
        return;
    }
    editor_.desktop().SetStatus(editor_.text("filterShown") + " " +
                                std::to_string(table.shownCount()) + " " +
                                editor_.text("filterOf") + " " + std::to_string(table.size()));
}

void MainWindow::connectListSorting() {
    for (const QString& item : {QStringLiteral("SortOffset"), QStringLiteral("SortName")}) {
        connect(actions_.value(item), &QAction::triggered, view_, &ArchiveView::clearHeaderSort);
    }
}

QMimeData* MainWindow::exportSelectedFiles() {
    return EntryFilesMimeData(exports_.ExportSelected());
}

void MainWindow::CopySelectedAsFiles() {
    if (editor_.table().selectedCount() == 0) {
        editor_.desktop().SetStatus(editor_.text("noneSel"));
        return;
    }
    const std::vector<std::filesystem::path> files = exports_.ExportSelected();
    if (QMimeData* data = EntryFilesMimeData(files)) {
        QGuiApplication::clipboard()->setMimeData(data);
        editor_.desktop().SetStatus(editor_.text("copiedFiles") + " " +
                                    std::to_string(files.size()));
    }
}

void MainWindow::placeWindow() {
    Settings& settings = editor_.settings();
    columnWidths_ = settings.ListColumnWidths().value_or(std::vector<int>{});
    const std::optional<std::string> stored = settings.WindowPlace();
    // The docks' layout (the preview pane's side and width); whether the
    // pane shows is korvel.ini's previewPane, applied at start-up.
    restoreState(
        QByteArray::fromBase64(QByteArray::fromStdString(settings.ReadSetting("windowDocks"))));
    if (stored && restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(*stored)))) {
        // A place saved on a screen that is gone, or at another scale, may
        // leave the window partly out of sight: then the default is better.
        for (const QScreen* screen : QGuiApplication::screens()) {
            if (screen->availableGeometry().contains(geometry())) {
                return;
            }
        }
        setWindowState(windowState() & ~Qt::WindowMaximized);
    }
    const QScreen* screen =
        this->screen() != nullptr ? this->screen() : QGuiApplication::primaryScreen();
    const QRect room = screen->availableGeometry();
    // The designed size, as far as the screen has room for it and the frame.
    const QSize size = DesignedWindowSize.boundedTo(room.size() - FrameAllowance);
    resize(size);
    move(room.center() - QPoint(size.width() / 2, size.height() / 2));
}

void MainWindow::rememberWindowPlace() {
    Settings& settings = editor_.settings();
    settings.StoreWindowPlace(saveGeometry().toBase64().toStdString());
    settings.WriteSetting(saveState().toBase64().toStdString(), "windowDocks");
    if (model_->columnCount() > 0) {
        std::vector<int> widths = {view_->nameFloor()};
        for (int column = 1; column < model_->columnCount(); ++column) {
            widths.push_back(view_->columnWidth(column));
        }
        settings.StoreListColumnWidths(widths);
    }
}

void MainWindow::LanguageChanged() {
    UseQtTranslations(editor_.settings().ReadSetting("language"));
    previewDock_->setWindowTitle(Q(editor_.text("prvTitle")));
    preview_->relabel();
    tools_->relabel();
    finds_->relabel();
    dialogs_.relabel();
}

void MainWindow::buildPreviewPane() {
    previewDock_ = new PreviewDock(this);
    previewDock_->setWindowTitle(Q(editor_.text("prvTitle")));
    preview_ = new PreviewPane(
        editor_, previewExports_,
        [this]() -> std::optional<std::size_t> {
            const QModelIndex current = view_->currentIndex();
            return current.isValid() ? model_->tableRow(current.row()) : std::nullopt;
        },
        [this](const Entry& entry, const std::string& texture) {
            return EntryFilesMimeData(exports_.ExportTexture(entry, texture));
        },
        previewDock_);
    previewDock_->setWidget(preview_);
    addDockWidget(Qt::RightDockWidgetArea, previewDock_);
    previewDock_->hide();
    previewTimer_ = new QTimer(this);
    previewTimer_->setSingleShot(true);
    previewTimer_->setInterval(0);
    connect(previewTimer_, &QTimer::timeout, this, [this] {
        // A hidden pane reads nothing; while long work changes the archive
        // it reads once the work is done, not after every file.
        if (desktop_.workRunning()) {
            previewTimer_->start(250);
        } else if (editor_.menu().isChecked("OptPreview")) {
            previewTimer_->setInterval(0);
            preview_->refresh();
        }
    });
    // The dock's close button is the person unticking the menu item.
    connect(previewDock_, &PreviewDock::closedByPerson, this, [this] {
        if (!shutDown_ && editor_.menu().isChecked("OptPreview")) {
            runCommand("OptPreview");
        }
    });
}

void MainWindow::showPreviewDock(bool shown) {
    if (previewDock_ == nullptr || shown == !previewDock_->isHidden()) {
        return;
    }
    if (!shown) {
        previewDock_->hide();
        preview_->clear();
        // The room the pane was given goes again with it.
        if (grownForPreview_ > 0 && !isMaximized() && !isFullScreen()) {
            resize(std::max(width() - grownForPreview_, minimumSizeHint().width()), height());
        }
        grownForPreview_ = 0;
        return;
    }
    previewDock_->show();
    previewTimer_->start();
    // At start-up the window takes its size when it is first shown.
    QTimer::singleShot(0, this, [this] { widenForPreview(); });
}

void MainWindow::widenForPreview() {
    // The designed window is narrow: it grows by the pane's width, as far as
    // the screen has room, instead of squeezing the list.
    constexpr int PaneWidth = 340;
    if (previewDock_->isHidden() || isMaximized() || isFullScreen() || previewDock_->isFloating() ||
        centralWidget()->width() >= 2 * PaneWidth) {
        return;
    }
    const QScreen* where = screen() != nullptr ? screen() : QGuiApplication::primaryScreen();
    const QRect room = where->availableGeometry();
    const int before = width();
    resize(std::min(room.width() - FrameAllowance.width(), before + PaneWidth), height());
    grownForPreview_ = width() - before;
    resizeDocks({previewDock_}, {std::max(grownForPreview_, PaneWidth / 2)}, Qt::Horizontal);
    if (!room.contains(frameGeometry())) {
        move(std::clamp(x(), room.left(),
                        std::max(room.left(), room.right() - frameGeometry().width())),
             y());
    }
}

void MainWindow::SetGridLines(bool shown) {
    view_->setShowGrid(shown);
}

void MainWindow::SetRowStripes(std::optional<std::pair<Rgb, Rgb>> colours) {
    // The desktop's palette, as the theme (light or dark) gives it.
    view_->setPalette(QPalette());
    if (!colours) {
        view_->setAlternatingRowColors(false);
        return;
    }
    view_->setAlternatingRowColors(true);
    if (!RowColoursChosen(editor_.settings())) {
        return; // Base and AlternateBase of the desktop, with its own text colour
    }
    QPalette palette = view_->palette();
    const auto toColour = [](const Rgb& c) { return QColor(c.red, c.green, c.blue); };
    palette.setColor(QPalette::Base, toColour(colours->first));
    palette.setColor(QPalette::AlternateBase, toColour(colours->second));
    palette.setColor(QPalette::Text, toColour(ReadableTextOn(colours->first, colours->second)));
    view_->setPalette(palette);
}

} // namespace korvel::ui
