#include "settings/FailureTexts.h"

#include "platform/Cp1252.h"
#include "settings/IniFile.h"

namespace korvel {

namespace {

std::string KeyedText(const Settings& texts, const std::string& english, const std::string& key,
                      const std::vector<std::string>& arguments) {
    if (key.empty()) {
        return english;
    }
    const std::string text = texts.LookupFilled(key, arguments);
    return text == SettingsError ? english : text;
}

} // namespace

std::string StatusText(const Settings& texts, const Status& status) {
    return KeyedText(texts, status.error(), status.textKey(), status.arguments());
}

std::string ReasonText(const Settings& texts, const Reason& reason) {
    return reason.empty() ? std::string()
                          : KeyedText(texts, reason.english, reason.textKey, reason.arguments);
}

std::string FileFailureText(const Settings& texts, const std::string& error,
                            const std::string& concerning) {
    std::string text = texts.LookupText("ohCrap1") + " " + error;
    if (!concerning.empty()) {
        text += "\r\n" + concerning;
    }
    return text;
}

std::string AddFailureText(const Settings& texts, const std::string& error,
                           const std::string& rawName) {
    return FileFailureText(texts, error, texts.LookupText("ohCrap2") + "\r\n" + ShownName(rawName));
}

} // namespace korvel
