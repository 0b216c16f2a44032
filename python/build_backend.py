"""Builds the wheel: CMake compiles and installs its component `python`, this packs what it installed.

TESSOLV_BUILD_FOLDER names a build of CMake to take the module from, configured with TESSOLV_BUILD_PYTHON; without it one
is made in build/pip.
"""

import base64
import hashlib
import os
import re
import subprocess
import sys
import sysconfig
import tarfile
import tempfile
import tomllib
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def project():
    table = tomllib.loads((ROOT / "pyproject.toml").read_text())["project"]
    table["version"] = re.search(r"project\(tessolv VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())[1]
    return table


def metadata():
    table = project()
    lines = [
        "Metadata-Version: 2.1",
        f"Name: {table['name']}",
        f"Version: {table['version']}",
        f"Summary: {table['description']}",
        f"License: {table['license']['text']}",
        f"Requires-Python: {table['requires-python']}",
        "Description-Content-Type: text/markdown",
    ]
    lines += [f"Classifier: {name}" for name in table["classifiers"]]
    lines += [f"Requires-Dist: {name}" for name in table["dependencies"]]
    return "\n".join(lines) + "\n\n" + (ROOT / table["readme"]).read_text()


def run(*command):
    subprocess.run([str(part) for part in command], check=True, cwd=ROOT)


def installed_package(prefix):
    """Has CMake install the package below `prefix`; the folder that holds it."""
    folder = Path(os.environ.get("TESSOLV_BUILD_FOLDER", ROOT / "build" / "pip"))
    if "TESSOLV_BUILD_FOLDER" not in os.environ or not (folder / "CMakeCache.txt").exists():
        options = {"CMAKE_BUILD_TYPE": "Release", "TESSOLV_BUILD_PYTHON": "ON", "Python3_EXECUTABLE": sys.executable}
        options |= {f"TESSOLV_BUILD_{part}": "OFF" for part in ("TESTS", "TOOLS", "EXAMPLES")}
        run("cmake", "-S", ".", "-B", folder, *(f"-D{name}={value}" for name, value in options.items()))
    run("cmake", "--build", folder, "--target", "tessolv_python", "-j", os.cpu_count() or 1)
    run("cmake", "--install", folder, "--component", "python", "--prefix", prefix, "--strip")
    return next(Path(prefix).rglob("tessolv/__init__.py")).parent


def write_wheel(path, files):
    """Packs (name, bytes) with the list of their hashes."""
    info = info_folder()
    record = []
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as wheel:
        for name, content in files:
            digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
            record.append(f"{name},sha256={digest},{len(content)}\n")
            wheel.writestr(name, content)
        wheel.writestr(f"{info}/RECORD", "".join(record) + f"{info}/RECORD,,\n")


def info_folder():
    return "{name}-{version}.dist-info".format(**project())


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    """Without this pip would build a whole wheel to look into it, and then another one."""
    folder = Path(metadata_directory) / info_folder()
    folder.mkdir()
    (folder / "METADATA").write_text(metadata())
    return folder.name


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    table = project()
    python = f"cp{sys.version_info.major}{sys.version_info.minor}"
    tag = f"{python}-{python}-" + re.sub(r"[-.]", "_", sysconfig.get_platform())
    info = info_folder()
    with tempfile.TemporaryDirectory() as prefix:
        package = installed_package(prefix)
        files = [(f"tessolv/{f.relative_to(package)}", f.read_bytes()) for f in sorted(package.rglob("*")) if f.is_file()]
    files.append((f"{info}/METADATA", metadata().encode()))
    files.append((f"{info}/LICENSE", (ROOT / "LICENSE").read_bytes()))
    about = f"Wheel-Version: 1.0\nGenerator: tessolv\nRoot-Is-Purelib: false\nTag: {tag}\n"
    files.append((f"{info}/WHEEL", about.encode()))
    name = f"{table['name']}-{table['version']}-{tag}.whl"
    write_wheel(Path(wheel_directory) / name, files)
    return name


def build_sdist(sdist_directory, config_settings=None):
    """The tree without builds and hidden folders."""
    table = project()
    name = f"{table['name']}-{table['version']}"

    def source(member):
        parts = Path(member.name).parts[1:]
        unwanted = parts and (parts[0].startswith((".", "build")) or "__pycache__" in parts)
        return None if unwanted else member

    with tarfile.open(Path(sdist_directory) / f"{name}.tar.gz", "w:gz", format=tarfile.PAX_FORMAT) as archive:
        archive.add(ROOT, name, filter=source)
        about = tarfile.TarInfo(f"{name}/PKG-INFO")
        text = metadata().encode()
        about.size = len(text)
        with tempfile.TemporaryFile() as file:
            file.write(text)
            file.seek(0)
            archive.addfile(about, file)
    return f"{name}.tar.gz"
