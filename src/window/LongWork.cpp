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

} // namespace korvel
