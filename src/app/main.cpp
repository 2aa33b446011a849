// korvel: the editor's window. `korvel [path.img]` opens the archive named on
// the command line; `--screenshot FILE` saves a picture of the window after
// start-up and quits, for checking the looks without a person at the screen.
#include "platform/Folders.h"
#include "settings/Settings.h"
#include "ui/MainWindow.h"
#include "window/MainCommands.h"

#include <QApplication>
#include <QLocale>
#include <QTimer>

#ifndef _WIN32
#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int termPipe[2] = {-1, -1};

void OnTerminate(int) {
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(termPipe[1], &byte, 1);
}

// A session that ends (logout, `kill`) asks politely with SIGTERM: close the
// window the ordinary way so the temps folder is emptied as on Exit. The
// handler only writes to a pipe; the event loop does the rest.
void CloseOnTerminate(QWidget& window) {
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, termPipe) != 0) {
        return;
    }
    auto* notifier = new QSocketNotifier(termPipe[0], QSocketNotifier::Read, &window);
    QObject::connect(notifier, &QSocketNotifier::activated, &window, [&window] {
        char byte = 0;
        [[maybe_unused]] const auto got = ::read(termPipe[0], &byte, 1);
        window.close();
    });
    struct sigaction action = {};
    action.sa_handler = OnTerminate;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
}

} // namespace
#endif

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Korvel"));
    QApplication::setApplicationVersion(QStringLiteral("1.0"));

    std::vector<std::string> arguments;
    QString screenshot;
    const QStringList given = QApplication::arguments();
    for (qsizetype i = 1; i < given.size(); ++i) {
        if (given[i] == QStringLiteral("--screenshot") && i + 1 < given.size()) {
            screenshot = given[++i];
            continue;
        }
        arguments.push_back(given[i].toStdString());
    }

    korvel::Settings settings(korvel::SettingsFilePath(), korvel::LanguageFilePath());
    settings.setDesktopLocale(QLocale::system().name().toStdString());
    korvel::ui::MainWindow window(settings);
    window.startup(korvel::CommandLineFromArguments(arguments));
    window.show();
#ifndef _WIN32
    CloseOnTerminate(window);
#endif

    if (!screenshot.isEmpty()) {
        QTimer::singleShot(500, &window, [&window, screenshot] {
            window.grab().save(screenshot);
            window.close();
        });
    }
    return QApplication::exec();
}
