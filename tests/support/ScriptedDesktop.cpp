#include "ScriptedDesktop.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace korvel::test {
namespace {

const char* IconName(MessageIcon icon) {
    static const char* const names[] = {"None", "Information", "Exclamation", "Critical"};
    return names[static_cast<int>(icon)];
}

} // namespace

std::vector<std::string> ScriptedDesktop::said(const std::string& prefix) const {
    std::vector<std::string> found;
    for (const std::string& line : conversation) {
        if (line.rfind(prefix, 0) == 0)
            found.push_back(line);
    }
    return found;
}

std::string ScriptedDesktop::next(const std::string& asking) {
    if (answers.empty())
        throw std::logic_error("no scripted answer for: " + asking);
    std::string value = answers.front();
    answers.pop_front();
    return value;
}

void ScriptedDesktop::ShowMessage(const std::string& text, const std::string& title,
                                  MessageIcon icon) {
    conversation.push_back(std::string("message(") + IconName(icon) + ") " + title + ": " + text);
}

bool ScriptedDesktop::AskYesNo(const std::string& text, const std::string& title) {
    const std::string reply = next("question " + text);
    conversation.push_back("ask " + title + ": " + text + " -> " + reply);
    return reply == "yes";
}

bool ScriptedDesktop::AskDestructive(const std::string& text, const std::string& title) {
    return AskYesNo(text, "!" + title);
}

OverwriteAnswer ScriptedDesktop::AskOverwrite(const std::string& text, const std::string& title) {
    const std::string reply = next("overwrite " + text);
    conversation.push_back("overwrite " + title + ": " + text + " -> " + reply);
    const std::string replies[] = {"yes", "all", "no"}; // OverwriteAnswer's order, then Cancel
    return OverwriteAnswer(std::find(replies, replies + 3, reply) - replies);
}

FileDialogAnswer ScriptedDesktop::fileDialog(const char* kind, const FileDialogRequest& request) {
    lastFileDialog = request;
    const std::string reply = next(std::string(kind) + " dialog " + request.title);
    conversation.push_back(std::string(kind) + " " + request.title + " [" + request.filter +
                           "] -> " + reply);
    FileDialogAnswer answer;
    if (reply == Cancel) {
        answer.outcome = FileDialogAnswer::Outcome::Cancelled;
    } else if (reply == Fail) {
        answer.outcome = FileDialogAnswer::Outcome::Failed;
    } else {
        answer.outcome = FileDialogAnswer::Outcome::Chosen;
        answer.filterIndex = std::exchange(nextFilterIndex, 0);
        // Several files are given as one answer separated by '|'.
        std::stringstream parts(reply);
        for (std::string part; std::getline(parts, part, '|');) {
            answer.paths.push_back(part);
        }
    }
    return answer;
}

FileDialogAnswer ScriptedDesktop::OpenFileDialog(const FileDialogRequest& request) {
    return fileDialog("open", request);
}

FileDialogAnswer ScriptedDesktop::SaveFileDialog(const FileDialogRequest& request) {
    return fileDialog("save", request);
}

std::optional<std::string> ScriptedDesktop::ChooseFolderDialog(const std::string& title) {
    const std::string reply = next("folder " + title);
    conversation.push_back("folder " + title + " -> " + reply);
    return reply == Cancel ? std::nullopt : std::optional(reply);
}

std::optional<std::string> ScriptedDesktop::InputBox(const std::string& prompt,
                                                     const std::string& title,
                                                     const std::string& initial) {
    const std::string reply = next("input " + prompt);
    conversation.push_back("input " + title + ": " + prompt + " [" + initial + "] -> " + reply);
    return reply == Cancel ? std::nullopt : std::optional(reply);
}

std::optional<Rgb> ScriptedDesktop::PickColour() {
    const std::string reply = next("colour");
    conversation.push_back("colour -> " + reply);
    if (reply == Cancel) {
        return std::nullopt;
    }
    Rgb colour;
    char comma = 0;
    std::stringstream(reply) >> colour.red >> comma >> colour.green >> comma >> colour.blue;
    return colour;
}

void ScriptedDesktop::SetStatus(const std::string& text) {
    status = text;
    conversation.push_back("status: " + text);
}

void ScriptedDesktop::SetStats(const std::string& text) {
    stats = text;
    conversation.push_back("stats: " + text);
}

void ScriptedDesktop::SetArchivePath(const std::string& path) {
    archivePath = path;
}

void ScriptedDesktop::ShowProgress(int maximum) {
    conversation.push_back("progress shown: " + std::to_string(maximum));
}

void ScriptedDesktop::SetProgress(int) {}

void ScriptedDesktop::HideProgress() {
    conversation.push_back("progress hidden");
}

bool ScriptedDesktop::ProgressCancelled() {
    return cancelAtPoll != 0 && --cancelAtPoll == 0;
}

void ScriptedDesktop::SetBusy(bool) {}

void ScriptedDesktop::SetClipboardText(const std::string& text) {
    clipboard = text;
}

bool ScriptedDesktop::OpenWithShell(const std::string& pathOrAddress) {
    shellOpened.push_back(pathOrAddress);
    conversation.push_back("shell open: " + pathOrAddress);
    return shellOpens;
}

} // namespace korvel::test
