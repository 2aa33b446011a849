// The tool windows beside the main window: find, find in files and show-me,
// the line colours and the question quick replace asks about a missing file.
// Each opens from its menu item, speaks the chosen language and acts on the
// main list only through the main window's commands.
#include "UiSupport.h"

#include "ui/ArchiveView.h"
#include "ui/LineColorsDialog.h"
#include "ui/QuickReplaceDialog.h"
#include "ui/ToolWindows.h"

#include <QColorDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTreeWidget>

using korvel::MissingFileOption;

namespace {

// Row `row` of a list as its columns joined by "|".
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

void Click(QWidget* parent, const QString& name) {
    if (auto* action = parent->findChild<QAction*>(name))
        return action->trigger();
    parent->findChild<QAbstractButton*>(name)->click();
}

// "control=key ..." against lang.ini; "title" is the window's own caption.
void ExpectCaptions(const korvel::test::WindowEnv& env, QWidget* parent, const QString& wanted) {
    for (const QString& caption : wanted.split(' ')) {
        const QString name = caption.section('=', 0, 0);
        const QString shown = name == "title"
                                  ? parent->windowTitle().mid(1)
                                  : parent->findChild<QObject*>(name)->property("text").toString();
        QCOMPARE(shown, env.text(caption.section('=', 1)));
    }
}

// The three windows that list entries of the main list. Items: select all,
// select, the same and close, view, extract, quick extract; `inert` are those
// that ignore the placeholder; `picked` are three results, `mainRows` theirs.
struct ListWindow {
    const char *open, *form, *mode, *save; // mode: the option searched with an empty box
    QString captions;
    QStringList items;
    QList<int> inert, picked, mainRows;
    QString firstRow;
    int ownBar; // what a window with a PB1 of its own counted: the files searched
};
// clang-format off
const ListWindow ListWindows[] = {
    {"EditFind", "search", "searchModels", "saveList", "title=find0 Label1=find1 findIt=sd9 searchModels=files2 SelectThem=sd10 HClose=sd12",
     {"SelectThem", "HighLightFiel", "HClose", "OpenFile", "extractFile", "QuickFile"},
     {2, 4, 5}, {0, 2, 4}, {1, 5, 9}, "Player.DFF|1", 0},
    {"EditFindIn", "searchFiles", "searchCol", "saveResults", "title=fif0 saveResults=find3 searchCol=files5 OptView=sd13 OptQextract=menuc3",
     {"OptSelectAll", "OptSelectFile", "OptSelectClose", "OptView", "OptExtract", "OptQextract"},
     {1, 2, 3, 4, 5}, {0, 3, 4}, {11, 18, 23}, "cheetah|vehicles.col|11", 5},
    {"ShowMeModels", "showTheseFiles", nullptr, "saveList", "saveList=find6 listClose=find4 HighLightFiel=sd11 extractFile=menuc2",
     {"SelectTheMall", "HighLightFiel", "HClose", "OpenFile", "extractFile", "OutQuick"},
     {1, 3, 4, 5}, {0, 2, 4}, {1, 5, 9}, "Player.DFF|1", 0},
};
// clang-format on

} // namespace

// Every test runs in German on a copy of the demo archive in index order.
class ToolWindowsTest : public QObject {
    Q_OBJECT
    std::unique_ptr<korvel::test::WindowEnv> env;
    korvel::ui::MainWindow* w = nullptr;
private slots:
    void init() {
        env = std::make_unique<korvel::test::WindowEnv>();
        for (const char* key : {"lastSearch", "lastFileSearch"})
            env->settings.WriteSetting("cheetah", key);
        env->settings.WriteSetting("deutsch", "language");
        env->settings.WriteSetting("offset", "sort");
        for (const char* part : {".img", ".dir"})
            std::filesystem::copy_file(
                std::filesystem::path(KORVEL_DEMO_ARCHIVE).replace_extension(part),
                env->folder / ("demo" + std::string(part)));
        w = &env->start((env->folder / "demo.img").string());
        env->recordEntryCommands();
    }
    void cleanup() { env.reset(); }
    void listWindowsActOnTheMainList();
    void lineColoursRepaintTheList();
    void missingFileQuestionStartsAtTheStoredChoice();
    void openWindowsFollowTheLanguage();
};

