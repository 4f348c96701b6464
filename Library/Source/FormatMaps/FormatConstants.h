/// @file FormatConstants.h
/// The published constants of the graphics APIs, by their own names.
#ifndef ZORT_FORMAT_CONSTANTS_H
#define ZORT_FORMAT_CONSTANTS_H

namespace zortexture
{
#define ZORT_FORMAT_CONSTANT(name, value) inline constexpr unsigned int name = value;
#include "FormatConstants.def"
#undef ZORT_FORMAT_CONSTANT
} // namespace zortexture

#endif // ZORT_FORMAT_CONSTANTS_H
