#include "settings/FailureTexts.h"

#include "platform/Cp1252.h"
#include "settings/IniFile.h"

namespace korvel {

std::string StatusText(const Settings& texts, const Status& status) {
    if (status.textKey().empty()) {
        return status.error();
    }
    const std::string text = texts.LookupFilled(status.textKey(), status.arguments());
    return text == SettingsError ? status.error() : text;
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
