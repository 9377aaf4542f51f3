// See shape_options.h.
#include "tools/cli/options/shape_options.h"

#include "client/input/byte_source.h"
#include "tools/cli/options/option_values.h"

#include <CLI/App.hpp>

#include <array>
#include <map>

namespace qvej::cli {

namespace {

struct RuleOption {
    const char* option;
    const char* rule;  // what it begins with
    const char* argument;
    const char* purpose;
};

constexpr const char* kShape = "--shape";
constexpr std::array<RuleOption, 6> kRuleOptions = {{
    {"--rows", "rows ", "RULE",
     "PATH [as KEY] [except NAME...]: the members there, or the\n"
     "elements, become rows"},
    {"--inline", "inline ", "PATH",
     "the members of the object there become members of the one\n"
     "around it"},
    {"--as-text", "text ", "PATH", "the object or array there becomes its JSON as a string"},
    {"--drop", "drop ", "PATH", "leave out what is there"},
    {"--only", "only ", "PATH", "leave out all but what is there"},
    {"--keep", "keep ", "PATH", "undo earlier rules for what is there"},
}};
constexpr const char* kDropEmpty = "--drop-empty";

std::string textOf(ByteSource source) {
    std::string text;
    for (std::string_view piece = source.next(); !piece.empty(); piece = source.next()) {
        text += piece;
    }
    return text;
}

}  // namespace

void declareShapeOptions(CLI::App& app) {
    const std::string group = "Shape of the document (docs/FORMATS.md says what each rule means)";
    const auto declare = [&](const char* option, const char* argument, const char* purpose) {
        app.add_option(option)
            ->description(purpose)
            ->type_name(argument)
            ->allow_extra_args(false)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
            ->group(group);
    };
    declare(kShape, "FILE", "a file of rules, one a line; may be repeated");
    for (const RuleOption& option : kRuleOptions) {
        declare(option.option, option.argument, option.purpose);
    }
    app.add_flag(kDropEmpty)
        ->description("leave out members that are empty objects or arrays")
        ->group(group);
}

ShapeOptions readShapeOptions(const CLI::App& app) {
    ShapeOptions shape;
    shape.sources = app.get_option(kShape)->results();
    std::map<const CLI::Option*, std::size_t> taken;
    for (const CLI::Option* given : app.parse_order()) {
        if (given == app.get_option(kDropEmpty)) {
            shape.rules.add({});
        }
        for (const RuleOption& option : kRuleOptions) {
            if (given != app.get_option(option.option)) {
                continue;
            }
            const std::string& argument = given->results().at(taken[given]++);
            try {
                shape.rules.addRule(option.rule + argument);
            } catch (const Error& error) {
                usageError(std::string(option.option) + ": " + inQuotes(argument) + ": " +
                           error.what());
            }
        }
    }
    return shape;
}

std::vector<std::string> wordsOf(const ShapeOptions& options) {
    std::vector<std::string> words;
    for (const std::string& source : options.sources) {
        words.push_back(std::string(kShape) + "=" + source);
    }
    for (const ShapeRule& rule : options.rules.rules()) {
        const std::string text = rule.text();
        std::string word = kDropEmpty;
        for (const RuleOption& option : kRuleOptions) {
            const std::string_view begin = option.rule;
            word = text.starts_with(begin)
                       ? std::string(option.option) + "=" + text.substr(begin.size())
                       : word;
        }
        words.push_back(word);
    }
    return words;
}

Shape shapeOf(const ShapeOptions& options) {
    Shape shape;
    for (const std::string& source : options.sources) {
        shape.addText(textOf(ByteSource::file(source)), source);
    }
    for (const ShapeRule& rule : options.rules.rules()) {
        shape.add(rule);
    }
    return shape;
}

}  // namespace qvej::cli
