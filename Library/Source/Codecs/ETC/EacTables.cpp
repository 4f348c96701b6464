#include <cstdlib>
#include <memory>

#include "EacBlock.h"

namespace zortexture
{
namespace
{
constexpr std::uint32_t kValueCount = 256 * 16 * 16 * 8;

/// A multiplier of 0 stands for the smallest spread, one eighth of a step.
constexpr int spread(unsigned int table, unsigned int multiplier, unsigned int index)
{
	return alphaModifier(table, index) * (multiplier == 0 ? 1 : static_cast<int>(multiplier) * 8);
}

std::unique_ptr<std::uint16_t[]> makeValueTable(bool isSigned)
{
	auto values = std::make_unique<std::uint16_t[]>(kValueCount);
	for (std::uint32_t entry = 0; entry < kValueCount; ++entry)
	{
		values[entry] = get16bits11bits(static_cast<int>(entry >> 11), (entry >> 7) & 15, (entry >> 3) & 15, entry & 7, isSigned);
	}
	return values;
}
} // namespace

std::uint16_t get16bits11signed(int base, unsigned int table, unsigned int multiplier, unsigned int index)
{
	const int centre = base == 0 ? -1016 : base * 8 - 1024; // the most negative base counts as the one above it
	int value = centre + spread(table, multiplier, index);
	value = value < -1023 ? -1023 : (value > 1023 ? 1023 : value);
	const int magnitude = std::abs(value);
	const int spreadOut = (magnitude >> 5) + (magnitude << 5);
	return static_cast<std::uint16_t>(value < 0 ? -spreadOut : spreadOut);
}

std::uint16_t get16bits11bits(int base, unsigned int table, unsigned int multiplier, unsigned int index, bool isSigned)
{
	if (isSigned)
	{
		return get16bits11signed(base, table, multiplier, index);
	}
	int value = base * 8 + 4 + spread(table, multiplier, index);
	value = value < 0 ? 0 : (value > 2047 ? 2047 : value);
	return static_cast<std::uint16_t>((value << 5) | (value >> 6));
}

const std::uint16_t* valueTableUnsigned()
{
	static const std::unique_ptr<std::uint16_t[]> values = makeValueTable(false);
	return values.get();
}

const std::uint16_t* valueTableSigned()
{
	static const std::unique_ptr<std::uint16_t[]> values = makeValueTable(true);
	return values.get();
}
} // namespace zortexture
