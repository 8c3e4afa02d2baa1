// A script that gives one table the structure of another and that a server runs as it stands. It
// goes by what the catalogue knows of both tables, not by their texts. Enter at
// makeRunnableUpdate, with what readUpdateFacts read.
#pragma once

#include "scripting/database_facts.h"
#include "structcompare/modScript.h"

namespace zov {

struct UpdateFacts {
    TableFacts source, target;
    TableHangers hangers;  ///< of the target
};
/// False, after a report or an entry in the account, when one of the tables can't be read.
bool readUpdateFacts(const UpdateSide& source, const UpdateSide& target, UpdateFacts& facts);

struct RunnableUpdate {
    QStringList statements;  ///< each a batch of its own, the comments of warnings in front of it
    QStringList missing;     ///< what it can't make: sentences
    bool isRebuilt = false;  ///< the table is made anew, in one transaction that is one batch

    bool changesAnything() const { return !statements.isEmpty(); }
    /// Below a heading that names the database; empty when nothing is to be changed and all can be
    /// made.
    QString text(const QString& database, const QString& lineBreak) const;
};

RunnableUpdate makeRunnableUpdate(const UpdateFacts& facts, const QString& lineBreak);

/// Both scripts of a pair of tables.
struct TableUpdate {
    bool differs = false;
    QString listed;  ///< that of GenerateUpdateScript, with CRLF
    QString runnable;
    QStringList missing;  ///< what the runnable one can't make
    /// Says so where the tables differ in what the listed one doesn't hold; else empty.
    QString note;
};
bool makeTableUpdate(const UpdateSide& source, const UpdateSide& target, const QString& lineBreak,
                     TableUpdate& update);

}  // namespace zov
