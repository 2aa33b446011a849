#include "archive/EntryTable.h"

#include <algorithm>
#include <utility>

namespace korvel {

void EntryTable::setOrder(Order order) {
    if (order_ == order) {
        return;
    }
    order_ = order;
    if (order_ == Order::Name) {
        std::stable_sort(rows_.begin(), rows_.end(),
                         [](const Entry& a, const Entry& b) { return NameLess(a.name, b.name); });
        rowsMoved();
        notifyReset();
    }
}

void EntryTable::setPlaceholder(bool shown) {
    if (placeholder_ != shown) {
        placeholder_ = shown;
        notifyReset();
    }
}

bool EntryTable::adoptIds(std::vector<Entry>& rows) const {
    if (rows.size() != rows_.size()) {
        return false;
    }
    std::unordered_multimap<std::string, const Entry*> byName;
    byName.reserve(rows_.size());
    for (const Entry& row : rows_) {
        byName.emplace(row.name, &row);
    }
    for (Entry& row : rows) {
        auto [first, last] = byName.equal_range(row.name);
        const auto same = std::find_if(first, last, [&](const auto& old) {
            return old.second->startSector == row.startSector &&
                   old.second->sizeSectors == row.sizeSectors;
        });
        if (same == last) {
            return false;
        }
        row.id = same->second->id;
        byName.erase(same); // each old row matches one new row only
    }
    return true;
}

void EntryTable::assign(std::vector<Entry> rows) {
    const bool rereading = std::exchange(rereading_, false);
    if (rereading && !adoptIds(rows)) {
        for (Entry& row : rows) {
            row.id = 0;
        }
    }
    rows_ = std::move(rows);
    // An empty list is read anew too: opening an empty archive after another
    // one must not leave references to the old one standing.
    const bool readAnew =
        rows_.empty() ||
        std::any_of(rows_.begin(), rows_.end(), [](const Entry& row) { return row.id == 0; });
    if (readAnew) {
        ++generation_;
        for (Entry& row : rows_) {
            giveId(row);
        }
    }
    rowsMoved();
    heldCount_ = 0;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        rows_[row].heldSelection = false;
        holdIfHidden(row);
    }
    if (order_ == Order::Name) {
        std::stable_sort(rows_.begin(), rows_.end(),
                         [](const Entry& a, const Entry& b) { return NameLess(a.name, b.name); });
    }
    placeholder_ = false;
    notifyReset();
}

void EntryTable::clear() {
    rereading_ = false;
    rows_.clear();
    ++generation_;
    rowsMoved();
    heldCount_ = 0;
    notifyReset();
}

std::size_t EntryTable::sortedPosition(const std::string& name) const {
    const auto at = std::upper_bound(
        rows_.begin(), rows_.end(), name,
        [](const std::string& value, const Entry& row) { return NameLess(value, row.name); });
    return static_cast<std::size_t>(at - rows_.begin());
}

std::size_t EntryTable::append(Entry entry) {
    if (entry.id == 0) {
        giveId(entry);
    }
    return insertRow(std::move(entry));
}

std::size_t EntryTable::insertRow(Entry entry) {
    rowsMoved();
    const std::size_t row = order_ == Order::Name ? sortedPosition(entry.name) : rows_.size();
    rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(row), std::move(entry));
    if (rows_[row].heldSelection) {
        ++heldCount_;
    }
    holdIfHidden(row);
    notifyInserted(row, 1);
    return row;
}

void EntryTable::remove(std::size_t row) {
    rowsMoved();
    if (rows_[row].heldSelection) {
        --heldCount_;
    }
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(row));
    notifyRemoved(row, 1);
}

void EntryTable::removeWhere(const std::vector<bool>& doomed) {
    // Walk backwards so the indexes we report stay valid as we go.
    std::size_t row = std::min(doomed.size(), rows_.size());
    while (row > 0) {
        if (!doomed[row - 1]) {
            --row;
            continue;
        }
        const std::size_t last = row;
        while (row > 0 && doomed[row - 1]) {
            --row;
            heldCount_ -= rows_[row].heldSelection ? 1 : 0;
        }
        rowsMoved();
        rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(row),
                    rows_.begin() + static_cast<std::ptrdiff_t>(last));
        notifyRemoved(row, last - row);
    }
}

void EntryTable::setName(std::size_t row, std::string name) {
    if (order_ != Order::Name) {
        rows_[row].name = std::move(name);
        holdIfHidden(row);
        notifyChanged(row, row);
        return;
    }
    // In name order a renamed row moves to its sorted place at once.
    Entry entry = std::move(rows_[row]);
    remove(row);
    entry.name = std::move(name);
    insertRow(std::move(entry));
}

