// Where the tables of a diagram stand: each tree from left to right, a table's children below each
// other at its right side, and the trees in shelves.
//
// Tested by tests/tool/pictures.py
#pragma once

#include <cstddef>
#include <vector>

namespace qvej::cli {

struct Box {
    double width, height;
    std::size_t parent;  // the position of a box before; its own: none
    double x = 0, y = 0;
};

struct Extent {
    double width = 0, height = 0;
};

// Sets x and y of all; no two boxes overlap.
//   gapX, gapY  between boxes
Extent place(std::vector<Box>& boxes, double gapX, double gapY);

}  // namespace qvej::cli
