#include "tests/host/host_fixture.h"

#include <cfloat>
#include <cmath>
#include <sstream>

namespace qvhost::test {
namespace {

class WriterTest : public testing::Test {
   protected:
    // A new writer, ended with the host.
    JSNWriterh make(QVCEI in = U_UTF8_CE, QVCEI out = U_UTF8_CE, uint32_t flags = JSN_WRITER_FLAGS,
                    void* stream = nullptr) {
        JSNWriterParms parms{};
        parms.inCei = in;
        parms.outCei = out;
        parms.flags = flags;
        parms.stream = stream;
        parms.desc = "map writer";
        parms.descLen = 10;
        return module_->createWriter(module_, &parms);
    }

    RunningHost host_;
    QVJSON* module_ = host_.load<QVJSON>(U"qvejson");
};

std::string document(JSNWriterh w) {
    char* buf = nullptr;
    QVStrSize length = -1;
    const QVStatus status = w->getBuffer(w, &buf, &length);
    return status == QV_OK ? std::string(buf, buf + length) : qvStatusName(status);
}

TEST_F(WriterTest, WritesCompactDocumentsAndRefusesCallsOutOfPlace) {
    // "{" and "[" open, "." closes, a digit begins a number, all else is a string; "!" behind a
    // call: it is refused, and writes nothing.
    const std::pair<const char*, const char*> cases[] = {
        {"{ .", "{}"},
        {"x", R"("x")"},
        {"12", "12"},
        {"{ a b c 1 .", R"({"a":"b","c":1})"},
        {"[ a 2 [ . { . 3 .", R"(["a",2,[],{},3])"},
        {"{ a [ { b { . c d . . e 4 .", R"({"a":[{"b":{},"c":"d"}],"e":4})"},
        // Kept: the map writer gives a column of a type without a word no value, so that its next
        // name becomes the value.
        {"[ { TYPE PATH r . { NAME y . .", R"([{"TYPE":"PATH","r"},{"NAME":"y"}])"},
        {"", "QV_UNSUPPORTED"},
        {"{ a [", "QV_UNSUPPORTED"},
        {"[ x", "QV_UNSUPPORTED"},
        {".!", "QV_UNSUPPORTED"},
        {"[ . .! [! x! 5!", "[]"},
        {"{ 5! [! {! a 5 .", R"({"a":5})"},
    };
    for (const auto& [calls, expected] : cases) {
        SCOPED_TRACE(calls);
        JSNWriterh w = make();
        std::istringstream words(calls);
        for (std::string call; words >> call;) {
            const bool refused = call.back() == '!';
            call.resize(call.size() - (refused ? 1 : 0));
            const QVStatus status = call == "{"   ? w->open(w, JSN_OPEN_OBJECT)
                                    : call == "[" ? w->open(w, JSN_OPEN_ARRAY)
                                    : call == "." ? w->close(w)
                                    : call < ":"  ? w->dbl(w, std::stod(call), 10, 0)
                                                  : w->string(w, call.data(), lengthOf(call));
            EXPECT_QV(refused ? QV_UNSUPPORTED : QV_OK, status) << call;
        }
        EXPECT_EQ(document(w), expected);
    }
    JSNWriterh w = make();
    EXPECT_QV(QV_BADPARMS, w->open(w, 3));
    EXPECT_QV(QV_BADPARMS, w->string(w, "x", -1));
}

TEST_F(WriterTest, EscapesOnlyWhatItMustAndReplacesBrokenSequencesOnce) {
    const QVCEI greek = host_.encoding("ISO-8859-7");
    const struct {
        std::string text, expected;  // "?" for \ufffd
        QVCEI cei = U_UTF8_CE;
    } cases[] = {
        {"/\x7F\"\\", "/\x7F\\\"\\\\"},
        {"\b\f\n\r\t", R"(\b\f\n\r\t)"},
        {{"\0\x01\x0B\x1F", 4}, R"(\u0000\u0001\u000b\u001f)"},
        {"\xC2\x80\xE0\xA0\x80\xED\x9F\xBF\xF0\x90\x80\x80",
         "\xC2\x80\xE0\xA0\x80\xED\x9F\xBF\xF0\x90\x80\x80"},
        {"a\x80z", "a?z"},                                          // a trail byte
        {"a\xE2\x82", "a?"},                                        // cut at the end
        {"\xF0\x9F\x98\xC3\xA9", "?\xC3\xA9"},                      // cut by a sequence
        {"\xC3\"", "?\\\""},                                        // cut by a quote
        {"\xC1\xBF \xE0\x9F\xBF \xF0\x8F\xBF\xBF", "?? ??? ????"},  // overlong: each byte alone
        {"\xED\xA0\x80 \xF4\x90\x80\x80", "??? ????"},   // a surrogate; past the last character
        {"a\xE1\xA4\xD2\"z", "a\xE1\xA4?\\\"z", greek},  // bytes of a code page, one unassigned
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        JSNWriterh w = make(c.cei, c.cei);
        EXPECT_QV_OK(w->string(w, c.text.data(), lengthOf(c.text)));
        std::string expected = "\"" + c.expected + "\"";
        for (std::size_t at; (at = expected.find('?')) != std::string::npos;) {
            expected.replace(at, 1, "\\ufffd");
        }
        EXPECT_EQ(document(w), expected);
    }
}

TEST_F(WriterTest, WritesNumbersPlainly) {
    const struct {
        double value;
        int32_t digits, decimals;
        QVStatus status;
    } cases[] = {{0, 10, 0, QV_OK},
                 {2.5, 10, 0, QV_OK},
                 {0x1p63, 10, 0, QV_OK},
                 {3.14159, 10, 2, QV_OK},
                 {1e-7, 10, 10, QV_OK},
                 {-DBL_MAX, 10, 1074, QV_OK},
                 {-999.5, 3, 1, QV_OK},
                 {1000, 3, 0, QV_TRUNCATED},
                 {-1e3, 3, 1, QV_TRUNCATED},
                 {HUGE_VAL, 10, 0, QV_UNSUPPORTED},
                 {NAN, 10, 0, QV_UNSUPPORTED},
                 {1, 0, 0, QV_BADPARMS},
                 {1, 10, -1, QV_BADPARMS},
                 {1, 10, 1075, QV_BADPARMS}};
    for (const auto& c : cases) {
        char expected[1400] = "QV_UNSUPPORTED";  // nothing is written
        if (c.status == QV_OK) {
            std::snprintf(expected, sizeof expected, "%.*f", c.decimals, c.value);
        }
        JSNWriterh w = make();
        EXPECT_QV(c.status, w->dbl(w, c.value, c.digits, c.decimals)) << c.value;
        EXPECT_EQ(document(w), expected);
    }
}

TEST_F(WriterTest, IsMadeOnlyForWhatItCanDo) {
    const QVCEI latin1 = host_.encoding("latin1");
    EXPECT_EQ(make(999, 999), nullptr);
    EXPECT_EQ(make(U_L_UCS4_CE, U_L_UCS4_CE), nullptr);
    EXPECT_EQ(make(latin1, U_UTF8_CE), nullptr);
    EXPECT_EQ(make(latin1, latin1, 0), nullptr);
    EXPECT_EQ(make(latin1, latin1, JSN_WRITER_FLAGS, &host_), nullptr);
    EXPECT_NE(make(latin1, latin1), nullptr);
    EXPECT_EQ(host_.leftovers(), "module qvejson;writer map writer;");
}

}  // namespace
}  // namespace qvhost::test
