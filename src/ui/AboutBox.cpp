#include "ui/AboutBox.h"

#include "settings/Settings.h"
#include "ui/TypeIcons.h"
#include "ui/WidgetUnits.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace korvel::ui {

AboutBox::AboutBox(const Settings& texts, QWidget* parent) : QDialog(parent) {
    // Plain texts: escaped, so only the line breaks below are markup.
    const auto said = [&texts](const char* key, std::vector<std::string> arguments = {}) {
        return QString::fromStdString(texts.LookupFilled(key, arguments)).toHtmlEscaped();
    };
    setObjectName(QStringLiteral("About"));
    setWindowTitle(QStringLiteral(" ") + QString::fromStdString(texts.LookupPlainText("menue3")));
    setModal(true);

    auto* badge = new QLabel(this);
    badge->setPixmap(DrawTypeIcon(TypeIconColour("orange")).pixmap(48, 48));
    badge->setAlignment(Qt::AlignTop);

    auto* name = new QLabel(QStringLiteral("<b style='font-size:16pt'>Korvel</b><br>") +
                                said("aboutVersion", {"1.0"}),
                            this);
    auto* body = new QLabel(said("aboutText") + QStringLiteral("<br><br>") + said("aboutLicence") +
                                QStringLiteral("<br><br>") + said("aboutCredits", {qVersion()}),
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
    buttons->button(QDialogButtonBox::Ok)
        ->setText(QStringLiteral("Ok"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(buttons);
    setMinimumWidth(360);
}

} // namespace korvel::ui
