#include "apps/cli/cli_options.h"

#include "apps/cli/cli_examples.h"
#include "core/globals.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <deque>

namespace zov::cli {
namespace {

const char* const TypeHelp =
    "tables, procedures, functions, views, triggers, relationships, constraints or permissions";

// The parser takes "[a].[b]" for a list in brackets, and strips them, unless something stands in
// front.
constexpr char BracketGuard = '\x01';

/// The arguments with a guard before those in brackets, last one first as the parser wants them.
std::vector<std::string> guardedArguments(int argc, char** argv) {
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) {
        arguments.emplace_back(argv[i]);
        std::string& argument = arguments.back();
        if (!argument.empty() && argument.front() == '[' && argument.back() == ']')
            argument.insert(argument.begin(), BracketGuard);
    }
    return arguments;
}

/// Texts as the parser gives them, and where they go when it is done.
class Fields {
 public:
    std::string& text(QString& to) {
        texts_.emplace_back(std::string(), &to);
        return texts_.back().first;
    }
    std::vector<std::string>& list(QStringList& to) {
        lists_.emplace_back(std::vector<std::string>(), &to);
        return lists_.back().first;
    }
    /// An option that stands at several commands fills the same field: only the one given counts.
    void store() {
        for (const auto& [from, to] : texts_) {
            if (!from.empty()) *to = withoutGuard(from);
        }
        for (const auto& [from, to] : lists_) {
            for (const std::string& item : from) *to += withoutGuard(item);
        }
    }

 private:
    static QString withoutGuard(const std::string& text) {
        const bool isGuarded = !text.empty() && text.front() == BracketGuard;
        return QString::fromLocal8Bit(isGuarded ? text.substr(1) : text);
    }

