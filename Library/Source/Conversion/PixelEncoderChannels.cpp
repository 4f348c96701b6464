// Reading and writing single channels of a pixel.

#include "NormalisedInteger.h"
#include "PixelEncoder.h"
#include "PixelMemory.h"
#include "SmallFloat.h"

namespace zortexture
{
int CPixelEncoder::PositionOf(EChannelName channel) const
{
	return channel <= eCh_Unused ? m_channelIndex[channel] : -1;
}

float CPixelEncoder::GetChannelFloat(EChannelName channel) const
{
	const int position = PositionOf(channel);
	if (position < 0)
	{
		return channel == eCh_Alpha || channel == eCh_Unused ? 1.0f : 0.0f;
	}
	if (m_variableType >= eVT_NumVarTypes)
	{
		return 0.0f;
	}
	if (m_variableType == eVT_SignedFloat || m_variableType == eVT_UnsignedFloat)
	{
		return ReadFloat(position);
	}
	return isSigned(m_variableType) ? signedToFloat(ReadSigned(position), m_channelBits[position])
	                                : unsignedToFloat(ReadUnsigned(position), m_channelBits[position]);
}

bool CPixelEncoder::ReadsElements() const
{
	// The mean width decides, for all channels together.
	return m_totalBits / m_numChannels == m_typeBits;
}

std::uint64_t CPixelEncoder::ReadUnsigned(int position) const
{
	const std::uint64_t slot = m_channelMasks[position];
	if (!ReadsElements())
	{
		return loadField(m_colourData, slot, m_channelShifts[position]);
	}
	switch (m_typeBits)
	{
	case 8:
		return loadElement<std::uint8_t>(m_colourData, slot);
	case 16:
		return loadElement<std::uint16_t>(m_colourData, slot);
	default:
		return loadElement<std::uint32_t>(m_colourData, slot);
	}
}

std::int32_t CPixelEncoder::ReadSigned(int position) const
{
	const std::uint64_t slot = m_channelMasks[position];
	if (!ReadsElements())
	{
		// The low 32 bits alone, so that a field which ends at bit 31 is sign-extended and one above it reads as 0.
		const auto field = static_cast<std::int32_t>(static_cast<std::uint32_t>(loadWord(m_colourData) & slot));
		return m_channelShifts[position] < 32 ? field >> m_channelShifts[position] : 0;
	}
	switch (m_typeBits)
	{
	case 8:
		return loadElement<std::int8_t>(m_colourData, slot);
	case 16:
		return loadElement<std::int16_t>(m_colourData, slot);
	default:
		return loadElement<std::int32_t>(m_colourData, slot);
	}
}

float CPixelEncoder::ReadFloat(int position) const
{
	const std::uint64_t slot = m_channelMasks[position];
	const unsigned int width = m_channelBits[position];
	const bool hasSign = m_variableType == eVT_SignedFloat;
	if (width == 32 && hasSign)
	{
		return loadElement<float>(m_colourData, slot);
	}
	if (width == 16)
	{
		return pixelFloatToFloat(loadElement<std::uint16_t>(m_colourData, slot), kHalfMantissaBits, hasSign);
	}
	const unsigned int mantissaBits = pixelFloatMantissaBits(width);
	if (mantissaBits == 0)
	{
		return 0.0f;
	}
	return pixelFloatToFloat(static_cast<std::uint32_t>(loadField(m_colourData, slot, m_channelShifts[position])), mantissaBits, false);
}

void CPixelEncoder::WriteInteger(int position, std::uint32_t value)
{
	const std::uint64_t slot = m_channelMasks[position];
	const unsigned int width = m_channelBits[position];
	if (width == m_typeBits && width == 8)
	{
		storeElement(m_colourData, slot, static_cast<std::uint8_t>(value));
	}
	else if (width == m_typeBits && width == 16)
	{
		storeElement(m_colourData, slot, static_cast<std::uint16_t>(value));
	}
	else if (width == m_typeBits && width == 32)
	{
		storeElement(m_colourData, slot, value);
	}
	else
	{
		storeField(m_colourData, slot, m_channelShifts[position], value);
	}
}

void CPixelEncoder::SetChannelUNorm(EChannelName channel, const float& value)
{
	const int position = PositionOf(channel);
	if (position >= 0)
	{
		WriteInteger(position, floatToUnsigned(value, m_channelBits[position]));
	}
}

void CPixelEncoder::SetChannelSNorm(EChannelName channel, const float& value)
{
	const int position = PositionOf(channel);
	if (position >= 0)
	{
		WriteInteger(position, floatToSigned(value, m_channelBits[position]));
	}
}

void CPixelEncoder::SetChannelSFloat(EChannelName channel, const float& value)
{
	const int position = PositionOf(channel);
	if (position < 0)
	{
		return;
	}
	if (m_channelBits[position] == 16)
	{
		storeElement(m_colourData, m_channelMasks[position], floatToHalf(value));
	}
	else if (m_channelBits[position] == 32)
	{
		storeElement(m_colourData, m_channelMasks[position], value);
	}
}

void CPixelEncoder::SetChannelUFloat(EChannelName channel, const float& value)
{
	const int position = PositionOf(channel);
	if (position < 0)
	{
		return;
	}
	const unsigned int width = m_channelBits[position];
	if (width == 16)
	{
		storeElement(m_colourData, m_channelMasks[position], floatToHalf(value));
		return;
	}
	// The sign of a negative value lands in the channel above. A width without a small float stores nothing.
	const unsigned int mantissaBits = pixelFloatMantissaBits(width);
	const std::uint32_t bits = mantissaBits != 0 ? floatToPixelFloat(value, mantissaBits) : 0;
	storeField(m_colourData, m_channelMasks[position], m_channelShifts[position], bits);
}
} // namespace zortexture
