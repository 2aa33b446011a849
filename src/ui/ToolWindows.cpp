#include "ui/ToolWindows.h"

#include "window/ShowMe.h"
#include "desktop/ShellCommands.h"
#include "ui/LineColorsDialog.h"
#include "ui/MainWindow.h"
#include "ui/ShowMeWindow.h"

namespace korvel::ui {

ToolWindows::ToolWindows(MainWindow& main)
    : QObject(&main), main_(main), qrDialogs_(main.editor().settings(), &main),
      quickReplace_(main.editor(), main.entryCommands(), qrDialogs_),
      rowColours_(main.editor(), [&main] { main.commands().PaintRowStripes(); }) {
    setObjectName(QStringLiteral("toolWindows"));
    Editor& editor = main.editor();
    main.setCommand("CmdGroupReplace", [this] { quickReplace_.QuickReplaceSelected(); });
    main.setCommand("EditInsertMarker", [&main] { main.entryCommands().InsertMarker(); });
    main.setCommand("OptsPick", [this] { optsPick(); });
    for (const ShowMeFamily& family : ShowMeFamilies) {
        const char* item = family.item.data();
        main.setCommand(QString::fromLatin1(item), [this, item] { showMe(item); });
    }
    main.setCommand("OptAss", [&editor] { AssociateWithImgFiles(editor); });
    for (const char* item : {"HelpHome", "HelpCheckWeb", "HelpHelp"}) {
        main.setCommand(QString::fromLatin1(item),
                        [&editor, item] { RunHelpCommand(editor.desktop(), item); });
    }
}

LineColorsDialog* ToolWindows::lineColors() const {
    return lineColors_;
}

ShowMeWindow* ToolWindows::showMeWindow() const {
    return showMe_;
}

void ToolWindows::optsPick() {
    if (lineColors_.isNull()) {
        lineColors_ = new LineColorsDialog(main_.editor(), rowColours_, &main_);
    }
    lineColors_->load();
    lineColors_->show();
    lineColors_->raise();
    lineColors_->activateWindow();
}

void ToolWindows::showMe(const char* item) {
    auto list = BuildShowMeList(main_.editor(), item);
    if (!list) {
        return;
    }
    if (showMe_.isNull()) {
        showMe_ = new ShowMeWindow(main_);
    }
    showMe_->show();
    showMe_->fill(std::move(*list));
    showMe_->raise();
    showMe_->activateWindow();
}

} // namespace korvel::ui
