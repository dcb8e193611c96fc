"""Manual pages in mdoc: escaping, and what of Markdown the pages of docs/ use."""

import os
import re
import textwrap
import time

from markdown_it import MarkdownIt

MARKDOWN = MarkdownIt("commonmark").enable("table")

# Pages of docs/ that are manual pages, too: a link to one names it.
PAGES = {
    "commands.md": ("zr_nexa", 1),
    "usage.md": ("zr_nexa", 1),
    "zr_nexactl.md": ("zr_nexactl", 1),
    "configuration.md": ("zr_nexactl", 5),
    "library.md": ("zr_nexa_client_api", 3),
    "result_codes.md": ("zr_nexa-result-codes", 7),
    "mobile_ap_ctl.md": ("mobile_ap_ctl", 1),
    "host_platform.md": ("mobile_ap", 7),
}
# Of an area the manual has the functions.
PAGES |= {
    area + ".md": ("zr_nexa_" + area, 3)
    for area in ("alg", "firewall", "general", "gre", "indications", "lan_addressing", "lan_passthrough", "lan_services",
                 "lan_vlan", "nat", "upnp", "vpn_passthrough", "wan_connection", "wan_mpdn_mapping", "wan_profile")
}

SPECIAL = {"\\": "\\e", "`": "\\(ga", "~": "\\(ti", "^": "\\(ha"}


def escape(text):
    """Text as it is printed, in the middle of a line."""
    return "".join(SPECIAL.get(sign, sign if sign < "\x7f" else f"\\[u{ord(sign):04X}]") for sign in text)


def code(text):
    """The same of what somebody types: no dash becomes a hyphen, no quote is bent."""
    return escape(text).replace("-", "\\-").replace("'", "\\(aq")


def bold(text):
    return f"\\fB{code(text)}\\fP"


def line(text):
    """A line of text, which is no macro."""
    return "\\&" + text if text[:1] in (".", "'") else text


def words(text):
    """Words behind a macro: none of them is a macro or a delimiter itself."""
    return " ".join(
        "\\&" + word if re.fullmatch(r"[%A-Z][A-Za-z0-9]{1,2}|[][().,:;!?|]", word) else word.replace('"', "\\(dq")
        for word in text.split()
    )


def filled(text):
    """Escaped text, a sentence begins a line."""
    lines = []
    for sentence in re.split(r"(?<=\S[.!?])\s+(?=[A-Z]|\\f)", " ".join(text.split())):
        lines += textwrap.wrap(sentence, 77, break_long_words=False, break_on_hyphens=False)
    return "\n".join(map(line, lines))


class Inline:
    """The text of a paragraph; page is the one that it stands in, (name, section). Without macros, as in the narrow columns
    of a table, it refers to no other page."""

    def __init__(self, children, page, macros=True):
        self.out, self.target, self.macros = "", None, macros
        self.references = []
        for child in children:
            if child.type in ("text", "code_inline"):
                self.out += escape(child.content) if child.type == "text" else bold(child.content)
            elif child.type in ("softbreak", "hardbreak"):
                self.out += " "
            elif child.type == "strong_open":
                self.out += "\\fB"
            elif child.type == "em_open":
                self.out += "\\fI"
            elif child.type in ("strong_close", "em_close"):
                self.out += "\\fP"
            elif child.type == "link_open":
                self.target = PAGES.get(os.path.basename(child.attrs["href"].split("#")[0]))
                if self.target == page:
                    self.target = None
            elif child.type == "link_close" and self.target and self.macros:
                self.out += f" \x01{len(self.references)}\x02"
                self.references.append(self.target)
                self.target = None

    def text(self):
        """Lines; a reference to another page stands on one of its own."""
        if not self.references:
            return filled(self.out)
        lines = []
        for piece in re.split(r"(\x01\d+\x02[.,;:)]*)", self.out):
            reference = re.fullmatch(r"\x01(\d+)\x02([.,;:)]*)", piece)
            if reference:
                name, section = self.references[int(reference[1])]
                lines.append(" ".join([f".Pq Xr {name} {section}", *reference[2]]))
            elif piece.strip():
                lines.append(filled(piece))
        return "\n".join(lines)


def literal(text):
    body = "\n".join(line(code(each)) for each in text.rstrip("\n").split("\n"))
    return f".Bd -literal -offset indent\n{body}\n.Ed"


