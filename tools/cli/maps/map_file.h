// A user's map in a file: read, and its mistakes told.
//
// Tested by tests/tool/golden/map_check.t
#pragma once

#include "client/document.h"
#include "client/engine.h"
#include "client/error.h"
#include "client/maps/map_model.h"

#include <memory>
#include <string>
#include <vector>

namespace qvej::cli {

class MapFile {
   public:
    // Reads the file and checks it: well formed, and its formats and informats are known.  Throws a
    // Failure.
    MapFile(Engine& engine, const std::string& file);

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] const std::string& text() const { return text_; }

    // Its tables as they are without a document: a character column without LENGTH has length 0.
    [[nodiscard]] const std::vector<Table>& tables() const { return document_->tables(); }

    // The failure that a mistake in the text leads to: its place, the line, what would be right.
    [[noreturn]] void fail(const Engine& engine, const MapError& error) const;

   private:
    std::string name_;
    std::string text_;
    std::unique_ptr<Document> document_;  // an empty one: the tables are its
};

// The maps of some files, one of which may be standard input.  Throws a Failure, as MapFile.
std::vector<MapModel> readMapModels(const std::vector<std::string>& files);

}  // namespace qvej::cli
