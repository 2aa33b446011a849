// What the two find windows share: the search box and its button, a frame of
// options, the result list with its pop-up menu, the count, Save and Close.
// Results show the main list's row numbers of the time of the search but
// carry the entries themselves; every action selects those entries in the
// main list and runs the main window's own commands, so the windows never
// touch the archive themselves.
#pragma once

#include "archive/EntryTable.h"

#include <QWidget>

#include <array>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

class QGroupBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QTreeWidget;

namespace korvel::ui {

class MainWindow;

// Selects the given entries in the main list after ClearSelection, scrolls
// to the last one selected and brings the main window up. Entries gone since
// are skipped with a message (SelectResultEntries). True when any entry was
// selected.
bool HighlightInMainList(MainWindow& main, const std::vector<EntryRef>& entries);
// The same, then runs a main window command (EditView, EditExtract,
// EditQuick), but only when an entry was selected: never on whatever the
// main list had selected before.
void HighlightAndRun(MainWindow& main, const std::vector<EntryRef>& entries,
                     const QString& command);

// Calls `clear` whenever the main list is read anew (the archive was closed,
// reopened or another one opened), so a result list never stands for
// entries of another reading.
void ClearOnNewReading(MainWindow& main, QObject* owner, std::function<void()> clear);

// Where the two windows differ in names and sizes.
struct ResultWindowLayout {
    const char* form;
    const char* titleKey;
    const char* lastTextKey; // the setting that prefills the search box
    const char* saveButton;
    // Select all, select in the main list, the same and close, view,
    // extract, quick extract; then the two separators.
    std::array<const char*, 6> items;
    std::array<const char*, 2> gaps;
    // Find in files ignores every item while the list shows no results; the
    // archive search only guards the items that would act on the main list's
    // previous selection.
    bool guardEveryItem;
    std::vector<std::pair<const char*, int>> columns; // header key, width in twips
    int listWidthTwips;
};

class ResultWindow : public QWidget {
    Q_OBJECT
public:
    QLineEdit* searchText() const { return searchText_; }
    QPushButton* findIt() const { return findIt_; }
    QTreeWidget* results() const { return results_; }
    QLabel* countLabel() const { return count_; }
    QMenu* options() const { return options_; }

    // Double click and Enter in the list: the selected results' entries.
    // True when any was selected in the main list.
    bool highlight();
    // findIt, or Enter in the search box (also while findIt is disabled).
    virtual void search() = 0;
    // Every text in the current language; the results and the search box
    // stay as they are.
    virtual void relabel();

protected:
    ResultWindow(MainWindow& main, const ResultWindowLayout& layout);

    // Replaces the list: one row per result, or the placeholder row when
    // `entries` is empty; `entries` are the results' entries.
    void showResults(const std::vector<QStringList>& rows, std::vector<EntryRef> entries);
    bool showsResults() const { return !entries_.empty(); }
    // Empties the list when the archive it was searched in is gone.
    void clearResults();
    // The subclass forgets what it would save.
    virtual void forgetResults() = 0;
    int twips(int value) const;
    // Sizes the window once the options are in the frame.
    void fitToContents();

    virtual void save() = 0;

    bool eventFilter(QObject* watched, QEvent* event) override;

    MainWindow& main_;
    QGroupBox* frame_;
    QHBoxLayout* bottom_; // the count's row; find in files adds PB1 there

private:
    void act(bool guarded, const QString& command, bool closeAfter);

    const ResultWindowLayout& layout_;
    QLineEdit* searchText_;
    QPushButton* findIt_;
    QTreeWidget* results_;
    QLabel* count_;
    QMenu* options_;
    bool guardEveryItem_;
    std::vector<EntryRef> entries_;
};

} // namespace korvel::ui
