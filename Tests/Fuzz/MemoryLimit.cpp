#include "MemoryLimit.h"

#include <cstdlib>
#include <new>

namespace
{
constexpr std::size_t kLargestRequest = std::size_t{1} << 20;

bool g_isLimited = false;

void* allocate(std::size_t size)
{
	void* const memory = g_isLimited && size > kLargestRequest ? nullptr : std::malloc(size == 0 ? 1 : size);
	if (memory == nullptr)
	{
		throw std::bad_alloc();
	}
	return memory;
}
} // namespace

CMemoryLimit::CMemoryLimit()
{
	g_isLimited = true;
}

CMemoryLimit::~CMemoryLimit()
{
	g_isLimited = false;
}

/// The runtime of libFuzzer mixes these operators with the sanitizer's own; blocks and bounds are checked all the same.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
	return "alloc_dealloc_mismatch=0";
}

void* operator new(std::size_t size)
{
	return allocate(size);
}

void* operator new[](std::size_t size)
{
	return allocate(size);
}

void operator delete(void* memory) noexcept
{
	std::free(memory);
}

void operator delete[](void* memory) noexcept
{
	std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
	std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
	std::free(memory);
}
