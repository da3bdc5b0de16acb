"""A mail server that answers one request after the other with the lines of a file, STATUS [NAME:VALUE]... [=HEXADECIMAL],
and then with 500, until it is ended.
    odd_server.py ANSWERS"""

import sys
from http.server import BaseHTTPRequestHandler, HTTPServer
from pathlib import Path

answers = Path(sys.argv[1]).read_text("utf-8").splitlines()


class OddServer(BaseHTTPRequestHandler):
    def do_OPTIONS(self) -> None:  # noqa: N802, the library's name
        self.rfile.read(int(self.headers.get("Content-Length", "0")))
        packed = self.headers.get_all("Accept-Encoding", [])  # nobody wants an answer packed
        print(self.command, self.headers.get("Cookie", "without a cookie"), *packed, flush=True)
        words = (answers.pop(0) if answers else "500").split()
        body = b"".join(bytes.fromhex(word[1:]) for word in words if word.startswith("="))
        self.send_response_only(int(words[0]))
        for word in words[1:]:
            if not word.startswith("="):
                self.send_header(*word.split(":", 1))
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    do_POST = do_OPTIONS


server = HTTPServer(("127.0.0.1", 0), OddServer)
print(f"listening at http://127.0.0.1:{server.server_port}", flush=True)
server.serve_forever()
