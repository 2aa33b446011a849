// A fixture for the entry commands: a fresh editor folder, an editor over it
// with the shipped texts, scripted desktop and dialogs, and helpers to write
// archives and input files and to read the pair back.
#pragma once

#include "EditorHarness.h"
#include "ScriptedEntryDialogs.h"
#include "platform/FileCopy.h"
#include "window/EntryCommands.h"

#include <gtest/gtest.h>

namespace korvel {
inline bool operator==(const DirRecord& a, const DirRecord& b) {
    return a.startSector == b.startSector && a.sizeSectors == b.sizeSectors && a.name == b.name;
}
} // namespace korvel

namespace korvel::test {

class EntryFixture : public EditorHarness {
protected:
    EntryFixture() : dialogs(settings), commands(editor, dialogs) {}
    ~EntryFixture() override { SetStepHook({}); }

    // Writes "a.img"/"a.dir" and opens it; the conversation starts empty.
    void open(const std::vector<DirRecord>& records, std::uint64_t dataBytes) {
        openArchive("a.img", records, dataBytes);
    }
    std::string img() const { return (folder / "a.img").string(); }
    std::string imgBytes() const { return ReadBytes(folder / "a.img"); }
    std::string dirBytes() const { return ReadBytes(folder / "a.dir"); }
    std::vector<DirRecord> records() const { return DecodeDirectory(dirBytes()); }
    std::vector<DirRecord> tableRecords() const {
        std::vector<DirRecord> out;
        for (const Entry& e : editor.table().rows()) {
            out.push_back({e.startSector, e.sizeSectors, e.name});
        }
        return out;
    }
    std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (const Entry& e : editor.table().rows()) {
            out.push_back(e.name);
        }
        return out;
    }
    void select(std::initializer_list<std::size_t> rows) {
        editor.table().clearSelection();
        for (std::size_t row : rows) {
            editor.table().setSelected(row, true);
        }
    }
    std::vector<std::size_t> selected() const {
        std::vector<std::size_t> out;
        for (std::size_t row = 0; row < editor.table().size(); ++row) {
            if (editor.table()[row].selected) {
                out.push_back(row);
            }
        }
        return out;
    }
    // An input file under "in/".
    std::string input(const std::string& name, const std::string& bytes) {
        std::filesystem::create_directories(folder / "in");
        WriteBytes(folder / "in" / name, bytes);
        return (folder / "in" / name).string();
    }
    ScriptedEntryDialogs dialogs;
    EntryCommands commands;
};

inline std::string Pattern(std::size_t size, char seed) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(seed + static_cast<char>(i % 7));
    }
    return bytes;
}

} // namespace korvel::test
