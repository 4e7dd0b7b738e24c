#pragma once
// A column value as the store carries it: null, integer, real or text.
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace store {

class Value {
public:
    Value() = default;
    Value(std::nullptr_t) {}
    Value(int v) : v_(static_cast<std::int64_t>(v)) {}
    Value(long v) : v_(static_cast<std::int64_t>(v)) {}
    Value(long long v) : v_(static_cast<std::int64_t>(v)) {}
    Value(bool v) : v_(static_cast<std::int64_t>(v ? 1 : 0)) {}
    Value(double v) : v_(v) {}
    Value(std::string v) : v_(std::move(v)) {}
    Value(std::string_view v) : v_(std::string(v)) {}
    Value(const char* v) : v_(std::string(v)) {}

    bool isNull() const { return std::holds_alternative<std::monostate>(v_); }
    bool isInteger() const { return std::holds_alternative<std::int64_t>(v_); }
    bool isReal() const { return std::holds_alternative<double>(v_); }
    bool isText() const { return std::holds_alternative<std::string>(v_); }
    std::int64_t integer() const { return std::get<std::int64_t>(v_); }
    double real() const { return std::get<double>(v_); }
    const std::string& text() const { return std::get<std::string>(v_); }

    bool operator==(const Value& other) const = default;

private:
    std::variant<std::monostate, std::int64_t, double, std::string> v_;
};

} // namespace store
