// Conversion by the encoders' arithmetic, in stages over blocks of pixels that stay in the cache: the source's numbers as floats, the
// floats in the destination's order, these as the destination's numbers. What depends on layouts and types is decided once for a block.

#include <algorithm>
#include <cstring>
#include <vector>

#include "BulkConversion.h"
#include "ChannelNumbers.h"
#include "ColourSpace.h"
#include "GreyRule.h"
#include "NormalisedInteger.h"
#include "Unrolled.h"

namespace zortexture
{
namespace
{
constexpr std::size_t kBlockPixels = 128;

/// Wider signed channels are written as opaque with another value than 1.0 has.
constexpr unsigned int kOpaqueIsOneBits = 22;

/// Changes of colour space are looked up for channels up to this width, when there are so many pixels for each value.
constexpr unsigned int kSpaceTableBits = 16;
constexpr unsigned int kPixelsPerValue = 1;

bool isFloat(EZORTVariableType type)
{
	return type == eVT_SignedFloat || type == eVT_UnsignedFloat;
}

/// The numbers of a layout. Elements are taken from where they stand; fields come by fours, of 32 bits.
SChannelRule ruleOf(const SPixelLayout& layout)
{
	SChannelRule rule;
	rule.isUniform = layout.isElements;
	rule.bytes = layout.isElements ? layout.bits[0] / 8 : 4;
	for (unsigned int i = 0; i < 4; ++i)
	{
		const unsigned int bits = layout.isElements ? layout.bits[0] : layout.bits[i];
		rule.bits[i] = bits;
		rule.ceilings[i] = 1.0f;
		if (bits != 0 && isSigned(layout.type))
		{
			rule.ceilings[i] = static_cast<float>(signedCeiling(bits));
			rule.floors[i] = static_cast<float>(signedCeiling(bits) + 1u);
			rule.signs[i] = 1u << (bits - 1u);
		}
		else if (bits != 0)
		{
			rule.ceilings[i] = static_cast<float>(unsignedCeiling(bits));
		}
	}
	if (!isFloat(layout.type))
	{
		rule.kind = isSigned(layout.type) ? eSignedChannels : eUnsignedChannels;
	}
	else if (!layout.isElements)
	{
		rule.kind = eSmallFloatChannels;
	}
	else
	{
		rule.kind = rule.bytes == 2 ? eHalfChannels : eFloatChannels;
		rule.hasSign = layout.type == eVT_SignedFloat;
	}
	return rule;
}

void read(const SChannelRule& rule, const unsigned char* numbers, float* values, std::size_t count)
{
	withSimdLevel([&](auto level) { readChannels<level>(rule, numbers, values, count); });
}

void write(const SChannelRule& rule, const float* values, unsigned char* numbers, std::size_t count)
{
	withSimdLevel([&](auto level) { writeChannels<level>(rule, values, numbers, count); });
}

/// Where the fields of a layout are.
struct SShifts
{
	explicit SShifts(const SPixelLayout& layout)
	{
		for (unsigned int i = 0; i < 4; ++i)
		{
			counts[i] = layout.shifts[i];
			masks[i] = layout.maskOf(i);
		}
	}

	unsigned int counts[4];
	std::uint32_t masks[4];
};

/// Bit fields of pixels of a constant number of bytes, to 32-bit numbers and back.
template<unsigned int bytes>
struct SFields
{
	static std::uint64_t load(const unsigned char* pixel)
	{
		std::uint64_t word = 0;
		std::memcpy(&word, pixel, bytes);
		return word;
	}

	static void read(const SPixelLayout& layout, const unsigned char* pixels, std::uint32_t* numbers, std::size_t numPixels)
	{
		const SShifts shifts(layout);
		for (std::size_t pixel = 0; pixel < numPixels; ++pixel, pixels += bytes, numbers += 4)
		{
			const std::uint64_t word = load(pixels);
			unrolled<4>([&](auto i) { numbers[i] = static_cast<std::uint32_t>(word >> shifts.counts[i]) & shifts.masks[i]; });
		}
	}

