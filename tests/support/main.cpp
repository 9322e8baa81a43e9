#include <gtest/gtest.h>

#include <QGuiApplication>

// Text needs the toolkit's fonts, so every test program has an off-screen application object.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
