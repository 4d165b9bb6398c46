#include "ui/qt_desktop_clipboard.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>

namespace ovd::ui {

std::optional<std::string> QtDesktopClipboard::wavAudio() const {
    const QMimeData* data = QApplication::clipboard()->mimeData();
    if (!data) return std::nullopt;
    for (const char* type : {kWavMimeType, "audio/x-wav", "audio/wave", "audio/vnd.wave"}) {
        if (!data->hasFormat(QString::fromLatin1(type))) continue;
        const QByteArray bytes = data->data(QString::fromLatin1(type));
        return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }
    return std::nullopt;
}

void QtDesktopClipboard::setWavAudio(const std::string& wavBytes) {
    auto* data = new QMimeData;
    data->setData(QString::fromLatin1(kWavMimeType),
                  QByteArray(wavBytes.data(), static_cast<qsizetype>(wavBytes.size())));
    QApplication::clipboard()->setMimeData(data);
}

}  // namespace ovd::ui
