#include "data/local/batch_steps.h"

#include "data/local/ddl_common.h"
#include "data/local/nesting.h"
#include "data/local/query_engine.h"

#include <QSet>

namespace zov::local {
namespace {

// Reserved words that begin a statement wherever they stand outside of parentheses.
bool isStarter(const Token& token) {
    if (token.kind != TokenKind::Word) return false;
    static const QSet<QString> words = [] {
        QSet<QString> set;
        for (const char* word :
             {"SELECT",     "INSERT",     "UPDATE",      "DELETE",    "MERGE",   "CREATE",
              "ALTER",      "DROP",       "GRANT",       "DENY",      "REVOKE",  "TRUNCATE",
              "EXEC",       "EXECUTE",    "PRINT",       "RAISERROR", "IF",      "WHILE",
              "BEGIN",      "END",        "ELSE",        "RETURN",    "DECLARE", "SET",
              "USE",        "COMMIT",     "ROLLBACK",    "SAVE",      "GOTO",    "BREAK",
              "CONTINUE",   "CHECKPOINT", "DBCC",        "BACKUP",    "RESTORE", "KILL",
              "WAITFOR",    "SHUTDOWN",   "RECONFIGURE", "OPEN",      "FETCH",   "CLOSE",
              "DEALLOCATE", "BULK",       "DUMP",        "LOAD",      "REVERT",  "SETUSER",
              "READTEXT",   "WRITETEXT",  "UPDATETEXT"})
            set.insert(QLatin1String(word));
        return set;
    }();
    return words.contains(token.source.toString().toUpper());
}

class Cutter {
 public:
    explicit Cutter(std::span<const Token> tokens) : tokens_(tokens) {}

    std::vector<BatchStep> run() {
        skipSeparators();
        while (!atEnd()) {
            if (is("END") || is("ELSE")) failSyntax(tokens_[at_]);
            statement();
            skipSeparators();
        }
        return std::move(steps_);
    }

 private:
    using Kind = BatchStep::Kind;

    bool atEnd() const { return at_ >= tokens_.size() || tokens_[at_].kind == TokenKind::End; }
    bool is(const char* word, size_t ahead = 0) const {
        return at_ + ahead < tokens_.size() && tokens_[at_ + ahead].is(word);
    }
    void skipSeparators() {
        while (!atEnd() && is(";")) ++at_;
    }
    size_t add(Kind kind, size_t begin = 0, size_t end = 0) {
        BatchStep step;
        step.kind = kind;
        step.begin = begin;
        step.end = end;
        step.line =
            tokens_[std::min(kind == Kind::Statement || kind == Kind::BranchUnless ? begin : at_,
                             tokens_.size() - 1)]
                .line;
        steps_.push_back(step);
        return steps_.size() - 1;
    }
    void land(size_t jump) { steps_[jump].target = steps_.size(); }
    [[noreturn]] void failHere() const { failSyntax(tokens_[std::min(at_, tokens_.size() - 1)]); }

    /// One statement with all that is nested in it.
    void statement() {
        skipSeparators();
        if (atEnd()) failHere();
        if (++depth_ > MaxNesting) failTooDeep(tokens_[at_].line);
        atLevel(depth_, [this] {
            cutStatement();
            return true;
        });
        --depth_;
    }

    void cutStatement() {
        if (is("BEGIN") && is("TRY", 1)) return tryCatch();
        if (is("BEGIN") && !is("TRAN", 1) && !is("TRANSACTION", 1) && !is("DISTRIBUTED", 1))
            return block();
        if (is("IF")) return choice();
        if (is("WHILE")) return loop();
        if (is("END") || is("ELSE")) failHere();
        if (is("RETURN")) {
            const size_t begin = at_;
            at_ = statementEnd(tokens_, begin);
            add(Kind::Return, begin, at_);
            return;
        }
        if (is("BREAK") || is("CONTINUE")) {
            if (loops_.empty())
                fail(135,
                     QStringLiteral(
                         "Cannot use a %1 statement outside the scope of a WHILE statement.")
                         .arg(tokens_[at_].source.toString().toUpper()),
                     tokens_[at_].line);
            const bool leave = is("BREAK");
            const size_t jump = add(Kind::Jump);
            if (leave)
                loops_.back().breaks.push_back(jump);
            else
                steps_[jump].target = loops_.back().start;
            ++at_;
            return;
        }
        const size_t begin = at_;
        at_ = statementEnd(tokens_, begin);
        if (at_ == begin) failHere();
        add(Kind::Statement, begin, at_);
    }

    void block() {
        const int line = tokens_[at_].line;
        ++at_;
        skipSeparators();
        while (!is("END")) {
            if (atEnd())
                fail(102,
                     QStringLiteral("Incorrect syntax: the BEGIN of line %1 has no END.").arg(line),
                     line);
            statement();
            skipSeparators();
        }
        ++at_;
    }

