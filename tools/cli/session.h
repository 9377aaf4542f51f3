// From FILE to a finished document: reads the text as the options say.  A
// failure names the options that would help.
#pragma once

#include "client/document.h"
#include "client/engine.h"
#include "client/error.h"
#include "client/input/inputs_reader.h"
#include "client/input/reading_stop.h"
#include "client/input/rereadable_file.h"
#include "tools/cli/failure.h"
#include "tools/cli/maps/map_file.h"
#include "tools/cli/options/reading_options.h"
#include "tools/cli/reports/skipped.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej::cli {

inline const std::string kSourceColumn = "source";

// What else is asked of a text while it is read.
struct ReadingWishes {
    std::vector<Watch> watches = {};                      // see DocumentOptions
    std::function<void(std::string_view)> observer = {};  // sees each piece of the text
    std::string sourceColumn = kSourceColumn;             // see DocumentOptions
    bool keepBadLines = false;                            // that are skipped: see Skipped
    bool again = false;                                   // what is skipped has been told
    // No more is wanted than paths, and rows of tables, without what only records have (ALLDATA,
    // retained values): the document may then be read on so many threads, and again for its rows.
    unsigned partThreads = 0;
    // Rows are wanted once: they may be made while the text is read, unless this says why not.
    std::string notStreamed = "more than rows is wanted";
    std::string table = {};  // the only one that rows are wanted of; empty: all are
};

// Turns a mistake of a document that was read into the tool's, which names the options that would
// help.
//   document  as far as it has been read; null: it is not kept
[[noreturn]] void failReading(const ReadingOptions& options, const DocumentReader& reader,
                              const Error& error, const Document* document = nullptr);

// Has a text read into what takes it, without its bad lines when the options say so.
void readText(const ReadingOptions& options, const Engine& engine, DocumentReader& reader,
              TextConsumer& text, const std::function<void(const BadLine&)>& onBad,
              const std::function<void(std::string_view)>& observer = {});

// What is wrong with a file that cannot be read or is not well formed; nothing is.
//   open   gives its bytes
//   onBad  sees the lines that the options skip, and the name of the file; may be empty
//   name   gets what messages call it, if that is not null
using OnBadLine = std::function<void(const std::string& name, const BadLine& line)>;
std::optional<Error> mistakeOf(const ReadingOptions& options, const Engine& engine,
                               const std::function<ByteSource()>& open, const OnBadLine& onBad = {},
                               std::string* name = nullptr);

class Session {
   public:
    // Reads the whole document, and first the user's map when one is named.  Throws a Failure, or
    // an Error with the name of its file; AllBad when no file is left.
    Session(const ReadingOptions& options, const InputList& inputs, const std::string& map = {},
            const ReadingWishes& wishes = {});
    Session(const ReadingOptions& options, const std::string& file, const std::string& map = {},
            const ReadingWishes& wishes = {})
        : Session(options, InputList{{file}, false}, map, wishes) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] const Document& document() const { return *document_; }
    [[nodiscard]] const Engine& engine() const { return engine_; }

    // The map in use; null: the automatic one.
    [[nodiscard]] const MapFile* map() const { return map_ ? &*map_ : nullptr; }

    // What messages call the document.
    [[nodiscard]] const std::string& name() const { return name_; }

    // What messages call the map in use: of the automatic one, the document.
    [[nodiscard]] const std::string& mapName() const { return map_ ? map_->name() : name(); }

    // What the options had left out.
    [[nodiscard]] const Skipped& skipped() const { return skipped_; }

    // What comes after the reading adds to it.
    [[nodiscard]] Progress& progress() const { return *progress_; }

    // Turns a failure of the finished document (its records cannot be read back) into the tool's.
    [[noreturn]] void failReading(const Error& error) const;

   private:
    InputList goodOf(InputList inputs, bool tells);
    void openInputs();
    bool stream(const ReadingWishes& wishes);
    void readStream(Document& walk, const std::function<void()>& fed);
    [[nodiscard]] std::string whyNotAgain(const ReadingWishes& wishes) const;
    void read(const ReadingWishes& wishes);
    void readWhole(const DocumentOptions& options, const ReadingWishes& wishes);
    void useMap();

    ReadingOptions options_;
    Engine engine_;
    std::unique_ptr<Progress> progress_;
    Skipped skipped_;
    // Of a document whose files are read more than once, to find its shape or the bad ones.
    std::vector<RereadableFile> rereadable_;
    InputList inputs_;  // without the bad ones
    Shape shape_;
    std::shared_ptr<const ReadingStop> stop_;  // of a document whose rows may be made as it is read
    std::string whyCounted_;                   // see plan.h
    std::optional<InputsReader> reader_;
    std::string name_;
    std::optional<MapFile> map_;
    std::optional<Document> document_;
};

}  // namespace qvej::cli
