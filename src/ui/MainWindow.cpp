#include "ui/MainWindow.h"
#include "ui/WidgetUnits.h"

#include "platform/Folders.h"
#include "ui/AboutBox.h"
#include "ui/ArchiveView.h"
#include "ui/EntryModel.h"
#include "ui/QtTranslations.h"
#include "ui/SearchCommands.h"
#include "ui/ToolWindows.h"
#include "window/MenuTree.h"

#include <QAction>
#include <QCloseEvent>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QScreen>
#include <QStatusBar>
#include <QVBoxLayout>

#include <cmath>

namespace korvel::ui {
namespace {

// Stripes and rows are 255 twips high plus one screen pixel.
constexpr int RowHeightTwips = 255;

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// Captions are plain text; an ampersand in a path must not become a mnemonic.
QString Caption(const std::string& text) {
    return Q(text).replace('&', QStringLiteral("&&"));
}

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

    view_ = new ArchiveView(this);
    model_ = new EntryModel(
        editor_.table(), [this] { return Q(editor_.text("ready")); }, this);
    view_->setModel(model_);
    model_->attachSelectionModel(view_->selectionModel());
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
    layout->addWidget(view_, 1);
    layout->addWidget(progress_);
    setCentralWidget(central);

    auto* bar = new QStatusBar(this);
    bar->setObjectName(QStringLiteral("SB"));
    panel1_ = new QLabel(bar);
    panel1_->setObjectName(QStringLiteral("SBPanel1"));
    panel2_ = new QLabel(bar);
    panel2_->setObjectName(QStringLiteral("SBPanel2"));
    panel1_->setMinimumWidth(1);
    bar->addWidget(panel1_, 1);
    bar->addPermanentWidget(panel2_);
    setStatusBar(bar);
    desktop_.attachStatusBar(bar, panel1_, panel2_, progress_);

    tools_ = new ToolWindows(*this);
    finds_ = new SearchCommands(*this);
    for (MenuCommand& command :
         BuildCommandTable({editor_, commands_, entries_, quickReplace_, *this})) {
        handlers_.insert(Q(command.item), std::move(command.run));
    }
    buildMenus();
    editor_.menu().setObserver(
        [this](const std::string& name, const MenuItemState& state) { mirror(name, state); });
    ForEachMenuNode(MainMenuTree(), [this](const MenuNode& node) {
        mirror(node.name, editor_.menu().item(node.name));
    });

    connect(view_, &ArchiveView::viewRequested, this, [this] { runCommand("EditView"); });
    connect(view_, &ArchiveView::popupRequested, this,
            [this](const QPoint& at) { menus_.value("MenuEdit")->popup(at); });
    connect(view_, &ArchiveView::filesDropped, this, [this](const QStringList& paths) {
        std::vector<std::string> files;
        for (const QString& path : paths) {
            files.push_back(path.toStdString());
        }
        entries_.AddFileBatch(files);
    });

    resize(420, 560);
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
        if (!node.shortcut.empty()) {
            item->setShortcut(QKeySequence(Q(node.shortcut), QKeySequence::PortableText));
        }
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
    item->setEnabled(state.enabled);
    item->setVisible(state.visible);
    if (item->isCheckable()) {
        item->setChecked(state.checked);
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

void MainWindow::runCommand(const QString& name) {
    const auto found = handlers_.constFind(name);
    if (found != handlers_.constEnd() && *found) {
        (*found)();
    }
    mirrorChecks();
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
        commands_.Shutdown();
    }
    event->accept();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    commands_.Resized();
}

void MainWindow::ClearColumnHeaders() {
    model_->clearColumns();
}

void MainWindow::AddColumnHeader(const std::string& text, int widthTwips) {
    model_->addColumn(Q(text));
    view_->setColumnWidth(model_->columnCount() - 1, twipsToPixelsX(widthTwips));
}

void MainWindow::LanguageChanged() {
    UseQtTranslations(editor_.settings().ReadSetting("language"));
    tools_->relabel();
    finds_->relabel();
    dialogs_.relabel();
}

void MainWindow::SetGridLines(bool shown) {
    view_->setShowGrid(shown);
}

void MainWindow::SetRowStripes(std::optional<std::pair<Rgb, Rgb>> colours) {
    if (!colours) {
        view_->setAlternatingRowColors(false);
        view_->setPalette(QPalette());
        return;
    }
    QPalette palette = view_->palette();
    const auto toColour = [](const Rgb& c) { return QColor(c.red, c.green, c.blue); };
    palette.setColor(QPalette::Base, toColour(colours->first));
    palette.setColor(QPalette::AlternateBase, toColour(colours->second));
    view_->setPalette(palette);
    view_->setAlternatingRowColors(true);
}

} // namespace korvel::ui
