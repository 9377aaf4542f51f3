// See found_shape.h.
#include "client/shape/found_shape.h"

namespace qvej {

Shape FoundShape::shape() const {
    Shape shape;
    for (const FoundRule& found : rules) {
        shape.add(found.rule);
    }
    return shape;
}

std::string FoundShape::text() const {
    std::string text;
    for (const FoundRule& found : rules) {
        text += "# " + found.reason + "\n" + found.rule.text() + "\n";
    }
    return text;
}

}  // namespace qvej