    void tryCatch() {
        const int line = tokens_[at_].line;
        const auto body = [&](const char* word) {
            at_ += 2;
            skipSeparators();
            while (!(is("END") && is(word, 1))) {
                if (atEnd())
                    fail(102,
                         QStringLiteral("Incorrect syntax: the BEGIN %1 of line %2 has no END.")
                             .arg(QLatin1String(word))
                             .arg(line),
                         line);
                statement();
                skipSeparators();
            }
            at_ += 2;
            skipSeparators();
        };
        const size_t enter = add(Kind::EnterTry);
        body("TRY");
        add(Kind::LeaveTry);
        const size_t over = add(Kind::Jump);
        if (!is("BEGIN") || !is("CATCH", 1)) failHere();
        land(enter);
        body("CATCH");
        add(Kind::LeaveCatch);
        land(over);
    }

    size_t condition() {
        const size_t begin = ++at_;
        at_ = statementEnd(tokens_, begin - 1);
        if (at_ == begin) failHere();
        return add(Kind::BranchUnless, begin, at_);
    }

    bool acceptElse() {
        // A separator may stand in front of it.
        size_t ahead = at_;
        while (ahead < tokens_.size() && tokens_[ahead].is(";")) ++ahead;
        if (ahead >= tokens_.size() || !tokens_[ahead].is("ELSE")) return false;
        at_ = ahead + 1;
        skipSeparators();
        return true;
    }

    // IF ... ELSE IF ... ELSE IF is a row of choices and nests nothing.
    void choice() {
        std::vector<size_t> overs;
        for (bool more = true; more;) {
            const size_t branch = condition();
            statement();
            if (!acceptElse()) {
                land(branch);
                break;
            }
            overs.push_back(add(Kind::Jump));
            land(branch);
            more = is("IF");
            if (!more) statement();
        }
        for (const size_t over : overs) land(over);
    }

    void loop() {
        loops_.push_back({steps_.size(), {}});
        const size_t branch = condition();
        statement();
        const size_t back = add(Kind::Jump);
        steps_[back].target = loops_.back().start;
        land(branch);
        for (const size_t jump : loops_.back().breaks) land(jump);
        loops_.pop_back();
    }

