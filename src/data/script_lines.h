// Going through a T-SQL script line by line: what a line opens and closes, and the GO lines.
#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace zov {

/// Where a line leaves the scanner: inside a block comment, or inside a quote that spans lines.
struct ScriptLineState {
    int commentDepth = 0;
    QChar openQuote;  ///< the character that ends it; null outside of quotes

    bool isOpen() const { return commentDepth > 0 || !openQuote.isNull(); }
};

/// What a character of a line belongs to.
enum class ScriptLinePart { Code, Quoted, Comment };

/// Goes over a line without its line break. Each step takes one mark or character.
class ScriptLineScanner {
 public:
    ScriptLineScanner(QStringView line, ScriptLineState& state) : line_(line), state_(state) {}

    bool atEnd() const { return at_ >= line_.size(); }
    qsizetype position() const { return at_; }
    /// Goes on behind the next mark or character, and tells what it belongs to.
    ScriptLinePart step();

 private:
    QStringView line_;
    ScriptLineState& state_;
    qsizetype at_ = 0;
};

inline ScriptLinePart ScriptLineScanner::step() {
    const QChar c = line_[at_++];
    const QChar next = at_ < line_.size() ? line_[at_] : QChar();
    if (!state_.openQuote.isNull()) {
        // A doubled quote closes and opens again, which comes to the same; "]]" would only close.
        if (c == u']' && next == u']' && state_.openQuote == u']')
            ++at_;
        else if (c == state_.openQuote)
            state_.openQuote = QChar();
        return ScriptLinePart::Quoted;
    }
    if (c == u'/' && next == u'*') {
        ++state_.commentDepth;
        ++at_;
        return ScriptLinePart::Comment;
    }
    if (state_.commentDepth > 0) {
        if (c == u'*' && next == u'/') {
            --state_.commentDepth;
            ++at_;
        }
        return ScriptLinePart::Comment;
    }
    if (c == u'-' && next == u'-') {
        at_ = line_.size();
        return ScriptLinePart::Comment;
    }
    if (c == u'\'' || c == u'"' || c == u'[') {
        state_.openQuote = c == u'[' ? QChar(u']') : c;
        return ScriptLinePart::Quoted;
    }
    return ScriptLinePart::Code;
}

/// A line without its line break. `length` takes the line break in.
struct ScriptLine {
    QStringView text;
    qsizetype length = 0;
};
ScriptLine scriptLineAt(const QString& script, qsizetype at);

/// The count of a GO line, 0 for one that no batch can be run; empty for any other line. A count, a
/// semicolon or a comment may follow GO.
std::optional<int> goCount(QStringView line);

}  // namespace zov
