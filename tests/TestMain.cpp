// Runs the tests with a GUI application object on the offscreen platform, so that screen
// geometry, image plugins and the event loop work on a machine without a display.

#include <QGuiApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
