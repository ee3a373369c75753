#pragma once

#include <string>

#include "app/Utvynapp.h"
#include "platform/streams/text_form.h"
#include "platform/system/application.h"

// What tests over applications that they make themselves share.
namespace vyn {

// Stores a component, written as text, in an application.
inline void StoreForm(TVynApp& app, const TComponentVyn& component, const std::string& text) {
    TMemoryStream stream;
    TextToBinary(text, stream);
    app.Components().InsertComponent(component, stream);
}

// A message that an application sends to its host.
inline bool IsToHost(const TMessage& message) {
    return message.Msg >= VYN_APPCREATED && message.Msg <= VYN_DESIGNTIMEOFF;
}

// A host that takes what applications send and lets everything happen, for as long as it lives.
class SilentHost {
  public:
    SilentHost() : hook_(Application()->HookMainWindow([](TMessage& message) { return IsToHost(message); })) {}
    ~SilentHost() { Application()->UnhookMainWindow(hook_); }
    SilentHost(const SilentHost&) = delete;
    SilentHost& operator=(const SilentHost&) = delete;

  private:
    int hook_;
};

}  // namespace vyn
