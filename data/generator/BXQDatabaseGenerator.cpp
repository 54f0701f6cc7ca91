// bxq-dbgen: builds the shipped databases "SKRSectionPolyDB.KDB" and "SysInfo.KDB" from the
// reviewed text sources in data/, through the platform's database engine.
//
//   bxq-dbgen SOURCE_DIR OUTPUT_DIR
//
// Each database is written to a temporary file and renamed into place only when complete, so a
// failed or interrupted run never leaves a half-written database behind.
#include "CsvTable.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPContentSeal.h"
#include "ndp/NDPDatabase.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_spec/SKRSectionTypeTable.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QSet>
#include <QVariant>

#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

using ndp::CDBField;
using ndp::EnDBFieldKind;
using bxq::data::CsvTable;

namespace {

// Parameter columns of "SectionPolyInfor" come in this order; a parameter of a future family that
// is not listed follows them in order of appearance.
const QStringList kParameterOrder = {"h", "b", "d", "t", "r", "r1", "B", "tw", "c", "D"};
const QStringList kCatalogueLeading = {"PolyID",  "SubClassID",   "StandardName", "WeightMeter",
                                       "AreaVal", "WeightSource", "AreaSource"};

class Failure {
public:
    explicit Failure(QString message) : m_message(std::move(message)) {}
    const QString& message() const { return m_message; }

private:
    QString m_message;
};

void progress(const QString& line) {
    std::fputs(qPrintable(line + QLatin1Char('\n')), stdout);
    std::fflush(stdout);
}

CsvTable load(const QString& path, const QStringList& required) {
    CsvTable table;
    QString error;
    if (!table.load(path, &error)) throw Failure(error);
    for (const QString& column : required)
        if (table.column(column) < 0)
            throw Failure(QStringLiteral("%1: no column \"%2\"").arg(QFileInfo(path).fileName(), column));
    return table;
}

int integerCell(const CsvTable& table, int row, const QString& column) {
    bool ok = false;
    const int value = table.cell(row, table.column(column)).trimmed().toInt(&ok);
    if (!ok) throw Failure(QStringLiteral("%1: %2 is not an integer").arg(table.where(row), column));
    return value;
}

// A positive finite number, or zero when allowed.
double numberCell(const CsvTable& table, int row, const QString& column, bool zeroAllowed = false) {
    bool ok = false;
    const double value = table.cell(row, table.column(column)).trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value) || value < 0 || (value == 0 && !zeroAllowed))
        throw Failure(QStringLiteral("%1: %2 is not a %3number")
                          .arg(table.where(row), column, zeroAllowed ? QString() : QStringLiteral("positive ")));
    return value;
}

QString textCell(const CsvTable& table, int row, const QString& column) {
    const QString text = table.cell(row, table.column(column)).trimmed();
    if (text.isEmpty()) throw Failure(QStringLiteral("%1: %2 is empty").arg(table.where(row), column));
    return text;
}

// A database being written to a temporary file beside its final place.
class DatabaseFile {
public:
    DatabaseFile(const QString& directory, const QString& name)
        : m_name(name), m_final(QDir(directory).filePath(name)), m_temporary(m_final + QStringLiteral(".part")) {
        QFile::remove(m_temporary);
        if (!m_db.Create(m_temporary))
            throw Failure(QStringLiteral("%1: cannot be created (%2)").arg(m_temporary, m_db.GetLastError()));
    }
    ~DatabaseFile() {
        m_db.Close();
        QFile::remove(m_temporary);
    }

    ndp::CDBTable* createTable(const QString& name, const std::vector<CDBField>& fields) {
        ndp::CDBTable* table = m_db.CreateTable(name.toStdWString(), fields);
        if (!table) throw Failure(QStringLiteral("%1: cannot create table %2 (%3)").arg(m_name, name, m_db.GetLastError()));
        return table;
    }

