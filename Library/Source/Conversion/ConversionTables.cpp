#include "ConversionTables.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "ColourSpace.h"
#include "GreyRule.h"
#include "NormalisedInteger.h"

namespace zortexture
{
namespace
{
/// Channels up to this width have small tables. Wider ones, of 16 bits at most, are worth it only where they save powers.
constexpr unsigned int kSmallTableBits = 12;
constexpr unsigned int kLargeTableBits = 16;
/// How many pixels there must be for each entry of the longest table, which costs as much as a pixel by the encoders.
constexpr unsigned int kPixelsPerEntry = 8;

/// Neighbouring fields are looked up as one up to this width: a table of 16 KiB, which stays in the cache.
constexpr unsigned int kMergedBits = 11;

std::uint64_t wordOf(const unsigned char* pixel)
{
	std::uint64_t word;
	std::memcpy(&word, pixel, sizeof(word));
	return word;
}

std::uint32_t elementOf(const unsigned char* pixel, unsigned int position)
{
	std::uint32_t element;
	std::memcpy(&element, pixel + position * sizeof(element), sizeof(element));
	return element;
}

/// The positions of the source that grey is a sum of; -1 where there is none.
struct SColours
{
	explicit SColours(const SPixelLayout& source)
	    : positions{source.positionOf(eCh_Red), source.positionOf(eCh_Green), source.positionOf(eCh_Blue)}
	{
	}

	unsigned int count() const
	{
		return static_cast<unsigned int>(std::count_if(std::begin(positions), std::end(positions), [](int p) { return p >= 0; }));
	}

	int positions[3];
};

/// Fills the tables of one task by running the encoders over all values.
class CTableBuilder
{
public:
	explicit CTableBuilder(SConversionTask& task) : m_task(task), m_colours(task.source)
	{
	}

	/// False where tables are not the way.
	bool isWorthwhile()
	{
		const SPixelLayout& source = m_task.source;
		const SPixelLayout& destination = m_task.destination;
		if (!source.isOrdinary || !destination.isOrdinary || source.bytes > kMaxWordBytes || !hasSeparateChannels(source, destination))
		{
			return false;
		}
		m_isElements = destination.isElements && destination.bits[0] == 32;
		for (unsigned int position = 0; position < destination.numChannels; ++position)
		{
			m_origins[position] = originOf(source, destination, position);
			if (m_origins[position].kind == eFromLuminance || m_origins[position].kind == eFromMean)
			{
				m_greyPosition = static_cast<int>(position);
				for (const int colour : m_colours.positions)
				{
					m_widest = std::max(m_widest, colour >= 0 ? source.bits[colour] : 0);
				}
			}
			else if (m_origins[position].kind == eFromPosition)
			{
				m_widest = std::max(m_widest, source.bits[m_origins[position].position]);
			}
		}
		const bool changesSpace = changesColourSpace(m_task.targetSpace, m_task.sourceSpace);
		if (m_greyPosition >= 0 && !isGreySum(changesSpace))
		{
			return false;
		}
		if (m_widest <= kSmallTableBits)
		{
			return m_task.numPixels >= static_cast<unsigned long long>(kPixelsPerEntry) << m_widest;
		}
		return m_widest <= kLargeTableBits && changesSpace && m_isElements &&
		       m_task.numPixels >= static_cast<unsigned long long>(kPixelsPerEntry) << m_widest;
	}

	SConversionTables build()
	{
		SConversionTables tables;
		tables.sourceBytes = m_task.source.bytes;
		tables.destinationBytes = m_task.destination.bytes;
		lay(tables);
		fill(tables);
		if (m_greyPosition >= 0)
		{
			fillGrey(tables);
		}
		else if (!m_isElements)
		{
			findShuffle(tables);
			mergeFields(tables);
			joinBytes(tables);
		}
		return tables;
	}

private:
	/// Grey is summed here for unsigned integers that floats hold exactly.
	bool isGreySum(bool changesSpace) const
	{
		const SPixelLayout& destination = m_task.destination;
		const unsigned int bits = destination.bits[m_greyPosition];
		const bool isUnsignedInteger = !isSigned(destination.type) && destination.type != eVT_UnsignedFloat;
		return isUnsignedInteger && bits <= kLargeTableBits &&
		       (!changesSpace || m_task.numPixels >= static_cast<unsigned long long>(kPixelsPerEntry) << bits);
	}

	SField fieldOf(unsigned int position) const
	{
		return {m_task.source.shifts[position], m_task.source.maskOf(position)};
	}

