// The main window's wiring and looks: the menu bar built from the menu tree,
// every item reaching its command, the engine's menu state in the actions,
// and the list drawing, selecting and reporting changes row by row.
#include "UiSupport.h"

#include "ui/ArchiveView.h"
#include "ui/EntryModel.h"
#include "ui/SearchCommands.h"
#include "ui/SearchWindow.h"
#include "window/MenuTree.h"

#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMetaEnum>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
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
    QPoint rowCentre(int row) const {
        return view->visualRect(view->model()->index(row, 0)).center();
    }
    QStringList viewNames() const {
        QStringList names;
        for (int row = 0; row < view->model()->rowCount(); ++row)
            names << view->model()->index(row, 0).data(Qt::ToolTipRole).toString();
        return names;
    }
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
    void longWorkTakesOnlyCancelAndCloseWaitsForIt();
    void standardShortcutsGiveTheDesktopKeysTheirMeaning();
    void keyboardReachesTheMenusAndClosesToolWindows();
    void filterBoxFiltersAndCommandsSeeOnlyTheShownRows();
    void headerSortsTheViewOnlyAndTheSortMenuClearsIt();
    void copyPutsTheSelectedEntriesOnTheClipboardAsFiles();
    void nameColumnFillsAndThePlaceIsRememberedWhenItFits();
    void titleIconAndStatusFollowTheArchiveAndTheSelection();
    void viewAsksTheDesktopWhetherAnyProgramOpensTheType();
};

void MainWindowTest::menuBarFollowsTheMenuTree() {
    const QString expected =
        "MenuFile{FileNew[Ctrl+N] -g0 FileOpen[Ctrl+O] FileRecent{recent1[F1]* recent2[F2] "
        "recent3[F3]} -g1 FileClose[Ctrl+C] FileReload -g2 FileExit} "
        "Edit2Menu{EditView EditCopyFiles[Ctrl+Shift+C] edSel{EditSelect[F8] -selectGap "
        "SelectModels SelectTextures SelectAni "
        "SelectCols -gapDD SelectAllOther} -ewrwerwe EditFind[Ctrl+F] EditFindIn -g3 "
        "EditInsertMarker[F11] MenuLCase{EditLowCaseName EditLowCase[F4] ConvLFName} -g8 ComCheck "
        "ShowMe{ShowMeModels ShowMeTextures ShowMeAni ShowMeCol -erwererwer ShowMeOthers} "
        "arcReport{EditSave EditSaveHtml}} "
        "MenuEdit{EditAdd[Ctrl+A] EditExtract[Ctrl+E] EditQuick[F5] -g6 ComDel[Del] ComReplace "
        "CmdGroupReplace -dfdsdsfsdf ComRename[Ctrl+R] ComMove[Ctrl+M] ComRebuild ComConvert} "
        "MenuOptions{OptionsLanguage{lang1* lang2* lang3* lang4* lang5* lang6* lang7*} "
        "OptSort{SortOffset* SortName*} -gap2222 ArcViz{OptGrid* OptCols* -vgap OptsPick "
        "-previewGap OptPreview[F9]*} "
        "AddScan{AddingScan* ScanSettings} -g4 OptAuto* OptConDelete* OptRebuildPrompt* "
        "OptStdKeys* -sexySpacerNo5 OptAss} "
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
    QCOMPARE(view->palette().color(QPalette::AlternateBase),
             QApplication::palette().color(QPalette::AlternateBase));
    env->settings.WriteSetting("True", "ownColors");
    w->commands().PaintRowStripes();
    QCOMPARE(view->palette().color(QPalette::Base), QColor(10, 233, 233));
    QCOMPARE(view->palette().color(QPalette::AlternateBase), QColor(255, 255, 255));
    QCOMPARE(view->palette().color(QPalette::Text), QColor(0, 0, 0));
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

void MainWindowTest::longWorkTakesOnlyCancelAndCloseWaitsForIt() {
    auto* cancel = w->findChild<QPushButton*>("cancelWork");
    QVERIFY(cancel != nullptr && cancel->isHidden());
    QStringList ran;
    w->setCommand("ComDel", [&] { ran << "ComDel"; });
    // Each way of asking to stop (a click goes through the window, as on X11), with a
    // command's key and menu item held back before.
    QPoint at;
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"button", [&] { QTest::mouseClick(w->windowHandle(), Qt::LeftButton, {}, at); }},
        {"Escape", [&] { QTest::keyClick(view, Qt::Key_Escape); }},
        {"closing", [&] { w->close(); }},
    };
    for (const auto& [way, press] : ways) {
        w->desktop().ShowCancellableProgress(10);
        at = cancel->mapTo(w, cancel->rect().center());
        QVERIFY2(cancel->isVisible(), way);
        QCOMPARE(cancel->text(), env->text("workCancel"));
        QTest::keyClick(view, Qt::Key_Delete);
        w->runCommand("ComDel");
        QVERIFY2(!w->desktop().ProgressCancelled(), way);
        press();
        QVERIFY2(w->desktop().ProgressCancelled(), way);
        QVERIFY2(w->isVisible(), way); // never closed in the middle of the work
        w->desktop().HideProgress();
        QVERIFY2(cancel->isHidden(), way);
    }
    QCOMPARE(ran, QStringList());
    QTRY_VERIFY(!w->isVisible()); // the close asked for comes once the work stopped
}

