// bxq view: the project's members and cutting planes as the 3D view shows them: the planes'
// display nodes as JSON, and an offscreen picture of the scene.
#include "app/cli/BXQCommand.h"
#include "app/BXQDataSession.h"
#include "app/cli/BXQProgressLine.h"
#include "app/view/BXQModelScene.h"
#include "app/view/BXQOffscreenRenderer.h"

#include "scene/VMPViewerManager.h"
#include "vmp/VMPProjectModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace bxq {
namespace {

QByteArray nodesJson(skr::split::SKRSplitPlaneDisplayManager& planes) {
    QJsonArray nodes;
    for (std::int64_t record : planes.DisplayedRecords()) {
        skr::split::SKRSplitPlaneDisplayManager::NodeShape shape;
        std::int64_t element = -1;
        planes.GetNodeShape(record, shape);
        planes.GetElementOfCuttingPlane(record, element);
        std::vector<std::int64_t> objectIds;
        planes.AppendNodeObjectId(record, objectIds);
        nodes.append(QJsonObject{{"record", static_cast<double>(record)},
                                 {"objectId", QString::number(objectIds.at(0))},
                                 {"element", static_cast<double>(element)},
                                 {"centre", tripleJson(shape.centre)},
                                 {"normal", tripleJson(shape.normal)},
                                 {"width", shape.width},
                                 {"height", shape.height},
                                 {"selected", planes.IsSelected(record)}});
    }
    return QJsonDocument(QJsonObject{{"nodes", nodes}}).toJson(QJsonDocument::Compact) + '\n';
}

}  // namespace

int runView(const QStringList& arguments) {
    QCommandLineParser cli;
    cli.setApplicationDescription(
        QStringLiteral("The project's members and cutting planes as the 3D view shows them. The view opens with no "
                       "plane selected; each --select toggles a plane's selection, unselecting the others."));
    cli.addOption({QStringLiteral("project"), QStringLiteral("The project."), QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("json"), QStringLiteral("The planes' display nodes as one JSON object.")});
    cli.addOption({QStringLiteral("png"), QStringLiteral("Render the scene to a PNG picture."), QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("size"), QStringLiteral("Picture size (default 800x600)."), QStringLiteral("WxH")});
    cli.addOption({QStringLiteral("view"), QStringLiteral("iso (default), front, top or right."), QStringLiteral("VIEW")});
    cli.addOption({QStringLiteral("select"), QStringLiteral("Toggle a plane's selection (repeatable)."), QStringLiteral("RECORD")});
    if (!parseArguments(cli, arguments)) return kUsageError;
    if (!cli.positionalArguments().isEmpty()) return usageError(QStringLiteral("view takes no arguments"));
    if (!cli.isSet(QStringLiteral("project"))) return usageError(QStringLiteral("view needs --project FILE"));
    BXQStandardView view = BXQStandardView::Iso;
    if (cli.isSet(QStringLiteral("view")) && !standardViewFromName(cli.value(QStringLiteral("view")), &view))
        return usageError(QStringLiteral("--view takes iso, front, top or right"));
    int width = 800, height = 600;
    if (cli.isSet(QStringLiteral("size"))) {
        const QRegularExpressionMatch size =
            QRegularExpression(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$")).match(cli.value(QStringLiteral("size")));
        width = size.hasMatch() ? size.captured(1).toInt() : 0;
        height = size.hasMatch() ? size.captured(2).toInt() : 0;
        if (width < 16 || height < 16 || width > 8192 || height > 8192)
            return usageError(QStringLiteral("--size takes WxH, each 16 to 8192 pixels"));
    }
    std::vector<qint64> selections;
    for (const QString& text : cli.values(QStringLiteral("select"))) {
        qint64 record = 0;
        if (!readId(text, &record)) return usageError(QStringLiteral("--select takes a cutting-plane record id"));
        selections.push_back(record);
    }

    QString error;
    BXQDataSession session;
    if (!session.openProject(cli.value(QStringLiteral("project")), false, &error)) return dataError(error);
    if (!session.openCatalogue(&error)) return dataError(error);
    session.registerRepository();
    VMPViewerManager viewer;
    BXQModelScene scene(session.project(), &viewer);
    BXQProgressLine progress(QStringLiteral("building members"));
    if (!scene.build(&error, [&progress](int done, int total) { return progress.show(done, total); }))
        return dataError(QStringLiteral("%1: %2").arg(session.projectPath(), error));
    progress.finish();
    scene.clearSelection();
    for (qint64 record : selections) scene.planes().ToggleSelection(record, true);

    if (cli.isSet(QStringLiteral("png"))) {
        QImage image;
        if (!renderOffscreen(viewer.getSceneRoot(), view, width, height, &image, &error))
            return dataError(QStringLiteral("cannot render %1: %2").arg(session.projectPath(), error));
        const QString file = cli.value(QStringLiteral("png"));
        if (!image.save(file, "PNG")) return dataError(QStringLiteral("cannot write %1").arg(file));
    }
    if (cli.isSet(QStringLiteral("json"))) print(nodesJson(scene.planes()));
    else if (!cli.isSet(QStringLiteral("png")))
        print(QStringLiteral("%1 members, %2 cutting planes, %3 shared solids\n")
                  .arg(scene.memberCount())
                  .arg(scene.planes().DisplayedRecords().size())
                  .arg(scene.tessellationCount())
                  .toUtf8());
    return 0;
}

}  // namespace bxq
