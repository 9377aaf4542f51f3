# A signal at any time leaves no file, and is told.  What the shell itself says of it goes away.

# So many tables over so many records that writing them takes long.
$ rows=$(printf '{"v":%d},' $(seq 20))
> { printf '{"t0":[]'; printf ",\"t%d\":[$rows{}]" $(seq 800); printf '}'; } > many.json

# While it writes: no file stays, nor a folder that it made.
$ exec 2> /dev/null
> for signal in TERM INT HUP; do
>     test $signal = HUP && how= || how='--keep-free 9999G'
>     env --default-signal qvejmap convert many.json -o a/b $how 2> said &
>     until [ "$(ls -A a/.qvejmap* | wc -l)" -gt 5 ]; do :; done
>     kill -$signal $!; wait $!; kill -l $?; cat said; ls -d a; ls -A tmp
> done; true
  TERM
  qvejmap: interrupted: a/b is as it was, nothing was written to it
  INT
  qvejmap: interrupted: a/b is as it was, nothing was written to it
  HUP
  qvejmap: interrupted: a/b is as it was, nothing was written to it

# A folder that was there stays, with its files.
$ exec 2> /dev/null
> mkdir out; echo old > out/t7.csv
> qvejmap convert many.json -o out --force &
> until [ "$(ls -A out | wc -l)" -gt 20 ]; do :; done
> kill -TERM $!; wait $!; kill -l $?; ls -A out; cat out/t7.csv
  TERM
  t7.csv
  old

# While it waits for a document; with a list of rejected values, which comes with the tables or not.
$ exec 2> /dev/null
> mkfifo silent; env --default-signal qvejmap convert - -o a/b --rejects list < silent 2> said & exec 3> silent
> { printf '{"a":1'; yes | head -c 200000 | tr 'y\n' '  '; } >&3  # more than a pipe holds
> kill -INT $!; wait $!; kill -l $?; cat said; ls -d a list; exec 3>&-; rm silent
  INT
  qvejmap: interrupted: a/b is as it was, nothing was written to it

# While records go to disk: the cache file has no name, so nothing stays, whatever the signal.
$ exec 2> /dev/null
> for signal in TERM KILL; do
>     mkfifo pipe; qvejmap check - --keep-free 9999G < pipe &
>     exec 3> pipe
>     { printf '{"a":[1'; yes ',"some text of a longer array of texts"' | head -n 100000; } >&3
>     ls -A tmp; ls -l /proc/$!/fd | grep -c '(deleted)'
>     kill -$signal $!; wait $!; kill -l $?; ls -A tmp; exec 3>&-; rm pipe
> done
  1
  TERM
  1
  KILL

# A signal that is ignored stays ignored.
$ trap '' HUP; qvejmap convert many.json -o kept -q &
> until [ -d kept ]; do :; done
> kill -HUP $!; wait $!; ls -A kept | wc -l
  802
