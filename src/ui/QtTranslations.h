// Qt's own texts (Yes/No/Cancel, the file and colour dialogs, key names such
// as "Strg" and "Entf") in the interface language: qtbase's translation of
// the section's language is installed, replacing the previous one.
#pragma once

#include <string_view>

namespace korvel::ui {

// Returns false when no translation was found for `section` (English, or a
// language Qt does not ship); Qt then speaks English.
bool UseQtTranslations(std::string_view section);

} // namespace korvel::ui
