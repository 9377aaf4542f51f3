# What informats make of texts and formats of numbers: a line a value, as text and as cell.  What
# an informat refuses gives an empty cell.
$ cat > each <<'END'
> # each PROPERTIES TEXT|TEXT...: what the column makes of each text.
> printf '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[
>   {"NAME":"in","TYPE":"CHARACTER","PATH":"/root/v"},{"NAME":"out","PATH":"/root/v",%s}]}]}' "$1" > map
> printf '[{"v":"%s"}]' "$2" | sed 's/|/"},{"v":"/g' > doc
> qvejmap read doc t --map map | tail -n +2
> END
> echo 'sh each "\"TYPE\":\"NUMERIC\",\"INFORMAT\":[\"$1\"${3:+,$3}]" "$2"' > informat
> echo 'sh each "\"TYPE\":\"NUMERIC\",\"FORMAT\":[\"$1\"${3:+,$3}]" "$2"' > format
> echo 'sh each "\"TYPE\":\"CHARACTER\",\"INFORMAT\":[\"$1\"${3:+,$3}]" "$2"' > characters

# Informats take a value as a whole, or refuse it.
$ sh informat NumBer ' \t12.5 \n|+.5|-007.|1e999||  |.|1 2|1e|inf|1,000|--1'
  " \t12.5 
  ",12.5\r
  +.5,0.5\r
  -007.,-7\r
  1e999,inf\r
  ,\r
    ,\r
  .,\r
  1 2,\r
  1e,\r
  inf,\r
  "1,000",\r
  --1,\r
! qvejmap: t.out: 8 values rejected, the first in row 5: "" is not a number
# Whole numbers are written plainly as long as that is short.
$ sh informat number '0|-0|100000|9223372036854774784|18446744073709551616|1e19|-9223372036854774784|0.1|-1.7976931348623157e308|5e-324|-1e999'
  0,0\r
  -0,-0\r
  100000,100000\r
  9223372036854774784,9223372036854774784\r
  18446744073709551616,18446744073709551616\r
  1e19,1e+19\r
  -9223372036854774784,-9223372036854774784\r
  0.1,0.1\r
  -1.7976931348623157e308,-1.7976931348623157e+308\r
  5e-324,5e-324\r
  -1e999,-inf\r
! qvejmap: t.out: 3 values rounded to what a double keeps, the first in row 4: "9223372036854774784"
$ sh informat number '0012345|12.5|1e3|5|9007199254740993|-' 0,2
  0012345,123.45\r
  12.5,12.5\r
  1e3,10\r
  5,0.05\r
  9007199254740993,90071992547409.94\r
  -,\r
! qvejmap: t.out: 1 value rounded to what a double keeps, in row 5: "9007199254740993"
! qvejmap: t.out: 1 value rejected, in row 6: "-" is not a number
$ sh informat number '123456|1.2.3|12a4' 3
  123456,123\r
  1.2.3,1.2\r
  12a4,\r
! qvejmap: t.out: 1 value rejected, in row 3: "12a4" is not a number
$ sh informat comma '-1,234,567.5|1234|1,23|1234,567|,123|1,,234|1,234,|1.234,5'
  "-1,234,567.5",-1234567.5\r
  1234,1234\r
  "1,23",\r
  "1234,567",\r
  ",123",\r
  "1,,234",\r
  "1,234,",\r
  "1.234,5",\r
! qvejmap: t.out: 6 values rejected, the first in row 3: "1,23" is not a number with commas
$ sh informat percent '12.5%|28.7 % |-.1%|12.5|%|1%%'
  12.5%,0.125\r
  28.7 % ,0.287\r
  -.1%,-0.001\r
  12.5,\r
  %,\r
  1%%,\r
! qvejmap: t.out: 3 values rejected, the first in row 4: "12.5" is not a percentage
$ sh informat hex 'ff|-0xFF|20000000000000|0x|fg|0x-1'
  ff,255\r
  -0xFF,-255\r
  20000000000000,9007199254740992\r
  0x,\r
  fg,\r
  0x-1,\r
! qvejmap: t.out: 3 values rejected, the first in row 4: "0x" is not a hexadecimal integer
$ sh informat hex '20000000000001|1ffffffffffffffff'
  20000000000001,\r
  1ffffffffffffffff,\r
! qvejmap: t.out: 2 values rejected, the first in row 1: "20000000000001" is out of range
$ sh informat yesno 'YES|tRue|1| no |false|0|10|y'
  YES,1\r
  tRue,1\r
  1,1\r
   no ,0\r
  false,0\r
  0,0\r
  10,\r
  y,\r
