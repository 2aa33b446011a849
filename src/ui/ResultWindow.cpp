#include "ui/ResultWindow.h"
#include "ui/WidgetUnits.h"

#include "ui/ArchiveView.h"
#include "ui/EntryModel.h"
#include "ui/MainWindow.h"
#include "window/FindCommands.h"

#include <QAction>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <cmath>
#include <memory>

namespace korvel::ui {
namespace {

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// The texts of the pop-up menu's items, in the order of the layout's items.
constexpr std::array<const char*, 6> ItemKeys{"sd10", "sd11", "sd12", "sd13", "menuc2", "menuc3"};

} // namespace

bool HighlightInMainList(MainWindow& main, const std::vector<EntryRef>& entries) {
    main.commands().ClearSelection();
    const auto last = SelectResultEntries(main.editor(), entries);
    if (last) {
        main.archiveView()->scrollTo(main.model()->index(static_cast<int>(*last), 0));
    }
    main.activateWindow();
    return last.has_value();
}

void HighlightAndRun(MainWindow& main, const std::vector<EntryRef>& entries,
                     const QString& command) {
    if (HighlightInMainList(main, entries)) {
        main.runCommand(command);
    }
}

void ClearOnNewReading(MainWindow& main, QObject* owner, std::function<void()> clear) {
    // The model resets for every reading of the archive (and for a sort);
    // only a new generation of the table means the entries are others.
    auto shown = std::make_shared<std::uint64_t>(main.editor().table().generation());
    QObject::connect(main.model(), &QAbstractItemModel::modelReset, owner,
                     [&main, shown, clear = std::move(clear)] {
                         const std::uint64_t now = main.editor().table().generation();
                         if (now != *shown) {
                             *shown = now;
                             clear();
                         }
                     });
}

ResultWindow::ResultWindow(MainWindow& main, const ResultWindowLayout& layout)
    : QWidget(&main, Qt::Window), main_(main), layout_(layout),
      guardEveryItem_(layout.guardEveryItem) {
    setObjectName(QString::fromLatin1(layout.form));
    // Closing discards the window; the next opening builds it afresh.
    setAttribute(Qt::WA_DeleteOnClose);
    Editor& editor = main_.editor();
    const auto text = [&editor](const char* key) { return Q(editor.text(key)); };
    setWindowTitle(QStringLiteral(" ") + text(layout.titleKey));

    auto* label1 = new QLabel(text("find1"), this);
    label1->setObjectName(QStringLiteral("Label1"));
    searchText_ = new QLineEdit(Q(editor.settings().ReadSetting(layout.lastTextKey)), this);
    searchText_->setObjectName(QStringLiteral("searchText"));
    searchText_->installEventFilter(this);
    label1->setBuddy(searchText_);
    findIt_ = new QPushButton(text("sd9"), this);
    findIt_->setObjectName(QStringLiteral("findIt"));
    findIt_->setEnabled(!searchText_->text().isEmpty());

    frame_ = new QGroupBox(text("find2"), this);
    frame_->setObjectName(QStringLiteral("Frame1"));
    new QVBoxLayout(frame_);

    results_ = new QTreeWidget(this);
    results_->setObjectName(QStringLiteral("searchResults"));
    results_->setRootIsDecorated(false);
    results_->setUniformRowHeights(true);
    results_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    results_->setContextMenuPolicy(Qt::CustomContextMenu);
    results_->installEventFilter(this);
    QStringList headers;
    for (const auto& [key, width] : layout.columns) {
        headers << text(key);
    }
    results_->setHeaderLabels(headers);
    for (std::size_t i = 0; i < layout.columns.size(); ++i) {
        results_->setColumnWidth(static_cast<int>(i), twips(layout.columns[i].second));
    }
    results_->setMinimumWidth(twips(layout.listWidthTwips));

    count_ = new QLabel(text("find5"), this);
    count_->setObjectName(QStringLiteral("Label2"));
    auto* save = new QPushButton(text("find3"), this);
    save->setObjectName(QString::fromLatin1(layout.saveButton));
    auto* close = new QPushButton(text("find4"), this);
    close->setObjectName(QStringLiteral("closeSearch"));

    options_ = new QMenu(this);
    options_->setObjectName(QStringLiteral("options"));
    std::array<QAction*, 6> items{};
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i == 1 || i == 3) {
            options_->addSeparator()->setObjectName(QString::fromLatin1(layout.gaps[i / 2]));
        }
        items[i] = options_->addAction(QString());
        items[i]->setObjectName(QString::fromLatin1(layout.items[i]));
    }
    for (std::size_t i = 0; i < items.size(); ++i) {
        items[i]->setText(text(ItemKeys[i]));
    }

    // Search box and button above, the list with the options and buttons
    // beside it, the count below.
    auto* grid = new QGridLayout(this);
    const int margin = twips(120);
    grid->setContentsMargins(margin, margin / 2, margin, margin / 2);
    grid->addWidget(label1, 0, 0);
    grid->addWidget(searchText_, 1, 0);
    grid->addWidget(findIt_, 1, 1);
    grid->addWidget(results_, 2, 0);
    auto* side = new QVBoxLayout;
    side->addWidget(frame_);
    side->addStretch(1);
    side->addWidget(save);
    side->addWidget(close);
    grid->addLayout(side, 2, 1);
    bottom_ = new QHBoxLayout;
    bottom_->addWidget(count_, 1);
    grid->addLayout(bottom_, 3, 0, 1, 2);
    grid->setRowStretch(2, 1);

    connect(searchText_, &QLineEdit::textChanged, this,
            [this](const QString& now) { findIt_->setEnabled(!now.isEmpty()); });
    connect(searchText_, &QLineEdit::returnPressed, this, [this] { search(); });
    connect(findIt_, &QPushButton::clicked, this, [this] { search(); });
    connect(results_, &QTreeWidget::itemDoubleClicked, this, [this] { highlight(); });
    connect(results_, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        if (!results_->selectedItems().isEmpty()) {
            options_->popup(results_->viewport()->mapToGlobal(at));
        }
    });
    connect(items[0], &QAction::triggered, results_, &QTreeWidget::selectAll);
    connect(items[1], &QAction::triggered, this, [this] { act(guardEveryItem_, {}, false); });
    connect(items[2], &QAction::triggered, this, [this] { act(true, {}, true); });
    connect(items[3], &QAction::triggered, this,
            [this] { act(guardEveryItem_, QStringLiteral("EditView"), false); });
    connect(items[4], &QAction::triggered, this,
            [this] { act(true, QStringLiteral("EditExtract"), false); });
    connect(items[5], &QAction::triggered, this,
            [this] { act(true, QStringLiteral("EditQuick"), false); });
    connect(save, &QPushButton::clicked, this, [this] { this->save(); });
    ClearOnNewReading(main_, this, [this] { clearResults(); });
    connect(close, &QPushButton::clicked, this, &QWidget::close);
}

