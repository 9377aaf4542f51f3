# Every mistake of a map with its place, its word and the engine's code.
$ cat > try <<'END'
> # try MAP...: the mistakes.
> for map; do printf '%s' "$map" | qvejmap map check - 2>&1 | head -1; done
> END
> cat > table <<'END'
> for more; do sh try '{"DATASETS":[{'"$more"'}]}'; done
> END
> cat > column <<'END'
> for more; do sh table '"VARIABLES":[{'"$more"'}]'; done
> END
$ sh try '[' ' -5' '{}' '{"tables":[]}' '{"DATASETS":{}}' '{"DATASETS":["a name that is longer than thirty-two bytes"]}' '{"DATASETS":[]}'
  qvejmap: <stdin>:1:1: '{' was expected: a map, each of its tables and each column is an object [-19]
  qvejmap: <stdin>:1:2: '{' was expected: a map, each of its tables and each column is an object [-19]
  qvejmap: <stdin>:1:2: a map is an object whose one member is DATASETS [-13]
  qvejmap: <stdin>:1:3: "TABLES": a map is an object whose one member is DATASETS [-13]
  qvejmap: <stdin>:1:13: '[' was expected: DATASETS, VARIABLES, FORMAT, INFORMAT and OPTIONS are arrays [-17]
  qvejmap: <stdin>:1:15: '{' was expected: a map, each of its tables and each column is an object [-19]
  qvejmap: <stdin>:1:14: DATASETS is empty: a map must have at least one table [-24]
$ sh try '{"DATASETS":[{"DSNAME":"x","TABLEPATH":"/"}],"more":1}' '{"DATASETS":[{"DSNAME":}]}' '{"DATASETS":[true' "$(printf '{"DATASETS":\n [{"DSNAME":\n  12}]}')"
  qvejmap: <stdin>:1:47: '}' was expected: nothing may follow DATASETS in a map [-20]
  qvejmap: <stdin>:1:24: a value was expected [-11]
  qvejmap: <stdin>:1:17: '{' was expected: a map, each of its tables and each column is an object [-19]
  qvejmap: <stdin>:3:3: a text in double quotes was expected [-21]
$ sh table '"name":"x"' '"a key that is longer than thirty-two bytes":1' '"DSNAME":12' '"DSNAME":1e2' '"TABLEPATH":null' '"VARIABLES":"x"' '"VARIABLES":[true]'
  qvejmap: <stdin>:1:16: "NAME": unknown key in a table: it has DSNAME, TABLEPATH and VARIABLES; did you mean DSNAME? [-14]
  qvejmap: <stdin>:1:16: "A KEY THAT IS LONGER THAN THIRTY": unknown key in a table: it has DSNAME, TABLEPATH and VARIABLES [-14]
  qvejmap: <stdin>:1:24: a text in double quotes was expected [-21]
  qvejmap: <stdin>:1:24: an integer was expected: a number without fraction and exponent [-22]
  qvejmap: <stdin>:1:30: a text in double quotes was expected [-21]
  qvejmap: <stdin>:1:28: '[' was expected: DATASETS, VARIABLES, FORMAT, INFORMAT and OPTIONS are arrays [-17]
  qvejmap: <stdin>:1:31: '{' was expected: a map, each of its tables and each column is an object [-19]
$ sh table '"TABLEPATH":"/"' '"DSNAME":"","TABLEPATH":"/"' '"DSNAME":"x"'
  qvejmap: <stdin>:1:30: the table has no name: its DSNAME must be there and not be empty [-25]
  qvejmap: <stdin>:1:42: the table has no name: its DSNAME must be there and not be empty [-25]
  qvejmap: <stdin>:1:27: the table has no TABLEPATH, which says where its rows are [-26]
