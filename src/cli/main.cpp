// korvel-cli: the editor's engine without a window, for scripts and batch
// work. Errors are one line on stderr beginning "korvel-cli: " (exit 1);
// wrong usage prints the usage text (exit 2). The tool never reads or writes
// the editor's korvel.ini: its settings live in memory, at their defaults.
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

namespace {

const VerbTable& Verbs() {
    static const VerbTable verbs = [] {
        VerbTable table;
        AddArchiveVerbs(table);
        AddEntryVerbs(table);
        AddFindVerbs(table);
        AddToolVerbs(table);
        return table;
    }();
    return verbs;
}

std::string UsageText() {
    std::string text = "usage: korvel-cli VERB [ARGUMENTS]\n\nVerbs:\n";
    for (const auto& [name, verb] : Verbs()) {
        text += "  korvel-cli " + verb.usage + "\n      " + verb.summary + "\n";
    }
    text += "\nOptions may stand anywhere among the operands; \"--\" ends them.\n";
    return text;
}

int Usage(const std::string& problem) {
    std::cerr << "korvel-cli: " << problem << "\n" << UsageText();
    return ExitUsage;
}

int Run(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.empty()) {
        return Usage("no verb given");
    }
    if (words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
        std::cout << UsageText();
        return 0;
    }
    const auto found = Verbs().find(words[0]);
    if (found == Verbs().end()) {
        return Usage("unknown verb \"" + words[0] + "\"");
    }
    const Verb& verb = found->second;
    Arguments args;
    bool optionsEnded = false;
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (optionsEnded || word.size() < 2 || word.rfind("--", 0) != 0) {
            args.operands.push_back(word);
            continue;
        }
        if (word == "--") {
            optionsEnded = true;
            continue;
        }
        std::string name = word;
        std::optional<std::string> value;
        if (const auto equals = word.find('='); equals != std::string::npos) {
            name = word.substr(0, equals);
            value = word.substr(equals + 1);
        }
        const auto option = verb.options.find(name);
        if (option == verb.options.end()) {
            return Usage("unknown option " + name + " for " + found->first);
        }
        if (option->second && !value) {
            if (i + 1 >= words.size()) {
                return Usage(name + " needs a value");
            }
            value = words[++i];
        }
        if (!option->second && value) {
            return Usage(name + " takes no value");
        }
        args.options[name] = value.value_or("");
    }
    if (args.operands.size() < verb.minOperands || args.operands.size() > verb.maxOperands) {
        return Usage("usage: korvel-cli " + verb.usage);
    }
    return verb.run(args);
}

} // namespace
} // namespace korvel::cli

int main(int argc, char** argv) {
    try {
        return korvel::cli::Run(argc, argv);
    } catch (const std::exception& error) {
        return korvel::cli::Fail(error.what());
    }
}
