#!/usr/bin/env python3
"""Reads a file of WARC 1.1 by the standard alone and checks it: a JSON object a record to the standard output.

What breaks the standard ends it with exit code 1 and a word on the standard error. Nothing of it is shared with what
writes such files.
"""

import base64
import hashlib
import http.client
import io
import json
import re
import sys
import zlib

MUST = ("WARC-Record-ID", "Content-Length", "WARC-Date", "WARC-Type")
TARGETED = ("response", "resource", "revisit")
UUID = re.compile(r"<urn:uuid:[0-9a-f]{8}-[0-9a-f]{4}-5[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}>\Z")
DATE = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ\Z")
URI = re.compile(r"[A-Za-z][A-Za-z0-9+.-]*:[!-~]*\Z")


class Broken(Exception):
    pass


def must(held, words):
    if not held:
        raise Broken(words)


def members(data):
    """The texts of the members of gzip, each by itself."""
    at = 0
    while at < len(data):
        packed = zlib.decompressobj(31)
        text = packed.decompress(data[at:])
        must(packed.eof, f"the member at {at} is not whole")
        yield at, text
        at = len(data) - len(packed.unused_data)


def record_in(text, at):
    """One record, and where the next one begins."""
    head, _, rest = text[at:].partition(b"\r\n\r\n")
    lines = head.split(b"\r\n")
    must(lines[0] == b"WARC/1.1", f"no record at {at}: {lines[0][:40]!r}")
    fields = {}
    for line in lines[1:]:
        name, colon, value = line.decode("utf-8").partition(": ")
        must(colon and name not in fields, f"line {line!r}")
        fields[name] = value
    for name in MUST:
        must(name in fields, f"{name} is missing")
    size = int(fields["Content-Length"])
    must(len(rest) >= size + 4, f"the block at {at} is not whole")
    must(rest[size:size + 4] == b"\r\n\r\n", f"no end after the block at {at}")
    return fields, rest[:size], at + len(head) + 4 + size + 4


def records(data):
    if data[:2] == b"\x1f\x8b":
        for at, text in members(data):
            fields, block, end = record_in(text, 0)
            must(end == len(text), f"more than one record in the member at {at}")
            yield fields, block
        return
    at = 0
    while at < len(data):
        fields, block, at = record_in(data, at)
        yield fields, block


class Socket:
    def __init__(self, data):
        self.data = data

    def makefile(self, *_):
        return io.BytesIO(self.data)


def sha1(data):
    return "sha1:" + base64.b32encode(hashlib.sha1(data).digest()).decode()


def answer_in(block, is_whole):
    """Status, headers and content by a library that knows nothing of archives."""
    head, blank, body = block.partition(b"\r\n\r\n")
    must(blank, "an answer without a blank line")
    for line in head.split(b"\r\n")[1:]:
        must(re.match(rb"[!#$%&'*+.^_`|~0-9A-Za-z-]+:[^\x00-\x08\x0a-\x1f\x7f]*\Z", line), f"header {line!r}")
    answer = http.client.HTTPResponse(Socket(block))
    answer.begin()
    if is_whole and answer.status >= 200 and answer.status not in (204, 304):
        read = answer.read()
        must(read == body, f"{len(body)} bytes in the block, {len(read)} by its headers")
    return answer, body


def checked(fields, block, seen):
    kind = fields["WARC-Type"]
    must(UUID.match(fields["WARC-Record-ID"]), fields["WARC-Record-ID"])
    must(fields["WARC-Record-ID"] not in seen, "the same name twice: " + fields["WARC-Record-ID"])
    must(DATE.match(fields["WARC-Date"]), fields["WARC-Date"])
    must((kind == "warcinfo") == (not seen), "warcinfo comes first, and once")
    must(kind not in TARGETED or URI.match(fields["WARC-Target-URI"]), fields.get("WARC-Target-URI"))
    for name in ("WARC-Refers-To", "WARC-Warcinfo-ID"):
        must(fields.get(name, next(iter(seen), None)) in seen or not seen, f"{name} leads nowhere")
    if "WARC-Block-Digest" in fields:
        must(fields["WARC-Block-Digest"] == sha1(block), "block digest")
    told = {"type": kind, "date": fields["WARC-Date"], "id": fields["WARC-Record-ID"], "fields": fields}
    payload = block
    if kind in ("response", "revisit"):
        must(fields["Content-Type"] == "application/http;msgtype=response", fields["Content-Type"])
        answer, payload = answer_in(block, kind == "response" and "WARC-Truncated" not in fields)
        told["status"] = answer.status
        told["headers"] = {name.lower(): value for name, value in answer.getheaders()}
    if kind == "revisit":
        must(payload == b"", "a revisit with a content")
        first = seen[fields["WARC-Refers-To"]]
        must(first["WARC-Payload-Digest"] == fields["WARC-Payload-Digest"], "a revisit of another content")
        must(first["WARC-Target-URI"] == fields["WARC-Refers-To-Target-URI"], "a revisit of another address")
        must(first["WARC-Date"] == fields["WARC-Refers-To-Date"], "a revisit of another date")
    elif "WARC-Payload-Digest" in fields:
        must(fields["WARC-Payload-Digest"] == sha1(payload), "payload digest")
    told["size"] = len(payload)
    told["md5"] = hashlib.md5(payload).hexdigest()
    told["sha256"] = hashlib.sha256(payload).hexdigest()
    told["text"] = payload[:2000].decode("latin-1")
    if kind == "metadata":
        told["known"] = json.loads(block)
    return told


def main(path):
    with open(path, "rb") as file:
        data = file.read()
    seen = {}
    for fields, block in records(data):
        try:
            print(json.dumps(checked(fields, block, seen)))
        except Broken as broken:
            raise Broken(f"record {len(seen)} ({fields.get('WARC-Target-URI')}): {broken}") from broken
        seen[fields["WARC-Record-ID"]] = fields
    must(seen, "no record at all")


if __name__ == "__main__":
    try:
        main(sys.argv[1])
    except Broken as broken:
        sys.exit(f"{sys.argv[1]}: {broken}")
