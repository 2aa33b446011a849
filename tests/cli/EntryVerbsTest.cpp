// korvel-cli's entry and tool verbs: each changes the archive exactly as the
// window's command does, says what it printed and exits as documented. What
// the operations do is the engine tests' to prove.
#include "CliRunner.h"
#include "ScriptedDesktop.h"
#include "ScriptedEntryDialogs.h"
#include "TestFolder.h"
#include "archive/Marker.h"
#include "window/QuickReplaceCommand.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <functional>

namespace korvel {
namespace {

namespace fs = std::filesystem;
using test::ReadBytes;
using test::RunCli;
using test::WriteBytes;

// Two names that differ only in case, a gap at sector 4, a texture, and the
// marker (never replaced).
const std::vector<DirRecord> Base = {{0, 1, "car.dff"},
                                     {1, 2, "BUS.TXD"},
                                     {5, 1, "Car.DFF"},
                                     {3, 1, "wheel.dff"},
                                     {6, 1, std::string(MarkerName)}};

using Pair = std::pair<std::string, std::string>;

// Nobody answers: an entry without a file is skipped.
struct SkipAll : QuickReplaceDialogs {
    std::optional<MissingFileOption> QrMissing(const std::string&, const std::string&) override {
        return std::nullopt;
    }
};

class EntryVerbs : public ::testing::Test {
protected:
    EntryVerbs() {
        fs::create_directories(folder / "in");
        WriteBytes(folder / "in" / "car.dff", std::string(5000, 'c'));
        WriteBytes(folder / "in" / "bus.txd", "small bus");
        WriteBytes(folder / "in" / "new.ifp", std::string(100, 'n'));
    }
    std::string make(const std::string& name) {
        test::WriteArchive(folder / name, Base, 7 * SectorSize);
        return (folder / name).string();
    }
    Pair pair(const std::string& img) const {
        fs::path dir = img;
        dir.replace_extension(".dir");
        return {ReadBytes(img), ReadBytes(dir)};
    }
    std::string in(const char* name = "") const { return (folder / "in" / name).string(); }

    test::TestFolder folder;
};

using Window = std::function<void(EntryCommands&, Editor&)>;

TEST_F(EntryVerbs, EachVerbChangesTheArchiveAsTheWindowDoes) {
    const std::string big = in("car.dff"), small = in("bus.txd"), other = in("new.ifp");
    const auto quick = [&](EntryCommands& c, Editor& e) {
        SkipAll skip;
        (void)QuickReplace(e, c, skip).ReplaceSelectedFromFolder(in());
    };
    const auto lower = [](NameCase which) {
        return [which](EntryCommands& c, Editor&) { c.LowerCaseSelected(which); };
    };
    struct Case {
        std::vector<std::string> args; // the verb, then what follows the archive
        std::string out;
        std::vector<std::pair<const char*, const char*>> settings; // key, value
        std::vector<std::size_t> rows;                             // the window's selection
        Window window;
    };
    using C = EntryCommands;
    const std::vector<std::size_t> all = {0, 1, 2, 3, 4};
    // clang-format off
    const Case cases[] = {
        {{"add", small, other, big}, "", {{"addingOpt", "replace"}, {"scanPrompt", "1"}}, {},
         [&](C& c, Editor&) { c.AddFileBatch({small, other, big}); }},
        {{"add", big, other, "--on-duplicate", "skip"}, "", {{"addingOpt", "skip"}, {"scanPrompt", "1"}}, {},
         [&](C& c, Editor&) { c.AddFileBatch({big, other}); }},
        {{"add", big, "--no-scan"}, "", {{"addingScan", "False"}}, {},
         [&](C& c, Editor&) { c.AddFileBatch({big}); }},
        {{"replace", "CAR.dff", big}, "", {}, {},
         [&](C& c, Editor&) { (void)c.ReplaceRow(0, big); (void)c.ReplaceRow(2, big); }},
        {{"rename", "bus.txd", "coach.txd"}, "", {}, {}, [](C& c, Editor&) { c.DoRename(1, "coach.txd"); }},
        {{"lowercase", "--all"}, "", {}, all, lower(NameCase::Whole)},
        {{"lowercase", "--name", "car.dff", "bus.txd"}, "", {}, {0, 1, 2}, lower(NameCase::BeforeExtension)},
        {{"lowercase", "--extension", "car.dff"}, "", {}, {0, 2}, lower(NameCase::Extension)},
        {{"delete", "CAR.DFF"}, "", {{"deleteProm", "False"}}, {0, 2}, [](C& c, Editor&) { c.DeleteSelectedAsking(); }},
        {{"move-to-end", "car.dff", "bus.txd"}, "", {}, {0, 1, 2}, [](C& c, Editor&) { c.MoveSelectedToEnd(); }},
        {{"rebuild"}, "", {}, {}, [](C& c, Editor&) { c.Rebuild(); }},
        {{"marker"}, "", {}, {}, [](C& c, Editor&) { c.InsertMarker(); }},
        {{"quick-replace", in()}, "replaced 3, skipped 2\n", {{"qrSetting", "1"}}, all, quick},
        {{"quick-replace", in(), "bus.txd", "WHEEL.DFF"}, "replaced 1, skipped 1\n", {{"qrSetting", "1"}}, {1, 3}, quick},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.size() > 1 ? c.args[0] + " " + c.args[1] : c.args[0]);
        const std::string cliImg = make("cli.img"), windowImg = make("window.img");
        const Pair before = pair(cliImg);

        std::vector<std::string> args = {c.args.front(), cliImg};
        args.insert(args.end(), c.args.begin() + 1, c.args.end());
        const auto result = RunCli(args);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.out, c.out);
        EXPECT_EQ(result.err, "");

