// See name_tree.h.
#include "client/shape/name_tree.h"

#include <algorithm>
#include <utility>

namespace qvej {
namespace {

using Members = std::vector<std::unique_ptr<NameNode>>;

// Where the member of that name is, or would be.
Members::const_iterator placeOf(const Members& members, std::string_view name) {
    return std::lower_bound(
        members.begin(), members.end(), name,
        [](const auto& one, std::string_view text) { return one->name < text; });
}

void addCounts(NameNode& to, const NameNode& from) {
    to.count += from.count;
    to.objects += from.objects;
    to.arrays += from.arrays;
    to.elements += from.elements;
    to.shortest = std::min(to.shortest, from.shortest);
    to.longest = std::max(to.longest, from.longest);
    to.empties += from.empties;
    to.longestText = std::max(to.longestText, from.longestText);
    to.kinds[NameNode::MEMBER] |= from.kinds[NameNode::MEMBER];
    to.kinds[NameNode::ELEMENT] |= from.kinds[NameNode::ELEMENT];
    if (from.number < to.number) {
        to.number = from.number;
        to.name = from.name;
    }
}

}  // namespace

NameNode* NameNode::find(std::string_view memberName) const {
    const auto at = placeOf(members, memberName);
    return at != members.end() && (*at)->name == memberName ? at->get() : nullptr;
}

NameNode* NameTree::member(NameNode& node, std::string_view name) {
    if (NameNode* known = node.find(name)) {
        return known;
    }
    if (!node.any && node.members.size() >= mostNames_) {
        mergeRare(node);
    }
    if (node.any) {
        return node.any.get();
    }
    if (full()) {
        return nullptr;
    }
    auto made = std::make_unique<NameNode>();
    made->name = name;
    made->number = made_++;
    ++size_;
    return node.members.insert(placeOf(node.members, name), std::move(made))->get();
}

// A name that most objects have may be a fixed one among names that are data.
bool NameTree::mayBeFixed(const NameNode& node, const NameNode& member) const {
    return isFixed(member.name) ||
           (node.objects > FinderOptions::kFewObjects && member.count * 2 >= node.objects);
}

void NameTree::mergeRare(NameNode& node) {
    merge(node, [&](const NameNode& one) { return !mayBeFixed(node, one); });
    if (!node.any) {
        merge(node, [](const NameNode&) { return true; });  // a record of very many members
    }
}

void NameTree::mergeAny(NameNode& node, std::unique_ptr<NameNode> one) {
    if (node.any) {
        mergeInto(*node.any, std::move(one));
        ++node.any->merged;
    } else {
        node.any = std::move(one);
        node.any->next = nullptr;  // what followed it may go
        node.any->merged = 1;
    }
}

// `one` goes; its members become those of `into`.  The depth of the tree bounds the recursion.
void NameTree::mergeInto(NameNode& into, std::unique_ptr<NameNode> one) {
    --size_;
    forget(into);
    addCounts(into, *one);
    if (one->any) {
        const uint32_t names = (into.any ? into.any->merged : 0) + one->any->merged;
        mergeAny(into, std::move(one->any));
        into.any->merged = names;
    }
    for (std::unique_ptr<NameNode>& below : one->members) {
        if (NameNode* same = into.find(below->name)) {
            mergeInto(*same, std::move(below));
        } else if (into.any && !isFixed(below->name)) {
            mergeAny(into, std::move(below));
        } else {
            forget(*below);
            below->next = nullptr;
            const auto at = placeOf(into.members, below->name);
            into.members.insert(at, std::move(below));
        }
    }
    if (into.members.size() > mostNames_) {
        mergeRare(into);
    }
}

// What came first or next may be a node that goes.
void NameTree::forget(NameNode& node) {
    node.first = nullptr;
    for (const std::unique_ptr<NameNode>& one : node.members) {
        one->next = nullptr;
    }
    if (node.any) {
        node.any->next = nullptr;
    }
}

void NameTree::shrink() {
    while (size_ > mostNodes_ / 2 && mostNames_ > 1) {
        mostNames_ /= 2;
        shrinkBelow(root_);
    }
}

void NameTree::shrinkBelow(NameNode& node) {
    if (node.members.size() > mostNames_) {
        mergeRare(node);
    }
    for (const std::unique_ptr<NameNode>& one : node.members) {
        shrinkBelow(*one);
    }
    if (node.any) {
        shrinkBelow(*node.any);
    }
}

}  // namespace qvej
