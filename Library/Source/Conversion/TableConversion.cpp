// Conversion by tables that the encoders themselves fill: what each value of a channel of the source puts into the destination's pixel.
// A pixel is then a few look-ups, whatever the layouts and channel types, and a change of colour space costs nothing more. Where all that
// the tables do is to move bytes, the bytes are moved.

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

#include "BulkConversion.h"
#include "ChannelNumbers.h"
#include "ColourSpace.h"
#include "GreyRule.h"
#include "NormalisedInteger.h"
#include "PixelShuffle.h"
#include "Unrolled.h"

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

constexpr unsigned int kMaxWordBytes = 8;
constexpr std::size_t kByteValues = 256;
constexpr std::size_t kGreyPixels = 256; ///< summed at once

struct SField
{
	unsigned int shift = 0;
	std::uint64_t mask = 0;
};

/// Grey of three colours: a sum of three floats, written as an unsigned channel is.
struct SGreySum
{
	SField fields[3];
	std::vector<float> terms[3];
	float count = 1.0f;     ///< of the colours, for their mean
	bool isOfBytes = false; ///< every colour is a byte of the source's pixel
	SChannelRule rule;      ///< of the sum, once it is rounded
	unsigned int shift = 0;
	std::vector<std::uint64_t> converted; ///< by the rounded value, the bits in their place; empty when that is the value itself
};

struct STables
{
	unsigned int sourceBytes = 0;
	unsigned int destinationBytes = 0;

	/// For destinations of up to eight bytes: the fields of the source and what each value gives, to be ORed.
	unsigned int numFields = 0;
	SField fields[4];
	std::vector<std::uint64_t> words[4];
	std::vector<std::uint64_t> byteWords; ///< all of them in one, where the fields are bytes next to each other
	bool hasGrey = false;
	bool isMean = false;
	SGreySum grey;

	/// For channels of 32 bits: the field behind each element of the destination and its values.
	unsigned int numElements = 0;
	SField elementFields[4];
	std::vector<std::uint32_t> elements[4];

	bool isShuffle = false;
	SPixelShuffle shuffle;
};

template<typename T>
inline T load(const unsigned char* memory)
{
	T value;
	std::memcpy(&value, memory, sizeof(T));
	return value;
}

template<typename T>
inline void store(unsigned char* memory, std::uint64_t value)
{
	const T cut = static_cast<T>(value);
	std::memcpy(memory, &cut, sizeof(T));
}

/// Bit fields of the source's pixel.
template<typename Load, typename Store, unsigned int numFields>
void lookUpWords(const STables& tables, const unsigned char* source, unsigned char* destination, std::size_t numPixels)
{
	unsigned int shifts[numFields];
	Load masks[numFields];
	const std::uint64_t* words[numFields];
	for (unsigned int i = 0; i < numFields; ++i)
	{
		shifts[i] = tables.fields[i].shift;
		masks[i] = static_cast<Load>(tables.fields[i].mask);
		words[i] = tables.words[i].data();
	}
	const std::size_t sourceBytes = tables.sourceBytes;
	const std::size_t destinationBytes = tables.destinationBytes;
	for (std::size_t pixel = 0; pixel < numPixels; ++pixel, source += sourceBytes, destination += destinationBytes)
	{
		const Load word = load<Load>(source);
		std::uint64_t result = 0;
		unrolled<numFields>([&](auto i) { result |= words[i][word >> shifts[i] & masks[i]]; });
		store<Store>(destination, result);
	}
}

/// Fields that are bytes next to each other: twice as fast as shifting and masking.
template<typename Store, unsigned int numFields>
void lookUpBytes(const STables& tables, const unsigned char* source, unsigned char* destination, std::size_t numPixels)
{
	const std::uint64_t* const words = tables.byteWords.data();
	const std::size_t sourceBytes = tables.sourceBytes;
	const std::size_t destinationBytes = tables.destinationBytes;
	source += tables.fields[0].shift / 8;
	for (std::size_t pixel = 0; pixel < numPixels; ++pixel, source += sourceBytes, destination += destinationBytes)
	{
		std::uint64_t result = 0;
		unrolled<numFields>([&](auto i) { result |= words[kByteValues * i + source[i]]; });
		store<Store>(destination, result);
	}
}

