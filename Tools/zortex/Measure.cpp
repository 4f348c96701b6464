#include "Measure.h"

#include <algorithm>
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

/// Texels that are measured at a time. Two runs of float rgba and the textures themselves are all that a comparison keeps.
constexpr std::size_t kTexelsInRun = 65536;

/// One image of a texture, which hands its texels out in runs and in another form.
class ImageTexels
{
public:
	ImageTexels(const CZORTexture& texture, unsigned int member, unsigned int face)
	    : m_form(texture.getPixelType().id, texture.getHeight(), texture.getWidth(), texture.getDepth(), 1, 1, 1, texture.getColourSpace(),
	             texture.getChannelType()),
	      m_texels(static_cast<const unsigned char*>(texture.getDataPtr(0, member, face)))
	{
		if (!m_form.getPixelType().isCompressed())
		{
			return;
		}
		PixelType layout;
		EZORTVariableType type = eVT_UnsignedByteNorm;
		workingLayout(texture.getPixelType(), texture.getChannelType(), layout, type);
		// A texture of one image is decoded as it stands, which saves a copy of its blocks.
		const bool isAlone = texture.getNumMIPLevels() == 1 && texture.getNumArrayMembers() == 1 && texture.getNumFaces() == 1;
		const bool isDecoded = isAlone ? transcodeInto(texture, m_decoded, layout, type, m_form.getColourSpace())
		                               : transcodeInto(CZORTexture(m_form, m_texels), m_decoded, layout, type, m_form.getColourSpace());
		m_form = m_decoded.getHeader();
		m_texels = isDecoded ? static_cast<const unsigned char*>(m_decoded.getDataPtr()) : nullptr;
	}

	std::size_t size() const
	{
		return static_cast<std::size_t>(m_form.getWidth()) * m_form.getHeight() * m_form.getDepth();
	}

	/// The texels from `first` on as `run`, a row of another layout. False when they cannot be had.
	bool read(std::size_t first, std::size_t count, PixelType layout, EZORTVariableType type, EZORTColourSpace space,
	          CZORTexture& run) const
	{
		if (m_texels == nullptr)
		{
			return false;
		}
		const CZORTextureHeader row(m_form.getPixelType().id, 1, static_cast<unsigned int>(count), 1, 1, 1, 1, m_form.getColourSpace(),
		                            m_form.getChannelType());
		run = CZORTexture(row, m_texels + first * (m_form.getBitsPerPixel() / 8));
		return transcodeTexture(run, layout, type, space) && run.isDataComplete();
	}

private:
	CZORTextureHeader m_form;
	CZORTexture m_decoded; ///< of a compressed texture, in the form that its codec gives
	const unsigned char* m_texels;
};

template<typename T>
void addSquares(const CZORTexture& a, const CZORTexture& b, double scale, double (&sums)[4])
{
	const auto* first = static_cast<const T*>(a.getDataPtr());
	const auto* second = static_cast<const T*>(b.getDataPtr());
	for (std::size_t i = 0; i < a.getWidth(); ++i)
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
			const ImageTexels before(original, member, face);
			const ImageTexels after(converted, member, face);
			CZORTexture runBefore;
			CZORTexture runAfter;
			for (std::size_t first = 0; first < after.size(); first += kTexelsInRun)
			{
				const std::size_t count = std::min(kTexelsInRun, after.size() - first);
				if (!before.read(first, count, layout, type, space, runBefore) || !after.read(first, count, layout, type, space, runAfter))
				{
					return {};
				}
				isCoarse ? addSquares<unsigned char>(runBefore, runAfter, 1.0, sums) : addSquares<float>(runBefore, runAfter, 255.0, sums);
			}
			texels += static_cast<double>(after.size());
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
