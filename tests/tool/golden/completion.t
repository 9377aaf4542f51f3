# What is offered for the last word: the word, a TAB, what it means; ":files" for the names of files.
$ offers() { qvejmap --complete -- "$@"; }
> words() { echo $(offers "$@" | cut -f 1); }
> offers ''
> for begin in '' map 'orders.json' 'orders.json tables' 'help' 'help map' 'help read' 'read' \
>     'read orders.json' 'read orders.json orders' 'orders.json read' 'map orders.json' \
>     'map check' 'map check m' 'map check m orders.json' 'map merge a b c' 'map explain orders.json' completion; do
>     echo "$begin: $(words $begin '')"
> done
  tables\tlist the tables; on a terminal, as a tree
  map\tprint the map of tables and columns as JSON
  read\tprint the rows of a table (name, path, ALLDATA)
  convert\twrite every table: files, SQLite, Parquet, ...
  report\tone page of HTML: picture, columns, rows
  diagram\tthe tables and their keys as a picture
  find\twhere values are: line, column, path, value
  records\tprint every record: kind, path, value
  shape\tprint the shape that suits it, as rules
  check\tis it well formed? --account: where values go
  completion\tprint the completion of a shell
  help\twhat a verb takes
  : tables map read convert report diagram find records shape check completion help
  map: check diff merge explain :files
  orders.json: tables map read convert report diagram find records shape check completion help
  orders.json tables: :files
  help: tables map read convert report diagram find records shape check completion
  help map: check diff merge explain
  help read: 
  read: :files
  read orders.json: 
  read orders.json orders: 
  orders.json read: 
  map orders.json: :files
  map check: :files
  map check m: :files
  map check m orders.json: 
  map merge a b c: :files
  map explain orders.json: 
  completion: bash zsh fish

# Values of options, as words of their own and after "=".
$ words() { echo $(qvejmap --complete -- "$@" | cut -f 1); }
> words read f orders --format ''; words --format=; words --naming=ori; words check --invalid ''
> words tables f --shape ''; words tables --shape=; words convert f -o ''; words --map=; words -q=
> words tables --limit ''; words tables --names ''; words tables --quiet=
> words --format csv ''; words -o map check ''; words --names - tables ''
  csv tsv ndjson
  --format=csv --format=tsv --format=ndjson --format=sqlite --format=parquet --format=arrow --format=postgres --format=xlsx --format=json --format=svg --format=dot --format=mermaid --format=dbml
  --naming=map --naming=original
  error replace
  auto :files
  --shape=auto :files
  :files
  :files
  
  
  :files
  
  tables map read convert report diagram find records shape check completion help
  :files
  :files

# Options: those of the verb, with what they mean there.
$ qvejmap --complete -- shape orders.json --k
  --output\tfile to write
  --lines\tJSON Lines: a value in each line, no more and no less, or nothing (default: by the name, .jsonl or .ndjson, or the first values)
  --encoding\tencoding of FILE, any that ICU names (default: auto, by a byte order mark or zero bytes, else UTF-8)
  --invalid\tbytes that are wrong in the encoding: error (default), or replace, by U+FFFD
  --depth\tdeepest nesting allowed, 0 for any (default: 1000)
  --key-names\tnames with scalars of one kind may be data from N names on (default: 20; three times as many in a single object)
  --key-containers\tnames with containers of one shape are data from N names on (default: 6)
  --fixed-length\tarrays of one length stay columns up to N elements (default: 4)
  --inline-columns\tobjects become columns of their parents up to N columns (default: 16)
  --force\treplace existing files, and remove those of an earlier convert
  --progress\tjson: a line of JSON a second on standard error, for programs (default: a line that says how far it is, on a terminal and after a second; neither with -q)
  --quiet\tno summary; what is lost is still said
  --help\tthe verbs and options; with VERB what that verb takes
  --version\tthe version
$ qvejmap --complete -- map check --v | grep -e --verbose; qvejmap --complete -- map merge - | head -1
  --verbose\tmap check: list every column that is left out
  --output\tfile to write
$ for verb in '' tables 'map check' 'map merge' read convert find shape completion; do
>     qvejmap --complete -- $verb - | cut -f 1 | sort > offered
>     qvejmap help $verb | grep -o -e '^  [-a-z,]*--[-a-z]*' | sed 's/.*--/--/' | sort | diff offered -
> done
$ for line in '-- --q' 'tables -- --q' 'tables -- -q' 'tables -- -q --q'; do
>     echo $(qvejmap --complete -- $line | cut -f 1)
> done; qvejmap --complete | wc -l
  tables map read convert report diagram find records shape check completion help
  :files
  :files
  :files
  12

$ qvejmap completion
! qvejmap: completion: bash|zsh|fish is missing (qvejmap --help tells more)
? 2
$ qvejmap completion csh
! qvejmap: completion: 'csh' is none of bash, zsh, fish (qvejmap --help tells more)
? 2
$ qvejmap completion bash zsh
! qvejmap: completion: 'zsh' is one word too many (qvejmap --help tells more)
? 2
$ qvejmap tables --complet; qvejmap tables --man-pag
! qvejmap: no option is named '--complet'; did you mean --compact, --compress? (qvejmap --help tells more)
! qvejmap: no option is named '--man-pag' (qvejmap --help tells more)
? 2