! qvejmap: t.out: 2 values rejected, the first in row 7: "10" is not one of yes, no, true, false, 1, 0
$ sh informat date '1970-01-01|20240229| 2000-02-29 |1969-12-31|0000-01-01|9999-12-31'
  1970-01-01,0\r
  20240229,19782\r
   2000-02-29 ,11016\r
  1969-12-31,-1\r
  0000-01-01,-719528\r
  9999-12-31,2932896\r
$ sh informat date '2023-02-29|1900-02-29|2024-04-31|2024-00-10|2024-1-2|2024-0102|2024-01-02x|24-01-02'
  2023-02-29,\r
  1900-02-29,\r
  2024-04-31,\r
  2024-00-10,\r
  2024-1-2,\r
  2024-0102,\r
  2024-01-02x,\r
  24-01-02,\r
! qvejmap: t.out: 8 values rejected, the first in row 1: "2023-02-29" is not a date
$ sh informat date '2024-02-29T10:00|2024-02-3010' 10
  2024-02-29T10:00,19782\r
  2024-02-3010,\r
! qvejmap: t.out: 1 value rejected, in row 2: "2024-02-3010" is not a date
$ sh informat datetime '1970-01-01T00:00:01Z|1969-12-31t23:59:59.5z|2024-02-29 13:05|20240229T130500.000001|2024-02-29T13:05:00,9999995Z|2024-03-01T01:00+02:00|2023-12-31T23:30:00-0130|2024-02-29 13:05:00 +01|9999-12-31T23:59:59.999999Z'
  1970-01-01T00:00:01Z,1\r
  1969-12-31t23:59:59.5z,-0.5\r
  2024-02-29 13:05,1709211900\r
  20240229T130500.000001,1709211900.000001\r
  "2024-02-29T13:05:00,9999995Z",1709211901\r
  2024-03-01T01:00+02:00,1709247600\r
  2023-12-31T23:30:00-0130,1704070800\r
  2024-02-29 13:05:00 +01,1709208300\r
  9999-12-31T23:59:59.999999Z,253402300800\r
$ sh informat datetime '2016-12-31T23:59:60Z|2024-02-29T24:00|2024-02-29T10:60|2024-02-29|2024-02-29T10:00.|2024-02-29T10:00+24:00|2024-02-29T10:00+01:|2024-02-29T10:00 CET'
  2016-12-31T23:59:60Z,\r
  2024-02-29T24:00,\r
  2024-02-29T10:60,\r
  2024-02-29,\r
  2024-02-29T10:00.,\r
  2024-02-29T10:00+24:00,\r
  2024-02-29T10:00+01:,\r
  2024-02-29T10:00 CET,\r
! qvejmap: t.out: 8 values rejected, the first in row 1: "2016-12-31T23:59:60Z" is not a date and time
$ sh informat time '13:05|130500.25|23:59:59|24:00|1:05|13:5|13:60|13:05Z|13:0500'
  13:05,47100\r
  130500.25,47100.25\r
  23:59:59,86399\r
  24:00,\r
  1:05,\r
  13:5,\r
  13:60,\r
  13:05Z,\r
  13:0500,\r
! qvejmap: t.out: 6 values rejected, the first in row 4: "24:00" is not a time of day
$ sh informat unix '1709211900.25|now'; sh informat unix '1709211900001'
  1709211900.25,1709211900.25\r
  now,\r
  1709211900001,\r
! qvejmap: t.out: 1 value rejected, in row 2: "now" is not a number of seconds
! qvejmap: t.out: 1 value rejected, in row 1: "1709211900001" is out of range
$ sh informat unixms '1709211900001|-1|1s'; sh informat unixms '1e18'
  1709211900001,1709211900.001\r
  -1,-0.001\r
  1s,\r
  1e18,\r
! qvejmap: t.out: 1 value rejected, in row 3: "1s" is not a number of milliseconds
! qvejmap: t.out: 1 value rejected, in row 1: "1e18" is out of range
$ sh informat '%d/%m/%Y' '29/02/2024| 1/3/1970 |30/02/2024|1/1/24|01/13/2024|1/1/1970 x|1/1'
  29/02/2024,19782\r
   1/3/1970 ,59\r
  30/02/2024,\r
  1/1/24,\r
  01/13/2024,\r
  1/1/1970 x,\r
  1/1,\r
! qvejmap: t.out: 5 values rejected, the first in row 3: "30/02/2024" is not a date or time of the pattern
$ sh informat '%y%m%d' '680101|690101|7001011'
  680101,35794\r
  690101,-365\r
  7001011,\r
