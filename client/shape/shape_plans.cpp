// See shape_plans.h.
#include "client/shape/shape_plans.h"

#include <algorithm>
#include <utility>

namespace qvej {
namespace {

// The rules' patterns.  What lies below an `only` path is to be known too.
std::vector<PathPattern> patternsOf(const Shape& shape) {
    std::vector<PathPattern> patterns;
    for (const ShapeRule& rule : shape.rules()) {
        if (rule.kind != ShapeRule::EMPTY_DROP) {
            std::vector<PathPattern::Piece> pieces = rule.path.pieces();
            if (rule.kind == ShapeRule::ONLY) {
                pieces.push_back({PathPattern::Piece::ANY_PATH});
            }
            patterns.emplace_back(std::move(pieces));
        }
    }
    return patterns;
}

}  // namespace

ShapePlans::ShapePlans(const Shape& shape)
    : shape_(shape), matcher_(patternsOf(shape)), matched_(shape.rules().size()) {
    for (uint32_t i = 0; i < shape_.rules().size(); ++i) {
        if (shape_.rules()[i].kind == ShapeRule::EMPTY_DROP) {
            dropsEmpty_ = true;
            matched_[i] = true;
        } else {
            ruleOf_.push_back(i);
        }
    }
    root_ = makePlan(matcher_.root(), true);
}

const ShapePlans::Plan& ShapePlans::child(const Plan& from, std::string_view name) {
    const PathMatcher::Node* node = matcher_.child(from.at, name);
    if (node->number >= plans_.size()) {
        plans_.resize(node->number + 1);
    }
    std::unique_ptr<Plan>& plan = plans_[node->number];
    if (plan == nullptr) {
        plan = std::make_unique<Plan>(makePlan(node, false));
    }
    if (!PathMatcher::names(from.at, name)) {
        from.others = plan.get();
    }
    return *plan;
}

// The last of the rules that match holds.  To the root only `rows` means something.
ShapePlans::Plan ShapePlans::makePlan(const PathMatcher::Node* node, bool root) {
    const auto kindOf = [&](uint32_t pattern) { return shape_.rules()[ruleOf_[pattern]].kind; };
    const auto isOnly = [&](uint32_t pattern) { return kindOf(pattern) == ShapeRule::ONLY; };
    Plan plan;
    plan.at = node;
    plan.inside = std::any_of(node->matched.begin(), node->matched.end(), isOnly) ||
                  std::none_of(shape_.rules().begin(), shape_.rules().end(),
                               [](const auto& rule) { return rule.kind == ShapeRule::ONLY; });
    plan.above = std::any_of(node->below.begin(), node->below.end(), isOnly);
    for (const uint32_t pattern : node->matched) {
        if (root && kindOf(pattern) != ShapeRule::ROWS) {
            continue;
        }
        matched_[ruleOf_[pattern]] = true;
        if (!isOnly(pattern)) {
            plan.rule = &shape_.rules()[ruleOf_[pattern]];
        }
    }
    if (plan.rule != nullptr && plan.rule->kind == ShapeRule::KEEP) {
        plan.rule = nullptr;
    }
    plan.plain = plan.rule == nullptr && plan.inside;
    plan.quiet = plan.inside && std::all_of(node->below.begin(), node->below.end(), isOnly);
    return plan;
}

}  // namespace qvej