    // Writes one record; values in field order, each converted to its field's kind.
    void addRow(ndp::CDBTable* table, const QVariantList& values) {
        ndp::CDBRecord* record = table->CreateRecord();
        bool ok = values.size() == table->GetFieldCount();
        for (int i = 0; ok && i < values.size(); ++i) {
            switch (table->GetField(i).GetKind()) {
            case EnDBFieldKind::Int32: ok = record->SetInt(i, values[i].toInt()); break;
            case EnDBFieldKind::Double: ok = record->SetDouble(i, values[i].toDouble()); break;
            default: ok = record->SetString(i, values[i].toString().toStdWString()); break;
            }
        }
        ok = ok && table->AddRecord(record) != ndp::kNullAddress;
        record->Release();
        if (!ok)
            throw Failure(QStringLiteral("%1: cannot write a row of %2 (%3)")
                              .arg(m_name, QString::fromStdWString(table->GetName()), m_db.GetLastError()));
    }

    void commit() {
        QString error;
        if (!ndp::SealDatabase(m_db, &error)) throw Failure(error);
        if (!m_db.Flush()) throw Failure(QStringLiteral("%1: cannot be written (%2)").arg(m_name, m_db.GetLastError()));
        m_db.Close();
        QFile::remove(m_final);
        if (!QFile::rename(m_temporary, m_final))
            throw Failure(QStringLiteral("%1: cannot be moved into place").arg(m_final));
    }

private:
    QString m_name;
    QString m_final;
    QString m_temporary;
    ndp::CDatabase m_db;
};

class Generator {
public:
    Generator(const QString& source, const QString& output) : m_source(source), m_output(output) {}

    void run() {
        if (!QDir().mkpath(m_output)) throw Failure(QStringLiteral("%1: cannot be created").arg(m_output));
        writeSectionDatabase();
        writeSystemDatabase();
    }

private:
    QString sourcePath(const QString& relative) const { return QDir(m_source).filePath(relative); }

    void writeSectionDatabase() {
        DatabaseFile db(m_output, QStringLiteral("SKRSectionPolyDB.KDB"));
        writeGroups(db);
        const QMap<int, QMap<QString, double>> defaults = writeParameters(db);
        writeTypes(db, defaults);
        writeBallTypes(db);
        writeCatalogue(db);
        db.commit();
    }

    void writeGroups(DatabaseFile& db) {
        const CsvTable csv = load(sourcePath("sections/section_groups.csv"), {"GroupID", "GroupName"});
        ndp::CDBTable* table = db.createTable("SectionPolyGroup", {{L"GroupID", EnDBFieldKind::Int32, true},
                                                                    {L"GroupName", EnDBFieldKind::Text}});
        for (int row = 0; row < csv.rowCount(); ++row)
            db.addRow(table, {integerCell(csv, row, "GroupID"), textCell(csv, row, "GroupName")});
        progress(QStringLiteral("SKRSectionPolyDB.KDB: SectionPolyGroup, %1 rows").arg(csv.rowCount()));
    }

