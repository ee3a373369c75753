#pragma once

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include "platform/text/ansi_string.h"

namespace vyn {

class TObject;

// What an event calls; immutable and shared by copies of the event.
struct EventHandler {
    explicit EventHandler(AnsiString name) : Name(std::move(name)) {}
    virtual ~EventHandler() = default;
    // The handler's stored name (a published method of the form, or an event of its rules); empty for a handler
    // set by code, which is never stored.
    const AnsiString Name;
};

// The part of an event that does not depend on its arguments.
class EventBase {
  public:
    explicit operator bool() const { return handler_ != nullptr; }
    void Clear() { handler_.reset(); }
    const AnsiString& HandlerName() const;
    // Two events call the same: the same handler, or handlers of the same stored name.
    bool SameHandler(const EventBase& other) const;

    const std::shared_ptr<const EventHandler>& Handler() const { return handler_; }

  protected:
    std::shared_ptr<const EventHandler> handler_;
};

template <class Signature>
class Event;

// An event property: holds at most one handler and calls it. Calling an event without a handler does nothing and
// gives a default result. A handler may replace or clear the event while it runs.
template <class R, class... A>
class Event<R(A...)> : public EventBase {
  public:
    using Signature = R(A...);
    struct TypedHandler : EventHandler {
        TypedHandler(AnsiString name, std::function<R(A...)> call)
            : EventHandler(std::move(name)), Call(std::move(call)) {}
        const std::function<R(A...)> Call;
    };

    Event() = default;
    Event(std::nullptr_t) {}
    template <class F, class = std::enable_if_t<std::is_invocable_r_v<R, F&, A...> &&
                                                !std::is_base_of_v<EventBase, std::decay_t<F>>>>
    Event(F function) {
        handler_ = std::make_shared<TypedHandler>(AnsiString(), std::function<R(A...)>(std::move(function)));
    }

    // Binds a function under a stored name.
    void Bind(AnsiString name, std::function<R(A...)> call) {
        handler_ = std::make_shared<TypedHandler>(std::move(name), std::move(call));
    }
    void SetHandler(std::shared_ptr<const EventHandler> handler) { handler_ = std::move(handler); }

    // Binds a handler that takes the sender alone: the first argument when it is an object, else null.
    void BindSenderOnly(AnsiString name, std::function<void(TObject*)> call) {
        Bind(std::move(name), [call = std::move(call)](A... arguments) -> R {
            call(SenderOf(arguments...));
            if constexpr (!std::is_void_v<R>) return R{};
        });
    }

    R operator()(A... arguments) const {
        if (!handler_) {
            if constexpr (std::is_void_v<R>)
                return;
            else
                return R{};
        }
        const std::shared_ptr<const EventHandler> kept = handler_;  // the handler may change this event
        return static_cast<const TypedHandler&>(*kept).Call(std::forward<A>(arguments)...);
    }

  private:
    static TObject* SenderOf() { return nullptr; }
    template <class First, class... Rest>
    static TObject* SenderOf(First& first, Rest&...) {
        if constexpr (std::is_convertible_v<First&, TObject*>)
            return first;
        else
            return nullptr;
    }
};

using TNotifyEvent = Event<void(TObject* Sender)>;

}  // namespace vyn
