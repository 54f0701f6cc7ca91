// bxq parse as a user runs it: arguments, standard input, JSON lines, exit status.
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include "support/BxqProcess.h"

namespace {

using bxqtest::BxqRun;

BxqRun bxq(const QStringList& arguments, const QByteArray& input = {}) {
    return bxqtest::runBxq(arguments, {QString(), input, {}, false});
}

QVector<QJsonObject> jsonLines(const QByteArray& out) {
    QVector<QJsonObject> objects;
    for (const QByteArray& line : out.split('\n')) {
        if (line.isEmpty()) continue;
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(line, &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << line.constData();
        objects.append(document.object());
    }
    return objects;
}

QStringList sortedKeys(const QJsonObject& object) {
    QStringList keys = object.keys();
    keys.sort();
    return keys;
}

}  // namespace

TEST(BxqParseJson, EveryObjectCarriesExactlyTheRecordKeys) {
    const BxqRun run = bxq({"parse", "--json", "H400*200*8*13", "I20a", "garbage text"});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const auto objects = jsonLines(run.out);
    ASSERT_EQ(objects.size(), 3);
    const QStringList expected{"groupType", "name",    "norm",     "paramCount", "params",      "sectionType",
                               "text",      "typeCode", "typeIndex", "valueText", "weldBallCode"};
    const QStringList normKeys{"failedRules", "matched", "rulesOk", "type", "valid", "values"};
    for (const QJsonObject& object : objects) {
        EXPECT_EQ(sortedKeys(object), expected);
        EXPECT_EQ(sortedKeys(object.value("norm").toObject()), normKeys);
    }
}

TEST(BxqParseJson, WeldedTextReportsRecordNormAndRules) {
    const BxqRun run = bxq({"parse", "--json", "H400*200*8*13", "H20*200*8*13"});
    ASSERT_EQ(run.exitCode, 0);
    const auto objects = jsonLines(run.out);
    ASSERT_EQ(objects.size(), 2);

    const QJsonObject& good = objects[0];
    EXPECT_EQ(good.value("text").toString(), "H400*200*8*13");
    EXPECT_EQ(good.value("sectionType").toInt(), 11);
    EXPECT_EQ(good.value("groupType").toInt(), 2);
    EXPECT_EQ(good.value("paramCount").toInt(), 5);
    EXPECT_EQ(good.value("params").toArray(), (QJsonArray{400, 200, 8, 13, 13}));
    const QJsonObject norm = good.value("norm").toObject();
    EXPECT_TRUE(norm.value("valid").toBool());
    EXPECT_TRUE(norm.value("matched").toBool());
    EXPECT_EQ(norm.value("type").toInt(), 11);
    EXPECT_EQ(norm.value("values").toObject().value("t2").toDouble(), 13.0);
    EXPECT_TRUE(norm.value("rulesOk").toBool());
    EXPECT_TRUE(norm.value("failedRules").toArray().isEmpty());

    const QJsonObject bad = objects[1].value("norm").toObject();
    EXPECT_FALSE(bad.value("rulesOk").toBool());
    EXPECT_EQ(bad.value("failedRules").toArray(), (QJsonArray{"h>2*t2", "h>2*t1"}));
}

TEST(BxqParseJson, CatalogueTextMatchesNoWeldedNorm) {
    const auto objects = jsonLines(bxq({"parse", "--json", "hn 400 * 200 * 8 * 13"}).out);
    ASSERT_EQ(objects.size(), 1);
    EXPECT_EQ(objects[0].value("name").toString(), "HN400*200*8*13");
    EXPECT_EQ(objects[0].value("sectionType").toInt(), 7);
    const QJsonObject norm = objects[0].value("norm").toObject();
    EXPECT_TRUE(norm.value("valid").toBool());  // it starts with the welded mark "H"
    EXPECT_FALSE(norm.value("matched").toBool());
    EXPECT_EQ(norm.value("type").toInt(), -1);
    EXPECT_FALSE(norm.value("rulesOk").toBool());
}

TEST(BxqParseJson, BallExpressionAddsTheWeldBallObject) {
    const BxqRun run = bxq({"parse", "--json", "--ball-expr", "r = D / t; D >= 300 ? 2 : 1", "WS300*8", "H400*200*8*13"});
    ASSERT_EQ(run.exitCode, 0);
    const auto objects = jsonLines(run.out);
    ASSERT_EQ(objects.size(), 2);
    const QJsonObject ball = objects[0].value("weldBall").toObject();
    EXPECT_EQ(ball.value("code").toInt(), 2);
    EXPECT_EQ(objects[0].value("weldBallCode").toInt(), 2);
    EXPECT_EQ(ball.value("values").toObject().value("r").toDouble(), 37.5);
    EXPECT_EQ(ball.value("values").toObject().value("D").toDouble(), 300.0);
    EXPECT_TRUE(objects[1].value("weldBall").toObject().value("values").toObject().isEmpty());
}

TEST(BxqParseInput, DashReadsOneTextPerLineFromStandardInput) {
    const BxqRun run = bxq({"parse", "--json", "-"}, "D89*4\r\nL100*80*10\n\nH400*200*8*13\n");
    ASSERT_EQ(run.exitCode, 0);
    const auto objects = jsonLines(run.out);
    ASSERT_EQ(objects.size(), 4);
    EXPECT_EQ(objects[0].value("sectionType").toInt(), 5);
    EXPECT_EQ(objects[1].value("sectionType").toInt(), 4);
    EXPECT_EQ(objects[2].value("text").toString(), "");
    EXPECT_EQ(objects[3].value("sectionType").toInt(), 11);
}

TEST(BxqParseLanguage, EnglishInterfaceRecognisesItsOwnCustomKeyword) {
    const auto english = jsonLines(bxq({"parse", "--json", "--lang", "en", "CustomSection5", "自定义截面5"}).out);
    ASSERT_EQ(english.size(), 2);
    EXPECT_EQ(english[0].value("sectionType").toInt(), 7005);
    EXPECT_EQ(english[0].value("groupType").toInt(), 3);
    EXPECT_EQ(english[1].value("sectionType").toInt(), -1);

    const auto chinese = jsonLines(bxq({"parse", "--json", "CustomSection5", "自定义截面5"}).out);
    ASSERT_EQ(chinese.size(), 2);
    EXPECT_EQ(chinese[0].value("sectionType").toInt(), -1);
    EXPECT_EQ(chinese[1].value("sectionType").toInt(), 7005);
}

TEST(BxqParseText, HumanReadableByDefault) {
    const BxqRun run = bxq({"parse", "B300*10*12"});
    ASSERT_EQ(run.exitCode, 0);
    const QString out = QString::fromUtf8(run.out);
    EXPECT_TRUE(out.startsWith("B300*10*12\n"));
    EXPECT_TRUE(out.contains("300, 300, 10, 12")) << qPrintable(out);
    EXPECT_TRUE(out.contains("all hold")) << qPrintable(out);
}

TEST(BxqUsage, UsageErrorsExitWithTwoAndOneLine) {
    const QList<QStringList> cases{{"parse"}, {"parse", "--bogus", "H1"}, {"frobnicate"}, {}, {"parse", "--lang", "xx", "H1"}};
    for (const QStringList& arguments : cases) {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        const BxqRun run = bxq(arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_FALSE(run.err.isEmpty());
    }
    const BxqRun single = bxq({"parse"});
    EXPECT_EQ(single.err.count('\n'), 1);
}
