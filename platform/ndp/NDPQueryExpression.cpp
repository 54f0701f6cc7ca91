// The query expressions a table accepts.
#include "ndp/NDPQueryExpression.h"

#include "ndp/NDPDBTable.h"

#include <QRegularExpression>

namespace ndp {
namespace {

bool isIntegerKind(EnDBFieldKind kind) {
    return kind == EnDBFieldKind::Int32 || kind == EnDBFieldKind::Int64 || kind == EnDBFieldKind::Bool;
}

bool integerTerm(const CDBTable& table, const QString& name, const QString& value, NDPQueryTerm& term) {
    term.field = table.FindField(name.toStdWString());
    if (term.field < 0 || !isIntegerKind(table.GetField(term.field).GetKind())) return false;
    bool ok = false;
    term.number = value.toLongLong(&ok);
    return ok;
}

}  // namespace

bool parseQueryExpression(const std::wstring& wide, const CDBTable& table, std::vector<NDPQueryTerm>& terms) {
    terms.clear();
    const QString expression = QString::fromStdWString(wide);

    static const QString kSame = QStringLiteral("SameString(");
    if (expression.startsWith(kSame)) {
        const int comma = expression.indexOf(QLatin1Char(','), kSame.size());
        if (comma < 0 || !expression.endsWith(QLatin1String("\")"))) return false;
        if (comma + 1 >= expression.size() || expression[comma + 1] != QLatin1Char('"')) return false;
        const int textStart = comma + 2;
        const int textEnd = expression.size() - 2;
        if (textEnd < textStart) return false;
        NDPQueryTerm term;
        term.field = table.FindField(expression.mid(kSame.size(), comma - kSame.size()).toStdWString());
        if (term.field < 0 || table.GetField(term.field).GetKind() != EnDBFieldKind::Text) return false;
        term.isText = true;
        term.text = expression.mid(textStart, textEnd - textStart);
        terms.push_back(term);
        return true;
    }

    static const QRegularExpression kForms[] = {
        QRegularExpression(QStringLiteral("^(\\w+)==(-?\\d+)$")),
        QRegularExpression(QStringLiteral("^(\\w+)==(-?\\d+) && (\\w+)==(-?\\d+)$")),
        QRegularExpression(QStringLiteral("^(\\w+) == (-?\\d+)$")),
        QRegularExpression(QStringLiteral("^(\\w+) == (-?\\d+) && (\\w+) == (-?\\d+)$")),
    };
    for (const QRegularExpression& form : kForms) {
        const QRegularExpressionMatch match = form.match(expression);
        if (!match.hasMatch()) continue;
        for (int i = 1; i + 1 <= match.lastCapturedIndex(); i += 2) {
            NDPQueryTerm term;
            if (!integerTerm(table, match.captured(i), match.captured(i + 1), term)) {
                terms.clear();
                return false;
            }
            terms.push_back(term);
        }
        return true;
    }
    return false;
}

}  // namespace ndp
