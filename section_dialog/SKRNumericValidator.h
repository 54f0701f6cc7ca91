// SKRNumericValidator: the validator of the section dialog's numeric fields: a Qt integer or real
// validator narrowed to an interval whose ends may each be open or closed, refusing a leading
// decimal point, with the message that names the allowed interval.
#pragma once

#include <QValidator>

#include <memory>

class SKRNumericValidator : public QValidator {
    Q_OBJECT
public:
    // Real numbers in the interval from bottom to top with at most decimals decimals.
    SKRNumericValidator(double bottom, double top, int decimals, bool bottomClosed, bool topClosed,
                        QObject* parent = nullptr);
    // Integers in the interval from bottom to top.
    SKRNumericValidator(int bottom, int top, bool bottomClosed, bool topClosed, QObject* parent = nullptr);
    ~SKRNumericValidator() override;

    State validate(QString& input, int& pos) const override;
    // The user message for a refused entry: prefix followed by "please enter a real number (or an
    // integer) in <interval>", translated.
    virtual QString invalidMessage(const QString& prefix) const;
    // The interval as "[0,10000)": "[" / "]" for a closed end, "(" / ")" for an open one.
    virtual QString intervalText() const;

    bool isReal() const { return m_bReal; }

private:
    std::unique_ptr<QValidator> m_pValidator;
    bool m_bReal;
    bool m_bBottomClosed;
    bool m_bTopClosed;
};
