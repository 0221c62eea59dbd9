// The GUI tests run inside one QApplication on the offscreen platform, which
// lives for the whole run and ends before the program's static objects do.

#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