! qvejmap: t.out: 1 value rejected, in row 3: "7001011" is not a date or time of the pattern
$ sh informat '%a, %e %B %Y' 'Thu,  5  MARCH 1970|sunday, 1 mar 1970|Fri, 1 mar 1970|Sun,1 mar 1970|Sun, 1 Marc 1970|Sun, 1 Foo 1970'
  "Thu,  5  MARCH 1970",63\r
  "sunday, 1 mar 1970",59\r
  "Fri, 1 mar 1970",\r
  "Sun,1 mar 1970",\r
  "Sun, 1 Marc 1970",\r
  "Sun, 1 Foo 1970",\r
! qvejmap: t.out: 4 values rejected, the first in row 3: "Fri, 1 mar 1970" is not a date or time of the pattern
$ sh informat '%Y%j' '2024366|2023366|2023000'
  2024366,20088\r
  2023366,\r
  2023000,\r
! qvejmap: t.out: 2 values rejected, the first in row 2: "2023366" is not a date or time of the pattern
$ sh informat '%n%F \t' '2024-02-29|2024-02-30'
  2024-02-29,19782\r
  2024-02-30,\r
! qvejmap: t.out: 1 value rejected, in row 2: "2024-02-30" is not a date or time of the pattern
$ sh informat '%G-W%V-%u' '2020-W53-7|2021-W53-1|2020-W01-0'
  2020-W53-7,18630\r
  2021-W53-1,\r
  2020-W01-0,\r
! qvejmap: t.out: 2 values rejected, the first in row 2: "2021-W53-1" is not a date or time of the pattern
$ sh informat '%m%% %d. März %m %Y' '3% 1. März 3 1970|2% 1. März 3 1970'
  3% 1. März 3 1970,59\r
  2% 1. März 3 1970,\r
! qvejmap: t.out: 1 value rejected, in row 2: "2% 1. März 3 1970" is not a date or time of the pattern
$ sh informat '%I:%M %p' '12:05 am|12:05 PM|13:00 pm|0:00 am'
  12:05 am,300\r
  12:05 PM,43500\r
  13:00 pm,\r
  0:00 am,\r
! qvejmap: t.out: 2 values rejected, the first in row 3: "13:00 pm" is not a date or time of the pattern
$ sh informat '%w %T.%d%m%Y' '0 0:00:03.04011970|6 0:00:03.04011970'
  0 0:00:03.04011970,259203\r
  6 0:00:03.04011970,\r
! qvejmap: t.out: 1 value rejected, in row 2: "6 0:00:03.04011970" is not a date or time of the pattern
$ sh informat '%H.%M.%S.' '1.2.3.|1.2.3|24.0.0.'
  1.2.3.,3723\r
  1.2.3,\r
  24.0.0.,\r
! qvejmap: t.out: 2 values rejected, the first in row 2: "1.2.3" is not a date or time of the pattern
$ sh informat '%d/%b/%Y:%T %z' '10/Oct/2000:13:55:36.5 -0700|10/Oct/2000:12:00:. -0700'
  10/Oct/2000:13:55:36.5 -0700,971211336.5\r
  10/Oct/2000:12:00:. -0700,\r
! qvejmap: t.out: 1 value rejected, in row 2: "10/Oct/2000:12:00:. -0700" is not a date or time of the pattern
$ sh informat '%c %Z' 'Thu Jan  1 00:00:09 1970 UTC|Thu Jan  1 00:00:09 1970 CET'
  Thu Jan  1 00:00:09 1970 UTC,9\r
  Thu Jan  1 00:00:09 1970 CET,\r
! qvejmap: t.out: 1 value rejected, in row 2: "Thu Jan  1 00:00:09 1970 CET" is not a date or time of the pattern

# Those of texts keep characters whole.
$ sh characters trim ' \t a b \n|  '; sh characters trim '  abc' 3
  " \t a b 
  ",a b\r
    ,\r
    abc,a\r
$ sh characters upper 'straße ŉé i'; sh characters UPPER 'éàü' 2
  straße ŉé i,STRASSE ʼNÉ I\r
  éàü,ÉÀ\r
$ sh characters lower 'ÀİΣ'; sh characters left 'a😀z|a' 2
  ÀİΣ,ài̇ς\r
  a😀z,a😀\r
  a,a\r

# Formats show every number, at least as it is.
$ sh format number '-12.5|1e22|-0|1e15' 6
  -12.5, -12.5\r
  1e22, 1e+22\r
  -0,    -0\r
  1e15,1000000000000000\r
$ sh format FIXED '2.675|-3|1e999' 6,2; sh format fixed '0.1' 0,25
  2.675,  2.67\r
  -3, -3.00\r
  1e999,   inf\r
  0.1,0.1000000000000000055511151\r
