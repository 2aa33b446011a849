#include "CliRunner.h"
#include "TestFolder.h"
#include "archive/Format.h"

#include <gtest/gtest.h>

#include <sstream>

namespace korvel {
namespace {

namespace fs = std::filesystem;
using test::RunCli;

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::stringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(Cli, UsageAndHelp) {
    const auto help = RunCli({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    for (const char* verb : {"list ARCHIVE.img", "new ARCHIVE.img"}) {
        EXPECT_NE(help.out.find(verb), std::string::npos) << verb;
    }
    struct Case {
        std::vector<std::string> args;
        const char* says;
    };
    const Case wrong[] = {
        {{}, "no verb"},
        {{"frobnicate"}, "unknown verb"},
        {{"list"}, "usage"},
        {{"list", "a.img", "b.img"}, "usage"},
        {{"list", "a.img", "--colour"}, "unknown option"},
        {{"list", "a.img", "--sort"}, "needs a value"},
        {{"new", "a.img", "--force=yes"}, "takes no value"},
    };
    for (const Case& c : wrong) {
        const auto result = RunCli(c.args);
        EXPECT_EQ(result.exitCode, 2) << c.says;
        EXPECT_EQ(result.err.rfind("korvel-cli: ", 0), 0u) << result.err;
        EXPECT_NE(result.err.find(c.says), std::string::npos) << result.err;
        EXPECT_NE(result.err.find("Verbs:"), std::string::npos);
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
    const auto listed = RunCli({"list", img});
    EXPECT_EQ(listed.exitCode, 0) << listed.err;
    EXPECT_EQ(listed.out, "zed.dff\t2800\t6kb\n"
                          "Alpha.TXD\t0\t2kb\n"
                          "caf\xC3\xA9.col\t1A800\t4kb\n" +
                              std::string(24, 'L') + "\t80000000\t2kb\n");

    // Options may stand anywhere, with or without "=".
    for (const auto& args : {std::vector<std::string>{"list", "--sort", "name", img},
                             std::vector<std::string>{"list", img, "--sort=name"}}) {
        const auto sorted = RunCli(args);
        EXPECT_EQ(sorted.exitCode, 0);
        EXPECT_EQ(Lines(sorted.out),
                  (std::vector<std::string>{"Alpha.TXD\t0\t2kb", "caf\xC3\xA9.col\t1A800\t4kb",
                                            std::string(24, 'L') + "\t80000000\t2kb",
                                            "zed.dff\t2800\t6kb"}));
    }
    EXPECT_EQ(RunCli({"list", img, "--sort", "size"}).exitCode, 1);
    // The tool keeps its hands off the editor's settings.
    EXPECT_FALSE(fs::exists(folder / "korvel.ini"));
}

TEST(Cli, ListsTheDemoArchive) {
    const fs::path demo = KORVEL_DEMO_ARCHIVE;
    fs::path dir = demo;
    dir.replace_extension(".dir");
    const auto records = DecodeDirectory(test::ReadBytes(dir));
    ASSERT_GT(records.size(), 20u);
    const auto listed = RunCli({"list", demo.string()});
    ASSERT_EQ(listed.exitCode, 0) << listed.err;
    const auto lines = Lines(listed.out);
    ASSERT_EQ(lines.size(), records.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i], records[i].name + "\t" + OffsetText(records[i].startSector) + "\t" +
                                SizeText(records[i].sizeSectors));
    }
}

TEST(Cli, ListFailuresAreOneLine) {
    test::TestFolder folder;
    test::WriteBytes(folder / "alone.img", "");
    for (const std::string& img :
         {(folder / "missing.img").string(), (folder / "alone.img").string()}) {
        const auto result = RunCli({"list", img});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_TRUE(result.out.empty());
        EXPECT_EQ(result.err.rfind("korvel-cli: ", 0), 0u);
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }
}

TEST(Cli, NewCreatesAnEmptyPairAndRefusesToOverwrite) {
    test::TestFolder folder;
    const std::string img = (folder / "fresh.img").string();
    const auto created = RunCli({"new", img});
    EXPECT_EQ(created.exitCode, 0) << created.err;
    EXPECT_EQ(fs::file_size(folder / "fresh.img"), 0u);
    EXPECT_EQ(fs::file_size(folder / "fresh.dir"), 0u);
    EXPECT_EQ(RunCli({"list", img}).out, "");

    test::WriteBytes(folder / "fresh.img", "data");
    const auto refused = RunCli({"new", img});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.err.find("--force"), std::string::npos);
    EXPECT_EQ(fs::file_size(folder / "fresh.img"), 4u);

    EXPECT_EQ(RunCli({"--force", "new", img}).exitCode, 2); // the verb comes first
    EXPECT_EQ(RunCli({"new", "--force", img}).exitCode, 0);
    EXPECT_EQ(fs::file_size(folder / "fresh.img"), 0u);

    EXPECT_EQ(RunCli({"new", (folder / "no/such/dir/x.img").string()}).exitCode, 1);
    EXPECT_FALSE(fs::exists(folder / "korvel.ini"));
}

} // namespace
} // namespace korvel
