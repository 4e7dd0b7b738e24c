#pragma once
// Sets a form's events flag for a scope and sets it to the given value after, also when an
// exception leaves the scope, so that an error can never leave a form's events switched off.

namespace dialogs {

template <typename Flag> class EventsGuard {
public:
    EventsGuard(Flag& flag, Flag during, Flag after) : flag_(flag), after_(after) {
        flag_ = during;
    }
    ~EventsGuard() { flag_ = after_; }
    EventsGuard(const EventsGuard&) = delete;
    EventsGuard& operator=(const EventsGuard&) = delete;

private:
    Flag& flag_;
    Flag after_;
};

} // namespace dialogs
