#include "Layouts.h"
#include "Operations.h"
#include "Refusal.h"
#include "StandardForm.h"

namespace zortex
{
using namespace zortexture;

Operation mipsOperation(unsigned int levels, EResizeMode mode)
{
	const std::string text = levels == kFullMIPChain ? "all MIP levels" : std::to_string(levels) + " MIP levels";
	return {"making " + text, [levels, mode, text](CZORTexture& texture, OperationContext& context)
	        {
		        makeStandard(texture, context);
		        if (!GenerateMIPMaps(texture, mode, levels))
		        {
			        throw Refusal(context.file, "cannot get " + text + ": the result is too large");
		        }
	        }};
}

Operation colourMipsOperation()
{
	return {"tinting the MIP levels",
	        [](CZORTexture& texture, OperationContext& context)
	        {
		        makeStandard(texture, context);
		        if (texture.getNumMIPLevels() == 1)
		        {
			        addNote(context, "--colour-mips changes nothing: there is one level; give --mips before it");
		        }
		        if (!ColourMIPMaps(texture))
		        {
			        throw Refusal(context.file, "its MIP levels cannot be tinted");
		        }
	        },
	        [](CZORTextureHeader& header)
	        {
		        widenLayout(header, "rgb");
	        }};
}

Operation normalMapOperation(float scale, const std::string& order)
{
	return {"making a normal map",
	        [scale, order](CZORTexture& texture, OperationContext& context)
	        {
		        EZORTVariableType type = standardType(texture.getPixelType(), texture.getChannelType());
		        if (type == eVT_SignedFloat)
		        {
			        // The library measures float heights against the whole range of float, where ordinary ones are flat.
			        addNote(context, "--normal-map takes heights from 0 to 1 in 16 bits: the texture lost the rest");
			        type = eVT_UnsignedShortNorm;
		        }
		        makeStandard(texture, type, texture.getColourSpace(), context.file);
		        if (!GenerateNormalMap(texture, scale, order))
		        {
			        throw Refusal(context.file, "cannot be made into a normal map");
		        }
		        // Directions are no colours: nothing may bend them.
		        texture.setColourSpace(eCS_lRGB);
	        },
	        [order](CZORTextureHeader& header)
	        {
		        const bool isDeep = standardType(header.getPixelType(), header.getChannelType()) != eVT_UnsignedByteNorm;
		        header.setPixelFormat(makeLayout(order.size() == 4 ? "rgba" : "rgb", isDeep ? 16 : 8));
		        header.setChannelType(isDeep ? eVT_UnsignedShortNorm : eVT_UnsignedByteNorm);
		        header.setColourSpace(eCS_lRGB);
	        }};
}
} // namespace zortex
