#pragma once
// The object beside each command and sub-command node of a template tree: the command code, the
// chosen syntax and the six preset values. A plain object: tree nodes refer to it through shared
// ownership with the editor's clipboard, so deleting a node never invalidates what was copied.
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

struct TCommandSetup {
    std::string Code;
    std::int32_t Syntax = -1; // index from 0 among the code's syntaxes; -1 none chosen
    std::string Value_1;
    std::string Value_2;
    std::string Value_3;
    std::string Value_4;
    std::string Value_5;
    std::string Value_6;
    bool Locked = false;
    std::int32_t Special = 0;
    std::string FileFilter;
    std::int32_t FilterIndex = 0;

    TCommandSetup() = default;
    explicit TCommandSetup(std::string code) : Code(std::move(code)) {}

    // Value slot n, from 1 to 6; any other number throws std::out_of_range.
    std::string& Value(int n) {
        switch (n) {
        case 1:
            return Value_1;
        case 2:
            return Value_2;
        case 3:
            return Value_3;
        case 4:
            return Value_4;
        case 5:
            return Value_5;
        case 6:
            return Value_6;
        default:
            throw std::out_of_range("Value slot " + std::to_string(n) + " does not exist");
        }
    }
    const std::string& Value(int n) const { return const_cast<TCommandSetup*>(this)->Value(n); }

    // The copy made by paste: everything but the plug-in's file filter and its index.
    std::shared_ptr<TCommandSetup> Clone() const {
        auto copy = std::make_shared<TCommandSetup>(*this);
        copy->FileFilter.clear();
        copy->FilterIndex = 0;
        return copy;
    }
};

using CommandSetupPtr = std::shared_ptr<TCommandSetup>;
