#include "ui/SearchWindow.h"

#include "archive/Names.h"
#include "ui/MainWindow.h"
#include "ui/TypeIcons.h"
#include "ui/WidgetUnits.h"

#include <QGroupBox>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>

namespace korvel::ui {
namespace {

struct TypeOption {
    const char* name;
    const char* key;
    std::optional<EntryKind> kind;
};

constexpr std::array<TypeOption, 5> TypeOptions{{
    {"searchAll", "files1", std::nullopt},
    {"searchTextures", "files3", EntryKind::Texture},
    {"searchModels", "files2", EntryKind::Model},
    {"searchAni", "files4", EntryKind::Animation},
    {"searchCol", "files5", EntryKind::Collision},
}};

const ResultWindowLayout Layout{
    "search",
    "find0",
    "lastSearch",
    "saveList",
    {"SelectThem", "HighLightFiel", "HClose", "OpenFile", "extractFile", "QuickFile"},
    {"rwerwe", "gap"},
    false,
    {{"sd17", 2000}, {"sd14", 700}},
    3075,
};

QIcon IconOf(std::string_view name) {
    return DrawTypeIcon(TypeIconColour(IconKey(IconKindOfName(name))));
}

} // namespace

SearchWindow::SearchWindow(MainWindow& main) : ResultWindow(main, Layout) {
    for (std::size_t i = 0; i < TypeOptions.size(); ++i) {
        types_[i] = new QRadioButton(
            QString::fromStdString(main_.editor().text(TypeOptions[i].key)), frame_);
        types_[i]->setObjectName(QString::fromLatin1(TypeOptions[i].name));
        frame_->layout()->addWidget(types_[i]);
    }
    types_[0]->setChecked(true);
    // The options are made after the buttons below them; Tab goes down the
    // right-hand column as it is laid out.
    ChainTabOrder({searchText(), findIt(), results(), types_[0], types_[1], types_[2], types_[3],
                   types_[4], findChild<QWidget*>(QLatin1String(Layout.saveButton)),
                   findChild<QWidget*>(QStringLiteral("closeSearch"))});
    AddCloseKeys(*this);
    fitToContents();
}

void SearchWindow::relabel() {
    ResultWindow::relabel();
    for (std::size_t i = 0; i < TypeOptions.size(); ++i) {
        types_[i]->setText(QString::fromStdString(main_.editor().text(TypeOptions[i].key)));
    }
}

std::optional<EntryKind> SearchWindow::kind() const {
    for (std::size_t i = 0; i < TypeOptions.size(); ++i) {
        if (types_[i]->isChecked()) {
            return TypeOptions[i].kind;
        }
    }
    return std::nullopt;
}

void SearchWindow::search() {
    found_ = SearchArchive(main_.editor(), searchText()->text().toStdString(), kind());
    std::vector<QStringList> rows;
    std::vector<EntryRef> entries;
    for (const FoundEntry& entry : *found_) {
        rows.push_back({QString::fromStdString(Cp1252ToUtf8(entry.name)),
                        QString::number(static_cast<qulonglong>(entry.row))});
        entries.push_back(entry.entry);
    }
    showResults(rows, std::move(entries));
    for (std::size_t i = 0; i < found_->size(); ++i) {
        results()->topLevelItem(static_cast<int>(i))->setIcon(0, IconOf((*found_)[i].name));
    }
    if (found_->empty()) {
        // The placeholder gets its ball by the same rule as the names.
        results()->topLevelItem(0)->setIcon(0, IconOf(main_.editor().text("sd2")));
    }
    searchText()->selectAll();
}

void SearchWindow::save() {
    SaveFoundEntries(main_.editor(), found_);
}

} // namespace korvel::ui
