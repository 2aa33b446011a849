#include "window/LongWork.h"

#include <algorithm>
#include <climits>

namespace korvel {
namespace {

int BarValue(std::size_t value) {
    return static_cast<int>(std::min<std::size_t>(value, INT_MAX));
}

void Fill(std::string& text, const std::string& mark, std::size_t value) {
    const std::string number = std::to_string(value);
    for (auto at = text.find(mark); at != std::string::npos;
         at = text.find(mark, at + number.size())) {
        text.replace(at, mark.size(), number);
    }
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

std::string CountedText(std::string text, std::size_t done, std::size_t total) {
    Fill(text, "%1", done);
    Fill(text, "%2", total);
    return text;
}

} // namespace korvel
