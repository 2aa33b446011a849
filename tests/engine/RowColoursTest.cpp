#include "window/RowColours.h"
#include "EntryFixture.h"

namespace korvel::test {
namespace {

TEST(ToColourRef, PlainColoursPassThroughAndAnythingElseIsAllBits) {
    struct Case {
        Rgb colour;
        std::uint32_t expected;
    };
    const Case cases[] = {
        {{1, 2, 3}, 0x030201u},     {{0, 0, 0}, 0u},           {{255, 255, 255}, 0xFFFFFFu},
        {{256, 0, 0}, 0xFFFFFFFFu}, {{0, -1, 0}, 0xFFFFFFFFu}, {{0, 0, 1000}, 0xFFFFFFFFu},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ToColourRef(c.colour), c.expected)
            << c.colour.red << "," << c.colour.green << "," << c.colour.blue;
    }
}

class RowColoursTest : public EntryFixture {
protected:
    std::string keys() const {
        std::string out;
        for (const char* key : {"l1r", "l1g", "l1b", "l2r", "l2g", "l2b"})
            out += settings.ReadSetting(key) + " ";
        return out;
    }
    int paints = 0;
    RowColours colours{editor, [this] { ++paints; }};
};

TEST_F(RowColoursTest, PickWritesTheThreeKeysAndRepaintsCancelChangesNothing) {
    EXPECT_EQ(colours.Stored(1), (Rgb{233, 233, 233}));
    desktop.answer({"255,0,0", Cancel, "0,128,7"});
    EXPECT_EQ(colours.Pick(1), (Rgb{255, 0, 0}));
    EXPECT_EQ(keys(), "255 0 0 255 255 255 ");
    EXPECT_EQ(paints, 1);
    EXPECT_EQ(colours.Stored(1), (Rgb{255, 0, 0}));

    EXPECT_EQ(colours.Pick(2), std::nullopt);
    EXPECT_EQ(paints, 1);
    EXPECT_EQ(colours.Pick(2), (Rgb{0, 128, 7}));
    EXPECT_EQ(keys(), "255 0 0 0 128 7 ");

    // A colour the platform could not translate is stored as white.
    colours.Save(2, Rgb{300, 1, 1});
    EXPECT_EQ(keys(), "255 0 0 255 255 255 ");
}

TEST_F(RowColoursTest, RestoreWritesTheOriginalColoursAndSaysSo) {
    colours.Save(1, {1, 2, 3});
    paints = 0;
    desktop.conversation.clear();
    colours.Restore();
    EXPECT_EQ(keys(), "239 239 239 255 255 255 ");
    EXPECT_EQ(paints, 2);
    EXPECT_EQ(desktop.conversation, std::vector<std::string>{"message(None) : " + text("lc5")});
}

TEST_F(RowColoursTest, UnreadableValuesFallBackToTheFirstRunColours) {
    settings.WriteSetting("red", "l1g");
    settings.WriteSetting("-4", "l2b");
    settings.WriteSetting("999", "l2r");
    EXPECT_EQ(colours.Stored(1), (Rgb{233, 233, 233}));
    EXPECT_EQ(colours.Stored(2), (Rgb{255, 255, 255}));
    settings.WriteSetting("12", "l1r");
    EXPECT_EQ(colours.Stored(1), (Rgb{12, 233, 233}));
}

} // namespace
} // namespace korvel::test
