// Words of an object's text that nothing accounts for. A word filter, not a
// parser: a word is named when it is no number, operator, keyword, special word,
// data type or variable. Names of objects that exist are named too.
#pragma once

#include "catalog/mdlObjects.h"

namespace zov {

/// The words behind the first AS that no filter knows, in the order of the text, repetitions
/// included.
QStringList FindRefToNonExistentObjects(ObjectType Type, const QString& Text,
                                        const std::vector<ObjectListEntry>& Objects);

/// The tokens of a prepared text: words in lower case, those in double quotation marks as they are.
QStringList GetTokens(const QString& Text);
/// The parameters in the header of a procedure or function; none for other types.
QStringList GetVariables(const QStringList& Tokens, ObjectType Type);

bool IsItSqlKeyword(const QString& Word);
bool IsItMathOperand(const QString& Word);
bool IsItSpecialWord(const QString& Word);
bool IsItSqlDataType(const QString& Word);
/// With no variables at all nothing is one, "@" in front or not.
bool IsItVariable(const QString& Word, const QStringList& Variables);

}  // namespace zov
