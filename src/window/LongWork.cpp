#include "window/LongWork.h"

#include <algorithm>
#include <climits>

namespace korvel {
namespace {

int BarValue(std::size_t value) {
    return static_cast<int>(std::min<std::size_t>(value, INT_MAX));
}

} // namespace

LongWork::LongWork(Desktop& desktop, std::size_t steps) : desktop_(desktop) {
    desktop_.ShowCancellableProgress(BarValue(steps));
}

LongWork::~LongWork() {
    desktop_.HideProgress();
}

void LongWork::step(std::size_t done) {
    desktop_.SetProgress(BarValue(done));
}

bool LongWork::cancelled() {
    if (!cancelled_) {
        cancelled_ = desktop_.ProgressCancelled();
    }
    return cancelled_;
}

RebuildProgress LongWork::copyProgress(std::string copying, std::string of, std::string writing) {
    RebuildProgress progress;
    progress.copying = [this, copying = std::move(copying), of = std::move(of)](std::size_t i) {
        step(i);
        desktop_.SetStatus(copying + std::to_string(i + 1) + of);
    };
    progress.writingDirectory = [this, writing = std::move(writing)] {
        desktop_.SetStatus(writing);
    };
    progress.stop = stopCheck();
    return progress;
}

} // namespace korvel
