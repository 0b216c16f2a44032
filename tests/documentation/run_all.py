#!/usr/bin/env python3
"""Compiles and runs what a page or a header shows as code.

Blocks of a page are fenced, those of a header stand between @code and @endcode. By their language:

  cpp      A whole program when it has a main, else a fragment: the body of a function with the names of zeb::tessolv and,
           after a hidden comment <!-- preamble: NAME -->, the variables of preambles/NAME.inc. A line
           `expression;  // -> text` states what the expression gives.
  console  Lines `$ command`, each followed by what it prints (`...`: any lines) or by nothing, then it is not compared.
           <!-- status: N --> states the exit status of the last command.
  sh       Commands only.
  python   Is Python; the tests python/documentation run it, with the package.
  cmake    <!-- quoted from: FILE -->: each line stands in FILE, which another test uses. Blocks of cpp and text may
           say so too: then they are the whole FILE.
  text     After <!-- output --> what the program before prints; after <!-- file: NAME --> the bytes of a file that an
           example before wrote; otherwise a layout that nobody can run.

Commands run in a folder with parts/ and meshes/ as in examples/, with part.stl, and with tessolv in the path. Commands
that no test can run say why: <!-- not run: REASON -->. <!-- needs: PROGRAM --> leaves a block out, with a message, where
that program is not installed; <!-- setup: COMMAND --> runs a command, without a word, before a block or in the place
of one that is left out. Python's smallest installation will do: no argparse, no pathlib.
"""
import os
import re
import subprocess
import sys

NOTE = re.compile(r"\s*<!--\s*(preamble|status|output|file|quoted from|not run|needs|setup)(?::\s*(.*?))?\s*-->\s*$")
STATED = re.compile(r"^(\s*)(.*);\s*// -> (.*)$")


class Wrong(Exception):
    pass


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def empty(folder):
    """Makes a folder without content."""
    for parent, folders, files in os.walk(folder, topdown=False):
        for name in files + [name for name in folders if os.path.islink(os.path.join(parent, name))]:
            os.remove(os.path.join(parent, name))
        for name in folders:
            if os.path.isdir(os.path.join(parent, name)):
                os.rmdir(os.path.join(parent, name))
    os.makedirs(folder, exist_ok=True)


class Block:
    def __init__(self, language, line, notes):
        self.language, self.line, self.notes, self.lines = language, line, notes, []

    @property
    def text(self):
        return "".join(line + "\n" for line in self.lines)


def blocks_of(text, opening, closing):
    """The blocks between a line that matches `opening` and one that matches `closing`, with the notes before them."""
    found, block, notes = [], None, {}
    for number, line in enumerate(text.split("\n"), 1):
        note = NOTE.match(line)
        if block is not None:
            if re.match(closing, line):
                found.append(block)
                block, notes = None, {}
            else:
                block.lines.append(line)
        elif re.match(opening, line):
            block = Block(re.match(opening, line).group(1), number, notes)
        elif note:
            notes[note.group(1)] = note.group(2) or ""
        elif line.strip():
            notes = {}
    if block is not None:
        raise Wrong(f"{block.line}: the block does not end")
    return found


def blocks_of_file(path):
    text = read(path)
    if path.endswith(".md"):
        return blocks_of(text, r"```(.*)$", r"```\s*$")
    comments = "\n".join(re.sub(r"^\s*/// ?", "", line) if re.match(r"\s*///", line) else "" for line in text.split("\n"))
    blocks = blocks_of(comments, r"\s*@code(.*)$", r"\s*@endcode\s*$")
    for block in blocks:
        block.language = "cpp"
    return blocks


def quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


