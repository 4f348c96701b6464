/// @file OneShotReadBuf.h
/// A read-only stream buffer over a block of memory that is already complete.
#pragma once

#include <cstddef>
#include <streambuf>

namespace zortexture
{
/// Reads from a block that the caller owns. Positions are not tested when they are set: a position outside the block is
/// kept and reported, and a read there fails like one at the end of a file.
class OneShotReadBuf : public std::streambuf
{
public:
	OneShotReadBuf(char* block, std::size_t length);
	~OneShotReadBuf() override;

protected:
	pos_type seekoff(off_type offset, std::ios_base::seekdir way, std::ios_base::openmode which) override;
	pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

private:
	off_type position() const;

	char* m_block;
	off_type m_length;
	off_type m_outsidePosition = 0; ///< the position while it is outside the block; the get area is empty then
	bool m_isOutside = false;
};
} // namespace zortexture
