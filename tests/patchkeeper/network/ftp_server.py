"""An FTP server on port 2121 for the tests: the fetcher may log in, and anybody as anonymous."""

import argparse
import os
import time

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import DTPHandler, FTPHandler
from pyftpdlib.servers import FTPServer


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("directory")
    parser.add_argument("password")
    parser.add_argument("log", help="a line for each command but the password")
    parser.add_argument("--rate", type=int, default=0, help="bytes per second")
    parser.add_argument("--restless", action="store_true", help="a file changes once it is looked at")
    options = parser.parse_args()

    class Data(DTPHandler):
        ac_out_buffer_size = 16384

        def use_sendfile(self):
            return False

        def send(self, data):
            if options.rate:
                time.sleep(len(data) / options.rate)
            return super().send(data)

    class Handler(FTPHandler):
        authorizer = DummyAuthorizer()
        dtp_handler = Data
        auth_failed_timeout = 0

        def pre_process_command(self, line, cmd, arg):
            if cmd != "PASS":
                with open(options.log, "a", encoding="utf-8") as log:
                    log.write(line + "\n")
            super().pre_process_command(line, cmd, arg)

        def ftp_MDTM(self, path):
            answer = super().ftp_MDTM(path)
            if options.restless:
                os.utime(path)
            return answer

    Handler.authorizer.add_user("fetcher", options.password, options.directory)
    Handler.authorizer.add_anonymous(options.directory + "/public")
    FTPServer(("127.0.0.1", 2121), Handler).serve_forever()


main()
