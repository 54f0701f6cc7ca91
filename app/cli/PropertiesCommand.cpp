// bxq properties: every figure of a steel table for section specifications or outline texts,
// one row per section, as a table, CSV or one JSON object per line, in mm or in the cm units of
// the published tables.
#include "app/cli/BXQCommand.h"
#include "app/cli/BXQProgressLine.h"
#include "app/BXQDataSession.h"

#include "section_geometry/SKRSectionFigures.h"
#include "section_geometry/SKRSpecificationOutline.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>
#include <vector>

namespace bxq {
namespace {

// A column: its key, the power of length it carries (0 for mass per metre and the angle, whose
// units do not change) and its value.
struct Column {
    const char* key;
    int power;
};

const Column kColumns[] = {
    {"A", 2},       {"perimeter", 1}, {"outerPerimeter", 1}, {"massPerMetre", 0}, {"xc", 1},  {"yc", 1},
    {"Ix", 4},      {"Iy", 4},        {"Ixy", 4},            {"I1", 4},           {"I2", 4},  {"alpha", 0},
    {"rx", 1},      {"ry", 1},        {"Wx", 3},             {"Wy", 3},           {"WxTop", 3}, {"WxBottom", 3},
    {"WyLeft", 3},  {"WyRight", 3},   {"Zx", 3},             {"Zy", 3},           {"J", 4},   {"Iw", 6},
    {"xs", 1},      {"ys", 1},        {"Asx", 2},            {"Asy", 2},
};
constexpr int kColumnCount = sizeof(kColumns) / sizeof(kColumns[0]);

std::vector<double> values(const skr::geometry::SKRSectionFigures& f) {
    const skr::geometry::SKRExactFigures& e = f.exact;
    const skr::geometry::SKRWarpingFigures& w = f.warping;
    return {e.area,  e.perimeter, e.outerPerimeter, e.massPerMetre, e.xc,      e.yc,       e.ix,      e.iy,
            e.ixy,   e.i1,        e.i2,             e.alpha,        e.rx,      e.ry,       e.wx(),    e.wy(),
            e.wxTop, e.wxBottom,  e.wyLeft,         e.wyRight,      e.zx,      e.zy,       w.j,       w.iw,
            w.xs,    w.ys,        w.asx,            w.asy};
}

// Ten significant digits, and what is rounding noise beside the section's size as 0.
double tidy(double value, double noise) { return std::fabs(value) <= noise ? 0.0 : value; }

QString figure(double value) { return QString::number(value, 'g', 10); }

QString csvField(const QString& text) {
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')) && !text.contains(QLatin1Char('\n')))
        return text;
    QString quoted = text;
    quoted.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

enum class Format { Table, Csv, Json };

QByteArray header(Format format, bool cm) {
    if (format == Format::Json) return {};
    QStringList keys{QStringLiteral("section")};
    for (const Column& c : kColumns) keys << QLatin1String(c.key);
    if (format == Format::Csv) return keys.join(QLatin1Char(',')).toUtf8() + '\n';
    QString line = QStringLiteral("%1").arg(keys.first(), -24);
    for (int i = 1; i < keys.size(); ++i) line += QStringLiteral(" %1").arg(keys[i], 14);
    return line.toUtf8() + QByteArrayLiteral("\n") + (cm ? "# units: cm, cm2, cm3, cm4, cm6, kg/m, degrees\n"
                                                        : "# units: mm, mm2, mm3, mm4, mm6, kg/m, degrees\n");
}

QByteArray row(Format format, const QString& section, const skr::geometry::SKRSectionFigures& f, bool cm) {
    const std::vector<double> raw = values(f);
    // Rounding noise: figures of the size of the section's own round-off (a product of inertia
    // or a shear centre that symmetry makes zero).
    const double size = std::sqrt(f.exact.area);
    std::vector<double> v(kColumnCount);
    for (int i = 0; i < kColumnCount; ++i) {
        const int power = kColumns[i].power;
        const double noise = power == 0 ? 0.0 : 1e-9 * std::pow(size, power);
        const double scale = cm ? std::pow(10.0, -power) : 1.0;
        v[i] = tidy(raw[i], noise) * scale;
    }
    if (format == Format::Json) {
        // Written by hand to keep the keys in table order (a JSON object of Qt sorts them).
        const QByteArray name = QJsonDocument(QJsonArray{section}).toJson(QJsonDocument::Compact);
        QByteArray line = "{\"section\":" + name.mid(1, name.size() - 2);
        for (int i = 0; i < kColumnCount; ++i)
            line += ",\"" + QByteArray(kColumns[i].key) + "\":" + shortestNumber(v[i]).toUtf8();
        return line + "}\n";
    }
    if (format == Format::Csv) {
        QString line = csvField(section);
        for (double value : v) line += QLatin1Char(',') + figure(value);
        return line.toUtf8() + '\n';
    }
    QString line = QStringLiteral("%1").arg(section, -24);
    for (double value : v) line += QStringLiteral(" %1").arg(QString::number(value, 'g', 7), 14);
    return line.toUtf8() + '\n';
}

}  // namespace

int runProperties(const QStringList& arguments) {
    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral(
        "Section properties of steel tables: area, perimeters, mass, moments, principal axes, radii, elastic and "
        "plastic moduli (exact), torsion and warping constants, shear centre and shear areas (finite elements)."));
    cli.addOption({QStringLiteral("json"), QStringLiteral("One JSON object per section, one per line.")});
    cli.addOption({QStringLiteral("csv"), QStringLiteral("Comma-separated values with a header line.")});
    cli.addOption({QStringLiteral("units"), QStringLiteral("mm (default) or cm (cm2, cm3, cm4, cm6 as steel tables)."),
                   QStringLiteral("UNITS"), QStringLiteral("mm")});
    cli.addOption({QStringLiteral("outline"), QStringLiteral("An outline text (\"x,y,value,kind;...|||...\") instead of a "
                                                             "specification; may be repeated."),
                   QStringLiteral("TEXT")});
    cli.addPositionalArgument(QStringLiteral("spec"),
                              QStringLiteral("Section specifications (I20a, HN400*200*8*13, ...); - reads them from "
                                             "standard input, one a line."),
                              QStringLiteral("SPEC..."));
    if (!parseArguments(cli, arguments)) return kUsageError;
    const QString units = cli.value(QStringLiteral("units"));
    if (units != QLatin1String("mm") && units != QLatin1String("cm"))
        return usageError(QStringLiteral("--units takes mm or cm, not '%1'").arg(units));
    if (cli.isSet(QStringLiteral("json")) && cli.isSet(QStringLiteral("csv")))
        return usageError(QStringLiteral("properties takes --json or --csv, not both"));
    const QStringList specs = cli.positionalArguments();
    const QStringList outlines = cli.values(QStringLiteral("outline"));
    if (specs.isEmpty() && outlines.isEmpty())
        return usageError(QStringLiteral("properties takes section specifications or --outline TEXT"));
    const Format format = cli.isSet(QStringLiteral("json")) ? Format::Json
                          : cli.isSet(QStringLiteral("csv")) ? Format::Csv
                                                              : Format::Table;
    const bool cm = units == QLatin1String("cm");

