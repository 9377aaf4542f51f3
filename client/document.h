// One JSON document: fed buffer by buffer, then its tables, its map and its records.
//
// All texts handed out are UTF-8, whatever the encoding of the document.
//
// Tested by tests/client/client_test.cpp
#pragma once

#include "qvehost.h"
#include "qvejmapx.h"

#include "columns.h"
#include "engine.h"
#include "error.h"
#include "handle.h"
#include "scan_guard.h"
#include "shape/shape.h"
#include "text.h"
#include "text_consumer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qvej {

class Reshaper;
class TextRelay;
struct PartsOfDocument;
struct RowStream;

// A value whose place is asked for.
struct Watch {
    std::string path;     // separator 0x02
    uint64_t number = 0;  // among the values of the path, from 1
};

struct DocumentOptions {
    QVCEI encoding = U_UTF8_CE;  // of the text that is fed; see Engine::encodingId
    bool lines = false;          // JSON Lines: one value a line, all of them one array
    bool sequence = false;       // likewise, with any white space between the values, or none
    // For a text that was converted: the column of the byte at `offset` (from 0) of what is fed,
    // which is in the last piece, its end included.  It must not throw.  Empty: columns are counted
    // in bytes.
    std::function<int64_t(int64_t offset)> columnOf = {};
    std::string description = {};    // what notes call the document; 20 bytes are used
    std::string debug = {};          // keywords with a comma before and after each: ",MAP,READ,"
    std::string cacheFile = {};      // for records that leave memory; it stays.  Empty: a file
                                     // without a name in privateCacheDirectory()
    uint64_t keepFree = 0;           // bytes of memory below which records go to the cache file
    uint64_t leastMemory = 0;        // and below which the document is given up
    uint64_t maxPaths = 0;           // distinct paths, after which it is too; 0: any number
    bool compress = false;           // deflate the records
    uint64_t ordinals = UINT64_MAX;  // levels of ordinal columns
    std::string alldataName = "ALLDATA";  // at most 40 bytes
    Naming naming = Naming::MAP;          // of the automatic tables and their columns
    std::vector<Watch> watches = {};
    uint64_t maxDepth = 0;  // nesting limit; 0: none
    // Bytes that the process may hold, as far as this document is concerned: what is available to
    // it is counted down from them.  Memory is not divided, so what other documents hold counts
    // too. 0: what the machine has.
    uint64_t memoryBudget = 0;
    // Asked by whoever reads the document or its rows, on the thread that has asked for them, some
    // hundred times a second: true ends that, as QV_STOPPED.  Empty: nothing does.
    std::function<bool()> stopped = {};
    // Takes each note of this document (UTF-8, no line end).  It must not throw.  A document whose
    // parts are read on several threads calls it on them.  Empty: notes are dropped.
    std::function<void(std::string_view)> journal = {};
    Shape shape = {};  // rules for the document's events; the text must be UTF-8
    // The document is several texts in UTF-8, one after the other: see Document::beginText.
    // `lines`, `sequence` and `columnOf` are then those of each text.
    bool several = false;
    // Of several texts: each table begins with a column that has the name of the text that a row is
    // of.  It is called so; empty: no such column.
    std::string sourceColumn = {};
    // Paths are counted alone, no records are kept: see jmapCountOnly.
    bool counted = false;
    // Likewise, and the document is not fed, but gets what its parts have counted.
    bool ofParts = false;
    // Its rows are made while its text is read, which is not counted at all: it has no paths and no
    // automatic tables.  It is not fed; finishParts() makes it ready for a user's map.
    bool uncounted = false;
    // It is only a part of a document: it has no tables.
    bool part = false;
};

// One record of the document.  The texts live until the next call on its cursor.
struct Record {
    int32_t kind;               // JMAP_KIND_...
    std::string_view kindName;  // "NUMBER", ...
    int32_t labels;             // names in the path, the root apart
    std::string_view path;      // separator 0x02
    std::string_view value;     // empty for JMAP_KIND_NOVAL
};

// A place in a document: 1-based, the column in bytes or as DocumentOptions::columnOf tells.  Line
// 0: not known.
struct Spot {
    int64_t line = 0;
    int64_t column = 0;
    std::size_t text = 0;  // of several texts which, from 0
};

// One of several texts of a document.
struct TextSource {
    std::string name;
    uint64_t rootsBefore;  // what an ordinal of the root has counted before it: see jmapBeginText
};

// Values of one kind at a path.
struct KindStatistics {
    int32_t kind;               // JMAP_KIND_...
    std::string_view kindName;  // "NUMBER", ...
    int64_t count;
    Spot first;
};

