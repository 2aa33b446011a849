// What an operation returns: success, or the text that says what went wrong.
// Operations never show messages themselves; the window shows the text in its
// own words and the command-line tool prints it, so the same failure reads the
// same wherever it happens.
#pragma once

#include <string>
#include <utility>

namespace korvel {

class [[nodiscard]] Status {
public:
    static Status Ok() { return Status(); }
    static Status Failed(std::string error) { return Status(std::move(error)); }

    bool ok() const { return error_.empty(); }
    // Empty when ok().
    const std::string& error() const { return error_; }

private:
    Status() = default;
    // An empty text would read as success; say something instead.
    explicit Status(std::string error)
        : error_(error.empty() ? std::string("an unknown error") : std::move(error)) {}

    std::string error_;
};

} // namespace korvel
