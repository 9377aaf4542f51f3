// See shape_judge.h.
//
// From the root downwards: where the names of an object are data, the nodes of these names are
// merged and all that is below is judged as one.  From the bottom upwards: which objects become
// columns of their parents.
#include "client/shape/shape_judge.h"

#include "client/escape.h"
#include "client/shape/likeness.h"
#include "client/text.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace qvej {
namespace {

constexpr std::size_t kShownCharacters = 40;  // of a name in a reason
constexpr std::size_t kLongNumber = 5;        // digits of a name that must be data

using Piece = PathPattern::Piece;
using Names = std::set<std::string, std::less<>>;

std::string quoted(std::string_view name) {
    const std::string_view start = firstCharacters(name, kShownCharacters);
    return "\"" + shown(start) + (start.size() < name.size() ? "..." : "") + "\"";
}

std::string counted(uint64_t count, const std::string& noun) {
    return withCommas(count) + " " + noun + (count == 1 ? "" : "s");
}

// Are the names numbers of many digits?  They are no fields then, not even one alone.
bool areNumbers(const std::vector<NameNode*>& nodes) {
    return std::all_of(nodes.begin(), nodes.end(), [](const NameNode* node) {
        return node->name.size() >= kLongNumber &&
               node->name.find_first_not_of("0123456789") == std::string::npos;
    });
}

// A rule that a node is to have, and why.
struct Verdict {
    ShapeRule::Kind kind = ShapeRule::KEEP;  // KEEP: none
    std::string key = {};
    std::vector<std::string> except = {};
    std::string reason = {};

    [[nodiscard]] bool given() const { return kind != ShapeRule::KEEP; }
};

class Judge {
   public:
    Judge(NameTree& tree, const FinderOptions& options) : tree_(tree), options_(options) {}

    FoundShape judge() {
        judgeNode(tree_.root());
        std::vector<Piece> path = {{Piece::NAME, "root"}};
        addRules(tree_.root(), path);
        addEmptyDrop();
        return std::move(found_);
    }

   private:
    // The names of an object that may be data, and the others.
    struct Split {
        std::vector<NameNode*> data, fixed;
        ValueClass values = ValueClass::NOTHING;  // of the data
    };

    void judgeNode(NameNode& node);
    void judgeArray(NameNode& node);
    [[nodiscard]] bool haveFixedLength(const NameNode& node) const;
    [[nodiscard]] std::optional<Split> splitOf(const NameNode& node);
    [[nodiscard]] std::optional<Split> splitByCommonName(const std::vector<NameNode*>& sections);
    [[nodiscard]] Split splitByFrequency(const NameNode& node) const;
    [[nodiscard]] bool haveFixedName(const std::vector<NameNode*>& objects) const;
    [[nodiscard]] bool areData(const NameNode& node, const Split& split) const;
    void makeRows(NameNode& node, const Split& split);
    [[nodiscard]] Names namesOfEntries(const NameNode& node) const;
    void judgeInlines(NameNode& node);
    [[nodiscard]] bool isInline(const NameNode& parent, const NameNode& node) const;
    void addRules(const NameNode& node, std::vector<Piece>& path);
    void addRule(const NameNode& node, const std::vector<Piece>& path);
    void addEmptyDrop();

