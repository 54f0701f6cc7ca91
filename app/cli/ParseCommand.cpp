// bxq parse: section texts in, section records and norm checks out (text or JSON lines).
// Catalogue names (I, [) take their dimensions from the shipped catalogue and user sections
// ("(ZDY)") their type from the project; both are opened only when such a text comes, so texts
// that need neither parse without any database.
#include "app/cli/BXQCommand.h"
#include "app/BXQDataSession.h"

#include "section_data/SKRCatalogueLookup.h"
#include "section_data/SKRDatabaseError.h"
#include "section_spec/SKRSectionPolyInfoParser.h"
#include "section_spec/WeldSectionNormParser.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

#include <cstdio>

namespace bxq {
namespace {

struct Report {
    GSectionPolyInfo info;
    bool normValid = false;
    bool normMatched = false;
    int normType = -1;
    QMap<QString, double> normValues;
    bool rulesOk = false;
    QStringList failedRules;
    bool hasBall = false;
    SKRWeldBallInfo ball;
};

Report analyse(const QString& text, const QString* ballExpression) {
    Report report;
    SKRSectionPolyInfoParser parser;
    if (ballExpression) {
        report.ball = parser.parser(text, *ballExpression);
        report.hasBall = true;
    } else {
        parser.parser(text);
    }
    report.info = parser.sectionPolyInfo();

    // The norm check sees the text as the parser's welded check does: no blanks, upper case.
    QString normText = text.simplified();
    normText.remove(QLatin1Char(' '));
    normText = normText.toUpper();
    skr::section::WeldSectionNormParser norms;
    report.normValid = norms.isValid(normText);
    report.normMatched = report.normValid && norms.match(normText);
    report.normType = norms.matchedType();
    if (report.normMatched) {
        report.normValues = norms.numericValues();
        report.rulesOk = norms.checkRules(&report.failedRules);
    }
    return report;
}

QJsonObject numbers(const QMap<QString, double>& values) {
    QJsonObject object;
    for (auto it = values.constBegin(); it != values.constEnd(); ++it) object.insert(it.key(), it.value());
    return object;
}

QByteArray jsonLine(const QString& text, const Report& r) {
    QJsonArray params;
    for (double value : r.info.params) params.append(value);
    QJsonObject norm{{"valid", r.normValid},
                     {"matched", r.normMatched},
                     {"type", r.normType},
                     {"values", numbers(r.normValues)},
                     {"rulesOk", r.rulesOk},
                     {"failedRules", QJsonArray::fromStringList(r.failedRules)}};
    QJsonObject object{{"text", text},
                       {"name", r.info.name},
                       {"typeCode", r.info.typeCode},
                       {"valueText", r.info.valueText},
                       {"paramCount", r.info.paramCount},
                       {"typeIndex", r.info.typeIndex},
                       {"weldBallCode", r.info.weldBallCode},
                       {"groupType", static_cast<int>(r.info.groupType)},
                       {"sectionType", static_cast<int>(r.info.sectionType)},
                       {"params", params},
                       {"norm", norm}};
    if (r.hasBall) {
        QMap<QString, double> values;
        for (const auto& value : r.ball.values) values.insert(QString::fromStdWString(value.first), value.second);
        object.insert(QStringLiteral("weldBall"), QJsonObject{{"code", r.ball.code}, {"values", numbers(values)}});
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QString joined(const QMap<QString, double>& values) {
    QStringList items;
    for (auto it = values.constBegin(); it != values.constEnd(); ++it) items << it.key() + '=' + shortestNumber(it.value());
    return items.join(QLatin1Char(' '));
}

QByteArray humanText(const QString& text, const Report& r) {
    QStringList params;
    for (double value : r.info.params) params << shortestNumber(value);
    QString out;
    QTextStream s(&out);
    s << text << '\n';
    s << "  name:       " << r.info.name << '\n';
    s << "  type:       " << r.info.sectionType << "  group: " << r.info.groupType << "  index: " << r.info.typeIndex
      << '\n';
    s << "  type code:  " << (r.info.typeCode.isEmpty() ? QStringLiteral("(none)") : r.info.typeCode)
      << "  values: " << r.info.valueText << '\n';
    s << "  params:     " << (params.isEmpty() ? QStringLiteral("(none)") : params.join(QStringLiteral(", "))) << '\n';
    if (!r.normValid) {
        s << "  norm:       not a welded or ball text\n";
    } else if (!r.normMatched) {
        s << "  norm:       no welded format matches\n";
    } else {
        s << "  norm:       type " << r.normType << ": " << joined(r.normValues) << '\n';
        s << "  rules:      " << (r.rulesOk ? QStringLiteral("all hold") : QStringLiteral("failed: ") +
                                                                            r.failedRules.join(QStringLiteral(", ")))
          << '\n';
    }
    if (r.hasBall) {
        QMap<QString, double> values;
        for (const auto& value : r.ball.values) values.insert(QString::fromStdWString(value.first), value.second);
        s << "  weld ball:  code " << r.ball.code << ": " << joined(values) << '\n';
    }
    s.flush();
    return out.toUtf8();
}

}  // namespace

int runParse(const QStringList& arguments) {
    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral("Parses section specification texts."));
    cli.addOption({QStringLiteral("json"), QStringLiteral("One JSON object per text, one per line.")});
    cli.addOption({QStringLiteral("ball-expr"), QStringLiteral("Expression evaluated for ball nodes."),
                   QStringLiteral("expression")});
    cli.addOption({QStringLiteral("project"), QStringLiteral("Project whose user sections (ZDY) texts name."),
                   QStringLiteral("FILE")});
    addLanguageOption(cli);
    cli.addPositionalArgument(QStringLiteral("text"), QStringLiteral("Section texts; - reads one per line from stdin."),
                              QStringLiteral("TEXT..."));
    if (!parseArguments(cli, arguments)) return kUsageError;
    QStringList texts = cli.positionalArguments();
    if (texts.isEmpty()) return usageError(QStringLiteral("parse needs at least one TEXT (or - for standard input)"));
    if (!applyLanguageOption(cli)) return kUsageError;

    const bool json = cli.isSet(QStringLiteral("json"));
    const QString ballExpression = cli.value(QStringLiteral("ball-expr"));
    const QString* ball = cli.isSet(QStringLiteral("ball-expr")) ? &ballExpression : nullptr;

    BXQDataSession session;
    QString error;
    if (cli.isSet(QStringLiteral("project")) && !session.openProject(cli.value(QStringLiteral("project")), false, &error))
        return dataError(error);
    bool registered = false;
    QString catalogueMissing;  // why I and [ names have no dimensions; said once

    // A take-off repeats its sections many times; each distinct text is analysed once per run.
    QHash<QString, QByteArray> done;
    bool refused = false;
    auto write = [&](const QString& text) {
        auto it = done.constFind(text);
        if (it == done.constEnd()) {
            // A size past any building's is refused, not turned into figures that overflow.
            const QString tooLarge = SKRSectionPolyInfoParser::rangeRefusal(text);
            if (!tooLarge.isEmpty()) {
                warn(tooLarge);
                refused = true;
                return;
            }
            Report report = analyse(text, ball);
            const QString code = report.info.typeCode;
            const bool catalogueName = code == QLatin1String("I") || code == QLatin1String("[");
            if (!registered && (catalogueName || code == QLatin1String("ZDY"))) {
                if (!session.openCatalogue(&catalogueMissing))
                    catalogueMissing += QStringLiteral("; I and [ names are given no dimensions");
                session.registerRepository();
                registered = true;
                report = analyse(text, ball);
            }
            // A catalogue row that could not be read ends the run: no dimensions that look whole.
            const QString failure = skr::section::SKRCatalogueLookup::takeFailure();
            if (!failure.isEmpty()) throw skr::section::SKRDatabaseError(failure.toStdString());
            if (catalogueName && !catalogueMissing.isEmpty()) {
                warn(catalogueMissing);
                catalogueMissing.clear();
            }
            if (done.size() > 200000) done.clear();
            it = done.insert(text, json ? jsonLine(text, report) : humanText(text, report));
        }
        std::fwrite(it->constData(), 1, it->size(), stdout);
    };
    forEachInput(texts, write);
    std::fflush(stdout);
    return refused ? kDataError : 0;
}

}  // namespace bxq
