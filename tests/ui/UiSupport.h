// Helpers for the window tests: a fresh editor folder per test with a quiet
// settings file, archives written on demand, and answering a modal dialog
// that a command is about to open.
#pragma once

#include "TestFolder.h"
#include "settings/Settings.h"
#include "ui/MainWindow.h"

#include <QAction>
#include <QApplication>
#include <QTimer>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvel::test {

struct WindowEnv {
    TestFolder folder;
    Settings settings;
    std::unique_ptr<ui::MainWindow> window;
    QStringList ran; // what recordEntryCommands recorded

    WindowEnv();
    // Starts the window with the given command line.
    ui::MainWindow& start(const std::string& commandLine = {});
    std::string archive(const std::string& name, const std::vector<std::string>& entries);
    QAction* action(const char* name) const { return window->action(QString::fromLatin1(name)); }
    QString text(const QString& key) const {
        return QString::fromStdString(settings.LookupText(key.toStdString()));
    }
    // Names of the rows as the view's model shows them.
    std::vector<std::string> shownNames() const;
    // Selected rows of the main list, 1-based as the tool windows number them.
    QList<int> selectedRows() const;
    // Puts recorders behind view, extract and quick extract: each run adds
    // the command and the rows selected then to `ran` ("EditView:3,7").
    void recordEntryCommands();
};

// Runs `answer` on the next modal widget as soon as it is shown; returns a
// flag that tells whether it ran.
std::shared_ptr<bool> AnswerNextModal(std::function<void(QWidget*)> answer);

} // namespace korvel::test