    NameTree& tree_;
    const FinderOptions& options_;
    std::map<const NameNode*, Verdict> verdicts_;
    std::map<const NameNode*, Names> columns_;  // that an object would have as part of its parent
    FoundShape found_;
    uint64_t empties_ = 0;
    std::string emptyAt_;  // the path of some of them
};

// All members of a node, as they came, `any` first.
std::vector<NameNode*> inOrder(const NameNode& node) {
    std::vector<NameNode*> all;
    for (const auto& member : node.members) {
        all.push_back(member.get());
    }
    std::sort(all.begin(), all.end(),
              [](const NameNode* a, const NameNode* b) { return a->number < b->number; });
    if (node.any) {
        all.insert(all.begin(), node.any.get());
    }
    return all;
}

// A member of this name would collide with the one that takes the entries.
bool keepsRows(const std::vector<NameNode*>& fixed) {
    return std::any_of(fixed.begin(), fixed.end(),
                       [](const NameNode* member) { return member->name == Shape::kRows; });
}

void Judge::judgeNode(NameNode& node) {
    if (node.has(NameNode::MEMBER, KIND_OBJECT) && !node.has(NameNode::ELEMENT, KIND_OBJECT)) {
        if (const std::optional<Split> split = splitOf(node)) {
            makeRows(node, *split);
        }
    } else {
        judgeArray(node);
    }
    for (NameNode* member : inOrder(node)) {
        judgeNode(*member);
    }
    judgeInlines(node);
    Verdict& verdict = verdicts_[&node];
    if (verdict.given() && node.any) {  // inlined members have their names now
        const Names taken = namesOfEntries(node);
        for (const char* key : {"key", "name", "id", "key_", "key_2", "key_3"}) {
            verdict.key = key;
            if (!taken.contains(verdict.key)) {
                break;
            }
        }
    }
}

// What elements of those kinds are called.
std::string nounOf(unsigned kinds) {
    const unsigned known = kinds & ~unsigned{KIND_NULL};
    return known == KIND_STRING ? "string" : known == KIND_NUMBER ? "number" : "element";
}

// Are the arrays tuples, whose elements are good columns?
bool Judge::haveFixedLength(const NameNode& node) const {
    const bool rowsOfTable = node.has(NameNode::ELEMENT, KIND_ARRAY) &&
                             node.arrays >= FinderOptions::kManyTuples &&
                             node.longest <= FinderOptions::kWidestTuple;
    return node.shortest == node.longest && (node.longest <= options_.fixedLength || rowsOfTable);
}

void Judge::judgeArray(NameNode& node) {
    const bool arrays =
        node.has(NameNode::MEMBER, KIND_ARRAY) && !node.has(NameNode::MEMBER, KIND_OBJECT);
    const unsigned elements = node.kinds[NameNode::ELEMENT];
    const bool nested = (elements & KIND_ARRAY) != 0;
    const bool objects = (elements & KIND_OBJECT) != 0;
    const bool scalars = (elements & KIND_SCALAR) != 0;
    if (!arrays || (!nested && !scalars)) {
        return;
    }
    if (!objects && (node.longest == 0 || haveFixedLength(node))) {
        return;
    }
    Verdict& verdict = verdicts_[&node];
    verdict.kind = ShapeRule::ROWS;
    verdict.key = ShapeRule().key;
    verdict.reason = counted(node.arrays, "array") + " of " +
                     (node.elements == node.arrays * node.longest ? "" : "up to ") +
                     counted(node.longest, nounOf(elements)) +
                     (nested    ? ", in arrays"
                      : objects ? ", objects and others"
                                : "");
}

std::optional<Judge::Split> Judge::splitOf(const NameNode& node) {
    Split split = splitByFrequency(node);
    if ((node.any || areData(node, split)) && !keepsRows(split.fixed)) {
        return split;
    }
    if (node.any) {
        return std::nullopt;
    }
    Split all;
    for (const auto& member : node.members) {
        all.data.push_back(member.get());
    }
    all.values = likeness(all.data);
    if (areData(node, all)) {
        return all;
    }
    return splitByCommonName(all.data);
}

// Sections of one kind, each of a depth of its own: nearly all hold objects of one name somewhere
// below.  That name is a fixed one among names that are data.
std::optional<Judge::Split> Judge::splitByCommonName(const std::vector<NameNode*>& sections) {
    if (sections.size() < options_.keyContainers) {
        return std::nullopt;
    }
    const std::string_view common = commonNameBelow(sections);
    if (common.empty()) {
        return std::nullopt;
    }
    Split split;
    split.values = ValueClass::OBJECT;
    for (NameNode* section : sections) {
        (holdsBelow(*section, common) ? split.data : split.fixed).push_back(section);
    }
    if (keepsRows(split.fixed)) {
        return std::nullopt;
    }
    tree_.fix(common);
    return split;
}

// Names that most objects have are fixed ones, unless their values are like those of the others.
Judge::Split Judge::splitByFrequency(const NameNode& node) const {
    Split split;
    const bool numbers = lookLikeData(inOrder(node));
    std::vector<NameNode*> frequent;
    for (const auto& member : node.members) {
        const bool fixed =
            tree_.mayBeFixed(node, *member) && !(numbers && looksLikeData(member->name));
        (fixed ? frequent : split.data).push_back(member.get());
    }
    split.values = likeness(split.data);
    std::vector<NameNode*> others = split.data;
    if (node.any) {
        split.values = classOf(*node.any);
        others.push_back(node.any.get());
    }
    for (NameNode* member : frequent) {
        const bool data = split.values == ValueClass::OBJECT &&
                          classOf(*member) == ValueClass::OBJECT && likeOthers(*member, others);
        (data ? split.data : split.fixed).push_back(member);
    }
    return split;
}

// Have nearly all the objects a container of a name that stands among names that are data
// elsewhere?  Then these are more such names, however few.
bool Judge::haveFixedName(const std::vector<NameNode*>& objects) const {
    const auto count = std::count_if(objects.begin(), objects.end(), [&](const NameNode* object) {
        return std::any_of(object->members.begin(), object->members.end(), [&](const auto& member) {
            return classOf(*member) == ValueClass::OBJECT && tree_.isFixed(member->name);
        });
    });
    return static_cast<std::size_t>(count) * 5 >= objects.size() * 4;
}

// Are there enough names, each in few of the objects, with values of one shape?
bool Judge::areData(const NameNode& node, const Split& split) const {
    const std::size_t names = split.data.size();
    if (names + split.fixed.size() >= 2 && names != 0 && haveFixedName(split.data)) {
        return true;
    }
    if (split.values == ValueClass::NOTHING) {
        return false;
    }
    if ((names >= 2 && lookLikeData(split.data)) || areNumbers(split.data)) {
        return true;
    }
    uint64_t values = 0;
    for (const NameNode* member : split.data) {
        values += member->count;
    }
    const bool sparse = values * 3 <= names * node.objects;
    if (split.values != ValueClass::SCALAR && (split.fixed.empty() || sparse)) {
        return names >= options_.keyContainers;
    }
    return (sparse && names >= options_.keyNames) ||
           (split.fixed.empty() && node.objects == 1 &&
            names / FinderOptions::kLoneNames >= options_.keyNames);
}

void Judge::makeRows(NameNode& node, const Split& split) {
    Verdict& verdict = verdicts_[&node];
    verdict.kind = ShapeRule::ROWS;
    for (const NameNode* fixed : split.fixed) {
        verdict.except.push_back(fixed->name);
        if (classOf(*fixed) == ValueClass::OBJECT) {
            tree_.fix(fixed->name);
        }
    }
    const uint64_t merged = node.any ? node.any->merged : 0;
    const NameNode* example = node.any ? node.any.get() : split.data.front();
    for (const NameNode* one : split.data) {
        example = one->number < example->number ? one : example;
    }
    const std::string such = quoted(example->name);
    const Names fixed(verdict.except.begin(), verdict.except.end());
    tree_.merge(node, [&](const NameNode& one) { return !fixed.contains(one.name); });
    const bool exact = merged == 0 || node.objects == 1;
    const uint64_t names = node.objects == 1 ? node.any->count : merged + split.data.size();
    verdict.reason = (exact ? "" : "at least ") + counted(names, "name") + " in " +
                     counted(node.objects, "object") + ", such as " + such;
    const ValueClass values = classOf(*node.any);
    verdict.reason += values == ValueClass::OBJECT  ? ", with objects"
                      : values == ValueClass::ARRAY ? ", with arrays"
                                                    : ", with scalars";
}

// The members of the entries beside the key.
Names Judge::namesOfEntries(const NameNode& node) const {
    const NameNode& entry = *node.any;
    Names names;
    const auto verdict = verdicts_.find(&entry);
    const bool rows = verdict != verdicts_.end() && verdict->second.kind == ShapeRule::ROWS;
    if (rows) {
        names.emplace(Shape::kRows);
        names.insert(verdict->second.except.begin(), verdict->second.except.end());
    }
    for (const auto& member : entry.members) {
        const auto inlined = verdicts_.find(member.get());
        if (inlined == verdicts_.end() || inlined->second.kind != ShapeRule::INLINE) {
            names.insert(member->name);
            continue;
        }
        for (const std::string& column : columns_.at(member.get())) {
            names.insert(member->name + "_" + column);
        }
    }
    return names;
}

bool Judge::isInline(const NameNode& parent, const NameNode& node) const {
    const bool oneToOne = node.has(NameNode::MEMBER, KIND_OBJECT) &&
                          (node.kinds[NameNode::MEMBER] & ~(KIND_OBJECT | KIND_NULL)) == 0 &&
                          node.kinds[NameNode::ELEMENT] == 0 && node.objects * 2 >= parent.objects;
    return oneToOne && !node.any && columns_.contains(&node);
}

// Which members become columns of this object, and which columns that gives.
void Judge::judgeInlines(NameNode& node) {
    Names names;
    for (const auto& member : node.members) {
        names.insert(member->name);
    }
    bool scalars = !node.any && !node.members.empty();
    for (NameNode* member : inOrder(node)) {
        if (member == node.any.get()) {
            continue;
        }
        if ((member->kinds[NameNode::MEMBER] & ~KIND_SCALAR) == 0) {
            continue;
        }
        if (!isInline(node, *member)) {
            scalars = false;
            continue;
        }
        Names columns;
        for (const std::string& column : columns_.at(member)) {
            columns.insert(member->name + "_" + column);
        }
        if (std::any_of(columns.begin(), columns.end(),
                        [&](const std::string& column) { return names.contains(column); })) {
            scalars = false;
            continue;
        }
        names.erase(member->name);
        names.merge(columns);
        Verdict& verdict = verdicts_[member];
        verdict.kind = ShapeRule::INLINE;
        const Names& scalarsOfIt = columns_.at(member);
        verdict.reason = "one object of " + counted(scalarsOfIt.size(), "scalar") + ", such as " +
                         quoted(*scalarsOfIt.begin()) + ", in " + withCommas(member->objects) +
                         " of " + counted(node.objects, "object");
    }
    if (scalars && names.size() <= options_.inlineColumns) {
        columns_.emplace(&node, std::move(names));
    }
}

// The rules of `any` come first: those of a name then replace them for that name.
void Judge::addRules(const NameNode& node, std::vector<Piece>& path) {
    addRule(node, path);
    if (node.empties != 0 && path.size() > 1) {  // the root is no member
        empties_ += node.empties;
        emptyAt_ = emptyAt_.empty() ? PathPattern(path).text() : emptyAt_;
    }
    for (const NameNode* member : inOrder(node)) {
        const bool any = member == node.any.get();
        path.push_back(any ? Piece{Piece::ANY_NAME} : Piece{Piece::NAME, member->name});
        addRules(*member, path);
        path.pop_back();
    }
}

// Does the pattern match all paths that `path` stands for?
bool covers(const std::vector<Piece>& pattern, const std::vector<Piece>& path) {
    return std::equal(
        pattern.begin(), pattern.end(), path.begin(), path.end(),
        [](const Piece& a, const Piece& b) { return a.kind == Piece::ANY_NAME || a == b; });
}

bool hasEffect(const ShapeRule& rule, const NameNode& node) {
    return node.has(NameNode::MEMBER, KIND_OBJECT) ||
           (rule.kind == ShapeRule::ROWS &&
            (node.kinds[NameNode::ELEMENT] & ~unsigned{KIND_OBJECT}) != 0);
}

void Judge::addRule(const NameNode& node, const std::vector<Piece>& path) {
    const auto known = verdicts_.find(&node);
    const Verdict verdict = known == verdicts_.end() ? Verdict() : known->second;
    ShapeRule rule = {verdict.kind, PathPattern(path)};
    if (rule.kind == ShapeRule::ROWS) {
        rule.key = verdict.key;
        rule.except = verdict.except;
    }
    const auto before = std::find_if(
        found_.rules.rbegin(), found_.rules.rend(),
        [&](const FoundRule& found) { return covers(found.rule.path.pieces(), path); });
    if (before == found_.rules.rend()) {
        if (!verdict.given()) {
            return;
        }
    } else {
        ShapeRule same = before->rule;
        same.path = rule.path;
        if (same == rule || (!verdict.given() && !hasEffect(same, node))) {
            return;
        }
    }
    found_.rules.push_back({rule, verdict.given()
                                      ? verdict.reason
                                      : "unlike the others of " + before->rule.path.text()});
}

void Judge::addEmptyDrop() {
    if (empties_ != 0) {
        found_.rules.push_back({ShapeRule(), withCommas(empties_) +
                                                 (empties_ == 1 ? " member is an empty container"
                                                                : " members are empty containers") +
                                                 ", such as " + shown(emptyAt_)});
    }
}

}  // namespace

FoundShape judgeShape(NameTree& tree, const FinderOptions& options) {
    return Judge(tree, options).judge();
}

}  // namespace qvej
