// The eclipse map tests draw with QPainter: a QGuiApplication on the
// offscreen platform for the whole run.
#include <gtest/gtest.h>

#include <QGuiApplication>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
