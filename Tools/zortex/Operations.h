/// @file Operations.h
/// The steps of image processing that a conversion takes on its way, in the order of the command line.
#ifndef ZORTEX_OPERATIONS_H
#define ZORTEX_OPERATIONS_H

#include <ZORTexLib.h>
#include <functional>
#include <string>
#include <vector>

namespace zortex
{
/// What the steps tell of themselves.
struct OperationContext
{
	/// The input, for refusals.
	std::string file;
	/// Things the user should know of the result.
	std::vector<std::string> notes;
};

struct Operation
{
	/// "resizing to 64x64" and the like, for the line of progress.
	std::string description;
	std::function<void(zortexture::CZORTexture&, OperationContext&)> apply;
};

struct ImageSize
{
	unsigned int width;
	unsigned int height;
	/// 0 keeps the texture's own.
	unsigned int depth;
};

Operation resizeOperation(const ImageSize& size, zortexture::EResizeMode mode);

/// Multiplies colour by alpha, on 8 bits a channel.
Operation premultiplyOperation();

/// Fills transparent texels with the colour around them, on 8 bits a channel.
Operation bleedOperation();
} // namespace zortex

#endif // ZORTEX_OPERATIONS_H
