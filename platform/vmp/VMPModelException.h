// VMPModelException: the modelling platform's exception, carrying a user-facing message.
#pragma once

#include "PlatformGlobal.h"

#include <QByteArray>
#include <QString>

#include <exception>

class BXQPLATFORM_EXPORT VMPModelException : public std::exception {
public:
    explicit VMPModelException(const QString& message) : m_message(message), m_utf8(message.toUtf8()) {}
    const char* what() const noexcept override { return m_utf8.constData(); }
    const QString& message() const { return m_message; }

private:
    QString m_message;
    QByteArray m_utf8;
};
