#pragma once
// What every program that takes the README's pictures does the same way: the
// output folder from the command line, and a window shown, painted and written.

#include <QApplication>
#include <QPixmap>
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

}  // namespace ovd::testing
