#include "TesselRounds.h"

#include <algorithm>
#include <cstring>

#include "TesselFastModulation.h"
#include "TesselPlanes.h"

namespace zortexture
{
namespace
{
std::uint64_t eightWeights(const std::uint8_t* weights)
{
	std::uint64_t eight;
	std::memcpy(&eight, weights, sizeof(eight));
	return eight;
}

/// Weights 0, 3, 5 and 8 in every byte to their indices, other weights to anything below 4.
std::uint64_t indicesOf(std::uint64_t weights)
{
	constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
	const std::uint64_t low = ((weights >> 1) | (weights >> 3)) & kOnes;
	const std::uint64_t high = ((weights >> 2) | (weights >> 3)) & kOnes;
	return low | (high << 1);
}

/// Word 0 of a 4bpp block of these weights, either mode's.
std::uint32_t wordOf4bpp(const std::uint8_t* weights)
{
	std::uint32_t word = 0;
	for (unsigned half = 0; half < 2; ++half)
	{
		std::uint64_t indices = indicesOf(eightWeights(weights + 8 * half));
		indices = (indices | (indices >> 6)) & 0x000F000F000F000FULL;
		indices = (indices | (indices >> 12)) & 0x000000FF000000FFULL;
		indices |= indices >> 24;
		word |= static_cast<std::uint32_t>(indices & 0xFFFF) << (16 * half);
	}
	return word;
}

/// Word 0 of a 2bpp block.
std::uint32_t wordOf2bpp(const std::uint8_t* weights, unsigned mode)
{
	std::uint32_t word = 0;
	for (unsigned y = 0; y < 4; ++y)
	{
		const std::uint64_t row = eightWeights(weights + 8 * y);
		std::uint64_t byte = 0;
		if (mode == eTesselMode_Direct)
		{
			// Weights are 0 and 8; the product brings bit 3 of byte i to bit 56 + i.
			byte = ((row >> 3) * 0x0102040810204080ULL) >> 56;
		}
		else
		{
			std::uint64_t indices = (indicesOf(row) >> (8 * (y & 1))) & 0x0003000300030003ULL;
			indices = (indices | (indices >> 14)) & 0x0000000F0000000FULL;
			byte = (indices | (indices >> 28)) & 0xFF;
		}
		word |= static_cast<std::uint32_t>(byte) << (8 * y);
	}
	return selectTesselInterpolation(word, mode);
}

/// Colours of all blocks with a row and a column around them that wrap, so that the blocks around any block lie around its place.
class WrappedColours
{
public:
	WrappedColours(const std::vector<unsigned>& colours, unsigned blocksX, unsigned blocksY)
	    // Two more columns: four are read from the one at the left on.
	    : m_blocksX(blocksX), m_blocksY(blocksY), m_stride(std::size_t(blocksX) + 4), m_colours(m_stride * (std::size_t(blocksY) + 2))
	{
		for (unsigned y = 0; y < blocksY; ++y)
		{
			for (unsigned x = 0; x < blocksX; ++x)
			{
				set(x, y, colours[std::size_t(y) * blocksX + x]);
			}
		}
	}

	void set(unsigned x, unsigned y, std::uint32_t colour)
	{
		const auto setRow = [this, x, colour](std::size_t row)
		{
			std::uint32_t* line = &m_colours[row * m_stride];
			line[x + 1] = colour;
			if (x == 0)
			{
				line[m_blocksX + 1] = colour;
			}
			if (x == m_blocksX - 1)
			{
				line[0] = colour;
			}
		};
		setRow(y + 1);
		if (y == 0)
		{
			setRow(m_blocksY + 1);
		}
		if (y == m_blocksY - 1)
		{
			setRow(0);
		}
	}

	std::uint32_t get(unsigned x, unsigned y) const
	{
		return m_colours[(std::size_t(y) + 1) * m_stride + x + 1];
	}

