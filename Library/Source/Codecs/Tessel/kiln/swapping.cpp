#include "swapping.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <utility>

#include "analygrapprop.h"

namespace
{
/// How far the colours of two blocks (or of all that touch along a border) are apart: A from A and B from B, or A from B.
struct Distances
{
	std::int64_t straight = 0;
	std::int64_t crossed = 0;
};

/// The border of two neighbouring blocks.
struct Edge
{
	int first = -1;
	int second = -1;
	int straight = 0;
	int crossed = 0;
	/// How clearly one of the two distances is the smaller.
	float ratio = 0;
};

int distanceOfPairs(const KilnColour& a0, const KilnColour& b0, const KilnColour& a1, const KilnColour& b1)
{
	return static_cast<int>(std::sqrt(static_cast<double>(SQColDist(a0, a1) + SQColDist(b0, b1))));
}

Edge SetupEdge(int first, int second, const std::vector<KilnPair>& colours)
{
	const KilnPair& p = colours[static_cast<std::size_t>(first)];
	const KilnPair& q = colours[static_cast<std::size_t>(second)];
	const int straight = distanceOfPairs(p.a, p.b, q.a, q.b);
	const int crossed = distanceOfPairs(p.a, p.b, q.b, q.a);
	const auto [smaller, larger] = std::minmax({straight, crossed});
	float ratio = 1;
	if (larger > smaller)
	{
		ratio = smaller > 0 ? static_cast<float>(larger) / static_cast<float>(smaller) : FLT_MAX;
	}
	return {first, second, straight, crossed, ratio};
}

/// The blocks as a grid: for each the edge to the right and the edge below, without blocks where there is none.
struct Grid
{
	int width;
	int height;
	std::vector<Edge> edges;

	Grid(int blocksX, int blocksY, bool wrap, const std::vector<KilnPair>& colours)
	    : width(blocksX), height(blocksY), edges(2 * colours.size())
	{
		for (int y = 0; y < height; ++y)
		{
			for (int x = 0; x < width; ++x)
			{
				const int block = y * width + x;
				if (x + 1 < width || (wrap && width > 1))
				{
					rightOf(block) = SetupEdge(block, y * width + (x + 1) % width, colours);
				}
				if (y + 1 < height || (wrap && height > 1))
				{
					below(block) = SetupEdge(block, (y + 1) % height * width + x, colours);
				}
			}
		}
	}

	/// The up to four edges of a block; some may lack blocks.
	std::array<const Edge*, 4> edgesOf(int block)
	{
		const int x = block % width;
		const int left = x > 0 ? block - 1 : block + width - 1;
		const int above = block >= width ? block - width : block + (height - 1) * width;
		return {&rightOf(block), &below(block), &rightOf(left), &below(above)};
	}

private:
	Edge& rightOf(int block)
	{
		return edges[2 * static_cast<std::size_t>(block)];
	}

	Edge& below(int block)
	{
		return edges[2 * static_cast<std::size_t>(block) + 1];
	}
};

/// Blocks grouped into islands, whose colours are meant to run on within.
class Islands
{
public:
	explicit Islands(Grid& grid) : m_grid(grid), m_blocks(static_cast<std::size_t>(grid.width) * static_cast<std::size_t>(grid.height))
	{
		for (std::size_t i = 0; i < m_blocks.size(); ++i)
		{
			m_blocks[i].island = m_blocks[i].next = static_cast<int>(i);
		}
	}

	/// Joins the islands at both ends of an edge. The smaller one is turned over if that makes it fit better along the whole border.
	void MergeIslandEdgeData(const Edge& edge)
	{
		int kept = at(edge.first).island;
		int merged = at(edge.second).island;
		if (kept == merged)
		{
			return;
		}
		if (at(kept).size < at(merged).size)
		{
			std::swap(kept, merged);
		}
		const Distances border = sumBorder(merged, kept);
		const bool turned = border.crossed < border.straight;
		forEachMember(merged,
		              [&](Block& member)
		              {
			              member.island = kept;
			              member.flipped = member.flipped != turned;
		              });
		// Exchanging a link of two rings makes them one.
		std::swap(at(kept).next, at(merged).next);
		at(kept).size += at(merged).size;
	}

	bool isFlipped(int block)
	{
		return at(block).flipped;
	}

private:
	struct Block
	{
		/// Named after one of its blocks, which knows its size.
		int island = 0;
		int size = 1;
		/// The next block of the island, in a ring.
		int next = 0;
		bool flipped = false;
	};

	Block& at(int block)
	{
		return m_blocks[static_cast<std::size_t>(block)];
	}

	template<typename Visit>
	void forEachMember(int island, Visit&& visit)
	{
		int member = island;
		do
		{
			visit(at(member));
			member = at(member).next;
		} while (member != island);
	}

	/// Sums the distances along the border of two islands, as their blocks stand now.
	Distances sumBorder(int island, int other)
	{
		Distances sums;
		forEachMember(island,
		              [&](const Block& member)
		              {
			              const int block = static_cast<int>(&member - m_blocks.data());
			              for (const Edge* edge : m_grid.edgesOf(block))
			              {
				              const int neighbour = edge->first == block ? edge->second : edge->first;
				              if (neighbour >= 0 && at(neighbour).island == other)
				              {
					              const bool crosswise = member.flipped != at(neighbour).flipped;
					              sums.straight += crosswise ? edge->crossed : edge->straight;
					              sums.crossed += crosswise ? edge->straight : edge->crossed;
				              }
			              }
		              });
		return sums;
	}

	Grid& m_grid;
	std::vector<Block> m_blocks;
};

/// The clearest edge first.
bool CompareEdges(const Edge* a, const Edge* b)
{
	return a->ratio > b->ratio;
}
} // namespace

std::vector<bool> CreateColourSwappingRecommendations(int blocksX, int blocksY, bool wrap, const std::vector<KilnPair>& colours)
{
	Grid grid(blocksX, blocksY, wrap, colours);
	std::vector<const Edge*> order;
	order.reserve(grid.edges.size());
	for (const Edge& edge : grid.edges)
	{
		if (edge.first >= 0)
		{
			order.push_back(&edge);
		}
	}
	std::stable_sort(order.begin(), order.end(), CompareEdges);
	Islands islands(grid);
	for (const Edge* edge : order)
	{
		islands.MergeIslandEdgeData(*edge);
	}

	const int blocks = blocksX * blocksY;
	std::vector<bool> swaps(static_cast<std::size_t>(blocks));
	for (int i = 0; i < blocks; ++i)
	{
		swaps[static_cast<std::size_t>(i)] = islands.isFlipped(i);
	}
	// All blocks are one island by now. Swapped as a whole it would be as continuous, but some pairs lose by it.
	const auto count = std::count(swaps.begin(), swaps.end(), true);
	if (2 * count > blocks)
	{
		swaps.flip();
	}
	return count == 0 || count == blocks ? std::vector<bool>() : swaps;
}
