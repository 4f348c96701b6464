#include "Operations.h"

#include <algorithm>

#include "Refusal.h"
#include "StandardForm.h"

namespace zortex
{
using namespace zortexture;

void addNote(OperationContext& context, const std::string& note)
{
	if (std::find(context.notes.begin(), context.notes.end(), note) == context.notes.end())
	{
		context.notes.push_back(note);
	}
}

void makeStandard(CZORTexture& texture, const OperationContext& context)
{
	const EZORTVariableType type = standardType(texture.getPixelType(), texture.getChannelType());
	makeStandard(texture, type, texture.getColourSpace(), context.file);
}

void noteDroppedLevels(const CZORTexture& texture, unsigned int levelsBefore, const std::string& option, OperationContext& context)
{
	if (texture.getNumMIPLevels() < levelsBefore)
	{
		addNote(context, option + " keeps the top level only: the MIP levels below it are gone");
	}
}

namespace
{
/// Brings a texture into the 8-bit standard layout.
void makeStandard8(CZORTexture& texture, OperationContext& context, const std::string& option)
{
	makeStandard(texture, context);
	if (texture.getChannelType() == eVT_UnsignedByteNorm)
	{
		return;
	}
	addNote(context, option + " works on 8 bits a channel: the texture lost the rest");
	makeStandard(texture, eVT_UnsignedByteNorm, texture.getColourSpace(), context.file);
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
		        noteDroppedLevels(texture, levels, "--resize", context);
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
