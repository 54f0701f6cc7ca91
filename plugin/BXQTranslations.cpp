// Installing the translations of the library's user texts.
#include "plugin/BXQTranslations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QPointer>
#include <QTranslator>

static void initTranslationResources() { Q_INIT_RESOURCE(bxqextend_translations); }

// The library keeps one translator of its own on the application, so that a host switching
// languages replaces it rather than stacking translators, and can switch back to Chinese.
static QPointer<QTranslator>& libraryTranslator() {
    static QPointer<QTranslator> translator;
    return translator;
}

bool BXQInstallTranslation(const QString& language) {
    if (!QCoreApplication::instance()) return false;
    QTranslator* translator = nullptr;
    if (language != QLatin1String("zh") && language != QLatin1String("zh_CN")) {
        initTranslationResources();
        translator = new QTranslator(QCoreApplication::instance());
        if (!translator->load(QStringLiteral(":/i18n/bxqextend_%1.qm").arg(language))) {
            delete translator;
            return false;
        }
    }
    if (QTranslator* previous = libraryTranslator()) {
        QCoreApplication::removeTranslator(previous);
        delete previous;
    }
    libraryTranslator() = translator;
    return !translator || QCoreApplication::installTranslator(translator);
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
