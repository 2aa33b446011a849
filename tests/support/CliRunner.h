// Runs the real korvel-cli binary and captures what it printed.
#pragma once

#include <string>
#include <vector>

namespace korvel::test {

struct CliResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

CliResult RunCli(const std::vector<std::string>& args);

} // namespace korvel::test
