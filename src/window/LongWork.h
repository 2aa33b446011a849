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
    // What a rebuild or a conversion reports: the bar and the status
    // "<copying>i<of>" for the i-th entry copied, `writing` while the
    // directory file is written, and Cancel.
    RebuildProgress copyProgress(std::string copying, std::string of, std::string writing);

private:
    Desktop& desktop_;
    bool cancelled_ = false;
};

} // namespace korvel
