#pragma once
// The string list that crosses the boundary: strings with an optional object beside each, as the
// host's list class holds them. The objects beside template names are `TLinkInfo`.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The object stored beside each template name in a host's string list.
struct TLinkInfo {
    std::string LinkText;        // left empty by this module
    std::int32_t TemplateId = 0; // 0 for the "(New)" entry
};

class TStringList {
public:
    int Add(std::string text, std::unique_ptr<TLinkInfo> object = nullptr) {
        items_.push_back({std::move(text), std::move(object)});
        return static_cast<int>(items_.size()) - 1;
    }
    int Count() const { return static_cast<int>(items_.size()); }
    const std::string& Strings(int index) const {
        return items_.at(static_cast<std::size_t>(index)).text;
    }
    TLinkInfo* Objects(int index) const {
        return items_.at(static_cast<std::size_t>(index)).object.get();
    }
    // Frees the object beside an entry, leaving the string.
    void FreeObject(int index) { items_.at(static_cast<std::size_t>(index)).object.reset(); }
    void Clear() { items_.clear(); }

private:
    struct Item {
        std::string text;
        std::unique_ptr<TLinkInfo> object;
    };
    std::vector<Item> items_;
};
