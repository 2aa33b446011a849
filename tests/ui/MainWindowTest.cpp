#include "UiSupport.h"

#include "ui/ArchiveView.h"
#include "ui/EntryModel.h"
#include "window/CommandTable.h"
#include "window/MenuTree.h"

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

} // namespace

class MainWindowTest : public QObject {
    Q_OBJECT
private slots:
    void menuTreeHasTheDesignedNamesOrderAndShortcuts();
    void everyActionRunsItsCommandFromTheTable();
    void menuStateIsMirroredIntoTheActions();
    void gridAndStripesFollowTheirItems();
    void selectionIsOneTruth();
    void rightClickPopsUpCommandsOnlyWithASelection();
    void oneRowChangeNotifiesOneRow();
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
    QCOMPARE(w.windowTitle(), QStringLiteral(" Korvel"));
    QVERIFY(w.findChild<korvel::ui::ArchiveView*>("Archive") != nullptr);
    // Only the option items carry check marks.
    for (const char* name : {"OptGrid", "SortName", "OptRebuildPrompt", "AddingScan", "lang1"})
        QVERIFY2(env.action(name)->isCheckable(), name);
    QVERIFY(!env.action("FileOpen")->isCheckable());
}

void MainWindowTest::everyActionRunsItsCommandFromTheTable() {
    WindowEnv env;
    auto& w = env.start();
    QStringList ran;
    for (const std::string& item : korvel::CommandItemNames()) {
        const QString name = QString::fromStdString(item);
        w.setCommand(name, [&ran, name] { ran << name; });
    }
    QStringList expected;
    for (const std::string& item : korvel::CommandItemNames()) {
        QAction* action = env.action(item.c_str());
        QVERIFY2(action != nullptr, item.c_str());
        action->setEnabled(true);
        action->trigger();
        expected << QString::fromStdString(item);
    }
    QCOMPARE(ran, expected);
}

void MainWindowTest::menuStateIsMirroredIntoTheActions() {
    WindowEnv env;
    env.settings.WriteSetting("False", "rebuildPrompt");
    const std::string path = env.archive("a&b.img", {"a.dff"});
    env.start();
    QVERIFY(!env.action("FileClose")->isEnabled());
    QVERIFY(env.action("FileOpen")->isEnabled());
    QCOMPARE(env.shownNames(), (std::vector<std::string>{Text(env, "ready").toStdString()}));
    // A missing archive is told in an information box.
    QString shown;
    auto answered = AnswerNextModal([&](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        QVERIFY(box != nullptr);
        QCOMPARE(box->icon(), QMessageBox::Information);
        shown = box->text();
        box->button(QMessageBox::Ok)->click();
    });
    QVERIFY(!env.window->editor().OpenArchive(path + ".gone"));
    QVERIFY(*answered);
    QVERIFY(shown.startsWith(Text(env, "openArchive1") + "\n"));
    QVERIFY(env.window->editor().OpenArchive(path));
    QVERIFY(env.action("FileClose")->isEnabled());
    QVERIFY(env.action("recent1")->isChecked());
    // A path is plain text: its ampersand is no mnemonic.
    QCOMPARE(env.action("recent1")->text(), QString::fromStdString(path).replace('&', "&&"));
    // Qt flips a checkable action before its command runs; the engine's check
    // wins, also when the command keeps it (the sort item already checked).
    env.action("SortOffset")->trigger();
    env.action("SortOffset")->trigger();
    QVERIFY(env.action("SortOffset")->isChecked());
    env.action("OptRebuildPrompt")->trigger();
    QVERIFY(env.action("OptRebuildPrompt")->isChecked());
    env.action("lang2")->trigger();
    QCOMPARE(env.action("FileOpen")->text(), Text(env, "menua3"));
    QCOMPARE(env.window->model()->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(),
             Text(env, "head1"));
}

void MainWindowTest::gridAndStripesFollowTheirItems() {
    WindowEnv env;
    env.settings.WriteSetting("False", "showGrid");
    env.settings.WriteSetting("False", "showColors");
    env.settings.WriteSetting("10", "l1r");
    auto& w = env.start(env.archive("look.img", {"a.dff", "b.dff"}));
    QVERIFY(!w.archiveView()->showGrid());
    QVERIFY(!w.archiveView()->alternatingRowColors());
    env.action("OptGrid")->trigger();
    QVERIFY(w.archiveView()->showGrid());
    env.action("OptGrid")->trigger();
    QVERIFY(!w.archiveView()->showGrid());
    env.action("OptCols")->trigger();
    QVERIFY(w.archiveView()->alternatingRowColors());
    QCOMPARE(w.archiveView()->palette().color(QPalette::Base), QColor(10, 233, 233));
    QCOMPARE(w.archiveView()->palette().color(QPalette::AlternateBase), QColor(255, 255, 255));
}

void MainWindowTest::selectionIsOneTruth() {
    WindowEnv env;
    auto& w = env.start(env.archive("sel.img", {"a.dff", "b.txd", "c.dff", "d.col"}));
    auto* selection = w.archiveView()->selectionModel();
    env.action("SelectModels")->trigger();
    QCOMPARE(selection->selectedRows().size(), 2);
    QVERIFY(selection->isRowSelected(0));
    QVERIFY(selection->isRowSelected(2));

    const auto& rows = w.editor().table().rows();
    // Clicking a row in the view selects it in the table alone.
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

void MainWindowTest::oneRowChangeNotifiesOneRow() {
    WindowEnv env;
    auto& w = env.start(env.archive("rows.img", {"a.dff", "b.dff", "c.dff", "d.dff"}));
    QSignalSpy resets(w.model(), &QAbstractItemModel::modelReset);
    QSignalSpy inserted(w.model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(w.model(), &QAbstractItemModel::rowsRemoved);
    QSignalSpy changed(w.model(), &QAbstractItemModel::dataChanged);
    auto& table = w.editor().table();
    table.append(korvel::Entry{9, 1, "new.txd", false});
    table.setName(0, "renamed.dff");
    // The commands assign icons after a rename, a marker or a move; that
    // must not repaint every row.
    w.editor().AssignTypeIcons();
    table.remove(1);
    table.setSelected(3, true);
    table.setSelected(3, true); // no change, no signal
    QCOMPARE(env.shownNames(),
             (std::vector<std::string>{"renamed.dff", "c.dff", "d.dff", "new.txd"}));
    table.removeWhere({true, true, false, true}); // two runs, removed from the back
    QCOMPARE(resets.size(), 0);
    QCOMPARE(inserted.size(), 1);
    QStringList removedRows, changedRows;
    for (const auto& signal : removed)
        removedRows << QString("%1-%2").arg(signal[1].toInt()).arg(signal[2].toInt());
    for (const auto& signal : changed)
        changedRows << QString("%1-%2")
                           .arg(signal[0].toModelIndex().row())
                           .arg(signal[1].toModelIndex().row());
    QCOMPARE(removedRows, (QStringList{"1-1", "3-3", "0-1"}));
    QCOMPARE(changedRows, (QStringList{"0-0", "3-3"}));
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"d.dff"}));
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
    for (const char* part : {"Korvel", "1.0", "MIT"})
        QVERIFY2(text.contains(part), part);
}

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
