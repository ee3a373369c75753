#pragma once

#include "programs/host/custom_form.h"
#include "programs/host/entry_buttons.h"

namespace vyn {

// A menu: a button for each node below its own.
class TFRMMenu : public TCustomFRM {
    VYN_OBJECT
  public:
    explicit TFRMMenu(TComponent* owner) : TCustomFRM(owner) {}
    void EntradaClick(TObject* Sender);

  protected:
    bool NodeLoaded() override;

  private:
    EntryButtons entries_;
};

// A guard: asks for the password before what stands below its node opens. A wrong one is told and asked for again;
// Cancel refuses.
class TFRMPassword : public TCustomFRM {
    VYN_OBJECT
  public:
    explicit TFRMPassword(TComponent* owner) : TCustomFRM(owner) {}

    // The password, never itself: "pbkdf2-sha256$ITERATIONS$SALT$KEY" with salt and key in hexadecimal, as
    // `vyn password` prints it. Empty lets everybody pass.
    AnsiString PasswordHash;

    void AcceptarClick(TObject* Sender);
    bool PasswordFits(const AnsiString& password) const;
    // The stored form of a password with a salt of 16 bytes in hexadecimal.
    static AnsiString HashOf(const AnsiString& password, const AnsiString& salt);
};

// "Who am I": the application, its file and this program.
class TFRMQuiSoc : public TCustomFRM {
    VYN_OBJECT
  public:
    explicit TFRMQuiSoc(TComponent* owner) : TCustomFRM(owner) {}
    // The text about an application; without one, about the program alone.
    void Describe(TVynApp* app);

  protected:
    bool NodeLoaded() override;
};

}  // namespace vyn
