#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
    // No windows on the developer's desktop unless asked for with QT_QPA_PLATFORM.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // gtest takes its own flags out first; Qt gets the rest (such as -platform).
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
