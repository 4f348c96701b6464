#include "Operations.h"

#include "Layouts.h"
#include "Refusal.h"

namespace zortex
{
using namespace zortexture;

namespace
{
void addNote(OperationContext& context, const std::string& note)
{
	for (const std::string& known : context.notes)
	{
		if (known == note)
		{
			return;
		}
	}
	context.notes.push_back(note);
}

/// Brings a texture into the standard layout that keeps its precision: 8 or 16 bits, or floats.
void makeStandard(CZORTexture& texture, const OperationContext& context)
{
	if (isStandardPixelType(texture.getPixelType(), texture.getChannelType()) && texture.getChannelType() != eVT_UnsignedIntegerNorm)
	{
		return;
	}
	PixelType layout;
	EZORTVariableType type = eVT_UnsignedByteNorm;
	workingLayout(texture.getPixelType(), texture.getChannelType(), layout, type);
	const unsigned int bits = widestChannel(layout);
	const bool isWhole = !isSigned(type) && !isFloatType(type);
	const bool isCopied = isWhole && bits <= 8 ? Transcode(texture, ZORStandard8PixelType, eVT_UnsignedByteNorm, texture.getColourSpace())
	                      : isWhole && bits <= 16
	                          ? Transcode(texture, ZORStandard16PixelType, eVT_UnsignedShortNorm, texture.getColourSpace())
	                          : Transcode(texture, ZORStandard32PixelType, eVT_SignedFloat, texture.getColourSpace());
	if (!isCopied)
	{
		throw Refusal(context.file, "its pixels cannot be decoded");
	}
}

/// Brings a texture into the 8-bit standard layout.
void makeStandard8(CZORTexture& texture, OperationContext& context, const std::string& option)
{
	makeStandard(texture, context);
	if (texture.getChannelType() == eVT_UnsignedByteNorm)
	{
		return;
	}
	addNote(context, option + " works on 8 bits a channel: the texture lost the rest");
	if (!Transcode(texture, ZORStandard8PixelType, eVT_UnsignedByteNorm, texture.getColourSpace()))
	{
		throw Refusal(context.file, "its pixels cannot be decoded");
	}
}
} // namespace

Operation resizeOperation(const ImageSize& size, EResizeMode mode)
{
	std::string text = std::to_string(size.width) + "x" + std::to_string(size.height);
	text += size.depth != 0 ? "x" + std::to_string(size.depth) : "";
	return {"resizing to " + text, [size, mode, text](CZORTexture& texture, OperationContext& context)
	        {
		        makeStandard(texture, context);
		        const unsigned int depth = size.depth != 0 ? size.depth : texture.getDepth();
		        const double bytes = static_cast<double>(size.width) * size.height * depth * texture.getBitsPerPixel() / 8.0 *
		                             texture.getNumArrayMembers() * texture.getNumFaces();
		        if (bytes > 4294967295.0)
		        {
			        throw Refusal(context.file, "cannot be resized to " + text + ": the result has more than 4 GiB");
		        }
		        const unsigned int levels = texture.getNumMIPLevels();
		        if (!Resize(texture, size.width, size.height, depth, mode))
		        {
			        throw Refusal(context.file, "cannot be resized to " + text);
		        }
		        if (texture.getNumMIPLevels() < levels)
		        {
			        addNote(context, "--resize keeps the top level only: the MIP levels below it are gone");
		        }
	        }};
}

Operation premultiplyOperation()
{
	return {"premultiplying alpha", [](CZORTexture& texture, OperationContext& context)
	        {
		        if (texture.isPreMultiplied())
		        {
			        throw Refusal(context.file, "is premultiplied already");
		        }
		        makeStandard8(texture, context, "--premultiply");
		        if (!PreMultiplyAlpha(texture))
		        {
			        throw Refusal(context.file, "cannot be premultiplied");
		        }
	        }};
}

Operation bleedOperation()
{
	return {"bleeding colour into transparent areas", [](CZORTexture& texture, OperationContext& context)
	        {
		        makeStandard8(texture, context, "--bleed");
		        if (!Bleed(texture))
		        {
			        throw Refusal(context.file, "cannot be bled");
		        }
	        }};
}
} // namespace zortex
