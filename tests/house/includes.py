"""What sources may include: never by a way upwards, and in the rooms that must run in any host nothing but the house's
own headers and the C++20 standard library. Unit tests may also use GoogleTest."""

import re

import tree

STRICT_ROOMS = ("platform", "host_contract", "conditions", "plugins")
STANDARD = set("""
algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits
clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef cstdint
cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem format forward_list fstream
functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory
memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator
semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf string string_view
strstream syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility
valarray variant vector version
""".split())
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def refusal(path, bracket, name):
    if ".." in name.split("/"):
        return "goes upwards"
    if bracket == '"':
        first = name.split("/")[0]
        if "/" not in name or not (tree.ROOT / first).is_dir():
            return "does not begin with a folder of the house"
        return None
    if path.parts[0] not in STRICT_ROOMS or name in STANDARD:
        return None
    if path.stem.endswith("_test") and name.startswith(("gtest/", "gmock/")):
        return None
    return "is not of the C++20 standard library"


def main():
    findings, count = [], 0
    for path in tree.files(tree.SOURCES):
        for number, line in enumerate(tree.lines(path), 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            count += 1
            reason = refusal(path, *match.groups())
            if reason:
                findings.append(f"{path}:{number}: {match.group(2)} {reason}")
    if count == 0:
        findings.append("no include was found at all")
    tree.finish(findings, f"{count} includes")


main()
