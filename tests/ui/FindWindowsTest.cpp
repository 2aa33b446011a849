#include "UiSupport.h"

#include "ui/ArchiveView.h"
#include "ui/SearchFilesWindow.h"
#include "ui/SearchWindow.h"
#include "ui/TypeIcons.h"

#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTreeWidget>

#include <filesystem>

using korvel::test::AnswerNextModal;
using korvel::test::WindowEnv;
using korvel::ui::MainWindow;
using korvel::ui::ResultWindow;
using korvel::ui::SearchFilesWindow;
using korvel::ui::SearchWindow;

namespace {

QString Text(const WindowEnv& env, const char* key) {
    return QString::fromStdString(env.settings.LookupText(key));
}

// The demo archive, copied so nothing can touch the build's own, in index
// order so row numbers are the directory's.
MainWindow& StartOnDemo(WindowEnv& env) {
    const auto img = env.folder / "demo.img";
    std::filesystem::copy_file(KORVEL_DEMO_ARCHIVE, img);
    std::filesystem::copy_file(std::filesystem::path(KORVEL_DEMO_ARCHIVE).replace_extension(".dir"),
                               env.folder / "demo.dir");
    env.settings.WriteSetting("offset", "sort");
    return env.start(img.string());
}

// Each result as its columns joined by "|".
QStringList Rows(const QTreeWidget* list) {
    QStringList rows;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        QStringList columns;
        for (int c = 0; c < list->columnCount(); ++c) {
            columns << list->topLevelItem(i)->text(c);
        }
        while (columns.size() > 1 && columns.back().isEmpty()) {
            columns.removeLast();
        }
        rows << columns.join('|');
    }
    return rows;
}

// Selected rows of the main list, 1-based as the result lists number them.
QList<int> MainSelection(MainWindow& w) {
    QList<int> rows;
    const auto& table = w.editor().table();
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (table[row].selected) {
            rows << static_cast<int>(row) + 1;
        }
    }
    return rows;
}

void SelectResults(ResultWindow* window, std::initializer_list<int> indexes) {
    window->results()->clearSelection();
    for (int i : indexes) {
        window->results()->topLevelItem(i)->setSelected(true);
    }
}

void Trigger(ResultWindow* window, const char* item) {
    window->options()->findChild<QAction*>(QString::fromLatin1(item))->trigger();
}

// Replaces view, extract and quick extract with recorders of the main list
// rows each was run on ("EditView:3,7").
void RecordEntryCommands(MainWindow& w, QStringList& ran) {
    for (const char* command : {"EditView", "EditExtract", "EditQuick"}) {
        w.setCommand(command, [&w, &ran, command] {
            QStringList rows;
            for (int row : MainSelection(w)) {
                rows << QString::number(row);
            }
            ran << QString::fromLatin1(command) + ":" + rows.join(',');
        });
    }
}

// With only the placeholder listed, Enter and the given items change
// nothing: no command runs, the main selection stays, the window stays open.
void ExpectPlaceholderInert(MainWindow& w, ResultWindow* window, QStringList& ran,
                            std::initializer_list<const char*> items) {
    ran.clear();
    w.commands().SelectAllEntries();
    const QList<int> all = MainSelection(w);
    window->results()->selectAll();
    QTest::keyClick(window->results(), Qt::Key_Return);
    for (const char* item : items) {
        Trigger(window, item);
    }
    QVERIFY(ran.isEmpty());
    QCOMPARE(MainSelection(w), all);
    QVERIFY(window->isVisible());
}

// `closeItem` on the first result selects its main-list row and closes the
// window.
void ExpectSelectAndClose(MainWindow& w, ResultWindow* window, const char* closeItem, int mainRow) {
    SelectResults(window, {0});
    QPointer<ResultWindow> closing = window;
    Trigger(window, closeItem);
    QCOMPARE(MainSelection(w), (QList<int>{mainRow}));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(closing.isNull());
}

SearchWindow* OpenSearch(MainWindow& w) {
    w.runCommand("EditFind");
    return w.findChild<SearchWindow*>("search");
}

SearchFilesWindow* OpenSearchFiles(MainWindow& w) {
    w.runCommand("EditFindIn");
    return w.findChild<SearchFilesWindow*>("searchFiles");
}

