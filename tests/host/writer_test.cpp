#include "tests/host/host_fixture.h"

namespace qvhost::test {
namespace {

struct WriterTest : testing::Test {
    // A new writer, ended with the host.
    JSNWriterh make(QVCEI in = U_UTF8_CE, QVCEI out = U_UTF8_CE) const {
        JSNWriterParms parms = {in, out, JSN_WRITER_FLAGS, nullptr, nullptr,
                                0,  0,   nullptr,          "map",   3};
        return module->createWriter(module, &parms);
    }

    RunningHost host;
    QVJSON* module = host.load<QVJSON>(U"qvejson");
};

std::string document(JSNWriterh w) {
    char* buf = nullptr;
    QVStrSize length = -1;
    const QVStatus status = w->getBuffer(w, &buf, &length);
    return status == QV_OK ? std::string(buf, buf + length) : qvStatusName(status);
}

TEST_F(WriterTest, WritesCompactDocumentsAndRefusesCallsOutOfPlace) {
    // "{" and "[" open, "." closes, a digit begins a number, all else is a string; "!" after a
    // call: it is refused, and writes nothing.
    const std::pair<const char*, const char*> cases[] = {
        {"{ a [", "QV_UNSUPPORTED"},
        {".! { a [ { b { . c d 2! {! [! . . e 4 .", R"({"a":[{"b":{},"c":"d"}],"e":4})"},
        {"[ a 2 [ . { . 3 . .! [! x! 5!", R"(["a",2,[],{},3])"},
        // Kept: the map writer gives a column of a type without a word no value, so that its next
        // name becomes the value.
        {"[ { TYPE PATH r . { NAME y . .", R"([{"TYPE":"PATH","r"},{"NAME":"y"}])"},
    };
    for (const auto& [calls, expected] : cases) {
        JSNWriterh w = make();
        for (const std::string& call : split(calls, ' ')) {
            const QVStatus status = call[0] == '{'   ? w->open(w, JSN_OPEN_OBJECT)
                                    : call[0] == '[' ? w->open(w, JSN_OPEN_ARRAY)
                                    : call[0] == '.' ? w->close(w)
                                    : call[0] < ':'  ? w->dbl(w, call[0] - '0', 10, 0)
                                                     : w->string(w, call.data(), lengthOf(call));
            EXPECT_QV(call.back() == '!' ? QV_UNSUPPORTED : QV_OK, status) << calls << call;
        }
        EXPECT_EQ(document(w), expected);
    }
}

TEST_F(WriterTest, EscapesOnlyWhatItMustAndReplacesBrokenSequencesOnce) {
    const QVCEI greek = host.encoding("ISO-8859-7");
    const struct {
        std::string text, expected;  // "?" for \ufffd
        QVCEI cei = U_UTF8_CE;
    } cases[] = {
        {"/\x7F\"\\", "/\x7F\\\"\\\\"},
        {{"\b\f\n\r\t\0\x01\x0B\x1F", 9}, R"(\b\f\n\r\t\u0000\u0001\u000b\u001f)"},
        {"\xC2\x80\xE0\xA0\x80\xF0\x90\x80\x80", "\xC2\x80\xE0\xA0\x80\xF0\x90\x80\x80"},
        {"a\x80z\xE2\x82", "a?z?"},                                 // a trail byte; cut at the end
        {"\xF0\x9F\x98\xC3\xA9\xC3\"", "?\xC3\xA9?\\\""},           // cut by a sequence, by a quote
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

TEST_F(WriterTest, WritesWholeNumbersPlainlyAndServesTheseEncodingsOnly) {
    JSNWriterh w = make();
    EXPECT_QV_OK(w->dbl(w, 12345678901, 10, 0));
    EXPECT_EQ(document(w), "12345678901");
    EXPECT_TRUE(!make(999, 999) && !make(U_L_UCS4_CE, U_L_UCS4_CE) && !make(999, U_UTF8_CE));
}

// A text of some 70 MB, with each request for its memory failing, and then none.
TEST_F(WriterTest, AsksAPoolForItsTextOnceAndTellsWhereThatEnds) {
    const std::string item(1000000, 'x');
    const auto write = [&](JSNWriterh w) {
        QVStatus status = w->open(w, JSN_OPEN_ARRAY);
        for (int i = 0; i < 70 && status == QV_OK; ++i) {
            status = w->string(w, item.data(), lengthOf(item));
        }
        return status == QV_OK ? w->close(w) : status;
    };
    std::string whole = "[";
    for (int i = 0; i < 70; ++i) {
        whole.append(i == 0 ? "\"" : ",\"").append(item).push_back('"');
    }
    whole.push_back(']');
    uint64_t failing = 0;
    for (QVStatus status = QV_NOMEM; status == QV_NOMEM;) {
        qvPortableFailAllocation(host.handle, ++failing, false);
        JSNWriterh w = make();
        status = w == nullptr ? QV_NOMEM : write(w);
        qvPortableFailAllocation(host.handle, 0, false);
        if (status == QV_OK) {
            EXPECT_EQ(document(w), whole);
            EXPECT_LE(host.counts().bytesPeak, whole.size() + whole.size() / 3) << "held once";
        } else if (w != nullptr) {
            EXPECT_TRUE(document(w) == "QV_UNSUPPORTED" && w->close(w) == QV_OK) << failing;
        }
        EXPECT_TRUE(w == nullptr || destroy(w) == QV_OK);
        EXPECT_EQ(host.counts().bytesInUse, 0U) << failing;
    }
    EXPECT_GE(failing, 10U) << "requests were made to fail";
}

}  // namespace
}  // namespace qvhost::test
