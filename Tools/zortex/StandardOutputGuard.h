/// @file StandardOutputGuard.h
/// Keeps what codecs print apart from the program's own output.
#ifndef ZORTEX_STANDARD_OUTPUT_GUARD_H
#define ZORTEX_STANDARD_OUTPUT_GUARD_H

namespace zortex
{
/// While one exists, what is written to standard output goes nowhere.
class StandardOutputGuard
{
public:
	StandardOutputGuard();
	StandardOutputGuard(const StandardOutputGuard&) = delete;
	StandardOutputGuard& operator=(const StandardOutputGuard&) = delete;
	~StandardOutputGuard();

private:
	int m_saved;
};
} // namespace zortex

#endif // ZORTEX_STANDARD_OUTPUT_GUARD_H
