#include "ui/LineColorsDialog.h"

#include "ui/WidgetUnits.h"
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace korvel::ui {
namespace {

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

QFrame* Swatch(const char* name, QWidget* parent) {
    auto* frame = new QFrame(parent);
    frame->setObjectName(QString::fromLatin1(name));
    frame->setFrameShape(QFrame::Box);
    frame->setAutoFillBackground(true);
    frame->setFixedSize(48, 22);
    return frame;
}

QPushButton* Button(const char* name, const char* caption, QWidget* parent) {
    auto* button = new QPushButton(QString::fromLatin1(caption), parent);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false);
    return button;
}

} // namespace

LineColorsDialog::LineColorsDialog(Editor& editor, RowColours& colours, QWidget* parent)
    : QDialog(parent), editor_(editor), colours_(colours) {
    setObjectName(QStringLiteral("lineColors"));
    setWindowTitle(QStringLiteral(" Line colors"));
    setModal(false);

    label1_ = new QLabel(QStringLiteral("Color one..."), this);
    label1_->setObjectName(QStringLiteral("Label1"));
    label2_ = new QLabel(QStringLiteral("Color two..."), this);
    label2_->setObjectName(QStringLiteral("Label2"));
    one_ = Swatch("one", this);
    two_ = Swatch("two", this);
    colorOne_ = Button("colorOne", "Change", this);
    colorTwo_ = Button("colorTwo", "Change", this);
    restore_ = Button("restore", "Original colors", this);
    close_ = Button("CloseThis", "Ok", this);

    auto* grid = new QGridLayout(this);
    grid->addWidget(label1_, 0, 0);
    grid->addWidget(one_, 0, 1);
    grid->addWidget(colorOne_, 0, 2);
    grid->addWidget(label2_, 1, 0);
    grid->addWidget(two_, 1, 1);
    grid->addWidget(colorTwo_, 1, 2);
    grid->addWidget(restore_, 2, 0, 1, 2);
    grid->addWidget(close_, 2, 2);
    // Both buttons read "Change": each row's label carries the mnemonic.
    label1_->setBuddy(colorOne_);
    label2_->setBuddy(colorTwo_);

    connect(colorOne_, &QPushButton::clicked, this, [this] { pick(1); });
    connect(colorTwo_, &QPushButton::clicked, this, [this] { pick(2); });
    connect(restore_, &QPushButton::clicked, this, [this] { restore(); });
    connect(close_, &QPushButton::clicked, this, &QDialog::close);
}

void LineColorsDialog::load() {
    setSwatch(1, colours_.Stored(1));
    setSwatch(2, colours_.Stored(2));
    relabel();
}

void LineColorsDialog::relabel() {
    setWindowTitle(QStringLiteral(" ") + WithoutMnemonic(Q(editor_.text("lc0"))));
    label1_->setText(Q(editor_.text("lc1")));
    label2_->setText(Q(editor_.text("lc2")));
    colorOne_->setText(Q(editor_.text("lc3")));
    colorTwo_->setText(Q(editor_.text("lc3")));
    restore_->setText(Q(editor_.text("lc4")));
}

QColor LineColorsDialog::swatch(int which) const {
    return (which == 1 ? one_ : two_)->palette().color(QPalette::Window);
}

void LineColorsDialog::setSwatch(int which, const Rgb& colour) {
    QFrame* frame = which == 1 ? one_ : two_;
    QPalette palette = frame->palette();
    palette.setColor(QPalette::Window, QColor(colour.red, colour.green, colour.blue));
    frame->setPalette(palette);
}

void LineColorsDialog::pick(int which) {
    if (const auto chosen = colours_.Pick(which)) {
        setSwatch(which, *chosen);
    }
}

void LineColorsDialog::restore() {
    setSwatch(1, RestoredColourOne);
    setSwatch(2, RestoredColourTwo);
    colours_.Restore();
    close();
}

} // namespace korvel::ui
