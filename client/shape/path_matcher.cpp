// See path_matcher.h.
#include "client/shape/path_matcher.h"

#include <algorithm>
#include <utility>

namespace qvej {

PathMatcher::PathMatcher(std::vector<PathPattern> patterns) : patterns_(std::move(patterns)) {
    std::vector<State> states;
    for (uint32_t i = 0; i < patterns_.size(); ++i) {
        addWithEmptyPaths(states, {i, 0});
    }
    Node* top = nodeOf(std::move(states));  // above the root
    root_ = nodes_[child(top, "root")->number].get();
}

// Adds a state, and those that it is too because "**" may stand for no name.
void PathMatcher::addWithEmptyPaths(std::vector<State>& states, State state) const {
    const std::vector<PathPattern::Piece>& pieces = patterns_[state.pattern].pieces();
    states.push_back(state);
    while (state.piece < pieces.size() &&
           pieces[state.piece].kind == PathPattern::Piece::ANY_PATH) {
        ++state.piece;
        states.push_back(state);
    }
}

PathMatcher::Node* PathMatcher::nodeOf(std::vector<State> states) {
    std::sort(states.begin(), states.end());
    states.erase(std::unique(states.begin(), states.end()), states.end());
    Node*& known = known_[states];
    if (known != nullptr) {
        return known;
    }
    nodes_.push_back(std::make_unique<Node>());
    Node* node = nodes_.back().get();
    node->number = nodes_.size() - 1;
    for (const State& state : states) {
        const std::vector<PathPattern::Piece>& pieces = patterns_[state.pattern].pieces();
        std::vector<uint32_t>& list = state.piece == pieces.size() ? node->matched : node->below;
        if (list.empty() || list.back() != state.pattern) {
            list.push_back(state.pattern);
        }
        if (state.piece < pieces.size() && pieces[state.piece].kind == PathPattern::Piece::NAME) {
            node->branches.push_back({pieces[state.piece].name, nullptr});
        }
    }
    const auto byName = [](const auto& a, const auto& b) { return a.name < b.name; };
    const auto sameName = [](const auto& a, const auto& b) { return a.name == b.name; };
    std::sort(node->branches.begin(), node->branches.end(), byName);
    node->branches.erase(std::unique(node->branches.begin(), node->branches.end(), sameName),
                         node->branches.end());
    node->states = std::move(states);
    known = node;
    return node;
}

PathMatcher::Node* PathMatcher::grow(const Node* from, const Node::Branch& branch,
                                     std::string_view name) {
    std::vector<State> states;
    for (const State& state : from->states) {
        const std::vector<PathPattern::Piece>& pieces = patterns_[state.pattern].pieces();
        if (state.piece == pieces.size()) {
            continue;
        }
        const PathPattern::Piece& piece = pieces[state.piece];
        if (piece.kind == PathPattern::Piece::ANY_PATH) {
            addWithEmptyPaths(states, state);
        } else if (piece.kind == PathPattern::Piece::ANY_NAME || piece.name == name) {
            addWithEmptyPaths(states, {state.pattern, state.piece + 1});
        }
    }
    branch.node = nodeOf(std::move(states));
    return branch.node;
}

}  // namespace qvej
