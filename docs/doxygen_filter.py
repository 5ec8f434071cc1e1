# SPDX-License-Identifier: MIT
"""Makes Doxygen comments of the plain ones in the public headers: python3 docs/doxygen_filter.py FILE

A comment documents every declaration between it and the next comment. One with no declaration of its own belongs to the section
that it stands in. Indented lines keep their layout. Of inline functions the prototype is left; what is called zivcolor_detail is
not for users and is left out."""
import re
import sys


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


def main():
    source = open(sys.argv[1], encoding="utf-8").read()
    source = re.sub(r'(?m)^(#.*|extern "C" \{|\}$)\n', "", source)
    pieces = re.split(r"(?m)^(/\*(?:.|\n)*?\*/)\n", source)  # top-level comments at the odd places
    section = None
    for at in range(1, len(pieces), 2):
        lines, code = body(pieces[at]), pieces[at + 1].strip()
        title = re.fullmatch(r"-+ (.+?) -+", lines[0].strip()) if len(lines) == 1 else None
        text = doxygen_text(lines)
        if title:
            if section:
                print("/** @} */")
            section = re.sub(r"\W+", "_", title[1].lower())
            print(f"/** @defgroup {section} {title[1]}\n@{{ */")
        elif at == 1:
            print(f"/** @file\n{text} */")
        elif not code and not section:
            continue  # of the preprocessor's lines, which are gone
        elif not code:
            print(f"/** @}} */\n/** @addtogroup {section}\n{text}\n@{{ */")
        code = re.sub(r"(?m)^(ZIVCOLOR_INLINE[^{]*?) \{$(?:\n .*|\n)*", r"\1;\n", code)
        # Comments behind a member; declarations end in a semicolon at the left margin or at the end of a prototype.
        code = re.sub(r"(?m)(\S.*?)\s*/\* (.*?) \*/", lambda m: f"{m[1]} /**< {escaped(m[2])} */", code)
        for declaration in re.findall(r"(?:ZIVCOLOR_(?:API|INLINE)[^;]*;|typedef [^;{]*;|(?:enum|typedef)(?:.|\n)*?\n\}[^;]*;)", code):
            if "zivcolor_detail" not in declaration:
                print(declaration if title else f"/** {text} */\n{declaration}")
    print("/** @} */")


main()
