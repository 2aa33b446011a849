#include "ui/QtTranslations.h"

#include "settings/TextForms.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace korvel::ui {

bool UseQtTranslations(std::string_view section) {
    // One translator for the whole application, made on first use so that it
    // lives as long as the QCoreApplication's own objects do.
    static QTranslator* const translator = new QTranslator(QCoreApplication::instance());
    QCoreApplication::removeTranslator(translator);
    const QString code = QString::fromStdString(LanguageCodeOf(section));
    if (code.isEmpty() || code == QStringLiteral("en")) {
        return false;
    }
    if (!translator->load(QStringLiteral("qtbase_") + code,
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}

} // namespace korvel::ui
