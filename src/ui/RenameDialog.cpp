#include "ui/RenameDialog.h"

#include "settings/Settings.h"
#include "ui/WidgetUnits.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace korvel::ui {

RenameDialog::RenameDialog(Settings& settings, QWidget* parent)
    : QDialog(parent), settings_(settings) {
    setObjectName(QStringLiteral("RenameAItem"));
    itemNo_ = new QLineEdit(this);
    itemNo_->setObjectName(QStringLiteral("itemNo"));
    itemNo_->hide();
    label1_ = new QLabel(QStringLiteral("New name..."), this);
    label1_->setObjectName(QStringLiteral("Label1"));
    nameBox_ = new QLineEdit(this);
    nameBox_->setObjectName(QStringLiteral("objectName"));
    nameBox_->setMaxLength(MaxNameLength);
    nameBox_->installEventFilter(this);
    label1_->setBuddy(nameBox_);
    label2_ = new QLabel(QStringLiteral("Characters 00/24"), this);
    label2_->setObjectName(QStringLiteral("Label2"));
    doRename_ = new QPushButton(QStringLiteral("Ok"), this);
    doRename_->setObjectName(QStringLiteral("DoRename"));
    cancel_ = new QPushButton(QStringLiteral("Cancel"), this);
    cancel_->setObjectName(QStringLiteral("CancelRename"));
    // Enter is the name box's: no default button may take it a second time.
    doRename_->setAutoDefault(false);
    cancel_->setAutoDefault(false);

    connect(nameBox_, &QLineEdit::textChanged, this, &RenameDialog::updateCounter);
    connect(nameBox_, &QLineEdit::returnPressed, this, &RenameDialog::doRenameClicked);
    connect(doRename_, &QPushButton::clicked, this, &RenameDialog::doRenameClicked);
    connect(cancel_, &QPushButton::clicked, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label1_);
    layout->addWidget(nameBox_);
    layout->addWidget(label2_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(doRename_);
    buttons->addWidget(cancel_);
    layout->addLayout(buttons);
    setMinimumWidth(280);

    // Loading: the counter first, then the captions in the current language;
    // filling the box afterwards brings the counter to the name's length.
    updateCounter();
    relabel();
    label2_->setText(QString::fromStdString(settings_.LookupText("nn1")) +
                     QStringLiteral(" 00/24"));
}

void RenameDialog::relabel() {
    const auto text = [this](const char* key) {
        return QString::fromStdString(settings_.LookupText(key));
    };
    setWindowTitle(QStringLiteral(" ") + WithoutMnemonic(text("nn0")));
    label1_->setText(text("sd6"));
    cancel_->setText(text("nn2"));
    updateCounter();
}

void RenameDialog::fill(const RenameRequest& request) {
    request_ = request;
    itemNo_->setText(QString::number(request.row + 1));
    nameBox_->setText(QString::fromStdString(request.currentName));
    updateCounter(); // also when the text did not change
    nameBox_->setFocus();
    nameBox_->selectAll();
}

void RenameDialog::updateCounter() {
    label2_->setText(QString::fromStdString(settings_.LookupText("nn1")) + QStringLiteral(" ") +
                     QString::number(nameBox_->text().size()) + QStringLiteral("/24"));
}

bool RenameDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == nameBox_ && event->type() == QEvent::FocusIn) {
        // After the click that gave the focus has placed the cursor.
        QTimer::singleShot(0, nameBox_, &QLineEdit::selectAll);
    }
    return QDialog::eventFilter(watched, event);
}

void RenameDialog::doRenameClicked() {
    if (!request_.doRename) {
        return;
    }
    // The callback may refill this dialog (or the command may outlive the
    // request), so keep our own copy while it runs.
    const auto doRename = request_.doRename;
    if (doRename(nameBox_->text().toStdString())) {
        accept();
    }
}

} // namespace korvel::ui