void MainWindowTest::standardShortcutsGiveTheDesktopKeysTheirMeaning() {
    for (const korvel::ShortcutChoice& choice : korvel::ShortcutChoices)
        QVERIFY(korvel::FindMenuNode(choice.item)->shortcut == choice.designed);
    const QHash<QString, QString> onlyItemFor = {
        {"New", "FileNew"},        {"Open", "FileOpen"},         {"Close", "FileClose"},
        {"Refresh", "FileReload"}, {"SelectAll", "EditSelect"},  {"Find", "EditFind"},
        {"Delete", "ComDel"},      {"HelpContents", "HelpHelp"}, {"Copy", "EditCopyFiles"}};
    env->action("OptStdKeys")->trigger();
    QVERIFY(env->settings.StandardShortcuts() && env->action("OptStdKeys")->isChecked());
    QHash<QString, QString> owner; // key -> item
    for (QAction* a : w->findChildren<QAction*>())
        if (!a->shortcut().isEmpty())
            QVERIFY(!std::exchange(owner[a->shortcut().toString()], a->objectName()).size());
    const QMetaEnum keys = QMetaEnum::fromType<QKeySequence::StandardKey>();
    for (int i = 0; i < keys.keyCount(); ++i)
        for (const QKeySequence& bound :
             QKeySequence::keyBindings(QKeySequence::StandardKey(keys.value(i))))
            QVERIFY(!owner.contains(bound.toString()) ||
                    onlyItemFor.value(keys.key(i)) == owner[bound.toString()]);
    env->action("OptStdKeys")->trigger(); // back to the designed keys
    QCOMPARE(env->action("FileClose")->shortcut(), QKeySequence("Ctrl+C"));
}

void MainWindowTest::keyboardReachesTheMenusAndClosesToolWindows() {
    QVERIFY(QTest::qWaitForWindowActive(w));
    QTest::keyClick(view, Qt::Key_F10);
    QTRY_COMPARE(w->menu("MenuFile")->activeAction(), env->action("FileNew"));
    w->menu("MenuFile")->close();
    // The list's pop-up menu from the keyboard, only over a selection.
    for (const auto& [key, modifiers, selection] :
         {std::tuple{Qt::Key_Menu, 0, "SelectModels"}, std::tuple{Qt::Key_F10, 1, "SelectCols"},
          std::tuple{Qt::Key_Menu, 0, "SelectAni"}}) {
        w->runCommand(selection); // the archive holds no animation
        QTest::keyClick(view, key, modifiers ? Qt::ShiftModifier : Qt::NoModifier);
        QCOMPARE(w->menu("MenuEdit")->isVisible(), view->selectionModel()->hasSelection());
        w->menu("MenuEdit")->hide();
    }
    w->runCommand("EditFind"); // Tab goes down the window as it is laid out
    QStringList chain;
    QWidget* first = w->findWindows().searchWindow()->searchText();
    for (QWidget* at = first; chain.isEmpty() || at != first; at = at->nextInFocusChain())
        chain << ((at->focusPolicy() & Qt::TabFocus) && at->isVisible() ? at->objectName() : "");
    QCOMPARE(chain.join(' ').simplified(),
             "searchText findIt searchResults searchAll searchTextures "
             "searchModels searchAni searchCol saveList closeSearch");
    for (const char* key : {"Esc", "Ctrl+W"})
        for (const char* item : {"EditFind", "EditFindIn", "ShowMeModels"}) {
            w->runCommand(item);
            QTRY_VERIFY(QApplication::activeWindow() && QApplication::activeWindow() != w);
            QPointer<QWidget> tool = QApplication::activeWindow();
            QTest::keySequence(tool, QKeySequence(key));
            QTRY_VERIFY2(tool.isNull() || !tool->isVisible(), item);
        }
}

void MainWindowTest::filterBoxFiltersAndCommandsSeeOnlyTheShownRows() {
    env->action("SelectTextures")->trigger();
    w->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QTest::keyClick(view, Qt::Key_Slash);
    QCOMPARE(QApplication::focusWidget(), w->filterBox());
    QTest::keyClicks(w->filterBox(), "?.DFF");
    QCOMPARE(viewNames(), (QStringList{"a.dff", "c.dff"}));
    QCOMPARE(w->statusPanel()->text(),
             env->text("filterShown") + " 2 " + env->text("filterOf") + " 4");
    env->action("EditSelect")->trigger(); // selects what is shown, no more
    QCOMPARE(env->selectedRows(), (QList<int>{1, 3}));
    w->filterKind()->setCurrentIndex(5); // other files: none of these
    QCOMPARE(viewNames(), QStringList{});
    w->filterKind()->setCurrentIndex(0);
    QTest::keyClick(w->filterBox(), Qt::Key_Escape);
    QCOMPARE(w->filterBox()->text(), QString());
    QCOMPARE(view->selectionModel()->selectedRows().size(), 2);
    QCOMPARE(env->selectedRows(), (QList<int>{1, 3}));
}

