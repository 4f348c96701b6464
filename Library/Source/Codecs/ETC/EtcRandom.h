/// @file EtcRandom.h
/// The random draws of the two-colour clustering.
#pragma once

#include <array>
#include <cstdint>

namespace zortexture
{
/// The first Count results of `rand()` after `srand(seed)`, as the GNU C library defines them.
///
/// The clustering is defined as drawing from the platform's generator, restarted at every call. Calling srand and rand would
/// disturb the process's own stream, and two threads that encode at once would disturb each other's, with results that
/// depend on timing. As every call sees the same draws, they are a constant: the library's additive feedback generator
/// (r[i] = r[i-3] + r[i-31] modulo 2^32, the low bit dropped from the output), its state filled by the minimal standard
/// generator (factor 16807, modulus 2^31 - 1) and its first 310 outputs discarded.
template<unsigned int Count>
constexpr std::array<std::int32_t, Count> platformRandomDraws(std::uint32_t seed)
{
	constexpr unsigned int kDegree = 31;
	constexpr unsigned int kSeparation = 3;
	constexpr unsigned int kFirst = kDegree + kSeparation + 310;
	constexpr std::int64_t kModulus = 2147483647;

	std::array<std::uint32_t, kFirst + Count> state{};
	state[0] = seed == 0 ? 1 : seed;
	for (unsigned int i = 1; i < kDegree; ++i)
	{
		// The remainder of a seed that is negative as a 32-bit number is made positive.
		const std::int64_t next = 16807 * static_cast<std::int64_t>(static_cast<std::int32_t>(state[i - 1])) % kModulus;
		state[i] = static_cast<std::uint32_t>(next < 0 ? next + kModulus : next);
	}
	for (unsigned int i = kDegree; i < kDegree + kSeparation; ++i)
	{
		state[i] = state[i - kDegree];
	}
	for (unsigned int i = kDegree + kSeparation; i < kFirst + Count; ++i)
	{
		state[i] = state[i - kSeparation] + state[i - kDegree];
	}

	std::array<std::int32_t, Count> draws{};
	for (unsigned int i = 0; i < Count; ++i)
	{
		draws[i] = static_cast<std::int32_t>(state[kFirst + i] >> 1);
	}
	return draws;
}
} // namespace zortexture