	/// Only a field that ends at bit 31 has its sign extended, and those above it are 0.
	static void readSigned(const SPixelLayout& layout, const unsigned char* pixels, std::uint32_t* numbers, std::size_t numPixels)
	{
		for (std::size_t pixel = 0; pixel < numPixels; ++pixel, pixels += bytes, numbers += 4)
		{
			const std::uint64_t word = load(pixels);
			for (unsigned int i = 0; i < 4; ++i)
			{
				const std::uint64_t mask = static_cast<std::uint64_t>(layout.maskOf(i)) << layout.shifts[i];
				const auto field = static_cast<std::int32_t>(static_cast<std::uint32_t>(word & mask));
				numbers[i] = layout.shifts[i] < 32 ? static_cast<std::uint32_t>(field >> layout.shifts[i]) : 0;
			}
		}
	}

	/// @param order  of the channels' names: bits beyond a field stay where the field above was written before.
	static void write(const SPixelLayout& layout, const unsigned int (&order)[4], const std::uint32_t* numbers, unsigned char* pixels,
	                  std::size_t numPixels)
	{
		const SShifts shifts(layout);
		unsigned int counts[4] = {};
		std::uint32_t used[4] = {}; // no bits of the positions that the layout does not have
		std::uint64_t kept[4];
		for (unsigned int i = 0; i < 4; ++i)
		{
			counts[i] = shifts.counts[order[i]];
			kept[i] = ~(i < layout.numChannels ? static_cast<std::uint64_t>(shifts.masks[order[i]]) << counts[i] : 0);
			used[i] = i < layout.numChannels ? 0xFFFFFFFFu : 0;
		}
		for (std::size_t pixel = 0; pixel < numPixels; ++pixel, pixels += bytes, numbers += 4)
		{
			std::uint64_t word = 0;
			unrolled<4>([&](auto i) { word = (word & kept[i]) | static_cast<std::uint64_t>(numbers[order[i]] & used[i]) << counts[i]; });
			std::memcpy(pixels, &word, bytes);
		}
	}
};

using ReadFields = void (*)(const SPixelLayout&, const unsigned char*, std::uint32_t*, std::size_t);
using WriteFields = void (*)(const SPixelLayout&, const unsigned int (&)[4], const std::uint32_t*, unsigned char*, std::size_t);

ReadFields fieldReader(const SPixelLayout& layout)
{
	static constexpr ReadFields kUnsigned[] = {SFields<1>::read, SFields<2>::read, SFields<3>::read, SFields<4>::read,
	                                           SFields<5>::read, SFields<6>::read, SFields<7>::read, SFields<8>::read};
	static constexpr ReadFields kSigned[] = {SFields<1>::readSigned, SFields<2>::readSigned, SFields<3>::readSigned,
	                                         SFields<4>::readSigned, SFields<5>::readSigned, SFields<6>::readSigned,
	                                         SFields<7>::readSigned, SFields<8>::readSigned};
	const bool hasSigns = isSigned(layout.type) && !isFloat(layout.type);
	return (hasSigns ? kSigned : kUnsigned)[layout.bytes - 1];
}

WriteFields fieldWriter(const SPixelLayout& layout)
{
	static constexpr WriteFields kWriters[] = {SFields<1>::write, SFields<2>::write, SFields<3>::write, SFields<4>::write,
	                                           SFields<5>::write, SFields<6>::write, SFields<7>::write, SFields<8>::write};
	return kWriters[layout.bytes - 1];
}

/// `out` has `stride` numbers a pixel, taken by `from`.
template<unsigned int stride>
void arrange(const float* in, unsigned int inStride, float* out, const unsigned int (&from)[4], std::size_t numPixels)
{
	for (std::size_t pixel = 0; pixel < numPixels; ++pixel, in += inStride, out += stride)
	{
		unrolled<stride>([&](auto i) { out[i] = in[from[i]]; });
	}
}

class CArithmeticConversion : public CBulkConversion
{
public:
	explicit CArithmeticConversion(SConversionTask& task)
	    : m_task(task), m_sourceRule(ruleOf(task.source)), m_destinationRule(ruleOf(task.destination)),
	      m_inStride(task.source.isElements ? task.source.numChannels : 4),
	      m_outStride(task.destination.isElements ? task.destination.numChannels : 4)
	{
		const SPixelLayout& destination = m_task.destination;
		m_isInOrder = m_inStride == m_outStride;
		for (unsigned int position = 0; position < destination.numChannels; ++position)
		{
			const SChannelOrigin origin = originOf(m_task.source, destination, position);
			m_origins[position] = origin.kind;
			m_from[position] = origin.position;
			m_isInOrder = m_isInOrder && origin.kind == eFromPosition && origin.position == position;
		}
		for (unsigned int i = 0; i < destination.numChannels; ++i)
		{
			m_order[i] = i;
		}
		std::stable_sort(m_order, m_order + destination.numChannels,
		                 [&](unsigned int a, unsigned int b) { return destination.names[a] < destination.names[b]; });
		if (destination.type == eVT_SignedFloat && !destination.isElements)
		{
			std::fill(std::begin(m_destinationRule.bits), std::end(m_destinationRule.bits), 0); // these are not written
		}
		m_isPacked = (destination.bytes == 2 || destination.bytes == 4) && hasSeparateChannels(m_task.source, destination);
		for (unsigned int i = 0; i < destination.numChannels; ++i)
		{
			m_places.masks[i] = destination.maskOf(i);
			m_places.shifts[i] = destination.shifts[i];
		}
		planColourSpace();
	}

