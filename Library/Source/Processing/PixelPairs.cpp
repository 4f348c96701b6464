#include "PixelPairs.h"

#include "ElementDispatch.h"

namespace zortexture
{
namespace
{
template<typename T>
float readElement(EElementReading reading, T element)
{
	const auto raw = static_cast<float>(element);
	if constexpr (std::is_same_v<T, float>)
	{
		return raw;
	}
	else if constexpr (std::is_same_v<T, unsigned int>)
	{
		return reading == eReadRaw ? raw : raw * 2.3283064e-10f; // 2^-32 to the precision of float
	}
	else
	{
		return reading == eReadRaw ? raw : raw / kElementCeiling<T>;
	}
}
} // namespace

template<>
void readElements<eSimdPlain>(EElementReading reading, const void* elements, EZORTVariableType channelType, std::size_t count,
                              float* floats)
{
	withElementType(channelType,
	                [&]<typename T>(std::type_identity<T>)
	                {
		                for (std::size_t i = 0; i < count; ++i)
		                {
			                floats[i] = readElement(reading, static_cast<const T*>(elements)[i]);
		                }
	                });
}
} // namespace zortexture
