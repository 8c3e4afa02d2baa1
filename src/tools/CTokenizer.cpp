#include "tools/CTokenizer.h"

namespace zov {

void CTokenizer::setText(const QString& value) {
    text_ = value;
    length_ = value.size();
    position_ = 1;
}

CTokenizer::Class CTokenizer::CharType(QChar c) const {
    if (quoteChars_.contains(c)) return Class::Quote;
    if (separatorChars_.contains(c)) return Class::Separator;
    if (whiteSpaceChars_.contains(c)) return Class::WhiteSpace;
    if (eolChars_.contains(c)) return Class::Eol;
    return Class::Token;
}

bool CTokenizer::GetNextToken(QString& Token, QString& Separator, bool& Quoted) {
    token_.clear();
    Token.clear();
    Separator.clear();
    Quoted = false;
    state_ = State::Start;
    if (position_ >= length_) return false;
    bool goOn = true;
    while (goOn && position_ <= length_) {
        current_ = text_[position_ - 1];
        switch (CharType(current_)) {
            case Class::Quote:
                Quoted = true;
                goOn = HandleQuote(Separator);
                break;
            case Class::Separator:
                goOn = HandleSeparator(Separator);
                break;
            case Class::WhiteSpace:
                goOn = HandleWhiteSpace();
                break;
            case Class::Eol:
                goOn = HandleEOF(Separator);
                break;
            case Class::Token:
                goOn = HandleToken();
                break;
        }
    }
    Token = token_;
    return true;
}

void CTokenizer::AppendToken() {
    if (state_ == State::InQuotes || convertCase_ == 0) {
        token_ += current_;
    } else if (convertCase_ == 1) {
        token_ += current_.toUpper();
    } else {
        token_ += convertCase_ == 2 ? current_.toLower() : current_;
    }
}

bool CTokenizer::HandleEOF(QString& separator) {
    while (position_ <= length_ && eolChars_.contains(text_[position_ - 1])) {
        separator += text_[position_ - 1];
        ++position_;
    }
    state_ = State::InToken;
    return false;
}

bool CTokenizer::HandleQuote(QString& separator) {
    switch (state_) {
        case State::Start:
            state_ = State::InQuotes;
            openQuote_ = current_;
            ++position_;
            return true;
        case State::InQuotes:
            if (current_ == openQuote_) {
                state_ = State::Ended;
                openQuote_ = QChar();
            } else {
                AppendToken();
            }
            ++position_;
            return true;
        case State::InToken:
        case State::Ended:
            break;
    }
    separator = current_;
    return false;
}

bool CTokenizer::HandleSeparator(QString& separator) {
    ++position_;
    if (state_ == State::InQuotes) {
        AppendToken();
        return true;
    }
    separator = current_;
    return false;
}

bool CTokenizer::HandleToken() {
    if (state_ == State::Ended) return false;
    if (state_ == State::Start) state_ = State::InToken;
    AppendToken();
    ++position_;
    return true;
}

bool CTokenizer::HandleWhiteSpace() {
    ++position_;
    if (state_ == State::InQuotes)
        AppendToken();
    else if (state_ == State::InToken)
        state_ = State::Ended;
    return true;
}

}  // namespace zov
