// A document that has been read and stays open: what the doors stand on that are no command line.
//
//     qvej::OpenDocument orders({.inputs = qvej::inputList({"orders.json.gz"}), .shape = "auto"});
//     for (const qvej::Table& table : orders.document().tables()) { ... TablePass ... }
//
// It is read in the way that suits it: files and texts in memory are counted and read again for
// their rows, what comes once is recorded.  The rows can be walked as often as one likes, one walk
// at a time.
//
// Tested by tests/client/open_document_test.cpp
#pragma once

#include "../document.h"
#include "../engine.h"
#include "../input/byte_source.h"
#include "../input/document_reader.h"
#include "../input/input_list.h"
#include "../input/inputs_reader.h"
#include "../path_names.h"
#include "../shape/shape.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace qvej {

struct OpenOptions {
    // What is read: files, or a text in memory, which must outlive the document, or pieces of a
    // text that come once.
    InputList inputs = {};
    std::optional<std::string_view> memory = {};
    Pull pull = {};
    std::string name = "<memory>";  // what messages call a text that is no file

    TextOptions text = {};
    std::string shape = {};  // empty: none; "auto": that which is found; else rules, one a line
    // What messages call these rules.
    std::string shapeName = "shape";
    std::string map = {};  // text of a user's map; empty: the automatic one
    bool exact = false;    // columns are texts whose numbers a double does not keep; with no map
    Naming naming = Naming::MAP;
    std::string sourceColumn = "source";  // of several files: see DocumentOptions
    uint64_t depth = 1000;                // 0: any
    uint64_t maxPaths = 10'000'000;       // 0: any number
    uint64_t memoryBudget = 0;            // bytes that the process may hold; 0: any number
    unsigned threads = 0;                 // 0: as many as there are cores
    bool records = false;                 // records are wanted: of ALLDATA, or for retained values
    std::function<bool()> stopped = {};   // see DocumentOptions
};

class OpenDocument {
   public:
    // Reads it.  Throws Error: a mistake in the text has its place; QV_UNSUPPORTED for a shape that
    // is to be found in a text that comes once; MapError.
    explicit OpenDocument(OpenOptions options);
    OpenDocument(const OpenDocument&) = delete;
    OpenDocument& operator=(const OpenDocument&) = delete;

    [[nodiscard]] const Document& document() const { return *document_; }

    // What messages call it.
    [[nodiscard]] std::string name() const { return reader_->name(); }

    // How it was read, as `--plan` says it.
    [[nodiscard]] const std::string& plan() const { return plan_; }

    // Calls `read` for each of its texts, in order and from the beginning, with options for what
    // takes the text.  Throws what that throws, and Error: QV_UNSUPPORTED when a text comes once,
    // QV_IO_CHANGED.
    void readAgain(const std::function<void(DocumentReader&, const DocumentOptions&)>& read) const;

    // Throws Error (QV_IO_CHANGED) when its rows are read from a file that has changed.
    void checkUnchanged() const;

   private:
    [[nodiscard]] ByteSource open(const std::string& file) const;
    [[nodiscard]] uint64_t bytes() const;
    [[nodiscard]] std::string once() const;
    [[nodiscard]] Shape shape();
    [[nodiscard]] std::string whyRecords() const;
    void openInputs();
    void read(const DocumentOptions& options);
    void readWhole(const DocumentOptions& options);

    const OpenOptions options_;
    InputList inputs_;
    Engine engine_;
    std::optional<InputsReader> reader_;  // the document holds on to it
    std::optional<Document> document_;
    std::string plan_;
};

}  // namespace qvej
