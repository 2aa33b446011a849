#include "UiSupport.h"

#include "desktop/FileAssociation.h"
#include "ui/ArchiveView.h"
#include "ui/LineColorsDialog.h"
#include "ui/QuickReplaceDialog.h"
#include "ui/ShowMeWindow.h"
#include "ui/ToolWindows.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFrame>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTreeWidget>

using korvel::test::AnswerNextModal;
using korvel::test::WindowEnv;
using korvel::ui::LineColorsDialog;
using korvel::ui::ShowMeWindow;

namespace {

QString Text(const WindowEnv& env, const char* key) {
    return QString::fromStdString(env.settings.LookupText(key));
}

QStringList Setting(const WindowEnv& env, std::initializer_list<const char*> keys) {
    QStringList values;
    for (const char* key : keys) {
        values << QString::fromStdString(env.settings.ReadSetting(key));
    }
    return values;
}

// Each row of the show-me list as "name|number".
QStringList Rows(QTreeWidget* list) {
    QStringList rows;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        rows << list->topLevelItem(i)->text(0) + "|" + list->topLevelItem(i)->text(1);
    }
    return rows;
}

std::vector<std::size_t> MainSelection(korvel::ui::MainWindow& w) {
    std::vector<std::size_t> rows;
    const auto& table = w.editor().table();
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (table[row].selected) {
            rows.push_back(row);
        }
    }
    return rows;
}

void Trigger(ShowMeWindow* window, const char* item) {
    window->options()->findChild<QAction*>(QString::fromLatin1(item))->trigger();
}

} // namespace

class ToolWindowsTest : public QObject {
    Q_OBJECT
private slots:
    void lineColorsPickCancelAndRestore();
    void showMeListsFillOneWindowAndActOnTheMainList();
    void showMeSavesTheList();
    void qrMissingCaptionsAndAnswers();
    void quickReplaceRunsThroughTheWindow();
    void helpHomeIsCaptionedWithTheSiteName();
};

void ToolWindowsTest::lineColorsPickCancelAndRestore() {
    WindowEnv env;
    auto& w = env.start();
    w.runCommand("OptsPick");
    auto* dialog = w.findChild<LineColorsDialog*>("lineColors");
    QVERIFY(dialog != nullptr);
    QVERIFY(dialog->isVisible());
    QVERIFY(!dialog->isModal());
    QCOMPARE(dialog->windowTitle(), " " + Text(env, "lc0"));
    QCOMPARE(dialog->findChild<QPushButton*>("restore")->text(), Text(env, "lc4"));
    QCOMPARE(dialog->findChild<QLabel*>("Label2")->text(), Text(env, "lc2"));
    QCOMPARE(dialog->swatch(1), QColor(233, 233, 233));

    auto picked = AnswerNextModal([](QWidget* modal) {
        auto* picker = qobject_cast<QColorDialog*>(modal);
        QVERIFY(picker != nullptr);
        picker->setCurrentColor(Qt::red);
        picker->accept();
    });
    dialog->findChild<QPushButton*>("colorOne")->click();
    QVERIFY(*picked);
    QCOMPARE(Setting(env, {"l1r", "l1g", "l1b"}), (QStringList{"255", "0", "0"}));
    QCOMPARE(dialog->swatch(1), QColor(Qt::red));
    // The main list is repainted with the new colour at once.
    QCOMPARE(w.archiveView()->palette().color(QPalette::Base), QColor(Qt::red));

    auto cancelled = AnswerNextModal([](QWidget* modal) {
        qobject_cast<QColorDialog*>(modal)->setCurrentColor(Qt::blue);
        qobject_cast<QDialog*>(modal)->reject();
    });
    dialog->findChild<QPushButton*>("colorTwo")->click();
    QVERIFY(*cancelled);
    QCOMPARE(Setting(env, {"l2r", "l2g", "l2b"}), (QStringList{"255", "255", "255"}));
    QCOMPARE(dialog->swatch(2), QColor(255, 255, 255));

    // Closing keeps the pick; opening again shows it in the one instance.
    dialog->findChild<QPushButton*>("CloseThis")->click();
    QVERIFY(!dialog->isVisible());
    w.runCommand("OptsPick");
    QCOMPARE(w.findChildren<LineColorsDialog*>().size(), 1);
    QCOMPARE(dialog->swatch(1), QColor(Qt::red));

    QString said;
    auto told = AnswerNextModal([&](QWidget* modal) {
        said = qobject_cast<QMessageBox*>(modal)->text();
        qobject_cast<QDialog*>(modal)->accept();
    });
    dialog->findChild<QPushButton*>("restore")->click();
    QVERIFY(*told);
    QCOMPARE(said, Text(env, "lc5"));
    QCOMPARE(Setting(env, {"l1r", "l1g", "l1b", "l2r", "l2g", "l2b"}),
             (QStringList{"239", "239", "239", "255", "255", "255"}));
    QVERIFY(!dialog->isVisible());
}

