// See document.h.
#include "client/document.h"

#include "qvehost.h"
#include "qvportable.h"

#include "client/cache_file.h"
#include "client/error.h"
#include "client/escape.h"
#include "client/shape/reshaper.h"
#include "client/text_relay.h"
#include "client/text_rules.h"
#include "client/user_map.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_set>
#include <utility>

namespace qvej {
namespace {

constexpr std::size_t kTablesBetweenChecks = 256;
constexpr std::size_t kPathsBetweenChecks = 4096;

// Null when nobody wants the notes.  `notes` must outlive it.
QVJnlh newJournal(std::function<void(std::string_view)>& notes) {
    QVJnlh journal = nullptr;
    if (notes) {
        check(qvPortableJournal(
            [](void* arg, const char* note, size_t noteLen) {
                (*static_cast<std::function<void(std::string_view)>*>(arg))({note, noteLen});
            },
            &notes, &journal));
    }
    return journal;
}

// A place as the engine has it, of one text or of several.
Spot spotOf(int64_t line, int64_t column) {
    return {TextRelay::lineOf(line), column, TextRelay::textOf(line)};
}

}  // namespace

Document::Document(Engine& engine, const DocumentOptions& options)
    : engine_(engine),
      codec_(engine.host(), options.encoding),
      alldataName_(options.alldataName),
      naming_(options.naming),
      cacheFile_(options.cacheFile.empty() ? privateCacheDirectory() : options.cacheFile),
      columnOf_(options.columnOf),
      maxDepth_(options.maxDepth),
      notes_(options.journal),
      journal_(newJournal(notes_)),
      sourceColumn_(options.several ? options.sourceColumn : std::string()),
      part_(options.part),
      uncounted_(options.uncounted),
      guard_(options.maxPaths, options.leastMemory,
             {[&engine, budget = options.memoryBudget] { return engine.availableMemory(budget); },
              [file = cacheFile_] { return freeDiskOf(file); }, options.stopped}),
      engineGuard_{&guard_,
                   [](void* arg, const JMAPGrowth* growth) {
                       return static_cast<ScanGuard*>(arg)->check(*growth);
                   },
                   [](void* arg, uint64_t* bytes) {
                       return static_cast<ScanGuard*>(arg)->available(*bytes);
                   }} {
    std::u32string cacheName = toHostCharacters(cacheFile_);
    std::string alldataName = codec_.encoded(options.alldataName);
    std::string debug = options.debug;

    QVEJMAPJsonInitParms parms = {};
    parms.inCEI = options.encoding;
    parms.debugString = debug.data();
    parms.debugStringLen = static_cast<QVStrSize>(debug.size());
    const std::size_t descLen = std::min(options.description.size(), sizeof parms.desc);
    std::memcpy(parms.desc, options.description.data(), descLen);
    parms.descLen = static_cast<QVStrSize>(descLen);
    parms.tempName = cacheName.data();
    parms.tempNameLen = static_cast<QVStrSize>(cacheName.size());
    parms.rlmemSize = engine.availableMemory(options.memoryBudget);
    parms.memLeave = options.keepFree;
    parms.compress = options.compress ? 1 : 0;
    parms.ordinalCount = options.ordinals;
    parms.alldataName = alldataName.data();
    parms.alldataNameLen = static_cast<QVStrSize>(alldataName.size());

    QVStatus status = operations()->JsonInit(&operations()->exth, &parms, &handle_, journal());
    const bool fed = !options.ofParts && !options.uncounted;
    if (status == QV_OK && fed && (options.several || !options.shape.empty())) {
        status = setParser(options);
    }
    if (status == QV_OK && fed && !options.several &&
        (options.lines || options.sequence || columnOf_ || maxDepth_ != 0)) {
        status = setRules(options);
    }
    if (status == QV_OK && (!fed || options.counted)) {
        jmapCountOnly(handle_, 0);
    }
    if (status == QV_OK) {
        jmapGuard(handle_, &engineGuard_);
    }
    for (std::size_t i = 0; status == QV_OK && i < options.watches.size(); ++i) {
        status = watchFor(options.watches[i]);
    }
    if (status != QV_OK) {
        if (handle_ != nullptr) {
            (void)operations()->Term(handle_, nullptr);  // the first failure is the one to report
        }
        fail(status, qvStatusText(status));
    }
}

// Puts the rules of a shape between the parser and the engine, and one parser for each text.
QVStatus Document::setParser(const DocumentOptions& options) {
    if (options.several && !codec_.isUtf8()) {
        return QV_UNSUPPORTED;
    }
    JSNParserParms parms = {};
    parms.textCei = parms.callbackCei = codec_.isUtf8() ? U_UTF8_CE : 0;
    parms.flags = JSN_PARSER_FLAGS;
    parms.jnl = journal();
    parms.callbacks = jmapCallbacks(handle_);
    try {
        std::unique_ptr<TextRelay> relay;
        if (options.several) {
            relay = std::make_unique<TextRelay>(engine_.host(), parms);
            relay_ = relay.get();
        }
        if (options.shape.empty()) {
            jmapSetParser(handle_, relay.release()->parser());
            return QV_OK;
        }
        auto* reshaper = new Reshaper(engine_.host(), parms, options.shape, std::move(relay));
        jmapSetParser(handle_, reshaper->parser());
        reshaper_ = reshaper;
        return QV_OK;
    } catch (const Error& error) {
        return error.status();
    }
}

// Tells the parser what it must know of the text.
QVStatus Document::setRules(const DocumentOptions& options) {
    const JSNParserh parser = jmapParser(handle_);
    if (parser == nullptr) {
        return QV_NOMEM;
    }
    if (parser->setRules == nullptr) {
        return QV_UNSUPPORTED;
    }
    const JSNTextRules rules = rulesOf(options);
    parser->setRules(parser, &rules);
    return QV_OK;
}

// The depth is that of the document, whatever the options of its text say.
JSNTextRules Document::rulesOf(const DocumentOptions& options) {
    JSNTextRules rules = textRules(options, columnOf_);
    rules.maxDepth = maxDepth_;
    return rules;
}

void Document::beginText(const std::string& name, const DocumentOptions& options) {
    columnOf_ = options.columnOf;
    relay_->begin(rulesOf(options));
    std::string utf8;
    appendEscaped(utf8, name, 0);
    texts_.push_back({utf8, jmapBeginText(handle_)});
}

void Document::endText() {
    relay_->end();
    input("", false);
}

void Document::setForm(const DocumentOptions& options) {
    if (const QVStatus status = setRules(options); status != QV_OK) {
        fail(status, qvStatusText(status));
    }
}

void Document::addText(const std::string& name) {
    std::string utf8;
    appendEscaped(utf8, name, 0);
    texts_.push_back({utf8, 0});
}

void Document::addPart(std::string_view bytes, int64_t line, int64_t column) {
    const std::size_t text = texts_.empty() ? 0 : texts_.size() - 1;
    const QVStatus status = jmapAddPart(handle_, bytes.data(), static_cast<QVStrSize>(bytes.size()),
                                        TextRelay::lineIn(text, line), column);
    failIfLimited(status);
    if (status != QV_OK) {
        fail(status, qvStatusText(status));
    }
}

void Document::finishParts() {
    const QVStatus status = jmapEndParts(handle_);
    failIfLimited(status);
    check(status);
    describeAll();
}

QVStatus Document::watchFor(const Watch& watch) {
    const std::string path = codec_.encoded(watch.path);
    return jmapWatch(handle_, path.data(), static_cast<QVStrSize>(path.size()),
                     static_cast<int64_t>(watch.number), &watches_.emplace_back());
}

Spot Document::watched(std::size_t watch) const {
    int64_t line = 0;
    int64_t column = 0;
    jmapWatched(watches_.at(watch), &line, &column);
    return spotOf(line, column);
}

Document::~Document() {
    jmapEndInput(handle_);
    (void)operations()->Term(handle_, journal());  // a destructor cannot report it
}

void Document::input(std::string_view text, bool done) {
    QVBoolean caching = 0;
    // The engine only reads the buffer; its table just has no const.
    const QVStatus status = operations()->JsonInput(handle_, const_cast<char*>(text.data()),
                                                    static_cast<QVStrSize>(text.size()),
                                                    done ? 1 : 0, &caching, journal());
    failIfLimited(status);
    if (status != QV_OK) {
        fail(status);
    }
}

void Document::failIfLimited(QVStatus status) const {
    if (guard_.failure()) {
        failAtLimit(*guard_.failure(), status);
    }
}

// A limit of the records has the place that the scan has come to; one of the map has none.
void Document::failAtLimit(const Error& limit, QVStatus status) const {
    std::string sentence = limit.what();
    if (limit.status() == QV_LIMIT_PATHS) {
        const MostPaths most = mostPaths();
        sentence +=
            "; most are below " + withSlashes(most.path) + " (" + withCommas(most.count) + ")";
    }
    if (limit.status() == QV_LIMIT_DISK) {
        sentence += " in " + cacheFile_;
    }
    throw Error(limit.status(), sentence, status == JMAP_PARSE ? end() : Place{});
}

// Throws what `JsonInput` failed with.
void Document::fail(QVStatus status) const {
    const QVStatus reason = handle_->e.rc;  // of the parser, or a callback
    if (status == JMAP_INCOMPLETE && reason != QV_OK) {
        const JSNParserh parser = jmapParser(handle_);
        const Place place = {{},
                             TextRelay::lineOf(parser->line(parser)),
                             parser->eventColumn(parser),
                             parser->eventOffset(parser)};
        throw Error(status, "a document must be an object or an array", place);
    }
    const QVStatus cause = status == JMAP_PARSE ? reason : status;
    if ((status != JMAP_PARSE && status != JMAP_INCOMPLETE) || isOfFiles(cause)) {
        fail(cause, qvStatusText(cause));
    }
    throw Error(cause, qvStatusText(cause), end());
}

// Throws a failure that has no place in the text.
void Document::fail(QVStatus status, const std::string& sentence) const {
    throw Error(status, sentence, isOfFiles(status) ? cacheFile_ : std::string());
}

Place Document::end() const {
    const JSNParserh parser = jmapParser(handle_);
    const int64_t offset = parser->offset(parser);
    const int64_t column = columnOf_ ? columnOf_(offset) : parser->column(parser);
    return {{}, TextRelay::lineOf(parser->line(parser)), column, offset, openPath()};
}

// Of the container or member that the scan stands in.
std::string Document::openPath() const {
    QVStrSize pathLen = 0;
    const char* const path = jmapOpenPath(handle_, &pathLen);
    return path == nullptr ? std::string() : withSlashes(codec_.decoded(view(path, pathLen)));
}

void Document::feed(std::string_view text) {
    input(text, false);
}

void Document::finish() {
    input("", true);
    if (!part_) {
        describeAll();
    }
}

// What the engine passed over is a failure here.
void Document::describeAll() {
    const JMAPTotals counted = totals();
    if (counted.unstoredBytes != 0) {
        fail(counted.unstoredStatus, std::string(qvStatusText(counted.unstoredStatus)) +
                                         ": the last records could not be stored");
    }
    if (counted.droppedTables != 0) {
        throw Error(
            QV_NOMEM,
            "memory ran out while the map was made: " + std::to_string(counted.droppedTables) +
                (counted.droppedTables == 1 ? " table is missing" : " tables are missing"));
    }
    if (counted.lostLookups != 0) {
        throw Error(QV_NOMEM, "memory ran out while paths were looked up");
    }
    QVMemPtr map = nullptr;
    check(operations()->GetAutoMap(handle_, &map));
    automaticTables_ = describeMap(map, naming_);
    if (naming_ == Naming::ORIGINAL) {
        nameOriginally(automaticTables_);
    }
    JMAPTableh table = nullptr;
    check(jmapAlldataTable(handle_, &table));
    alldata_ = describe(table, true);
}

std::vector<Table> Document::describeMap(QVMemPtr map, Naming naming) {
    std::vector<Table> tables;
    JMAPTableh table = nullptr;
    std::size_t count = 0;
    while (jmapNextTable(map, &table) == QV_OK) {
        ++count;
    }
    tables.reserve(count);  // there may be as many as memory has room for once
    table = nullptr;
    while (jmapNextTable(map, &table) == QV_OK) {
        if (tables.size() % kTablesBetweenChecks == 0) {
            guard_.checkMemory("the tables of the map");
        }
        tables.push_back(describe(table, false, naming));
    }
    return tables;
}

void Document::nameOriginally(std::vector<Table>& tables) const {
    std::string path;
    const auto pathOf = [&](std::size_t i) -> NamedPath {
        path = tables[i].objectPath();
        return {{}, path};
    };
    const std::vector<PathName> names = distinctNames(tables.size(), pathOf, Longer::ALL);
    for (std::size_t i = 0; i < tables.size(); ++i) {
        if (i % kTablesBetweenChecks == 0) {
            guard_.checkMemory("the names of tables");
        }
        tables[i].name = nameOf(pathOf(i), names.empty() ? PathName() : names[i]);
    }
}

Table Document::describe(JMAPTableh handle, bool alldata, Naming naming) const {
    JMAPTableInfo info = {};
    jmapTableInfo(handle, &info);
    Columns columns(handle, codec_, naming);
    if (uncounted_) {
        columns.setUncounted();
    }
    if (hasSourceColumn()) {
        columns.addFirst(sourceColumn(columns));
    }
    return {std::string(withoutUnfinished(codec_.decoded(view(info.name, info.nameLen)))),
            std::move(columns), alldata, handle};
}

// The column of the names of texts, with a name of its own in a table of these columns.
Column Document::sourceColumn(const Columns& columns) const {
    std::unordered_set<std::string> taken;
    for (const Column& column : columns) {
        taken.insert(lowerCased(column.name));
    }
    std::string name = sourceColumn_;
    for (int number = 1; taken.contains(lowerCased(name)); ++number) {
        name = sourceColumn_ + "_" + std::to_string(number);
    }
    std::size_t longest = 1;
    for (const TextSource& text : texts_) {
        longest = std::max(longest, text.name.size());
    }
    return {name,
            {},
            ColumnType::CHARACTER,
            LogicalType::TEXT,
            std::min<uint64_t>(longest, kLongestCell)};
}

void Document::useMap(std::string_view text) {
    parseUserMap(*this, text);
    userTables_ = describeMap(completeUserMap(*this));
    naming_ = Naming::MAP;
    checkConversions(engine_, *userTables_, text);
}

void Document::checkMemory(const std::string& what, uint64_t more) const {
    guard_.checkMemory(what, more);
    if (guard_.failure()) {
        throw Error(*guard_.failure());
    }
}

const Table* Document::find(std::string_view name) const {
    auto found = tables().end();
    if (naming_ == Naming::ORIGINAL) {
        found = std::find_if(tables().begin(), tables().end(),
                             [&](const Table& t) { return t.name == name; });
    }
    if (found == tables().end()) {
        found = std::find_if(tables().begin(), tables().end(),
                             [&](const Table& t) { return equalIgnoringCase(t.name, name); });
    }
    if (found != tables().end()) {
        return &*found;
    }
    return name == alldataName_ ? &*alldata_ : nullptr;
}

std::string Document::mapText() const {
    char* text = nullptr;
    QVStrSize textLen = 0;
    const QVStatus status = operations()->GetAutoMapBuf(handle_, &text, &textLen, journal());
    std::string document;
    try {
        if (status == QV_OK || status == QV_LIMIT_MEMORY) {
            checkMemory("the text of the map", static_cast<uint64_t>(textLen));
            document = codec_.decoded(view(text, textLen));
        }
    } catch (...) {
        (void)operations()->GetAutoMapBufFree(handle_);  // the first failure is the one to report
        throw;
    }
    const QVStatus freed = operations()->GetAutoMapBufFree(handle_);
    check(status);
    check(freed);
    return document;
}

PathStatistics Document::describe(JMAPPathh path, const JMAPPathInfo& info) const {
    PathStatistics statistics;
    statistics.path = codec_.decoded(pathOf(jmapPathText, path, info.pathLen));
    statistics.labels = info.labels;
    statistics.count = info.count;
    statistics.type = info.type;
    statistics.longest = info.maxValueLen;
    statistics.longestAt = spotOf(info.longestLine, info.longestColumn);
    statistics.inexact = info.inexact.count;
    statistics.firstInexact = spotOf(info.inexact.line, info.inexact.column);
    for (int32_t kind = 0; kind < static_cast<int32_t>(std::size(info.kinds)); ++kind) {
        const JMAPPathKind& k = info.kinds[kind];
        if (k.count != 0) {
            statistics.kinds.push_back(
                {kind, jmapKindName(kind), k.count, spotOf(k.line, k.column)});
        }
    }
    return statistics;
}

std::vector<PathStatistics> Document::pathStatistics() const {
    return describePaths([](const JMAPPathInfo& /*info*/) { return true; });
}

std::vector<PathStatistics> Document::inexactPaths() const {
    return describePaths([](const JMAPPathInfo& info) { return info.inexact.count != 0; });
}

std::vector<PathStatistics> Document::describePaths(bool (*wanted)(const JMAPPathInfo&)) const {
    std::vector<PathStatistics> statistics;
    JMAPPathh path = nullptr;
    while (jmapNextPath(handle_, &path) == QV_OK) {
        JMAPPathInfo info = {};
        jmapPathInfo(path, &info);
        if (wanted(info)) {
            if (statistics.size() % kPathsBetweenChecks == 0) {
                checkMemory("the statistics of paths");
            }
            statistics.push_back(describe(path, info));
        }
    }
    return statistics;
}

MostPaths Document::mostPaths() const {
    MostPaths most;
    std::string path(static_cast<std::size_t>(jmapMostPaths(handle_, &most.count, nullptr)), '\0');
    (void)jmapMostPaths(handle_, &most.count, path.data());
    most.path = codec_.decoded(path);
    return most;
}

JMAPTotals Document::totals() const {
    JMAPTotals totals = {};
    jmapTotals(handle_, &totals);
    return totals;
}

RecordCursor::RecordCursor(const Document& document) : document_(document) {
    check(jmapRecordsOpen(document.handle(), &handle_));
}

RecordCursor::~RecordCursor() {
    (void)jmapRecordsClose(handle_);  // only read from: nothing can be lost
}

bool RecordCursor::next(Record& record) {
    JMAPRecord raw = {};
    const QVStatus status = jmapRecordsNext(handle_, &raw);
    if (status == QV_EOF) {
        return false;
    }
    check(status);
    const TextCodec& codec = document_.codec();
    record.kind = raw.kind;
    record.kindName = jmapKindName(raw.kind);
    record.labels = raw.labelCount;
    record.path = codec.decode(view(raw.path, raw.pathLen), path_);
    record.value = codec.decode(view(raw.value, raw.valueLen), value_);
    return true;
}

}  // namespace qvej
