// The entry dialogs' controls and answers, drops, and closing; the effects are the engine's.
#include "UiSupport.h"

#include "ui/AddingDupDialog.h"
#include "ui/ArchiveView.h"
#include "ui/RenameDialog.h"

#include <QtTest>
#include <QtWidgets>

using namespace korvel::test;

static QString Text(const WindowEnv& env, const char* key) {
    return QString::fromStdString(env.settings.LookupText(key));
}

template <typename T> static T* Child(QWidget* parent, const char* name) {
    T* child = parent->findChild<T*>(QString::fromLatin1(name));
    return child != nullptr ? child : (qFatal("no control %s", name), nullptr);
}

class EntryDialogsTest : public QObject {
    Q_OBJECT
private slots:
    void renameDialogThenDropsThenClosing() {
        WindowEnv env;
        env.settings.WriteSetting("francais", "language"); // captions come from lang.ini
        env.settings.WriteSetting("True", "rebuildPrompt");
        const std::string img = env.archive("t.img", {"car.dff", "bus.dff", "van.dff"});
        auto& w = env.start(img);
        w.editor().table().selectAll(); // several rows: the dialog shows the last
        w.editor().table().setSelected(0, false);
        w.runCommand("ComRename");
        auto* dialog = w.findChild<korvel::ui::RenameDialog*>("RenameAItem");
        QVERIFY(dialog != nullptr && dialog->isVisible() && !dialog->isModal());
        QCOMPARE(dialog->windowTitle(), " " + Text(env, "nn0"));
        auto* box = Child<QLineEdit>(dialog, "objectName");
        auto* counter = Child<QLabel>(dialog, "Label2");
        QCOMPARE(box->text() + counter->text(), "van.dff" + Text(env, "nn1") + " 7/24");

        // The box takes 24 characters and no more; the counter follows each key.
        box->clear();
        QTest::keyClicks(box, QString(26, 'x'));
        QCOMPARE(box->text() + counter->text(), QString(24, 'x') + Text(env, "nn1") + " 24/24");

        // A blank name is refused with the fixed message; the dialog stays.
        box->setText(QStringLiteral("   "));
        auto refused = AnswerNextModal([](QWidget* modal) {
            qobject_cast<QMessageBox*>(modal)->button(QMessageBox::Ok)->click();
        });
        Child<QPushButton>(dialog, "DoRename")->click();
        QVERIFY(*refused && dialog->isVisible());

        // Enter in the box renames the row; Cancel changes nothing.
        box->setText(QStringLiteral("van.txd"));
        QTest::keyClick(box, Qt::Key_Return);
        w.runCommand("ComRename");
        box->setText(QStringLiteral("other.dff"));
        Child<QPushButton>(dialog, "CancelRename")->click();
        QVERIFY(!dialog->isVisible());
        QCOMPARE(env.shownNames(), (std::vector<std::string>{"car.dff", "bus.dff", "van.txd"}));

        // Files dropped on the list are added, texture dictionaries last.
        QMimeData mime;
        for (const char* name : {"x.txd", "y.dff"}) {
            WriteBytes(env.folder / name, name);
        }
        mime.setUrls(
            {QUrl::fromLocalFile(QString::fromStdString((env.folder / "x.txd").string())),
             QUrl::fromLocalFile(QString::fromStdString((env.folder / "y.dff").string()))});
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(w.archiveView()->viewport(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(w.archiveView()->viewport(), &drop);
        QCOMPARE(env.shownNames(),
                 (std::vector<std::string>{"car.dff", "bus.dff", "van.txd", "y.dff", "x.txd"}));

        // Moving the rows to the end leaves gaps, so closing offers the rebuild; Yes packs.
        w.editor().table().selectAll();
        w.entryCommands().MoveSelectedToEnd();
        auto rebuild = AnswerNextModal([](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            QVERIFY(box->icon() == QMessageBox::Warning &&
                    box->escapeButton() == box->button(QMessageBox::No));
            QCOMPARE(box->defaultButton(), box->button(QMessageBox::No));
            box->button(QMessageBox::Yes)->click();
        });
        w.close();
        QVERIFY(*rebuild);
        QCOMPARE(ReadBytes(img).size(), std::size_t{5 * 2048});
    }

    void duplicateDialogHandsBackTheChosenAnswer() {
        // Each adds A.DFF beside a.dff with "replace" stored: the option clicked (none:
        // closed by the frame; Option3 also ticks "don't prompt"), then what is recorded.
        const std::pair<QString, std::string> cases[] = {{"Option0", "replace"},
                                                         {"Option1", "renameOld"},
                                                         {"Option2", "renameNew"},
                                                         {"Option3", "skip"},
                                                         {"", "replace"}};
        for (const auto& [option, addingOpt] : cases) {
            const bool dontPrompt = option == "Option3";
            WindowEnv env;
            env.settings.WriteSetting("replace", "addingOpt");
            auto& w = env.start(env.archive("t.img", {"a.dff"}));
            WriteBytes(env.folder / "A.DFF", "new");
            auto answered = AnswerNextModal([&](QWidget* dialog) {
                QCOMPARE(dialog->windowTitle(), " " + Text(env, "dup0"));
                QCOMPARE(Child<QLabel>(dialog, "Label4")->text(), QStringLiteral("A.DFF"));
                QVERIFY(Child<QRadioButton>(dialog, "Option0")->isChecked()); // the stored one
                if (dontPrompt) {
                    Child<QCheckBox>(dialog, "dontPrompt")->click();
                }
                if (option.isEmpty()) {
                    return QTest::keyClick(dialog, Qt::Key_Escape);
                }
                dialog->findChild<QRadioButton*>(option)->click();
                // Renaming the old entry asks with the rename dialog, the new one with a line.
                if (addingOpt.starts_with("rename")) {
                    AnswerNextModal([](QWidget* next) {
                        if (auto* input = qobject_cast<QInputDialog*>(next)) {
                            return input->setTextValue("new.dff"), input->accept();
                        }
                        QVERIFY(next->objectName() == "RenameAItem" && next->isModal());
                        Child<QLineEdit>(next, "objectName")->setText(QStringLiteral("old.dff"));
                        Child<QPushButton>(next, "DoRename")->click();
                    });
                }
                Child<QPushButton>(dialog, "doThis")->click();
            });
            w.entryCommands().AddFileBatch({(env.folder / "A.DFF").string()});
            QVERIFY(*answered);
            QCOMPARE(env.settings.ReadSetting("addingOpt"), addingOpt);
            QCOMPARE(env.settings.ReadSetting("scanPrompt"), std::string(dontPrompt ? "1" : "0"));
        }
    }

    void scanSettingsIsOneModelessWindowThatRecordsAtOnce() {
        WindowEnv env;
        env.settings.WriteSetting("renameNew", "addingOpt");
        env.settings.WriteSetting("1", "scanPrompt");
        auto& w = env.start();
        w.action("ScanSettings")->trigger();
        w.action("ScanSettings")->trigger();
        QCOMPARE(w.findChildren<korvel::ui::AddingDupDialog*>().size(), 1);
        auto* dialog = w.findChild<korvel::ui::AddingDupDialog*>();
        QVERIFY(dialog->isVisible() && !dialog->isModal());
        QVERIFY(Child<QRadioButton>(dialog, "Option2")->isChecked());
        QVERIFY(Child<QLabel>(dialog, "Label4")->isHidden());

        // The check box is recorded when clicked, the option only on Ok.
        Child<QCheckBox>(dialog, "dontPrompt")->click();
        QCOMPARE(env.settings.ReadSetting("scanPrompt"), std::string("0"));
        Child<QRadioButton>(dialog, "Option1")->click();
        QCOMPARE(env.settings.ReadSetting("addingOpt"), std::string("renameNew"));
        Child<QPushButton>(dialog, "doThis")->click();
        QCOMPARE(env.settings.ReadSetting("addingOpt"), std::string("renameOld"));
        QVERIFY(!dialog->isVisible());
    }
};

QTEST_MAIN(EntryDialogsTest)
#include "EntryDialogsTest.moc"
