// The entry dialogs as the window shows them: their controls, captions and
// answers, and the menu items and drops that reach the entry commands. What
// the commands then do to the archive is the engine tests' to prove.
#include "UiSupport.h"

#include "ui/AddingDupDialog.h"
#include "ui/ArchiveView.h"
#include "ui/RenameDialog.h"

#include <QCheckBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QUrl>

using korvel::test::AnswerNextModal;
using korvel::test::ReadBytes;
using korvel::test::WindowEnv;
using korvel::test::WriteBytes;
namespace fs = std::filesystem;

namespace {

QString Text(const WindowEnv& env, const char* key) {
    return QString::fromStdString(env.settings.LookupText(key));
}

std::string Setting(const WindowEnv& env, const char* key) {
    return env.settings.ReadSetting(key);
}

template <typename T> T* Child(QWidget* parent, const char* name) {
    auto* child = parent->findChild<T*>(QString::fromLatin1(name));
    if (child == nullptr) {
        qFatal("no control %s", name);
    }
    return child;
}

void SelectOnly(korvel::ui::MainWindow& w, const std::string& name) {
    auto& table = w.editor().table();
    for (std::size_t row = 0; row < table.size(); ++row) {
        table.setSelected(row, table[row].name == name);
    }
}

} // namespace

class EntryDialogsTest : public QObject {
    Q_OBJECT
private slots:
    void renameDialogCountsRefusesBlankAndAnswers();
    void duplicateDialogHandsBackTheChosenAnswer();
    void scanSettingsIsOneModelessWindowThatRecordsAtOnce();
    void menuItemsAndDropsReachTheEntryCommands();
};

void EntryDialogsTest::renameDialogCountsRefusesBlankAndAnswers() {
    WindowEnv env;
    env.settings.WriteSetting("francais", "language"); // captions come from lang.ini
    auto& w = env.start(env.archive("t.img", {"car.dff", "bus.dff", "van.dff"}));
    auto& table = w.editor().table();
    table.setSelected(1, true);
    table.setSelected(2, true);
    w.runCommand("ComRename");
    auto* dialog = w.findChild<korvel::ui::RenameDialog*>("RenameAItem");
    QVERIFY(dialog != nullptr && dialog->isVisible() && !dialog->isModal());
    QCOMPARE(dialog->windowTitle(), " " + Text(env, "nn0"));
    QCOMPARE(Child<QLabel>(dialog, "Label1")->text(), Text(env, "sd6"));
    QCOMPARE(Child<QPushButton>(dialog, "CancelRename")->text(), Text(env, "nn2"));
    QCOMPARE(Child<QPushButton>(dialog, "DoRename")->text(), QStringLiteral("Ok"));
    auto* box = Child<QLineEdit>(dialog, "objectName");
    auto* counter = Child<QLabel>(dialog, "Label2");
    // Several rows selected: the dialog shows the last one.
    QCOMPARE(box->text(), QStringLiteral("van.dff"));
    QCOMPARE(counter->text(), Text(env, "nn1") + " 7/24");
    QCOMPARE(Child<QLineEdit>(dialog, "itemNo")->text(), QStringLiteral("3"));
    QVERIFY(Child<QLineEdit>(dialog, "itemNo")->isHidden());

    // The box takes 24 characters and no more; the counter follows each key.
    box->clear();
    QCOMPARE(counter->text(), Text(env, "nn1") + " 0/24");
    QTest::keyClicks(box, QStringLiteral("abcdefghijklmnopqrstuvwxyz"));
    QCOMPARE(box->text(), QStringLiteral("abcdefghijklmnopqrstuvwx"));
    QCOMPARE(counter->text(), Text(env, "nn1") + " 24/24");

    // A blank name is refused with the fixed message; the dialog stays.
    box->setText(QStringLiteral("   "));
    QString refusal;
    auto refused = AnswerNextModal([&](QWidget* modal) {
        auto* message = qobject_cast<QMessageBox*>(modal);
        QVERIFY(message != nullptr && message->icon() == QMessageBox::Information);
        refusal = message->text();
        message->button(QMessageBox::Ok)->click();
    });
    Child<QPushButton>(dialog, "DoRename")->click();
    QVERIFY(*refused);
    QCOMPARE(refusal, QStringLiteral("No name entered"));
    QVERIFY(dialog->isVisible());

    // Opening it again while shown refills the one dialog.
    w.runCommand("ComRename");
    QCOMPARE(w.findChildren<korvel::ui::RenameDialog*>().size(), 1);
    QCOMPARE(box->text(), QStringLiteral("van.dff"));

    // Enter in the box renames that row; Cancel changes nothing.
    box->setText(QStringLiteral("van.txd"));
    QTest::keyClick(box, Qt::Key_Return);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"car.dff", "bus.dff", "van.txd"}));
    SelectOnly(w, "car.dff");
    w.runCommand("ComRename");
    box->setText(QStringLiteral("other.dff"));
    Child<QPushButton>(dialog, "CancelRename")->click();
    QVERIFY(!dialog->isVisible());
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"car.dff", "bus.dff", "van.txd"}));
}

