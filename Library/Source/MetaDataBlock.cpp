#include <cstring>
#include <memory>

#include "ZORTMetaData.h"

namespace zortexture
{
MetaDataBlock::MetaDataBlock(const MetaDataBlock& other)
{
	*this = other;
}

MetaDataBlock& MetaDataBlock::operator=(const MetaDataBlock& other)
{
	if (this == &other)
	{
		return *this;
	}
	std::unique_ptr<unsigned char[]> copy;
	if (other.data != nullptr)
	{
		copy.reset(new unsigned char[other.dataSize]);
		std::memcpy(copy.get(), other.data, other.dataSize);
	}
	delete[] data;
	fourCC = other.fourCC;
	key = other.key;
	dataSize = other.dataSize;
	data = copy.release();
	return *this;
}

MetaDataBlock::~MetaDataBlock()
{
	delete[] data;
}
} // namespace zortexture
