// A map made by hand: tables and columns that no automatic map has.
#pragma once

#include "testkit/open_document.h"

#include <deque>

namespace jmap::test {

class HandMap {
   public:
    // `path` with slashes; null: none.
    void table(std::string_view name, const char* path = nullptr) {
        DSINFO& ds = tables_.emplace_back();
        ds.nameLen = static_cast<QVStrSize>(name.copy(ds.name, sizeof ds.name));
        if (path != nullptr) {
            ds.tablePath = keep(internalPath(path), ds.tablePathLen);
        }
        append(map.dshead, map.dstail, &ds);
    }
    // A column of the table made last.
    VARINFO& column(std::string_view name, VARTYPE type, const char* path, uint64_t length = 8) {
        VARINFO& made = columns_.emplace_back();
        made.user = &users_.emplace_back();
        made.name = keep(std::string(name), made.nameLen);
        made.type = type;
        made.length = length;
        if (path != nullptr) {
            made.path = keep(internalPath(path), made.pathLen);
        }
        append(map.dstail->vhead, map.dstail->vtail, &made);
        map.dstail->varcount += 1;
        return made;
    }
    // Gives a column the informat INF4.1 and the format FMT10.2.
    static void informat(VARINFO& column) {
        USERVARINFO& user = *column.user;
        user.informatLen = static_cast<QVStrSize>(std::string_view("INF").copy(user.informat, 32));
        user.informatWidth = 4;
        user.informatDec = 1;
        user.formatLen = static_cast<QVStrSize>(std::string_view("FMT").copy(user.format, 32));
        user.formatWidth = 10;
        user.formatDec = 2;
    }

    MAP map{};

   private:
    char* keep(std::string text, QVStrSize& len) {
        len = lengthOf(text);
        return texts_.emplace_back(std::move(text)).data();
    }
    std::deque<DSINFO> tables_;
    std::deque<VARINFO> columns_;
    std::deque<USERVARINFO> users_;
    std::deque<std::string> texts_;
};

}  // namespace jmap::test
