/// @file Unrolled.h
/// Loops of a few turns written out, since compilers keep them as loops within the loop over pixels, at half the speed.
#pragma once

#include <type_traits>
#include <utility>

namespace zortexture
{
/// Calls `function` with the constants 0 to count - 1.
template<unsigned int count, typename Function>
[[gnu::always_inline]] inline void unrolled(Function&& function)
{
	[&]<unsigned int... i>(std::integer_sequence<unsigned int, i...>)
	{
		(function(std::integral_constant<unsigned int, i>{}), ...);
	}
	(std::make_integer_sequence<unsigned int, count>{});
}
} // namespace zortexture
