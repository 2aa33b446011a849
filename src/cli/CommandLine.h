// Reading korvel-cli's command line into a verb and its arguments, apart
// from running it, so the reading can be tested and fuzzed on its own.
#pragma once

#include "cli/Verbs.h"

#include <string>
#include <vector>

namespace korvel::cli {

struct CommandLine {
    enum class Kind {
        Run,   // run `verb` with `args`
        Help,  // print the usage text, exit 0
        Usage, // print `problem` and the usage text, exit 2
    };
    Kind kind = Kind::Usage;
    const Verb* verb = nullptr; // Run only; points into the table given
    Arguments args;
    std::string problem;
};

// Reads the words after the program name. Options may stand anywhere among
// the operands, as "--name value" or "--name=value" for options that take a
// value; "--" ends the options; the operand count must fit the verb.
CommandLine ReadCommandLine(const VerbTable& verbs, const std::vector<std::string>& words);

} // namespace korvel::cli