	void convert(const unsigned char* source, unsigned char* destination, std::size_t numPixels) const override
	{
		// The encoder is for pixels whose colour space is changed one by one.
		CPixelEncoder encoder(m_task.destinationEncoder);
		while (numPixels != 0)
		{
			const std::size_t count = std::min(numPixels, kBlockPixels);
			convertBlock(source, destination, count, encoder);
			source += count * m_task.source.bytes;
			destination += count * m_task.destination.bytes;
			numPixels -= count;
		}
	}

private:
	/// Whether, and how, the destination's numbers are moved to another colour space.
	void planColourSpace()
	{
		const SPixelLayout& destination = m_task.destination;
		// Small floats keep what they hold.
		if (!changesColourSpace(m_task.targetSpace, m_task.sourceSpace) || m_destinationRule.kind == eSmallFloatChannels)
		{
			return;
		}
		if (m_destinationRule.kind == eFloatChannels)
		{
			m_convertsFloats = true;
			return;
		}
		const unsigned int widest = *std::max_element(destination.bits, destination.bits + destination.numChannels);
		if (!hasSeparateChannels(m_task.source, destination) || widest > kSpaceTableBits ||
		    m_task.numPixels < static_cast<unsigned long long>(kPixelsPerValue) << widest)
		{
			m_convertsPixels = true;
			return;
		}
		for (unsigned int position = 0; position < destination.numChannels; ++position)
		{
			if (isColour(destination, position))
			{
				m_spaceTables[position] = tableOf(position);
			}
		}
		m_hasSpaceTables = true;
	}

	/// The number of the table that holds the converted values of a position; positions of one width share it.
	int tableOf(unsigned int position)
	{
		const SPixelLayout& destination = m_task.destination;
		for (unsigned int other = 0; other < position; ++other)
		{
			if (m_spaceTables[other] >= 0 && destination.bits[other] == destination.bits[position])
			{
				return m_spaceTables[other];
			}
		}
		std::vector<std::uint16_t> table(static_cast<std::size_t>(destination.maskOf(position)) + 1);
		CPixelEncoder encoder(m_task.destinationEncoder);
		for (std::size_t value = 0; value < table.size(); ++value)
		{
			const std::uint64_t pixel = static_cast<std::uint64_t>(value) << destination.shifts[position];
			std::memcpy(encoder.GetColourData(), &pixel, sizeof(pixel));
			encoder.ConvertToColourSpace(m_task.targetSpace, m_task.sourceSpace);
			std::uint64_t converted = 0;
			std::memcpy(&converted, encoder.GetColourData(), sizeof(converted));
			table[value] = static_cast<std::uint16_t>(converted >> destination.shifts[position] & destination.maskOf(position));
		}
		m_tables.push_back(std::move(table));
		return static_cast<int>(m_tables.size()) - 1;
	}

