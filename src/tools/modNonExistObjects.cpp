#include "tools/modNonExistObjects.h"

#include "core/error_report.h"
#include "structcompare/modCompareObjects.h"
#include "tools/CTokenizer.h"
#include "tools/sql_words.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr const char* Module = "modNonExistObjects";

// Users know which words are passed over; "UNIQUOE" stands for itself, and UNIQUE is named.
constexpr const char* Keywords =
    "ADD ALL ALTER AND ANY AS ASC AUTHORIZATION BACKUP BEGIN BETWEEN BREAK BROWSE BULK BY CASCADE "
    "CASE CHECK CHECKPOINT CLOSE CLUSTERED COALESCE COLLATE COLUMN COMMIT COMPUTE CONSTRAINT "
    "CONTAINS CONTAINSTABLE CONTINUE CONVERT CREATE CROSS CURRENT CURRENT_DATE CURRENT_TIME "
    "CURRENT_TIMESTAMP CURRENT_USER CURSOR DATABASE DBCC DEALLOCATE DECLARE DEFAULT DELETE DENY "
    "DESC DISK DISTINCT DISTRIBUTED DOUBLE DROP DUMMY DUMP ELSE END ERRLVL ESCAPE EXCEPT EXEC "
    "EXECUTE EXISTS EXIT FETCH FILE FILLFACTOR FOR FOREIGN FREETEXT FREETEXTTABLE FROM FULL "
    "FUNCTION GOTO GRANT GROUP HAVING HOLDLOCK IDENTITY IDENTITY_INSERT IDENTITYCOL IF IN INDEX "
    "INNER INSERT INTERSECT INTO IS JOIN KEY KILL LEFT LIKE LINENO LOAD NATIONAL NOCHECK "
    "NONCLUSTERED NOT NULL NULLIF OF OFF OFFSETS ON OPEN OPENDATASOURCE OPENQUERY OPENROWSET "
    "OPENXML OPTION OR ORDER OUTER OVER PERCENT PLAN PRECISION PRIMARY PRINT PROC PROCEDURE PUBLIC "
    "RAISERROR READ READTEXT RECONFIGURE REFERENCES REPLICATION RESTORE RESTRICT RETURN REVOKE "
    "RIGHT ROLLBACK ROWCOUNT ROWGUIDCOL RULE SAVE SCHEMA SELECT SESSION_USER SET SETUSER SHUTDOWN "
    "SOME STATISTICS SYSTEM_USER TABLE TEXTSIZE THEN TO TOP TRAN TRANSACTION TRIGGER TRUNCATE "
    "TSEQUAL UNION UNIQUOE UPDATE UPDATETEXT USE USER VALUES VARYING VIEW WAITFOR WHEN WHERE WHILE "
    "WITH WRITETEXT";
constexpr const char* DataTypes =
    "bigint bit decimal int money float date datetime2 datetime char text nchar ntext binary image "
    "cursor hierarchyid sql_variant table";

bool isAs(const QString& token) {
    return token.compare(QLatin1StringView("AS"), Qt::CaseInsensitive) == 0;
}

/// Without comments, brackets, parentheses and commas.
QString prepared(const QString& text) {
    QString words = StripCommentsFromProc(Trim(text));
    for (const QChar c : {u'(', u')', u','}) words.replace(c, u' ');
    for (const QChar c : {u'[', u']'}) words.remove(c);
    return words;
}

}  // namespace

QStringList GetTokens(const QString& Text) {
    QStringList tokens;
    CTokenizer tokenizer;
    tokenizer.setQuoteChars(QStringLiteral("\""));
    tokenizer.setConvertCase(2);
    tokenizer.setEOLChars(CRLF);
    tokenizer.setText(Text);
    QString token;
    bool quoted = false;
    for (QString separator = QStringLiteral(" "); tokenizer.GetNextToken(token, separator, quoted);
         separator = QStringLiteral(" "))
        tokens += token;
    return tokens;
}

QStringList GetVariables(const QStringList& Tokens, ObjectType Type) {
    QStringList variables;
    if (Type != ObjectType::Procedure && Type != ObjectType::Function) return variables;
    for (const QString& token : Tokens) {
        if (token.startsWith(u'@')) variables += token;
        if (isAs(token)) break;
    }
    return variables;
}

bool IsItSqlKeyword(const QString& Word) {
    static const QSet<QString> keywords = wordSet(Keywords);
    return keywords.contains(Word.toUpper());
}

bool IsItMathOperand(const QString& Word) {
    static const QSet<QString> operands = wordSet("= <> > < - +");
    return operands.contains(Word);
}

bool IsItSpecialWord(const QString& Word) {
    static const QSet<QString> words = wordSet("dbo nocount ; --");
    return words.contains(Word.toLower());
}

bool IsItSqlDataType(const QString& Word) {
    static const QSet<QString> types = wordSet(DataTypes);
    return types.contains(Word.toLower());
}

bool IsItVariable(const QString& Word, const QStringList& Variables) {
    if (Variables.isEmpty()) return false;
    return Word.startsWith(u'@') || Variables.contains(Word, Qt::CaseInsensitive);
}

QStringList FindRefToNonExistentObjects(ObjectType Type, const QString& Text,
                                        const std::vector<ObjectListEntry>& Objects) {
    QStringList references;
    guardedRun(Module, "FindRefToNonExistentObjects", [&] {
        const QStringList tokens = GetTokens(prepared(Text));
        const QStringList variables = GetVariables(tokens, Type);
        bool inBody = false;
        for (const QString& token : tokens) {
            if (token.isEmpty()) continue;
            if (isAs(token)) {
                inBody = true;
                continue;
            }
            if (!inBody || isNumeric(token) || IsItMathOperand(token) || IsItSqlKeyword(token) ||
                IsItSpecialWord(token) || IsItSqlDataType(token) ||
                IsItVariable(token, variables) || IsItDbObject(token, Objects))
                continue;
            references += token;
        }
    });
    return references;
}

}  // namespace zov