/// The sums that grey is of.
template<typename Load>
void sumGrey(const STables& tables, const unsigned char* source, float* sums, std::size_t numPixels)
{
	const SGreySum& grey = tables.grey;
	const std::size_t sourceBytes = tables.sourceBytes;
	if (grey.isOfBytes)
	{
		const float* const red = grey.terms[0].data();
		const float* const green = grey.terms[1].data();
		const float* const blue = grey.terms[2].data();
		const unsigned char* const redBytes = source + grey.fields[0].shift / 8;
		const unsigned char* const greenBytes = source + grey.fields[1].shift / 8;
		const unsigned char* const blueBytes = source + grey.fields[2].shift / 8;
		std::size_t byte = 0;
		for (std::size_t pixel = 0; pixel < numPixels; ++pixel, byte += sourceBytes)
		{
			sums[pixel] = red[redBytes[byte]] + green[greenBytes[byte]] + blue[blueBytes[byte]];
		}
	}
	else
	{
		for (std::size_t pixel = 0; pixel < numPixels; ++pixel, source += sourceBytes)
		{
			const Load word = load<Load>(source);
			const auto term = [&](unsigned int i)
			{
				return grey.terms[i][word >> grey.fields[i].shift & grey.fields[i].mask];
			};
			sums[pixel] = term(0) + term(1) + term(2);
		}
	}
	for (std::size_t pixel = 0; pixel < numPixels && tables.isMean; ++pixel)
	{
		sums[pixel] /= grey.count;
	}
}

/// Puts grey beside the other channels.
template<typename Load, typename Store, bool isConverted, bool isAlone>
void placeGrey(const STables& tables, const std::uint32_t* greys, const unsigned char* source, unsigned char* destination,
               std::size_t numPixels)
{
	const std::uint64_t* const converted = tables.grey.converted.data();
	const unsigned int greyShift = tables.grey.shift;
	const unsigned int shift = tables.fields[0].shift;
	const auto mask = static_cast<Load>(tables.fields[0].mask);
	const std::uint64_t* const words = tables.words[0].data();
	const std::size_t sourceBytes = tables.sourceBytes;
	const std::size_t destinationBytes = tables.destinationBytes;
	for (std::size_t pixel = 0; pixel < numPixels; ++pixel, source += sourceBytes, destination += destinationBytes)
	{
		std::uint64_t result = isConverted ? converted[greys[pixel]] : static_cast<std::uint64_t>(greys[pixel]) << greyShift;
		const Load word = load<Load>(source);
		result |= words[word >> shift & mask];
		for (unsigned int i = 1; !isAlone && i < tables.numFields; ++i)
		{
			result |= tables.words[i][word >> tables.fields[i].shift & tables.fields[i].mask];
		}
		store<Store>(destination, result);
	}
}

template<typename Load, typename Store>
void lookUpGrey(const STables& tables, const unsigned char* source, unsigned char* destination, std::size_t numPixels)
{
	const bool isConverted = !tables.grey.converted.empty();
	const bool isAlone = tables.numFields == 1;
	const auto place = isConverted ? (isAlone ? placeGrey<Load, Store, true, true> : placeGrey<Load, Store, true, false>)
	                               : (isAlone ? placeGrey<Load, Store, false, true> : placeGrey<Load, Store, false, false>);
	while (numPixels != 0)
	{
		float sums[kGreyPixels];
		std::uint32_t greys[kGreyPixels];
		const std::size_t count = std::min(numPixels, kGreyPixels);
		sumGrey<Load>(tables, source, sums, count);
		withSimdLevel([&](auto level) { writeChannels<level>(tables.grey.rule, sums, reinterpret_cast<unsigned char*>(greys), count); });
		place(tables, greys, source, destination, count);
		source += count * tables.sourceBytes;
		destination += count * tables.destinationBytes;
		numPixels -= count;
	}
}

template<typename Load, unsigned int numElements>
void lookUpElements(const STables& tables, const unsigned char* source, unsigned char* destination, std::size_t numPixels)
{
	unsigned int shifts[numElements];
	Load masks[numElements];
	const std::uint32_t* elements[numElements];
	for (unsigned int i = 0; i < numElements; ++i)
	{
		shifts[i] = tables.elementFields[i].shift;
		masks[i] = static_cast<Load>(tables.elementFields[i].mask);
		elements[i] = tables.elements[i].data();
	}
	for (std::size_t pixel = 0; pixel < numPixels; ++pixel, source += tables.sourceBytes, destination += numElements * 4)
	{
		const Load word = load<Load>(source);
		unrolled<numElements>([&](auto i) { store<std::uint32_t>(destination + i * 4, elements[i][word >> shifts[i] & masks[i]]); });
	}
}

using LookUp = void (*)(const STables&, const unsigned char*, unsigned char*, std::size_t);

/// Calls `function` with the unsigned type that holds a pixel of `bytes` bytes.
template<typename Function>
auto withWord(unsigned int bytes, Function&& function)
{
	switch (bytes)
	{
	case 1:
		return function(std::uint8_t{});
	case 2:
		return function(std::uint16_t{});
	case 3:
	case 4:
		return function(std::uint32_t{});
	default:
		return function(std::uint64_t{});
	}
}

template<typename Load, typename Store>
LookUp wordLookUp(unsigned int numFields)
{
	switch (numFields)
	{
	case 1:
		return lookUpWords<Load, Store, 1>;
	case 2:
		return lookUpWords<Load, Store, 2>;
	case 3:
		return lookUpWords<Load, Store, 3>;
	default:
		return lookUpWords<Load, Store, 4>;
	}
}

