#include <algorithm>
#include <cmath>
#include <vector>

#include "Layouts.h"
#include "Operations.h"
#include "Refusal.h"
#include "StandardForm.h"
#include "TextureFile.h"

namespace zortex
{
using namespace zortexture;

namespace
{
std::vector<EChannelName> channelNames(const std::string& letters)
{
	std::vector<EChannelName> names;
	for (const char letter : letters)
	{
		names.push_back(MapCharToEnum(static_cast<unsigned char>(letter)));
	}
	return names;
}

std::string shapeText(const CZORTextureHeader& header)
{
	return std::to_string(header.getWidth()) + "x" + std::to_string(header.getHeight()) + "x" + std::to_string(header.getDepth()) +
	       " with " + std::to_string(header.getNumMIPLevels()) + " level(s), " + std::to_string(header.getNumArrayMembers()) +
	       " surface(s) and " + std::to_string(header.getNumFaces()) + " face(s)";
}

/// The texture that channels are copied from, in the standard layout of the one that they are copied to.
CZORTexture loadChannelSource(const std::string& file, const CZORTexture& destination)
{
	CZORTexture source = loadTexture(file).texture;
	if (const std::string problem = sourceProblem(source); !problem.empty())
	{
		throw Refusal(file, problem);
	}
	if (shapeText(source) != shapeText(destination))
	{
		throw Refusal(file, "its channels cannot be copied: it is " + shapeText(source) + ", the texture " + shapeText(destination));
	}
	makeStandard(source, destination.getChannelType(), source.getColourSpace(), file);
	return source;
}
} // namespace

Operation setChannelOperation(const std::string& channels, float value)
{
	return {"setting " + channels,
	        [channels, value](CZORTexture& texture, OperationContext& context)
	        {
		        makeStandard(texture, context);
		        std::vector<EChannelName> names = channelNames(channels);
		        const bool isFloat = texture.getChannelType() == eVT_SignedFloat;
		        const float ceiling = isFloat ? 1.0f : texture.getChannelType() == eVT_UnsignedByteNorm ? 255.0f : 65535.0f;
		        if (!isFloat && (value < 0.0f || value > 1.0f))
		        {
			        addNote(context, "--set-channel: the value is clamped to 0 to 1, which is all that the texture's channels hold");
		        }
		        const float element = isFloat ? value : std::round(std::clamp(value, 0.0f, 1.0f) * ceiling);
		        std::vector<float> values(names.size(), element);
		        if (!SetChannelsFloat(texture, static_cast<unsigned int>(names.size()), names.data(), values.data()))
		        {
			        throw Refusal(context.file, "its channels cannot be set");
		        }
	        },
	        [channels](CZORTextureHeader& header)
	        {
		        widenLayout(header, channels);
	        }};
}

Operation copyChannelOperation(const std::string& destination, const std::string& source, const std::string& file)
{
	return {"copying " + source + " to " + destination,
	        [destination, source, file](CZORTexture& texture, OperationContext& context)
	        {
		        makeStandard(texture, context);
		        std::vector<EChannelName> to = channelNames(destination);
		        std::vector<EChannelName> from = channelNames(source);
		        const auto count = static_cast<unsigned int>(to.size());
		        const bool isCopied = file.empty() ? CopyChannels(texture, texture, count, to.data(), from.data())
		                                           : CopyChannels(texture, loadChannelSource(file, texture), count, to.data(), from.data());
		        if (!isCopied)
		        {
			        throw Refusal(context.file, "its channels cannot be copied");
		        }
	        },
	        [destination](CZORTextureHeader& header) { widenLayout(header, destination); }, file};
}
} // namespace zortex
