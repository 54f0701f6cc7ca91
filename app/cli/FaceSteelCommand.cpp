// bxq face-steel: the weight per square metre of a face-steel plate of a class and thickness.
#include "app/cli/BXQCommand.h"
#include "app/BXQDataSession.h"

#include "face_steel/BXQFaceSteelData.h"

#include "ndp/NDPDatabase.h"

#include <cstdio>

namespace bxq {

int runFaceSteel(const QStringList& arguments) {
    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral("Weight per square metre (kg/m2) of a face-steel plate."));
    addLanguageOption(cli);
    cli.addPositionalArgument(QStringLiteral("class"), QStringLiteral("Plate class name (热轧钢板) or its number (1)."));
    cli.addPositionalArgument(QStringLiteral("thickness"), QStringLiteral("Plate thickness in mm."));
    if (!parseArguments(cli, arguments)) return kUsageError;
    const QStringList positional = cli.positionalArguments();
    if (positional.size() != 2) return usageError(QStringLiteral("face-steel needs CLASS and THICKNESS"));
    double thickness = 0.0;
    if (!readNumber(positional[1], &thickness))
        return usageError(QStringLiteral("THICKNESS must be a number, not '%1'").arg(positional[1]));
    if (!applyLanguageOption(cli)) return kUsageError;

    BXQDataSession session;
    QString error;
    ndp::CDatabase* database = session.openSystemDatabase(QStringLiteral("SysInfo.KDB"), &error);
    if (!database) return dataError(error);
    if (!database->GetTable(L"FaceSteelInfo"))
        return dataError(QStringLiteral("%1 has no table \"FaceSteelInfo\"").arg(database->GetPath()));

    BXQFaceSteelData::loadData(nullptr);
    // A class number stands for its name; any other text is a class name as it is.
    QString className = positional[0];
    bool isNumber = false;
    const int classId = className.toInt(&isNumber);
    if (isNumber && BXQFaceSteelData::m_oClassName.contains(classId))
        className = BXQFaceSteelData::m_oClassName.value(classId);
    const QByteArray line = shortestNumber(BXQFaceSteelData::getFaceSteelQty(className, thickness)).toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    std::fflush(stdout);
    return 0;
}

}  // namespace bxq
