# Notes of the engine, by keyword.
$ cat > notes <<'END'
> # notes KEYWORDS VERB...: the notes.
> words=$1; shift
> qvejmap "$@" --debug "$words" 2>&1 > /dev/null | sed 's/^! //'
> END
$ echo '{"a":[{"b":1,"c":{}}],"s":"xy"}' > a.json
> printf '{"DATASETS":[{"dsname":"T","TABLEPATH":"/root/a","VARIABLES":[{"Note":"skip","NAME":"o","PATH":"/root/a"},
> {"NAME":"b","TYPE":"NUMERIC","PATH":"/root/a/b","FORMAT":["fixed",10,2],"OPTIONS":["retain"]},
> {"NAME":"c","TYPE":"CHARACTER","PATH":"/root/s","LENGTH":3,"LABEL":"A label","INFORMAT":["upper",4]}]},
> {"DSNAME":"one","TABLEPATH":"/","VARIABLES":[{"NAME":"x","TYPE":"NUMERIC","PATH":"x"}]}]}' > m.json

# The automatic map; a user's map, and how it was read.
$ sh notes MAP tables a.json
  MAP DUMP
    dataset [a]
      ordinal   var [ordinal_root] path [/root]
      ordinal   var [ordinal_a] path [/root/a]
      numeric   var [b] path [/root/a/b]
    dataset [a_c]
      ordinal   var [ordinal_root] path [/root]
      ordinal   var [ordinal_a] path [/root/a]
      ordinal   var [ordinal_c] path [/root/a/c]
    dataset [root]
      ordinal   var [ordinal_root] path [/root]
      character var [s] path [/root/s]  maxlen 2
  MAP DUMP END
  totals: records 6, bytes 195, stored bytes 195, blocks 1, blocks on disk 0
$ sh notes USERMAP tables a.json --map m.json
  USER MAP DUMP
   dataset     [T] 3 variables
    ordinal    [o]
      path     [/root/a]
    numeric    [b]
      path     [/root/a/b]
      format   [fixed 10 2]
      RETAIN
    character  [c]
      maxlen   3
      path     [/root/s]
      label    [A label]
      informat [upper 4 0]
  
   tablePath   [/root/a]
  
   dataset     [one] 1 variable
    numeric    [x]
      path     [x]
  
   tablePath   [/]
  
  USER MAP DUMP END
  getAutomapLengths: variable [c] in dataset [T] user length 3, automap length 2
  USER post automap lengths MAP DUMP
   dataset     [T] 3 variables
    ordinal    [o]
      path     [/root/a]
    numeric    [b]
      path     [/root/a/b]
      format   [fixed 10 2]
      RETAIN
    character  [c]
      maxlen   3
      path     [/root/s]
      label    [A label]
      informat [upper 4 0]
  
   tablePath   [/root/a]
  
   dataset     [one] 1 variable
    numeric    [x]
      path     [x]
  
   tablePath   [/]
  
  USER post automap lengths MAP DUMP END
   charInformatDefaultWidth data set [T] var [c] informat [upper] len 5
  totals: records 6, bytes 195, stored bytes 195, blocks 1, blocks on disk 0
