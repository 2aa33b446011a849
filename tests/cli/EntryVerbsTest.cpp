// korvel-cli's entry and tool verbs change the archive exactly as the window's commands do,
// and say why in one line when they refuse; what the operations do is the engine tests'.
#include "CliRunner.h"
#include "EditorHarness.h"
#include "ScriptedEntryDialogs.h"
#include "archive/Marker.h"
#include "window/QuickReplaceCommand.h"

#include <csignal>
#include <cstdlib>
#include <functional>
#include <map>

namespace korvel::test {

namespace fs = std::filesystem;

struct SkipAll : QuickReplaceDialogs { // nobody answers: an entry without a file is skipped
    std::optional<MissingFileOption> QrMissing(const std::string&, const std::string&) override {
        return std::nullopt;
    }
};

// Names differing only in case, a gap at sector 4, a texture and the marker; files in "in".
class EntryVerbs : public EditorHarness {
protected:
    EntryVerbs() {
        fs::create_directories(folder / "in");
        WriteBytes(folder / "in" / "car.dff", std::string(5000, 'c'));
        WriteBytes(folder / "in" / "bus.txd", "small bus");
        WriteBytes(folder / "in" / "new.ifp", std::string(100, 'n'));
    }
    std::string make(const std::string& name) {
        // clang-format off
        WriteArchive(folder / name, {{0, 1, "car.dff"}, {1, 2, "BUS.TXD"}, {5, 1, "Car.DFF"}, {3, 1, "wheel.dff"},
                                     {6, 1, std::string(MarkerName)}}, 7 * SectorSize);
        // clang-format on
        return (folder / name).string();
    }
    std::string pair(const std::string& img) const {
        return ReadBytes(img) + "|" + ReadBytes(fs::path(img).replace_extension(".dir"));
    }
    std::string in(const char* name = "") const { return (folder / "in" / name).string(); }

