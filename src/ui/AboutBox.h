// The about box behind Help > About: product, version, licence and credits.
#pragma once

#include <QDialog>

namespace korvel::ui {

class AboutBox : public QDialog {
    Q_OBJECT
public:
    AboutBox(const QString& title, QWidget* parent);
};

} // namespace korvel::ui
