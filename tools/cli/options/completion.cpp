// See completion.h.
#include "tools/cli/options/completion.h"

#include "tools/cli/options/help.h"
#include "tools/cli/verbs/verbs.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace qvej::cli {

namespace {

constexpr std::string_view kFileNames[] = {"FILE", "MAP", "A", "B", "OUT", "DIR"};

std::string offer(std::string_view word, const std::string& purpose) {
    return std::string(word) + "\t" + wrapped(purpose, SIZE_MAX) + "\n";
}

// The values of an operand or an option that help shows as `shown`: "FILE", "N", "auto|FILE".
// `before` is what already stands before the value in its word.
std::string offerValues(std::string_view shown, const std::string& before) {
    std::string text;
    for (std::size_t at = 0; at < shown.size();) {
        const std::size_t end = std::min(shown.find('|', at), shown.size());
        const std::string_view value = shown.substr(at, end - at);
        const bool isFile =
            std::find(std::begin(kFileNames), std::end(kFileNames), value) != std::end(kFileNames);
        if (isFile) {
            text += ":files\n";
        } else if (value[0] >= 'a' && value[0] <= 'z') {
            text += offer(before + std::string(value), "");
        }
        at = end + 1;
    }
    return text;
}

// The next word of the verbs that begin with `begin`: nothing, or "map ".
std::string offerVerbs(const std::string& begin) {
    std::string text;
    for (const Verb& verb : allVerbs()) {
        const std::string_view rest = verb.name.substr(std::min(begin.size(), verb.name.size()));
        if (verb.name.starts_with(begin) && rest.find(' ') == std::string_view::npos) {
            text += offer(rest, std::string(verb.purpose));
        }
    }
    return text;
}

std::string offerOptions(CLI::App& app, const Verb* verb) {
    if (verb != nullptr) {
        keepOptionsOf(*verb, app);
    }
    std::string text;
    for (const CLI::Option* option : app.get_options()) {
        if (!option->get_group().empty()) {
            text += offer("--" + option->get_lnames().at(0), option->get_description());
        }
    }
    return text;
}

// `words` are the verb and the operands so far.
std::string offerWords(std::vector<std::string> words) {
    const bool help = !words.empty() && words[0] == "help";
    if (help) {
        words.erase(words.begin());
    }
    const FoundVerb found = findVerb(words);
    if (found.verb == nullptr) {
        return offerVerbs("") + (help ? "" : offer("help", "what a verb takes"));
    }
    const bool atVerb = found.at + found.count == words.size();
    std::string text = atVerb ? offerVerbs(std::string(found.verb->name) + " ") : "";
    const std::size_t operand = words.size() - found.count;
    if (!help && operand < found.verb->most) {
        text += offerValues(operandName(*found.verb, operand), "");
    }
    return text;
}

// The option that this word names and that takes a value, or null.
const CLI::Option* valued(const CLI::App& app, const std::string& word) {
    const CLI::Option* option = word.starts_with("-") ? app.get_option_no_throw(word) : nullptr;
    return option != nullptr && option->get_items_expected_max() != 0 ? option : nullptr;
}

}  // namespace

std::string completions(CLI::App& app, std::vector<std::string> words) {
    const std::string word = words.empty() ? "" : words.back();
    words.resize(words.size() - std::min<std::size_t>(words.size(), 1));
    std::vector<std::string> plain;        // no options
    const CLI::Option* waiting = nullptr;  // for the next word as its value
    bool optionsEnded = false;
    for (const std::string& before : words) {
        if (waiting != nullptr) {
            waiting = nullptr;
        } else if (optionsEnded || !before.starts_with("-") || before == "-") {
            plain.push_back(before);
        } else if (before == "--") {
            optionsEnded = true;
        } else {
            waiting = valued(app, before);
        }
    }
    if (waiting != nullptr) {
        return offerValues(waiting->get_type_name(), "");
    }
    if (optionsEnded || !word.starts_with("-")) {
        return offerWords(plain);
    }
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos) {
        return offerOptions(app, findVerb(plain).verb);
    }
    const CLI::Option* option = valued(app, word.substr(0, equals));
    return option == nullptr ? ""
                             : offerValues(option->get_type_name(), word.substr(0, equals + 1));
}

}  // namespace qvej::cli
