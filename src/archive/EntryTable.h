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
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace korvel {

// Which entry a result list, a dialog or a command means, however rows move
// in the meantime. The table hands out ids; a generation is one reading of
// an archive (open, reload, close start a new one), so a reference taken
// before another archive was opened never finds an entry of the new one.
struct EntryRef {
    std::uint64_t generation = 0;
    std::uint64_t id = 0;
    friend bool operator==(const EntryRef&, const EntryRef&) = default;
};

struct Entry {
    std::uint32_t startSector = 0;
    std::uint32_t sizeSectors = 0;
    std::string name; // raw Windows-1252 bytes
    bool selected = false;
    // Given by the table; 0 for a row that was never in it. A row taken out
    // and put back (moved, restored after a failed write) keeps its id.
    std::uint64_t id = 0;
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

    // Replaces all rows, sorted when name order is on. Rows read anew (any
    // row without an id: opening, reloading) start a new generation with
    // fresh ids; rows that all carry ids (the old rows put back after a
    // failed write) keep them and the generation.
    void assign(std::vector<Entry> rows);
    // Empties the table and starts a new generation (closing).
    void clear();
    // The next assign reads the archive these rows came from again (a
    // reload, the Sort menu): when it lists exactly the same entries (names
    // and placement, in any order) they keep their ids and the generation,
    // so result lists and dialogs still find them. Anything else is a new
    // reading. Another archive must never be assigned after this call: its
    // entries could look the same and hold other data.
    void rereadSameArchive() { rereading_ = true; }
    // Appends a row (or inserts it at its sorted place in name order) and
    // returns its row index. A row without an id gets a fresh one.
    std::size_t append(Entry entry);
    void remove(std::size_t row);
    // Removes every row whose flag in `doomed` is set, in one notification
    // per contiguous run.
    void removeWhere(const std::vector<bool>& doomed);
    void setName(std::size_t row, std::string name);
    void setPlacement(std::size_t row, std::uint32_t startSector, std::uint32_t sizeSectors);

    // --- identity -----------------------------------------------------------
    std::uint64_t generation() const { return generation_; }
    EntryRef refOf(std::size_t row) const { return {generation_, rows_[row].id}; }
    // The row the entry stands in now; nothing when it is gone or the
    // reference is of another generation. The id->row map is rebuilt only
    // after rows were inserted, removed or reordered, so a click on a result
    // costs no scan of the table.
    std::optional<std::size_t> rowOf(const EntryRef& entry) const;

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

    std::size_t insertRow(Entry entry);
    // Gives `rows` the ids of the same entries among the current rows; false
    // (nothing changed) unless every row has its own match.
    bool adoptIds(std::vector<Entry>& rows) const;
    void giveId(Entry& entry) { entry.id = nextId_++; }
    void rowsMoved() { rowOfId_.reset(); }

    std::vector<Entry> rows_;
    // Ids are never reused within one table, across generations too.
    std::uint64_t nextId_ = 1;
    std::uint64_t generation_ = 1;
    mutable std::optional<std::unordered_map<std::uint64_t, std::size_t>> rowOfId_;
    bool rereading_ = false;
    Order order_ = Order::Index;
    bool placeholder_ = false;
    NameFilter filter_;
    std::size_t heldCount_ = 0;
    std::vector<EntryTableObserver*> observers_;
};

} // namespace korvel
