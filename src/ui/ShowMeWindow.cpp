#include "ui/ShowMeWindow.h"
#include "ui/WidgetUnits.h"

#include "ui/ArchiveView.h"
#include "ui/EntryModel.h"
#include "ui/MainWindow.h"
#include "ui/TypeIcons.h"

#include <QAction>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>

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

    resize(twips(4200), twips(5200));
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
    setWindowTitle(Q(shown_.title));
}

void ShowMeWindow::highlight() {
    if (shown_.placeholder()) {
        return;
    }
    std::vector<std::size_t> numbers;
    for (int i = 0; i < list_->topLevelItemCount(); ++i) {
        if (list_->topLevelItem(i)->isSelected()) {
            numbers.push_back(shown_.rows[static_cast<std::size_t>(i)].number);
        }
    }
    main_.commands().ClearSelection();
    if (const auto last = HighlightShowMeRows(main_.editor().table(), numbers)) {
        main_.archiveView()->scrollTo(main_.model()->index(static_cast<int>(*last), 0));
    }
    main_.activateWindow();
}

void ShowMeWindow::highlightAndRun(const QString& command) {
    // With only the placeholder nothing runs, so nothing acts on whatever
    // the main list had selected before.
    if (shown_.placeholder()) {
        return;
    }
    highlight();
    main_.runCommand(command);
}

void ShowMeWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // A window too small for the margins just squeezes the list.
    const int w = width();
    const int h = height();
    list_->setGeometry(0, 0, std::max(0, w - twips(100)), std::max(0, h - twips(850)));
    const int top = std::max(0, h - twips(805));
    save_->setGeometry(twips(120), top, twips(1455), twips(375));
    close_->setGeometry(twips(2640), top, twips(1455), twips(375));
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
