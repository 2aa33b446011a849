// The entry dialogs and the entry commands as the window runs them: the
// rename and duplicate dialogs against lang.ini and the settings file, files
// dropped on the list, and menu items that run a command to the bytes on disk.
#include "UiSupport.h"

#include "archive/Format.h"
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

#include <optional>

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
    return parent->findChild<T*>(QString::fromLatin1(name));
}

std::optional<std::size_t> RowOf(korvel::ui::MainWindow& w, const std::string& name) {
    const auto& table = w.editor().table();
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (table[row].name == name) {
            return row;
        }
    }
    return std::nullopt;
}

void SelectOnly(korvel::ui::MainWindow& w, const std::string& name) {
    auto& table = w.editor().table();
    for (std::size_t row = 0; row < table.size(); ++row) {
        table.setSelected(row, table[row].name == name);
    }
}

// Saves a picture of a dialog when KORVEL_GRAB_DIR names a folder, so its
// looks can be checked by eye.
void Grab(QWidget* widget, const char* file) {
    if (const char* folder = std::getenv("KORVEL_GRAB_DIR")) {
        widget->grab().save(QString::fromLocal8Bit(folder) + "/" + QString::fromLatin1(file));
    }
}

std::string Pattern(std::size_t size, char seed) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(seed + static_cast<char>(i % 97));
    }
    return bytes;
}

} // namespace

class EntryDialogsTest : public QObject {
    Q_OBJECT
private slots:
    void renameDialogSpeaksEachLanguage();
    void renameDialogCountsRefusesBlankAndConfirmsOnEnter();
    void duplicateDialogAnswersDecideWhatAddingDoes();
    void dontAskAgainStopsTheQuestion();
    void scanSettingsIsOneModelessWindow();
    void droppedFilesAreAddedTexturesLast();
    void deleteRunsFromTheMenuAndClosingOffersTheRebuild();
    void quickExtractAndNameCaseRunFromTheMenu();
};

void EntryDialogsTest::renameDialogSpeaksEachLanguage() {
    for (const char* language : {"english", "francais", "deutsch"}) {
        WindowEnv env;
        env.settings.WriteSetting(language, "language");
        auto& w = env.start(env.archive("t.img", {"car.dff", "bus.dff"}));
        SelectOnly(w, "car.dff");
        w.runCommand("ComRename");
        auto* dialog = w.findChild<korvel::ui::RenameDialog*>("RenameAItem");
        QVERIFY2(dialog != nullptr && dialog->isVisible(), language);
        QCOMPARE(dialog->windowTitle(), " " + Text(env, "nn0"));
        QCOMPARE(Child<QLabel>(dialog, "Label1")->text(), Text(env, "sd6"));
        QCOMPARE(Child<QPushButton>(dialog, "CancelRename")->text(), Text(env, "nn2"));
        QCOMPARE(Child<QPushButton>(dialog, "DoRename")->text(), QStringLiteral("Ok"));
        QCOMPARE(Child<QLabel>(dialog, "Label2")->text(), Text(env, "nn1") + " 7/24");
        QVERIFY(Text(env, "nn0") != "Settings error");
    }
}

