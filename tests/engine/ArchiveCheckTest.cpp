#include "archive/ArchiveCheck.h"
#include "EditorHarness.h"

#include <gtest/gtest.h>

#include <random>

namespace korvel {
namespace {

class ArchiveCheckTest : public test::EditorHarness {
protected:
    void open(const std::vector<std::string>& names) {
        std::vector<DirRecord> records;
        for (std::uint32_t i = 0; i < names.size(); ++i) {
            records.push_back({i, 1, names[i]});
        }
        openArchive("check.img", records, names.size() * SectorSize);
    }
};

TEST_F(ArchiveCheckTest, ListsEveryPairAtItsEarlierRowAndCopiesTheReport) {
    const std::string marker(MarkerName);
    open({"abc.dff", "x.txd", marker, "ABC.DFF", "abc.dff", marker, "x.txd", "abc.dff", marker,
          "caf\xE9.col", "caf\xE9.col"});
    desktop.clipboard = "before";
    desktop.answer({"yes"});
    CheckArchiveAsking(editor);

    const std::string report =
        text("aCheck2") + "\r\nabc.dff\r\nabc.dff\r\nx.txd\r\nabc.dff\r\ncaf\xC3\xA9.col";
    EXPECT_EQ(desktop.clipboard, report);
    EXPECT_EQ(
        desktop.conversation,
        (std::vector<std::string>{
            "ask " + text("menub8") + "?: " + text("aCheck1") + "\n" + text("rebuild2") + " -> yes",
            "status: " + text("aCheck4") + " 1/11",
            "status: " + text("aCheck4") + " 11/11",
            "message(Information) " + text("aCheck6") + ": " + report + "\n" + text("aCheck3"),
            "status: " + text("aCheck6"),
        }));
}

TEST_F(ArchiveCheckTest, NothingFoundLeavesTheClipboardAlone) {
    const std::string marker(MarkerName);
    const std::vector<std::vector<std::string>> tables = {
        {},
        {"abc.dff", "ABC.DFF", "abc.txd"},
        {marker, marker, marker},
    };
    for (const auto& names : tables) {
        open(names);
        desktop.clipboard = "before";
        desktop.answer({"yes"});
        CheckArchiveAsking(editor);
        EXPECT_EQ(desktop.clipboard, "before");
        EXPECT_EQ(desktop.said("message"),
                  (std::vector<std::string>{"message(Information) " + text("aCheck6") + ": " +
                                            text("aCheck5")}));
        EXPECT_EQ(desktop.status, text("aCheck6"));
    }
}

TEST_F(ArchiveCheckTest, AnsweringNoOnlySetsTheStatus) {
    open({"a.dff", "a.dff"});
    desktop.clipboard = "before";
    desktop.answer({"no"});
    CheckArchiveAsking(editor);
    EXPECT_EQ(desktop.clipboard, "before");
    EXPECT_EQ(desktop.conversation.size(), 2u);
    EXPECT_EQ(desktop.conversation.back(), "status: " + text("aCheck6"));
}

// The counting check must list exactly what comparing every pair lists.
TEST(DuplicatePairs, MatchesThePairwiseComparison) {
    std::mt19937 random(7);
    const std::vector<std::string> pool = {"a", "b", "B", "c.dff", std::string(MarkerName), ""};
    for (int round = 0; round < 200; ++round) {
        EntryTable table;
        std::vector<Entry> rows;
        const std::size_t n = random() % 25;
        for (std::size_t i = 0; i < n; ++i) {
            rows.push_back({0, 1, pool[random() % pool.size()], false});
        }
        table.assign(rows);
        std::vector<std::string> pairwise;
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = i; j < n; ++j) {
                if (rows[i].name != MarkerName && j != i && rows[j].name == rows[i].name) {
                    pairwise.push_back(rows[i].name);
                }
            }
        }
        std::vector<std::size_t> seen;
        EXPECT_EQ(DuplicatePairs(table, [&](std::size_t row, std::size_t) { seen.push_back(row); }),
                  pairwise);
        EXPECT_EQ(seen.size(), n);
    }
}

} // namespace
} // namespace korvel
