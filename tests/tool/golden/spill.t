# Records that leave memory: that they do, that the output is the same, that nothing stays.
$ { printf '{"orders":['
>   seq 12000 | sed 's/.*/{"id":&,"text":"some words of order &","n":{"x":[1,2]}},/'
>   printf '{"id":0}]}'
> } > large.json

# Records go to disk when less than --keep-free is left of the memory budget.
$ for how in '' '--memory 64M --keep-free 1' '--memory 64M --keep-free 63M'; do
>     qvejmap check large.json --debug rlmem $how 2>&1 | grep -o 'on disk [0-9]*'
> done
  on disk 0
  on disk 0
  on disk 4

$ for verb in 'read large.json orders' 'read large.json n_x' 'read large.json ALLDATA' \
>             'records large.json' 'map large.json'; do
>     qvejmap $verb > in-memory; test $(wc -c < in-memory) -gt 100 || echo "$verb: no output"
>     for how in '--keep-free 9999G' '--memory 32M --keep-free 32M --compress' '--compress'; do
>         qvejmap $verb $how | cmp - in-memory || echo "$verb $how"
>     done
> done; ls -A tmp

# A broken document.  The second mistake is in the same piece of input as a spill: no
# caller was told of the file yet.
$ { head -c -1 large.json; printf ,; } | qvejmap check - --keep-free 9999G 2>&1 | head -1; ls -A tmp
  qvejmap: <stdin>:12001:11: the document ends before a complete object or array
$ { head -n 9000 large.json; printf ]]; } > early.json; qvejmap check early.json --keep-free 9999G; ls -A tmp
! qvejmap: early.json:9001:1: a value was expected
!     ]]
!     ^

# A named cache file stays.  A file that holds something is neither overwritten nor deleted.
$ qvejmap check large.json --keep-free 9999G --cache kept; find kept -size +1M -perm 600
  large.json: well formed
  kept
$ qvejmap check large.json --keep-free 9999G --cache packed --compress -q; find packed -size -800k
  packed
$ qvejmap check large.json --keep-free 9999G --cache kept
! qvejmap: kept: the file is not empty (--cache takes a new or an empty one)
? 5
$ echo mine > kept; qvejmap convert large.json -o new --keep-free 9999G --cache kept --force; cat kept
  mine
! qvejmap: kept: the file is not empty (--cache takes a new or an empty one)
$ ln -s large.json link; qvejmap check large.json --keep-free 9999G --cache link
! qvejmap: link: not a regular file, not replaced
? 5
$ qvejmap check large.json --keep-free 9999G --cache tmp
! qvejmap: tmp: not a regular file, not replaced
? 5
$ qvejmap check large.json --keep-free 9999G --cache large.json; wc -l < large.json
  12000
! qvejmap: large.json: the document itself, not replaced
$ : > empty; qvejmap check large.json --keep-free 9999G --cache empty
  large.json: well formed

# Trouble with the cache file, also where only the last block needs it.
$ qvejmap check large.json --keep-free 9999G --cache none/file
! qvejmap: none/file: the file could not be opened
? 5
$ qvejmap check orders.json --keep-free 9999G --cache none/file
! qvejmap: none/file: the file could not be opened: the last records could not be stored
? 5

# Names alone are too many: how many there are, where most of them are, and what to do.
$ { printf '{"a":1,"packages":{'; seq 200000 | sed 's/.*/"name-&":&,/'; printf '"z":0}}'; } > names.json
$ qvejmap check names.json --memory 32M 2>&1 | head -1 | sed 's/[0-9][0-9,]*/N/g'
  qvejmap: names.json:N:N: more memory is needed than may be used, even without the records, for N distinct paths so far (--memory); most paths are below /root/packages (N): --shape auto or --rows PATH makes rows of such names
$ qvejmap check names.json --memory 32M -q 2> mistake; echo $?; qvejmap check names.json --memory 32M --shape auto
  6
  names.json: well formed