void ToolWindowsTest::showMeListsFillOneWindowAndActOnTheMainList() {
    WindowEnv env;
    env.settings.WriteSetting("offset", "sort");
    const std::string img = env.archive(
        "a.img", {"a.dff", "b.txd", "c.DFF", "d.txt", std::string(korvel::MarkerName), "e.txd"});
    auto& w = env.start(img);
    QVERIFY(w.editor().isOpen());

    w.runCommand("ShowMeModels");
    auto* window = w.findChild<ShowMeWindow*>("showTheseFiles");
    QVERIFY(window != nullptr);
    QVERIFY(window->isVisible());
    QCOMPARE(window->windowTitle(), " " + Text(env, "show3") + "2]");
    QCOMPARE(Rows(window->fileList()), (QStringList{"a.dff|1", "c.DFF|3"}));
    QCOMPARE(window->fileList()->headerItem()->text(0), Text(env, "sd17"));
    QCOMPARE(window->fileList()->headerItem()->text(1), Text(env, "sd15"));
    QCOMPARE(window->findChild<QPushButton*>("saveList")->text(), Text(env, "find6"));
    QCOMPARE(window->findChild<QPushButton*>("listClose")->text(), Text(env, "find4"));
    QStringList items;
    for (QAction* a : window->options()->actions()) {
        items << (a->isSeparator() ? "-" : a->objectName() + "=" + a->text());
    }
    QCOMPARE(items,
             (QStringList{"SelectTheMall=" + Text(env, "sd10"), "-",
                          "HighLightFiel=" + Text(env, "sd11"), "HClose=" + Text(env, "sd12"), "-",
                          "OpenFile=" + Text(env, "sd13"), "extractFile=" + Text(env, "menuc2"),
                          "OutQuick=" + Text(env, "menuc3")}));

    // A second command refills the same window.
    w.runCommand("ShowMeOthers");
    QCOMPARE(w.findChildren<ShowMeWindow*>().size(), 1);
    QCOMPARE(Rows(window->fileList()), (QStringList{"d.txt|4"}));
    w.runCommand("ShowMeTextures");
    QCOMPARE(Rows(window->fileList()), (QStringList{"b.txd|2", "e.txd|6"}));

    // Highlight: only the chosen row is selected in the main list.
    w.editor().table().setSelected(0, true);
    window->fileList()->topLevelItem(1)->setSelected(true);
    Trigger(window, "HighLightFiel");
    QCOMPARE(MainSelection(w), (std::vector<std::size_t>{5}));
    QCOMPARE(w.archiveView()->selectionModel()->selectedRows().size(), 1);

    // Quick extract of both textures writes exactly those two.
    const auto out = env.folder / "out";
    std::filesystem::create_directories(out);
    env.settings.WriteSetting(out.string(), "lastExtract");
    w.editor().table().setSelected(0, true);
    Trigger(window, "SelectTheMall");
    QCOMPARE(window->fileList()->selectedItems().size(), 2);
    Trigger(window, "OutQuick");
    QVERIFY(std::filesystem::exists(out / "b.txd"));
    QVERIFY(std::filesystem::exists(out / "e.txd"));
    QVERIFY(!std::filesystem::exists(out / "a.dff"));
    QCOMPARE(korvel::test::ReadBytes(out / "e.txd"),
             korvel::test::ReadBytes(env.folder / "a.img").substr(5 * korvel::SectorSize));

    // The placeholder: nothing happens to the main list's selection.
    w.runCommand("ShowMeCol");
    QCOMPARE(window->windowTitle(), " " + Text(env, "show2") + "0]");
    QCOMPARE(Rows(window->fileList()), (QStringList{Text(env, "sd2") + "|"}));
    w.editor().table().clearSelection();
    w.editor().table().setSelected(2, true);
    window->fileList()->topLevelItem(0)->setSelected(true);
    Trigger(window, "HighLightFiel");
    Trigger(window, "OutQuick");
    QCOMPARE(MainSelection(w), (std::vector<std::size_t>{2}));
    QVERIFY(!std::filesystem::exists(out / "c.DFF"));

    // HClose highlights and closes.
    w.runCommand("ShowMeModels");
    window->fileList()->topLevelItem(1)->setSelected(true);
    Trigger(window, "HClose");
    QCOMPARE(MainSelection(w), (std::vector<std::size_t>{2}));
    QVERIFY(!window->isVisible());
}

