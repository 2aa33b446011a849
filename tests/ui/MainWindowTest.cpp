#include "UiSupport.h"

#include "window/MenuTree.h"
#include "platform/Folders.h"
#include "ui/ArchiveView.h"
#include "ui/EntryModel.h"

#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using korvel::test::AnswerNextModal;
using korvel::test::WindowEnv;

namespace {

QString Describe(const QList<QAction*>& actions) {
    QStringList parts;
    for (QAction* a : actions) {
        QString part = a->objectName();
        if (a->isSeparator()) {
            part = "-" + part;
        } else if (a->menu() != nullptr) {
            part += "{" + Describe(a->menu()->actions()) + "}";
        } else if (!a->shortcut().isEmpty()) {
            part += "[" + a->shortcut().toString(QKeySequence::PortableText) + "]";
        }
        parts << part;
    }
    return parts.join(' ');
}

QString Text(const WindowEnv& env, const char* key) {
    return QString::fromStdString(env.settings.LookupText(key));
}

QStringList Headers(korvel::ui::MainWindow& window) {
    QStringList headers;
    auto* model = window.model();
    for (int c = 0; c < model->columnCount(); ++c) {
        headers << model->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString();
    }
    return headers;
}

} // namespace

class MainWindowTest : public QObject {
    Q_OBJECT
private slots:
    void menuTreeHasTheDesignedNamesOrderAndShortcuts();
    void archiveCommandsFollowTheOpenState();
    void captionsComeFromEachShippedLanguage();
    void startupOpensTheCommandLineArchive();
    void startupLoadsTheMostRecentArchive();
    void firstRunQuestionIsAskedAndAnswered();
    void modalMessageCanBeAnswered();
    void languageMenuListsAndSwitchesLanguages();
    void sortingReordersTheView();
    void gridAndStripesFollowTheirItems();
    void selectionIsOneTruth();
    void rightClickPopsUpCommandsOnlyWithASelection();
    void oneRowChangeIsNoReset();
    void keyboardShortcutsSelectAndClose();
    void optionItemsToggleAndWriteSettings();
    void aboutBoxShowsProductAndLicence();
};

void MainWindowTest::menuTreeHasTheDesignedNamesOrderAndShortcuts() {
    WindowEnv env;
    auto& w = env.start();
    const QString expected =
        "MenuFile{FileNew[Ctrl+N] -g0 FileOpen[Ctrl+O] FileRecent{recent1[F1] recent2[F2] "
        "recent3[F3]} -g1 FileClose[Ctrl+C] FileReload -g2 FileExit} "
        "Edit2Menu{EditView edSel{EditSelect[F8] -selectGap SelectModels SelectTextures SelectAni "
        "SelectCols -gapDD SelectAllOther} -ewrwerwe EditFind[Ctrl+F] EditFindIn -g3 "
        "EditInsertMarker[F11] MenuLCase{EditLowCaseName EditLowCase[F4] ConvLFName} -g8 ComCheck "
        "ShowMe{ShowMeModels ShowMeTextures ShowMeAni ShowMeCol -erwererwer ShowMeOthers} "
        "arcReport{EditSave EditSaveHtml}} "
        "MenuEdit{EditAdd[Ctrl+A] EditExtract[Ctrl+E] EditQuick[F5] -g6 ComDel[Del] ComReplace "
        "CmdGroupReplace -dfdsdsfsdf ComRename[Ctrl+R] ComMove[Ctrl+M] ComRebuild} "
        "MenuOptions{OptionsLanguage{lang1 lang2 lang3 lang4 lang5 lang6 lang7} "
        "OptSort{SortOffset SortName} -gap2222 ArcViz{OptGrid OptCols -vgap OptsPick} "
        "AddScan{AddingScan ScanSettings} -g4 OptAuto OptConDelete OptRebuildPrompt "
        "-sexySpacerNo5 OptAss} "
        "MenuHelp{HelpHome HelpCheckWeb -drfsdfsdf HelpHelp[F12] HelpAbout}";
    QCOMPARE(Describe(w.menuBar()->actions()), expected);
    QCOMPARE(w.objectName(), QStringLiteral("Main"));
    QCOMPARE(w.windowTitle(), QStringLiteral(" Korvel"));
    QVERIFY(w.findChild<korvel::ui::ArchiveView*>("Archive") != nullptr);
    QVERIFY(w.findChild<QWidget*>("SB") != nullptr);
    QVERIFY(w.findChild<QWidget*>("PB1") != nullptr);
    // Only the option items carry check marks.
    for (const char* name : {"OptGrid", "OptCols", "SortName", "SortOffset", "OptAuto",
                             "OptConDelete", "OptRebuildPrompt", "AddingScan", "lang1"}) {
        QVERIFY2(env.action(name)->isCheckable(), name);
    }
    QVERIFY(!env.action("FileOpen")->isCheckable());
}

