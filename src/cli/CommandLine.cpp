#include "cli/CommandLine.h"

#include <optional>

namespace korvel::cli {
namespace {

CommandLine Problem(std::string problem) {
    CommandLine line;
    line.problem = std::move(problem);
    return line;
}

} // namespace

CommandLine ReadCommandLine(const VerbTable& verbs, const std::vector<std::string>& words) {
    if (words.empty()) {
        return Problem("no verb given");
    }
    if (words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
        CommandLine help;
        help.kind = CommandLine::Kind::Help;
        return help;
    }
    const auto found = verbs.find(words[0]);
    if (found == verbs.end()) {
        return Problem("unknown verb \"" + words[0] + "\"");
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
            return Problem("unknown option " + name + " for " + found->first);
        }
        if (option->second && !value) {
            if (i + 1 >= words.size()) {
                return Problem(name + " needs a value");
            }
            value = words[++i];
        }
        if (!option->second && value) {
            return Problem(name + " takes no value");
        }
        args.options[name] = value.value_or("");
    }
    if (args.operands.size() < verb.minOperands || args.operands.size() > verb.maxOperands) {
        return Problem("usage: korvel-cli " + verb.usage);
    }
    CommandLine run;
    run.kind = CommandLine::Kind::Run;
    run.verb = &verb;
    run.args = std::move(args);
    return run;
}

} // namespace korvel::cli
