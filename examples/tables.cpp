// Prints every table of a JSON document: a complete program on the C++ face.
//
//     find_package(qvejmap REQUIRED COMPONENTS client)
//     add_executable(tables tables.cpp)
//     target_link_libraries(tables PRIVATE qvejmap::client)
//
//     tables FILE         ("-": standard input; compressed or not, in any encoding of Unicode)
#include <qvejmap/client/cursor.h>
#include <qvejmap/client/document.h>
#include <qvejmap/client/error.h>
#include <qvejmap/client/input/document_reader.h>

#include <iostream>

namespace {

void print(const qvej::Cell& cell) {
    if (cell.kind == qvej::Cell::NUMBER) {
        std::cout << cell.number;
    } else {
        std::cout << cell.text;  // empty: no value
    }
}

void print(const qvej::Document& document, const qvej::Table& table) {
    std::cout << table.name << "\n";
    for (const qvej::Column& column : table.columns) {
        std::cout << "\t" << column.name;
    }
    std::cout << "\n";
    qvej::Cursor row(document, table);
    while (row.next()) {
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            std::cout << "\t";
            print(row.cell(i));
        }
        std::cout << "\n";
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: tables FILE\n";
        return 2;
    }
    try {
        qvej::Engine engine;
        qvej::DocumentReader reader(qvej::ByteSource::file(argv[1]), {});
        qvej::Document document(engine, reader.documentOptions({.maxDepth = 1000}));
        reader.read(document);  // all of it, or an Error
        for (const qvej::Table& table : document.tables()) {
            print(document, table);
        }
    } catch (const qvej::Error& error) {
        std::cerr << "tables: " << error.file();
        if (error.line() != 0) {
            std::cerr << ":" << error.line() << ":" << error.column();
        }
        std::cerr << ": " << error.what() << "\n" << error.excerpt();
        return 1;
    }
    return 0;
}
