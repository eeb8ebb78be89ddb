"""An SMB server on port 4455 for the tests, with the share UPDATES for the fetcher."""

import argparse
import time

from impacket import smb3structs
from impacket.ntlm import compute_lmhash, compute_nthash
from impacket.smbserver import SimpleSMBServer


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("directory")
    parser.add_argument("password")
    parser.add_argument("log", help="a line for each read with its position")
    parser.add_argument("--pause", type=float, default=0, help="seconds before each read")
    parser.add_argument("--for-all", action="store_true", help="anybody may read")
    options = parser.parse_args()

    server = SimpleSMBServer(listenAddress="127.0.0.1", listenPort=4455)
    server.setSMB2Support(True)
    server.setSMBChallenge("")
    server.addShare("UPDATES", options.directory)
    if not options.for_all:
        hashes = compute_lmhash(options.password), compute_nthash(options.password)
        server.addCredential("fetcher", 0, *hashes)
    inner = server._SimpleSMBServer__server  # only this one lets commands be watched
    read = None

    def watched_read(connection, smb_server, packet):
        position = smb3structs.SMB2Read(packet["Data"])["Offset"]
        with open(options.log, "a", encoding="utf-8") as log:
            log.write(f"read {position}\n")
        time.sleep(options.pause)
        return read(connection, smb_server, packet)

    read = inner.hookSmb2Command(smb3structs.SMB2_READ, watched_read)
    server.start()


main()
