#include "GreyRule.h"

namespace zortexture
{
[[gnu::noinline]] float luminanceOf(float red, float green, float blue)
{
	return kRedWeight * red + kGreenWeight * green + kBlueWeight * blue;
}

[[gnu::noinline]] float meanOf(float red, float green, float blue, unsigned int count)
{
	// From 0, so that a mean of negative zeros is a positive one.
	return count != 0 ? (0.0f + red + green + blue) / static_cast<float>(count) : 0.0f;
}
} // namespace zortexture
