// The high-quality compressor without memory: a program of its own, for its operator new fails on demand.

#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

#include "Codecs/Tessel/kiln/decompress.h"
#include "Codecs/Tessel/kiln/kiln_localised.h"
#include "Codecs/Tessel/kiln/threadsupport.h"

namespace
{
/// Allocations until one fails; negative for none.
std::atomic<int> g_left = -1;

bool isRefused()
{
	return g_left >= 0 && g_left-- == 0;
}
} // namespace

// Not inlined: the compiler would take malloc and free, seen apart, for a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size)
{
	void* memory = isRefused() ? nullptr : std::malloc(size != 0 ? size : 1);
	return memory != nullptr ? memory : throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t& /*unused*/) noexcept
{
	return isRefused() ? nullptr : std::malloc(size != 0 ? size : 1);
}
[[gnu::noinline]] void* operator new(std::size_t size, std::align_val_t alignment)
{
	const std::size_t unit = static_cast<std::size_t>(alignment);
	void* memory = isRefused() ? nullptr : std::aligned_alloc(unit, (size + unit - 1) / unit * unit);
	return memory != nullptr ? memory : throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept
{
	std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, const std::nothrow_t& /*unused*/) noexcept
{
	std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept
{
	std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::align_val_t) noexcept
{
	std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
	std::free(memory);
}

// Whichever allocation fails, in whichever thread: a failure is told, or made up for with the same bytes; nothing ends the process, and
// no thread is left behind that works on what is gone.
TEST(KilnMemory, EveryFailureIsTold)
{
	KilnImage image{24, 24, std::vector<KilnColour>(24 * 24)};
	for (std::size_t i = 0; i < image.pixels.size(); ++i)
	{
		const auto value = static_cast<std::uint8_t>(i * i * 7 / 5);
		image.pixels[i] = {value, static_cast<std::uint8_t>(255 - value), static_cast<std::uint8_t>(i), 255};
	}
	using Blocks = std::array<unsigned char, 8 * 36>;
	const auto compress = [&image](Blocks& out)
	{
		// With hard modes and their palettes.
		return KILNNewMethod(image, kKilnWordType, 4, 1, true, 1, false, out.data(), nullptr);
	};
	kilnForceCores(3);
	Blocks expected;
	ASSERT_EQ(compress(expected), 0);

	testing::internal::CaptureStderr();
	int failures = 0;
	bool isOver = false;
	// The first allocations one by one, which differ most, then in growing steps.
	for (int allowed = 0; !isOver; allowed += 1 + allowed / 16)
	{
		Blocks out;
		g_left = allowed;
		const int result = compress(out);
		isOver = g_left >= 0;
		g_left = -1;
		failures += result;
		EXPECT_TRUE(result == 1 || out == expected) << allowed;
	}
	EXPECT_GT(failures, 30);
	const std::string messages = testing::internal::GetCapturedStderr();
	EXPECT_NE(messages.find("Panic:SearchForImageRepresentatives failed malloc @ "), std::string::npos);
	EXPECT_NE(messages.find("At row:3\n"), std::string::npos);
	EXPECT_NE(messages.find("PANIC!. Failed memory allocation in RunAGenerateStatsSetThread\n"), std::string::npos);
	EXPECT_NE(messages.find("Err: Failed to allocate OptimiseRegion working space!!\n"), std::string::npos);
	kilnForceCores(0);
}
