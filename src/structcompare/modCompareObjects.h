// The tests that tell whether two objects' texts are the same but for what the
// user's settings say doesn't count, and the text cleaners beneath them. Each
// test is separate: which of them run, and in which order, is the caller's affair.
#pragma once

#include "shell/controls.h"

#include <QString>

namespace zov {

/// Equal when every run of white space is taken as one blank and blanks at the ends are cut. White
/// space at the ends other than blanks still counts. Without gblnCaseSensitive letter case doesn't.
bool CompareProcs_IgnoreWhiteSpace(const QString& a, const QString& b);

/// Puts `replacement` for each carriage return, line feed, NUL, tab and vertical tab. With a blank
/// as replacement every run of white space becomes one blank; another one isn't folded.
QString ReplaceNonPrintableChars(const QString& text, const QString& replacement);

/// The n-th word, from 1; words are what stands between delimiters and may be empty. Empty behind
/// the last one.
QString GetDelimitedWord_Extended(const QString& text, qint32 wordNumber, const QString& delimiter);

/// The text without its block and line comments. Quotes are not looked at: "--" within a literal
/// starts a comment. When there is a comment anywhere, every line feed gets a carriage return in
/// front, also one that has it already: the next comparison is expected to fold white space.
/// A block comment that isn't closed repeats the text in front of it.
QString StripCommentsFromProc(const QString& text);

/// Makes the headers of two views equal when they name the same view in different ways (quotes,
/// brackets, owner, line breaks): the target's CREATE VIEW ... AS becomes the source's.
void AdjustCreateViewStatements(const QString& source, QString& target);

/// The panes' texts line by line, where "dbo." doesn't count from the line on that holds
/// CREATE PROCEDURE on either side.
bool CompareProcs_IgnoreOwnerInName(const TextPane& source, const TextPane& target);

}  // namespace zov
