#!/usr/bin/python3
"""pages.py OUT NAME=VALUE ...: writes the manual pages below the folder OUT.

    source=DIR      the project
    version=WORD    its version
    words=COMMAND   how zr_nexa_command_words is started: zr_nexa(1)
    xml=DIR         what Doxygen made of the public headers: the pages of section 3
    host=COMMAND    how mobile_ap_ctl is started: its page and mobile_ap(7)
    ctl=COMMAND     how zr_nexactl is started: its pages
    mandoc=PROGRAM  writes them as HTML, too, into OUT/html
"""

import os
import re
import subprocess
import sys
import textwrap
import xml.etree.ElementTree as ElementTree

import mdoc
from mdoc import Blocks, bold, escape, filled, literal, tagged, words
from told import Help, command_settings, printed

given = dict(word.split("=", 1) for word in sys.argv[2:])


def docs(name):
    with open(os.path.join(given["source"], "docs", name), encoding="utf-8") as file:
        return file.read()


def write(name, section, about, sections, names=None):
    folder = os.path.join(sys.argv[1], f"man{section}")
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, f"{name}.{section}"), "w", encoding="ascii") as file:
        file.write(mdoc.page(name, section, names or [name], about, sections, given["version"]))


def write_html():
    os.makedirs(os.path.join(sys.argv[1], "html"), exist_ok=True)
    for folder, _, names in os.walk(sys.argv[1]):
        for name in names:
            if folder.endswith("html"):
                continue
            with open(os.path.join(sys.argv[1], "html", name + ".html"), "w", encoding="utf-8") as file:
                subprocess.run([given["mandoc"], "-T", "html", "-O", "toc,man=%N.%S.html", os.path.join(folder, name)],
                               check=True, stdout=file)


def see_also(*pages):
    return "SEE ALSO", " ,\n".join(f".Xr {name} {section}" for name, section in pages)


# ---- the command ----


def command_page():
    lines = []
    for (category, about), settings in command_settings(given["words"]).items():
        lines.append(f".Ss {words(category)}\n{filled(escape(about))}.")
        rows = []
        for name, listed, description, usage in settings:
            text = [filled(escape(description)) + "."] if description else []
            if usage is None:
                text.append("Not supported now.")
            else:
                text += [] if listed else ["No menu lists it."]
                text.append(literal(usage))
            rows.append((bold(f"{category} {name}"), "\n".join(text)))
        lines.append(tagged(rows))
    body = Blocks(docs("commands.md"), ("zr_nexa", 1), leave_out=["OTHER PAGES"]).sections
    synopsis = ".Nm\n.Op Ar Category Op Ar Setting Op Ar option Op Ar parameter ..."
    write("zr_nexa", 1, "configures the mobile access point of a cellular data module",
          [("SYNOPSIS", synopsis), body[0], ("SETTINGS", "\n".join(lines)), *body[1:],
           see_also(("mobile_ap_ctl", 1), ("zr_nexactl", 1), ("zr_nexa_client_api", 3), ("mobile_ap", 7),
                    ("zr_nexa-result-codes", 7))])


# ---- the programs that tell their words with --help ----


def synopsis(told):
    lines = []
    for each in told.commands():
        lines += [".Nm", f".Cm {' '.join(each.verb)}"]
        lines += [".Op Ar option ..."] if each.options else []
        for word in each.positionals:
            name = word.name + (" ..." if word.many else "")
            lines.append(f".Ar {name}" if word.needed else f".Op Ar {name}")
    return "\n".join(lines)


def word_told(word):
    tag = bold(word.name) if word.is_option else f"\\fI{escape(word.name)}\\fP"
    if word.is_option and word.takes:
        tag += f" \\fI{escape(word.takes)}\\fP"
    elif word.is_option and word.choices:
        tag += f" \\fI{escape('|'.join(word.choices))}\\fP"
    text = word.about
    if word.choices and not all(choice in text for choice in word.choices):
        text += ": one of " + ", ".join(word.choices)
    return tag, filled(escape(f"{text}; {word.limits[0]} to {word.limits[1]}" if word.limits else text)) + "."


def commands_told(told):
    lines = []
    for each in told.commands():
        # Of a command that stands below another one, that one says the half.
        about = each.about if not each.about_above else f"{each.about_above}: {each.about[0].lower()}{each.about[1:]}"
        lines += [f".Ss {words(' '.join(each.verb))}", filled(escape(about)) + "."]
        if rows := [word_told(word) for word in each.positionals + each.options]:
            lines.append(tagged(rows))
    return "\n".join(lines)


