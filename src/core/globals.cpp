#include "core/globals.h"

namespace zov {

QString ProgramVersionText() {
    return QStringLiteral("%1.%2").arg(ProgramMajorVersion).arg(ProgramMinorVersion);
}

Globals& globals() {
    static Globals state;
    return state;
}

void resetGlobals() {
    globals() = Globals();
}

}  // namespace zov
