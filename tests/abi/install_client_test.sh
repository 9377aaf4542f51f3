#!/usr/bin/env bash
# A user's program in C++: installs the build into an empty folder, compiles examples/tables.cpp
# and each installed header there with the CMake package alone, and compares what the program prints.
#   install_client_test.sh BUILD_DIRECTORY SOURCE_DIRECTORY
set -euo pipefail

prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix/installed" >/dev/null
mkdir -p "$prefix/program/client" && cd "$prefix/program"
cp "$prefix/installed/share/qvejmap/examples/tables.cpp" .
echo '#error not this one' | tee client/document.h client/engine.h >error.h
(cd "$prefix/installed/include" && find qvejmap/client -name '*.h' -printf '#include <%p>\n' | sort) \
    >headers.cpp
[ "$(wc -l <headers.cpp)" -gt 10 ]
cat >CMakeLists.txt <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES C CXX)
find_package(qvejmap 1.0 REQUIRED COMPONENTS client)
add_executable(tables tables.cpp headers.cpp)
target_include_directories(tables PRIVATE .)
target_compile_options(tables PRIVATE -Wall -Wextra -Werror)
target_link_libraries(tables PRIVATE qvejmap::client)
CMAKE
cmake -B built -DCMAKE_PREFIX_PATH="$prefix/installed" >log 2>&1 &&
    cmake --build built >>log 2>&1 || { cat log; exit 1; }

./built/tables "$2/examples/orders.json" >printed
diff - printed <<ROWS
orders
	ordinal_root	ordinal_orders	id	paid
	1	1	1001	1
	1	2	1002	0
orders_customer
	ordinal_root	ordinal_orders	ordinal_customer	name	city
	1	1	1	Ada Berg	Oslo
	1	2	2	Li Wei	
orders_items
	ordinal_root	ordinal_orders	ordinal_items	sku	quantity	price
	1	1	1	lamp	2	19.5
	1	1	2	desk	1	240
	1	2	3	chair	4	85.25
orders_tags
	ordinal_root	ordinal_orders	ordinal_tags	tags1	tags2
	1	1	1	gift	fragile
	1	2	2	pickup	
ROWS
for mistake in '[1,' '{"a":}' $'["\xff"]'; do
    printf '%s' "$mistake" | ./built/tables - && exit 1
done 2>printed
diff - printed <<MISTAKES
tables: <stdin>:1:4: the document ends before a complete object or array
    [1,
       ^
tables: <stdin>:1:6: a value was expected
    {"a":}
         ^
tables: <stdin>:1:3: invalid UTF-8
    ["�"]
      ^
MISTAKES
