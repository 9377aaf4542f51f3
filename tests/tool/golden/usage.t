$ qvejmap --help
  Reads a JSON document and presents it as tables.
  
  Usage: qvejmap VERB FILE [OPTIONS]
         qvejmap help [VERB]
  
  Verbs:
    tables FILE...                 list the tables; on a terminal, as a tree
    map FILE... [-o OUT]           print the map of tables and columns as JSON
    map check MAP [FILE]           is a map well formed? does it fit FILE?
    map diff A B                   what one map has and another has not
    map merge A B... [-o OUT]      one map of all tables and columns of several
    map explain FILE TABLE.COLUMN  why a column is what it is, with places
    read FILE TABLE                print the rows of a table (name, path, ALLDATA)
    convert FILE... -o OUT         write every table: files, SQLite, Parquet, ...
    report FILE... -o OUT          one page of HTML: picture, columns, rows
    diagram FILE... [-o OUT]       the tables and their keys as a picture
    find FILE...                   where values are: line, column, path, value
    records FILE                   print every record: kind, path, value
    shape FILE [-o OUT]            print the shape that suits it, as rules
    check FILE...                  is it well formed? --account: where values go
    completion bash|zsh|fish       print the completion of a shell
  
  Options of tables:
    --names                 bare names, one a line
    --columns               a line a column: table, column, type, length in
                            bytes, path
  
  Options of map, shape, convert, report and diagram:
    -o,--output OUT         map: file to write; shape: file to write; report:
                            file to write, such as report.html; diagram: file to
                            write, such as tables.svg; convert: a directory, made
                            when missing, or a file NAME.sqlite, .db, .xlsx or of
                            one table .parquet, .arrow, or
                            postgresql://HOST/DATABASE
    --exact                 map: columns with numbers that a double does not keep
                            are CHARACTER
    --compact               map: all in one line, without blanks
    --verbose               map check: list every column that is left out
    --alldata               convert: ALLDATA too (every value with its full path)
  
  Options of convert:
    --per-file              a directory OUT/NAME for each input, as if each were
                            converted alone (default: all inputs are one data set,
                            with a column source)
    --threads N             at most N threads (default: as many as there are
                            cores)
  
  Options of read and find:
    --limit N               read: at most N rows; find: at most N matches
    --value TEXT            find: values whose whole text this is: of a string
                            what it stands for, else as the document has it
    --regex RE              find: values in whose text this regular expression
                            matches
    --ignore-case           find: --value and --regex in any case
  
  Options of convert and check:
    --account               count what becomes of every value, and tell which are
                            in no cell (exit code 1)
  
  Rows and tables:
    --table GLOB ...        only tables with names like this; * stands for any
                            characters, ? for one (may be given again)
    --path PATTERN ...      only tables, or values, with paths like this, as
                            /root/**/items; * stands for one name, ** for any
                            number (may be given again)
    --map FILE              use this map in place of the automatic one (check
                            takes it with --account)
    --rejects FILE          a line of CSV for each value that its column cannot
                            take
    --ordinals N            keep the N deepest ordinal columns of each table
                            (default: all); 0: none, 1: orders_items has
                            ordinal_items alone
    --alldata-name NAME     name of the table ALLDATA
    --naming map|original   names of tables and columns: those of the map
                            (default), or original, the document's own
    --retain                columns keep their value from row to row (check takes
                            it with --account)
    --carry                 a column of a parent has the value of the row's own
                            parent, wherever it stands (check takes it with
                            --account)
  
  Output:
    --format csv|tsv|ndjson|sqlite|parquet|arrow|postgres|xlsx|json|svg|dot|mermaid|dbml
                            read: what rows are written as (default: csv);
                            convert: what rows are written as (default: by OUT,
                            else csv); tables: one JSON object, for programs;
                            diagram: kind of picture (default: by OUT, else svg)
    --null TEXT             CSV and TSV: what stands for null and for no value
                            (default: nothing, as for an empty text)
    --gzip                  compress the files of csv, tsv and ndjson: .gz
    --zstd                  the same: .zst
    --dates auto|off        columns whose texts all are dates or times have that
                            type: auto (default), or off
    --schema NAME           of a PostgreSQL database, made when missing (default:
                            the first of its search path)
    --replace               tables that SQLite or PostgreSQL has already are made
                            anew
    --append                their rows are added to such tables
  
  Reading the document:
    --lines                 JSON Lines: a value in each line, no more and no
                            less, or nothing (default: by the name, .jsonl or
                            .ndjson, or the first values)
    --skip-bad-lines        JSON Lines: leave out lines that are no JSON, and
                            tell (exit code 1); --rejects lists them
    --skip-bad-files        leave out files that cannot be read or are not well
                            formed, and tell (exit code 1)
    --encoding NAME         encoding of FILE, any that ICU names (default: auto,
                            by a byte order mark or zero bytes, else UTF-8)
    --invalid error|replace bytes that are wrong in the encoding: error
                            (default), or replace, by U+FFFD
    --depth N               deepest nesting allowed, 0 for any (default: 1000)
    --max-paths N           most distinct paths, 0 for any (default: 10000000)
    --compress              keep the records compressed
    --memory SIZE           memory to use (default: what the machine has free)
    --keep-free SIZE        memory to leave free; below it records go to a file
                            (default: half of --memory, else an eighth of what is
                            free)
    --cache FILE            a new or empty file for such records; it stays
                            (default: a private one in $TMPDIR or /tmp, removed)
  
  Shape of the document (docs/FORMATS.md says what each rule means):
    --shape auto|FILE       auto: the rules that qvejmap shape prints; else a
                            file of rules, one a line; may be repeated
    --rows RULE             PATH [as KEY] [except NAME...]: the members there, or
                            the elements, become rows
    --inline PATH           the members of the object there become members of the
                            one around it
    --as-text PATH          the object or array there becomes its JSON as a
                            string
    --drop PATH             leave out what is there
    --only PATH             leave out all but what is there
    --keep PATH             undo earlier rules for what is there
    --drop-empty            leave out members that are empty objects or arrays
  
  Finding a shape (shape, --shape auto):
    --key-names N           names with scalars of one kind may be data from N
                            names on (default: 20; three times as many in a single
                            object)
    --key-containers N      names with containers of one shape are data from N
                            names on (default: 6)
    --fixed-length N        arrays of one length stay columns up to N elements
                            (default: 4)
    --inline-columns N      objects become columns of their parents up to N
                            columns (default: 16)
  
  General:
    --debug KEYWORDS        notes of the engine: MAP, READ, COMPRESSION, ALL,
                            ...; "-MAP" leaves one out
    --force                 replace existing files, and remove those of an
                            earlier convert
    --plan                  say on standard error how the rows come about: in one
                            walk over the text, in two readings, or from records
    --progress json         json: a line of JSON a second on standard error, for
                            programs (default: a line that says how far it is, on
                            a terminal and after a second; neither with -q)
    -q,--quiet              no summary; what is lost is still said
    -h,--help               the verbs and options; with VERB what that verb takes
    --version               the version
  
  FILE may be "-" for standard input, and may be compressed with gzip or zstd.
  SIZE is a number of bytes, or of 1024 bytes and its powers with K, M, G or T.
  Options work in any position.  A file that is named like a verb is written
  ./map.
  
  Exit codes: 0 done, 1 done but some values were rejected, cut, overwritten or
  strayed or, with --account, lost, or --skip-bad-lines or --skip-bad-files left
  some out (map check, map diff: not the same), 2 wrong usage, 3 not valid JSON,
  4 no such table or trouble with the map, 5 trouble with a file, 6 a limit was
  reached.
