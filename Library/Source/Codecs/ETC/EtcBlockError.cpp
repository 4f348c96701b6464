/// @file EtcBlockError.cpp
/// What a decoded block costs against its source.
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcSearchTexels.h"

namespace zortexture
{
double calcBlockErrorRGB(const unsigned char* source, const unsigned char* decoded, unsigned int width, unsigned int startX,
                         unsigned int startY)
{
	const unsigned char* first = source + texelIndex(width, startX, startY) * 3;
	unsigned int error = 0;
	for (unsigned int y = 0; y < 4; ++y)
	{
		const unsigned char* row = first + texelIndex(width, 0, y) * 3;
		for (unsigned int i = 0; i < 12; ++i)
		{
			const int difference = row[i] - decoded[y * 12 + i];
			error += static_cast<unsigned int>(difference * difference);
		}
	}
	return error;
}

double calcBlockPerceptualErrorRGB(const unsigned char* source, const unsigned char* decoded, unsigned int width, unsigned int startX,
                                   unsigned int startY)
{
	const SearchTexels<16> texels = loadBlockTexels(source, width, startX, startY);
	double error = 0.0;
	for (const auto& texel : texels.rgb)
	{
		const double red = texel[0] - decoded[0];
		const double green = texel[1] - decoded[1];
		const double blue = texel[2] - decoded[2];
		error += 0.299 * red * red + 0.587 * green * green + 0.114 * blue * blue;
		decoded += 3;
	}
	return error;
}

double calcBlockErrorRGBA(const unsigned char* source, const unsigned char* decoded, const unsigned char* alpha, unsigned int width,
                          unsigned int startX, unsigned int startY)
{
	// One more than the alpha from which a texel is opaque to the searches: a texel of 128 is encoded as opaque, and its
	// colour is not rated.
	constexpr unsigned char kLeastRatedAlpha = 129;
	unsigned int error = 0;
	for (unsigned int y = 0; y < 4; ++y)
	{
		for (unsigned int x = 0; x < 4; ++x, decoded += 3)
		{
			const std::size_t index = texelIndex(width, startX + x, startY + y);
			if (alpha[index] >= kLeastRatedAlpha)
			{
				const unsigned char* texel = source + index * 3;
				error += PlainScale::square(texel[0] - decoded[0], texel[1] - decoded[1], texel[2] - decoded[2]);
			}
		}
	}
	return error;
}

bool hasAlpha(const unsigned char* alpha, unsigned int startX, unsigned int startY, unsigned int width)
{
	for (unsigned int y = 0; y < 4; ++y)
	{
		for (unsigned int x = 0; x < 4; ++x)
		{
			if (alpha[texelIndex(width, startX + x, startY + y)] < 128)
			{
				return true;
			}
		}
	}
	return false;
}
} // namespace zortexture
