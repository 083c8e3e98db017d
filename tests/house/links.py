"""Every file that a document links and every docs/ path that a comment or a document names is there."""

import re

import tree

LINK = re.compile(r"\]\(([^)#\s]+)(?:#[^)]*)?\)")
NAMED = re.compile(r"\b(docs/[A-Za-z0-9_/.-]+\.md)\b")
FENCE = re.compile(r"```.*?```", re.DOTALL)


def main():
    findings, count = [], 0
    for path in tree.files({".md", ".hpp", ".cpp", ".py", ".sh", ".txt"}):
        text = "\n".join(tree.lines(path))
        targets = {(tree.ROOT / name, name) for name in NAMED.findall(text)}
        if path.suffix == ".md":
            links = LINK.findall(FENCE.sub("", text))
            targets |= {(tree.ROOT / path.parent / link, link) for link in links if "://" not in link}
        for target, name in sorted(targets):
            count += 1
            if not target.exists():
                findings.append(f"{path}: {name} is not there")
    if count < 5:
        findings.append("hardly any link was found: the check would check nothing")
    tree.finish(findings, f"{count} links")


main()
