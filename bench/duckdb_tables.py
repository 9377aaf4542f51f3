"""DuckDB's side of bench/commands.py: the four tables of an orders document as CSV files.

    duckdb_tables.py ORDERS.json OUT     (OUT is a directory that exists)
    duckdb_tables.py --version

The document is parsed once, into a temporary table; objects within an order become columns.
"""
import os
import sys

import duckdb

LOAD = """
create temp table loaded as
select unnest(orders) as o from read_json(?, maximum_object_size = {size}, format = 'unstructured')
"""
ADDRESS = "o.customer.address"
TABLES = {
    "orders": f"""
        select o.id, o.placed, o.status, o.currency, o.gift, o.total, o.notes,
               o.customer.id as customer_id, o.customer.name, o.customer.email, o.customer.vip,
               o.customer.phone, {ADDRESS}.street, {ADDRESS}.city, {ADDRESS}.zip, {ADDRESS}.country,
               o.shipping.method, o.shipping.cost, o.shipping.eta
        from loaded""",
    "items": """
        select id, i.sku, i.title, i.qty, i.price, i.discount
        from (select o.id as id, unnest(o.items) as i from loaded)""",
    "tags": """
        select id, sku, unnest(tags) as tag
        from (select id, i.sku as sku, i.tags as tags
              from (select o.id as id, unnest(o.items) as i from loaded))""",
    "tracking": """
        select id, t.at, t.code, t.where
        from (select o.id as id, unnest(o.shipping.tracking) as t from loaded)""",
}


def main():
    if sys.argv[1] == "--version":
        print(duckdb.__version__)
        return
    document, out = sys.argv[1:]
    connection = duckdb.connect()
    connection.execute(LOAD.format(size=os.path.getsize(document) + 1), [document])
    for name, query in TABLES.items():
        connection.execute(f"copy ({query}) to '{out}/{name}.csv' (header)")


main()