    ScriptedEntryDialogs dialogs{settings};
    EntryCommands commands{editor, dialogs};
};

TEST_F(EntryVerbs, EachVerbChangesTheArchiveAsTheWindowDoes) {
    const std::string big = in("car.dff"), small = in("bus.txd"), other = in("new.ifp");
    const std::string cli = (folder / "cli.img").string();
    SkipAll skip;
    QuickReplace quick(editor, commands, skip);
    // The call, what it prints, and the window's selection and command for the same change.
    // The rows run in order on the same pair of archives: each starts from what the one
    // before left (settings included), so keep the order when adding a row.
    // clang-format off
    const std::tuple<std::vector<std::string>, std::string, std::vector<std::size_t>, std::function<void()>> cases[] = {
        {{"add", cli, small, other, big}, "", {}, [&] {
            settings.WriteSetting("replace", "addingOpt"), settings.WriteSetting("1", "scanPrompt"), commands.AddFileBatch({small, other, big}); }},
        {{"add", cli, big, other, "--on-duplicate", "skip", "--no-scan"}, "", {}, [&] {
            settings.WriteSetting("skip", "addingOpt"), settings.WriteSetting("False", "addingScan"), commands.AddFileBatch({big, other}); }},
        {{"replace", cli, "CAR.dff", big}, "", {}, [&] { (void)commands.ReplaceRow(0, big), (void)commands.ReplaceRow(2, big); }},
        {{"rename", cli, "bus.txd", "coach.txd"}, "", {}, [&] { commands.DoRename(1, "coach.txd"); }},
        {{"lowercase", cli, "--all"}, "", {0, 1, 2, 3, 4}, [&] { commands.LowerCaseSelected(NameCase::Whole); }},
        {{"lowercase", cli, "--name", "car.dff", "bus.txd"}, "", {0, 1, 2}, [&] { commands.LowerCaseSelected(NameCase::BeforeExtension); }},
        {{"delete", cli, "CAR.DFF"}, "", {0, 2}, [&] { settings.WriteSetting("False", "deleteProm"), commands.DeleteSelectedAsking(); }},
        {{"move-to-end", cli, "car.dff", "bus.txd"}, "", {0, 1, 2}, [&] { commands.MoveSelectedToEnd(); }},
        {{"rebuild", cli}, "", {}, [&] { commands.Rebuild(); }},
        {{"marker", cli}, "", {}, [&] { commands.InsertMarker(); }},
        {{"quick-replace", cli, in(), "bus.txd", "WHEEL.DFF"}, "replaced 1, skipped 1\n", {1, 3}, [&] {
            settings.WriteSetting("1", "qrSetting"), (void)quick.ReplaceSelectedFromFolder(in()); }},
    };
    // clang-format on
    for (const auto& [verb, out, rows, window] : cases) {
        SCOPED_TRACE(verb[0]);
        const std::string before = pair(make("cli.img")), windowImg = make("window.img");
        const auto result = RunCli(verb);
        EXPECT_EQ(std::to_string(result.exitCode) + result.out + result.err, "0" + out);
        ASSERT_TRUE(editor.OpenArchive(windowImg));
        for (std::size_t row : rows) {
            editor.table().setSelected(row, true);
        }
        window();
        EXPECT_EQ(pair(cli), pair(windowImg));
        EXPECT_NE(pair(cli), before);
    }
}

TEST_F(EntryVerbs, RefusalsSayWhyInOneLine) {
    const std::string img = make("a.img"), before = pair(img), out = (folder / "out").string();
    WriteArchive(folder / "evil.img", {{0, 1, "ok.dff"}, {1, 1, "../evil.dff"}}, 2 * SectorSize);
    // The call, its exit code, and a text the error must hold.
    const std::tuple<std::vector<std::string>, int, const char*> cases[] = {
        // clang-format off
        {{"delete", img, "car.dff", "nothere"}, 1, "\"nothere\""},
        {{"rename", img, "nothere", "x.dff"}, 1, "\"nothere\""},
        {{"extract", img, out, "car.dff", "nothere"}, 1, "\"nothere\""},
        {{"quick-replace", img, in(), "car.dff", "nothere"}, 1, "\"nothere\""},
        {{"rename", img, "car.dff", "abcdefghijklmnopqrstuvwxy"}, 1, "abcdefghijklmnopqrstuvwxy"},
        {{"quick-replace", img, (folder / "nofolder").string()}, 1, "nofolder"},
        {{"marker", (folder / "missing.img").string()}, 1, "missing.img"},
        {{"quick-replace", img}, 2, "usage"},
        {{"extract", (folder / "evil.img").string(), (folder / "new").string()}, 1, "\"../evil.dff\""}, // the rest is written
        // clang-format on
    };
    for (const auto& [args, exitCode, says] : cases) {
        SCOPED_TRACE(args[0] + " " + args.back());
        const auto result = RunCli(args);
        EXPECT_EQ(result.exitCode, exitCode);
        EXPECT_EQ(result.err.rfind("korvel-cli: ", 0), 0u) << result.err;
        EXPECT_NE(result.err.find(says), std::string::npos) << result.err;
    }
    EXPECT_EQ(pair(img), before);
    EXPECT_FALSE(fs::exists(folder / "out"));
    EXPECT_TRUE(fs::exists(folder / "new" / "ok.dff"));
}

TEST_F(EntryVerbs, ExtractWritesOverAnExistingFileOnlyWhenTold) {
    const std::string img = make("a.img"), out = (folder / "kept").string();
    const std::string skipped = "korvel-cli: skipped " + out + "/wheel.dff: the file exists";
    fs::create_directories(out);
    const struct {
        std::vector<std::string> flags;
        std::string said; // exit code and stderr
    } cases[] = {
        {{}, "1" + skipped + " (--overwrite writes over it)\n"},
        {{"--no-overwrite"}, "0" + skipped + "\n"},
        {{"--overwrite"}, "0"},
        {{"--overwrite", "--no-overwrite"},
         "2korvel-cli: --overwrite and --no-overwrite cannot both be given\n"},
    };
    for (const auto& [flags, said] : cases) {
        WriteBytes(folder / "kept" / "wheel.dff", "mine");
        std::vector<std::string> args{"extract", img, out, "wheel.dff"};
        args.insert(args.end(), flags.begin(), flags.end());
        const auto result = RunCli(args);
        EXPECT_EQ(std::to_string(result.exitCode) + result.err, said);
        EXPECT_EQ(ReadBytes(folder / "kept" / "wheel.dff") != "mine", said == "0");
    }
}

TEST_F(EntryVerbs, KillingARebuildAtAnyMomentLeavesAWholeArchive) {
    const std::string img = make("crash\n.img"), old = pair(img);
    ASSERT_EQ(RunCli({"rebuild", img}).exitCode, 0);
    const std::string rebuilt = pair(img);
    // The next open, from another working folder, finds the old pair until the journal is
    // whole, then the new; nothing else.
    // clang-format off
    const char* const steps[] = {"copy", "rebuild-data-written", "rebuild-dir-written", "rebuild-journal-part",
                                 "rebuild-journal-written", "rebuild-data-renamed", "rebuild-dir-renamed"};
    // clang-format on
    const fs::path workingFolder = fs::current_path();
    for (std::size_t i = 0; i < std::size(steps); ++i) {
        SCOPED_TRACE(steps[i]);
        make("crash\n.img");
        setenv("KORVEL_TEST_KILL_AT", steps[i], 1);
        fs::current_path(folder.path());
        EXPECT_EQ(RunCli({"rebuild", "crash\n.img"}).exitCode, 128 + SIGKILL);
        unsetenv("KORVEL_TEST_KILL_AT");
        fs::current_path(folder / "in");
        EXPECT_EQ(RunCli({"list", "../crash\n.img"}).exitCode, 0);
        fs::current_path(workingFolder);
        EXPECT_EQ(pair(img), i < 4 ? old : rebuilt);
        for (const auto& item : fs::directory_iterator(folder.path())) {
            EXPECT_EQ(item.path().filename().string().find(".korvel"), std::string::npos);
        }
    }
}

TEST_F(EntryVerbs, CtrlCStopsAtASafePointAndExits130) {
    // The verb, the question "stop here?" at which Ctrl+C comes, the verb that leaves the
    // same pair uninterrupted (none: the old pair), and what the tool says.
    const std::string img = (folder / "a.img").string(), other = in("new.ifp"), big = in("car.dff");
    // clang-format off
    const std::tuple<std::vector<std::string>, const char*, std::vector<std::string>, std::string> cases[] = {
        {{"rebuild", img}, "1", {}, "the archive is unchanged"},                // before the copy
        {{"rebuild", img}, "2", {}, "the archive is unchanged"},                // before the journal
        {{"add", img, other, big, "--no-scan"}, "2", {"add", img, other, "--no-scan"}, "1 of 2 files added"},
    };
    // clang-format on
    for (const auto& [args, at, same, says] : cases) {
        SCOPED_TRACE(args[0] + " interrupted at " + at);
        make("a.img");
        ASSERT_TRUE(same.empty() || RunCli(same).exitCode == 0);
        const std::string expected = pair(img);
        make("a.img");
        setenv("KORVEL_TEST_INTERRUPT_AT", at, 1);
        const auto result = RunCli(args);
        unsetenv("KORVEL_TEST_INTERRUPT_AT");
        EXPECT_EQ(result.exitCode, 130);
        EXPECT_EQ(result.err, "korvel-cli: interrupted: " + says + "\n");
        EXPECT_EQ(pair(img), expected);
    }
}

TEST_F(EntryVerbs, OneFileArchivesListAddCheckAndSurviveAKillWhileAddingOrRebuilding) {
    // 63 records fill the one-file kind's first sector: adding one moves an entry.
    std::vector<DirRecord> records{{0, 1, "car.dff"}, {1, 1, "CAR.DFF"}};
    for (std::uint32_t i = 2; i < 63; ++i) {
        records.push_back({i, 1, "fill" + std::to_string(i)});
    }
    const fs::path two = folder / "two.img", one = folder / "one.img";
    WriteArchive(two, records, 63 * SectorSize);
    const auto make = [&] { WriteOneFileTwin(two, one); };
    make();
    EXPECT_EQ(RunCli({"list", one.string()}).out.substr(0, 16), "car.dff\t800\t2kb\n");
    EXPECT_EQ(RunCli({"check", one.string()}).out, RunCli({"check", two.string()}).out);
    const std::string old = ListedBytes(one);
    std::map<std::string, std::vector<std::string>> calls{
        {"rebuild", {"rebuild", one.string()}}, {"add", {"add", one.string(), in("new.ifp")}}};
    std::map<std::string, std::string> changed; // by verb, after an uninterrupted run
    for (const auto& [verb, args] : calls) {
        make();
        ASSERT_EQ(RunCli(args).exitCode, 0);
        changed[verb] = ListedBytes(one);
    }
    // clang-format off
    const std::tuple<const char*, const char*, bool> kills[] = { // verb, step, changed
        {"add", "copy", false}, {"add", "records-room-made", false}, {"add", "records-journal-part", false},
        {"add", "records-journal-written", true}, {"add", "records-written", true},
        {"rebuild", "rebuild-data-written", false}, {"rebuild", "rebuild-journal-part", false},
        {"rebuild", "rebuild-journal-written", true}, {"rebuild", "rebuild-data-renamed", true}};
    // clang-format on
    for (const auto& [verb, step, done] : kills) {
        SCOPED_TRACE(step);
        make();
        setenv("KORVEL_TEST_KILL_AT", step, 1);
        EXPECT_EQ(RunCli(calls[verb]).exitCode, 128 + SIGKILL);
        unsetenv("KORVEL_TEST_KILL_AT");
        EXPECT_EQ(RunCli({"list", one.string()}).exitCode, 0);
        EXPECT_EQ(ListedBytes(one), done ? changed[verb] : old);
        for (const auto& item : fs::directory_iterator(folder.path())) {
            EXPECT_EQ(item.path().filename().string().find(".korvel"), std::string::npos);
        }
    }
}

} // namespace korvel::test
