#include "ChannelNumbers.h"

#include <cstring>

#include "NormalisedInteger.h"
#include "SmallFloat.h"

namespace zortexture
{
namespace
{
/// Calls `function` with the unsigned type of so many bytes.
template<typename Function>
void withNumber(unsigned int bytes, Function&& function)
{
	switch (bytes)
	{
	case 1:
		function(std::uint8_t{});
		break;
	case 2:
		function(std::uint16_t{});
		break;
	default:
		function(std::uint32_t{});
		break;
	}
}

template<typename Number, typename Function>
void readEach(const unsigned char* numbers, float* values, std::size_t count, Function&& function)
{
	for (std::size_t i = 0; i < count; ++i)
	{
		Number number;
		std::memcpy(&number, numbers + i * sizeof(Number), sizeof(Number));
		values[i] = function(number, i % 4);
	}
}

template<typename Number, typename Function>
void writeEach(const float* values, unsigned char* numbers, std::size_t count, Function&& function)
{
	for (std::size_t i = 0; i < count; ++i)
	{
		const auto number = static_cast<Number>(function(values[i], i % 4));
		std::memcpy(numbers + i * sizeof(Number), &number, sizeof(Number));
	}
}
} // namespace

template<>
void readChannels<eSimdPlain>(const SChannelRule& rule, const unsigned char* numbers, float* values, std::size_t count)
{
	if (rule.kind == eFloatChannels)
	{
		std::memcpy(values, numbers, count * sizeof(float));
		return;
	}
	withNumber(rule.bytes,
	           [&](auto tag)
	           {
		           using Number = decltype(tag);
		           switch (rule.kind)
		           {
		           case eSignedChannels:
			           readEach<std::make_signed_t<Number>>(
			               numbers, values, count, [&](auto number, std::size_t i) { return signedToFloat(number, rule.bits[i]); });
			           break;
		           case eHalfChannels:
			           readEach<Number>(numbers, values, count,
			                            [&](Number number, std::size_t)
			                            { return pixelFloatToFloat(number, kHalfMantissaBits, rule.hasSign); });
			           break;
		           case eSmallFloatChannels:
			           readEach<Number>(numbers, values, count,
			                            [&](Number number, std::size_t i)
			                            {
				                            const unsigned int mantissaBits = pixelFloatMantissaBits(rule.bits[i]);
				                            return mantissaBits != 0 ? pixelFloatToFloat(number, mantissaBits, false) : 0.0f;
			                            });
			           break;
		           default:
			           readEach<Number>(numbers, values, count,
			                            [&](Number number, std::size_t i) { return unsignedToFloat(number, rule.bits[i]); });
			           break;
		           }
	           });
}

template<>
void writeChannels<eSimdPlain>(const SChannelRule& rule, const float* values, unsigned char* numbers, std::size_t count)
{
	if (rule.kind == eFloatChannels)
	{
		std::memcpy(numbers, values, count * sizeof(float));
		return;
	}
	withNumber(
	    rule.bytes,
	    [&](auto tag)
	    {
		    using Number = decltype(tag);
		    switch (rule.kind)
		    {
		    case eSignedChannels:
			    writeEach<Number>(values, numbers, count, [&](float value, std::size_t i) { return floatToSigned(value, rule.bits[i]); });
			    break;
		    case eHalfChannels:
			    writeEach<Number>(values, numbers, count, [](float value, std::size_t) { return floatToHalf(value); });
			    break;
		    case eSmallFloatChannels:
			    writeEach<Number>(values, numbers, count,
			                      [&](float value, std::size_t i)
			                      {
				                      const unsigned int mantissaBits = pixelFloatMantissaBits(rule.bits[i]);
				                      return mantissaBits != 0 ? floatToPixelFloat(value, mantissaBits) : 0;
			                      });
			    break;
		    default:
			    writeEach<Number>(values, numbers, count, [&](float value, std::size_t i) { return floatToUnsigned(value, rule.bits[i]); });
			    break;
		    }
	    });
}

template<>
std::size_t packFields<eSimdPlain>(const SFieldPlaces&, unsigned int, const std::uint32_t*, unsigned char*, std::size_t)
{
	return 0;
}
} // namespace zortexture
