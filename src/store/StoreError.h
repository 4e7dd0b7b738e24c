#pragma once
// The one exception type of the store: the engine's code plus what failed and on what.
#include <stdexcept>
#include <string>

namespace store {

class StoreError : public std::runtime_error {
public:
    // `what` says what failed and names the statement, table or file.
    explicit StoreError(const std::string& what, int engineCode = 0)
        : std::runtime_error(what), engineCode_(engineCode) {}
    int engineCode() const { return engineCode_; }

private:
    int engineCode_;
};

} // namespace store
