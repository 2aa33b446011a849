// The list's model: a thin adapter over the engine's entry table. It listens
// to the table and forwards each change as the matching model signal, so
// opening an archive is one reset and a one-row change touches one row. It
// also keeps the view's selection and the table's selected flags as one truth.
#pragma once

#include "archive/EntryTable.h"

#include <QAbstractTableModel>
#include <QIcon>
#include <QItemSelectionModel>
#include <QSortFilterProxyModel>
#include <QStringList>

#include <functional>
#include <map>
#include <optional>
#include <string>

namespace korvel::ui {

class EntryModel : public QAbstractTableModel, private EntryTableObserver {
    Q_OBJECT
public:
    // `placeholderText` gives the text of the row shown while no archive is open.
    EntryModel(EntryTable& table, std::function<QString()> placeholderText,
               QObject* parent = nullptr);
    ~EntryModel() override;

    // The model the view shows: the table's rows as filtered and sorted for
    // viewing. The selection model attached must be the view's, over it.
    QSortFilterProxyModel* viewModel() const { return proxy_; }
    void attachSelectionModel(QItemSelectionModel* selection);
    // Shows only the rows the filter matches (the table holds back the
    // selection of the others), and the selection that is left.
    void setFilter(NameFilter filter);
    // The table row behind a row of the view, and back; nothing for the
    // placeholder or a row that is not there.
    std::optional<std::size_t> tableRow(int viewRow) const;
    std::optional<int> viewRow(std::size_t tableRow) const;
    void addColumn(const QString& header);
    void clearColumns();
    bool showsPlaceholder() const { return placeholderShown_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void rowsInserted(std::size_t first, std::size_t count) override;
    void rowsRemoved(std::size_t first, std::size_t count) override;
    void rowsChanged(std::size_t first, std::size_t last) override;
    void tableReset() override;

    void recount();
    // Copies the table's selected flags of rows [first, last] into the view.
    void pushSelection(std::size_t first, std::size_t last);
    void pullSelection(const QItemSelection& selected, const QItemSelection& deselected);
    // The view's ranges covering the table rows in [first, last] that pass
    // `wanted`, in as few ranges as the view's order allows.
    template <typename Wanted>
    QItemSelection viewRanges(std::size_t first, std::size_t last, Wanted wanted) const;
    const QIcon& icon(std::string_view key) const;

    EntryTable& table_;
    std::function<QString()> placeholderText_;
    QStringList headers_;
    QItemSelectionModel* selection_ = nullptr;
    QSortFilterProxyModel* proxy_ = nullptr;
    int shownRows_ = 0;
    bool placeholderShown_ = false;
    bool syncing_ = false;
    mutable std::map<std::string, QIcon, std::less<>> icons_;
};

} // namespace korvel::ui
