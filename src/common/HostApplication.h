#pragma once
// The host's application object as the module sees it, and the host's message gate check box.

namespace common {

class HostApplication {
public:
    virtual ~HostApplication() = default;
    // Asks the application to end in an orderly way; returns at once.
    virtual void terminate() = 0;
    // Lets pending window messages run.
    virtual void processMessages() = 0;
};

// The host's check box that gates a message; a plain boolean holder where there is no host.
class MessageGate {
public:
    virtual ~MessageGate() = default;
    virtual bool checked() const = 0;
    virtual void setChecked(bool value) = 0;
};

class BoolMessageGate : public MessageGate {
public:
    explicit BoolMessageGate(bool value = false) : value_(value) {}
    bool checked() const override { return value_; }
    void setChecked(bool value) override { value_ = value; }

private:
    bool value_;
};

} // namespace common
