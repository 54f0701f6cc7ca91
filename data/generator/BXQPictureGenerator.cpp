// bxq-picgen: draws the section dialog's pictures from the section sources in data/sections: one
// dimensioned drawing per section type (its default values, the parameter codes written where
// they act), its thumbnail for the type list (the shape alone, under "thumbs/") and
// "ShowNormCode.jpg", the table of type codes; writes the resource file listing them under
// ":/images/SKRSectionPoly/".
//
//   bxq-picgen SOURCE_DIR OUTPUT_DIR QRC_FILE
#include "CsvTable.h"

#include "section_geometry/SKRSectionPainter.h"

#include <QDir>
#include <QFile>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <QSaveFile>
#include <QTextStream>
#include <QTranslator>

#include <cstdio>

using bxq::data::CsvTable;

namespace {

constexpr int kPictureSize = 240;
// The icon size of the dialog's type list.
constexpr int kThumbnailSize = 72;

struct TypeRow {
    int polyId;
    QString name, picture, example, codes;
    QStringList paramCodes;
    QMap<QString, double> defaults;
};

bool fail(const QString& message) {
    std::fprintf(stderr, "bxq-picgen: %s\n", qPrintable(message));
    return false;
}

// The types with their parameters at their defaults (the first sub-class listed for each).
bool readTypes(const QString& sourceDir, QVector<TypeRow>& types) {
    CsvTable typeCsv, paramCsv;
    QString error;
    if (!typeCsv.load(sourceDir + "/sections/section_types.csv", &error) ||
        !paramCsv.load(sourceDir + "/sections/section_params.csv", &error))
        return fail(error);
    for (const char* column : {"PolyID", "PolyName", "PolyPicName", "Example", "Codes"})
        if (typeCsv.column(column) < 0) return fail(typeCsv.path() + ": no column " + column);
    for (const char* column : {"PolyID", "SubClassID", "ParamCode", "DefVal"})
        if (paramCsv.column(column) < 0) return fail(paramCsv.path() + ": no column " + column);
    for (int row = 0; row < typeCsv.rowCount(); ++row) {
        auto cell = [&](const char* column) { return typeCsv.cell(row, typeCsv.column(column)).trimmed(); };
        types.push_back({cell("PolyID").toInt(), cell("PolyName"), cell("PolyPicName"), cell("Example"), cell("Codes"),
                         {}, {}});
    }
    QMap<int, QString> firstSubClass;
    for (int row = 0; row < paramCsv.rowCount(); ++row) {
        auto cell = [&](const char* column) { return paramCsv.cell(row, paramCsv.column(column)).trimmed(); };
        const int polyId = cell("PolyID").toInt();
        if (!firstSubClass.contains(polyId)) firstSubClass.insert(polyId, cell("SubClassID"));
        if (firstSubClass.value(polyId) != cell("SubClassID")) continue;
        for (TypeRow& type : types) {
            if (type.polyId != polyId) continue;
            bool ok = false;
            const double value = cell("DefVal").toDouble(&ok);
            if (!ok) return fail(paramCsv.where(row) + ": DefVal is no number");
            type.paramCodes << cell("ParamCode");
            type.defaults.insert(cell("ParamCode"), value);
        }
    }
    return true;
}

bool save(const QImage& image, const QString& path, const char* format, int quality) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !image.save(&file, format, quality) || !file.commit())
        return fail("cannot write " + path);
    return true;
}

