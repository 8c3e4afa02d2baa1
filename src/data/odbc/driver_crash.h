// A driver runs in our process, and a damaged answer of a server can make it
// crash. The program can't go on then, but it can say whose fault it was, and end
// with a status that nobody takes for a result.
#pragma once

#include <QByteArray>

namespace zov::odbc {

/// From now on a crash inside a DriverCall, or behind one, ends the program with `status`, and with
/// a message on standard error that begins with `program`: a driver that wrote where it shouldn't
/// have is found out late. Crashes of a program that no driver ran in take their usual way.
void tellDriverCrashes(const char* program, int status);

/// The length of a scope in which the driver of this name runs in this thread. `driver` outlives
/// it.
class DriverCall {
 public:
    explicit DriverCall(const QByteArray& driver);
    ~DriverCall();
    DriverCall(const DriverCall&) = delete;
    DriverCall& operator=(const DriverCall&) = delete;

 private:
    const char* outer_;
};

}  // namespace zov::odbc
