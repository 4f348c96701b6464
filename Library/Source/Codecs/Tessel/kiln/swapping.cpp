#include "swapping.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <map>
#include <utility>

namespace
{
/// How far the colours of two blocks (or of the blocks along the border of two islands) are apart, A against A and B against B, or
/// A against B.
struct Distances
{
	std::int64_t straight = 0;
	std::int64_t crossed = 0;
};

struct Edge
{
	int first;
	int second;
	Distances distances;
	/// How clearly one of the two distances is the smaller.
	float ratio;
};

int squaredDistance(const KilnColour& a, const KilnColour& b)
{
	int sum = 0;
	for (std::size_t c = 0; c < 4; ++c)
	{
		const int difference = a[c] - b[c];
		sum += difference * difference;
	}
	return sum;
}

int distanceOfPairs(const KilnColour& a0, const KilnColour& b0, const KilnColour& a1, const KilnColour& b1)
{
	return static_cast<int>(std::sqrt(static_cast<double>(squaredDistance(a0, a1) + squaredDistance(b0, b1))));
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
	return {first, second, {straight, crossed}, ratio};
}

bool CompareEdges(const Edge& a, const Edge& b)
{
	return a.ratio > b.ratio;
}

/// Blocks grouped into islands. A block's flip is relative to the block that its island is named after.
class Islands
{
public:
	Islands(int blocks, const std::vector<Edge>& edges) : m_blocks(static_cast<std::size_t>(blocks))
	{
		for (int i = 0; i < blocks; ++i)
		{
			at(i).parent = i;
		}
		for (const Edge& edge : edges)
		{
			addLink(edge.first, edge.second, edge.distances);
		}
	}

	/// Joins the islands at both ends of an edge, the one of fewer links into the other, turned over if that makes it fit better
	/// along the whole border.
	void MergeIslandEdgeData(const Edge& edge)
	{
		int kept = find(edge.first).root;
		int merged = find(edge.second).root;
		if (kept == merged)
		{
			return;
		}
		if (at(kept).links.size() < at(merged).links.size())
		{
			std::swap(kept, merged);
		}
		const Distances border = at(kept).links.at(merged);
		const bool turned = border.crossed < border.straight;
		at(merged).parent = kept;
		at(merged).flipped = turned;

		const std::map<int, Distances> links = std::move(at(merged).links);
		for (const auto& [other, distances] : links)
		{
			at(other).links.erase(merged);
			if (other != kept)
			{
				addLink(kept, other, turned ? Distances{distances.crossed, distances.straight} : distances);
			}
		}
	}

	bool isFlipped(int block)
	{
		return find(block).flipped;
	}

private:
	struct Block
	{
		int parent = 0;
		bool flipped = false;
		/// Of the block that its island is named after: the neighbouring islands, by name.
		std::map<int, Distances> links;
	};

	struct Place
	{
		int root;
		bool flipped;
	};

	Block& at(int block)
	{
		return m_blocks[static_cast<std::size_t>(block)];
	}

	void addLink(int first, int second, const Distances& distances)
	{
		for (const auto& [from, to] : {std::pair{first, second}, std::pair{second, first}})
		{
			Distances& sums = at(from).links[to];
			sums.straight += distances.straight;
			sums.crossed += distances.crossed;
		}
	}

	Place find(int block)
	{
		Place place = {block, false};
		while (at(place.root).parent != place.root)
		{
			place.flipped = place.flipped != at(place.root).flipped;
			place.root = at(place.root).parent;
		}
		// Shortens the way for the next time.
		bool flipped = place.flipped;
		while (block != place.root)
		{
			Block& passed = at(block);
			const bool own = passed.flipped;
			block = std::exchange(passed.parent, place.root);
			passed.flipped = flipped;
			flipped = flipped != own;
		}
		return place;
	}

	std::vector<Block> m_blocks;
};

/// To the right and below of every block.
std::vector<Edge> edgesOf(int blocksX, int blocksY, bool wrap, const std::vector<KilnPair>& colours)
{
	std::vector<Edge> edges;
	edges.reserve(2 * colours.size());
	for (int y = 0; y < blocksY; ++y)
	{
		for (int x = 0; x < blocksX; ++x)
		{
			const int block = y * blocksX + x;
			if (x + 1 < blocksX || (wrap && blocksX > 1))
			{
				edges.push_back(SetupEdge(block, y * blocksX + (x + 1) % blocksX, colours));
			}
			if (y + 1 < blocksY || (wrap && blocksY > 1))
			{
				edges.push_back(SetupEdge(block, (y + 1) % blocksY * blocksX + x, colours));
			}
		}
	}
	return edges;
}
} // namespace

std::vector<bool> CreateColourSwappingRecommendations(int blocksX, int blocksY, bool wrap, const std::vector<KilnPair>& colours)
{
	std::vector<Edge> edges = edgesOf(blocksX, blocksY, wrap, colours);
	std::stable_sort(edges.begin(), edges.end(), CompareEdges);
	const int blocks = blocksX * blocksY;
	Islands islands(blocks, edges);
	for (const Edge& edge : edges)
	{
		islands.MergeIslandEdgeData(edge);
	}

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
