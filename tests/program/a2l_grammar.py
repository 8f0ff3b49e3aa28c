"""A strict reader of the A2L that exports are written in: every block, parameter and keyword that may
occur, by version, and every reference. What it doesn't know is an error, so that nothing is written
unchecked.
"""

import re

TOKEN = re.compile(r'\s+|/\*.*?\*/|//[^\n]*|("(?:[^"\\\n]|\\.)*")|([^\s"]+)', re.S)
PART = r"[A-Za-z_][A-Za-z0-9_]{0,127}(?:\[[0-9]+\])*"
IDENTIFIER = re.compile(rf"{PART}(?:\.{PART})*")
INTEGER = re.compile(r"-?[0-9]+|0[xX][0-9A-Fa-f]+")
FLOAT = re.compile(r"-?[0-9]+(\.[0-9]+)?([eE][+-]?[0-9]+)?")
DATATYPES = {"UBYTE": 1, "SBYTE": 1, "UWORD": 2, "SWORD": 2, "ULONG": 4, "SLONG": 4, "A_UINT64": 8,
             "A_INT64": 8, "FLOAT16_IEEE": 2, "FLOAT32_IEEE": 4, "FLOAT64_IEEE": 8}


class GrammarError(Exception):
    pass


class Tokens:
    def __init__(self, text):
        self.items = []
        position = 0
        while position < len(text):
            match = TOKEN.match(text, position)
            if not match:
                raise GrammarError(f"no token at {text[position:position + 40]!r}")
            if match[1] or match[2]:
                self.items.append((match[1] or match[2], text.count("\n", 0, position) + 1))
            position = match.end()
        self.position = 0

    def peek(self):
        return self.items[self.position][0] if self.position < len(self.items) else ""

    def next(self):
        token = self.peek()
        self.position += 1
        return token

    def fail(self, expected, got):
        line = self.items[min(self.position, len(self.items)) - 1][1]
        raise GrammarError(f"line {line}: expected {expected}, got {got!r}")

    def word(self, expected):
        token = self.next()
        if token != expected:
            self.fail(expected, token)

    def matching(self, pattern, what):
        token = self.next()
        if not pattern.fullmatch(token):
            self.fail(what, token)
        return token

    def identifier(self):
        token = self.matching(IDENTIFIER, "an identifier")
        if len(token) > 1024:
            self.fail("a shorter identifier", token)
        return token

    def text(self):
        token = self.next()
        if not token.startswith('"'):
            self.fail("a text", token)
        return token[1:-1]

    def unsigned(self, bits=32):
        number = int(self.matching(INTEGER, "an integer"), 0)
        if not 0 <= number < 1 << bits:
            self.fail(f"a number of {bits} bits", number)
        return number

    def number(self):
        return float(self.matching(FLOAT, "a number"))

    def one_of(self, words):
        token = self.next()
        if token not in words:
            self.fail(f"one of {sorted(words)}", token)
        return token


