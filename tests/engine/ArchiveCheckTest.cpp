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

TEST(ForEachCaseOnlyPair, PairsEachTwoSpellingsOnce) {
    using Pairs = std::vector<std::pair<std::string, std::string>>;
    const std::pair<std::vector<std::string>, Pairs> cases[] = {
        {{"a.dff", "a.dff", "b"}, {}},
        {{"a.dff", "A.DFF", "a.dff", "A.dff"},
         {{"a.dff", "A.DFF"}, {"a.dff", "A.dff"}, {"A.DFF", "A.dff"}}},
        {{"x", "caf\xE9", "CAF\xC9", "X"}, {{"x", "X"}, {"caf\xE9", "CAF\xC9"}}},
    };
    for (const auto& [names, expected] : cases) {
        EntryTable table;
        std::vector<Entry> rows;
        for (const std::string& name : names)
            rows.push_back({0, 1, name, false});
        table.assign(rows);
        Pairs found;
        EXPECT_EQ(ForEachCaseOnlyPair(table,
                                      [&](const std::string& a, const std::string& b) {
                                          found.push_back({a, b});
                                      }),
                  expected.size());
        EXPECT_EQ(found, expected);
    }
}

TEST(UnusedDataBytes, FileLengthLessTheUnionOfTheEntries) {
    using Rows = std::vector<std::pair<std::uint32_t, std::uint32_t>>; // start, sectors
    const std::tuple<Rows, std::uint64_t, std::uint64_t> cases[] = {
        {{}, 3000, 3000},
        {{{0, 1}, {2, 1}}, 3 * SectorSize, SectorSize},
        {{{0, 2}, {1, 2}, {1, 1}}, 4 * SectorSize, SectorSize}, // overlaps count once
        {{{1, 9}, {50, 1}}, 3 * SectorSize + 5, SectorSize},    // past the end covers nothing
        {{{0, 0}}, SectorSize, SectorSize},
    };
    for (const auto& [placements, length, unused] : cases) {
        EntryTable table;
        std::vector<Entry> rows;
        for (const auto& [start, sectors] : placements)
            rows.push_back({start, sectors, "e", false});
        table.assign(rows);
        EXPECT_EQ(UnusedDataBytes(table, length), unused) << length;
    }
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
    const std::string question =
        "ask " + text("menub8") + "?: " + text("aCheck1") + "\n" + text("rebuild2");
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
        {{{0, 1, "a.dff"}, {0, 1, "a.dff"}, {0, 1, "A.dff"}},
         "yes",
         text("aCheck2") + "\r\na.dff\r\n\r\n" + text("aCheckCase") + "\r\na.dff / A.dff",
         {progress + " 1/3", progress + " 3/3",
          shown + text("aCheck2") + "\r\na.dff\r\n\r\n" + text("aCheckCase") +
              "\r\na.dff / A.dff\n" + text("aCheck3"),
          done}},
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
