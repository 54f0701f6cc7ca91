// WeldSectionNormParser: the welded and ball norm table, compiled once per process.
#include "section_spec/WeldSectionNormParser.h"

#include <QHash>

namespace skr {
namespace section {
namespace {

QStringList tokens(const char* commaSeparated) {
    return QString::fromUtf8(commaSeparated).split(QLatin1Char(','));
}

SectionNormEntry norm(const char* key, EnSKRSectionType type, const char* params, QStringList rules,
                      std::initializer_list<const char*> formats,
                      QVector<QPair<QString, QString>> completions = {}) {
    SectionNormEntry entry;
    entry.key = QString::fromUtf8(key);
    entry.sectionType = type;
    entry.paramNames = tokens(params);
    entry.rules = std::move(rules);
    for (const char* format : formats) entry.formats.append(tokens(format));
    entry.completions = std::move(completions);
    return entry;
}

QPair<QString, QString> takes(const char* missing, const char* source) {
    return {QString::fromLatin1(missing), QString::fromLatin1(source)};
}

QSharedPointer<const SectionNormTable> sharedWeldedTable() {
    static const QSharedPointer<const SectionNormTable> table =
        QSharedPointer<const SectionNormTable>::create(WeldSectionNormParser::weldedNorms());
    return table;
}

}  // namespace

QVector<SectionNormEntry> WeldSectionNormParser::weldedNorms() {
    // "+H" and ")*" are single literal tokens; the tapered H is the only form with brackets.
    return {
        norm("H", stWeldedH, "h,b,t1,t2,tw", {"h>2*t2", "h>2*t1", "b>tw"},
             {"H,h,*,b,*,tw,*,t1", "H,h,*,b,*,tw,*,t1,*,t2"}, {takes("t2", "t1")}),
        norm("H", stWeldedHUnequal, "h,b1,b2,t1,t2,tw", {"h>2*t2", "h>2*t1", "b2>tw", "b1>tw"},
             {"H,h,*,b1,/,b2,*,tw,*,t1", "H,h,*,b1,/,b2,*,tw,*,t1,*,t2"}, {takes("t2", "t1")}),
        norm("B", stWeldedBox, "b1,b2,t1,t2", {"b2>2*t1", "b1>2*t2"},
             {"B,b1,*,t1,*,t2", "B,b1,*,b2,*,t1,*,t2"}, {takes("b2", "b1")}),
        norm("HD", stWeldedPipe, "d,t", {"d>2*t"}, {"HD,d,*,t"}),
        norm("H", stWeldedCross, "h1,h2,b1,b2,t1,t2,t3,t4,tw1,tw2",
             {"h1>2*t1", "h1>2*t2", "h2>2*t3", "h2>2*t4", "b1>tw1", "b2>tw2", "t3<(h2/2-b1/2)",
              "t4<(h2/2-b1/2)", "t1<(h1/2-b2/2)", "t2<(h1/2-b2/2)", "h2>b1", "h1>b2"},
             {"H,h1,*,b1,*,tw1,*,t1,+H,h2,*,b2,*,tw2,*,t3",
              "H,h1,*,b1,*,tw1,*,t1,*,t2,+H,h2,*,b2,*,tw2,*,t3",
              "H,h1,*,b1,*,tw1,*,t1,+H,h2,*,b2,*,tw2,*,t3,*,t4",
              "H,h1,*,b1,*,tw1,*,t1,*,t2,+H,h2,*,b2,*,tw2,*,t3,*,t4"},
             {takes("t2", "t1"), takes("t4", "t3")}),
        norm("T", stWeldedT, "h,b,t1,t2", {"h>t2", "b>t1"}, {"T,h,*,b,*,t1", "T,h,*,b,*,t1,*,t2"},
             {takes("t2", "t1")}),
        norm("H(", stWeldedTaperedH, "h1,h2,b,tw,t1,t2",
             {"b>tw", "h1>2*t1", "h1>2*t2", "h2>2*t1", "h2>2*t2", "h1>h2"},
             {"H(,h1,~,h2,)*,b,*,tw,*,t1", "H(,h1,~,h2,)*,b,*,tw,*,t1,*,t2"}, {takes("t2", "t1")}),
        norm("BS", stBoltBall, "D", {}, {"BS,D"}),
        norm("WS", stWeldBall, "D,t", {"D>2*t"}, {"WS,D,*,t"}),
        norm("WSR", stWeldBall, "D,t", {"D>2*t"}, {"WSR,D,*,t"}),
        norm("D", stWeldedD, "R1,R2,t", {"R1>R2", "R1>2*t", "R2>2*t"}, {"D,R1,~,R2,*,t"}),
        norm("BB", stWeldedBB, "B1,B2,b1,b2,t1,t2", {"B1>b1", "B2>b2", "b2>2*t1", "b1>2*t2"},
             {"BB,B1,*,B2,*,b1,*,b2,*,t1,*,t2"}),
        norm("TY", stWeldedTY, "R1,R2,r1,r2,t", {"R1>r1", "R2>r2", "r1>2*t", "r2>2*t"},
             {"TY,R1,*,R2,*,r1,*,r2,*,t"}),
        norm("H", stWeldedHVariant, "h1,h2,b,tw,t1,t2", {"h1>h2", "b>tw", "h2>2*t1", "h2>2*t2"},
             {"H,h1,/,h2,*,b,*,tw,*,t1,*,t2"}),
    };
}

WeldSectionNormParser::WeldSectionNormParser() : SectionNormParser(sharedWeldedTable()) {}

bool WeldSectionNormParser::isValid(const QString& text) const {
    // The entries' marks by their first character, as most texts are tried on each keystroke.
    static const QHash<ushort, QStringList> marksByFirst = [] {
        QHash<ushort, QStringList> marks;
        for (const SectionNormEntry& entry : sharedWeldedTable()->entries())
            if (!entry.key.isEmpty()) marks[entry.key[0].unicode()].append(entry.key);
        return marks;
    }();
    if (text.isEmpty()) return false;
    const auto marks = marksByFirst.constFind(text[0].unicode());
    if (marks == marksByFirst.constEnd()) return false;
    for (const QString& mark : *marks)
        if (text.startsWith(mark)) return true;
    return false;
}

}  // namespace section
}  // namespace skr
