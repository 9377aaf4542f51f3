// See shape_options.h.
#include "tools/cli/options/shape_options.h"

#include "client/input/text_file.h"
#include "tools/cli/options/option_values.h"

#include <CLI/App.hpp>

#include <algorithm>
#include <array>
#include <iterator>
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
constexpr std::string_view kAuto = "auto";
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

// What says when names are data.
struct Threshold {
    const char* option;
    std::size_t FinderOptions::*number;
    const char* purpose;
};

constexpr std::array<Threshold, 4> kThresholds = {{
    {"--key-names", &FinderOptions::keyNames,
     "names with scalars of one kind may be data from N names\non (default: 20; three times as "
     "many "
     "in a single object)"},
    {"--key-containers", &FinderOptions::keyContainers,
     "names with containers of one shape are data from N names\non (default: 6)"},
    {"--fixed-length", &FinderOptions::fixedLength,
     "arrays of one length stay columns up to N elements\n(default: 4)"},
    {"--inline-columns", &FinderOptions::inlineColumns,
     "objects become columns of their parents up to N columns\n(default: 16)"},
}};

constexpr const char* kDropEmpty = "--drop-empty";

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
    declare(kShape, "auto|FILE",
            "auto: the rules that qvejmap shape prints; else a file of\nrules, one a line; may be "
            "repeated");
    for (const RuleOption& option : kRuleOptions) {
        declare(option.option, option.argument, option.purpose);
    }
    app.add_flag(kDropEmpty)
        ->description("leave out members that are empty objects or arrays")
        ->group(group);
    for (const Threshold& threshold : kThresholds) {
        app.add_option(threshold.option)
            ->description(threshold.purpose)
            ->type_name("N")
            ->group("Finding a shape (shape, --shape auto)");
    }
}

ShapeOptions readShapeOptions(const CLI::App& app, bool finds) {
    ShapeOptions shape;
    shape.sources = app.get_option(kShape)->results();
    std::map<const CLI::Option*, std::size_t> taken;
    for (const CLI::Option* given : app.parse_order()) {
        if (given == app.get_option(kDropEmpty)) {
            shape.rules.add(ShapeRule());
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
    for (const Threshold& threshold : kThresholds) {
        if (app.count(threshold.option) == 0) {
            continue;
        }
        if (!finds && !shape.finds()) {
            usageError(std::string(threshold.option) + " needs --shape auto");
        }
        const std::string& text = app.get_option(threshold.option)->results().back();
        shape.finding.*threshold.number = countOf(threshold.option, text);
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
    for (const Threshold& threshold : kThresholds) {
        const std::size_t number = options.finding.*threshold.number;
        if (number != FinderOptions().*threshold.number) {
            words.push_back(std::string(threshold.option) + "=" + std::to_string(number));
        }
    }
    return words;
}

bool ShapeOptions::finds() const {
    return std::find(sources.begin(), sources.end(), kAuto) != sources.end();
}

std::vector<std::string> ShapeOptions::files() const {
    std::vector<std::string> files;
    std::remove_copy(sources.begin(), sources.end(), std::back_inserter(files), kAuto);
    return files;
}

Shape shapeOf(const ShapeOptions& options, const std::function<Shape()>& find) {
    Shape shape;
    for (const std::string& source : options.sources) {
        if (source == kAuto) {
            shape.add(find());
        } else {
            shape.addText(textOfFile(source), source);
        }
    }
    shape.add(options.rules);
    return shape;
}

}  // namespace qvej::cli