// One distinct path that had a value.
struct PathStatistics {
    std::string path;     // separator 0x02
    int32_t labels = 0;   // names in the path, the root apart
    int64_t count = 0;    // of values
    int32_t type = 0;     // JMAP_NUMERIC, JMAP_CHARACTER, 3 for an empty container
    int64_t longest = 0;  // bytes of the longest value
    Spot longestAt;       // where the first of that length begins
    std::vector<KindStatistics> kinds;
    int64_t inexact = 0;  // numbers that a double does not keep: see JMAPPathInfo
    Spot firstInexact;
};

// Where more than half of all distinct paths are.
struct MostPaths {
    std::string path;    // the longest that they are below; separator 0x02
    uint64_t count = 0;  // of them
};

class Document : public TextConsumer {
   public:
    // Throws QV_BADPARMS (options), QV_UNMAPPABLE (a name that its encoding cannot hold), QV_NOMEM.
    explicit Document(Engine& engine, const DocumentOptions& options = {});
    ~Document() override;

    // Takes the next piece of the text; it is only read.  Throws a mistake of the text with its
    // place; a limit that is reached (QV_LIMIT_...), with the place; trouble with the cache file
    // (QV_IO_...), with its name; QV_NOMEM.  After a failure only the destructor may be called.
    void feed(std::string_view text) override;

    // Of a document of several texts: another one begins, then it is fed, then it ends.  Of the
    // options `lines`, `sequence` and `columnOf` count.  The texts are elements of one sequence, as
    // the lines of JSON Lines are: the root of each is a root of the document.  `name`: what the
    // column of the names has; what is no UTF-8 in it becomes U+FFFD.  They throw as `feed`, and
    // JMAP_INCOMPLETE when the text is not complete.
    void beginText(const std::string& name, const DocumentOptions& options);
    void endText();

    // Of a part, before its first piece: likewise, when it is one text.
    void setForm(const DocumentOptions& options);

    // Of a document of parts: the texts begin that parts are added of, and a part that was counted
    // (jmapTakePart) is added; its text begins at that place of the last text.  Throws QV_NOMEM,
    // QV_LIMIT_....
    void addText(const std::string& name);
    void addPart(std::string_view bytes, int64_t line, int64_t column);

    // After the last part: builds the tables.  Throws as `finish`.
    void finishParts();

    // How rows can be read that are in no records; null: they are in records.
    void setParts(std::shared_ptr<const PartsOfDocument> parts) { parts_ = std::move(parts); }
    [[nodiscard]] const PartsOfDocument* parts() const { return parts_.get(); }

    // Likewise: they are made once, while the text is read.
    void setStream(std::shared_ptr<const RowStream> stream) { stream_ = std::move(stream); }
    [[nodiscard]] const RowStream* stream() const { return stream_.get(); }
    [[nodiscard]] bool uncounted() const { return uncounted_; }

    // Ends the text and builds the tables.  Throws as `feed`, and JMAP_INCOMPLETE when the document
    // is not complete.  The engine passes over a last block that it cannot store, a table that it
    // cannot make, and hash tables that fail; here these are failures too (QV_IO_..., QV_NOMEM).
    void finish() override;

    [[nodiscard]] Place end() const override;

    // Also after a failure.
    [[nodiscard]] MostPaths mostPaths() const;

    // ---- after `finish` ----

    // Reads a user's map (UTF-8, at most once) and uses it in place of the automatic one.  Throws
    // MapError for a mistake in its text or a name that is no format or informat; QV_UNMAPPABLE
    // when the document's encoding cannot hold the text; QV_NOMEM.
    void useMap(std::string_view text);

    // Tables of the map in use in order, without ALLDATA.
    [[nodiscard]] const std::vector<Table>& tables() const {
        return userTables_ ? *userTables_ : automaticTables_;
    }
    [[nodiscard]] const std::vector<Table>& automaticTables() const { return automaticTables_; }
    [[nodiscard]] const Table& alldata() const { return *alldata_; }

    // The table that a name opens: the first of that name in any case, else ALLDATA by its exact
    // configured name.  Of the document's own names, which may differ in case alone, one that is
    // the same comes first.  Null: none.
    [[nodiscard]] const Table* find(std::string_view name) const;

    // How the tables of the map in use are named: those of a user's map by that.
    [[nodiscard]] Naming naming() const { return naming_; }

    // The automatic map as a JSON document.
    [[nodiscard]] std::string mapText() const;

