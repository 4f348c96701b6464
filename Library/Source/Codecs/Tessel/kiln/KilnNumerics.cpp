#include "KilnNumerics.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{
constexpr float kFloatEpsilon = 1.1920929e-7F;

template<typename Channel>
void updateCovarSum(CovarSum& sum, const Channel pixel[4], float weight)
{
	std::size_t moment = 0;
	for (std::size_t i = 0; i < 4; ++i)
	{
		const double weighted = static_cast<double>(weight) * pixel[i];
		sum.channels[i] += weighted;
		for (std::size_t j = i; j < 4; ++j)
		{
			sum.moments[moment++] += weighted * pixel[j];
		}
	}
	sum.weight += weight;
}

/// The mean products less the products of the means.
KilnMatrix covarianceOf(const CovarSum& sum, const KilnVector& means)
{
	KilnMatrix covariance = {};
	if (sum.weight == 0)
	{
		return covariance;
	}
	std::size_t moment = 0;
	for (std::size_t i = 0; i < 4; ++i)
	{
		for (std::size_t j = i; j < 4; ++j)
		{
			const double outer = static_cast<double>(means[i]) * means[j];
			covariance[i][j] = covariance[j][i] = static_cast<float>(sum.moments[moment++] / sum.weight - outer);
		}
	}
	return covariance;
}

/// A plane rotation by the angle whose tangent is `tangent`, from row p to row q.
struct Rotation
{
	float cosine;
	float sine;

	explicit Rotation(float tangent) : cosine(1.0F / std::sqrt(tangent * tangent + 1.0F)), sine(tangent * cosine)
	{
	}

	void apply(float& p, float& q) const
	{
		const float rotatedP = cosine * p - sine * q;
		q = sine * p + cosine * q;
		p = rotatedP;
	}
};

/// The tangent of the angle that clears element (p, q) of a symmetric matrix.
float clearingTangent(float pp, float qq, float pq)
{
	const float difference = qq - pp;
	if (std::fabs(difference) * kFloatEpsilon > std::fabs(pq))
	{
		return pq / difference;
	}
	const float theta = 0.5F * difference / pq;
	const float size = 1.0F / (std::fabs(theta) + std::sqrt(theta * theta + 1.0F));
	return theta < 0 ? -size : size;
}

/// The working state of the threshold Jacobi method.
struct JacobiState
{
	/// Symmetric: both halves are kept.
	float* matrix;
	std::size_t n;
	float* vectors;
	/// The mean size of an element above the diagonal.
	float meanSize;
	/// The reciprocal of their number.
	float share;

	float& at(std::size_t row, std::size_t column) const
	{
		return matrix[row * n + column];
	}

	void clearElement(std::size_t p, std::size_t q)
	{
		const float pq = at(p, q);
		const float tangent = clearingTangent(at(p, p), at(q, q), pq);
		const Rotation rotation(tangent);
		float change = -std::fabs(pq);
		at(p, p) -= tangent * pq;
		at(q, q) += tangent * pq;
		at(p, q) = at(q, p) = 0;
		for (std::size_t k = 0; k < n; ++k)
		{
			if (k != p && k != q)
			{
				change -= std::fabs(at(k, p)) + std::fabs(at(k, q));
				rotation.apply(at(k, p), at(k, q));
				at(p, k) = at(k, p);
				at(q, k) = at(k, q);
				change += std::fabs(at(k, p)) + std::fabs(at(k, q));
			}
			rotation.apply(vectors[p * n + k], vectors[q * n + k]);
		}
		meanSize += change * share;
	}

	void sweep(float threshold)
	{
		for (std::size_t p = 0; p + 1 < n; ++p)
		{
			for (std::size_t q = p + 1; q < n; ++q)
			{
				const float size = std::fabs(at(p, q));
				if (size >= threshold && size > 0)
				{
					clearElement(p, q);
				}
			}
		}
	}
};

void multiply(const KilnMatrix& matrix, const KilnVector& vector, KilnVector& out)
{
	for (std::size_t i = 0; i < 4; ++i)
	{
		out[i] = matrix[i][0] * vector[0] + matrix[i][1] * vector[1] + matrix[i][2] * vector[2] + matrix[i][3] * vector[3];
	}
}

float dotProduct(const KilnVector& a, const KilnVector& b)
{
	return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

void normalise(KilnVector& vector)
{
	const float scale = 1.0F / std::sqrt(dotProduct(vector, vector));
	for (float& component : vector)
	{
		component *= scale;
	}
}

float largestElement(const KilnMatrix& matrix)
{
	float largest = 0;
	for (const KilnVector& row : matrix)
	{
		for (const float element : row)
		{
			largest = std::max(largest, std::fabs(element));
		}
	}
	return largest;
}
} // namespace