$ qvejmap orders.json -q convert --help | sed -n '1,/^Reading/p'
  qvejmap convert: write every table: files, SQLite, Parquet, ...
  
  Usage: qvejmap convert FILE... -o OUT [OPTIONS]
  
  Options of convert:
    -o,--output OUT         a directory, made when missing, or a file
                            NAME.sqlite, .db, .xlsx or of one table .parquet,
                            .arrow, or postgresql://HOST/DATABASE
    --alldata               ALLDATA too (every value with its full path)
    --per-file              a directory OUT/NAME for each input, as if each were
                            converted alone (default: all inputs are one data set,
                            with a column source)
    --threads N             at most N threads (default: as many as there are
                            cores)
    --account               count what becomes of every value, and tell which are
                            in no cell (exit code 1)
  
  Rows and tables:
    --table GLOB ...        only tables with names like this; * stands for any
                            characters, ? for one (may be given again)
    --path PATTERN ...      only tables, or values, with paths like this, as
                            /root/**/items; * stands for one name, ** for any
                            number (may be given again)
    --map FILE              use this map in place of the automatic one (check
                            takes it with --account)
    --rejects FILE          a line of CSV for each value that its column cannot
                            take
    --ordinals N            keep the N deepest ordinal columns of each table
                            (default: all); 0: none, 1: orders_items has
                            ordinal_items alone
    --alldata-name NAME     name of the table ALLDATA
    --naming map|original   names of tables and columns: those of the map
                            (default), or original, the document's own
    --retain                columns keep their value from row to row (check takes
                            it with --account)
    --carry                 a column of a parent has the value of the row's own
                            parent, wherever it stands (check takes it with
                            --account)
  
  Output:
    --format csv|tsv|ndjson|sqlite|parquet|arrow|postgres|xlsx
                            what rows are written as (default: by OUT, else csv)
    --null TEXT             CSV and TSV: what stands for null and for no value
                            (default: nothing, as for an empty text)
    --gzip                  compress the files of csv, tsv and ndjson: .gz
    --zstd                  the same: .zst
    --dates auto|off        columns whose texts all are dates or times have that
                            type: auto (default), or off
    --schema NAME           of a PostgreSQL database, made when missing (default:
                            the first of its search path)
    --replace               tables that SQLite or PostgreSQL has already are made
                            anew
    --append                their rows are added to such tables
  
  Reading the document:
