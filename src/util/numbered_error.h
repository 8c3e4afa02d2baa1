// The base of every failure that carries a number beside its text, so that an
// error report can name both without knowing who failed.
#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace zov {

struct NumberedError : std::exception {
    NumberedError(qint32 number, const QString& description)
        : number(number), description(description), utf8_(description.toUtf8()) {}

    const char* what() const noexcept override { return utf8_.constData(); }
    /// A server answered, and refused this request alone.
    virtual bool onlyThisRequestFailed() const { return false; }

    qint32 number;
    QString description;

 private:
    QByteArray utf8_;
};

/// Numbers of the failures that are not a database's.
namespace run_error {
inline constexpr qint32 InvalidArgument = 5;
inline constexpr qint32 Overflow = 6;
inline constexpr qint32 OutOfMemory = 7;
inline constexpr qint32 InternalError = 51;
inline constexpr qint32 FileNotFound = 53;
inline constexpr qint32 FileAccess = 75;
}  // namespace run_error

}  // namespace zov
