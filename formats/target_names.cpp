// See target_names.h.
#include "formats/target_names.h"

#include "client/escape.h"
#include "client/text.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>

namespace qvej {

namespace {

struct Character {
    int32_t code;  // negative: a broken sequence
    std::string_view bytes;
};

// Calls `take` with each character, until it returns false.
template <class Take>
void eachCharacter(std::string_view text, Take take) {
    const auto size = static_cast<int64_t>(text.size());
    for (int64_t at = 0; at < size;) {
        const auto begin = static_cast<std::size_t>(at);
        const int32_t code = escape_detail::nextCharacter(text.data(), at, size);
        if (!take(Character{code, text.substr(begin, static_cast<std::size_t>(at) - begin)})) {
            return;
        }
    }
}

class Fitter {
   public:
    explicit Fitter(const NameRules& rules) : rules_(rules) {
        for (const std::string& name : rules.taken) {
            numbers_.try_emplace(key(name), 1);
        }
    }

    // The name with characters that the target takes, no longer than allowed.
    [[nodiscard]] std::string plain(std::string_view name) const {
        std::string text;
        if (!rules_.forbiddenStart.empty() &&
            lowerCased(name.substr(0, rules_.forbiddenStart.size())) == rules_.forbiddenStart) {
            text = "_";
        }
        eachCharacter(name, [&](const Character& c) {
            const bool bad =
                c.code < 0 || (c.bytes.size() == 1 &&
                               rules_.forbidden.find(c.bytes[0]) != std::string_view::npos);
            text += bad ? "_" : c.bytes;
            return true;
        });
        if (text.empty() && !rules_.mayBeEmpty) {
            text = "_";
        }
        return cut(text, rules_.longest);
    }

    // Takes the name, unless another has it.
    bool take(const std::string& name) { return numbers_.try_emplace(key(name), 1).second; }

    // Takes the name or, when another has it, the first that is free of those with a number.
    std::string takeNumbered(const std::string& name) {
        std::string free = name;
        for (int& number = numbers_.try_emplace(key(name), 0).first->second; number != 0;) {
            const std::string suffix = "~" + std::to_string(++number);
            free = cut(name, rules_.longest - suffix.size()) + suffix;
            if (take(free)) {
                return free;
            }
        }
        numbers_[key(name)] = 1;
        return free;
    }

   private:
    // Whole characters of the text, as many as there is room for.
    [[nodiscard]] std::string cut(std::string_view text, std::size_t longest) const {
        if (text.size() <= longest) {  // UTF-16 needs no more units than UTF-8 has bytes
            return std::string(text);
        }
        std::size_t units = 0, bytes = 0;
        eachCharacter(text, [&](const Character& c) {
            units += rules_.unit == NameRules::BYTES ? c.bytes.size() : c.bytes.size() == 4 ? 2 : 1;
            bytes += units <= longest ? c.bytes.size() : 0;
            return units <= longest;
        });
        return std::string(text.substr(0, bytes));
    }

    // Equal for names that are the same to the target.
    [[nodiscard]] std::string key(const std::string& name) const {
        if (rules_.same != NameRules::UNICODE) {
            return rules_.same == NameRules::EXACT ? name : lowerCased(name);
        }
        std::string folded;
        eachCharacter(name, [&](const Character& c) {
            folded += std::to_string(u_foldCase(c.code, U_FOLD_CASE_DEFAULT)) + " ";
            return true;
        });
        return folded;
    }

    const NameRules& rules_;
    std::unordered_map<std::string, int> numbers_;  // by key: the last that was tried, from 1
};

}  // namespace

FittedNames fittedNames(const std::vector<std::string>& names, const NameRules& rules) {
    Fitter fitter(rules);
    FittedNames fitted;
    fitted.names.resize(names.size());
    // Names that can stay come first: one that must change never takes the name of another.
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (fitter.plain(names[i]) == names[i] && fitter.take(names[i])) {
            fitted.names[i] = names[i];
        } else {
            fitted.changed.push_back(i);
        }
    }
    for (const std::size_t i : fitted.changed) {
        fitted.names[i] = fitter.takeNumbered(fitter.plain(names[i]));
    }
    return fitted;
}

}  // namespace qvej
