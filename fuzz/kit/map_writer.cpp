#include "kit/map_writer.h"

#include <algorithm>

namespace jmap::fuzz {
namespace {

std::string pathText(std::string text) {
    std::replace(text.begin(), text.end(), '\x02', '/');
    return quoted(text);
}

// Numbers are stored as unsigned ones of the same bits.
std::string numberText(uint64_t number) {
    return std::to_string(static_cast<int64_t>(number));
}

std::string formatText(const char* key, const char* mark, const JMAPFormat& format) {
    return std::string(",\"") + key + "\":[" +
           quoted(mark + std::string(wholeText(textOf(format.name, format.nameLen)))) + "," +
           numberText(format.width) + "," + numberText(format.decimals) + "]";
}

std::string columnText(JMAPColumnh column) {
    JMAPColumnInfo info;
    jmapColumnInfo(column, &info);
    constexpr const char* kTypes[] = {"ORDINAL", "NUMERIC", "CHARACTER"};
    std::string text = std::string("{\"TYPE\":\"") + kTypes[info.type] + "\"";
    if (info.name != nullptr) {
        text += ",\"NAME\":" + quoted(textOf(info.name, info.nameLen));
    }
    if (info.pathLen != 0) {
        text += ",\"PATH\":" + pathText(pathOf(jmapColumnPath, column, info.pathLen));
    }
    if (info.lengthFromAutomap == 0) {
        text += ",\"LENGTH\":" + numberText(info.length);
    }
    text += ",\"LABEL\":" + quoted(wholeText(textOf(info.label, info.labelLen)));
    text += formatText("FORMAT", "", info.format);
    text += formatText("INFORMAT", info.informatNoError != 0 ? "?" : "", info.informat);
    if (info.retain != 0 || info.noretain != 0) {
        text +=
            std::string(",\"OPTIONS\":[\"") + (info.retain != 0 ? "RETAIN" : "NORETAIN") + "\"]";
    }
    return text + "}";
}

}  // namespace

std::string writtenMap(QVMemPtr map) {
    std::string text = "{\"DATASETS\":[";
    JMAPTableh table = nullptr;
    while (jmapNextTable(map, &table) == QV_OK) {
        JMAPTableInfo info;
        jmapTableInfo(table, &info);
        text += text.back() == '[' ? "{" : ",{";
        text += "\"DSNAME\":" + quoted(wholeText(textOf(info.name, info.nameLen))) +
                ",\"TABLEPATH\":" + pathText(pathOf(jmapTablePath, table, info.tablePathLen)) +
                ",\"VARIABLES\":[";
        JMAPColumnh column = nullptr;
        while (jmapNextColumn(table, &column) == QV_OK) {
            text += (text.back() == '[' ? "" : ",") + columnText(column);
        }
        text += "]}";
    }
    return text + "]}";
}

std::string mapText(QVMemPtr map) {
    std::string text = writtenMap(map);
    for (JMAPTableh table = nullptr; jmapNextTable(map, &table) == QV_OK;) {
        for (JMAPColumnh column = nullptr; jmapNextColumn(table, &column) == QV_OK;) {
            JMAPColumnInfo info;
            jmapColumnInfo(column, &info);
            text += "\n" + std::to_string(info.length) + " " + std::to_string(info.currentLength) +
                    (info.lengthFromAutomap != 0 ? " settled" : "") +
                    (info.truncation != 0 ? " cut" : "");
        }
    }
    return text;
}

}  // namespace jmap::fuzz
