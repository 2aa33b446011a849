// libFuzzer target: a one-file archive's header and records through the open
// path every opener takes, and the record journal's reader. The input is the
// data file (its first bytes forced to "VER2" when it is long enough, so that
// every run reaches the records). Opening may refuse it, but an archive it
// opens lists no more records than the file holds, and nothing beside the
// file is written or left; a record journal that reads back is exactly what
// was written for its bytes.
#include "archive/Archive.h"
#include "archive/DirectoryStore.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

const fs::path& Folder() {
    static const fs::path folder = [] {
        const char* tmp = std::getenv("TMPDIR");
        std::string pattern =
            std::string(tmp != nullptr ? tmp : "/tmp") + "/korvel-fuzz-one-file-XXXXXX";
        if (!mkdtemp(pattern.data())) {
            std::abort();
        }
        static const fs::path top = pattern;
        std::atexit([] {
            std::error_code ec;
            fs::remove_all(top, ec);
        });
        return top;
    }();
    return folder;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    if (const auto journal = korvel::RecordJournalBytes(bytes)) {
        if (korvel::RecordJournalText(*journal) != bytes) {
            std::abort();
        }
    }
    if (bytes.size() >= 4) {
        bytes.replace(0, 4, "VER2");
    }
    const fs::path img = Folder() / "a.img";
    std::ofstream(img, std::ios::binary | std::ios::trunc) << bytes;
    korvel::Archive archive;
    if (!korvel::OpenArchiveFiles(archive, img.string()).has_value()) {
        const std::size_t rows = archive.table().size();
        if (archive.kind() != korvel::ArchiveKind::OneFile || rows > korvel::MaxRecords ||
            korvel::OneFileRecordAreaBytes(rows) > size || archive.dirPath() != img.string()) {
            std::abort();
        }
    }
    std::ifstream in(img, std::ios::binary);
    const std::string after{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (after != bytes || std::distance(fs::directory_iterator(Folder()), {}) != 1) {
        std::abort();
    }
    return 0;
}
