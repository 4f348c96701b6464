#include "Codecs/ETC/EtcLanes.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

#if defined(__SSE2__)

using namespace zortexture;

namespace
{
/// Random numbers over the whole range of a type and near its ends.
std::int16_t anyShort(std::mt19937& random)
{
	const unsigned int ends[] = {0, 1, 32766, 32767, 32768, 32769, 65535};
	return static_cast<std::int16_t>(random() % 2 == 0 ? random() : ends[random() % 7]);
}

unsigned int anyUInt31(std::mt19937& random)
{
	return (random() & 0x3FFFFFFF) >> (random() % 31);
}

TEST(EtcLanes, RegistersEqualArrays)
{
	std::mt19937 random(51);
	for (unsigned int round = 0; round < 2000; ++round)
	{
		alignas(16) std::int16_t shorts[2][8];
		alignas(16) unsigned int longs[2][8];
		for (unsigned int i = 0; i < 16; ++i)
		{
			shorts[i / 8][i % 8] = anyShort(random);
			longs[i / 8][i % 8] = anyUInt31(random);
		}
		const auto plainA = etc_plain_lanes::Int16x8::load(shorts[0]);
		const auto plainB = etc_plain_lanes::Int16x8::load(shorts[1]);
		const auto fastA = etc_sse2_lanes::Int16x8::load(shorts[0]);
		const auto fastB = etc_sse2_lanes::Int16x8::load(shorts[1]);
		const auto equal = [](const etc_plain_lanes::Int16x8& plain, const etc_sse2_lanes::Int16x8& fast)
		{
			return std::memcmp(&plain, &fast, 16) == 0;
		};
		ASSERT_TRUE(equal(least(plainA, plainB), least(fastA, fastB)));
		ASSERT_TRUE(equal(addSaturated(plainA, plainB), addSaturated(fastA, fastB)));
		ASSERT_EQ(anyBelow(plainA, plainB), anyBelow(fastA, fastB));
		const std::int16_t limit = shorts[0][round % 8];
		ASSERT_EQ(anyBelow(plainB, etc_plain_lanes::Int16x8::filled(limit)), anyBelow(fastB, etc_sse2_lanes::Int16x8::filled(limit)));

		alignas(16) unsigned int results[2][8];
		alignas(16) std::int16_t scaled[2][8];
		const auto plainC = etc_plain_lanes::UInt31x8::load(longs[0]);
		const auto plainD = etc_plain_lanes::UInt31x8::load(longs[1]);
		const auto fastC = etc_sse2_lanes::UInt31x8::load(longs[0]);
		const auto fastD = etc_sse2_lanes::UInt31x8::load(longs[1]);
		(least(plainC, plainD) + plainD).store(results[0]);
		(least(fastC, fastD) + fastD).store(results[1]);
		ASSERT_TRUE(std::equal(results[0], results[0] + 8, results[1]));
		ASSERT_EQ(leastLane(plainC), leastLane(fastC));
		storeScaled(plainC, round % 31, scaled[0]);
		storeScaled(fastC, round % 31, scaled[1]);
		ASSERT_TRUE(std::equal(scaled[0], scaled[0] + 8, scaled[1]));
	}
}
} // namespace

#endif
