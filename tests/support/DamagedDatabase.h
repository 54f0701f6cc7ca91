// Test helpers that damage a database file the way a failing disk does, so that SQLite reports
// "database disk image is malformed" for one row only: the row carries a long text, spilled
// over several overflow pages, whose chain pointer is broken. The rest of the file stays sound.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace bxqtest {

// A text that reads as the number given and spills over overflow pages: leading zeros.
inline QString longNumberText(const QString& number) { return QString(20000, QLatin1Char('0')) + number; }

// Breaks the overflow chain of the row holding longNumberText; false when no such page is found.
inline bool damageLongRow(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite)) return false;
    QByteArray bytes = file.readAll();
    if (bytes.size() < 100) return false;
    int pageSize = (static_cast<unsigned char>(bytes[16]) << 8) | static_cast<unsigned char>(bytes[17]);
    if (pageSize == 1) pageSize = 65536;
    const QByteArray zeros(64, '0');
    for (int offset = pageSize; offset + pageSize <= bytes.size(); offset += pageSize) {
        // An overflow page: a 4-byte pointer to the next one, then the text.
        if (bytes.mid(offset + 4, zeros.size()) != zeros) continue;
        for (int i = 0; i < 4; ++i) bytes[offset + i] = '\x7f';
        file.seek(0);
        return file.write(bytes) == bytes.size();
    }
    return false;
}

}  // namespace bxqtest
