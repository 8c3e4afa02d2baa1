// zovrand-cli references
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "shell/console/console_shell.h"
#include "shell/console/visible_text.h"
#include "tools/modNonExistObjects.h"
#include "tools/reference_search.h"

#include <algorithm>

namespace zov::cli {
namespace {

constexpr ObjectType SearchedKinds[] = {ObjectType::Procedure, ObjectType::Function,
                                        ObjectType::View, ObjectType::Trigger};

/// The kinds that -t names; throws Failure.
std::vector<ObjectType> chosenKinds(const Options& options) {
    std::vector<ObjectType> kinds(std::begin(SearchedKinds), std::end(SearchedKinds));
    if (options.type.isEmpty()) return kinds;
    const ObjectType type = objectTypeFromName(options.type);
    if (std::find(kinds.begin(), kinds.end(), type) == kinds.end())
        throw Failure(QStringLiteral("There are no texts to search in %1.\nThe kinds are: "
                                     "procedures, functions, views, triggers.")
                          .arg(GetObjectTypeName(type, true)));
    return {type};
}

/// Takes away the modules that aren't asked for; throws Failure for a name that none has.
void keepChosen(const Options& options, const QString& server, const QString& database,
                std::vector<ModuleText>& modules) {
    const std::vector<ObjectType> kinds = chosenKinds(options);
    std::erase_if(modules, [&](const ModuleText& module) {
        return std::find(kinds.begin(), kinds.end(), module.object.kind) == kinds.end();
    });
    if (options.objectNames.isEmpty()) return;
    std::vector<ObjectListRow> rows;
    for (const ModuleText& module : modules)
        rows.push_back({module.object.name,
                        {},
                        module.object.id,
                        module.object.schema,
                        module.object.name,
                        false});
    std::vector<bool> chosen(modules.size());
    for (const QString& name : options.objectNames) {
        const std::vector<int> meant = rowsMeant(rows, name);
        if (meant.empty())
            throw Failure(QStringLiteral(
                              "The database %1 of %2 has no procedure, function, view or trigger "
                              "\"%3\" of the kinds searched.\nNames are shown by: zovrand-cli list "
                              "-S %2 -d %1 -t TYPE.")
                              .arg(database, server, name));
        if (meant.size() > 1) {
            std::vector<ObjectListRow> namesakes;
            for (const int row : meant) namesakes.push_back(rows[size_t(row)]);
            throw Failure(
                QStringLiteral(
                    "Several objects have the name \"%1\": %2.\nName one of them in full.")
                    .arg(name, fullNames(namesakes)));
        }
        chosen[size_t(meant.front())] = true;
    }
    size_t at = 0;
    std::erase_if(modules, [&](const ModuleText&) { return !chosen[at++]; });
}

/// "procedure dbo.P: word word" of each; what can't be read is told.
QStringList wordLines(const SearchedDatabase& searched, QStringList& trouble) {
    QStringList lines;
    for (const ModuleText& module : searched.modules) {
        if (!module.isReadable) {
            trouble += unreadModule(module.object);
            continue;
        }
        const QStringList words = FindRefToNonExistentObjects(module.object.kind, module.text, {});
        lines += moduleTitle(module.object) + QStringLiteral(": ") + words.join(u' ');
    }
    return lines;
}

}  // namespace

int runReferences(const Options& options, ConsoleShell& console) {
    chosenKinds(options);
    ServerInfo server = chooseServer(options, options.server);
    const QString database = chooseDatabase(options.server, server, "-d");
    reachServer(server, database, SourcePanel);
    SearchedDatabase searched = readSearchedDatabase(server, database);
    if (tellTrouble(console, searched.account)) return Trouble;
    keepChosen(options, server.Name, database, searched.modules);
    QStringList lines, trouble;
    if (options.words) {
        lines = wordLines(searched, trouble);
    } else {
        const ReferenceFindings findings =
            findMissingReferences(searched, [](const ModuleText&) { return true; });
        if (findings.stopped) throw Failure(QStringLiteral("Stopped."));
        lines = findings.missing;
        trouble = findings.trouble;
        if (!searched.doubt.isEmpty()) trouble += searched.doubt;
    }
    QString text;
    for (const QString& line : lines) text += visibleText(line) + u'\n';
    if (!text.isEmpty() || !options.outputFile.isEmpty()) writeReport(options, text);
    for (const QString& sentence : trouble) console.showError(sentence);
    if (!trouble.isEmpty()) return Trouble;
    return options.words || lines.isEmpty() ? Identical : Different;
}

}  // namespace zov::cli
