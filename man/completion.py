#!/usr/bin/python3
"""completion.py OUT NAME=VALUE ...: writes what bash and zsh complete words by, into OUT/bash and OUT/zsh.

    words=COMMAND   how zr_nexa_command_words is started
    host=COMMAND    how mobile_ap_ctl is started
    ctl=COMMAND     how zr_nexactl is started
    map=FILE        names of the functions of the client interface

Each file has one function of the words, _PROGRAM_words: it gets the word to be completed and those before it, and
prints the words that can stand there, or FILE or FOLDER.
"""

import os
import re
import shlex
import sys

from told import Help, command_settings, options_of, printed

given = dict(word.split("=", 1) for word in sys.argv[2:])

BASH = """
_NAME()
{
    local words cur=${COMP_WORDS[COMP_CWORD]}
    words=$(_NAME_words "$cur" "${COMP_WORDS[@]:1:COMP_CWORD-1}")
    case $words in
        FILE) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -f -- "$cur") ;;
        FOLDER) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -d -- "$cur") ;;
        *) mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur") ;;
    esac
}
complete -F _NAME NAME
"""

ZSH = """
local found=$(_NAME_words "$words[CURRENT]" "${(@)words[2,CURRENT-1]}")
case $found in
    FILE) _files ;;
    FOLDER) _files -/ ;;
    *) compadd -- ${=found} ;;
esac
"""


def write(name, functions):
    for shell, head, foot in (("bash", f"# Completion of {name}.", BASH), ("zsh", f"#compdef {name}", ZSH)):
        folder = os.path.join(sys.argv[1], shell)
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, name if shell == "bash" else f"_{name}"), "w", encoding="ascii") as file:
            file.write(f"{head}\n\n{functions}{foot.replace('NAME', name)}")


def command_function(name):
    """The words of zr_nexa: what can be called, listed in a menu or not."""
    categories = {
        category: {setting: options_of(usage) for setting, _, _, usage in settings if usage is not None}
        for (category, _), settings in command_settings(given["words"]).items()
    }
    lines = [f"    {shlex.quote('')}) echo {' '.join(each for each in categories if categories[each])} ;;"]
    for category, settings in categories.items():
        if settings:
            lines.append(f"    {category}) echo {' '.join(settings)} ;;")
        for setting, options in settings.items():
            lines.append(f"    '{category} {setting}') echo {' '.join(options)} ;;")
    return f"{name}()\n{{\n    shift\n    case \"$*\" in\n" + "\n".join(lines) + "\n    esac\n}\n"


# What a program asks for under these names, and how it is found.
ASKED = {
    "FILE": "echo FILE",
    "file": "echo FILE",
    "FUNCTION": "echo {functions}",
    "SECTION": "echo {sections}",
    "PROFILE": "zr_nexactl show profiles 2>/dev/null | sed -n 's/^  \\([A-Za-z0-9_-]*\\):.*/\\1/p'",
}


def found(word, facts):
    if word.choices:
        return "echo " + " ".join(word.choices)
    if word.about.startswith("Folder"):
        return "echo FOLDER"
    return ASKED.get(word.takes if word.is_option else word.name, "").format(**facts)


def every(told):
    return [told] + [each for below in told.below for each in every(below)]


def program_function(name, help_, facts):
    """The words of a program that tells of them with --help."""
    verbs, valued, values, options, places = [], [], [], [], []
    for told in every(help_):
        verb = " ".join(told.verb)
        if verb:
            verbs.append(f"'{' '.join(told.verb[:-1])} {told.verb[-1]}'")
        own = [word.name for word in told.options] + ["--help"]
        options.append(f"        '{verb}') echo {' '.join(own)} ;;")
        for word in told.options:
            if word.takes is not None:
                valued.append(f"'{verb} {word.name}'")
                if how := found(word, facts):
                    values.append(f"        '{verb} {word.name}') {how} ;;")
        if told.below:
            places.append(f"        '{verb} 0') echo {' '.join(below.verb[-1] for below in told.below)} ;;")
        for place, word in enumerate(told.positionals):
            if how := found(word, facts):
                places.append(f"        '{verb} " + (f"'*) {how} ;;" if word.many else f"{place}') {how} ;;"))
    handed_on = [told for told in every(help_) if told.positionals and told.positionals[0].name == "CATEGORY"]
    rest = [f"        '{told.verb[0]} '*) shift; _{name}_command \"$current\" \"$@\" ;;" for told in handed_on]
    text = command_function(f"_{name}_command") + "\n" if handed_on else ""
    return text + f"""_{name}_words()
{{
    local current=$1 word verb='' option='' place=0
    shift
    for word in "$@"; do
        if [ -n "$option" ]; then  # its value
            option=''
            continue
        fi
        case "$verb $word" in
        {" | ".join(verbs)}) verb="${{verb:+$verb }}$word" ;;
        {" | ".join(valued)}) option=$word ;;
        *' -'*) ;;
        *) place=$((place + 1)) ;;
        esac
    done
    if [ -n "$option" ]; then
        case "$verb $option" in
{chr(10).join(values)}
        esac
        return
    fi
    case $current in
    -*)
        case $verb in
{chr(10).join(options)}
        esac
        ;;
    *)
        case "$verb $place" in
{chr(10).join(places + rest)}
        esac
        ;;
    esac
}}
"""


def main():
    write("zr_nexa", command_function("_zr_nexa_words"))
    write("mobile_ap_ctl", program_function("mobile_ap_ctl", Help(given["host"]), {}))
    if given.get("ctl"):
        keys = printed(given["ctl"], "keys")
        with open(given["map"], encoding="utf-8") as file:
            functions = re.findall(r"\bzr_nexa_\w+(?=;)", file.read())
        facts = {"sections": " ".join(re.findall(r"^## (\w+)$", keys, flags=re.M)), "functions": " ".join(functions)}
        write("zr_nexactl", program_function("zr_nexactl", Help(given["ctl"]), facts))


main()