def host_pages():
    told = Help(given["host"])
    page = ("mobile_ap_ctl", 1)
    body = Blocks(docs("mobile_ap_ctl.md"), page).sections
    write(*page, "provokes the host platform of zr_nexa",
          [("SYNOPSIS", synopsis(told)), body[0], ("COMMANDS", commands_told(told)), *body[1:],
           see_also(("zr_nexa", 1), ("mobile_ap", 7))])

    page = ("mobile_ap", 7)
    body = Blocks(docs("host_platform.md"), page, leave_out=["ADDING A METHOD"]).sections
    write(*page, "the host platform of zr_nexa", [*body, see_also(("mobile_ap_ctl", 1), ("zr_nexa", 1))])


def ctl_pages():
    told = Help(given["ctl"])
    page = ("zr_nexactl", 1)
    # The table of exit statuses is the program's own.
    body = Blocks(docs("zr_nexactl.md"), page, leave_out=["EXIT STATUSES"]).sections
    statuses = tagged(re.findall(r"^ +(\d+)  (.*)$", told.text, flags=re.M))
    write(*page, "configures a module by a document",
          [("SYNOPSIS", synopsis(told)), body[0], ("VERBS", commands_told(told)), *body[1:], ("EXIT STATUS", statuses),
           see_also(("zr_nexa", 1), ("zr_nexactl", 5), ("mobile_ap", 7))])

    page = ("zr_nexactl", 5)
    introduction = docs("configuration.md").split("<!-- zr_nexactl keys -->")[0]
    body = Blocks(introduction, page).sections + Blocks(printed(given["ctl"], "keys"), page).sections[1:]
    write(*page, "documents of zr_nexactl", [*body, see_also(("zr_nexactl", 1), ("mobile_ap", 7))])


# ---- the client interface ----


def text_of(element):
    return escape(" ".join("".join(element.itertext()).split())) if element is not None else ""


def value_of(constant):
    """Behind a macro: a closing bracket is none of its own."""
    text = text_of(constant.find("initializer"))
    return text + "\\&" if text.endswith(")") else text


def paragraphs(description):
    """A description's paragraphs, lists and code, without what is told of parameters and results."""
    out = []
    for para in description.findall("para") if description is not None else []:
        lists = {"orderedlist": "-enum", "itemizedlist": "-bullet"}
        apart = (*lists, "verbatim", "parameterlist")
        text = " ".join((escape(para.text or "") + "".join(
            text_of(child) + escape(child.tail or "") for child in para
            if child.tag not in apart)).split())
        if text:
            out.append((".Pp\n" if out else "") + filled(text))
        for child in para:
            if child.tag in lists:
                items = "\n".join(f".It\n{filled(text_of(item))}" for item in child.findall("listitem"))
                out.append(f".Bl {lists[child.tag]}\n{items}\n.El")
            elif child.tag == "verbatim":
                out.append(literal(textwrap.dedent(child.text)))
    return "\n".join(out)


def description_of(member):
    brief, more = paragraphs(member.find("briefdescription")), paragraphs(member.find("detaileddescription"))
    return "\n".join(filter(None, [brief, (".Pp\n" if brief and more and not more.startswith(".Bl") else "") + more]))


def items_of(member, kind):
    rows = []
    for item in member.findall(f".//parameterlist[@kind='{kind}']/parameteritem"):
        name = item.find("parameternamelist/parametername")
        direction = f" ({name.get('direction')})" if name.get("direction") else ""
        tag = f"Fa {name.text}{direction}" if kind == "param" else escape(name.text)
        rows.append((tag, filled(text_of(item.find("parameterdescription")))))
    return rows