$ sh notes MAPVAL tables a.json --map m.json
  ---Object Start
  vstate to S_WANT_DATASETS
  ---fstring [DATASETS]
  vstate to S_WANT_DATASETS_OPEN
  ---Array Start
  vstate to S_IN_DATASETS
  ---Object Start
  vstate to S_IN_A_DATASET
  ---fstring [DSNAME]
  vstate to S_WANT_DSNAMESTR
  ---fstring [T]
  vstate to S_IN_A_DATASET
            DSNAME <- T
  ---fstring [TABLEPATH]
  vstate to S_WANT_TABLEPATHSTR
  ---fstring [/root/a]
  vstate to S_IN_A_DATASET
            TABLEPATH <- /root/a
  ---fstring [VARIABLES]
  vstate to S_WANT_VARIABLES_OPEN
  ---Array Start
  vstate to S_IN_VARIABLES
  ---Object Start
  vstate to S_IN_A_VARIABLE
  ---fstring [NOTE]
  ---fstring [skip]
  ---fstring [NAME]
  vstate to S_WANT_NAMESTR
  ---fstring [o]
  vstate to S_IN_A_VARIABLE
            NAME <- o
  ---fstring [PATH]
  vstate to S_WANT_PATHSTR
  ---fstring [/root/a]
  vstate to S_IN_A_VARIABLE
            PATH <- /root/a
  ---Object End
  vstate to S_IN_VARIABLES
  ---Object Start
  vstate to S_IN_A_VARIABLE
  ---fstring [NAME]
  vstate to S_WANT_NAMESTR
  ---fstring [b]
  vstate to S_IN_A_VARIABLE
            NAME <- b
  ---fstring [TYPE]
  vstate to S_WANT_TYPESTR
  ---fstring [NUMERIC]
  vstate to S_IN_A_VARIABLE
            TYPE <- NUMERIC
  ---fstring [PATH]
  vstate to S_WANT_PATHSTR
  ---fstring [/root/a/b]
  vstate to S_IN_A_VARIABLE
            PATH <- /root/a/b
  ---fstring [FORMAT]
  vstate to S_WANT_FORMAT_OPEN
  ---Array Start
  vstate to S_WANT_FORMAT0
  ---fstring [fixed]
  vstate to S_WANT_FORMAT1
            FORMAT <- fixed
  ---fnumber [10]
  vstate to S_WANT_FORMAT2
            FORMAT width <- 10
  ---fnumber [2]
  vstate to S_WANT_FORMAT_CLOSE
            FORMAT decimals <- 2
  ---Array End
  vstate to S_IN_A_VARIABLE
  ---fstring [OPTIONS]
  vstate to S_WANT_OPTIONS_OPEN
  ---Array Start
  vstate to S_WANT_OPTIONSTR
  ---fstring [retain]
            OPTION <- RETAIN
  ---Array End
  vstate to S_IN_A_VARIABLE
  ---Object End
  vstate to S_IN_VARIABLES
  ---Object Start
  vstate to S_IN_A_VARIABLE
  ---fstring [NAME]
  vstate to S_WANT_NAMESTR
  ---fstring [c]
  vstate to S_IN_A_VARIABLE
            NAME <- c
  ---fstring [TYPE]
  vstate to S_WANT_TYPESTR
  ---fstring [CHARACTER]
  vstate to S_IN_A_VARIABLE
            TYPE <- CHARACTER
  ---fstring [PATH]
  vstate to S_WANT_PATHSTR
  ---fstring [/root/s]
  vstate to S_IN_A_VARIABLE
            PATH <- /root/s
  ---fstring [LENGTH]
  vstate to S_WANT_LENGTHNUM
  ---fnumber [3]
  vstate to S_IN_A_VARIABLE
            LENGTH <- 3
  ---fstring [LABEL]
  vstate to S_WANT_LABELSTR
  ---fstring [A label]
  vstate to S_IN_A_VARIABLE
            LABEL <- A label
  ---fstring [INFORMAT]
  vstate to S_WANT_INFORMAT_OPEN
  ---Array Start
  vstate to S_WANT_INFORMAT0
  ---fstring [upper]
  vstate to S_WANT_INFORMAT1
            INFORMAT <- upper
  ---fnumber [4]
  vstate to S_WANT_INFORMAT2
            INFORMAT width <- 4
  ---Array End
  vstate to S_IN_A_VARIABLE
  ---Object End
  vstate to S_IN_VARIABLES
  ---Array End
  vstate to S_IN_A_DATASET
  ---Object End
  vstate to S_IN_DATASETS
  ---Object Start
  vstate to S_IN_A_DATASET
  ---fstring [DSNAME]
  vstate to S_WANT_DSNAMESTR
  ---fstring [one]
  vstate to S_IN_A_DATASET
            DSNAME <- one
  ---fstring [TABLEPATH]
  vstate to S_WANT_TABLEPATHSTR
  ---fstring [/]
  vstate to S_IN_A_DATASET
            TABLEPATH <- /
  ---fstring [VARIABLES]
  vstate to S_WANT_VARIABLES_OPEN
  ---Array Start
  vstate to S_IN_VARIABLES
  ---Object Start
  vstate to S_IN_A_VARIABLE
  ---fstring [NAME]
  vstate to S_WANT_NAMESTR
  ---fstring [x]
  vstate to S_IN_A_VARIABLE
            NAME <- x
  ---fstring [TYPE]
  vstate to S_WANT_TYPESTR
  ---fstring [NUMERIC]
  vstate to S_IN_A_VARIABLE
            TYPE <- NUMERIC
  ---fstring [PATH]
  vstate to S_WANT_PATHSTR
  ---fstring [x]
  vstate to S_IN_A_VARIABLE
            PATH <- x
  ---Object End
  vstate to S_IN_VARIABLES
  ---Array End
  vstate to S_IN_A_DATASET
  ---Object End
  vstate to S_IN_DATASETS
  ---Array End
  vstate to S_WANT_END
  ---Object End
  vstate to S_END
  totals: records 6, bytes 195, stored bytes 195, blocks 1, blocks on disk 0

# A table: its columns, its rows.
$ sh notes READINIT read a.json T --map m.json
  totals: records 6, bytes 195, stored bytes 195, blocks 1, blocks on disk 0
  qvejmap: m.json: a column of a parent, where the order of the document decides which row has the value (--carry takes the row's own parent): T.c
  readinit found ds [T]
   
  rctx var o                    NUMERIC    length   8 offset   0 informat [NULL 0 0] format [NULL 0 0]
  rctx var b                    NUMERIC    length   8 offset   8 informat [NULL 0 0] format [fixed 10 2]
  rctx var c                    CHARACTER  length   3 offset  16 informat [upper 4 0] format [NULL 0 0]
   
  rp   var o                    ORDINAL    /root/a                                  length   8 offset   0 RETAIN
  rp   var b                    DOUBLE     /root/a/b                                length   8 offset   8 RETAIN
  rp   var c                    CHAR       /root/s                                  length   3 offset  16
   
  tablePath /root/a                                 
   
$ sh notes READ,-READINIT read a.json a
  totals: records 6, bytes 195, stored bytes 195, blocks 1, blocks on disk 0
  
  Read on dataset[a] called
  consumePath    [a] [/root]
  consumePathOnly[a] path[/root] name[ordinal_root] set to 1
  consumePath    [a] [/root/a]
  consumePathOnly[a] tablePath [/root/a] seen ONCE
  consumePathOnly[a] path[/root/a] name[ordinal_a] set to 1
  consumePath    [a] [/root/a/b] val [1]
  consumePathVar [a] [b] set to [1]
  consumePath    [a] [/root/a/c]
  consumePathOnly[a] path [/root/a/c] contains tablePath [/root/a] so NOT DONE
  consumePath    [a] [/root/a/c/FAKE] val [VAR]
  consumePath    [a] [/root/s] val [xy]
  Read           [a] returning LAST OBSERVATION
  
  Read on dataset[a] called
  Read           [a] atEOF set, returning QV_EOF
  ReadTerm called
