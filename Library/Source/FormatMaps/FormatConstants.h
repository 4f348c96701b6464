/// @file FormatConstants.h
/// The published constants of the graphics APIs, by their own names.
#pragma once

namespace zortexture
{
#define ZORT_FORMAT_CONSTANT(name, value) inline constexpr unsigned int name = value;
#include "FormatConstants.def"
#undef ZORT_FORMAT_CONSTANT
} // namespace zortexture
