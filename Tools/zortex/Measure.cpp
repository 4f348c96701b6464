#include "Measure.h"

#include <cmath>
#include <limits>

#include "Layouts.h"
#include "TranscodeTexture.h"

namespace zortex
{
using namespace zortexture;

namespace
{
constexpr std::string_view kAllChannels = "rgba";

std::string comparedChannels(PixelType original, PixelType converted)
{
	const std::string source = imageChannels(original);
	const std::string target = imageChannels(converted);
	std::string both;
	for (const char channel : target)
	{
		if (source.find(channel) != std::string::npos)
		{
			both += channel;
		}
	}
	return both.empty() ? target : both;
}

bool isEightBit(const CZORTexture& texture)
{
	PixelType layout;
	EZORTVariableType type = eVT_UnsignedByteNorm;
	workingLayout(texture.getPixelType(), texture.getChannelType(), layout, type);
	return type == eVT_UnsignedByteNorm && widestChannel(layout) <= 8;
}

/// One image of a texture as 8-bit or float rgba. False when it cannot be decoded.
bool extractImage(const CZORTexture& texture, unsigned int member, unsigned int face, PixelType layout, EZORTVariableType type,
                  EZORTColourSpace space, CZORTexture& image)
{
	const CZORTextureHeader header(texture.getPixelType().id, texture.getHeight(), texture.getWidth(), texture.getDepth(), 1, 1, 1,
	                               texture.getColourSpace(), texture.getChannelType());
	image = CZORTexture(header, texture.getDataPtr(0, member, face));
	return transcodeTexture(image, layout, type, space) && image.isDataComplete();
}

template<typename T>
void addSquares(const CZORTexture& a, const CZORTexture& b, double scale, double (&sums)[4])
{
	const auto* first = static_cast<const T*>(a.getDataPtr());
	const auto* second = static_cast<const T*>(b.getDataPtr());
	const std::size_t texels = static_cast<std::size_t>(a.getWidth()) * a.getHeight() * a.getDepth();
	for (std::size_t i = 0; i < texels; ++i)
	{
		for (std::size_t channel = 0; channel < 4; ++channel)
		{
			const double difference = (static_cast<double>(first[4 * i + channel]) - static_cast<double>(second[4 * i + channel])) * scale;
			sums[channel] += difference * difference;
		}
	}
}
} // namespace

Measurement compareTextures(const CZORTexture& original, const CZORTexture& converted)
{
	const EZORTColourSpace space = converted.getColourSpace();
	const bool isCoarse = converted.getPixelType().isCompressed() && isEightBit(original) && isEightBit(converted);
	const PixelType layout = isCoarse ? ZORStandard8PixelType : ZORStandard32PixelType;
	const EZORTVariableType type = isCoarse ? eVT_UnsignedByteNorm : eVT_SignedFloat;

	double sums[4] = {};
	double texels = 0.0;
	for (unsigned int member = 0; member < converted.getNumArrayMembers(); ++member)
	{
		for (unsigned int face = 0; face < converted.getNumFaces(); ++face)
		{
			CZORTexture before;
			CZORTexture after;
			if (!extractImage(original, member, face, layout, type, space, before) ||
			    !extractImage(converted, member, face, layout, type, space, after))
			{
				return {};
			}
			isCoarse ? addSquares<unsigned char>(before, after, 1.0, sums) : addSquares<float>(before, after, 255.0, sums);
			texels += static_cast<double>(after.getWidth()) * after.getHeight() * after.getDepth();
		}
	}

	Measurement measurement;
	measurement.channels = comparedChannels(original.getPixelType(), converted.getPixelType());
	for (std::size_t i = 0; i < measurement.channels.size(); ++i)
	{
		measurement.channelErrors[i] = sums[kAllChannels.find(measurement.channels[i])] / texels;
		measurement.error += measurement.channelErrors[i] / static_cast<double>(measurement.channels.size());
	}
	return std::isfinite(measurement.error) ? measurement : Measurement();
}

double customaryPSNR(double error)
{
	return error > 0.0 ? 10.0 * std::log10(255.0 * 255.0 / error) : std::numeric_limits<double>::infinity();
}
} // namespace zortex
