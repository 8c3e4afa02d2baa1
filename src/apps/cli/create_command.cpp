// zovrand-cli create
#include "apps/cli/cli_support.h"
#include "catalog/run_checks.h"
#include "core/globals.h"
#include "scripting/create_script.h"
#include "scripting/modSql.h"
#include "shell/console/console_shell.h"
#include "shell/memory_controls.h"
#include "util/atomic_file.h"
#include "util/text.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace zov::cli {
namespace {

constexpr ObjectType StatementKinds[] = {ObjectType::Table,    ObjectType::Procedure,
                                         ObjectType::Function, ObjectType::View,
                                         ObjectType::Trigger,  ObjectType::Relationship};

struct Asked {
    ServerInfo server;
    QString database;
    ObjectType type = ObjectType(0);  ///< none: of any kind
    bool toFolder = false;

    bool isKind(ObjectType kind) const { return type == ObjectType(0) || type == kind; }
    QString kindName(bool plural) const { return GetObjectTypeName(type, plural).toLower(); }
};

ObjectListRow rowOf(const ObjectRef& object) {
    ObjectListRow row{object.name, {}, object.id};
    row.schema = object.schema;
    return row;
}

/// Where the name stands among the objects; throws Failure when it means none, or several.
size_t placeOf(const QString& name, const std::vector<ObjectRef>& objects, const Asked& asked) {
    std::vector<size_t> found;
    for (const Qt::CaseSensitivity cs : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        if (!found.empty()) break;
        for (size_t i = 0; i < objects.size(); ++i)
            if (asked.isKind(objects[i].kind) && meansObject(name, rowOf(objects[i]), cs))
                found.push_back(i);
    }
    if (found.empty())
        throw Failure(
            QStringLiteral("The database %1 of %2 has no %3 \"%4\".\nIts tables are shown by: "
                           "zovrand-cli list -S %2 -d %1 -t tables.")
                .arg(asked.database, asked.server.Name, asked.kindName(false), name));
    if (found.size() == 1) return found.front();
    std::vector<ObjectListRow> rows;
    for (const size_t i : found) rows.push_back(rowOf(objects[i]));
    throw Failure(
        QStringLiteral("Several %1 have this name: %2.\nName one of them in full, and its "
                       "kind with -t.")
            .arg(asked.kindName(true), fullNames(rows)));
}

/// A name as a part of a file's name: what some file system forbids is written as %XX.
QString fileNamePart(const QString& name) {
    QString part;
    for (const QChar c : name) {
        if (c.unicode() < 32 || QStringView(u"/\\:*?\"<>|%").contains(c))
            part += QStringLiteral("%%1").arg(int(c.unicode()), 2, 16, QLatin1Char('0'));
        else
            part += c;
    }
    return part.left(120);
}

void writeFile(const QString& path, const QString& text) {
    const QString folder = QFileInfo(path).absolutePath();
    if (!QFileInfo(folder).isDir())
        throw Failure(
            QStringLiteral("The script can't be written: there is no folder %1.\nMake it, "
                           "or name another file or folder with -o.")
                .arg(folder));
    const QString trouble = writeFileAtomically(path, text.toUtf8());
    if (!trouble.isEmpty())
        throw Failure(trouble + QStringLiteral("\nName another file or folder with -o."));
}

/// One file a unit; their names sort in the order in which they run.
void writeFolder(const QString& path, const CreateScript& script, const QString& heading) {
    if (!QDir().mkpath(path))
        throw Failure(
            QStringLiteral("The folder %1 can't be made.\nName another one with -o.").arg(path));
    const QDir folder(path);
    int number = 0;
    for (const ScriptUnit& unit : script.units) {
        const QString name = QStringLiteral("%1 %2 %3")
                                 .arg(++number, 5, 10, QLatin1Char('0'))
                                 .arg(unit.what, fileNamePart(unit.name));
        writeFile(folder.filePath(name.trimmed() + QStringLiteral(".sql")), heading + unit.text);
    }
}

/// To standard output, or to the file of -o: as it is, since line breaks within a module's text are
/// the module's.
void writeScript(const Options& options, const QString& text) {
    if (!options.outputFile.isEmpty()) return writeFile(options.outputFile, text);
    writeOut(text);
    flushOut();
}

bool tellMissing(const QStringList& missing, ConsoleShell& console) {
    for (const QString& sentence : missing) console.showError(sentence);
    return !missing.isEmpty();
}

int createRunnable(const Options& options, const Asked& asked, ConsoleShell& console) {
    DatabaseFacts facts;
    if (!readDatabaseFacts(asked.server, asked.database, facts)) return Trouble;
    CreateScriptChoice choice;
    choice.dropFirst = options.dropHeader;
    choice.lineBreak = options.outputFile.isEmpty() ? QStringLiteral("\n") : CRLF;
    QSet<QString> chosen;
    const auto keyOf = [](const ObjectRef& object) {
        return QStringLiteral("%1 %2").arg(int(object.kind)).arg(object.fullName());
    };
    if (!options.objects.isEmpty()) {
        const std::vector<ObjectRef> objects = scriptableObjects(facts);
        for (const QString& name : options.objects)
            chosen.insert(keyOf(objects[placeOf(name, objects, asked)]));
        choice.wants = [&](const ObjectRef& object) { return chosen.contains(keyOf(object)); };
    } else if (asked.type != ObjectType(0)) {
        choice.wants = [&](const ObjectRef& object) { return object.kind == asked.type; };
    }
    const CreateScript script = makeCreateScript(facts, choice);
    const QString heading = createScriptHeading(asked.database, choice.lineBreak);
    if (asked.toFolder)
        writeFolder(options.outputFile, script, heading);
    else
        writeScript(options, script.text(heading));
    if (script.units.empty())
        console.showNote(QStringLiteral("There are no %1 in the database %2: the script is empty.")
                             .arg(asked.kindName(true), asked.database));
    QString hidden;
    const bool seesAll =
        !options.objects.isEmpty() || seesWholeCatalogue(asked.server, asked.database, hidden);
    if (!seesAll) console.showError(hidden);
    return tellMissing(script.missing, console) || !seesAll ? Trouble : Identical;
}

std::vector<ObjectRef> listedObjectsOf(const Asked& asked) {
    std::vector<ObjectRef> objects;
    for (const ObjectType kind : StatementKinds) {
        if (!asked.isKind(kind)) continue;
        for (const ObjectListRow& row : listedObjects(kind, SourcePanel, asked.database))
            objects.push_back(objectOf(row, kind));
    }
    return objects;
}

int createAsShown(const Options& options, const Asked& asked, ConsoleShell& console) {
    if (asked.type == ObjectType::Constraint)
        throw Failure(
            QStringLiteral("A constraint alone has no statement of the kind that the "
                           "window shows.\nLeave --as-shown out."));
    std::vector<ObjectRef> objects = listedObjectsOf(asked);
    if (!options.objects.isEmpty()) {
        std::vector<ObjectRef> named;
        for (const QString& name : options.objects)
            named.push_back(objects[placeOf(name, objects, asked)]);
        objects = std::move(named);
    }
    QString text;
    std::vector<ScriptUnit> units;
    QStringList missing;
    for (const ObjectRef& object : objects) {
        CreateStatementRequest request;
        request.dbName = asked.database;
        request.objectName = object.shownName;
        request.object = object;
        request.objectType = object.kind;
        request.objectId = object.id;
        request.lineSuffix = QStringLiteral(",");
        request.bodyOnly = !options.dropHeader;
        bool ok = false;
        QString statement = BuildObjectCreateStatement(asked.server, request, ok);
        if (!ok) {
            missing += QStringLiteral("%1 %2: no CREATE statement could be made.")
                           .arg(GetObjectTypeName(object.kind, false), object.fullName());
            continue;
        }
        statement += CRLF + QStringLiteral("GO") + CRLF;
        text += statement;
        units.push_back(
            {GetObjectTypeName(object.kind, false).toLower(), object.fullName(), statement});
    }
    if (asked.toFolder)
        writeFolder(options.outputFile, {units, {}, 0}, {});
    else
        writeScript(options, options.outputFile.isEmpty() ? withLf(text) : text);
    return tellMissing(missing, console) ? Trouble : Identical;
}

}  // namespace

int runCreate(const Options& options, ConsoleShell& console) {
    Asked asked;
    if (!options.type.isEmpty()) asked.type = objectTypeFromName(options.type);
    if (asked.type == ObjectType::Permission)
        throw Failure(
            QStringLiteral("Permissions have no CREATE statement.\nThe kinds are: tables, "
                           "procedures, functions, views, triggers, relationships, "
                           "constraints."));
    const QString& output = options.outputFile;
    asked.toFolder = !output.isEmpty() && (output.endsWith(u'/') || QFileInfo(output).isDir());
    asked.server = chooseServer(options, options.server);
    asked.database = chooseDatabase(options.server, asked.server, "-d");
    reachServer(asked.server, asked.database, SourcePanel);
    RunAccount account;
    int status = Trouble;
    {
        const KeepAccount keep(account);
        status = options.asShown ? createAsShown(options, asked, console)
                                 : createRunnable(options, asked, console);
    }
    return tellTrouble(console, account) || globals().gblnStop ? Trouble : status;
}

}  // namespace zov::cli
