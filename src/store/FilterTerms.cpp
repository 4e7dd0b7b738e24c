#include "store/FilterTerms.h"

#include "common/Convert.h"

#include <cctype>

namespace store {

std::optional<std::vector<std::pair<std::string, Value>>> equalityTerms(const std::string& filter) {
    std::vector<std::pair<std::string, Value>> terms;
    std::size_t i = 0;
    const std::size_t n = filter.size();
    auto skipBlanks = [&] {
        while (i < n &&
               (filter[i] == ' ' || filter[i] == '\t' || filter[i] == '\r' || filter[i] == '\n'))
            ++i;
    };
    auto isWordChar = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
    };
    while (true) {
        skipBlanks();
        std::string name;
        if (i < n && (filter[i] == '[' || filter[i] == '"')) {
            const char close = filter[i] == '[' ? ']' : '"';
            const auto end = filter.find(close, i + 1);
            if (end == std::string::npos)
                return std::nullopt;
            name = filter.substr(i + 1, end - i - 1);
            i = end + 1;
        } else {
            while (i < n && isWordChar(filter[i]))
                name += filter[i++];
        }
        if (name.empty())
            return std::nullopt;
        skipBlanks();
        if (i >= n || filter[i] != '=')
            return std::nullopt;
        ++i;
        skipBlanks();
        Value literal;
        if (i < n && filter[i] == '\'') {
            std::string text;
            ++i;
            while (true) {
                if (i >= n)
                    return std::nullopt;
                if (filter[i] == '\'') {
                    if (i + 1 < n && filter[i + 1] == '\'') {
                        text += '\'';
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                text += filter[i++];
            }
            literal = Value(text);
        } else {
            std::string number;
            while (i < n && (isWordChar(filter[i]) || filter[i] == '-' || filter[i] == '+' ||
                             filter[i] == '.'))
                number += filter[i++];
            auto v = common::tryStrToInt(number);
            if (!v)
                return std::nullopt;
            literal = Value(*v);
        }
        terms.emplace_back(name, literal);
        skipBlanks();
        if (i >= n)
            return terms;
        std::string word;
        while (i < n && isWordChar(filter[i]))
            word += filter[i++];
        if (!common::sameText(word, "and"))
            return std::nullopt;
    }
}

} // namespace store
