# needs github_events.json events_map.json
# The map that the README shows, on a real document.
$ qvejmap read github_events.json events --map events_map.json --limit 3
  event,at,kind,who,commits,repo_id\r
  1,10 Jan 2013 07:58,PushEvent,jathanism,1,"6,357,414"\r
  2,10 Jan 2013 07:58,CreateEvent,noahlu,,"7,536,438"\r
  3,10 Jan 2013 07:58,ForkEvent,rtlong,,"7,270,403"\r
$ qvejmap map check events_map.json github_events.json | head -1
  events_map.json: well formed, tables: 1, columns: 6
