// korvel-cli's usage, `list` and `new`: what they print and how they exit.
#include "CliRunner.h"
#include "TestFolder.h"
#include "archive/Format.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvel {
namespace {

namespace fs = std::filesystem;
using test::RunCli;

TEST(Cli, WrongCallsAndFailuresAreOneLineWithTheirExitCode) {
    test::TestFolder folder;
    test::WriteBytes(folder / "alone.img", ""); // no directory file beside it
    const auto help = RunCli({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("list ARCHIVE.img"), std::string::npos);
    EXPECT_NE(help.out.find("new ARCHIVE.img"), std::string::npos);
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        const char* says;
    };
    const Case cases[] = {
        {{}, 2, "no verb"},
        {{"frobnicate"}, 2, "unknown verb"},
        {{"list"}, 2, "usage"},
        {{"list", "a.img", "b.img"}, 2, "usage"},
        {{"list", "a.img", "--colour"}, 2, "unknown option"},
        {{"list", "a.img", "--sort"}, 2, "needs a value"},
        {{"new", "a.img", "--force=yes"}, 2, "takes no value"},
        {{"--force", "new", "a.img"}, 2, "Verbs:"}, // the verb comes first
        {{"list", (folder / "missing.img").string()}, 1, "missing.img"},
        {{"list", (folder / "alone.img").string()}, 1, "alone"},
        {{"new", (folder / "no/such/dir/x.img").string()}, 1, "x.img"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.says);
        const auto result = RunCli(c.args);
        EXPECT_EQ(result.exitCode, c.exitCode);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err.rfind("korvel-cli: ", 0), 0u) << result.err;
        EXPECT_NE(result.err.find(c.says), std::string::npos) << result.err;
        // Wrong calls add the usage; failures are one line.
        EXPECT_EQ(result.err.find("Verbs:") != std::string::npos, c.exitCode == 2);
        if (c.exitCode == 1) {
            EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        }
    }
}

TEST(Cli, ListPrintsTheRowsAsTheViewShowsThem) {
    test::TestFolder folder;
    test::WriteArchive(folder / "hand.img",
                       {{5, 3, "zed.dff"},
                        {0, 1, "Alpha.TXD"},
                        {0x35, 2, "caf\xE9.col"},
                        {0x100000, 1, std::string(24, 'L')}},
                       0);
    const std::string img = (folder / "hand.img").string();
    const std::string zed = "zed.dff\t2800\t6kb\n", alpha = "Alpha.TXD\t0\t2kb\n",
                      cafe = "caf\xC3\xA9.col\t1A800\t4kb\n",
                      longest = std::string(24, 'L') + "\t80000000\t2kb\n";
    // Options may stand anywhere, with or without "=".
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string out;
    };
    const Case cases[] = {
        {{"list", img}, 0, zed + alpha + cafe + longest},
        {{"list", "--sort", "name", img}, 0, alpha + cafe + longest + zed},
        {{"list", img, "--sort=name"}, 0, alpha + cafe + longest + zed},
        {{"list", img, "--sort", "size"}, 1, ""},
    };
    for (const Case& c : cases) {
        const auto listed = RunCli(c.args);
        EXPECT_EQ(listed.exitCode, c.exitCode) << listed.err;
        EXPECT_EQ(listed.out, c.out);
    }
    // The tool keeps its hands off the editor's settings.
    EXPECT_FALSE(fs::exists(folder / "korvel.ini"));
}

TEST(Cli, NewCreatesAnEmptyPairAndOverwritesOnlyWithForce) {
    test::TestFolder folder;
    const std::string img = (folder / "fresh.img").string();
    const auto created = RunCli({"new", img});
    EXPECT_EQ(created.exitCode, 0) << created.err;
    EXPECT_EQ(fs::file_size(folder / "fresh.img"), 0u);
    EXPECT_EQ(fs::file_size(folder / "fresh.dir"), 0u);

    test::WriteBytes(folder / "fresh.img", "data");
    const auto refused = RunCli({"new", img});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.err.find("--force"), std::string::npos);
    EXPECT_EQ(fs::file_size(folder / "fresh.img"), 4u);
    EXPECT_EQ(RunCli({"new", "--force", img}).exitCode, 0);
    EXPECT_EQ(fs::file_size(folder / "fresh.img"), 0u);
    EXPECT_FALSE(fs::exists(folder / "korvel.ini"));
}

} // namespace
} // namespace korvel