    BXQDataSession session;
    if (!specs.isEmpty()) {
        QString error;
        if (!session.openCatalogue(&error)) return dataError(error);
        session.registerRepository();
    }
    print(header(format, cm));
    bool failed = false;
    auto report = [&](const QString& section, const QString& outline) {
        QString error;
        skr::geometry::SKRSectionFigures figures;
        if (!skr::geometry::SectionFigures(outline, figures, &error)) {
            warn(QStringLiteral("%1: %2").arg(section, error));
            failed = true;
            return;
        }
        if (!figures.warping.converged)
            warn(QStringLiteral("%1: J, Iw, the shear centre and the shear areas did not settle to 0.5 % (last mesh "
                                "%2 mm, %3 elements)")
                     .arg(section)
                     .arg(figures.warping.meshSize, 0, 'g', 3)
                     .arg(figures.warping.elements));
        print(row(format, section, figures, cm));
    };
    for (const QString& outline : outlines) report(outline, outline);

    // Specifications (with those read from standard input) are counted first, so that a long list
    // shows how far it has got.
    QStringList texts;
    forEachInput(specs, [&](const QString& text) {
        if (!text.trimmed().isEmpty()) texts << text.trimmed();
    });
    BXQProgressLine progress(QStringLiteral("properties"));
    for (int i = 0; i < texts.size(); ++i) {
        progress.show(i, texts.size());
        QString outline;
        QString error;
        QString note;
        if (!skr::geometry::specificationOutline(texts[i], outline, &error, &note)) {
            // The reason names the text already when it quotes it.
            warn(error.contains(texts[i]) ? error : QStringLiteral("%1: %2").arg(texts[i], error));
            failed = true;
            continue;
        }
        if (!note.isEmpty()) warn(QStringLiteral("%1: %2").arg(texts[i], note));
        report(texts[i], outline);
    }
    progress.finish();
    return failed ? kDataError : 0;
}

}  // namespace bxq