void MainWindowTest::archiveCommandsFollowTheOpenState() {
    WindowEnv env;
    const std::string path = env.archive("a.img", {"a.dff"});
    env.start();
    for (const std::string& name : korvel::ArchiveCommandNames()) {
        QVERIFY2(!env.window->action(QString::fromStdString(name))->isEnabled(), name.c_str());
    }
    for (const char* name :
         {"FileNew", "FileOpen", "FileExit", "OptGrid", "HelpAbout", "recent1"}) {
        QVERIFY2(env.action(name)->isEnabled(), name);
    }
    QVERIFY(env.window->editor().OpenArchive(path));
    for (const std::string& name : korvel::ArchiveCommandNames()) {
        QVERIFY2(env.window->action(QString::fromStdString(name))->isEnabled(), name.c_str());
    }
    QVERIFY(env.action("recent1")->isChecked());
    QCOMPARE(env.action("recent1")->text(), QString::fromStdString(path));
    env.action("FileClose")->trigger();
    QVERIFY(!env.action("FileClose")->isEnabled());
    QVERIFY(!env.action("recent1")->isChecked());
}

void MainWindowTest::captionsComeFromEachShippedLanguage() {
    for (const char* language : {"english", "francais", "deutsch"}) {
        WindowEnv env;
        env.settings.WriteSetting(language, "language");
        auto& w = env.start();
        korvel::ForEachMenuNode(korvel::MainMenuTree(), [&](const korvel::MenuNode& node) {
            if (!node.textKey.empty()) {
                QCOMPARE(w.action(QString::fromStdString(node.name))->text(),
                         QString::fromStdString(env.settings.LookupText(node.textKey))
                             .replace('&', "&&"));
            }
        });
        QCOMPARE(w.menu("MenuOptions")->title(), Text(env, "menud0"));
        QCOMPARE(Headers(w),
                 (QStringList{Text(env, "head1"), Text(env, "head2"), Text(env, "head3")}));
        QCOMPARE(w.model()->index(0, 0).data().toString(), Text(env, "ready"));
    }
}

void MainWindowTest::startupOpensTheCommandLineArchive() {
    WindowEnv env;
    const std::string other = env.archive("other.img", {"x.dff"});
    env.settings.WriteSetting(other, "recent1");
    const std::string path = env.archive("my files.img", {"b.dff", "a.txd"});
    auto& w = env.start("\"" + path + "\"");
    QCOMPARE(w.editor().dataPath(), path);
    // The stored order is offset: directory order.
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"b.dff", "a.txd"}));
    QCOMPARE(w.model()->index(1, 1).data().toString(), QStringLiteral("800"));
    QCOMPARE(w.model()->index(1, 2).data().toString(), QStringLiteral("2kb"));
    QCOMPARE(w.statusPanel()->text(), QStringLiteral("Korvel 1.0"));
    QCOMPARE(w.statsPanel()->text(), Text(env, "stats1") + " 2");
    QVERIFY(!env.action("OptAuto")->isChecked());
    QCOMPARE(w.archiveView()->selectionModel()->selectedRows().size(), 0);
}

void MainWindowTest::startupLoadsTheMostRecentArchive() {
    WindowEnv env;
    env.settings.WriteSetting(env.archive("recent.img", {"r.dff"}), "recent1");
    auto& w = env.start("--not-an-archive");
    QVERIFY(w.editor().isOpen());
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"r.dff"}));
    QVERIFY(env.action("OptAuto")->isChecked());
    // A single row is left unselected.
    QCOMPARE(w.archiveView()->selectionModel()->selectedRows().size(), 0);
}

void MainWindowTest::firstRunQuestionIsAskedAndAnswered() {
    WindowEnv env(true);
    QString asked;
    auto answered = AnswerNextModal([&](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        QVERIFY(box != nullptr);
        asked = box->windowTitle() + "|" + box->text();
        box->button(QMessageBox::No)->click();
    });
    auto& w = env.start();
    QVERIFY(*answered);
    QVERIFY(asked.startsWith(Text(env, "frun6") + "|" + Text(env, "frun1")));
    QCOMPARE(QString::fromStdString(env.settings.ReadSetting("firstRun")), QStringLiteral("False"));
    QCOMPARE(env.shownNames(), (std::vector<std::string>{Text(env, "ready").toStdString()}));
    QVERIFY(!w.editor().isOpen());
}

