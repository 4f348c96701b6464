/// @file ElementCeiling.h
/// The ends of the element types' ranges.
#pragma once

namespace zortexture
{
/// The largest element value, as the filters clamp to it: 2^32 for unsigned int, since that is the float next to 2^32 - 1.
template<typename T>
inline constexpr float kElementCeiling = 3.4028235e38f;
template<>
inline constexpr float kElementCeiling<unsigned char> = 255.0f;
template<>
inline constexpr float kElementCeiling<unsigned short> = 65535.0f;
template<>
inline constexpr float kElementCeiling<unsigned int> = 4294967296.0f;
} // namespace zortexture