	template<typename Number>
	void lookUpColours(unsigned char* numbers, std::size_t numPixels) const
	{
		for (unsigned int position = 0; position < m_task.destination.numChannels; ++position)
		{
			if (m_spaceTables[position] < 0)
			{
				continue;
			}
			const std::uint16_t* const table = m_tables[static_cast<std::size_t>(m_spaceTables[position])].data();
			unsigned char* number = numbers + position * sizeof(Number);
			for (std::size_t pixel = 0; pixel < numPixels; ++pixel, number += m_outStride * sizeof(Number))
			{
				Number value;
				std::memcpy(&value, number, sizeof(Number));
				value = static_cast<Number>(table[value]);
				std::memcpy(number, &value, sizeof(Number));
			}
		}
	}

	void convertBlock(const unsigned char* source, unsigned char* destination, std::size_t numPixels, CPixelEncoder& encoder) const
	{
		std::uint32_t numbers[kBlockPixels * 4];
		float in[kBlockPixels * 4];
		float arranged[kBlockPixels * 4];
		auto* const numberBytes = reinterpret_cast<unsigned char*>(numbers);

		if (m_task.source.isElements)
		{
			read(m_sourceRule, source, in, numPixels * m_inStride);
		}
		else
		{
			m_readFields(m_task.source, source, numbers, numPixels);
			read(m_sourceRule, numberBytes, in, numPixels * 4);
		}

		float* out = in;
		if (!m_isInOrder)
		{
			arrangeBlock(in, arranged, numPixels);
			out = arranged;
		}
		if (m_convertsFloats)
		{
			convertFloats(out, numPixels);
		}

		if (m_task.destination.isElements)
		{
			write(m_destinationRule, out, destination, numPixels * m_outStride);
			if (m_hasSpaceTables && m_destinationRule.bytes == 1)
			{
				lookUpColours<std::uint8_t>(destination, numPixels);
			}
			else if (m_hasSpaceTables)
			{
				lookUpColours<std::uint16_t>(destination, numPixels);
			}
		}
		else
		{
			write(m_destinationRule, out, numberBytes, numPixels * 4);
			if (m_hasSpaceTables)
			{
				lookUpColours<std::uint32_t>(numberBytes, numPixels);
			}
			packBlock(numbers, destination, numPixels);
		}

		if (m_convertsPixels)
		{
			for (std::size_t pixel = 0; pixel < numPixels; ++pixel, destination += m_task.destination.bytes)
			{
				encoder.OverwriteColourData(destination);
				encoder.ConvertToColourSpace(m_task.targetSpace, m_task.sourceSpace);
				std::memcpy(destination, encoder.GetColourData(), m_task.destination.bytes);
			}
		}
	}

	void packBlock(const std::uint32_t* numbers, unsigned char* destination, std::size_t numPixels) const
	{
		const SPixelLayout& layout = m_task.destination;
		std::size_t done = 0;
		if (m_isPacked)
		{
			done = withSimdLevel([&](auto level) { return packFields<level>(m_places, layout.bytes, numbers, destination, numPixels); });
		}
		m_writeFields(layout, m_order, numbers + done * 4, destination + done * layout.bytes, numPixels - done);
	}

	/// Floats are in their final precision already.
	void convertFloats(float* values, std::size_t numPixels) const
	{
		for (unsigned int position = 0; position < m_task.destination.numChannels; ++position)
		{
			if (!isColour(m_task.destination, position))
			{
				continue;
			}
			for (std::size_t pixel = 0; pixel < numPixels; ++pixel)
			{
				float& value = values[pixel * m_outStride + position];
				value = m_task.targetSpace == eCS_lRGB ? sRGBToLinear(value) : linearToSRGB(value);
			}
		}
	}

