#pragma once

#include "platform/objects/component.h"
#include "platform/objects/strings.h"

namespace vyn {

// The one abstraction through which the framework reaches a database: every data access goes through a database that is
// found by its name. Databases are listed, in order of creation, for the whole process. Main thread only.
class TDataBaseVyn : public TComponent {
    VYN_OBJECT
  public:
    explicit TDataBaseVyn(TComponent* owner);
    ~TDataBaseVyn() override;

    // The file name of the database, kept for the concrete class and the application.
    AnsiString DBFileName;
    // The name by which the framework finds this database; unique in the process without regard to case: a name that is
    // taken gets a number behind it. An empty name raises "VynDBName required".
    const AnsiString& VynDBName() const { return vynDBName_; }
    void SetVynDBName(const AnsiString& name);

  private:
    void MakeNameUnique();

    AnsiString vynDBName_;
};

// The first database, in order of creation, of a name (without regard to case), or null.
TDataBaseVyn* FindDatabaseVyn(const AnsiString& name);
// The same; raises "Database Vyn not found (" + name + ")".
TDataBaseVyn* GetDataBaseVyn(const AnsiString& name);

}  // namespace vyn