void ToolWindowsTest::showMeSavesTheList() {
    WindowEnv env;
    env.settings.WriteSetting("offset", "sort");
    auto& w = env.start(env.archive("a.img", {"x.txd", "y.dff", "z.TXD", "w.txd"}));
    w.runCommand("ShowMeTextures");
    auto* window = w.findChild<ShowMeWindow*>("showTheseFiles");
    const QString saved = QString::fromStdString((env.folder / "list.txt").string());
    QString title;
    auto answered = AnswerNextModal([&](QWidget* modal) {
        auto* dialog = qobject_cast<QFileDialog*>(modal);
        QVERIFY(dialog != nullptr);
        title = dialog->windowTitle();
        dialog->selectFile(saved);
        static_cast<QDialog*>(dialog)->accept();
    });
    window->findChild<QPushButton*>("saveList")->click();
    QVERIFY(*answered);
    QCOMPARE(title, Text(env, "sd0"));
    QCOMPARE(korvel::test::ReadBytes(saved.toStdString()),
             std::string("x.txd\r\nz.TXD\r\nw.txd\r\n"));
}

void ToolWindowsTest::qrMissingCaptionsAndAnswers() {
    struct Case {
        const char* stored;
        const char* checked; // the option shown checked
        const char* click;   // the option clicked, or nullptr
        bool ok;             // Ok pressed, else closed by its frame
        const char* after;
    };
    const Case cases[] = {
        {"1", "skipOption", "newLoc", true, "3"},
        {"2", "sepOption", nullptr, true, "2"},
        {"3", "newLoc", "skipOption", false, "3"},
        {"3", "newLoc", "sepOption", true, "2"},
    };
    for (const Case& c : cases) {
        WindowEnv env;
        env.settings.WriteSetting(c.stored, "qrSetting");
        korvel::ui::QuickReplaceDialog dialog(env.settings, "car.dff", "/some/folder", nullptr);
        QCOMPARE(dialog.windowTitle(), " " + Text(env, "qr0"));
        QCOMPARE(dialog.findChild<QLabel*>("Label1")->text(), Text(env, "qr1"));
        QCOMPARE(dialog.findChild<QLabel*>("Label5")->text(), Text(env, "qr2"));
        QCOMPARE(dialog.findChild<QLabel*>("Label4")->text(), Text(env, "qr3"));
        QCOMPARE(dialog.findChild<QLabel*>("Label2")->text(), QStringLiteral("car.dff"));
        QCOMPARE(dialog.findChild<QLabel*>("Label3")->text(), QStringLiteral("/some/folder"));
        QCOMPARE(dialog.findChild<QRadioButton*>("sepOption")->text(), Text(env, "qr5"));
        QCOMPARE(dialog.findChild<QPushButton*>("ok")->text(), QStringLiteral("Ok"));
        QVERIFY(dialog.findChild<QRadioButton*>(c.checked)->isChecked());
        if (c.click != nullptr) {
            dialog.findChild<QRadioButton*>(c.click)->click();
        }
        if (c.ok) {
            dialog.findChild<QPushButton*>("ok")->click();
        } else {
            dialog.reject();
        }
        if (const auto chosen = dialog.chosen()) {
            korvel::RecordMissingFileOption(env.settings, *chosen);
        }
        QCOMPARE(QString::fromStdString(env.settings.ReadSetting("qrSetting")),
                 QString::fromLatin1(c.after));
    }
}

void ToolWindowsTest::quickReplaceRunsThroughTheWindow() {
    WindowEnv env;
    env.settings.WriteSetting("offset", "sort");
    auto& w = env.start(env.archive("a.img", {"a.dff", "b.dff"}));
    const auto in = env.folder / "in";
    std::filesystem::create_directories(in);
    korvel::test::WriteBytes(in / "a.dff", "new a");
    env.settings.WriteSetting(in.string(), "lastQR");
    env.settings.WriteSetting("2", "qrSetting");
    w.editor().table().selectAll();

    QString missing;
    std::shared_ptr<bool> second;
    auto first = AnswerNextModal([&](QWidget* modal) {
        second = AnswerNextModal([&](QWidget* next) {
            missing = next->findChild<QLabel*>("Label2")->text();
            next->findChild<QRadioButton*>("skipOption")->click();
            next->findChild<QPushButton*>("ok")->click();
        });
        qobject_cast<QMessageBox*>(modal)->button(QMessageBox::Yes)->click();
    });
    w.runCommand("CmdGroupReplace");
    QVERIFY(*first);
    QVERIFY(second && *second);
    QCOMPARE(missing, QStringLiteral("b.dff"));
    QCOMPARE(QString::fromStdString(env.settings.ReadSetting("qrSetting")), QStringLiteral("1"));
    QCOMPARE(w.statusPanel()->text(),
             "1 " + Text(env, "filesRep") + ", 1 " + Text(env, "filesSkip"));
    QCOMPARE(korvel::test::ReadBytes(env.folder / "a.img").substr(0, 6), std::string("new a\0", 6));
    QVERIFY(MainSelection(w).empty());
}

void ToolWindowsTest::helpHomeIsCaptionedWithTheSiteName() {
    WindowEnv env;
    env.start();
    QCOMPARE(env.action("HelpHome")->text(),
             QString::fromLatin1(korvel::HomePageCaption.data(),
                                 static_cast<int>(korvel::HomePageCaption.size())));
}

QTEST_MAIN(ToolWindowsTest)
#include "ToolWindowsTest.moc"
