#include "tools/missing_references.h"

#include "tools/reference_walk.h"

namespace zov {
namespace {

// Those of the first releases, which every database still answers to without a schema.
constexpr const char* OldCatalogue =
    "sysaltfiles syscacheobjects syscharsets syscolumns syscomments sysconfigures sysconstraints "
    "syscurconfigs syscursorcolumns syscursorrefs syscursors syscursortables sysdatabases "
    "sysdepends "
    "sysdevices sysfilegroups sysfiles sysfiles1 sysforeignkeys sysfulltextcatalogs "
    "sysfulltextnotify sysindexes sysindexkeys syslanguages syslockinfo syslocks syslogins "
    "sysmembers "
    "sysmessages sysobjects sysoledbusers sysopentapes sysperfinfo syspermissions sysprocesses "
    "sysproperties sysprotects sysreferences sysremotelogins syssegments sysservers systypes "
    "sysusers sysxlogins";
constexpr const char* SystemTypes =
    "bigint binary bit char character cursor date datetime datetime2 datetimeoffset dec decimal "
    "float geography geometry hierarchyid image int integer json money nchar ntext numeric "
    "nvarchar "
    "real rowversion smalldatetime smallint smallmoney sql_variant sysname table text time "
    "timestamp "
    "tinyint uniqueidentifier varbinary varchar vector xml";

QString what(MissingKind kind) {
    switch (kind) {
        case MissingKind::TableOrView:
            return QStringLiteral("table or view");
        case MissingKind::Procedure:
            return QStringLiteral("procedure");
        case MissingKind::Function:
            return QStringLiteral("function");
        case MissingKind::Column:
            return QStringLiteral("column");
        case MissingKind::Type:
            return QStringLiteral("type");
        case MissingKind::Sequence:
            return QStringLiteral("sequence");
    }
    return {};
}

}  // namespace

bool isSystemName(const QString& schema, const QString& name) {
    const auto isCalled = [](const QString& one, const char* other) {
        return one.compare(QLatin1StringView(other), Qt::CaseInsensitive) == 0;
    };
    if (isCalled(schema, "sys") || isCalled(schema, "INFORMATION_SCHEMA")) return true;
    if (!schema.isEmpty() && !isCalled(schema, "dbo")) return false;
    static const QSet<QString> names = wordSet(OldCatalogue);
    return names.contains(name.toLower());
}

bool isSystemType(const QString& name) {
    static const QSet<QString> types = wordSet(SystemTypes);
    return types.contains(name.toLower());
}

QString MissingReference::sentence() const {
    QString told = what(kind) + u' ' + name;
    if (!owner.isEmpty()) told += QStringLiteral(" of ") + owner;
    told += QStringLiteral(" can't be found");
    // A line break in a name makes no second line.
    for (QChar& c : told)
        if (c.unicode() < u' ') c = QChar(0x2400 + c.unicode());
    return told;
}

ModuleReferences FindMissingReferences(const ModuleText& module, const DatabaseNames& names) {
    ModuleReferences references;
    if (!module.isReadable) {
        references.trouble = QStringLiteral("its text can't be read");
        return references;
    }
    const SqlText text = cutSqlText(module.text, module.quotedNames);
    ReferenceWalk walk(module, names, text);
    references.missing = walk.run();
    if (text.openQuotation > 0)
        references.trouble =
            QStringLiteral("its text ends inside a quotation that begins in line %1")
                .arg(text.openQuotation);
    else if (text.openComment > 0)
        references.trouble = QStringLiteral("its text ends inside a comment that begins in line %1")
                                 .arg(text.openComment);
    else if (walk.isTooDeep())
        references.trouble = QStringLiteral("its text is nested too deeply to be read to the end");
    return references;
}

}  // namespace zov