$ sh format comma '-1234567.5|999|-1e999' 0,2; sh format comma '2.5|123456|1234'
  -1234567.5,"-1,234,567.50"\r
  999,999.00\r
  -1e999,-inf\r
  2.5,2\r
  123456,"123,456"\r
  1234,"1,234"\r
$ sh format percent '0.125|0.0875|0|-0.1' 0,1; sh format percent '-0.004|12|1e999'
  0.125,12.5%\r
  0.0875,8.7%\r
  0,0.0%\r
  -0.1,-10.0%\r
  -0.004,-0%\r
  12,1200%\r
  1e999,inf%\r
$ sh format hex '255|-16|1.5|1e17|1e999' 3
  255, ff\r
  -16,-10\r
  1.5,1.5\r
  1e17,100000000000000000\r
  1e999,inf\r
$ sh format date '19782|-719528|2932896|0.5|2932897|-719529|-1e999'
  19782,2024-02-29\r
  -719528,0000-01-01\r
  2932896,9999-12-31\r
  0.5,0.5\r
  2932897,2932897\r
  -719529,-719529\r
  -1e999,-inf\r
$ sh format datetime '-0.5|253402300800'; sh format datetime '1709211900.000001' 0,6; sh format datetime '0.9996' 0,3
  -0.5,1969-12-31T23:59:59\r
  253402300800,253402300800\r
  1709211900.000001,2024-02-29T13:05:00.000001\r
  0.9996,1970-01-01T00:00:00.999\r
$ sh format time '47100.25|86400|-1|86399.9999999' 0,1
  47100.25,13:05:00.2\r
  86400,86400\r
  -1,-1\r
  86399.9999999,86399.9999999\r
$ sh format '%d. März' '59|0.5' 10
  59,  01. März\r
  0.5,0.5\r
$ sh format '%a %e %b, %j, %V/%G, %U %C' 0; sh format '%F %R %p %Z %z' '-60|1e999'
  0,"Thu  1 Jan, 001, 01/1970, 00 19"\r
  -60,1969-12-31 23:59 PM UTC +0000\r
  1e999,inf\r

# What cannot be used is refused with the map.
$ for name in '' dates trim % %% %Y-%m-% %Q %Ey-%m-%d %3Y-%m-%d; do sh informat "$name" 1; sh format "$name" 1; done 2>&1 | grep -o '"[^"]*": .*'
  "dates": no format or informat of that name; did you mean date?
  "dates": no format or informat of that name; did you mean date?
  "trim": the format or informat is not for columns of this type
  "trim": no format or informat of that name; did you mean trim?
  "%": the pattern has an unknown letter or lacks a part
  "%": the pattern has an unknown letter or lacks a part
  "%%": the pattern has an unknown letter or lacks a part
  "%%": the pattern has an unknown letter or lacks a part
  "%Y-%m-%": the pattern has an unknown letter or lacks a part
  "%Y-%m-%": the pattern has an unknown letter or lacks a part
  "%Q": the pattern has an unknown letter or lacks a part
  "%Q": the pattern has an unknown letter or lacks a part
  "%Ey-%m-%d": the pattern has an unknown letter or lacks a part
  "%Ey-%m-%d": the pattern has an unknown letter or lacks a part
  "%3Y-%m-%d": the pattern has an unknown letter or lacks a part
  "%3Y-%m-%d": the pattern has an unknown letter or lacks a part
$ for name in %Y-%m '%F %U' %I:%M %p:%H '%m %H:%M' '%R %z' '%F %H %S' '%F %V' %Y/%j.%b '%Y %j %d'; do sh informat "$name" 1; done 2>&1 | grep -c pattern
  10
$ for name in date %F left; do sh characters "$name" 1; sh each '"TYPE":"CHARACTER","FORMAT":["'$name'"]' 1; done 2>&1 | grep -o '"[^"]*": .*'
  "date": the format or informat is not for columns of this type
  "date": the format or informat is not for columns of this type
  "%F": the format or informat is not for columns of this type
  "%F": the format or informat is not for columns of this type
  "left": the width or the decimals are not usable here
  "left": the format or informat is not for columns of this type
$ for name in datetime,40000 datetime,0,7 %F,0,7 number,0,100; do
>     sh informat ${name%%,*} 1 ${name#*,}; sh format ${name%%,*} 1 ${name#*,}
> done 2>&1 | grep -o '".*": .*\|^1.*'
  1,\r
  "datetime": the width or the decimals are not usable here
  "datetime": the width or the decimals are not usable here
  "datetime": the width or the decimals are not usable here
  "%F": the width or the decimals are not usable here
  "%F": the width or the decimals are not usable here
  "number": the width or the decimals are not usable here
  "number": the width or the decimals are not usable here
