// libFuzzer target: how names become paths. Whatever the name, an entry's
// file and an archive's directory file stay inside their folder, and a new
// archive's data file never pairs with itself.
#include "archive/Archive.h"
#include "archive/EntryFiles.h"
#include "archive/Format.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

// A folder with an archive whose two files differ in case, and a stray
// directory file, so the directory search has something to find.
const fs::path& Folder() {
    static const fs::path folder = [] {
        fs::path made = fs::temp_directory_path() / "korvel-fuzz-paths";
        fs::create_directories(made);
        for (const char* name : {"GTA3.IMG", "gta3.dir", "other.DIR", "x.img.dir"}) {
            std::ofstream(made / name) << "x";
        }
        return made;
    }();
    return folder;
}

bool InsideFolder(const fs::path& path) {
    const std::string name = path.filename().string();
    return path.parent_path() == Folder() && !name.empty() && name != "." && name != "..";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string raw(reinterpret_cast<const char*>(data), size);
    if (const auto file = korvel::EntryFileIn(Folder(), raw); file && !InsideFolder(*file)) {
        std::abort();
    }
    // A name typed for an archive in the folder: no separators, no NUL.
    std::string name = raw;
    for (char& c : name) {
        if (c == '/' || c == '\0') {
            c = '_';
        }
    }
    const fs::path dataPath = Folder() / name;
    if (!korvel::DirectoryIsDataFile(dataPath.string()) &&
        !InsideFolder(korvel::DirectoryPathFor(dataPath))) {
        std::abort();
    }
    const std::string created = korvel::NewArchiveDataPath(dataPath.string());
    if (!name.empty() &&
        (!korvel::HasImgExtension(created) || korvel::DirectoryIsDataFile(created) ||
         fs::path(created).parent_path() != Folder())) {
        std::abort();
    }
    return 0;
}