std::optional<std::size_t> EntryTable::rowOf(const EntryRef& entry) const {
    if (entry.generation != generation_ || entry.id == 0) {
        return std::nullopt;
    }
    if (!rowOfId_) {
        rowOfId_.emplace();
        rowOfId_->reserve(rows_.size());
        for (std::size_t row = 0; row < rows_.size(); ++row) {
            rowOfId_->emplace(rows_[row].id, row);
        }
    }
    const auto found = rowOfId_->find(entry.id);
    if (found == rowOfId_->end()) {
        return std::nullopt;
    }
    return found->second;
}

void EntryTable::setPlacement(std::size_t row, std::uint32_t startSector,
                              std::uint32_t sizeSectors) {
    rows_[row].startSector = startSector;
    rows_[row].sizeSectors = sizeSectors;
    notifyChanged(row, row);
}

void EntryTable::refreshAll() {
    if (!rows_.empty()) {
        notifyChanged(0, rows_.size() - 1);
    }
}

void EntryTable::setSelected(std::size_t row, bool selected) {
    forgetHeldSelection();
    if (selected && !shown(row)) {
        return;
    }
    if (rows_[row].selected != selected) {
        rows_[row].selected = selected;
        notifyChanged(row, row);
    }
}

void EntryTable::selectAll() {
    forgetHeldSelection();
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        rows_[row].selected = shown(row);
    }
    if (!rows_.empty()) {
        notifyChanged(0, rows_.size() - 1);
    }
}

void EntryTable::clearSelection() {
    forgetHeldSelection();
    for (Entry& row : rows_) {
        row.selected = false;
    }
    if (!rows_.empty()) {
        notifyChanged(0, rows_.size() - 1);
    }
}

void EntryTable::setSelection(const std::vector<bool>& selected) {
    forgetHeldSelection();
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        rows_[row].selected = row < selected.size() && selected[row] && shown(row);
    }
    if (!rows_.empty()) {
        notifyChanged(0, rows_.size() - 1);
    }
}

std::size_t EntryTable::selectedCount() const {
    return static_cast<std::size_t>(
        std::count_if(rows_.begin(), rows_.end(), [](const Entry& e) { return e.selected; }));
}

std::uint64_t EntryTable::highestOffset() const {
    std::uint64_t highest = 0;
    for (const Entry& row : rows_) {
        highest = std::max(highest, row.byteOffset());
    }
    return highest;
}

std::uint64_t EntryTable::appendOffset() const {
    if (rows_.empty()) {
        return 0;
    }
    const std::uint64_t highest = highestOffset();
    std::uint64_t largest = 0;
    for (const Entry& row : rows_) {
        if (row.byteOffset() == highest) {
            largest = std::max(largest, row.byteCount());
        }
    }
    return highest + largest;
}

void EntryTable::addObserver(EntryTableObserver* observer) {
    observers_.push_back(observer);
}

void EntryTable::removeObserver(EntryTableObserver* observer) {
    observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

void EntryTable::notifyInserted(std::size_t first, std::size_t count) {
    for (auto* o : observers_)
        o->rowsInserted(first, count);
}
void EntryTable::notifyRemoved(std::size_t first, std::size_t count) {
    for (auto* o : observers_)
        o->rowsRemoved(first, count);
}
void EntryTable::notifyChanged(std::size_t first, std::size_t last) {
    for (auto* o : observers_)
        o->rowsChanged(first, last);
}
void EntryTable::notifyReset() {
    for (auto* o : observers_)
        o->tableReset();
}

void EntryTable::setFilter(NameFilter filter) {
    filter_ = std::move(filter);
    bool changed = false;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        Entry& entry = rows_[row];
        if (entry.heldSelection && shown(row)) {
            entry.heldSelection = false;
            entry.selected = true;
            --heldCount_;
            changed = true;
        } else {
            changed = changed || (entry.selected && !shown(row));
            holdIfHidden(row);
        }
    }
    if (changed) {
        notifyChanged(0, rows_.size() - 1);
    }
}

std::size_t EntryTable::shownCount() const {
    if (filter_.showsAll()) {
        return rows_.size();
    }
    std::size_t count = 0;
    for (const Entry& entry : rows_) {
        count += filter_.matches(entry.name) ? 1 : 0;
    }
    return count;
}

void EntryTable::holdIfHidden(std::size_t row) {
    Entry& entry = rows_[row];
    if (entry.selected && !shown(row)) {
        entry.selected = false;
        entry.heldSelection = true;
        ++heldCount_;
    }
}

void EntryTable::forgetHeldSelection() {
    if (heldCount_ == 0) {
        return;
    }
    for (Entry& entry : rows_) {
        entry.heldSelection = false;
    }
    heldCount_ = 0;
}

} // namespace korvel
