#include "cli/Interrupt.h"

#include "cli/Verbs.h"

#include <csignal>
#include <cstdlib>
#include <string>

#ifdef _WIN32
#include <windows.h>
#endif

namespace korvel::cli {
namespace {

volatile std::sig_atomic_t interrupted = 0;

#ifdef _WIN32
BOOL WINAPI OnConsoleEvent(DWORD event) {
    if ((event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) && interrupted == 0) {
        interrupted = 1;
        return TRUE;
    }
    return FALSE; // the second one ends the process
}
#else
extern "C" void OnInterrupt(int) {
    interrupted = 1;
}
#endif

// For the tests: KORVEL_TEST_INTERRUPT_AT=n makes the n-th question "stop
// here?" send this process a real interrupt first, so a test can interrupt a
// verb at an exact point instead of racing it.
void InterruptWhenTestAsks() {
    static long left = [] {
        const char* at = std::getenv("KORVEL_TEST_INTERRUPT_AT");
        return at == nullptr ? -1L : std::strtol(at, nullptr, 10);
    }();
    if (left > 0 && --left == 0) {
        std::raise(SIGINT);
    }
}

} // namespace

void CatchInterrupt() {
    interrupted = 0;
#ifdef _WIN32
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
#else
    struct sigaction action {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESETHAND; // a second Ctrl+C ends the process
    sigaction(SIGINT, &action, nullptr);
#endif
}

bool Interrupted() {
    InterruptWhenTestAsks();
    return interrupted != 0;
}

StopCheck InterruptCheck() {
    return [] { return Interrupted(); };
}

int ReportInterrupted(const std::string& done) {
    PrintError("interrupted: " + done);
    return ExitInterrupted;
}

} // namespace korvel::cli
