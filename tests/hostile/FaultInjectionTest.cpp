// Every write path failed at its n-th write, flush and rename, for every n it
// reaches: the archive that the next open finds reads as the old one or the
// new one, byte for byte, and korvel.ini is the old file or the new one.
#include "TestFolder.h"
#include "archive/EntryOperations.h"
#include "archive/Marker.h"
#include "archive/QuickReplace.h"
#include "platform/FileCopy.h"
#include "settings/Settings.h"

#include <gtest/gtest.h>

#include <map>

namespace korvel::test {
namespace {

namespace fs = std::filesystem;

// The directory file, and each listed entry's sectors of the data file. Bytes
// no record lists (an append that failed) do not belong to either archive.
std::string ArchiveAsRead(const fs::path& img, const fs::path& dir, const std::string& dirBytes) {
    const std::string data = ReadBytes(img);
    std::string read = dirBytes;
    for (const DirRecord& record : DecodeDirectory(dirBytes)) {
        std::string bytes =
            data.substr(std::min<std::size_t>(data.size(), SectorToOffset(record.startSector)),
                        SectorToOffset(record.sizeSectors));
        read += "|" + bytes + std::string(SectorToOffset(record.sizeSectors) - bytes.size(), '\0');
    }
    return ReadBytes(dir) == dirBytes ? read : "not this directory file";
}

TEST(FaultInjection, EveryWritePathLeavesTheOldArchiveOrTheNewOne) {
    TestFolder folder;
    const fs::path img = folder / "a.img", dir = folder / "a.dir", in = folder / "in";
    const std::string ini = (folder / "korvel.ini").string();
    using Run = std::function<void(Archive&)>;
    const std::map<std::string, Run> paths = {
        {"add",
         [&](Archive& a) {
             AddBatch batch(a, true, {});
             std::string name = "new.ifp";
             (void)batch.Add((in / "new.ifp").string(), name);
             (void)batch.Finish();
         }},
        {"replace in place",
         [&](Archive& a) { (void)ReplaceEntry(a, 1, (in / "bus.txd").string()); }},
        {"replace appended",
         [&](Archive& a) { (void)ReplaceEntry(a, 0, (in / "car.dff").string()); }},
        {"rename", [](Archive& a) { (void)RenameEntry(a, 0, "van.dff"); }},
        {"delete", [](Archive& a) { (void)DeleteRows(a, {0}); }},
        {"move to end", [](Archive& a) { (void)MoveRowsToEnd(a, {0}); }},
        {"marker", [](Archive& a) { (void)InsertMarker(a, "mark"); }},
        {"rebuild", [](Archive& a) { (void)RebuildArchive(a, {}); }},
        {"quick replace",
         [&](Archive& a) {
             (void)ReplaceFromFolder(a, {0, 1}, in.string(), {}, {});
         }},
        {"settings write",
         [&](Archive&) { Settings(ini, KORVEL_LANG_INI).WriteSetting("new", "recent1"); }},
    };
    const auto fresh = [&] {
        fs::remove_all(in);
        fs::create_directories(in);
        WriteBytes(in / "new.ifp", std::string(3000, 'n'));
        WriteBytes(in / "bus.txd", "small bus");
        WriteBytes(in / "car.dff", std::string(5000, 'c'));
        WriteArchive(img, {{2, 1, "car.dff"}, {0, 2, "bus.txd"}, {3, 1, "gap.col"}},
                     5 * SectorSize);
        Settings(ini, KORVEL_LANG_INI).WriteSetting("old", "recent1");
    };
    // Runs the path failing the n-th step of `kind` (0: none) and returns
    // what the next open finds; `reached` counts the steps of each kind.
    const auto attempt = [&](const Run& run, std::string_view kind, int n,
                             std::map<std::string, int>& reached) {
        fresh();
        Archive archive;
        EXPECT_FALSE(OpenArchiveFiles(archive, img.string()).has_value());
        SetStepHook([&](std::string_view step) {
            const std::string counted(step == "copy" ? StepWrite : step);
            return ++reached[counted] == n && counted == kind ? FsError("injected") : FsError();
        });
        run(archive);
        SetStepHook({});
        Archive reopened;
        EXPECT_FALSE(OpenArchiveFiles(reopened, img.string()).has_value());
        return ReadBytes(ini) + "#" + ArchiveAsRead(img, dir, ReadBytes(dir));
    };
    for (const auto& [name, run] : paths) {
        std::map<std::string, int> reached;
        const std::string after = attempt(run, {}, 0, reached);
        fresh();
        const std::string before = ReadBytes(ini) + "#" + ArchiveAsRead(img, dir, ReadBytes(dir));
        EXPECT_NE(after, before) << name;
        for (const std::string_view kind : {StepWrite, StepFlush, StepRename}) {
            const int count = reached[std::string(kind)];
            for (int n = 1; n <= count; ++n) {
                SCOPED_TRACE(name + ": " + std::string(kind) + " " + std::to_string(n) + " of " +
                             std::to_string(count));
                std::map<std::string, int> ignored;
                const std::string found = attempt(run, kind, n, ignored);
                EXPECT_TRUE(found == before || found == after);
            }
        }
    }
}

} // namespace
} // namespace korvel::test