void EntryDialogsTest::duplicateDialogHandsBackTheChosenAnswer() {
    // Each case adds A.DFF to an archive that holds a.dff.
    const struct Case {
        const char* option; // nullptr: closed by the frame
        bool dontPrompt;
        const char* storedBefore;
        const char* addingOpt;
        const char* present; // a name the table holds afterwards
    } cases[] = {
        {"Option0", false, "skip", "replace", "a.dff"},
        {"Option1", false, "replace", "renameOld", "old.dff"},
        {"Option2", false, "replace", "renameNew", "new.dff"},
        {"Option3", true, "replace", "skip", "a.dff"},
        {nullptr, false, "replace", "replace", "a.dff"},
    };
    for (const Case& c : cases) {
        const QByteArray label = c.option != nullptr ? c.option : "frame";
        WindowEnv env;
        env.settings.WriteSetting(c.storedBefore, "addingOpt");
        auto& w = env.start(env.archive("t.img", {"a.dff", "b.dff"}));
        const fs::path file = env.folder / "A.DFF";
        WriteBytes(file, "new");

        QStringList seen;
        bool storedChecked = false;
        auto answered = AnswerNextModal([&](QWidget* modal) {
            auto* dialog = qobject_cast<korvel::ui::AddingDupDialog*>(modal);
            QVERIFY(dialog != nullptr);
            seen << dialog->windowTitle() << Child<QLabel>(dialog, "Label1")->text()
                 << Child<QLabel>(dialog, "Label2")->text()
                 << Child<QLabel>(dialog, "Label3")->text()
                 << Child<QLabel>(dialog, "Label4")->text();
            for (const char* option : {"Option0", "Option1", "Option2", "Option3"}) {
                seen << Child<QRadioButton>(dialog, option)->text();
            }
            seen << Child<QCheckBox>(dialog, "dontPrompt")->text();
            // The stored action is the one selected on load.
            storedChecked =
                Child<QRadioButton>(dialog,
                                    std::string(c.storedBefore) == "skip" ? "Option3" : "Option0")
                    ->isChecked();
            if (c.dontPrompt) {
                Child<QCheckBox>(dialog, "dontPrompt")->click();
            }
            // Nothing is recorded before the dialog closes.
            QCOMPARE(Setting(env, "scanPrompt"), std::string("0"));
            if (c.option == nullptr) {
                dialog->reject();
                return;
            }
            Child<QRadioButton>(dialog, c.option)->click();
            if (std::string(c.addingOpt) == "renameOld") {
                AnswerNextModal([](QWidget* next) {
                    QCOMPARE(next->objectName(), QStringLiteral("RenameAItem"));
                    QVERIFY(next->isModal());
                    QCOMPARE(Child<QLineEdit>(next, "objectName")->text(), QStringLiteral("a.dff"));
                    Child<QLineEdit>(next, "objectName")->setText(QStringLiteral("old.dff"));
                    Child<QPushButton>(next, "DoRename")->click();
                });
            } else if (std::string(c.addingOpt) == "renameNew") {
                AnswerNextModal([](QWidget* next) {
                    auto* input = qobject_cast<QInputDialog*>(next);
                    QVERIFY(input != nullptr);
                    input->setTextValue(QStringLiteral("new.dff"));
                    input->accept();
                });
            }
            Child<QPushButton>(dialog, "doThis")->click();
        });
        w.entryCommands().AddFileBatch({file.string()});
        QVERIFY2(*answered, label);
        QVERIFY2(storedChecked, label);
        QCOMPARE(seen, (QStringList{" " + Text(env, "dup0"), Text(env, "dup1"), Text(env, "dup2"),
                                    Text(env, "dup7"), QStringLiteral("A.DFF"), Text(env, "dup3"),
                                    Text(env, "dup4"), Text(env, "dup5"), Text(env, "dup6"),
                                    Text(env, "dup8")}));
        QCOMPARE(Setting(env, "addingOpt"), std::string(c.addingOpt));
        QCOMPARE(Setting(env, "scanPrompt"), std::string(c.dontPrompt ? "1" : "0"));
        const auto names = env.shownNames();
        QVERIFY2(std::find(names.begin(), names.end(), c.present) != names.end(), label);
    }
}

