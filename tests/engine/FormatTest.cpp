#include "archive/Format.h"
#include "TestFolder.h"
#include "archive/Names.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

// The directory's record count and an entry's sectors: both round in ways a
// plain division would not.
TEST(Format, RecordCountAndSectorRules) {
    // Halves round to even: 16 -> 0.5 -> 0, 48 -> 1.5 -> 2, 80 -> 2.5 -> 2.
    const std::pair<std::uint64_t, std::uint64_t> records[] = {
        {15, 0}, {16, 0}, {17, 1}, {48, 2}, {80, 2}, {81, 3}, {1048559, 32767}, {1048560, 32768}};
    for (const auto& [length, count] : records)
        EXPECT_EQ(RecordCountForLength(length), count) << "length " << length;
    // A file always leaves padding behind it.
    const std::pair<std::uint64_t, std::uint64_t> sectors[] = {
        {0, 1}, {2047, 1}, {2048, 2}, {4095, 2}, {4096, 3}};
    for (const auto& [bytes, count] : sectors)
        EXPECT_EQ(SectorsForFile(bytes), count) << bytes << " bytes";
}

TEST(Format, OffsetAndSizeTexts) {
    // Offsets past 2 GiB are computed in 64 bits instead of going negative.
    const std::pair<std::uint32_t, const char*> offsets[] = {
        {0, "0"}, {0x35, "1A800"}, {0x100000, "80000000"}, {0xFFFFFFFF, "7FFFFFFF800"}};
    for (const auto& [sector, text] : offsets)
        EXPECT_EQ(OffsetText(sector), text);
    EXPECT_EQ(SizeText(3), "6kb");
    EXPECT_EQ(SizeText(0xFFFFFFFF), "8589934590kb");
}

TEST(Format, RecordsRoundTripByteForByte) {
    std::string dir;
    auto record = [&](std::uint32_t start, std::uint32_t size, std::string field) {
        field.resize(NameFieldSize, '\0');
        for (int shift = 0; shift < 32; shift += 8)
            dir.push_back(static_cast<char>(start >> shift));
        for (int shift = 0; shift < 32; shift += 8)
            dir.push_back(static_cast<char>(size >> shift));
        dir += field;
    };
    record(5, 3, "abc.dff");
    record(0x01020304, 7, "exactly_twenty_four.dff_"); // 24 characters, no zero
    record(9, 1, std::string("abc.txd\0junk", 12));    // bytes after the zero are dropped
    record(10, 1, "caf\xE9.txd");                      // Windows-1252 byte above 127

    const std::vector<DirRecord> records = DecodeDirectory(dir);
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[1].startSector, 0x01020304u);
    EXPECT_EQ(records[1].sizeSectors, 7u);
    std::vector<std::string> names;
    for (const DirRecord& r : records)
        names.push_back(r.name);
    EXPECT_EQ(names, (std::vector<std::string>{"abc.dff", "exactly_twenty_four.dff_", "abc.txd",
                                               "caf\xE9.txd"}));
    const std::string written = EncodeDirectory(records);
    ASSERT_EQ(written.size(), 128u);
    EXPECT_EQ(written.substr(0, 64), dir.substr(0, 64));
    EXPECT_EQ(written.substr(64 + 8, 24), std::string("abc.txd") + std::string(17, '\0'));
    EXPECT_EQ(written.substr(96), dir.substr(96));
}

TEST(Format, CutNamesAndPartialRecords) {
    EXPECT_EQ(EncodeDirectory({{1, 1, std::string(30, 'n')}}).substr(8), std::string(24, 'n'));

    std::string dir = EncodeDirectory({{1, 2, "first.dff"}, {7, 9, "second.txd"}});
    // 32 + 20 bytes: the count rule rounds 1.625 up to 2 records; the second
    // keeps its start and size and the first 12 bytes of its name.
    dir.resize(52);
    const auto records = DecodeDirectory(dir);
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[1].sizeSectors, 9u);
    EXPECT_EQ(records[1].name, "second.txd");
    // 32 + 10 bytes rounds down: the stray bytes are ignored.
    dir.resize(42);
    EXPECT_EQ(DecodeDirectory(dir).size(), 1u);
}

