// Resizing and convolution in lanes against the plain form: the same bytes.

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <random>

#include "ProcessingTestSupport.h"
#include "Resampling.h"
#include "Simd/SimdLevels.h"

using namespace zortexture;

namespace
{
struct Size
{
	unsigned int width, height, depth;

	std::size_t numPixels() const
	{
		return std::size_t{width} * height * depth;
	}
};

class Dice
{
public:
	explicit Dice(unsigned int seed) : m_engine(seed)
	{
	}

	/// 0 to count - 1
	unsigned int roll(unsigned int count)
	{
		return static_cast<unsigned int>(m_engine() % count);
	}

	template<typename T>
	T element(bool isWild)
	{
		if constexpr (std::is_same_v<T, float>)
		{
			constexpr float kInfinity = std::numeric_limits<float>::infinity();
			constexpr float kLargest = std::numeric_limits<float>::max();
			constexpr float kWild[] = {kInfinity, -kInfinity, std::numeric_limits<float>::quiet_NaN(), kLargest, -kLargest, 1e-45f,
			                           -0.0f,     0.0f};
			return isWild && roll(8) == 0 ? kWild[roll(8)] : (static_cast<float>(m_engine()) - 1e9f) * 1e-9f;
		}
		else
		{
			// Small numbers of wide types, too.
			const auto bits = static_cast<unsigned int>(m_engine()) >> roll(sizeof(T) == 4 ? 32 : 1);
			return static_cast<T>(isWild && roll(2) == 0 ? (roll(2) == 0 ? 0 : ~0u) : bits);
		}
	}

	/// Noise, extremes, or areas of one colour, whose samples lie so close to integers that the last bit of a sum decides.
	template<typename T>
	std::vector<Pixel<T>> image(const Size& size)
	{
		const unsigned int kind = roll(3);
		const auto pixel = [&]
		{
			return Pixel<T>{element<T>(kind == 1), element<T>(kind == 1), element<T>(kind == 1), element<T>(kind == 1)};
		};
		std::vector<Pixel<T>> pixels(size.numPixels(), pixel());
		for (Pixel<T>& p : pixels)
		{
			p = kind == 2 && roll(50) != 0 ? p : pixel();
		}
		return pixels;
	}

	/// Few pixels, but up to 40 on each axis.
	Size size()
	{
		for (;;)
		{
			const Size size{1 + roll(40), 1 + roll(40), roll(2) == 0 ? 1 : 1 + roll(40)};
			if (size.numPixels() <= 2000)
			{
				return size;
			}
		}
	}

	static constexpr unsigned int kAnyChange = 5;

	unsigned int axisAfter(unsigned int before, unsigned int kind)
	{
		switch (kind == kAnyChange ? roll(kAnyChange) : kind)
		{
		case 0:
			return std::max(1u, before / 2);
		case 1:
			return before;
		case 2:
			return before <= 20 ? 2 * before : before;
		case 3:
			return before + before / 2; // thirds, which no float holds
		default:
			return 1 + roll(2 * before);
		}
	}

	/// What a step may make of a size: the same change of all axes, or one of each.
	Size sizeAfter(const Size& before)
	{
		const unsigned int kind = roll(kAnyChange + 1);
		return {axisAfter(before.width, kind), axisAfter(before.height, kind), axisAfter(before.depth, kind)};
	}

private:
	std::mt19937 m_engine;
};

template<typename T>
class ResampleLanes : public testing::Test
{
};
using ElementTypes = testing::Types<unsigned char, unsigned short, unsigned int, float>;
TYPED_TEST_SUITE(ResampleLanes, ElementTypes);

/// Images stand at addresses of no alignment but their elements', and end where their memory does.
template<typename T>
struct Placed
{
	Placed(const std::vector<Pixel<T>>& image, unsigned int shift)
	    : memory(new T[image.size() * 4 + shift]), pixels(reinterpret_cast<Pixel<T>*>(memory.get() + shift))
	{
		std::copy(image.begin(), image.end(), pixels);
	}

