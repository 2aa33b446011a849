#include "archive/Marker.h"
#include "EntryFixture.h"
#include "platform/Folders.h"
#include "window/MainCommands.h"

namespace korvel::test {
namespace {

using Marker = EntryFixture;

std::string MarkerData(const std::string& text) {
    std::string bytes = text + "\r\n";
    bytes.resize(SectorSize, '\0');
    return bytes;
}

TEST_F(Marker, TwiceGivesTwoMarkersWithoutADuplicatePrompt) {
    open({{0, 2, "a.dff"}}, 2 * SectorSize);
    settings.WriteSetting("True", "addingScan");
    settings.WriteSetting("0", "scanPrompt");
    // No duplicate answers are queued: a prompt would throw.
    ASSERT_TRUE(commands.InsertMarker());
    ASSERT_TRUE(commands.InsertMarker());

    EXPECT_TRUE(dialogs.shown.empty());
    const std::string marker(MarkerName);
    EXPECT_EQ(records(), (std::vector<DirRecord>{{0, 2, "a.dff"}, {2, 1, marker}, {3, 1, marker}}));
    EXPECT_EQ(records(), tableRecords());
    const std::string data = MarkerData(text("markText"));
    EXPECT_EQ(imgBytes().substr(2 * SectorSize), data + data);
    EXPECT_EQ(editor.highestOffset(), 3 * SectorSize);
    EXPECT_EQ(desktop.status, text("markerIn"));
    // The whole 24-byte name field is hyphens: no terminating zero.
    EXPECT_EQ(dirBytes().substr(2 * RecordSize + 8, 24), marker);
}

TEST_F(Marker, CarriesTheCurrentLanguageAndCreatesTheIconsFolder) {
    ASSERT_FALSE(std::filesystem::exists(folder / "icons"));
    struct RecordingList : ListAppearance {
        void ClearColumnHeaders() override {}
        void AddColumnHeader(const std::string&, int) override {}
        void SetGridLines(bool) override {}
        void SetRowStripes(std::optional<std::pair<Rgb, Rgb>>) override {}
    } list;
    settings.WriteSetting("False", "firstRun");
    MainCommands main(editor, list);
    main.Startup("");
    const std::string english = text("markText");
    EXPECT_EQ(ReadBytes(folder / "icons" / "marker.gta"), english + "\r\n");

    // Switched language: the next marker holds the new text, as one byte
    // per character (the French text has accents).
    settings.WriteSetting("francais", "language");
    const std::string french = text("markText");
    ASSERT_NE(french, english);
    open({{0, 1, "a.dff"}}, SectorSize);
    ASSERT_TRUE(commands.InsertMarker());
    const std::string ansi = *Utf8ToCp1252(french);
    EXPECT_EQ(ReadBytes(folder / "icons" / "marker.gta"), ansi + "\r\n");
    EXPECT_EQ(imgBytes().substr(SectorSize), MarkerData(ansi));
}

TEST_F(Marker, AMarkerFileThatCannotBeWrittenAddsNothing) {
    open({{0, 1, "a.dff"}}, SectorSize);
    // A file where the icons folder should be.
    WriteBytes(folder / "icons", "in the way");
    const std::string before = dirBytes();
    EXPECT_FALSE(commands.InsertMarker());
    EXPECT_EQ(desktop.said("message(Exclamation)").size(), 1u);
    EXPECT_EQ(dirBytes(), before);
    EXPECT_EQ(editor.table().size(), 1u);
}

} // namespace
} // namespace korvel::test
