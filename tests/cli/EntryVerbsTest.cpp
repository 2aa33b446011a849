#include "CliRunner.h"
#include "ScriptedDesktop.h"
#include "ScriptedEntryDialogs.h"
#include "TestFolder.h"
#include "window/EntryCommands.h"

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

// Two names that differ only in case, a gap at sector 4, and a texture.
const std::vector<DirRecord> Base = {
    {0, 1, "car.dff"}, {1, 2, "BUS.TXD"}, {5, 1, "Car.DFF"}, {3, 1, "wheel.dff"}};

struct Pair {
    std::string img;
    std::string dir;
    bool operator==(const Pair&) const = default;
};

class EntryVerbs : public ::testing::Test {
protected:
    std::string make(const std::string& name) {
        test::WriteArchive(folder / name, Base, 6 * SectorSize);
        return (folder / name).string();
    }
    Pair pair(const std::string& img) const {
        fs::path dir = img;
        dir.replace_extension(".dir");
        return {ReadBytes(img), ReadBytes(dir)};
    }
    std::string file(const std::string& name, std::size_t size) {
        fs::create_directories(folder / "in");
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<char>('0' + i % 10);
        }
        WriteBytes(folder / "in" / name, bytes);
        return (folder / "in" / name).string();
    }

    test::TestFolder folder;
};

TEST_F(EntryVerbs, EachVerbChangesTheArchiveAsTheWindowDoes) {
    const std::string big = file("car.dff", 5000), small = file("x.txd", 10),
                      other = file("new.ifp", 100);
    using Engine = std::function<void(EntryCommands&, Editor&)>;
    const auto select = [](Editor& editor, std::vector<std::size_t> rows) {
        editor.table().clearSelection();
        for (std::size_t row : rows) {
            editor.table().setSelected(row, true);
        }
    };
    struct Case {
        std::vector<std::string> args; // after the verb and the archive
        Engine engine;
    };
    const std::vector<std::pair<std::string, Case>> cases = {
        {"add",
         {{small, other, big},
          [&](EntryCommands& c, Editor& e) {
              e.settings().WriteSetting("replace", "addingOpt");
              e.settings().WriteSetting("1", "scanPrompt");
              c.AddFileBatch({small, other, big});
          }}},
        {"add",
         {{big, other, "--on-duplicate", "skip"},
          [&](EntryCommands& c, Editor& e) {
              e.settings().WriteSetting("skip", "addingOpt");
              e.settings().WriteSetting("1", "scanPrompt");
              c.AddFileBatch({big, other});
          }}},
        {"add",
         {{big, "--no-scan"},
          [&](EntryCommands& c, Editor& e) {
              e.settings().WriteSetting("False", "addingScan");
              c.AddFileBatch({big});
          }}},
        {"replace",
         {{"CAR.dff", big},
          [&](EntryCommands& c, Editor&) {
              EXPECT_TRUE(c.ReplaceRow(0, big).status.ok());
              EXPECT_TRUE(c.ReplaceRow(2, big).status.ok());
          }}},
        {"rename",
         {{"bus.txd", "coach.txd"}, [](EntryCommands& c, Editor&) { c.DoRename(1, "coach.txd"); }}},
        {"lowercase",
         {{"--all"},
          [&](EntryCommands& c, Editor& e) {
              e.table().selectAll();
              c.LowerCaseSelected(NameCase::Whole);
          }}},
        {"lowercase",
         {{"--name", "car.dff", "bus.txd"},
          [&](EntryCommands& c, Editor& e) {
              select(e, {0, 1, 2});
              c.LowerCaseSelected(NameCase::BeforeExtension);
          }}},
        {"lowercase",
         {{"--extension", "car.dff"},
          [&](EntryCommands& c, Editor& e) {
              select(e, {0, 2});
              c.LowerCaseSelected(NameCase::Extension);
          }}},
        {"delete",
         {{"CAR.DFF"},
          [&](EntryCommands& c, Editor& e) {
              e.settings().WriteSetting("False", "deleteProm");
              select(e, {0, 2});
              c.DeleteSelectedAsking();
          }}},
        {"move-to-end",
         {{"car.dff", "bus.txd"},
          [&](EntryCommands& c, Editor& e) {
              select(e, {0, 1, 2});
              c.MoveSelectedToEnd();
          }}},
        {"rebuild", {{}, [](EntryCommands& c, Editor&) { c.Rebuild(); }}},
    };
    for (const auto& [verb, c] : cases) {
        SCOPED_TRACE(verb + " " + (c.args.empty() ? "" : c.args.front()));
        const std::string cliImg = make("cli.img"), engineImg = make("engine.img");
        const Pair before = pair(cliImg);

        std::vector<std::string> args = {verb, cliImg};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const auto result = RunCli(args);
        EXPECT_EQ(result.exitCode, 0) << result.err;

        test::ScriptedDesktop desktop;
        Settings settings(folder / "korvel.ini", folder / "lang.ini");
        settings.EnsureSettingsFile();
        Editor editor(desktop, settings, folder.path());
        test::ScriptedEntryDialogs dialogs(settings);
        EntryCommands commands(editor, dialogs);
        ASSERT_TRUE(editor.OpenArchive(engineImg));
        c.engine(commands, editor);

        EXPECT_EQ(pair(cliImg), pair(engineImg));
        EXPECT_FALSE(pair(cliImg) == before);
        fs::remove(folder / "korvel.ini");
    }
}

