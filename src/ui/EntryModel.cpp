#include "ui/EntryModel.h"

#include "archive/Format.h"
#include "archive/Names.h"
#include "ui/TypeIcons.h"

namespace korvel::ui {

EntryModel::EntryModel(EntryTable& table, std::function<QString()> placeholderText, QObject* parent)
    : QAbstractTableModel(parent), table_(table), placeholderText_(std::move(placeholderText)) {
    table_.addObserver(this);
    recount();
}

EntryModel::~EntryModel() {
    table_.removeObserver(this);
}

void EntryModel::attachSelectionModel(QItemSelectionModel* selection) {
    selection_ = selection;
    connect(selection_, &QItemSelectionModel::selectionChanged, this, &EntryModel::pullSelection);
    if (!table_.empty()) {
        pushSelection(0, table_.size() - 1);
    }
}

void EntryModel::addColumn(const QString& header) {
    const int column = static_cast<int>(headers_.size());
    beginInsertColumns({}, column, column);
    headers_.append(header);
    endInsertColumns();
}

void EntryModel::clearColumns() {
    if (headers_.isEmpty()) {
        return;
    }
    beginRemoveColumns({}, 0, static_cast<int>(headers_.size()) - 1);
    headers_.clear();
    endRemoveColumns();
}

int EntryModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : shownRows_;
}

int EntryModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(headers_.size());
}

const QIcon& EntryModel::icon(std::string_view key) const {
    auto found = icons_.find(key);
    if (found == icons_.end()) {
        found = icons_.emplace(std::string(key), DrawTypeIcon(TypeIconColour(key))).first;
    }
    return found->second;
}

QVariant EntryModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const int column = index.column();
    if (placeholderShown_) {
        // The placeholder has no sub-items and shows the second type image.
        if (column == 0 && role == Qt::DisplayRole) {
            return placeholderText_ ? placeholderText_() : QString();
        }
        if (column == 0 && role == Qt::DecorationRole) {
            return icon("none");
        }
        return {};
    }
    const auto row = static_cast<std::size_t>(index.row());
    if (row >= table_.size()) {
        return {};
    }
    const Entry& entry = table_[row];
    if (role == Qt::DisplayRole) {
        switch (column) {
        case 0:
            return QString::fromStdString(Cp1252ToUtf8(entry.name));
        case 1:
            return QString::fromStdString(OffsetText(entry.startSector));
        case 2:
            return QString::fromStdString(SizeText(entry.sizeSectors));
        default:
            return {};
        }
    }
    if (role == Qt::DecorationRole && column == 0) {
        return icon(IconKey(entry.type()));
    }
    return {};
}

QVariant EntryModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 &&
        section < headers_.size()) {
        return headers_[section];
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

Qt::ItemFlags EntryModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    // The placeholder stands for an empty list; it cannot be picked.
    return placeholderShown_ ? Qt::ItemIsEnabled : Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

void EntryModel::recount() {
    placeholderShown_ = table_.empty() && table_.placeholder();
    shownRows_ = placeholderShown_ ? 1 : static_cast<int>(table_.size());
}

// The table has already changed when it tells us; rowCount() follows our own
// count so the view sees a consistent model between begin and end.
void EntryModel::rowsInserted(std::size_t first, std::size_t count) {
    if (count == 0) {
        return;
    }
    if (placeholderShown_) {
        tableReset();
        return;
    }
    const int from = static_cast<int>(first);
    beginInsertRows({}, from, from + static_cast<int>(count) - 1);
    recount();
    endInsertRows();
    pushSelection(first, first + count - 1);
}

void EntryModel::rowsRemoved(std::size_t first, std::size_t count) {
    if (count == 0) {
        return;
    }
    if (table_.empty() && table_.placeholder()) {
        tableReset();
        return;
    }
    const int from = static_cast<int>(first);
    beginRemoveRows({}, from, from + static_cast<int>(count) - 1);
    recount();
    endRemoveRows();
}

void EntryModel::rowsChanged(std::size_t first, std::size_t last) {
    if (syncing_ || placeholderShown_ || table_.empty()) {
        return; // the view made this change itself
    }
    last = std::min(last, table_.size() - 1);
    emit dataChanged(index(static_cast<int>(first), 0),
                     index(static_cast<int>(last), std::max(0, columnCount() - 1)));
    pushSelection(first, last);
}

void EntryModel::tableReset() {
    beginResetModel();
    recount();
    endResetModel();
    if (!table_.empty() && table_.selectedCount() > 0) {
        pushSelection(0, table_.size() - 1);
    }
}

void EntryModel::pushSelection(std::size_t first, std::size_t last) {
    if (selection_ == nullptr || placeholderShown_ || table_.empty() || columnCount() == 0) {
        return;
    }
    const int lastColumn = columnCount() - 1;
    QItemSelection chosen;
    std::size_t row = first;
    while (row <= last) {
        if (!table_[row].selected) {
            ++row;
            continue;
        }
        const std::size_t runStart = row;
        while (row <= last && table_[row].selected) {
            ++row;
        }
        chosen.select(index(static_cast<int>(runStart), 0),
                      index(static_cast<int>(row - 1), lastColumn));
    }
    syncing_ = true;
    if (first == 0 && last + 1 == table_.size()) {
        selection_->select(chosen, QItemSelectionModel::ClearAndSelect);
    } else {
        selection_->select(QItemSelection(index(static_cast<int>(first), 0),
                                          index(static_cast<int>(last), lastColumn)),
                           QItemSelectionModel::Deselect);
        selection_->select(chosen, QItemSelectionModel::Select);
    }
    syncing_ = false;
}

void EntryModel::pullSelection(const QItemSelection& selected, const QItemSelection& deselected) {
    if (syncing_ || placeholderShown_) {
        return;
    }
    syncing_ = true;
    // A row counts as selected while any of its cells is, whatever the ranges
    // of this one change were.
    const auto apply = [&](const QItemSelection& ranges) {
        for (const QItemSelectionRange& range : ranges) {
            for (int row = range.top(); row <= range.bottom(); ++row) {
                if (static_cast<std::size_t>(row) < table_.size()) {
                    table_.setSelected(static_cast<std::size_t>(row),
                                       selection_->isRowSelected(row) ||
                                           selection_->rowIntersectsSelection(row));
                }
            }
        }
    };
    apply(deselected);
    apply(selected);
    syncing_ = false;
}

} // namespace korvel::ui