void EntryDialogsTest::renameDialogCountsRefusesBlankAndConfirmsOnEnter() {
    WindowEnv env;
    auto& w = env.start(env.archive("t.img", {"car.dff", "bus.dff", "van.dff"}));
    auto& table = w.editor().table();
    for (std::size_t row = 0; row < table.size(); ++row) {
        table.setSelected(row, table[row].name != "car.dff");
    }
    w.runCommand("ComRename");
    auto* dialog = w.findChild<korvel::ui::RenameDialog*>("RenameAItem");
    QVERIFY(dialog != nullptr);
    QVERIFY(!dialog->isModal());
    auto* box = Child<QLineEdit>(dialog, "objectName");
    auto* counter = Child<QLabel>(dialog, "Label2");
    // Several rows selected: the dialog shows the last one.
    QCOMPARE(box->text(), QStringLiteral("van.dff"));
    QCOMPARE(Child<QLineEdit>(dialog, "itemNo")->text(), QString::number(*RowOf(w, "van.dff") + 1));
    QVERIFY(Child<QLineEdit>(dialog, "itemNo")->isHidden());
    Grab(dialog, "RenameAItem.png");

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
        QVERIFY(message != nullptr);
        QCOMPARE(message->icon(), QMessageBox::Information);
        refusal = message->text();
        message->button(QMessageBox::Ok)->click();
    });
    Child<QPushButton>(dialog, "DoRename")->click();
    QVERIFY(*refused);
    QCOMPARE(refusal, QStringLiteral("No name entered"));
    QVERIFY(dialog->isVisible());
    QVERIFY(RowOf(w, "van.dff").has_value());

    // Opening it again while shown refills the one dialog.
    w.runCommand("ComRename");
    QCOMPARE(w.findChildren<korvel::ui::RenameDialog*>().size(), 1);
    QCOMPARE(box->text(), QStringLiteral("van.dff"));

    // Enter in the box renames; a leading space is kept, the type follows.
    box->setText(QStringLiteral(" van.txd"));
    QTest::keyClick(box, Qt::Key_Return);
    QVERIFY(!dialog->isVisible());
    const auto renamed = RowOf(w, " van.txd");
    QVERIFY(renamed.has_value());
    QCOMPARE(table[*renamed].type(), korvel::EntryKind::Texture);
    QCOMPARE(w.statusPanel()->text(), Text(env, "sd1"));
    const auto records = korvel::DecodeDirectory(ReadBytes(env.folder / "t.dir"));
    QCOMPARE(records.size(), std::size_t{3});
    QVERIFY(std::any_of(records.begin(), records.end(),
                        [](const korvel::DirRecord& r) { return r.name == " van.txd"; }));

    // A word of the list still renames, and the status answers back; the
    // same word in capitals is not on the list.
    const struct {
        const char* typed;
        QString status;
    } rude[] = {{"shitty.dff", QStringLiteral("You kiss your mother with that mouth?")},
                {"SHITTY.dff", Text(env, "sd1")}};
    for (const auto& c : rude) {
        SelectOnly(w, "bus.dff");
        w.runCommand("ComRename");
        box->setText(QString::fromLatin1(c.typed));
        Child<QPushButton>(dialog, "DoRename")->click();
        QVERIFY(RowOf(w, c.typed).has_value());
        QCOMPARE(w.statusPanel()->text(), c.status);
        // Put the name back for the next case.
        table.setName(*RowOf(w, c.typed), "bus.dff");
    }

    // Cancel changes nothing.
    SelectOnly(w, "car.dff");
    w.runCommand("ComRename");
    box->setText(QStringLiteral("other.dff"));
    Child<QPushButton>(dialog, "CancelRename")->click();
    QVERIFY(!dialog->isVisible());
    QVERIFY(RowOf(w, "car.dff").has_value());
}

void EntryDialogsTest::duplicateDialogAnswersDecideWhatAddingDoes() {
    // Each case adds a file named a.dff to an archive that holds a.dff.
    const struct Case {
        const char* option; // nullptr: closed by the frame
        const char* storedBefore;
        const char* addingOpt;
        std::vector<std::string> names; // afterwards, sorted
        const char* holder;             // the row with the file's bytes; none: nothing written
    } cases[] = {
        {"Option0", "skip", "replace", {"a.dff", "b.dff"}, "a.dff"},
        {"Option1", "replace", "renameOld", {"A.DFF", "b.dff", "old.dff"}, "A.DFF"},
        {"Option2", "replace", "renameNew", {"a.dff", "b.dff", "new.dff"}, "new.dff"},
        {"Option3", "replace", "skip", {"a.dff", "b.dff"}, nullptr},
        {nullptr, "skip", "skip", {"a.dff", "b.dff"}, nullptr},
    };
    for (const Case& c : cases) {
        const QByteArray label = c.option != nullptr ? c.option : "frame";
        WindowEnv env;
        env.settings.WriteSetting(c.storedBefore, "addingOpt");
        auto& w = env.start(env.archive("t.img", {"a.dff", "b.dff"}));
        const std::string before = ReadBytes(env.folder / "t.img");
        const std::string bytes = Pattern(1000, 'q');
        const fs::path file = env.folder / "in" / "A.DFF";
        fs::create_directories(file.parent_path());
        WriteBytes(file, bytes);

        QStringList seen;
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
            Grab(dialog, "addingDup.png");
            // The stored action is the one selected on load.
            const char* storedControl =
                std::string(c.storedBefore) == "skip" ? "Option3" : "Option0";
            QVERIFY(Child<QRadioButton>(dialog, storedControl)->isChecked());
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

        QCOMPARE(seen, (QStringList{" " + Text(env, "dup0"), Text(env, "dup1"), Text(env, "dup2"),
                                    Text(env, "dup7"), QStringLiteral("A.DFF"), Text(env, "dup3"),
                                    Text(env, "dup4"), Text(env, "dup5"), Text(env, "dup6"),
                                    Text(env, "dup8")}));
        QCOMPARE(Setting(env, "addingOpt"), std::string(c.addingOpt));
        QCOMPARE(Setting(env, "scanPrompt"), std::string("0"));
        std::vector<std::string> names;
        for (const auto& entry : w.editor().table().rows()) {
            names.push_back(entry.name);
        }
        std::sort(names.begin(), names.end());
        QVERIFY2(names == c.names, label);
        const std::string after = ReadBytes(env.folder / "t.img");
        if (c.holder != nullptr) {
            const auto& entry = w.editor().table()[*RowOf(w, c.holder)];
            QVERIFY2(after.substr(entry.byteOffset(), bytes.size()) == bytes, label);
        } else {
            QVERIFY2(after == before, label);
        }
        QCOMPARE(korvel::DecodeDirectory(ReadBytes(env.folder / "t.dir")).size(), c.names.size());
    }
}

