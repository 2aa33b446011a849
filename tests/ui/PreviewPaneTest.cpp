// The preview pane's wiring: F9 and the dock's close button show and hide
// it and korvel.ini remembers; selecting an entry shows its kind's page with
// what the readers found; a read overtaken by a newer selection never shows.
#include "EntryBytes.h"
#include "UiSupport.h"

#include "ui/ArchiveView.h"
#include "ui/PreviewPane.h"

#include <QAbstractButton>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>

using namespace korvel::test;
using namespace std::chrono_literals;

namespace {

// An animation of `objects` bones of which only the first is there: more
// than one runs into the end of the entry.
std::string Anp3(std::uint32_t objects) {
    const std::string body = Field("pack", 24) + U32(1) + Field("walk", 24) + U32(objects) +
                             U32(0) + U32(1) + Field("root", 24) + U32(2) + U32(2) + U32(0) +
                             std::string(32, '\0');
    return "ANP3" + U32(static_cast<std::uint32_t>(body.size())) + body;
}

} // namespace

class PreviewPaneTest : public QObject {
    Q_OBJECT
    std::unique_ptr<WindowEnv> env;
    korvel::ui::MainWindow* w = nullptr;
    korvel::ui::PreviewPane* pane = nullptr;
    // Makes `row` the one selected and current row, as a click does.
    void select(int row) {
        auto& table = w->editor().table();
        for (std::size_t r = 0; r < table.size(); ++r)
            table.setSelected(r, static_cast<int>(r) == row);
        w->archiveView()->setCurrentIndex(w->archiveView()->model()->index(row, 0));
    }
private slots:
    void init() {
        env = std::make_unique<WindowEnv>();
        env->settings.WriteSetting("offset", "sort");
        const auto img = env->folder / "p.img";
        WriteArchiveOf(img,
                       {{"t.txd", Dictionary(2, 0, {Native("alpha", "a"), Native("beta", "")})},
                        {"c.col", ColModel("COLL", "crate", 40)},
                        {"a.ifp", Anp3(1)},
                        {"cut.ifp", Anp3(100000)},
                        {"x.bin", std::string("\x01ZZ", 3)}});
        w = &env->start(img.string());
        pane = w->previewPane();
    }
    void cleanup() { env.reset(); }
    void f9AndTheCloseButtonShowAndHideThePaneAndKorvelIniRemembers();
    void eachKindShowsItsPageWithWhatWasRead();
    void aReadOvertakenByANewerSelectionIsNeverShown();
    void aTextureOpenAtFullSizeStaysOpenWhenTheDataFileChanges();
};

void PreviewPaneTest::f9AndTheCloseButtonShowAndHideThePaneAndKorvelIniRemembers() {
    auto* dock = w->previewDock();
    QVERIFY(dock->isHidden()); // hidden on a first run
    w->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QTest::keyClick(w->archiveView(), Qt::Key_F9);
    QVERIFY(dock->isVisible() && env->action("OptPreview")->isChecked());
    QCOMPARE(env->settings.ReadSetting("previewPane"), std::string("True"));
    dock->close();
    QVERIFY(dock->isHidden() && !env->action("OptPreview")->isChecked());
    QCOMPARE(env->settings.ReadSetting("previewPane"), std::string("False"));
    // The next run starts as the last one left the pane.
    env->settings.WriteSetting("True", "previewPane");
    korvel::ui::MainWindow next(env->settings);
    next.startup({});
    QVERIFY(!next.previewDock()->isHidden());
}

void PreviewPaneTest::eachKindShowsItsPageWithWhatWasRead() {
    env->action("OptPreview")->trigger();
    struct Case {
        int row;
        const char* page;
        std::function<QString()> seen;
        QString expected;
        bool damaged;
    };
    const auto grid = [this] {
        QStringList names;
        for (int i = 0; i < pane->textureGrid()->count(); ++i)
            names << pane->textureGrid()->item(i)->text().section('\n', 0, 0);
        return names.join(',');
    };
    const auto tree = [this] { // the first animation and its first bone
        auto* top = pane->findChild<QTreeWidget*>("PreviewAnimations")->topLevelItem(0);
        return top == nullptr || top->childCount() == 0
                   ? QString()
                   : top->text(0) + ":" + top->child(0)->text(0);
    };
    const Case cases[] = {
        {0, "PreviewTextures", grid, "alpha,beta", false},
        {1, "PreviewCollision",
         [this] { return pane->findChild<QTableWidget*>()->item(0, 0)->text(); }, "crate", false},
        {2, "PreviewAnimations", tree, "walk:root", false},
        {3, "PreviewAnimations", tree, "walk:root", true},
        {4, "PreviewBytes",
         [this] { return pane->findChild<QPlainTextEdit*>()->toPlainText().left(30); },
         "00000000  01 5A 5A 00 00 00 00", false},
    };
    auto* status = pane->findChild<QWidget*>("PreviewStatus");
    for (const Case& c : cases) {
        QSignalSpy shown(pane, &korvel::ui::PreviewPane::entryShown);
        select(c.row);
        QVERIFY2(shown.wait(5000), c.page);
        QCOMPARE(pane->currentPage()->objectName(), QString(c.page));
        QCOMPARE(c.seen(), c.expected);
        QCOMPARE(!status->isHidden(), c.damaged);
        if (c.damaged)
            QVERIFY(status->property("text").toString().startsWith(
                env->text("prvStopped").section(QChar(0x25), 0, 0)));
    }
    select(-1);
    QTRY_COMPARE(pane->currentPage()->objectName(), QString());
}

void PreviewPaneTest::aReadOvertakenByANewerSelectionIsNeverShown() {
    env->action("OptPreview")->trigger();
    QSignalSpy shown(pane, &korvel::ui::PreviewPane::entryShown);
    select(0);
    QCoreApplication::processEvents(); // the read of t.txd starts
    QTest::qSleep(100);                // and is done, its result waiting
    select(1);
    QTRY_COMPARE(pane->shownEntry(), std::string("c.col"));
    QTest::qWait(100);
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown[0][0].toString(), QString("c.col"));
}

void PreviewPaneTest::aTextureOpenAtFullSizeStaysOpenWhenTheDataFileChanges() {
    env->action("OptPreview")->trigger();
    QSignalSpy shown(pane, &korvel::ui::PreviewPane::entryShown);
    select(0);
    QVERIFY(shown.wait(5000));
    emit pane->textureGrid()->itemActivated(pane->textureGrid()->item(1));
    QCOMPARE(pane->currentPage()->objectName(), QString("PreviewTexture"));
    const auto img = env->folder / "p.img";
    std::filesystem::last_write_time(img, std::filesystem::last_write_time(img) + 2s);
    pane->refresh();
    QVERIFY(shown.wait(5000));
    QCOMPARE(pane->currentPage()->objectName(), QString("PreviewTexture"));
    // The line saying why this texture cannot be shown leaves with it.
    auto* status = pane->findChild<QWidget*>("PreviewStatus");
    QTRY_VERIFY(!status->isHidden());
    pane->findChild<QAbstractButton*>("PreviewBack")->click();
    QVERIFY(status->isHidden());
}

QTEST_MAIN(PreviewPaneTest)
#include "PreviewPaneTest.moc"
