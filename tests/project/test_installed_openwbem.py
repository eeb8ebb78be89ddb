"""The provider library built as against an installed OpenWBEM: our provider API laid out like one.

Arguments, before those of unittest: the server of this build, and the folder with the API's libraries.
"""

import http.client
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SERVER, LIBRARIES = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(2))
NAMES = ("openwbem", "owcppprovifc", "owprovider")
UMBRELLA = "OW_CppProviderIncludes.hpp"


def run(*command):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False)


class Installation(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.root = self.folder / "opt"
        self.headers = self.root / "include/openwbem"
        shutil.copytree(SOURCE / "openwbem/include/openwbem", self.headers)
        (self.root / "lib").mkdir()
        for name in NAMES:
            (self.root / f"lib/lib{name}.so").symlink_to(LIBRARIES / f"lib{name}.so")

    def configure(self, compiler="g++"):
        return run("cmake", "-S", SOURCE, "-B", self.folder / "build", "-G", "Ninja",
                   f"-DOPENWBEM_ROOT={self.root}", f"-DCMAKE_CXX_COMPILER={compiler}")

    def forbid_unlisted_names(self):
        """What stands in no published header counts as not there once all headers have been read."""
        names = [line for line in (SOURCE / "tests/project/unlisted_names.txt").read_text().splitlines()
                 if line and not line.startswith("#")]
        umbrella = self.headers / UMBRELLA
        others = [f'#include "{header.name}"' for header in sorted(self.headers.glob("*.hpp")) if header != umbrella]
        poison = ["#pragma GCC poison " + name for name in names]
        umbrella.write_text("\n".join([umbrella.read_text(), *others, *poison, ""]))

    def builds_with(self, compiler):
        self.forbid_unlisted_names()
        done = self.configure(compiler)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        done = run("cmake", "--build", self.folder / "build")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertNotIn("warning:", done.stdout + done.stderr)
        return self.folder / "build/lib/providers/libSoftwareUpdateProvider.so"

    def test_library_offers_its_entry_points_and_asks_for_no_library_of_openwbem(self):
        library = self.builds_with("g++")
        defined = run("nm", "-D", "--defined-only", library).stdout.split()[2::3]
        self.assertEqual(sorted(defined), ["createProviderSoftwareUpdateProvider", "getOWVersion"])
        needed = run("readelf", "-d", library).stdout
        for name in NAMES:
            self.assertNotIn(f"lib{name}.so", needed)
        for folder in ("openwbem", "cimserver", "patchkeeper"):
            self.assertFalse((self.folder / "build" / folder).exists(), folder)

    def install(self):
        """Into the installation itself, where its server looks for libraries."""
        done = run("cmake", "--install", self.folder / "build")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        listed = run(self.root / "sbin/register-software-update-provider", "list")
        self.assertEqual((listed.returncode, len(listed.stdout.splitlines())), (0, 9), listed.stderr)
        return self.root / "lib/openwbem/c++providers", self.root / "share/software-update-provider"

    def test_library_is_taken_by_a_server_where_it_is_installed(self):
        self.builds_with("clang++")
        providers, classes = self.install()
        self.assertEqual([entry.name for entry in providers.iterdir()], ["libSoftwareUpdateProvider.so"])
        server = subprocess.Popen(
            [SERVER, "--config", self.config(), "--listen", "127.0.0.1:0", "--provider-dir", providers, "--mof",
             classes / "qualifiers.mof", classes / "ZNX.mof"], stderr=subprocess.PIPE, text=True)
        self.addCleanup(lambda: (server.kill(), server.wait(), server.stderr.close()))
        line = server.stderr.readline()
        self.assertIn("Listening on http://127.0.0.1:", line)
        answer = self.ask(int(line.rsplit(":", 1)[1]))
        self.assertIn('<ERROR CODE="7"', answer)  # the library's answer; without a library it is 1

    def config(self):
        file = self.folder / "cimserver.conf"
        file.write_text("owcimomd.allow_anonymous = true\ncimserver.writers = *\n")
        return file

    def ask(self, port):
        body = ('<?xml version="1.0"?><CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1" PROTOCOLVERSION="1.0">'
                '<SIMPLEREQ><IMETHODCALL NAME="CreateInstance"><LOCALNAMESPACEPATH><NAMESPACE NAME="root"/>'
                '<NAMESPACE NAME="cimv2"/></LOCALNAMESPACEPATH><IPARAMVALUE NAME="NewInstance">'
                '<INSTANCE CLASSNAME="ZNX_AvailableSoftwareFileName"><PROPERTY NAME="FileName" TYPE="string">'
                '<VALUE>x</VALUE></PROPERTY></INSTANCE></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>')
        client = http.client.HTTPConnection("127.0.0.1", port, timeout=60)
        self.addCleanup(client.close)
        client.request("POST", "/cimom", body, {
            "Content-Type": 'application/xml; charset="utf-8"', "CIMOperation": "MethodCall",
            "CIMMethod": "CreateInstance", "CIMObject": "root/cimv2"})
        return client.getresponse().read().decode()

    def is_refused(self, reason):
        done = self.configure()
        self.assertNotEqual(done.returncode, 0)
        self.assertIn(reason, " ".join(done.stderr.split()))

    def test_missing_header_is_named(self):
        (self.headers / UMBRELLA).unlink()
        self.is_refused(f"there is no header {self.headers / UMBRELLA}")

    def test_missing_library_is_named(self):
        (self.root / "lib/libowprovider.so").unlink()
        self.is_refused("there is no library libowprovider.so")

    def test_other_version_is_told(self):
        config = self.headers / "OW_config.h"
        config.write_text(config.read_text().replace('"3.0.3"', '"3.1.0"'))
        self.is_refused('OW_config.h tells version "3.1.0"')


if __name__ == "__main__":
    unittest.main()