void MainWindowTest::headerSortsTheViewOnlyAndTheSortMenuClearsIt() {
    QHeaderView* header = view->horizontalHeader();
    const QPoint name(header->sectionViewportPosition(0) + 5, 5);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, name);
    // Not so soon that the two clicks make a double click.
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, name,
                      QApplication::doubleClickInterval() + 50);
    QCOMPARE(viewNames(), (QStringList{"d.col", "c.dff", "b.txd", "a.dff"}));
    QVERIFY(header->isSortIndicatorShown() && header->sortIndicatorOrder() == Qt::DescendingOrder);
    QCOMPARE(env->shownNames(), (std::vector<std::string>{"a.dff", "b.txd", "c.dff", "d.col"}));
    // The selection follows the rows, not their places.
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, rowCentre(0));
    QCOMPARE(env->selectedRows(), QList<int>{4});
    env->action("SortOffset")->trigger();
    QVERIFY(!header->isSortIndicatorShown());
    QCOMPARE(viewNames(), (QStringList{"a.dff", "b.txd", "c.dff", "d.col"}));
}

void MainWindowTest::copyPutsTheSelectedEntriesOnTheClipboardAsFiles() {
    env->action("SelectModels")->trigger();
    env->action("EditCopyFiles")->trigger();
    const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
    QVERIFY(copied != nullptr && copied->urls().size() == 2);
    QCOMPARE(copied->urls()[1].fileName(), QString("c.dff"));
    QVERIFY(QFile::exists(copied->urls()[1].toLocalFile()));
    QVERIFY(copied->data("x-special/gnome-copied-files").startsWith("copy\nfile://"));
}

void MainWindowTest::nameColumnFillsAndThePlaceIsRememberedWhenItFits() {
    const auto columns = [](korvel::ui::ArchiveView* v) {
        return QList<int>{v->columnWidth(0), v->columnWidth(1), v->columnWidth(2)};
    };
    w->resize(500, 300);
    view->setColumnWidth(1, 123);
    QCOMPARE(view->columnWidth(0) + 123 + view->columnWidth(2), view->viewport()->width());
    // The other columns leave no room: Name keeps its floor.
    view->setColumnWidth(1, view->viewport()->width());
    QCOMPARE(view->columnWidth(0), view->nameFloor());
    view->setColumnWidth(1, 123);
    const QList<int> widths = columns(view);
    w->close();
    {
        korvel::ui::MainWindow again(env->settings);
        again.startup("");
        again.show();
        QCOMPARE(again.size(), QSize(500, 300));
        QCOMPARE(columns(again.archiveView()), widths);
        again.resize(5000, 5000); // larger than the screen
        again.close();
    }
    korvel::ui::MainWindow third(env->settings);
    const QRect room = third.screen()->availableGeometry();
    QVERIFY(third.width() <= room.width() && third.height() <= room.height());
}

void MainWindowTest::titleIconAndStatusFollowTheArchiveAndTheSelection() {
    QCOMPARE(w->windowTitle(), QString::fromUtf8("a&b.img \u2014 Korvel"));
    QVERIFY(!w->windowIcon().isNull());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, rowCentre(1));
    QTRY_VERIFY(w->summaryPanel()->text().startsWith(env->text("sbSel") + " 1 ("));
    QVERIFY(env->action("ComDel")->isEnabled());
    env->action("FileClose")->trigger();
    QCOMPARE(w->windowTitle(), QString(" Korvel"));
    QVERIFY(w->statsPanel()->text().isEmpty() && w->summaryPanel()->isHidden());
}

void MainWindowTest::viewAsksTheDesktopWhetherAnyProgramOpensTheType() {
    using korvel::test::WriteBytes;
    const auto at = [&](const char* name) { return env->folder / name; };
    WriteBytes(at("xdg-mime"), "#!/bin/sh\n[ \"$3\" = text/plain ] && echo a.desktop\n");
    std::filesystem::permissions(at("xdg-mime"), std::filesystem::perms::owner_all);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QByteArray(env->folder.path().c_str()) + ":" + path);
    const auto opens = [&](const char* name) {
        return korvel::ui::QtDesktop::HasDefaultApplication(QString::fromStdString(at(name)));
    };
    QVERIFY(!opens("x.txd") && opens("x.txt"));
    qputenv("PATH", path);
}

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
