#include "UiSupport.h"

#include "ui/ArchiveView.h"
#include "ui/LineColorsDialog.h"
#include "ui/QuickReplaceDialog.h"
#include "ui/ShowMeWindow.h"

#include <QColorDialog>
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
    void qrMissingCaptionsAndAnswers();
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
        QCOMPARE(dialog.findChild<QLabel*>("Label2")->text(), QStringLiteral("car.dff"));
        QCOMPARE(dialog.findChild<QLabel*>("Label3")->text(), QStringLiteral("/some/folder"));
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

QTEST_MAIN(ToolWindowsTest)
#include "ToolWindowsTest.moc"
