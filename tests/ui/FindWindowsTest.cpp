#include "UiSupport.h"

#include "ui/ArchiveView.h"
#include "ui/SearchFilesWindow.h"
#include "ui/SearchWindow.h"
#include "ui/TypeIcons.h"

#include <QClipboard>
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
    void captionsAndRememberedText();
    void oneModelessInstanceEach();
    void searchResultsActOnTheMainList();
    void findInFilesActsOnTheHoldingEntriesWithItsOwnBar();
    void comCheckAndReportsAreWired();
};

// One language other than the one the code is written in, so a caption
// that skips lang.ini shows.
void FindWindowsTest::captionsAndRememberedText() {
    WindowEnv env;
    env.settings.WriteSetting("deutsch", "language");
    env.settings.WriteSetting("cheetah", "lastSearch");
    env.settings.WriteSetting("Body", "lastFileSearch");
    auto& w = StartOnDemo(env);
    SearchWindow* search = OpenSearch(w);
    SearchFilesWindow* files = OpenSearchFiles(w);
    QVERIFY(search != nullptr && files != nullptr);
    QCOMPARE(search->windowTitle(), " " + Text(env, "find0"));
    QCOMPARE(files->windowTitle(), " " + Text(env, "fif0"));
    QCOMPARE(search->searchText()->text(), QStringLiteral("cheetah"));
    QCOMPARE(files->searchText()->text(), QStringLiteral("Body"));
    const struct {
        ResultWindow* window;
        const char* name;
        const char* key;
    } captions[] = {
        {search, "Label1", "find1"},          {search, "findIt", "sd9"},
        {search, "saveList", "find3"},        {search, "closeSearch", "find4"},
        {search, "Label2", "find5"},          {search, "searchAll", "files1"},
        {search, "searchTextures", "files3"}, {search, "searchModels", "files2"},
        {search, "searchAni", "files4"},      {search, "searchCol", "files5"},
        {search, "SelectThem", "sd10"},       {search, "HighLightFiel", "sd11"},
        {search, "HClose", "sd12"},           {search, "OpenFile", "sd13"},
        {search, "extractFile", "menuc2"},    {search, "QuickFile", "menuc3"},
        {files, "saveResults", "find3"},      {files, "searchTextures", "files3"},
        {files, "searchCol", "files5"},       {files, "OptSelectAll", "sd10"},
        {files, "OptSelectFile", "sd11"},     {files, "OptSelectClose", "sd12"},
        {files, "OptView", "sd13"},           {files, "OptExtract", "menuc2"},
        {files, "OptQextract", "menuc3"},
    };
    for (const auto& c : captions) {
        QObject* control = c.window->findChild<QObject*>(QString::fromLatin1(c.name));
        QVERIFY2(control != nullptr, c.name);
        QCOMPARE(control->property("text").toString(), Text(env, c.key));
    }
    QCOMPARE(search->findChild<QGroupBox*>("Frame1")->title(), Text(env, "find2"));
    QVERIFY(search->findChild<QRadioButton*>("searchAll")->isChecked());
    QVERIFY(files->textureMode()->isChecked());
    QCOMPARE(search->results()->headerItem()->text(0), Text(env, "sd17"));
    QCOMPARE(search->results()->headerItem()->text(1), Text(env, "sd14"));
    QCOMPARE(files->results()->headerItem()->text(1), Text(env, "sd16"));
    QCOMPARE(files->results()->headerItem()->text(2), Text(env, "sd14"));
}

