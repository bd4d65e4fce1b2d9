#!/usr/bin/env python3
"""Reads unwrapped mail with Python's standard email package, an independent
MIME reader, and checks it against EXPECT (JSON): no TNEF part is left, every
attachment is present with its name and its SHA-256, and the body text
appears in exactly one text/plain part. Exits 1 with the reasons when anything differs."""
import email
import email.policy
import hashlib
import json
import sys


def main(path, expect_path):
    with open(path, 'rb') as f:
        message = email.message_from_binary_file(f, policy=email.policy.default)
    with open(expect_path) as f:
        expect = json.load(f)
    problems, found, bodies = [], {}, 0
    for part in message.walk():
        if part.is_multipart() or part.get_content_maintype() == 'message':
            continue
        kind = part.get_content_type()
        if kind in ('application/ms-tnef', 'application/vnd.ms-tnef'):
            problems.append('a TNEF part is left')
        payload = part.get_payload(decode=True) or b''
        name = part.get_filename()
        if name is not None:
            found[name] = hashlib.sha256(payload).hexdigest()
        elif kind == 'text/plain':
            bodies += payload.decode('utf-8', 'replace').count(expect['body'])
    if message.get('X-MS-TNEF-Correlator') is not None:
        problems.append('X-MS-TNEF-Correlator is left')
    if found != expect['attachments']:
        problems.append('attachments %r, expected %r' % (found, expect['attachments']))
    if bodies != 1:
        problems.append('the body appears %d times' % bodies)
    for problem in problems:
        print(problem, file=sys.stderr)
    return 1 if problems else 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1], sys.argv[2]))
