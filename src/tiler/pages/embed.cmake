# Writes a C++ source with the texts of files, for map_files.h:
#   cmake -DOUTPUT=FILE -DNAME=CONSTANT -DINPUT=FILE -P embed.cmake
# A text is cut into bytes, because compilers take no string of any length.
file(READ "${INPUT}" text)
# Whoever has the developer tools open would be told of a file that is not there.
string(REGEX REPLACE "(//# sourceMappingURL=[^\n]*|/[*]# sourceMappingURL=[^\n]*[*]/)\n?" "" text "${text}")
file(WRITE "${OUTPUT}.text" "${text}")
file(READ "${OUTPUT}.text" bytes HEX)
string(LENGTH "${bytes}" digits)
math(EXPR length "${digits} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
file(WRITE "${OUTPUT}" "#include \"tiler/pages/map_files.h\"

namespace tiler {

namespace {

const char kText[] = {${bytes}};

}  // namespace

const std::string_view ${NAME}(kText, ${length});

}  // namespace tiler
")