class Description:
    """A description that is read whole; raises GrammarError for anything that is not right."""

    def __init__(self, text, fragment_version=None):
        self.tokens = Tokens(text)
        self.objects = {}
        self.layouts, self.conversions, self.tables, self.types = {}, {}, {}, {}
        self.references = []
        self.byte_order = None
        if fragment_version:
            self.version = fragment_version
            while self.tokens.peek():
                self.block()
        else:
            self.project()
        if self.tokens.peek():
            self.tokens.fail("the end", self.tokens.peek())
        for table, name in self.references:
            if name not in table:
                raise GrammarError(f"nothing is named {name}")

    def project(self):
        tokens = self.tokens
        tokens.word("ASAP2_VERSION")
        tokens.word("1")
        self.version = int(tokens.one_of({"51", "60", "71"}))
        self.begin("PROJECT")
        tokens.identifier()
        tokens.text()
        self.begin("MODULE")
        tokens.identifier()
        tokens.text()
        while tokens.peek() == "/begin":
            self.block()
        self.end("MODULE")
        self.end("PROJECT")

    def begin(self, keyword):
        self.tokens.word("/begin")
        self.tokens.word(keyword)

    def end(self, keyword):
        self.tokens.word("/end")
        self.tokens.word(keyword)

    def block(self):
        self.tokens.word("/begin")
        keyword = self.tokens.next()
        reader = getattr(self, keyword.lower(), None)
        if reader is None or keyword != keyword.upper():
            self.tokens.fail("a block of a module", keyword)
        reader()
        self.end(keyword)

    def define(self, table, name, value):
        if name in table:
            raise GrammarError(f"{name} is defined twice")
        table[name] = value

    def datatype(self):
        known = set(DATATYPES)
        if self.version < 71:
            known -= {"FLOAT16_IEEE"}
        if self.version < 60:
            known -= {"A_UINT64", "A_INT64"}
        return self.tokens.one_of(known)

    def conversion(self):
        name = self.tokens.identifier()
        if name != "NO_COMPU_METHOD":
            self.references.append((self.conversions, name))
        return name

    def layout(self):
        name = self.tokens.identifier()
        self.references.append((self.layouts, name))
        return name

    def limits(self):
        low, high = self.tokens.number(), self.tokens.number()
        if not low < high:
            raise GrammarError(f"limits {low} and {high}")
        return low, high

    def dimensions(self):
        numbers = []
        while INTEGER.fullmatch(self.tokens.peek()):
            numbers.append(self.tokens.unsigned())
        count = len(numbers)
        if not numbers or 0 in numbers or (count != 3 if self.version < 71 else False):
            raise GrammarError(f"MATRIX_DIM {numbers}")
        return numbers

    def parts(self, allowed):
        """Optional parts of an object, each at most once."""
        parts = {}
        readers = {
            "ECU_ADDRESS": self.tokens.unsigned,
            "BIT_MASK": lambda: self.tokens.unsigned(64 if self.version >= 71 else 32),
            "MATRIX_DIM": self.dimensions,
            "ARRAY_SIZE": self.tokens.unsigned,
            "NUMBER": self.tokens.unsigned,
            "SYMBOL_LINK": lambda: (self.tokens.text(), int(self.tokens.next(), 0)),
        }
        while self.tokens.peek() in allowed:
            keyword = self.tokens.next()
            self.define(parts, keyword, readers[keyword]())
        return parts

    def object_parts(self, older):
        matrix = {older} if self.version < 60 else {"MATRIX_DIM", "SYMBOL_LINK"}
        return matrix | {"BIT_MASK"}

    def add(self, name, kind, address, **facts):
        self.define(self.objects, name, {"kind": kind, "address": address, **facts})

    def mod_common(self):
        tokens = self.tokens
        tokens.text()
        tokens.word("BYTE_ORDER")
        self.byte_order = tokens.one_of({"MSB_FIRST", "MSB_LAST"})
        kinds = ["BYTE", "WORD", "LONG"] + (["INT64"] if self.version >= 60 else [])
        kinds += ["FLOAT16_IEEE"] if self.version >= 71 else []
        for kind in kinds + ["FLOAT32_IEEE", "FLOAT64_IEEE"]:
            tokens.word(f"ALIGNMENT_{kind}")
            tokens.one_of({"1", "2", "4", "8"})

    def measurement(self):
        tokens = self.tokens
        name = tokens.identifier()
        tokens.text()
        datatype, conversion = self.datatype(), self.conversion()
        tokens.unsigned()
        tokens.number()
        limits = self.limits()
        parts = self.parts(self.object_parts("ARRAY_SIZE") | {"ECU_ADDRESS"})
        self.add(name, "MEASUREMENT", parts["ECU_ADDRESS"], datatype=datatype, conversion=conversion,
                 limits=limits, **parts)

    def characteristic(self):
        tokens = self.tokens
        name = tokens.identifier()
        tokens.text()
        kind = tokens.one_of({"VALUE", "VAL_BLK"})
        address, layout = tokens.unsigned(), self.layout()
        tokens.number()
        conversion, limits = self.conversion(), self.limits()
        parts = self.parts(self.object_parts("NUMBER"))
        if (kind == "VAL_BLK") != bool({"MATRIX_DIM", "NUMBER"} & set(parts)):
            raise GrammarError(f"{name}: {kind} with {parts}")
        self.add(name, "CHARACTERISTIC", address, type=kind, layout=layout, conversion=conversion,
                 limits=limits, **parts)

    def latest_version(self):
        if self.version < 71:
            raise GrammarError("this block needs version 1.7.1")

    def instance(self):
        self.latest_version()
        tokens = self.tokens
        name = tokens.identifier()
        tokens.text()
        kind = tokens.identifier()
        self.references.append((self.types, kind))
        address = tokens.unsigned()
        self.add(name, "INSTANCE", address, type=kind, **self.parts({"MATRIX_DIM", "SYMBOL_LINK"}))

    def typedef_structure(self):
        self.latest_version()
        tokens = self.tokens
        name = tokens.identifier()
        tokens.text()
        size = tokens.unsigned()
        if tokens.peek() == "SYMBOL_TYPE_LINK":
            tokens.next()
            tokens.text()
        components = {}
        while tokens.peek() == "/begin":
            self.begin("STRUCTURE_COMPONENT")
            component = tokens.matching(re.compile(PART), "a name in one part")
            kind = tokens.identifier()
            self.references.append((self.types, kind))
            offset = tokens.unsigned()
            if offset > size:
                raise GrammarError(f"{component} lies outside of {name}")
            if tokens.peek() == "MATRIX_DIM":
                tokens.next()
                self.dimensions()
            tokens.word("SYMBOL_TYPE_LINK")
            tokens.text()
            self.end("STRUCTURE_COMPONENT")
            self.define(components, component, (kind, offset))
        self.define(self.types, name, {"size": size, "components": components})

    def typedef_measurement(self):
        self.latest_version()
        name = self.tokens.identifier()
        self.tokens.text()
        datatype = self.datatype()
        self.conversion()
        self.tokens.unsigned()
        self.tokens.number()
        self.limits()
        self.define(self.types, name, {"datatype": datatype, **self.parts({"BIT_MASK"})})

    def typedef_characteristic(self):
        self.latest_version()
        name = self.tokens.identifier()
        self.tokens.text()
        self.tokens.word("VALUE")
        layout = self.layout()
        self.tokens.number()
        self.conversion()
        self.limits()
        self.define(self.types, name, {"layout": layout, **self.parts({"BIT_MASK"})})

    def record_layout(self):
        name = self.tokens.identifier()
        self.tokens.word("FNC_VALUES")
        self.tokens.word("1")
        datatype = self.datatype()
        self.tokens.word("ROW_DIR")
        self.tokens.word("DIRECT")
        self.define(self.layouts, name, datatype)

    def compu_method(self):
        tokens = self.tokens
        name = tokens.identifier()
        tokens.text()
        tokens.word("TAB_VERB")
        if not re.fullmatch(r"%\d+\.\d+", tokens.text()):
            raise GrammarError("the format of " + name)
        tokens.text()
        tokens.word("COMPU_TAB_REF")
        table = tokens.identifier()
        self.references.append((self.tables, table))
        self.define(self.conversions, name, table)

    def compu_vtab(self):
        name = self.tokens.identifier()
        self.tokens.text()
        self.tokens.word("TAB_VERB")
        pairs = {}
        for _ in range(self.tokens.unsigned()):
            value = self.tokens.number()
            self.define(pairs, value, self.tokens.text())
        self.define(self.tables, name, pairs)
