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

    // Taken apart on the wide text itself: look-ups by name run this on every call.
    static const std::wstring kSame = L"SameString(";
    if (wide.compare(0, kSame.size(), kSame) == 0) {
        const size_t size = wide.size();
        const size_t comma = wide.find(L',', kSame.size());
        if (comma == std::wstring::npos || wide.compare(size - 2, 2, L"\")") != 0) return false;
        if (comma + 1 >= size || wide[comma + 1] != L'"') return false;
        const size_t textStart = comma + 2;
        const size_t textEnd = size - 2;
        if (textEnd < textStart) return false;
        NDPQueryTerm term;
        term.field = table.FindField(wide.substr(kSame.size(), comma - kSame.size()));
        if (term.field < 0 || table.GetField(term.field).GetKind() != EnDBFieldKind::Text) return false;
        term.isText = true;
        term.text = QString::fromStdWString(wide.substr(textStart, textEnd - textStart));
        terms.push_back(term);
        return true;
    }

    const QString expression = QString::fromStdWString(wide);

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
