// The archive's own files: planted rebuild journals, a second Korvel while one
// holds the lock, read-only files, and a pair that is symbolic links.
#include "CliRunner.h"
#include "TestFolder.h"
#include "archive/Archive.h"
#include "archive/RebuildJournal.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace korvel::test {
namespace {

namespace fs = std::filesystem;

struct ArchiveFiles : ::testing::Test {
    TestFolder folder;
    fs::path img = folder / "a.img", dir = folder / "a.dir";
    ArchiveFiles() {
        WriteArchive(img, {{0, 1, "car.dff"}, {2, 1, "bus.txd"}}, 3 * SectorSize);
        WriteBytes(folder / "bus.txd", "new bus");
    }
    std::string pair() const { return ReadBytes(img) + "|" + ReadBytes(dir); }
};

TEST_F(ArchiveFiles, AJournalActsOnlyWhenItMatchesTheNewPairBesideIt) {
    const RebuildFiles files = RebuildFilesFor(img, dir);
    const std::string newDir = EncodeDirectory({{0, 1, "new.dff"}});
    const std::string match =
        RebuildJournalText({SectorSize, newDir.size(), DirectoryChecksum(newDir)});
    WriteBytes(folder / "victim", "keep");
    const std::string victim = (folder / "victim").string();
    struct Case {
        std::string journal;
        bool dataRenamed; // the crash came between the two renames
        bool finished;
    } const cases[] = {
        {"korvel rebuild journal 1\n" + victim + "\n" + img.string() + "\n" + victim + "\n" +
             dir.string() + "\n",
         false, false},
        {"korvel rebuild journal 1\nvictim\n../x\nvictim\na.dir\n", false, false},
        {std::string(8 << 20, '\n'), false, false},
        {RebuildJournalText({SectorSize + 1, newDir.size(), DirectoryChecksum(newDir)}), false,
         false},
        {RebuildJournalText({SectorSize, newDir.size(), DirectoryChecksum(newDir) ^ 1}), true,
         false},
        {match + "\n", false, false},
        {match, false, true},
        {match, true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.journal.substr(0, 60));
        WriteArchive(img, {{0, 1, "car.dff"}, {2, 1, "bus.txd"}}, 3 * SectorSize);
        WriteBytes(c.dataRenamed ? img : files.newData, std::string(SectorSize, 'n'));
        WriteBytes(files.newDir, newDir);
        WriteBytes(files.journal, c.journal);
        const std::string before = pair();
        const CliResult listed = RunCli({"list", img.string()});
        EXPECT_EQ(listed.exitCode, 0);
        EXPECT_EQ(listed.out.rfind(c.finished ? "new.dff" : "car.dff", 0), 0u) << listed.out;
        EXPECT_EQ(pair(), c.finished ? std::string(SectorSize, 'n') + "|" + newDir : before);
        EXPECT_EQ(fs::exists(files.journal), !c.finished);
        EXPECT_EQ(listed.err.find("korvel-cli: Ignored " + files.journal.string()) == 0,
                  !c.finished)
            << listed.err;
        EXPECT_EQ(ReadBytes(folder / "victim"), "keep");
        fs::remove(files.journal);
        RunCli({"list", img.string()}); // no journal: the leftovers go
        EXPECT_FALSE(fs::exists(files.newData) || fs::exists(files.newDir));
    }
}

// Every verb that writes is refused, changing nothing, while another Korvel
// holds the lock or a file is read-only; reading works and leaves the files
// of a rebuild in progress alone.
TEST_F(ArchiveFiles, WritesAreRefusedWhileLockedOrReadOnly) {
    const RebuildFiles files = RebuildFilesFor(img, dir);
    const std::string bus = (folder / "bus.txd").string();
    const std::vector<std::vector<std::string>> writes = {{"delete", "car.dff"},
                                                          {"rename", "car.dff", "van.dff"},
                                                          {"add", bus},
                                                          {"replace", "car.dff", bus},
                                                          {"move-to-end", "car.dff"},
                                                          {"lowercase", "--all"},
                                                          {"marker"},
                                                          {"quick-replace", folder.path().string()},
                                                          {"rebuild"}};
    const std::string before = pair();
    for (const fs::path& readOnly : {fs::path(), img, dir}) {
        std::optional<ArchiveLock> held;
        if (readOnly.empty()) {
            held.emplace(ArchiveLock::Take(img));
            ASSERT_TRUE(held->held());
            WriteBytes(files.newData, "a rebuild in progress");
            WriteBytes(files.newDir, "");
        } else {
            fs::permissions(readOnly, fs::perms::owner_read | fs::perms::group_read);
        }
        const std::string why =
            readOnly.empty() ? "is in use by another Korvel" : readOnly.string() + " is read-only";
        for (std::vector<std::string> args : writes) {
            args.insert(args.begin() + 1, img.string());
            SCOPED_TRACE(args[0] + " " + why);
            const CliResult result = RunCli(args);
            EXPECT_EQ(result.exitCode, args[0] == "move-to-end" ? 0 : 1); // it reports, exits 0
            EXPECT_NE(result.err.find(why), std::string::npos) << result.err;
            EXPECT_EQ(pair(), before);
        }
        EXPECT_EQ(RunCli({"list", img.string()}).exitCode, 0);
        EXPECT_EQ(fs::exists(files.newData), readOnly.empty());
        fs::permissions(readOnly.empty() ? img : readOnly,
                        fs::perms::owner_read | fs::perms::owner_write);
    }
}

// Through links every write changes the real archive, which keeps its mode;
// the links stay links.
TEST_F(ArchiveFiles, WritesThroughLinksChangeTheTargetAndKeepItsMode) {
    fs::create_directory(folder / "real");
    const fs::path realImg = folder / "real" / "r.img", realDir = folder / "real" / "r.dir";
    const std::vector<std::vector<std::string>> writes = {
        {"delete", "car.dff"}, {"add", (folder / "bus.txd").string()}, {"marker"}, {"rebuild"}};
    for (std::vector<std::string> args : writes) {
        SCOPED_TRACE(args[0]);
        WriteArchive(img, {{0, 1, "car.dff"}, {2, 1, "bus.txd"}}, 3 * SectorSize);
        fs::rename(img, realImg);
        fs::rename(dir, realDir);
        fs::permissions(realImg, fs::perms::owner_read | fs::perms::owner_write);
        fs::permissions(realDir,
                        fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
        fs::create_symlink("real/r.img", img);
        fs::create_symlink(realDir, dir);
        args.insert(args.begin() + 1, img.string());
        const std::string linked = pair();
        EXPECT_EQ(RunCli(args).exitCode, 0);
        EXPECT_TRUE(fs::is_symlink(img) && fs::is_symlink(dir));
        EXPECT_NE(pair(), linked);
        const std::string changed = pair();
        fs::remove(img), fs::remove(dir);
        WriteArchive(img, {{0, 1, "car.dff"}, {2, 1, "bus.txd"}}, 3 * SectorSize);
        EXPECT_EQ(RunCli(args).exitCode, 0);
        EXPECT_EQ(pair(), changed); // as the same verb on a plain pair
        EXPECT_EQ(fs::status(realImg).permissions(),
                  fs::perms::owner_read | fs::perms::owner_write);
        EXPECT_EQ(fs::status(realDir).permissions(),
                  fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
        fs::remove(img), fs::remove(dir);
    }
}

} // namespace
} // namespace korvel::test
