// SKRStepWriter: Part 21 text.
#include "exchange/SKRStepWriter.h"

#include <QCryptographicHash>
#include <QVector>

#include <charconv>
#include <cmath>
#include <stdexcept>

namespace skr {
namespace exchange {

StepArg stepReal(double value) {
    if (!std::isfinite(value)) throw std::invalid_argument("a real of an exchange file is not finite");
    if (value == 0.0) return {QByteArrayLiteral("0.")};
    char buffer[40];
    const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, value);
    QByteArray digits(buffer, static_cast<int>(end.ptr - buffer));
    // Part 21 wants a point in the mantissa and an upper-case E: 1e-05 -> 1.E-05, 100 -> 100.
    int exponent = digits.indexOf('e');
    QByteArray mantissa = exponent < 0 ? digits : digits.left(exponent);
    QByteArray tail = exponent < 0 ? QByteArray() : 'E' + digits.mid(exponent + 1);
    if (!mantissa.contains('.')) mantissa += '.';
    return {mantissa + tail};
}

StepArg stepInteger(long long value) { return {QByteArray::number(value)}; }

StepArg stepString(const QString& value) {
    QByteArray out("'");
    const QVector<uint> codes = value.toUcs4();
    for (int i = 0; i < codes.size();) {
        const uint c = codes[i];
        if (c >= 0x20 && c <= 0x7e) {
            if (c == '\'') out += "''";
            else if (c == '\\') out += "\\\\";
            else out += static_cast<char>(c);
            ++i;
            continue;
        }
        // A run of characters outside printable ASCII, in one escape.
        const bool wide = c > 0xffff;
        out += wide ? "\\X4\\" : "\\X2\\";
        for (; i < codes.size() && (codes[i] < 0x20 || codes[i] > 0x7e) && (codes[i] > 0xffff) == wide; ++i)
            out += QByteArray::number(codes[i], 16).toUpper().rightJustified(wide ? 8 : 4, '0');
        out += "\\X0\\";
    }
    return {out + '\''};
}

StepArg stepEnum(const char* name) { return {'.' + QByteArray(name) + '.'}; }
StepArg stepBool(bool value) { return {value ? QByteArrayLiteral(".T.") : QByteArrayLiteral(".F.")}; }
StepArg stepRef(StepRef ref) { return {ref.isSet() ? '#' + QByteArray::number(ref.id) : QByteArrayLiteral("$")}; }
StepArg stepUnset() { return {QByteArrayLiteral("$")}; }
StepArg stepDerived() { return {QByteArrayLiteral("*")}; }

StepArg stepList(const std::vector<StepArg>& items) {
    QByteArray out("(");
    for (size_t i = 0; i < items.size(); ++i) {
        if (i) out += ',';
        out += items[i].text;
    }
    return {out + ')'};
}

StepArg stepRefList(const std::vector<StepRef>& refs) {
    std::vector<StepArg> items;
    items.reserve(refs.size());
    for (StepRef ref : refs) items.push_back(stepRef(ref));
    return stepList(items);
}

StepArg stepRealList(std::initializer_list<double> values) {
    std::vector<StepArg> items;
    for (double v : values) items.push_back(stepReal(v));
    return stepList(items);
}

StepArg stepTyped(const char* type, const StepArg& value) { return {QByteArray(type) + '(' + value.text + ')'}; }

QString stepGlobalId(const QByteArray& key) {
    static const char kAlphabet[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$";
    const QByteArray digest = QCryptographicHash::hash(key, QCryptographicHash::Md5);
    // 128 bits: 2 in the first character, then 21 characters of 6 bits.
    QString id;
    int bit = 0;
    const auto take = [&](int count) {
        int value = 0;
        for (int k = 0; k < count; ++k, ++bit)
            value = (value << 1) | ((static_cast<unsigned char>(digest[bit / 8]) >> (7 - bit % 8)) & 1);
        return value;
    };
    id += QLatin1Char(kAlphabet[take(2)]);
    for (int k = 0; k < 21; ++k) id += QLatin1Char(kAlphabet[take(6)]);
    return id;
}

StepRef SKRStepWriter::add(const char* entity, std::initializer_list<StepArg> args) {
    const StepRef ref{m_next++};
    m_data += '#' + QByteArray::number(ref.id) + '=' + entity + '(';
    bool first = true;
    for (const StepArg& arg : args) {
        if (!first) m_data += ',';
        m_data += arg.text;
        first = false;
    }
    m_data += ");\n";
    return ref;
}

QByteArray SKRStepWriter::document(const QString& description, const QString& fileName,
                                   const QString& originatingSystem, const char* schema) const {
    QByteArray out("ISO-10303-21;\nHEADER;\n");
    out += "FILE_DESCRIPTION((" + stepString(description).text + "),'2;1');\n";
    out += "FILE_NAME(" + stepString(fileName).text + ",'1970-01-01T00:00:00',(''),(''),'',"
           + stepString(originatingSystem).text + ",'');\n";
    out += "FILE_SCHEMA(('" + QByteArray(schema) + "'));\nENDSEC;\nDATA;\n";
    out += m_data;
    out += "ENDSEC;\nEND-ISO-10303-21;\n";
    return out;
}

}  // namespace exchange
}  // namespace skr
