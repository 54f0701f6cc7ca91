// CsvTable: one reviewed text source of the shipped databases: "#" comment lines, a header row
// and data rows, comma separated, fields with commas in double quotes.
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace bxq {
namespace data {

class CsvTable {
public:
    // Reads the file; false with a message naming the file and line on any malformed input.
    bool load(const QString& path, QString* error);

    const QString& path() const { return m_path; }
    const QStringList& comments() const { return m_comments; }
    const QStringList& header() const { return m_header; }
    int rowCount() const { return m_rows.size(); }
    // The column of a header name, -1 when the file has none.
    int column(const QString& name) const { return m_header.indexOf(name); }
    const QString& cell(int row, int column) const { return m_rows[row][column]; }
    // "file:line" of a data row, for messages.
    QString where(int row) const;

private:
    QString m_path;
    QStringList m_comments;
    QStringList m_header;
    QVector<QStringList> m_rows;
    QVector<int> m_lines;
};

}  // namespace data
}  // namespace bxq