void ToolWindowsTest::listWindowsActOnTheMainList() {
    for (const ListWindow& c : ListWindows) {
        w->runCommand(c.open);
        w->runCommand(c.open); // the one window, brought up again
        QCOMPARE(w->findChildren<QWidget*>(c.form).size(), 1);
        auto* window = w->findChild<QWidget*>(c.form);
        QVERIFY(window->isVisible() && !window->isModal());
        ExpectCaptions(*env, window, c.captions);
        auto* list = window->findChild<QTreeWidget*>();
        if (c.mode != nullptr) {
            auto* box = window->findChild<QLineEdit*>("searchText");
            QCOMPARE(box->text(), QStringLiteral("cheetah")); // the last search
            // Enter in an empty box searches although the button is disabled.
            Click(window, c.mode);
            box->clear();
            QVERIFY(!window->findChild<QPushButton*>("findIt")->isEnabled());
            QTest::keyClick(box, Qt::Key_Return);
        }
        QCOMPARE(Row(list, 0), c.firstRow);
        if (auto* bar = window->findChild<QProgressBar*>("PB1")) {
            // Its bar stays in place at 0; the main window has its own back.
            w->desktop().ShowProgress(7);
            auto* mainBar = w->centralWidget()->findChild<QProgressBar*>("PB1");
            QCOMPARE(
                (QList{bar->isVisible() ? 1 : 0, bar->value(), bar->maximum(), mainBar->maximum()}),
                (QList{1, 0, c.ownBar, 7}));
        }

        // A double click selects the chosen rows alone; the items select
        // them and run the main window's commands.
        env->ran.clear();
        w->commands().SelectAllEntries();
        Select(list, c.picked.mid(0, 2));
        emit list->itemDoubleClicked(list->topLevelItem(c.picked[0]), 0);
        QCOMPARE(env->selectedRows(), c.mainRows.mid(0, 2));
        for (int i : {3, 4, 5})
            Click(window, c.items[i]);
        const QString rows = QString(":%1,%2").arg(c.mainRows[0]).arg(c.mainRows[1]);
        QCOMPARE(env->ran,
                 (QStringList{"EditView" + rows, "EditExtract" + rows, "EditQuick" + rows}));
        Select(list, c.picked.mid(2));
        Click(window, c.items[2]);
        QCOMPARE(env->selectedRows(), c.mainRows.mid(2));
        QVERIFY(!window->isVisible());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

        // With only the placeholder listed, a double click and the guarded
        // items change nothing.
        if (c.mode != nullptr) {
            w->runCommand(c.open);
            window = w->findChild<QWidget*>(c.form);
            window->findChild<QLineEdit*>("searchText")->setText("no such name");
            Click(window, "findIt");
        } else {
            w->toolWindows().showEntryList({});
        }
        list = window->findChild<QTreeWidget*>();
        QCOMPARE(Row(list, 0).section('|', 0, 0), env->text("sd2"));
        env->ran.clear();
        w->commands().SelectAllEntries();
        list->selectAll();
        emit list->itemDoubleClicked(list->topLevelItem(0), 0);
        for (int i : c.inert)
            Click(window, c.items[i]);
        QVERIFY(env->ran.isEmpty() && window->isVisible());
        QCOMPARE(env->selectedRows().size(), static_cast<qsizetype>(w->editor().table().size()));
        w->editor().OpenArchive(std::string(w->editor().dataPath()));
        QCOMPARE(list->topLevelItemCount(), 0);
        window->close();
    }
}

