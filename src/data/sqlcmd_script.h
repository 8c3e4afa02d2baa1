// Scripts for the server's own command line: they hold commands (":setvar", ":r FILE") beside
// T-SQL, and variables, "$(name)", in texts, names and paths. Such a script becomes a plain one,
// with the lines of all files that it includes; GO stays for splitBatches.
#pragma once

#include "data/load_problem.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

namespace zov {

/// The values of variables, whose names go without case. From low to high: the environment, the
/// session's own (SQLCMDSERVER), those given to the load, :setvar, those defined for the load.
class SqlcmdVariables {
 public:
    void setOwn(const QString& name, const QString& value) { own_.insert(name.toLower(), value); }
    void give(const QString& name, const QString& value) { given_.insert(name.toLower(), value); }
    void define(const QString& name, const QString& value);
    /// What :setvar does; without a value the variable goes back to what it was without :setvar.
    void set(const QString& name, const std::optional<QString>& value);
    /// None when the variable has no value.
    std::optional<QString> value(const QString& name) const;
    /// :setvar with this value takes the place of another one that was given to the load.
    bool overridesGiven(const QString& name, const QString& value) const;

 private:
    QHash<QString, QString> own_, given_, set_, defined_;
};

/// How included files are found and read.
struct SqlcmdFiles {
    /// The file's text; an empty reply is success, any other says why it can't be read.
    std::function<QString(const QString& path, QString& text)> read;
    std::function<bool(const QString& path)> exists;
};

/// A script as it is run.
struct ExpandedScript {
    struct Origin {
        int line = 0;  ///< of the expanded text, from 1; until the next origin lines go on together
        QString file;
        int fileLine = 0;
    };
    struct ErrorMode {
        int line = 0;  ///< holds for batches whose GO stands there or behind
        bool ignored = false;
    };
    QString text;
    std::vector<Origin> origins;
    std::vector<ErrorMode> errorModes;
    std::vector<LoadProblem> problems;  ///< with any of them the script can't be run
    QStringList notes;
    bool ended = false;  ///< by :quit or :exit: nothing behind it runs, in no file

    /// Where a line of the expanded text comes from.
    Origin originOf(int line) const;
    /// Whether errors are passed over in the batch whose GO stands in the line (0: the last batch).
    bool ignoresErrors(int goLine) const;
};

/// Whether the script has a command at the beginning of a line; a "$(name)" alone is none.
bool isSqlcmdScript(const QString& text);

/// Expands a script. What :setvar sets stays in `variables`. An included file is looked for beside
/// the file that names it, then in the current folder.
ExpandedScript expandSqlcmdScript(const QString& file, const QString& text,
                                  SqlcmdVariables& variables, const SqlcmdFiles& files);

}  // namespace zov
