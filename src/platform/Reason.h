// Why a reader stopped, or why a part of a file could not be read. korvel-cli
// prints the English words as they are; the window says the same thing in the
// person's language from the text key, with "%1".. filled from `arguments`,
// the way a failed Status is said.
#pragma once

#include <string>
#include <vector>

namespace korvel {

struct Reason {
    std::string english; // empty: nothing went wrong
    std::string textKey;
    std::vector<std::string> arguments;

    bool empty() const { return english.empty(); }
};

} // namespace korvel
