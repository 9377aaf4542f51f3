// Texts as JSON strings.
//
// Tested by tests/host/writer_test.cpp
#pragma once

#include <string_view>

namespace qvhost {

class CodePage;
class GrowingBytes;

// Appends `text` in double quotes, escaped as writer.h says.
//   page  code page of the text, null for UTF-8
void appendJsonString(GrowingBytes& out, std::string_view text, const CodePage* page);

}  // namespace qvhost
