// The shared pieces of every verb: error lines, the windowless session and
// rows named on the command line.
#include "cli/Verbs.h"
#include "platform/Cp1252.h"
#include "platform/Folders.h"

#include <iostream>
#include <optional>

namespace korvel::cli {

namespace {

// A message as one line: line breaks become single spaces.
std::string OneLine(const std::string& text) {
    std::string line;
    for (char c : text) {
        if (c == '\r') {
            continue;
        }
        if (c == '\n') {
            if (!line.empty() && line.back() != ' ') {
                line.push_back(' ');
            }
            continue;
        }
        line.push_back(c);
    }
    // Messages quote names and paths; shown like the output, their control
    // characters cannot drive the terminal.
    if (const auto bytes = Utf8ToCp1252(line)) {
        return ShownName(*bytes);
    }
    return line;
}

} // namespace

void PrintError(const std::string& message) {
    std::cerr << "korvel-cli: " << OneLine(message) << '\n';
}

int Fail(const std::string& message) {
    PrintError(message);
    return ExitFailure;
}

Session::Session() : settings_(Settings::InMemory(LanguageFilePath())) {}

bool Session::open(const std::string& path) {
    std::string recoveryNotice;
    const auto failure = OpenArchiveFiles(archive_, path, {}, &recoveryNotice);
    if (!recoveryNotice.empty()) {
        PrintError(recoveryNotice);
    }
    if (!failure) {
        return true;
    }
    switch (failure->step) {
    case OpenFailure::Step::DataFileMissing:
        PrintError(text("openArchive1") + " " + failure->detail);
        break;
    case OpenFailure::Step::DirectoryFileMissing:
        PrintError(text("openArchive2") + " " + failure->detail);
        break;
    case OpenFailure::Step::DirectoryUnreadable:
    case OpenFailure::Step::NotAnArchive:
        PrintError(failure->detail);
        break;
    }
    return false;
}

std::optional<std::vector<std::size_t>>
NamedRows(const EntryTable& table, const std::vector<std::string>& names, bool allWhenNone) {
    std::vector<bool> matched(table.size(), names.empty() && allWhenNone);
    for (const std::string& typed : names) {
        const auto name = Utf8ToCp1252(typed);
        bool any = false;
        for (std::size_t row = 0; name && row < table.size(); ++row) {
            if (EqualsIgnoreCase(table[row].name, *name)) {
                matched[row] = true;
                any = true;
            }
        }
        if (!any) {
            Fail("no entry is named \"" + typed + "\"");
            return std::nullopt;
        }
    }
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < matched.size(); ++row) {
        if (matched[row]) {
            rows.push_back(row);
        }
    }
    return rows;
}

} // namespace korvel::cli
