"""Documents for the tests, and the tool's own output of them."""

import glob
import os
import subprocess
import tempfile

import pyarrow.ipc

SOURCE = os.path.abspath(os.path.join(os.path.dirname(__file__), "../../.."))
TOOL = os.environ.get("QVEJMAP_TOOL", "")  # "": there is none to compare with
SHARED = os.path.join(SOURCE, "../shared/data")
REAL = [
    "amazon_cellphones.ndjson", "apache_builds.json", "canada.json", "citm_catalog.json", "github_events.json",
    "google_maps_api_response.json", "instruments.json", "numbers.json", "random.json", "twitter.json",
    "update-center.json", "vega_budget.json", "vega_earthquakes.json",
]

ODD = {
    "nulls": b'[{"a":1,"b":null},{"a":null},{},{"b":null,"c":"x"}]',
    "booleans": b'[{"a":true,"m":true},{"a":false,"m":2},{"a":null},{"m":0.5}]' * 1,
    "nine booleans": b"[" + b",".join(b'{"n":%d,"a":%s}' % (i, b"null" if i == 8 else b"true") for i in range(11)) + b"]",
    "limits": b'[{"a":9223372036854775807,"b":-9223372036854775808,"c":9223372036854775808,"d":1e308},'
              b'{"a":-9223372036854775808,"b":0,"c":-1,"d":-0.0}]',
    "decimals": b'[{"a":12345678901234567.25,"b":99999999999999999999999999999999999999},'
                b'{"a":-0.01,"b":-99999999999999999999999999999999999999},{"a":0,"b":1}]',
    "too wide for a decimal": b'[{"a":1e400},{"a":0.1234567890123456789012345678901234567890123}]',
    "dates": b'[{"d":"2024-02-29","w":"2024-02-30"},{"d":"0001-01-01","w":"x"},{"d":"9999-12-31"},{"d":null}]',
    "instants": b'[{"s":"1969-12-31T23:59:59Z","m":"2024-01-01T00:00:00.5","u":"1960-01-01T00:00:00.000001Z",'
                b'"n":"1677-09-22T00:00:00.123456789Z"},{"n":"2262-04-11T00:00:00Z"}]',
    "wide texts": b'[{"t":"%s"},{"t":""},{"t":"\xc3\xa9\xf0\x9f\x98\x80"}]' % (b"x" * 40000),
    "odd names": b'[{"":1,"a b":2,"A":3,"a":4,"<b>":5,"\xc3\xa9":6,"x/y":7,"ordinal_root":8}]',
    "empty": b"{}",
    "empty containers": b'{"a":[],"b":{},"c":[{},{}]}',
    "nested": b'{"orders":[{"id":1,"items":[{"sku":"A","p":1.5},{"sku":"B"}]},{"id":2,"items":[{"sku":null}]}]}',
    "lines": b'{"a":1}\n{"a":2,"b":[1,2]}\n{"b":[]}\n',
}


def large():
    """More bytes than are recorded, so that rows are read from the text again."""
    row = b'{"id":%d,"name":"' + b"n" * 400 + b'","items":[{"sku":"x","p":%d.25},{"sku":null}],"on":"2024-01-0%d"}'
    return b"[" + b",".join(row % (i, i, i % 9 + 1) for i in range(12000)) + b"]"


def arrow_files_of(text_or_file, *options):
    """The tables that the tool makes of it, by name."""
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out")
        piped = isinstance(text_or_file, bytes)
        done = subprocess.run(
            [TOOL, "convert", "-" if piped else text_or_file, "--format", "arrow", "-o", out, *options],
            input=text_or_file if piped else None, capture_output=True,
        )
        assert done.returncode in (0, 1), done.stderr  # 1: values were cut
        tables = [pyarrow.ipc.open_file(file).read_all() for file in glob.glob(out + "/*.arrow")]
    return {table.schema.metadata.get(b"qvejmap.table", b"").decode(): table for table in tables}


def can_compare():
    return TOOL and os.path.exists(os.path.join(os.path.dirname(TOOL), "qvejmap_to_arrow.so"))
