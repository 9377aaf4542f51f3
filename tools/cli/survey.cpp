// See survey.h.
#include "tools/cli/survey.h"

#include "client/table_pass.h"

namespace qvej::cli {

namespace {

RowLosses lossesOf(const TablePass& pass, std::size_t table, std::size_t columns) {
    RowLosses sum;
    for (std::size_t c = 0; c < columns; ++c) {
        const JMAPPassColumn info = pass.column(table, c);
        sum.overwritten += info.below != 0 ? info.overwritten : 0;
        sum.strayed += info.strayed;
    }
    return sum;
}

Schema typesOf(const Session& session, const std::vector<const Table*>& tables, TablePass& pass,
               const Options& options) {
    session.document().checkMemory("types and keys",
                                   SchemaBuilder::sizeFor(tables, options.schema));
    Progress& progress = session.progress();
    progress.begin(Progress::TYPES);
    Schema schema = schemaOf(session.document(), tables, pass, options.threads, options.schema,
                             [&](uint64_t rows) { progress.addRows(rows); });
    progress.erase();
    return schema;
}

}  // namespace

Schema typesOf(const Session& session, const std::vector<const Table*>& tables,
               const Options& options) {
    TablePass pass(session.document(), tables, options.retain, options.carry);
    return typesOf(session, tables, pass, options);
}

Survey surveyOf(const Session& session, const std::vector<const Table*>& tables,
                const Options& options) {
    const Document& document = session.document();
    Survey survey;
    TablePass pass(document, tables, options.retain, options.carry);
    survey.schema = typesOf(session, tables, pass, options);
    for (std::size_t t = 0; t < tables.size(); ++t) {
        survey.losses.push_back(lossesOf(pass, t, tables[t]->columns.size()));
    }
    survey.allLosses = rowLossesOf(pass, tables);
    survey.inNoCell = lostOf(document, pass, tables);
    return survey;
}

std::vector<TreeNode> treeOf(const Schema& schema) {
    std::vector<std::vector<std::size_t>> children(schema.tables.size());
    std::vector<std::size_t> roots;
    for (std::size_t t = 0; t < schema.tables.size(); ++t) {
        const std::optional<ParentKey>& parent = schema.tables[t].parent;
        (parent ? children[parent->table] : roots).push_back(t);
    }
    std::vector<TreeNode> tree;
    std::vector<TreeNode> waiting;  // the next one is the last
    const auto wait = [&](const std::vector<std::size_t>& tables, std::size_t depth) {
        const std::size_t parent = depth == 0 ? 0 : tree.size() - 1;
        for (std::size_t i = tables.size(); i-- > 0;) {
            waiting.push_back({tables[i], parent, depth, i + 1 == tables.size()});
        }
    };
    for (wait(roots, 0); !waiting.empty();) {
        TreeNode node = waiting.back();
        waiting.pop_back();
        node.parent = node.depth == 0 ? tree.size() : node.parent;
        tree.push_back(node);
        wait(children[node.table], node.depth + 1);
    }
    return tree;
}

}  // namespace qvej::cli