	std::unique_ptr<T[]> memory;
	Pixel<T>* pixels;
};

template<typename T>
void expectSameStretch(const std::vector<Pixel<T>>& source, const Size& from, const Size& to, EResizeMode mode, unsigned int shift,
                       bool isInPlace)
{
	const auto stretched = [&]
	{
		std::vector<Pixel<T>> result(to.numPixels());
		if (isInPlace)
		{
			result = source;
			result.resize(std::max(from.numPixels(), to.numPixels()));
		}
		const Placed<T> in(source, shift);
		const Placed<T> out(result, (shift + 1) % 4);
		EXPECT_TRUE(StretchImage(isInPlace ? out.pixels : in.pixels, out.pixels, from.width, from.height, from.depth, to.width, to.height,
		                         to.depth, mode));
		std::copy_n(out.pixels, result.size(), result.begin());
		return result;
	};
	const std::vector<Pixel<T>> expected = atSimdLevel(eSimdPlain, stretched);
	for (const ESimdLevel level : kVectorLevels)
	{
		const std::vector<Pixel<T>> result = atSimdLevel(level, stretched);
		ASSERT_EQ(std::memcmp(result.data(), expected.data(), result.size() * sizeof(Pixel<T>)), 0)
		    << from.width << "x" << from.height << "x" << from.depth << " to " << to.width << "x" << to.height << "x" << to.depth
		    << " mode " << mode << " level " << level;
	}
}

TYPED_TEST(ResampleLanes, StretchLikeThePlainForm)
{
	using T = TypeParam;
	Dice dice(1);
	for (int round = 0; round < 400 && !this->HasFatalFailure(); ++round)
	{
		Size from = dice.size();
		const Size to = dice.sizeAfter(from);
		if (dice.roll(4) == 0)
		{
			from = {to.width * 2, to.height * 2, to.depth * (dice.roll(2) == 0 ? 1 : 2)};
		}
		const auto mode = static_cast<EResizeMode>(dice.roll(10) == 0 ? eResizeNearest : eResizeLinear + dice.roll(2));
		expectSameStretch(dice.image<T>(from), from, to, mode, dice.roll(4), dice.roll(8) == 0);
	}
}

/// Where exact and rounded steps meet, a last bit shows in one of some hundred thousand samples alone.
TEST(ResampleBytes, CubicHalvesOfRowsThatAreNotExact)
{
	const Size from{200, 250, 1};
	expectSameStretch(Dice(3).image<unsigned char>(from), from, {300, 500, 1}, eResizeCubic, 0, false);
}

/// No number is like another: which of two stays is the compiler's choice.
template<typename T>
bool isSame(T a, T b)
{
	return a == b ? std::signbit(static_cast<double>(a)) == std::signbit(static_cast<double>(b)) : a != a && b != b;
}

TYPED_TEST(ResampleLanes, ConvolveLikeThePlainForm)
{
	using T = TypeParam;
	Dice dice(2);
	for (int round = 0; round < 100; ++round)
	{
		const Size size = dice.size();
		const std::vector<Pixel<T>> source = dice.image<T>(size);
		const Size reach{2 * dice.roll(4) + 1, 2 * dice.roll(3) + 1, size.depth == 1 ? 1 : 2 * dice.roll(2) + 1};
		std::vector<float> kernel(reach.numPixels());
		for (float& tap : kernel)
		{
			tap = dice.element<float>(round % 4 == 0) * static_cast<float>(round % 5);
		}
		const float weight = round % 9 == 0 ? 0.0f : 1.0f + static_cast<float>(round % 7);
		const auto convolved = [&]
		{
			const Placed<T> in(source, 1);
			const Placed<T> out(source, 2);
			EXPECT_TRUE(ConvolutionKernel(in.pixels, out.pixels, size.width, size.height, size.depth, kernel.data(), weight, reach.width,
			                              reach.height, reach.depth));
			return std::vector<Pixel<T>>(out.pixels, out.pixels + source.size());
		};
		const std::vector<Pixel<T>> expected = atSimdLevel(eSimdPlain, convolved);
		for (const ESimdLevel level : kVectorLevels)
		{
			const std::vector<Pixel<T>> result = atSimdLevel(level, convolved);
			for (std::size_t i = 0; i < result.size(); ++i)
			{
				const Pixel<T>& a = result[i];
				const Pixel<T>& b = expected[i];
				ASSERT_TRUE(isSame(a.r, b.r) && isSame(a.g, b.g) && isSame(a.b, b.b) && isSame(a.a, b.a))
				    << testing::PrintToString(a) << " for " << testing::PrintToString(b) << " at " << i << " of " << size.width << "x"
				    << size.height << "x" << size.depth << " level " << level << " round " << round;
			}
		}
	}
}
} // namespace
