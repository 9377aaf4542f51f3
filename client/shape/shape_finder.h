// Finds the shape that a person would give a document: a walk over the events of its text.
//
//     qvej::ShapeFinder finder(engine.host(), reader.form());
//     reader.pass([&](std::string_view piece) { return finder.feed(piece); });
//     options.shape = finder.finish().shape();
//
// The engine itself takes no part.  Memory is bounded by the options and the depth of the text.
//
// Tested by tests/client/shape_finder_test.cpp and tests/tool/golden/shape.t
#pragma once

#include "qvehost.h"

#include "../handle.h"
#include "../text_form.h"
#include "finder_options.h"
#include "found_shape.h"
#include "name_tree.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace qvej {

class ShapeFinder {
   public:
    // Throws Error (QV_NOMEM).
    ShapeFinder(QVHndlp host, TextForm form, const FinderOptions& options = {});
    ShapeFinder(const ShapeFinder&) = delete;
    ShapeFinder& operator=(const ShapeFinder&) = delete;

    // Takes the next piece of the text, in UTF-8.  False: it is of no use to go on, since the text
    // is complete or not well formed; who reads it for its values will say what is wrong.
    bool feed(std::string_view text);

    // The text ends, and another one of the same document begins.  Throws Error (QV_NOMEM).
    void nextText(TextForm form);

    // The shape of what was fed, a part of a document too.  Nothing else may be called afterwards.
    FoundShape finish();

    // Distinct paths that are held.
    [[nodiscard]] std::size_t paths() const { return tree_.size(); }

   private:
    // A container that is open.
    struct Frame {
        NameNode* node;         // of the container
        NameNode* value;        // of the value that comes: a member's, or again the array's
        NameNode** expected;    // of an object: where the next name is expected
        uint64_t length = 0;    // values so far
        NameNode::Where where;  // what its values are
        bool holdsArray = false;
        bool sameNode = false;  // as the container around it; of use in `shrink` only
    };
    // The table of callbacks, which the parser hands back.
    struct Events : JSNParseCB {
        ShapeFinder* finder;
    };

    void setCallbacks();
    void newParser(TextForm form);
    void endText();
    void name(std::string_view text);
    void otherName(std::string_view text);
    NameNode* memberOf(NameNode* node, std::string_view text);
    void shrink();
    NameNode& value(ValueKind kind);
    void open(ValueKind kind);
    void close();

    FinderOptions options_;
    NameTree tree_;
    NameNode passed_;  // for what the tree has no room for
    std::vector<Frame> frames_;
    bool whole_ = true;  // every text so far is well formed
    Events events_{};
    Handle<QVJSON> json_;
    Handle<JSNParser> parser_;
};

}  // namespace qvej