void EntryDialogsTest::scanSettingsIsOneModelessWindowThatRecordsAtOnce() {
    WindowEnv env;
    env.settings.WriteSetting("renameNew", "addingOpt");
    env.settings.WriteSetting("1", "scanPrompt");
    auto& w = env.start();
    w.action("ScanSettings")->trigger();
    w.action("ScanSettings")->trigger();
    const auto dialogs = w.findChildren<korvel::ui::AddingDupDialog*>();
    QCOMPARE(dialogs.size(), 1);
    auto* dialog = dialogs.front();
    QVERIFY(dialog->isVisible() && !dialog->isModal());
    QVERIFY(Child<QRadioButton>(dialog, "Option2")->isChecked());
    QVERIFY(Child<QCheckBox>(dialog, "dontPrompt")->isChecked());
    QVERIFY(Child<QLabel>(dialog, "Label4")->isHidden());

    // The check box is recorded when clicked, the option only on Ok.
    Child<QCheckBox>(dialog, "dontPrompt")->click();
    QCOMPARE(Setting(env, "scanPrompt"), std::string("0"));
    Child<QRadioButton>(dialog, "Option1")->click();
    QCOMPARE(Setting(env, "addingOpt"), std::string("renameNew"));
    Child<QPushButton>(dialog, "doThis")->click();
    QCOMPARE(Setting(env, "addingOpt"), std::string("renameOld"));
    QVERIFY(!dialog->isVisible());

    // An unknown stored action selects nothing, and Ok then keeps it open.
    env.settings.WriteSetting("sometimes", "addingOpt");
    w.runCommand("ScanSettings");
    for (const char* option : {"Option0", "Option1", "Option2", "Option3"}) {
        QVERIFY(!Child<QRadioButton>(dialog, option)->isChecked());
    }
    Child<QPushButton>(dialog, "doThis")->click();
    QVERIFY(dialog->isVisible());
    QCOMPARE(Setting(env, "addingOpt"), std::string("sometimes"));

    // The check mark of AddingScan and its setting go together.
    const bool scanning = w.action("AddingScan")->isChecked();
    w.action("AddingScan")->trigger();
    QCOMPARE(w.action("AddingScan")->isChecked(), !scanning);
    QCOMPARE(Setting(env, "addingScan"), std::string(scanning ? "False" : "True"));
}

void EntryDialogsTest::menuItemsAndDropsReachTheEntryCommands() {
    WindowEnv env;
    env.settings.WriteSetting("True", "deleteProm");
    env.settings.WriteSetting("True", "rebuildPrompt");
    env.settings.WriteSetting("offset", "sort");
    const std::string img = env.archive("t.img", {"A.DFF", "B.DFF", "C.TXD"});
    auto& w = env.start(img);

    // Files dropped on the list are added, texture dictionaries last.
    QList<QUrl> urls;
    for (const char* name : {"x.txd", "y.dff"}) {
        WriteBytes(env.folder / name, name);
        urls << QUrl::fromLocalFile(QString::fromStdString((env.folder / name).string()));
    }
    QMimeData mime;
    mime.setUrls(urls);
    auto* viewport = w.archiveView()->viewport();
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &drop);
    QCOMPARE(env.shownNames(),
             (std::vector<std::string>{"A.DFF", "B.DFF", "C.TXD", "y.dff", "x.txd"}));
    QCOMPARE(w.statusPanel()->text(), "2 " + Text(env, "adding3"));

    // ComDel asks first: No keeps the row, Yes deletes it.
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
        SelectOnly(w, "y.dff");
        QString asked;
        auto answered = AnswerNextModal([&](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            asked = box->windowTitle() + "|" + box->text();
            box->button(answer)->click();
        });
        w.action("ComDel")->trigger();
        QVERIFY(*answered);
        QCOMPARE(asked, Text(env, "del3") + "|" + Text(env, "del1") + " 1 " + Text(env, "del2"));
    }
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"A.DFF", "B.DFF", "C.TXD", "x.txd"}));

    // EditQuick extracts to the remembered folder; EditLowCaseName lowers names.
    const fs::path out = env.folder / "out";
    fs::create_directories(out);
    env.settings.WriteSetting(out.string(), "lastExtract");
    SelectOnly(w, "B.DFF");
    w.action("EditQuick")->trigger();
    QCOMPARE(ReadBytes(out / "B.DFF"), ReadBytes(img).substr(2048, 2048));
    w.editor().table().selectAll();
    w.action("EditLowCaseName")->trigger();
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"a.DFF", "b.DFF", "c.TXD", "x.txd"}));

    // Closing the window offers the rebuild; Yes packs the four entries.
    QString offered;
    auto rebuild = AnswerNextModal([&](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        offered = box->windowTitle();
        box->button(QMessageBox::Yes)->click();
    });
    w.close();
    QVERIFY(*rebuild);
    QCOMPARE(offered, Text(env, "menuc9") + "?");
    QCOMPARE(ReadBytes(img).size(), std::size_t{4 * 2048});
}

QTEST_MAIN(EntryDialogsTest)
#include "EntryDialogsTest.moc"
