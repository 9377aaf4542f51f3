// See layout.h.
#include "tools/cli/pictures/layout.h"

#include <algorithm>
#include <cmath>

namespace qvej::cli {

namespace {

constexpr double kAspect = 1.6;  // of the whole, about

// The boxes of one tree with the corner at 0, 0.
struct Tree {
    std::vector<std::size_t> boxes;  // each after its parent
    Extent extent = {};
};

std::vector<Tree> treesOf(const std::vector<Box>& boxes) {
    std::vector<Tree> trees;
    std::vector<std::size_t> treeOf(boxes.size());
    for (std::size_t b = 0; b < boxes.size(); ++b) {
        const bool root = boxes[b].parent == b;
        treeOf[b] = root ? trees.size() : treeOf[boxes[b].parent];
        if (root) {
            trees.emplace_back();
        }
        trees[treeOf[b]].boxes.push_back(b);
    }
    return trees;
}

// Columns by depth: each is as wide as its widest box.
void placeAcross(Tree& tree, std::vector<Box>& boxes, double gap) {
    std::vector<std::size_t> depth(boxes.size());
    std::vector<double> widths;
    for (const std::size_t b : tree.boxes) {
        depth[b] = boxes[b].parent == b ? 0 : depth[boxes[b].parent] + 1;
        widths.resize(std::max(widths.size(), depth[b] + 1));
        widths[depth[b]] = std::max(widths[depth[b]], boxes[b].width);
    }
    std::vector<double> starts = {0};
    for (const double width : widths) {
        starts.push_back(starts.back() + width + gap);
    }
    for (const std::size_t b : tree.boxes) {
        boxes[b].x = starts[depth[b]];
    }
    tree.extent.width = starts.back() - gap;
}

// A box begins where the first of its children does; the next one below all that is of it.
void placeDown(Tree& tree, std::vector<Box>& boxes, double gap) {
    std::vector<double> below(boxes.size(), 0);  // the height of the children
    std::vector<double> heights(boxes.size());   // with all that is of the box
    for (std::size_t i = tree.boxes.size(); i-- > 0;) {
        const std::size_t b = tree.boxes[i];
        heights[b] = std::max(boxes[b].height, below[b]);
        const std::size_t parent = boxes[b].parent;
        if (parent != b) {
            below[parent] += heights[b] + (below[parent] == 0 ? 0 : gap);
        }
    }
    std::vector<double> next(boxes.size());  // where the next child stands
    for (const std::size_t b : tree.boxes) {
        const std::size_t parent = boxes[b].parent;
        boxes[b].y = parent == b ? 0 : next[parent];
        next[b] = boxes[b].y;
        if (parent != b) {
            next[parent] += heights[b] + gap;
        }
    }
    tree.extent.height = heights[tree.boxes.front()];
}

}  // namespace

Extent place(std::vector<Box>& boxes, double gapX, double gapY) {
    std::vector<Tree> trees = treesOf(boxes);
    double area = 0;
    double widest = 0;
    for (Tree& tree : trees) {
        placeAcross(tree, boxes, gapX);
        placeDown(tree, boxes, gapY);
        area += (tree.extent.width + gapX) * (tree.extent.height + gapY);
        widest = std::max(widest, tree.extent.width);
    }
    const double room = std::max(widest, std::sqrt(area * kAspect));
    Extent all;
    double x = 0;  // where the next tree stands
    double y = 0;
    for (const Tree& tree : trees) {
        if (x != 0 && x + tree.extent.width > room) {
            x = 0;
            y = all.height + gapY;
        }
        for (const std::size_t b : tree.boxes) {
            boxes[b].x += x;
            boxes[b].y += y;
        }
        all.width = std::max(all.width, x + tree.extent.width);
        all.height = std::max(all.height, y + tree.extent.height);
        x += tree.extent.width + gapX;
    }
    return all;
}

}  // namespace qvej::cli
