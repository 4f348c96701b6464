#include "PixelPairs.h"

#include "Simd/Lanes.h"

namespace zortexture
{
namespace
{
using Element8 = std::uint8_t;
using Element16 = std::uint16_t;
using Element32 = std::uint32_t;

template<typename T>
ZORT_INLINE F32 loadAsFloats(const T* elements)
{
	if constexpr (sizeof(T) == 4)
	{
		return convert<float>(U32::load(elements));
	}
	else
	{
		return convert<float>(loadWidened<F32::kCount>(elements));
	}
}

template<typename T>
ZORT_INLINE F32 scaled(F32 raw)
{
	if constexpr (sizeof(T) == 4)
	{
		return raw * F32::filled(2.3283064e-10f);
	}
	else
	{
		return raw / F32::filled(sizeof(T) == 1 ? 255.0f : 65535.0f);
	}
}

/// Whole registers, and what remains on the side.
template<typename T>
ZORT_INLINE void readAll(EElementReading reading, const T* elements, std::size_t count, float* floats)
{
	std::size_t i = 0;
	for (; i + F32::kCount <= count; i += F32::kCount)
	{
		const F32 raw = loadAsFloats(elements + i);
		(reading == eReadRaw ? raw : scaled<T>(raw)).store(floats + i);
	}
	if (i != count)
	{
		T last[F32::kCount] = {};
		float lastFloats[F32::kCount];
		std::memcpy(last, elements + i, (count - i) * sizeof(T));
		const F32 raw = loadAsFloats(last);
		(reading == eReadRaw ? raw : scaled<T>(raw)).store(lastFloats);
		std::memcpy(floats + i, lastFloats, (count - i) * sizeof(float));
	}
}
} // namespace

template<ESimdLevel level>
void readElements(EElementReading reading, const void* elements, EZORTVariableType channelType, std::size_t count, float* floats)
{
	switch (channelType >> 2)
	{
	case 0:
		readAll(reading, static_cast<const Element8*>(elements), count, floats);
		break;
	case 1:
		readAll(reading, static_cast<const Element16*>(elements), count, floats);
		break;
	case 2:
		readAll(reading, static_cast<const Element32*>(elements), count, floats);
		break;
	default:
		std::memcpy(floats, elements, count * sizeof(float));
		break;
	}
}

template void readElements<kLanesLevel>(EElementReading, const void*, EZORTVariableType, std::size_t, float*);
} // namespace zortexture
