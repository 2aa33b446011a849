// The archive's own files: planted rebuild journals, a second Korvel holding
// the lock, read-only files, and a pair of symbolic links.
#include "CliRunner.h"
#include "TestFolder.h"
#include "archive/Archive.h"
#include "archive/EntryOperations.h"
#include "archive/Format.h"
#include "archive/RebuildJournal.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korvel::test {
namespace {

namespace fs = std::filesystem;

struct ArchiveFiles : ::testing::Test {
    TestFolder folder;
    fs::path img = folder / "a.img", dir = folder / "a.dir";
    RebuildFiles files = RebuildFilesFor(img, dir);
    // Every verb that writes, after the archive's path.
    // clang-format off
    const std::vector<std::vector<std::string>> writes = {{"delete", "car.dff"}, {"rename", "car.dff", "van.dff"},
        {"add", img.string()}, {"replace", "car.dff", img.string()}, {"move-to-end", "car.dff"}, {"lowercase", "--all"},
        {"marker"}, {"quick-replace", folder.path().string()}, {"rebuild"}};
    // clang-format on
    ArchiveFiles() { make(); }
    void make() const { WriteArchive(img, {{0, 1, "car.dff"}, {2, 1, "bus.txd"}}, 3 * SectorSize); }
    std::string pair() const { return ReadBytes(img) + "|" + ReadBytes(dir); }
};

TEST_F(ArchiveFiles, AJournalActsOnlyWhenItMatchesTheNewPairBesideIt) {
    const std::string newDir = EncodeDirectory({{0, 1, "new.dff"}}),
                      victim = (folder / "v").string();
    const auto journal = [&](std::uint64_t data, std::uint64_t flip) {
        return RebuildJournalText({data, newDir.size(), DirectoryChecksum(newDir) ^ flip});
    };
    WriteBytes(victim, "keep");
    const std::string paths = "korvel rebuild journal 1\n" + victim + "\n" + img.string() + "\n";
    struct Case {
        std::string journal;
        bool dataRenamed; // the crash came between the two renames
        bool finished;
    } const cases[] = {
        // clang-format off
        {paths + victim + "\n" + dir.string() + "\n", false, false}, {"korvel rebuild journal 1\nv\n../x\nv\na.dir\n", false, false},
        {std::string(8 << 20, '\n'), false, false}, {"FIFO", false, false}, {journal(SectorSize + 1, 0), false, false},
        {journal(SectorSize, 1), true, false}, {journal(SectorSize, 0) + "\n", false, false},
        {journal(SectorSize, 0), false, true}, {journal(SectorSize, 0), true, true},
        // clang-format on
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.journal.substr(0, 60));
        make();
        WriteBytes(c.dataRenamed ? img : files.newData, std::string(SectorSize, 'n'));
        WriteBytes(files.newDir, newDir);
        c.journal == "FIFO" ? (void)::mkfifo(files.journal.c_str(), 0600)
                            : WriteBytes(files.journal, c.journal);
        const std::string before = pair();
        const CliResult listed = RunCli({"list", img.string()});
        EXPECT_EQ(pair(), c.finished ? std::string(SectorSize, 'n') + "|" + newDir : before);
        EXPECT_EQ(fs::exists(files.journal), !c.finished);
        EXPECT_EQ(listed.err.find("korvel-cli: Ignored " + files.journal.string()) == 0,
                  !c.finished);
        EXPECT_EQ(ReadBytes(victim), "keep");
        fs::remove(files.journal);
    }
}

// Every verb that writes is refused, changing nothing, while another Korvel
// holds the lock or a file is read-only; reading works and leaves the files
// of a rebuild in progress alone.
TEST_F(ArchiveFiles, WritesAreRefusedWhileLockedOrReadOnly) {
    const std::string before = pair();
    for (const fs::path& readOnly : {fs::path(), img, dir}) {
        std::optional<ArchiveLock> held;
        if (readOnly.empty()) {
            held.emplace(ArchiveLock::Take(img));
            WriteBytes(files.newData, "a rebuild in progress");
        } else {
            fs::permissions(readOnly, fs::perms::owner_read | fs::perms::group_read);
        }
        const std::string why =
            readOnly.empty() ? "is in use by another Korvel" : readOnly.string() + " is read-only";
        for (std::vector<std::string> args : writes) {
            args.insert(args.begin() + 1, img.string());
            SCOPED_TRACE(args[0] + " " + why);
            const CliResult result = RunCli(args);
            EXPECT_EQ(result.exitCode, 1);
            EXPECT_NE(result.err.find(why), std::string::npos) << result.err;
            EXPECT_EQ(pair(), before);
        }
        EXPECT_EQ(RunCli({"list", img.string()}).exitCode, 0);
        EXPECT_EQ(fs::exists(files.newData), readOnly.empty());
        fs::permissions(readOnly.empty() ? img : readOnly,
                        fs::perms::owner_read | fs::perms::owner_write);
    }
}

