// See shape.h.
#include "client/shape/shape.h"

#include "client/escape.h"
#include "client/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qvej {
namespace {

struct KindName {
    std::string_view name;
    ShapeRule::Kind kind;
};

constexpr std::array<KindName, 6> kKinds = {{
    {"rows", ShapeRule::ROWS},
    {"inline", ShapeRule::INLINE},
    {"text", ShapeRule::TEXT},
    {"drop", ShapeRule::DROP},
    {"keep", ShapeRule::KEEP},
    {"only", ShapeRule::ONLY},
}};

// Words of a rule as a message has them: what was taken for a file of rules may be one long line.
std::string inMessage(std::string_view word) {
    constexpr std::size_t kShownCharacters = 40;
    const std::string_view start = firstCharacters(word, kShownCharacters);
    return "\"" + shown(start) + (start.size() < word.size() ? "..." : "") + "\"";
}

// The words of a rule, and how far they have been read.
class Words {
    // What `routine` reads next.
    template <class Routine>
    auto read(Routine routine) {
        const std::size_t begin = at();
        try {
            auto result = routine(rest_);
            skipBlanks(rest_);
            return result;
        } catch (const PatternMistake& mistake) {
            throw PatternMistake{mistake.what, begin + mistake.at};
        }
    }

   public:
    explicit Words(std::string_view line) : size_(line.size()), rest_(line) { skipBlanks(rest_); }

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }
    [[nodiscard]] std::size_t at() const { return size_ - rest_.size(); }

    std::string word() {
        return read([](std::string_view& rest) { return readWord(rest); });
    }
    PathPattern path() {
        return read([](std::string_view& rest) { return PathPattern::readFrom(rest); });
    }

    // The next word, if it is that one.
    bool takes(std::string_view wanted) {
        const Words before = *this;
        if (atEnd() || rest_.front() == '"' || word() != wanted) {
            *this = before;
            return false;
        }
        return true;
    }

   private:
    std::size_t size_;
    std::string_view rest_;
};

std::string keyOf(Words& words) {
    const std::size_t at = words.at();
    if (words.atEnd()) {
        throw PatternMistake{"a name was expected after \"as\"", at};
    }
    std::string key = words.word();
    if (key == Shape::kValue) {
        throw PatternMistake{"\"value\" is what the member beside the key is called", at};
    }
    return key;
}

std::vector<std::string> exceptionsOf(Words& words) {
    if (words.atEnd()) {
        throw PatternMistake{"a name was expected after \"except\"", words.at()};
    }
    std::vector<std::string> names;
    while (!words.atEnd()) {
        const std::size_t at = words.at();
        if (words.takes("as")) {
            throw PatternMistake{"\"as\" stands before \"except\" (a name is written as a string)",
                                 at};
        }
        names.push_back(words.word());
    }
    return names;
}

ShapeRule ruleOf(Words& words) {
    if (words.takes("empty")) {
        if (!words.takes("drop")) {
            throw PatternMistake{"\"drop\" was expected after \"empty\"", words.at()};
        }
        return {};
    }
    const std::size_t begin = words.at();
    const std::string name = words.word();
    const auto* known = std::find_if(kKinds.begin(), kKinds.end(),
                                     [&](const KindName& kind) { return kind.name == name; });
    if (known == kKinds.end()) {
        throw PatternMistake{
            inMessage(name) + " is no rule (rows, inline, text, drop, only, keep, empty drop)",
            begin};
    }
    const std::size_t at = words.at();
    if (words.atEnd()) {
        throw PatternMistake{"a path was expected", at};
    }
    ShapeRule rule = {known->kind, words.path()};
    if (rule.kind == ShapeRule::ROWS) {
        rule.key = words.takes("as") ? keyOf(words) : rule.key;
        rule.except = words.takes("except") ? exceptionsOf(words) : rule.except;
    } else if (rule.path.isRoot()) {
        throw PatternMistake{"the root takes \"rows\" only", at};
    }
    return rule;
}

// The rule of a line; `place`: of its beginning.
ShapeRule readRule(std::string_view line, Place place) {
    try {
        Words words(line);
        ShapeRule rule = ruleOf(words);
        if (!words.atEnd()) {
            throw PatternMistake{"the rule ends before this", words.at()};
        }
        return rule;
    } catch (const PatternMistake& mistake) {
        place.column = static_cast<int64_t>(mistake.at) + 1;
        throw Error(QV_BADPARMS, mistake.what, place);
    }
}

}  // namespace

std::string ShapeRule::text() const {
    if (kind == EMPTY_DROP) {
        return "empty drop";
    }
    const auto* known = std::find_if(kKinds.begin(), kKinds.end(),
                                     [&](const KindName& entry) { return entry.kind == kind; });
    std::string text = std::string(known->name) + " " + path.text();
    if (kind == ROWS) {
        text += key == ShapeRule().key ? "" : " as " + writtenWord(key);
        text += except.empty() ? "" : " except";
        for (const std::string& name : except) {
            text += " " + (name == "as" ? "\"as\"" : writtenWord(name));
        }
    }
    return text;
}

void Shape::addRule(std::string_view line) {
    rules_.push_back(readRule(line, {}));
}

void Shape::addText(std::string_view text, const std::string& name) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";  // some editors put it before the text
    if (text.starts_with(kMark)) {
        text.remove_prefix(kMark.size());
    }
    for (int64_t number = 1; !text.empty(); ++number) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        std::string_view rest = line;
        skipBlanks(rest);
        if (!rest.empty() && !line.starts_with('#')) {
            rules_.push_back(readRule(line, {name, number, 1}));
        }
    }
}

}  // namespace qvej
