// Helpers shared by the bxq verbs.
#include "app/BXQCommand.h"

#include "plugin/BXQTranslations.h"
#include "section_data/SKRHotRollingSection.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <string>

namespace bxq {

int usageError(const QString& message) {
    std::fprintf(stderr, "bxq: %s\n", qUtf8Printable(message));
    return kUsageError;
}

int dataError(const QString& message) {
    std::fprintf(stderr, "bxq: %s\n", qUtf8Printable(message));
    return kDataError;
}

void warn(const QString& message) { std::fprintf(stderr, "bxq: %s\n", qUtf8Printable(message)); }

QString shortestNumber(double value) { return QString::number(value, 'g', QLocale::FloatingPointShortest); }

bool readNumber(const QString& text, double* value) {
    bool ok = false;
    *value = QLocale::c().toDouble(text.trimmed(), &ok);
    return ok && std::isfinite(*value);
}

void forEachInput(const QStringList& arguments, const std::function<void(const QString&)>& take) {
    for (const QString& argument : arguments) {
        if (argument != QLatin1String("-")) {
            take(argument);
            continue;
        }
        std::string line;
        while (std::getline(std::cin, line)) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            take(QString::fromStdString(line));
        }
    }
}

QByteArray sectionLines(const std::vector<skr::section::SKRHotRollingSection>& sections) {
    int width = 0;
    for (const auto& section : sections) width = std::max(width, static_cast<int>(section.standardName.size()));
    QString out;
    for (const auto& section : sections) {
        out += QString::fromStdWString(section.standardName).leftJustified(width);
        out += QStringLiteral("  type=%1 sub=%2 kg/m=%3 m2/m=%4")
                   .arg(section.sectionType)
                   .arg(section.subId)
                   .arg(shortestNumber(section.weightMeter), shortestNumber(section.area));
        for (const auto& param : section.params)
            if (param.second != 0.0)
                out += QLatin1Char(' ') + QString::fromStdWString(param.first) + QLatin1Char('=') +
                       shortestNumber(param.second);
        out += QLatin1Char('\n');
    }
    return out.toUtf8();
}

QByteArray sectionJson(const std::vector<skr::section::SKRHotRollingSection>& sections) {
    QJsonArray rows;
    for (const auto& section : sections) {
        QJsonObject params;
        for (const auto& param : section.params)
            if (param.second != 0.0) params.insert(QString::fromStdWString(param.first), param.second);
        rows.append(QJsonObject{{"name", QString::fromStdWString(section.standardName)},
                                {"type", section.sectionType},
                                {"sub", section.subId},
                                {"weight", section.weightMeter},
                                {"surface", section.area},
                                {"params", params}});
    }
    return QJsonDocument(rows).toJson(QJsonDocument::Compact) + '\n';
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
