"""What the programs tell of their words."""

import re
import shlex
import subprocess


def printed(command, *words):
    return subprocess.run([*shlex.split(command), *words], check=True, capture_output=True, encoding="utf-8").stdout


def command_settings(command):
    """What zr_nexa_command_words prints: categories, as (name, description), each with its settings, as
    (name, listed, description, usage text or None)."""
    categories = {}
    for record in printed(command).split("\x1e")[1:]:
        category, _, about, name, listed, callable_, description, usage = record.split("\x1f")
        settings = categories.setdefault((category, about), [])
        if name:
            settings.append((name, listed != "0", description, usage if callable_ == "1" else None))
    return {category: settings for category, settings in categories.items() if settings}


def options_of(usage):
    """The options of a setting: the first words that its usage text explains."""
    explained = re.search(r"^<\w+>\n((?:.+\n)+)", usage, flags=re.M)
    return re.findall(r"^(\w+) ?:", explained[1], flags=re.M)


class Word:
    """A line of a program's help: an option or a word that stands for itself."""

    def __init__(self, told, about):
        self.about = about
        self.name, kind = re.match(r"(\S+)(?: (?!REQUIRED|Excludes)(\S+))?", told).groups()
        self.is_option = self.name.startswith("-")
        self.takes = re.sub(r":(INT|UINT|FLOAT|FILE|IPV4|\{.*)$", "", kind) if kind else None  # None: no value
        self.needed, self.many, self.is_file = " REQUIRED" in told, told.endswith(" ..."), ":FILE" in told
        choices, limits = re.search(r"\{(.*)\}", told), re.search(r" in \[(.*)\]", told)
        self.choices = choices[1].split(",") if choices else []
        self.limits = limits[1].split(" - ") if limits and "e+" not in limits[1] else []


class Help:
    """What PROGRAM WORD... --help prints: its words, and those of the commands below."""

    def __init__(self, command, verb=(), about_above=""):
        self.verb, self.about_above = verb, about_above
        self.text = printed(command, *verb, "--help")
        self.about = self.text.split("\n")[0]
        rows = {"Positionals": [], "Options": [], "Subcommands": []}
        part, indent = None, ""
        for line in self.text.split("\n"):
            # A group of options stands deeper.
            if heading := re.fullmatch(r"( *)(Positionals|Options|Subcommands):", line):
                part, indent = rows[heading[2]], heading[1] + "  "
            elif not line.startswith(indent or " "):
                part = None
            elif part is not None and line.startswith(indent + "  "):
                part[-1][1] = line.strip()  # what is told of a long word
            elif part is not None:
                word, _, about = line.strip().partition("  ")
                part.append([word, about.strip()])
        self.positionals = [Word(*row) for row in rows["Positionals"]]
        self.options = [Word(*row) for row in rows["Options"] if not row[0].startswith("-h,")]
        # A verb that hands its words on tells of them below.
        if handed_on := re.search(rf"^\S+ {' '.join(verb)} ([A-Z]+) [A-Z]+ \.\.\.: (.*)$", self.text, flags=re.M):
            self.positionals.append(Word(f"{handed_on[1]} ...", handed_on[2]))
        self.below = [Help(command, (*verb, name), self.about if verb else "") for name, _ in rows["Subcommands"]]

    def commands(self):
        """The commands that can be given, each once."""
        return [each for below in self.below for each in below.commands()] if self.below else [self]
