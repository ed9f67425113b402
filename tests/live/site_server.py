"""Serves the made site over TLS on a port of this machine, for each of its hosts."""

import http.server
import os
import pathlib
import ssl
import subprocess
import threading


class Answer:
    def __init__(self, folder, line):
        number, status, self.address, self.group, self.shows, *heads = line.split("\t")
        self.status = int(status)
        self.heads = [head.split(": ", 1) for head in heads]
        self.body = (folder / number).read_bytes()


def answers(folder):
    """By address, from what `norvelane-example --site server` wrote."""
    folder = pathlib.Path(folder)
    lines = (folder / "answers.tsv").read_text(encoding="utf-8").splitlines()
    return {answer.address: answer for answer in (Answer(folder, line) for line in lines)}


class SiteServer:
    def __init__(self, site, folder):
        asked = self.asked = []  # addresses, in order
        unknown = self.unknown = set()

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_GET(self):
                address = f"https://{self.headers.get('Host', '')}{self.path}"
                asked.append(address)
                answer = site.get(address)
                if answer is None:
                    unknown.add(address)
                self.send_response_only(answer.status if answer else 404)
                for name, value in answer.heads if answer else [("Content-Length", "0")]:
                    self.send_header(name, value)
                self.end_headers()
                if answer:
                    self.wfile.write(answer.body)

            def log_message(self, *_):
                pass

        class Server(http.server.ThreadingHTTPServer):
            def handle_error(self, *_):  # browsers close connections as they please
                pass

        self._server = Server(("127.0.0.1", 0), Handler)
        key = os.path.join(folder, "key.pem")
        subprocess.run(["openssl", "req", "-x509", "-nodes", "-subj", "/CN=made site", "-days", "2",
                        "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                        "-keyout", key, "-out", key + ".crt"], check=True, capture_output=True)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(key + ".crt", key)
        # Connections that a browser makes ahead would stop all others in the handshake.
        self._server.socket = context.wrap_socket(self._server.socket, server_side=True,
                                                  do_handshake_on_connect=False)
        self.port = self._server.server_address[1]

    def __enter__(self):
        threading.Thread(target=self._server.serve_forever, daemon=True).start()
        return self

    def __exit__(self, *_):
        self._server.shutdown()
        self._server.server_close()

    def flags(self):
        """For a browser that shall find the site's hosts here."""
        return [f"--host-resolver-rules=MAP * 127.0.0.1:{self.port}", "--ignore-certificate-errors"]
