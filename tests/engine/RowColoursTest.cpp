#include "window/RowColours.h"
#include "EditorHarness.h"

namespace korvel::test {
namespace {

TEST(ToColourRef, PlainColoursPassThroughAndAnythingElseIsAllBits) {
    const std::pair<Rgb, std::uint32_t> cases[] = {
        {{1, 2, 3}, 0x030201u},    {{255, 255, 255}, 0xFFFFFFu}, {{256, 0, 0}, 0xFFFFFFFFu},
        {{0, -1, 0}, 0xFFFFFFFFu}, {{0, 0, 1000}, 0xFFFFFFFFu},
    };
    for (const auto& [colour, expected] : cases)
        EXPECT_EQ(ToColourRef(colour), expected) << colour.red << "," << colour.blue;
}

TEST(ReadableTextOn, DarkTextOnLightRowsLightTextOnDarkRows) {
    const Rgb black{0, 0, 0}, white{255, 255, 255};
    EXPECT_EQ(ReadableTextOn({233, 233, 233}, white), black);
    EXPECT_EQ(ReadableTextOn({30, 30, 30}, {45, 45, 45}), white);
    EXPECT_EQ(ReadableTextOn({0, 0, 255}, {60, 0, 0}), white); // the darker pair wins
    EXPECT_EQ(ReadableTextOn({255, 255, 0}, {0, 0, 139}), black);
}

// How one value reads is the colour values' test; here: the keys each line
// uses, the first-run fallback per value, the repaints and what is said.
using RowColoursTest = EditorHarness;

TEST_F(RowColoursTest, PickStoreAndRestore) {
    int paints = 0;
    RowColours colours{editor, [&] { ++paints; }};
    const auto keys = [&] {
        std::string out;
        for (const char* key : {"l1r", "l1g", "l1b", "l2r", "l2g", "l2b"})
            out += settings.ReadSetting(key) + " ";
        return out;
    };
    desktop.answer({"255,0,0", Cancel, "0,128,7"});
    EXPECT_EQ(colours.Pick(1), (Rgb{255, 0, 0}));
    EXPECT_EQ(colours.Pick(2), std::nullopt);
    EXPECT_EQ(paints, 1);
    EXPECT_EQ(colours.Pick(2), (Rgb{0, 128, 7}));
    EXPECT_EQ(keys(), "255 0 0 0 128 7 ");
    // A colour the platform could not translate is stored as white.
    colours.Save(2, Rgb{300, 1, 1});
    EXPECT_EQ(keys(), "255 0 0 255 255 255 ");
    settings.WriteSetting("red", "l1g");
    EXPECT_EQ(colours.Stored(1), (Rgb{255, 233, 0}));

    paints = 0;
    desktop.conversation.clear();
    colours.Restore();
    EXPECT_EQ(keys(), "239 239 239 255 255 255 ");
    EXPECT_EQ(paints, 2);
    EXPECT_EQ(desktop.conversation, std::vector<std::string>{"message(None) : " + text("lc5")});
}

} // namespace
} // namespace korvel::test