# Each verb lists what it takes.
$ for verb in tables map 'map check' 'map diff' 'map merge' 'map explain' read convert find records shape check completion; do
>     echo $verb: $(qvejmap help $verb | grep -o '^  -[-a-z,]*')
> done
  tables: --names --columns --table --path --map --ordinals --alldata-name --naming --format --lines --skip-bad-lines --skip-bad-files --encoding --invalid --depth --max-paths --compress --memory --keep-free --cache --shape --rows --inline --as-text --drop --only --keep --drop-empty --key-names --key-containers --fixed-length --inline-columns --debug --progress -q,--quiet -h,--help --version
  map: -o,--output --exact --compact --table --path --ordinals --lines --skip-bad-lines --skip-bad-files --encoding --invalid --depth --max-paths --compress --memory --keep-free --cache --shape --rows --inline --as-text --drop --only --keep --drop-empty --key-names --key-containers --fixed-length --inline-columns --debug --force --progress -q,--quiet -h,--help --version
  map check: --verbose --lines --encoding --invalid --depth --max-paths --compress --memory --keep-free --cache --shape --rows --inline --as-text --drop --only --keep --drop-empty --key-names --key-containers --fixed-length --inline-columns --debug --progress -q,--quiet -h,--help --version
  map diff: -q,--quiet -h,--help --version
  map merge: -o,--output --compact --force -q,--quiet -h,--help --version
  map explain: --map --lines --encoding --invalid --depth --max-paths --compress --memory --keep-free --cache --shape --rows --inline --as-text --drop --only --keep --drop-empty --key-names --key-containers --fixed-length --inline-columns --debug --progress -q,--quiet -h,--help --version
  read: --limit --map --rejects --ordinals --alldata-name --naming --retain --carry --format --null --lines --skip-bad-lines --encoding --invalid --depth --max-paths --compress --memory --keep-free --cache --shape --rows --inline --as-text --drop --only --keep --drop-empty --key-names --key-containers --fixed-length --inline-columns --debug --force --plan --progress -q,--quiet -h,--help --version
  convert: -o,--output --alldata --per-file --threads --account --table --path --map --rejects --ordinals --alldata-name --naming --retain --carry --format --null --gzip --zstd --dates --schema --replace --append --lines --skip-bad-lines --skip-bad-files --encoding --invalid --depth --max-paths --compress --memory --keep-free --cache --shape --rows --inline --as-text --drop --only --keep --drop-empty --key-names --key-containers --fixed-length --inline-columns --debug --force --plan --progress -q,--quiet -h,--help --version
  find: --limit --value --regex --ignore-case --path --lines --skip-bad-lines --skip-bad-files --encoding --invalid --depth -q,--quiet -h,--help --version
  records: --lines --skip-bad-lines --encoding --invalid --depth --max-paths --compress --memory --keep-free --cache --shape --rows --inline --as-text --drop --only --keep --drop-empty --key-names --key-containers --fixed-length --inline-columns --debug --progress -q,--quiet -h,--help --version
  shape: -o,--output --lines --encoding --invalid --depth --key-names --key-containers --fixed-length --inline-columns --force --progress -q,--quiet -h,--help --version
  check: --account --map --retain --carry --lines --skip-bad-lines --skip-bad-files --encoding --invalid --depth --max-paths --compress --memory --keep-free --cache --shape --rows --inline --as-text --drop --only --keep --drop-empty --key-names --key-containers --fixed-length --inline-columns --debug --progress -q,--quiet -h,--help --version
  completion: -q,--quiet -h,--help --version