$ sh column '"colour":1' '"NOTE":"note","NOTE":"a note"' '"NOTE":1' '"NOTE":null' '"NOTE":true' '"NAME":[]' '"TYPE":false' '"TYPE":"Number"' '"PATH":7' '"LABEL":{}'
  qvejmap: <stdin>:1:30: "COLOUR": unknown key in a column: it has NAME, TYPE, PATH, LENGTH, CURRENT_LENGTH, FORMAT, INFORMAT, LABEL and OPTIONS [-15]
  qvejmap: <stdin>:1:51: "a note": unknown key in a column: it has NAME, TYPE, PATH, LENGTH, CURRENT_LENGTH, FORMAT, INFORMAT, LABEL and OPTIONS [-15]
  qvejmap: <stdin>:1:36: "1": unknown key in a column: it has NAME, TYPE, PATH, LENGTH, CURRENT_LENGTH, FORMAT, INFORMAT, LABEL and OPTIONS [-15]
  qvejmap: <stdin>:1:39: "NOTE": unknown key in a column: it has NAME, TYPE, PATH, LENGTH, CURRENT_LENGTH, FORMAT, INFORMAT, LABEL and OPTIONS [-15]
  qvejmap: <stdin>:1:39: "NOTE": unknown key in a column: it has NAME, TYPE, PATH, LENGTH, CURRENT_LENGTH, FORMAT, INFORMAT, LABEL and OPTIONS [-15]
  qvejmap: <stdin>:1:36: a text in double quotes was expected [-21]
  qvejmap: <stdin>:1:40: a text in double quotes was expected [-21]
  qvejmap: <stdin>:1:37: "Number": TYPE must be NUMERIC, CHARACTER or ORDINAL [-16]
  qvejmap: <stdin>:1:36: a text in double quotes was expected [-21]
  qvejmap: <stdin>:1:37: a text in double quotes was expected [-21]
$ sh column '"LENGTH":"8"' '"CURRENT_LENGTH":[]' '"LENGTH":99999999999999999999' '"OPTIONS":"RETAIN"' '"OPTIONS":[1]' '"OPTIONS":["RETAIN","Keep"]'
  qvejmap: <stdin>:1:39: an integer was expected: a number without fraction and exponent [-22]
  qvejmap: <stdin>:1:46: an integer was expected: a number without fraction and exponent [-22]
  qvejmap: <stdin>:1:58: the integer is outside of 64 bits [-11]
  qvejmap: <stdin>:1:40: '[' was expected: DATASETS, VARIABLES, FORMAT, INFORMAT and OPTIONS are arrays [-17]
  qvejmap: <stdin>:1:40: a text in double quotes was expected [-21]
  qvejmap: <stdin>:1:50: "Keep": an option must be RETAIN or NORETAIN [-23]
$ sh column '"FORMAT":"F"' '"FORMAT":[]' '"FORMAT":["F","8"]' '"FORMAT":["F",8,[]]' '"FORMAT":["F",8,2,3]'
  qvejmap: <stdin>:1:39: '[' was expected: DATASETS, VARIABLES, FORMAT, INFORMAT and OPTIONS are arrays [-17]
  qvejmap: <stdin>:1:39: a text in double quotes was expected [-21]
  qvejmap: <stdin>:1:44: an integer was expected: a number without fraction and exponent [-22]
  qvejmap: <stdin>:1:45: an integer was expected: a number without fraction and exponent [-22]
  qvejmap: <stdin>:1:47: ']' was expected: FORMAT and INFORMAT have at most name, width and decimals [-18]
$ sh column '"INFORMAT":1' '"INFORMAT":[1]' '"INFORMAT":["I",{}]' '"INFORMAT":["I",8,"2"]' '"INFORMAT":["I",8,2,"3"]'
  qvejmap: <stdin>:1:40: '[' was expected: DATASETS, VARIABLES, FORMAT, INFORMAT and OPTIONS are arrays [-17]
  qvejmap: <stdin>:1:41: a text in double quotes was expected [-21]
  qvejmap: <stdin>:1:45: an integer was expected: a number without fraction and exponent [-22]
  qvejmap: <stdin>:1:48: an integer was expected: a number without fraction and exponent [-22]
  qvejmap: <stdin>:1:50: ']' was expected: FORMAT and INFORMAT have at most name, width and decimals [-18]
