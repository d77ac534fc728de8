#!/usr/bin/env python3
"""Makes src/formats/text/letter_case_table.h from the character database of this Python.

    make_letter_case.py > src/formats/text/letter_case_table.h

A pair is a letter of one UTF-16 unit and the capital of one unit that it has for itself: the capital's small letter is
this one again. So "ß", which has two capitals side by side, and the letters that only borrow a capital of others (the
dotless i, the long s, the final sigma, the micro sign) stay as they are, which is how Windows compares names of files.
"""
import unicodedata

MOST = 0x10000


def capital_of(code):
    """The capital that the letter has for itself; the letter's own code when it has none."""
    if 0xD800 <= code < 0xE000:
        return code
    letter = chr(code)
    upper = letter.upper() if len(letter.upper()) == 1 else letter.title()
    return ord(upper) if len(upper) == 1 and ord(upper) < MOST and upper.lower() == letter else code


def runs():
    """(first letter, last letter, distance between letters, distance to the capitals), in order."""
    found = []
    for code in range(MOST):
        distance = capital_of(code) - code
        if distance == 0:
            continue
        last = found[-1] if found else None
        if last and last[3] == distance and (code - last[1] == last[2] or (last[0] == last[1] and code - last[1] <= 2)):
            found[-1] = (last[0], code, code - last[1], distance)
        else:
            found.append((code, code, 1, distance))
    return found


def main():
    print("#pragma once\n")
    print(f"// Made by scripts/lib/make_letter_case.py from version {unicodedata.unidata_version} of Unicode's character database.\n")
    print("#include <cstdint>\n")
    print("namespace parvex {\n")
    print("/// Letters at equal distances, each with its capital as far away as the others'.")
    print("struct LetterRun {\n  char16_t first;\n  char16_t last;\n  std::uint8_t step;\n  std::int32_t toCapital;\n};\n")
    print("inline constexpr LetterRun kLetterRuns[] = {")
    for first, last, step, distance in runs():
        print(f"    {{0x{first:04X}, 0x{last:04X}, {step}, {distance}}},")
    print("};\n\n}  // namespace parvex")


if __name__ == "__main__":
    main()
