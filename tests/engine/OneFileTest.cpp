// One-file archives: every command lists and holds what it does on the two-file twin,
// damaged headers are refused with their own texts, and oversized entries never get in.
#include "TestFolder.h"
#include "archive/DirectoryStore.h"
#include "archive/EntryOperations.h"
#include "archive/QuickReplace.h"
#include "archive/RebuildJournal.h"

#include <gtest/gtest.h>

namespace korvel::test {
namespace {

namespace fs = std::filesystem;

// Each row's name, size and bytes as extracting them gives, after a fresh open.
std::string Extracted(const fs::path& img, const fs::path& out) {
    Archive archive;
    EXPECT_FALSE(OpenArchiveFiles(archive, img.string()).has_value()) << img;
    std::string listed;
    fs::create_directories(out);
    for (std::size_t row = 0; row < archive.table().size(); ++row) {
        const Entry& e = archive.table()[row];
        EXPECT_TRUE(ExtractEntryTo(archive, row, out).status.ok());
        listed +=
            e.name + " " + std::to_string(e.sizeSectors) + " " + ReadBytes(out / e.name) + "|";
    }
    return listed;
}

TEST(OneFile, EachCommandDoesWhatItDoesOnTheTwoFileTwin) {
    TestFolder folder;
    const fs::path in = folder / "in";
    const auto file = [&](const char* name) { return (in / name).string(); };
    // clang-format off
    const std::pair<const char*, std::function<void(Archive&)>> commands[] = {
        {"add, growing the records", [&](Archive& a) { AddBatch batch(a, false, {});
            for (std::string name : {"new.ifp", "car.dff"}) { (void)batch.Add(file(name.c_str()), name); }
            EXPECT_TRUE(batch.Finish().ok()); }},
        {"replace in place", [&](Archive& a) { EXPECT_TRUE(ReplaceEntry(a, 1, file("bus.txd")).status.ok()); }},
        {"replace appended", [&](Archive& a) { EXPECT_TRUE(ReplaceEntry(a, 0, file("car.dff")).status.ok()); }},
        {"rename", [](Archive& a) { EXPECT_TRUE(RenameEntry(a, 0, "Van.dff").ok()); }},
        {"name case", [](Archive& a) { EXPECT_EQ(LowerCaseNames(a, {1}, NameCase::Whole).count, 1u); }},
        {"delete", [](Archive& a) { EXPECT_TRUE(DeleteRows(a, {0, 2}).ok()); }},
        {"move to end", [](Archive& a) { EXPECT_TRUE(MoveRowsToEnd(a, {0}).ok()); }},
        {"quick replace", [&](Archive& a) { EXPECT_EQ(ReplaceFromFolder(a, {0, 1}, in.string(), {}, {}).replaced, 2u); }},
        {"rebuild", [](Archive& a) { EXPECT_TRUE(RebuildArchive(a, {}).status.ok()); }},
    };
    // clang-format on
    for (const auto& [what, run] : commands) {
        SCOPED_TRACE(what);
        fs::create_directories(in);
        WriteBytes(in / "new.ifp", std::string(3000, 'n'));
        WriteBytes(in / "bus.txd", "small bus");
        WriteBytes(in / "car.dff", std::string(5000, 'c'));
        // 63 records fill the one-file kind's first sector: one more must move an entry.
        std::vector<DirRecord> records{{2, 1, "car.dff"}, {0, 2, "BUS.TXD"}, {3, 1, "gap.col"}};
        for (std::uint32_t i = 0; records.size() < 63; ++i) {
            records.push_back({4 + i, 1, "fill" + std::to_string(i)});
        }
        WriteArchive(folder / "two.img", records, 64 * SectorSize);
        WriteOneFileTwin(folder / "two.img", folder / "one.img");
        for (const char* name : {"two.img", "one.img"}) {
            Archive archive;
            ASSERT_FALSE(OpenArchiveFiles(archive, (folder / name).string()).has_value());
            run(archive);
        }
        EXPECT_EQ(Extracted(folder / "one.img", folder / "out" / "one"),
                  Extracted(folder / "two.img", folder / "out" / "two"));
        EXPECT_FALSE(fs::exists(folder / "one.dir"));
    }
}

TEST(OneFile, DamagedHeadersAreRefusedAndDamagedRecordsListed) {
    TestFolder folder;
    const fs::path img = folder / "a.img";
    const std::string two = EncodeOneFileRecordArea({{1, 1, "a.dff"}, {1, 1, "a.dff"}});
    // clang-format off
    const std::tuple<const char*, std::string, const char*, std::size_t> cases[] = {
        {"header cut short", "VER2\x01", "oneFileShortHeader", 0},
        {"more records than an archive holds", EncodeOneFileRecordArea(std::vector<DirRecord>(40000)), "oneFileTooMany", 0},
        {"more records than the file holds", two.substr(0, 71), "oneFileCountPastEnd", 0},
        {"a record past the end", EncodeOneFileRecordArea({{9, 1, "far.dff"}}), "", 1},
        {"overlapping records", two + std::string(SectorSize * 2 - 72, '\0'), "", 2},
        {"a record over the records", EncodeOneFileRecordArea({{0, 2, "head.dff"}}) + std::string(SectorSize * 2 - 40, 'z'), "", 1},
    };
    // clang-format on
    for (const auto& [what, bytes, key, rows] : cases) {
        SCOPED_TRACE(what);
        WriteBytes(img, bytes);
        WriteBytes(folder / "a.dir", EncodeDirectory({{0, 1, "unused.dff"}})); // never read
        Archive archive;
        const auto failure = OpenArchiveFiles(archive, img.string());
        EXPECT_EQ(failure ? failure->reason.textKey() : "", key);
        EXPECT_EQ(archive.table().size(), rows);
        if (rows == 1 && !archive.table()[0].name.starts_with("far")) {
            // Replacing in place would write over the records: the data goes to the end.
            WriteBytes(folder / "new", "new");
            EXPECT_TRUE(ReplaceEntry(archive, 0, (folder / "new").string()).status.ok());
            EXPECT_EQ(archive.table()[0].startSector, 3u);
            EXPECT_EQ(ReadBytes(img).substr(0, 40), EncodeOneFileRecordArea({{3, 1, "head.dff"}}));
        }
    }
}

TEST(OneFile, AnEntryOverTheKindsLimitIsRefusedBeforeAnythingIsWritten) {
    TestFolder folder;
    const fs::path img = folder / "a.img", big = folder / "big.dff";
    WriteBytes(img,
               EncodeOneFileRecordArea({{1, 1, "a.dff"}}) + std::string(SectorSize * 2 - 40, 'a'));
    WriteBytes(big, "");
    fs::resize_file(big, MaxOneFileEntrySectors * SectorSize); // takes 65 536 sectors
    const std::string before = ReadBytes(img);
    Archive archive;
    ASSERT_FALSE(OpenArchiveFiles(archive, img.string()).has_value());
    std::string name = "big.dff";
    EXPECT_EQ(AddFile(archive, big.string(), name, false, {}).status.textKey(), "entryTooLarge");
    EXPECT_EQ(ReplaceEntry(archive, 0, big.string()).status.textKey(), "entryTooLarge");
    EXPECT_EQ(ReadBytes(img), before);
}

TEST(OneFile, TheNextOpenFinishesAWholeRecordJournalAndDropsAPartOne) {
    TestFolder folder;
    const fs::path img = folder / "a.img";
    const fs::path journal = RebuildFilesFor(img, img).records;
    const std::string renamed = EncodeOneFileRecordArea({{1, 1, "new.dff"}});
    // clang-format off
    const std::tuple<const char*, fs::path, std::string, std::string, bool> cases[] = {
        {"whole", journal, RecordJournalText(renamed), "new.dff", false},
        {"part-written", journal.string() + ".part", RecordJournalText(renamed), "old.dff", false},
        {"damaged", journal, RecordJournalText(renamed) + "x", "old.dff", true},
    };
    // clang-format on
    for (const auto& [what, path, text, listed, kept] : cases) {
        SCOPED_TRACE(what);
        WriteBytes(img, EncodeOneFileRecordArea({{1, 1, "old.dff"}}) +
                            std::string(SectorSize * 2 - 40, 'd'));
        WriteBytes(path, text);
        Archive archive;
        std::string notice;
        ASSERT_FALSE(OpenArchiveFiles(archive, img.string(), {}, &notice).has_value());
        EXPECT_EQ(archive.table()[0].name, listed);
        EXPECT_EQ(fs::exists(path), kept);
        EXPECT_EQ(notice.empty(), !kept);
        fs::remove(path);
    }
}

} // namespace
} // namespace korvel::test
