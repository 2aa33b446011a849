#include "ui/EntryDrag.h"

#include <QList>
#include <QMimeData>
#include <QUrl>

namespace korvel::ui {

QMimeData* EntryFilesMimeData(const std::vector<std::filesystem::path>& files) {
    if (files.empty()) {
        return nullptr;
    }
    QList<QUrl> urls;
    QByteArray gnome = "copy";
    for (const std::filesystem::path& file : files) {
        const QUrl url = QUrl::fromLocalFile(QString::fromStdString(file.string()));
        urls.append(url);
        gnome += '\n' + url.toEncoded();
    }
    auto* data = new QMimeData;
    // setUrls gives text/uri-list, which X11 and Wayland drops and KDE
    // pastes read; GNOME's file manager pastes only its own form.
    data->setUrls(urls);
    data->setData(QStringLiteral("x-special/gnome-copied-files"), gnome);
    return data;
}

} // namespace korvel::ui
