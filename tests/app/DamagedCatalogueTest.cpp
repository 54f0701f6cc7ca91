// A damaged shipped catalogue is never read as if it were whole: with one byte flipped anywhere
// in the file, `bxq catalogue` and `bxq wpm` either print exactly what the intact file gives (the
// byte was unused space) or refuse with one line naming the file, and print nothing.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include "support/BxqProcess.h"

namespace {

using bxqtest::BxqRun;

BxqRun bxq(const QString& dataDir, const QStringList& arguments) { return bxqtest::runBxq(arguments, {dataDir, {}, {}, false}); }

TEST(DamagedCatalogue, AFlippedByteIsRefusedOrChangesNothing) {
    const QString shipped = QStringLiteral(BXQ_SHIPPED_DATA_DIR);
    QFile original(shipped + "/SKRSectionPolyDB.KDB");
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    const QByteArray bytes = original.readAll();
    ASSERT_GT(bytes.size(), 4096);
    const QStringList verbs[] = {{"catalogue", "--json"}, {"wpm", "I20a", "HN400*200*8*13", "L100*80*10"}};
    BxqRun intact[2];
    for (int v = 0; v < 2; ++v) {
        intact[v] = bxq(shipped, verbs[v]);
        ASSERT_EQ(intact[v].exitCode, 0) << intact[v].err.constData();
    }
    int refused = 0;
    // Positions spread over every page, past SQLite's own header checks.
    const int positions = 48;
    for (int i = 0; i < positions; ++i) {
        const int at = 100 + static_cast<int>((static_cast<qint64>(bytes.size() - 101) * i) / positions);
        QTemporaryDir dir;
        QByteArray damaged = bytes;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x10);
        QFile copy(dir.filePath("SKRSectionPolyDB.KDB"));
        ASSERT_TRUE(copy.open(QIODevice::WriteOnly));
        copy.write(damaged);
        copy.close();
        QFile::copy(shipped + "/SysInfo.KDB", dir.filePath("SysInfo.KDB"));
        for (int v = 0; v < 2; ++v) {
            SCOPED_TRACE(QString("byte %1, %2").arg(at).arg(verbs[v].join(' ')).toStdString());
            const BxqRun run = bxq(dir.path(), verbs[v]);
            if (run.exitCode == 0) {
                EXPECT_EQ(run.out, intact[v].out);
                continue;
            }
            ++refused;
            EXPECT_EQ(run.exitCode, 1);
            EXPECT_TRUE(run.out.isEmpty());
            EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
            EXPECT_TRUE(run.err.contains("SKRSectionPolyDB.KDB")) << run.err.constData();
        }
    }
    // Flips in a page's unused space change nothing; the rest are content and must be noticed.
    EXPECT_GE(refused, positions);
}

}  // namespace
