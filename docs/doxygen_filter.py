# SPDX-License-Identifier: MIT
"""Makes Doxygen comments of the plain ones in the public headers: python3 docs/doxygen_filter.py FILE

    /* ---- Title ---- */     a group, on a page of its own
    /* -- Title -- */         a family: a heading within the group
    /* Text, directly below   is the text of that group or family, which must have one. Its first sentence is the group's brief. */
    /* Text */                otherwise documents every declaration between it and the next comment, or, without one, the group

Indented lines keep their layout. Functions that have no comment but the family's are told by their names. What is called
..._detail_... is left out. The first comment of zivcolor.h becomes the main page, with a list of all groups."""
import os
import re
import sys

DECLARATION = re.compile(
    r"ZIVCOLOR_API[^;]*;"  # a prototype
    r"|(?:enum|typedef)[^{;]*(?:\{(?:.|\n)*?\n\})?[^;]*;"
    r"|ZIVCOLOR_INLINE[^{;]*(?=\{)"  # a function's head
    r"|#define ZIVCOLOR_VERSION_.*"
)
CONVERSION = re.compile(r"zivColor([A-Z]+\d*[A-Z]?)to([A-Z]+\d*[A-Z]?)(?:u8)?(?:_v?2)?$")


def escaped(line):
    return re.sub(r"([\\@<>&#%])", r"\\\1", line).replace("--", r"\--")


def doxygen_text(lines):
    """The body of a comment: running text escaped, indented lines verbatim."""
    out, verbatim = [], False
    for line in lines:
        indented = line.startswith("  ")
        if indented != verbatim and (indented or line):
            out.append("@verbatim" if indented else "@endverbatim")
            verbatim = indented
        out.append(line if verbatim else escaped(line))
    if verbatim:
        out.append("@endverbatim")
    return "\n".join(out)


def body(comment):
    text = comment.strip()[2:-2].strip("\n")
    return [re.sub(r"^ \* ?|^ \*$|^ ", "", line).rstrip() for line in text.split("\n")]


def pieces_of(path):
    """Top-level comments, each with the code up to the next one."""
    source = open(path, encoding="utf-8").read()
    source = re.sub(r'(?m)^(#(?!define ZIVCOLOR_VERSION_).*|extern "C" \{|\}$)\n', "", source)
    parts = re.split(r"(?m)^(/\*(?:.|\n)*?\*/)\n", source)
    return list(zip(map(body, parts[1::2]), parts[2::2]))


def title_of(lines, dashes):
    found = re.fullmatch(rf"-{{{dashes}}} (.+?) -+", lines[0].strip()) if len(lines) == 1 else None
    return found[1] if found else None


def group_id(title):
    return re.sub(r"\W+", "_", title.lower())


def first_sentence(lines):
    return re.match(r"(.*?\.)(?:\s|$)", " ".join(lines))[1]


def main_page(path, text):
    print(f"/** @mainpage zivcolor\n{text}\n\n<dl>")
    for header in ("zivcolor.h", "zivcolor_image.h"):
        header = os.path.join(os.path.dirname(path), header)
        pieces = pieces_of(header)
        for (lines, _), (below, _) in zip(pieces, pieces[1:]):
            title = title_of(lines, "4,")
            if title:
                print(f'<dt>@ref {group_id(title)} "{title}"</dt><dd>{escaped(first_sentence(below))}</dd>')
    print(
        "</dl>\n\nWhat each pair computes, reads and writes, how far its colours are from exact BT.601 and which to take stands in "
        "docs/formats.md; odd sizes, padding, threads and platforms in docs/guide.md. */"
    )


def main():
    path = sys.argv[1]
    group = family = pending = None  # pending: the group or family whose text comes next
    for at, (lines, code) in enumerate(pieces_of(path)):
        text = doxygen_text(lines)
        if lines[0].startswith("SPDX-"):
            continue
        if group is None and not title_of(lines, "4,"):
            if at == 1:
                print(f"/** @file\n{text} */")
                if os.path.basename(path) == "zivcolor.h":
                    main_page(path, text)
            continue  # of the preprocessor's lines, which are gone
        for dashes in ("4,", "2"):
            title = title_of(lines, dashes)
            if not title:
                continue
            if family:
                print("/** @} */")
                family = None
            if dashes == "4,":
                if group:
                    print("/** @} */")
                group = title
            else:
                family = title
            pending = title
            if code:
                sys.exit(f"{path}: no text directly below '{title}'")
            break
        else:
            if pending and pending == family:
                print(f"/** @name {family}\n{text} */\n/** @{{ */")
            elif pending:
                print(f"/** @defgroup {group_id(group)} {group}\n{text}\n@{{ */")
            elif not code.strip():
                print(f"/** @}} */\n/** @addtogroup {group_id(group)}\n\n{text}\n@{{ */")
            # Comments behind a member; declarations end in a semicolon, functions in the header with their heads.
            code = re.sub(r"(?m)(\S.*?)\s*/\* (.*?) \*/", lambda m: f"{m[1]} /**< {escaped(m[2])} */", code)
            for declaration in DECLARATION.findall(code):
                if "_detail_" in declaration:
                    continue
                name = re.search(r"(\w+)\(", declaration)
                conversion = CONVERSION.fullmatch(name[1]) if name else None
                brief = f"{conversion[1]} to {conversion[2]}." if conversion else ""
                if declaration.startswith("#define"):
                    print(declaration)
                    continue
                if pending and name and not brief:
                    sys.exit(f"{path}: {name[1]} has no comment of its own")
                if declaration.startswith("ZIVCOLOR_INLINE"):
                    declaration = declaration.replace("ZIVCOLOR_INLINE ", "").rstrip() + ";"
                print(f"/** {brief}\n\n{'Told with its family, above.' if pending else text} */\n{declaration}")
            pending = None
    if family:
        print("/** @} */")
    print("/** @} */")


main()
