#include "ui/ShowMeWindow.h"
#include "ui/WidgetUnits.h"

#include "ui/ArchiveView.h"
#include "ui/EntryModel.h"
#include "ui/MainWindow.h"
#include "ui/ResultWindow.h"
#include "ui/TypeIcons.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

#include <cmath>

namespace korvel::ui {
namespace {

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

QAction* MenuItem(QMenu* menu, const char* name) {
    QAction* action = menu->addAction(QString());
    action->setObjectName(QString::fromLatin1(name));
    return action;
}

} // namespace

ShowMeWindow::ShowMeWindow(MainWindow& main) : QWidget(&main, Qt::Window), main_(main) {
    setObjectName(QStringLiteral("showTheseFiles"));
    setWindowTitle(QStringLiteral(" ") + Q(main_.editor().settings().LookupPlainText("menub9")));
    const Editor& editor = main_.editor();

    list_ = new QTreeWidget(this);
    list_->setObjectName(QStringLiteral("fileList"));
    list_->setRootIsDecorated(false);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setHeaderLabels({Q(editor.text("sd17")), Q(editor.text("sd15"))});
    list_->setColumnWidth(0, twips(2500));
    list_->setColumnWidth(1, twips(1300));
    // The names take the room the window gains; the row numbers keep theirs.
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list_->setContextMenuPolicy(Qt::CustomContextMenu);
    list_->installEventFilter(this);

    save_ = new QPushButton(Q(editor.text("find6")), this);
    save_->setObjectName(QStringLiteral("saveList"));
    close_ = new QPushButton(Q(editor.text("find4")), this);
    close_->setObjectName(QStringLiteral("listClose"));

    options_ = new QMenu(this);
    options_->setObjectName(QStringLiteral("options"));
    // The items' texts come from relabel().
    QAction* selectAll = MenuItem(options_, "SelectTheMall");
    options_->addSeparator();
    QAction* highlightItem = MenuItem(options_, "HighLightFiel");
    QAction* highlightClose = MenuItem(options_, "HClose");
    options_->addSeparator();
    QAction* open = MenuItem(options_, "OpenFile");
    QAction* extract = MenuItem(options_, "extractFile");
    QAction* quick = MenuItem(options_, "OutQuick");
    relabel();

    connect(selectAll, &QAction::triggered, list_, &QTreeWidget::selectAll);
    connect(highlightItem, &QAction::triggered, this, [this] { highlight(); });
    connect(highlightClose, &QAction::triggered, this, [this] {
        highlight();
        close();
    });
    connect(open, &QAction::triggered, this, [this] { highlightAndRun("EditView"); });
    connect(extract, &QAction::triggered, this, [this] { highlightAndRun("EditExtract"); });
    connect(quick, &QAction::triggered, this, [this] { highlightAndRun("EditQuick"); });
    connect(list_, &QTreeWidget::itemDoubleClicked, this, [this] { highlight(); });
    connect(list_, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        if (!list_->selectedItems().isEmpty()) {
            options_->popup(list_->viewport()->mapToGlobal(at));
        }
    });
    connect(save_, &QPushButton::clicked, this, [this] { SaveShowMeList(main_.editor(), shown_); });
    connect(close_, &QPushButton::clicked, this, &QWidget::close);
    AddCloseKeys(*this);

    // The list is of the archive it was filled from; another reading of the
    // main list empties it.
    ClearOnNewReading(main_, this, [this] {
        shown_.rows.clear();
        list_->clear();
        shown_.titleKey = {}; // a relabel must not bring the old count back
        setWindowTitle(QStringLiteral(" ") +
                       Q(main_.editor().settings().LookupPlainText("menub9")));
    });

    // The list takes all the room the window gives it; the two buttons stay
    // on a row below, however small or large the window is made.
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(twips(120), twips(30), twips(100), twips(60));
    for (QPushButton* button : {save_, close_}) {
        button->setMinimumWidth(twips(1455));
    }
    buttons->addWidget(save_);
    buttons->addStretch(1);
    buttons->addWidget(close_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(list_, 1);
    layout->addLayout(buttons);
    list_->setMinimumSize(twips(2400), twips(1500));
    resize(std::max(twips(4200), sizeHint().width()), twips(5200));
}

void ShowMeWindow::relabel() {
    const Editor& editor = main_.editor();
    const auto text = [&editor](const char* key) { return Q(editor.text(key)); };
    list_->setHeaderLabels({text("sd17"), text("sd15")});
    save_->setText(text("find6"));
    close_->setText(text("find4"));
    const std::pair<const char*, const char*> items[] = {
        {"SelectTheMall", "sd10"}, {"HighLightFiel", "sd11"}, {"HClose", "sd12"},
        {"OpenFile", "sd13"},      {"extractFile", "menuc2"}, {"OutQuick", "menuc3"},
    };
    for (const auto& [name, key] : items) {
        options_->findChild<QAction*>(QString::fromLatin1(name))->setText(text(key));
    }
    if (!shown_.titleKey.empty()) {
        shown_.title = ShowMeTitle(editor, shown_);
        setWindowTitle(Q(shown_.title));
    }
    if (shown_.placeholder() && list_->topLevelItemCount() == 1) {
        list_->topLevelItem(0)->setText(0, text("sd2"));
    }
}

int ShowMeWindow::twips(int value) const {
    return TwipsToPixelsX(*this, value);
}

void ShowMeWindow::fill(ShowMeList list) {
    shown_ = std::move(list);
    list_->clear();
    for (const ShowMeRow& row : shown_.rows) {
        auto* item =
            new QTreeWidgetItem(list_, {Q(Cp1252ToUtf8(row.name)),
                                        QString::number(static_cast<qulonglong>(row.number))});
        item->setIcon(0, DrawTypeIcon(TypeIconColour(row.icon)));
    }
    if (shown_.placeholder()) {
        auto* item = new QTreeWidgetItem(list_, {Q(main_.editor().text("sd2"))});
        item->setIcon(0, DrawTypeIcon(TypeIconColour("none")));
    }
    setWindowTitle(WithoutMnemonic(Q(shown_.title)));
}

bool ShowMeWindow::highlight() {
    if (shown_.placeholder()) {
        return false;
    }
    std::vector<EntryRef> chosen;
    for (int i = 0; i < list_->topLevelItemCount(); ++i) {
        if (list_->topLevelItem(i)->isSelected()) {
            chosen.push_back(shown_.rows[static_cast<std::size_t>(i)].entry);
        }
    }
    return HighlightInMainList(main_, chosen);
}

void ShowMeWindow::highlightAndRun(const QString& command) {
    // With only the placeholder nothing runs, so nothing acts on whatever
    // the main list had selected before.
    if (shown_.placeholder()) {
        return;
    }
    if (highlight()) {
        main_.runCommand(command);
    }
}

bool ShowMeWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == list_ && event->type() == QEvent::KeyPress) {
        if (IsEnterKey(*static_cast<QKeyEvent*>(event))) {
            highlight();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace korvel::ui
