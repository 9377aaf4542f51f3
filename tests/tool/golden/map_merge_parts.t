# needs github_events.json
# The maps of the parts of a document, merged in any order, are the map of the whole, but for a
# length: "null" has four bytes where another element makes the column one of characters.
$ python3 -c '
> import json
> for n, event in enumerate(json.load(open("github_events.json"))):
>     json.dump([event], open("%02d.event" % n, "w"))'
> for e in *.event; do qvejmap map $e -o $e.map || exit; done
> qvejmap map github_events.json -o whole; grep -o '"NAME"' whole | wc -l
  239
$ qvejmap map merge *.map -o merged; qvejmap map diff whole merged
  ~ column payload_forkee.homepage: length 4 -> 1
? 1
$ qvejmap map merge 00.event.map $(ls -r *.map) -o merged --force; qvejmap map diff whole merged
  ~ column payload_forkee.homepage: length 4 -> 1
? 1
