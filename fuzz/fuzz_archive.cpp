// libFuzzer target: a whole archive. The input is split into a directory
// file and a data file (the first two bytes give the directory's length),
// written to a folder of their own, and korvel-cli's reading verbs run over
// them: list, check, find and find-in. None of them may crash, and none may
// change or add a file: the pair stays byte for byte, the temps folder empty.
#include "cli/Verbs.h"
#include "platform/Folders.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <string>

namespace {

namespace fs = std::filesystem;

const korvel::cli::VerbTable& Verbs() {
    static const korvel::cli::VerbTable verbs = [] {
        korvel::cli::VerbTable table;
        korvel::cli::AddArchiveVerbs(table);
        korvel::cli::AddFindVerbs(table);
        return table;
    }();
    return verbs;
}

const fs::path& Folder() {
    static const fs::path folder = [] {
        // The verbs print what they find and their error lines; the run needs
        // only their effects. The error stream, not the descriptor, goes
        // quiet, so the fuzzer's and the sanitizers' reports still show.
        if (!std::freopen("/dev/null", "w", stdout)) {
            std::abort();
        }
        static std::ofstream quiet("/dev/null");
        std::cerr.rdbuf(quiet.rdbuf());
        // TMPDIR=/dev/shm keeps the many small writes in memory on a long run.
        const char* tmp = std::getenv("TMPDIR");
        std::string pattern =
            std::string(tmp != nullptr ? tmp : "/tmp") + "/korvel-fuzz-archive-XXXXXX";
        if (!mkdtemp(pattern.data())) {
            std::abort();
        }
        // A home of this process's own, so its temps folder is its own too
        // when several fuzzing jobs run side by side.
        const fs::path home = fs::path(pattern) / "home";
        fs::create_directories(home);
        setenv("KORVEL_HOME", home.c_str(), 1);
        fs::create_directories(fs::path(pattern) / "archive");
        static const fs::path top = pattern;
        std::atexit([] {
            std::error_code ec;
            fs::remove_all(top, ec);
        });
        return fs::path(pattern) / "archive";
    }();
    return folder;
}

void Write(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string Read(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void RunVerb(const std::string& verb, std::vector<std::string> operands,
             std::map<std::string, std::string> options = {}) {
    (void)Verbs().at(verb).run({std::move(operands), std::move(options)});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::size_t dirLength = std::min<std::size_t>(data[0] | (data[1] << 8), size - 2);
    const std::string dir(reinterpret_cast<const char*>(data) + 2, dirLength);
    const std::string img(reinterpret_cast<const char*>(data) + 2 + dirLength,
                          size - 2 - dirLength);
    const fs::path folder = Folder();
    Write(folder / "a.img", img);
    Write(folder / "a.dir", dir);
    const std::string archive = (folder / "a.img").string();

    RunVerb("list", {archive});
    RunVerb("list", {archive}, {{"--sort", "name"}});
    RunVerb("check", {archive});
    RunVerb("find", {archive, ""});
    RunVerb("find", {archive, "a"}, {{"--type", "col"}});
    RunVerb("find-in", {archive, ""}, {{"--textures", ""}});
    RunVerb("find-in", {archive, ""}, {{"--collisions", ""}});

    // Nothing new beside the pair (a lock the verbs hold on it may leave its
    // own file, which is not ours to judge here).
    std::size_t files = 0;
    for (const auto& item : fs::directory_iterator(folder)) {
        files += item.path().filename().string().find("lock") == std::string::npos;
    }
    std::error_code ec;
    if (files != 2 || Read(folder / "a.img") != img || Read(folder / "a.dir") != dir ||
        (fs::exists(korvel::TempsFolder(), ec) && !fs::is_empty(korvel::TempsFolder(), ec))) {
        std::abort();
    }
    return 0;
}
