// The about box behind Help > About: product, version, licence and credits.
#pragma once

#include <QDialog>

namespace korvel {
class Settings;
}

namespace korvel::ui {

class AboutBox : public QDialog {
    Q_OBJECT
public:
    // Titled and worded in the current language of `texts`.
    AboutBox(const Settings& texts, QWidget* parent);
};

} // namespace korvel::ui
