"""Includes go downwards only. The server's layers see of each other the one public header of a layer
below; the library sees the provider API, its own common/ and the neighbours it names; the tool knows
nothing of CIM. Usage: check_layers.py ROOT
"""

import pathlib
import re
import sys

# A layer may include the public header of these layers.
LAYERS = {
    "http": set(),
    "cimxml": {"operations"},
    "operations": {"mof", "host"},
    "mof": set(),
    "host": set(),
}
PUBLIC_HEADER = {
    "http": "Http.hpp",
    "cimxml": "CimXml.hpp",
    "operations": "Operations.hpp",
    "mof": "Mof.hpp",
    "host": "Host.hpp",
}
# A provider folder may include these neighbours, beside common/ and itself.
NEIGHBOURS = {
    "active": set(),
    "available": {"component"},
    "common": set(),
    "component": set(),
    "filelist": {"available", "filename"},
    "filename": set(),
    "history": set(),
    "inventory": set(),
    "scheduled": set(),
}


def includes(path):
    return re.findall(r'^\s*#\s*include\s+"([^"]+)"', path.read_text(encoding="utf-8"), re.MULTILINE)


def sources(folder):
    return sorted(p for p in folder.rglob("*") if p.suffix in (".cpp", ".hpp", ".h"))


def server_problems(root):
    for layer, below in LAYERS.items():
        for path in sources(root / "cimserver" / layer):
            for include in includes(path):
                if include.startswith("OW_"):
                    if layer == "http":
                        yield path, include, "http knows nothing of CIM"
                    continue
                parts = pathlib.PurePosixPath(include).parts
                if parts[0] != "cimserver":
                    yield path, include, "write the path from the root, and only of this server"
                elif parts[1] == layer:
                    continue
                elif parts[1] not in below:
                    yield path, include, f"{layer} does not stand above {parts[1]}"
                elif parts[2:] != (PUBLIC_HEADER[parts[1]],):
                    yield path, include, "not the public header of that layer"


def provider_problems(root):
    for path in sources(root / "provider"):
        folder = path.relative_to(root / "provider").parts[0]
        for include in includes(path):
            if include.startswith("OW_"):
                continue
            parts = pathlib.PurePosixPath(include).parts
            if parts[0] == "platform":
                continue
            if parts[0] != "provider":
                yield path, include, "the library includes the provider API and itself only"
            elif folder == "master" or parts[1] in ("common", folder):
                continue
            elif parts[1] not in NEIGHBOURS.get(folder, set()):
                yield path, include, f"{folder} has no business with {parts[1]}"


def other_problems(root):
    for folder, allowed in (("patchkeeper", "patchkeeper/"), ("platform", "platform/"), ("openwbem", "OW_")):
        for path in sources(root / folder):
            for include in includes(path):
                if not include.startswith(allowed):
                    yield path, include, f"{folder}/ includes {allowed}… only"


def problems(root):
    found = []
    for check in (server_problems, provider_problems, other_problems):
        found += [f"{path.relative_to(root)}: {include}: {why}" for path, include, why in check(root)]
    if not sources(root / "cimserver"):
        found.append("no sources found: is this the right folder?")
    return found


if __name__ == "__main__":
    result = problems(pathlib.Path(sys.argv[1]))
    print("\n".join(result))
    sys.exit(1 if result else 0)
