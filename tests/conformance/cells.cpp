// Prints all tables of a document, cell by cell, by the C++ face.
//
//     cells [map=FILE] [shape=auto] [lines=1] [encoding=NAME] [naming=original] [carry=1] FILE...
//
// Lines: "T" name; "C" name, one for each column; "R" and its cells, each after a TAB: "-" for
// none, "N" for null, "B" and 0 or 1, "D" and digits, or "x" and a text in hexadecimal.
#include "client/error.h"
#include "client/open/open_document.h"
#include "client/table_pass.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

void print(std::string_view text) {
    for (const char byte : text) {
        std::printf("%02x", static_cast<unsigned char>(byte));
    }
}

void print(const qvej::Cell& cell) {
    std::printf("\t");
    switch (cell.kind) {
        case qvej::Cell::MISSING:
            std::printf("-");
            break;
        case qvej::Cell::NUL:
            std::printf("N");
            break;
        case qvej::Cell::COUNT:
            std::printf("D%llu", static_cast<unsigned long long>(cell.count));
            break;
        case qvej::Cell::NUMBER:
            std::printf("D%.17g", cell.number);
            break;
        case qvej::Cell::DIGITS:
            std::printf("D%.*s", static_cast<int>(cell.text.size()), cell.text.data());
            break;
        case qvej::Cell::BOOLEAN:
            std::printf("B%llu", static_cast<unsigned long long>(cell.count));
            break;
        default:
            std::printf("x");
            print(cell.text);
    }
}

void print(const qvej::Document& document, const qvej::Table& table, bool carry) {
    std::printf("T\t%s\n", table.name.c_str());
    for (const qvej::Column& column : table.columns) {
        std::printf("C\t%s\n", column.name.c_str());
    }
    qvej::TablePass pass(document, {&table}, false, carry);
    qvej::PassRow row(document, table);
    for (qvej::PassItem item; pass.next(item);) {
        if (!row.take(item)) {
            continue;
        }
        std::printf("R");
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            print(row.cell(i));
        }
        std::printf("\n");
    }
}

std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

int main(int argc, char** argv) {
    std::map<std::string, std::string> words;
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const std::size_t equal = word.find('=');
        if (equal == std::string::npos) {
            files.push_back(word);
        } else {
            words[word.substr(0, equal)] = word.substr(equal + 1);
        }
    }
    try {
        qvej::OpenOptions options;
        options.inputs = qvej::inputList(files);
        options.shape = words["shape"];
        options.map = words["map"].empty() ? "" : contents(words["map"]);
        options.text.lines = !words["lines"].empty();
        options.text.encoding = words["encoding"].empty() ? "auto" : words["encoding"];
        options.naming = words["naming"].empty() ? qvej::Naming::MAP : qvej::Naming::ORIGINAL;
        const qvej::OpenDocument open(options);
        for (const qvej::Table& table : open.document().tables()) {
            print(open.document(), table, !words["carry"].empty());
        }
    } catch (const qvej::Error& error) {
        std::cerr << "cells: " << error.file() << ": " << error.what() << "\n";
        return 1;
    }
    return 0;
}
