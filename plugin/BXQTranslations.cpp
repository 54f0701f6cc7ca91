// Installing the translations of the library's user texts.
#include "plugin/BXQTranslations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

static void initTranslationResources() { Q_INIT_RESOURCE(bxqextend_translations); }

bool BXQInstallTranslation(const QString& language) {
    if (!QCoreApplication::instance()) return false;
    initTranslationResources();
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (!translator->load(QStringLiteral(":/i18n/bxqextend_%1.qm").arg(language))) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}

bool BXQInstallQtTranslation(const QString& locale) {
    if (!QCoreApplication::instance()) return false;
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (!translator->load(QStringLiteral("qtbase_") + locale, QLibraryInfo::location(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}
