/// @file EtcPlanarExhaustive.cpp
/// All planar blocks. The channels do not interact, and the error of one is nearly a quadratic form of its three corners: it differs by the
/// rounding of texels, which is bounded, and by cutting them off at the ends of the range, which only texels beyond the diagonal of the
/// corners can suffer. So the corners that may be good enough are those inside an ellipsoid, a few hundred of the hundred thousands that
/// there are, and mostly none: the form's least value tells so before any corner is tried.
#include <algorithm>
#include <cmath>

#include "Codecs/ETC/EtcBlock.h"
#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcPlanarCorners.h"
#include "Codecs/ETC/EtcSearchTexels.h"

namespace zortexture
{
namespace
{
/// What doubles may be off by, with room to spare: a corner too many is tried and found to be worse.
constexpr double kSlack = 1e-6;

/// One channel of a block against planes. Errors are plain here, whatever the scale of the search.
class CPlanarChannel
{
public:
	CPlanarChannel(const SearchTexels<16>& texels, unsigned int channel)
	{
		for (unsigned int i = 0; i < 16; ++i)
		{
			m_values[i] = texels.rgb[i][channel];
		}
	}

	[[nodiscard]] int value(unsigned int texel) const
	{
		return m_values[texel];
	}

	/// What the plane of the 8-bit corners costs. Anything from the limit on may be returned if it costs as much.
	[[nodiscard]] int error(int origin, int horizontal, int vertical, int limit) const
	{
		int sum = 0;
		for (int y = 0; y < 4 && sum < limit; ++y)
		{
			for (int x = 0; x < 4; ++x)
			{
				const int value = x * (horizontal - origin) + y * (vertical - origin) + 4 * origin + 2;
				const int difference = m_values[y * 4 + x] - std::clamp(value >> 2, 0, 255);
				sum += difference * difference;
			}
		}
		return sum;
	}

private:
	int m_values[16];
};

/// The error of a channel without rounding as a sum of squares:
///   least + origin.weight * (O - origin.centre)^2
///         + horizontal.weight * (H - horizontal.centre - horizontal.slope * O)^2
///         + vertical.weight * (V - vertical.centre - vertical.slopeO * O - vertical.slopeH * H)^2.
class CPlanarForm
{
public:
	/// @param limit  errors above it are of no interest. A texel that would cost more if it were cut off is then never cut off; other
	///               texels that can be are left out, which makes the form a lower bound.
	CPlanarForm(const CPlanarChannel& channel, int limit)
	{
		double matrix[3][3] = {}; // of the normal equations, 16 times, in the order O, H, V
		double right[3] = {};     // 4 times
		double squares = 0.0;
		unsigned int count = 0;
		for (int y = 0; y < 4; ++y)
		{
			for (int x = 0; x < 4; ++x)
			{
				const int value = channel.value(static_cast<unsigned int>(y * 4 + x));
				const int whenCutOff = std::min(value, 255 - value);
				if (x + y > 4 && whenCutOff * whenCutOff <= limit)
				{
					continue;
				}
				// Rounding adds from -1/4 to 1/2 to all texels but the first, which is exact.
				const double target = x + y == 0 ? value : value - 0.125;
				const double factors[3] = {4.0 - x - y, static_cast<double>(x), static_cast<double>(y)};
				for (unsigned int i = 0; i < 3; ++i)
				{
					for (unsigned int j = 0; j < 3; ++j)
					{
						matrix[i][j] += factors[i] * factors[j] / 16.0;
					}
					right[i] += factors[i] * target / 4.0;
				}
				squares += target * target;
				++count;
			}
		}
		m_rounding = 0.375 * std::sqrt(count - 1.0) + kSlack;

		// Completes the squares of V, of H in what is left, and of O.
		m_weights[2] = matrix[2][2];
		m_centres[2] = right[2] / matrix[2][2];
		m_slopeVO = -matrix[2][0] / matrix[2][2];
		m_slopeVH = -matrix[2][1] / matrix[2][2];
		for (unsigned int i = 0; i < 2; ++i)
		{
			for (unsigned int j = 0; j < 2; ++j)
			{
				matrix[i][j] -= matrix[i][2] * matrix[2][j] / matrix[2][2];
			}
			right[i] -= matrix[i][2] * m_centres[2];
		}
		m_weights[1] = matrix[1][1];
		m_centres[1] = right[1] / matrix[1][1];
		m_slopeHO = -matrix[1][0] / matrix[1][1];
		m_weights[0] = matrix[0][0] - matrix[0][1] * matrix[1][0] / matrix[1][1];
		m_centres[0] = (right[0] - matrix[0][1] * m_centres[1]) / m_weights[0];
		m_least = squares;
		for (unsigned int i = 0; i < 3; ++i)
		{
			m_least -= m_weights[i] * m_centres[i] * m_centres[i];
		}
	}

	/// No plane with an error within the limit of the form costs less than this.
	[[nodiscard]] int lowerBound() const
	{
		const double root = std::sqrt(std::max(m_least, 0.0)) - m_rounding;
		return root <= 0.0 ? 0 : static_cast<int>(root * root - kSlack);
	}

	/// How far the form may rise above its least value for errors of at most `limit`; negative if there are none.
	[[nodiscard]] double room(int limit) const
	{
		const double root = std::sqrt(static_cast<double>(limit)) + m_rounding;
		return root * root - m_least + kSlack;
	}

