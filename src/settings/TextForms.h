// How a text of lang.ini becomes what the person reads: the mnemonic mark of
// a caption, "%1"-style arguments, the count's plural form, and the language
// a desktop locale asks for. All of it is plain string work, so the window,
// korvel-cli and the tests share one rule each.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

// A caption as plain text, for window and message titles, status texts and
// anything else that has no mnemonic: a single "&" goes, "&&" becomes "&".
std::string PlainCaption(std::string_view caption);

// The lower-cased character a caption's mnemonic underlines, or nothing.
std::optional<char> MnemonicOf(std::string_view caption);

// "%1".."%9" replaced by the arguments (a missing argument leaves its
// placeholder as it is, "%%" is one "%"). Arguments are not scanned again.
std::string FillArguments(std::string_view text, const std::vector<std::string>& arguments);

// The placeholders a text uses ("%1", "%2", ...), in ascending order.
std::vector<int> PlaceholdersOf(std::string_view text);

// The key of a count's wording: `<key>One` for the singular, `<key>Many`
// otherwise. French takes the singular for 0 and 1, English and German only
// for 1; `language` is a section name of lang.ini.
std::string PluralKey(std::string_view key, std::string_view language, std::uint64_t count);

// The section a desktop locale ("de_DE.UTF-8", "fr-CA", "C") asks for:
// "francais" or "deutsch" for those languages, "english" for everything else.
std::string LanguageForLocale(std::string_view localeName);
// The language code of one of our sections ("deutsch" -> "de"); empty for a
// section of someone else's making.
std::string LanguageCodeOf(std::string_view section);

} // namespace korvel
