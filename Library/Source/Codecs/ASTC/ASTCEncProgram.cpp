#include "ASTCCodec.h"
#include "Platform/Platform.h"

namespace zortexture
{
bool executeASTCEnc(const char* const* arguments, int* exitCode)
{
	return platform::executeProcess(platform::executableName("astcenc").c_str(), arguments, exitCode);
}

bool isASTCEncAvailable()
{
	const char* const noArguments[] = {nullptr};
	return executeASTCEnc(noArguments, nullptr);
}
} // namespace zortexture
