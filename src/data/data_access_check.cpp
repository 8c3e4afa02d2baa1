#include "data/data_access_check.h"

#include "core/product.h"
#include "data/connection.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {

double GetMDACVersion() {
    return Connection::Version();
}

bool CheckMDACVersion() {
    return CheckMDACVersion(GetMDACVersion());
}

bool CheckMDACVersion(double version) {
    constexpr double LowestUsable = 2.5;
    if (version >= LowestUsable) return true;
    const QString gap = CRLF + CRLF;
    shell().messageBox(
        QStringLiteral("The program detected that this computer has no MDAC installed, or the "
                       "installed version of MDAC is lower than 2.5.") +
            gap +
            QStringLiteral(
                "To connect to the server this program requires MDAC 2.5 or higher to be "
                "installed.") +
            gap + QStringLiteral("MDAC means: Microsoft Data Access Components.") + gap +
            QStringLiteral("For more information about installing Microsoft Data Access Components "
                           "please visit ") +
            product::DataAccessDownload + gap + QStringLiteral("or contact") + gap +
            product::SupportAddress + u'.',
        QStringLiteral("Cannot Continue - MDAC Missing Or Out Of Date"), BoxIcon::Critical);
    return false;
}

}  // namespace zov
