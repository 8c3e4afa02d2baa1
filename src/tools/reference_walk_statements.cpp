// Headers of modules, statements of control and definition, procedure calls.
#include "tools/reference_walk.h"

namespace zov {
namespace {

/// Whether a statement of its own begins with the word.
bool beginsStatement(Key key) {
    switch (key) {
        case Key::Alter:
        case Key::Backup:
        case Key::Begin:
        case Key::Break:
        case Key::Bulk:
        case Key::Checkpoint:
        case Key::Close:
        case Key::Commit:
        case Key::Continue:
        case Key::Create:
        case Key::Dbcc:
        case Key::Deallocate:
        case Key::Declare:
        case Key::Delete:
        case Key::Deny:
        case Key::Drop:
        case Key::Else:
        case Key::End:
        case Key::Exec:
        case Key::Fetch:
        case Key::Goto:
        case Key::Grant:
        case Key::If:
        case Key::Insert:
        case Key::Kill:
        case Key::Merge:
        case Key::Open:
        case Key::Print:
        case Key::Raiserror:
        case Key::Readtext:
        case Key::Reconfigure:
        case Key::Restore:
        case Key::Return:
        case Key::Revert:
        case Key::Revoke:
        case Key::Rollback:
        case Key::Save:
        case Key::Select:
        case Key::Set:
        case Key::Truncate:
        case Key::Update:
        case Key::Updatetext:
        case Key::Use:
        case Key::Waitfor:
        case Key::While:
        case Key::Writetext:
            return true;
        default:
            return false;
    }
}

}  // namespace

void ReferenceWalk::statements(size_t end) {
    while (more(end)) statement(end);
}

// One statement, or one word that none begins with: labels, what a statement leaves behind it.
void ReferenceWalk::statement(size_t end) {
    if (word().isSign(u'(')) return parenthesis(nullptr);
    const auto condition = [&] {
        ++at_;
        expression(end, nullptr, {});
    };
    switch (key()) {
        case Key::With:
            if (!atCommonTables()) break;
            return commonTables(end);
        case Key::Select:
            query(end, nullptr);
            break;
        case Key::Insert:
            insert(end);
            break;
        case Key::Update:
            update(end);
            break;
        case Key::Delete:
            deleteRows(end);
            break;
        case Key::Merge:
            merge(end);
            break;
        case Key::Exec:
            return execute(end);
        case Key::Declare:
            return declare(end);
        case Key::Create:
            return create(end, false);
        case Key::Alter:
            return create(end, true);
        case Key::Grant:
        case Key::Deny:
        case Key::Revoke:
            return grant(end);
        case Key::Set:
            return set(end);
        case Key::If:
        case Key::While:
        case Key::Return:
        case Key::Print:
        case Key::Raiserror:
            return condition();
        case Key::Truncate: {
            ++at_;
            Name truncated;
            if (skip(Key::Table) && name(truncated)) table(truncated);
            return;
        }
        case Key::Bulk: {
            ++at_;
            Name filled;
            if (skip(Key::Insert) && name(filled)) table(filled);
            return;
        }
        default:
            ++at_;
            return;
    }
    if (key() != Key::With || !atCommonTables()) commonTables_.clear();
    if (key() == Key::With) ++at_;
}

// From CREATE to the body. A text that begins otherwise is all body.
void ReferenceWalk::header(size_t end) {
    const size_t start = at_;
    if (!skip(Key::Create) && !skip(Key::Alter)) return;
    if (key() == Key::Reserved && word().text.compare(u"OR", Qt::CaseInsensitive) == 0) at_ += 2;
    const Key kind = key();
    ++at_;
    Name own;
    if ((kind != Key::Proc && kind != Key::Function && kind != Key::View && kind != Key::Trigger) ||
        !name(own)) {
        at_ = start;
        return;
    }
    if (skipSign(u';')) ++at_;
    if (kind == Key::View) skipParenthesis();
    if (kind == Key::Trigger) {
        isTrigger_ = true;
        Name on;
        if (skip(Key::On) && key() != Key::All && !word(0).isWord("DATABASE") && name(on))
            triggerTable_ = table(on).object;
    }
    if (kind == Key::Proc || kind == Key::Function) parameters(end);
    if (kind == Key::Function) returnType(end);
    // WITH options, FOR events: EXECUTE AS CALLER has an AS of its own.
    while (more(end) && key() != Key::Begin && key() != Key::Return) {
        if (key() == Key::Exec && key(1) == Key::As) {
            at_ += 2;
        } else if (skip(Key::As)) {
            return;
        } else {
            ++at_;
        }
    }
}

void ReferenceWalk::parameters(size_t end) {
    const size_t close = word().isSign(u'(') ? size_t(word().close) : end;
    if (close != end) ++at_;
    while (more(close) && word().kind == WordKind::Variable) {
        ++at_;
        skip(Key::As);
        typeReference();
        // A default may be a word without quotes.
        while (more(close) && !word().isSign(u',') && key() != Key::As && key() != Key::With &&
               key() != Key::For)
            ++at_;
        if (!skipSign(u',')) break;
    }
    if (close != end) at_ = std::min(close + 1, words_.size());
}

void ReferenceWalk::returnType(size_t end) {
    if (!skipWord("RETURNS")) return;
    if (word().kind == WordKind::Variable) ++at_;
    if (skip(Key::Table)) {
        if (word().isSign(u'(')) columnDefinitions();
    } else if (more(end)) {
        typeReference();
    }
}

void ReferenceWalk::declare(size_t end) {
    ++at_;
    if (word().kind != WordKind::Variable) {  // a cursor: its query is a statement like any other
        while (more(end) && key() != Key::For && key() != Key::Select && !word().isSign(u';'))
            ++at_;
        return;
    }
    while (more(end) && word().kind == WordKind::Variable) {
        ++at_;
        skip(Key::As);
        if (skip(Key::Table)) {
            if (word().isSign(u'(')) columnDefinitions();
        } else if (!skip(Key::Cursor)) {
            typeReference();
        }
        if (skipSign(u'=')) {
            Mode mode;
            mode.stopsAtComma = true;
            expression(end, nullptr, mode);
        }
        if (!skipSign(u',')) return;
    }
}

void ReferenceWalk::set(size_t end) {
    ++at_;
    if (word().kind == WordKind::Variable) return expression(end, nullptr, {});
    Name of;
    if (skip(Key::IdentityInsert) && name(of)) table(of);
}

void ReferenceWalk::execute(size_t end) {
    ++at_;
    if (skip(Key::As)) {  // another user's rights
        ++at_;
        return;
    }
    if (word().kind == WordKind::Variable && word(1).isSign(u'=')) at_ += 2;
    Name called;
    if (name(called)) checkProcedure(called);
    expression(end, nullptr, {});
}

// Permissions have the names of statements: GRANT SELECT, DELETE ON t TO u.
void ReferenceWalk::grant(size_t end) {
    while (more(end) && key() != Key::To && key() != Key::From && !word().isSign(u';')) ++at_;
}

void ReferenceWalk::create(size_t end, bool alters) {
    ++at_;
    Name made;
    if (skip(Key::Table)) {
        if (!name(made)) return;
        if (alters) {
            if (const NamedObject* altered = table(made).object) altered_.insert(altered);
            return alterTable(end);
        }
        made_.insert(names_.fold(made.last()));
        if (word().isSign(u'(')) columnDefinitions();
        return;
    }
    if (skipWord("TYPE")) {
        if (name(made)) made_.insert(names_.fold(made.last()));
        if (key() == Key::As && key(1) == Key::Table) {
            at_ += 2;
            if (word().isSign(u'(')) columnDefinitions();
        }
        return;
    }
    for (const char* kind : {"SYNONYM", "SEQUENCE"})
        if (skipWord(kind)) {
            if (name(made)) made_.insert(names_.fold(made.last()));
            return;
        }
    // Indexes and statistics stand ON a table.
    for (size_t ahead = 0; ahead < 5; ++ahead) {
        if (key(ahead) != Key::Index && key(ahead) != Key::Statistics) continue;
        at_ += ahead + 1;
        Name index;
        if (name(index) || skip(Key::All))
            if (skip(Key::On) && name(made)) table(made);
        return;
    }
    const bool isModule =
        key() == Key::Proc || key() == Key::Function || key() == Key::View || key() == Key::Trigger;
    if (!isModule) return;
    ++at_;
    if (name(made)) made_.insert(names_.fold(made.last()));
}

// Behind ALTER TABLE stand words that elsewhere begin statements.
void ReferenceWalk::alterTable(size_t end) {
    const auto isText = [&](const char* text) {
        return word(1).kind == WordKind::Name &&
               word(1).text.compare(QLatin1StringView(text), Qt::CaseInsensitive) == 0;
    };
    while (more(end) && !word().isSign(u';')) {
        const bool isPart =
            (key() == Key::Drop &&
             (key(1) == Key::Constraint || key(1) == Key::Index || isText("COLUMN") ||
              isText("PERIOD") || isText("ROWGUIDCOL"))) ||
            (key() == Key::Alter && (isText("COLUMN") || key(1) == Key::Index)) ||
            (key() == Key::On && (key(1) == Key::Delete || key(1) == Key::Update)) ||
            (key() == Key::Set && (key(1) == Key::Null || key(1) == Key::Default));
        if (isPart) {
            at_ += 2;
        } else if (key() == Key::Set && word(1).isSign(u'(')) {
            ++at_;
        } else if (word().isSign(u'(')) {
            skipParenthesis();
        } else if (skip(Key::References)) {
            Name referred;
            if (name(referred)) table(referred);
        } else if (beginsStatement(key())) {
            return;
        } else {
            ++at_;
        }
    }
}

bool ReferenceWalk::atCommonTables() const {
    if (word(1).isWord("XMLNAMESPACES") && word(2).isSign(u'(')) return true;
    if (!word(1).isName()) return false;
    size_t ahead = 2;
    if (word(ahead).isSign(u'(')) ahead = size_t(word(ahead).close) + 1 - at_;
    return key(ahead) == Key::As && word(ahead + 1).isSign(u'(');
}

// WITH a (x, y) AS (...), b AS (...): each sees those in front of it, and itself.
void ReferenceWalk::commonTables(size_t end) {
    ++at_;
    if (skipWord("XMLNAMESPACES")) {
        skipParenthesis();
        if (!skipSign(u',')) return;
    }
    while (more(end) && word().isName()) {
        commonTables_.insert(names_.fold(word().content()));
        ++at_;
        skipParenthesis();
        if (!skip(Key::As) || !word().isSign(u'(')) return;
        parenthesis(nullptr);
        if (!skipSign(u',')) return;
    }
}

// The columns of a table that is made here: their types, and the tables that they refer to.
void ReferenceWalk::columnDefinitions() {
    const size_t close = size_t(word().close);
    ++at_;
    while (more(close)) {
        const bool isColumn = word().isName() && !word(1).isSign(u'(') && key(1) != Key::As;
        if (isColumn) {
            ++at_;
            typeReference();
        }
        while (more(close) && !word().isSign(u',')) {
            Name named;
            if (skip(Key::References)) {
                if (name(named)) table(named);
                skipParenthesis();
            } else if (word().isSign(u'(')) {
                parenthesis(nullptr);
            } else if (name(named)) {
                if (word().isSign(u'(')) call(named, nullptr);
            } else {
                ++at_;
            }
        }
        skipSign(u',');
    }
    at_ = std::min(close + 1, words_.size());
}

void ReferenceWalk::typeReference() {
    Name type;
    if (!name(type)) {  // DOUBLE PRECISION, NATIONAL CHAR VARYING, CURSOR
        if (word().kind == WordKind::Name) ++at_;
        if (word().isName()) ++at_;
    } else if (type.parts.size() <= 2) {
        const QString last = type.last();
        const QString schema = type.parts.size() == 2 ? type.parts[0] : QString();
        bool isThere = isSystemType(last) || isMade(last);
        for (const QString& candidate :
             schema.isEmpty() ? QStringList{schema_, QStringLiteral("dbo"), QStringLiteral("sys")}
                              : QStringList{schema})
            isThere = isThere || names_.hasType(candidate, last);
        if (!isThere) report(type, MissingKind::Type);
    }
    while (word().kind == WordKind::Name &&
           (word().text.compare(u"VARYING", Qt::CaseInsensitive) == 0 ||
            word().text.compare(u"PRECISION", Qt::CaseInsensitive) == 0))
        ++at_;
    skipParenthesis();
}

}  // namespace zov