	const std::uint32_t* data() const
	{
		return m_colours.data();
	}

	std::size_t stride() const
	{
		return m_stride;
	}

private:
	unsigned m_blocksX;
	unsigned m_blocksY;
	std::size_t m_stride;
	std::vector<std::uint32_t> m_colours;
};

class Rounds
{
public:
	Rounds(const TesselRoundsTask& task, TesselRoundsResult& result)
	    : m_task(task), m_result(result), m_blocksX(task.width / (task.is2bpp ? 8 : 4)), m_blocksY(task.height / 4),
	      m_coloursA(result.firstA, m_blocksX, m_blocksY), m_coloursB(result.firstB, m_blocksX, m_blocksY),
	      m_weights(result.firstA.size() * (task.is2bpp ? 32 : 16)), m_modes(result.firstA.size()), m_newA(result.firstA.size() + 1),
	      m_newB(m_newA.size()), m_isModulationNew(m_newA.size()), m_isDue(result.firstA.size())
	{
	}

	/// A round of the classes chooses modulations against the planes that the round before made, makes planes of the colours, and corrects
	/// the colours. Turned about, a block's planes are made once: its colours are corrected against them with the modulation it has, and
	/// then the next modulation chosen. The first planes and modulations serve the first two rounds. A block whose planes and modulation
	/// are those of the round before keeps its colours, and its modulation too.
	template<ESimdLevel level>
	void run()
	{
		std::vector<std::uint32_t> inside;
		std::vector<std::uint32_t> outside;
		for (unsigned y = 0; y < m_blocksY; ++y)
		{
			for (unsigned x = 0; x < m_blocksX; ++x)
			{
				const bool isInside = m_task.iterations > 0 && x < m_task.roundsX && y < m_task.roundsY;
				(isInside ? inside : outside).push_back(y * m_blocksX + x);
			}
		}
		step<level>(outside, true, false, false);
		step<level>(inside, true, true, false);
		std::vector<std::uint32_t> due;
		for (unsigned i = 1; i < m_task.iterations; ++i)
		{
			takeOver(i == 1 ? inside : due, i > 1);
			collectDue(due);
			if (due.empty())
			{
				return;
			}
			step<level>(due, false, true, i + 1 < m_task.iterations);
		}
		takeOver(m_task.iterations > 1 ? due : inside, false);
	}

	void readOut()
	{
		const std::size_t count = m_result.firstA.size();
		m_result.coloursA.resize(count);
		m_result.coloursB.resize(count);
		m_result.modulation.resize(count);
		m_result.modeFlags.resize(count);
		for (unsigned y = 0; y < m_blocksY; ++y)
		{
			for (unsigned x = 0; x < m_blocksX; ++x)
			{
				const std::size_t place = std::size_t(y) * m_blocksX + x;
				m_result.coloursA[place] = m_coloursA.get(x, y);
				m_result.coloursB[place] = m_coloursB.get(x, y);
				m_result.modulation[place] =
				    m_task.is2bpp ? wordOf2bpp(&m_weights[32 * place], m_modes[place]) : wordOf4bpp(&m_weights[16 * place]);
				m_result.modeFlags[place] = m_modes[place] != 0 ? 1 : 0;
			}
		}
	}

private:
	/// One call of the kernel.
	template<ESimdLevel level>
	void step(const std::vector<std::uint32_t>& blocks, bool choosesFirst, bool corrects, bool choosesLast)
	{
		TesselRound round = {};
		round.blocks = blocks.data();
		round.count = blocks.size();
		round.blocksX = m_blocksX;
		round.pixels = m_task.pixels;
		round.pitch = m_task.width;
		round.coloursA = m_coloursA.data();
		round.coloursB = m_coloursB.data();
		round.stride = m_coloursA.stride();
		round.weights = m_weights.data();
		round.modes = m_modes.data();
		round.choosesFirst = choosesFirst;
		round.corrects = corrects;
		round.choosesLast = choosesLast;
		round.newA = m_newA.data();
		round.newB = m_newB.data();
		round.isModulationNew = m_isModulationNew.data();
		runTesselRound<level>(round, m_task.is2bpp);
	}

