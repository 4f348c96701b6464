#include "PixelEncoder.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "PixelMemory.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kMaxChannels = 4;
constexpr unsigned char kTypeBits[eVT_NumVarTypes] = {8, 8, 8, 8, 16, 16, 16, 16, 32, 32, 32, 32, 32, 32};

bool isFloat(EZORTVariableType type)
{
	return type == eVT_SignedFloat || type == eVT_UnsignedFloat;
}
} // namespace

CPixelEncoder::CPixelEncoder(PixelType pixelType, EZORTVariableType channelType) : m_variableType(channelType)
{
	unsigned char bits[kMaxChannels];
	EChannelName names[kMaxChannels];
	for (unsigned int i = 0; i < kMaxChannels; ++i)
	{
		bits[i] = pixelType.channelBits[i];
		names[i] = MapCharToEnum(pixelType.channelName[i]);
	}
	Initialise(bits, names);
}

CPixelEncoder::CPixelEncoder(EZORTVariableType channelType, unsigned char bits1, unsigned char bits2, unsigned char bits3,
                             unsigned char bits4, EChannelName name1, EChannelName name2, EChannelName name3, EChannelName name4)
    : m_variableType(channelType)
{
	Initialise({bits1, bits2, bits3, bits4}, {name1, name2, name3, name4});
}

CPixelEncoder::CPixelEncoder(const CPixelEncoder& other)
{
	*this = other;
	m_typeBits = static_cast<std::uint8_t>(GetTypeSize());
}

void CPixelEncoder::Initialise(const unsigned char (&bits)[4], const EChannelName (&names)[4])
{
	m_error = 0;
	std::memset(m_colourData, 0, sizeof(m_colourData));
	std::fill(std::begin(m_channelIndex), std::end(m_channelIndex), static_cast<std::int8_t>(-1));
	m_typeBits = static_cast<std::uint8_t>(GetTypeSize());
	m_totalBits = 0;
	m_numChannels = 0;

	for (unsigned int i = 0; i < kMaxChannels; ++i)
	{
		m_channelNames[i] = names[i] <= eCh_Unused ? names[i] : eCh_None;
		m_channelBits[i] = bits[i];
		m_channelStarts[i] = m_totalBits;
		m_totalBits = static_cast<std::uint8_t>(m_totalBits + bits[i]);
		if (m_channelNames[i] != eCh_None)
		{
			m_channelIndex[m_channelNames[i]] = static_cast<std::int8_t>(i);
			++m_numChannels;
		}
	}

	// These need the sum of all widths.
	for (unsigned int i = 0; i < kMaxChannels; ++i)
	{
		m_channelShifts[i] = static_cast<std::uint8_t>(m_totalBits - m_channelStarts[i] - m_channelBits[i]);
		m_channelMasks[i] = GenerateChannelByteMask(static_cast<unsigned char>(i));
	}
	CheckPixelValidity();
}

unsigned int CPixelEncoder::GetError() const
{
	return m_error;
}

unsigned int CPixelEncoder::GetTypeSize() const
{
	return m_variableType < eVT_NumVarTypes ? kTypeBits[m_variableType] : 0;
}

unsigned int CPixelEncoder::GetBitsPerPixel() const
{
	return m_totalBits;
}

unsigned int CPixelEncoder::GetColourDataSize() const
{
	return m_totalBits >> 3;
}

unsigned char* CPixelEncoder::GetColourData()
{
	return m_colourData;
}

bool CPixelEncoder::OverwriteColourData(const unsigned char* colourData)
{
	if (colourData == nullptr)
	{
		return false;
	}
	std::memcpy(m_colourData, colourData, std::min<std::size_t>(GetColourDataSize(), sizeof(m_colourData)));
	return true;
}

std::uint64_t CPixelEncoder::GenerateChannelByteMask(unsigned char position) const
{
	if (position >= kMaxChannels)
	{
		return 0;
	}
	const unsigned int width = m_channelBits[position];
	const bool isElement = isFloat(m_variableType) ? width == 16 || width == 32 : width == m_typeBits && width != 0;
	if (isElement)
	{
		return position;
	}

	// The bits of the pixel from the most significant down: those of this position are ones, all others zeros.
	const unsigned int start = m_channelStarts[position];
	std::uint64_t mask = 0;
	for (unsigned int bit = 0; bit < m_totalBits; ++bit)
	{
		mask = (mask << 1) | (bit >= start && bit < start + width ? 1u : 0u);
	}
	return mask;
}

void CPixelEncoder::CheckPixelValidity()
{
	CheckChannelContinuity();
	CheckDuplicatedChannels();
	CheckInvalidChannelBits();
	CheckValidTotalBits();
}

void CPixelEncoder::CheckChannelContinuity()
{
	bool sawEmpty = false;
	for (const EChannelName name : m_channelNames)
	{
		if (name == eCh_None)
		{
			sawEmpty = true;
		}
		else if (sawEmpty)
		{
			m_error |= ePixelErrorChannelGap;
		}
	}
}

void CPixelEncoder::CheckDuplicatedChannels()
{
	for (unsigned int i = 0; i < kMaxChannels; ++i)
	{
		// The index holds the last position of a name.
		if (m_channelNames[i] != eCh_None && m_channelIndex[m_channelNames[i]] != static_cast<std::int8_t>(i))
		{
			m_error |= ePixelErrorDuplicateChannel;
		}
	}
}

void CPixelEncoder::CheckInvalidChannelBits()
{
	for (unsigned int i = 0; i < kMaxChannels; ++i)
	{
		if (m_channelNames[i] != eCh_None && m_channelBits[i] == 0)
		{
			m_error |= ePixelErrorNamedWithoutBits;
		}
		if (m_channelNames[i] == eCh_None && m_channelBits[i] != 0)
		{
			m_error |= ePixelErrorBitsWithoutName;
		}
	}
}

void CPixelEncoder::CheckValidTotalBits()
{
	if (m_totalBits % 8 != 0)
	{
		m_error |= ePixelErrorTotalBits;
	}
}
} // namespace zortexture
