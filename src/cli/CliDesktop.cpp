#include "cli/CliDesktop.h"

namespace korvel::cli {

std::string OneLine(const std::string& text) {
    std::string line;
    for (char c : text) {
        if (c == '\r') {
            continue;
        }
        if (c == '\n') {
            if (!line.empty() && line.back() != ' ') {
                line.push_back(' ');
            }
            continue;
        }
        line.push_back(c);
    }
    return line;
}

void CliDesktop::ShowMessage(const std::string& text, const std::string&, MessageIcon) {
    messages.push_back(OneLine(text));
}

bool CliDesktop::AskYesNo(const std::string&, const std::string&) {
    return yesAnswer;
}

FileDialogAnswer CliDesktop::OpenFileDialog(const FileDialogRequest&) {
    FileDialogAnswer answer;
    answer.paths = fileDialogPaths;
    answer.outcome = fileDialogPaths.empty() ? FileDialogAnswer::Outcome::Cancelled
                                             : FileDialogAnswer::Outcome::Chosen;
    return answer;
}

FileDialogAnswer CliDesktop::SaveFileDialog(const FileDialogRequest& request) {
    return OpenFileDialog(request);
}

std::optional<std::string> CliDesktop::ChooseFolderDialog(const std::string&) {
    return std::nullopt;
}

std::optional<std::string> CliDesktop::InputBox(const std::string&, const std::string&,
                                                const std::string&) {
    return std::nullopt;
}

std::optional<Rgb> CliDesktop::PickColour() {
    return std::nullopt;
}

} // namespace korvel::cli
