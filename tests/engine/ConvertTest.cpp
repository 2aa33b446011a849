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
    const std::string name24(24, 'n');
    std::vector<DirRecord> many; // 65 records: the record area takes two sectors
    for (std::uint32_t i = 0; i < 65; ++i) {
        many.push_back({i, 1, "e" + std::to_string(i) + ".dff"});
    }
    const struct Case {
        std::vector<DirRecord> records;
        std::uint64_t sectors;
    } cases[] = {
        {{{0, 1, "a.dff"}, {1, 0, "empty.col"}, {1, 1, std::string(MarkerName)}, {2, 3, name24}},
         5},
        {{}, 0},
        {many, 65},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.records.size());
        open(c.records, c.sectors * SectorSize);
        const fs::path one = folder / "one.img", back = folder / "back.img";
        ASSERT_TRUE(ConvertArchive(editor.archive(), one.string(), ArchiveKind::OneFile, {}, {})
                        .status.ok());
        EXPECT_FALSE(fs::exists(folder / "one.dir"));
        const std::string bytes = ReadBytes(one);
        const std::uint64_t first = OneFileFirstDataSector(c.records.size());
        EXPECT_EQ(bytes.substr(0, 4), "VER2");
        EXPECT_EQ(bytes.size(), (first + c.sectors) * SectorSize);
        EXPECT_EQ(bytes.substr(first * SectorSize), imgBytes());
        const std::vector<DirRecord> records = ViewOneFile(one, folder / "one.dir");
        ASSERT_EQ(records.size(), c.records.size());
        for (std::size_t i = 0; i < records.size(); ++i) {
            EXPECT_EQ(records[i],
                      (DirRecord{static_cast<std::uint32_t>(c.records[i].startSector + first),
                                 c.records[i].sizeSectors, c.records[i].name}));
            EXPECT_EQ(bytes.substr(8 + i * RecordSize + 6, 2), std::string(2, '\0')); // stored
        }
        Archive view;
        ASSERT_FALSE(OpenArchiveFiles(view, one.string()).has_value());
        ASSERT_TRUE(ConvertArchive(view, back.string(), ArchiveKind::TwoFile, {}, {}).status.ok());
        EXPECT_EQ(ReadBytes(back), imgBytes());
        EXPECT_EQ(ReadBytes(folder / "back.dir"), dirBytes());
        for (const auto& item : fs::directory_iterator(folder.path())) {
            EXPECT_EQ(item.path().string().find(".korvel"), std::string::npos) << item.path();
        }
        editor.CloseArchive();
        for (const char* name : {"one.img", "one.dir", "back.img", "back.dir"}) {
            fs::remove(folder / name);
        }
    }
}

TEST_F(Convert, RefusesBeforeWritingAnything) {
    const std::string big = "big.dff";
    open({{0, 1, "a.dff"}, {1, 2, "past.txd"}}, 2 * SectorSize);
    WriteBytes(folder / "kept.img", "kept");
    fs::create_symlink(folder / "victim.img", folder / "link.img");
    const struct Case {
        std::string dest;
        ArchiveKind kind;
        std::string saying;
    } cases[] = {
        {img(), ArchiveKind::OneFile, "a.img"},
        {(folder / "." / "a.dir").string(), ArchiveKind::OneFile, "a.dir"},
        {(folder / "link.img").string(), ArchiveKind::OneFile, "link"},
        {(folder / "kept.img").string(), ArchiveKind::TwoFile, "not confirmed"},
    };
    for (const Case& c : cases) {
        const ConvertResult result = ConvertArchive(editor.archive(), c.dest, c.kind, {}, {});
        EXPECT_NE(result.status.error().find(c.saying), std::string::npos) << result.status.error();
    }
    EXPECT_EQ(ReadBytes(folder / "kept.img"), "kept");
    EXPECT_FALSE(fs::exists(folder / "victim.img") || fs::exists(folder / "kept.dir"));
    // The entry past the end is copied with the sector that exists.
    const ConvertResult cut = ConvertArchive(editor.archive(), (folder / "cut.img").string(),
                                             ArchiveKind::OneFile, {}, {});
    ASSERT_EQ(cut.cut.size(), 1u);
    EXPECT_EQ(cut.cut[0].textKey(), "bytesMissing");
    EXPECT_EQ(ViewOneFile(folder / "cut.img", folder / "cut.dir")[1],
              (DirRecord{2, 1, "past.txd"}));

    // One entry too large for a 16-bit size (a sparse data file), and more
    // rows than a directory file counts.
    editor.table().append({0, MaxOneFileEntrySectors + 1, big});
    fs::resize_file(img(), SectorToOffset(MaxOneFileEntrySectors + 1));
    const ConvertResult large = ConvertArchive(editor.archive(), (folder / "large.img").string(),
                                               ArchiveKind::OneFile, {}, {});
    EXPECT_EQ(large.status.arguments().at(0), big);
    while (editor.table().size() <= MaxRecords) {
        editor.table().append({0, 1, "x.dff"});
    }
    const ConvertResult many = ConvertArchive(editor.archive(), (folder / "many.img").string(),
                                              ArchiveKind::TwoFile, {}, {});
    EXPECT_EQ(many.status.textKey(), "convertTooMany");
    EXPECT_FALSE(fs::exists(folder / "large.img") || fs::exists(folder / "many.img"));
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
