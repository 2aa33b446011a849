#include "ui/QtDesktop.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QMimeDatabase>
#include <QProcess>
#include <QProgressBar>
#include <QStandardPaths>
#include <QStatusBar>
#include <QUrl>

namespace korvel::ui {
namespace {

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// An empty title means the program's own, as the engine's calls expect.
QString TitleOr(const std::string& title) {
    return title.empty() ? QStringLiteral("Korvel") : Q(title);
}

QMessageBox::Icon BoxIcon(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::Information:
        return QMessageBox::Information;
    case MessageIcon::Exclamation:
        return QMessageBox::Warning;
    case MessageIcon::Critical:
        return QMessageBox::Critical;
    case MessageIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

constexpr qint64 PaintIntervalMs = 30;
// Often enough that the window repaints and Cancel answers at once, seldom
// enough that the work does not slow down.
constexpr qint64 PumpIntervalMs = 50;

bool Within(QObject* target, QObject* widget) {
    for (QObject* at = target; at != nullptr; at = at->parent()) {
        if (at == widget) {
            return true;
        }
    }
    return false;
}

constexpr int ShellQueryTimeoutMs = 2000;

} // namespace

// While long work runs the event loop turns between its steps, so that the
// window repaints and Cancel can be pressed. Everything else a person could
// do then (a menu, a shortcut, a click in the list, a drop) would start a
// second command inside the first, so this filter holds it back. A dialog
// the work itself opens (a question about a duplicate) is modal and gets its
// input as usual.
class QtDesktop::WorkGuard : public QObject {
public:
    explicit WorkGuard(QtDesktop& desktop) : desktop_(desktop) {}

protected:
    bool eventFilter(QObject* target, QEvent* event) override {
        if (event->type() == QEvent::Close) {
            return closeRefused(target, event);
        }
        // Input reaches the window first and is then handed to the widget
        // under the pointer or with the focus: judged there.
        if (!target->isWidgetType() || QApplication::activeModalWidget() != nullptr) {
            return false;
        }
        switch (event->type()) {
        case QEvent::ShortcutOverride:
            // Taken, so that no shortcut fires; the key press follows.
            event->accept();
            return true;
        case QEvent::KeyPress:
            if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
                desktop_.cancelWork();
            }
            return true;
        case QEvent::KeyRelease:
        case QEvent::Shortcut:
        case QEvent::ContextMenu:
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
            return true;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
            return !Within(target, desktop_.cancelButton_);
        default:
            return false;
        }
    }

private:
    bool closeRefused(QObject* target, QEvent* event) {
        auto* widget = qobject_cast<QWidget*>(target);
        if (widget != nullptr && widget == desktop_.owner_) {
            desktop_.cancelWorkAndClose();
            event->ignore();
            return true;
        }
        // A dialog the work asks with closes as its Cancel; popups and
        // tool-tips close as they like; the other windows wait.
        if (widget == nullptr || !widget->isWindow() ||
            QApplication::activeModalWidget() != nullptr ||
            (widget->windowType() != Qt::Window && widget->windowType() != Qt::Dialog &&
             widget->windowType() != Qt::Tool)) {
            return false;
        }
        event->ignore();
        return true;
    }

