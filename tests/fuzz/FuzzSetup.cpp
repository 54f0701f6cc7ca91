// Set-up shared by the fuzz targets: one Qt application for the whole run (Qt Script needs it),
// Qt's warnings silenced so that the fuzzer's own output stays readable.
#include "tests/fuzz/FuzzTarget.h"

#include <QCoreApplication>
#include <QLocale>

#include <clocale>

namespace {
void quiet(QtMsgType, const QMessageLogContext&, const QString&) {}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    static int qtArgc = 1;
    static char name[] = "bxq-fuzz";
    static char* qtArgv[] = {name, nullptr};
    static QCoreApplication* app = new QCoreApplication(qtArgc, qtArgv);
    (void)app;
    (void)argc;
    (void)argv;
    std::setlocale(LC_ALL, "C");
    QLocale::setDefault(QLocale::c());
    qInstallMessageHandler(quiet);
    return 0;
}
