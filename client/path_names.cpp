// See path_names.h.
//
// Only hashes of names are kept and compared, so that a table of a million columns needs little
// memory.  Two names of one hash are taken for equal, and then are longer than they need be.
#include "client/path_names.h"

#include "client/escape.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace qvej {
namespace {

constexpr char kSeparator = '\x02';
constexpr char kJoiner = '/';
constexpr char kEscape = '\\';

// A document whose names repeat at every depth would else need names as long as its paths.
constexpr uint32_t kMostPieces = 16;

uint32_t piecesOf(std::string_view path) {
    return static_cast<uint32_t>(std::count(path.begin(), path.end(), kSeparator));
}

void appendPiece(std::string& name, std::string_view piece) {
    for (const char c : piece) {
        if (c == kJoiner || c == kEscape) {
            name += kEscape;
        }
        name += c;
    }
}

// Where the last pieces of a path begin, at the separator of the first.
std::size_t lastPiecesAt(std::string_view path, uint32_t pieces) {
    std::size_t at = path.size();
    for (uint32_t i = 0; i < pieces && at != 0; ++i) {
        const std::size_t before = path.rfind(kSeparator, at - 1);
        at = before == std::string_view::npos ? 0 : before;
    }
    return at;
}

std::string textOf(const NamedPath& path, PathName name) {
    std::string text(path.prefix);
    std::string_view rest = path.path.substr(lastPiecesAt(path.path, name.pieces));
    if (piecesOf(rest) <= 1) {
        text += lastPiece(rest);
    } else {
        while (!rest.empty()) {
            rest.remove_prefix(1);
            const std::string_view piece = rest.substr(0, rest.find(kSeparator));
            appendPiece(text, piece);
            rest.remove_prefix(piece.size());
            text += rest.empty() ? "" : std::string_view(&kJoiner, 1);
        }
    }
    if (name.number != 0) {
        text += "~" + std::to_string(name.number);
    }
    return text;
}

uint64_t hashOf(const NamedPath& path, PathName name) {
    return std::hash<std::string>()(textOf(path, name));
}

// Those whose hash another has too: groups of one hash, each in order.
std::vector<uint32_t> equalOnes(const std::vector<uint64_t>& hashes) {
    std::vector<uint32_t> order(hashes.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = static_cast<uint32_t>(i);
    }
    std::sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) {
        return std::pair(hashes[a], a) < std::pair(hashes[b], b);
    });
    std::vector<uint32_t> equal;
    for (std::size_t i = 0; i < order.size(); ++i) {
        const uint64_t hash = hashes[order[i]];
        if ((i != 0 && hashes[order[i - 1]] == hash) ||
            (i + 1 != order.size() && hashes[order[i + 1]] == hash)) {
            equal.push_back(order[i]);
        }
    }
    return equal;
}

// How many pieces tell each apart from all others, as far as pieces can.
std::vector<uint32_t> piecesNeeded(std::size_t count, const PathOf& pathOf) {
    std::vector<uint64_t> hashes(count);
    for (std::size_t i = 0; i < count; ++i) {
        hashes[i] = hashOf(pathOf(i), {});
    }
    std::vector<uint32_t> needed(count, 1);
    bool longer = true;
    for (uint32_t pieces = 2; longer && pieces <= kMostPieces; ++pieces) {
        longer = false;
        for (const uint32_t i : equalOnes(hashes)) {
            const NamedPath path = pathOf(i);
            if (needed[i] < piecesOf(path.path)) {
                ++needed[i];
                hashes[i] = hashOf(path, {needed[i]});
                longer = true;
            }
        }
    }
    return needed;
}

PathName longerThan(PathName name, std::string_view path) {
    if (name.pieces < std::min(piecesOf(path), kMostPieces)) {
        return {name.pieces + 1};
    }
    return {name.pieces, std::max(name.number, 1U) + 1};
}

// Names that are given so far.
class GivenNames {
   public:
    explicit GivenNames(std::size_t count) { given_.reserve(count); }

    // The first name of that many pieces or more that is not given.  Where many ask for the same
    // one, each goes on from what the one before it got.
    PathName give(const NamedPath& path, uint32_t pieces) {
        PathName name = {pieces};
        const auto [wanted, isFree] = given_.try_emplace(hashOf(path, name), name);
        if (isFree) {
            return name;
        }
        PathName& last = wanted->second;  // stays where it is when others are added
        name = last.pieces > pieces || last.number != 0 ? last : longerThan(name, path.path);
        while (!given_.try_emplace(hashOf(path, name), name).second) {
            name = longerThan(name, path.path);
        }
        return last = name;
    }

   private:
    std::unordered_map<uint64_t, PathName> given_;  // by hash: what the last to ask for it got
};

}  // namespace

std::string_view lastPiece(std::string_view path) {
    const std::size_t at = path.rfind(kSeparator);
    return at == std::string_view::npos ? path : path.substr(at + 1);
}

std::string_view withoutLastPiece(std::string_view path) {
    const std::size_t at = path.rfind(kSeparator);
    return path.substr(0, at == std::string_view::npos ? 0 : at);
}

std::string nameOf(const NamedPath& path, PathName name) {
    std::string valid;
    appendEscaped(valid, textOf(path, name), 0);  // the engine may have cut the name of an element
    return valid;
}

std::vector<PathName> distinctNames(std::size_t count, const PathOf& pathOf, Longer longer) {
    std::vector<uint32_t> pieces;
    if (longer == Longer::ALL) {
        pieces = piecesNeeded(count, pathOf);
    }
    GivenNames given(count);
    std::vector<PathName> names;
    for (std::size_t i = 0; i < count; ++i) {
        const PathName name = given.give(pathOf(i), pieces.empty() ? 1 : pieces[i]);
        if (names.empty() && (name.pieces != 1 || name.number != 0)) {
            names.resize(count);
        }
        if (!names.empty()) {
            names[i] = name;
        }
    }
    return names;
}

}  // namespace qvej
