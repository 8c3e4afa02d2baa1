// What a database holds, as text: a list for each of six kinds of objects, tables
// with their numbers of records. No screen: who watches is handed in.
#pragma once

#include "catalog/mdlObjects.h"

#include <functional>

namespace zov {

/// Who watches an inventory, and may stop it.
struct DatabaseInfoProgress {
    std::function<void(const QString& text)> showStage;  ///< "Analyzing tables..."
    std::function<void(const QString& name)> showName;
    std::function<bool()> cancelled;
};

struct DatabaseInfo {
    QString text;
    bool stopped = false;
    /// Some list or some count couldn't be read, which was told and stands in the text.
    bool incomplete = false;
    /// Objects of each of the six kinds, in the order of the text; -1 for one that couldn't be
    /// read.
    std::vector<qint32> counts;
};

/// The inventory of one panel's database, within the panel's filter.
DatabaseInfo GetDatabaseInfo(const ServerInfo& Server, const QString& DbName, int Index,
                             const DatabaseInfoProgress& Progress);

/// The inventories of both panels' databases in one text, the sentences on their counts in front.
QString BothDatabasesText(const DatabaseInfo& Source, const DatabaseInfo& Target);

/// "There is 1 trigger in Source database." `PluralName` as GetObjectTypeName gives it.
QString ObjectCountSentence(const QString& PluralName, qint32 Count, const QString& Database);

}  // namespace zov