	/// The destination's values in its order: those of the source moved, grey and constants.
	void arrangeBlock(const float* in, float* out, std::size_t numPixels) const
	{
		switch (m_outStride)
		{
		case 1:
			arrange<1>(in, m_inStride, out, m_from, numPixels);
			break;
		case 2:
			arrange<2>(in, m_inStride, out, m_from, numPixels);
			break;
		case 3:
			arrange<3>(in, m_inStride, out, m_from, numPixels);
			break;
		default:
			arrange<4>(in, m_inStride, out, m_from, numPixels);
			break;
		}
		for (unsigned int position = 0; position < m_task.destination.numChannels; ++position)
		{
			const EChannelOrigin origin = m_origins[position];
			if (origin == eFromPosition)
			{
				continue;
			}
			for (std::size_t pixel = 0; pixel < numPixels; ++pixel)
			{
				float& value = out[pixel * m_outStride + position];
				if (origin == eFromLuminance || origin == eFromMean)
				{
					value = greyOf(in + pixel * m_inStride, origin);
				}
				else
				{
					value = origin == eFromOpaque ? 1.0f : 0.0f;
				}
			}
		}
	}

	float greyOf(const float* pixel, EChannelOrigin origin) const
	{
		float colours[3];
		unsigned int count = 0;
		for (unsigned int i = 0; i < 3; ++i)
		{
			colours[i] = m_colours[i] >= 0 ? pixel[m_colours[i]] : 0.0f;
			count += m_colours[i] >= 0 ? 1 : 0;
		}
		return origin == eFromLuminance ? luminanceOf(colours[0], colours[1], colours[2])
		                                : meanOf(colours[0], colours[1], colours[2], count);
	}

	SConversionTask m_task;
	SChannelRule m_sourceRule;
	SChannelRule m_destinationRule;
	unsigned int m_inStride;  ///< numbers of a pixel
	unsigned int m_outStride; ///< the same
	ReadFields m_readFields = m_task.source.isElements ? nullptr : fieldReader(m_task.source);
	WriteFields m_writeFields = m_task.destination.isElements ? nullptr : fieldWriter(m_task.destination);
	const int m_colours[3] = {m_task.source.positionOf(eCh_Red), m_task.source.positionOf(eCh_Green), m_task.source.positionOf(eCh_Blue)};
	EChannelOrigin m_origins[4] = {};
	unsigned int m_from[4] = {}; ///< by position of the destination, that of the source
	unsigned int m_order[4] = {};
	SFieldPlaces m_places = {};
	bool m_isPacked = false; ///< by packFields
	bool m_isInOrder = false;
	bool m_convertsFloats = false;
	bool m_convertsPixels = false;
	bool m_hasSpaceTables = false;
	int m_spaceTables[4] = {-1, -1, -1, -1};
	std::vector<std::vector<std::uint16_t>> m_tables;
};

/// An opaque channel is what 1.0 is written as, but for the exact ceiling of wide signed integers.
bool writesOpaqueAsOne(const SPixelLayout& source, const SPixelLayout& destination)
{
	for (unsigned int position = 0; position < destination.numChannels; ++position)
	{
		if (destination.bits[position] > kOpaqueIsOneBits && isSigned(destination.type) && !isFloat(destination.type) &&
		    originOf(source, destination, position).kind == eFromOpaque)
		{
			return false;
		}
	}
	return true;
}
} // namespace

std::unique_ptr<CBulkConversion> makeArithmeticConversion(SConversionTask& task)
{
	if (!task.source.isOrdinary || !task.destination.isOrdinary || !writesOpaqueAsOne(task.source, task.destination))
	{
		return nullptr;
	}
	return std::make_unique<CArithmeticConversion>(task);
}
} // namespace zortexture
