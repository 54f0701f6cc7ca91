// Fuzz target: a damaged database file (mutated from the shipped catalogue, the plate table and
// a project) opened as the verbs open them: read-only as a catalogue, every row of every table
// read field by field, the catalogue rows through their provider; and read-write as a project.
// A damaged file may be refused or fail a read with an error; it may never crash or hang.
#include "tests/fuzz/FuzzTarget.h"

#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SKRHotRollingSection.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPPolygon.h"
#include "ndp/NDPRef.h"
#include "vmp/VMPProjectModel.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <exception>

namespace {

void readEveryRow(ndp::CDatabase& database) {
    for (const std::wstring& name : database.GetTableNames()) {
        ndp::CDBTable* table = database.GetTable(name);
        ndp::CFileAddressList rows;
        if (!table || !table->ListAll(rows)) continue;
        for (int i = 0; i < rows.GetCount(); ++i) {
            const ndp::CRef<ndp::CDBRecord> record(table->GetRecord(rows.GetItem(i)));
            if (!record) continue;
            for (int f = 0; f < record->GetFieldCount(); ++f) {
                record->GetString(f);
                record->GetDouble(f);
                record->GetCoord3(f);
                ndp::CPolygon polygon;
                record->GetPolygon(f, polygon);
            }
        }
    }
    if (ndp::CDBTable* catalogue = database.GetTable(L"SectionPolyInfor")) {
        try {
            skr::section::SKRHotRollingSectionDBProvider provider(catalogue);
            provider.listAll();
        } catch (const std::exception&) {
            // a refused read is an answer
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("fuzz.KDB"));
    QFile::remove(path);
    QFile::remove(path + QStringLiteral("-journal"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return 0;
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    {
        ndp::CDatabase database;
        if (database.Open(path, true)) readEveryRow(database);
    }
    VMPProjectModel project;
    if (project.open(path)) readEveryRow(*project.getProjectDB());
    return 0;
}
