// The program: opens applications, and makes, inspects and checks them.
#include <signal.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <new>

#include "package/package.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"
#include "programs/host/custom_form.h"
#include "programs/host/version.h"
#include "programs/tools/named_values.h"
#include "programs/vyn/commands.h"

namespace {

using namespace vyn;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

// "640x480".
bool ParseSize(const std::string& text, ShotOptions& options) {
    int taken = 0;
    return std::sscanf(text.c_str(), "%dx%d%n", &options.Width, &options.Height, &taken) == 2 &&
           static_cast<size_t>(taken) == text.size() && options.Width > 0 && options.Height > 0 &&
           options.Width <= 16384 && options.Height <= 16384;
}

// What is wrong with an argument that should be NAME=VALUE; nothing when it is one.
std::string CheckNamedValue(const std::string& text) {
    return IsNamedValue(text) ? std::string() : text + " is no NAME=VALUE";
}

// The package lives as long as a command runs.
class Package {
  public:
    Package() {
        InitializePackage();
        RegisterHostForms();
    }
    ~Package() { FinalizePackage(); }
};

int Run(int argc, char** argv) {
    CLI::App program("Opens database applications that are stored as data, and makes, inspects and checks them.",
                     "vyn");
    program.set_version_flag("--version", std::string("vyn ") + CT_VersioPrograma);
    program.require_subcommand(1);
    program.failure_message(CLI::FailureMessage::help);

    RunOptions run;
    ShotOptions shot;
    SqlOptions sql;
    std::string folder, output, file, shell, size;
    bool json = false;

    CLI::App* runCommand = program.add_subcommand("run", "Open an application file or source folder");
    runCommand->add_option("FILE", run.File, "application file or source folder")->required();
    runCommand->add_flag("--design", run.Design, "set lookup boxes up with Ctrl+F2, and save the application");
    CLI::App* demoCommand = program.add_subcommand("demo", "Open the sample application");
    for (CLI::App* command : {runCommand, demoCommand}) {
        command->add_option("--node", run.Node, "open this node straight away")->type_name("ID");
        command->add_option("--values", run.ValuesFile, "the user's values file")->type_name("FILE");
        command->add_option("--database", run.Database, "connection string of the database DBDades")
            ->type_name("CONNECTION-STRING");
    }
    CLI::App* shotCommand = program.add_subcommand("shot", "Write a picture of a node's window, without a display");
    shotCommand->add_option("FILE", shot.Application.File, "application file or source folder")->required();
    shotCommand->add_option("ID", shot.Application.Node, "the node")->required();
    shotCommand->add_option("-o,--output", shot.Output, "the picture")->required()->type_name("PNG");
    shotCommand->add_option("--size", size, "the window's size")->type_name("WxH");
    CLI::Option* search =
        shotCommand->add_option("--search", shot.Search, "the node's search screen, with a text typed");
    search->type_name("FIELD=TEXT");
    shotCommand
        ->add_option("--do", shot.Steps,
                     "press the control NAME first, or type TEXT into it; again for what is done then")
        ->type_name("NAME[=TEXT]")
        ->expected(1)
        ->take_all()
        ->excludes(search);
    shotCommand->add_flag("--at-once", shot.AtOnce, "do not wait for what the last step has looked up");
    shotCommand->add_option("--part", shot.Part, "a picture of this control alone")->type_name("NAME");
    shotCommand->add_option("--values", shot.Application.ValuesFile, "the user's values file")->type_name("FILE");
    shotCommand->add_option("--database", shot.Application.Database, "connection string of the database DBDades")
        ->type_name("CONNECTION-STRING");
    CLI::App* buildCommand = program.add_subcommand("build", "Build an application file from a source folder");
    buildCommand->add_option("DIR", folder, "the source folder")->required();
    buildCommand->add_option("-o,--output", output, "the application file")->required()->type_name("FILE");
    CLI::App* exportCommand = program.add_subcommand("export", "Write an application file as a source folder");
    exportCommand->add_option("FILE", file, "the application file")->required();
    exportCommand->add_option("-o,--output", folder, "the source folder")->required()->type_name("DIR");
    CLI::App* dumpCommand = program.add_subcommand("dump", "Say what a stream of the framework holds");
    dumpCommand->add_option("FILE", file, "the file")->required();
    dumpCommand->add_flag("--json", json, "print one JSON document");
    CLI::App* sqlCommand = program.add_subcommand("sql", "Print the statements that a node's queries compose");
    sqlCommand->add_option("FILE", sql.Application.File, "application file or source folder")->required();
    sqlCommand->add_option("ID", sql.Application.Node, "the node")->required();
    sqlCommand->add_option("NAME=VALUE", sql.Values, "parameters")->check(CheckNamedValue);
    sqlCommand->add_option("--values", sql.Application.ValuesFile, "the user's values file")->type_name("FILE");
    sqlCommand->add_option("--database", sql.Application.Database, "connection string of the database DBDades")
        ->type_name("CONNECTION-STRING");
    sqlCommand->add_flag("--json", sql.Json, "print one JSON document");
    std::string expression;
    std::vector<std::string> values;
    CLI::App* evalCommand = program.add_subcommand("eval", "Calculate an arithmetic expression");
    evalCommand->add_option("EXPRESSION", expression, "the expression, without blanks")->required();
    evalCommand->add_option("NAME=VALUE", values, "its variables")->check(CheckNamedValue);
    evalCommand->footer("-- ends the options: an expression may begin with a minus sign.");
    ImportCommandOptions import;
    CLI::App* importCommand =
        program.add_subcommand("import", "Read a legacy desktop database into a new embedded one");
    importCommand->add_option("OLD", import.File, "the legacy database")->required();
    importCommand->add_option("-o,--output", import.Output, "the new database")->required()->type_name("NEW");
    importCommand->add_flag("--force", import.Force, "replace the new database when it is there");
    importCommand->add_flag("--damaged", import.Damaged, "leave out what cannot be read, and say so");
    importCommand->add_flag("--password", import.Password, "read the file's password from standard input");
    importCommand->add_flag("--json", import.Json, "print one JSON document");
    CLI::App* passwordCommand =
        program.add_subcommand("password", "Read a password and print what a guard form stores of it");
    CLI::App* completionCommand = program.add_subcommand("completion", "Print a completion script");
    completionCommand->add_option("SHELL", shell, "bash")->required();

    try {
        program.parse(argc, argv);
        if (!size.empty() && !ParseSize(size, shot)) throw CLI::ValidationError("--size", "WIDTHxHEIGHT was expected");
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return program.exit(error);  // --help, --version
        const auto chosen = program.get_subcommands();
        const bool unknown = chosen.empty() && argc > 1 && argv[1][0] != '-';
        std::cerr << "vyn: " << (unknown ? "There is no subcommand " + std::string(argv[1]) : error.what()) << "\n\n";
        std::cerr << (chosen.empty() ? program.help() : chosen.front()->help("vyn"));
        return kWrongUsage;
    }

    const Package package;
    if (runCommand->parsed()) return RunCommand(run, argc, argv);
    if (demoCommand->parsed()) {
        run.Demo = true;
        return RunCommand(run, argc, argv);
    }
    if (shotCommand->parsed()) return ShotCommand(shot, argc, argv);
    if (buildCommand->parsed()) return BuildCommand(folder, output);
    if (exportCommand->parsed()) return ExportCommand(file, folder);
    if (dumpCommand->parsed()) return DumpCommand(file, json);
    if (sqlCommand->parsed()) return SqlCommand(sql);
    if (evalCommand->parsed()) return EvalCommand(expression, values);
    if (importCommand->parsed()) return ImportCommand(import);
    if (passwordCommand->parsed()) return PasswordCommand();
    return CompletionCommand(shell);
}

}  // namespace

int main(int argc, char** argv) {
    // A file that may not grow any more is an error of its write, as a full disk is, and not the program's end.
    ::signal(SIGXFSZ, SIG_IGN);
    try {
        return Run(argc, argv);
    } catch (const vyn::EAbort&) {
        return kFailed;
    } catch (const vyn::Exception& error) {
        vyn::Complain(vyn::AnsiToUtf8(error.Message()));
    } catch (const std::bad_alloc&) {
        vyn::Complain("There is not enough memory");
    } catch (const std::exception& error) {
        vyn::Complain(error.what());
    }
    return kFailed;
}