    // Of every path; they take far more memory than what the document itself keeps of a path.
    [[nodiscard]] std::vector<PathStatistics> pathStatistics() const;

    // Of the paths with numbers that a double does not keep.
    [[nodiscard]] std::vector<PathStatistics> inexactPaths() const;
    [[nodiscard]] JMAPTotals totals() const;

    // The texts of a document of several, else none.
    [[nodiscard]] const std::vector<TextSource>& texts() const { return texts_; }

    // Do the tables begin with a column of the names of texts?
    [[nodiscard]] bool hasSourceColumn() const { return !sourceColumn_.empty(); }

    // What the rules of the options' shape did; null: it has none.
    [[nodiscard]] const Reshaper* reshaper() const { return reshaper_; }

    // Where the value begins that the options watch for at that position; line 0: it never came.
    [[nodiscard]] Spot watched(std::size_t watch) const;

    // The file of records that leave memory, or the directory that has it.
    [[nodiscard]] const std::string& cacheFile() const { return cacheFile_; }

    // ---- for cursors ----

    // Throws QV_LIMIT_MEMORY when less memory is available than `leastMemory` and `more`, or when
    // it was so before.  `what` says in the sentence what has come so far.
    void checkMemory(const std::string& what, uint64_t more = 0) const;
    [[nodiscard]] const TextCodec& codec() const { return codec_; }
    [[nodiscard]] const Engine& engine() const { return engine_; }
    [[nodiscard]] UserJMAP_S* operations() const { return engine_.operations(); }
    [[nodiscard]] QVEJMAPJsonContexth handle() const { return handle_; }
    [[nodiscard]] QVJnlh journal() const { return journal_.get(); }  // null: notes are dropped

   private:
    void describeAll();
    QVStatus setParser(const DocumentOptions& options);
    QVStatus setRules(const DocumentOptions& options);
    JSNTextRules rulesOf(const DocumentOptions& options);
    QVStatus watchFor(const Watch& watch);
    void input(std::string_view text, bool done);
    [[nodiscard]] std::string openPath() const;
    [[noreturn]] void fail(QVStatus status) const;
    [[noreturn]] void fail(QVStatus status, const std::string& sentence) const;
    void failIfLimited(QVStatus status) const;
    [[noreturn]] void failAtLimit(const Error& limit, QVStatus status) const;
    [[nodiscard]] Column sourceColumn(const Columns& columns) const;
    [[nodiscard]] Table describe(JMAPTableh handle, bool alldata,
                                 Naming naming = Naming::MAP) const;
    [[nodiscard]] std::vector<PathStatistics> describePaths(
        bool (*wanted)(const JMAPPathInfo&)) const;
    [[nodiscard]] PathStatistics describe(JMAPPathh path, const JMAPPathInfo& info) const;
    [[nodiscard]] std::vector<Table> describeMap(QVMemPtr map, Naming naming = Naming::MAP);
    void nameOriginally(std::vector<Table>& tables) const;

    Engine& engine_;
    TextCodec codec_;
    std::string alldataName_;  // UTF-8
    Naming naming_;            // of the tables in use
    std::string cacheFile_;    // or its directory: what failures call it
    std::function<int64_t(int64_t)> columnOf_;
    const uint64_t maxDepth_;
    std::function<void(std::string_view)> notes_;
    Handle<QVJnl> journal_;
    QVEJMAPJsonContexth handle_ = nullptr;
    const Reshaper* reshaper_ = nullptr;  // the engine's
    TextRelay* relay_ = nullptr;          // likewise; null: there is one text
    std::vector<TextSource> texts_;
    std::string sourceColumn_;  // its name; empty: there is none
    bool part_;
    bool uncounted_;
    std::shared_ptr<const PartsOfDocument> parts_;
    std::shared_ptr<const RowStream> stream_;
    mutable ScanGuard guard_;
    const JMAPGuard engineGuard_;
    std::vector<JMAPWatchh> watches_;
    std::vector<Table> automaticTables_;
    std::optional<std::vector<Table>> userTables_;
    std::optional<Table> alldata_;
};

// Walks the records of a finished document, which must outlive it.
class RecordCursor {
   public:
    explicit RecordCursor(const Document& document);
    ~RecordCursor();
    RecordCursor(const RecordCursor&) = delete;
    RecordCursor& operator=(const RecordCursor&) = delete;

    // False after the last record.  Throws QV_IO_..., QV_NOMEM; a further call throws the same.
    bool next(Record& record);

   private:
    const Document& document_;
    JMAPRecordCursorh handle_ = nullptr;
    std::string path_;
    std::string value_;
};

}  // namespace qvej
