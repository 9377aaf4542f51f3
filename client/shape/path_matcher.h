// Which of many patterns match the path of a value, followed name by name.
//
//     PathMatcher matcher(patterns);
//     const PathMatcher::Node* node = matcher.root();   // /root
//     node = matcher.child(node, "orders");             // /root/orders
//     ... node->matched ...
//
// A node stands for all paths after which the same pieces of the patterns are expected: the set of
// states of the patterns' finite automata.  Nodes are made when a path first needs them, so that
// there are at most as many as the patterns can tell apart, however many paths a document has.
//
// Tested by tests/client/path_pattern_test.cpp
#pragma once

#include "path_pattern.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

namespace qvej {

class PathMatcher {
   public:
    // The position `piece` in a pattern: those before it have matched.
    struct State {
        uint32_t pattern;
        uint32_t piece;

        auto operator<=>(const State&) const = default;
    };

    class Node {
       public:
        std::size_t number = 0;         // from 0, in the order in which nodes are made
        std::vector<uint32_t> matched;  // patterns that match the path
        std::vector<uint32_t> below;    // patterns that may match a path below it

       private:
        friend class PathMatcher;
        struct Branch {
            std::string_view name;
            mutable Node* node;  // null: not made yet
        };
        std::vector<State> states;     // sorted
        std::vector<Branch> branches;  // of the names that a pattern expects here, sorted
        Branch other = {};             // of any other name
    };

    explicit PathMatcher(std::vector<PathPattern> patterns);
    PathMatcher(const PathMatcher&) = delete;
    PathMatcher& operator=(const PathMatcher&) = delete;

    [[nodiscard]] const Node* root() const { return root_; }
    const Node* child(const Node* node, std::string_view name) {
        const Node::Branch* branch = find(*node, name);
        return branch->node != nullptr ? branch->node : grow(node, *branch, name);
    }

    // Is the name one that a pattern names here?  All others have one child.
    [[nodiscard]] static bool names(const Node* node, std::string_view name) noexcept {
        return find(*node, name) != &node->other;
    }

   private:
    static constexpr std::size_t kFewBranches = 8;  // so few are compared one by one
    static const Node::Branch* find(const Node& node, std::string_view name) noexcept {
        if (node.branches.size() <= kFewBranches) {
            for (const Node::Branch& branch : node.branches) {
                if (branch.name == name) {
                    return &branch;
                }
            }
            return &node.other;
        }
        for (std::size_t first = 0, last = node.branches.size(); first < last;) {
            const std::size_t middle = (first + last) / 2;
            const int order = node.branches[middle].name.compare(name);
            if (order == 0) {
                return &node.branches[middle];
            }
            (order < 0 ? first : last) = order < 0 ? middle + 1 : middle;
        }
        return &node.other;
    }
    Node* grow(const Node* from, const Node::Branch& branch, std::string_view name);
    Node* nodeOf(std::vector<State> states);
    void addWithEmptyPaths(std::vector<State>& states, State state) const;

    std::vector<PathPattern> patterns_;
    std::vector<std::unique_ptr<Node>> nodes_;
    std::map<std::vector<State>, Node*> known_;
    Node* root_ = nullptr;
};

}  // namespace qvej
