#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/streams/stream.h"

namespace vyn {

// The program's subcommands. Each gives the exit status: 0 done, 1 failed (an exception is a failure too: main tells
// it). Texts are UTF-8.

struct RunOptions {
    std::string File;
    std::string Database;    // empty: the application's own
    std::string ValuesFile;  // empty: beside the application
    int Node = 0;            // opened straight away; 0: none
    bool Design = false;     // boxes can be set up (programs/host/design_run.h), and what is changed is saved
    bool Demo = false;       // the sample application with its own database
};

struct ShotOptions {
    RunOptions Application;
    std::string Output;
    int Width = 0;  // 0: as the window is stored
    int Height = 0;
    std::string Search;  // FIELD=TEXT: the node's search screen, with a text typed into it
    // What a user does first, in this order: NAME presses a control, NAME=TEXT types into it.
    std::vector<std::string> Steps;
    bool AtOnce = false;  // does not wait for what the last step has looked up
    std::string Part;     // this control alone; empty: the window
};

struct SqlOptions {
    RunOptions Application;
    std::vector<std::string> Values;  // NAME=VALUE
    bool Json = false;
};

struct ImportCommandOptions {
    std::string File;
    std::string Output;
    bool Force = false;     // replaces a database that is there
    bool Damaged = false;   // leaves out what cannot be read
    bool Password = false;  // from standard input
    bool Json = false;
};

int BuildCommand(const std::string& folder, const std::string& output);
int ExportCommand(const std::string& file, const std::string& folder);
int DumpCommand(const std::string& file, bool json);
// Prints the statements that a node's queries compose.
int SqlCommand(const SqlOptions& options);
// Reads a legacy desktop database into a new embedded one, and says what did not come over.
int ImportCommand(const ImportCommandOptions& options);
int PasswordCommand();
// Prints the number in the shortest form that reads back equal. `values`: NAME=VALUE each
// (programs/tools/named_values.h).
int EvalCommand(const std::string& expression, const std::vector<std::string>& values);
int CompletionCommand(const std::string& shell);

// With windows (windows_commands.cpp).
int RunCommand(const RunOptions& options, int argc, char** argv);
int ShotCommand(const ShotOptions& options, int argc, char** argv);

// Opens an application file; a source folder is built in memory first (its errors go to standard error).
std::unique_ptr<TStream> OpenApplicationStream(const std::string& file);

// "vyn: text" on standard error; line feeds of the text are kept.
void Complain(const std::string& utf8Text);

// Shows how far long work has come, on standard error when that is a terminal, from the second second on.
class Progress {
  public:
    explicit Progress(std::string what);
    ~Progress();
    void operator()(double part);

  private:
    std::string what_;
    uint64_t startedAt_;
    int shown_ = -1;
    bool visible_;
};

}  // namespace vyn
