# Writes OUTPUT, the C++ source of the report's bundle, from the file INPUT.
file(READ "${INPUT}" bytes HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)"
       "\\1\n" bytes "${bytes}")
file(WRITE "${OUTPUT}" "#include \"ReportBundle.h\"

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr unsigned char sBytes[] = {
${bytes}};

} // namespace

std::string_view ReportBundle() {
    return {reinterpret_cast<const char*>(sBytes), sizeof(sBytes)};
}

} // namespace Tessel::Norn::Brindle::Program
")