// The table of type codes: code, section type, an example; one row per section type. Its texts
// go through the library's translation (the type names as the dialog shows them), so that the
// same function draws the table in every language.
QImage codeTable(const QVector<TypeRow>& types) {
    const auto header = [](const char* text) { return QCoreApplication::translate("SKRSectionPolyDlg", text); };
    const auto name = [](const QString& text) {
        return QCoreApplication::translate("SKRSectionPolyDB", text.toUtf8().constData());
    };
    QFont font;
    font.setPixelSize(14);
    const QFontMetrics metrics(font);
    const int rowHeight = metrics.height() + 10;
    const QStringList titles = {header("型钢代号"), header("截面类型"), header("规格示例")};
    int widths[3] = {0, 0, 0};
    auto widen = [&](const QStringList& cells) {
        for (int i = 0; i < 3; ++i) widths[i] = std::max(widths[i], metrics.horizontalAdvance(cells[i]) + 24);
    };
    widen(titles);
    for (const TypeRow& type : types) widen({type.codes, name(type.name), type.example});
    const int width = widths[0] + widths[1] + widths[2] + 1;
    QImage image(width, rowHeight * (types.size() + 1) + 1, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(font);
    auto drawRow = [&](int row, const QStringList& cells) {
        int x = 0;
        for (int i = 0; i < 3; ++i) {
            const QRect cell(x, row * rowHeight, widths[i], rowHeight);
            painter.drawRect(cell);
            painter.drawText(cell, Qt::AlignCenter, cells[i]);
            x += widths[i];
        }
    };
    painter.fillRect(QRect(0, 0, width, rowHeight), QColor(0xdd, 0xe6, 0xf0));
    drawRow(0, titles);
    for (int i = 0; i < types.size(); ++i) drawRow(i + 1, {types[i].codes, name(types[i].name), types[i].example});
    return image;
}

bool writeQrc(const QString& path, const QStringList& files) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return fail("cannot write " + path);
    QTextStream out(&file);
    out << "<RCC><qresource prefix=\"/images/SKRSectionPoly\">\n";
    for (const QString& name : files) out << "  <file alias=\"" << name << "\">" << name << "</file>\n";
    out << "</qresource></RCC>\n";
    out.flush();
    return file.commit() || fail("cannot write " + path);
}

}  // namespace

int main(int argc, char** argv) {
    // Pictures need fonts but no screen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 4) {
        std::fprintf(stderr, "usage: bxq-picgen SOURCE_DIR OUTPUT_DIR QRC_FILE [LANGUAGE=QM_FILE...]\n");
        return 2;
    }
    QVector<TypeRow> types;
    if (!readTypes(args[1], types)) return 1;
    const QDir out(args[2]);
    if (!QDir().mkpath(out.filePath(QStringLiteral("thumbs")))) {
        fail("cannot create " + out.path());
        return 1;
    }
    QStringList files;
    for (const TypeRow& type : types) {
        QString error;
        const QImage picture = skr::geometry::sectionDrawing(type.polyId, type.defaults, type.paramCodes,
                                                             QSize(kPictureSize, kPictureSize), &error);
        if (picture.isNull()) {
            fail(QStringLiteral("type %1: %2").arg(type.polyId).arg(error));
            return 1;
        }
        if (!save(picture, out.filePath(type.picture), "PNG", -1)) return 1;
        files << type.picture;
        const QImage thumbnail = skr::geometry::sectionThumbnail(type.polyId, type.defaults,
                                                                 QSize(kThumbnailSize, kThumbnailSize), &error);
        const QString thumbnailName = QStringLiteral("thumbs/") + type.picture;
        if (thumbnail.isNull()) {
            fail(QStringLiteral("type %1: %2").arg(type.polyId).arg(error));
            return 1;
        }
        if (!save(thumbnail, out.filePath(thumbnailName), "PNG", -1)) return 1;
        files << thumbnailName;
    }
    if (!save(codeTable(types), out.filePath("ShowNormCode.jpg"), "JPG", 92)) return 1;
    files << QStringLiteral("ShowNormCode.jpg");
    // The code table once more in each translated language: ShowNormCode_LANGUAGE.jpg.
    for (int i = 4; i < args.size(); ++i) {
        const QString language = args[i].section(QLatin1Char('='), 0, 0);
        QTranslator translator;
        if (!translator.load(args[i].section(QLatin1Char('='), 1))) {
            fail("cannot read the translation " + args[i]);
            return 1;
        }
        QCoreApplication::installTranslator(&translator);
        const QString name = QStringLiteral("ShowNormCode_%1.jpg").arg(language);
        const bool saved = save(codeTable(types), out.filePath(name), "JPG", 92);
        QCoreApplication::removeTranslator(&translator);
        if (!saved) return 1;
        files << name;
    }
    if (!writeQrc(args[3], files)) return 1;
    std::printf("bxq-picgen: %d section pictures with their thumbnails and the code table\n", static_cast<int>(types.size()));
    return 0;
}
