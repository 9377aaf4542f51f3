// See likeness.h.
#include "client/shape/likeness.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace qvej {
namespace {

constexpr int kPooledLevels = 3;          // of names that are data below each other
constexpr std::size_t kManyObjects = 20;  // from which on one name in common is enough
constexpr std::size_t kManyNames = 10;    // of an object, on average

constexpr std::size_t kLevelsBelow = 3;  // in which a common name is looked for

unsigned kindsOf(const NameNode& node) {
    return node.kinds[NameNode::MEMBER] | node.kinds[NameNode::ELEMENT];
}

// Are nine in ten so?
template <class Nodes, class Test>
bool mostAre(const Nodes& nodes, Test test) {
    const auto count = static_cast<std::size_t>(std::count_if(nodes.begin(), nodes.end(), test));
    return count * 10 >= nodes.size() * 9;
}

// Names with what their values are; how many of the objects have them.
using NameCounts = std::map<std::pair<std::string_view, ValueClass>, std::size_t>;

NameCounts countNames(const std::vector<NameNode*>& objects) {
    NameCounts counts;
    for (const NameNode* object : objects) {
        for (const auto& member : object->members) {
            ++counts[{member->name, classOf(*member)}];
        }
    }
    return counts;
}

// Is half of what the objects have also in the others, or do most have one name in common?
bool shareNames(const std::vector<NameNode*>& objects) {
    const NameCounts counts = countNames(objects);
    double shared = 0;
    std::size_t all = 0, most = 0;
    for (const auto& [name, count] : counts) {
        all += count;
        most = std::max(most, count);
        shared += static_cast<double>(count) * static_cast<double>(count - 1);
    }
    const std::size_t others = objects.size() - 1;
    return shared >= 0.5 * static_cast<double>(all) * static_cast<double>(others) ||
           (objects.size() >= kManyObjects && most * 10 >= objects.size() * 8);
}

ValueClass likeness(const std::vector<NameNode*>& nodes, int levels);

// Are the objects' own names data, and their values alike?
bool sharePooled(const std::vector<NameNode*>& objects, int levels) {
    std::vector<NameNode*> below;
    for (const NameNode* object : objects) {
        for (const auto& member : object->members) {
            below.push_back(member.get());
        }
    }
    return levels > 0 && (below.size() >= objects.size() * kManyNames || lookLikeData(below)) &&
           likeness(below, levels - 1) != ValueClass::NOTHING;
}

bool scalarsAlike(const std::vector<NameNode*>& nodes) {
    for (const unsigned kind : {KIND_STRING, KIND_NUMBER, KIND_BOOLEAN}) {
        if (mostAre(nodes, [&](const NameNode* node) {
                return (kindsOf(*node) & KIND_SCALAR & ~(kind | KIND_NULL)) == 0;
            })) {
            return true;
        }
    }
    return false;
}

ValueClass likeness(const std::vector<NameNode*>& nodes, int levels) {
    std::vector<NameNode*> known;  // without those whose values are all null or empty
    for (NameNode* node : nodes) {
        const ValueClass found = classOf(*node);
        const bool empty = found == ValueClass::OBJECT && node->members.empty() && !node->any;
        if (found != ValueClass::NOTHING && !empty) {
            known.push_back(node);
        }
    }
    for (const ValueClass wanted : {ValueClass::SCALAR, ValueClass::OBJECT, ValueClass::ARRAY}) {
        std::vector<NameNode*> such;
        for (NameNode* node : known) {
            if (classOf(*node) == wanted) {
                such.push_back(node);
            }
        }
        if (such.size() * 10 < known.size() * 9 || such.empty()) {
            continue;
        }
        const bool alike = wanted == ValueClass::OBJECT
                               ? such.size() == 1 || shareNames(such) || sharePooled(such, levels)
                               : scalarsAlike(such);
        return alike ? wanted : ValueClass::NOTHING;
    }
    return ValueClass::NOTHING;
}

// Of a name: how many objects hold it, and how far below in all.
struct Depths {
    std::size_t objects = 0;
    std::size_t depth = 0;
};

// Notes the least depth of each object's name below the node.
void collectNames(const NameNode& node, std::size_t depth,
                  std::map<std::string_view, std::size_t>& names) {
    if (depth > kLevelsBelow) {
        return;
    }
    for (const auto& member : node.members) {
        if (classOf(*member) == ValueClass::OBJECT) {
            auto& least = names.try_emplace(member->name, depth).first->second;
            least = std::min(least, depth);
        }
        collectNames(*member, depth + 1, names);
    }
    if (node.any) {
        collectNames(*node.any, depth + 1, names);
    }
}

}  // namespace

ValueClass classOf(const NameNode& node) {
    const unsigned kinds = kindsOf(node);
    if ((kinds & KIND_OBJECT) != 0) {
        return ValueClass::OBJECT;
    }
    if ((kinds & KIND_ARRAY) != 0) {
        return ValueClass::ARRAY;
    }
    return (kinds & KIND_SCALAR & ~KIND_NULL) != 0 ? ValueClass::SCALAR : ValueClass::NOTHING;
}

ValueClass likeness(const std::vector<NameNode*>& nodes) {
    return likeness(nodes, kPooledLevels);
}

bool likeOthers(const NameNode& node, const std::vector<NameNode*>& others) {
    const NameCounts counts = countNames(others);
    std::size_t shared = 0;
    for (const auto& member : node.members) {
        const auto found = counts.find({member->name, classOf(*member)});
        shared += found != counts.end() && found->second * 2 >= others.size() ? 1 : 0;
    }
    return shared * 2 >= node.members.size();
}

std::string_view commonNameBelow(const std::vector<NameNode*>& objects) {
    std::map<std::string_view, Depths> all;
    for (const NameNode* object : objects) {
        std::map<std::string_view, std::size_t> names;
        collectNames(*object, 1, names);
        for (const auto& [name, depth] : names) {
            Depths& known = all[name];
            ++known.objects;
            known.depth += depth;
        }
    }
    std::string_view best;
    Depths most;
    for (const auto& [name, known] : all) {
        if (known.objects > most.objects ||
            (known.objects == most.objects && known.depth < most.depth)) {
            best = name;
            most = known;
        }
    }
    return most.objects * 5 >= objects.size() * 4 ? best : std::string_view();
}

bool holdsBelow(const NameNode& node, std::string_view name) {
    std::map<std::string_view, std::size_t> names;
    collectNames(node, 1, names);
    return names.contains(name);
}

bool looksLikeData(std::string_view name) {
    return !name.empty() && name.front() >= '0' && name.front() <= '9';
}

bool lookLikeData(const std::vector<NameNode*>& nodes) {
    const auto count = std::count_if(
        nodes.begin(), nodes.end(), [](const NameNode* node) { return looksLikeData(node->name); });
    return static_cast<std::size_t>(count) * 5 >= nodes.size() * 4;
}

}  // namespace qvej