	/// Calls visit(level, colour, used) for the levels of `Bits` bits of corner number `corner` that keep its square, and what the corners
	/// before it have used, within the room. They count up; visit is told what they use.
	template<unsigned int Bits, typename Visit>
	void visitLevels(unsigned int corner, double centre, const double& room, double used, Visit&& visit) const
	{
		constexpr double kStep = 255.0 / ((1U << Bits) - 1);
		const double reach = std::sqrt(std::max(room - used, 0.0) / m_weights[corner]) + 1.0; // levels are off their even steps by less
		const int first = std::max(0, static_cast<int>(std::floor((centre - reach) / kStep)));
		const int last = std::min((1 << Bits) - 1, static_cast<int>(std::ceil((centre + reach) / kStep)));
		for (int level = first; level <= last; ++level)
		{
			const auto colour = static_cast<int>(expandBits(static_cast<unsigned int>(level), Bits));
			const double sum = used + m_weights[corner] * (colour - centre) * (colour - centre);
			if (sum <= room)
			{
				visit(static_cast<unsigned int>(level), colour, sum);
			}
		}
	}

	[[nodiscard]] double centreOfOrigin() const
	{
		return m_centres[0];
	}
	[[nodiscard]] double centreOfHorizontal(int origin) const
	{
		return m_centres[1] + m_slopeHO * origin;
	}
	[[nodiscard]] double centreOfVertical(int origin, int horizontal) const
	{
		return m_centres[2] + m_slopeVO * origin + m_slopeVH * horizontal;
	}

private:
	double m_rounding; ///< The greatest norm of what rounding adds.
	double m_least;
	double m_weights[3];
	double m_centres[3];
	double m_slopeHO;
	double m_slopeVO;
	double m_slopeVH;
};

/// The first of the best corners of `Bits` bits whose error is at most the limit, if there are any.
template<unsigned int Bits>
void searchChannel(const CPlanarChannel& channel, const CPlanarForm& form, int limit, PlanarCorners& best, int& error)
{
	double room = form.room(limit);
	form.visitLevels<Bits>(0, form.centreOfOrigin(), room, 0.0,
	                       [&](unsigned int origin, int colourO, double usedO)
	                       {
		                       form.visitLevels<Bits>(1, form.centreOfHorizontal(colourO), room, usedO,
		                                              [&](unsigned int horizontal, int colourH, double usedH)
		                                              {
			                                              form.visitLevels<Bits>(
			                                                  2, form.centreOfVertical(colourO, colourH), room, usedH,
			                                                  [&](unsigned int vertical, int colourV, double /*used*/)
			                                                  {
				                                                  const int sum = channel.error(colourO, colourH, colourV, limit + 1);
				                                                  if (sum <= limit)
				                                                  {
					                                                  best = {origin, horizontal, vertical};
					                                                  error = sum;
					                                                  limit = sum - 1; // what comes later has to be strictly better
					                                                  room = limit < 0 ? -1.0 : form.room(limit);
				                                                  }
			                                                  });
		                                              });
	                       });
}

template<typename Scale>
unsigned int search(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, unsigned int& word1,
                    unsigned int& word2, unsigned int bound, const unsigned int (&seedErrors)[3])
{
	compressBlockPlanar57(source, width, startX, startY, word1, word2);
	PlanarCorners corners[3];
	unpackPlanarCorners(word1, word2, corners[0], corners[1], corners[2]);
	const SearchTexels<16> texels = loadBlockTexels(source, width, startX, startY);
	const CPlanarChannel channels[3] = {{texels, 0}, {texels, 1}, {texels, 2}};

	// What the other channels cost at least is lost for a channel, and so is what they really cost once they have been searched.
	unsigned int errors[3] = {};
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const unsigned int limit = std::min(bound, seedErrors[channel]) / Scale::kWeights[channel];
		const CPlanarForm form(channels[channel], static_cast<int>(limit));
		errors[channel] = std::min(static_cast<unsigned int>(form.lowerBound()), limit) * Scale::kWeights[channel];
	}
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const unsigned int others = errors[0] + errors[1] + errors[2] - errors[channel];
		errors[channel] = seedErrors[channel];
		// A bound that was measured in floating point may be 1 too small, and a block that costs 1 more than it is still the best.
		if (others <= bound + 1)
		{
			const auto limit = static_cast<int>(std::min({bound, bound + 1 - others, seedErrors[channel]}) / Scale::kWeights[channel]);
			const CPlanarForm form(channels[channel], limit);
			auto found = static_cast<int>(seedErrors[channel] / Scale::kWeights[channel]);
			if (channel == 1)
			{
				searchChannel<7>(channels[channel], form, limit, corners[channel], found);
			}
			else
			{
				searchChannel<6>(channels[channel], form, limit, corners[channel], found);
			}
			errors[channel] = static_cast<unsigned int>(found) * Scale::kWeights[channel];
		}
	}
	packPlanarCorners(corners[0], corners[1], corners[2], word1, word2);
	return errors[0] + errors[1] + errors[2];
}
} // namespace

unsigned int compressBlockPlanar57Exhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& word1, unsigned int& word2, unsigned int bound,
                                             const unsigned int (&seedErrors)[3])
{
	return search<PlainScale>(source, width, startX, startY, word1, word2, bound, seedErrors);
}

unsigned int compressBlockPlanar57ExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                       unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                       const unsigned int (&seedErrors)[3])
{
	return search<Perceptual1000Scale>(source, width, startX, startY, word1, word2, bound, seedErrors);
}
} // namespace zortexture
