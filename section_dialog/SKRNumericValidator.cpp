// The numeric validator of the section dialog's fields.
#include "section_dialog/SKRNumericValidator.h"

#include <QCoreApplication>
#include <QDoubleValidator>
#include <QIntValidator>

#include <cmath>

namespace {

constexpr double kTolerance = 1e-12;

// -1, 0 or 1; values closer than the tolerance count as equal.
int compare(double a, double b) {
    if (std::abs(a - b) < kTolerance) return 0;
    return a < b ? -1 : 1;
}

}  // namespace

SKRNumericValidator::SKRNumericValidator(double bottom, double top, int decimals, bool bottomClosed, bool topClosed,
                                         QObject* parent)
    : QValidator(parent), m_pValidator(std::make_unique<QDoubleValidator>(bottom, top, decimals)), m_bReal(true),
      m_bBottomClosed(bottomClosed), m_bTopClosed(topClosed) {}

SKRNumericValidator::SKRNumericValidator(int bottom, int top, bool bottomClosed, bool topClosed, QObject* parent)
    : QValidator(parent), m_pValidator(std::make_unique<QIntValidator>(bottom, top)), m_bReal(false),
      m_bBottomClosed(bottomClosed), m_bTopClosed(topClosed) {}

SKRNumericValidator::~SKRNumericValidator() = default;

QValidator::State SKRNumericValidator::validate(QString& input, int& pos) const {
    const State state = m_pValidator->validate(input, pos);
    if ((state == Acceptable || state == Intermediate) && input.startsWith(QLatin1Char('.'))) return Invalid;
    if (state != Acceptable) return state;
    if (!m_bReal) {
        const auto* inner = static_cast<const QIntValidator*>(m_pValidator.get());
        const int value = input.toInt(nullptr, 10);
        if (!m_bBottomClosed && value <= inner->bottom()) return Invalid;
        if (!m_bTopClosed && inner->top() <= value) return Invalid;
        return Acceptable;
    }
    const auto* inner = static_cast<const QDoubleValidator*>(m_pValidator.get());
    const double value = input.toDouble();
    if (!m_bBottomClosed && compare(value, inner->bottom()) <= 0) return Invalid;
    if (!m_bTopClosed && compare(value, inner->top()) >= 0) return Invalid;
    return Acceptable;
}

QString SKRNumericValidator::intervalText() const {
    const QString left = m_bBottomClosed ? QStringLiteral("[") : QStringLiteral("(");
    const QString right = m_bTopClosed ? QStringLiteral("]") : QStringLiteral(")");
    QString bottom, top;
    if (const auto* real = qobject_cast<const QDoubleValidator*>(m_pValidator.get())) {
        bottom = QString::number(real->bottom(), 'g', 6);
        top = QString::number(real->top(), 'g', 6);
    } else {
        const auto* integer = static_cast<const QIntValidator*>(m_pValidator.get());
        bottom = QString::number(integer->bottom(), 10);
        top = QString::number(integer->top(), 10);
    }
    return left + bottom + QLatin1Char(',') + top + right;
}

QString SKRNumericValidator::invalidMessage(const QString& prefix) const {
    QString text;
    if (m_bReal) {
        const auto* real = static_cast<const QDoubleValidator*>(m_pValidator.get());
        text = QCoreApplication::translate("SKRNumericValidator", "请输入%1之间的实数, 如果是小数请保留%2位。")
                   .arg(intervalText(), QString::number(real->decimals(), 10));
    } else {
        text = QCoreApplication::translate("SKRNumericValidator", "请输入%1之间的整数。").arg(intervalText());
    }
    return prefix.isEmpty() ? text : prefix + text;
}
