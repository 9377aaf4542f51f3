// See map_model.h.
#include "client/maps/map_model.h"

#include "client/escape.h"
#include "client/map_text.h"
#include "client/messages.h"
#include "client/text.h"

namespace qvej {

namespace {

// FORMAT or INFORMAT; `mark` stands in front of the name.  Empty: there is none.
std::string conversionText(std::string_view mark, const Conversion& conversion) {
    if (conversion.name.empty()) {
        return {};
    }
    std::string name(mark);
    name += withoutUnfinished(conversion.name);  // the engine may have cut it
    std::string text = "[" + jsonText(name);
    if (conversion.width != 0 || conversion.decimals != 0) {
        text += "," + std::to_string(conversion.width);
    }
    if (conversion.decimals != 0) {
        text += "," + std::to_string(conversion.decimals);
    }
    return text + "]";
}

MapColumn modelOf(const Column& column, const ColumnText& text) {
    MapColumn model;
    model.name = column.name;
    model.path = withSlashes(column.path);
    model.type = column.type;
    model.length = text.length;
    model.currentLength = text.currentLength;
    model.format = conversionText({}, column.format);
    model.informat = conversionText(column.quiet ? "?" : "", column.informat);
    model.label = withoutUnfinished(column.label);
    model.option = column.retain ? "RETAIN" : column.noretain ? "NORETAIN" : "";
    return model;
}

void addMember(std::string& object, std::string_view key, std::string_view value) {
    object += object.back() == '{' ? "\"" : ",\"";
    object += key;
    object += "\":";
    object += value;
}

void addColumn(std::string& out, const MapColumn& column) {
    const auto addIf = [&](bool given, std::string_view key, const std::string& value) {
        if (given) {
            addMember(out, key, value);
        }
    };
    out += '{';
    addMember(out, "NAME", jsonText(column.name));
    addMember(out, "TYPE", jsonText(typeName(column.type)));
    addMember(out, "PATH", jsonText(column.path));
    addIf(column.currentLength.has_value(), "CURRENT_LENGTH",
          std::to_string(column.currentLength.value_or(0)));
    addIf(column.length.has_value(), "LENGTH", std::to_string(column.length.value_or(0)));
    addIf(!column.format.empty(), "FORMAT", column.format);
    addIf(!column.informat.empty(), "INFORMAT", column.informat);
    addIf(!column.label.empty(), "LABEL", jsonText(column.label));
    addIf(!column.option.empty(), "OPTIONS", "[" + jsonText(column.option) + "]");
    out += '}';
}

void addTable(std::string& out, const MapTable& table) {
    out += '{';
    addMember(out, "DSNAME", jsonText(table.name));
    addMember(out, "TABLEPATH", jsonText(table.path));
    if (!table.columns.empty()) {
        addMember(out, "VARIABLES", "[");
        for (const MapColumn& column : table.columns) {
            out += &column == &table.columns.front() ? "" : ",";
            addColumn(out, column);
        }
        out += ']';
    }
    out += '}';
}

}  // namespace

MapModel mapModel(const Engine& engine, std::string_view text, const std::vector<Table>& tables,
                  std::size_t inFront) {
    const std::vector<TableText> texts = readMapText(engine, text);
    MapModel model;
    for (std::size_t t = 0; t < texts.size(); ++t) {
        const Table& table = tables.at(t);
        model.push_back({texts[t].name, withSlashes(table.path()), {}});
        for (std::size_t c = inFront; c < table.columns.size(); ++c) {
            model.back().columns.push_back(
                modelOf(table.columns[c], texts[t].columns.at(c - inFront)));
        }
    }
    return model;
}

MapModel readMapModel(Engine& engine, std::string_view text) {
    Document document(engine);
    document.feed("[]");
    document.finish();
    document.useMap(text);
    return mapModel(engine, text, document.tables());
}

std::string mapDocument(const MapModel& map) {
    std::string out = "{\"DATASETS\":[";
    for (const MapTable& table : map) {
        out += &table == &map.front() ? "" : ",";
        addTable(out, table);
    }
    return out + "]}";
}

std::string_view typeName(ColumnType type) {
    switch (type) {
        case ColumnType::ORDINAL:
            return "ORDINAL";
        case ColumnType::NUMERIC:
            return "NUMERIC";
        case ColumnType::CHARACTER:
            return "CHARACTER";
    }
    return {};
}

std::string jsonText(std::string_view text) {
    std::string out = "\"";
    appendEscaped(out, text, JSON_STRING);
    return out + "\"";
}

std::string columnName(const MapTable& table, const MapColumn& column) {
    return escaped(visible(table.name)) + "." + escaped(column.name);
}

}  // namespace qvej