    QtDesktop& desktop_;
};

QtDesktop::QtDesktop(QWidget* owner) : owner_(owner) {
    sincePaint_.start();
    sincePump_.start();
}

QtDesktop::~QtDesktop() {
    if (guard_) {
        qApp->removeEventFilter(guard_.get());
    }
    while (busyDepth_ > 0) {
        SetBusy(false);
    }
}

void QtDesktop::attachCancelButton(QAbstractButton* button, std::function<void()> beforeShowing) {
    cancelButton_ = button;
    beforeShowingCancel_ = std::move(beforeShowing);
    QObject::connect(button, &QAbstractButton::clicked, button, [this] { cancelWork(); });
}

void QtDesktop::ShowCancellableProgress(int maximum) {
    if (workDepth_++ == 0) {
        cancelled_ = false;
        closeAfterWork_ = false;
        if (!guard_) {
            guard_ = std::make_unique<WorkGuard>(*this);
        }
        qApp->installEventFilter(guard_.get());
        if (cancelButton_) {
            if (beforeShowingCancel_) {
                beforeShowingCancel_();
            }
            cancelButton_->setEnabled(true);
            cancelButton_->show();
            if (bar_ && bar_->layout() != nullptr) {
                bar_->layout()->activate();
            }
        }
    }
    ShowProgress(maximum);
    // The status bar lays itself out anew for the button; let it, and paint,
    // before the first step (the guard already holds input back).
    QCoreApplication::processEvents();
    sincePump_.restart();
}

bool QtDesktop::ProgressCancelled() {
    if (workDepth_ > 0) {
        pumpEvents();
    }
    return cancelled_;
}

void QtDesktop::cancelWork() {
    if (workDepth_ > 0) {
        cancelled_ = true;
        if (cancelButton_) {
            cancelButton_->setEnabled(false); // heard; the work stops at its next safe point
        }
    }
}

void QtDesktop::cancelWorkAndClose() {
    cancelWork();
    closeAfterWork_ = true;
}

void QtDesktop::pumpEvents() {
    if (sincePump_.elapsed() < PumpIntervalMs) {
        return;
    }
    QCoreApplication::processEvents();
    sincePump_.restart();
}

void QtDesktop::endWork() {
    if (workDepth_ == 0 || --workDepth_ > 0) {
        return;
    }
    qApp->removeEventFilter(guard_.get());
    if (cancelButton_) {
        cancelButton_->hide();
    }
    if (closeAfterWork_ && owner_ != nullptr) {
        closeAfterWork_ = false;
        QMetaObject::invokeMethod(owner_, &QWidget::close, Qt::QueuedConnection);
    }
}

void QtDesktop::attachStatusBar(QStatusBar* bar, QLabel* panel1, QLabel* panel2,
                                QProgressBar* progress) {
    bar_ = bar;
    panel1_ = panel1;
    panel2_ = panel2;
    progress_ = progress;
}

QProgressBar* QtDesktop::swapProgressBar(QProgressBar* progress) {
    QProgressBar* previous = progress_;
    progress_ = progress;
    return previous;
}

void QtDesktop::ShowMessage(const std::string& text, const std::string& title, MessageIcon icon) {
    QMessageBox box(BoxIcon(icon), TitleOr(title), Q(text), QMessageBox::Ok, owner_);
    box.setObjectName(QStringLiteral("message"));
    box.exec();
}

bool QtDesktop::AskYesNo(const std::string& text, const std::string& title) {
    QMessageBox box(QMessageBox::NoIcon, TitleOr(title), Q(text),
                    QMessageBox::Yes | QMessageBox::No, owner_);
    box.setObjectName(QStringLiteral("question"));
    box.setDefaultButton(QMessageBox::Yes);
    return box.exec() == QMessageBox::Yes;
}

bool QtDesktop::AskDestructive(const std::string& text, const std::string& title) {
    QMessageBox box(QMessageBox::Warning, TitleOr(title), Q(text),
                    QMessageBox::Yes | QMessageBox::No, owner_);
    box.setObjectName(QStringLiteral("destructiveQuestion"));
    // Enter on a question that destroys something must not say Yes.
    box.setDefaultButton(QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

OverwriteAnswer QtDesktop::AskOverwrite(const std::string& text, const std::string& title) {
    QMessageBox box(
        QMessageBox::Warning, TitleOr(title), Q(text),
        QMessageBox::Yes | QMessageBox::YesToAll | QMessageBox::No | QMessageBox::Cancel, owner_);
    box.setObjectName(QStringLiteral("overwriteQuestion"));
    box.setDefaultButton(QMessageBox::No);
    box.setEscapeButton(QMessageBox::Cancel);
    switch (box.exec()) {
    case QMessageBox::Yes:
        return OverwriteAnswer::Yes;
    case QMessageBox::YesToAll:
        return OverwriteAnswer::YesToAll;
    case QMessageBox::No:
        return OverwriteAnswer::No;
    default:
        return OverwriteAnswer::Cancel;
    }
}

FileDialogAnswer QtDesktop::fileDialog(const FileDialogRequest& request, bool saving) {
    QFileDialog dialog(owner_, Q(request.title), Q(request.startFolder), Q(request.filter));
    dialog.setObjectName(QStringLiteral("CD1"));
    if (saving) {
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        // Commands ask about replacing a file in their own words.
        dialog.setOption(QFileDialog::DontConfirmOverwrite);
    } else {
        dialog.setAcceptMode(QFileDialog::AcceptOpen);
        dialog.setFileMode(request.multiple ? QFileDialog::ExistingFiles
                                            : QFileDialog::ExistingFile);
    }
    if (!request.presetName.empty()) {
        dialog.selectFile(Q(request.presetName));
    }
    FileDialogAnswer answer;
    if (dialog.exec() != QDialog::Accepted) {
        answer.outcome = FileDialogAnswer::Outcome::Cancelled;
        return answer;
    }
    for (const QString& path : dialog.selectedFiles()) {
        answer.paths.push_back(path.toStdString());
    }
    answer.outcome = FileDialogAnswer::Outcome::Chosen;
    const qsizetype filter = dialog.nameFilters().indexOf(dialog.selectedNameFilter());
    answer.filterIndex = filter < 0 ? 0 : static_cast<std::size_t>(filter);
    return answer;
}

FileDialogAnswer QtDesktop::OpenFileDialog(const FileDialogRequest& request) {
    return fileDialog(request, false);
}

FileDialogAnswer QtDesktop::SaveFileDialog(const FileDialogRequest& request) {
    return fileDialog(request, true);
}

std::optional<std::string> QtDesktop::ChooseFolderDialog(const std::string& title) {
    const QString folder = QFileDialog::getExistingDirectory(owner_, Q(title));
    if (folder.isEmpty()) {
        return std::nullopt;
    }
    return folder.toStdString();
}

std::optional<std::string> QtDesktop::InputBox(const std::string& prompt, const std::string& title,
                                               const std::string& initial) {
    bool accepted = false;
    const QString typed = QInputDialog::getText(owner_, TitleOr(title), Q(prompt),
                                                QLineEdit::Normal, Q(initial), &accepted);
    if (!accepted) {
        return std::nullopt;
    }
    return typed.toStdString();
}

std::optional<Rgb> QtDesktop::PickColour() {
    const QColor colour = QColorDialog::getColor(Qt::white, owner_);
    if (!colour.isValid()) {
        return std::nullopt;
    }
    return Rgb{colour.red(), colour.green(), colour.blue()};
}

void QtDesktop::paintNow(QWidget* widget, bool force) {
    if (widget == nullptr || !widget->isVisible()) {
        return;
    }
    if (!force && sincePaint_.elapsed() < PaintIntervalMs) {
        return;
    }
    // repaint() draws at once without running the event loop, so no key or
    // click is taken while a command is still working.
    widget->repaint();
    sincePaint_.restart();
}

void QtDesktop::SetStatus(const std::string& text) {
    if (panel1_) {
        panel1_->setText(Q(text));
        panel1_->setToolTip(panel1_->text()); // the whole message when the panel cuts it
        paintNow(panel1_, true);
    }
}

void QtDesktop::SetStats(const std::string& text) {
    if (panel2_) {
        panel2_->setText(Q(text));
        paintNow(panel2_, true);
    }
}

void QtDesktop::SetArchivePath(const std::string& path) {
    if (bar_) {
        bar_->setToolTip(Q(path));
    }
}

void QtDesktop::ShowProgress(int maximum) {
    if (progress_) {
        progress_->setRange(0, std::max(0, maximum));
        progress_->setValue(0);
        progress_->show();
        paintNow(progress_, true);
    }
}

void QtDesktop::SetProgress(int value) {
    if (progress_) {
        progress_->setValue(value);
        paintNow(progress_, false);
    }
    if (workDepth_ > 0) {
        pumpEvents();
    }
}

void QtDesktop::HideProgress() {
    if (progress_) {
        progress_->hide();
    }
    endWork();
}

void QtDesktop::SetBusy(bool busy) {
    if (busy) {
        ++busyDepth_;
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else if (busyDepth_ > 0) {
        --busyDepth_;
        QApplication::restoreOverrideCursor();
    }
}

void QtDesktop::SetClipboardText(const std::string& text) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(Q(text));
}

bool QtDesktop::OpenWithShell(const std::string& pathOrAddress) {
    const QString target = Q(pathOrAddress);
    const bool isFile = QFileInfo::exists(target);
    if (isFile && !HasDefaultApplication(target)) {
        return false;
    }
    const QUrl url = isFile ? QUrl::fromLocalFile(target) : QUrl::fromUserInput(target);
    return QDesktopServices::openUrl(url);
}

bool QtDesktop::HasDefaultApplication(const QString& file) {
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    // xdg-open starts detached and its failure never comes back to us, so
    // ask the desktop first whether any program opens this type (or a type
    // it derives from, which xdg-open falls back to): xdg-mime where
    // xdg-utils is installed, else GLib's gio, which GNOME always has. With
    // neither there is no one to ask: then the shell is simply tried.
    const QString xdgMime = QStandardPaths::findExecutable(QStringLiteral("xdg-mime"));
    const QString gio =
        xdgMime.isEmpty() ? QStandardPaths::findExecutable(QStringLiteral("gio")) : QString();
    if (xdgMime.isEmpty() && gio.isEmpty()) {
        return true;
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C")); // gio's words, untranslated
    const QMimeType type = QMimeDatabase().mimeTypeForFile(file);
    QStringList types{type.name()};
    types += type.allAncestors();
    for (const QString& name : std::as_const(types)) {
        QProcess query;
        query.setProcessEnvironment(environment);
        if (gio.isEmpty()) {
            query.start(xdgMime, {QStringLiteral("query"), QStringLiteral("default"), name});
        } else {
            query.start(gio, {QStringLiteral("mime"), name});
        }
        if (!query.waitForFinished(ShellQueryTimeoutMs)) {
            // A desktop too slow to answer is given the benefit of the doubt.
            query.kill();
            query.waitForFinished(ShellQueryTimeoutMs);
            return true;
        }
        const QByteArray answer = query.readAllStandardOutput().trimmed();
        const bool named =
            gio.isEmpty() ? !answer.isEmpty() : answer.startsWith("Default application");
        if (query.exitCode() == 0 && named) {
            return true;
        }
    }
    return false;
#else
    (void)file;
    return true;
#endif
}

} // namespace korvel::ui
