// The shared plug-in as the host links it: the exported API works without the internals, and
// only the exported names are visible in its dynamic symbol table.
#include "plugin/BXQExtend.h"
#include "plugin/BXQTranslations.h"
#include "section_data/SKRObjectRegistry.h"
#include "section_spec/SKRSectionPolyInfoParser.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <QTranslator>

namespace {

QString dynamicSymbols() {
    QProcess nm;
    nm.start(QStringLiteral("nm"), {"-D", "-C", "--defined-only", QStringLiteral(BXQ_PLUGIN_FILE)});
    nm.waitForFinished(60000);
    return QString::fromUtf8(nm.readAllStandardOutput());
}

// The rule check inside the parser and the translations need an application object.
class PluginAbi : public ::testing::Test {
    int m_argc = 1;
    char m_name[5] = "test";
    char* m_argv[1] = {m_name};
    QCoreApplication m_app{m_argc, m_argv};
};

}  // namespace

TEST_F(PluginAbi, ExportedParserWorksThroughTheSharedLibraryWhichExportsOnlyTheHostInterface) {
    BXQExtend marker;
    SKRSectionPolyInfoParser parser;
    parser.parser(QStringLiteral("H400*200*8*13"));
    const GSectionPolyInfo info = parser.sectionPolyInfo();
    EXPECT_EQ(info.sectionType, stWeldedH);
    EXPECT_EQ(info.params, (QVector<double>{400, 200, 8, 13, 13}));
    EXPECT_EQ(SKRSectionPolyInfoParser::weldingSteelMark(1013, 1), QStringLiteral("WSR"));

    int object = 0;
    EXPECT_TRUE(skr::util::RegisterObject("abi", &object, ""));
    EXPECT_EQ(skr::util::FetchObject("abi", ""), &object);
    EXPECT_TRUE(skr::util::UnRegisterObject("abi", ""));

    // Only the host interface is exported.
    const QString symbols = dynamicSymbols();
    ASSERT_FALSE(symbols.isEmpty()) << "nm could not read the plug-in";
    for (const char* exported : {"SKRSectionPolyInfoParser::parser(QString const&)",
                                 "SKRSectionPolyInfoParser::parseStandardName(int, int, QString const&)",
                                 "skr::util::RegisterObject", "skr::util::FetchObject",
                                 "skr::util::UnRegisterObject", "BXQExtend::BXQExtend()"})
        EXPECT_TRUE(symbols.contains(QLatin1String(exported))) << exported;
    for (const char* hidden : {"WeldSectionNormParser", "SectionNormParser", "SKRScriptEvaluator",
                               "SKRCatalogueLookup", "SectionNormTable"})
        EXPECT_FALSE(symbols.contains(QLatin1String(hidden))) << hidden;
}

// The host gets both translations through the plug-in: the library's English, and Qt's own Chinese
// for the buttons of the message boxes the library shows.
TEST_F(PluginAbi, InstallsTheLibrarysAndQtsOwnTranslations) {
    EXPECT_FALSE(BXQInstallTranslation(QStringLiteral("xx")));
    ASSERT_TRUE(BXQInstallQtTranslation(QStringLiteral("zh_CN")));
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("取消"));
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("en")));
    EXPECT_EQ(QCoreApplication::translate("SKRSectionPolyDB", "焊接H型钢"), QStringLiteral("Welded H"));
    // A language the library lacks leaves the one in use; Chinese puts the source texts back, and
    // switching again replaces the library's translator rather than stacking a second one.
    EXPECT_FALSE(BXQInstallTranslation(QStringLiteral("xx")));
    EXPECT_EQ(QCoreApplication::translate("SKRSectionPolyDB", "焊接H型钢"), QStringLiteral("Welded H"));
    const int translators = QCoreApplication::instance()->findChildren<QTranslator*>().size();
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("en")));
    EXPECT_EQ(QCoreApplication::instance()->findChildren<QTranslator*>().size(), translators);
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("zh")));
    EXPECT_EQ(QCoreApplication::translate("SKRSectionPolyDB", "焊接H型钢"), QStringLiteral("焊接H型钢"));
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("取消"));
}