# help VERB is what VERB --help is, and no page is wider than 80 columns.
$ for verb in '' tables map 'map check' 'map diff' 'map merge' 'map explain' read convert find records shape check completion; do
>     qvejmap $verb --help > asked; qvejmap help $verb | cmp - asked; grep -E '.{81}' asked
> done
    --format csv|tsv|ndjson|sqlite|parquet|arrow|postgres|xlsx|json|svg|dot|mermaid|dbml
? 1
$ qvejmap help map check | head -3
  qvejmap map check: is a map well formed? does it fit FILE?
  
  Usage: qvejmap map check MAP [FILE] [OPTIONS]
$ qvejmap help map chek; qvejmap help map check x
! qvejmap: no verb is named 'map chek'; did you mean map check? (qvejmap --help tells more)
! qvejmap: no verb is named 'map check x'; did you mean map check? (qvejmap --help tells more)
? 2
$ qvejmap help tables --nonsense
! qvejmap: no option is named '--nonsense' (qvejmap --help tells more)
? 2

# An option of all verbs, and one of those that read a document.
$ qvejmap map orders.json -q > m; qvejmap map diff m m -q
$ qvejmap map merge m m --depth 3
! qvejmap: --depth belongs to tables, map, map check, map explain, read, convert, report, diagram, find, records, shape, check, not to map merge (qvejmap --help tells more)
? 2

# What is nearly a verb or an option is told.
$ qvejmap convrt orders.json -o out
! qvejmap: no verb is named 'convrt'; did you mean convert? (qvejmap --help tells more)
? 2
$ qvejmap orders.json convrt -o out
! qvejmap: no verb is named 'convrt'; did you mean convert? (qvejmap --help tells more)
? 2
$ qvejmap map chek orders.json
! qvejmap: map: no file is named 'chek'; did you mean map check? (qvejmap --help tells more)
? 2
$ qvejmap read orders.json orders --formt=csv
! qvejmap: no option is named '--formt'; did you mean --format, --force? (qvejmap --help tells more)
? 2
$ qvejmap read orders.json orders --frce; qvejmap read orders.json orders -x
! qvejmap: no option is named '--frce'; did you mean --force? (qvejmap --help tells more)
! qvejmap: no option is named '-x' (qvejmap --help tells more)
? 2

# Ordinals: the deepest stay.
$ for n in 0 1 2 9; do qvejmap read orders.json orders_items --ordinals $n | head -1; done
  sku,quantity,price\r
  ordinal_items,sku,quantity,price\r
  ordinal_orders,ordinal_items,sku,quantity,price\r
  ordinal_root,ordinal_orders,ordinal_items,sku,quantity,price\r

$ qvejmap map --help | grep -A1 'of map'
  Options of map:
    -o,--output OUT         file to write
$ qvejmap --version
  qvejmap 1.0.0

$ qvejmap
! qvejmap: there is no verb (qvejmap --help tells more)
? 2
$ qvejmap orders.json
! qvejmap: no verb is named 'orders.json' (qvejmap --help tells more)
? 2
$ qvejmap tables
! qvejmap: tables: FILE is missing (qvejmap --help tells more)
? 2
$ qvejmap read orders.json
! qvejmap: read: TABLE is missing (qvejmap --help tells more)
? 2
$ qvejmap check orders.json more
! qvejmap: more: No such file or directory
? 5
$ qvejmap tables map
! qvejmap: there are two verbs, tables and map; a file of that name is ./map (qvejmap --help tells more)
? 2
$ cp orders.json map; qvejmap tables ./map --names | head -1
  orders