    // The parameter rows; returns the default values of every section type for its outline.
    QMap<int, QMap<QString, double>> writeParameters(DatabaseFile& db) {
        const CsvTable csv = load(sourcePath("sections/section_params.csv"),
                                  {"PolyID", "SubClassID", "ParamID", "ParamCode", "DataType", "EditorPtX",
                                   "EditorPtY", "DefVal", "Min", "Max"});
        ndp::CDBTable* table = db.createTable(
            "SectionPolyParam",
            {{L"PolyID", EnDBFieldKind::Int32, true}, {L"SubClassID", EnDBFieldKind::Int32},
             {L"ParamID", EnDBFieldKind::Int32},      {L"ParamCode", EnDBFieldKind::Text},
             {L"DataType", EnDBFieldKind::Int32},     {L"EditorPtX", EnDBFieldKind::Int32},
             {L"EditorPtY", EnDBFieldKind::Int32},    {L"DefVal", EnDBFieldKind::Text},
             {L"Unit", EnDBFieldKind::Text},          {L"ValidExpr", EnDBFieldKind::Text},
             {L"InvalidMsg", EnDBFieldKind::Text}});
        QMap<int, QMap<QString, double>> defaults;
        for (int row = 0; row < csv.rowCount(); ++row) {
            const int polyId = integerCell(csv, row, "PolyID");
            const QString code = textCell(csv, row, "ParamCode");
            const double value = numberCell(csv, row, "DefVal");
            const double min = numberCell(csv, row, "Min", true);
            const double max = numberCell(csv, row, "Max");
            if (min > value || value > max)
                throw Failure(QStringLiteral("%1: the default of %2 lies outside its range").arg(csv.where(row), code));
            if (defaults[polyId].contains(code))
                throw Failure(QStringLiteral("%1: parameter %2 is listed twice").arg(csv.where(row), code));
            defaults[polyId][code] = value;
            const QString minText = csv.cell(row, csv.column("Min")).trimmed();
            const QString maxText = csv.cell(row, csv.column("Max")).trimmed();
            db.addRow(table, {polyId, integerCell(csv, row, "SubClassID"), integerCell(csv, row, "ParamID"), code,
                              integerCell(csv, row, "DataType"), integerCell(csv, row, "EditorPtX"),
                              integerCell(csv, row, "EditorPtY"), textCell(csv, row, "DefVal"), QStringLiteral("mm"),
                              QStringLiteral("(%1 >= %2) And ( %1 <=%3)").arg(QStringLiteral("%1"), minText, maxText),
                              QStringLiteral("%1的取值范围为%2~%3mm").arg(code, minText, maxText)});
        }
        progress(QStringLiteral("SKRSectionPolyDB.KDB: SectionPolyParam, %1 rows").arg(csv.rowCount()));
        return defaults;
    }

    void writeTypes(DatabaseFile& db, const QMap<int, QMap<QString, double>>& defaults) {
        const CsvTable csv = load(sourcePath("sections/section_types.csv"),
                                  {"PolyID", "GroupID", "PolyName", "PolyFileName", "PolyPicName", "InsPointX",
                                   "InsPointY", "Example"});
        ndp::CDBTable* table = db.createTable(
            "SectionPoly",
            {{L"PolyID", EnDBFieldKind::Int32, true}, {L"GroupID", EnDBFieldKind::Int32},
             {L"PolyName", EnDBFieldKind::Text},      {L"PolyFileName", EnDBFieldKind::Text},
             {L"SectionPoly", EnDBFieldKind::Text},   {L"InsPointX", EnDBFieldKind::Text},
             {L"InsPointY", EnDBFieldKind::Text},     {L"HintMsg", EnDBFieldKind::Text},
             {L"PolyPicName", EnDBFieldKind::Text}});
        for (int row = 0; row < csv.rowCount(); ++row) {
            const int polyId = integerCell(csv, row, "PolyID");
            if (!defaults.contains(polyId))
                throw Failure(QStringLiteral("%1: section type %2 has no parameters").arg(csv.where(row)).arg(polyId));
            // The sources describe the types of the section-type table, with its groups and codes.
            const skr::section::SKRSectionTypeDescriptor* type = skr::section::sectionTypeDescriptor(polyId);
            if (!type)
                throw Failure(QStringLiteral("%1: section type %2 is not a type of the section model").arg(csv.where(row)).arg(polyId));
            if (integerCell(csv, row, "GroupID") != type->group)
                throw Failure(QStringLiteral("%1: section type %2 belongs to group %3").arg(csv.where(row)).arg(polyId).arg(type->group));
            const QStringList codes = skr::section::sectionTypeParamCodes(polyId);
            const QStringList listed = defaults[polyId].keys();
            if (QSet<QString>(codes.begin(), codes.end()) != QSet<QString>(listed.begin(), listed.end()))
                throw Failure(QStringLiteral("section_params.csv: section type %1 has parameters %2, the section model %3")
                                  .arg(polyId)
                                  .arg(listed.join(QLatin1Char(',')), codes.join(QLatin1Char(','))));
            QString outline;
            QString reason;
            if (!skr::geometry::sectionOutlineText(polyId, defaults[polyId], outline, &reason))
                throw Failure(QStringLiteral("%1: %2").arg(csv.where(row), reason));
            db.addRow(table, {polyId, integerCell(csv, row, "GroupID"), textCell(csv, row, "PolyName"),
                              textCell(csv, row, "PolyFileName"), outline, textCell(csv, row, "InsPointX"),
                              textCell(csv, row, "InsPointY"),
                              QStringLiteral("规格示例：%1").arg(textCell(csv, row, "Example")),
                              textCell(csv, row, "PolyPicName")});
        }
        for (auto it = defaults.constBegin(); it != defaults.constEnd(); ++it) {
            bool listed = false;
            for (int row = 0; row < csv.rowCount() && !listed; ++row) listed = integerCell(csv, row, "PolyID") == it.key();
            if (!listed) throw Failure(QStringLiteral("section_params.csv: section type %1 is not in section_types.csv").arg(it.key()));
        }
        for (const skr::section::SKRSectionTypeDescriptor& type : skr::section::sectionTypeTable())
            if (!defaults.contains(type.type))
                throw Failure(QStringLiteral("section_types.csv: section type %1 of the section model is missing").arg(type.type));
        progress(QStringLiteral("SKRSectionPolyDB.KDB: SectionPoly, %1 rows").arg(csv.rowCount()));
    }

