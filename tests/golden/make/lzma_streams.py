#!/usr/bin/env python3
"""Prints lzma.hex: short LZMA streams with what each packet codes.

A plain encoder that knows nothing of the library. For each position it lists
every earlier place in the window, decides by the parser's rules one after
another, and codes bit by bit.
"""

import itertools
import re

WINDOW = 16384
LONGEST = 273


class Models:
    """Adaptive probabilities of a 0 bit, in units of 1/2048, all 1024 at first."""

    def __init__(self):
        self.tables = {}

    def get(self, name):
        return self.tables.get(name, 1024)

    def saw(self, name, bit):
        prob = self.get(name)
        self.tables[name] = prob - (prob >> 5) if bit else prob + ((2048 - prob) >> 5)


class RangeEncoder:
    def __init__(self):
        self.low, self.range, self.cache, self.held, self.out = 0, 0xFFFFFFFF, 0, 1, bytearray()

    def normalize(self):
        if self.low < 0xFF000000 or self.low > 0xFFFFFFFF:
            carry = self.low >> 32
            self.out.append((self.cache + carry) & 0xFF)
            self.out += bytes([(0xFF + carry) & 0xFF]) * (self.held - 1)
            self.held, self.cache = 1, (self.low >> 24) & 0xFF
        else:
            self.held += 1
        self.range = (self.range << 8) & 0xFFFFFFFF
        self.low = (self.low & 0xFFFFFF) << 8

    def context(self, models, name, bit):
        if self.range <= 0xFFFFFF:
            self.normalize()
        bound = (self.range >> 11) * models.get(name)
        if bit:
            self.low += bound
            self.range -= bound
        else:
            self.range = bound
        models.saw(name, bit)

    def fixed(self, bit):
        if self.range <= 0xFFFFFF:
            self.normalize()
        self.range >>= 1
        self.low += self.range if bit else 0

    def finish(self):
        for _ in range(5):
            self.normalize()


class Encoder:
    def __init__(self, data):
        self.data, self.state, self.reps = data, 0, [0, 0, 0, 0]
        self.models, self.coder, self.packets = Models(), RangeEncoder(), []

    # ---- What the parser decides -------------------------------------------

    def matches(self, at):
        """Earlier places with the same two bytes, nearest first, without those
        that a nearer one exceeds by more than 3."""
        found, best = [], 0
        for distance in range(1, min(at, WINDOW) + 1):
            length = 0
            while (length < LONGEST and at + length < len(self.data)
                   and self.data[at + length] == self.data[at + length - distance]):
                length += 1
            if length >= 2 and (not found or length + 3 >= best):
                found.append((distance - 1, length))
                best = max(best, length)
        return found

    @staticmethod
    def best(found):
        return max(found, key=lambda match: (match[1], -match[0]))

    def decide(self, at):
        here = self.matches(at)
        if not here:
            return ("literal",)
        repeat = None
        for pos, length in here:
            if pos in self.reps and (repeat is None or length > repeat[1]):
                repeat = (self.reps.index(pos), length)
        pos, length = self.best(here)
        if length >= 64:
            return ("repeat", *repeat) if repeat else ("match", pos, length)
        closer = True
        while closer:
            closer = next((m for m in here if m[0] < pos >> 7 and m[1] >= length - 1), None)
            if closer:
                pos, length = closer
        if length == 2 and pos >= 128:
            length = 1
        if repeat and (repeat[1] + 1 >= length or (repeat[1] + 2 >= length and pos >= 512)):
            return ("repeat", *repeat)
        if length < 2:
            return ("literal",)
        after = self.matches(at + 1)
        if after:
            npos, nlen = self.best(after)
            if (nlen > length + 1 or (nlen == length + 1 and npos >> 7 <= pos)
                    or (nlen >= length and npos < pos)
                    or (nlen >= length - 1 and length > 2 and npos < pos >> 7)):
                return ("literal",)
        return ("match", pos, length)

    # ---- How it is coded ---------------------------------------------------

    def bit(self, name, value):
        self.coder.context(self.models, name, value)

    def tree(self, name, bits, value):
        index = 1
        for shift in range(bits - 1, -1, -1):
            self.bit((name, index), value >> shift & 1)
            index = index * 2 | value >> shift & 1

    def tree_reverse(self, name, bits, value):
        index = 1
        for shift in range(bits):
            self.bit((name, index), value >> shift & 1)
            index = index * 2 | value >> shift & 1

    def literal(self, at):
        self.bit(("is_match", self.state, at & 3), 0)
        context = self.data[at - 1] >> 5 if at else 0
        byte = self.data[at]
        if self.state < 7:
            self.tree(("lit", context, 0), 8, byte)
        else:
            match, matching, index = self.data[at - 1 - self.reps[0]], True, 1
            for shift in range(7, -1, -1):
                expected, value = match >> shift & 1, byte >> shift & 1
                offset = expected + 1 if matching else 0
                self.bit((("lit", context, offset), index), value)
                matching = matching and expected == value
                index = index * 2 | value
        self.state = (0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 4, 5)[self.state]

    def length(self, at, length):
        self.bit("choice", length >= 10)
        if length < 10:
            self.tree(("low", at & 3), 3, length - 2)
            return
        self.bit("choice2", length >= 18)
        if length < 18:
            self.tree(("mid", at & 3), 3, length - 10)
        else:
            self.tree("high", 8, length - 18)

    def distance(self, pos, length):
        slot = pos
        if pos >= 4:
            bits = pos.bit_length()
            slot = 2 * bits - 2 | pos >> (bits - 2) & 1
        self.tree(("slot", min(length - 2, 3)), 6, slot)
        if slot >= 14:
            for shift in range((slot >> 1) - 6, -1, -1):
                self.coder.fixed(pos >> 4 >> shift & 1)
            self.tree_reverse("align", 4, pos)
        elif slot >= 4:
            self.tree_reverse(("special", slot), (slot >> 1) - 1, pos)

    def match(self, at, pos, length):
        self.bit(("is_match", self.state, at & 3), 1)
        self.bit(("rep", self.state), 0)
        self.length(at, length)
        self.distance(pos, length)
        self.reps = [pos] + self.reps[:3]
        self.state = 7 if self.state < 7 else 10

    def repeat(self, at, index, length):
        self.bit(("is_match", self.state, at & 3), 1)
        self.bit(("rep", self.state), 1)
        self.bit(("rep0", self.state), index > 0)
        if index == 0:
            self.bit(("rep0_long", self.state, at & 3), 1)
        else:
            self.bit(("rep1", self.state), index > 1)
            if index > 1:
                self.bit(("rep2", self.state), index > 2)
        self.reps.insert(0, self.reps.pop(index))
        self.length(at, length)
        self.state = 9 if self.state < 7 else 11

    def run(self):
        at = 0
        while at < len(self.data):
            packet = self.decide(at)
            getattr(self, packet[0])(at, *packet[1:])
            self.packets.append((at, packet))
            at += packet[2] if len(packet) > 1 else 1
        self.coder.finish()
        return bytes(self.coder.out)


