// Helpers shared by the bxq verbs.
#include "app/BXQCommand.h"

#include "plugin/BXQTranslations.h"

#include <cstdio>

namespace bxq {

int usageError(const QString& message) {
    std::fprintf(stderr, "bxq: %s\n", qUtf8Printable(message));
    return kUsageError;
}

void addLanguageOption(QCommandLineParser& parser) {
    parser.addOption({QStringLiteral("lang"), QStringLiteral("Language of the library's texts (en)."),
                      QStringLiteral("language")});
}

bool applyLanguageOption(const QCommandLineParser& parser) {
    if (!parser.isSet(QStringLiteral("lang"))) return true;
    const QString language = parser.value(QStringLiteral("lang"));
    if (language == QLatin1String("zh") || language == QLatin1String("zh_CN")) return true;
    if (BXQInstallTranslation(language)) return true;
    usageError(QStringLiteral("no translation for language '%1'").arg(language));
    return false;
}

bool parseArguments(QCommandLineParser& parser, const QStringList& arguments) {
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    if (!parser.parse(arguments)) {
        usageError(parser.errorText());
        return false;
    }
    return true;
}

}  // namespace bxq
