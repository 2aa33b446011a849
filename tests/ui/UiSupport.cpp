#include "UiSupport.h"

#include "platform/Folders.h"
#include "ui/EntryModel.h"

namespace korvel::test {

WindowEnv::WindowEnv() : settings(SettingsFilePath(), LanguageFilePath()) {
    settings.EnsureSettingsFile();
    settings.WriteSetting("False", "firstRun");
    window = std::make_unique<ui::MainWindow>(settings);
}

ui::MainWindow& WindowEnv::start(const std::string& commandLine) {
    window->startup(commandLine);
    window->show();
    return *window;
}

std::string WindowEnv::archive(const std::string& name, const std::vector<std::string>& entries) {
    std::vector<DirRecord> records;
    for (const std::string& entry : entries)
        records.push_back({static_cast<std::uint32_t>(records.size()), 1, entry});
    WriteArchive(folder / name, records, SectorSize * entries.size());
    return (folder / name).string();
}

std::vector<std::string> WindowEnv::shownNames() const {
    std::vector<std::string> names;
    for (int row = 0; row < window->model()->rowCount(); ++row)
        names.push_back(window->model()->index(row, 0).data().toString().toStdString());
    return names;
}

QList<int> WindowEnv::selectedRows() const {
    QList<int> rows;
    for (std::size_t row = 0; row < window->editor().table().size(); ++row)
        if (window->editor().table()[row].selected)
            rows << static_cast<int>(row) + 1;
    return rows;
}

void WindowEnv::recordEntryCommands() {
    for (const char* command : {"EditView", "EditExtract", "EditQuick"}) {
        window->setCommand(command, [this, command] {
            QStringList rows;
            for (int row : selectedRows())
                rows << QString::number(row);
            ran << QString::fromLatin1(command) + ":" + rows.join(',');
        });
    }
}

std::shared_ptr<bool> AnswerNextModal(std::function<void(QWidget*)> answer) {
    auto done = std::make_shared<bool>(false);
    auto* timer = new QTimer(qApp);
    timer->setInterval(5);
    QObject::connect(timer, &QTimer::timeout, [timer, answer, done] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal != nullptr && modal->isVisible()) {
            timer->stop();
            timer->deleteLater();
            *done = true;
            answer(modal);
        }
    });
    timer->start();
    return done;
}

} // namespace korvel::test
