#include "CliRunner.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace korvel::test {
namespace {

std::string Drain(int fd) {
    std::string text;
    char buffer[4096];
    for (ssize_t n; (n = ::read(fd, buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(fd);
    return text;
}

} // namespace

CliResult RunCli(const std::vector<std::string>& args) {
    // stdout and stderr go to temporary files, so a large listing cannot
    // fill a pipe while we wait.
    char outName[] = "/tmp/korvel-cli-out-XXXXXX";
    char errName[] = "/tmp/korvel-cli-err-XXXXXX";
    const int outFd = ::mkstemp(outName);
    const int errFd = ::mkstemp(errName);
    if (outFd < 0 || errFd < 0) {
        throw std::runtime_error("cannot create capture files");
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, outFd, 1);
    posix_spawn_file_actions_adddup2(&actions, errFd, 2);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);

    std::vector<std::string> words = {KORVEL_CLI};
    words.insert(words.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);

    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, KORVEL_CLI, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        throw std::runtime_error("cannot start korvel-cli");
    }
    int status = 0;
    ::waitpid(pid, &status, 0);

    CliResult result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    ::lseek(outFd, 0, SEEK_SET);
    ::lseek(errFd, 0, SEEK_SET);
    result.out = Drain(outFd);
    result.err = Drain(errFd);
    ::unlink(outName);
    ::unlink(errName);
    return result;
}

} // namespace korvel::test
