#include <cstdio>

#include "ZORTexture.h"

namespace zortexture
{
namespace
{
/// Prints bytes as C constants, with a newline after each one for which `endsLine(index)` holds.
template<typename EndsLine>
void printBytes(std::FILE* stream, const void* bytes, unsigned long long count, EndsLine&& endsLine)
{
	const auto* values = static_cast<const unsigned char*>(bytes);
	for (unsigned long long i = 0; i < count; ++i)
	{
		std::fprintf(stream, "0x%02x,", values[i]);
		if (endsLine(i))
		{
			std::fputc('\n', stream);
		}
	}
}

constexpr auto kEveryFourth = [](unsigned long long index)
{
	return index % 4 == 3;
};
} // namespace

bool CZORTexture::privateSaveCHeaderFile(std::FILE* stream, const std::string& name) const
{
	std::fputs("/********************************************************** \n"
	           " * ZORTexLib\n"
	           " **********************************************************/\n\n"
	           "#ifndef A8BIT \n"
	           " #define A8BIT static const unsigned char\n"
	           "#endif\n\n",
	           stream);
	std::fprintf(stream, "A8BIT %s[] = {\n", name.c_str());
	std::fputs("\n/* Header */\n", stream);
	const ZORTextureHeaderV3 fields = getFileHeader();
	printBytes(stream, &fields, sizeof(fields), kEveryFourth);

	if (fields.metaDataSize != 0)
	{
		std::fputs("\n/* Meta Data */\n", stream);
	}
	const MetaDataMap& table = *getMetaDataMap();
	for (unsigned int outer = 0; outer < table.size; ++outer)
	{
		// The break of lines goes by the index of the group, not by that of the byte.
		const bool breaksEveryByte = outer % 32 == 31;
		const auto& group = table.values[outer];
		for (unsigned int inner = 0; inner < group.size; ++inner)
		{
			const MetaDataBlock& block = group.values[inner];
			const unsigned int head[] = {block.fourCC, block.key, block.dataSize};
			printBytes(stream, head, sizeof(head), kEveryFourth);
			printBytes(stream, block.data, block.data == nullptr ? 0 : block.dataSize, [&](unsigned long long) { return breaksEveryByte; });
			std::fputc('\n', stream);
		}
	}

	std::fputs("\n/* Data */\n", stream);
	// As many bytes as the header tells, whatever the block holds: the array is read back by the header.
	const unsigned long long dataSize = getDataSize(-1, true, true);
	for (unsigned long long i = 0; i < dataSize; ++i)
	{
		std::fprintf(stream, "0x%02x,", i < m_blockSize ? m_textureData[i] : 0u);
		if (i % 32 == 31)
		{
			std::fputc('\n', stream);
		}
	}
	std::fputs("};\n", stream);
	return true;
}
} // namespace zortexture
