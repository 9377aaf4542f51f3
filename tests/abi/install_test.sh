#!/usr/bin/env bash
# A user's program: installs the build into an empty folder, compiles examples/rows.c there with
# pkg-config alone, and compares what it prints.
#   install_test.sh BUILD_DIRECTORY SOURCE_DIRECTORY
set -euo pipefail

prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" >/dev/null
export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name qvejmap.pc)")
# shellcheck disable=SC2046  # several words are meant
cc -std=c11 -Wall -Wextra -Werror "$prefix/share/qvejmap/examples/rows.c" -o "$prefix/rows" \
    $(pkg-config --cflags --libs qvejmap)
rows() {
    LD_LIBRARY_PATH=$(pkg-config --variable=libdir qvejmap) \
        "$prefix/rows" "$(pkg-config --variable=moduledir qvejmap)" "$1" >"$prefix/printed" 2>&1
}
rows "$prefix" && exit 1  # a folder opens and cannot be read
diff - "$prefix/printed" <<<"rows: $prefix: the file could not be read"
rows "$2/examples/orders.json"
diff - "$prefix/printed" <<'ROWS'
orders
  ordinal_root | ordinal_orders | id | paid
  1 | 1 | 1001 | 1
  1 | 2 | 1002 | 0
orders_customer
  ordinal_root | ordinal_orders | ordinal_customer | name | city
  1 | 1 | 1 | Ada Berg | Oslo
  1 | 2 | 2 | Li Wei | 
orders_items
  ordinal_root | ordinal_orders | ordinal_items | sku | quantity | price
  1 | 1 | 1 | lamp | 2 | 19.5
  1 | 1 | 2 | desk | 1 | 240
  1 | 2 | 3 | chair | 4 | 85.25
orders_tags
  ordinal_root | ordinal_orders | ordinal_tags | tags1 | tags2
  1 | 1 | 1 | gift | fragile
  1 | 2 | 2 | pickup | 
ROWS
