// What an operation returns: success, or the text that says what went wrong.
// Operations never show messages themselves; the window shows the text in its
// own words and the command-line tool prints it, so the same failure reads the
// same wherever it happens.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace korvel {

class [[nodiscard]] Status {
public:
    static Status Ok() { return Status(); }
    static Status Failed(std::string error) { return Status(std::move(error)); }
    // A failure the window says in the person's language: the text of
    // `textKey` in lang.ini with "%1".. replaced by `arguments`. `error` is
    // the same in English, which korvel-cli prints.
    static Status Failed(std::string error, std::string textKey,
                         std::vector<std::string> arguments) {
        Status status(std::move(error));
        status.textKey_ = std::move(textKey);
        status.arguments_ = std::move(arguments);
        return status;
    }

    bool ok() const { return error_.empty(); }
    // Empty when ok().
    const std::string& error() const { return error_; }
    // Empty when the failure has only its English text.
    const std::string& textKey() const { return textKey_; }
    const std::vector<std::string>& arguments() const { return arguments_; }

private:
    Status() = default;
    // An empty text would read as success; say something instead.
    explicit Status(std::string error)
        : error_(error.empty() ? std::string("an unknown error") : std::move(error)) {}

    std::string error_;
    std::string textKey_;
    std::vector<std::string> arguments_;
};

} // namespace korvel