    struct Loop {
        size_t start;
        std::vector<size_t> breaks;
    };
    std::span<const Token> tokens_;
    size_t at_ = 0;
    int depth_ = 0;
    std::vector<BatchStep> steps_;
    std::vector<Loop> loops_;
};

// GRANT, DENY, REVOKE hold the names of other statements up to their TO or FROM.
size_t permissionEnd(std::span<const Token> tokens, size_t begin) {
    size_t at = begin + 1;
    int depth = 0;
    while (at < tokens.size() && tokens[at].kind != TokenKind::End && !tokens[at].is(";")) {
        if (tokens[at].is("(")) ++depth;
        if (tokens[at].is(")")) --depth;
        if (depth == 0 && (tokens[at].is("TO") || tokens[at].is("FROM"))) break;
        ++at;
    }
    while (at < tokens.size() &&
           (tokens[at].is("TO") || tokens[at].is("FROM") || tokens[at].is(","))) {
        ++at;
        if (at < tokens.size() && tokens[at].isName()) ++at;
    }
    const auto is = [&](size_t ahead, const char* word) {
        return at + ahead < tokens.size() && tokens[at + ahead].is(word);
    };
    if (is(0, "WITH") && is(1, "GRANT") && is(2, "OPTION")) at += 3;
    if (is(0, "CASCADE")) ++at;
    if (is(0, "AS") && at + 1 < tokens.size()) at += 2;
    return at;
}

// The place of ALTER TABLE's own verb (ADD, DROP, ALTER ...), which must not be taken for the next
// statement's.
size_t actionOfAlter(std::span<const Token> tokens, size_t begin) {
    size_t at = begin + 2;
    const auto name = [&] {
        while (at < tokens.size() && tokens[at].isName()) {
            ++at;
            if (at >= tokens.size() || !tokens[at].is(".")) return;
            ++at;
            if (at < tokens.size() && tokens[at].is(".")) ++at;
        }
    };
    if (at < tokens.size() && tokens[at].is("ON")) ++at;  // ALTER AUTHORIZATION ON
    name();
    const auto is = [&](size_t ahead, const char* word) {
        return at + ahead < tokens.size() && tokens[at + ahead].is(word);
    };
    if (tokens[begin + 1].is("DATABASE") && is(0, "CONFIGURATION")) {  // behind SCOPED
        ++at;
        if (is(0, "FOR") && is(1, "SECONDARY")) at += 2;
    }
    if (at < tokens.size() && tokens[at].is("ON")) {  // ALTER INDEX i ON t
        ++at;
        name();
    }
    if (at + 1 < tokens.size() && tokens[at].is("WITH") &&
        (tokens[at + 1].is("CHECK") || tokens[at + 1].is("NOCHECK")))
        at += 2;
    return at;
}

bool isModuleStart(std::span<const Token> tokens, size_t begin) {
    size_t at = begin + 1;
    if (at + 1 < tokens.size() && tokens[at].is("OR") && tokens[at + 1].is("ALTER")) at += 2;
    if (at >= tokens.size()) return false;
    for (const char* word : {"VIEW", "PROCEDURE", "PROC", "FUNCTION", "TRIGGER"})
        if (tokens[at].is(word)) return true;
    return tokens[begin].is("CREATE") && (tokens[at].is("DEFAULT") || tokens[at].is("RULE"));
}

// Verbs within DROP and ALTER that are no statement of their own: "IF EXISTS name" (the condition
// of an IF stands in parentheses behind EXISTS), and what ALTER COLUMN takes away from a column.
bool belongsToDefinition(std::span<const Token> tokens, size_t begin, size_t at) {
    const auto is = [&](size_t ahead, const char* word) {
        return at + ahead < tokens.size() && tokens[at + ahead].is(word);
    };
    if (!tokens[begin].is("DROP") && !tokens[begin].is("ALTER")) return false;
    if (is(0, "IF")) return is(1, "EXISTS") && !is(2, "(");
    if (!is(0, "DROP")) return false;
    for (const char* word : {"ROWGUIDCOL", "PERSISTED", "NOT", "SPARSE", "HIDDEN", "MASKED"})
        if (is(1, word)) return true;
    return false;
}

// The verb behind WITH name AS (...), ...
size_t verbOfWith(std::span<const Token> tokens, size_t begin) {
    int depth = 0;
    for (size_t at = begin; at < tokens.size(); ++at) {
        if (tokens[at].is("(")) ++depth;
        if (tokens[at].is(")")) --depth;
        if (depth == 0 &&
            (tokens[at].is("SELECT") || tokens[at].is("INSERT") || tokens[at].is("UPDATE") ||
             tokens[at].is("DELETE") || tokens[at].is("MERGE")))
            return at;
    }
    return begin;
}

}  // namespace

std::vector<BatchStep> cutBatch(std::span<const Token> tokens) {
    return Cutter(tokens).run();
}

size_t statementEnd(std::span<const Token> tokens, size_t begin) {
    const Token& first = tokens[begin];
    const bool next = begin + 1 < tokens.size();
    if (first.is("SELECT") || first.is("(")) return size_t(selectEnd(tokens, qsizetype(begin)));
    if (first.is("WITH"))
        return tokens[verbOfWith(tokens, begin)].is("SELECT")
                   ? size_t(selectEnd(tokens, qsizetype(begin)))
                   : size_t(dmlEnd(tokens, qsizetype(begin)));
    if (first.is("INSERT") || first.is("DELETE") ||
        (first.is("UPDATE") && next && !tokens[begin + 1].is("STATISTICS")))
        return size_t(dmlEnd(tokens, qsizetype(begin)));
    if (first.is("GRANT") || first.is("DENY") || first.is("REVOKE"))
        return permissionEnd(tokens, begin);
    if ((first.is("CREATE") || first.is("ALTER")) && isModuleStart(tokens, begin)) {
        size_t end = tokens.size();
        while (end > begin && tokens[end - 1].kind == TokenKind::End) --end;
        return end;
    }
    const bool schema = first.is("CREATE") && next && tokens[begin + 1].is("SCHEMA");
    const size_t action = first.is("ALTER") ? actionOfAlter(tokens, begin) : 0;
    int depth = 0;
    int cases = 0;
    size_t at = begin + 1;
    // BEGIN TRAN, CREATE x, DROP x: the word behind the verb belongs to it, whatever it is.
    if (first.is("BEGIN") || first.is("BULK") ||
        ((first.is("EXEC") || first.is("EXECUTE")) && next && !tokens[at].is("(")))
        ++at;
    for (; at < tokens.size() && tokens[at].kind != TokenKind::End; ++at) {
        const Token& token = tokens[at];
        if (token.is("("))
            ++depth;
        else if (token.is(")"))
            --depth;
        if (depth > 0) continue;
        if (token.is(";")) {
            // "EXEC proc;1": the number of a procedure of a group.
            const bool group = (first.is("EXEC") || first.is("EXECUTE")) &&
                               at + 1 < tokens.size() && tokens[at + 1].kind == TokenKind::Number;
            if (!group) break;
            continue;
        }
        if (token.is("CASE")) ++cases;
        if (cases > 0) {
            if (token.is("END")) --cases;
            continue;
        }
        if (token.kind != TokenKind::Word) continue;
        const Token& before = tokens[at - 1];
        const Token* after = at + 1 < tokens.size() ? &tokens[at + 1] : nullptr;
        if ((token.is("ENABLE") || token.is("DISABLE")) && after && after->is("TRIGGER") &&
            at != action)
            break;
        if (!isStarter(token)) continue;
        if (at == action || before.is(".") || before.is("WITH")) continue;
        if (belongsToDefinition(tokens, begin, at)) continue;
        if ((token.is("DELETE") || token.is("UPDATE")) && before.is("ON")) continue;
        if (token.is("SET") && after &&
            (after->is("(") || after->is("NULL") || after->is("DEFAULT")))
            continue;
        if (schema &&
            (token.is("CREATE") || token.is("GRANT") || token.is("DENY") || token.is("REVOKE"))) {
            if (!token.is("CREATE")) at = permissionEnd(tokens, at) - 1;
            continue;
        }
        break;
    }
    return at;
}

}  // namespace zov::local