void Search(ResultWindow* window, const QString& text, const char* option) {
    window->findChild<QRadioButton*>(QString::fromLatin1(option))->setChecked(true);
    window->searchText()->setText(text);
    // An empty box disables the button; Enter searches all the same.
    if (text.isEmpty()) {
        QTest::keyClick(window->searchText(), Qt::Key_Return);
    } else {
        window->findIt()->click();
    }
}

// Saves through the file dialog the next Save click opens.
std::shared_ptr<bool> SaveTo(const std::filesystem::path& file) {
    return AnswerNextModal([file](QWidget* modal) {
        auto* dialog = qobject_cast<QFileDialog*>(modal);
        QVERIFY(dialog != nullptr);
        dialog->selectFile(QString::fromStdString(file.string()));
        static_cast<QDialog*>(dialog)->accept();
    });
}

QImage IconImage(const QIcon& icon) {
    return icon.pixmap(16, 16).toImage();
}

} // namespace

class FindWindowsTest : public QObject {
    Q_OBJECT
private slots:
    void captionsInEveryLanguage();
    void oneModelessInstanceEach();
    void searchListsNumberedRowsOrThePlaceholder();
    void searchResultsActOnTheMainList();
    void searchSavesTheFoundNames();
    void findInFilesListsTexturesAndModels();
    void findInFilesActsOnTheHoldingEntries();
    void comCheckAndReportsAreWired();
};

void FindWindowsTest::captionsInEveryLanguage() {
    const QString grabs = qEnvironmentVariable("KORVEL_GRAB_DIR");
    for (const char* language : {"english", "francais", "deutsch"}) {
        WindowEnv env;
        env.settings.WriteSetting(language, "language");
        env.settings.WriteSetting("cheetah", "lastSearch");
        env.settings.WriteSetting("Body", "lastFileSearch");
        auto& w = StartOnDemo(env);

        SearchWindow* search = OpenSearch(w);
        QVERIFY(search != nullptr);
        QCOMPARE(search->windowTitle(), " " + Text(env, "find0"));
        QCOMPARE(search->searchText()->text(), QStringLiteral("cheetah"));
        const std::pair<const char*, const char*> searchCaptions[] = {
            {"Label1", "find1"},          {"findIt", "sd9"},          {"saveList", "find3"},
            {"closeSearch", "find4"},     {"Label2", "find5"},        {"searchAll", "files1"},
            {"searchTextures", "files3"}, {"searchModels", "files2"}, {"searchAni", "files4"},
            {"searchCol", "files5"},      {"SelectThem", "sd10"},     {"HighLightFiel", "sd11"},
            {"HClose", "sd12"},           {"OpenFile", "sd13"},       {"extractFile", "menuc2"},
            {"QuickFile", "menuc3"},
        };
        for (const auto& [name, key] : searchCaptions) {
            QObject* control = search->findChild<QObject*>(QString::fromLatin1(name));
            QVERIFY2(control != nullptr, name);
            QCOMPARE(control->property("text").toString(), Text(env, key));
        }
        QCOMPARE(search->findChild<QGroupBox*>("Frame1")->title(), Text(env, "find2"));
        QVERIFY(search->findChild<QRadioButton*>("searchAll")->isChecked());
        QCOMPARE(search->results()->headerItem()->text(0), Text(env, "sd17"));
        QCOMPARE(search->results()->headerItem()->text(1), Text(env, "sd14"));

        SearchFilesWindow* files = OpenSearchFiles(w);
        QVERIFY(files != nullptr);
        QCOMPARE(files->windowTitle(), " " + Text(env, "fif0"));
        QCOMPARE(files->searchText()->text(), QStringLiteral("Body"));
        const std::pair<const char*, const char*> filesCaptions[] = {
            {"Label1", "find1"},        {"findIt", "sd9"},        {"saveResults", "find3"},
            {"closeSearch", "find4"},   {"Label2", "find5"},      {"searchTextures", "files3"},
            {"searchCol", "files5"},    {"OptSelectAll", "sd10"}, {"OptSelectFile", "sd11"},
            {"OptSelectClose", "sd12"}, {"OptView", "sd13"},      {"OptExtract", "menuc2"},
            {"OptQextract", "menuc3"},
        };
        for (const auto& [name, key] : filesCaptions) {
            QObject* control = files->findChild<QObject*>(QString::fromLatin1(name));
            QVERIFY2(control != nullptr, name);
            QCOMPARE(control->property("text").toString(), Text(env, key));
        }
        QVERIFY(files->textureMode()->isChecked());
        QCOMPARE(files->results()->headerItem()->text(1), Text(env, "sd16"));
        QCOMPARE(files->results()->headerItem()->text(2), Text(env, "sd14"));

        if (!grabs.isEmpty()) {
            // For looking at the windows by eye: KORVEL_GRAB_DIR=/some/folder.
            search->findIt()->click();
            files->findIt()->click();
            search->grab().save(
                QDir(grabs).filePath(QStringLiteral("search-%1.png").arg(language)));
            files->grab().save(
                QDir(grabs).filePath(QStringLiteral("searchFiles-%1.png").arg(language)));
        }
    }
}