class Header:
    """A public header, as Doxygen read it."""

    def __init__(self, root):
        self.file = root.find("location").get("file")
        self.about, self.brief = description_of(root), text_of(root.find("briefdescription"))
        self.functions = root.findall(".//memberdef[@kind='function']")
        self.sections = root.findall("sectiondef")
        self.records = [ElementTree.parse(os.path.join(given["xml"], record.get("refid") + ".xml")).getroot().find(
            "compounddef") for record in root.findall("innerclass")]

    def synopsis(self):
        lines = [f".In {self.file}"]
        for function in self.functions:
            parameters = []
            for each in function.findall("param"):
                kind, name = text_of(each.find("type")), text_of(each.find("declname"))
                parameters.append(words('"' + (kind + ("" if kind.endswith("*") or not name else " ") + name) + '"')
                                  .replace("\\(dq", '"'))
            kind = text_of(function.find("type")).replace("static ", "")
            lines += [f".Ft {kind}", " ".join([".Fn", function.find("name").text, *(parameters or ["void"])])]
        return "\n".join(lines)

    def told(self):
        lines = []
        for function in self.functions:
            lines += [f".Ss {function.find('name').text}", description_of(function)]
            if parameters := items_of(function, "param"):
                lines.append(tagged(parameters))
            if results := items_of(function, "retval"):
                lines += [".Pp", "Returns:", tagged(results)]
        return "\n".join(lines)

    def records_told(self):
        lines = []
        for record in self.records:
            fields = [(f"Vt {words(text_of(each.find('type')))} {escape(each.find('name').text)}"
                       f"{text_of(each.find('argsstring'))}", description_of(each) or "\\&")
                      for each in record.findall(".//memberdef")]
            lines += [f".Ss {record.find('compoundname').text}", description_of(record), tagged(fields)]
        return "\n".join(filter(None, lines))

    def constants_told(self):
        lines = []
        # What stands under no heading comes before what does.
        order = {"define": 0, "user-defined": 1}
        for section in sorted(self.sections, key=lambda each: order.get(each.get("kind"), 2)):
            rows, heading = [], section.find("header")
            for member in section.findall("memberdef"):
                name, value = member.find("name").text, value_of(member)
                if member.get("kind") == "enum":
                    values = [(f"Dv {each.find('name').text} {value_of(each)}",
                               description_of(each) or "\\&") for each in member.findall("enumvalue")]
                    lines += [f".Pp\n{description_of(member)}", tagged(values)]
                elif member.get("kind") == "define" and value and "__" not in value:
                    rows.append((f"Dv {name} {value}", description_of(member) or "\\&"))
                elif member.get("kind") == "typedef":
                    kind, arguments = text_of(member.find("type")), text_of(member.find("argsstring"))
                    lines += [literal(f"typedef {kind}{'' if kind.endswith('*') else ' '}{name}{arguments};"),
                              description_of(member)]
            if rows:
                lines += [".Pp\n" + filled(escape(heading.text)) + ":" if heading is not None else "", tagged(rows)]
        return re.sub(r"^\.Pp\n", "", "\n".join(filter(None, lines)))

    def write(self, name, about, more=(), also=()):
        functions = [each.find("name").text for each in self.functions]
        parts = [("DESCRIPTION", "\n".join(filter(None, [self.about, self.told()]))), ("STRUCTURES", self.records_told()),
                 ("CONSTANTS", self.constants_told())]
        write(name, 3, about, [("SYNOPSIS", self.synopsis()), *parts, *more, see_also(*also)], [name, *functions])


def library_pages():
    def read(name):
        return ElementTree.parse(os.path.join(given["xml"], name + ".xml")).getroot().find("compounddef")

    index = ElementTree.parse(os.path.join(given["xml"], "index.xml")).getroot()
    files = [read(each.get("refid")) for each in index.findall("compound[@kind='file']")]
    headers = {header.file: header for header in map(Header, files)}
    top, base = headers.pop("zr_nexa_client_api.h"), headers.pop("zr_nexa/base.h")
    overview = ("zr_nexa_client_api", 3)
    names = {file: "zr_nexa_" + os.path.basename(file)[:-2] for file in headers}
    for file, header in sorted(headers.items()):
        header.write(names[file], re.split(r"[:;.](?: |$)", header.brief)[0],
                     also=[overview, ("zr_nexa-result-codes", 7)])
    areas = tagged((f"Xr {name} 3", filled(headers[file].brief))
                   for file, name in sorted(names.items()))
    top.write("zr_nexa_client_api", "client interface of the mobile access point of a cellular data module",
              [("CONVENTIONS", paragraphs(read("zr_nexa_conventions").find("detaileddescription"))),
               ("RESULTS AND VERSION", base.constants_told()), ("THE AREAS", areas)],
              [("zr_nexa", 1), ("zr_nexa-result-codes", 7)])


def main():
    page = ("zr_nexa-result-codes", 7)
    write(*page, "result codes of zr_nexa and of its client interface",
          [*Blocks(docs("result_codes.md"), page).sections, see_also(("zr_nexa", 1), ("zr_nexa_client_api", 3))])
    for what, make in (("words", command_page), ("xml", library_pages), ("host", host_pages), ("ctl", ctl_pages),
                       ("mandoc", write_html)):
        if given.get(what):
            make()


main()
