// VMPAppInfo: the application data folder.
#include "vmp/VMPAppInfo.h"

#include <QDir>
#include <QFileInfo>

#include <dlfcn.h>

namespace {

const char kCatalogueFile[] = "SKRSectionPolyDB.KDB";

// The folder this library was loaded from.
QString libraryDir() {
    Dl_info info{};
    if (!dladdr(reinterpret_cast<const void*>(&libraryDir), &info) || !info.dli_fname) return {};
    return QFileInfo(QString::fromLocal8Bit(info.dli_fname)).absolutePath();
}

// The folders tried in order: share/bxq beside this library's installed place (lib/ or
// lib/<multiarch>/), so that an installed tree works wherever it was unpacked; the configured
// install prefix's; and the build tree's data, for a library that runs from the build tree only.
QStringList dataPaths() {
    const QString library = libraryDir();
    QStringList paths;
    if (!library.isEmpty())
        paths << QDir::cleanPath(library + QStringLiteral("/../share/bxq"))
              << QDir::cleanPath(library + QStringLiteral("/../../share/bxq"));
    const QString configured = QStringLiteral(BXQ_INSTALLED_DATA_DIR);
    if (!paths.contains(configured)) paths << configured;
    if (library == QDir::cleanPath(QStringLiteral(BXQ_BUILD_LIB_DIR))) paths << QStringLiteral(BXQ_BUILD_DATA_DIR);
    return paths;
}

}  // namespace

VMPAppInfo* VMPAppInfo::gAppInfo() {
    static VMPAppInfo info;
    return &info;
}

QString VMPAppInfo::appDataPath() const {
    const QString fromEnvironment = qEnvironmentVariable("BXQ_DATA_DIR");
    if (!fromEnvironment.isEmpty()) return QDir::cleanPath(fromEnvironment);
    const QStringList paths = dataPaths();
    for (const QString& path : paths)
        if (QFileInfo::exists(path + QLatin1Char('/') + QLatin1String(kCatalogueFile))) return path;
    return paths.last();
}

QStringList VMPAppInfo::searchedDataPaths() const {
    const QString fromEnvironment = qEnvironmentVariable("BXQ_DATA_DIR");
    if (!fromEnvironment.isEmpty()) return {QStringLiteral("BXQ_DATA_DIR=") + QDir::cleanPath(fromEnvironment)};
    return dataPaths();
}

bool VMPAppInfo::fileExists(const QString& path) const { return QFileInfo(path).isFile(); }
