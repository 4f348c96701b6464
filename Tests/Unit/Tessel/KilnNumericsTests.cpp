#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "Codecs/Tessel/kiln/KilnNumerics.h"

namespace
{
constexpr std::size_t kMaxSize = 6;

struct Eigen
{
	std::vector<float> values;
	std::vector<float> vectors;
};

Eigen eigenOf(std::vector<float> matrix, std::size_t n)
{
	Eigen result = {std::vector<float>(n), std::vector<float>(n * n)};
	ComputeSortedEigenVecs(matrix.data(), static_cast<int>(n), result.values.data(), result.vectors.data());
	return result;
}

/// The sum over a random number of random vectors of their outer product: symmetric, at times of low rank.
std::vector<float> randomSymmetric(std::mt19937& random, std::size_t n)
{
	std::vector<float> matrix(n * n);
	for (unsigned count = random() % (2 * n) + 1; count > 0; --count)
	{
		float vector[kMaxSize];
		std::generate_n(vector, n, [&random] { return static_cast<float>(random() % 511) - 255; });
		for (std::size_t i = 0; i < n * n; ++i)
		{
			matrix[i] += vector[i / n] * vector[i % n];
		}
	}
	return matrix;
}
} // namespace

TEST(KilnNumerics, EigenvectorsSolveTheMatrixAndStandAtRightAngles)
{
	std::mt19937 random(7);
	for (int repeat = 0; repeat < 400; ++repeat)
	{
		const std::size_t n = random() % kMaxSize + 1;
		const std::vector<float> matrix = randomSymmetric(random, n);
		const Eigen eigen = eigenOf(matrix, n);
		ASSERT_TRUE(std::is_sorted(eigen.values.rbegin(), eigen.values.rend()));
		for (std::size_t k = 0; k < n; ++k)
		{
			for (std::size_t i = 0; i < n; ++i)
			{
				double image = 0;
				double dot = 0;
				for (std::size_t j = 0; j < n; ++j)
				{
					image += double{matrix[i * n + j]} * eigen.vectors[k * n + j];
					dot += double{eigen.vectors[k * n + j]} * eigen.vectors[i * n + j];
				}
				ASSERT_NEAR(image, double{eigen.values[k]} * eigen.vectors[k * n + i], 4e-6 * eigen.values[0] + 1e-6);
				ASSERT_NEAR(dot, i == k ? 1 : 0, 4e-6);
			}
		}
	}
}

TEST(KilnNumerics, DiagonalMatricesKeepTheirAxes)
{
	EXPECT_EQ(eigenOf(std::vector<float>(9), 3).vectors, (std::vector<float>{1, 0, 0, 0, 1, 0, 0, 0, 1}));
	// Equal values stay in order behind the larger one.
	const Eigen eigen = eigenOf({2, 0, 0, 0, 2, 0, 0, 0, 5}, 3);
	EXPECT_EQ(eigen.values, (std::vector<float>{5, 2, 2}));
	EXPECT_EQ(eigen.vectors, (std::vector<float>{0, 0, 1, 1, 0, 0, 0, 1, 0}));
}

TEST(KilnNumerics, CovarianceTakesItsWeightedMeanAway)
{
	// Two colours on a line far from the origin; their weights must not turn it.
	CovarSum sum;
	const unsigned char low[4] = {100, 200, 50, 255};
	const float high[4] = {130, 200, 10, 255};
	UpdateCovarSumI(sum, low, 3);
	UpdateCovarSumF(sum, high, 1);
	const KilnVector means = CovarSumMeans(sum);
	EXPECT_EQ(means, (KilnVector{107.5F, 200, 40, 255}));
	EXPECT_EQ(sum.weight, 4);

	KilnMatrix axes;
	CovarSumToSortedEigenVecs(sum, means, axes);
	EXPECT_NEAR(std::fabs(axes[0][0]), 0.6, 1e-5);
	EXPECT_NEAR(axes[0][0] * axes[0][2], -0.48, 1e-5);
	KilnVector axis;
	CovarSumToPrincipalVector(sum, means, axis);
	EXPECT_NEAR(axis[0] * axis[2], -0.48, 1e-5);
	EXPECT_EQ(axis[1], 0);

	CovarSumToPrincipalVector({}, CovarSumMeans({}), axis);
	EXPECT_EQ(axis, (KilnVector{1, 0, 0, 0}));
}

TEST(KilnNumerics, PrincipalVectorIsTheFirstOfAllWhereItStandsOut)
{
	std::mt19937 random(3);
	for (int repeat = 0; repeat < 300; ++repeat)
	{
		const std::vector<float> elements = randomSymmetric(random, 4);
		KilnMatrix matrix;
		std::copy(elements.begin(), elements.end(), matrix[0].data());
		const Eigen eigen = eigenOf(elements, 4);
		if (eigen.values[1] < 0.8F * eigen.values[0])
		{
			KilnVector vector;
			EXPECT_NEAR(FindPrincipalEigenvect(matrix, vector), eigen.values[0], 1e-4F * eigen.values[0]);
			float dot = 0;
			for (std::size_t i = 0; i < 4; ++i)
			{
				dot += vector[i] * eigen.vectors[i];
			}
			EXPECT_NEAR(std::fabs(dot), 1, 1e-4);
		}
	}
}

TEST(KilnNumerics, MergeSortIsStableAtEveryCount)
{
	struct Element
	{
		unsigned char key;
		unsigned char place;

		bool operator==(const Element&) const = default;
	};
	const auto byKey = [](const Element& a, const Element& b)
	{
		return int{a.key} - int{b.key};
	};
	std::mt19937 random(11);
	for (unsigned count = 0; count < 70; ++count)
	{
		std::vector<Element> elements(count);
		for (unsigned i = 0; i < count; ++i)
		{
			elements[i] = {static_cast<unsigned char>(random() % 9), static_cast<unsigned char>(i)};
		}
		std::vector<Element> expected = elements;
		std::stable_sort(expected.begin(), expected.end(), [](const Element& a, const Element& b) { return a.key < b.key; });
		std::vector<Element> scratch(count);
		zormergesort(elements.data(), scratch.data(), count, byKey);
		EXPECT_EQ(elements, expected) << count;
	}
}
