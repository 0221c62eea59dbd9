# cmake -DIN=moondata.bin -DOUT=moondata.cpp -P EmbedBytes.cmake
# Writes the lunar series block as a byte array behind orv::MoonDataBlock().
# A missing block, or one of the wrong size, stops the build: the program
# has no Moon without it.
if(NOT EXISTS "${IN}")
  message(FATAL_ERROR "The lunar series block ${IN} is missing (orvane-databuild --moon-block writes it).")
endif()
file(SIZE "${IN}" size)
if(NOT size EQUAL 45216)
  message(FATAL_ERROR "The lunar series block ${IN} holds ${size} bytes, not 45216.")
endif()
file(READ "${IN}" hex HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" bytes "${bytes}")
file(WRITE "${OUT}.tmp"
"// Generated from moondata.bin by cmake/EmbedBytes.cmake; do not edit.
#include \"solarsystem/moonseries.h\"
namespace orv {
namespace {
alignas(8) const std::uint8_t kMoonData[] = {
${bytes}};
static_assert(sizeof kMoonData == kMoonDataBytes);
}  // namespace
std::span<const std::uint8_t> MoonDataBlock() { return {kMoonData, sizeof kMoonData}; }
}  // namespace orv
")
file(RENAME "${OUT}.tmp" "${OUT}")
