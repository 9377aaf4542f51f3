# needs github_events.json citm_catalog.json gsoc-2018.json
$ qvejmap shape orders.json
  # one object of 2 scalars, such as "city", in 2 of 2 objects
  inline /root/orders/customer
  # 2 arrays of up to 2 strings
  rows /root/orders/tags
$ qvejmap shape github_events.json
  # one object of 5 scalars, such as "avatar_url", in 30 of 30 objects
  inline /root/actor
  # one object of 3 scalars, such as "id", in 30 of 30 objects
  inline /root/repo
  # one object of 2 scalars, such as "email", in 16 of 16 objects
  inline /root/payload/commits/author
  # one object of 15 scalars, such as "avatar_url", in 3 of 3 objects
  inline /root/payload/forkee/owner
  # one object of 15 scalars, such as "avatar_url", in 3 of 3 objects
  inline /root/payload/issue/user
  # one object of 3 scalars, such as "diff_url", in 3 of 3 objects
  inline /root/payload/issue/pull_request
  # one object of 15 scalars, such as "avatar_url", in 2 of 2 objects
  inline /root/payload/comment/user
  # 3 members are empty containers, such as /root/payload/issue/labels
  empty drop
$ qvejmap shape citm_catalog.json
  # 17 names in 1 object, such as "205705993", with scalars
  rows /root/areaNames
  # 1 name in 1 object, such as "337100890", with scalars
  rows /root/audienceSubCategoryNames
  # 184 names in 1 object, such as "138586341", with objects
  rows /root/events
  # 184 arrays of up to 5 numbers
  rows /root/events/*/subTopicIds
  # 184 arrays of up to 4 numbers
  rows /root/events/*/topicIds
  # 64 names in 1 object, such as "338937235", with scalars
  rows /root/seatCategoryNames
  # 19 names in 1 object, such as "337184262", with scalars
  rows /root/subTopicNames
  # 4 names in 1 object, such as "107888604", with scalars
  rows /root/topicNames
  # 4 names in 1 object, such as "107888604", with arrays
  rows /root/topicSubTopics
  # 4 arrays of up to 11 numbers
  rows /root/topicSubTopics/*
  # one object of 1 scalar, such as "PLEYEL_PLEYEL", in 1 of 1 object
  inline /root/venueNames
  # 8,697 members are empty containers, such as /root/blockNames
  empty drop
$ qvejmap shape gsoc-2018.json
  # 1,264 names in 1 object, such as "0", with objects
  rows /root
  # one object of 6 scalars, such as "@type", in 1,264 of 1,264 objects
  inline /root/*/sponsor
  # one object of 2 scalars, such as "@type", in 1,264 of 1,264 objects
  inline /root/*/author
# The rules are the input of others; a pipe, a packed file and JSON Lines give the same.
$ qvejmap shape gsoc-2018.json -o rules && qvejmap shape - -o - < gsoc-2018.json | cmp - rules
> gzip -c gsoc-2018.json | qvejmap shape - | cmp - rules
$ qvejmap shape gsoc-2018.json -o rules
! qvejmap: rules: the file exists (--force replaces it)
? 5
$ printf '{"t":["a"]}\n{"t":["b","c"]}\n' | qvejmap shape - --lines
  # 2 arrays of up to 2 strings
  rows /root/t
# An empty array beside longer ones; an empty root is no member.
$ echo '[{"t":[]},{"t":[1,2,3,4,5]}]' | qvejmap shape -
  # 2 arrays of up to 5 numbers
  rows /root/t
  # 1 member is an empty container, such as /root/t
  empty drop
$ echo '{}' | qvejmap shape -
! qvejmap: <stdin>: no rule is found
# The thresholds.
$ echo '{"a":{"x":[1,2],"y":[2,1]},"b":{"x":[1,2],"y":[2,1]},"c":{"n":1,"m":2}}' > small; qvejmap shape small
> for option in --key-names --key-containers --fixed-length --inline-columns; do
>     echo "$option 1"; qvejmap shape small $option 1
> done
  # one object of 2 scalars, such as "m", in 1 of 1 object
  inline /root/c
  --key-names 1
  # one object of 2 scalars, such as "m", in 1 of 1 object
  inline /root/c
  --key-containers 1
  # 2 names in 1 object, such as "x", with arrays
  rows /root/a
  # 2 names in 1 object, such as "x", with arrays
  rows /root/b
  # one object of 2 scalars, such as "m", in 1 of 1 object
  inline /root/c
  --fixed-length 1
  # 1 array of 2 numbers
  rows /root/a/x
  # 1 array of 2 numbers
  rows /root/a/y
  # 1 array of 2 numbers
  rows /root/b/x
  # 1 array of 2 numbers
  rows /root/b/y
  # one object of 2 scalars, such as "m", in 1 of 1 object
  inline /root/c
  --inline-columns 1
! qvejmap: small: no rule is found
$ qvejmap shape small --key-names x
! qvejmap: --key-names: 'x' is not a whole number (qvejmap --help tells more)
? 2
$ qvejmap tables small --key-names 3
! qvejmap: --key-names needs --shape auto (qvejmap --help tells more)
? 2
# A mistake has its place, in a pipe too.
$ printf '{"a":[1,2,3,4,5],\n"b":}' | qvejmap shape -
! qvejmap: <stdin>:2:5: a value was expected
!     "b":}
!         ^
? 3
$ printf '{"a":[1,2,3,4,5]' | qvejmap shape -
! qvejmap: <stdin>:1:17: the document ends before a complete object or array
!     {"a":[1,2,3,4,5]
!                     ^
? 3
$ printf '{"a":[[[1,2],[3]]]}' | qvejmap shape - --depth 3
! qvejmap: <stdin>:1:8: the document is nested deeper than the limit of 3 (--depth)
!     {"a":[[[1,2],[3]]]}
!            ^
? 6
$ echo 5 | qvejmap shape -
! qvejmap: <stdin>:1:1: a document must be an object or an array
!     5
!     ^
? 3
$ printf '{"\351":[1,2,3,4,5]}' > latin; qvejmap shape latin
! qvejmap: latin:1:3: invalid UTF-8 (--encoding NAME for text in another encoding, --invalid replace to go on)
!     {"�":[1,2,3,4,5]}
!       ^
? 3
$ qvejmap shape latin --encoding latin1
  # 1 array of 5 numbers
  rows /root/é
$ qvejmap shape nothing
! qvejmap: nothing: No such file or directory
? 5
# Nothing stays of the copy of a pipe, and where it cannot be made is told.
$ mkdir copies; qvejmap shape - < small > /dev/null; TMPDIR=copies sh -c 'cat small | qvejmap shape -'; ls -A copies
  # one object of 2 scalars, such as "m", in 1 of 1 object
  inline /root/c
$ cat small | TMPDIR=nowhere qvejmap shape -
! qvejmap: nowhere/: No such file or directory
? 5