        test::ScriptedDesktop desktop;
        Settings settings(folder / "korvel.ini", folder / "lang.ini");
        settings.EnsureSettingsFile();
        for (const auto& [key, value] : c.settings) {
            settings.WriteSetting(value, key);
        }
        Editor editor(desktop, settings, folder.path());
        test::ScriptedEntryDialogs dialogs(settings);
        EntryCommands commands(editor, dialogs);
        ASSERT_TRUE(editor.OpenArchive(windowImg));
        for (std::size_t row : c.rows) {
            editor.table().setSelected(row, true);
        }
        c.window(commands, editor);

        EXPECT_EQ(pair(cliImg), pair(windowImg));
        EXPECT_NE(pair(cliImg), before);
        fs::remove(folder / "korvel.ini");
    }
}

TEST_F(EntryVerbs, RefusalsSayWhyAndChangeNothing) {
    const std::string img = make("a.img");
    const Pair before = pair(img);
    const std::string out = (folder / "out").string();
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        const char* names; // text the one error line must hold
    };
    const Case cases[] = {
        {{"delete", img, "car.dff", "nothere"}, 1, "\"nothere\""},
        {{"move-to-end", img, "nothere", "bus.txd"}, 1, "\"nothere\""},
        {{"rename", img, "nothere", "x.dff"}, 1, "\"nothere\""},
        {{"replace", img, "nothere", in("new.ifp")}, 1, "\"nothere\""},
        {{"lowercase", img, "--all", "BUS.TXD", "nothere"}, 1, "\"nothere\""},
        {{"extract", img, out, "car.dff", "nothere"}, 1, "\"nothere\""},
        {{"quick-replace", img, in(), "car.dff", "nothere"}, 1, "\"nothere\""},
        // The new names a rename refuses, as the dialog does.
        {{"rename", img, "car.dff", "   "}, 1, ""},
        {{"rename", img, "car.dff", "abcdefghijklmnopqrstuvwxy"}, 1, ""},
        {{"quick-replace", img, (folder / "nofolder").string()}, 1, ""},
        {{"marker", (folder / "missing.img").string()}, 1, "missing.img"},
        {{"quick-replace", img}, 2, "usage"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args[0] + " " + c.args.back());
        const auto result = RunCli(c.args);
        EXPECT_EQ(result.exitCode, c.exitCode);
        EXPECT_EQ(result.err.rfind("korvel-cli: ", 0), 0u) << result.err;
        EXPECT_NE(result.err.find(c.names), std::string::npos) << result.err;
        EXPECT_EQ(pair(img), before);
    }
    EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(EntryVerbs, ExtractWritesWhatItCanAndNamesWhatItRefuses) {
    const std::string img = (folder / "a.img").string();
    test::WriteArchive(img, {{0, 1, "ok.dff"}, {1, 1, "../evil.dff"}, {1, 1, "Other.txd"}},
                       2 * SectorSize);
    const fs::path out = folder / "new" / "out";
    const auto all = RunCli({"extract", img, out.string()});
    EXPECT_EQ(all.exitCode, 1);
    EXPECT_NE(all.err.find("\"../evil.dff\""), std::string::npos) << all.err;
    EXPECT_TRUE(fs::exists(out / "ok.dff"));
    EXPECT_TRUE(fs::exists(out / "Other.txd"));

    // Named in other letter case: that one only.
    const fs::path named = folder / "named";
    const auto one = RunCli({"extract", img, named.string(), "other.TXD"});
    EXPECT_EQ(one.exitCode, 0) << one.err;
    EXPECT_EQ(std::distance(fs::directory_iterator(named), fs::directory_iterator()), 1);
    EXPECT_EQ(ReadBytes(named / "Other.txd"), ReadBytes(img).substr(SectorSize));
}

TEST_F(EntryVerbs, KillingARebuildAtAnyMomentLeavesAWholeArchive) {
    struct Case {
        const char* step;
        bool rebuilt;
    };
    const Case cases[] = {
        {"copy", false},
        {"rebuild-data-written", false},
        {"rebuild-dir-written", false},
        {"rebuild-journal-part", false},
        {"rebuild-journal-written", true},
        {"rebuild-data-renamed", true}, // between the two renames
        {"rebuild-dir-renamed", true},
    };
    const std::string img = make("crash.img");
    const Pair old = pair(img);
    ASSERT_EQ(RunCli({"rebuild", img}).exitCode, 0);
    const Pair rebuilt = pair(img);
    ASSERT_NE(old, rebuilt);

    for (const Case& c : cases) {
        SCOPED_TRACE(c.step);
        make("crash.img");
        setenv("KORVEL_TEST_KILL_AT", c.step, 1);
        const auto killed = RunCli({"rebuild", img});
        unsetenv("KORVEL_TEST_KILL_AT");
        EXPECT_EQ(killed.exitCode, 128 + SIGKILL) << killed.err;

        // The next open finds one whole pair and nothing left over.
        const auto listed = RunCli({"list", img});
        EXPECT_EQ(listed.exitCode, 0) << listed.err;
        EXPECT_EQ(pair(img), c.rebuilt ? rebuilt : old);
        for (const auto& item : fs::directory_iterator(folder.path())) {
            EXPECT_EQ(item.path().filename().string().find(".korvel"), std::string::npos)
                << item.path();
        }
    }
}

} // namespace
} // namespace korvel