void MainWindowTest::modalMessageCanBeAnswered() {
    WindowEnv env;
    auto& w = env.start();
    QString shown;
    auto answered = AnswerNextModal([&](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        QVERIFY(box != nullptr);
        QCOMPARE(box->icon(), QMessageBox::Information);
        shown = box->text();
        box->button(QMessageBox::Ok)->click();
    });
    const std::string missing = (env.folder / "gone.img").string();
    w.editor().OpenArchive(missing);
    QVERIFY(*answered);
    QCOMPARE(shown, Text(env, "openArchive1") + "\n" + QString::fromStdString(missing));
    QCOMPARE(env.shownNames(), (std::vector<std::string>{Text(env, "ready").toStdString()}));
}

void MainWindowTest::languageMenuListsAndSwitchesLanguages() {
    WindowEnv env;
    env.settings.WriteSetting("False", "autoLoad");
    const std::string path = env.archive("lang.img", {"a.dff"});
    env.settings.WriteSetting(path, "recent1");
    auto& w = env.start();
    QStringList visible;
    for (QAction* a : w.menu("OptionsLanguage")->actions()) {
        if (a->isVisible()) {
            visible << a->text();
        }
    }
    QCOMPARE(visible, (QStringList{"english", "francais", "deutsch"}));
    QVERIFY(env.action("lang1")->isChecked());
    QVERIFY(!w.editor().isOpen());

    env.action("lang2")->trigger();
    QCOMPARE(QString::fromStdString(env.settings.ReadSetting("language")),
             QStringLiteral("francais"));
    QVERIFY(env.action("lang2")->isChecked());
    QVERIFY(!env.action("lang1")->isChecked());
    QCOMPARE(env.action("FileOpen")->text(), Text(env, "menua3"));
    QVERIFY(env.action("FileOpen")->text() != QStringLiteral("Open"));
    QCOMPARE(Headers(w), (QStringList{Text(env, "head1"), Text(env, "head2"), Text(env, "head3")}));
    // Nothing was open: the reload reopened the most recent archive.
    QVERIFY(w.editor().isOpen());
    QCOMPARE(w.statusPanel()->text(), "francais " + Text(env, "sd5"));
}

void MainWindowTest::sortingReordersTheView() {
    WindowEnv env;
    auto& w = env.start(env.archive("order.img", {"b.dff", "a.txd", "c.ifp"}));
    env.action("SortName")->trigger();
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"a.txd", "b.dff", "c.ifp"}));
    QVERIFY(env.action("SortName")->isChecked());
    QVERIFY(!env.action("SortOffset")->isChecked());
    QCOMPARE(w.statusPanel()->text(), Text(env, "sort1"));
    // Triggering the checked item again keeps it checked.
    env.action("SortName")->trigger();
    QVERIFY(env.action("SortName")->isChecked());
    env.action("SortOffset")->trigger();
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"b.dff", "a.txd", "c.ifp"}));
    QCOMPARE(QString::fromStdString(env.settings.ReadSetting("sort")), QStringLiteral("offset"));
}

void MainWindowTest::gridAndStripesFollowTheirItems() {
    WindowEnv env;
    env.settings.WriteSetting("False", "showGrid");
    env.settings.WriteSetting("False", "showColors");
    auto& w = env.start(env.archive("look.img", {"a.dff", "b.dff"}));
    QVERIFY(!w.archiveView()->showGrid());
    QVERIFY(!w.archiveView()->alternatingRowColors());
    env.action("OptGrid")->trigger();
    QVERIFY(w.archiveView()->showGrid());
    QVERIFY(env.action("OptGrid")->isChecked());
    env.action("OptGrid")->trigger();
    QVERIFY(!w.archiveView()->showGrid());

    env.settings.WriteSetting("10", "l1r");
    env.settings.WriteSetting("20", "l1g");
    env.settings.WriteSetting("30", "l1b");
    env.action("OptCols")->trigger();
    QVERIFY(w.archiveView()->alternatingRowColors());
    QCOMPARE(w.archiveView()->palette().color(QPalette::Base), QColor(10, 20, 30));
    QCOMPARE(w.archiveView()->palette().color(QPalette::AlternateBase), QColor(255, 255, 255));

    auto answered = AnswerNextModal([](QWidget* modal) {
        qobject_cast<QMessageBox*>(modal)->button(QMessageBox::Ok)->click();
    });
    env.action("OptCols")->trigger();
    QVERIFY(*answered);
    QVERIFY(!env.action("OptCols")->isChecked());
    QVERIFY(w.archiveView()->alternatingRowColors()); // until the next start
}

