// libFuzzer target: reading korvel-cli's command line. The input is split
// into words at zero bytes and read against the real verb table: whatever
// the words, a verb to run gets only its own options, values only where an
// option takes one, and an operand count it accepts.
#include "cli/CommandLine.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

const korvel::cli::VerbTable& Verbs() {
    static const korvel::cli::VerbTable verbs = [] {
        korvel::cli::VerbTable table;
        korvel::cli::AddArchiveVerbs(table);
        korvel::cli::AddEntryVerbs(table);
        korvel::cli::AddFindVerbs(table);
        korvel::cli::AddToolVerbs(table);
        return table;
    }();
    return verbs;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> words(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == 0) {
            words.emplace_back();
        } else {
            words.back() += static_cast<char>(data[i]);
        }
    }
    const korvel::cli::CommandLine line = korvel::cli::ReadCommandLine(Verbs(), words);
    using Kind = korvel::cli::CommandLine::Kind;
    if (line.kind == Kind::Usage && line.problem.empty()) {
        std::abort();
    }
    if (line.kind != Kind::Run) {
        return 0;
    }
    const auto verb = Verbs().find(words[0]);
    if (verb == Verbs().end() || &verb->second != line.verb) {
        std::abort();
    }
    const auto& args = line.args;
    if (args.operands.size() < line.verb->minOperands ||
        args.operands.size() > line.verb->maxOperands || args.operands.size() >= words.size()) {
        std::abort();
    }
    for (const auto& [name, value] : args.options) {
        const auto option = line.verb->options.find(name);
        if (option == line.verb->options.end() || (!option->second && !value.empty())) {
            std::abort();
        }
    }
    return 0;
}