    void writeBallTypes(DatabaseFile& db) {
        const CsvTable csv = load(sourcePath("sections/ball_types.csv"),
                                  {"BallID", "PolyID", "RibFlag", "TypeName", "Expression", "CodeMsg"});
        ndp::CDBTable* table = db.createTable(
            "SectionBallType",
            {{L"BallID", EnDBFieldKind::Int32, true}, {L"PolyID", EnDBFieldKind::Int32, true},
             {L"RibFlag", EnDBFieldKind::Int32},      {L"TypeName", EnDBFieldKind::Text},
             {L"Expression", EnDBFieldKind::Text},    {L"CodeMsg", EnDBFieldKind::Text}});
        for (int row = 0; row < csv.rowCount(); ++row)
            db.addRow(table, {integerCell(csv, row, "BallID"), integerCell(csv, row, "PolyID"),
                              integerCell(csv, row, "RibFlag"), textCell(csv, row, "TypeName"),
                              textCell(csv, row, "Expression"), textCell(csv, row, "CodeMsg")});
        progress(QStringLiteral("SKRSectionPolyDB.KDB: SectionBallType, %1 rows").arg(csv.rowCount()));
    }

    // Every section file of catalogue/: the ones whose header starts like a catalogue row.
    QVector<CsvTable> catalogueFiles() const {
        QVector<CsvTable> files;
        const QDir dir(sourcePath("catalogue"));
        for (const QString& name : dir.entryList({"*.csv"}, QDir::Files, QDir::Name)) {
            CsvTable csv = load(dir.filePath(name), {});
            if (csv.header().mid(0, kCatalogueLeading.size()) != kCatalogueLeading) {
                if (csv.column("PolyID") >= 0)
                    throw Failure(QStringLiteral("%1: the leading columns must be %2").arg(name, kCatalogueLeading.join(',')));
                continue;
            }
            files << csv;
        }
        if (files.isEmpty()) throw Failure(QStringLiteral("%1: no catalogue files").arg(dir.path()));
        return files;
    }

