#include "ui/AddingDupDialog.h"

#include "settings/Settings.h"
#include "ui/WidgetUnits.h"
#include "window/EntryCommands.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace korvel::ui {
namespace {

struct DupOption {
    const char* control;
    DuplicateAnswer action;
    const char* textKey;
    const char* builtIn;
};

// In the order Ok looks at them: the first one selected decides.
constexpr std::array<DupOption, 4> Options = {{
    {"Option0", DuplicateAnswer::Replace, "dup3", "Replace old file with new file"},
    {"Option1", DuplicateAnswer::RenameOld, "dup4", "Rename the old file"},
    {"Option2", DuplicateAnswer::RenameNew, "dup5", "Rename the new file"},
    {"Option3", DuplicateAnswer::Skip, "dup6", "Dont add this file"},
}};

QLabel* NamedLabel(const char* name, const char* builtIn, QWidget* parent) {
    auto* label = new QLabel(QString::fromLatin1(builtIn), parent);
    label->setObjectName(QString::fromLatin1(name));
    return label;
}

} // namespace

AddingDupDialog::AddingDupDialog(Settings& settings, QWidget* parent)
    : QDialog(parent), settings_(settings) {
    setObjectName(QStringLiteral("addingDup"));
    setWindowTitle(QStringLiteral(" Duplicate file found"));
    questionLabel_ =
        NamedLabel("Label1", "A duplicate of the file your adding to the archive was found.", this);
    questionLabel_->setWordWrap(true);
    choiceLabel_ = NamedLabel("Label2", "What would you like to do?", this);
    conflictCaptionLabel_ = NamedLabel("Label3", "Conflicting file:", this);
    conflictNameLabel_ = NamedLabel("Label4", "X", this);
    conflictNameLabel_->setTextFormat(Qt::PlainText);
    QFont bold = conflictNameLabel_->font();
    bold.setBold(true);
    conflictNameLabel_->setFont(bold);

    group_ = new QButtonGroup(this);
    for (std::size_t i = 0; i < Options.size(); ++i) {
        auto* option = new QRadioButton(QString::fromLatin1(Options[i].builtIn), this);
        option->setObjectName(QString::fromLatin1(Options[i].control));
        group_->addButton(option);
        options_[i] = option;
    }
    dontPrompt_ = new QCheckBox(QStringLiteral("Dont prompt again just do this"), this);
    dontPrompt_->setObjectName(QStringLiteral("dontPrompt"));
    connect(dontPrompt_, &QCheckBox::clicked, this, &AddingDupDialog::dontPromptClicked);
    doThis_ = new QPushButton(QStringLiteral("Ok"), this);
    doThis_->setObjectName(QStringLiteral("doThis"));
    doThis_->setDefault(true);
    connect(doThis_, &QPushButton::clicked, this, &AddingDupDialog::doThisClicked);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(questionLabel_);
    layout->addWidget(choiceLabel_);
    auto* conflict = new QHBoxLayout;
    conflict->addWidget(conflictCaptionLabel_);
    conflict->addWidget(conflictNameLabel_, 1);
    layout->addLayout(conflict);
    for (QRadioButton* option : options_) {
        layout->addWidget(option);
    }
    layout->addSpacing(6);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(dontPrompt_, 1);
    bottom->addWidget(doThis_);
    layout->addLayout(bottom);
    setMinimumWidth(380);
}

void AddingDupDialog::relabel() {
    const auto text = [this](const char* key) {
        return QString::fromStdString(settings_.LookupText(key));
    };
    setWindowTitle(QStringLiteral(" ") + WithoutMnemonic(text("dup0")));
    questionLabel_->setText(text("dup1"));
    choiceLabel_->setText(text("dup2"));
    conflictCaptionLabel_->setText(text("dup7"));
    dontPrompt_->setText(text("dup8"));
    for (std::size_t i = 0; i < Options.size(); ++i) {
        options_[i]->setText(text(Options[i].textKey));
    }
}

void AddingDupDialog::load(const QString& conflictingName) {
    relabel();
    // With an unknown addingOpt no option is selected, and Ok then does
    // nothing until one is picked.
    const DuplicateAnswer action = StoredDuplicateAnswer(settings_);
    group_->setExclusive(false);
    for (std::size_t i = 0; i < Options.size(); ++i) {
        options_[i]->setChecked(action == Options[i].action);
    }
    group_->setExclusive(true);
    dontPrompt_->setChecked(NumberSetting(settings_.ReadSetting("scanPrompt")) == 1);
    asking_ = !conflictingName.isEmpty();
    chosen_.reset();
    conflictNameLabel_->setText(conflictingName);
    // Opened as the settings window there is no conflicting file to show.
    conflictCaptionLabel_->setVisible(!conflictingName.isEmpty());
    conflictNameLabel_->setVisible(!conflictingName.isEmpty());
    adjustSize();
}

DuplicateDialogAnswer AddingDupDialog::answer() const {
    return {chosen_, dontPrompt_->isChecked()};
}

void AddingDupDialog::dontPromptClicked(bool checked) {
    // As the settings window it remembers at once; asking, the adding
    // command records the answer.
    if (!asking_) {
        RecordDuplicateAnswer(settings_, {std::nullopt, checked});
    }
}

void AddingDupDialog::doThisClicked() {
    for (std::size_t i = 0; i < Options.size(); ++i) {
        if (options_[i]->isChecked()) {
            chosen_ = Options[i].action;
            if (!asking_) {
                RecordDuplicateAnswer(settings_, answer());
            }
            accept();
            return;
        }
    }
}

} // namespace korvel::ui
