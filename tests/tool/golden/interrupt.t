# A signal at any time leaves nothing behind.  What the shell itself says of it goes away.

# So many tables over so many records that writing them takes long.
$ rows=$(printf '{"v":%d},' $(seq 20))
> { printf '{"t0":[]'; printf ",\"t%d\":[$rows{}]" $(seq 800); printf '}'; } > many.json

# While it writes: no file stays, nor a folder that it made.
$ exec 2> /dev/null
> for signal in TERM INT HUP; do
>     test $signal = HUP && how= || how='--keep-free 9999G'
>     env --default-signal qvejmap convert many.json -o a/b $how &
>     until [ "$(ls -A a/.qvejmap* | wc -l)" -gt 5 ]; do :; done
>     kill -$signal $!; wait $!; kill -l $?; ls -d a; ls -A tmp
> done; true
  TERM
  INT
  HUP

# A folder that was there stays, with its files.
$ exec 2> /dev/null
> mkdir out; echo old > out/t7.csv
> qvejmap convert many.json -o out --force &
> until [ "$(ls -A out | wc -l)" -gt 20 ]; do :; done
> kill -TERM $!; wait $!; kill -l $?; ls -A out; cat out/t7.csv
  TERM
  t7.csv
  old

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
  801
