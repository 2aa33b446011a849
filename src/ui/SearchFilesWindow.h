// `searchFiles`: texture names inside the archive's texture dictionaries, or
// model names inside its collision files, with the entry that holds each.
#pragma once

#include "ui/ResultWindow.h"
#include "window/FindCommands.h"

#include <optional>
#include <vector>

class QProgressBar;
class QRadioButton;

namespace korvel::ui {

class SearchFilesWindow : public ResultWindow {
    Q_OBJECT
public:
    explicit SearchFilesWindow(MainWindow& main);

    QRadioButton* textureMode() const { return textures_; }
    QRadioButton* collisionMode() const { return collisions_; }
    QProgressBar* progress() const { return progress_; }
    void search() override;
    void relabel() override;

private:
    void save() override;
    void forgetResults() override { found_.reset(); }

    QRadioButton* textures_;
    QRadioButton* collisions_;
    QProgressBar* progress_;
    std::optional<std::vector<FoundInFile>> found_; // nothing before the first search
};

} // namespace korvel::ui
