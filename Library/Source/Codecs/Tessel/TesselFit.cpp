#include <algorithm>
#include <cmath>

#include "TesselFloatColour.h"
#include "TesselPlanes.h"

namespace zortexture
{
void fitTesselColours(const TesselBlockPixels& block, const float* weights, unsigned count, float threshold, unsigned& colourA,
                      unsigned& colourB)
{
	constexpr float kLargestCorrection = 100.0F;
	constexpr float kFlatVariance = 1e-10F;
	// Means of the residual, of the weight, of its square, and of residual times weight.
	FloatColour e = {};
	FloatColour em = {};
	float m = 0.0F;
	float mm = 0.0F;
	for (unsigned i = 0; i < count; ++i)
	{
		const float weight = weights[i];
		const FloatColour pixel = toFloat(block.image[i]);
		const FloatColour a = toFloat(block.a[i]);
		const FloatColour b = toFloat(block.b[i]);
		for (unsigned c = 0; c < 4; ++c)
		{
			const float residual = pixel.channel[c] - (a.channel[c] * (1.0F - weight) + b.channel[c] * weight);
			e.channel[c] += residual;
			em.channel[c] += residual * weight;
		}
		m += weight;
		mm += weight * weight;
	}
	const float n = static_cast<float>(count);
	m /= n;
	mm /= n;
	float squaredLength = 0.0F;
	for (unsigned c = 0; c < 4; ++c)
	{
		e.channel[c] /= n;
		em.channel[c] /= n;
		squaredLength += e.channel[c] * e.channel[c];
	}
	if (squaredLength < threshold)
	{
		return;
	}

	FloatColour a = unpackFloat(colourA);
	FloatColour b = unpackFloat(colourB);
	const float variance = mm - m * m;
	for (unsigned c = 0; c < 4; ++c)
	{
		if (variance >= kFlatVariance)
		{
			const float slope = (em.channel[c] - e.channel[c] * m) / variance;
			const float intercept = e.channel[c] - m * slope;
			a.channel[c] += std::clamp(intercept, -kLargestCorrection, kLargestCorrection);
			b.channel[c] += std::clamp(slope + intercept, -kLargestCorrection, kLargestCorrection);
			continue;
		}
		// One weight throughout: both ends move by their share of the residual, then towards each other.
		a.channel[c] = std::clamp(a.channel[c] + e.channel[c] * (1.0F - m), 0.0F, 255.0F);
		b.channel[c] = std::clamp(b.channel[c] + e.channel[c] * m, 0.0F, 255.0F);
		float difference = b.channel[c] - a.channel[c];
		if (std::fabs(difference) < 1.0F)
		{
			difference = 0.0F;
		}
		a.channel[c] += (0.5F * m) * difference;
		b.channel[c] -= (0.5F * (1.0F - m)) * difference;
	}
	colourA = packClamped(a);
	colourB = packClamped(b);
}
} // namespace zortexture
