#pragma once
// What every program that takes the README's pictures does the same way: the
// output folder from the command line, and a window shown, painted and written.

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QPixmap>
#include <QThread>
#include <QWidget>
#include <iostream>
#include <optional>
#include <string>

#include "platform/files.h"

namespace ovd::testing {

// The folder named on the command line, made when missing; none (after saying
// why) when there is no name or it can't be made.
inline std::optional<std::string> screenshotFolder(int argc, char** argv, const char* program) {
    if (argc < 2) {
        std::cerr << "usage: " << program << " OUTPUT_FOLDER\n";
        return std::nullopt;
    }
    const std::string folder = argv[1];
    if (const auto made = platform::createFolder(folder); !made) {
        std::cerr << made.error() << "\n";
        return std::nullopt;
    }
    return folder;
}

// Shows the window, lets it paint, and writes its picture.
inline void saveScreenshot(QWidget& window, const std::string& folder, const char* name) {
    window.show();
    for (int i = 0; i < 20; ++i) QApplication::processEvents();
    const std::string path = platform::joinPath(folder, name);
    if (!window.grab().save(QString::fromStdString(path))) {
        std::cerr << "can't write " << path << '\n';
    }
    window.hide();
}

// Lets the window system and the windows catch up, in real time.
inline void settleWindows(int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds) {
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(10);
    }
}

// The window under a strip with its caption, as a desktop's title bar shows it:
// the caption is where the station says what it is doing.
inline bool saveWithCaption(QWidget& window, const std::string& path) {
    settleWindows(200);
    const QPixmap body = window.grab();
    const int strip = 26;
    QPixmap picture(body.width(), body.height() + strip);
    picture.fill(QColor(48, 56, 66));
    QPainter painter(&picture);
    painter.drawPixmap(0, strip, body);
    painter.setPen(Qt::white);
    QFont font = window.font();
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(QRect(10, 0, body.width() - 20, strip), Qt::AlignVCenter | Qt::AlignLeft,
                     window.windowTitle());
    painter.end();
    const bool saved = picture.save(QString::fromStdString(path));
    std::cout << (saved ? "wrote " : "could not write ") << path << '\n';
    return saved;
}

}  // namespace ovd::testing