def tagged(rows):
    """A list of what is told about names; both are mdoc already."""
    items = "\n".join(f".It {tag}\n{body}" for tag, body in rows)
    return f".Bl -tag -width Ds\n{items}\n.El"


def cell(text):
    return f"T{{\n{text}\nT}}" if len(text) > 24 or text[:1] in (".", "'") or "\n" in text else text


class Blocks:
    """Markdown as mdoc. A second-level heading begins a section; the page's own title and leave_out's sections go."""

    def __init__(self, markdown, page, leave_out=()):
        self.page = page
        self.sections = [["DESCRIPTION", []]]  # heading, lines
        self.tokens, self.at, self.after_text, self.after_list = MARKDOWN.parse(markdown), 0, False, False
        while self.at < len(self.tokens):
            self.block()
        self.sections = [(heading, "\n".join(lines)) for heading, lines in self.sections if heading not in leave_out]

    def next(self):
        self.at += 1
        return self.tokens[self.at - 1]

    def put(self, text, is_text=False):
        # A paragraph needs its break behind anything but a heading, an item's tag and another break.
        if is_text and self.after_text:
            self.sections[-1][1].append(".Pp")
        self.sections[-1][1].append(text)
        self.after_text, self.after_list = True, False

    def inline(self, token, macros=True):
        return Inline(token.children, self.page, macros).text()

    def block(self):
        token = self.next()
        if token.type == "heading_open":
            text = words(escape(self.next().content.replace("`", "")))
            self.next()
            if token.tag == "h2":
                self.sections.append([text.upper(), []])
            elif token.tag != "h1":
                self.sections[-1][1].append(f".Ss {text}")
            self.after_text = self.after_list = False
        elif token.type == "paragraph_open":
            text = self.inline(self.next())
            self.next()
            if text:
                self.put(text, is_text=True)
        elif token.type in ("fence", "code_block"):
            self.put(literal(token.content))
        elif token.type in ("bullet_list_open", "ordered_list_open"):
            self.items("-bullet" if token.type.startswith("b") else "-enum", token.type.replace("open", "close"))
        elif token.type == "table_open":
            self.table()

    def items(self, kind, end):
        self.put(f".Bl {kind}")
        while self.tokens[self.at].type != end:
            self.next()
            self.put(".It")
            self.after_text = False
            while self.tokens[self.at].type != "list_item_close":
                self.block()
            self.next()
        self.next()
        self.put(".El")

    def table_item(self, head, row):
        """The first column is the name, the second tells of it; more columns bear their headings."""
        text = [self.inline(row[1])]
        for name, told in zip(head[2:], row[2:]):
            if told.content not in ("", "–"):
                told = f"{self.inline(name).capitalize()}: {self.inline(told)}"
                text.append((told if "\n." in told else filled(told)) + ".")
        if len(text) > 1:
            text[0] += "."
        return words(self.inline(row[0], False).replace("\n", " ")) or "\\&", "\n".join(text)

    def table(self):
        rows = []
        while (token := self.next()).type != "table_close":
            if token.type == "tr_open":
                rows.append([])
            elif token.type == "inline":
                rows[-1].append(token)
        head, body = rows[0], rows[1:]
        if len(head) != 3:
            if self.after_list:
                self.put(f"{self.inline(head[1]).capitalize()}:", is_text=True)
            self.put(tagged(self.table_item(head, row) for row in body))
            self.after_list = True
            return
        form = " ".join(["l"] * (len(head) - 1) + ["lx"])
        lines = [".Pp"] if self.after_text else []
        lines += [".TS", " ".join(["lb"] * len(head)), form + "."]
        lines += ["\t".join(cell(self.inline(each, False)) for each in row) for row in rows]
        self.put("\n".join(lines + [".TE"]))


def page(name, section, names, about, sections, version):
    """A whole page of sections, (heading, lines)."""
    day = time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", time.time())))
    out = [f".Dd {time.strftime('%B', day)} {day.tm_mday}, {day.tm_year}", f".Dt {name.upper()} {section}"]
    out += [f".Os zr_nexa {version}"]
    out += [".Sh NAME"] + [f".Nm {each} ," for each in names[:-1]] + [f".Nm {names[-1]}", f".Nd {about}"]
    for heading, lines in sections:
        if lines:
            out += [f".Sh {heading}", lines]
    if any(".TS" in lines for _, lines in sections):
        out.insert(0, "'\\\" t")  # for formatters that look here whether there are tables
    return "\n".join(out) + "\n"
