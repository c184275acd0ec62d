// Numbers in record files, stored little-endian at fixed offsets whatever the machine's own
// byte order: the drawing files and the slot's block maps.
#pragma once

#include <cstdint>

namespace kirvana {

inline void StoreUint16(std::uint8_t* at, std::uint16_t value) {
    at[0] = static_cast<std::uint8_t>(value);
    at[1] = static_cast<std::uint8_t>(value >> 8);
}
inline void StoreInt16(std::uint8_t* at, std::int16_t value) { StoreUint16(at, static_cast<std::uint16_t>(value)); }
inline void StoreUint32(std::uint8_t* at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) at[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

inline std::int16_t LoadInt16(const std::uint8_t* at) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(at[0] | (at[1] << 8)));
}
inline std::uint32_t LoadUint32(const std::uint8_t* at) {
    std::uint32_t value = 0;
    for (int i = 3; i >= 0; --i) value = (value << 8) | at[i];
    return value;
}

}  // namespace kirvana