template<typename Store>
LookUp byteLookUp(unsigned int numFields)
{
	switch (numFields)
	{
	case 1:
		return lookUpBytes<Store, 1>;
	case 2:
		return lookUpBytes<Store, 2>;
	case 3:
		return lookUpBytes<Store, 3>;
	default:
		return lookUpBytes<Store, 4>;
	}
}

template<typename Load>
LookUp elementLookUp(unsigned int numElements)
{
	switch (numElements)
	{
	case 1:
		return lookUpElements<Load, 1>;
	case 2:
		return lookUpElements<Load, 2>;
	case 3:
		return lookUpElements<Load, 3>;
	default:
		return lookUpElements<Load, 4>;
	}
}

class CTableConversion : public CBulkConversion
{
public:
	explicit CTableConversion(STables&& tables) : m_tables(std::move(tables))
	{
		m_lookUp = withWord(m_tables.sourceBytes,
		                    [&](auto loaded) -> LookUp
		                    {
			                    using Load = decltype(loaded);
			                    m_loadBytes = sizeof(Load);
			                    if (m_tables.numElements != 0)
			                    {
				                    m_storeBytes = m_tables.destinationBytes;
				                    return elementLookUp<Load>(m_tables.numElements);
			                    }
			                    return withWord(m_tables.destinationBytes,
			                                    [&](auto stored) -> LookUp
			                                    {
				                                    using Store = decltype(stored);
				                                    m_storeBytes = sizeof(Store);
				                                    if (m_tables.hasGrey)
				                                    {
					                                    return lookUpGrey<Load, Store>;
				                                    }
				                                    return m_tables.byteWords.empty() ? wordLookUp<Load, Store>(m_tables.numFields)
				                                                                      : byteLookUp<Store>(m_tables.numFields);
			                                    });
		                    });
	}

	void convert(const unsigned char* source, unsigned char* destination, std::size_t numPixels) const override
	{
		std::size_t done = 0;
		if (m_tables.isShuffle)
		{
			done = withSimdLevel(
			    [&](auto level) -> std::size_t
			    {
				    if constexpr (level == eSimdPlain)
				    {
					    return 0;
				    }
				    else
				    {
					    return shufflePixels<level>(m_tables.shuffle, source, destination, numPixels);
				    }
			    });
		}
		source += done * m_tables.sourceBytes;
		destination += done * m_tables.destinationBytes;
		numPixels -= done;
		if (numPixels == 0)
		{
			return;
		}

		// Pixels of three bytes, say, are read and written as four, which all but the last one have room for.
		const bool isExact = m_loadBytes == m_tables.sourceBytes && m_storeBytes == m_tables.destinationBytes;
		const std::size_t roomy = isExact ? numPixels : numPixels - 1;
		m_lookUp(m_tables, source, destination, roomy);
		if (!isExact)
		{
			unsigned char last[kMaxWordBytes] = {};
			unsigned char result[16] = {};
			std::memcpy(last, source + roomy * m_tables.sourceBytes, m_tables.sourceBytes);
			m_lookUp(m_tables, last, result, 1);
			std::memcpy(destination + roomy * m_tables.destinationBytes, result, m_tables.destinationBytes);
		}
	}

private:
	STables m_tables;
	LookUp m_lookUp;
	std::size_t m_loadBytes = 0;
	std::size_t m_storeBytes = 0;
};

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

	STables build()
	{
		STables tables;
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
	void lay(STables& tables)
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

	void fill(STables& tables)
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
					tables.elements[i][value] = load<std::uint32_t>(converted + i * 4);
				}
			}
			for (unsigned int i = 0; i < tables.numFields; ++i)
			{
				if (value < tables.words[i].size())
				{
					tables.words[i][value] = load<std::uint64_t>(converted) & m_bits[i];
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

	void fillGrey(STables& tables)
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
			return;
		}
		const std::uint64_t mask = static_cast<std::uint64_t>(destination.maskOf(m_greyPosition)) << grey.shift;
		grey.converted.resize(std::size_t{1} << bits);
		for (std::uint64_t value = 0; value < grey.converted.size(); ++value)
		{
			const std::uint64_t pixel = value << grey.shift;
			std::memcpy(m_task.destinationEncoder.GetColourData(), &pixel, sizeof(pixel));
			m_task.destinationEncoder.ConvertToColourSpace(m_task.targetSpace, m_task.sourceSpace);
			grey.converted[value] = load<std::uint64_t>(m_task.destinationEncoder.GetColourData()) & mask;
		}
	}

	/// Sees whether every byte of the destination is a byte of the source, or always the same.
	static void findShuffle(STables& tables)
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
	static void mergeFields(STables& tables)
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

	static void joinBytes(STables& tables)
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

std::unique_ptr<CBulkConversion> makeTableConversion(SConversionTask& task)
{
	CTableBuilder builder(task);
	return builder.isWorthwhile() ? std::make_unique<CTableConversion>(builder.build()) : nullptr;
}
} // namespace zortexture
