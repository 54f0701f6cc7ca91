// STL and STEP export of bodies through OpenCASCADE's writers.
#include "ndp/NDPBodyExport.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPBodyOcct.h"
#include "ndp/NDPMeshParameter.h"

#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepTools.hxx>
#include <IFSelect_ReturnStatus.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Message_Printer.hxx>
#include <STEPControl_Writer.hxx>
#include <Standard_Failure.hxx>
#include <StlAPI_Writer.hxx>

#include <QFile>
#include <QString>

#include <utility>
#include <vector>

namespace ndp {
namespace {

bool fail(QString* error, const QString& text) {
    if (error) *error = text;
    return false;
}

// The STEP writer reports its transfer statistics on the default messenger; they would go to the
// host's console. While one of these lives, only failures are printed.
class QuietMessenger {
public:
    QuietMessenger() {
        for (Message_SequenceOfPrinters::Iterator it(Message::DefaultMessenger()->Printers()); it.More(); it.Next()) {
            m_saved.emplace_back(it.Value(), it.Value()->GetTraceLevel());
            it.Value()->SetTraceLevel(Message_Fail);
        }
    }
    ~QuietMessenger() {
        for (const auto& saved : m_saved) saved.first->SetTraceLevel(saved.second);
    }
    QuietMessenger(const QuietMessenger&) = delete;
    QuietMessenger& operator=(const QuietMessenger&) = delete;

private:
    std::vector<std::pair<Handle(Message_Printer), Message_Gravity>> m_saved;
};

}  // namespace

bool ExportBodyStl(const CBody* body, const QString& path, const CMeshParameter& parameter, bool ascii, QString* error) {
    if (!body || CBodyOcct::Shape(*body).IsNull()) return fail(error, QStringLiteral("there is no body to write"));
    if (!parameter.IsValid()) return fail(error, QStringLiteral("the mesh parameter is not valid"));
    const TopoDS_Shape& shape = CBodyOcct::Shape(*body);
    try {
        BRepTools::Clean(shape);
        BRepMesh_IncrementalMesh mesher(shape, parameter.GetLinearDeflection(), parameter.IsRelative() ? Standard_True : Standard_False,
                                        parameter.GetAngularDeflection(), Standard_False);
        if (!mesher.IsDone()) return fail(error, QStringLiteral("the mesher could not tessellate the body"));
        StlAPI_Writer writer;
        writer.ASCIIMode() = ascii ? Standard_True : Standard_False;
        if (!writer.Write(shape, QFile::encodeName(path).constData()))
            return fail(error, QStringLiteral("cannot write %1").arg(path));
        return true;
    } catch (const Standard_Failure& failure) {
        return fail(error, QStringLiteral("STL export failed: ") + QString::fromUtf8(failure.GetMessageString()));
    }
}

bool ExportBodyStep(const CBody* body, const QString& path, QString* error) {
    if (!body || CBodyOcct::Shape(*body).IsNull()) return fail(error, QStringLiteral("there is no body to write"));
    try {
        const QuietMessenger quiet;
        STEPControl_Writer writer;
        if (writer.Transfer(CBodyOcct::Shape(*body), STEPControl_AsIs) != IFSelect_RetDone)
            return fail(error, QStringLiteral("the STEP writer refused the body"));
        if (writer.Write(QFile::encodeName(path).constData()) != IFSelect_RetDone)
            return fail(error, QStringLiteral("cannot write %1").arg(path));
        return true;
    } catch (const Standard_Failure& failure) {
        return fail(error, QStringLiteral("STEP export failed: ") + QString::fromUtf8(failure.GetMessageString()));
    }
}

}  // namespace ndp
