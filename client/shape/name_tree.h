// The names of a document as a tree, with what is known of the values at each path.
//
// A node stands for all values of a path; an array adds no name, so its elements are values of its
// node too.  Memory is bounded: names of one object beyond a limit are merged into one node that
// stands for any name, and so are those of the widest objects when the tree as a whole is too
// large.  Where even that does not help, and below a path of kMostDepth names, new names are
// passed over.
//
// Tested by tests/client/shape_finder_test.cpp
#pragma once

#include "finder_options.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

// Kinds of values, as bits.
enum ValueKind : uint8_t {
    KIND_STRING = 1,
    KIND_NUMBER = 2,
    KIND_BOOLEAN = 4,
    KIND_NULL = 8,
    KIND_OBJECT = 16,
    KIND_ARRAY = 32,
    KIND_SCALAR = KIND_STRING | KIND_NUMBER | KIND_BOOLEAN | KIND_NULL,
};

struct NameNode {
    enum Where { MEMBER, ELEMENT };

    std::string name;  // of a node of merged names: one of them
    // Documents repeat themselves, so the next name is first looked for here.
    NameNode* first = nullptr;  // its member that came first in an object the last time
    NameNode* next = nullptr;   // its sibling that followed it the last time
    std::vector<std::unique_ptr<NameNode>> members;  // sorted by name
    std::unique_ptr<NameNode> any;                   // of the names that are merged; may be null

    uint64_t count = 0;              // of values that are members
    uint64_t objects = 0;            // members and elements
    uint64_t arrays = 0;             // without arrays in them, empty ones too
    uint64_t elements = 0;           // of these arrays
    uint32_t number = 0;             // in the order in which nodes are made
    uint32_t merged = 0;             // names that are merged in this node, at least
    uint32_t shortest = UINT32_MAX;  // of these arrays, those without elements left out
    uint32_t longest = 0;            // of these arrays
    uint32_t empties = 0;            // members that are empty containers
    uint32_t longestText = 0;        // bytes of a string
    std::array<uint8_t, 2> kinds{};  // bits of ValueKind, for MEMBER and ELEMENT

    [[nodiscard]] bool has(Where where, unsigned kind) const { return (kinds[where] & kind) != 0; }

    // The member of that name, without regard to `any`; null: none.
    [[nodiscard]] NameNode* find(std::string_view memberName) const;
};

class NameTree {
   public:
    static constexpr std::size_t kMostDepth = 200;

    explicit NameTree(const FinderOptions& options)
        : mostNames_(options.mostNames), mostNodes_(options.mostPaths) {
        root_.name = "root";
    }

    [[nodiscard]] NameNode& root() { return root_; }
    [[nodiscard]] std::size_t size() const { return size_; }
    // Must names be merged before another node can be made?
    [[nodiscard]] bool full() const { return size_ >= mostNodes_; }

    // The member of `node` that stands for the name; made when there is none, and null when the
    // tree is full.  It may merge the members of `node`.
    NameNode* member(NameNode& node, std::string_view name);

    // Merges the names of the widest objects until half the room is free, if that can be had.  All
    // nodes but the root may have gone.
    void shrink();

    // Members of that name are not merged with others from now on.
    void fix(std::string_view name) { fixedNames_.emplace(name); }
    [[nodiscard]] bool isFixed(std::string_view name) const { return fixedNames_.contains(name); }

    // Is the name fixed, or do so many of the node's objects have it that it may be?
    [[nodiscard]] bool mayBeFixed(const NameNode& node, const NameNode& member) const;

    // Merges all members for which `wanted` into `any`.
    template <class Wanted>
    void merge(NameNode& node, Wanted wanted) {
        forget(node);
        std::vector<std::unique_ptr<NameNode>> all;
        all.swap(node.members);
        for (std::unique_ptr<NameNode>& one : all) {
            if (wanted(*one)) {
                mergeAny(node, std::move(one));
            } else {
                node.members.push_back(std::move(one));
            }
        }
    }

   private:
    void mergeRare(NameNode& node);
    void mergeAny(NameNode& node, std::unique_ptr<NameNode> one);
    void mergeInto(NameNode& into, std::unique_ptr<NameNode> one);
    void shrinkBelow(NameNode& node);
    static void forget(NameNode& node);

    NameNode root_;
    std::set<std::string, std::less<>> fixedNames_;
    std::size_t size_ = 1;
    uint32_t made_ = 0;
    std::size_t mostNames_;
    std::size_t mostNodes_;
};

}  // namespace qvej
