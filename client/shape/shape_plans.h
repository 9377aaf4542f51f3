// What the rules of a shape say of each path.
//
// There is a plan for each node of the matcher and so for all paths that the rules cannot tell
// apart.
//
// Tested by tests/client/reshaper_test.cpp and tests/tool/reshape.py
#pragma once

#include "path_matcher.h"
#include "shape.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace qvej {

class ShapePlans {
   public:
    struct Plan {
        const PathMatcher::Node* at = nullptr;
        const ShapeRule* rule = nullptr;  // that holds here; null: none
        bool inside = true;               // at or below an `only` path, or there are none
        bool above = false;               // above one
        bool plain = true;                // no rule, and inside
        bool quiet = true;                // nothing below can match
        // Of the members whose names no rule has here; null: not known yet.
        mutable const Plan* others = nullptr;
    };

    explicit ShapePlans(const Shape& shape);

    [[nodiscard]] const Plan& root() const { return root_; }

    // Of the member of that name in a container with that plan.
    const Plan& child(const Plan& plan, std::string_view name);

    // The same where it is known and no rule has the name, else null.
    [[nodiscard]] static const Plan* otherChild(const Plan& plan, std::string_view name) noexcept {
        return plan.others == nullptr || PathMatcher::names(plan.at, name) ? nullptr : plan.others;
    }

    [[nodiscard]] const Shape& shape() const { return shape_; }
    [[nodiscard]] bool dropsEmpty() const { return dropsEmpty_; }

    // For each rule, whether a path that was asked for matched it.  `empty drop` always did.
    [[nodiscard]] const std::vector<bool>& matched() const { return matched_; }

   private:
    Plan makePlan(const PathMatcher::Node* node, bool root);

    Shape shape_;
    bool dropsEmpty_ = false;
    std::vector<uint32_t> ruleOf_;  // of each pattern
    PathMatcher matcher_;
    std::vector<bool> matched_;
    Plan root_;
    std::vector<std::unique_ptr<Plan>> plans_;  // by the number of the node; null: not made
};

}  // namespace qvej
