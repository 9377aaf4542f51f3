// Speed of the JSON parser alone: one thread, the document in memory, handed over in buffers of
// 1 MiB, callbacks that do nothing.
//
//   BM_Parse/orders          ours, with the kernel that the machine offers
//   BM_ParseSse2/orders      ours, as on a machine without AVX2
//   BM_ParsePortable/orders  ours, without vectors
//   BM_BoostParse/orders     boost::json::basic_parser, the reference: compare within one run
//   BM_Cut/orders            finding where partitions begin: at most a quarter of BM_Parse
//   BM_CutSse2/orders        the same, as on a machine without AVX2
//   BM_CutPortable/orders    the same without vectors
//   BM_CutAndCopy/orders     the same as BM_Cut, with the text collected into partitions
//
// Only times of one run compare; bytes a second are of the processor time of the thread.
#include "qvportable.h"

#include "bench/documents.h"
#include "client/partition/partition_reader.h"
#include "host/json/parser.h"

#include <benchmark/benchmark.h>
#include <boost/json/basic_parser_impl.hpp>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace jmap::bench {
namespace {

constexpr std::size_t kBufferBytes = 1U << 20;

// The document in buffers; `take(text, last)` gets each.
template <class Take>
void eachBuffer(std::string_view text, Take take) {
    while (!text.empty()) {
        const std::string_view buffer = text.substr(0, kBufferBytes);
        text.remove_prefix(buffer.size());
        take(buffer, text.empty());
    }
}

void require(bool parsed, const std::string& name) {
    if (!parsed) {
        std::fprintf(stderr, "%s was not parsed\n", name.c_str());
        std::abort();
    }
}

JSNParseCB idleCallbacks() {
    JSNParseCB cb;
    cb.arrayStart = cb.arrayEnd = cb.objectStart = cb.objectEnd =
        cb.nullx = [](JSNParseCB*) { return QV_OK; };
    cb.booleanVal = [](JSNParseCB*, QVBoolean) { return QV_OK; };
    cb.number = [](JSNParseCB*, const char*, QVStrSize, int32_t) { return QV_OK; };
    cb.string = [](JSNParseCB*, const JSNChar*, QVStrSize, int32_t) { return QV_OK; };
    return cb;
}

void parse(benchmark::State& state, const Document& document, qvhost::ScanKernel kernel) {
    JSNParseCB callbacks = idleCallbacks();
    JSNParserParms parms = {};
    parms.textCei = parms.callbackCei = U_UTF8_CE;
    parms.flags = JSN_PARSER_FLAGS;
    parms.callbacks = &callbacks;
    for (auto _ : state) {
        JSNParserh parser = new qvhost::Parser(nullptr, parms, {.kernel = kernel});
        QVStatus status = QV_EOF;
        eachBuffer(document.text, [&](std::string_view buffer, bool last) {
            status =
                parser->parse(parser, buffer.data(), static_cast<QVStrSize>(buffer.size()), last);
        });
        require(status == QV_OK, document.name);
        (void)parser->generic.destroy(&parser->generic);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * document.text.size()));
}

struct IdleHandler {
    static constexpr std::size_t max_object_size = SIZE_MAX;
    static constexpr std::size_t max_array_size = SIZE_MAX;
    static constexpr std::size_t max_key_size = SIZE_MAX;
    static constexpr std::size_t max_string_size = SIZE_MAX;
    using Text = boost::json::string_view;
    using Error = boost::json::error_code;
    bool on_document_begin(Error&) { return true; }
    bool on_document_end(Error&) { return true; }
    bool on_object_begin(Error&) { return true; }
    bool on_object_end(std::size_t, Error&) { return true; }
    bool on_array_begin(Error&) { return true; }
    bool on_array_end(std::size_t, Error&) { return true; }
    bool on_key_part(Text, std::size_t, Error&) { return true; }
    bool on_key(Text, std::size_t, Error&) { return true; }
    bool on_string_part(Text, std::size_t, Error&) { return true; }
    bool on_string(Text, std::size_t, Error&) { return true; }
    bool on_number_part(Text, Error&) { return true; }
    bool on_int64(int64_t, Text, Error&) { return true; }
    bool on_uint64(uint64_t, Text, Error&) { return true; }
    bool on_double(double, Text, Error&) { return true; }
    bool on_bool(bool, Error&) { return true; }
    bool on_null(Error&) { return true; }
    bool on_comment_part(Text, Error&) { return true; }
    bool on_comment(Text, Error&) { return true; }
};

