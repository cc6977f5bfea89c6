#!/usr/bin/env python3
"""An RFC 3161 timestamp server of the test's own, on 127.0.0.1: every POSTed request is
answered by `openssl ts -reply` with the throwaway authority's timestamping certificate.
After ANSWERS requests (when given) it answers every further one with HTTP 503, as a server
that stopped serving halfway through a signing would.
    timestamp_server.py PORT_FILE TSA_CONFIG [ANSWERS]
It writes the port it listens on to PORT_FILE and serves until it is killed."""
import http.server
import subprocess
import sys


class TimestampHandler(http.server.BaseHTTPRequestHandler):
    answered = 0
    limit = None
    config = None

    def do_POST(self):
        length = int(self.headers.get("Content-Length", "0"))
        query = self.rfile.read(length)
        cls = type(self)
        if cls.limit is not None and cls.answered >= cls.limit:
            self.send_error(503, "no more timestamps")
            return
        reply = subprocess.run(
            ["openssl", "ts", "-reply", "-config", cls.config, "-queryfile", "/dev/stdin", "-out", "/dev/stdout"],
            input=query, capture_output=True)
        if reply.returncode != 0 or not reply.stdout:
            self.send_error(500, "openssl ts -reply failed")
            return
        cls.answered += 1
        self.send_response(200)
        self.send_header("Content-Type", "application/timestamp-reply")
        self.send_header("Content-Length", str(len(reply.stdout)))
        self.end_headers()
        self.wfile.write(reply.stdout)

    def log_message(self, *args):
        pass


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit("usage: timestamp_server.py PORT_FILE TSA_CONFIG [ANSWERS]")
    TimestampHandler.config = sys.argv[2]
    if len(sys.argv) == 4:
        TimestampHandler.limit = int(sys.argv[3])
    server = http.server.HTTPServer(("127.0.0.1", 0), TimestampHandler)
    with open(sys.argv[1] + ".part", "w") as f:
        f.write(f"{server.server_address[1]}\n")
    # Renamed when complete, so that a reader never sees half a port number.
    import os
    os.replace(sys.argv[1] + ".part", sys.argv[1])
    server.serve_forever()


if __name__ == "__main__":
    main()
