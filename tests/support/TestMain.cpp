// Test entry point: a QCoreApplication for Qt Script and a fixed C locale for number texts.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QLocale>

int main(int argc, char** argv) {
    QLocale::setDefault(QLocale::c());
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
