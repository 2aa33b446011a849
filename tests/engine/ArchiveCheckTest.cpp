// Duplicate names (archive layer) and the check command's conversation
// (window layer).
#include "archive/ArchiveCheck.h"
#include "EditorHarness.h"
#include "archive/FreeSpace.h"
#include "window/ReportCommands.h"

#include <gtest/gtest.h>

#include <random>

namespace korvel {
namespace {

// The counting check must list exactly what comparing every pair lists.
TEST(ForEachDuplicatePair, MatchesThePairwiseComparison) {
    std::mt19937 random(7);
    const std::vector<std::string> pool = {"a", "b", "B", "c.dff", std::string(MarkerName), ""};
    for (int round = 0; round < 200; ++round) {
        EntryTable table;
        std::vector<Entry> rows;
        const std::size_t n = random() % 25;
        for (std::size_t i = 0; i < n; ++i)
            rows.push_back({0, 1, pool[random() % pool.size()], false});
        table.assign(rows);
        std::vector<std::string> pairwise;
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = i + 1; j < n; ++j)
                if (rows[i].name != MarkerName && rows[j].name == rows[i].name)
                    pairwise.push_back(rows[i].name);
        std::vector<std::size_t> seen;
        std::vector<std::string> streamed;
        EXPECT_EQ(ForEachDuplicatePair(
                      table, [&](const std::string& name) { streamed.push_back(name); },
                      [&](std::size_t row, std::size_t) { seen.push_back(row); }),
                  pairwise.size());
        EXPECT_EQ(streamed, pairwise);
        EXPECT_EQ(seen.size(), n);
    }
}

EntryTable TableOf(const std::vector<Entry>& rows) {
    EntryTable table;
    table.assign(rows);
    return table;
}

TEST(ForEachCaseOnlyPair, PairsEachTwoSpellingsOnce) {
    const std::pair<std::vector<Entry>, std::string> cases[] = {
        {{{0, 1, "a.dff"}, {0, 1, "a.dff"}, {0, 1, "b"}}, ""},
        {{{0, 1, "a.dff"}, {0, 1, "A.DFF"}, {0, 1, "a.dff"}, {0, 1, "A.dff"}},
         "a.dff/A.DFF a.dff/A.dff A.DFF/A.dff "},
        {{{0, 1, "x"}, {0, 1, "caf\xE9"}, {0, 1, "CAF\xC9"}, {0, 1, "X"}}, "x/X caf\xE9/CAF\xC9 "}};
    for (const auto& [rows, expected] : cases) {
        std::string found;
        (void)ForEachCaseOnlyPair(TableOf(rows), [&](const std::string& a, const std::string& b) {
            found += a + "/" + b + " ";
        });
        EXPECT_EQ(found, expected);
    }
}

TEST(UnusedDataBytes, FileLengthLessTheUnionOfTheEntries) {
    const std::tuple<std::vector<Entry>, std::uint64_t, std::uint64_t> cases[] = {
        {{}, 3000, 3000},
        {{{0, 1, "a"}, {2, 1, "b"}}, 3 * SectorSize, SectorSize},
        {{{0, 2, "a"}, {1, 2, "b"}, {1, 1, "c"}}, 4 * SectorSize, SectorSize}, // overlaps once
        {{{1, 9, "a"}, {50, 1, "b"}, {0, 0, "c"}}, 3 * SectorSize + 5, SectorSize}}; // past the end
    for (const auto& [rows, length, unused] : cases)
        EXPECT_EQ(UnusedDataBytes(TableOf(rows), length), unused) << length;
}

using CheckCommandTest = test::EditorHarness;

TEST_F(CheckCommandTest, ShowsAndCopiesOnlyWhatItFound) {
    const std::string report =
        text("aCheck2") + "\r\nabc.dff\r\nx.txd\r\ncaf\xC3\xA9.col"; // names as UTF-8
    const std::string progress = "status: " + text("aCheck4");
    const std::string shown = "message(Information) " + text("aCheck6") + ": ";
    const std::string done = "status: " + text("aCheck6");
    std::string many = text("aCheck2");
    for (int i = 0; i < 10'000; ++i)
        many += "\r\na.dff";
    many += "\r\n" + text("aCheck7") + " 153";
    const std::string question = "ask Archive check?: " + text("aCheck1") + "\n" + text("rebuild2");
    const struct {
        std::vector<DirRecord> rows;
        const char* answer;
        std::string clipboard;
        std::vector<std::string> after; // the question's answer
    } cases[] = {
        {{{0, 1, "abc.dff"},
          {0, 1, "x.txd"},
          {0, 1, "abc.dff"},
          {0, 1, "x.txd"},
          {0, 1, "caf\xE9.col"},
          {0, 1, "caf\xE9.col"}},
         "yes",
         report,
         {progress + " 1/6", progress + " 6/6", shown + report + "\n" + text("aCheck3"), done}},
        {{{0, 1, "abc.dff"}, {0, 1, "ABC.DFF"}},
         "yes",
         text("aCheckCase") + "\r\nabc.dff / ABC.DFF",
         {progress + " 1/2", progress + " 2/2",
          shown + text("aCheckCase") + "\r\nabc.dff / ABC.DFF\n" + text("aCheck3"), done}},
        {{{0, 1, "abc.dff"}, {0, 1, "b.col"}},
         "yes",
         "before",
         {progress + " 1/2", progress + " 2/2", shown + text("aCheck5"), done}},
        {{{0, 1, "a.dff"}, {0, 1, "a.dff"}}, "no", "before", {done}},
        // 143 rows of one name make 10 153 pairs: the list stops at 10 000.
        {std::vector<DirRecord>(143, {0, 1, "a.dff"}),
         "yes",
         many,
         {progress + " 1/143", progress + " 143/143", shown + many + "\n" + text("aCheck3"), done}},
    };
    for (const auto& c : cases) {
        openArchive("check.img", c.rows, SectorSize);
        desktop.clipboard = "before";
        desktop.answer({c.answer});
        CheckArchiveAsking(editor);
        EXPECT_EQ(desktop.clipboard, c.clipboard);
        std::vector<std::string> expected = {question + " -> " + c.answer};
        expected.insert(expected.end(), c.after.begin(), c.after.end());
        EXPECT_EQ(desktop.conversation, expected);
    }
}

} // namespace
} // namespace korvel
