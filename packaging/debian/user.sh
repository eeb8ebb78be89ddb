# The user as whom the server and the tool run, and to whom the tool's state belongs. It stays when the packages go:
# files of it may stand elsewhere, and its number must not be given to somebody else.
make_user() {
    adduser --quiet --system --group --no-create-home --home /var/lib/cimserver cimserver
}
