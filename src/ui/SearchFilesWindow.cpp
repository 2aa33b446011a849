#include "ui/SearchFilesWindow.h"

#include "archive/Names.h"
#include "ui/MainWindow.h"
#include "ui/WidgetUnits.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>

namespace korvel::ui {
namespace {

const ResultWindowLayout Layout{
    "searchFiles",
    "fif0",
    "lastFileSearch",
    "saveResults",
    {"OptSelectAll", "OptSelectFile", "OptSelectClose", "OptView", "OptExtract", "OptQextract"},
    {"gap1", "gap2"},
    true,
    {{"sd17", 1900}, {"sd16", 2000}, {"sd14", 700}},
    4935,
};

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// The engine reports progress to PB1 of the desktop; during a search that is
// this window's own bar, and the main window gets its bar back afterwards.
class LentProgressBar {
public:
    LentProgressBar(QtDesktop& desktop, QProgressBar* bar)
        : desktop_(desktop), previous_(desktop.swapProgressBar(bar)) {}
    ~LentProgressBar() { desktop_.swapProgressBar(previous_); }
    LentProgressBar(const LentProgressBar&) = delete;
    LentProgressBar& operator=(const LentProgressBar&) = delete;

private:
    QtDesktop& desktop_;
    QProgressBar* previous_;
};

} // namespace

SearchFilesWindow::SearchFilesWindow(MainWindow& main) : ResultWindow(main, Layout) {
    const Editor& editor = main_.editor();
    textures_ = new QRadioButton(Q(editor.text("files3")), frame_);
    textures_->setObjectName(QStringLiteral("searchTextures"));
    collisions_ = new QRadioButton(Q(editor.text("files5")), frame_);
    collisions_->setObjectName(QStringLiteral("searchCol"));
    frame_->layout()->addWidget(textures_);
    frame_->layout()->addWidget(collisions_);
    textures_->setChecked(true);

    progress_ = new QProgressBar(this);
    progress_->setObjectName(QStringLiteral("PB1"));
    progress_->setTextVisible(false);
    progress_->setRange(0, 1);
    progress_->setValue(0);
    bottom_->addWidget(progress_, 1);
    // The options are made after the buttons below them; Tab goes down the
    // right-hand column as it is laid out.
    ChainTabOrder({searchText(), findIt(), results(), textures_, collisions_,
                   findChild<QWidget*>(QLatin1String(Layout.saveButton)),
                   findChild<QWidget*>(QStringLiteral("closeSearch"))});
    AddCloseKeys(*this);
    fitToContents();
}

void SearchFilesWindow::relabel() {
    ResultWindow::relabel();
    textures_->setText(Q(main_.editor().text("files3")));
    collisions_->setText(Q(main_.editor().text("files5")));
}

void SearchFilesWindow::search() {
    {
        LentProgressBar lent(main_.desktop(), progress_);
        const std::string text = searchText()->text().toStdString();
        found_ = collisions_->isChecked() ? SearchCollisionModels(main_.editor(), text)
                                          : SearchTextures(main_.editor(), text);
    }
    // The engine hides PB1 when it is done; this one stays in its place.
    progress_->setValue(0);
    progress_->show();
    std::vector<QStringList> rows;
    std::vector<EntryRef> entries;
    for (const FoundInFile& found : *found_) {
        rows.push_back({Q(Cp1252ToUtf8(found.name)), Q(Cp1252ToUtf8(found.entryName)),
                        QString::number(static_cast<qulonglong>(found.row))});
        entries.push_back(found.entry);
    }
    showResults(rows, std::move(entries));
}

void SearchFilesWindow::save() {
    SaveFoundInFiles(main_.editor(), found_);
}

} // namespace korvel::ui
