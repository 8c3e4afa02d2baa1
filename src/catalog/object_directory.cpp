#include "catalog/object_directory.h"

#include "core/error_report.h"
#include "data/mdlData.h"

namespace zov {
namespace {

constexpr int FirstVersionWithSchemas = 9;

QString directoryText(const ServerInfo& server) {
    if (GetMajorVersion(server.Version) >= FirstVersionWithSchemas)
        return QStringLiteral(
            "SELECT so.[object_id], so.[name], ss.[name] AS [schema] FROM sys.objects so INNER "
            "JOIN "
            "sys.schemas ss ON so.[schema_id] = ss.[schema_id]");
    return QStringLiteral(
        "SELECT so.id, so.name, su.name AS owner FROM sysobjects so INNER JOIN sysusers su ON "
        "so.uid "
        "= su.uid");
}

// Some collations give these no weight at all: two names may differ in them and be equal.
bool hasWeight(QChar c) {
    switch (c.category()) {
        case QChar::Mark_NonSpacing:
        case QChar::Mark_SpacingCombining:
        case QChar::Mark_Enclosing:
        case QChar::Other_Control:
        case QChar::Other_Format:
        case QChar::Other_Surrogate:
        case QChar::Other_PrivateUse:
        case QChar::Other_NotAssigned:
            return false;
        default:
            return true;
    }
}

}  // namespace

QString looseName(const QString& name) {
    QString loose;
    for (const QChar c : name.normalized(QString::NormalizationForm_KD).toUpper().toCaseFolded())
        if (hasWeight(c)) loose += c;
    while (loose.endsWith(u' ')) loose.chop(1);
    return loose;
}

ObjectDirectory ObjectDirectory::read(const ServerInfo& server, const QString& database) {
    return guarded("object_directory", "read", ObjectDirectory(), [&] {
        ObjectDirectory directory;
        std::unique_ptr<Recordset> rs;
        if (GetAdoRS(server, adCmdText, directoryText(server), rs, database) == -1 || !rs)
            return directory;
        for (; !rs->isEof(); rs->MoveNext()) {
            const QString name = rs->field(1).text();
            directory.places_.insert(qint32(rs->field(0).toInt64()), {rs->field(2).text(), name});
            ++directory.names_[looseName(name)];
        }
        directory.read_ = true;
        return directory;
    });
}

bool ObjectDirectory::isShared(const QString& name) const {
    return !read_ || names_.value(looseName(name)) > 1;
}

}  // namespace zov
