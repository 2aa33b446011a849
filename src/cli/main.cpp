// korvel-cli: the editor's engine without a window, for scripts and batch
// work. Errors are one line on stderr beginning "korvel-cli: " (exit 1);
// wrong usage prints the usage text (exit 2). The tool never reads or writes
// the editor's korvel.ini: its settings live in memory, at their defaults.
#include "cli/CommandLine.h"
#include "cli/Verbs.h"

#include <iostream>

namespace korvel::cli {

namespace {

const VerbTable& Verbs() {
    static const VerbTable verbs = [] {
        VerbTable table;
        AddArchiveVerbs(table);
        AddEntryVerbs(table);
        AddFindVerbs(table);
        AddToolVerbs(table);
        AddPreviewVerbs(table);
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
    const CommandLine line =
        ReadCommandLine(Verbs(), std::vector<std::string>(argv + 1, argv + argc));
    switch (line.kind) {
    case CommandLine::Kind::Help:
        std::cout << UsageText();
        return 0;
    case CommandLine::Kind::Usage:
        return Usage(line.problem);
    case CommandLine::Kind::Run:
        break;
    }
    return line.verb->run(line.args);
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