void EntryDialogsTest::dontAskAgainStopsTheQuestion() {
    WindowEnv env;
    auto& w = env.start(env.archive("t.img", {"a.dff"}));
    fs::create_directories(env.folder / "in");
    const fs::path file = env.folder / "in" / "a.dff";
    WriteBytes(file, Pattern(10, 'x'));
    auto answered = AnswerNextModal([&](QWidget* modal) {
        auto* dialog = qobject_cast<korvel::ui::AddingDupDialog*>(modal);
        QVERIFY(dialog != nullptr);
        Child<QCheckBox>(dialog, "dontPrompt")->click();
        // Asked about a duplicate, the dialog hands its answer back; nothing
        // is recorded before it closes.
        QCOMPARE(Setting(env, "scanPrompt"), std::string("0"));
        Child<QRadioButton>(dialog, "Option3")->click();
        Child<QPushButton>(dialog, "doThis")->click();
    });
    w.entryCommands().AddFileBatch({file.string()});
    QVERIFY(*answered);
    QCOMPARE(Setting(env, "scanPrompt"), std::string("1"));
    QCOMPARE(Setting(env, "addingOpt"), std::string("skip"));

    // The next duplicate is skipped without a dialog.
    bool asked = false;
    QTimer probe;
    QObject::connect(&probe, &QTimer::timeout, [&] {
        if (QApplication::activeModalWidget() != nullptr) {
            asked = true;
            QApplication::activeModalWidget()->close();
        }
    });
    probe.start(5);
    QCOMPARE(w.entryCommands().AddFileBatch({file.string()}), std::size_t{0});
    QCoreApplication::processEvents();
    QVERIFY(!asked);
    QCOMPARE(w.editor().table().size(), std::size_t{1});
}

