#include "EntryFixture.h"
#include "window/QuickReplaceCommand.h"

namespace korvel::test {
namespace {

// `qrMissing` answering with queued options; nothing means closed by its frame.
class ScriptedQuickReplaceDialogs : public QuickReplaceDialogs {
public:
    std::deque<std::optional<MissingFileOption>> answers;
    std::vector<std::string> shown; // "NAME @ FOLDER"

    std::optional<MissingFileOption> QrMissing(const std::string& entryName,
                                               const std::string& folder) override {
        if (answers.empty()) {
            throw std::logic_error("qrMissing shown without an answer for " + entryName);
        }
        shown.push_back(entryName + " @ " + folder);
        const auto answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

class QuickReplaceTest : public EntryFixture {
protected:
    QuickReplaceTest() : quick(editor, commands, qrDialogs) {}

    // a.dff and c.dff have files in "in" (c.dff in other letter case),
    // b.dff has none; the marker never looks for one.
    void openFour() {
        open({{0, 1, "a.dff"}, {1, 1, "b.dff"}, {2, 1, std::string(MarkerName)}, {3, 1, "c.dff"}},
             4 * SectorSize);
        input("a.dff", "new a");
        input("C.DFF", "new c");
        editor.table().selectAll();
    }
    std::string in() const { return (folder / "in").string(); }
    std::string sectorText(std::uint32_t sector, std::size_t n) const {
        return imgBytes().substr(sector * SectorSize, n);
    }
    std::string summary(int replaced, int skipped) const {
        return std::to_string(replaced) + " " + text("filesRep") + ", " + std::to_string(skipped) +
               " " + text("filesSkip");
    }

    ScriptedQuickReplaceDialogs qrDialogs;
    QuickReplace quick;
};

TEST_F(QuickReplaceTest, EachChoiceForAMissingFile) {
    struct Case {
        const char* what;
        const char* stored;                      // qrSetting before; after it is the answer's
        std::optional<MissingFileOption> answer; // qrMissing
        std::vector<std::string> desktopAnswers; // after the first folder picker
        int replaced, skipped;
        std::string bText; // b.dff's first bytes afterwards ("" = untouched)
        std::string cText;
        std::string lastQR; // "" = the "in" folder
    };
    const std::string in2 = (folder / "in2").string();
    constexpr auto Skip = MissingFileOption::Skip,
                   Separately = MissingFileOption::ReplaceSeparately,
                   NewLocation = MissingFileOption::NewLocation;
    const Case cases[] = {
        {"skip", "3", Skip, {}, 2, 2, "", "new c", ""},
        {"closed by its frame keeps the stored choice",
         "2",
         {},
         {"FILE"},
         3,
         1,
         "picked b",
         "new c",
         ""},
        {"separately", "1", Separately, {"FILE"}, 3, 1, "picked b", "new c", ""},
        {"separately but cancelled still counts", "1", Separately, {Cancel}, 3, 1, "", "new c", ""},
        // The new folder holds b.dff and its own c.dff: c comes from there too.
        {"new folder", "1", NewLocation, {in2}, 3, 1, "in2 b", "in2 c", in2},
        {"new folder cancelled skips", "1", NewLocation, {Cancel}, 2, 2, "", "new c", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        openFour();
        std::filesystem::create_directories(folder / "in2");
        WriteBytes(folder / "in2" / "b.dff", "in2 b");
        WriteBytes(folder / "in2" / "c.dff", "in2 c");
        const std::string picked = input("picked.dff", "picked b");
        settings.WriteSetting(c.stored, "qrSetting");
        settings.WriteSetting("none", "lastQR");
        qrDialogs.answers = {c.answer};
        desktop.answers.clear();
        desktop.answer({in()});
        for (const std::string& a : c.desktopAnswers) {
            desktop.answer({a == "FILE" ? picked : a});
        }
        const std::string before = imgBytes();

        quick.QuickReplaceSelected();

        EXPECT_TRUE(desktop.answers.empty());
        ASSERT_EQ(qrDialogs.shown.size(), 1u);
        EXPECT_EQ(qrDialogs.shown.back(), "b.dff @ " + in());
        qrDialogs.shown.clear();
        EXPECT_EQ(sectorText(0, 6), std::string("new a") + '\0');
        if (c.bText.empty()) {
            EXPECT_EQ(sectorText(1, SectorSize), before.substr(SectorSize, SectorSize));
        } else {
            EXPECT_EQ(sectorText(1, c.bText.size() + 1), c.bText + '\0');
        }
        EXPECT_EQ(sectorText(2, 8), before.substr(2 * SectorSize, 8)); // the marker
        EXPECT_EQ(sectorText(3, 5), c.cText);
        EXPECT_EQ(desktop.status, summary(c.replaced, c.skipped));
        EXPECT_EQ(settings.ReadSetting("lastQR"), c.lastQR.empty() ? in() : c.lastQR);
        EXPECT_EQ(editor.table().selectedCount(), 0u);
        EXPECT_EQ(records(), tableRecords());
        if (c.answer) {
            EXPECT_EQ(StoredMissingFileOption(settings), c.answer);
        } else {
            EXPECT_EQ(settings.ReadSetting("qrSetting"), c.stored);
        }
    }
}

TEST_F(QuickReplaceTest, FolderChoiceAndTheFewSelectedCases) {
    openFour();
    // Nothing selected.
    editor.table().clearSelection();
    quick.QuickReplaceSelected();
    EXPECT_EQ(desktop.conversation, std::vector<std::string>{"status: " + text("noneSel")});

    // One row: the replace command's file dialog for that row.
    desktop.conversation.clear();
    select({3});
    desktop.answer({Cancel});
    quick.QuickReplaceSelected();
    ASSERT_EQ(desktop.conversation.size(), 3u);
    EXPECT_EQ(desktop.conversation[0], "status: " + text("oneSel"));
    EXPECT_EQ(desktop.conversation[1].rfind("open " + text("rep1"), 0), 0u);
    EXPECT_EQ(desktop.status, text("rep3"));

    // Picker cancelled: nothing changes, lastQR keeps its value.
    const std::string before = imgBytes();
    editor.table().selectAll();
    desktop.answer({Cancel});
    quick.QuickReplaceSelected();
    EXPECT_EQ(desktop.status, text("cancelQR"));
    EXPECT_EQ(settings.ReadSetting("lastQR"), "none");
    EXPECT_EQ(imgBytes(), before);

    // A remembered folder is offered; Yes takes it without the picker.
    settings.WriteSetting(in(), "lastQR");
    qrDialogs.answers = {MissingFileOption::Skip};
    desktop.conversation.clear();
    desktop.answer({"yes"});
    quick.QuickReplaceSelected();
    EXPECT_EQ(desktop.conversation.front(),
              "ask " + text("qrPickPath") + ": " + text("useLastQR") + "\r\n" + in() + " -> yes");
    EXPECT_EQ(desktop.status, summary(2, 2));

    // No shows the picker, and cancelling it there ends the command too.
    editor.table().selectAll();
    desktop.answer({"no", Cancel});
    quick.QuickReplaceSelected();
    EXPECT_EQ(desktop.said("folder").back(), "folder " + text("repFrom") + " -> " + Cancel);
    EXPECT_EQ(desktop.status, text("cancelQR"));
    EXPECT_EQ(settings.ReadSetting("lastQR"), in());
}

TEST_F(QuickReplaceTest, AFailedReplacementIsReportedAndStopsTheRun) {
    openFour();
    // a.dff no longer fits its sector and must be appended, which the full
    // disk refuses; c.dff would fit but the run has stopped by then.
    input("a.dff", Pattern(3000, 'x'));
    const std::string before = imgBytes();
    QuickReplaceCounts counts;
    {
        FileSizeLimit full(4 * SectorSize);
        counts = quick.ReplaceSelectedFromFolder(in());
    }
    EXPECT_FALSE(counts.status.ok());
    EXPECT_EQ(counts.replaced, 0u);
    EXPECT_TRUE(qrDialogs.shown.empty());
    ASSERT_EQ(desktop.said("message(Exclamation)").size(), 1u);
    EXPECT_NE(desktop.said("message(Exclamation)")[0].find("a.dff"), std::string::npos);
    EXPECT_EQ(imgBytes(), before);
    EXPECT_EQ(records(), tableRecords());
    EXPECT_EQ(desktop.status, summary(0, 0));
    EXPECT_EQ(editor.table().selectedCount(), 0u);
}

} // namespace
} // namespace korvel::test
