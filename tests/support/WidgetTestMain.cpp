// Test entry point for widget suites: a QApplication on the offscreen platform (unless the run
// asks for another, e.g. under Xvfb) and a fixed C locale for number texts.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLocale>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QLocale::setDefault(QLocale::c());
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
