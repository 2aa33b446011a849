#include "ui/AboutBox.h"

#include "ui/TypeIcons.h"
#include "ui/WidgetUnits.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace korvel::ui {

AboutBox::AboutBox(const QString& title, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("About"));
    // The title is the Help menu's caption, which carries a mnemonic mark.
    setWindowTitle(WithoutMnemonic(title));
    setModal(true);

    auto* badge = new QLabel(this);
    badge->setPixmap(DrawTypeIcon(TypeIconColour("orange")).pixmap(48, 48));
    badge->setAlignment(Qt::AlignTop);

    auto* name =
        new QLabel(QStringLiteral("<b style='font-size:16pt'>Korvel</b><br>Version 1.0"), this);
    auto* body = new QLabel(
        QStringLiteral("An editor for the .img and .dir archives of the GTA III era games.<br><br>"
                       "Released under the MIT licence.<br><br>"
                       "Credits: written by the Korvel contributors; built with Qt %1.")
            .arg(QString::fromLatin1(qVersion())),
        this);
    body->setObjectName(QStringLiteral("credits"));
    body->setWordWrap(true);
    body->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* text = new QVBoxLayout;
    text->addWidget(name);
    text->addWidget(body);
    text->addStretch();
    auto* top = new QHBoxLayout;
    top->addWidget(badge);
    top->addLayout(text, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Ok"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(buttons);
    setMinimumWidth(360);
}

} // namespace korvel::ui