void FindWindowsTest::oneModelessInstanceEach() {
    WindowEnv env;
    auto& w = StartOnDemo(env);
    QCOMPARE(w.action("EditFind")->shortcut(), QKeySequence(QStringLiteral("Ctrl+F")));
    for (const char* command : {"EditFind", "EditFindIn"}) {
        w.runCommand(command);
        ResultWindow* window = w.findChildren<ResultWindow*>().front();
        QVERIFY(window->isVisible() && !window->isModal());
        QCOMPARE(window->parentWidget(), &w);

        // Opening again brings the same window forward, results and all.
        window->searchText()->setText("lamp");
        window->findIt()->click();
        const QStringList found = Rows(window->results());
        w.runCommand(command);
        QCOMPARE(w.findChildren<ResultWindow*>(), (QList<ResultWindow*>{window}));
        QCOMPARE(Rows(window->results()), found);

        // Closing discards it; the next opening starts afresh.
        QPointer<ResultWindow> closed = window;
        window->findChild<QPushButton*>("closeSearch")->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(closed.isNull());
        w.runCommand(command);
        window = w.findChildren<ResultWindow*>().front();
        QCOMPARE(window->results()->topLevelItemCount(), 0);
        window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void FindWindowsTest::searchResultsActOnTheMainList() {
    WindowEnv env;
    auto& w = StartOnDemo(env);
    QStringList ran;
    RecordEntryCommands(w, ran);
    SearchWindow* window = OpenSearch(w);
    Search(window, "generic", "searchTextures");
    QCOMPARE(Rows(window->results()), (QStringList{"generic.txd|12", "GENERIC.TXD|38"}));
    QCOMPARE(window->countLabel()->text(), Text(env, "find5") + " 2");
    QCOMPARE(window->searchText()->selectedText(), QStringLiteral("generic"));
    QCOMPARE(IconImage(window->results()->topLevelItem(0)->icon(0)),
             IconImage(korvel::ui::DrawTypeIcon(korvel::ui::TypeIconColour("orange"))));

    // Enter in an empty box searches although the button is disabled.
    Search(window, "", "searchModels");
    QVERIFY(!window->findIt()->isEnabled());
    QCOMPARE(Rows(window->results()).mid(0, 5),
             (QStringList{"Player.DFF|1", "cheetah.dff|3", "infernus.dff|5", "banshee.dff|7",
                          "police.dff|9"}));

    // Enter and a double-click in the list select exactly the chosen rows.
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

    // With nothing selected in the results, the right button shows no menu.
    window->results()->clearSelection();
    const QPoint empty = window->results()->viewport()->rect().bottomLeft() + QPoint(2, -2);
    QTest::mouseClick(window->results()->viewport(), Qt::RightButton, {}, empty);
    QVERIFY(!window->options()->isVisible());

    // Save writes what the list shows to the file chosen.
    Search(window, "", "searchAni");
    const auto file = env.folder / "found.txt";
    auto saved = SaveTo(file);
    window->findChild<QPushButton*>("saveList")->click();
    QVERIFY(*saved);
    QCOMPARE(korvel::test::ReadBytes(file), std::string("ped.ifp\r\ncar_doors.ifp\r\n"));

    Search(window, "***", "searchAll");
    QCOMPARE(Rows(window->results()), QStringList{Text(env, "sd2")});
    QCOMPARE(window->countLabel()->text(), Text(env, "find5") + " 0");
    ExpectPlaceholderInert(w, window, ran, {"extractFile", "QuickFile", "HClose"});
    Search(window, "ped", "searchAll");
    ExpectSelectAndClose(w, window, "HClose", 13);
}

void FindWindowsTest::findInFilesActsOnTheHoldingEntriesWithItsOwnBar() {
    WindowEnv env;
    auto& w = StartOnDemo(env);
    QStringList ran;
    RecordEntryCommands(w, ran);
    SearchFilesWindow* window = OpenSearchFiles(w);

    // Before any search nothing reacts.
    QTest::keyClick(window->results(), Qt::Key_Return);
    QVERIFY(MainSelection(w).isEmpty());

    // Each mode searches its own files; the window's own PB1 counted the
    // entries and is back at 0.
    const struct {
        const char* mode;
        const char* text;
        QString firstRow;
        int entries;
    } cases[] = {{"searchTextures", "Body", "infernusBody|infernus.txd|6", 13},
                 {"searchCol", "", "cheetah|vehicles.col|11", 5}};
    for (const auto& c : cases) {
        Search(window, c.text, c.mode);
        QCOMPARE(Rows(window->results()).value(0), c.firstRow);
        QVERIFY(window->progress()->isVisible());
        QCOMPARE(window->progress()->value(), 0);
        QCOMPARE(window->progress()->maximum(), c.entries);
    }
    // The main window's progress bar is its own again afterwards.
    auto* mainBar = w.centralWidget()->findChild<QProgressBar*>("PB1");
    QVERIFY(mainBar != nullptr);
    w.desktop().ShowProgress(7);
    QCOMPARE(mainBar->maximum(), 7);
    QCOMPARE(window->progress()->maximum(), 5);
    w.desktop().HideProgress();

    // vehicles.col (11) x3, Bridges.COL (18), generic.col (23) x3, props.col (24) x2, ...
    SelectResults(window, {0, 3, 4});
    QTest::keyClick(window->results(), Qt::Key_Return);
    QCOMPARE(MainSelection(w), (QList<int>{11, 18, 23}));
    SelectResults(window, {1, 9});
    Trigger(window, "OptView");
    Trigger(window, "OptExtract");
    Trigger(window, "OptQextract");
    QCOMPARE(ran, (QStringList{"EditView:11,25", "EditExtract:11,25", "EditQuick:11,25"}));

    Search(window, "Light", "searchTextures");
    const auto file = env.folder / "textures.txt";
    auto saved = SaveTo(file);
    window->findChild<QPushButton*>("saveResults")->click();
    QVERIFY(*saved);
    QCOMPARE(korvel::test::ReadBytes(file),
             std::string("infernusLights  --  infernus.txd\r\npoliceLightbar  --  police.txd\r\n"));

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
    QString shown;
    auto answered = AnswerNextModal([&](QWidget* modal) {
        AnswerNextModal([&](QWidget* next) {
            auto* box = qobject_cast<QMessageBox*>(next);
            shown = box->text();
            box->button(QMessageBox::Ok)->click();
        });
        qobject_cast<QMessageBox*>(modal)->button(QMessageBox::Yes)->click();
    });
    w.runCommand("ComCheck");
    QVERIFY(*answered);
    const QString report = Text(env, "aCheck2") + "\r\nlamppost1.dff";
    QCOMPARE(QGuiApplication::clipboard()->text(), report);
    QCOMPARE(shown, report + "\n" + Text(env, "aCheck3"));

    const struct {
        const char* command;
        const char* file;
        std::string start;
    } reports[] = {{"EditSave", "report.txt", "//   " + Text(env, "report1").toStdString()},
                   {"EditSaveHtml", "report.html", "<title>" + Text(env, "report1").toStdString()}};
    for (const auto& r : reports) {
        auto saved = SaveTo(env.folder / r.file);
        w.runCommand(r.command);
        QVERIFY(*saved);
        QVERIFY(korvel::test::ReadBytes(env.folder / r.file).starts_with(r.start));
        QCOMPARE(w.statusPanel()->text(), Text(env, "sd7"));
    }
}

QTEST_MAIN(FindWindowsTest)
#include "FindWindowsTest.moc"