	/// Sizes the tables and notes which bits each of them gives.
	void lay(SConversionTables& tables)
	{
		const SPixelLayout& destination = m_task.destination;
		const auto sizeOf = [](const SField& field)
		{
			return static_cast<std::size_t>(field.mask) + 1;
		};
		if (m_isElements)
		{
			tables.numElements = destination.numChannels;
			for (unsigned int position = 0; position < destination.numChannels; ++position)
			{
				// A constant is a table of one value, which the field of no bits selects.
				SField& field = tables.elementFields[position];
				field = m_origins[position].kind == eFromPosition ? fieldOf(m_origins[position].position) : SField{};
				tables.elements[position].resize(sizeOf(field));
			}
			return;
		}
		std::uint64_t constantBits = ~std::uint64_t{0};
		for (unsigned int from = 0; from < m_task.source.numChannels; ++from)
		{
			std::uint64_t bits = 0;
			for (unsigned int position = 0; position < destination.numChannels; ++position)
			{
				if (m_origins[position].kind == eFromPosition && m_origins[position].position == from)
				{
					bits |= static_cast<std::uint64_t>(destination.maskOf(position)) << destination.shifts[position];
				}
			}
			if (bits != 0)
			{
				tables.fields[tables.numFields] = fieldOf(from);
				m_bits[tables.numFields++] = bits;
				constantBits &= ~bits;
			}
		}
		if (m_greyPosition >= 0)
		{
			tables.hasGrey = true;
			constantBits &= ~(static_cast<std::uint64_t>(destination.maskOf(m_greyPosition)) << destination.shifts[m_greyPosition]);
		}
		tables.numFields = std::max(tables.numFields, 1u);
		m_bits[0] |= constantBits;
		for (unsigned int i = 0; i < tables.numFields; ++i)
		{
			tables.words[i].resize(sizeOf(tables.fields[i]));
		}
	}

	void fill(SConversionTables& tables)
	{
		SGreySum& grey = tables.grey;
		for (unsigned int i = 0; i < 3 && m_greyPosition >= 0; ++i)
		{
			grey.fields[i] = m_colours.positions[i] >= 0 ? fieldOf(m_colours.positions[i]) : SField{};
			grey.terms[i].resize(static_cast<std::size_t>(grey.fields[i].mask) + 1);
		}
		for (std::uint64_t value = 0; value >> m_widest == 0; ++value)
		{
			// All channels at once: none of them has a say in the others.
			std::uint64_t pixel = 0;
			for (unsigned int position = 0; position < m_task.source.numChannels; ++position)
			{
				pixel |= (value & m_task.source.maskOf(position)) << m_task.source.shifts[position];
			}
			unsigned char bytes[kMaxWordBytes];
			std::memcpy(bytes, &pixel, sizeof(bytes));
			m_task.convertPixel(bytes);
			const unsigned char* const converted = m_task.destinationEncoder.GetColourData();

			for (unsigned int i = 0; i < tables.numElements; ++i)
			{
				if (value < tables.elements[i].size())
				{
					tables.elements[i][value] = elementOf(converted, i);
				}
			}
			for (unsigned int i = 0; i < tables.numFields; ++i)
			{
				if (value < tables.words[i].size())
				{
					tables.words[i][value] = wordOf(converted) & m_bits[i];
				}
			}
			for (unsigned int i = 0; i < 3; ++i)
			{
				constexpr EChannelName kColours[3] = {eCh_Red, eCh_Green, eCh_Blue};
				constexpr float kWeights[3] = {kRedWeight, kGreenWeight, kBlueWeight};
				if (value < grey.terms[i].size())
				{
					const float colour = m_task.sourceEncoder.GetChannelFloat(kColours[i]);
					grey.terms[i][value] = m_origins[m_greyPosition].kind == eFromMean ? colour : kWeights[i] * colour;
				}
			}
		}
	}

	void fillGrey(SConversionTables& tables)
	{
		SGreySum& grey = tables.grey;
		const SPixelLayout& destination = m_task.destination;
		const unsigned int bits = destination.bits[m_greyPosition];
		grey.shift = destination.shifts[m_greyPosition];
		std::fill(std::begin(grey.rule.bits), std::end(grey.rule.bits), bits);
		std::fill(std::begin(grey.rule.ceilings), std::end(grey.rule.ceilings), static_cast<float>(unsignedCeiling(bits)));
		grey.isOfBytes = std::all_of(std::begin(grey.fields), std::end(grey.fields),
		                             [](const SField& field) { return field.mask == kByteValues - 1 && field.shift % 8 == 0; });
		if (m_origins[m_greyPosition].kind == eFromMean)
		{
			tables.isMean = true;
			grey.count = static_cast<float>(std::max(m_colours.count(), 1u));
		}
		if (!changesColourSpace(m_task.targetSpace, m_task.sourceSpace))
		{
			grey.isPixel = bits == destination.bytes * 8 && std::has_single_bit(bits);
			grey.rule.bytes = grey.isPixel ? destination.bytes : 4;
			return;
		}
		const std::uint64_t mask = static_cast<std::uint64_t>(destination.maskOf(m_greyPosition)) << grey.shift;
		grey.converted.resize(std::size_t{1} << bits);
		for (std::uint64_t value = 0; value < grey.converted.size(); ++value)
		{
			const std::uint64_t pixel = value << grey.shift;
			std::memcpy(m_task.destinationEncoder.GetColourData(), &pixel, sizeof(pixel));
			m_task.destinationEncoder.ConvertToColourSpace(m_task.targetSpace, m_task.sourceSpace);
			grey.converted[value] = wordOf(m_task.destinationEncoder.GetColourData()) & mask;
		}
	}

