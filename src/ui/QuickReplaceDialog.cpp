#include "ui/QuickReplaceDialog.h"

#include "ui/WidgetUnits.h"
#include "window/QuickReplaceCommand.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

namespace korvel::ui {
namespace {

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

QLabel* Label(const char* name, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(name));
    return label;
}

QRadioButton* Option(const char* name, const QString& text, QWidget* parent) {
    auto* option = new QRadioButton(text, parent);
    option->setObjectName(QString::fromLatin1(name));
    return option;
}

} // namespace

QuickReplaceDialog::QuickReplaceDialog(Settings& settings, const std::string& entryName,
                                       const std::string& folder, QWidget* parent)
    : QDialog(parent), settings_(settings) {
    setObjectName(QStringLiteral("qrMissing"));
    setModal(true);
    const auto text = [&](const char* key) { return Q(settings_.LookupText(key)); };
    setWindowTitle(QStringLiteral(" ") + WithoutMnemonic(text("qr0")));

    auto* grid = new QGridLayout(this);
    grid->addWidget(Label("Label1", text("qr1"), this), 0, 0, 1, 2);
    grid->addWidget(Label("Label5", text("qr2"), this), 1, 0);
    // Names and paths are shown as they are, never as markup.
    QLabel* name = Label("Label2", Q(entryName), this);
    name->setTextFormat(Qt::PlainText);
    grid->addWidget(name, 1, 1);
    grid->addWidget(Label("Label4", text("qr3"), this), 2, 0);
    QLabel* location = Label("Label3", Q(folder), this);
    location->setTextFormat(Qt::PlainText);
    grid->addWidget(location, 2, 1);
    skip_ = Option("skipOption", text("qr4"), this);
    separately_ = Option("sepOption", text("qr5"), this);
    newLocation_ = Option("newLoc", text("qr6"), this);
    grid->addWidget(skip_, 3, 0, 1, 2);
    grid->addWidget(separately_, 4, 0, 1, 2);
    grid->addWidget(newLocation_, 5, 0, 1, 2);
    auto* okButton = new QPushButton(QStringLiteral("Ok"), this);
    okButton->setObjectName(QStringLiteral("ok"));
    okButton->setDefault(true);
    grid->addWidget(okButton, 6, 1, Qt::AlignRight);

    const auto stored = StoredMissingFileOption(settings_);
    (stored == MissingFileOption::ReplaceSeparately ? separately_
     : stored == MissingFileOption::NewLocation     ? newLocation_
                                                    : skip_)
        ->setChecked(true);
    if (!stored) {
        // An unknown stored value selects nothing, so Ok cannot invent one.
        skip_->setAutoExclusive(false);
        skip_->setChecked(false);
        skip_->setAutoExclusive(true);
    }
    connect(okButton, &QPushButton::clicked, this, [this] { ok(); });
}

void QuickReplaceDialog::ok() {
    if (skip_->isChecked()) {
        chosen_ = MissingFileOption::Skip;
    } else if (separately_->isChecked()) {
        chosen_ = MissingFileOption::ReplaceSeparately;
    } else if (newLocation_->isChecked()) {
        chosen_ = MissingFileOption::NewLocation;
    }
    accept();
}

std::optional<MissingFileOption> QtQuickReplaceDialogs::QrMissing(const std::string& entryName,
                                                                  const std::string& folder) {
    QuickReplaceDialog dialog(settings_, entryName, folder, owner_);
    dialog.exec();
    return dialog.chosen();
}

} // namespace korvel::ui
