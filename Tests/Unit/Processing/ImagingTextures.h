/// @file ImagingTextures.h
/// Textures with known content for the tests of whole-texture operations.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "Processing/ElementDispatch.h"
#include "ZORTexLib.h"

namespace imaging
{
using namespace zortexture;

struct Layout
{
	PixelType pixelType;
	EZORTVariableType channelType;
};
inline constexpr Layout kByte = {ZORStandard8PixelType, eVT_UnsignedByteNorm};
inline constexpr Layout kShort = {ZORStandard16PixelType, eVT_UnsignedShortNorm};
inline constexpr Layout kInt = {ZORStandard32PixelType, eVT_UnsignedIntegerNorm};
inline constexpr Layout kFloat = {ZORStandard32PixelType, eVT_SignedFloat};
inline constexpr Layout kLayouts[] = {kByte, kShort, kInt, kFloat};

struct Shape
{
	unsigned int width = 1;
	unsigned int height = 1;
	unsigned int depth = 1;
	unsigned int levels = 1;
	unsigned int members = 1;
	unsigned int faces = 1;
};

inline CZORTexture makeTexture(const Layout& layout, const Shape& shape)
{
	return CZORTexture(CZORTextureHeader(layout.pixelType.id, shape.height, shape.width, shape.depth, shape.levels, shape.members,
	                                     shape.faces, eCS_lRGB, layout.channelType));
}

inline unsigned int pixelsIn(const CZORTexture& texture, unsigned int level)
{
	return texture.getWidth(level) * texture.getHeight(level) * texture.getDepth(level);
}

/// All elements of one image, as doubles.
inline std::vector<double> elements(const CZORTexture& texture, unsigned int level = 0, unsigned int member = 0, unsigned int face = 0)
{
	return withElementType(texture.getChannelType(),
	                       [&](auto tag)
	                       {
		                       const auto* first =
		                           static_cast<const typename decltype(tag)::type*>(texture.getDataPtr(level, member, face));
		                       return std::vector<double>(first, first + 4 * pixelsIn(texture, level));
	                       });
}

/// Fills one image with as many repetitions of `values` as it takes.
inline void setElements(CZORTexture& texture, const std::vector<double>& values, unsigned int level = 0, unsigned int member = 0,
                        unsigned int face = 0)
{
	withElementType(texture.getChannelType(),
	                [&](auto tag)
	                {
		                using T = typename decltype(tag)::type;
		                T* first = static_cast<T*>(texture.getDataPtr(level, member, face));
		                for (unsigned int i = 0; i < 4 * pixelsIn(texture, level); ++i)
		                {
			                first[i] = static_cast<T>(values[i % values.size()]);
		                }
	                });
}

/// Sets pixels to t, t + 1, t + 2, t + 3 for each letter t.
inline void setLetters(CZORTexture& texture, const std::string& letters, unsigned int level = 0, unsigned int member = 0,
                       unsigned int face = 0)
{
	std::vector<double> values;
	for (const double letter : letters)
	{
		values.insert(values.end(), {letter, letter + 1, letter + 2, letter + 3});
	}
	setElements(texture, values, level, member, face);
}

/// The reverse of setLetters: '.' for a pixel of zeroes, '!' for one whose elements do not belong together.
inline std::string letters(const CZORTexture& texture, unsigned int level = 0, unsigned int member = 0, unsigned int face = 0)
{
	std::string result;
	const std::vector<double> values = elements(texture, level, member, face);
	for (std::size_t i = 0; i < values.size(); i += 4)
	{
		const double first = values[i];
		const std::vector<double> pixel(values.begin() + i, values.begin() + i + 4);
		const bool isLetter = pixel == std::vector<double>{first, first + 1, first + 2, first + 3};
		result += pixel == std::vector<double>(4, 0.0) ? '.' : (isLetter ? static_cast<char>(first) : '!');
	}
	return result;
}

/// Different letters for neighbouring pixels and images, in all images of a texture.
inline void fillLetters(CZORTexture& texture)
{
	unsigned int seed = 1;
	forEachImage(texture,
	             [&](unsigned int level, unsigned int member, unsigned int face)
	             {
		             std::string content;
		             for (unsigned int i = 0; i < pixelsIn(texture, level); ++i)
		             {
			             seed = seed * 1664525u + 1013904223u;
			             content += static_cast<char>('A' + (seed >> 24) % 60);
		             }
		             setLetters(texture, content, level, member, face);
	             });
}

/// Header, border and `numBytes` bytes of pixels, to tell whether anything has changed.
inline std::string snapshot(const CZORTexture& texture, std::size_t numBytes)
{
	const ZORTextureHeaderV3 header = texture.getFileHeader();
	std::string result(reinterpret_cast<const char*>(&header), sizeof(header));
	const MetaDataBlock border = texture.getMetaData(kZORTextureMagic, kMetaKeyBorder);
	result.append(reinterpret_cast<const char*>(border.data), border.dataSize);
	const void* data = texture.getDataPtr(0, 0, 0);
	return data != nullptr ? result.append(static_cast<const char*>(data), numBytes) : result;
}

inline std::string snapshot(const CZORTexture& texture)
{
	return snapshot(texture, texture.getDataSize());
}
} // namespace imaging
