#include "EntryFixture.h"
#include "window/QuickReplaceCommand.h"

namespace korvel::test {

// `qrMissing` answering with queued options (nothing: closed by its frame).
struct ScriptedQuickReplaceDialogs : QuickReplaceDialogs {
    std::deque<std::optional<MissingFileOption>> answers;
    std::vector<std::string> shown;
    std::optional<MissingFileOption> QrMissing(const std::string& name,
                                               const std::string& folder) override {
        shown.push_back(name + " @ " + folder);
        const auto answer = answers.at(0); // shown without an answer: the test throws
        answers.pop_front();
        return answer;
    }
};

class QuickReplaceTest : public EntryFixture {
protected:
    // "in" holds a.dff and C.DFF, "in2" b.dff and c.dff; the marker never looks for a file.
    QuickReplaceTest() : quick(editor, commands, qrDialogs) {
        open({{0, 1, "a.dff"}, {1, 1, "b.dff"}, {2, 1, std::string(MarkerName)}, {3, 1, "c.dff"}},
             4 * SectorSize);
        input("a.dff", "new a");
        input("C.DFF", "new c");
        std::filesystem::create_directories(folder / "in2");
        WriteBytes(folder / "in2" / "b.dff", "in2 b");
        WriteBytes(folder / "in2" / "c.dff", "in2 c");
        editor.table().selectAll();
    }
    std::string in() const { return (folder / "in").string(); }
    std::string summary(int replaced, int skipped) const {
        return std::to_string(replaced) + (replaced == 1 ? " entry" : " entries") + " replaced, " +
               std::to_string(skipped) + " skipped";
    }

    ScriptedQuickReplaceDialogs qrDialogs;
    QuickReplace quick;
};

TEST_F(QuickReplaceTest, EachChoiceForAMissingFile) {
    const std::string in2 = (folder / "in2").string(), picked = input("picked.dff", "picked b");
    using enum MissingFileOption;
    // qrSetting before, qrMissing's answer (nothing: closed by its frame), the next picker's
    // answer, rows replaced (the rest skipped), b.dff's and c.dff's bytes; b.dff kept first.
    // The rows build on one archive in order: those that leave b.dff alone come first.
    const std::tuple<const char*, std::optional<MissingFileOption>, std::string, int, std::string,
                     std::string>
        cases[] = {
            {"3", Skip, "", 2, "bbbbbbbb", "new c"},
            // Escape: that entry is skipped, the stored "separately" is not applied.
            {"2", {}, "", 2, "bbbbbbbb", "new c"},
            {"1", ReplaceSeparately, Cancel, 2, "bbbbbbbb", "new c"}, // cancelled: a skip
            {"1", NewLocation, Cancel, 2, "bbbbbbbb", "new c"},
            {"1", ReplaceSeparately, picked, 3, "picked b", "new c"},
            {"1", NewLocation, in2, 3, "in2 b", "in2 c"}, // c.dff comes from there too
        };
    for (const auto& [stored, answer, pick, replaced, b, c] : cases) {
        SCOPED_TRACE(std::string(stored) + " " + pick);
        editor.table().selectAll();
        settings.WriteSetting(stored, "qrSetting");
        settings.WriteSetting("none", "lastQR");
        qrDialogs.answers = {answer};
        desktop.answers = {in(), pick};

        quick.QuickReplaceSelected();

        EXPECT_EQ(imgBytes().substr(SectorSize, b.size()), b);
        EXPECT_EQ(imgBytes().substr(3 * SectorSize, 5), c);
        EXPECT_EQ(desktop.status, summary(replaced, 4 - replaced));
        EXPECT_EQ(settings.ReadSetting("lastQR"), pick == in2 ? in2 : in());
        EXPECT_EQ(StoredMissingFileOption(settings), answer ? answer : ReplaceSeparately);
    }
    EXPECT_EQ(qrDialogs.shown, std::vector<std::string>(std::size(cases), "b.dff @ " + in()));
}

TEST_F(QuickReplaceTest, TheFolderConversationAndTheFewSelectedCases) {
    editor.table().clearSelection();
    quick.QuickReplaceSelected();
    select({3}); // one row: the replace command's file dialog for that row
    desktop.answer({Cancel});
    quick.QuickReplaceSelected();
    editor.table().selectAll();
    settings.WriteSetting(in(), "lastQR"); // offered: Yes takes it, No shows the picker
    qrDialogs.answers = {MissingFileOption::Skip};
    desktop.answer({"yes", "no", Cancel});
    quick.QuickReplaceSelected();
    editor.table().selectAll();
    quick.QuickReplaceSelected();

    std::string said;
    for (const std::string& line : desktop.conversation) {
        said += line.substr(0, line.find(" [")) + "\n"; // the filters are the replace command's
    }
    const auto status = [&](const std::string& text) { return "status: " + text + "\n"; };
    const std::string offer =
        "ask " + text("qrPickPath") + ": " + text("useLastQR") + "\r\n" + in();
    EXPECT_EQ(said, status(text("noneSel")) + status(text("oneSel")) + "open " + text("rep1") +
                        "\n" + status(text("rep3")) + offer + " -> yes\nprogress shown: 4\n" +
                        status("a.dff " + text("rep5")) + status("c.dff " + text("rep5")) +
                        "progress hidden\n" + status(summary(2, 2)) + offer + " -> no\nfolder " +
                        text("repFrom") + " -> " + Cancel + "\n" + status(text("cancelQR")));
}

TEST_F(QuickReplaceTest, AFailedReplacementIsReportedAndStopsTheRun) {
    // b.dff must now be appended, which the full disk refuses: a.dff stays done, c.dff untried.
    input("b.dff", Pattern(3000, 'x'));
    const std::string before = imgBytes();
    const FileSizeLimit full(4 * SectorSize);
    const QuickReplaceCounts counts = quick.ReplaceSelectedFromFolder(in());
    EXPECT_TRUE(!counts.status.ok() && counts.replaced == 1u);
    ASSERT_EQ(desktop.said("message(Exclamation)").size(), 1u);
    EXPECT_NE(desktop.said("message(Exclamation)")[0].find("b.dff"), std::string::npos);
    EXPECT_TRUE(imgBytes() == std::string("new a") + '\0' + before.substr(6));
    EXPECT_EQ(records(), tableRecords());
    EXPECT_EQ(desktop.status, summary(1, 0));
    EXPECT_EQ(editor.table().selectedCount(), 0u);
}

} // namespace korvel::test
