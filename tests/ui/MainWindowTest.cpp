// The main window's wiring and looks: the menu bar built from the menu tree,
// every item reaching its command, the engine's menu state in the actions,
// and the list drawing, selecting and reporting changes row by row.
#include "UiSupport.h"

#include "ui/ArchiveView.h"
#include "ui/EntryModel.h"

#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTest>

namespace {

// The tree as "name[shortcut]", "name*" when checkable, "-name" for a
// separator and "name{...}" for a submenu.
QString Describe(const QList<QAction*>& actions) {
    QStringList parts;
    for (QAction* a : actions) {
        QString part = (a->isSeparator() ? "-" : "") + a->objectName();
        if (a->menu() != nullptr) {
            part += "{" + Describe(a->menu()->actions()) + "}";
        } else if (!a->shortcut().isEmpty()) {
            part += "[" + a->shortcut().toString(QKeySequence::PortableText) + "]";
        }
        parts << part + (a->isCheckable() ? "*" : "");
    }
    return parts.join(' ');
}

} // namespace

// Every test starts on the same four-entry archive, grid and stripes off.
class MainWindowTest : public QObject {
    Q_OBJECT
    std::unique_ptr<korvel::test::WindowEnv> env;
    korvel::ui::MainWindow* w = nullptr;
    korvel::ui::ArchiveView* view = nullptr;
    std::string path;
    QPoint rowCentre(int row) const { return view->visualRect(w->model()->index(row, 0)).center(); }
private slots:
    void init() {
        env = std::make_unique<korvel::test::WindowEnv>();
        for (const char* key : {"rebuildPrompt", "showGrid", "showColors"})
            env->settings.WriteSetting("False", key);
        env->settings.WriteSetting("10", "l1r");
        path = env->archive("a&b.img", {"a.dff", "b.txd", "c.dff", "d.col"});
        w = &env->start(path);
        view = w->archiveView();
    }
    void cleanup() { env.reset(); }
    void menuBarFollowsTheMenuTree();
    void everyItemRunsItsCommandAndTheEngineKeepsTheChecks();
    void menuStateIsMirroredIntoTheActionsAndTheList();
    void selectionIsOneTruthAndTheMouseAndEnterReachTheCommands();
    void oneRowChangeNotifiesOneRow();
};

void MainWindowTest::menuBarFollowsTheMenuTree() {
    const QString expected =
        "MenuFile{FileNew[Ctrl+N] -g0 FileOpen[Ctrl+O] FileRecent{recent1[F1]* recent2[F2] "
        "recent3[F3]} -g1 FileClose[Ctrl+C] FileReload -g2 FileExit} "
        "Edit2Menu{EditView edSel{EditSelect[F8] -selectGap SelectModels SelectTextures SelectAni "
        "SelectCols -gapDD SelectAllOther} -ewrwerwe EditFind[Ctrl+F] EditFindIn -g3 "
        "EditInsertMarker[F11] MenuLCase{EditLowCaseName EditLowCase[F4] ConvLFName} -g8 ComCheck "
        "ShowMe{ShowMeModels ShowMeTextures ShowMeAni ShowMeCol -erwererwer ShowMeOthers} "
        "arcReport{EditSave EditSaveHtml}} "
        "MenuEdit{EditAdd[Ctrl+A] EditExtract[Ctrl+E] EditQuick[F5] -g6 ComDel[Del] ComReplace "
        "CmdGroupReplace -dfdsdsfsdf ComRename[Ctrl+R] ComMove[Ctrl+M] ComRebuild} "
        "MenuOptions{OptionsLanguage{lang1* lang2* lang3* lang4* lang5* lang6* lang7*} "
        "OptSort{SortOffset* SortName*} -gap2222 ArcViz{OptGrid* OptCols* -vgap OptsPick} "
        "AddScan{AddingScan* ScanSettings} -g4 OptAuto* OptConDelete* OptRebuildPrompt* "
        "-sexySpacerNo5 OptAss} "
        "MenuHelp{HelpHome HelpCheckWeb -drfsdfsdf HelpHelp[F12] HelpAbout}";
    QCOMPARE(Describe(w->menuBar()->actions()), expected);
}

