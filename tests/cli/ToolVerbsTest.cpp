#include "CliRunner.h"
#include "ScriptedDesktop.h"
#include "ScriptedEntryDialogs.h"
#include "TestFolder.h"
#include "archive/Marker.h"
#include "window/QuickReplaceCommand.h"

#include <gtest/gtest.h>

#include <functional>

namespace korvel {
namespace {

namespace fs = std::filesystem;
using test::ReadBytes;
using test::RunCli;
using test::WriteBytes;

// car.dff has a bigger file (appended), BUS.TXD a smaller one in other
// letter case (in place), wheel.dff none; the marker is never replaced.
const std::vector<DirRecord> Base = {
    {0, 1, "car.dff"}, {1, 2, "BUS.TXD"}, {3, 1, std::string(MarkerName)}, {4, 1, "wheel.dff"}};

// Nobody answers: an entry without a file is skipped.
struct SkipAll : QuickReplaceDialogs {
    std::optional<MissingFileOption> QrMissing(const std::string&, const std::string&) override {
        return std::nullopt;
    }
};

class ToolVerbs : public ::testing::Test {
protected:
    ToolVerbs() {
        fs::create_directories(folder / "in");
        WriteBytes(folder / "in" / "car.dff", std::string(3000, 'c'));
        WriteBytes(folder / "in" / "bus.txd", "small bus");
    }
    std::string make(const std::string& name) {
        test::WriteArchive(folder / name, Base, 5 * SectorSize);
        return (folder / name).string();
    }
    std::pair<std::string, std::string> pair(const std::string& img) const {
        fs::path dir = img;
        dir.replace_extension(".dir");
        return {ReadBytes(img), ReadBytes(dir)};
    }
    // Runs `engine` on a fresh copy through the window's own commands.
    std::string viaEngine(const std::function<void(Editor&, EntryCommands&)>& engine) {
        const std::string img = make("engine.img");
        test::ScriptedDesktop desktop;
        Settings settings(folder / "korvel.ini", folder / "lang.ini");
        settings.EnsureSettingsFile();
        Editor editor(desktop, settings, folder.path());
        test::ScriptedEntryDialogs dialogs(settings);
        EntryCommands commands(editor, dialogs);
        EXPECT_TRUE(editor.OpenArchive(img));
        engine(editor, commands);
        fs::remove(folder / "korvel.ini");
        return img;
    }
    std::string in() const { return (folder / "in").string(); }

    test::TestFolder folder;
};

TEST_F(ToolVerbs, QuickReplaceMatchesTheWindowsCommandAndCounts) {
    struct Case {
        std::vector<std::string> names;
        std::vector<std::size_t> rows; // what the window would have selected
        std::string out;
    };
    const Case cases[] = {
        {{}, {0, 1, 2, 3}, "replaced 2, skipped 2\n"},
        {{"bus.txd", "WHEEL.DFF"}, {1, 3}, "replaced 1, skipped 1\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.out);
        const std::string cli = make("cli.img");
        const auto before = pair(cli);
        std::vector<std::string> args = {"quick-replace", cli, in()};
        args.insert(args.end(), c.names.begin(), c.names.end());
        const auto result = RunCli(args);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.out, c.out);

        const std::string engine = viaEngine([&](Editor& editor, EntryCommands& commands) {
            for (std::size_t row : c.rows) {
                editor.table().setSelected(row, true);
            }
            editor.settings().WriteSetting("1", "qrSetting");
            SkipAll dialogs;
            QuickReplace(editor, commands, dialogs).ReplaceSelectedFromFolder(in());
        });
        EXPECT_EQ(pair(cli), pair(engine));
        EXPECT_NE(pair(cli), before);
    }
}

TEST_F(ToolVerbs, MarkerAppendsOneEachTimeAsTheWindowDoes) {
    const std::string cli = make("cli.img");
    for (int i = 0; i < 2; ++i) {
        const auto result = RunCli({"marker", cli});
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.out, "");
    }
    const std::string engine = viaEngine([](Editor&, EntryCommands& commands) {
        EXPECT_TRUE(commands.InsertMarker());
        EXPECT_TRUE(commands.InsertMarker());
    });
    EXPECT_EQ(pair(cli), pair(engine));
    const auto records = DecodeDirectory(pair(cli).second);
    ASSERT_EQ(records.size(), Base.size() + 2);
    EXPECT_EQ(records.back().name, MarkerName);
}

TEST_F(ToolVerbs, RefusalsChangeNothing) {
    const std::string img = make("a.img");
    const auto before = pair(img);
    const std::vector<std::vector<std::string>> commands = {
        {"quick-replace", img, in(), "car.dff", "nothere"},
        {"quick-replace", img, (folder / "nofolder").string()},
        {"marker", (folder / "missing.img").string()},
    };
    for (const auto& args : commands) {
        SCOPED_TRACE(args.back());
        const auto result = RunCli(args);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.err.rfind("korvel-cli: ", 0), 0u) << result.err;
        EXPECT_EQ(pair(img), before);
    }
    EXPECT_EQ(RunCli({"quick-replace", img}).exitCode, 2);
}

} // namespace
} // namespace korvel