void MainWindowTest::selectionIsOneTruth() {
    WindowEnv env;
    auto& w = env.start(env.archive("sel.img", {"a.dff", "b.txd", "c.dff", "d.col"}));
    auto* selection = w.archiveView()->selectionModel();
    env.action("EditSelect")->trigger();
    QCOMPARE(selection->selectedRows().size(), 4);
    QCOMPARE(w.statusPanel()->text(), Text(env, "select1") + " 4 " + Text(env, "select2"));

    env.action("SelectModels")->trigger();
    QCOMPARE(selection->selectedRows().size(), 2);
    QVERIFY(selection->isRowSelected(0));
    QVERIFY(selection->isRowSelected(2));

    // A selection made in the view reaches the table.
    selection->select(w.model()->index(3, 0),
                      QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    const auto& rows = w.editor().table().rows();
    QCOMPARE(w.editor().table().selectedCount(), std::size_t{1});
    QVERIFY(rows[3].selected);
    // Clicking a row in the view does the same.
    QTest::mouseClick(w.archiveView()->viewport(), Qt::LeftButton, {},
                      w.archiveView()->visualRect(w.model()->index(1, 0)).center());
    QCOMPARE(w.editor().table().selectedCount(), std::size_t{1});
    QVERIFY(rows[1].selected);
}

void MainWindowTest::rightClickPopsUpCommandsOnlyWithASelection() {
    WindowEnv env;
    auto& w = env.start(env.archive("pop.img", {"a.dff", "b.dff"}));
    const QPoint onRow = w.archiveView()->visualRect(w.model()->index(0, 0)).center();
    QTest::mousePress(w.archiveView()->viewport(), Qt::RightButton, {}, onRow);
    QVERIFY(!w.menu("MenuEdit")->isVisible());
    QCOMPARE(w.editor().table().selectedCount(), std::size_t{0});

    w.editor().table().setSelected(1, true);
    QTest::mousePress(w.archiveView()->viewport(), Qt::RightButton, {}, onRow);
    QTRY_VERIFY(w.menu("MenuEdit")->isVisible());
    w.menu("MenuEdit")->hide();
    // The right button left the selection alone.
    QVERIFY(w.editor().table().rows()[1].selected);
    QVERIFY(!w.editor().table().rows()[0].selected);
}

void MainWindowTest::oneRowChangeIsNoReset() {
    WindowEnv env;
    auto& w = env.start(env.archive("rows.img", {"a.dff", "b.dff", "c.dff"}));
    QSignalSpy resets(w.model(), &QAbstractItemModel::modelReset);
    QSignalSpy inserted(w.model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(w.model(), &QAbstractItemModel::rowsRemoved);
    QSignalSpy changed(w.model(), &QAbstractItemModel::dataChanged);
    auto& table = w.editor().table();
    table.append(korvel::Entry{9, 1, "new.txd", false});
    table.setName(0, "renamed.dff");
    table.remove(1);
    QCOMPARE(resets.size(), 0);
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(removed.size(), 1);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"renamed.dff", "c.dff", "new.txd"}));
}

void MainWindowTest::keyboardShortcutsSelectAndClose() {
    WindowEnv env;
    auto& w = env.start(env.archive("keys.img", {"a.dff", "b.dff", "c.txd"}));
    QVERIFY(QTest::qWaitForWindowActive(&w));
    w.archiveView()->setFocus();
    QTest::keyClick(w.archiveView(), Qt::Key_F8);
    QCOMPARE(w.editor().table().selectedCount(), std::size_t{3});
    QCOMPARE(w.archiveView()->selectionModel()->selectedRows().size(), 3);
    QTest::keyClick(w.archiveView(), Qt::Key_C, Qt::ControlModifier);
    QVERIFY(!w.editor().isOpen());
    QCOMPARE(w.statusPanel()->text(), Text(env, "stats2"));
}

void MainWindowTest::optionItemsToggleAndWriteSettings() {
    WindowEnv env;
    env.settings.WriteSetting("False", "rebuildPrompt");
    env.start();
    QVERIFY(!env.action("OptRebuildPrompt")->isChecked());
    env.action("OptRebuildPrompt")->trigger();
    QVERIFY(env.action("OptRebuildPrompt")->isChecked());
    QCOMPARE(QString::fromStdString(env.settings.ReadSetting("rebuildPrompt")),
             QStringLiteral("True"));
    QVERIFY(env.action("OptConDelete")->isChecked()); // default deleteProm=True
    env.action("OptConDelete")->trigger();
    QVERIFY(!env.action("OptConDelete")->isChecked());
    QCOMPARE(QString::fromStdString(env.settings.ReadSetting("deleteProm")),
             QStringLiteral("False"));
}

void MainWindowTest::aboutBoxShowsProductAndLicence() {
    WindowEnv env;
    env.start();
    QString text;
    auto answered = AnswerNextModal([&](QWidget* modal) {
        QCOMPARE(modal->objectName(), QStringLiteral("About"));
        for (QLabel* label : modal->findChildren<QLabel*>()) {
            text += label->text() + "\n";
        }
        modal->close();
    });
    env.action("HelpAbout")->trigger();
    QVERIFY(*answered);
    QVERIFY(text.contains("Korvel"));
    QVERIFY(text.contains("1.0"));
    QVERIFY(text.contains("MIT"));
}

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
