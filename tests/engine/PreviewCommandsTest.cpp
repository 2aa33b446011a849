// The preview pane's exports as the window runs them: a texture written into
// the chosen folder only after the person agreed to write over a file of the
// same name; and which row the pane shows for a selection.
#include "window/PreviewCommands.h"

#include "platform/Folders.h"
#include "window/EntryExport.h"

#include "EditorHarness.h"
#include "EntryBytes.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

using namespace test;

// A 2x2 A8R8G8B8 Direct3D 9 texture named `name`, in a dictionary.
std::string OneTextureDictionary(const std::string& name) {
    const std::string head = U32(9) + U32(0x1102) + Field(name, 32) + Field("", 32) + U32(0x0500) +
                             U32(21) + std::string{2, 0, 2, 0, 32, 1, 4, 0};
    const std::string native =
        Chunk(0x15, Chunk(0x01, head + U32(16) + std::string(16, '\x40')) + Chunk(0x03, ""));
    return Chunk(0x16, Chunk(0x01, std::string{1, 0, 2, 0}) + native + Chunk(0x03, ""));
}

class PreviewExportsTest : public EditorHarness {};

TEST_F(PreviewExportsTest, WritesTheTextureOnlyWhereThePersonAgreedToWriteOver) {
    WriteArchiveOf(folder / "t.img", {{"t.txd", OneTextureDictionary("wall")}});
    ASSERT_TRUE(editor.OpenArchive((folder / "t.img").string()));
    const auto out = folder / "out";
    std::filesystem::create_directory(out);
    struct Case {
        const char* what;
        bool existing;
        std::vector<std::string> answers;
        bool png; // the file holds a PNG afterwards
    };
    const Case cases[] = {
        {"new file", false, {out.string()}, true},
        {"existing, kept", true, {out.string(), "no"}, false},
        {"existing, written over", true, {out.string(), "yes"}, true},
        {"no folder chosen", false, {Cancel}, false},
    };
    for (const Case& c : cases) {
        std::filesystem::remove(out / "wall.png");
        if (c.existing)
            WriteBytes(out / "wall.png", "mine");
        for (const std::string& a : c.answers)
            desktop.answers.push_back(a);
        PreviewExports(editor).ExportTextureAsking(editor.table()[0], "wall");
        EXPECT_TRUE(desktop.answers.empty()) << c.what;
        const std::string bytes =
            std::filesystem::exists(out / "wall.png") ? ReadBytes(out / "wall.png") : "";
        EXPECT_EQ(bytes.substr(0, 4) == "\x89PNG", c.png) << c.what;
        EXPECT_EQ(bytes == "mine", c.existing && !c.png) << c.what;
    }
}

// One question names each MTL and PNG that exists; "no" writes no file.
TEST_F(PreviewExportsTest, AModelAsksOnceAboutEveryFileItWouldWriteOver) {
    const auto real = std::filesystem::path(KORVEL_SOURCE_DIR) / "../shared/testdata/real";
    if (!std::filesystem::exists(real / "nitro.dff"))
        GTEST_SKIP() << "the real test files are not there";
    WriteArchiveOf(folder / "m.img", {{"nitro.dff", ReadBytes(real / "nitro.dff")},
                                      {"nitro.txd", ReadBytes(real / "nitro.txd")}});
    ASSERT_TRUE(editor.OpenArchive((folder / "m.img").string()));
    const auto out = folder / "out";
    for (const std::string answer : {"no", "yes"}) {
        std::filesystem::remove_all(out);
        std::filesystem::create_directory(out);
        WriteBytes(out / "m.mtl", "mine");
        WriteBytes(out / "nitro.png", "mine");
        desktop.answers = {(out / "m.obj").string(), answer};
        PreviewExports(editor).ExportModelAsking(editor.table()[0]);
        const auto asked = desktop.said("ask ");
        const std::string named = (out / "m.mtl").string() + "\r\n" + (out / "nitro.png").string();
        ASSERT_TRUE(desktop.answers.empty() && !asked.empty()) << answer;
        EXPECT_NE(asked.back().find(named + " -> " + answer), std::string::npos) << asked.back();
        EXPECT_EQ(std::filesystem::exists(out / "m.obj"), answer == "yes");
        EXPECT_EQ(ReadBytes(out / "nitro.png") == "mine", answer == "no");
    }
}

TEST_F(PreviewExportsTest, ADraggedTextureIsAPngInItsOwnHandOverFolder) {
    WriteArchiveOf(folder / "t.img", {{"t.txd", OneTextureDictionary("wall")}});
    ASSERT_TRUE(editor.OpenArchive((folder / "t.img").string()));
    EntryExport handOver(editor);
    const auto files = handOver.ExportTexture(editor.table()[0], "wall");
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(files[0].filename(), "wall.png");
    EXPECT_EQ(files[0].parent_path().parent_path(), TempsFolder());
    EXPECT_EQ(ReadBytes(files[0]).substr(0, 4), "\x89PNG");
    handOver.RemoveExported();
    EXPECT_FALSE(std::filesystem::exists(files[0].parent_path()));
}

TEST(PreviewedRow, IsTheOneSelectedRowOrTheCurrentOneOfSeveral) {
    struct Case {
        std::vector<bool> selected;
        std::optional<std::size_t> current;
        std::optional<std::size_t> shown;
    };
    const Case cases[] = {
        {{false, true, false}, 0, 1},           // one selected: it, wherever the cursor is
        {{true, false, true}, 2, 2},            // several: the current one
        {{true, false, true}, 1, std::nullopt}, // several, cursor on another row
        {{false, false, false}, 1, std::nullopt},
    };
    for (const Case& c : cases) {
        EntryTable table;
        for (std::size_t r = 0; r < c.selected.size(); ++r) {
            table.append(Entry{static_cast<std::uint32_t>(r), 1, "e" + std::to_string(r)});
            table.setSelected(r, c.selected[r]);
        }
        EXPECT_EQ(PreviewedRow(table, c.current), c.shown);
    }
}

} // namespace
} // namespace korvel
