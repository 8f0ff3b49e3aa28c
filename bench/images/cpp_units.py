"""Writes the sources of the big C++ image: a heavy header, and any number of units over it.

build.py calls it. Every unit is of about the same size, so that half the units give half the image.
The text depends on the number of the unit alone: two runs write the same sources. Function bodies
are few, since it is the debug information that the image is for: code only makes its building slow.
"""
MODULES = 24
CLASSES_PER_MODULE = 8
CONTROLLERS_PER_UNIT = 60
OWN_TYPES_PER_UNIT = 60
VALUES = ["int", "float", "double", "long", "short", "unsigned"]

STANDARD_HEADERS = """
algorithm array atomic bitset chrono condition_variable deque fstream functional future iomanip
iostream iterator limits list map memory mutex numeric optional queue random regex set sstream stack
string string_view thread tuple type_traits unordered_map unordered_set utility variant vector
""".split()

MODULE = """\
namespace plant::module{module} {{

enum class State : unsigned char {{ Idle, Starting, Running = 7, Stopping, Failed = 200 }};
enum Level {{ LevelLow = -5, LevelMiddle = 0, LevelHigh = 1000 }};
typedef unsigned int Ticks;
using Handler = void (*)(Level, const char*);

struct Flags {{
    unsigned ready : 1;
    unsigned mode : 3;
    unsigned level : 12;
    signed trim : 7;
}};

template <typename Value, int Size> struct Ring {{
    typedef Value Element;
    Value slots[Size];
    unsigned head, tail;
    bool Push(const Value& value);
    Value Pop();
    unsigned Count() const;
    struct Cursor {{
        Ring* ring;
        unsigned position;
        Value& Get();
    }};
    Cursor Begin();
}};

template <typename Value> class Port {{
public:
    virtual ~Port();
    virtual void Write(Value value);
    virtual Value Read() const;

protected:
    Value last;
    Ring<Value, 16> ring;
    Ticks writes;
    static const int sWidth = sizeof(Value);
}};
{classes}
}}
"""

CLASS = """
template <typename Value, typename Tag> class Controller{number} : public Port<Value> {{
public:
    struct Gains {{
        Value proportional, integral, derivative;
        float limits[2][3];
    }};
    union Raw {{
        Value value;
        unsigned char bytes[sizeof(Value)];
        Flags flags;
    }};
    typedef std::map<std::string, Gains> Table;
    Controller{number}();
    Value Step(Value wanted, Value actual);
    void Configure(const std::string& name, const Gains& values);
    std::size_t Known() const;
    void Remember(Value value, const Tag& tag);
    static Controller{number}* sInstance;

private:
    State state;
    Flags flags;
    Handler handler;
    Gains gains;
    Raw raw;
    Value sum;
    Table table;
    std::vector<std::pair<Value, Tag>> history;
}};
"""

CONTROLLER = """\
namespace unit{unit} {{
struct Tag{index} {{ int mark[{marks}]; }};
{kind}* gController{index};
void Use{index}({kind}& controller, {value} wanted) {{
    const {value} actual = wanted;
    const {tag} mark = {tag}();
    controller.Remember(controller.Step(wanted, actual), mark);
    gTotal += sizeof controller;
}}
}}
"""

OWN_TYPE = """\
namespace unit{unit} {{
struct Sample{index} {{
    {value} first[{length}];
    plant::module{module}::Flags flags;
    plant::module{module}::Ring<{value}, {length}> ring;
    union {{ unsigned whole; unsigned short halves[2]; }};
    Sample{index}* next;
    {value} Mean(unsigned count) const;
}};
Sample{index} gSample{index};
static volatile {value} sCounter{index};
void Touch{index}() {{
    static Sample{index} sLast;
    sLast = gSample{index};
    sCounter{index} = sLast.first[0];
}}
}}
"""

STANDARD_USE = """\
namespace {{
std::vector<std::string>* gWords;
std::map<std::string, std::vector<double>>* gSeries;
std::unordered_map<unsigned long, std::shared_ptr<std::set<int>>>* gSets;
std::function<int(const std::string&)>* gFilter;
std::variant<int, double, std::string>* gChoice;
std::optional<std::tuple<int, float, std::string>>* gOptional;
std::deque<std::unique_ptr<std::list<long>>>* gQueue;
}}
void UseStandard{unit}() {{
    unit{unit}::gTotal = gWords->size() + sizeof *gSeries + sizeof *gSets + sizeof *gFilter +
        sizeof *gChoice + sizeof *gOptional + sizeof *gQueue;
}}
"""


def heavy_header():
    parts = [f"#include <{name}>\n" for name in STANDARD_HEADERS]
    for module in range(MODULES):
        classes = "".join(CLASS.format(number=number) for number in range(CLASSES_PER_MODULE))
        parts.append(MODULE.format(module=module, classes=classes))
    return "".join(parts)


def controller(unit, index):
    """A pointer to a template instance. Two of three are of a kind that other units use too, the
    third has a type of this unit as its argument."""
    choice = unit * 7 + index * 11
    value = VALUES[(unit + index) % len(VALUES)]
    tag = f"Tag{index}" if index % 3 == 0 else "long"
    kind = f"plant::module{choice % MODULES}::Controller{index % CLASSES_PER_MODULE}<{value}, {tag}>"
    return CONTROLLER.format(unit=unit, index=index, kind=kind, value=value, tag=tag, marks=index + 1)


def own_type(unit, index):
    """A type that this unit alone has, and variables of it."""
    return OWN_TYPE.format(unit=unit, index=index, module=(unit + index) % MODULES,
                           value=VALUES[(unit + index) % len(VALUES)], length=index + 2)


def unit_source(unit):
    parts = ['#include "heavy.h"\n', f"namespace unit{unit} {{ std::size_t gTotal; }}\n"]
    parts += [controller(unit, index) for index in range(CONTROLLERS_PER_UNIT)]
    parts += [own_type(unit, index) for index in range(OWN_TYPES_PER_UNIT)]
    parts.append(STANDARD_USE.format(unit=unit))
    return "".join(parts)


def sources(units):
    """Texts of all source files by name."""
    files = {"heavy.h": heavy_header(), "main.cpp": "int main() { return 0; }\n"}
    files.update((f"unit{unit:04}.cpp", unit_source(unit)) for unit in range(units))
    return files