	/// Takes over the colours that a round gave the blocks, and marks those that the next one must look at.
	void takeOver(const std::vector<std::uint32_t>& blocks, bool areModulationsNew)
	{
		for (std::size_t i = 0; i < blocks.size(); ++i)
		{
			const unsigned x = blocks[i] % m_blocksX;
			const unsigned y = blocks[i] / m_blocksX;
			if (areModulationsNew && m_isModulationNew[i] != 0)
			{
				m_isDue[blocks[i]] = 1;
			}
			if (m_newA[i] != m_coloursA.get(x, y) || m_newB[i] != m_coloursB.get(x, y))
			{
				m_coloursA.set(x, y, m_newA[i]);
				m_coloursB.set(x, y, m_newB[i]);
				markAround(x, y);
			}
		}
	}

	void markAround(unsigned x, unsigned y)
	{
		const unsigned columns[3] = {x == 0 ? m_blocksX - 1 : x - 1, x, x + 1 == m_blocksX ? 0 : x + 1};
		const unsigned rows[3] = {y == 0 ? m_blocksY - 1 : y - 1, y, y + 1 == m_blocksY ? 0 : y + 1};
		for (const unsigned row : rows)
		{
			for (const unsigned column : columns)
			{
				m_isDue[std::size_t(row) * m_blocksX + column] = 1;
			}
		}
	}

	/// The marked blocks among those that the rounds correct. No mark is left.
	void collectDue(std::vector<std::uint32_t>& due)
	{
		due.clear();
		for (unsigned y = 0; y < std::min(m_task.roundsY, m_blocksY); ++y)
		{
			for (unsigned x = 0; x < std::min(m_task.roundsX, m_blocksX); ++x)
			{
				const std::uint32_t place = y * m_blocksX + x;
				if (m_isDue[place] != 0)
				{
					due.push_back(place);
				}
			}
		}
		std::fill(m_isDue.begin(), m_isDue.end(), static_cast<std::uint8_t>(0));
	}

	const TesselRoundsTask& m_task;
	TesselRoundsResult& m_result;
	unsigned m_blocksX;
	unsigned m_blocksY;
	WrappedColours m_coloursA;
	WrappedColours m_coloursB;
	std::vector<std::uint8_t> m_weights;
	std::vector<std::uint8_t> m_modes;
	std::vector<std::uint32_t> m_newA;
	std::vector<std::uint32_t> m_newB;
	std::vector<std::uint8_t> m_isModulationNew;
	std::vector<std::uint8_t> m_isDue;
};
} // namespace

bool runTesselVectorRounds(const TesselRoundsTask& task, TesselRoundsResult& result)
{
	return withSimdLevel(
	    [&](auto level)
	    {
		    if constexpr (level == eSimdPlain)
		    {
			    return false;
		    }
		    else
		    {
			    TesselPlanes planes = {};
			    planes.width = task.width;
			    planes.height = task.height;
			    planes.blockWidth = task.is2bpp ? 8 : 4;
			    planes.blockHeight = 4;
			    planes.blocksX = task.width / planes.blockWidth;
			    planes.blocksY = task.height / planes.blockHeight;
			    planes.image = task.pixels;
			    result.firstA.resize(std::size_t(planes.blocksX) * planes.blocksY);
			    result.firstB.resize(result.firstA.size());
			    planes.coloursA = result.firstA.data();
			    planes.coloursB = result.firstB.data();
			    calculateColoursAB(planes, task.overlapWindow);
			    Rounds rounds(task, result);
			    rounds.template run<level>();
			    rounds.readOut();
			    return true;
		    }
	    });
}
} // namespace zortexture
