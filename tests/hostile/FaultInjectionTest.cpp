// Every write path failed at its n-th write, flush and rename, for every n it
// reaches: the archive that the next open finds reads as the old one or the
// new one, byte for byte, korvel.ini is the old file or the new one, and no
// temporary file is left. The same for the one-file twin of the archive, whose
// records fill their sector, so that adding grows them (and a failed records
// write fails to undo too); a conversion's destination, once opened, too.
#include "TestFolder.h"
#include "archive/Convert.h"
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

TEST(FaultInjection, EveryWritePathLeavesTheOldArchiveOrTheNewOne) {
    TestFolder folder;
    const fs::path img = folder / "a.img", dir = folder / "a.dir", in = folder / "in",
                   to = folder / "b.img";
    const std::string ini = (folder / "korvel.ini").string();
    const auto file = [&](const char* name) { return (in / name).string(); };
    // clang-format off
    const std::map<std::string, std::function<void(Archive&)>> paths = {
        {"add", [&](Archive& a) { std::string name = "new.ifp"; AddBatch batch(a, true, {});
                                  (void)batch.Add(file("new.ifp"), name); (void)batch.Finish(); }},
        {"replace in place", [&](Archive& a) { (void)ReplaceEntry(a, 1, file("bus.txd")); }},
        {"replace appended", [&](Archive& a) { (void)ReplaceEntry(a, 0, file("car.dff")); }},
        {"rename", [](Archive& a) { (void)RenameEntry(a, 0, "van.dff"); }},
        {"delete", [](Archive& a) { (void)DeleteRows(a, {0}); }},
        {"move to end", [](Archive& a) { (void)MoveRowsToEnd(a, {0}); }},
        {"marker", [](Archive& a) { (void)InsertMarker(a, "mark"); }},
        {"rebuild", [](Archive& a) { (void)RebuildArchive(a, {}); }},
        {"quick replace", [&](Archive& a) { (void)ReplaceFromFolder(a, {0}, in.string(), {}, {}); }},
        {"convert", [&](Archive& a) { (void)ConvertArchive(a, to.string(), a.kind() == ArchiveKind::OneFile ? ArchiveKind::TwoFile : ArchiveKind::OneFile, {}, {}); }},
        {"settings write", [&](Archive&) { Settings(ini, KORVEL_LANG_INI).WriteSetting("new", "recent1"); }},
    };
    // clang-format on
    const auto state = [&] {
        Archive dest; // whose opening finishes or clears what a conversion left
        const bool made = !OpenArchiveFiles(dest, to.string()).has_value();
        for (const auto& item : fs::directory_iterator(folder.path())) { // no leftover (removed,
            const bool ours = item.path().filename().string().find(".korvel") != std::string::npos;
            EXPECT_FALSE(ours && fs::remove(item.path())); // so no fault spills into the next)
        }
        // The records and each listed entry's sectors: bytes no record lists
        // (an append that failed) belong to neither archive.
        return ReadBytes(ini) + "#" + ListedBytes(img) + "#" + (made ? ListedBytes(to) : "");
    };
    bool oneFile = false;
    // The next open after failing the n-th step of `kind`; `reached` counts steps.
    const auto attempt = [&](const std::function<void(Archive&)>& run, std::string_view kind, int n,
                             std::map<std::string, int>& reached) {
        fs::create_directories(in), fs::remove(to), fs::remove(folder / "b.dir");
        WriteBytes(in / "new.ifp", std::string(3000, 'n'));
        WriteBytes(in / "bus.txd", "small bus");
        WriteBytes(in / "car.dff", std::string(5000, 'c'));
        std::vector<DirRecord> records{{2, 1, "car.dff"}, {0, 2, "bus.txd"}, {3, 1, "gap.col"}};
        for (std::uint32_t i = 0; oneFile && records.size() < 63; ++i) {
            records.push_back({5 + i, 1, "fill" + std::to_string(i)});
        }
        WriteArchive(img, records, (5 + records.size()) * SectorSize);
        if (oneFile) {
            WriteOneFileTwin(img, img);
            fs::remove(dir);
        }
        Settings(ini, KORVEL_LANG_INI).WriteSetting("old", "recent1");
        Archive archive, reopened;
        EXPECT_FALSE(OpenArchiveFiles(archive, img.string()).has_value());
        bool failNext = false;
        SetStepHook([&](std::string_view step) {
            const std::string counted(step == "copy" ? StepWrite : step);
            const bool fail = (++reached[counted] == n && counted == kind) || failNext;
            failNext = fail && !failNext && kind.starts_with("records");
            return fail ? FsError("injected") : FsError();
        });
        run(archive);
        SetStepHook({});
        EXPECT_FALSE(OpenArchiveFiles(reopened, img.string()).has_value());
        return state();
    };
    auto runs = paths; // and each again on the one-file twin
    for (const auto& [name, run] : paths) {
        runs["one-file " + name] = run;
    }
    for (const auto& [name, run] : runs) {
        oneFile = name.starts_with("one-file");
        std::map<std::string, int> reached, ignored; // steps of the clean run; ignored
        const std::string after = attempt(run, {}, 0, reached);
        const std::string before = attempt([](Archive&) {}, {}, 0, ignored);
        EXPECT_NE(after, before) << name;
        for (const std::string_view kind :
             {StepWrite, StepFlush, StepRename, std::string_view("records-written")}) {
            for (int n = 1, count = reached[std::string(kind)]; n <= count; ++n) {
                SCOPED_TRACE(name + ": " + std::string(kind) + " " + std::to_string(n));
                std::map<std::string, int> counting;
                const std::string found = attempt(run, kind, n, counting);
                EXPECT_TRUE(found == before || found == after);
                EXPECT_EQ(fs::exists(dir), !oneFile);
            }
        }
    }
}

// The write after one that failed and whose undo failed finishes that one
// first: undoing its own failure must not put the older records back.
TEST(FaultInjection, AWriteFinishesTheUnfinishedOneBeforeIt) {
    TestFolder folder;
    const fs::path img = folder / "a.img";
    WriteArchive(img, {{0, 1, "car.dff"}, {1, 1, "bus.txd"}}, 2 * SectorSize);
    WriteOneFileTwin(img, img);
    Archive archive, reopened;
    ASSERT_FALSE(OpenArchiveFiles(archive, img.string()));
    std::vector<std::string_view> fails{"records-journal-written", StepWrite, "records-written"};
    SetStepHook([&](std::string_view step) {
        const bool fail = !fails.empty() && step == fails.front();
        return fail ? fails.erase(fails.begin()), FsError("injected") : FsError();
    });
    EXPECT_FALSE(RenameEntry(archive, 0, "van.dff").ok() || RenameEntry(archive, 1, "b.txd").ok());
    SetStepHook({});
    ASSERT_FALSE(OpenArchiveFiles(reopened, img.string()));
    EXPECT_EQ(reopened.table()[0].name + reopened.table()[1].name, "van.dffbus.txd");
}

} // namespace
} // namespace korvel::test
