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
	/// Changes format, channel type and colour space of a header from the input's to those that hold the result, for an
	/// output that was not told its own. Empty where the input's do.
	std::function<void(zortexture::CZORTextureHeader&)> adapt = {};
	/// The file that is read beside the input; empty for none.
	std::string file = {};
};

struct ImageSize
{
	unsigned int width;
	unsigned int height;
	/// 0 keeps the texture's own.
	unsigned int depth;
};

struct ImageOffset
{
	int x;
	int y;
	int z;
};

/// Adds a note unless it is there already.
void addNote(OperationContext& context, const std::string& note);

/// Brings a texture into the standard layout that keeps its precision: 8 or 16 bits, or floats.
void makeStandard(zortexture::CZORTexture& texture, const OperationContext& context);

/// Adds the note of an operation that keeps the top level only, when it dropped levels.
void noteDroppedLevels(const zortexture::CZORTexture& texture, unsigned int levelsBefore, const std::string& option,
                       OperationContext& context);

Operation resizeOperation(const ImageSize& size, zortexture::EResizeMode mode);

/// Multiplies colour by alpha, on 8 bits a channel.
Operation premultiplyOperation();

/// Fills transparent texels with the colour around them, on 8 bits a channel.
Operation bleedOperation();

/// Makes the MIP levels below the top one; `levels` are all of them, or kFullMIPChain.
Operation mipsOperation(unsigned int levels, zortexture::EResizeMode mode);

/// Tints every MIP level but the top one.
Operation colourMipsOperation();

/// Turns a height map into a normal map in linear values, of 8 or 16 bits a channel as the heights have.
Operation normalMapOperation(float scale, const std::string& order);

Operation flipOperation(EZORTAxis axis);

/// Turns pictures clockwise about the z axis.
Operation rotateOperation(unsigned int quarterTurns);

/// Changes the frame around the top level; the old first pixel lands at the offset.
Operation canvasOperation(const ImageSize& size, const ImageOffset& offset);

/// Extends the top level by its mirror image; a depth of 0 is none.
Operation borderOperation(const ImageSize& border);

/// Sets channels ("rgba") to a value; 1 is full intensity.
Operation setChannelOperation(const std::string& channels, float value);

/// Copies channels ("rgbali") of a texture file, or of the texture itself where `file` is empty, to others ("rgba").
Operation copyChannelOperation(const std::string& destination, const std::string& source, const std::string& file);
} // namespace zortex

#endif // ZORTEX_OPERATIONS_H