void FindWindowsTest::oneModelessInstanceEach() {
    WindowEnv env;
    auto& w = StartOnDemo(env);
    QCOMPARE(w.action("EditFind")->shortcut(), QKeySequence(QStringLiteral("Ctrl+F")));
    for (const char* command : {"EditFind", "EditFindIn"}) {
        w.runCommand(command);
        const auto windows = w.findChildren<ResultWindow*>();
        QCOMPARE(windows.size(), 1);
        ResultWindow* window = windows.front();
        QVERIFY(window->isVisible());
        QVERIFY(!window->isModal());
        QCOMPARE(window->parentWidget(), &w);

        // Opening again brings the same window forward, results and all.
        window->searchText()->setText("lamp");
        window->findIt()->click();
        const QStringList found = Rows(window->results());
        w.runCommand(command);
        QCOMPARE(w.findChildren<ResultWindow*>().size(), 1);
        QCOMPARE(w.findChildren<ResultWindow*>().front(), window);
        QCOMPARE(Rows(window->results()), found);

        // Closing discards it; the next opening starts afresh.
        QPointer<ResultWindow> closed = window;
        window->findChild<QPushButton*>("closeSearch")->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(closed.isNull());
        w.runCommand(command);
        window = w.findChildren<ResultWindow*>().front();
        QCOMPARE(window->results()->topLevelItemCount(), 0);
        QCOMPARE(window->countLabel()->text(), Text(env, "find5"));
        QCOMPARE(window->searchText()->text(), QStringLiteral("lamp"));
        window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void FindWindowsTest::searchListsNumberedRowsOrThePlaceholder() {
    struct Case {
        const char* text;
        const char* option;
        QStringList rows;
    };
    const Case cases[] = {
        {"GENERIC", "searchAll", {"generic.txd|12", "generic.col|23", "GENERIC.TXD|38"}},
        {"generic", "searchTextures", {"generic.txd|12", "GENERIC.TXD|38"}},
        {"lamppost", "searchModels", {"lamppost1.dff|19", "lamppost1.dff|39"}},
        {"_", "searchAni", {"car_doors.ifp|14"}},
        {"s.col",
         "searchCol",
         {"vehicles.col|11", "Bridges.COL|18", "props.col|24", "sa_props.col|25"}},
        {"cheetah.dff", "searchModels", {"cheetah.dff|3"}},
        {"***", "searchAll", {}},
        {"player", "searchAni", {}},
    };
    WindowEnv env;
    auto& w = StartOnDemo(env);
    SearchWindow* window = OpenSearch(w);
    for (const Case& c : cases) {
        Search(window, c.text, c.option);
        const QStringList expected = c.rows.isEmpty() ? QStringList{Text(env, "sd2")} : c.rows;
        QCOMPARE(Rows(window->results()), expected);
        QCOMPARE(window->countLabel()->text(),
                 Text(env, "find5") + " " + QString::number(c.rows.size()));
        QCOMPARE(QString::fromStdString(env.settings.ReadSetting("lastSearch")), c.text);
        // The text is selected, ready for the next search.
        QCOMPARE(window->searchText()->selectedText(), c.text);
    }

    // Enter in an empty box searches although the button is disabled.
    window->findChild<QRadioButton*>("searchAni")->setChecked(true);
    window->searchText()->clear();
    QVERIFY(!window->findIt()->isEnabled());
    QTest::keyClick(window->searchText(), Qt::Key_Return);
    QCOMPARE(Rows(window->results()), (QStringList{"ped.ifp|13", "car_doors.ifp|14"}));
    QCOMPARE(QString::fromStdString(env.settings.ReadSetting("lastSearch")), QString());
    window->searchText()->setText("x");
    QVERIFY(window->findIt()->isEnabled());

    // Icons go by the last three letters, as in the main list.
    window->findChild<QRadioButton*>("searchAll")->setChecked(true);
    window->searchText()->clear();
    QTest::keyClick(window->searchText(), Qt::Key_Return);
    QCOMPARE(window->results()->topLevelItemCount(), 40);
    const QList<QTreeWidgetItem*> items = window->results()->findItems("*", Qt::MatchWildcard);
    for (const auto& [name, key] : {std::pair{"Player.txd", "orange"},
                                    {"police.dff", "blue"},
                                    {"ped.ifp", "green"},
                                    {"sa_props.col", "grey"},
                                    {"handling", "none"}}) {
        const auto item = std::find_if(items.begin(), items.end(),
                                       [&](QTreeWidgetItem* i) { return i->text(0) == name; });
        QVERIFY2(item != items.end(), name);
        QCOMPARE(IconImage((*item)->icon(0)),
                 IconImage(korvel::ui::DrawTypeIcon(korvel::ui::TypeIconColour(key))));
    }
}

void FindWindowsTest::searchResultsActOnTheMainList() {
    WindowEnv env;
    auto& w = StartOnDemo(env);
    QStringList ran;
    RecordEntryCommands(w, ran);
    SearchWindow* window = OpenSearch(w);
    Search(window, "dff", "searchModels");
    QCOMPARE(Rows(window->results()).mid(0, 5),
             (QStringList{"Player.DFF|1", "cheetah.dff|3", "infernus.dff|5", "banshee.dff|7",
                          "police.dff|9"}));

    // Enter in the list: exactly the chosen rows, whatever was selected before.
    w.commands().SelectAllEntries();
    SelectResults(window, {2, 4});
    QTest::keyClick(window->results(), Qt::Key_Return);
    QCOMPARE(MainSelection(w), (QList<int>{5, 9}));

    SelectResults(window, {0});
    emit window->results()->itemDoubleClicked(window->results()->topLevelItem(0), 0);
    QCOMPARE(MainSelection(w), (QList<int>{1}));

    SelectResults(window, {1, 3});
    Trigger(window, "HighLightFiel");
    QCOMPARE(MainSelection(w), (QList<int>{3, 7}));
    Trigger(window, "OpenFile");
    Trigger(window, "extractFile");
    SelectResults(window, {4});
    Trigger(window, "QuickFile");
    QCOMPARE(ran, (QStringList{"EditView:3,7", "EditExtract:3,7", "EditQuick:9"}));
    Trigger(window, "SelectThem");
    QCOMPARE(window->results()->selectedItems().size(), window->results()->topLevelItemCount());

    // The main list shrank since the search: a number past its end stops the
    // selection there.
    const int shown = window->results()->topLevelItemCount();
    QCOMPARE(window->results()->topLevelItem(shown - 1)->text(1), QStringLiteral("39"));
    w.editor().table().remove(39);
    w.editor().table().remove(38);
    SelectResults(window, {0, shown - 1});
    Trigger(window, "HighLightFiel");
    QCOMPARE(MainSelection(w), (QList<int>{1}));

    // With nothing selected in the results, the right button shows no menu.
    window->results()->clearSelection();
    const QPoint empty = window->results()->viewport()->rect().bottomLeft() + QPoint(2, -2);
    QTest::mouseClick(window->results()->viewport(), Qt::RightButton, {}, empty);
    QVERIFY(!window->options()->isVisible());
    SelectResults(window, {0});
    emit window->results()->customContextMenuRequested(QPoint(4, 4));
    QVERIFY(window->options()->isVisible());
    window->options()->hide();

    // The placeholder: the items that would act on the main list do nothing.
    Search(window, "***", "searchAll");
    ExpectPlaceholderInert(w, window, ran, {"extractFile", "QuickFile", "HClose"});

    // Select and close.
    Search(window, "ped", "searchAll");
    ExpectSelectAndClose(w, window, "HClose", 13);
}

void FindWindowsTest::searchSavesTheFoundNames() {
    WindowEnv env;
    auto& w = StartOnDemo(env);
    SearchWindow* window = OpenSearch(w);
    auto* save = window->findChild<QPushButton*>("saveList");

    // Nothing searched yet, then only the placeholder: a message, no dialog.
    for (const char* text : {"", "***"}) {
        if (*text != '\0') {
            Search(window, text, "searchAll");
        }
        QString shown;
        auto answered = AnswerNextModal([&](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            QVERIFY(box != nullptr);
            shown = box->text();
            box->button(QMessageBox::Ok)->click();
        });
        save->click();
        QVERIFY(*answered);
        QCOMPARE(shown, Text(env, "sd3"));
    }

    Search(window, "generic", "searchAll");
    const auto file = env.folder / "found.txt";
    korvel::test::WriteBytes(file, "old content that is longer than the names\r\n");
    auto saved = SaveTo(file);
    save->click();
    QVERIFY(*saved);
    QCOMPARE(korvel::test::ReadBytes(file),
             std::string("generic.txd\r\ngeneric.col\r\nGENERIC.TXD\r\n"));
}

void FindWindowsTest::findInFilesListsTexturesAndModels() {
    struct Case {
        const char* text;
        const char* mode;
        QStringList rows;
    };
    const Case cases[] = {
        // Textures match with case, models without.
        {"Body", "searchTextures", {"infernusBody|infernus.txd|6", "bansheeBody|banshee.txd|8"}},
        {"body", "searchTextures", {"cheetah92body|cheetah.txd|4"}},
        {"grunge", "searchTextures", {"vehiclegrunge256|generic.txd|12"}},
        {"Upper", "searchTextures", {"genericUpperOnly|GENERIC.TXD|38"}},
        // Dictionaries named odie... are never read.
        {"odie", "searchTextures", {}},
        {"LAMP", "searchCol", {"lamppost1|generic.col|23"}},
        {"_sa", "searchCol", {"vendmach_sa|sa_props.col|25", "phonebooth_sa|sa_props.col|25"}},
        {"BRIDGE", "searchCol", {"bridge_sec01|Bridges.COL|18"}},
        {"cheetah92", "searchCol", {}},
    };
    WindowEnv env;
    auto& w = StartOnDemo(env);
    SearchFilesWindow* window = OpenSearchFiles(w);
    for (const Case& c : cases) {
        Search(window, c.text, c.mode);
        const QStringList expected = c.rows.isEmpty() ? QStringList{Text(env, "sd2")} : c.rows;
        QCOMPARE(Rows(window->results()), expected);
        QCOMPARE(window->countLabel()->text(),
                 Text(env, "find5") + " " + QString::number(c.rows.size()));
        QCOMPARE(QString::fromStdString(env.settings.ReadSetting("lastFileSearch")), c.text);
        // The window's own PB1 counted the entries and is back at 0.
        QVERIFY(window->progress()->isVisible());
        QCOMPARE(window->progress()->value(), 0);
        QCOMPARE(window->progress()->maximum(), std::string_view(c.mode) == "searchCol" ? 5 : 13);
    }

    // An empty box by Enter lists every model of every collision file.
    window->searchText()->clear();
    QTest::keyClick(window->searchText(), Qt::Key_Return);
    QCOMPARE(window->results()->topLevelItemCount(), 3 + 1 + 3 + 2 + 2);

    // The main window's progress bar is its own again afterwards.
    auto* mainBar = w.centralWidget()->findChild<QProgressBar*>("PB1");
    QVERIFY(mainBar != nullptr);
    w.desktop().ShowProgress(7);
    QCOMPARE(mainBar->maximum(), 7);
    QCOMPARE(window->progress()->maximum(), 5);
    w.desktop().HideProgress();

    Search(window, "Light", "searchTextures");
    const auto file = env.folder / "textures.txt";
    auto saved = SaveTo(file);
    window->findChild<QPushButton*>("saveResults")->click();
    QVERIFY(*saved);
    QCOMPARE(korvel::test::ReadBytes(file),
             std::string("infernusLights  --  infernus.txd\r\npoliceLightbar  --  police.txd\r\n"));
}

void FindWindowsTest::findInFilesActsOnTheHoldingEntries() {
    WindowEnv env;
    auto& w = StartOnDemo(env);
    QStringList ran;
    RecordEntryCommands(w, ran);
    SearchFilesWindow* window = OpenSearchFiles(w);

    // Before any search nothing reacts.
    QTest::keyClick(window->results(), Qt::Key_Return);
    QVERIFY(MainSelection(w).isEmpty());

    Search(window, "", "searchCol");
    // vehicles.col (11) x3, Bridges.COL (18), generic.col (23) x3, props.col (24) x2, ...
    SelectResults(window, {0, 3, 4});
    QTest::keyClick(window->results(), Qt::Key_Return);
    QCOMPARE(MainSelection(w), (QList<int>{11, 18, 23}));
    SelectResults(window, {7});
    Trigger(window, "OptSelectFile");
    QCOMPARE(MainSelection(w), (QList<int>{24}));
    SelectResults(window, {1, 9});
    Trigger(window, "OptView");
    Trigger(window, "OptExtract");
    Trigger(window, "OptQextract");
    QCOMPARE(ran, (QStringList{"EditView:11,25", "EditExtract:11,25", "EditQuick:11,25"}));
    Trigger(window, "OptSelectAll");
    QCOMPARE(window->results()->selectedItems().size(), window->results()->topLevelItemCount());

    // With the placeholder every item does nothing, View included.
    Search(window, "no such model", "searchCol");
    ExpectPlaceholderInert(
        w, window, ran,
        {"OptSelectFile", "OptView", "OptExtract", "OptQextract", "OptSelectClose"});

    Search(window, "mailbox", "searchCol");
    ExpectSelectAndClose(w, window, "OptSelectClose", 24);
}

void FindWindowsTest::comCheckAndReportsAreWired() {
    WindowEnv env;
    auto& w = StartOnDemo(env);
    QGuiApplication::clipboard()->setText(QStringLiteral("untouched"));

    // No: only the status text changes.
    auto declined = AnswerNextModal([](QWidget* modal) {
        qobject_cast<QMessageBox*>(modal)->button(QMessageBox::No)->click();
    });
    w.runCommand("ComCheck");
    QVERIFY(*declined);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("untouched"));
    QCOMPARE(w.statusPanel()->text(), Text(env, "aCheck6"));

    // Yes: the one exact duplicate of the demo (names differing in case are
    // not duplicates) goes to the clipboard and into the message.
    const QString report = Text(env, "aCheck2") + "\r\nlamppost1.dff";
    QString asked;
    QString shown;
    auto answered = AnswerNextModal([&](QWidget* modal) {
        auto* question = qobject_cast<QMessageBox*>(modal);
        asked = question->windowTitle();
        AnswerNextModal([&](QWidget* next) {
            auto* box = qobject_cast<QMessageBox*>(next);
            shown = box->windowTitle() + "|" + box->text();
            box->button(QMessageBox::Ok)->click();
        });
        question->button(QMessageBox::Yes)->click();
    });
    w.runCommand("ComCheck");
    QVERIFY(*answered);
    QCOMPARE(asked, Text(env, "menub8") + "?");
    QCOMPARE(QGuiApplication::clipboard()->text(), report);
    QCOMPARE(shown, Text(env, "aCheck6") + "|" + report + "\n" + Text(env, "aCheck3"));

    // The two reports, each written to the file chosen in the dialog.
    const auto text = env.folder / "report.txt";
    auto savedText = SaveTo(text);
    w.runCommand("EditSave");
    QVERIFY(*savedText);
    const std::string written = korvel::test::ReadBytes(text);
    QVERIFY(written.starts_with("//   " + Text(env, "report1").toStdString() + "\r\n"));
    QVERIFY(written.find("\r\nlamppost1.dff ") != std::string::npos);
    QVERIFY(written.ends_with("kb\r\n"));
    QCOMPARE(w.statusPanel()->text(), Text(env, "sd7"));

    const auto html = env.folder / "report.html";
    auto savedHtml = SaveTo(html);
    w.runCommand("EditSaveHtml");
    QVERIFY(*savedHtml);
    const std::string page = korvel::test::ReadBytes(html);
    QVERIFY(page.starts_with("<title>" + Text(env, "report1").toStdString() + "</title>"));
    QVERIFY(page.ends_with("</table>\r\n<p>&nbsp;</p>\r\n"));
}

QTEST_MAIN(FindWindowsTest)
#include "FindWindowsTest.moc"
