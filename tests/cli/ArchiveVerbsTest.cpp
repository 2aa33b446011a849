// korvel-cli's usage, `list` and `new`: what they print and how they exit.
#include "CliRunner.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvel::test {

TEST(Cli, EachCallPrintsItsOutputOrOneErrorLineWithItsExitCode) {
    TestFolder folder;
    WriteBytes(folder / "alone.img", ""); // no directory file beside it
    WriteBytes(folder / "old.img", "data");
    WriteBytes(folder / "kept.img", "kept");
    const std::string img = (folder / "hand.img").string(), longest(24, 'L');
    WriteArchive(
        folder / "hand.img",
        {{5, 3, "zed.dff"}, {0, 1, "Alpha.TXD"}, {0x35, 2, "caf\xE9.col"}, {0x100000, 1, longest}},
        0);
    const std::string src = (folder / "src.img").string();
    WriteArchive(src, {{0, 1, "a.dff"}, {1, 1, "b.txd"}}, 2 * SectorSize);
    const std::string zed = "zed.dff\t2800\t6kb\n", alpha = "Alpha.TXD\t0\t2kb\n";
    const std::string rest = "caf\xC3\xA9.col\t1A800\t4kb\n" + longest + "\t80000000\t2kb\n";
    const struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string outOrError; // all of stdout, or a text the error holds
    } cases[] = {
        {{"list", img}, 0, zed + alpha + rest},
        {{"list", "--sort=name", img}, 0, alpha + rest + zed}, // options stand anywhere
        {{"new", (folder / "fresh.img").string()}, 0, ""},
        {{"new", (folder / "kept.img").string()}, 1, "--force"},
        {{"new", "--force", (folder / "old.img").string()}, 0, ""},
        {{"new", (folder / "sa.img").string(), "--one-file"}, 0, ""},
        {{"convert", src, (folder / "one").string(), "--one-file"}, 0, ""}, // gets ".img"
        {{"convert", src, (folder / "two.img").string()}, 1, "exactly one of"},
        {{}, 2, "no verb"},
        {{"frobnicate"}, 2, "unknown verb"},
        {{"list"}, 2, "usage"},
        {{"list", "a.img", "--colour"}, 2, "unknown option"},
        {{"list", "a.img", "--sort"}, 2, "needs a value"},
        {{"new", "a.img", "--force=yes"}, 2, "takes no value"},
        {{"--force", "new", "a.img"}, 2, "Verbs:"}, // the verb comes first
        {{"list", img, "--sort", "size"}, 1, "size"},
        {{"list", (folder / "missing.img").string()}, 1, "missing.img"},
        {{"list", (folder / "alone.img").string()}, 1, "alone"},
        {{"new", (folder / "no/such/dir/x.img").string()}, 1, "x.img"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.outOrError);
        const auto result = RunCli(c.args);
        EXPECT_EQ(result.exitCode, c.exitCode) << result.err;
        EXPECT_EQ(result.out, c.exitCode == 0 ? c.outOrError : "");
        EXPECT_EQ(result.err.empty(), c.exitCode == 0) << result.err;
        if (c.exitCode != 0) { // wrong calls (2) add the usage; failures are one line
            EXPECT_EQ(result.err.rfind("korvel-cli: ", 0), 0u) << result.err;
            EXPECT_NE(result.err.find(c.outOrError), std::string::npos) << result.err;
            EXPECT_EQ(result.err.find("Verbs:") != std::string::npos, c.exitCode == 2);
            EXPECT_TRUE(c.exitCode == 2 ||
                        std::count(result.err.begin(), result.err.end(), '\n') == 1);
        }
    }
    const auto help = RunCli({"--help"});
    EXPECT_TRUE(help.exitCode == 0 && help.out.find("new ARCHIVE.img") != std::string::npos);
    // `new` leaves empty pairs, keeps what it refused, and no settings file.
    EXPECT_EQ(ReadBytes(folder / "fresh.img") + ReadBytes(folder / "fresh.dir") +
                  ReadBytes(folder / "old.img") + ReadBytes(folder / "old.dir") +
                  ReadBytes(folder / "kept.img"),
              "kept");
    EXPECT_FALSE(std::filesystem::exists(folder / "korvel.ini"));
    // A one-file archive is the header alone; a converted one its records, then the data.
    EXPECT_EQ(ReadBytes(folder / "sa.img"), std::string("VER2", 4) + std::string(2044, '\0'));
    EXPECT_EQ(ReadBytes(folder / "one.img"),
              EncodeOneFileRecordArea({{1, 1, "a.dff"}, {2, 1, "b.txd"}}).append(2048 - 72, '\0') +
                  ReadBytes(src));
}

} // namespace korvel::test