void MainWindowTest::everyItemRunsItsCommandAndTheEngineKeepsTheChecks() {
    QStringList ran, expected;
    for (const std::string& item : korvel::CommandItemNames()) {
        const QString name = QString::fromStdString(item);
        w->setCommand(name, [&ran, name] { ran << name; });
        QAction* action = env->action(item.c_str());
        action->setEnabled(true);
        action->trigger();
        expected << name;
        // Qt flips a checkable item before its command runs; the engine's
        // check wins, here where the command changed nothing.
        QCOMPARE(action->isChecked(), w->editor().menu().isChecked(item));
    }
    QCOMPARE(ran, expected);
}

void MainWindowTest::menuStateIsMirroredIntoTheActionsAndTheList() {
    QVERIFY(env->action("recent1")->isChecked());
    // A path is plain text: its ampersand is no mnemonic.
    QCOMPARE(env->action("recent1")->text(), QString::fromStdString(path).replace('&', "&&"));
    QCOMPARE(env->action("lang1")->text(), QStringLiteral("&english"));
    QVERIFY(!view->showGrid() && !view->alternatingRowColors());
    env->action("OptGrid")->trigger();
    env->action("OptCols")->trigger();
    QVERIFY(view->showGrid() && view->alternatingRowColors());
    QCOMPARE(view->palette().color(QPalette::Base), QColor(10, 233, 233));
    QCOMPARE(view->palette().color(QPalette::AlternateBase), QColor(255, 255, 255));
    env->action("FileClose")->trigger();
    QVERIFY(!env->action("FileClose")->isEnabled());
    env->action("lang2")->trigger();
    QCOMPARE(env->action("FileOpen")->text(), env->text("menua3"));
    QCOMPARE(w->model()->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(),
             env->text("head1"));
}

void MainWindowTest::selectionIsOneTruthAndTheMouseAndEnterReachTheCommands() {
    env->recordEntryCommands();
    // The right button pops up the edit menu only over a selection.
    QTest::mousePress(view->viewport(), Qt::RightButton, {}, rowCentre(0));
    QVERIFY(!w->menu("MenuEdit")->isVisible());
    env->action("SelectModels")->trigger();
    QCOMPARE(view->selectionModel()->selectedRows().size(), 2);
    QVERIFY(view->selectionModel()->isRowSelected(0) && view->selectionModel()->isRowSelected(2));
    QTest::mousePress(view->viewport(), Qt::RightButton, {}, rowCentre(1));
    QTRY_VERIFY(w->menu("MenuEdit")->isVisible());
    w->menu("MenuEdit")->hide();
    QCOMPARE(env->selectedRows(), (QList<int>{1, 3})); // the right button selects nothing
    // A click in the view selects in the table alone; Enter and a double
    // click view the selection.
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, rowCentre(1));
    QTest::keyClick(view, Qt::Key_Return);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, rowCentre(3));
    QCOMPARE(env->ran, (QStringList{"EditView:2", "EditView:4"}));
}

void MainWindowTest::oneRowChangeNotifiesOneRow() {
    QSignalSpy resets(w->model(), &QAbstractItemModel::modelReset);
    QSignalSpy inserted(w->model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(w->model(), &QAbstractItemModel::rowsRemoved);
    QSignalSpy changed(w->model(), &QAbstractItemModel::dataChanged);
    auto& table = w->editor().table();
    table.append(korvel::Entry{9, 1, "new.txd", false});
    table.setName(0, "renamed.dff");
    // The commands assign icons after a rename, a marker or a move; that
    // must not repaint every row.
    w->editor().AssignTypeIcons();
    table.remove(1);
    table.setSelected(3, true);
    table.setSelected(3, true);                   // no change, no signal
    table.removeWhere({true, true, false, true}); // two runs, removed from the back
    QStringList spans;
    for (const auto& s : removed)
        spans << QString("-%1-%2").arg(s[1].toInt()).arg(s[2].toInt());
    for (const auto& s : changed)
        spans << QString("~%1-%2").arg(s[0].toModelIndex().row()).arg(s[1].toModelIndex().row());
    QCOMPARE(spans, (QStringList{"-1-1", "-3-3", "-0-1", "~0-0", "~3-3"}));
    QCOMPARE(resets.size(), 0);
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(env->shownNames(), (std::vector<std::string>{"d.col"}));
}

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
