#include "StandardForm.h"

#include "FormatCapabilities.h"
#include "FormatNames.h"
#include "HelperPrograms.h"
#include "Layouts.h"
#include "Refusal.h"
#include "Text.h"
#include "TranscodeTexture.h"

namespace zortex
{
using namespace zortexture;

std::string sourceProblem(const CZORTextureHeader& header)
{
	const PixelType format = header.getPixelType();
	const std::string name = formatName(format, header.getChannelType());
	if (!canDecode(format))
	{
		return "holds " + name + ", which cannot be decoded so far";
	}
	if (format.isCompressed())
	{
		return header.getDepth() > 1 && !canHoldVolume(format) ? "holds a volume in " + name + ", which cannot be decoded" : "";
	}
	const std::string problem = layoutProblem(format, header.getChannelType());
	return problem.empty()
	           ? ""
	           : "holds " + name + " as " + channelTypeName(header.getChannelType()) + ", which cannot be converted: " + problem;
}

EZORTVariableType standardType(PixelType format, EZORTVariableType type)
{
	PixelType layout;
	EZORTVariableType layoutType = eVT_UnsignedByteNorm;
	workingLayout(format, type, layout, layoutType);
	if (isSigned(layoutType) || isFloatType(layoutType) || widestChannel(layout) > 16)
	{
		return eVT_SignedFloat;
	}
	return widestChannel(layout) <= 8 ? eVT_UnsignedByteNorm : eVT_UnsignedShortNorm;
}

void makeStandard(CZORTexture& texture, EZORTVariableType type, EZORTColourSpace space, const std::string& file)
{
	const PixelType layout = type == eVT_UnsignedByteNorm    ? ZORStandard8PixelType
	                         : type == eVT_UnsignedShortNorm ? ZORStandard16PixelType
	                                                         : ZORStandard32PixelType;
	if (texture.getPixelType().id == layout.id && texture.getChannelType() == type && texture.getColourSpace() == space)
	{
		return;
	}
	const PixelType source = texture.getPixelType();
	if (!transcodeTexture(texture, layout, type, space))
	{
		throw Refusal(file, "its pixels cannot be decoded" + helperProblem(source, layout));
	}
}

unsigned int pickIndex(const std::optional<unsigned int>& index, unsigned int count, const std::string& noun, const std::string& file)
{
	if (index.value_or(0) >= count)
	{
		throw Refusal(file, "has no " + noun + " " + std::to_string(index.value_or(0)) + ": there " + (count == 1 ? "is " : "are ") +
		                        counted(count, noun) + ", counted from 0");
	}
	return index.value_or(0);
}

void cutToImage(CZORTexture& texture, unsigned int level, unsigned int surface, unsigned int face)
{
	if (texture.getNumMIPLevels() == 1 && texture.getNumArrayMembers() == 1 && texture.getNumFaces() == 1)
	{
		return;
	}
	CZORTextureHeader header(texture);
	header.setWidth(texture.getWidth(level));
	header.setHeight(texture.getHeight(level));
	header.setDepth(texture.getDepth(level));
	header.setNumMIPLevels(1);
	header.setNumArrayMembers(1);
	header.setNumFaces(1);
	texture = CZORTexture(header, texture.getDataPtr(level, surface, face));
}
} // namespace zortex