TEST_F(EntryVerbs, ANameThatMatchesNothingChangesNothing) {
    const std::string img = make("a.img");
    const Pair before = pair(img);
    const std::string f = file("f.dff", 10);
    const std::vector<std::vector<std::string>> commands = {
        {"delete", img, "car.dff", "nothere"},
        {"move-to-end", img, "nothere", "bus.txd"},
        {"rename", img, "nothere", "x.dff"},
        {"replace", img, "nothere", f},
        {"lowercase", img, "--all", "BUS.TXD", "nothere"},
        {"extract", img, (folder / "out").string(), "car.dff", "nothere"},
        // The new names a rename refuses, as the dialog does.
        {"rename", img, "car.dff", "   "},
        {"rename", img, "car.dff", "abcdefghijklmnopqrstuvwxy"},
    };
    for (const auto& args : commands) {
        SCOPED_TRACE(args[0] + " " + args.back());
        const auto result = RunCli(args);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_NE(result.err.find("korvel-cli: "), std::string::npos);
        if (args.back() == "nothere") {
            EXPECT_NE(result.err.find("\"nothere\""), std::string::npos) << result.err;
        }
        EXPECT_EQ(pair(img), before);
    }
    EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(EntryVerbs, ExtractWritesEveryEntryItCanAndNamesTheOnesItRefuses) {
    const std::string img = (folder / "a.img").string();
    test::WriteArchive(img, {{0, 1, "ok.dff"}, {1, 1, "../evil.dff"}, {1, 2, "Other.txd"}},
                       2 * SectorSize);
    const fs::path out = folder / "new" / "out";
    const auto all = RunCli({"extract", img, out.string()});
    EXPECT_EQ(all.exitCode, 1);
    EXPECT_NE(all.err.find("\"../evil.dff\""), std::string::npos) << all.err;
    EXPECT_EQ(ReadBytes(out / "ok.dff"), ReadBytes(img).substr(0, SectorSize));
    EXPECT_EQ(ReadBytes(out / "Other.txd"),
              ReadBytes(img).substr(SectorSize) + std::string(SectorSize, '\0'));
    EXPECT_FALSE(fs::exists(folder / "new" / "evil.dff"));

    const fs::path named = folder / "named";
    const auto one = RunCli({"extract", img, named.string(), "other.TXD"});
    EXPECT_EQ(one.exitCode, 0) << one.err;
    EXPECT_EQ(std::distance(fs::directory_iterator(named), fs::directory_iterator()), 1);
    EXPECT_TRUE(fs::exists(named / "Other.txd"));
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
    ASSERT_FALSE(old == rebuilt);

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
        EXPECT_TRUE(pair(img) == (c.rebuilt ? rebuilt : old));
        for (const auto& item : fs::directory_iterator(folder.path())) {
            EXPECT_EQ(item.path().filename().string().find(".korvel"), std::string::npos)
                << item.path();
        }
    }
}

} // namespace
} // namespace korvel
