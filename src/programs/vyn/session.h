#pragma once

#include <memory>

#include "database/Udb_ado.h"
#include "platform/access/ado.h"
#include "platform/controls/data_modules.h"
#include "programs/host/main_form.h"
#include "programs/vyn/commands.h"

namespace vyn {

// One opened application: its application object, its database, its user values and its windows.
//
// The database is the one that the options name, the application's own (beside its file, under its name, ".db"), or an
// empty one in memory; it is not opened before it is needed. Queries reach it as the database DBDades, forms as
// "Dades.Connexio". Extension package and procedure libraries are those that
// stand beside the application: VYNB5400 and every library whose name ends in 54.
class Session : public NodeOpener {
  public:
    explicit Session(const RunOptions& options);
    ~Session() override;

    TVynApp& App() { return *app_; }
    // The main window: the root node's form, or the host's own.
    TFRMtnAplicacio& MainForm();
    // Opens a node without showing it; raises what goes wrong, also when it opens nothing.
    TComponent& Open(int idNode);
    // The same (the main window for the root node), but for a node behind a guard, which is an error.
    TComponent& OpenUnguarded(int idNode);
    void OpenNode(int idNode) override;
    // Writes the application back to where it came from, a file or a source folder. Raises what goes wrong, and what
    // was there stays.
    void SaveApplication();
    // The user's values, when there are any.
    void SaveValues();
    // The guard that stands before the node, or 0.
    int GuardOf(int idNode);

  private:
    void LoadLibraries(const AnsiString& folder);
    AnsiString DatabaseOf(const RunOptions& options) const;

    AnsiString file_;
    AnsiString valuesFile_;
    std::unique_ptr<TDataModule> data_;
    TADOConnection* connection_ = nullptr;
    std::unique_ptr<TDataBaseVynADO> database_;
    std::unique_ptr<TVynApp> app_;
    TFRMtnAplicacio* mainForm_ = nullptr;
};

}  // namespace vyn
