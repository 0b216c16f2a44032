#!/usr/bin/env python3
"""run_all.py finds what is wrong in a page: every rule once, with the message that it gives."""
import os
import subprocess
import sys

sys.dont_write_bytecode = True  # nothing is left in the source tree
from run_all import Options, empty

RUN_ALL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "run_all.py")

# (page, what run_all.py must say, or None for a page without a fault)
PAGES = {
    "sound": ("<!-- preamble: triangle -->\n```cpp\npos.cols;  // -> 3\n```\n\n"
              "```console\n$ echo a; echo b; echo c\na\n...\nc\n```\n", None),
    "value": ("```cpp\n1 + 1;  // -> 3\n```\n", "value.md:2: the example says 3, it gives 2"),
    "compiler": ("```cpp\nno_such_name();\n```\n", "does not compile"),
    "main": ("```cpp\nint main() { return 4; }\n```\n", "the program ends with 4"),
    "output": ("```cpp\n#include <cstdio>\nint main() { std::puts(\"yes\"); }\n```\n<!-- output -->\n```text\nno\n```\n",
               "the program prints\nyes"),
    "file": ("```cpp\nstd::fputs(\"a\\n\", std::fopen(\"a.txt\", \"w\"));\n```\n<!-- file: a.txt -->\n```text\nb\n```\n",
             "a.txt holds\na"),
    "printed": ("```console\n$ echo yes\nno\n```\n", "'echo yes' prints\nyes"),
    "status": ("```console\n$ false\n```\n", "'false' ends with 1, not 0"),
    "stated status": ("<!-- status: 3 -->\n```console\n$ true\n```\n", "'true' ends with 0, not 3"),
    "commands": ("```sh\nexit 2\n```\n", "'exit 2' ends with 2"),
    "language": ("```\nwhat is this\n```\n", "no rule for a block of language ''"),
    "end": ("```cpp\nint i;\n", "the block does not end"),
    "reason": ("<!-- not run: -->\n```sh\n./scripts/test\n```\n", "why is it not run?"),
    "script": ("<!-- not run: long -->\n```sh\n./scripts/no-such-script\n```\n", "there is no scripts/no-such-script"),
    "needs": ("<!-- needs: no-such-program -->\n```sh\nno-such-program\n```\n<!-- needs: bash -->\n```sh\nexit 5\n```\n",
              "6: 'exit 5' ends with 5"),
    "setup": ("<!-- setup: echo a > file -->\n```console\n$ cat file\na\n```\n", None),
    "wrong setup": ("<!-- setup: exit 6 -->\n```console\n$ true\n```\n", "'exit 6' ends with 6"),
    "line": ("<!-- quoted from: LICENSE -->\n```cmake\nproject(x)\n```\n", "'project(x)' does not stand in"),
    "whole": ("<!-- quoted from: LICENSE -->\n```text\nMIT\n```\n", "the block is not"),
}


def passes(options, name, text, message):
    """Runs a page of its own, below a root that looks like the sources."""
    root = os.path.join(options.work, name.replace(" ", "_"))
    empty(root)
    for entry in ("examples", "include", "tests", "scripts", "LICENSE"):
        os.symlink(os.path.join(options.source, entry), os.path.join(root, entry))
    page = f"{name.split()[-1]}.md"
    with open(os.path.join(root, page), "w", encoding="utf-8") as file:
        file.write(text)
    result = subprocess.run([sys.executable, RUN_ALL, f"file={page}", f"source={root}", f"work={root}/work",
                             f"cxx={options.cxx}", f"flags={options.flags}", f"library={options.library}"],
                            text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    if (result.returncode == 0) == (message is None) and (message or "") in result.stdout:
        return True
    print(f"{name}: status {result.returncode}, wanted {message!r} in\n{result.stdout}")
    return False


def main():
    options = Options(sys.argv[1:])
    results = [passes(options, name, text, message) for name, (text, message) in PAGES.items()]
    sys.exit(not all(results))


if __name__ == "__main__":
    main()
