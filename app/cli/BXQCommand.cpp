// Helpers shared by the bxq verbs.
#include "app/cli/BXQCommand.h"

#include "plugin/BXQTranslations.h"
#include "section_data/SKRHotRollingSection.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <map>
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

bool readTriple(const QString& text, std::array<double, 3>& out) {
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 3) return false;
    for (int i = 0; i < 3; ++i)
        if (!readNumber(parts[i], &out[static_cast<size_t>(i)])) return false;
    return true;
}

QString tripleText(const std::array<double, 3>& v) {
    return QStringLiteral("%1,%2,%3").arg(shortestNumber(v[0]), shortestNumber(v[1]), shortestNumber(v[2]));
}

QJsonArray tripleJson(const std::array<double, 3>& v) { return QJsonArray{v[0], v[1], v[2]}; }

bool readId(const QString& text, qint64* id) {
    bool ok = false;
    *id = text.trimmed().toLongLong(&ok);
    return ok;
}

void print(const QByteArray& text) {
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout);
    std::fflush(stdout);
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
    const QString language = parser.isSet(QStringLiteral("lang")) ? parser.value(QStringLiteral("lang")) : QString();
    if (language.isEmpty() || language == QLatin1String("zh") || language == QLatin1String("zh_CN")) {
        // The library speaks Chinese as written; Qt's own buttons need Qt's translation (without
        // the translations package they stay English, which is no reason to refuse to run).
        BXQInstallQtTranslation(QStringLiteral("zh_CN"));
        return true;
    }
    if (BXQInstallTranslation(language)) return true;
    usageError(QStringLiteral("no translation for language '%1'").arg(language));
    return false;
}

namespace {

// One example per verb and sub-verb, shown under --help.
const char* exampleOf(const QStringList& arguments) {
    static const std::map<QString, const char*> examples{
        {"parse", "bxq parse --json \"H400*200*8*13\" I20a"},
        {"catalogue", "bxq catalogue --type 1"},
        {"wpm", "bxq wpm I20a HN400*200*8*13"},
        {"apm", "bxq apm I20a"},
        {"user-section", "bxq user-section list --project p.KDB"},
        {"user-section add", "bxq user-section add Z270*80*8*3 --project p.KDB --type 9 --weight 12.5 --area 0.9"},
        {"user-section update", "bxq user-section update Z270*80*8*3(ZDY) --project p.KDB --weight 12.6"},
        {"user-section remove", "bxq user-section remove --project p.KDB --type 9 --sub 1"},
        {"user-section list", "bxq user-section list --project p.KDB --json"},
        {"face-steel", "bxq face-steel 1 6"},
        {"outline", "bxq outline --section I20a --svg i20a.svg --dxf i20a.dxf"},
        {"properties", "bxq properties --json --units cm I20a HN400*200*8*13"},
        {"member", "bxq member add --project p.KDB --section H400*200*8*13 --from 0,0,0 --to 6000,0,0"},
        {"member add", "bxq member add --project p.KDB --section I20a --from 0,0,0 --to 0,0,3000 --roll 90"},
        {"member list", "bxq member list --project p.KDB --json"},
        {"member remove", "bxq member remove --project p.KDB 1"},
        {"cut-plane", "bxq cut-plane list --project p.KDB --id 1"},
        {"cut-plane add", "bxq cut-plane add --project p.KDB --id 1 --head --origin 0,0,300 --normal 0,0.5,1"},
        {"cut-plane list", "bxq cut-plane list --project p.KDB --json"},
        {"cut-plane move", "bxq cut-plane move --project p.KDB 2 --by 50"},
        {"cut-plane remove", "bxq cut-plane remove --project p.KDB 2"},
        {"view", "bxq view --project p.KDB --png view.png --size 800x600 --view iso --select 1"},
        {"gui", "bxq gui --project p.KDB --lang en"},
        {"export", "bxq export --project p.KDB --ifc p.ifc --as 3=column"},
    };
    const QString verb = arguments.value(0);
    for (int i = 1; i < arguments.size(); ++i) {
        if (arguments[i].startsWith(QLatin1Char('-'))) continue;
        const auto sub = examples.find(verb + QLatin1Char(' ') + arguments[i]);
        if (sub != examples.end()) return sub->second;
        break;
    }
    const auto found = examples.find(verb);
    return found == examples.end() ? nullptr : found->second;
}

}  // namespace

bool parseArguments(QCommandLineParser& parser, const QStringList& arguments) {
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Shows this help."));
    parser.addOption(help);
    if (!parser.parse(arguments)) {
        usageError(parser.errorText());
        return false;
    }
    if (parser.isSet(help)) {
        QString text = parser.helpText();
        // Qt names the program, not the verb: say "bxq VERB".
        text.replace(QRegularExpression(QStringLiteral("^Usage: \\S+")),
                     QStringLiteral("Usage: bxq %1").arg(arguments.value(0)));
        if (const char* example = exampleOf(arguments)) text += QStringLiteral("\nExample:\n  %1\n").arg(QLatin1String(example));
        std::fputs(qUtf8Printable(text), stdout);
        throw HelpShown();
    }
    return true;
}

}  // namespace bxq
