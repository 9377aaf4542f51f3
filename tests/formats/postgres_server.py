"""A PostgreSQL server of its own for a test: in a temporary directory, on a Unix socket."""

import glob
import os
import shutil
import subprocess
import tempfile
import time

# It refuses to run as root.
USER = ["setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups"] if os.geteuid() == 0 else []


def programs():
    """The folder of the server's programs; None: it is not installed."""
    folders = [os.path.dirname(shutil.which("initdb") or ""), *sorted(glob.glob("/usr/lib/postgresql/*/bin"))]
    return next((f for f in reversed(folders) if f and os.path.exists(f + "/initdb") and shutil.which("psql")), None)


class Server:
    def __enter__(self):
        self.place = tempfile.mkdtemp(prefix="qvejmap-postgres-")
        if USER:
            shutil.chown(self.place, "nobody", "nogroup")
        data = self.place + "/data"
        subprocess.run([*USER, programs() + "/initdb", "-D", data, "-U", "tester", "-E", "UTF8", "--locale=C", "-A", "trust", "-N"],
                       check=True, stdout=subprocess.DEVNULL, cwd=self.place)
        with open(self.place + "/log", "w") as log:
            self.process = subprocess.Popen(
                [*USER, programs() + "/postgres", "-D", data, "-k", self.place, "-c", "listen_addresses=", "-c", "fsync=off"],
                stdout=log, stderr=log, cwd=self.place)
        self.address = f"postgresql:///postgres?host={self.place}&user=tester"
        for _ in range(600):
            if subprocess.run(["pg_isready", "-q", "-h", self.place]).returncode == 0:
                return self
            assert self.process.poll() is None, open(self.place + "/log").read()
            time.sleep(0.1)
        raise AssertionError("the server does not answer")

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()
        shutil.rmtree(self.place)

    def sql(self, text):
        """Rows of a query, or of none: lists of texts and None."""
        out = subprocess.run(["psql", self.address, "-X", "-q", "-A", "-t", "-v", "ON_ERROR_STOP=1", "-P", "null=\x01", "-F", "\x02", "-R", "\x03"],
                             input=text.encode(), capture_output=True)
        assert out.returncode == 0, (text, out.stderr)
        rows = out.stdout.decode().removesuffix("\n").split("\x03") if out.stdout else []
        return [[None if cell == "\x01" else cell for cell in row.split("\x02")] for row in rows]
