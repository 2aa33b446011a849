#include "UiSupport.h"

#include "ui/ArchiveView.h"
#include "ui/LineColorsDialog.h"
#include "ui/QuickReplaceDialog.h"
#include "ui/ShowMeWindow.h"

#include <QColorDialog>
#include <QLabel>
#include <QMenu>
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

    // Each button picks its own colour; a cancelled pick keeps the swatch.
    const std::tuple<const char*, int, bool, QColor> picks[] = {
        {"colorOne", 1, true, QColor(Qt::red)}, {"colorTwo", 2, false, QColor(255, 255, 255)}};
    for (const auto& [button, line, accept, shown] : picks) {
        auto answered = AnswerNextModal([accept](QWidget* modal) {
            auto* picker = qobject_cast<QColorDialog*>(modal);
            QVERIFY(picker != nullptr);
            picker->setCurrentColor(Qt::red);
            accept ? picker->accept() : picker->reject();
        });
        dialog->findChild<QPushButton*>(button)->click();
        QVERIFY(*answered);
        QCOMPARE(dialog->swatch(line), shown);
    }
    // The main list is repainted with the new colour at once.
    QCOMPARE(w.archiveView()->palette().color(QPalette::Base), QColor(Qt::red));

    // Closing keeps the pick; opening again shows it in the one instance.
    dialog->findChild<QPushButton*>("CloseThis")->click();
    QVERIFY(!dialog->isVisible());
    w.runCommand("OptsPick");
    QCOMPARE(w.findChildren<LineColorsDialog*>().size(), 1);
    QCOMPARE(dialog->swatch(1), QColor(Qt::red));

    auto told = AnswerNextModal([](QWidget* modal) { qobject_cast<QDialog*>(modal)->accept(); });
    dialog->findChild<QPushButton*>("restore")->click();
    QVERIFY(*told);
    QCOMPARE(w.archiveView()->palette().color(QPalette::Base), QColor(239, 239, 239));
    QVERIFY(!dialog->isVisible());
}

void ToolWindowsTest::showMeListsFillOneWindowAndActOnTheMainList() {
    WindowEnv env;
    env.settings.WriteSetting("offset", "sort");
    auto& w = env.start(env.archive("a.img", {"a.dff", "b.txd", "c.DFF", "d.txt", "e.txd"}));

    w.runCommand("ShowMeModels");
    auto* window = w.findChild<ShowMeWindow*>("showTheseFiles");
    QVERIFY(window != nullptr);
    QVERIFY(window->isVisible());
    QCOMPARE(window->windowTitle(), " " + Text(env, "show3") + "2]");
    QCOMPARE(Rows(window->fileList()), (QStringList{"a.dff|1", "c.DFF|3"}));

    // A second command refills the same window.
    w.runCommand("ShowMeTextures");
    QCOMPARE(w.findChildren<ShowMeWindow*>().size(), 1);
    QCOMPARE(Rows(window->fileList()), (QStringList{"b.txd|2", "e.txd|5"}));

    // Highlight: only the chosen row is selected in the main list and its view.
    w.editor().table().setSelected(0, true);
    window->fileList()->topLevelItem(1)->setSelected(true);
    Trigger(window, "HighLightFiel");
    QCOMPARE(MainSelection(w), (std::vector<std::size_t>{4}));
    QCOMPARE(w.archiveView()->selectionModel()->selectedRows().size(), 1);

    // Quick extract of both textures writes exactly those two.
    const auto out = env.folder / "out";
    std::filesystem::create_directories(out);
    env.settings.WriteSetting(out.string(), "lastExtract");
    Trigger(window, "SelectTheMall");
    Trigger(window, "OutQuick");
    QVERIFY(std::filesystem::exists(out / "b.txd"));
    QVERIFY(std::filesystem::exists(out / "e.txd"));
    QVERIFY(!std::filesystem::exists(out / "a.dff"));

    // The placeholder row acts on nothing.
    w.runCommand("ShowMeCol");
    QCOMPARE(Rows(window->fileList()), (QStringList{Text(env, "sd2") + "|"}));
    window->fileList()->topLevelItem(0)->setSelected(true);
    Trigger(window, "HighLightFiel");
    QCOMPARE(MainSelection(w), (std::vector<std::size_t>{4}));

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
        {"2", "sepOption", "skipOption", true, "1"},
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