void ToolWindowsTest::lineColoursRepaintTheList() {
    w->runCommand("OptsPick");
    w->runCommand("OptsPick"); // the one instance, brought up again
    auto* dialog = w->findChild<korvel::ui::LineColorsDialog*>("lineColors");
    QCOMPARE(w->findChildren<korvel::ui::LineColorsDialog*>(), QList{dialog});
    QVERIFY(dialog->isVisible() && !dialog->isModal());
    ExpectCaptions(*env, dialog, "title=lc0 Label1=lc1 colorTwo=lc3 restore=lc4");
    // Each button picks its own line's colour and the list is repainted at
    // once; a cancelled pick keeps the colour.
    const std::tuple<const char*, QColor, QColor, QColor> picks[] = {
        {"colorOne", Qt::red, Qt::red, Qt::white},
        {"colorTwo", QColor(), Qt::red, Qt::white},
        {"colorTwo", Qt::blue, Qt::red, Qt::blue}};
    for (const auto& [button, picked, one, two] : picks) {
        auto answered = korvel::test::AnswerNextModal([picked](QWidget* modal) {
            auto* picker = qobject_cast<QColorDialog*>(modal);
            picker->setCurrentColor(picked);
            picked.isValid() ? picker->accept() : picker->reject();
        });
        Click(dialog, button);
        QVERIFY(*answered);
        const QPalette list = w->archiveView()->palette();
        QCOMPARE((QList{dialog->swatch(1), dialog->swatch(2), list.color(QPalette::Base),
                        list.color(QPalette::AlternateBase)}),
                 (QList{one, two, one, two}));
    }
    auto told = korvel::test::AnswerNextModal(
        [](QWidget* modal) { qobject_cast<QDialog*>(modal)->accept(); });
    Click(dialog, "restore");
    QVERIFY(*told && !dialog->isVisible());
    QCOMPARE(w->archiveView()->palette().color(QPalette::Base), QColor(239, 239, 239));
}

void ToolWindowsTest::missingFileQuestionStartsAtTheStoredChoice() {
    const struct {
        const char *stored, *checked, *click; // the option shown checked, the one clicked
        bool ok;                              // Ok pressed, else closed by its frame
        std::optional<MissingFileOption> chosen;
    } cases[] = {{"1", "skipOption", "newLoc", true, MissingFileOption::NewLocation},
                 {"2", "sepOption", "sepOption", true, MissingFileOption::ReplaceSeparately},
                 {"3", "newLoc", "skipOption", false, std::nullopt},
                 {"x", "", nullptr, true, std::nullopt}}; // an unknown value checks nothing
    for (const auto& c : cases) {
        env->settings.WriteSetting(c.stored, "qrSetting");
        korvel::ui::QuickReplaceDialog dialog(env->settings, "car&.dff", "/some/folder", w);
        ExpectCaptions(*env, &dialog,
                       "title=qr0 Label1=qr1 skipOption=qr4 sepOption=qr5 newLoc=qr6");
        QCOMPARE(dialog.findChild<QLabel*>("Label2")->text(), QStringLiteral("car&.dff"));
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

// Switching the language relabels the windows already open, and Qt's own
// words (here the key names of the menus' shortcuts) follow.
void ToolWindowsTest::openWindowsFollowTheLanguage() {
    const QKeySequence keys = env->action("FileOpen")->shortcut();
    QCOMPARE(keys.toString(QKeySequence::NativeText), QStringLiteral("Strg+O"));
    for (const ListWindow& c : ListWindows)
        w->runCommand(c.open);
    w->runCommand("OptsPick");
    env->action("lang1")->trigger();
    QCOMPARE(env->settings.ReadSetting("language"), "english");
    for (const ListWindow& c : ListWindows)
        ExpectCaptions(*env, w->findChild<QWidget*>(c.form), c.captions);
    ExpectCaptions(*env, w->findChild<QWidget*>("lineColors"),
                   "title=lc0 Label1=lc1");
    QCOMPARE(keys.toString(QKeySequence::NativeText), QStringLiteral("Ctrl+O"));
}

QTEST_MAIN(ToolWindowsTest)
#include "ToolWindowsTest.moc"
