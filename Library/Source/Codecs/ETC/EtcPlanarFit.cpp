/// @file EtcPlanarFit.cpp
/// Planar blocks by least squares.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcPlanarCorners.h"
#include "Codecs/ETC/EtcSearchTexels.h"

namespace zortexture
{
namespace
{
/// Inverse of the normal matrix of the fit: of (A^T A) with the row (1 - x/4 - y/4, x/4, y/4) of A for texel (x, y).
constexpr double kInverseNormal[3][3] = {{0.2875, -0.0125, -0.0125}, {-0.0125, 0.4875, -0.3125}, {-0.0125, -0.3125, 0.4875}};

constexpr double kStep6Bits = 4.0476190476190474; // between two levels of 6 bits, 255/63
constexpr double kStep7Bits = 2.0078740157480315; // 255/127

PlanarCorners fitChannel(const SearchTexels<16>& texels, unsigned int channel, double step)
{
	// A^T p in quarters, so that the sums are exact.
	int sums[3] = {};
	for (int i = 0; i < 16; ++i)
	{
		const int value = texels.rgb[i][channel];
		const int x = i % 4;
		const int y = i / 4;
		sums[0] += (4 - x - y) * value;
		sums[1] += x * value;
		sums[2] += y * value;
	}

	unsigned int levels[3];
	for (int row = 0; row < 3; ++row)
	{
		const double(&factors)[3] = kInverseNormal[row];
		const double value = factors[0] * (sums[0] * 0.25) + factors[1] * (sums[1] * 0.25) + factors[2] * (sums[2] * 0.25);
		levels[row] = static_cast<unsigned int>(std::round(std::clamp(value, 0.0, 255.0) / step));
	}
	return {levels[0], levels[1], levels[2]};
}
} // namespace

void compressBlockPlanar57(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, unsigned int& word1,
                           unsigned int& word2)
{
	const SearchTexels<16> texels = loadBlockTexels(source, width, startX, startY);
	const PlanarCorners red = fitChannel(texels, 0, kStep6Bits);
	const PlanarCorners green = fitChannel(texels, 1, kStep7Bits);
	const PlanarCorners blue = fitChannel(texels, 2, kStep6Bits);
	packPlanarCorners(red, green, blue, word1, word2);
}

dMatrix* multiplyMatrices(const dMatrix* left, const dMatrix* right)
{
	if (left->width != right->height)
	{
		std::fputs("Cannot multiply matrices -- dimensions do not agree.", stdout);
	}
	const int terms = std::min(left->width, right->height);
	auto* product = new dMatrix{right->width, left->height, nullptr};
	product->data = new double[static_cast<std::size_t>(product->width) * static_cast<std::size_t>(product->height)];
	for (int row = 0; row < product->height; ++row)
	{
		for (int column = 0; column < product->width; ++column)
		{
			double sum = 0.0;
			for (int i = 0; i < terms; ++i)
			{
				sum += left->data[row * left->width + i] * right->data[i * right->width + column];
			}
			product->data[row * product->width + column] = sum;
		}
	}
	return product;
}

void transposeMatrix(dMatrix* matrix)
{
	const std::size_t size = static_cast<std::size_t>(matrix->width) * static_cast<std::size_t>(matrix->height);
	auto* turned = new double[size];
	for (int row = 0; row < matrix->height; ++row)
	{
		for (int column = 0; column < matrix->width; ++column)
		{
			turned[column * matrix->height + row] = matrix->data[row * matrix->width + column];
		}
	}
	delete[] matrix->data;
	matrix->data = turned;
	std::swap(matrix->width, matrix->height);
}
} // namespace zortexture
