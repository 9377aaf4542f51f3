#!/usr/bin/env python3
"""Completion in real shells: types commands with TABs and looks at what the completed command prints.

    completion.py TOOL

fish is asked by its own `complete -C`.  A shell that is not installed is left out, and said so.
"""
import os
import pty
import select
import shutil
import subprocess
import sys
import tempfile

TOOL = os.path.abspath(sys.argv[1])
EXAMPLE = os.path.join(os.path.dirname(__file__), "../../examples/orders.json")
PATIENCE = 60  # seconds without a byte, after which a shell is taken for stuck

# What is typed, and what is printed only when each TAB found the right word.
TYPED = [
    ("qvejmap conv\t", "convert: FILE is missing"),
    ("qvejmap help map merg\t", "Usage: qvejmap map merge A B"),
    ("qvejmap tables ord\t --name\t", "orders_tags\r"),
    ("qvejmap map -q ord\t", '"DSNAME"'),
    ("qvejmap map exp\ted\t", '"DSNAME"'),  # a verb and a file begin with "explain"
    ("qvejmap read ord\torders_tags --form\tnd\t", '"tags1":"gift"'),
    ("qvejmap read ord\torders_tags --format=nd\t", '"tags1":"gift"'),
    ("qvejmap tables sp\t --names", "orders_tags\r"),  # its name has a blank
    ("qvejmap tables ord\t --names --shape=au\t", "orders_tags\r"),
    ("qvejmap tables ord\t --names --shape=ru\t", "is no rule"),
    ("qvejmap tables ord\t --names --shape ru\t", "is no rule"),
    ("qvejmap completion fi\t", "complete -c qvejmap"),
]

# The whole line, and the words that it may become.
FISH = [
    ("qvejmap conv", ["convert"]),
    ("qvejmap help map merg", ["merge"]),
    ("qvejmap map exp", ["explain", "explained.json"]),
    ("qvejmap map merge explained.json ord", ["orders.json"]),
    ("qvejmap tables orders.json --na", ["--names", "--naming"]),
    ("qvejmap read orders.json orders --naming ", ["map", "original"]),
    ("qvejmap read orders.json orders --format=nd", ["--format=ndjson"]),
    ("qvejmap tables sp", ["sp ace.json"]),
    ("qvejmap tables orders.json --shape=", ["--shape=auto", "--shape=explained.json",
                                             "--shape=orders.json", "--shape=rules",
                                             "--shape=sp ace.json"]),
    ("qvejmap tables orders.json --limit ", []),
]

ZSH = "autoload -U compinit; compinit -u -D; source <(qvejmap completion zsh)"
SHELLS = [
    (["bash", "--norc", "-i"], "source <(qvejmap completion bash)"),
    (["zsh", "-f", "-i"], ZSH),
]


def environment(place):
    path = os.path.dirname(TOOL) + ":" + os.environ["PATH"]
    return {"PATH": path, "HOME": place, "TERM": "dumb", "LC_ALL": "C.UTF-8", "PS1": "$ "}


def read_until(terminal, mark):
    text = b""
    while mark not in text:
        if not select.select([terminal], [], [], PATIENCE)[0]:
            sys.exit(f"no {mark!r} in {text!r}")
        text += os.read(terminal, 65536)
    return text.decode(errors="replace")


def type_into(shell, setup, keys, place):
    """What the terminal shows from the keys on."""
    ours, theirs = pty.openpty()
    process = subprocess.Popen(shell, stdin=theirs, stdout=theirs, stderr=theirs, cwd=place,
                               env=environment(place), start_new_session=True)
    os.close(theirs)
    os.write(ours, (setup + "; echo rea''dy\n").encode())
    read_until(ours, b"ready\r\n")
    os.write(ours, (keys + "\necho do''ne\n").encode())
    shown = read_until(ours, b"done\r\n")
    os.write(ours, b"exit\n")
    os.close(ours)
    process.kill()
    process.wait()
    return shown


def fish_offers(line, place):
    script = f"qvejmap completion fish | source; complete -C '{line}'"
    found = subprocess.run(["fish", "--no-config", "-c", script], cwd=place, check=True,
                           env=environment(place), capture_output=True, text=True)
    return sorted(offer.split("\t")[0] for offer in found.stdout.splitlines()) + (
        [found.stderr] if found.stderr else [])


def main():
    failures = 0
    with tempfile.TemporaryDirectory() as place:
        for name in ("orders.json", "explained.json", "sp ace.json"):
            shutil.copy(EXAMPLE, os.path.join(place, name))
        with open(os.path.join(place, "rules"), "w", encoding="utf-8") as rules:
            rules.write("nonsense\n")
        for shell, setup in SHELLS:
            if shutil.which(shell[0]) is None:
                print(f"{shell[0]} is not installed")
                continue
            for keys, printed in TYPED:
                shown = type_into(shell, setup, keys, place)
                if printed not in shown:
                    failures += 1
                    print(f"{shell[0]}: {keys!r} showed {shown!r}, without {printed!r}")
        if shutil.which("fish") is None:
            print("fish is not installed")
        else:
            for line, words in FISH:
                found = fish_offers(line, place)
                if found != words:
                    failures += 1
                    print(f"fish: {line!r} offers {found}, not {words}")
    sys.exit(failures != 0)


main()
