// The rows of the open archive, in display order. Rows hold numbers; the
// offset and size texts are derived by the functions in Format.h. The table
// keeps either index order (the order rows were added) or name order, and
// tells its observers about each change so a view never polls or rebuilds.
#pragma once

#include "archive/Format.h"
#include "archive/NameFilter.h"
#include "archive/Names.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace korvel {

struct Entry {
    std::uint32_t startSector = 0;
    std::uint32_t sizeSectors = 0;
    std::string name; // raw Windows-1252 bytes
    bool selected = false;
    // Selected when the list's filter hid it: given back when the filter
    // shows it again, unless the selection was changed in between.
    bool heldSelection = false;

    std::uint64_t byteOffset() const { return SectorToOffset(startSector); }
    std::uint64_t byteCount() const { return std::uint64_t{sizeSectors} * SectorSize; }
    EntryKind type() const { return IconKindOfName(name); }
};

class EntryTableObserver {
public:
    virtual ~EntryTableObserver() = default;
    // Rows [first, first + count) are new.
    virtual void rowsInserted(std::size_t first, std::size_t count) = 0;
    // Rows [first, first + count) are gone.
    virtual void rowsRemoved(std::size_t first, std::size_t count) = 0;
    // Rows [first, last] changed their content or selection.
    virtual void rowsChanged(std::size_t first, std::size_t last) = 0;
    // Everything changed (open, close, reorder).
    virtual void tableReset() = 0;
};

class EntryTable {
public:
    enum class Order { Index, Name };

    std::size_t size() const { return rows_.size(); }
    bool empty() const { return rows_.empty(); }
    const Entry& operator[](std::size_t row) const { return rows_[row]; }
    const std::vector<Entry>& rows() const { return rows_; }

    Order order() const { return order_; }
    // Switching to name order sorts the rows at once; switching back keeps the
    // current order (the caller reloads to get directory order again).
    void setOrder(Order order);

    // The placeholder row stands for an empty list while no archive is open.
    // It is not an entry: commands never see it, only the view shows it.
    bool placeholder() const { return placeholder_; }
    void setPlaceholder(bool shown);

    // Replaces all rows (opening an archive), sorted when name order is on.
    void assign(std::vector<Entry> rows);
    void clear();
    // Appends a row (or inserts it at its sorted place in name order) and
    // returns its row index.
    std::size_t append(Entry entry);
    void remove(std::size_t row);
    // Removes every row whose flag in `doomed` is set, in one notification
    // per contiguous run.
    void removeWhere(const std::vector<bool>& doomed);
    void setName(std::size_t row, std::string name);
    void setPlacement(std::size_t row, std::uint32_t startSector, std::uint32_t sizeSectors);

    // Tells observers every row may look different (icons after a rename,
    // for instance).
    void refreshAll();

    // Selection: one truth for the engine and the view.
    void setSelected(std::size_t row, bool selected);
    void selectAll();
    void clearSelection();
    // Sets every row's flag from `selected` (missing flags read as false),
    // with one notification, so selecting by type stays fast on big tables.
    void setSelection(const std::vector<bool>& selected);
    std::size_t selectedCount() const;

    // The list's filter. A row it hides is never selected, whoever asks
    // (the view, select all, select by type, a find result), so no command
    // can act on a row the person cannot see. Setting a filter holds back
    // the selection of the rows it hides and gives it back to the rows it
    // shows again; any other change of the selection forgets what was held.
    void setFilter(NameFilter filter);
    bool filtering() const { return !filter_.showsAll(); }
    bool shown(std::size_t row) const {
        return filter_.showsAll() || filter_.matches(rows_[row].name);
    }
    std::size_t shownCount() const;

    // Largest byte offset among the rows, and the size of the largest row that
    // starts there: where the data of a new entry goes.
    std::uint64_t highestOffset() const;
    std::uint64_t appendOffset() const;

    void addObserver(EntryTableObserver* observer);
    void removeObserver(EntryTableObserver* observer);

private:
    std::size_t sortedPosition(const std::string& name) const;
    void notifyInserted(std::size_t first, std::size_t count);
    void notifyRemoved(std::size_t first, std::size_t count);
    void notifyChanged(std::size_t first, std::size_t last);
    void notifyReset();
    // A row the filter hides gives up its selection (renamed out of view, or
    // appended while hidden).
    void holdIfHidden(std::size_t row);
    void forgetHeldSelection();

    std::vector<Entry> rows_;
    Order order_ = Order::Index;
    bool placeholder_ = false;
    NameFilter filter_;
    std::size_t heldCount_ = 0;
    std::vector<EntryTableObserver*> observers_;
};

} // namespace korvel
