#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include "Codecs/ETC/EtcFastSearch.h"
#include "EtcSearchTestSupport.h"

using namespace zortexture;
using namespace etctest;

namespace
{
void discard(dMatrix* matrix)
{
	delete[] matrix->data;
	delete matrix;
}

TEST(EtcPlanarFit, EqualsTheMatrixForm)
{
	double fit[16 * 3];
	for (int i = 0; i < 16; ++i)
	{
		const int x = i % 4;
		const int y = i / 4;
		const double row[3] = {1.0 - 0.25 * (x + y), 0.25 * x, 0.25 * y};
		std::copy(row, row + 3, fit + i * 3);
	}
	double inverse[9] = {0.2875, -0.0125, -0.0125, -0.0125, 0.4875, -0.3125, -0.0125, -0.3125, 0.4875};
	const dMatrix inverseMatrix{3, 3, inverse};
	dMatrix transposed{3, 16, new double[48]};
	std::copy(fit, fit + 48, transposed.data);
	transposeMatrix(&transposed);
	ASSERT_EQ(transposed.width, 16);
	ASSERT_EQ(transposed.height, 3);

	// The constant is the inverse of the normal matrix.
	const dMatrix fitMatrix{3, 16, fit};
	dMatrix* const normal = multiplyMatrices(&transposed, &fitMatrix);
	dMatrix* const identity = multiplyMatrices(&inverseMatrix, normal);
	for (int i = 0; i < 9; ++i)
	{
		EXPECT_NEAR(identity->data[i], i % 4 == 0 ? 1.0 : 0.0, 1e-12);
	}
	discard(normal);
	discard(identity);

	std::mt19937 random(62);
	for (unsigned int turn = 0; turn < 300; ++turn)
	{
		const Rgb16 block = mixedBlock(random, turn);
		unsigned int levels[3][3];
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			double texels[16];
			for (std::size_t i = 0; i < 16; ++i)
			{
				texels[i] = block[i * 3 + channel];
			}
			const dMatrix column{1, 16, texels};
			dMatrix* const projected = multiplyMatrices(&transposed, &column);
			dMatrix* const corners = multiplyMatrices(&inverseMatrix, projected);
			for (std::size_t corner = 0; corner < 3; ++corner)
			{
				const double value = std::min(std::max(corners->data[corner], 0.0), 255.0);
				levels[channel][corner] = static_cast<unsigned int>(std::lround(value / (255.0 / (channel == 1 ? 127.0 : 63.0))));
			}
			discard(projected);
			discard(corners);
		}
		unsigned int words[2];
		compressBlockPlanar57(block.data(), 4, 0, 0, words[0], words[1]);
		EXPECT_EQ(words[0], levels[0][0] << 26 | levels[1][0] << 19 | levels[2][0] << 13 | levels[0][1] << 7 | levels[1][1]);
		EXPECT_EQ(words[1], levels[2][1] << 26 | levels[0][2] << 20 | levels[1][2] << 13 | levels[2][2] << 7);
	}
	delete[] transposed.data;
}

TEST(EtcPlanarFit, MatricesThatDoNotFitAreReported)
{
	double ones[6] = {1.0, 1.0, 1.0, 1.0, 1.0, 1.0};
	const dMatrix left{3, 2, ones};
	const dMatrix right{3, 2, ones};
	testing::internal::CaptureStdout();
	dMatrix* const product = multiplyMatrices(&left, &right);
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "Cannot multiply matrices -- dimensions do not agree.");
	EXPECT_EQ(product->width, 3);
	EXPECT_EQ(product->height, 2);
	EXPECT_EQ(product->data[5], 2.0); // the two terms that both have
	discard(product);
}
} // namespace
