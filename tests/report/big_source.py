"""A C source with 10,000 variables and 300,000 leaves, as large programs have them."""

VARIABLES = 10_000
LEAVES = 300_000
UNITS = 20
WORDS = ["speed", "torque", "current", "voltage", "angle", "position", "limit", "gain", "offset",
         "pressure", "valve", "pump", "relay", "filter", "scale", "table", "counter", "state",
         "error", "timer", "sensor", "engine", "brake", "clutch", "battery", "charge"]


def word(number):
    return WORDS[number % len(WORDS)]


def units():
    """Texts of the compile units. Each has its own 25 structures of 30 leaves."""
    texts = []
    for unit in range(UNITS):
        lines = ["typedef struct { float low, high; unsigned short raw; unsigned char mode : 3, "
                 "lock : 1; } limits;"]
        for kind in range(25):
            name = f"{word(unit)}_{word(kind * 7)}_{unit}_{kind}"
            lines.append(f"struct {name} {{ limits {word(kind)}_limits[2]; float {word(kind + 3)}[8]; "
                         f"short {word(kind + 5)}_raw, {word(kind + 9)}_filtered; "
                         f"int {word(kind + 11)}_counts[10]; }};")
            for index in range(20):
                number = kind * 20 + index
                lines.append(f"struct {name} g_{word(number)}_{word(number // 26 + 3)}_{unit}_{number}"
                             f" = {{ .{word(kind + 3)} = {{ {number}.5f }} }};")
        texts.append("\n".join(lines) + "\n")
    return texts
