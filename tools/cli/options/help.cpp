// See help.h.
#include "tools/cli/options/help.h"

#include "tools/cli/options/help_texts.h"
#include "tools/cli/options/option_owners.h"
#include "tools/cli/verbs/verbs.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <sstream>

namespace qvej::cli {

namespace {

constexpr std::size_t kPurposeColumn = 33;
constexpr std::size_t kOptionColumn = 26;             // where an option's description begins
constexpr std::size_t kDescriptionWidth = 54;         // a page is 80 columns wide
constexpr std::string_view kOfVerbs = "Options of ";  // begins the name of a group

constexpr std::string_view kUsage =
    "\n"
    "Usage: qvejmap VERB FILE [OPTIONS]\n"
    "       qvejmap help [VERB]\n"
    "\n"
    "Verbs:\n";

// A line for each verb whose name begins with `prefix`.
std::string listVerbs(std::string_view prefix) {
    std::string text;
    for (const Verb& verb : allVerbs()) {
        if (verb.name.starts_with(prefix)) {
            std::string call = "  " + std::string(verb.name) + " " + std::string(verb.arguments);
            call.resize(std::max<std::size_t>(call.size() + 1, kPurposeColumn), ' ');
            text += call + std::string(verb.purpose) + "\n";
        }
    }
    return text;
}

// The part of "map: a file; convert: a directory" that is for the verb.
std::string purposeFor(const std::string& verb, const std::string& purpose) {
    const std::size_t at = purpose.find(verb + ": ");
    if (at == std::string::npos) {
        return purpose;
    }
    const std::size_t start = at + verb.size() + 2;
    return purpose.substr(start, purpose.find(';', start) - start);
}

}  // namespace

std::string wrapped(const std::string& text, std::size_t width) {
    std::string result;
    std::size_t used = 0;
    std::istringstream words(text);
    for (std::string word; words >> word; used += word.size()) {
        const bool fits = used + 1 + word.size() <= width;
        result += result.empty() ? "" : fits ? " " : "\n";
        used = fits ? used + 1 : 0;
        result += word;
    }
    return result;
}

void keepOptionsOf(const Verb& verb, CLI::App& app) {
    const std::string name(verb.name);
    for (const Owner& owner : optionOwners()) {
        CLI::Option& option = *app.get_option(owner.option);
        if (!owns(verb, owner)) {
            option.group("");
        } else {
            if (option.get_group().starts_with(kOfVerbs)) {
                option.group(std::string(kOfVerbs) + name);
            }
            option.description(
                purposeFor(name.substr(0, name.find(' ')), option.get_description()));
        }
    }
}

std::string helpText(CLI::App& app, const Verb* verb) {
    std::string text;
    if (verb != nullptr) {
        const std::string name(verb->name);
        text = "qvejmap " + name + ": " + std::string(verb->purpose) + "\n\nUsage: qvejmap " +
               name + " " + std::string(verb->arguments) + " [OPTIONS]\n";
        const std::string further = listVerbs(name + " ");
        text += further.empty() ? "" : "\nFurther verbs:\n" + further;
        keepOptionsOf(*verb, app);
    } else {
        text = std::string(kSummary) + std::string(kUsage) + listVerbs({});
    }
    for (CLI::Option* option : app.get_options()) {
        option->description(wrapped(option->get_description(), kDescriptionWidth));
    }
    CLI::Formatter formatter;
    formatter.column_width(kOptionColumn);
    text += formatter.make_groups(&app, CLI::AppFormatMode::Normal);
    for (std::size_t gap = text.find("\n\n\n"); gap != std::string::npos;
         gap = text.find("\n\n\n")) {
        text.erase(gap, 1);
    }
    return text + "\n" + std::string(kNotes) + "\n" + std::string(kExitCodes);
}

}  // namespace qvej::cli