void UpdateCovarSumF(CovarSum& sum, const float pixel[4], float weight)
{
	updateCovarSum(sum, pixel, weight);
}

void UpdateCovarSumI(CovarSum& sum, const unsigned char pixel[4], float weight)
{
	updateCovarSum(sum, pixel, weight);
}

KilnVector CovarSumMeans(const CovarSum& sum)
{
	KilnVector means = {};
	if (sum.weight != 0)
	{
		for (std::size_t i = 0; i < 4; ++i)
		{
			means[i] = static_cast<float>(sum.channels[i] / sum.weight);
		}
	}
	return means;
}

void CovarSumToSortedEigenVecs(const CovarSum& sum, const KilnVector& means, KilnMatrix& eigenVectorsOut)
{
	KilnMatrix covariance = covarianceOf(sum, means);
	KilnVector eigenvalues;
	static_assert(sizeof(KilnMatrix) == 16 * sizeof(float));
	ComputeSortedEigenVecs(covariance[0].data(), 4, eigenvalues.data(), eigenVectorsOut[0].data());
}

void CovarSumToPrincipalVector(const CovarSum& sum, const KilnVector& means, KilnVector& axisOut)
{
	constexpr float kNegligible = 0.01F;
	FindPrincipalEigenvect(covarianceOf(sum, means), axisOut);
	for (float& component : axisOut)
	{
		if (std::fabs(component) < kNegligible)
		{
			component = 0;
		}
	}
}

void ComputeSortedEigenVecs(float* matrix, int n, float* eigenvaluesOut, float* vectorsOut)
{
	const auto size = static_cast<std::size_t>(n);
	float meanSize = 0;
	for (std::size_t i = 0; i < size; ++i)
	{
		for (std::size_t j = 0; j < size; ++j)
		{
			vectorsOut[i * size + j] = i == j ? 1.0F : 0.0F;
			meanSize += j > i ? std::fabs(matrix[i * size + j]) : 0.0F;
		}
	}
	const float share = n > 1 ? 2.0F / static_cast<float>(n * n - n) : 0.0F;
	meanSize *= share;

	JacobiState state = {matrix, size, vectorsOut, meanSize, share};
	const float limit = kFloatEpsilon * meanSize;
	float threshold = meanSize;
	while (threshold > limit)
	{
		// With the mean below the threshold few elements are worth a rotation: a lower threshold finds more at once.
		if (threshold <= state.meanSize)
		{
			state.sweep(threshold);
		}
		threshold *= 0.0625F;
	}

	for (std::size_t i = 0; i < size; ++i)
	{
		eigenvaluesOut[i] = matrix[i * size + i];
	}
	for (std::size_t i = 1; i < size; ++i)
	{
		for (std::size_t j = i; j > 0 && eigenvaluesOut[j - 1] < eigenvaluesOut[j]; --j)
		{
			std::swap(eigenvaluesOut[j - 1], eigenvaluesOut[j]);
			std::swap_ranges(vectorsOut + (j - 1) * size, vectorsOut + j * size, vectorsOut + j * size);
		}
	}
}

float FindPrincipalEigenvect(const KilnMatrix& matrix, KilnVector& vectorOut)
{
	constexpr int kSquarings = 4;
	constexpr int kMaxRounds = 40;
	constexpr float kSettled = 0.005F;

	// Powers of the matrix favour the main axis; the scale keeps them in range.
	KilnMatrix power = matrix;
	for (int i = 0; i < kSquarings; ++i)
	{
		const float largest = largestElement(power);
		if (largest == 0)
		{
			vectorOut = {1, 0, 0, 0};
			return 0;
		}
		const float scale = 1.0F / largest;
		for (KilnVector& row : power)
		{
			for (float& element : row)
			{
				element *= scale;
			}
		}
		KilnMatrix square;
		for (std::size_t row = 0; row < 4; ++row)
		{
			// Symmetric: a row serves as the column.
			multiply(power, power[row], square[row]);
		}
		power = square;
	}

	// The row with the largest diagonal element cannot be at a right angle to the main axis.
	std::size_t start = 0;
	for (std::size_t i = 1; i < 4; ++i)
	{
		if (power[i][i] > power[start][start])
		{
			start = i;
		}
	}
	vectorOut = power[start];
	normalise(vectorOut);
	for (int round = 0; round < kMaxRounds; ++round)
	{
		KilnVector next;
		multiply(power, vectorOut, next);
		normalise(next);
		float change = 0;
		for (std::size_t i = 0; i < 4; ++i)
		{
			change += std::fabs(next[i] - vectorOut[i]);
		}
		vectorOut = next;
		if (change < kSettled)
		{
			break;
		}
	}
	KilnVector image;
	multiply(matrix, vectorOut, image);
	return dotProduct(vectorOut, image);
}
