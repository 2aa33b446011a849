// `search`: entries of the open archive whose names hold a piece of text,
// optionally of one type, with their row numbers in the main list.
#pragma once

#include "ui/ResultWindow.h"
#include "window/FindCommands.h"

#include <optional>
#include <vector>

class QRadioButton;

namespace korvel::ui {

class SearchWindow : public ResultWindow {
    Q_OBJECT
public:
    explicit SearchWindow(MainWindow& main);

    // The chosen kind; nothing for "all".
    std::optional<EntryKind> kind() const;
    void search() override;
    void relabel() override;

private:
    void save() override;
    void forgetResults() override { found_.reset(); }

    std::array<QRadioButton*, 5> types_{};
    std::optional<std::vector<FoundEntry>> found_; // nothing before the first search
};

} // namespace korvel::ui