    std::deque<std::pair<std::string, QString*>> texts_;
    std::deque<std::pair<std::vector<std::string>, QStringList*>> lists_;
};

void addSettings(CLI::App* command, Options& options, Fields& fields) {
    command
        ->add_option("--set", fields.list(options.settings),
                     "Give a setting another value for this run, as IgnoreComments=0")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
}

void addLogin(CLI::App* command, Options& options, Fields& fields) {
    command
        ->add_option("--login", fields.text(options.server.login),
                     "SQL Server login of a server that isn't stored; its password comes from "
                     "ZOVRAND_PASSWORD")
        ->type_name("USER");
    command->add_flag("--password-stdin", options.passwordFromStdin,
                      "Read that password from the first line of standard input");
}

void addServer(CLI::App* command, Options& options, Fields& fields) {
    command->add_option("-S,--server", fields.text(options.server.server), "Server")
        ->type_name("SERVER")
        ->required();
    command
        ->add_option("-d,--database", fields.text(options.server.database),
                     "Database; a stored server's own when left out")
        ->type_name("DB");
    addLogin(command, options, fields);
    addSettings(command, options, fields);
}

/// Both sides of a comparison.
void addServers(CLI::App* command, Options& options, Fields& fields) {
    command->add_option("--source", fields.text(options.server.server), "Source server")
        ->type_name("SERVER")
        ->required();
    command->add_option("--source-db", fields.text(options.server.database), "Source database")
        ->type_name("DB");
    command->add_option("--target", fields.text(options.target.server), "Target server")
        ->type_name("SERVER")
        ->required();
    command->add_option("--target-db", fields.text(options.target.database), "Target database")
        ->type_name("DB");
    addLogin(command, options, fields);
    command
        ->add_option("--target-login", fields.text(options.target.login),
                     "Login for the target when it isn't --login's; its password comes from "
                     "ZOVRAND_TARGET_PASSWORD, else from the same place")
        ->type_name("USER");
}

void addType(CLI::App* command, Options& options, Fields& fields) {
    command
        ->add_option("-t,--type", fields.text(options.type),
                     std::string("Kind of object: ") + TypeHelp)
        ->type_name("TYPE")
        ->required();
}

/// An option without its value (a variable that is empty) would mean something else.
const CLI::Validator NotEmpty(
    [](const std::string& value) {
        return value.empty() ? std::string("the value is missing") : std::string();
    },
    "");

/// The run becomes a saved process.
void addSave(CLI::App* command, Options& options, Fields& fields) {
    CLI::Option* save =
        command
            ->add_option("--save", fields.text(options.save),
                         "Keep the run as a saved process of this name, with its file of results")
            ->type_name("NAME")
            ->check(NotEmpty);
    command
        ->add_flag("--overwrite", options.overwrite,
                   "Replace a saved process of that name; the new one gets a number of its own")
        ->needs(save);
}

using Choices = std::vector<std::pair<CLI::App*, Command>>;

void describeServerCommands(CLI::App& app, Options& options, Fields& fields, Choices& choices) {
    CLI::App* server = app.add_subcommand("server", "The stored list of servers");
    server->require_subcommand(1);

    CLI::App* add = server->add_subcommand("add", "Test a server and store it with its login");
    add->add_option("NAME", fields.text(options.name),
                    "host; host,port; host\\instance; tcp:host,port; or local:NAME")
        ->type_name("")
        ->required();
    add->add_option("--sql-login", fields.text(options.sqlLogin),
                    "SQL Server authentication with this login; Windows authentication otherwise")
        ->type_name("USER");
    add->add_flag(
        "--password-stdin", options.passwordFromStdin,
        "Read the password from standard input (otherwise from ZOVRAND_PASSWORD, or asked "
        "for)");
    add->add_option("--database", fields.text(options.server.database),
                    "Database to start with (master)")
        ->type_name("DB");
    add->add_flag("--no-check", options.skipCheck, "Store the server without connecting to it");
    addSettings(add, options, fields);
    add->footer(help::ServerAddExamples);
    choices.emplace_back(add, Command::ServerAdd);

    choices.emplace_back(
        server->add_subcommand("list", "One stored server a line: name, login, database"),
        Command::ServerList);

    CLI::App* remove = server->add_subcommand("remove", "Take a server out of the list");
    remove->add_option("NAME", fields.text(options.name), "As the list shows it")
        ->type_name("")
        ->required();
    choices.emplace_back(remove, Command::ServerRemove);
}

void describeScripts(CLI::App& app, Options& options, Fields& fields, Choices& choices) {
    CLI::App* create = app.add_subcommand(
        "create", "A script that makes objects: named ones, those of a kind or all of a database");
    addServer(create, options, fields);
    addType(create, options, fields);
    create->get_option("--type")->required(false);
    create
        ->add_option("NAME", fields.list(options.objects),
                     "Objects, with their schemas in front where several have a name")
        ->type_name("");
    create->add_flag("--as-shown", options.asShown,
                     "The statement that the window shows, made from the text that is compared");
    create->add_flag("--drop-header", options.dropHeader,
                     "Drop what is made first where it exists");
    create
        ->add_option("-o,--output", fields.text(options.outputFile),
                     "Write to this file; to a folder (or a name that ends in /) a file an object")
        ->type_name("FILE|DIR")
        ->check(NotEmpty);
    create->footer(help::CreateExamples);
    choices.emplace_back(create, Command::Create);

    CLI::App* update = app.add_subcommand(
        "update-script", "What to change so that the target's table gets the source's structure");
    addServers(update, options, fields);
    update
        ->add_option("--table", fields.text(options.table),
                     "The table, with its schema in front "
                     "where several have the name")
        ->type_name("NAME")
        ->required()
        ->check(NotEmpty);
    update
        ->add_option("--target-table", fields.text(options.targetTable),
                     "The target's table when it has another name")
        ->type_name("NAME")
        ->check(NotEmpty);
    update->add_flag("--runnable", options.runnable, "A script that a server runs as it stands");
    update
        ->add_option("-o,--output", fields.text(options.outputFile),
                     "Write the script to this file instead of standard output")
        ->type_name("FILE")
        ->check(NotEmpty);
    addSettings(update, options, fields);
    update->footer(help::UpdateScriptExamples);
    choices.emplace_back(update, Command::UpdateScript);
}

void describeData(CLI::App& app, Options& options, Fields& fields, Choices& choices) {
    CLI::App* data =
        app.add_subcommand("data", "Compare the rows of one table, of chosen ones or of all");
    addServers(data, options, fields);
    const auto text = [&](const char* option, QString& to, const char* type, const char* help) {
        return data->add_option(option, fields.text(to), help)->type_name(type)->check(NotEmpty);
    };
    CLI::Option* table = text(
        "--table", options.table, "NAME",
        "Compare this table; with its schema, as sales.Item or [sales].[Item], where several have "
        "the name");
    text("--target-table", options.targetTable, "NAME",
         "The target's table when it has another name")
        ->needs(table);
    data->add_option("--select", fields.list(options.select),
                     "Compare these tables; a name that holds a comma in brackets")
        ->type_name("NAME,...")
        ->allow_extra_args(false)
        ->excludes(table);
    text("--method", options.method, "METHOD", "record or key; key when --key is given")
        ->needs(table)
        ->check(CLI::IsMember({"record", "key"}));
    CLI::Option* key =
        text("--key", options.key, "COLUMN,...", "Key columns, one to three")->needs(table);
    text("--target-key", options.targetKey, "COLUMN,...",
         "The target's, when they have other names")
        ->needs(key);
    CLI::Option* sort =
        text("--sort", options.sort, "COLUMN,...", "Sort by these, one to three")->needs(table);
    text("--target-sort", options.targetSort, "COLUMN,...",
         "The target's, when they have other names")
        ->needs(sort);
    data->add_option("--offset", options.offset, "Start from this record of the source (by record)")
        ->type_name("N")
        ->check(CLI::Range(0, 2147483647))
        ->needs(table);
    data->add_option("--target-offset", options.targetOffset, "The same for the target")
        ->type_name("N")
        ->check(CLI::Range(0, 2147483647))
        ->needs(table);
    CLI::Option* ignore =
        text("--ignore", options.ignore, "COLUMN,...", "Leave these columns out")->needs(table);
    text("--target-ignore", options.targetIgnore, "COLUMN,...",
         "The target's, when they are others")
        ->needs(ignore);
    data->add_option("--limit", options.limit,
                     "Different records that an export shows: the pairs end one before it "
                     "(MaxRowsInDiffTable, 500)")
        ->type_name("N")
        ->check(CLI::Range(1, 100000000))
        ->needs(table);
    data->add_flag(
            "--allow-unreadable", options.allowUnreadable,
            "Tables that the server refuses to read are named and don't change the exit status")
        ->excludes(table);
    CLI::Option* exported = text("--export", options.exportFile, "FILE",
                                 "Write the rows that differ to FILE.htm or FILE.csv")
                                ->needs(table);
    data->add_flag(
            "--csv-safe", options.csvSafe,
            "In that CSV file, put an apostrophe before texts that a spreadsheet would run as "
            "a formula")
        ->needs(exported);
    text("-o,--output", options.outputFile, "FILE",
         "Write the summary or report to this file instead of standard output");
    addSave(data, options, fields);
    addSettings(data, options, fields);
    data->footer(help::DataExamples);
    choices.emplace_back(data, Command::Data);
}

void addProcesses(CLI::App* command, Options& options, Fields& fields) {
    command
        ->add_option("PROCESS", fields.list(options.processes),
                     "Its number or its name; digits alone are a number")
        ->type_name("NAME|ID");
    command->add_flag("--name", options.byName, "What is given is a name, digits alone too");
}

void addOutput(CLI::App* command, Options& options, Fields& fields) {
    command
        ->add_option("-o,--output", fields.text(options.outputFile),
                     "Write the text to this file instead of standard output")
        ->type_name("FILE")
        ->check(NotEmpty);
}

void describeTools(CLI::App& app, Options& options, Fields& fields, Choices& choices) {
    CLI::App* analyze = app.add_subcommand(
        "analyze", "Count what values a table's columns hold: distinct ones, most frequent ones");
    addServer(analyze, options, fields);
    analyze
        ->add_option("--table", fields.text(options.table),
                     "The table, with its schema where several have the name")
        ->type_name("NAME")
        ->required();
    analyze->add_flag("--least", options.least, "The least frequent values instead");
    analyze->add_option("--rows", options.rows, "Count the first N rows only")
        ->type_name("N")
        ->check(CLI::Range(1, 2147483647));
    analyze->add_flag("--any-size", options.anySize,
                      "Rank columns of more than 32,767 distinct values too, every order exact");
    analyze->add_option("--ignore", fields.text(options.ignore), "Leave these columns out")
        ->type_name("COLUMN,...")
        ->check(NotEmpty);
    analyze
        ->add_option("--export", fields.text(options.exportFile),
                     "Write the counts to FILE.htm or FILE.csv as well")
        ->type_name("FILE")
        ->check(NotEmpty);
    addOutput(analyze, options, fields);
    analyze->footer(help::AnalyzeExamples);
    choices.emplace_back(analyze, Command::Analyze);

    CLI::App* info = app.add_subcommand(
        "info", "List what a database holds, tables with their numbers of records");
    info->add_option("-S,--server,--source", fields.text(options.server.server), "Server")
        ->type_name("SERVER")
        ->required();
    info->add_option("-d,--database,--source-db", fields.text(options.server.database),
                     "Database; a stored server's own when left out")
        ->type_name("DB");
    CLI::Option* target = info->add_option("--target", fields.text(options.target.server),
                                           "A second server, for both databases in one text")
                              ->type_name("SERVER");
    info->add_option("--target-db", fields.text(options.target.database), "Its database")
        ->type_name("DB")
        ->needs(target);
    addLogin(info, options, fields);
    addOutput(info, options, fields);
    addSettings(info, options, fields);
    info->footer(help::InfoExamples);
    choices.emplace_back(info, Command::Info);

    CLI::App* attach = app.add_subcommand("attach", "Make a database from a file that holds one");
    addServer(attach, options, fields);
    attach->get_option("--database")->required()->description("Name of the new database");
    attach->add_option("FILE", fields.text(options.databaseFile), "The database's file")
        ->type_name("")
        ->required();
    attach
        ->add_option("LOG", fields.text(options.logFile),
                     "Its log file; without it the server makes a new one")
        ->type_name("");
    attach->add_flag("--file-on-server", options.fileOnServer,
                     "The server runs on another machine, and the files are there: they are not "
                     "looked for on this one");
    attach->footer(help::AttachExamples);
    choices.emplace_back(attach, Command::Attach);

    CLI::App* snapshot = app.add_subcommand(
        "snapshot", "Keep the structure of a database in a file, to be compared later");
    addServer(snapshot, options, fields);
    snapshot
        ->add_option("FILE", fields.text(options.snapshotFile),
                     "The file, which is replaced when it is there")
        ->type_name("")
        ->required()
        ->check(NotEmpty);
    snapshot->footer(help::SnapshotExamples);
    choices.emplace_back(snapshot, Command::Snapshot);
}

void describeProcesses(CLI::App& app, Options& options, Fields& fields, Choices& choices) {
    CLI::App* process = app.add_subcommand("process", "The saved processes");
    process->require_subcommand(1);
    choices.emplace_back(
        process->add_subcommand("list", "One saved process a line: number and name"),
        Command::ProcessList);
    const auto add = [&](const char* name, const char* help, Command command) {
        CLI::App* added = process->add_subcommand(name, help);
        addProcesses(added, options, fields);
        added->get_option("PROCESS")->required();
        choices.emplace_back(added, command);
    };
    add("show", "What is kept of a saved process", Command::ProcessShow);
    add("delete", "Delete saved processes", Command::ProcessDelete);

    CLI::App* run =
        app.add_subcommand("run", "Run a saved process again: it compares, exports, tells");
    addProcesses(run, options, fields);
    CLI::Option* given = run->get_option("PROCESS")->expected(0, 1);
    CLI::Option* all =
        run->add_flag("--all", options.allProcesses,
                      "Run every saved process, one after the other, with a line for each");
    all->excludes(given);
    run->add_option("-o,--output", fields.text(options.outputFile),
                    "Write the results to this file instead of the process's own")
        ->type_name("FILE")
        ->excludes(all);
    addSettings(run, options, fields);
    run->footer(help::RunExamples);
    // One of the two must say what is run.
    run->callback([given, all] {
        if (given->count() == 0 && all->count() == 0)
            throw CLI::RequiredError("NAME|ID, or --all,");
    });
    choices.emplace_back(run, Command::Run);
}

void describeCommands(CLI::App& app, Options& options, Fields& fields, Choices& choices) {
    describeServerCommands(app, options, fields, choices);

    CLI::App* load = app.add_subcommand(
        "load",
        "Run T-SQL scripts in a database, which is made when it is missing; scripts that make and "
        "use one database of their own need no -d");
    addServer(load, options, fields);
    load->add_flag(
        "--keep-going", options.keepGoing,
        "Report statements that fail and go on behind them (a real server: behind their batch; "
        "behind a failed USE: at the next one); without it the first one ends the load and the "
        "embedded server leaves the database as it was");
    load->add_flag("--replace", options.replace,
                   "Start from an empty database (embedded server only)");
    load->add_option(
            "-v,--variable", fields.list(options.variables),
            "A value for $(NAME) in the scripts, which :setvar may change; may be repeated")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    load->add_option("--define", fields.list(options.defined),
                     "The same, and :setvar doesn't change it")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    load->add_flag("--sqlcmd", options.sqlcmd,
                   "Take commands (:setvar, :r FILE) and $(NAME) for what they are in every "
                   "script; without it in those that have a command at the beginning of a line");
    load->add_option("FILE", fields.list(options.files), "Scripts, in this order")
        ->type_name("")
        ->required();
    load->footer(help::LoadExamples);
    choices.emplace_back(load, Command::Load);

    CLI::App* query =
        app.add_subcommand("query",
                           "Run a batch; rows come tab-separated below a header line, with an "
                           "empty line between results");
    addServer(query, options, fields);
    query->add_option("SQL", fields.text(options.sql), "The statement")->type_name("")->required();
    query->footer(help::QueryExamples);
    choices.emplace_back(query, Command::Query);

    CLI::App* list = app.add_subcommand("list", "Names of a database's objects, one a line");
    addServer(list, options, fields);
    addType(list, options, fields);
    list->add_flag("-0,--null", options.nulBetween,
                   "End each name with a NUL instead of a line break, and show it as it is: "
                   "otherwise control characters come as signs");
    list->footer(help::ListExamples);
    choices.emplace_back(list, Command::List);

    CLI::App* text = app.add_subcommand("text", "An object's text, as comparisons see it");
    addServer(text, options, fields);
    addType(text, options, fields);
    text->add_option("NAME", fields.text(options.objectName),
                     "The object, with its schema in front where two have its name")
        ->type_name("")
        ->required();
    text->footer(help::TextExamples);
    choices.emplace_back(text, Command::Text);

    CLI::App* references = app.add_subcommand(
        "references", "Names in procedures, functions, views and triggers that can't be found");
    addServer(references, options, fields);
    references
        ->add_option("-t,--type", fields.text(options.type),
                     "procedures, functions, views or triggers; all four when left out")
        ->type_name("TYPE")
        ->check(NotEmpty);
    references
        ->add_option("NAME", fields.list(options.objectNames),
                     "These objects alone, with their schema in front where two have the name")
        ->type_name("");
    references->add_flag("--words", options.words,
                         "Show instead, per object, every word that is no keyword, number, data "
                         "type or variable, as the window's box does");
    references
        ->add_option("-o,--output", fields.text(options.outputFile),
                     "Write the lines to this file instead of standard output")
        ->type_name("FILE");
    references->footer(help::ReferencesExamples);
    choices.emplace_back(references, Command::References);
    describeScripts(app, options, fields, choices);

    CLI::App* compare = app.add_subcommand(
        "compare", "Compare the structure of two databases and print the report");
    addServers(compare, options, fields);
    compare
        ->add_option("-t,--types", fields.text(options.types),
                     "Kinds of objects, joined by commas; all when left out")
        ->type_name("TYPE,...");
    compare
        ->add_option("--select", fields.list(options.select),
                     "Compare these objects only; a name that holds a comma in brackets")
        ->type_name("NAME,...")
        ->allow_extra_args(false);
    compare->add_flag("--details", options.details, "List the lines that differ");
    compare->add_flag(
        "--allow-unreadable", options.allowUnreadable,
        "Objects that can't be read (encrypted, hidden from the login) are named, but "
        "don't count for the exit status");
    compare
        ->add_option("-o,--output", fields.text(options.outputFile),
                     "Write the report to this file instead of standard output")
        ->type_name("FILE");
    addSave(compare, options, fields);
    addSettings(compare, options, fields);
    compare->footer(help::CompareExamples);
    choices.emplace_back(compare, Command::Compare);
    describeData(app, options, fields, choices);
    describeTools(app, options, fields, choices);
    describeProcesses(app, options, fields, choices);
}

}  // namespace

