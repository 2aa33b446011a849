// The tool windows beside the main window: find, find in files and show-me,
// the line colours and the question quick replace asks about a missing file.
// Each opens from its menu item, speaks the chosen language and acts on the
// main list only through the main window's commands.
#include "UiSupport.h"

#include "ui/ArchiveView.h"
#include "ui/LineColorsDialog.h"
#include "ui/QuickReplaceDialog.h"
#include "ui/SearchFilesWindow.h"
#include "ui/ToolWindows.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTreeWidget>

using korvel::MissingFileOption;

namespace {

// Each row of a list as its columns joined by "|".
QString Row(const QTreeWidget* list, int row) {
    QStringList columns;
    for (int c = 0; c < list->columnCount(); ++c)
        columns << list->topLevelItem(row)->text(c);
    return columns.join('|');
}

void Select(QTreeWidget* list, const QList<int>& rows) {
    list->clearSelection();
    for (int row : rows)
        list->topLevelItem(row)->setSelected(true);
}

void Click(QWidget* parent, const char* name) {
    if (auto* action = parent->findChild<QAction*>(name))
        return action->trigger();
    parent->findChild<QAbstractButton*>(name)->click();
}

// The three windows that list entries of the main list.
const struct ListWindow {
    const char* open; // the menu item that opens it
    const char* form;
    const char* mode;       // the option searched with an empty box, if it searches
    const char* remembered; // the setting that prefills its box
    const char* save;       // its Save button
    std::vector<std::pair<const char*, const char*>> captions; // control, lang.ini key
    // Select all, select, the same and close, view, extract, quick extract.
    std::array<const char*, 6> items;
    QList<int> inert;            // the items that ignore the placeholder
    QList<int> picked, mainRows; // three results and the main list rows they stand for
    QString firstRow;
} ListWindows[] = {
    {"EditFind",
     "search",
     "searchModels",
     "lastSearch",
     "saveList",
     {{"Label1", "find1"},
      {"findIt", "sd9"},
      {"saveList", "find3"},
      {"closeSearch", "find4"},
      {"searchAll", "files1"},
      {"searchModels", "files2"},
      {"searchCol", "files5"}},
     {"SelectThem", "HighLightFiel", "HClose", "OpenFile", "extractFile", "QuickFile"},
     {2, 4, 5},
     {0, 2, 4},
     {1, 5, 9},
     "Player.DFF|1"},
    {"EditFindIn",
     "searchFiles",
     "searchCol",
     "lastFileSearch",
     "saveResults",
     {{"saveResults", "find3"}, {"searchTextures", "files3"}, {"searchCol", "files5"}},
     {"OptSelectAll", "OptSelectFile", "OptSelectClose", "OptView", "OptExtract", "OptQextract"},
     {1, 2, 3, 4, 5},
     {0, 3, 4},
     {11, 18, 23},
     "cheetah|vehicles.col|11"},
    {"ShowMeModels",
     "showTheseFiles",
     nullptr,
     nullptr,
     "saveList",
     {{"saveList", "find6"}, {"listClose", "find4"}},
     {"SelectTheMall", "HighLightFiel", "HClose", "OpenFile", "extractFile", "OutQuick"},
     {1, 3, 4, 5},
     {0, 2, 4},
     {1, 5, 9},
     "Player.DFF|1"},
};

} // namespace

// Every test runs in German on a copy of the demo archive in index order.
class ToolWindowsTest : public QObject {
    Q_OBJECT
    std::unique_ptr<korvel::test::WindowEnv> env;
    korvel::ui::MainWindow* w = nullptr;
    QString text(const char* key) const { return env->text(key); }
private slots:
    void init() {
        env = std::make_unique<korvel::test::WindowEnv>();
        for (const auto& [value, key] :
             {std::pair{"deutsch", "language"}, {"offset", "sort"}, {"cheetah", "lastSearch"}})
            env->settings.WriteSetting(value, key);
        const auto img = env->folder / "demo.img";
        std::filesystem::copy_file(KORVEL_DEMO_ARCHIVE, img);
        std::filesystem::copy_file(
            std::filesystem::path(KORVEL_DEMO_ARCHIVE).replace_extension(".dir"),
            env->folder / "demo.dir");
        w = &env->start(img.string());
        env->recordEntryCommands();
    }
    void cleanup() { env.reset(); }
    void listWindowsActOnTheMainList();
    void findInFilesCountsOnItsOwnBar();
    void lineColoursRepaintTheList();
    void missingFileQuestionStartsAtTheStoredChoice();
};

