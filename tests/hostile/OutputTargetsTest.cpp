// What korvel-cli writes for the person lands only on plain files that are not
// the archive's own, empties only files it was told to, and never invents the
// bytes a damaged record claims.
#include "CliRunner.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace korvel::test {
namespace {

namespace fs = std::filesystem;
constexpr auto npos = std::string::npos;

TEST(OutputTargets, ExtractAndReportRefuseWhatIsNotAPlainFileOfTheirOwn) {
    TestFolder folder;
    const fs::path img = folder / "gta3.img";
    // Extracted into the archive's own folder, each name but the last two
    // meets something that must not be written; short.dff claims 8 TiB.
    const char* const refused[] = {"gta3.img", "gta3.dir", "gta3.img.korvel-journal",
                                   "link.dff", "fifo.dff", "dir.dff"};
    std::vector<DirRecord> records;
    for (const char* name : refused) {
        records.push_back({0, 1, name});
    }
    records.push_back({1, 1, "ok.dff"});
    records.push_back({1, 0xFFFFFFFF, "short.dff"});
    WriteArchive(img, records, 2 * SectorSize);
    WriteBytes(folder / "victim", "victim");
    fs::create_symlink(folder / "victim", folder / "link.dff");
    ASSERT_EQ(mkfifo((folder / "fifo.dff").c_str(), 0644), 0);
    fs::create_directory(folder / "dir.dff");
    const std::string pair = ReadBytes(img) + ReadBytes(folder / "gta3.dir");

    const auto extract = RunCli({"extract", img.string(), folder.path().string(), "--overwrite"});
    EXPECT_EQ(extract.exitCode, 1);
    for (const char* name : refused) {
        EXPECT_NE(extract.err.find((folder / name).string() + " was not written"), npos) << name;
    }
    EXPECT_FALSE(fs::exists(folder / "gta3.img.korvel-journal"));
    EXPECT_NE(extract.err.find("\"short.dff\" reaches past the end of the data file: " +
                               std::to_string((0xFFFFFFFFull - 1) * SectorSize) + " bytes"),
              npos);
    EXPECT_EQ(ReadBytes(folder / "ok.dff"), pair.substr(SectorSize, SectorSize));
    EXPECT_EQ(ReadBytes(folder / "short.dff"), pair.substr(SectorSize, SectorSize));

    for (const char* out : {"gta3.img", "gta3.dir", "link.dff", "fifo.dff", "dir.dff"}) {
        const auto report = RunCli({"report", img.string(), (folder / out).string(), "--html"});
        EXPECT_EQ(report.exitCode, 1) << out;
        EXPECT_NE(report.err.find((folder / out).string() + " was not written"), npos) << out;
    }
    EXPECT_EQ(ReadBytes(img) + ReadBytes(folder / "gta3.dir"), pair);
    EXPECT_EQ(ReadBytes(folder / "victim"), "victim");
    EXPECT_TRUE(fs::is_fifo(folder / "fifo.dff") && fs::is_empty(folder / "dir.dff"));
}

TEST(OutputTargets, ANewArchiveEmptiesOnlyTheFilesItWasToldTo) {
    TestFolder folder;
    // "lower.dir" is the directory file of LOWER.IMG, and the one a new
    // lower.img finds.
    WriteArchive(folder / "LOWER.IMG", {{0, 1, "a.dff"}}, SectorSize);
    fs::rename(folder / "LOWER.dir", folder / "lower.dir");
    const std::string dir = ReadBytes(folder / "lower.dir");
    const std::string img = (folder / "lower.img").string();

    const auto refused = RunCli({"new", img});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.err.find((folder / "lower.dir").string() + " already exists"), npos);
    EXPECT_EQ(ReadBytes(folder / "lower.dir"), dir);
    EXPECT_FALSE(fs::exists(img));

    EXPECT_EQ(RunCli({"new", img, "--force"}).exitCode, 0);
    EXPECT_EQ(ReadBytes(img) + ReadBytes(folder / "lower.dir"), "");
}

TEST(OutputTargets, RebuildKeepsTheSectorsThatExistAndReservesNoMore) {
    TestFolder folder;
    const fs::path img = folder / "claims.img";
    // big.dff claims 128 MiB over a data file of 4 KiB.
    WriteArchive(img, {{0, 1, "a.dff"}, {1, 65536, "big.dff"}}, 2 * SectorSize);
    const std::string data = ReadBytes(img);

    const auto rebuild = RunCli({"rebuild", img.string()});
    EXPECT_EQ(rebuild.exitCode, 1);
    EXPECT_NE(rebuild.err.find("\"big.dff\" reaches past the end of the data file: " +
                               std::to_string(65535 * SectorSize) + " bytes"),
              npos)
        << rebuild.err;
    EXPECT_EQ(ReadBytes(img), data);
    EXPECT_EQ(ReadBytes(folder / "claims.dir"),
              EncodeDirectory({{0, 1, "a.dff"}, {1, 1, "big.dff"}}));
    struct stat info {};
    ASSERT_EQ(stat(img.c_str(), &info), 0);
    EXPECT_LT(info.st_blocks * 512, 1 << 20);
}

// Appending behind an entry that claims sectors far past the end of the data
// file would make the data file that large: refused until a rebuild cut it.
TEST(OutputTargets, NothingIsAppendedBehindAClaimBeyondTheData) {
    TestFolder folder;
    const fs::path img = folder / "far.img", dir = folder / "far.dir";
    const std::string added = (folder / "new.dff").string();
    WriteArchive(img, {{0, 1, "a.dff"}, {0x40000000, 1, "far.dff"}}, SectorSize);
    WriteBytes(added, std::string(3000, 'n'));
    const std::string before = ReadBytes(img) + ReadBytes(dir);
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"add", img.string(), added},
          {"replace", img.string(), "a.dff", added}}) {
        const auto result = RunCli(args);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_NE(result.err.find("rebuild the archive"), npos) << result.err;
        EXPECT_EQ(ReadBytes(img) + ReadBytes(dir), before);
    }
    EXPECT_EQ(RunCli({"rebuild", img.string()}).exitCode, 1); // far.dff is cut to nothing
    EXPECT_EQ(RunCli({"add", img.string(), added}).exitCode, 0);
    EXPECT_EQ(fs::file_size(img), 3 * SectorSize);
}

} // namespace
} // namespace korvel::test
