/// @file StandardTexture.h
/// What the operations on whole textures test and share.
#pragma once

#include "Resampling.h"
#include "TextureSize.h"
#include "ZORTexture.h"

namespace zortexture
{
/// Whether an operation can work on a texture: a standard layout with at least one image and with all of its data.
inline bool isProcessable(const CZORTexture& texture)
{
	return isStandardPixelType(texture.getPixelType(), texture.getChannelType()) && texture.isDataComplete() &&
	       texture.getDataPtr(0, 0, 0) != nullptr;
}

/// A zeroed texture for a header. Empty, and so not complete, when the data would take 2^32 bytes or more: a size that
/// has wrapped is not worth its allocation.
inline CZORTexture createTexture(const CZORTextureHeader& header)
{
	return isDataSizeExact(header.getFileHeader()) ? CZORTexture(header) : CZORTexture();
}

/// The channel type whose instance moves whole pixels of a layout: 32-bit integers travel as floats.
inline EZORTVariableType moverType(const CZORTexture& texture)
{
	return texture.getBitsPerPixel() == 128 ? eVT_SignedFloat : texture.getChannelType();
}

/// Stores the border of `old` in a header, scaled to the header's dimensions; three zeroes where there is none. The
/// products wrap at 32 bits.
inline void setScaledBorder(CZORTextureHeader& header, const CZORTextureHeader& old)
{
	unsigned int x = 0;
	unsigned int y = 0;
	unsigned int z = 0;
	old.getBorder(x, y, z);
	header.setBorder(header.getWidth(0) * x / old.getWidth(0), header.getHeight(0) * y / old.getHeight(0),
	                 header.getDepth(0) * z / old.getDepth(0));
}
} // namespace zortexture
