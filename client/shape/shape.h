// A shape: rules that make tables of a document as a person would draw them.
//
//     qvej::Shape shape;
//     shape.addRule("rows /root/projects as name");
//     qvej::DocumentOptions options;
//     options.shape = shape;
//
// docs/FORMATS.md says what each rule means.  The rules work on the events of the parser
// (reshaper.h); all that comes after them sees a document that was written so.
//
// Tested by tests/client/shape_test.cpp
#pragma once

#include "../error.h"
#include "path_pattern.h"

#include <string>
#include <string_view>
#include <vector>

namespace qvej {

struct ShapeRule {
    enum Kind { ROWS, INLINE, TEXT, DROP, KEEP, ONLY, EMPTY_DROP };

    Kind kind = EMPTY_DROP;
    PathPattern path = {};                 // of all kinds but EMPTY_DROP
    std::string key = "key";               // of ROWS: the member that takes the name
    std::vector<std::string> except = {};  // of ROWS: names that stay members

    // As `Shape::addRule` reads it.
    [[nodiscard]] std::string text() const;

    bool operator==(const ShapeRule&) const = default;
};

class Shape {
   public:
    // The members that rules make beside the key.
    static constexpr std::string_view kValue = "value";
    static constexpr std::string_view kRows = "rows";

    // Adds a rule of one line.  Throws Error (QV_BADPARMS) with the column.
    void addRule(std::string_view line);

    // Adds the rules of a text, one a line; "#" begins a comment at the beginning of a line.
    // `name`: what messages call the text.  Throws Error (QV_BADPARMS) with file, line, column.
    void addText(std::string_view text, const std::string& name);

    void add(ShapeRule rule) { rules_.push_back(std::move(rule)); }
    void add(const Shape& other) {
        rules_.insert(rules_.end(), other.rules_.begin(), other.rules_.end());
    }

    [[nodiscard]] const std::vector<ShapeRule>& rules() const { return rules_; }
    [[nodiscard]] bool empty() const { return rules_.empty(); }

   private:
    std::vector<ShapeRule> rules_;
};

}  // namespace qvej
