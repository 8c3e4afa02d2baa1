#include "data/sqlcmd_script.h"

#include "data/script_lines.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

namespace zov {
namespace {

constexpr int MostIncludes = 10'000;  // of one script; small files can name each other endlessly

/// ":setvar A 1" is {"setvar", "A 1"}; none for a line of T-SQL.
struct Command {
    QString name;
    QString rest;
};

/// `always`: also those that go without a colon, which would be T-SQL in any other script.
std::optional<Command> commandIn(QStringView line, bool always) {
    const QStringView text = line.trimmed();
    if (always && text.startsWith(u"!!")) return Command{QStringLiteral("!!"), {}};
    if (text.startsWith(u':') && !text.startsWith(u"::")) {
        if (text.startsWith(u":!!")) return Command{QStringLiteral("!!"), {}};
        qsizetype end = 1;
        while (end < text.size() && text[end].isLetter()) ++end;
        if (end == 1) return {};
        return Command{text.sliced(1, end - 1).toString().toLower(),
                       text.sliced(end).trimmed().toString()};
    }
    if (!always) return {};
    static const QRegularExpression bare(QStringLiteral("^(exit|quit|reset)\\s*(\\(.*\\))?\\s*;?$"),
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = bare.match(text.toString());
    if (!match.hasMatch()) return {};
    return Command{match.captured(1).toLower(), match.captured(2)};
}

bool isKnown(const QString& command) {
    static const QSet<QString> names = {
        QStringLiteral("setvar"), QStringLiteral("r"),          QStringLiteral("on"),
        QStringLiteral("exit"),   QStringLiteral("quit"),       QStringLiteral("reset"),
        QStringLiteral("list"),   QStringLiteral("listvar"),    QStringLiteral("xml"),
        QStringLiteral("out"),    QStringLiteral("serverlist"), QStringLiteral("perftrace"),
        QStringLiteral("help"),   QStringLiteral("error"),      QStringLiteral("connect"),
        QStringLiteral("ed"),     QStringLiteral("!!")};
    return names.contains(command);
}

/// What tells of the session or writes beside the script's work.
bool writesNothingHere(const QString& command) {
    static const QSet<QString> names = {QStringLiteral("list"),      QStringLiteral("listvar"),
                                        QStringLiteral("xml"),       QStringLiteral("serverlist"),
                                        QStringLiteral("perftrace"), QStringLiteral("help"),
                                        QStringLiteral("out"),       QStringLiteral("error")};
    return names.contains(command);
}

QString unquoted(const QString& text) {
    if (text.size() < 2 || !text.startsWith(u'"') || !text.endsWith(u'"')) return text;
    return text.sliced(1, text.size() - 2)
        .replace(QLatin1StringView("\"\""), QLatin1StringView("\""));
}

class Expander {
 public:
    Expander(SqlcmdVariables& variables, const SqlcmdFiles& files)
        : variables_(variables), files_(files) {}

    ExpandedScript run(const QString& file, const QString& text) {
        addFile(file, text, QString());
        return std::move(script_);
    }

 private:
    void addFile(const QString& file, const QString& text, const QString& lastBreak) {
        const QString path = QFileInfo(file).absoluteFilePath();
        open_.append(path);
        int line = 1;
        for (qsizetype at = 0; at < text.size() && !script_.ended; ++line) {
            const auto [code, length] = scriptLineAt(text, at);
            QString end = text.sliced(at + code.size(), length - code.size());
            file_ = file;
            line_ = line;
            const std::optional<Command> command =
                state_.isOpen() ? std::nullopt : commandIn(code, true);
            if (command)
                carryOut(*command, end);
            else
                addLine(code, end.isEmpty() ? lastBreak : end);
            at += length;
        }
        open_.removeLast();
    }

    void addLine(QStringView code, const QString& end) {
        const bool inCode = !state_.isOpen();
        const QString text = substituted(code, state_);
        const ExpandedScript::Origin due = script_.originOf(outLine_);
        if (due.file != file_ || due.fileLine != line_)
            script_.origins.push_back({outLine_, file_, line_});
        script_.text += text;
        script_.text += end;
        ++outLine_;
        if (inCode && goCount(text)) {
            batchBegin_ = script_.text.size();
            batchLine_ = outLine_;
            return;
        }
        ScriptLineScanner scanner(text, state_);
        while (!scanner.atEnd()) scanner.step();
    }

    /// With values for "$(name)", which comments keep.
    QString substituted(QStringView code, ScriptLineState state) {
        if (!code.contains(u"$(")) return code.toString();
        QString text;
        ScriptLineScanner scanner(code, state);
        qsizetype copied = 0;
        while (!scanner.atEnd()) {
            const qsizetype at = scanner.position();
            if (scanner.step() == ScriptLinePart::Comment || at < copied) continue;
            const QString name = code[at] == u'$' ? variableAt(code, at) : QString();
            if (name.isEmpty()) continue;
            const std::optional<QString> value = variables_.value(name);
            if (!value) {
                tellUndefined(name);
                continue;
            }
            text += code.sliced(copied, at - copied);
            text += *value;
            copied = at + name.size() + 3;
        }
        text += code.sliced(copied);
        return text;
    }

    /// The name in "$(name)".
    static QString variableAt(QStringView code, qsizetype at) {
        if (at + 1 >= code.size() || code[at + 1] != u'(') return {};
        qsizetype end = at + 2;
        while (end < code.size() && code[end] != u')' && !code[end].isSpace() &&
               code[end] != u'"' && code[end] != u'\'')
            ++end;
        if (end >= code.size() || code[end] != u')') return {};
        return code.sliced(at + 2, end - at - 2).toString();
    }

    void tellUndefined(const QString& name) {
        if (undefined_.contains(name.toLower())) return;
        undefined_.insert(name.toLower());
        tell(QStringLiteral("'%1' scripting variable not defined. Give it a value with "
                            "-v %1=VALUE.")
                 .arg(name));
    }

    void tell(const QString& message, const QString& words = {}) {
        script_.problems.push_back({file_, line_, words, message});
    }
    void note(const QString& sentence) {
        script_.notes += QStringLiteral("%1:%2: %3").arg(file_).arg(line_).arg(sentence);
    }

    /// What stands behind a command is one text to the line's end, without comments.
    QString substitutedRest(const QString& rest) {
        ScriptLineState text;
        text.openQuote = u'\n';
        return substituted(rest, text).trimmed();
    }

    void carryOut(const Command& command, const QString& end) {
        const QString& name = command.name;
        if (writesNothingHere(name)) return;
        if (name == u"setvar") return setVariable(substitutedRest(command.rest));
        if (name == u"r") return include(unquoted(substitutedRest(command.rest)), end);
        if (name == u"on") return onError(command.rest.simplified().toLower());
        if (name == u"quit" || name == u"exit") return quit(command, end);
        if (name == u"reset") return dropBatch();
        const QString written = name == u"!!" ? name : u':' + name;
        tell(isKnown(name)
                 ? QStringLiteral("%1 is not carried out here: a script is loaded into one server, "
                                  "and runs no other programs. Take the line out.")
                       .arg(written)
                 : QStringLiteral("%1 is no command that scripts may hold.").arg(written));
    }

    void setVariable(const QString& rest) {
        static const QRegularExpression form(
            QStringLiteral("^([^\\s\"'$()]+)(?:\\s+(\"(?:[^\"]|\"\")*\"|[^\\s\"]\\S*))?$"));
        const QRegularExpressionMatch match = form.match(rest);
        if (!match.hasMatch())
            return tell(
                QStringLiteral(":setvar takes a name and a value; a value with blanks "
                               "stands in quotation marks."));
        if (!match.hasCaptured(2)) return variables_.set(match.captured(1), std::nullopt);
        const QString name = match.captured(1), value = unquoted(match.captured(2));
        if (variables_.overridesGiven(name, value))
            note(QStringLiteral(":setvar gives %1 another value than -v did; --define %1=VALUE "
                                "holds against it.")
                     .arg(name));
        variables_.set(name, value);
    }

    void onError(const QString& rest) {
        if (rest != u"error exit" && rest != u"error ignore")
            return tell(QStringLiteral(":on error is followed by exit or ignore."));
        script_.errorModes.push_back({outLine_, rest == u"error ignore"});
    }

    /// ":exit(SELECT 1)" runs what stands before it and itself; anything else drops what no GO has
    /// run yet.
    void quit(const Command& command, const QString& end) {
        if (command.name == u"exit" && command.rest.startsWith(u'(')) {
            const qsizetype close = command.rest.lastIndexOf(u')');
            if (close > 1) addLine(QStringView(command.rest).sliced(1, close - 1), end);
        } else {
            if (!QStringView(script_.text).sliced(batchBegin_).trimmed().isEmpty())
                note(QStringLiteral("%1 ends the script; the statements in front of it have no GO "
                                    "and are not run.")
                         .arg(command.name));
            dropBatch();
        }
        script_.ended = true;
    }

    void dropBatch() {
        script_.text.truncate(batchBegin_);
        outLine_ = batchLine_;
        while (!script_.origins.empty() && script_.origins.back().line >= outLine_)
            script_.origins.pop_back();
    }

    void include(const QString& name, const QString& end) {
        if (name.isEmpty()) return tell(QStringLiteral(":r takes the name of a file."));
        if (++includes_ > MostIncludes)
            return tell(
                QStringLiteral("The script includes more than %1 files.").arg(MostIncludes));
        const QString path = found(name);
        if (path.isEmpty())
            return tell(QStringLiteral("There is no file %1 beside %2, nor in the current folder.")
                            .arg(name, file_));
        if (open_.contains(QFileInfo(path).absoluteFilePath()))
            return tell(QStringLiteral("%1 is being read already: a script can't include itself.")
                            .arg(name));
        QString text;
        const QString trouble = files_.read(path, text);
        if (!trouble.isEmpty()) {
            script_.problems.push_back({path, 0, {}, trouble});
            return;
        }
        const QString file = file_;
        const int line = line_;
        addFile(path, text, end.isEmpty() ? QStringLiteral("\n") : end);
        file_ = file;
        line_ = line;
    }

    /// Empty when there is none. Where both places have one, the one beside the script is taken.
    QString found(const QString& name) {
        QString portable = name;
        if (!files_.exists(portable)) portable.replace(u'\\', u'/');
        const QString beside = QDir::cleanPath(QDir(QFileInfo(file_).path()).filePath(portable));
        const bool here = files_.exists(portable);
        if (!files_.exists(beside)) return here ? portable : QString();
        if (here &&
            QFileInfo(beside).absoluteFilePath() != QFileInfo(portable).absoluteFilePath()) {
            QString one, other;
            if (!files_.read(beside, one).isEmpty() || !files_.read(portable, other).isEmpty() ||
                one != other)
                note(QStringLiteral("%1 stands beside the script and in the current folder, and "
                                    "they differ; the one beside the script is taken.")
                         .arg(name));
        }
        return beside;
    }

    SqlcmdVariables& variables_;
    const SqlcmdFiles& files_;
    ExpandedScript script_;
    QStringList open_;  // files that are being read, each by the one in front of it
    ScriptLineState state_;
    QString file_;
    int line_ = 0;
    int outLine_ = 1;  // of the next line that is written
    qsizetype batchBegin_ = 0;
    int batchLine_ = 1;
    int includes_ = 0;
    QSet<QString> undefined_;
};

}  // namespace

// --- variables ----------------------------------------------------------------------------------

void SqlcmdVariables::define(const QString& name, const QString& value) {
    defined_.insert(name.toLower(), value);
}

void SqlcmdVariables::set(const QString& name, const std::optional<QString>& value) {
    if (value)
        set_.insert(name.toLower(), *value);
    else
        set_.remove(name.toLower());
}

std::optional<QString> SqlcmdVariables::value(const QString& name) const {
    const QString key = name.toLower();
    for (const QHash<QString, QString>* values : {&defined_, &set_, &given_, &own_})
        if (const auto found = values->constFind(key); found != values->constEnd()) return *found;
    const QByteArray variable = name.toLocal8Bit();
    if (qEnvironmentVariableIsSet(variable.constData()))
        return qEnvironmentVariable(variable.constData());
    return {};
}

bool SqlcmdVariables::overridesGiven(const QString& name, const QString& value) const {
    const auto given = given_.constFind(name.toLower());
    return given != given_.constEnd() && *given != value && !defined_.contains(name.toLower());
}

// --- scripts ------------------------------------------------------------------------------------

ExpandedScript::Origin ExpandedScript::originOf(int line) const {
    for (auto origin = origins.rbegin(); origin != origins.rend(); ++origin)
        if (origin->line <= line)
            return {line, origin->file, origin->fileLine + line - origin->line};
    return {line, {}, line};
}

bool ExpandedScript::ignoresErrors(int goLine) const {
    bool ignored = false;
    for (const ErrorMode& mode : errorModes)
        if (goLine == 0 || mode.line <= goLine) ignored = mode.ignored;
    return ignored;
}

bool isSqlcmdScript(const QString& text) {
    static const QRegularExpression candidate(QStringLiteral("^[ \\t]*:[A-Za-z!]"),
                                              QRegularExpression::MultilineOption);
    if (!candidate.match(text).hasMatch()) return false;
    ScriptLineState state;
    for (qsizetype at = 0; at < text.size();) {
        const auto [line, length] = scriptLineAt(text, at);
        if (!state.isOpen()) {
            const std::optional<Command> command = commandIn(line, false);
            if (command && isKnown(command->name)) return true;
        }
        ScriptLineScanner scanner(line, state);
        while (!scanner.atEnd()) scanner.step();
        at += length;
    }
    return false;
}

ExpandedScript expandSqlcmdScript(const QString& file, const QString& text,
                                  SqlcmdVariables& variables, const SqlcmdFiles& files) {
    return Expander(variables, files).run(file, text);
}

}  // namespace zov