void EntryDialogsTest::scanSettingsIsOneModelessWindow() {
    WindowEnv env;
    env.settings.WriteSetting("renameNew", "addingOpt");
    env.settings.WriteSetting("1", "scanPrompt");
    auto& w = env.start();
    QVERIFY(w.action("ScanSettings")->isEnabled());
    w.action("ScanSettings")->trigger();
    w.action("ScanSettings")->trigger();
    const auto dialogs = w.findChildren<korvel::ui::AddingDupDialog*>();
    QCOMPARE(dialogs.size(), 1);
    auto* dialog = dialogs.front();
    QVERIFY(dialog->isVisible());
    QVERIFY(!dialog->isModal());
    QCOMPARE(QApplication::activeModalWidget(), nullptr);
    QCOMPARE(dialog->windowTitle(), " " + Text(env, "dup0"));
    QVERIFY(Child<QRadioButton>(dialog, "Option2")->isChecked());
    QVERIFY(Child<QCheckBox>(dialog, "dontPrompt")->isChecked());
    QVERIFY(Child<QLabel>(dialog, "Label4")->isHidden());
    Grab(dialog, "addingDup-settings.png");

    Child<QCheckBox>(dialog, "dontPrompt")->click();
    QCOMPARE(Setting(env, "scanPrompt"), std::string("0"));
    Child<QRadioButton>(dialog, "Option1")->click();
    // Nothing is stored before Ok.
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

void EntryDialogsTest::droppedFilesAreAddedTexturesLast() {
    WindowEnv env;
    env.settings.WriteSetting("offset", "sort");
    auto& w = env.start(env.archive("t.img", {"x.dff"}));
    const struct {
        const char* name;
        std::size_t size;
    } dropped[] = {{"a.txd", 3000}, {"b.dff", 2048}, {"c.txd", 0}};
    QList<QUrl> urls;
    for (const auto& d : dropped) {
        WriteBytes(env.folder / d.name, Pattern(d.size, d.name[0]));
        urls << QUrl::fromLocalFile(QString::fromStdString((env.folder / d.name).string()));
    }
    auto* mime = new QMimeData;
    mime->setUrls(urls);
    auto* viewport = w.archiveView()->viewport();
    const QPointF at(10, 10);
    QDragEnterEvent enter(at.toPoint(), Qt::CopyAction, mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(at, Qt::CopyAction, mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &drop);
    delete mime;

    QCOMPARE(env.shownNames(), (std::vector<std::string>{"x.dff", "b.dff", "a.txd", "c.txd"}));
    QCOMPARE(w.statusPanel()->text(), "3 " + Text(env, "adding3"));
    const std::string data = ReadBytes(env.folder / "t.img");
    // Each file lies behind the one before, padded to whole sectors.
    const struct {
        const char* name;
        std::size_t offset;
        std::size_t size;
        std::size_t sectors;
    } placed[] = {{"b.dff", 2048, 2048, 2}, {"a.txd", 6144, 3000, 2}, {"c.txd", 10240, 0, 1}};
    for (const auto& p : placed) {
        const auto& entry = w.editor().table()[*RowOf(w, p.name)];
        QCOMPARE(entry.byteOffset(), std::uint64_t{p.offset});
        QCOMPARE(entry.sizeSectors, std::uint32_t(p.sectors));
        QVERIFY(data.substr(p.offset, p.size) == Pattern(p.size, p.name[0]));
        QVERIFY(data.substr(p.offset + p.size, p.sectors * 2048 - p.size) ==
                std::string(p.sectors * 2048 - p.size, '\0'));
    }
    QCOMPARE(data.size(), std::size_t{12288});
    QCOMPARE(korvel::DecodeDirectory(ReadBytes(env.folder / "t.dir")).size(), std::size_t{4});
}

void EntryDialogsTest::deleteRunsFromTheMenuAndClosingOffersTheRebuild() {
    WindowEnv env;
    env.settings.WriteSetting("True", "deleteProm");
    env.settings.WriteSetting("True", "rebuildPrompt");
    env.settings.WriteSetting("offset", "sort");
    const std::string img = env.archive("t.img", {"a.dff", "b.dff", "c.dff"});
    auto& w = env.start(img);
    const std::string before = ReadBytes(img);

    // No at the question changes nothing.
    SelectOnly(w, "b.dff");
    auto no = AnswerNextModal([](QWidget* modal) {
        qobject_cast<QMessageBox*>(modal)->button(QMessageBox::No)->click();
    });
    w.action("ComDel")->trigger();
    QVERIFY(*no);
    QCOMPARE(env.shownNames().size(), std::size_t{3});

    QString asked;
    auto yes = AnswerNextModal([&](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        asked = box->windowTitle() + "|" + box->text();
        box->button(QMessageBox::Yes)->click();
    });
    w.action("ComDel")->trigger();
    QVERIFY(*yes);
    QCOMPARE(asked, Text(env, "del3") + "|" + Text(env, "del1") + " 1 " + Text(env, "del2"));
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"a.dff", "c.dff"}));
    QCOMPARE(w.statusPanel()->text(), Text(env, "del4"));
    QCOMPARE(ReadBytes(env.folder / "t.dir").size(), std::size_t{64});
    QCOMPARE(ReadBytes(img), before);
    QCOMPARE(Setting(env, "archiveState"), std::string("shit"));

    // Closing the window offers the rebuild; Yes packs the two entries.
    QString offered;
    auto rebuild = AnswerNextModal([&](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        offered = box->windowTitle();
        box->button(QMessageBox::Yes)->click();
    });
    w.close();
    QVERIFY(*rebuild);
    QCOMPARE(offered, Text(env, "menuc9") + "?");
    QCOMPARE(ReadBytes(img), before.substr(0, 2048) + before.substr(4096, 2048));
    QCOMPARE(Setting(env, "archiveState"), std::string("peachy"));
}

void EntryDialogsTest::quickExtractAndNameCaseRunFromTheMenu() {
    WindowEnv env;
    env.settings.WriteSetting("offset", "sort");
    const std::string img = env.archive("t.img", {"BUS.DFF", "CAR.TXD"});
    auto& w = env.start(img);
    const fs::path out = env.folder / "out";
    fs::create_directories(out);
    env.settings.WriteSetting(out.string(), "lastExtract");
    auto& table = w.editor().table();
    table.setSelected(0, true);
    table.setSelected(1, true);
    w.action("EditQuick")->trigger();
    QCOMPARE(ReadBytes(out / "BUS.DFF"), ReadBytes(img).substr(0, 2048));
    QCOMPARE(ReadBytes(out / "CAR.TXD"), ReadBytes(img).substr(2048, 2048));
    QCOMPARE(w.statusPanel()->text(), Text(env, "extract5"));
    // Only the last row handled stays selected.
    QCOMPARE(table.selectedCount(), std::size_t{1});

    table.setSelected(0, true);
    w.action("EditLowCase")->trigger();
    w.action("EditLowCaseName")->trigger();
    QCOMPARE(env.shownNames(), (std::vector<std::string>{"bus.dff", "car.txd"}));
    QCOMPARE(w.statusPanel()->text(), "2 " + Text(env, "lcase1"));
    const auto records = korvel::DecodeDirectory(ReadBytes(env.folder / "t.dir"));
    QCOMPARE(records.at(1).name, std::string("car.txd"));
}

QTEST_MAIN(EntryDialogsTest)
#include "EntryDialogsTest.moc"