// Two windows on one archive: the one whose rows were read before the other
// changed it writes nothing (its data would land on the other's new entry and
// its directory file would drop it) until it has read the archive again.
TEST_F(ArchiveFiles, AStaleViewOfTheArchiveWritesNothing) {
    Archive first, second;
    ASSERT_FALSE(OpenArchiveFiles(first, img.string()));
    ASSERT_FALSE(OpenArchiveFiles(second, img.string()));
    ASSERT_TRUE(RenameEntry(first, 0, "van.dff").ok()); // same length, same moment
    const std::string changed = pair();
    std::string name = "new.dff";
    const AddOutcome stale = AddFile(second, img.string(), name, false, {});
    EXPECT_NE(stale.status.error().find("changed by another program"), std::string::npos);
    EXPECT_TRUE(DeleteRows(second, {1}).error().find("changed by another") != std::string::npos);
    EXPECT_EQ(pair(), changed);
    second.FollowDirectoryOnDisk();
    EXPECT_TRUE(DeleteRows(second, {1}).ok());
    EXPECT_EQ(ReadBytes(dir), EncodeDirectory({{0, 1, "van.dff"}}));
}

// The same for a one-file archive, whose stamp is the data file's: the other
// window's add moves it on, its own add and data writes do not.
TEST_F(ArchiveFiles, AStaleViewOfAOneFileArchiveWritesNothing) {
    WriteOneFileTwin(img, img);
    Archive first, second;
    ASSERT_FALSE(OpenArchiveFiles(first, img.string()) || OpenArchiveFiles(second, img.string()));
    std::string name = "new.dff";
    ASSERT_EQ(AddFile(first, img.string(), name, false, {}).result, AddResult::Added);
    ASSERT_TRUE(RenameEntry(first, 0, "van.dff").ok());
    const std::string changed = ReadBytes(img);
    EXPECT_NE(RenameEntry(second, 1, "b.txd").error().find("changed by"), std::string::npos);
    EXPECT_EQ(ReadBytes(img), changed);
}

// Through links every write changes the real archive as it would a plain
// pair, the real files keep their mode and owner, and the links stay links.
TEST_F(ArchiveFiles, WritesThroughLinksChangeTheTargetAndKeepModeAndOwner) {
    fs::create_directory(folder / "real");
    const fs::path realImg = folder / "real" / "r.img", realDir = folder / "real" / "r.dir";
    const auto mode = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    const bool root = ::geteuid() == 0; // only root may give a file to someone else
    for (std::vector<std::string> args : writes) {
        args.insert(args.begin() + 1, img.string());
        std::string plain;
        for (const bool linked : {false, true}) {
            SCOPED_TRACE(args[0] + (linked ? " linked" : ""));
            make();
            if (linked) {
                fs::rename(img, realImg), fs::rename(dir, realDir);
                fs::permissions(realImg, mode), fs::permissions(realDir, mode);
                ASSERT_TRUE(!root || ::chown(realImg.c_str(), 4321, 4321) == 0);
                fs::create_symlink("real/r.img", img), fs::create_symlink(realDir, dir);
            }
            EXPECT_EQ(RunCli(args).exitCode, 0);
            plain = linked ? plain : pair();
            EXPECT_EQ(pair(), plain);
        }
        EXPECT_TRUE(fs::is_symlink(img) && fs::is_symlink(dir));
        EXPECT_TRUE(fs::status(realImg).permissions() == mode &&
                    fs::status(realDir).permissions() == mode);
        struct stat info {};
        EXPECT_TRUE(::stat(realImg.c_str(), &info) == 0 &&
                    info.st_uid == (root ? 4321 : ::geteuid()));
        fs::remove(img), fs::remove(dir);
    }
}

} // namespace
} // namespace korvel::test
