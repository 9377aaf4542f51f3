"""What others make of an orders document: the tables of it in one format, each in its own way.

    peers.py PEER FORMAT ORDERS.json OUT     (OUT is a directory that exists)
                                             for memory each table stays there in Arrow's form,
                                             and its number of rows is printed
    peers.py --list                          "PEER FORMAT" for all there is, with the versions

The document is parsed once.  DuckDB and Polars have objects within an order as columns of the orders;
flatterer makes tables of them, as qvejmap does.  All take as many threads as there are cores.
DuckDB's writers of SQLite and Excel are extensions that it fetches from its own site; they are not here.
"""
import importlib.metadata
import os
import sys

ORDERS, ITEMS, TAGS, TRACKING = "orders", "items", "tags", "tracking"

LOAD = """
create temp table loaded as
select unnest(orders) as o from read_json(?, maximum_object_size = {size}, format = 'unstructured')
"""
ADDRESS = "o.customer.address"
QUERIES = {
    ORDERS: f"""
        select o.id, o.placed, o.status, o.currency, o.gift, o.total, o.notes,
               o.customer.id as customer_id, o.customer.name, o.customer.email, o.customer.vip,
               o.customer.phone, {ADDRESS}.street, {ADDRESS}.city, {ADDRESS}.zip, {ADDRESS}.country,
               o.shipping.method, o.shipping.cost, o.shipping.eta
        from loaded""",
    ITEMS: """
        select id, i.sku, i.title, i.qty, i.price, i.discount
        from (select o.id as id, unnest(o.items) as i from loaded)""",
    TAGS: """
        select id, sku, unnest(tags) as tag
        from (select id, i.sku as sku, i.tags as tags
              from (select o.id as id, unnest(o.items) as i from loaded))""",
    TRACKING: """
        select id, t.at, t.code, t.where
        from (select o.id as id, unnest(o.shipping.tracking) as t from loaded)""",
}


def show_rows(tables):
    for name, table in tables.items():
        print(name, table.num_rows)


def duckdb_tables(form, document, out):
    import duckdb

    connection = duckdb.connect()
    connection.execute(LOAD.format(size=os.path.getsize(document) + 1), [document])
    if form == "memory":
        show_rows({name: connection.sql(query).to_arrow_table() for name, query in QUERIES.items()})
        return
    how = {"csv": "header", "parquet": "format parquet, compression zstd"}[form]
    for name, query in QUERIES.items():
        connection.execute(f"copy ({query}) to '{out}/{name}.{form}' ({how})")


def polars_tables(form, document, out):
    import polars as pl

    loaded = pl.read_json(document, infer_schema_length=1000).explode("orders").unnest("orders")
    address = pl.col("customer").struct.field("address").struct.unnest()
    orders = loaded.select(
        pl.exclude("customer", "shipping", "items"),
        pl.col("customer").struct.rename_fields(
            ["customer_id" if f.name == "id" else f.name for f in loaded.schema["customer"].fields]
        ).struct.unnest(), address,
        *(pl.col("shipping").struct.field(f) for f in ("method", "cost", "eta"))).drop("address")
    items = loaded.select("id", "items").explode("items").drop_nulls("items")
    tables = {
        ORDERS: orders,
        ITEMS: items.unnest("items").drop("tags"),
        TAGS: items.select("id", pl.col("items").struct.field("sku"), pl.col("items").struct.field("tags")).explode("tags"),
        TRACKING: loaded.select("id", pl.col("shipping").struct.field("tracking")).explode("tracking")
        .drop_nulls("tracking").unnest("tracking"),
    }
    if form == "memory":
        show_rows({name: table.to_arrow() for name, table in tables.items()})
        return
    for name, table in tables.items():
        path = f"{out}/{name}.{form}"
        if form == "csv":
            table.write_csv(path)
        elif form == "parquet":
            table.write_parquet(path, compression="zstd")
        elif form == "sqlite":
            table.write_database(name, f"sqlite:///{out}/tables.sqlite", engine="adbc")
        else:
            table.write_ipc(path, compression="zstd")


def flatterer_tables(form, document, out):
    import flatterer

    flatterer.flatten(document, out + "/flat", path=["orders"], threads=os.cpu_count(), force=True,
                      csv=form == "csv", **{} if form == "csv" else {form: True})


PEERS = {
    "duckdb": (duckdb_tables, ["csv", "parquet", "memory"]),
    "polars": (polars_tables, ["csv", "parquet", "arrow", "sqlite", "memory"]),
    "flatterer": (flatterer_tables, ["csv", "parquet", "sqlite", "xlsx"]),
}


def main():
    if sys.argv[1] == "--list":
        for peer, (_, forms) in PEERS.items():
            for form in forms:
                print(peer, form, importlib.metadata.version(peer))
        return
    peer, form, document, out = sys.argv[1:]
    PEERS[peer][0](form, document, out)


main()
