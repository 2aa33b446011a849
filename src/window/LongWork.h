// Long commands (adding, extracting, quick replace, rebuilding, searching in
// files) run under one LongWork: PB1 with its Cancel button for the whole
// run, the same question "stop here?" at each safe point, and the same way of
// saying how far the work came.
#pragma once

#include "archive/EntryOperations.h"
#include "platform/Desktop.h"

#include <cstddef>
#include <string>

namespace korvel {

class LongWork {
public:
    // Shows the cancellable progress bar with `steps` steps.
    LongWork(Desktop& desktop, std::size_t steps);
    ~LongWork();
    LongWork(const LongWork&) = delete;
    LongWork& operator=(const LongWork&) = delete;

    // Moves the bar to `done` steps.
    void step(std::size_t done);
    // Whether the person pressed Cancel; once true it stays true.
    bool cancelled();
    // cancelled() for an operation that asks by itself.
    StopCheck stopCheck() {
        return [this] { return cancelled(); };
    }

private:
    Desktop& desktop_;
    bool cancelled_ = false;
};

// `text` with "%1" replaced by `done` and "%2" by `total`: "Cancelled: %1 of
// %2 files added." becomes "Cancelled: 3 of 10 files added.".
std::string CountedText(std::string text, std::size_t done, std::size_t total);

} // namespace korvel
