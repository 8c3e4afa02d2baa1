// Names and addresses of the product. The addresses are under a domain reserved
// for examples until there is a real one.
#pragma once

#include <QString>

namespace zov::product {

inline const QString Name = QStringLiteral("Zovrand");
inline const QString Company = QStringLiteral("Brindlewick Software");
/// Receives error reports as Endpoint & "/error.php?...".
inline const QString WebEndpoint = QStringLiteral("https://zovrand.example");
inline const QString SupportAddress = QStringLiteral("support@zovrand.example");
/// Where the data access components can be had.
inline const QString DataAccessDownload = QStringLiteral("https://zovrand.example/data-access");

}  // namespace zov::product