def varying(number):
    out = bytearray()
    while number > 127:
        out.append(number & 127 | 128)
        number >>= 7
    return bytes(out + bytes([number]))


def runs_of_literals(data, packets):
    """The packets in words, literals in a row as one."""
    words, text = [], bytearray()
    for at, packet in packets + [(len(data), ("end",))]:
        if packet[0] == "literal":
            text.append(data[at])
            continue
        if text:
            shown = text.decode() if all(32 <= b < 127 for b in text) else text.hex()
            words.append(f"{len(text)} literal{'s' if len(text) > 1 else ''} \"{shown}\"")
            text = bytearray()
        if packet[0] == "match":
            words.append(f"match of {packet[2]} at distance {packet[1] + 1}")
        elif packet[0] == "repeat":
            words.append(f"match of {packet[2]} at repeated distance {packet[1]}")
    return words


def object_lines(data):
    """The object in hex; a byte that stands more than 16 times in a row as
    "count x byte"."""
    begin = 0
    for piece in re.finditer(rb"(.)\1{16,}|(?:(?!(.)\2{16}).){1,32}", data, re.DOTALL):
        assert piece.start() == begin
        begin = piece.end()
        if piece.group(1) is None:
            yield f"= {piece.group().hex(' ')}"
        else:
            yield f"= {len(piece.group())} x {piece.group(1).hex()}"
    assert begin == len(data)


def main():
    sentence = b"the oak, the birch and the oak"
    samples = [
        ("empty", b""),
        ("a", b"a"),
        ("ten times a", b"a" * 10),
        ("six times abc", b"abc" * 6),
        ("sentence", sentence),
        ("300 zero bytes", bytes(300)),
        ("twice a sentence", (sentence + b"; ") * 2),
        ("all four repeated distances", b"aooararoorkirabbororrroo kaokababboabbobboiii"),
        ("far matches", b"the birch" + b"x" * 900 + b"the birch" + b"y" * 19000 + b"xxthe birch"),
    ]
    print("# LZMA streams: the length of the object as a varying unsigned integer, then the")
    print("# bytes of the range coder, of which the first is always 0. Written by")
    print("# make/lzma_streams.py, a plain encoder of its own. Lines with '=' give the object.")
    for name, data in samples:
        encoder = Encoder(data)
        stream = encoder.run()
        print(f"\n@ {name}")
        for word, times in itertools.groupby(runs_of_literals(data, encoder.packets)):
            count = len(list(times))
            print(f"# {word}" + (f", {count} times" if count > 1 else ""))
        print(f"{varying(len(data)).hex(' ')}    # length of the object: {len(data)}")
        for begin in range(0, len(stream), 24):
            print(stream[begin:begin + 24].hex(" "))
        for line in object_lines(data):
            print(line)


if __name__ == "__main__":
    main()