void boostParse(benchmark::State& state, const Document& document) {
    for (auto _ : state) {
        boost::json::basic_parser<IdleHandler> parser{boost::json::parse_options()};
        boost::json::error_code error;
        eachBuffer(document.text, [&](std::string_view buffer, bool last) {
            parser.write_some(!last, buffer.data(), buffer.size(), error);
        });
        require(!error && parser.done(), document.name);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * document.text.size()));
}

qvej::PartitionFinder finder(qvej::SkimKernel kernel) {
    return qvej::PartitionFinder(qvej::TextForm::DOCUMENT, qvej::kPartitionBytes, kernel);
}

void cut(benchmark::State& state, const Document& document, qvej::SkimKernel kernel) {
    std::vector<qvej::Cut> cuts;
    for (auto _ : state) {
        qvej::PartitionFinder finds = finder(kernel);
        cuts.clear();
        eachBuffer(document.text, [&](std::string_view buffer, bool) { finds.feed(buffer, cuts); });
        benchmark::DoNotOptimize(cuts.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * document.text.size()));
    state.counters["cuts"] = static_cast<double>(cuts.size());
}

void cutAndCopy(benchmark::State& state, const Document& document) {
    for (auto _ : state) {
        qvej::PartitionFinder finds = finder(qvej::SkimKernel::BEST);
        std::size_t bytes = 0;
        qvej::PartitionReader* gets = nullptr;
        qvej::PartitionReader reader(finds, [&](qvej::Partition partition) {
            bytes += partition.text.size();
            gets->giveBack(std::move(partition.text));
        });
        gets = &reader;
        eachBuffer(document.text, [&](std::string_view buffer, bool) { reader.feed(buffer); });
        reader.finish();
        require(bytes == document.text.size(), document.name);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * document.text.size()));
}

template <class Run>
void registerRun(const char* what, const Document& document, Run run) {
    const std::string name = std::string(what) + "/" + document.name;
    benchmark::RegisterBenchmark(name.c_str(), [run, &document](benchmark::State& state) {
        run(state, document);
    })->Unit(benchmark::kMillisecond);
}

}  // namespace
}  // namespace jmap::bench

int main(int argc, char** argv) {
    using namespace jmap::bench;
    using qvej::SkimKernel;
    using qvhost::ScanKernel;
    benchmark::Initialize(&argc, argv);
    const std::vector<Document> documents = loadDocuments();
    const auto registerOurs = [](const char* what, const Document& document, ScanKernel kernel) {
        registerRun(what, document, [kernel](benchmark::State& state, const Document& d) {
            parse(state, d, kernel);
        });
    };
    const auto registerCut = [](const char* what, const Document& document, SkimKernel kernel) {
        registerRun(what, document, [kernel](benchmark::State& state, const Document& d) {
            cut(state, d, kernel);
        });
    };
    for (const Document& document : documents) {
        registerOurs("BM_Parse", document, ScanKernel::BEST);
        registerRun("BM_BoostParse", document, boostParse);
        registerOurs("BM_ParseSse2", document, ScanKernel::SSE2);
        registerOurs("BM_ParsePortable", document, ScanKernel::PORTABLE);
        registerCut("BM_Cut", document, SkimKernel::BEST);
        registerCut("BM_CutSse2", document, SkimKernel::SSE2);
        registerCut("BM_CutPortable", document, SkimKernel::PORTABLE);
        registerRun("BM_CutAndCopy", document, cutAndCopy);
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
