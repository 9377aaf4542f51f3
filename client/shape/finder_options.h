// When the shape finder takes names for data, and how much it remembers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qvej {

struct FinderOptions {
    uint64_t maxDepth = 0;  // nesting limit of the text; 0: none
    // Names with scalars of one kind are data from this many different names on, if they come in
    // several objects and each object has at most a third of them.  In an object that occurs once
    // it takes kLoneNames times as many.
    std::size_t keyNames = 20;
    static constexpr std::size_t kLoneNames = 3;
    // A name that at least half of the objects have may be a fixed one among names that are data,
    // if there are more objects than these.
    static constexpr std::size_t kFewObjects = 3;
    // Names with containers of one shape are data from this many different names on.
    std::size_t keyContainers = 6;
    // Arrays of scalars that all have one length stay columns up to this length.
    std::size_t fixedLength = 4;
    // Arrays in arrays also do up to this length, if there are kManyTuples of them: they are the
    // rows of a table.
    static constexpr std::size_t kWidestTuple = 100;
    static constexpr std::size_t kManyTuples = 10;
    // An object becomes columns of its parent if it makes at most this many.
    std::size_t inlineColumns = 16;

    // More names of one object than this are merged into one, `*`.
    std::size_t mostNames = 1000;
    // More distinct paths than this are not held: the widest objects are merged then.
    std::size_t mostPaths = 400'000;
};

}  // namespace qvej