	/// Sees whether every byte of the destination is a byte of the source, or always the same.
	static void findShuffle(SConversionTables& tables)
	{
		SPixelShuffle& shuffle = tables.shuffle;
		shuffle.sourceBytes = tables.sourceBytes;
		shuffle.destinationBytes = tables.destinationBytes;
		for (unsigned int byte = 0; byte < tables.destinationBytes; ++byte)
		{
			shuffle.from[byte] = SPixelShuffle::kNoByte;
			shuffle.fill[byte] = 0;
			for (unsigned int i = 0; i < tables.numFields; ++i)
			{
				const SField& field = tables.fields[i];
				const std::vector<std::uint64_t>& words = tables.words[i];
				const auto byteOf = [&](std::size_t value)
				{
					return static_cast<unsigned char>(words[value] >> (byte * 8));
				};
				bool isSame = true;
				bool isConstant = true;
				for (std::size_t value = 0; value < words.size(); ++value)
				{
					isSame = isSame && byteOf(value) == value;
					isConstant = isConstant && byteOf(value) == byteOf(0);
				}
				if (isConstant)
				{
					shuffle.fill[byte] |= byteOf(0);
				}
				else if (isSame && field.mask == 0xFF && field.shift % 8 == 0)
				{
					shuffle.from[byte] = static_cast<unsigned char>(field.shift / 8);
				}
				else
				{
					return;
				}
			}
			if (shuffle.from[byte] != SPixelShuffle::kNoByte && shuffle.fill[byte] != 0)
			{
				return;
			}
		}
		tables.isShuffle = true;
	}

	/// Makes one field of two that follow each other and are narrow together.
	static void mergeFields(SConversionTables& tables)
	{
		const auto widthOf = [](const SField& field)
		{
			return static_cast<unsigned int>(std::bit_width(field.mask));
		};
		for (unsigned int low = 0; low < tables.numFields; ++low)
		{
			for (unsigned int high = 0; high < tables.numFields; ++high)
			{
				SField& field = tables.fields[low];
				const unsigned int lowBits = widthOf(field);
				const unsigned int highBits = widthOf(tables.fields[high]);
				if (low == high || field.shift + lowBits != tables.fields[high].shift || lowBits + highBits > kMergedBits)
				{
					continue;
				}
				std::vector<std::uint64_t> merged(std::size_t{1} << (lowBits + highBits));
				for (std::size_t value = 0; value < merged.size(); ++value)
				{
					merged[value] = tables.words[low][value & field.mask] | tables.words[high][value >> lowBits];
				}
				field.mask = merged.size() - 1;
				tables.words[low] = std::move(merged);
				--tables.numFields;
				tables.fields[high] = tables.fields[tables.numFields];
				tables.words[high] = std::move(tables.words[tables.numFields]);
				mergeFields(tables);
				return;
			}
		}
	}

	static void joinBytes(SConversionTables& tables)
	{
		unsigned int first = tables.fields[0].shift;
		for (unsigned int i = 1; i < tables.numFields; ++i)
		{
			first = std::min(first, tables.fields[i].shift);
		}
		std::vector<std::uint64_t> joined;
		for (unsigned int byte = 0; byte < tables.numFields; ++byte)
		{
			for (unsigned int i = 0; i < tables.numFields; ++i)
			{
				const SField& field = tables.fields[i];
				if (field.shift == first + byte * 8 && field.mask == kByteValues - 1)
				{
					joined.insert(joined.end(), tables.words[i].begin(), tables.words[i].end());
				}
			}
		}
		if (first % 8 == 0 && joined.size() == tables.numFields * kByteValues)
		{
			tables.byteWords = std::move(joined);
			tables.fields[0].shift = first;
		}
	}

	SConversionTask& m_task;
	SColours m_colours;
	SChannelOrigin m_origins[4];
	int m_greyPosition = -1;
	unsigned int m_widest = 0;
	bool m_isElements = false;
	std::uint64_t m_bits[4] = {};
};
} // namespace

std::optional<SConversionTables> makeConversionTables(SConversionTask& task)
{
	CTableBuilder builder(task);
	return builder.isWorthwhile() ? std::optional(builder.build()) : std::nullopt;
}
} // namespace zortexture