class Page:
    def __init__(self, options):
        self.options = options
        self.name = options.file
        self.work = options.work
        self.printed = None  # by the program before
        self.fragments = []

    def prepare(self):
        empty(self.work)
        os.makedirs(self.in_work("build/tools"))
        for folder in ("parts", "meshes"):
            os.symlink(self.in_source(f"examples/{folder}"), self.in_work(folder))
        os.symlink("parts/flange.stl", self.in_work("part.stl"))
        if self.options.tool:
            os.symlink(self.options.tool, self.in_work("build/tools/tessolv"))

    def in_work(self, name):
        return os.path.join(self.work, name)

    def in_source(self, name):
        return os.path.join(self.options.source, name)

    def run(self, command, **settings):
        environment = dict(os.environ, LC_ALL="C", NO_COLOR="1")
        environment["PATH"] = f"{self.in_work('build/tools')}:{environment['PATH']}"
        return subprocess.run(command, cwd=self.work, env=environment, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False, **settings)

    def program_of(self, source, name):
        program = self.in_work(name)
        with open(program + ".cpp", "w", encoding="utf-8") as file:
            file.write(source)
        library = self.options.library
        result = self.run([*self.options.cxx.split(), "-std=c++17", "-Wall", "-Wextra", "-Wno-unused", "-Werror",
                           *self.options.flags.split(), f"-I{self.in_source('include')}", f"-I{self.in_source('tests')}",
                           program + ".cpp", library, f"-Wl,-rpath,{os.path.dirname(library)}", "-o", program])
        if result.returncode != 0:
            raise Wrong(f"does not compile:\n{result.stdout}")
        return program

    def run_program(self, block):
        result = self.run([self.program_of(f"#line {block.line + 1} {quoted(self.name)}\n{block.text}",
                                           f"program_{block.line}")])
        if result.returncode != 0:
            raise Wrong(f"{block.line}: the program ends with {result.returncode}:\n{result.stdout}")
        self.printed = result.stdout

    def fragment_of(self, block):
        """A function whose body is the fragment; what it states is compared."""
        lines = [f"static void example_{block.line}()\n{{"]
        if "preamble" in block.notes:
            lines.append(f'#include "documentation/preambles/{block.notes["preamble"]}.inc"')
        lines.append(f"#line {block.line + 1} {quoted(self.name)}")
        for line in block.lines:
            stated = STATED.match(line)
            lines.append(line if not stated else f"{stated.group(1)}example::expect(({stated.group(2)}), "
                         f"{quoted(stated.group(3))}, __FILE__, __LINE__);")
        return "\n".join([*lines, "}\n"])

    def run_fragments(self):
        """All fragments of the page so far that were not run, in one program."""
        if not self.fragments:
            return
        calls = "".join(f"    example_{block.line}();\n" for block in self.fragments)
        source = ('#include "documentation/example.h"\nusing namespace zeb::tessolv;\n'
                  + "".join(self.fragment_of(block) for block in self.fragments)
                  + f"int main()\n{{\n{calls}    return example::wrong_lines() != 0;\n}}\n")
        result = self.run([self.program_of(source, f"fragments_{self.fragments[0].line}")])
        if result.returncode != 0:
            raise Wrong(f"examples end with {result.returncode}:\n{result.stdout}")
        self.printed = result.stdout
        self.fragments = []

    def cpp(self, block):
        if re.search(r"\bint main\(", block.text):
            self.run_program(block)
        else:
            self.fragments.append(block)

    def console(self, block):
        commands = []
        for line in block.lines:
            if line.startswith("$ "):
                commands.append((line[2:], []))
            elif commands:
                commands[-1][1].append(line)
            else:
                raise Wrong(f"{block.line}: what prints '{line}'?")
        for number, (command, expected) in enumerate(commands, 1):
            status = int(block.notes.get("status", 0)) if number == len(commands) else 0
            self.command(block, command, expected, status)

    def command(self, block, command, expected, status):
        if "tessolv " in command and not self.options.tool:
            print(f"{self.name}:{block.line}: not run, this build has no program: {command}")
            return
        result = self.run(["bash", "-o", "pipefail", "-c", command])
        if result.returncode != status:
            raise Wrong(f"{block.line}: '{command}' ends with {result.returncode}, not {status}:\n{result.stdout}")
        pattern = "".join(r"(?:.*\n)*?" if line == "..." else re.escape(line) + r" *\n" for line in expected)
        if expected and not re.fullmatch(pattern, result.stdout):
            raise Wrong(f"{block.line}: '{command}' prints\n{result.stdout}")

    def sh(self, block):
        for command in block.lines:
            self.command(block, command, [], 0)

    def cmake(self, block):
        source = block.notes["quoted from"]
        lines = read(self.in_source(source)).split("\n")
        for line in block.lines:
            if line not in lines:
                raise Wrong(f"{block.line}: '{line}' does not stand in {source}")

    def python(self, block):
        try:
            compile(block.text, self.name, "exec")
        except SyntaxError as error:
            raise Wrong(f"{block.line}: {error}") from error

    def whole_file(self, block):
        source = block.notes["quoted from"]
        if block.text != read(self.in_source(source)):
            raise Wrong(f"{block.line}: the block is not {source}")

    def plain(self, block):
        if "output" in block.notes and block.text != self.printed:
            raise Wrong(f"{block.line}: the program prints\n{self.printed}")
        if "file" in block.notes:
            self.run_fragments()
            written = read(self.in_work(block.notes["file"]))
            if block.text != written:
                raise Wrong(f"{block.line}: {block.notes['file']} holds\n{written}")

    def not_run(self, block):
        if not block.notes["not run"]:
            raise Wrong(f"{block.line}: why is it not run?")
        for script in re.findall(r"(?:^|\s)\./(\S+)", block.text):
            if not os.access(self.in_source(script), os.X_OK):
                raise Wrong(f"{block.line}: there is no {script}")

    def is_left_out(self, block):
        """Does what has to be done before a block; whether the block needs a program that is not there."""
        if "setup" in block.notes:
            self.command(block, block.notes["setup"], [], 0)
        program = block.notes.get("needs")
        if not program or self.run(["bash", "-c", f"command -v {program}"]).returncode == 0:
            return False
        print(f"{self.name}:{block.line}: not run, {program} is not installed")
        return True

    def run_all(self):
        self.prepare()
        rules = {
            "cpp": self.cpp, "console": self.console, "sh": self.sh, "python": self.python, "cmake": self.cmake,
            "text": self.plain,
        }
        blocks = blocks_of_file(self.in_source(self.name))
        for block in blocks:
            if block.language not in rules:
                raise Wrong(f"{block.line}: no rule for a block of language '{block.language}'")
            if "not run" in block.notes:
                self.not_run(block)
            else:
                if block.language != "cpp":
                    self.run_fragments()
                if self.is_left_out(block):
                    continue
                if block.language != "cmake" and "quoted from" in block.notes:
                    self.whole_file(block)
                rules[block.language](block)
        self.run_fragments()
        print(f"{self.name}: {len(blocks)} blocks")


class Options:
    """NAME=VALUE arguments: file (below source), source, work (a folder that is emptied), cxx, flags, library, tool."""

    def __init__(self, arguments):
        self.flags = self.tool = ""
        for argument in arguments:
            name, _, value = argument.partition("=")
            setattr(self, name, value)


def main():
    options = Options(sys.argv[1:])
    try:
        Page(options).run_all()
    except Wrong as wrong:
        sys.exit(f"{options.file}:{wrong}")


if __name__ == "__main__":
    main()
