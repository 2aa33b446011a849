#include "ui/EntryModel.h"

#include "archive/Format.h"
#include "archive/Names.h"
#include "ui/TypeIcons.h"

#include <algorithm>
#include <vector>

namespace korvel::ui {
namespace {

// Shows the rows the table's filter shows and sorts them by the numbers
// behind a column (the name order of the list, the offset, the size), not by
// the texts the cells show.
class EntryViewProxy : public QSortFilterProxyModel {
public:
    EntryViewProxy(const EntryTable& table, const EntryModel& model, QObject* parent)
        : QSortFilterProxyModel(parent), table_(table), model_(model) {}

    // All at once: with names in no order a filter hides thousands of runs
    // of rows, and telling the view of each run apart costs far more.
    void refilter() {
        keepUpWhileNeeded(sortColumn());
        invalidate();
    }

    void sort(int column, Qt::SortOrder order) override {
        keepUpWhileNeeded(column);
        QSortFilterProxyModel::sort(column, order);
    }

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex&) const override {
        const auto row = static_cast<std::size_t>(sourceRow);
        return model_.showsPlaceholder() || row >= table_.size() || table_.shown(row);
    }

    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override {
        const auto a = static_cast<std::size_t>(left.row());
        const auto b = static_cast<std::size_t>(right.row());
        if (model_.showsPlaceholder() || a >= table_.size() || b >= table_.size()) {
            return false;
        }
        const Entry& x = table_[a];
        const Entry& y = table_[b];
        switch (left.column()) {
        case 1:
            return x.startSector < y.startSector;
        case 2:
            return x.sizeSectors < y.sizeSectors;
        default:
            return NameLess(x.name, y.name);
        }
    }

private:
    // Re-filtering and re-sorting as rows change is only needed while the
    // view filters or sorts; otherwise every selection change would cost a
    // pass over the rows.
    void keepUpWhileNeeded(int sortColumn) {
        setDynamicSortFilter(sortColumn >= 0 || table_.filtering());
    }

    const EntryTable& table_;
    const EntryModel& model_;
};

} // namespace

EntryModel::EntryModel(EntryTable& table, std::function<QString()> placeholderText, QObject* parent)
    : QAbstractTableModel(parent), table_(table), placeholderText_(std::move(placeholderText)) {
    table_.addObserver(this);
    recount();
    auto* proxy = new EntryViewProxy(table_, *this, this);
    proxy->setDynamicSortFilter(false);
    proxy->setSourceModel(this);
    proxy_ = proxy;
}

std::optional<std::size_t> EntryModel::tableRow(int viewRow) const {
    const QModelIndex source = proxy_->mapToSource(proxy_->index(viewRow, 0));
    if (placeholderShown_ || !source.isValid() ||
        static_cast<std::size_t>(source.row()) >= table_.size()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(source.row());
}

std::optional<int> EntryModel::viewRow(std::size_t tableRow) const {
    if (placeholderShown_ || tableRow >= table_.size() || columnCount() == 0) {
        return std::nullopt;
    }
    const QModelIndex shown = proxy_->mapFromSource(index(static_cast<int>(tableRow), 0));
    return shown.isValid() ? std::optional<int>(shown.row()) : std::nullopt;
}

void EntryModel::setFilter(NameFilter filter) {
    // The table drops the hidden rows' selection itself; the view's own
    // selection changes while rows leave it must not be read back as the
    // person's.
    syncing_ = true;
    table_.setFilter(std::move(filter));
    static_cast<EntryViewProxy*>(proxy_)->refilter();
    syncing_ = false;
    if (!table_.empty()) {
        pushSelection(0, table_.size() - 1);
    }
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
        if (column == 0 && (role == Qt::DisplayRole || role == Qt::ToolTipRole)) {
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
    // The tooltip shows a cell's whole text when the column is too narrow.
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
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
    // The placeholder stands for an empty list; it cannot be picked. Entries
    // can be dragged out as files.
    return placeholderShown_ ? Qt::ItemIsEnabled
                             : Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
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
    // The rows are already gone from the table: what the view's selection
    // says about them while it drops them must not be read back.
    syncing_ = true;
    beginRemoveRows({}, from, from + static_cast<int>(count) - 1);
    recount();
    endRemoveRows();
    syncing_ = false;
}

void EntryModel::rowsChanged(std::size_t first, std::size_t last) {
    if (syncing_ || placeholderShown_ || table_.empty()) {
        return; // the view made this change itself
    }
    last = std::min(last, table_.size() - 1);
    // A row renamed out of the filter leaves the view; the view dropping its
    // selection is the table's doing, not the person's.
    syncing_ = true;
    emit dataChanged(index(static_cast<int>(first), 0),
                     index(static_cast<int>(last), std::max(0, columnCount() - 1)));
    syncing_ = false;
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

template <typename Wanted>
QItemSelection EntryModel::viewRanges(std::size_t first, std::size_t last, Wanted wanted) const {
    // Unsorted and unfiltered, a table row is the view's row.
    const bool sameRows = proxy_->sortColumn() < 0 && !table_.filtering();
    std::vector<int> rows;
    for (std::size_t row = first; row <= last; ++row) {
        if (!wanted(row)) {
            continue;
        }
        if (sameRows) {
            rows.push_back(static_cast<int>(row));
        } else if (const std::optional<int> shown = viewRow(row)) {
            rows.push_back(*shown);
        }
    }
    if (!std::is_sorted(rows.begin(), rows.end())) {
        std::sort(rows.begin(), rows.end());
    }
    const int lastColumn = columnCount() - 1;
    QItemSelection ranges;
    for (std::size_t k = 0; k < rows.size();) {
        std::size_t end = k + 1;
        while (end < rows.size() && rows[end] == rows[end - 1] + 1) {
            ++end;
        }
        ranges.append(QItemSelectionRange(proxy_->index(rows[k], 0),
                                          proxy_->index(rows[end - 1], lastColumn)));
        k = end;
    }
    return ranges;
}

void EntryModel::pushSelection(std::size_t first, std::size_t last) {
    if (selection_ == nullptr || placeholderShown_ || table_.empty() || columnCount() == 0) {
        return;
    }
    const QItemSelection chosen =
        viewRanges(first, last, [this](std::size_t row) { return table_[row].selected; });
    syncing_ = true;
    if (first == 0 && last + 1 == table_.size()) {
        selection_->select(chosen, QItemSelectionModel::ClearAndSelect);
    } else {
        selection_->select(viewRanges(first, last, [](std::size_t) { return true; }),
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
                if (const std::optional<std::size_t> source = tableRow(row)) {
                    table_.setSelected(*source, selection_->isRowSelected(row) ||
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
