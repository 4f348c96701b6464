// Conversion by tables that the encoders themselves fill: what each value of a channel of the source puts into the destination's pixel.
// A pixel is then a few look-ups, whatever the layouts and channel types, and a change of colour space costs nothing more. Where all that
// the tables do is to move bytes, the bytes are moved.

#include <algorithm>
#include <cstring>
#include <utility>

#include "ConversionTables.h"
#include "Unrolled.h"

namespace zortexture
{
namespace
{
constexpr std::size_t kGreyPixels = 256; ///< summed at once

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
void lookUpWords(const SConversionTables& tables, const unsigned char* source, unsigned char* destination, std::size_t numPixels)
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
void lookUpBytes(const SConversionTables& tables, const unsigned char* source, unsigned char* destination, std::size_t numPixels)
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
void sumGrey(const SConversionTables& tables, const unsigned char* source, float* sums, std::size_t numPixels)
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
void placeGrey(const SConversionTables& tables, const std::uint32_t* greys, const unsigned char* source, unsigned char* destination,
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
void lookUpGrey(const SConversionTables& tables, const unsigned char* source, unsigned char* destination, std::size_t numPixels)
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
		auto* const numbers = tables.grey.isPixel ? destination : reinterpret_cast<unsigned char*>(greys);
		withSimdLevel([&](auto level) { writeChannels<level>(tables.grey.rule, sums, numbers, count); });
		if (!tables.grey.isPixel)
		{
			place(tables, greys, source, destination, count);
		}
		source += count * tables.sourceBytes;
		destination += count * tables.destinationBytes;
		numPixels -= count;
	}
}

template<typename Load, unsigned int numElements>
void lookUpElements(const SConversionTables& tables, const unsigned char* source, unsigned char* destination, std::size_t numPixels)
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

using LookUp = void (*)(const SConversionTables&, const unsigned char*, unsigned char*, std::size_t);

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
	explicit CTableConversion(SConversionTables&& tables) : m_tables(std::move(tables))
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
	SConversionTables m_tables;
	LookUp m_lookUp;
	std::size_t m_loadBytes = 0;
	std::size_t m_storeBytes = 0;
};
} // namespace

std::unique_ptr<CBulkConversion> makeTableConversion(SConversionTask& task)
{
	std::optional<SConversionTables> tables = makeConversionTables(task);
	return tables ? std::make_unique<CTableConversion>(std::move(*tables)) : nullptr;
}
} // namespace zortexture
