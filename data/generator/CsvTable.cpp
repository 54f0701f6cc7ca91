// CsvTable: reading the text sources of the shipped databases.
#include "CsvTable.h"

#include <QFile>
#include <QFileInfo>

namespace bxq {
namespace data {
namespace {

// Splits one line; false when a quoted field is not closed.
bool splitLine(const QString& line, QStringList& fields) {
    fields.clear();
    QString field;
    bool quoted = false;
    for (int i = 0; i < line.size(); ++i) {
        const QChar c = line[i];
        if (quoted) {
            if (c == QLatin1Char('"') && i + 1 < line.size() && line[i + 1] == QLatin1Char('"')) {
                field += c;
                ++i;
            } else if (c == QLatin1Char('"')) {
                quoted = false;
            } else {
                field += c;
            }
        } else if (c == QLatin1Char('"')) {
            quoted = true;
        } else if (c == QLatin1Char(',')) {
            fields << field;
            field.clear();
        } else {
            field += c;
        }
    }
    fields << field;
    return !quoted;
}

}  // namespace

QString CsvTable::where(int row) const {
    return QStringLiteral("%1:%2").arg(QFileInfo(m_path).fileName()).arg(m_lines.value(row));
}

bool CsvTable::load(const QString& path, QString* error) {
    m_path = path;
    m_comments.clear();
    m_header.clear();
    m_rows.clear();
    m_lines.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: cannot be read (%2)").arg(path, file.errorString());
        return false;
    }
    const QString name = QFileInfo(path).fileName();
    int lineNumber = 0;
    while (!file.atEnd()) {
        ++lineNumber;
        QString line = QString::fromUtf8(file.readLine());
        while (line.endsWith(QLatin1Char('\n')) || line.endsWith(QLatin1Char('\r'))) line.chop(1);
        if (line.trimmed().isEmpty()) continue;
        if (line.startsWith(QLatin1Char('#'))) {
            if (m_header.isEmpty()) m_comments << line.mid(1).trimmed();
            continue;
        }
        QStringList fields;
        if (!splitLine(line, fields)) {
            *error = QStringLiteral("%1:%2: a quoted field is not closed").arg(name).arg(lineNumber);
            return false;
        }
        if (m_header.isEmpty()) {
            m_header = fields;
            if (m_header.removeDuplicates() != 0) {
                *error = QStringLiteral("%1:%2: a column name is repeated").arg(name).arg(lineNumber);
                return false;
            }
            continue;
        }
        if (fields.size() != m_header.size()) {
            *error = QStringLiteral("%1:%2: %3 fields where the header has %4")
                         .arg(name)
                         .arg(lineNumber)
                         .arg(fields.size())
                         .arg(m_header.size());
            return false;
        }
        m_rows << fields;
        m_lines << lineNumber;
    }
    if (m_header.isEmpty()) {
        *error = QStringLiteral("%1: no header row").arg(name);
        return false;
    }
    return true;
}

}  // namespace data
}  // namespace bxq