void ToolWindowsTest::listWindowsActOnTheMainList() {
    for (const ListWindow& c : ListWindows) {
        w->runCommand(c.open);
        auto* window = w->findChild<QWidget*>(c.form);
        QVERIFY(window->isVisible() && !window->isModal());
        auto* list = window->findChild<QTreeWidget*>();
        for (const auto& [name, key] : c.captions)
            QCOMPARE(window->findChild<QObject*>(name)->property("text").toString(), text(key));
        const char* itemKeys[] = {"sd10", "sd11", "sd12", "sd13", "menuc2", "menuc3"};
        for (std::size_t i = 0; i < c.items.size(); ++i)
            QCOMPARE(window->findChild<QAction*>(c.items[i])->text(), text(itemKeys[i]));
        QCOMPARE(list->headerItem()->text(0), text("sd17"));
        if (c.mode != nullptr) {
            auto* box = window->findChild<QLineEdit*>("searchText");
            QCOMPARE(box->text(), QString::fromStdString(env->settings.ReadSetting(c.remembered)));
            // Enter in an empty box searches although the button is disabled.
            Click(window, c.mode);
            box->clear();
            QVERIFY(!window->findChild<QPushButton*>("findIt")->isEnabled());
            QTest::keyClick(box, Qt::Key_Return);
        }
        QCOMPARE(Row(list, 0), c.firstRow);
        w->runCommand(c.open); // brings up the same window, results and all
        QCOMPARE(w->findChildren<QWidget*>(c.form), QList<QWidget*>{window});
        QCOMPARE(Row(list, 0), c.firstRow);

        // Enter and a double click select the chosen rows alone; the items
        // select them and run the main window's commands.
        env->ran.clear();
        w->commands().SelectAllEntries();
        Select(list, c.picked.mid(0, 2));
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(env->selectedRows(), c.mainRows.mid(0, 2));
        Select(list, c.picked.mid(2));
        emit list->itemDoubleClicked(list->topLevelItem(c.picked[2]), 0);
        QCOMPARE(env->selectedRows(), c.mainRows.mid(2));
        Select(list, c.picked.mid(0, 2));
        for (int i : {3, 4, 5})
            Click(window, c.items[i]);
        const QString rows = QString("%1,%2").arg(c.mainRows[0]).arg(c.mainRows[1]);
        QCOMPARE(env->ran,
                 (QStringList{"EditView:" + rows, "EditExtract:" + rows, "EditQuick:" + rows}));
        Click(window, c.items[0]);
        QCOMPARE(list->selectedItems().size(), list->topLevelItemCount());
        // Save writes the list to the file chosen, first name first.
        const auto file = env->folder / (std::string(c.form) + ".txt");
        auto saved = korvel::test::AnswerNextModal([&file](QWidget* modal) {
            qobject_cast<QFileDialog*>(modal)->selectFile(QString::fromStdString(file.string()));
            qobject_cast<QDialog*>(modal)->accept();
        });
        Click(window, c.save);
        QVERIFY(*saved);
        QVERIFY(
            korvel::test::ReadBytes(file).starts_with(c.firstRow.section('|', 0, 0).toStdString()));
        Select(list, c.picked.mid(2));
        Click(window, c.items[2]);
        QCOMPARE(env->selectedRows(), c.mainRows.mid(2));
        QVERIFY(!window->isVisible());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

        // With only the placeholder listed the guarded items, Enter and a
        // double click change nothing.
        if (c.mode != nullptr) {
            w->runCommand(c.open);
            window = w->findChild<QWidget*>(c.form);
            window->findChild<QLineEdit*>("searchText")->setText("no such name");
            Click(window, "findIt");
        } else {
            w->toolWindows().showEntryList({});
        }
        list = window->findChild<QTreeWidget*>();
        QCOMPARE(Row(list, 0).section('|', 0, 0), text("sd2"));
        env->ran.clear();
        w->commands().SelectAllEntries();
        list->selectAll();
        QTest::keyClick(list, Qt::Key_Return);
        emit list->itemDoubleClicked(list->topLevelItem(0), 0);
        for (int i : c.inert)
            Click(window, c.items[i]);
        QVERIFY(env->ran.isEmpty());
        QCOMPARE(env->selectedRows().size(), static_cast<qsizetype>(w->editor().table().size()));
        QVERIFY(window->isVisible());
        window->close();
    }
}

void ToolWindowsTest::findInFilesCountsOnItsOwnBar() {
    w->runCommand("EditFindIn");
    auto* window = w->findChild<korvel::ui::SearchFilesWindow*>("searchFiles");
    // The window's own PB1 counted the dictionaries or the collision files
    // and stays in its place at 0; the main window gets its bar back.
    for (const auto& [mode, entries] : {std::pair{"searchTextures", 13}, {"searchCol", 5}}) {
        Click(window, mode);
        Click(window, "findIt");
        QVERIFY(window->progress()->isVisible());
        QCOMPARE(window->progress()->value(), 0);
        QCOMPARE(window->progress()->maximum(), entries);
    }
    w->desktop().ShowProgress(7);
    QCOMPARE(w->centralWidget()->findChild<QProgressBar*>("PB1")->maximum(), 7);
    QCOMPARE(window->progress()->maximum(), 5);
}