    void writeCatalogue(DatabaseFile& db) {
        const QVector<CsvTable> files = catalogueFiles();
        QStringList parameters = kParameterOrder;
        QSet<QString> used;
        for (const CsvTable& csv : files)
            for (const QString& name : csv.header().mid(kCatalogueLeading.size())) {
                used << name;
                if (!parameters.contains(name)) parameters << name;
            }
        parameters.erase(std::remove_if(parameters.begin(), parameters.end(),
                                        [&used](const QString& name) { return !used.contains(name); }),
                         parameters.end());

        std::vector<CDBField> fields{{L"PolyID", EnDBFieldKind::Int32, true},
                                     {L"SubClassID", EnDBFieldKind::Int32, true},
                                     {L"StandardName", EnDBFieldKind::Text, true},
                                     {L"WeightMeter", EnDBFieldKind::Double},
                                     {L"AreaVal", EnDBFieldKind::Double}};
        for (const QString& name : parameters) fields.emplace_back(name.toStdWString(), EnDBFieldKind::Text);
        ndp::CDBTable* table = db.createTable("SectionPolyInfor", fields);

        QSet<QString> names;
        QStringList counts;
        int total = 0;
        for (const CsvTable& csv : files) {
            for (int row = 0; row < csv.rowCount(); ++row) {
                const QString name = textCell(csv, row, "StandardName");
                if (names.contains(name)) throw Failure(QStringLiteral("%1: %2 is listed twice").arg(csv.where(row), name));
                names << name;
                for (const QString& source : {QStringLiteral("WeightSource"), QStringLiteral("AreaSource")}) {
                    const QString mark = textCell(csv, row, source);
                    if (mark != QLatin1String("published") && mark != QLatin1String("computed"))
                        throw Failure(QStringLiteral("%1: %2 must be published or computed").arg(csv.where(row), source));
                }
                QVariantList values{integerCell(csv, row, "PolyID"), integerCell(csv, row, "SubClassID"), name,
                                    numberCell(csv, row, "WeightMeter"), numberCell(csv, row, "AreaVal")};
                for (const QString& parameter : parameters) {
                    if (csv.column(parameter) < 0) {
                        values << QStringLiteral("0");
                        continue;
                    }
                    numberCell(csv, row, parameter);
                    values << csv.cell(row, csv.column(parameter)).trimmed();
                }
                db.addRow(table, values);
            }
            counts << QStringLiteral("%1 %2").arg(QFileInfo(csv.path()).fileName()).arg(csv.rowCount());
            total += csv.rowCount();
        }
        progress(QStringLiteral("SKRSectionPolyDB.KDB: SectionPolyInfor, %1 rows (%2)").arg(total).arg(counts.join(", ")));
    }

    void writeSystemDatabase() {
        DatabaseFile db(m_output, QStringLiteral("SysInfo.KDB"));
        const CsvTable csv = load(sourcePath("catalogue/face_steel.csv"), {"Class", "Thickness", "Weight"});
        ndp::CDBTable* table = db.createTable("FaceSteelInfo", {{L"Class", EnDBFieldKind::Int32, true},
                                                                 {L"Thickness", EnDBFieldKind::Double},
                                                                 {L"Weight", EnDBFieldKind::Double}});
        for (int row = 0; row < csv.rowCount(); ++row)
            db.addRow(table, {integerCell(csv, row, "Class"), numberCell(csv, row, "Thickness"),
                              numberCell(csv, row, "Weight")});
        db.commit();
        progress(QStringLiteral("SysInfo.KDB: FaceSteelInfo, %1 rows").arg(csv.rowCount()));
    }

    QString m_source;
    QString m_output;
};

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("usage: bxq-dbgen SOURCE_DIR OUTPUT_DIR\n", stderr);
        return 2;
    }
    try {
        Generator(arguments[1], arguments[2]).run();
    } catch (const Failure& failure) {
        std::fprintf(stderr, "bxq-dbgen: %s\n", qPrintable(failure.message()));
        return 1;
    }
    return 0;
}
