#include "core/server_info.h"

#include "util/text.h"

namespace zov {

qint32 GetMajorVersion(const QString& Version) {
    return ValInt32(partBeforeFirstDot(Version));
}

}  // namespace zov
