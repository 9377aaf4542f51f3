// The debug keywords of JsonInit.
//
// Tested by tests/frame/document_test.cpp
#pragma once

#include "core/context.h"

namespace jmap {

// Sets the debug switches that `keywords` names.  A keyword counts only between two commas, in
// upper case; ",-NAME," clears what ",NAME," or ",ALL," set, wherever it stands.  Without a string
// service of the document nothing can be looked up and no switch changes.
void applyKeywords(JMAP_PRIVATE* p, const char* keywords, QVStrSize keywordsLen) noexcept;

}  // namespace jmap
