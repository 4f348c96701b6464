#include <cstring>
#include <iterator>

#include "FormatMaps.h"

namespace zortexture
{
namespace
{
struct ConstantName
{
	const char* name;
	unsigned int value;
};

constexpr ConstantName kConstantNames[] = {
#define ZORT_FORMAT_CONSTANT(name, value) {#name, value},
#include "FormatConstants.def"
#undef ZORT_FORMAT_CONSTANT
};

/// What the names of an API's constants begin with, by EGraphicsApi.
constexpr const char* kNamePrefixes[] = {"GL_", "VK_FORMAT_", "D3DFMT_", "DXGI_FORMAT_"};
} // namespace

const char* getFormatConstantName(EGraphicsApi api, unsigned int value)
{
	if (api >= std::size(kNamePrefixes))
	{
		return nullptr;
	}
	const char* const prefix = kNamePrefixes[api];
	for (const ConstantName& constant : kConstantNames)
	{
		if (constant.value == value && std::strncmp(constant.name, prefix, std::strlen(prefix)) == 0)
		{
			return constant.name;
		}
	}
	return nullptr;
}
} // namespace zortexture
