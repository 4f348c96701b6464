#include "OneShotReadBuf.h"

#include <cstdint>

namespace zortexture
{
OneShotReadBuf::OneShotReadBuf(char* block, std::size_t length) : m_block(block), m_length(static_cast<off_type>(length))
{
	setg(block, block, block + length);
}

OneShotReadBuf::~OneShotReadBuf() = default;

OneShotReadBuf::off_type OneShotReadBuf::position() const
{
	return m_isOutside ? m_outsidePosition : gptr() - m_block;
}

OneShotReadBuf::pos_type OneShotReadBuf::seekoff(off_type offset, std::ios_base::seekdir way, std::ios_base::openmode /*which*/)
{
	off_type target = position();
	if (way == std::ios_base::beg)
	{
		target = offset;
	}
	else if (way == std::ios_base::cur)
	{
		target += static_cast<std::int32_t>(static_cast<std::uint32_t>(offset)); // a relative offset has 32 bits here
	}
	else if (way == std::ios_base::end)
	{
		target = m_length + offset;
	}
	m_isOutside = target < 0 || target > m_length;
	if (m_isOutside)
	{
		m_outsidePosition = target;
		setg(m_block + m_length, m_block + m_length, m_block + m_length);
	}
	else
	{
		setg(m_block, m_block + target, m_block + m_length);
	}
	return pos_type(target);
}

OneShotReadBuf::pos_type OneShotReadBuf::seekpos(pos_type position, std::ios_base::openmode which)
{
	return seekoff(off_type(position), std::ios_base::beg, which);
}
} // namespace zortexture