$ qvejmap convert orders.json
! qvejmap: convert: -o OUT is missing (qvejmap --help tells more)
? 2
$ qvejmap map check m ''; qvejmap map merge a b c ''
! qvejmap: map check: the name of FILE is empty (qvejmap --help tells more)
! qvejmap: map merge: the name of B is empty (qvejmap --help tells more)
? 2
$ qvejmap tables ''; qvejmap map diff orders.json ''; qvejmap read orders.json ''
! qvejmap: tables: the name of FILE is empty (qvejmap --help tells more)
! qvejmap: map diff: the name of B is empty (qvejmap --help tells more)
! qvejmap: no table named "" (qvejmap tables lists them)
? 4
$ qvejmap convert orders.json -o ''
! qvejmap: --output: the name is empty (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --limit 1
! qvejmap: --limit belongs to read, find, not to tables (qvejmap --help tells more)
? 2
$ qvejmap read orders.json orders -o x
! qvejmap: --output belongs to map, map merge, shape, convert, report, diagram, not to read (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --names --columns
! qvejmap: --names and --columns exclude each other (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --nonsense
! qvejmap: no option is named '--nonsense' (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --format
! qvejmap: --format: 1 required csv|tsv|ndjson|sqlite|parquet|arrow|postgres|xlsx|json|svg|dot|mermaid|dbml missing (qvejmap --help tells more)
? 2
$ qvejmap read orders.json orders --format xml
! qvejmap: --format: 'xml' is none of csv, tsv, ndjson (qvejmap --help tells more)
? 2
$ qvejmap read orders.json orders --limit -1
! qvejmap: --limit: '-1' is not a whole number (qvejmap --help tells more)
? 2
$ qvejmap read orders.json orders --limit 1e3
! qvejmap: --limit: '1e3' is not a whole number (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --ordinals 99999999999999999999
! qvejmap: --ordinals: '99999999999999999999' is not a whole number (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --depth x
! qvejmap: --depth: 'x' is not a whole number (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --memory 31M
! qvejmap: --memory: at least 32M are needed (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --memory 3X
! qvejmap: --memory: '3X' is not a size such as 500000, 64K, 100M or 2G (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --keep-free 99999999999G
! qvejmap: --keep-free: '99999999999G' is not a size such as 500000, 64K, 100M or 2G (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --alldata-name 12345678901234567890123456789012345678901
! qvejmap: --alldata-name: at most 40 bytes (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --debug nonsense
! qvejmap: --debug: 'nonsense' is none of RLMEM, MAP, MAPGEN, MAPVAL, LEVEL, PARSE, PATH, COMPRESSION, MEMORY, INSERTPATH, READ, READINIT, READRESET, USERMAP, ALLDATA, ALL (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json --debug -all 2>&1 | cut -c 1-50
  qvejmap: --debug: '-all' is none of RLMEM, MAP, MA
$ qvejmap tables orders.json --cache ''
! qvejmap: --cache: the name is empty (qvejmap --help tells more)
? 2

# Options that do nothing for a verb are refused.
$ qvejmap check orders.json --format ndjson
! qvejmap: --format belongs to read, convert, tables, diagram, not to check (qvejmap --help tells more)
? 2
$ qvejmap check orders.json --ordinals 1
! qvejmap: --ordinals belongs to tables, map, read, convert, report, diagram, not to check (qvejmap --help tells more)
? 2
$ qvejmap records orders.json --alldata-name all
! qvejmap: --alldata-name belongs to tables, read, convert, not to records (qvejmap --help tells more)
? 2
$ qvejmap check orders.json --retain
! qvejmap: check: --retain needs --account (qvejmap --help tells more)
? 2
$ qvejmap check orders.json --retain --account | tail -1
  20 values = 20 in cells + 0 overwritten + 0 no column + 0 no row + 0 rejected

# Messages never hold control characters.
$ qvejmap "$(printf 'a\033b')"
! qvejmap: no verb is named 'a\u001bb' (qvejmap --help tells more)
? 2
$ qvejmap tables orders.json "--$(printf 'a\033b')"
! qvejmap: no option is named '--a\u001bb' (qvejmap --help tells more)
? 2
$ qvejmap read orders.json "$(printf 'a\033b')"
! qvejmap: no table named a\u001bb (qvejmap tables lists them)
? 4
$ qvejmap check orders.json --encoding "$(printf 'a\033b')"
! qvejmap: no encoding is named 'a\u001bb'
? 2

$ for name in 'a"b\c' $(printf '\b\001\037\177') $(printf '\302\200\302\237\302\240') é日🂡 $(printf '\377x\346\227') $(printf '\355\240\200!'); do qvejmap tables "$name"; done
! qvejmap: a"b\c: No such file or directory
! qvejmap: \b\u0001\u001f\u007f: No such file or directory
! qvejmap: \u0080\u009f : No such file or directory
! qvejmap: é日🂡: No such file or directory
! qvejmap: �x�: No such file or directory
! qvejmap: ���!: No such file or directory
? 5

# Notes of the engine.
$ echo '{"a":"\u001b"}' | qvejmap check - --debug map,,path,-map -q
! generatePathVariableString [/root]
! generatePathVariableString [/root/a \u001b]
! Path info dump
! path [/root/a                       ] count 1 processed FALSE
! Path info dump end
! totals: records 2, bytes 57, stored bytes 57, blocks 1, blocks on disk 0