void ResultWindow::relabel() {
    Editor& editor = main_.editor();
    const auto text = [&editor](const char* key) { return Q(editor.text(key)); };
    setWindowTitle(QStringLiteral(" ") + Q(editor.settings().LookupPlainText(layout_.titleKey)));
    findChild<QLabel*>(QStringLiteral("Label1"))->setText(text("find1"));
    findIt_->setText(text("sd9"));
    frame_->setTitle(text("find2"));
    findChild<QPushButton*>(QString::fromLatin1(layout_.saveButton))->setText(text("find3"));
    findChild<QPushButton*>(QStringLiteral("closeSearch"))->setText(text("find4"));
    QStringList headers;
    for (const auto& [key, width] : layout_.columns) {
        headers << text(key);
    }
    results_->setHeaderLabels(headers);
    for (std::size_t i = 0; i < ItemKeys.size(); ++i) {
        options_->findChild<QAction*>(QString::fromLatin1(layout_.items[i]))
            ->setText(text(ItemKeys[i]));
    }
    if (results_->topLevelItemCount() == 0) {
        count_->setText(text("find5"));
        return;
    }
    count_->setText(Q(FoundCountText(editor, entries_.size())));
    if (!showsResults()) {
        results_->topLevelItem(0)->setText(0, text("sd2"));
    }
}

void ResultWindow::fitToContents() {
    resize(sizeHint().width(), std::max(sizeHint().height(), twips(4600)));
}

int ResultWindow::twips(int value) const {
    return TwipsToPixelsX(*this, value);
}

void ResultWindow::showResults(const std::vector<QStringList>& rows,
                               std::vector<EntryRef> entries) {
    entries_ = std::move(entries);
    results_->clear();
    QList<QTreeWidgetItem*> items;
    for (const QStringList& row : rows) {
        items << new QTreeWidgetItem(row);
    }
    if (entries_.empty()) {
        items << new QTreeWidgetItem(QStringList{Q(main_.editor().text("sd2"))});
    }
    results_->addTopLevelItems(items);
    count_->setText(Q(FoundCountText(main_.editor(), entries_.size())));
}

void ResultWindow::clearResults() {
    // As before the first search: no rows, nothing to save, nothing to act on.
    entries_.clear();
    results_->clear();
    count_->setText(Q(main_.editor().text("find5")));
    forgetResults();
}

bool ResultWindow::highlight() {
    if (!showsResults()) {
        return false;
    }
    std::vector<EntryRef> chosen;
    for (int i = 0; i < results_->topLevelItemCount(); ++i) {
        if (results_->topLevelItem(i)->isSelected()) {
            chosen.push_back(entries_[static_cast<std::size_t>(i)]);
        }
    }
    return HighlightInMainList(main_, chosen);
}

void ResultWindow::act(bool guarded, const QString& command, bool closeAfter) {
    if (guarded && !showsResults()) {
        return;
    }
    // Deselecting comes first even for the placeholder, so an unguarded item
    // then finds nothing selected to act on.
    main_.commands().ClearSelection();
    // A command runs only on entries the results chose: with every chosen
    // one gone it would act on nothing the person picked.
    if (highlight() && !command.isEmpty()) {
        main_.runCommand(command);
    }
    if (closeAfter) {
        close();
    }
}

bool ResultWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == searchText_ && event->type() == QEvent::FocusIn) {
        // After the click that gave the focus has placed the cursor.
        QTimer::singleShot(0, searchText_, &QLineEdit::selectAll);
    }
    if (watched == results_ && event->type() == QEvent::KeyPress) {
        if (IsEnterKey(*static_cast<QKeyEvent*>(event))) {
            highlight();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace korvel::ui
