#!/usr/bin/env python3
"""Writes the hand-made seed inputs of the fuzz targets into fuzz/corpus/<target>/.

Each seed follows its target's input layout (see the target's source): leading choice
bytes, then texts. Run it from anywhere; it rewrites only the files it names."""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))


def put(target, name, data):
    folder = os.path.join(HERE, "corpus", target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


def counted(b):
    return bytes([len(b)]) + b


def utf16(s):
    return s.encode("utf-16-le", "surrogatepass")


# BinaryData: 0 = 8-bit text, 1 = UTF-16 text, 2 = round trip of counted bytes.
put("BinaryData", "base64", b"\x00TWFueSBoYW5kcw==")
put("BinaryData", "padding-inside", b"\x00QQ==QUI=QUJD")
put("BinaryData", "binhex", b"\x000123456789ABCDEF")
put("BinaryData", "wide-base64", b"\x01SGVsbG8sIHdvcmxkIQ==")
put("BinaryData", "round-trip", b"\x02" + counted(bytes(range(0, 256, 7))) + b"\x05\x01\x02\x03")

# Utf8Codec: odd first byte = UTF-8 bytes, even = UTF-16 units.
put("Utf8Codec", "mixed", b"\x01" + "aé€😀 plain ascii text long enough".encode())
put("Utf8Codec", "malformed", b"\x01\xc0\xaf\xed\xa0\x80\xf4\x90\x80\x80\xe2\x82\xf0\x9f\x98")
put("Utf8Codec", "units", b"\x00" + utf16("x\u00e9\u20ac") + b"\x00\xd8\x00\xdc\x00\xdc\x41\x00")

# DataStream: odd = typed reads (java, shape, sizes, ops, data); even = round trip.
data = struct.pack(">iH", -5, 7) + struct.pack("<f", 1.5) + struct.pack(">I", 3) + b"abc"
put("DataStream", "native-reads", b"\x01\x00\x00\x08\x04" + counted(bytes([5, 4, 7, 9, 0, 1])) + data)
put("DataStream", "java-pushback", b"\x01\x01\x03\x10\x04" + counted(bytes([11, 25, 3, 13, 12, 9])) +
    struct.pack(">H", 2) + b"hi" + data)
put("DataStream", "round-trip", b"\x00\x01\x01\x01" + b"\x04" + b"\x01" * 8 + b"\x08" + b"\x00" * 8 +
    b"\x03" + utf16("A\u00e9"))

# Tokenizer: 8-bit or UTF-16, returnDelims, delimiters, source, operations.
put("Tokenizer", "narrow", b"\x01\x00" + counted(b", ") + counted(b"a, b,,c  d") + bytes([2, 0, 2, 1, 3, 2, 2, 2]))
put("Tokenizer", "narrow-delims", b"\x01\x01" + counted(b";") + counted(b";x;;y;") + bytes([1, 2, 2, 0, 2, 2, 2]))
put("Tokenizer", "wide", b"\x00\x00\x02" + utf16(",\u00e9") + b"\x06" + utf16("a,b\u00e9c,") + bytes([2, 2, 1, 3, 2]))

# UcsFormat: odd = scan (length, text bytes, format), even = print.
put("UcsFormat", "scan-number", b"\x01\x06" + bytes([1, 2, 3, 11, 4, 5]) + b"\x01")
put("UcsFormat", "print-double", b"\x00\x07\x01\x00\x03\x04\x00\x01\x02\x00\x00" + struct.pack("<d", 3.25))
put("UcsFormat", "print-text", b"\x00\x10\x01\x00\x05\x02\x00\x00\x00\x00\x00" + b"\x11" * 8)

# OutputStreamWriter: chunks of units with their kind.
put("OutputStreamWriter", "pairs", b"\x03\x04" + utf16("a\ud83d\ude00\u00e9") + b"\x00\x01" + utf16("\ud83d") +
    b"\x03\x01" + utf16("\ude00") + b"\x05")
put("OutputStreamWriter", "long-run", b"\x04\x01" + utf16("\u20ac") + b"\xff\x05")

# StringCollections: map, set or vector, then operations.
put("StringCollections", "map", bytes([0, 1, 5, 2]) + bytes(range(40)))
put("StringCollections", "set", bytes([1, 3, 8, 4]) + bytes(range(60, 120)))
put("StringCollections", "vector", bytes([2, 4, 3]) + bytes(range(10, 90)))

# XML readers: counted walk choices, then the document.
doc = (b"<?xml version='1.0' encoding='UTF-8'?>\n<!-- c --><?pi data?>"
       b"<r xmlns:p='urn:p' a='1' p:b='2.5'><n>42</n><t> text &amp; more </t>"
       b"<![CDATA[<cdata>]]><e/><b64>AAEC</b64><hex>0A0B</hex><p:q f='true'>x</p:q></r>")
walk = bytes([0, 0, 0x14, 9, 0x19, 10, 0, 0x22, 8, 6, 0x11, 0x41, 11, 0x7b, 5, 0x15, 7, 0x27])
for target in ("XMLTextReader", "XMLDOMReader"):
    put(target, "document", counted(walk) + doc)
    put(target, "plain-walk", b"\x00" + doc)
put("XMLTextReader", "utf16", b"\x00" + b"\xff\xfe" + utf16("<a b='\u00e9'>\ud83d\ude00</a>"))
put("XMLTextReader", "doctype", b"\x00<!DOCTYPE r [<!ENTITY e 'x'>]><r>&e;&lt;</r>")
put("XMLPushbackReader", "document", b"\x02" + counted(walk + bytes([13, 14, 15] * 4)) +
    counted(bytes(range(1, 40))) + doc)

# XMLTextWriter: buffer size, start, then calls.
put("XMLTextWriter", "elements", bytes([0, 1, 0, 0, 5, 2, 1, 13, 3, 23, 1, 3, 3, 15, 2, 3]))
put("XMLTextWriter", "reserved-namespace", bytes([1, 1, 0, 0, 8, 4, 1, 0, 3, 3]))
put("XMLTextWriter", "namespaces", bytes([1, 1, 2, 0, 1, 1, 7, 0, 0, 1, 2, 13, 2, 0x62, 4, 9, 1, 2]))

# RegEx: form, option count and letters, counted pattern and text, range.
put("RegEx", "groups", b"\x00\x01\x00" + counted(b"(\\d+)-([a-z]*)") + counted(b"id 42-abc!") + b"\x02\x09")
put("RegEx", "wide-options", b"\x01\x02\x00\x01" + counted(b"^A.c$") + counted(b"abc\nABC") + b"\x00\x03")
put("RegEx", "classes", b"\x00\x00" + counted(b"[\\p{L}-[a]]+\\s?") + counted("été b".encode()) + b"\x01\x05")
put("RegEx", "empty-repeat", b"\x00\x00" + counted(b"(a*)*b") + counted(b"aaxaab") + b"\x00\x04")
put("RegEx", "empty-repeat-range", b"\x00\x00" + counted(b"x(a{0,2})+b") + counted(b"xaac") + b"\x00\x02")
