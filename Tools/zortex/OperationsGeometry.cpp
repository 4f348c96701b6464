#include <algorithm>

#include "Operations.h"
#include "Refusal.h"

namespace zortex
{
using namespace zortexture;

namespace
{
constexpr const char* kAxisNames[] = {"x", "y", "z"};

std::string sizeText(const ImageSize& size)
{
	std::string text = std::to_string(size.width) + "x" + std::to_string(size.height);
	return size.depth != 0 ? text + "x" + std::to_string(size.depth) : text;
}

/// Whether a texture of one level keeps within the 4 GiB that a texture may have.
bool fitsTexture(const CZORTextureHeader& header, double width, double height, double depth)
{
	const double images = static_cast<double>(header.getNumArrayMembers()) * header.getNumFaces();
	return width * height * depth * images * header.getBitsPerPixel() / 8.0 <= 4294967295.0;
}
} // namespace

Operation flipOperation(EZORTAxis axis)
{
	return {std::string("mirroring along ") + kAxisNames[axis], [axis](CZORTexture& texture, OperationContext& context)
	        {
		        makeStandard(texture, context);
		        if (!Flip(texture, axis))
		        {
			        throw Refusal(context.file, std::string("cannot be mirrored along ") + kAxisNames[axis]);
		        }
	        }};
}

Operation rotateOperation(unsigned int quarterTurns)
{
	return {"turning by " + std::to_string(90 * quarterTurns) + " degrees", [quarterTurns](CZORTexture& texture, OperationContext& context)
	        {
		        makeStandard(texture, context);
		        const bool isBackward = quarterTurns == 3;
		        for (unsigned int turn = 0; turn < (isBackward ? 1 : quarterTurns); ++turn)
		        {
			        if (!Rotate90(texture, eAxis_Z, !isBackward))
			        {
				        throw Refusal(context.file, "cannot be turned");
			        }
		        }
	        }};
}

Operation canvasOperation(const ImageSize& size, const ImageOffset& offset)
{
	return {"fitting into a canvas of " + sizeText(size), [size, offset](CZORTexture& texture, OperationContext& context)
	        {
		        makeStandard(texture, context);
		        const unsigned int levels = texture.getNumMIPLevels();
		        const unsigned int depth = size.depth != 0 ? size.depth : texture.getDepth();
		        if (!fitsTexture(texture, size.width, size.height, depth) ||
		            !ResizeCanvas(texture, size.width, size.height, depth, offset.x, offset.y, offset.z))
		        {
			        throw Refusal(context.file, "cannot get a canvas of " + sizeText(size) + ": the result has more than 4 GiB");
		        }
		        noteDroppedLevels(texture, levels, "--canvas", context);
	        }};
}

Operation borderOperation(const ImageSize& border)
{
	return {"adding a border of " + sizeText(border), [border](CZORTexture& texture, OperationContext& context)
	        {
		        makeStandard(texture, context);
		        const unsigned int levels = texture.getNumMIPLevels();
		        const double width = texture.getWidth() + 2.0 * border.width;
		        const double height = texture.getHeight() + 2.0 * border.height;
		        const double depth = texture.getDepth() + 2.0 * border.depth;
		        if (!fitsTexture(texture, width, height, depth) || !Border(texture, border.width, border.height, border.depth))
		        {
			        throw Refusal(context.file, "cannot get a border of " + sizeText(border) + ": the result has more than 4 GiB");
		        }
		        noteDroppedLevels(texture, levels, "--border", context);
	        }};
}
} // namespace zortex
