#include "archive/Convert.h"
#include "EntryFixture.h"
#include "window/ConvertCommand.h"

namespace korvel::test {
namespace {

namespace fs = std::filesystem;
using Convert = EntryFixture;

// A one-file archive read back through the codec, as a two-file view (the
// same data file and a ".dir" of its records) that a two-file open reads.
std::vector<DirRecord> ViewOneFile(const fs::path& img, const fs::path& dir) {
    const std::string bytes = ReadBytes(img);
    const auto count = OneFileRecordCount(bytes);
    EXPECT_TRUE(count && bytes.size() >= OneFileRecordAreaBytes(*count)) << img;
    const auto records = DecodeOneFileRecords(bytes.substr(8, *count * RecordSize));
    WriteBytes(dir, EncodeDirectory(records));
    return records;
}

TEST_F(Convert, TwoFileToOneFileAndBackGivesTheSameBytes) {
    std::vector<DirRecord> many(65, {0, 0, "e.dff"}); // the record area takes two sectors
    const struct Case {
        std::vector<DirRecord> records;
        std::uint64_t sectors;
    } cases[] = {
        {{{0, 1, "a.dff"}, {1, 0, "empty.col"}, {1, 1, std::string(MarkerName)}, {2, 3, "n24"}}, 5},
        {{}, 0},
        {many, 0},
    };
    for (Case c : cases) {
        SCOPED_TRACE(c.records.size());
        if (!c.records.empty()) {
            c.records.back().name.resize(NameFieldSize, 'n'); // no zero byte after it
        }
        open(c.records, c.sectors * SectorSize);
        // Each case writes over the files of the one before: confirmed.
        const std::string one = (folder / "one.img").string(),
                          back = (folder / "back.img").string();
        ASSERT_TRUE(
            ConvertArchive(editor.archive(), one, ArchiveKind::OneFile, {one}, {}).status.ok());
        EXPECT_FALSE(fs::exists(folder / "one.dir"));
        const std::string bytes = ReadBytes(one);
        const std::uint64_t first = OneFileFirstDataSector(c.records.size());
        EXPECT_EQ(bytes.size(), (first + c.sectors) * SectorSize);
        EXPECT_EQ(bytes.substr(first * SectorSize), imgBytes());
        for (DirRecord& record : c.records) {
            record.startSector += static_cast<std::uint32_t>(first);
        }
        EXPECT_EQ(ViewOneFile(one, folder / "one.dir"), c.records);
        Archive view;
        ASSERT_FALSE(OpenArchiveFiles(view, one).has_value());
        const std::vector<std::string> confirmed = {back, (folder / "back.dir").string()};
        ASSERT_TRUE(ConvertArchive(view, back, ArchiveKind::TwoFile, confirmed, {}).status.ok());
        EXPECT_EQ(ReadBytes(back), imgBytes());
        EXPECT_EQ(ReadBytes(folder / "back.dir"), dirBytes());
        fs::remove(folder / "one.dir"); // the view, not part of the archive
    }
}

TEST_F(Convert, RefusesBeforeWritingAnything) {
    open({{0, 1, "a.dff"}, {1, 2, "past.txd"}}, 2 * SectorSize);
    WriteBytes(folder / "kept.img", "kept");
    fs::create_symlink(folder / "victim.img", folder / "link.img");
    // The entry past the end is copied with the sector that exists.
    const ConvertResult cut = ConvertArchive(editor.archive(), (folder / "cut.img").string(),
                                             ArchiveKind::OneFile, {}, {});
    ASSERT_EQ(cut.cut.size(), 1u);
    EXPECT_EQ(cut.cut[0].textKey(), "bytesMissing");
    EXPECT_EQ(ViewOneFile(folder / "cut.img", folder / "cut.dir")[1],
              (DirRecord{2, 1, "past.txd"}));
    // One entry too large for a 16-bit size (a sparse data file), and more
    // rows than a directory file counts.
    editor.table().append({0, MaxOneFileEntrySectors + 1, "big.dff"});
    fs::resize_file(img(), SectorToOffset(MaxOneFileEntrySectors + 1));
    while (editor.table().size() <= MaxRecords) {
        editor.table().append({0, 1, "x.dff"});
    }
    const struct Case {
        std::string dest;
        ArchiveKind kind;
        std::string saying;
    } cases[] = {
        {img(), ArchiveKind::OneFile, "a.img"},
        {(folder / "." / "a.dir").string(), ArchiveKind::OneFile, "a.dir"},
        {(folder / "link.img").string(), ArchiveKind::OneFile, "link"},
        {(folder / "kept.img").string(), ArchiveKind::TwoFile, "not confirmed"},
        {(folder / "large.img").string(), ArchiveKind::OneFile, "\"big.dff\" takes 65536"},
        {(folder / "many.img").string(), ArchiveKind::TwoFile, "32768 entries"},
    };
    for (const Case& c : cases) {
        const ConvertResult result = ConvertArchive(editor.archive(), c.dest, c.kind, {}, {});
        EXPECT_NE(result.status.error().find(c.saying), std::string::npos) << result.status.error();
    }
    EXPECT_EQ(ReadBytes(folder / "kept.img"), "kept");
    for (const char* name : {"victim.img", "kept.dir", "large.img", "many.img", "many.dir"}) {
        EXPECT_FALSE(fs::exists(folder / name)) << name;
    }
}

TEST_F(Convert, TheMenuItemAndNewOfferTheOneFileKind) {
    open({{0, 1, "a.dff"}}, SectorSize);
    desktop.answer({(folder / "sa.img").string(), "no"});
    ConvertArchiveAsking(editor);
    EXPECT_EQ(desktop.lastFileDialog.presetName, "a-v2.img");
    EXPECT_EQ(ReadBytes(folder / "sa.img").substr(0, 8), std::string("VER2\1\0\0\0", 8));
    EXPECT_EQ(desktop.status, text("convertDone") + " " + (folder / "sa.img").string());
    EXPECT_EQ(editor.dataPath(), img());

    desktop.nextFilterIndex = 1;
    desktop.answer({(folder / "new.img").string()});
    editor.NewArchiveAskingPath();
    EXPECT_EQ(ReadBytes(folder / "new.img"), EncodeOneFileRecordArea({}).append(2040, '\0'));
    EXPECT_FALSE(fs::exists(folder / "new.dir"));
}

} // namespace
} // namespace korvel::test
