// korvel-cli: the editor's engine without a window, for scripts and batch
// work. Errors are one line on stderr beginning "korvel-cli: " (exit 1);
// wrong usage prints the usage text (exit 2). The tool never reads or writes
// the editor's korvel.ini: its settings live in memory, at their defaults.
#include "cli/Verbs.h"
#include "platform/Folders.h"

#include <iostream>
#include <optional>

namespace korvel::cli {

int Fail(const std::string& message) {
    std::cerr << "korvel-cli: " << message << '\n';
    return ExitFailure;
}

Session::Session()
    : settings_(Settings::InMemory(LanguageFilePath())),
      editor_(desktop_, settings_, EditorFolder()) {}

bool Session::open(const std::string& path) {
    if (editor_.OpenArchive(path)) {
        return true;
    }
    Fail(failure("cannot open " + path));
    return false;
}

std::string Session::failure(const std::string& fallback) const {
    return desktop_.messages.empty() ? fallback : desktop_.messages.front();
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