std::optional<Options> parseCommandLine(int argc, char** argv, int& status) {
    Options options;
    Fields fields;
    Choices choices;
    CLI::App app(
        "Compares the structure and the rows of Microsoft SQL Server databases, on real servers "
        "and on an embedded one.",
        "zovrand-cli");
    app.set_version_flag("--version", "zovrand-cli " + ProgramVersionText().toStdString() +
                                          " build " + std::to_string(ProgramBuildNumber));
    app.footer(help::Examples);
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);
    describeCommands(app, options, fields, choices);
    const auto known = app.get_subcommands(
        [&](const CLI::App* command) { return argc > 1 && command->check_name(argv[1]); });
    if (argc > 1 && argv[1][0] != '-' && known.empty()) {
        std::fprintf(stderr, "zovrand-cli: there is no command \"%s\"\n  See zovrand-cli --help.\n",
                     argv[1]);
        status = Trouble;
        return std::nullopt;
    }
    try {
        std::vector<std::string> arguments = guardedArguments(argc, argv);
        app.parse(arguments);
    } catch (const CLI::Success& success) {
        status = app.exit(success);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        std::fprintf(stderr,
                     "zovrand-cli: %s\n  See zovrand-cli --help, or --help behind a command.\n",
                     error.what());
        status = Trouble;
        return std::nullopt;
    }
    for (const auto& [subcommand, command] : choices) {
        if (subcommand->parsed()) options.command = command;
    }
    fields.store();
    return options;
}

}  // namespace zov::cli