void ToolWindowsTest::lineColoursRepaintTheList() {
    w->runCommand("OptsPick");
    auto* dialog = w->findChild<korvel::ui::LineColorsDialog*>("lineColors");
    QVERIFY(dialog->isVisible() && !dialog->isModal());
    QCOMPARE(dialog->windowTitle(), " " + text("lc0"));
    for (const auto& [name, key] :
         {std::pair{"Label1", "lc1"}, {"colorTwo", "lc3"}, {"restore", "lc4"}})
        QCOMPARE(dialog->findChild<QObject*>(name)->property("text").toString(), text(key));

    // Each button picks its own line's colour and the list is repainted at
    // once; a cancelled pick keeps the colour.
    const std::tuple<const char*, QColor, QColor, QColor> picks[] = {
        {"colorOne", Qt::red, Qt::red, Qt::white},
        {"colorTwo", QColor(), Qt::red, Qt::white},
        {"colorTwo", Qt::blue, Qt::red, Qt::blue},
    };
    for (const auto& [button, picked, one, two] : picks) {
        auto answered = korvel::test::AnswerNextModal([picked](QWidget* modal) {
            auto* picker = qobject_cast<QColorDialog*>(modal);
            picker->setCurrentColor(picked);
            picked.isValid() ? picker->accept() : picker->reject();
        });
        Click(dialog, button);
        QVERIFY(*answered);
        QCOMPARE(dialog->swatch(1), one);
        QCOMPARE(dialog->swatch(2), two);
        QCOMPARE(w->archiveView()->palette().color(QPalette::Base), one);
        QCOMPARE(w->archiveView()->palette().color(QPalette::AlternateBase), two);
    }
    // Opening again shows the one instance with the stored colours.
    Click(dialog, "CloseThis");
    w->runCommand("OptsPick");
    QCOMPARE(w->findChildren<korvel::ui::LineColorsDialog*>(), QList{dialog});
    QVERIFY(dialog->isVisible());
    QCOMPARE(dialog->swatch(1), QColor(Qt::red));

    auto told = korvel::test::AnswerNextModal(
        [](QWidget* modal) { qobject_cast<QDialog*>(modal)->accept(); });
    Click(dialog, "restore");
    QVERIFY(*told);
    QCOMPARE(w->archiveView()->palette().color(QPalette::Base), QColor(239, 239, 239));
    QVERIFY(!dialog->isVisible());
}

void ToolWindowsTest::missingFileQuestionStartsAtTheStoredChoice() {
    const struct {
        const char* stored;
        const char* checked; // the option shown checked, if any
        const char* click;   // the option clicked, if any
        bool ok;             // Ok pressed, else closed by its frame
        std::optional<MissingFileOption> chosen;
    } cases[] = {
        {"1", "skipOption", "newLoc", true, MissingFileOption::NewLocation},
        {"2", "sepOption", nullptr, true, MissingFileOption::ReplaceSeparately},
        {"3", "newLoc", "skipOption", false, std::nullopt},
        {"x", "", nullptr, true, std::nullopt}, // an unknown value checks nothing
    };
    for (const auto& c : cases) {
        env->settings.WriteSetting(c.stored, "qrSetting");
        korvel::ui::QuickReplaceDialog dialog(env->settings, "car.dff", "/some/folder", w);
        QCOMPARE(dialog.windowTitle(), " " + text("qr0"));
        QStringList shown;
        for (const char* name : {"Label1", "Label2", "Label3", "skipOption", "sepOption", "newLoc"})
            shown << dialog.findChild<QWidget*>(name)->property("text").toString();
        QCOMPARE(shown, (QStringList{text("qr1"), "car.dff", "/some/folder", text("qr4"),
                                     text("qr5"), text("qr6")}));
        QString checked;
        for (QRadioButton* option : dialog.findChildren<QRadioButton*>())
            checked += option->isChecked() ? option->objectName() : QString();
        QCOMPARE(checked, QString::fromLatin1(c.checked));
        if (c.click != nullptr)
            Click(&dialog, c.click);
        c.ok ? Click(&dialog, "ok") : dialog.reject();
        QCOMPARE(dialog.chosen(), c.chosen);
    }
}

QTEST_MAIN(ToolWindowsTest)
#include "ToolWindowsTest.moc"
