"""An FTP server on port 2121 for the tests: the fetcher may log in, and anybody as anonymous."""

import argparse

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler, ThrottledDTPHandler
from pyftpdlib.servers import FTPServer


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("directory")
    parser.add_argument("password")
    parser.add_argument("log", help="a line for each command but the password")
    parser.add_argument("--rate", type=int, default=0, help="bytes per second")
    options = parser.parse_args()

    class Data(ThrottledDTPHandler):
        write_limit = options.rate

    class Handler(FTPHandler):
        authorizer = DummyAuthorizer()
        dtp_handler = Data
        auth_failed_timeout = 0

        def pre_process_command(self, line, cmd, arg):
            if cmd != "PASS":
                with open(options.log, "a", encoding="utf-8") as log:
                    log.write(line + "\n")
            super().pre_process_command(line, cmd, arg)

    Handler.authorizer.add_user("fetcher", options.password, options.directory)
    Handler.authorizer.add_anonymous(options.directory + "/public")
    FTPServer(("127.0.0.1", 2121), Handler).serve_forever()


main()