// The one-file header: the magic decides the kind, the stored size stands in
// only for a missing streamed size, and the data starts at the first whole
// sector after the records.
TEST(Format, OneFileRecordArea) {
    const std::vector<DirRecord> records = {{1, 3, "a.dff"}, {4, 0xFFFF, "big.txd"}};
    std::string area = EncodeOneFileRecordArea(records);
    ASSERT_EQ(area.size(), 8u + 64u);
    EXPECT_EQ(area.substr(0, 8), std::string("VER2\x02\0\0\0", 8));
    EXPECT_EQ(OneFileRecordCount(area), 2u);
    area[8 + 32 + 4] = area[8 + 32 + 5] = 0; // streamed size 0 ...
    area[8 + 32 + 6] = 7;                    // ... stored size 7
    const std::vector<DirRecord> back = DecodeOneFileRecords(std::string_view(area).substr(8));
    ASSERT_EQ(back.size(), 2u);
    EXPECT_EQ(back[0].sizeSectors, 3u);
    EXPECT_EQ(back[0].name, "a.dff");
    EXPECT_EQ(back[1].sizeSectors, 7u);
    EXPECT_EQ(DecodeOneFileRecords(std::string_view(area).substr(8, 63)).size(), 1u);

    EXPECT_EQ(ArchiveKindOf("VER2"), ArchiveKind::OneFile);
    for (std::string_view start : {"VER", "ver2", "", "\0\0\0\0"})
        EXPECT_EQ(ArchiveKindOf(start), ArchiveKind::TwoFile) << start;
    EXPECT_FALSE(OneFileRecordCount("VER2\x01"));
    const std::pair<std::uint64_t, std::uint64_t> firstSectors[] = {
        {0, 1}, {63, 1}, {64, 2}, {127, 2}, {32767, 512}};
    for (const auto& [count, sector] : firstSectors)
        EXPECT_EQ(OneFileFirstDataSector(count), sector) << count << " records";
}

TEST(Format, DirectoryPathFindsTheFileWhateverItsCase) {
    test::TestFolder folder;
    const auto& at = folder.path();
    // Nothing there yet: a new archive's directory keeps the data file's case.
    EXPECT_EQ(DirectoryPathFor(at / "New.IMG"), at / "New.DIR");
    EXPECT_EQ(DirectoryPathFor(at / "gta3.img"), at / "gta3.dir");

    test::WriteBytes(at / "x.dir", "");
    EXPECT_EQ(DirectoryPathFor(at / "X.IMG"), at / "x.dir"); // the classic lower-cased name
    test::WriteBytes(at / "Mixed.Dir", "");
    EXPECT_EQ(DirectoryPathFor(at / "MIXED.img"), at / "Mixed.Dir"); // any case
    test::WriteBytes(at / "X.DIR", "");
    EXPECT_EQ(DirectoryPathFor(at / "X.IMG"), at / "X.DIR"); // the exact match wins
}

TEST(Names, Windows1252SurvivesTheTripThroughUtf8) {
    std::string all;
    for (int b = 1; b < 256; ++b)
        all.push_back(static_cast<char>(b));
    const auto back = Utf8ToCp1252(Cp1252ToUtf8(all));
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(*back, all);
    EXPECT_EQ(Cp1252ToUtf8("\x80\xE9"), "\xE2\x82\xAC\xC3\xA9"); // euro sign, e acute
    EXPECT_FALSE(Utf8ToCp1252("\xE6\x97\xA5.dff").has_value());  // a CJK character
    EXPECT_FALSE(Utf8ToCp1252("\xC3").has_value());              // cut short
}

TEST(Names, CaseMappingAndTypes) {
    EXPECT_EQ(ToLowerCp1252("PLAYER.DFF\xC0\x8A\x9F\xD7"), "player.dff\xE0\x9A\xFF\xD7");
    EXPECT_TRUE(EqualsIgnoreCase("Caf\xC9.TXD", "caf\xE9.txd"));
    EXPECT_FALSE(EqualsIgnoreCase("a.dff", "a.dff "));

    const std::pair<const char*, const char*> icons[] = {
        {"model.DFF", "blue"}, {"readme", "none"},  {"xdff", "blue"}, {"city.txd", "orange"},
        {"walk.IFP", "green"}, {"map.col", "grey"}, {"", "none"},     {"ff", "none"}};
    for (const auto& [name, icon] : icons)
        EXPECT_EQ(IconKey(IconKindOfName(name)), icon) << name;
}

TEST(Names, NameOrderIgnoresCase) {
    const std::pair<const char*, const char*> ordered[] = {
        {"a.txd", "B.dff"}, {"b.dff", "C.ifp"}, {"ab", "abc"}};
    for (const auto& [first, second] : ordered) {
        EXPECT_TRUE(NameLess(first, second)) << first;
        EXPECT_FALSE(NameLess(second, first)) << second;
    }
    // Same letters in another case: a fixed order so sorting is stable.
    EXPECT_NE(NameLess("A", "a"), NameLess("a", "A"));
}

} // namespace
} // namespace korvel
